#include <string.h>

#include "utf8/casing.h"
#include "utf8/steps.h"
#include "vxnls/utf8.h"

using namespace vxnls;

namespace {

constexpr int32_t sign(int64_t order) { return (order > 0) - (order < 0); }

/// What is left of a text that is being walked.
struct Rest {
  const uint8_t* at;
  const uint8_t* end;

  explicit Rest(ByteView text) : at(text.bytes), end(text.bytes + text.length) {}
  bool empty() const { return at == end; }
  int64_t length() const { return end - at; }
  /// The length of the next character by its lead, as far as there are bytes.
  int64_t next() const { return TrustingStep::length(at, length()); }
  VXChar decode() const { return Utf8Text::decode(at, length()).code_point; }
  bool all_blank() const { return length_without_blanks({at, length()}) == 0; }
};

int32_t compare_normally(ByteView text_a, ByteView text_b) {
  const CaseMapping<LowerCase> lower(CaseUse::comparing);
  Rest a(text_a), b(text_b);
  int32_t by_case = 0;
  while (!a.empty() && !b.empty()) {
    if (*a.at < 0x80 && *b.at < 0x80) {
      const uint8_t x = *a.at++, y = *b.at++;
      if (x == y) continue;
      const uint8_t lower_x = ascii_lower(x), lower_y = ascii_lower(y);
      if (lower_x != lower_y) return lower_x < lower_y ? -2 : 2;
      if (by_case == 0) by_case = x > y ? 1 : -1;
      continue;
    }
    const int64_t length_a = a.next(), length_b = b.next();
    if (length_a != length_b || memcmp(a.at, b.at, static_cast<size_t>(length_a)) != 0) {
      const VXChar x = a.decode(), y = b.decode();
      // Kept on purpose: different bytes of one code point, which only ill-formed text has, count as greater either
      // way.
      if (by_case == 0) by_case = x < y ? -1 : 1;
      const auto lower_x = static_cast<int32_t>(lower(x)), lower_y = static_cast<int32_t>(lower(y));
      if (lower_x != lower_y) return lower_x < lower_y ? -2 : 2;
    }
    a.at += length_a;
    b.at += length_b;
  }
  // Kept on purpose: a longer text is greater even when it goes on with a byte below the blank.
  if (!a.all_blank()) return 2;
  if (!b.all_blank()) return -2;
  return by_case;
}

constexpr uint64_t usual_option = 20;  // nobody looks at it

}  // namespace

int32_t vxzsu8CompareText(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b, uint64_t) {
  const ByteView left = bytes_of(a, length_a), right = bytes_of(b, length_b);
  const int64_t shorter = std::min(left.length, right.length);
  const int order = shorter == 0 ? 0 : memcmp(left.bytes, right.bytes, static_cast<size_t>(shorter));
  return order != 0 ? sign(order) : sign(left.length - right.length);
}

int32_t vxzsu8Compare(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b) {
  return vxzsu8CompareText(a, length_a, b, length_b, usual_option);
}

int32_t vxzsu8NormCompareText(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b, uint64_t) {
  return compare_normally(bytes_of(a, length_a), bytes_of(b, length_b));
}

int32_t vxzsu8NormCompare(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b) {
  return vxzsu8NormCompareText(a, length_a, b, length_b, usual_option);
}

int32_t vxzsu8NormEqualText(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b, uint64_t ignored) {
  const int32_t order = vxzsu8NormCompareText(a, length_a, b, length_b, ignored);
  return order >= -1 && order <= 1;
}

int32_t vxzsu8NormEqual(const uint8_t* a, int64_t length_a, const uint8_t* b, int64_t length_b) {
  return vxzsu8NormEqualText(a, length_a, b, length_b, usual_option);
}
