// Every text is read as VXChars and as UTF-8, each up against an untouchable page, and the quick and the slow way; all
// must agree.
#ifndef VXNLS_TESTS_DATETIME_PARSE_BOTH_FLAVOURS_H
#define VXNLS_TESTS_DATETIME_PARSE_BOTH_FLAVOURS_H

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "datetime_parse/recognise_datetime.h"
#include "tests/support/guard_page.h"
#include "tests/support/zoned_locale.h"

namespace vxtest {

/// Copies of a text in both flavours.
struct Texts {
  explicit Texts(std::u32string_view text) : whole(text), bytes(utf8(text)) {
    static unsigned turn = 0;
    const Guard guard = ++turn % 4 == 0 ? Guard::before : Guard::behind;
    units_at = units().copy(reinterpret_cast<const VXChar*>(whole.data()), whole.size(), guard);
    bytes_at = octets().copy(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), guard);
  }
  int64_t length() const { return static_cast<int64_t>(whole.size()); }
  int64_t byte_length() const { return static_cast<int64_t>(bytes.size()); }
  /// Bytes that the first `count` units take.
  int64_t bytes_of(int64_t count) const {
    return static_cast<int64_t>(utf8(std::u32string_view(whole).substr(0, static_cast<size_t>(count))).size());
  }

  std::u32string whole;
  std::string bytes;
  const VXChar* units_at;
  const uint8_t* bytes_at;

 private:
  static GuardedBuffer<VXChar>& units() {
    static GuardedBuffer<VXChar> buffer(4096);
    return buffer;
  }
  static GuardedBuffer<uint8_t>& octets() {
    static GuardedBuffer<uint8_t> buffer(16384);
    return buffer;
  }
};

/// Where somebody watches, no step is taken the quick way, and the reason of a refusal is the true one.
struct Watcher : vxnls::NoTrace {
  static constexpr bool watches = true;
};

/// What a date gave; consumed -1 where nothing was written.
struct DateRead {
  VXStatus status;
  uint32_t month, day, year;
  int64_t consumed;
  bool operator==(const DateRead&) const = default;
};

inline void PrintTo(const DateRead& r, std::ostream* out) {
  *out << std::hex << r.status << std::dec << ' ' << r.year << '-' << r.month << '-' << r.day << " consumed "
       << r.consumed;
}

inline constexpr DateRead refused_date{VX_E_NOMATCH, 0, 0, 0, -1};

template <class Text>
DateRead read_date_slowly(VXLocale* locale, const typename Text::Unit* at, int64_t length, uint32_t kind) {
  Watcher watcher;
  const vxnls::Finding finding = vxnls::read_date(locale, vxnls::input_of<Text>(at, length), kind, watcher);
  if (finding.status != 0) return {finding.status, 0, 0, 0, -1};
  const vxnls::NLSParseFields& f = finding.fields;
  if (!vxnls::is_full_date(f)) return {0, 0, 0, 0, finding.consumed};
  return {0, static_cast<uint32_t>(f.month), static_cast<uint32_t>(f.day), static_cast<uint32_t>(f.year),
          finding.consumed};
}

inline DateRead read_date(VXLocale* locale, std::u32string_view text, uint32_t kind) {
  const Texts in(text);
  DateRead a{0, 99, 99, 99, -1}, b = a;
  a.status = NLSBufToDate(locale, in.units_at, in.length(), kind, &a.month, &a.day, &a.year, &a.consumed);
  b.status = NLSBufToDateU(locale, in.bytes_at, in.byte_length(), kind, &b.month, &b.day, &b.year, &b.consumed);
#ifndef VXNLS_OWN_HOST  // which knows the library from outside
  EXPECT_EQ(a, read_date_slowly<vxnls::Utf32Text>(locale, in.units_at, in.length(), kind)) << in.bytes;
  EXPECT_EQ(b, read_date_slowly<vxnls::Utf8Text>(locale, in.bytes_at, in.byte_length(), kind)) << in.bytes;
#endif
  const int64_t consumed = a.consumed;
  if (a.consumed > 0) a.consumed = in.bytes_of(consumed);
  EXPECT_EQ(a, b) << "flavours of \"" << in.bytes << "\" kind " << kind;
  a.consumed = consumed;
  return a;
}

struct ValueRead {
  VXStatus status;
  double value;
  int64_t consumed;
  bool operator==(const ValueRead&) const = default;
};

inline void PrintTo(const ValueRead& r, std::ostream* out) {
  *out << std::hex << r.status << std::dec << " value " << std::fixed << r.value << " consumed " << r.consumed;
}

