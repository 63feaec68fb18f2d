#include "tests/support/failing_host.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <ostream>
#include <set>
#include <thread>

#include "tests/support/plain_locale.h"

namespace vxtest {

namespace {

std::u32string text_of(const VXChar* text, int64_t length) { return std::u32string(text, text + length); }

template <class Bytes>
bool all_zero(const Bytes& bytes) {
  for (const uint8_t byte : bytes) {
    if (byte != 0) return false;
  }
  return true;
}

struct ZoneRule {
  std::u32string_view id;
  int32_t offset;
};
constexpr ZoneRule zone_rules[] = {{U"America/New_York", -18000}, {U"Etc/UTC", 0}, {U"Asia/Kolkata", 19800}};

std::u32string lower_ascii(std::u32string text) {
  for (char32_t& c : text) c += c >= U'A' && c <= U'Z' ? U'a' - U'A' : 0;
  return text;
}

const ZoneRule* find_rule(std::u32string id) {
  while (!id.empty() && id.back() == U' ') id.pop_back();
  id = lower_ascii(id);
  if (id == U"utc") id = U"etc/utc";
  for (const ZoneRule& rule : zone_rules) {
    if (lower_ascii(std::u32string(rule.id)) == id) return &rule;
  }
  return nullptr;
}

/// Two cased pairs, one of which changes its length in UTF-8, a combining mark and a digit.
struct Character {
  uint32_t code_point, class_bits, lower, upper;
};
constexpr Character characters[] = {
    {0x00C9, 0x1, 0x00E9, 0x00C9},    {0x00E9, 0x2, 0x00E9, 0x00C9},    {0x023A, 0x1, 0x2C65, 0x023A},
    {0x2C65, 0x2, 0x2C65, 0x023A},    {0x0301, 0x8, 0x0301, 0x0301},    {0x0664, 0x40, 0x0664, 0x0664},
    {0x10400, 0x1, 0x10428, 0x10400}, {0x10428, 0x2, 0x10428, 0x10400},
};

const Character* find_character(uint32_t code_point) {
  for (const Character& c : characters) {
    if (c.code_point == code_point) return &c;
  }
  return nullptr;
}

/// An object of the interface that knows the host it belongs to.
template <class Object>
struct Of : Object {
  HostState* host;
};

}  // namespace

struct HostState {
  // Faults. The fast path takes no lock, so that the host orders threads as little as it can.
  std::atomic<int64_t> first_failing{0};  // 0: nothing fails
  std::atomic<bool> lasting{false}, rubbish{false};
  std::atomic<VXStatus> fault_status{0};
  std::atomic<int64_t> calls_since{0};
  std::atomic<bool> tracing{false};
  std::array<std::atomic<int64_t>, operation_count> calls{};

  mutable std::mutex books;
  std::vector<Failure> failures;
  std::vector<std::string> trace;
  std::vector<std::string> complaints;
  std::vector<JournalLine> journal_lines;
  struct Block {
    VXPool* pool;
    int64_t bytes;
  };
  std::map<void*, Block> blocks;
  std::set<const void*> pools, locks, tracks, entries, extensions, zones;
  std::vector<std::unique_ptr<Of<VXJournal>>> journals;
  std::vector<std::unique_ptr<std::u32string>> loggers;
  std::vector<std::unique_ptr<Of<VXNormaliser>>> normalisers;
  std::atomic<int64_t> entry_references{0};
  std::atomic<int64_t> stray_releases{0};

  FailingHost::Answers answers;
  NLSModule* module = nullptr;
  std::u32string found_name;
  VXLocaleRecord record{};

  Of<VXHandle> stored{}, kernel{};
  Of<VXLoggerService> logger_service{};
  Of<VXOptionService> options{};
  Of<VXCharData> characters{};
  VXRuntime runtime{};
  Of<VXPool> pool{};
  VXLock* creation_lock = nullptr;
  Of<VXZoneService> zone_service{};
  Of<VXJournal> journal{};
  Of<HostContext> context{};

  HostState();
  ~HostState();

