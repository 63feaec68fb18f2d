#include "tests/support/failing_host.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <tuple>
#include <type_traits>
#include <utility>

#include "tests/support/plain_locale.h"

namespace vxtest {

namespace {

using Host = FailingHost;

Host* current = nullptr;
thread_local size_t locks_held = 0;

// books

template <class Object>
Object* taken(Host& host, std::shared_ptr<Object> object, std::string name, const void* owner = nullptr) {
  const std::lock_guard lock(host.books);
  host.things[object.get()] = {std::move(name), owner, object};
  return object.get();
}

template <class Made>
auto* made(Host& host, const auto& ops, const char* name) {
  const auto object = std::make_shared<Made>();
  object->ops = &ops;
  return taken(host, object, name);
}

void complain(Host& host, std::string_view what, const void* object) {
  const std::lock_guard lock(host.books);
  host.complaints.append(what).append(host.things[object].name).append("\n");
}

/// The object for the last time, and all that lies in it; null, with a complaint, when the library does not hold it.
std::shared_ptr<void> given_back(Host& host, const void* object) {
  const std::unique_lock lock(host.books);
  const auto node = host.things.extract(object);
  std::erase_if(host.things, [&](const auto& thing) { return thing.second.owner == object; });
  if (node.empty()) host.complaints += "given back but not held\n";
  return node.empty() ? nullptr : node.mapped().object;
}

// How a call is told

std::string told(const VXChar* text, int64_t length) { return utf8(std::u32string(text, text + length)); }

struct Line {
  const Host& host;
  std::ostringstream out;

  void tell() {}
  template <class First, class... Rest>
  void tell(First first, Rest... rest) {
    if constexpr (std::is_same_v<First, const char*>) {
      out << ' ' << first;
    } else if constexpr (std::is_same_v<First, int64_t*>) {  // the room for a text, or a preset
      out << " [" << *first << ']';
    } else if constexpr (std::is_arithmetic_v<First>) {
      out << ' ' << (std::is_unsigned_v<First> ? std::hex : std::dec) << first << std::dec;
    } else if constexpr (std::is_pointer_v<First>) {
      const auto known = host.things.find(reinterpret_cast<const void*>(first));
      const bool is_one = reinterpret_cast<uintptr_t>(first) == 1;
      out << ' ' << (known != host.things.end() ? known->second.name : is_one ? "1" : first != nullptr ? "*" : "null");
    } else {
      const auto* const bytes = reinterpret_cast<const uint8_t*>(&first);
      for (size_t i = 0; i < sizeof first; ++i) {
        if (bytes[i] != 0) out << " @" << i << '=' << std::hex << int{bytes[i]} << std::dec;
      }
    }
    tell(rest...);
  }
  template <class Attributes, class... Rest>
  requires std::is_class_v<Attributes>
  void tell(const Attributes* attributes, Rest... rest) { tell(*attributes, rest...); }
  template <class... Rest>
  void tell(const VXChar* text, int64_t length, Rest... rest) {
    out << ' ' << told(text, length);
    tell(rest...);
  }
  template <class... Rest>
  void tell(const void* key, int64_t bytes, Rest... rest) {
    tell(static_cast<const VXChar*>(key), bytes / int64_t{sizeof(VXChar)}, rest...);
  }
};

/// 0, or the status with which this call fails.
template <class... Arguments>
VXStatus fault_of(Host& host, const char* operation, Arguments... arguments) {
  const std::lock_guard lock(host.books);
  const int64_t later = ++host.calls_since - host.first_failing;
  const bool fails = host.first_failing != 0 && (later == 0 || (host.fault.lasting && later > 0));
  if (!fails && host.traced == nullptr) return 0;
  Line line{host, {}};
  line.out << std::string(locks_held, ' ') << operation;
  line.tell(arguments...);
  if (host.traced != nullptr) *host.traced += line.out.str() + '\n';
  if (fails) host.failures.push_back(line.out.str());
  return fails ? host.fault.status : 0;
}

// Operations: what all have in common, and then what each does

/// Leaves in an out argument what a failing operation may leave there: a status, which has the type of a unit, or
/// rubbish. Texts have room for more.
template <class Argument>
void fail(Argument out, VXStatus status, bool rubbish) {
  if constexpr (std::is_same_v<Argument, VXStatus*>) {
    *out = status;
  } else if constexpr (std::is_same_v<Argument, int64_t*> || std::is_same_v<Argument, int32_t*> ||
                       std::is_same_v<Argument, uint64_t*> || std::is_same_v<Argument, const VXLocaleRecord**> ||
                       std::is_same_v<Argument, VXLocaleData*>) {
    if (rubbish) std::memset(out, 0xA5, sizeof *out);  // NOLINT(bugprone-sizeof-expression): pointers, too
  }
}

template <size_t size>
struct Name {
  char text[size];
  constexpr Name(const char (&name)[size]) { std::copy_n(name, size, text); }
};

/// Stands for the function of any table: what the operation is, `work` does. One that gives something back has no
/// result, and does so also when it fails.
template <Name name, class Work>
struct Operation {
  template <class Result, class... Arguments>
  using Function = Result(Arguments...);
  template <class Result, class... Arguments>
  constexpr operator Function<Result, Arguments...>*() const {
    return &call<Result, Arguments...>;
  }

