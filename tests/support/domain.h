// How much of a whole domain a loop visits.
#ifndef VXNLS_TESTS_SUPPORT_DOMAIN_H
#define VXNLS_TESTS_SUPPORT_DOMAIN_H

#include <cstdint>
#include <cstdlib>

namespace vxtest {

/// Domains too that take many minutes.
inline bool is_long_run() {
  static const bool is_long = std::getenv("VXNLS_LONG_TESTS") != nullptr;
  return is_long;
}

/// Where every line is counted and a whole domain would take many minutes.
inline bool is_sampled() {
  static const bool sampled = std::getenv("VXNLS_SAMPLE_DOMAINS") != nullptr;
  return sampled;
}

/// Always; of a sample one in 31, and both sides of each multiple of 128, where the borders lie.
inline bool visited(uint64_t number) { return !is_sampled() || number % 31 == 0 || (number + 1) % 128 < 2; }

}  // namespace vxtest

#endif
