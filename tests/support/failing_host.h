// A small host of its own for tests: no ICU, no libvxhost. Any call of any operation can be made to fail, everything
// that the library was given is counted until it is given back, and every call can be told with its arguments.
#ifndef VXNLS_TESTS_SUPPORT_FAILING_HOST_H
#define VXNLS_TESTS_SUPPORT_FAILING_HOST_H

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vxnls/vxnls.h"

namespace vxtest {

/// Calls, one a line: the operation behind as many blanks as its thread holds locks, and its arguments, objects by
/// their names, structures by their bytes that are not zero ("@0=1"), unsigned numbers in hexadecimal: "allocate pool
/// 24 0".
using Calls = std::vector<std::string>;

/// What the library holds of the host, by name: {"block 24", 1}. Extensions in the host's caches are not counted.
using Holdings = std::map<std::string, int64_t>;

/// The host; one at a time. Its zones are America/New_York (5 hours west), Etc/UTC (also "UTC") and Asia/Kolkata (5:30
/// east), in any letter case; its locales are all names of two letters and a region, filled in English; its only
/// characters are the two letters e with acute; its option is the year cutoff, 1900. Threads may share it: while
/// nothing fails and nothing is traced, it orders them no more than its locks and books do.
class FailingHost {
 public:
  FailingHost();
  ~FailingHost();  // closes
  FailingHost(const FailingHost&) = delete;
  FailingHost& operator=(const FailingHost&) = delete;

  /// The k-th call from now fails, from 1; `lasting`: and all after it. Operations that answer with a status give
  /// `status`, others null or nothing. Operations that give back do so all the same. lookup_locale and fill do their
  /// work when `status` is the one that they may add to it. `rubbish`: a failing operation fills its out arguments.
  void fail_call(int64_t k, bool lasting, VXStatus status, bool rubbish = false);
  void fail_nothing() { first_failing = 0; }

  Holdings holdings();
  /// The calls that `work` makes.
  template <class Work>
  Calls trace(Work work) {
    traced.clear();
    tracing = true;
    work();
    tracing = false;
    return traced;
  }

  /// The road of a host: vxextver, vxnlsloc, and a locale through which the locale cache is made. False when it fails.
  bool load_module();
  bool make_cache();
  NLSModule* module() const { return loaded_module; }

  /// Creates through the module. An empty zone: the system's.
  VXLocale* create(std::u32string_view name, VXStatus* status, std::u32string_view zone = {}, bool shared = true);
  /// Destroys a locale that is not in the cache.
  void destroy_private(VXLocale* locale);
  /// Destroys the cache, and with it the shared locales.
  void destroy_cache();
  /// Destroys the cache, the module and what the caches of the context hold. Holdings should be empty then.
  void close();

  // The handle stored in the library and the one of the context are two objects.
  VXHandle stored{}, kernel{};
  HostContext context{};
  VXJournal journal{};

  // What the host answers, for tests that want another answer.
  std::string system_zone = "America/New_York";
  std::optional<const VXLocaleRecord*> record;  // in place of the name asked for
  std::optional<int64_t> claimed_zone_length;   // by normalise_zone, os_zone and describe, whatever the text is
  bool has_logger = false;                      // find_logger finds it, otherwise it has to be created

  Calls failures;    // the calls that failed since fail_call
  Calls complaints;  // things given back but not held, locks taken twice or destroyed while they are held

  // For the operations.
  struct Thing {
    std::string name;
    const void* owner;  // the pool or track that it is in; the host, for things of its own that are not counted
  };
  std::mutex books;
  std::map<const void*, Thing> things;
  std::atomic<int64_t> references{0}, first_failing{0}, calls_since{0};  // first_failing 0: nothing fails
  std::atomic<bool> lasting{false}, rubbish{false}, tracing{false};
  std::atomic<VXStatus> fault_status{0};
  Calls traced;

 private:
  VXLoggerService loggers{};
  VXOptionService options{};
  VXCharData characters{};
  VXPool pool{};
  VXZoneService zones{};
  NLSModule* loaded_module = nullptr;
};

}  // namespace vxtest

#endif
