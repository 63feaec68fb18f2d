#include "tests/support/failing_host.h"

#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>
#include <type_traits>
#include <utility>

#include "examples/own_host/own_host.h"
#include "tests/support/plain_locale.h"

namespace vxtest {

namespace {

using Host = FailingHost;

Host* current = nullptr;
thread_local size_t locks_held = 0;

// books

template <class Object>
Object* taken(Host& host, Object* object, std::string name, const void* owner = nullptr) {
  const std::lock_guard lock(host.books);
  host.things[object] = {std::move(name), owner};
  return object;
}

void complain(Host& host, std::string_view what, const void* object) {
  const std::lock_guard lock(host.books);
  host.complaints.push_back(std::string(what) + ' ' + host.things[object].name);
}

/// False, with a complaint, when the library does not hold the object.
bool given_back(Host& host, const void* object) {
  {
    const std::lock_guard lock(host.books);
    if (host.things.erase(object) != 0) return true;
  }
  return complain(host, "given back but not held", object), false;
}

/// Strikes out what lies in a pool or a track.
template <class Free>
void forget(Host& host, const void* owner, Free free) {
  const std::lock_guard lock(host.books);
  std::erase_if(host.things, [&](const auto& thing) {
    if (thing.second.owner == owner) free(thing.first);
    return thing.second.owner == owner;
  });
}

// How a call is told

std::string told(const VXChar* text, int64_t length) { return utf8(std::u32string(text, text + length)); }

// Attributes, which operations are given by pointers to constants.
template <class Argument>
constexpr bool is_structure = false;
template <class Pointee>
constexpr bool is_structure<const Pointee*> = std::is_class_v<Pointee>;

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
    } else if constexpr (is_structure<First>) {
      return tell(*first, rest...);
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
  template <class... Rest>
  void tell(const VXChar* text, int64_t length, Rest... rest) {
    out << ' ' << told(text, length);
    tell(rest...);
  }
  template <class... Rest>
  void tell(const VXChar* message, uint64_t extra, Rest... rest) {
    tell(message, qmzStrLen(message), extra, rest...);
  }
  template <class... Rest>
  void tell(const void* key, int64_t bytes, Rest... rest) {
    tell(static_cast<const VXChar*>(key), bytes / int64_t{sizeof(VXChar)}, rest...);
  }
};

/// 0, or the status with which this call fails.
template <class... Arguments>
VXStatus fault_of(Host& host, const char* operation, Arguments... arguments) {
  const int64_t first = host.first_failing.load(std::memory_order_relaxed);
  const int64_t call = first != 0 ? ++host.calls_since : 0;
  const bool fails = first != 0 && (call == first || (host.lasting && call > first));
  if (!fails && !host.tracing.load(std::memory_order_relaxed)) return 0;
  const std::lock_guard lock(host.books);
  Line line{host, {}};
  line.out << std::string(locks_held, ' ') << operation;
  line.tell(arguments...);
  if (host.tracing) host.traced.push_back(line.out.str());
  if (fails) host.failures.push_back(line.out.str());
  return fails ? host.fault_status.load() : 0;
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
    if (rubbish) std::memset(out, 0xA5, sizeof *out);
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
    (fail(arguments, fault, host.rubbish && named != "read_option"), ...);
    if constexpr (named == "lower" || named == "upper") return std::get<1>(std::tie(arguments...));
    else if constexpr (std::is_same_v<Result, VXStatus>) return fault;
    else return Result{};
  }
};
template <Name name, class Work>
constexpr Operation<name, Work> operation(Work) {
  return {};
}

constexpr VXPoolOps pool_ops = {
    operation<"allocate">([](Host& host, auto* pool, int64_t bytes, uint32_t flags) {
      void* const block = std::malloc(static_cast<size_t>(bytes));
      // What is not asked to be zero is anything but.
      std::memset(block, flags == VX_ZERO_FILL ? 0 : 0xA5, static_cast<size_t>(bytes));
      return taken(host, block, "block " + std::to_string(bytes), pool);
    }),
    operation<"free">([](Host& host, auto*, void* block) {
      if (given_back(host, block)) std::free(block);
    }),
    operation<"destroy_pool">([](Host& host, VXPool* pool) {
      if (!given_back(host, pool)) return;
      forget(host, pool, [](const void* block) { std::free(const_cast<void*>(block)); });
      delete pool;
    }),
};

std::thread::id holder_of(const VXLock* lock) { return static_cast<const own::Lock*>(lock)->holder; }