inline constexpr ValueRead refused_value{VX_E_NOMATCH, -1, -1};

template <class Text>
ValueRead read_slowly(auto read, VXLocale* locale, const typename Text::Unit* at, int64_t length, uint32_t kind) {
  Watcher watcher;
  const auto finding = read(locale, vxnls::input_of<Text>(at, length), kind, watcher);
  if (finding.status != 0) return {finding.status, -1, -1};
  if constexpr (requires { finding.value; }) return {0, finding.value, finding.consumed};
  else return {0, vxnls::seconds_of(finding.fields), finding.consumed};
}

template <auto plain, auto bytewise>
ValueRead read_value(VXLocale* locale, std::u32string_view text, uint32_t kind, [[maybe_unused]] auto slowly) {
  const Texts in(text);
  ValueRead a{0, -1, -1}, b = a;
  a.status = plain(locale, in.units_at, in.length(), kind, &a.value, &a.consumed);
  b.status = bytewise(locale, in.bytes_at, in.byte_length(), kind, &b.value, &b.consumed);
#ifndef VXNLS_OWN_HOST
  EXPECT_EQ(a, read_slowly<vxnls::Utf32Text>(slowly, locale, in.units_at, in.length(), kind)) << in.bytes;
  EXPECT_EQ(b, read_slowly<vxnls::Utf8Text>(slowly, locale, in.bytes_at, in.byte_length(), kind)) << in.bytes;
#endif
  const int64_t consumed = a.consumed;
  if (a.consumed > 0) a.consumed = in.bytes_of(consumed);
  EXPECT_EQ(a, b) << "flavours of \"" << in.bytes << "\" kind " << kind;
  a.consumed = consumed;
  return a;
}

inline ValueRead read_time(VXLocale* locale, std::u32string_view text, uint32_t kind) {
  return read_value<NLSBufToTime, NLSBufToTimeU>(locale, text, kind,
                                                 [](auto&&... args) { return vxnls::read_time(args...); });
}

inline ValueRead read_datetime(VXLocale* locale, std::u32string_view text, uint32_t kind) {
  return read_value<NLSBufToDatetime, NLSBufToDatetimeU>(locale, text, kind,
                                                         [](auto&&... args) { return vxnls::read_datetime(args...); });
}

/// One walk of a pattern; consumed -1 on refusal.
struct Walked {
  VXReason reason;
  vxnls::NLSParseFields fields;
  int64_t consumed;
};

template <class Reader, class Text, class Trace>
Walked walk_with(Trace trace, VXLocale* locale, NLSName pattern, const typename Text::Unit* at, int64_t length) {
  Walked result{};
  const vxnls::Walked walked =
      vxnls::walk<Reader>(locale, vxnls::input_of<Text>(at, length), vxnls::view(pattern), result.fields, trace);
  result.reason = walked.reason;
  result.consumed = walked.reason == VX_REASON_NONE ? length - walked.left : -1;
  return result;
}

template <class Reader, class Text>
Walked walk_one(VXLocale* locale, NLSName pattern, const typename Text::Unit* at, int64_t length) {
  const Walked quick = walk_with<Reader, Text>(vxnls::NoTrace(), locale, pattern, at, length);
  const Walked plain = walk_with<Reader, Text>(Watcher(), locale, pattern, at, length);
  EXPECT_EQ(quick.reason == VX_REASON_NONE, plain.reason == VX_REASON_NONE);
  EXPECT_EQ(quick.consumed, plain.consumed);
  if (quick.reason == VX_REASON_NONE) {
    EXPECT_EQ(std::memcmp(&quick.fields, &plain.fields, sizeof quick.fields), 0);
  }
  return plain;
}

template <class Reader>
Walked walk(VXLocale* locale, std::u32string_view pattern, std::u32string_view text) {
  const Texts in(text);
  NLSName name{};
  set_name(name, pattern);
  const Walked a = walk_one<Reader, vxnls::Utf32Text>(locale, name, in.units_at, in.length());
  const Walked b = walk_one<Reader, vxnls::Utf8Text>(locale, name, in.bytes_at, in.byte_length());
  EXPECT_EQ(a.reason, b.reason) << "flavours of \"" << in.bytes << "\" by " << utf8(pattern);
  EXPECT_EQ(a.consumed < 0 ? -1 : in.bytes_of(a.consumed), b.consumed);
  if (a.reason == VX_REASON_NONE) {
    EXPECT_EQ(std::memcmp(&a.fields, &b.fields, sizeof a.fields), 0) << in.bytes << " by " << utf8(pattern);
  }
  return a;
}

}  // namespace vxtest

#endif
