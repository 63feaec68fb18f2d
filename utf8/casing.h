// Case of one character beyond ASCII: the host's mapping where it offers one, the built-in tables where it does not.
#ifndef VXNLS_UTF8_CASING_H
#define VXNLS_UTF8_CASING_H

#include "module/host_services.h"
#include "unicode/case_mapping.h"
#include "utf8/ascii_case.h"
#include "utf8/runs.h"

namespace vxnls {

/// What the host is told about the reason of a mapping.
enum class CaseUse : uint32_t { comparing = 0, casing = 1 };

struct LowerCase {
  static constexpr uint8_t ascii(uint8_t byte) { return ascii_lower(byte); }
  static constexpr uint64_t eight(uint64_t bytes) { return turn_eight<'A'>(bytes); }
  static constexpr auto run = &Utf8Runs::lower;
  static constexpr VXChar by_tables(VXChar c) { return lower_by_tables(c); }
  static VXChar by_host(VXCharData* data, VXChar c, uint32_t flag) { return host::lower(data, c, flag); }
};

struct UpperCase {
  static constexpr uint8_t ascii(uint8_t byte) { return ascii_upper(byte); }
  static constexpr uint64_t eight(uint64_t bytes) { return turn_eight<'a'>(bytes); }
  static constexpr auto run = &Utf8Runs::upper;
  static constexpr VXChar by_tables(VXChar c) { return upper_by_tables(c); }
  static VXChar by_host(VXCharData* data, VXChar c, uint32_t flag) { return host::upper(data, c, flag); }
};

/// Asks for the host once a call of an entry point, and then once a character.
template <class Case>
class CaseMapping {
 public:
  explicit CaseMapping(CaseUse use) : data_(host::characters()), flag_(static_cast<uint32_t>(use)) {}
  VXChar operator()(VXChar c) const { return data_ != nullptr ? Case::by_host(data_, c, flag_) : Case::by_tables(c); }

 private:
  VXCharData* data_;
  uint32_t flag_;
};

}  // namespace vxnls

#endif