constexpr VXLockOps lock_ops = {
    operation<"acquire">([](Host& host, VXLock* lock, auto...) -> VXStatus {
      if (holder_of(lock) == std::this_thread::get_id()) return complain(host, "taken twice:", lock), VX_E_RANGE;
      ++locks_held;
      return own::Lock::acquire(lock, 1, 1);
    }),
    operation<"release_lock">([](Host& host, VXLock* lock) {
      if (holder_of(lock) != std::this_thread::get_id()) return complain(host, "released but not held:", lock);
      --locks_held;
      own::Lock::release(lock);
    }),
    operation<"destroy_lock">([](Host& host, VXLock* lock) {
      if (holder_of(lock) != std::thread::id()) complain(host, "destroyed while it is held:", lock);
      if (given_back(host, lock)) own::Lock::destroy(lock);
    }),
};

constexpr VXTrackOps track_ops = {
    operation<"find">([](Host& host, VXTrack* track, auto, auto, const void* key, int64_t bytes) {
      VXTrackEntry* const entry = own::Track::find(track, 0, 0, key, bytes);
      host.references += entry != nullptr;
      return entry;
    }),
    operation<"insert">(
        [](Host& host, VXTrack* track, auto, auto, void* payload, auto, auto* key, int64_t bytes, VXStatus* status) {
          VXTrackEntry* const entry = own::Track::insert(track, 0, 0, payload, 0, key, bytes, status);
          host.references += entry != nullptr;
          return entry != nullptr ? taken(host, entry, "entry", track) : entry;
        }),
    operation<"release_entry">([](Host& host, auto...) { --host.references; }),
    operation<"set_destroy">([](Host&, VXTrack* track, auto, VXTrackDestroy callback) {
      return own::Track::set_destroy(track, 0, callback);
    }),
    operation<"destroy_track">([](Host& host, VXTrack* track) {
      if (!given_back(host, track)) return;
      forget(host, track, [](const void*) {});
      own::Track::destroy(track);
    }),
};

constexpr auto write_nothing = [](Host&, auto...) { return 0; };
constexpr VXJournalOps journal_ops = {
    operation<"message_to_buffer">(write_nothing),
    operation<"message_to_journal">(write_nothing),
    operation<"status_to_buffer">(write_nothing),
    operation<"status_to_journal">(write_nothing),
    {},  // not called
    operation<"get_locale">([](Host&, VXJournal* journal, auto...) { return journal; })};

VXLogger* logger_of(Host& host) { return reinterpret_cast<VXLogger*>(&host.journal); }

constexpr VXLoggerServiceOps logger_ops = {
    operation<"find_logger">([](Host& host, auto...) { return host.has_logger ? logger_of(host) : nullptr; }),
    operation<"create_logger">([](Host& host, auto...) { return logger_of(host); }),
};

constexpr VXExtensionOps message_ops = {operation<"destroy_extension">([](Host& host, VXExtension* extension) {
  if (given_back(host, extension)) delete extension;
})};
VXStatus fill_in_english(Host&, auto*, VXLocaleData* data, auto...) {
  static const auto english = std::make_unique<PlainLocale>();
  const NLSName written = data->localeName;
  *data = english->data;
  return data->localeName = written, 0;
}
constexpr VXLocaleDatabaseOps locale_database_ops = {
    message_ops.destroy, operation<"fill">([](auto&&... given) { return fill_in_english(given...); })};
constexpr VXUnicodeDatabaseOps unicode_database_ops = {
    message_ops.destroy, operation<"test_class">([](Host&, auto*, uint32_t code_point, uint32_t bits) {
      return code_point == 0xE9 && (bits & 2) != 0;
    })};

template <class Made, class Ops>
auto* made(Host& host, const Ops& ops, const char* name) {
  auto* const object = own::make<Made>();
  object->ops = &ops;
  return taken(host, object, name);
}

constexpr VXHandleOps handle_ops = {
    operation<"create_pool">(
        [](Host& host, auto*, auto*, auto*, const char* name) { return taken(host, new VXPool{&pool_ops}, name); }),
    operation<"create_lock">(
        [](Host& host, auto*, auto*, auto*, const char* name) { return made<own::Lock>(host, lock_ops, name); }),
    operation<"create_track">(
        [](Host& host, auto*, auto*, auto*, const char* name) { return made<own::Track>(host, track_ops, name); }),
    operation<"create_journal">([](Host& host, auto...) { return &host.journal; }),
    operation<"load_extension">([](Host& host, auto*, const VXChar* name, int64_t length, auto) {
      // All tables begin with destroy, and the library takes the object for what it asked.
      const std::string asked = told(name, length);
      const void* const table = asked == "vxemsg"     ? static_cast<const void*>(&message_ops)
                                : asked == "vxnlsldb" ? static_cast<const void*>(&locale_database_ops)
                                                      : &unicode_database_ops;
      return taken(host, new VXExtension{static_cast<const VXExtensionOps*>(table)}, asked);
    }),
};

