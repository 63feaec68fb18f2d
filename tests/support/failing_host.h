// A small host of its own for tests: no ICU, no libvxhost. Any call of any operation can be made to fail, everything
// that the library was given is counted until it is given back, and every argument is held against the contract.
#ifndef VXNLS_TESTS_SUPPORT_FAILING_HOST_H
#define VXNLS_TESTS_SUPPORT_FAILING_HOST_H

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vxnls/vxnls.h"

namespace vxtest {

// clang-format off
#define VX_HOST_OPERATIONS(X) \
  X(create_pool) X(allocate) X(free) X(destroy_pool) \
  X(create_lock) X(acquire) X(release_lock) X(destroy_lock) \
  X(create_track) X(find) X(insert) X(release_entry) X(set_destroy) X(destroy_track) \
  X(create_journal) X(message_to_buffer) X(message_to_journal) X(status_to_buffer) X(status_to_journal) \
  X(get_locale) X(find_logger) X(create_logger) \
  X(load_extension) X(destroy_extension) X(fill) X(test_class) \
  X(lookup_locale) X(normalise_zone) X(os_zone) X(open_zone) X(close_zone) X(zone_offset) X(describe_zone) \
  X(read_option) X(lower) X(upper) X(create_normaliser) X(normalise) X(compare) X(format_double)
// clang-format on

enum class Op {
#define VX_OPERATION(name) name,
  VX_HOST_OPERATIONS(VX_OPERATION)
#undef VX_OPERATION
};
inline constexpr size_t operation_count = 0
#define VX_OPERATION(name) +1
    VX_HOST_OPERATIONS(VX_OPERATION)
#undef VX_OPERATION
    ;
const char* name_of(Op op);

/// A call that was made to fail: the operation, and what it was about (the name of a lock, a track, an extension or a
/// zone, the bytes of a block, a code point in hexadecimal; for normalise_zone "created" under the creation lock).
struct Failure {
  Op op;
  std::string about;
};

/// What the library holds of the host at this moment. Extensions in the host's caches are the host's and not counted.
struct Holdings {
  int64_t pools = 0, blocks = 0, locks = 0, held_locks = 0, tracks = 0, entries = 0, entry_references = 0;
  int64_t extensions = 0, zones = 0;
  bool operator==(const Holdings&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Holdings& holdings);

/// A line of a journal. A status has no text, a message no status.
struct JournalLine {
  uint32_t level;
  int64_t status;
  std::u32string message;
};

struct HostState;

/// The host. Its zones are America/New_York (5 hours west), Etc/UTC (also "UTC") and Asia/Kolkata (5:30 east), in any
/// letter case; its locales are "en_US", "en_GB" and every other name of 2 letters and a region, all filled in English;
/// its characters beyond ASCII are a handful. It may be used by several threads.
class FailingHost {
 public:
  FailingHost();
  ~FailingHost();  // closes
  FailingHost(const FailingHost&) = delete;
  FailingHost& operator=(const FailingHost&) = delete;

  /// The handle stored in the library and the one of the context: two objects. Services are taken away by a null.
  VXHandle* stored();
  VXHandle* kernel();
  HostContext* context();
  VXJournal* journal();

  /// The k-th call from now fails, from 1; `lasting`: and all after it. Operations that answer with a status give
  /// `status`, others null or nothing. Operations that give back do so all the same. lookup_locale and fill do their
  /// work when `status` is the one that they may add to it. `rubbish`: a failing operation fills its out arguments.
  void fail_call(int64_t k, bool lasting, VXStatus status, bool rubbish = false);
  void fail_nothing();
  /// The calls that failed since fail_call, in their order.
  std::vector<Failure> failures() const;

  Holdings holdings() const;
  /// Releases of locks that the caller did not hold.
  int64_t stray_releases() const;
  /// Arguments against the contract, things given back twice or never taken, locks destroyed while they are held.
  std::vector<std::string> complaints() const;
  std::vector<JournalLine> journal_lines() const;
  /// Calls of an operation so far, failed ones included.
  int64_t calls(Op op) const;
  /// The calls that `work` makes, in their order: "allocate 1016".
  template <class Work>
  std::vector<std::string> trace(Work work) {
    start_trace();
    work();
    return end_trace();
  }

  /// The road of a host: vxextver, vxnlsloc, and a locale through which the locale cache is made. False when it fails.
  bool load_module();
  bool make_cache();
  NLSModule* module() const;

  /// Creates through the module. An empty zone: the system's.
  VXLocale* create(std::u32string_view name, VXStatus* status, std::u32string_view zone = {}, bool shared = true);
  /// Destroys a locale that is not in the cache.
  void destroy_private(VXLocale* locale);
  /// Destroys the cache, and with it the shared locales.
  void destroy_cache();
  /// Destroys the cache, the module and what the caches of the context hold. Everything counted should be 0 then.
  void close();

  /// What the host answers, for tests that want another answer.
  struct Answers {
    std::u32string system_zone = U"America/New_York";
    VXStatus system_zone_status = 0;
    VXStatus lookup_status = 0;
    VXStatus fill_status = 0;
    std::optional<std::u32string> canonical_name;  // in place of the name asked for
    std::optional<int64_t> claimed_name_length;    // whatever the text is
    std::optional<int64_t> claimed_zone_length;    // by normalise_zone, os_zone and describe
    bool null_record = false, null_record_name = false;
    bool logger_exists = false;          // find_logger finds it, otherwise it has to be created
    std::optional<int64_t> year_cutoff;  // the option VX_NAME_YEARCUTOFF
  };
  Answers& answers();

 private:
  void start_trace();
  std::vector<std::string> end_trace();

  std::unique_ptr<HostState> state_;
};

/// The status with which the host refuses a key that its track has already.
inline constexpr VXStatus key_exists = 0x803fc0f1;

}  // namespace vxtest

#endif
