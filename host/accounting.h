// What the hosts of this process hold: every object that a host gives out is counted while it lives.
#ifndef VXNLS_HOST_ACCOUNTING_H
#define VXNLS_HOST_ACCOUNTING_H

#include <cstdint>
#include <string>

namespace vxhost {

enum class Kind : uint8_t {
  pool,
  block,
  lock,
  track,
  entry,
  reference,  // to an entry whose track was destroyed meanwhile: never given back
  journal,
  logger,
  extension,
  zone,
  normaliser,
};

void count(Kind kind, int64_t change) noexcept;
int64_t alive() noexcept;
/// "2 blocks, 1 lock": only what is not 0; empty when nothing is alive.
std::string alive_text();

void count_stray_release() noexcept;
int64_t stray_releases() noexcept;

/// Base of an object that is counted from its constructor to its destructor.
template <Kind kind>
class Counted {
 public:
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

 protected:
  Counted() noexcept { count(kind, 1); }
  ~Counted() { count(kind, -1); }
};

/// Runs an operation that the library calls: no exception crosses the C interface, an exhausted memory gives `failure`.
template <class Result, class Body>
Result guarded(Result failure, Body&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return failure;
  }
}

}  // namespace vxhost

#endif
