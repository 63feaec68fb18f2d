// The C interface of the reference host.
#include "vxnls/vxhost.h"

#include <dlfcn.h>
#include <limits.h>
#include <link.h>
#include <sys/auxv.h>
#include <unicode/putil.h>
#include <unicode/uchar.h>
#include <unicode/ulocdata.h>
#include <unicode/uversion.h>

#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "host/accounting.h"
#include "host/context.h"
#include "host/kernel.h"
#include "host/library.h"
#include "host/locale_database_ops.h"
#include "host/locale_lookup.h"
#include "host/text.h"

namespace {

using vxhost::guarded;

/// One host's part in the loaded library.
struct CloseLibrary {
  void operator()(vxhost::Library* library) const { vxhost::Library::close(library); }
};
using LibraryUse = std::unique_ptr<vxhost::Library, CloseLibrary>;

/// Why the last vxhostOpen of this thread failed; what says that memory ran out takes none.
thread_local std::string open_failure;
thread_local bool open_ran_out_of_memory = false;

constexpr uint32_t notice = 3;  // the level of a journal entry
constexpr VXChar utc[] = {'U', 'T', 'C'};
constexpr const char* stand_in_zone = "America/New_York";  // which the library takes when the system names none
constexpr VXChar root[] = {'r', 'o', 'o', 't'};

std::string real_path(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(path.c_str(), nullptr), std::free);
  return resolved != nullptr ? resolved.get() : path;
}

/// The folder that libvxhost.so was loaded from. The linker may know it by a name that was relative to the working
/// directory of that time, which must not be looked up in that of now.
std::string own_folder() {
  Dl_info info{};
  link_map* image = nullptr;
  char origin[PATH_MAX] = "";
  std::string name = "/proc/self/exe";  // where the host is part of the program
  // By what has an address in here alone: that of an exported function may be one in the program that calls it.
  if (dladdr1(&utc, &info, reinterpret_cast<void**>(&image), RTLD_DL_LINKMAP) != 0 && *image->l_name != '\0' &&
      dlinfo(image, RTLD_DI_ORIGIN, origin) == 0) {
    const std::string_view known = image->l_name;
    name = std::string(origin).append("/").append(known.substr(known.rfind('/') + 1));
  }
  const std::string file = real_path(name);
  return file.substr(0, file.rfind('/'));
}

/// ICU takes what lies in the folders of ICU_DATA for its own data, and believes it. In a process with rights that its
/// caller does not have, it must not; a folder that the program itself has set stays.
void refuse_data_of_callers() {
  [[maybe_unused]] static const bool once = [] {  // as no two threads may change the folder
    const char* const folders = getauxval(AT_SECURE) != 0 ? std::getenv("ICU_DATA") : nullptr;
    if (folders != nullptr && std::string_view(u_getDataDirectory()) == folders) u_setDataDirectory("");
    return true;
  }();
}

/// CLDR calls its version 42 what ICU gives as 42.0.
std::string without_zero_minor(std::string version) {
  if (version.ends_with(".0")) version.resize(version.size() - 2);
  return version;
}

std::string versions_text(const std::string& tz) {
  UVersionInfo version;
  char text[U_MAX_VERSION_STRING_LENGTH];
  const auto as_text = [&] {
    u_versionToString(version, text);
    return std::string(text);
  };
  u_getVersion(version);
  std::string all = "ICU " + as_text();
  UErrorCode error = U_ZERO_ERROR;
  ulocdata_getCLDRVersion(version, &error);
  if (U_SUCCESS(error)) all += "; CLDR " + without_zero_minor(as_text());
  u_getUnicodeVersion(version);
  all += "; Unicode " + as_text();
  return all + "; tz " + (tz.empty() ? "unknown" : tz);
}

}  // namespace