  template <class Result, class... Arguments>
  static Result call(Arguments... arguments) {
    constexpr std::string_view named = name.text;
    Host& host = *current;
    const VXStatus fault = fault_of(host, name.text, arguments...);
    const bool remarks =
        (named == "lookup_locale" && fault == VX_W_SUBSTITUTE) || (named == "fill" && fault == VX_W_FILL);
    if constexpr (std::is_void_v<std::invoke_result_t<Work, Host&, Arguments...>>) {
      Work()(host, arguments...);
      return fault;
    } else if (fault == 0 || remarks) {
      const auto result = static_cast<Result>(Work()(host, arguments...));
      if constexpr (std::is_same_v<Result, VXStatus>) return result != 0 ? result : fault;
      else return result;
    }
    // Nobody looks at the status of read_option, so what it leaves is meant.
    (fail(arguments, fault, host.fault.rubbish && named != "read_option"), ...);
    if constexpr (named == "lower" || named == "upper") return std::get<1>(std::tie(arguments...));
    else if constexpr (std::is_same_v<Result, VXStatus>) return fault;
    else return Result{};
  }
};
template <Name name, class Work>
constexpr Operation<name, Work> operation(Work) {
  return {};
}

constexpr auto give_back = [](Host& host, auto*... objects) {
  given_back(host, std::get<sizeof...(objects) - 1>(std::tie(objects...)));
};
constexpr auto write_nothing = [](Host&, auto...) { return 0; };

constexpr VXPoolOps pool_ops = {operation<"allocate">([](Host& host, auto* pool, int64_t bytes, uint32_t flags) {
                                  const auto size = static_cast<size_t>(bytes);
                                  const std::shared_ptr<void> block(std::malloc(size), std::free);
                                  // What is not asked to be zero is anything but.
                                  std::memset(block.get(), flags == VX_ZERO_FILL ? 0 : 0xA5, size);
                                  return taken(host, block, "block " + std::to_string(bytes), pool);
                                }),
                                operation<"free">(give_back), operation<"destroy_pool">(give_back)};

std::thread::id holder_of(const VXLock* lock) { return static_cast<const own::Lock*>(lock)->holder; }

constexpr VXLockOps lock_ops = {
    operation<"acquire">([](Host& host, VXLock* lock, auto...) -> VXStatus {
      if (holder_of(lock) == std::this_thread::get_id()) return complain(host, "taken twice: ", lock), VX_E_RANGE;
      ++locks_held;
      return own::Lock::acquire(lock, 1, 1);
    }),
    operation<"release_lock">([](Host& host, VXLock* lock) {
      if (holder_of(lock) != std::this_thread::get_id()) return complain(host, "released but not held: ", lock);
      --locks_held;
      own::Lock::release(lock);
    }),
    operation<"destroy_lock">([](Host& host, VXLock* lock) {
      if (holder_of(lock) != std::thread::id()) complain(host, "destroyed while it is held: ", lock);
      given_back(host, lock);
    }),
};

VXTrackEntry* referenced(Host& host, VXTrackEntry* entry, VXTrack* track) {
  const std::lock_guard lock(host.books);
  if (entry != nullptr) ++host.references, host.things[entry] = {"entry", track, nullptr};
  return entry;
}
constexpr VXTrackOps track_ops = {
    operation<"find">([](Host& host, VXTrack* track, auto... given) {
      return referenced(host, own::Track::find(track, given...), track);
    }),
    operation<"insert">([](Host& host, VXTrack* track, auto... given) {
      return referenced(host, own::Track::insert(track, given...), track);
    }),
    operation<"release_entry">([](Host& host, auto...) {
      const std::lock_guard lock(host.books);
      --host.references;
    }),
    operation<"set_destroy">([](Host&, auto... given) { return own::Track::set_destroy(given...); }),
    operation<"destroy_track">([](Host& host, VXTrack* self) {
      const auto track = std::static_pointer_cast<own::Track>(given_back(host, self));
      if (track == nullptr || track->callback == nullptr) return;
      for (auto& [key, entry] : track->entries) track->callback(&entry);
    }),
};

constexpr VXJournalOps journal_ops = {
    operation<"message_to_buffer">(write_nothing),
    operation<"message_to_journal">(write_nothing),
    operation<"status_to_buffer">(write_nothing),
    operation<"status_to_journal">(write_nothing),
    {},  // not called
    operation<"get_locale">([](Host&, VXJournal* journal, auto...) { return journal; })};

constexpr auto give_logger = [](Host& host, auto...) { return reinterpret_cast<VXLogger*>(&host.journal); };
constexpr VXLoggerServiceOps logger_ops = {operation<"find_logger">(give_logger),
                                           operation<"create_logger">(give_logger)};

constexpr VXExtensionOps message_ops = {operation<"destroy_extension">(give_back)};
constexpr VXLocaleDatabaseOps locale_database_ops = {message_ops.destroy,
                                                     operation<"fill">([](Host&, auto*, VXLocaleData* data, auto...) {
                                                       static const PlainLocale english;
                                                       const NLSName written = data->localeName;
                                                       *data = english.data;
                                                       return data->localeName = written, 0;
                                                     })};
constexpr VXUnicodeDatabaseOps unicode_database_ops = {
    message_ops.destroy, operation<"test_class">([](Host&, auto*, uint32_t code_point, uint32_t bits) {
      return code_point == 0xE9 && (bits & 2) != 0;
    })};

constexpr VXHandleOps handle_ops = {
    operation<"create_pool">(
        [](Host& host, auto*, auto*, auto*, auto* name) { return made<VXPool>(host, pool_ops, name); }),
    operation<"create_lock">(
        [](Host& host, auto*, auto*, auto*, auto* name) { return made<own::Lock>(host, lock_ops, name); }),
    operation<"create_track">(
        [](Host& host, auto*, auto*, auto*, auto* name) { return made<own::Track>(host, track_ops, name); }),
    operation<"create_journal">([](Host& host, auto...) { return &host.journal; }),
    operation<"load_extension">([](Host& host, auto*, const VXChar* name, int64_t length, auto) {
      // All tables begin with destroy, and the library takes the object for what it asked.
      const std::string asked = told(name, length);
      const void* const table = asked == "vxemsg"     ? static_cast<const void*>(&message_ops)
                                : asked == "vxnlsldb" ? static_cast<const void*>(&locale_database_ops)
                                                      : &unicode_database_ops;
      return made<VXExtension>(host, *static_cast<const VXExtensionOps*>(table), asked.c_str());
    }),
};

VXStatus put_zone(Host& host, const VXChar* id, int64_t length, VXChar* out, int64_t* written) {
  const VXStatus status = normalise_zone(nullptr, id, length, {}, out, written, nullptr);
  if (status == 0) *written = host.claimed_zone_length.value_or(*written);
  return status;
}

constexpr HostContextOps context_ops = {
    operation<"lookup_locale">([](Host& host, auto*, const VXChar* name, int64_t length, auto, auto** record) {
      static thread_local VXLocaleRecord found;
      found = {name, length};
      *record = host.record.value_or(&found);
      return host.record || (length >= 5 && name[2] == '_') ? 0 : VX_E_NOMATCH;
    }),
    operation<"normalise_zone">([](Host& host, auto*, auto* id, int64_t n, auto, auto* out, auto* length, auto*) {
      return put_zone(host, id, n, out, length);
    }),
    operation<"os_zone">([](Host& host, auto*, VXChar* out, int64_t* length, auto) {
      return put_zone(host, units(host.system_zone), std::ssize(host.system_zone), out, length);
    }),
};

VXZone* rules_of(VXZone* zone) { return *reinterpret_cast<VXZone**>(zone); }

constexpr VXZoneServiceOps zone_ops = {
    operation<"open_zone">([](Host& host, auto* service, const VXChar* id, int64_t length, auto flags) {
      VXZone* const rules = zone_rules.open(service, id, length, flags);
      auto* const open = rules != nullptr ? taken(host, std::make_shared<VXZone*>(rules), told(id, length)) : nullptr;
      return reinterpret_cast<VXZone*>(open);
    }),
    operation<"close_zone">(give_back),
    operation<"zone_offset">([](Host&, auto* service, VXZone* zone, auto... when) {
      return zone_rules.offset(service, rules_of(zone), when...);
    }),
    operation<"describe_zone">([](Host&, auto* service, VXZone* zone, auto... given) {
      return zone_rules.describe(service, rules_of(zone), given...);
    }),
};

constexpr VXOptionServiceOps option_ops = {
    operation<"read_option">([](Host&, auto*, auto*, auto, auto, int64_t* cell) { return *cell = 1900, 0; })};

constexpr VXNormaliserOps normaliser_ops = {
    nullptr, operation<"compare">(
                 [](Host&, auto*, auto* a, int64_t length_a, auto* b, int64_t length_b, auto, VXStatus* status) {
                   *status = 0;
                   return std::string(a, a + length_a).compare(std::string(b, b + length_b));
                 })};

constexpr VXCharDataOps character_ops = {
    operation<"lower">([](Host&, auto*, uint32_t c, auto) { return c == 0xC9 ? 0xE9 : c; }),
    operation<"upper">([](Host&, auto*, uint32_t c, auto) { return c == 0xE9 ? 0xC9 : c; }),
    operation<"create_normaliser">([](Host&, auto...) {
      static VXNormaliser normaliser = {&normaliser_ops};
      return &normaliser;
    }),
};

}  // namespace

FailingHost::FailingHost()
    : stored{&handle_ops, nullptr, &options, &characters, nullptr},
      kernel{&handle_ops, &loggers, nullptr, nullptr, nullptr},
      context{&context_ops, &kernel, &pool, nullptr, nullptr, nullptr, nullptr, nullptr, &zones},
      journal{&journal_ops},
      loggers{&logger_ops},
      options{&option_ops},
      characters{&character_ops, nullptr, nullptr},
      pool{&pool_ops},
      zones{&zone_ops} {
  current = this;
  context.creationLock = made<own::Lock>(*this, lock_ops, "creation");
  things[context.creationLock].owner = this;
  for (const auto& [object, name] : {std::pair<void*, const char*>{&stored, "stored"},
                                     {&kernel, "kernel"},
                                     {&pool, "pool"},
                                     {&journal, "journal"},
                                     {&zones, "zones"}}) {
    things[object] = {name, this, nullptr};
  }
}

void FailingHost::fail_call(int64_t k, Fault how) {
  if (k != 0) failures.clear();
  calls_since = 0;
  fault = how;
  first_failing = k;
}

Holdings FailingHost::holdings() {
  const std::lock_guard lock(books);
  Holdings held;
  for (const auto& [object, thing] : things) {
    const bool cached = object == context.localeDatabase || object == characters.database;
    if (thing.owner != this && !cached) ++held[thing.name];
  }
  if (references != 0) held["reference"] = references;
  if (holder_of(context.creationLock) != std::thread::id()) ++held["the creation lock"];
  return held;
}

bool FailingHost::load_module() {
  int64_t major = 0, minor = 0;
  if (vxextver(&stored, &major, &minor) != 0) return false;
  loaded_module = vxnlsloc(&kernel, &journal);
  return loaded_module != nullptr;
}

bool FailingHost::make_cache() {
  VXLocale* const first = create(U"en_US", nullptr);
  if (first == nullptr) return false;
  context.localeCache = first->ops.NLSLocaleCreateTheDupTrack(first);
  destroy_private(first);
  return context.localeCache != nullptr;
}

VXLocale* FailingHost::create(std::u32string_view name, VXStatus* status, std::u32string_view zone, bool shared) {
  const LocaleCreateOptions asked = {!shared, {}, units(zone), std::ssize(zone)};
  return loaded_module->localeCreate(&context, units(name), std::ssize(name), status, &asked);
}

void FailingHost::destroy_private(VXLocale* locale) {
  VXTrackEntry entry = {{nullptr, nullptr}, locale};
  loaded_module->localeDestroyCallback(&entry);
}

void FailingHost::destroy_cache() {
  VXTrack* const cache = std::exchange(context.localeCache, nullptr);
  if (cache != nullptr) cache->ops->destroy(cache);
}

void FailingHost::close() {
  fail_call(0);
  destroy_cache();
  if (NLSModule* const gone = std::exchange(loaded_module, nullptr)) gone->realDestroy(gone);
  for (auto* const cache : {reinterpret_cast<VXExtension**>(&context.localeDatabase),
                            reinterpret_cast<VXExtension**>(&characters.database)}) {
    if (VXExtension* const extension = std::exchange(*cache, nullptr)) extension->ops->destroy(extension);
  }
  if (Exported_VXHandle == &stored) vxextent(nullptr);
}

}  // namespace vxtest