  /// 0, or the status with which this call fails.
  VXStatus fault(Op op, std::string_view about) {
    ++calls[static_cast<size_t>(op)];
    if (tracing.load(std::memory_order_relaxed)) {
      const std::lock_guard lock(books);
      std::string call = name_of(op);
      if (!about.empty()) call.append(" ").append(about);
      trace.push_back(std::move(call));
    }
    const int64_t first = first_failing.load(std::memory_order_relaxed);
    if (first == 0) return 0;
    const int64_t call = ++calls_since;
    if (call != first && !(lasting && call > first)) return 0;
    const std::lock_guard lock(books);
    failures.push_back({op, std::string(about)});
    return fault_status;
  }
  /// The same for an operation with these out arguments, which may be full of rubbish when it fails.
  template <class... Out>
  VXStatus fault(Op op, std::string_view about, Out*... out) {
    const VXStatus status = fault(op, about);
    if (status != 0 && rubbish.load(std::memory_order_relaxed)) (std::memset(out, 0xA5, sizeof *out), ...);
    return status;
  }

  void require(bool kept, std::string_view what) {
    if (kept) return;
    const std::lock_guard lock(books);
    complaints.emplace_back(what);
  }

  void taken(std::set<const void*>& book, const void* object) {
    const std::lock_guard lock(books);
    book.insert(object);
  }