/// The members are made in this order and go in the opposite one: the locales before the module whose code destroys
/// them, all host objects before the kernel, the library last.
struct VXHost {
  explicit VXHost(LibraryUse its_library)
      : library(std::move(its_library)),
        kernel(library->services()),
        context(kernel, library->zones()),
        versions(versions_text(library->zones().version())) {}
  ~VXHost();
  VXHost(const VXHost&) = delete;
  VXHost& operator=(const VXHost&) = delete;

  /// Makes the module and, through a first private locale, the cache of the shared ones.
  VXStatus start();
  VXStatus create(const vxhost::ShortName& name, const char* zone, bool is_private, VXLocale** locale);
  VXStatus cause(VXStatus status, const char* zone);
  void destroy(VXLocale* locale) const;
  VXLocaleDatabase* database() const { return context.localeDatabase; }  // start() saw to it that it is there
  const VXHostLocaleDatabaseOps& database_ops() const {
    return *reinterpret_cast<const VXHostLocaleDatabaseOps*>(database()->ops);
  }

  const LibraryUse library;
  vxhost::Kernel kernel;
  vxhost::Context context;
  const std::string versions;
  NLSModule* module = nullptr;
  std::mutex mutex;
  std::vector<VXLocale*> private_locales;
};

VXHost::~VXHost() {
  if (module == nullptr) return;
  for (VXLocale* const locale : private_locales) destroy(locale);
  if (context.localeCache != nullptr) context.localeCache->ops->destroy(context.localeCache);
  context.localeCache = nullptr;
  module->realDestroy(module);
}

VXStatus VXHost::start() {
  vxhost::available_locales();  // so that walking through them cannot fail
  static constexpr VXJournalAttributes attributes{};
  VXJournal* const journal = kernel.ops->create_journal(&kernel, &attributes, 0, "vxnlsloc");
  module = library->module_entry()(&kernel, journal);
  if (module == nullptr) return VX_E_MEMORY;
  int64_t major = 0;
  int64_t minor = 0;
  int64_t revision = 0;
  module->reqVersion(module, &major, &minor, &revision);
  if (major != 6 || minor > 1 || (minor == 1 && revision > 1)) {
    open_failure = "libvxnlsloc.so needs a host of version " + std::to_string(major) + '.' + std::to_string(minor) +
                   '.' + std::to_string(revision) + ", this one is 6.1.1";
    return VX_E_ROOM;
  }

  vxhost::ExtensionLoader& extensions = library->services().extensions;
  for (const std::string& line : extensions.refused()) kernel.sink.write(notice, "host", line);
  extensions.take_failure();
  const LocaleCreateOptions options{1, {}, utc, std::size(utc)};
  VXStatus status = 0;
  VXLocale* const first = module->localeCreate(&context, root, std::size(root), &status, &options);
  if (first == nullptr) {
    open_failure = extensions.take_failure();
    if (!open_failure.empty()) return VX_E_ROOM;
    status = cause(status, "UTC");
    if (status != VX_E_MEMORY) open_failure = kernel.status_text(status);
    return status;
  }
  context.localeCache = first->ops.NLSLocaleCreateTheDupTrack(first);
  destroy(first);
  return context.localeCache != nullptr ? 0 : VX_E_MEMORY;
}

void VXHost::destroy(VXLocale* locale) const {
  VXTrackEntry entry{{}, locale};
  module->localeDestroyCallback(&entry);
}

/// Why a locale was not created. Of a zone the library knows only that it did not open, be it for want of memory.
VXStatus VXHost::cause(VXStatus status, const char* zone) {
  if (status == 0 || status == VX_W_SUBSTITUTE) return VX_E_MEMORY;
  if (status != VX_E_ZONE) return status;
  const vxhost::ZoneTable::Identifier* system = nullptr;
  if (zone == nullptr && context.system_zone(&system) == 0) zone = system->name.c_str();
  const vxhost::ZoneService service(library->zones());
  const std::unique_ptr<VXZone> opened(service.open(zone != nullptr ? zone : stand_in_zone));
  return opened != nullptr ? VX_E_MEMORY : VX_E_ZONE;
}