struct Zone {
  std::string_view name;
  int32_t offset;
};
constexpr Zone zones_known[] = {{"America/New_York", -18000}, {"Etc/UTC", 0}, {"Asia/Kolkata", 19800}};

const Zone* find_zone(std::string id) {
  id.erase(id.find_last_not_of(' ') + 1);
  if (strcasecmp(id.c_str(), "utc") == 0) id = "Etc/UTC";
  for (const Zone& zone : zones_known) {
    if (strcasecmp(zone.name.data(), id.c_str()) == 0) return &zone;
  }
  return nullptr;
}

VXStatus put_zone(Host& host, const Zone* zone, VXChar* out, int64_t* length) {
  if (zone == nullptr) return VX_E_ZONE;
  std::copy(zone->name.begin(), zone->name.end(), out);
  *length = host.claimed_zone_length.value_or(static_cast<int64_t>(zone->name.size()));
  return 0;
}

constexpr HostContextOps context_ops = {
    operation<"lookup_locale">([](Host& host, auto*, const VXChar* name, int64_t length, auto, auto** record) {
      static thread_local VXLocaleRecord found;
      found = {name, length};
      *record = host.record.value_or(&found);
      return host.record || (length >= 5 && name[2] == '_') ? 0 : VX_E_NOMATCH;
    }),
    operation<"normalise_zone">([](Host& host, auto*, const VXChar* id, int64_t length, auto, VXChar* out,
                                   int64_t* out_length,
                                   auto*) { return put_zone(host, find_zone(told(id, length)), out, out_length); }),
    operation<"os_zone">([](Host& host, auto*, VXChar* out, int64_t* length, auto) {
      return put_zone(host, find_zone(host.system_zone), out, length);
    }),
};

const Zone* rules_of(VXZone* zone) { return reinterpret_cast<Zone*>(zone); }

constexpr VXZoneServiceOps zone_ops = {
    operation<"open_zone">([](Host& host, auto*, const VXChar* id, int64_t length, auto) {
      const Zone* const zone = find_zone(told(id, length));
      Zone* const open = zone != nullptr ? taken(host, new Zone(*zone), std::string(zone->name)) : nullptr;
      return reinterpret_cast<VXZone*>(open);
    }),
    operation<"close_zone">([](Host& host, auto*, VXZone* zone) {
      if (given_back(host, zone)) delete rules_of(zone);
    }),
    operation<"zone_offset">([](Host&, auto*, VXZone* zone, auto...) { return rules_of(zone)->offset; }),
    operation<"describe_zone">(
        [](Host& host, auto*, VXZone* zone, auto, auto, VXChar* name, int64_t* length, int32_t* offset) {
          *offset = rules_of(zone)->offset;
          return put_zone(host, rules_of(zone), name, length);
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
      context{&context_ops, &kernel, &pool, nullptr, nullptr, own::make<own::Lock>(), nullptr, nullptr, &zones},
      journal{&journal_ops},
      loggers{&logger_ops},
      options{&option_ops},
      characters{&character_ops, nullptr, nullptr},
      pool{&pool_ops},
      zones{&zone_ops} {
  current = this;
  context.creationLock->ops = &lock_ops;
  things = {{&stored, {"stored", this}},   {&kernel, {"kernel", this}}, {&pool, {"pool", this}},
            {&journal, {"journal", this}}, {&zones, {"zones", this}},   {context.creationLock, {"creation", this}}};
}

FailingHost::~FailingHost() {
  close();
  own::Lock::destroy(context.creationLock);
  forget(*this, &pool, [](const void* block) { std::free(const_cast<void*>(block)); });
}

void FailingHost::fail_call(int64_t k, bool and_all_after, VXStatus status, bool with_rubbish) {
  failures.clear();
  calls_since = 0;
  lasting = and_all_after;
  rubbish = with_rubbish;
  fault_status = status;
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
  const auto units = [](std::u32string_view text) { return reinterpret_cast<const VXChar*>(text.data()); };
  const LocaleCreateOptions asked = {!shared, {}, units(zone), static_cast<int64_t>(zone.size())};
  return loaded_module->localeCreate(&context, units(name), static_cast<int64_t>(name.size()), status, &asked);
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
  fail_nothing();
  destroy_cache();
  if (NLSModule* const gone = std::exchange(loaded_module, nullptr)) gone->realDestroy(gone);
  for (auto* const cache : {reinterpret_cast<VXExtension**>(&context.localeDatabase),
                            reinterpret_cast<VXExtension**>(&characters.database)}) {
    if (VXExtension* const extension = std::exchange(*cache, nullptr)) extension->ops->destroy(extension);
  }
  if (Exported_VXHandle == &stored) vxextent(nullptr);
}

}  // namespace vxtest