  bool given_back(std::set<const void*>& book, const void* object, const char* what) {
    bool known = false;
    {
      const std::lock_guard lock(books);
      known = book.erase(object) != 0;
    }
    require(known, std::string("given back but not held: ") + what);
    return known;
  }
};

namespace {

struct Lock : Of<VXLock> {
  std::string name;
  std::mutex mutex;
  std::atomic<std::thread::id> holder{};
};

struct Entry : VXTrackEntry {
  std::atomic<int64_t> references{0};
};

struct Track : Of<VXTrack> {
  std::string name;
  std::mutex mutex;
  std::map<std::string, std::unique_ptr<Entry>> entries;
  VXTrackDestroy callback = nullptr;
};

struct Zone {
  const ZoneRule* rule;
};

HostState* host_of(const auto* object) {
  return static_cast<const Of<std::remove_cvref_t<decltype(*object)>>*>(object)->host;
}

// pools

void* allocate(VXPool* pool, int64_t bytes, uint32_t flags) {
  HostState* const host = host_of(pool);
  host->require(bytes > 0 && (flags == 0 || flags == VX_ZERO_FILL), "allocate: bytes or flags");
  if (host->fault(Op::allocate, std::to_string(bytes)) != 0) return nullptr;
  void* const block = std::malloc(static_cast<size_t>(bytes));
  // What is not asked to be zero is anything but.
  std::memset(block, flags == VX_ZERO_FILL ? 0 : 0xA5, static_cast<size_t>(bytes));
  const std::lock_guard lock(host->books);
  host->blocks[block] = {pool, bytes};
  return block;
}

VXStatus free_block(VXPool* pool, void* block) {
  HostState* const host = host_of(pool);
  int64_t bytes = 0;
  {
    const std::lock_guard lock(host->books);
    const auto at = host->blocks.find(block);
    if (at != host->blocks.end() && at->second.pool == pool) {
      bytes = at->second.bytes;
      host->blocks.erase(at);
    }
  }
  host->require(bytes != 0, "free: not a block of this pool");
  if (bytes != 0) std::free(block);
  return host->fault(Op::free, std::to_string(bytes));
}

VXStatus destroy_pool(VXPool* pool) {
  HostState* const host = host_of(pool);
  if (host->given_back(host->pools, pool, "pool")) {
    const std::lock_guard lock(host->books);
    std::erase_if(host->blocks, [pool](const auto& block) {
      if (block.second.pool != pool) return false;
      std::free(block.first);
      return true;
    });
    delete static_cast<Of<VXPool>*>(pool);
  }
  return host->fault(Op::destroy_pool, "");
}

constexpr VXPoolOps pool_ops = {&allocate, &free_block, &destroy_pool};

VXPool* create_pool(VXHandle* handle, const VXPoolAttributes* attributes, VXJournal*, const char* name) {
  HostState* const host = host_of(handle);
  host->require(attributes->flags == 0x800000 && all_zero(attributes->zero), "create_pool: attributes");
  if (host->fault(Op::create_pool, name) != 0) return nullptr;
  auto* const pool = new Of<VXPool>{{&pool_ops}, host};
  host->taken(host->pools, pool);
  return pool;
}

// locks

VXStatus acquire(VXLock* object, uint32_t one, uint32_t also_one) {
  auto* const lock = static_cast<Lock*>(object);
  lock->host->require(one == 1 && also_one == 1, "acquire: arguments");
  const bool twice = lock->holder == std::this_thread::get_id();
  lock->host->require(!twice, "acquire: held already: " + lock->name);
  if (const VXStatus status = lock->host->fault(Op::acquire, lock->name); status != 0 || twice) return status;
  lock->mutex.lock();
  lock->holder = std::this_thread::get_id();
  return 0;
}

VXStatus release_lock(VXLock* object) {
  auto* const lock = static_cast<Lock*>(object);
  const VXStatus status = lock->host->fault(Op::release_lock, lock->name);
  if (lock->holder != std::this_thread::get_id()) {
    ++lock->host->stray_releases;
    return status;
  }
  lock->holder = std::thread::id();
  lock->mutex.unlock();
  return status;
}

VXStatus destroy_lock(VXLock* object) {
  auto* const lock = static_cast<Lock*>(object);
  HostState* const host = lock->host;
  host->require(lock->holder.load() == std::thread::id(), "destroy: a lock that is held: " + lock->name);
  const VXStatus status = host->fault(Op::destroy_lock, lock->name);
  if (host->given_back(host->locks, object, "lock")) delete lock;
  return status;
}

constexpr VXLockOps lock_ops = {&acquire, &release_lock, &destroy_lock};

Lock* new_lock(HostState* host, const char* name) {
  auto* const lock = new Lock;
  lock->ops = &lock_ops;
  lock->host = host;
  lock->name = name;
  return lock;
}

VXLock* create_lock(VXHandle* handle, const VXLockAttributes* attributes, VXJournal*, const char* name) {
  HostState* const host = host_of(handle);
  host->require(handle == &host->kernel, "create_lock: through the stored handle");
  host->require(all_zero(attributes->zero), "create_lock: attributes");
  if (host->fault(Op::create_lock, name) != 0) return nullptr;
  Lock* const lock = new_lock(host, name);
  host->taken(host->locks, static_cast<VXLock*>(lock));
  return lock;
}

// tracks

std::string key_of(const void* key, int64_t bytes) {
  return std::string(static_cast<const char*>(key), static_cast<size_t>(bytes));
}

VXTrackEntry* refer(HostState* host, Entry* entry) {
  ++entry->references;
  ++host->entry_references;
  return entry;
}

VXTrackEntry* find(VXTrack* object, uint32_t flags, uint64_t zero, const void* key, int64_t bytes) {
  auto* const track = static_cast<Track*>(object);
  track->host->require(flags == VX_TRACK_FIND && zero == 0 && bytes >= 0, "find: arguments");
  if (track->host->fault(Op::find, track->name) != 0) return nullptr;
  const std::lock_guard lock(track->mutex);
  const auto at = track->entries.find(key_of(key, bytes));
  return at != track->entries.end() ? refer(track->host, at->second.get()) : nullptr;
}

VXTrackEntry* insert(VXTrack* object, uint32_t flags, uint64_t zero, void* payload, uint64_t zero2, const void* key,
                     int64_t bytes, VXStatus* status) {
  auto* const track = static_cast<Track*>(object);
  HostState* const host = track->host;
  host->require(flags == VX_TRACK_INSERT && zero == 0 && zero2 == 0 && bytes >= 0, "insert: arguments");
  *status = host->fault(Op::insert, track->name);
  if (*status != 0) return nullptr;
  const std::lock_guard lock(track->mutex);
  auto& place = track->entries[key_of(key, bytes)];
  if (place != nullptr) {
    *status = key_exists;
    return nullptr;
  }
  place = std::make_unique<Entry>();
  place->payload = payload;
  host->taken(host->entries, place.get());
  return refer(host, place.get());
}

VXStatus release_entry(VXTrack* object, VXTrackEntry* entry) {
  auto* const track = static_cast<Track*>(object);
  auto* const known = static_cast<Entry*>(entry);
  track->host->require(--known->references >= 0, "release: no reference left");
  --track->host->entry_references;
  return track->host->fault(Op::release_entry, track->name);
}

VXStatus set_destroy(VXTrack* object, uint64_t zero, VXTrackDestroy callback) {
  auto* const track = static_cast<Track*>(object);
  track->host->require(zero == 0, "set_destroy: arguments");
  if (const VXStatus status = track->host->fault(Op::set_destroy, track->name); status != 0) return status;
  track->callback = reinterpret_cast<uintptr_t>(callback) == 1 ? nullptr : callback;
  return 0;
}

VXStatus destroy_track(VXTrack* object) {
  auto* const track = static_cast<Track*>(object);
  HostState* const host = track->host;
  const VXStatus status = host->fault(Op::destroy_track, track->name);
  if (!host->given_back(host->tracks, object, "track")) return status;
  for (const auto& [key, entry] : track->entries) {
    host->require(entry->references == 0, "destroy: an entry that is referred to: " + track->name);
    if (track->callback != nullptr) track->callback(entry.get());
    host->given_back(host->entries, entry.get(), "entry");
  }
  delete track;
  return status;
}

constexpr VXTrackOps track_ops = {&find, &insert, &release_entry, &set_destroy, &destroy_track};

VXTrack* create_track(VXHandle* handle, const VXTrackAttributes* attributes, VXJournal*, const char* name) {
  HostState* const host = host_of(handle);
  host->require(handle == &host->kernel, "create_track: through the stored handle");
  host->require(attributes->one == 1 && attributes->zero4 == 0 && attributes->zero8 == 0 && attributes->one16 == 1 &&
                    attributes->flags24 == 0x20000000 && all_zero(attributes->zero28),
                "create_track: attributes");
  if (host->fault(Op::create_track, name) != 0) return nullptr;
  auto* const track = new Track;
  track->ops = &track_ops;
  track->host = host;
  track->name = name;
  host->taken(host->tracks, static_cast<VXTrack*>(track));
  return track;
}

// journals and loggers

VXStatus message_to_buffer(VXJournal* journal, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t, va_list) {
  return host_of(journal)->fault(Op::message_to_buffer, "");
}

VXStatus status_to_buffer(VXJournal* journal, int64_t, uint64_t, uint64_t, uint64_t, va_list) {
  return host_of(journal)->fault(Op::status_to_buffer, "");
}

VXStatus write_line(HostState* host, Op op, JournalLine line) {
  if (const VXStatus status = host->fault(op, ""); status != 0) return status;
  const std::lock_guard lock(host->books);
  host->journal_lines.push_back(std::move(line));
  return 0;
}

VXStatus message_to_journal(VXJournal* journal, uint32_t level, const VXChar* message, uint64_t, va_list) {
  int64_t length = 0;
  while (message[length] != 0) ++length;
  return write_line(host_of(journal), Op::message_to_journal, {level, 0, text_of(message, length)});
}

VXStatus status_to_journal(VXJournal* journal, uint32_t level, int64_t status, va_list) {
  return write_line(host_of(journal), Op::status_to_journal, {level, status, {}});
}

void* get_locale(VXJournal* journal, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t) {
  return host_of(journal)->fault(Op::get_locale, "") != 0 ? nullptr : journal;
}

constexpr VXJournalOps journal_ops = {
    &message_to_buffer, &message_to_journal, &status_to_buffer, &status_to_journal, {}, &get_locale};

VXJournal* create_journal(VXHandle* handle, const VXJournalAttributes* attributes, uint64_t zero, const char* name) {
  HostState* const host = host_of(handle);
  host->require(handle == &host->kernel, "create_journal: through the stored handle");
  host->require(zero == 0 && all_zero(attributes->zero), "create_journal: arguments");
  if (host->fault(Op::create_journal, name) != 0) return nullptr;
  const std::lock_guard lock(host->books);
  host->journals.push_back(std::make_unique<Of<VXJournal>>(Of<VXJournal>{{&journal_ops}, host}));
  return host->journals.back().get();
}

VXLogger* new_logger(HostState* host, const VXChar* name, int64_t length) {
  const std::lock_guard lock(host->books);
  host->loggers.push_back(std::make_unique<std::u32string>(text_of(name, length)));
  return reinterpret_cast<VXLogger*>(host->loggers.back().get());
}

VXLogger* find_logger(VXLoggerService* service, const VXChar* name, int64_t length) {
  HostState* const host = host_of(service);
  host->require(text_of(name, length) == U"App.NLS", "find_logger: name");
  if (host->fault(Op::find_logger, "") != 0 || !host->answers.logger_exists) return nullptr;
  return new_logger(host, name, length);
}

VXLogger* create_logger(VXLoggerService* service, const VXChar* name, int64_t length) {
  HostState* const host = host_of(service);
  host->require(text_of(name, length) == U"App.NLS", "create_logger: name");
  return host->fault(Op::create_logger, "") != 0 ? nullptr : new_logger(host, name, length);
}

constexpr VXLoggerServiceOps logger_ops = {&find_logger, &create_logger};

// extensions

struct Extension : Of<VXExtension> {
  std::string name;
};

VXStatus destroy_extension(VXExtension* extension) {
  auto* const object = static_cast<Extension*>(extension);
  HostState* const host = object->host;
  const VXStatus status = host->fault(Op::destroy_extension, object->name);
  if (host->given_back(host->extensions, extension, "extension")) delete object;
  return status;
}

VXStatus fill(VXLocaleDatabase* database, VXLocaleData* data, const VXChar* name, int64_t length) {
  HostState* const host = reinterpret_cast<Extension*>(database)->host;
  const int64_t kept = std::min<int64_t>(length, 60);
  host->require(data->localeName.length == kept && text_of(data->localeName.text, kept) == text_of(name, kept),
                "fill: the name does not stand in the record");
  const NLSName written = data->localeName;
  VXStatus status = host->fault(Op::fill, "", data);
  if (status == 0) status = host->answers.fill_status;
  if (status != 0 && status != VX_W_FILL) return status;
  static const auto english = std::make_unique<PlainLocale>();
  *data = english->data;
  data->localeName = written;
  return status;
}

int32_t test_class(VXUnicodeDatabase* database, uint32_t code_point, uint32_t class_bits) {
  HostState* const host = reinterpret_cast<Extension*>(database)->host;
  if (host->fault(Op::test_class, "") != 0) return 0;
  const Character* const known = find_character(code_point);
  return known != nullptr && (known->class_bits & class_bits) != 0 ? 1 : 0;
}

constexpr VXExtensionOps message_ops = {&destroy_extension};
constexpr VXLocaleDatabaseOps locale_database_ops = {&destroy_extension, &fill};
constexpr VXUnicodeDatabaseOps unicode_database_ops = {&destroy_extension, &test_class};

/// An extension under its own table: all tables begin with destroy, and the library takes the object for what it asked.
VXExtension* load_extension(VXHandle* handle, const VXChar* name, int64_t length, uint64_t zero) {
  const struct {
    std::u32string_view name;
    const void* ops;
    bool stored;
  } known[] = {{U"vxemsg", &message_ops, true},
               {U"vxnlsldb", &locale_database_ops, false},
               {U"vxnlsudb", &unicode_database_ops, true}};
  HostState* const host = host_of(handle);
  const std::u32string asked = text_of(name, length);
  host->require(zero == 0, "load_extension: arguments");
  if (host->fault(Op::load_extension, utf8(asked)) != 0) return nullptr;
  for (const auto& extension : known) {
    if (extension.name != asked) continue;
    host->require((handle == &host->stored) == extension.stored, "load_extension: through the wrong handle");
    auto* const loaded = new Extension;
    loaded->ops = static_cast<const VXExtensionOps*>(extension.ops);
    loaded->host = host;
    loaded->name = utf8(asked);
    host->taken(host->extensions, static_cast<VXExtension*>(loaded));
    return loaded;
  }
  host->require(false, "load_extension: name");
  return nullptr;
}

constexpr VXHandleOps handle_ops = {&create_pool, &create_lock, &create_track, &create_journal, &load_extension};

// the context

VXStatus lookup_locale(HostContext* context, const VXChar* name, int64_t length, uint32_t mode,
                       const VXLocaleRecord** record) {
  HostState* const host = host_of(context);
  host->require(mode == 8, "lookup_locale: mode");
  host->require(static_cast<Lock*>(host->creation_lock)->holder == std::this_thread::get_id(),
                "lookup_locale: without the creation lock");
  VXStatus status = host->fault(Op::lookup_locale, "", record);
  if (status == 0) status = host->answers.lookup_status;
  if (status != 0 && status != VX_W_SUBSTITUTE) return status;
  if (host->answers.null_record) return status;
  host->found_name = host->answers.canonical_name.value_or(text_of(name, length));
  if (!host->answers.canonical_name && (length < 5 || name[2] != '_')) return VX_E_NOMATCH;
  host->record.name =
      host->answers.null_record_name ? nullptr : reinterpret_cast<const VXChar*>(host->found_name.data());
  host->record.length = host->answers.claimed_name_length.value_or(static_cast<int64_t>(host->found_name.size()));
  *record = &host->record;
  return status;
}

using ZoneName = VXChar[50];

void put_zone(HostState* host, std::u32string_view id, VXChar* out, int64_t* out_length) {
  host->require(*out_length == 50, "a zone identifier: room");
  for (size_t i = 0; i < id.size() && i < 50; ++i) out[i] = id[i];
  *out_length = host->answers.claimed_zone_length.value_or(static_cast<int64_t>(id.size()));
}

VXStatus normalise_zone(HostContext* context, const VXChar* id, int64_t length, VXZoneIdOptions options, VXChar* out,
                        int64_t* out_length, uint64_t* extra) {
  HostState* const host = host_of(context);
  host->require(options.mode == 16 && options.zero1 == 0 && options.zero2 == 0, "normalise_zone: options");
  const bool created = static_cast<Lock*>(host->creation_lock)->holder == std::this_thread::get_id();
  auto* const room = reinterpret_cast<ZoneName*>(out);
  const char* const about = created ? "created" : "";
  if (const VXStatus status = host->fault(Op::normalise_zone, about, room, out_length, extra); status != 0) {
    return status;
  }
  const ZoneRule* const rule = find_rule(text_of(id, length));
  if (rule == nullptr) return VX_E_ZONE;
  put_zone(host, rule->id, out, out_length);
  return 0;
}

VXStatus os_zone(HostContext* context, VXChar* out, int64_t* out_length, uint32_t mode) {
  HostState* const host = host_of(context);
  host->require(mode == 8, "os_zone: mode");
  auto* const room = reinterpret_cast<ZoneName*>(out);
  if (const VXStatus status = host->fault(Op::os_zone, "", room, out_length); status != 0) return status;
  if (host->answers.system_zone_status != 0) return host->answers.system_zone_status;
  put_zone(host, host->answers.system_zone, out, out_length);
  return 0;
}

constexpr HostContextOps context_ops = {&lookup_locale, &normalise_zone, &os_zone};

// zones

VXZone* open_zone(VXZoneService* service, const VXChar* id, int64_t length, uint64_t zero) {
  HostState* const host = host_of(service);
  host->require(zero == 0, "open: arguments");
  const std::u32string asked = text_of(id, length);
  if (host->fault(Op::open_zone, utf8(asked)) != 0) return nullptr;
  const ZoneRule* const rule = find_rule(asked);
  if (rule == nullptr) return nullptr;
  auto* const zone = new Zone{rule};
  host->taken(host->zones, zone);
  return reinterpret_cast<VXZone*>(zone);
}

VXStatus close_zone(VXZoneService* service, VXZone* zone) {
  HostState* const host = host_of(service);
  auto* const open = reinterpret_cast<Zone*>(zone);
  if (host->given_back(host->zones, open, "zone")) delete open;
  return host->fault(Op::close_zone, "");
}

int32_t zone_offset(VXZoneService* service, VXZone* zone, int32_t, double) {
  const ZoneRule* const rule = reinterpret_cast<Zone*>(zone)->rule;
  return host_of(service)->fault(Op::zone_offset, utf8(rule->id)) != 0 ? 0 : rule->offset;
}

VXStatus describe_zone(VXZoneService* service, VXZone* zone, int32_t, double, VXChar* name, int64_t* name_length,
                       int32_t* offset) {
  HostState* const host = host_of(service);
  const ZoneRule* const rule = reinterpret_cast<Zone*>(zone)->rule;
  auto* const room = reinterpret_cast<ZoneName*>(name);
  if (const VXStatus status = host->fault(Op::describe_zone, utf8(rule->id), room, name_length, offset); status != 0) {
    return status;
  }
  put_zone(host, rule->id, name, name_length);
  *offset = rule->offset;
  return 0;
}

constexpr VXZoneServiceOps zone_ops = {&open_zone, &close_zone, &zone_offset, &describe_zone};

// options and characters

VXStatus read_option(VXOptionService* service, const VXChar* name, int64_t length, uint32_t kind, int64_t* cell) {
  HostState* const host = host_of(service);
  host->require(kind == VX_OPTION_INTEGER && text_of(name, length) == U"VX_NAME_YEARCUTOFF", "read: arguments");
  if (const VXStatus status = host->fault(Op::read_option, ""); status != 0) return status;
  if (host->answers.year_cutoff) *cell = *host->answers.year_cutoff;
  return 0;
}

constexpr VXOptionServiceOps option_ops = {&read_option};

uint32_t map_case(VXCharData* data, Op op, uint32_t code_point, uint32_t Character::*mapping) {
  const Character* const known = find_character(code_point);
  char about[16];
  std::snprintf(about, sizeof about, "%x", code_point);
  return host_of(data)->fault(op, about) != 0 || known == nullptr ? code_point : known->*mapping;
}

uint32_t lower(VXCharData* data, uint32_t code_point, uint32_t flag) {
  host_of(data)->require(flag <= 1, "lower: flag");
  return map_case(data, Op::lower, code_point, &Character::lower);
}

uint32_t upper(VXCharData* data, uint32_t code_point, uint32_t flag) {
  host_of(data)->require(flag == 1, "upper: flag");
  return map_case(data, Op::upper, code_point, &Character::upper);
}

/// The text as it is, into a1 with room a2; a3 points to the length written.
VXStatus normalise(VXNormaliser* normaliser, const uint8_t* source, int64_t length, uint32_t, uint64_t a1, uint64_t a2,
                   uint64_t a3, VXStatus* status) {
  *status = host_of(normaliser)->fault(Op::normalise, "");
  if (*status == 0 && a2 < static_cast<uint64_t>(length)) *status = VX_E_ROOM;
  if (*status != 0) return *status;
  std::memcpy(reinterpret_cast<void*>(a1), source, static_cast<size_t>(length));
  *reinterpret_cast<int64_t*>(a3) = length;
  return 0;
}

int32_t compare(VXNormaliser* normaliser, const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b,
                uint32_t, VXStatus* status) {
  HostState* const host = host_of(normaliser);
  host->require(status != nullptr, "compare: status");
  *status = host->fault(Op::compare, "");
  if (*status != 0) return 0;
  const int order = std::string(a, a + length_a).compare(std::string(b, b + length_b));
  return (order > 0) - (order < 0);
}

/// Any value is "#": enough to tell whose conversion it was.
VXStatus format_double(VXLocale* locale, int32_t, int32_t, uint32_t, VXChar* buffer, int64_t size, int64_t* length,
                       const NLSDoubleExOpts*, double) {
  if (const VXStatus status = host_of(locale->host)->fault(Op::format_double, "", length); status != 0) return status;
  *length = size > 0 ? 1 : 0;
  if (size > 0) buffer[0] = '#';
  return 0;
}

constexpr VXNormaliserOps normaliser_ops = {&normalise, &compare};

VXNormaliser* create_normaliser(VXCharData* data) {
  HostState* const host = host_of(data);
  if (host->fault(Op::create_normaliser, "") != 0) return nullptr;
  const std::lock_guard lock(host->books);
  host->normalisers.push_back(std::make_unique<Of<VXNormaliser>>(Of<VXNormaliser>{{&normaliser_ops}, host}));
  return host->normalisers.back().get();
}

constexpr VXCharDataOps char_data_ops = {&lower, &upper, &create_normaliser};

}  // namespace

HostState::HostState() {
  logger_service = {{&logger_ops}, this};
  options = {{&option_ops}, this};
  characters = {{&char_data_ops, nullptr, nullptr}, this};
  runtime.bdconv.format_double = &format_double;
  stored = {{&handle_ops, nullptr, &options, &characters, &runtime}, this};
  kernel = {{&handle_ops, &logger_service, nullptr, nullptr, nullptr}, this};
  pool = {{&pool_ops}, this};
  creation_lock = new_lock(this, "creation");
  zone_service = {{&zone_ops}, this};
  journal = {{&journal_ops}, this};
  context.ops = &context_ops;
  context.host = this;
  context.kernel = &kernel;
  context.pool = &pool;
  context.creationLock = creation_lock;
  context.zones = &zone_service;
}

HostState::~HostState() {
  delete static_cast<Lock*>(creation_lock);
  for (const auto& [block, owner] : blocks) std::free(block);
}

FailingHost::FailingHost() : state_(std::make_unique<HostState>()) {}
FailingHost::~FailingHost() { close(); }

VXHandle* FailingHost::stored() { return &state_->stored; }
VXHandle* FailingHost::kernel() { return &state_->kernel; }
HostContext* FailingHost::context() { return &state_->context; }
VXJournal* FailingHost::journal() { return &state_->journal; }
NLSModule* FailingHost::module() const { return state_->module; }
FailingHost::Answers& FailingHost::answers() { return state_->answers; }

void FailingHost::fail_call(int64_t k, bool lasting, VXStatus status, bool rubbish) {
  state_->failures.clear();
  state_->calls_since = 0;
  state_->lasting = lasting;
  state_->rubbish = rubbish;
  state_->fault_status = status;
  state_->first_failing = k;
}

void FailingHost::fail_nothing() { state_->first_failing = 0; }

std::vector<Failure> FailingHost::failures() const {
  const std::lock_guard lock(state_->books);
  return state_->failures;
}

Holdings FailingHost::holdings() const {
  const std::lock_guard lock(state_->books);
  const HostState& s = *state_;
  const auto count = [](const auto& book) { return static_cast<int64_t>(book.size()); };
  Holdings holdings = {count(s.pools),     count(s.blocks),     count(s.locks), 0, count(s.tracks), count(s.entries),
                       s.entry_references, count(s.extensions), count(s.zones)};
  holdings.extensions -= (s.context.localeDatabase != nullptr) + (s.characters.database != nullptr);
  const auto held = [](const VXLock* lock) {
    return static_cast<const Lock*>(lock)->holder.load() != std::thread::id();
  };
  for (const void* lock : s.locks) holdings.held_locks += held(static_cast<const VXLock*>(lock));
  holdings.held_locks += held(s.creation_lock);
  return holdings;
}

int64_t FailingHost::stray_releases() const { return state_->stray_releases; }

std::vector<std::string> FailingHost::complaints() const {
  const std::lock_guard lock(state_->books);
  return state_->complaints;
}

std::vector<JournalLine> FailingHost::journal_lines() const {
  const std::lock_guard lock(state_->books);
  return state_->journal_lines;
}

int64_t FailingHost::calls(Op op) const { return state_->calls[static_cast<size_t>(op)]; }

void FailingHost::start_trace() {
  state_->trace.clear();
  state_->tracing = true;
}

std::vector<std::string> FailingHost::end_trace() {
  state_->tracing = false;
  return state_->trace;
}

bool FailingHost::load_module() {
  int64_t major = 0;
  int64_t minor = 0;
  if (vxextver(stored(), &major, &minor) != 0) return false;
  state_->module = vxnlsloc(kernel(), journal());
  return state_->module != nullptr;
}

bool FailingHost::make_cache() {
  VXLocale* const first = create(U"en_US", nullptr);
  if (first == nullptr) return false;
  VXTrack* const cache = first->ops.NLSLocaleCreateTheDupTrack(first);
  destroy_private(first);
  state_->context.localeCache = cache;
  return cache != nullptr;
}

VXLocale* FailingHost::create(std::u32string_view name, VXStatus* status, std::u32string_view zone, bool shared) {
  const std::vector<VXChar> name_units(name.begin(), name.end());
  const std::vector<VXChar> zone_units(zone.begin(), zone.end());
  LocaleCreateOptions options = {};
  options.flags = shared ? 0 : 1;
  options.zoneName = zone_units.data();
  options.zoneLength = static_cast<int64_t>(zone_units.size());
  // cppcheck-suppress returnDanglingLifetime ; the locale keeps nothing of what it is made from
  return state_->module->localeCreate(context(), name_units.data(), static_cast<int64_t>(name.size()), status,
                                      &options);
}

void FailingHost::destroy_private(VXLocale* locale) {
  VXTrackEntry entry = {{nullptr, nullptr}, locale};
  state_->module->localeDestroyCallback(&entry);
}

void FailingHost::destroy_cache() {
  VXTrack* const cache = state_->context.localeCache;
  state_->context.localeCache = nullptr;
  if (cache != nullptr) cache->ops->destroy(cache);
}

void FailingHost::close() {
  fail_nothing();
  destroy_cache();
  if (state_->module != nullptr) state_->module->realDestroy(state_->module);
  state_->module = nullptr;
  HostContext& context = state_->context;
  if (context.localeDatabase != nullptr) destroy_extension(reinterpret_cast<VXExtension*>(context.localeDatabase));
  context.localeDatabase = nullptr;
  VXCharData& characters = state_->characters;
  if (characters.database != nullptr) destroy_extension(reinterpret_cast<VXExtension*>(characters.database));
  characters.database = nullptr;
  characters.normaliser = nullptr;
  if (Exported_VXHandle == stored()) vxextent(nullptr);
}

const char* name_of(Op op) {
  static constexpr const char* names[] = {
#define VX_OPERATION(name) #name,
      VX_HOST_OPERATIONS(VX_OPERATION)
#undef VX_OPERATION
  };
  return names[static_cast<size_t>(op)];
}

std::ostream& operator<<(std::ostream& out, const Holdings& h) {
  return out << h.pools << " pools, " << h.blocks << " blocks, " << h.locks << " locks (" << h.held_locks << " held), "
             << h.tracks << " tracks, " << h.entries << " entries (" << h.entry_references << " references), "
             << h.extensions << " extensions, " << h.zones << " zones";
}

}  // namespace vxtest