VXStatus VXHost::create(const vxhost::ShortName& name, const char* zone, bool is_private, VXLocale** locale) {
  LocaleCreateOptions options{};
  options.flags = is_private ? 1 : 0;
  vxhost::ShortName wide_zone;
  if (zone != nullptr) {
    if (!vxhost::decode_name(zone, wide_zone) || wide_zone.length == 0) return VX_E_ZONE;
    options.zoneName = wide_zone.text.data();
    options.zoneLength = wide_zone.length;
  }
  VXStatus status = 0;
  VXLocale* const made = module->localeCreate(&context, name.text.data(), name.length, &status, &options);
  if (made == nullptr) return cause(status, zone);
  if (is_private) {
    const std::lock_guard guard(mutex);
    try {
      private_locales.push_back(made);
    } catch (...) {
      destroy(made);
      return VX_E_MEMORY;
    }
  }
  *locale = made;
  return 0;
}

extern "C" {

VXStatus vxhostOpen(const char* folder, VXHost** host) {
  if (host == nullptr) return VX_E_NULL;
  *host = nullptr;
  open_failure.clear();
  const auto status = guarded<VXStatus>(VX_E_MEMORY, [&] {
    refuse_data_of_callers();
    const std::string where = folder != nullptr ? real_path(folder) : own_folder();
    VXStatus status = 0;
    LibraryUse library(vxhost::Library::open(where, status, open_failure));
    if (library == nullptr) return status;
    auto made = std::make_unique<VXHost>(std::move(library));
    status = made->start();
    if (status == 0) *host = made.release();
    return status;
  });
  open_ran_out_of_memory = status == VX_E_MEMORY && open_failure.empty();
  return status;
}

const char* vxhostOpenFailure(void) { return open_ran_out_of_memory ? "memory is exhausted" : open_failure.c_str(); }

void vxhostClose(VXHost* host) { delete host; }

VXStatus vxhostLocale(VXHost* host, const char* name, const char* zone, uint32_t flags, VXLocale** locale) {
  if (locale == nullptr) return VX_E_NULL;
  *locale = nullptr;
  if (host == nullptr || name == nullptr) return VX_E_NULL;
  vxhost::ShortName wide_name;
  if (!vxhost::decode_name(name, wide_name)) return VX_E_NOMATCH;
  return guarded<VXStatus>(VX_E_MEMORY, [&] { return host->create(wide_name, zone, (flags & 1) != 0, locale); });
}

HostContext* vxhostContext(VXHost* host) { return host != nullptr ? &host->context : nullptr; }

void vxhostSetJournal(VXHost* host, VXHostJournal journal, void* user) {
  if (host != nullptr) host->kernel.sink.set(journal, user);
}

VXStatus vxhostSetOption(VXHost* host, const char* name, int64_t value) {
  if (host == nullptr || name == nullptr) return VX_E_NULL;
  return guarded<VXStatus>(VX_E_MEMORY,
                           [&] { return host->library->services().options.set(name, value) ? 0 : VX_E_KIND; });
}

VXStatus vxhostStatusText(VXHost* host, VXStatus status, char* text, size_t room) {
  if (host == nullptr || text == nullptr || room == 0) return VX_E_NULL;
  text[0] = '\0';
  return guarded<VXStatus>(VX_E_MEMORY, [&] {
    const std::string whole = host->kernel.status_text(status);
    text[whole.copy(text, room - 1)] = '\0';
    return whole.size() < room ? 0 : VX_E_TRUNCATED;
  });
}

VXStatus vxhostResolveLocale(VXHost* host, const char* name, char* canonical, size_t room) {
  if (host == nullptr || name == nullptr || canonical == nullptr || room == 0) return VX_E_NULL;
  canonical[0] = '\0';
  return guarded<VXStatus>(VX_E_MEMORY, [&] {
    const vxhost::ResolvedLocale resolved = vxhost::resolve_locale(name);
    if (resolved.name.size() >= room) return VX_E_ROOM;
    canonical[resolved.name.copy(canonical, room - 1)] = '\0';
    return resolved.status;
  });
}

void vxhostForEachLocale(VXHost* host, int (*each)(void* user, const char* name), void* user) {
  if (host == nullptr || each == nullptr) return;
  for (const std::string_view name : vxhost::available_locales()) {  // start() has had them listed
    if (each(user, name.data()) != 0) return;
  }
}

void vxhostForEachZone(VXHost* host, int (*each)(void* user, const char* id), void* user) {
  if (host == nullptr || each == nullptr) return;
  for (const auto* id : host->library->zones().identifiers()) {
    if (each(user, id->name.c_str()) != 0) return;
  }
}

VXStatus vxhostZoneInfo(VXHost* host, const char* zone, int32_t direction, double seconds, VXHostZoneInfo* info) {
  if (host == nullptr || info == nullptr) return VX_E_NULL;
  return guarded<VXStatus>(VX_E_MEMORY, [&] {
    std::string name;
    if (zone != nullptr) {
      name = zone;
    } else {
      const vxhost::ZoneTable::Identifier* id = nullptr;
      if (host->context.system_zone(&id) != 0) return VX_E_ZONE;
      name = id->name;
    }
    const vxhost::ZoneService service(host->library->zones());
    const std::unique_ptr<VXZone> open(service.open(name));
    if (open == nullptr) return VX_E_ZONE;
    const auto moment = vxhost::ZoneService::at(*open, direction, seconds);
    if (!moment) return VX_E_RANGE;
    *info = {};
    open->id->name.copy(info->id, sizeof info->id - 1);
    std::string(moment->abbreviation).copy(info->abbreviation, sizeof info->abbreviation - 1);
    info->offset = moment->offset;
    info->summer_time = moment->summer_time ? 1 : 0;
    return 0u;
  });
}

VXStatus vxhostForEachFallback(VXHost* host, const char* locale,
                               int (*each)(void* user, const char* entry, const char* used, const char* reason),
                               void* user) {
  if (host == nullptr || locale == nullptr || each == nullptr) return VX_E_NULL;
  return guarded<VXStatus>(VX_E_MEMORY, [&] {
    const vxhost::ResolvedLocale resolved = vxhost::resolve_locale(locale);
    if (resolved.status == VX_E_NOMATCH) return resolved.status;
    const VXStatus walked = host->database_ops().for_each_fallback(host->database(), resolved.name.c_str(), each, user);
    return walked != 0 && walked != VX_W_FILL ? walked : resolved.status;
  });
}

VXStatus vxhostCheckRecord(VXHost* host, const VXLocaleData* record,
                           int (*each)(void* user, const char* rule, const char* entry, const char* text), void* user) {
  if (host == nullptr || record == nullptr || each == nullptr) return VX_E_NULL;
  return guarded<VXStatus>(VX_E_MEMORY,
                           [&] { return host->database_ops().check(host->database(), record, each, user); });
}

const char* vxhostVersions(VXHost* host) { return host != nullptr ? host->versions.c_str() : ""; }

int64_t vxhostAlive(void) { return vxhost::alive(); }

VXStatus vxhostAliveText(char* text, size_t room) {
  if (text == nullptr || room == 0) return VX_E_NULL;
  text[0] = '\0';
  return guarded<VXStatus>(VX_E_MEMORY, [&] {
    const std::string whole = vxhost::alive_text();
    text[whole.copy(text, room - 1)] = '\0';
    return whole.size() < room ? 0 : VX_E_TRUNCATED;
  });
}

int64_t vxhostStrayReleases(void) { return vxhost::stray_releases(); }

}  // extern "C"
