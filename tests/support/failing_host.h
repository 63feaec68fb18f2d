// A host around the parts of the example host, for tests: any call of any operation can be made to fail, everything
// that the library was given is counted until it is given back, and every call can be told with its arguments.
#ifndef VXNLS_TESTS_SUPPORT_FAILING_HOST_H
#define VXNLS_TESTS_SUPPORT_FAILING_HOST_H

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vxnls/vxnls.h"

namespace vxtest {

/// Calls are told one a line: the operation behind as many blanks as its thread holds locks, and its arguments, objects
/// by their names, structures by their bytes that are not zero ("@0=1"), unsigned numbers in hexadecimal: "allocate
/// pool 24 0\n".

/// What the library holds of the host, by name: {"block 24", 1}. Extensions in the host's caches are not counted.
using Holdings = std::map<std::string, int64_t>;

/// How a call fails. Operations that answer with a status give `status`, others null or nothing. Operations that give
/// back do so all the same. lookup_locale and fill do their work when `status` is the one that they may add to it.
struct Fault {
  VXStatus status = 0;
  bool lasting = false;  // and all calls after it
  bool rubbish = false;  // the operation fills its out arguments
};

/// The host; one at a time. Its zones are those of plain_locale.h; its locales are all names of two letters and a
/// region, filled in English; its only characters are the two letters e with acute; its option is the year cutoff,
/// 1900.
class FailingHost {
 public:
  FailingHost();
  ~FailingHost() { close(); }
  FailingHost(const FailingHost&) = delete;
  FailingHost& operator=(const FailingHost&) = delete;

  /// The k-th call from now fails, from 1; 0: none.
  void fail_call(int64_t k, Fault how = {});
  Holdings holdings();
  /// The calls that `work` makes.
  template <class Work>
  std::string trace(Work work) {
    std::string calls;
    traced = &calls, work(), traced = nullptr;
    return calls;
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
  std::u32string system_zone = U"America/New_York";
  std::optional<const VXLocaleRecord*> record;  // in place of the name asked for
  std::optional<int64_t> claimed_zone_length;   // by normalise_zone, os_zone and describe, whatever the text is

  std::vector<std::string> failures;  // the calls that failed since fail_call
  std::string complaints;  // lines: things given back but not held, locks taken twice or destroyed while they are held

  // For the operations.
  struct Thing {
    std::string name;
    const void* owner;  // the pool or track that it is in; the host, for things of its own that are not counted
    std::shared_ptr<void> object;
  };
  std::mutex books;
  std::map<const void*, Thing> things;
  int64_t references = 0, calls_since = 0, first_failing = 0;
  Fault fault;
  std::string* traced = nullptr;

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
