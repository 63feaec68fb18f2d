// Each UTF-8 service name gives the bytes, lengths, values and status of the entry point behind it.
#include <gtest/gtest.h>

#include <array>
#include <type_traits>

#include "tests/support/plain_locale.h"
#include "tests/unicode/texts.h"
#include "vxnls/vxnls.h"

namespace {

struct Case {
  std::string_view text;
  double number;
  int64_t integer, room = 0;
  uint32_t option = 0;
};

/// Everything that a call leaves behind. What it does not write keeps what it held.
struct Trace {
  VXStatus status = 0;
  alignas(8) std::array<uint8_t, 128> memory;
  bool operator==(const Trace&) const = default;
  uint8_t* buffer() { return memory.data(); }
  template <class T>
  T* cell(size_t number) {
    return reinterpret_cast<T*>(memory.data() + 64 + 8 * number);
  }
};

/// Runs all cases through two functions, which must have one type.
template <class Function, class Call>
void expect_same(const char* name, Function* forwarder, std::type_identity_t<Function>* entry_point, Call call) {
  static vxtest::PlainLocale english;
  static const Case cases[] = {{"", 0, 0},
                               {"12", 45296, INT64_MIN},
                               {"-1,234.5e1 ", -1, INT64_MAX},
                               {"99999999999999999999", 1e300, INT32_MIN},
                               {"03/07/2024", -1234567.891, INT32_MAX},
                               {"3 Mar 2024", qmMissVal('.'), -1},
                               {"2:05 PM", 86399.5, 1234567},
                               {"03/07/2024 14:05:09", 0.5, UINT32_MAX},
                               {".A", qmMissVal('B'), -1234567}};
  int succeeded = 0, failed = 0;
  for (Case c : cases) {
    for (const int64_t room : {0, 3, 64}) {
      for (const uint32_t option : {0u, 1u, 2u, 4u, 8u, 0x40u, 0x80u, 0x4000u, 0x20000u}) {
        c.room = room;
        c.option = option;
        Trace through, direct;
        through.memory.fill(0xEE);
        direct.memory.fill(0xEE);
        through.status = call(forwarder, english.get(), c, through);
        direct.status = call(entry_point, english.get(), c, direct);
        EXPECT_EQ(through, direct) << name << ' ' << c.text << ' ' << room << ' ' << option;
        ++(direct.status == 0 ? succeeded : failed);
      }
    }
  }
  EXPECT_GT(succeeded, 0) << name;
  EXPECT_GT(failed, 0) << name;
}

#define VX_EXPECT_SAME(name, entry_point, ...)                                                          \
  expect_same(#name, &name, &entry_point,                                                               \
              [](auto f, VXLocale* locale, [[maybe_unused]] const Case& c, [[maybe_unused]] Trace& t) { \
                return f(locale, __VA_ARGS__);                                                          \
              })
#define VX_TEXT vxtest::bytes(c.text), static_cast<int32_t>(c.text.size())
#define VX_WRITTEN t.buffer(), c.room, t.cell<int64_t>(0)

TEST(Forwarders, GiveWhatTheEntryPointsGive) {
  VX_EXPECT_SAME(vxzsu8DateFormat, NLSDateFormatU, 3, 7 + c.option, 2024, c.option % 3, VX_WRITTEN);
  VX_EXPECT_SAME(vxzsu8TimeFormat, NLSTimeFormatU, c.option % 2, VX_WRITTEN, c.number);
  VX_EXPECT_SAME(vxzsu8DatetimeFormat, NLSDatetimeFormatU, 9, VX_WRITTEN, c.number);
  VX_EXPECT_SAME(vxzsu8ToDate, NLSBufToDateU, VX_TEXT, c.option, t.cell<uint32_t>(1), t.cell<uint32_t>(2),
                 t.cell<uint32_t>(3), t.cell<int64_t>(0));
  VX_EXPECT_SAME(vxzsu8ToTime, NLSBufToTimeU, VX_TEXT, c.option, t.cell<double>(1), t.cell<int64_t>(0));
  VX_EXPECT_SAME(vxzsu8ToDatetime, NLSBufToDatetimeU, VX_TEXT, c.option, t.cell<double>(1), t.cell<int64_t>(0));
  static constexpr NLSDoubleExOpts star = {1, {}, '*'};
  VX_EXPECT_SAME(vxzsu8DoubleFormat, NLSDoubleFormatUWithExOpts, 12, 2, 0x20000, VX_WRITTEN,
                 c.option % 2 == 0 ? nullptr : &star, c.number);
  VX_EXPECT_SAME(vxzsu8ToDouble, NLSBufToDoubleU, VX_TEXT, t.cell<double>(1), t.cell<int64_t>(0));
  VX_EXPECT_SAME(vxzsu8ToDoubleWithOpts, NLSBufToDoubleUWithOpts, VX_TEXT, c.option, t.cell<double>(1),
                 t.cell<int64_t>(0));
#define VX_INTEGER_FORMAT(name, type) \
  VX_EXPECT_SAME(vxzsu8##name##Format, NLS##name##FormatU, static_cast<type>(c.integer), 5, 1, c.option, VX_WRITTEN);
#define VX_INTEGER(name, type)  \
  VX_INTEGER_FORMAT(name, type) \
  VX_EXPECT_SAME(vxzsu8To##name, NLSBufTo##name##U, VX_TEXT, c.option, t.cell<type>(1), t.cell<uint64_t>(0));
  VX_INTEGER(Int, int32_t)
  VX_INTEGER(Intfast, int32_t)
  VX_INTEGER(UInt, uint32_t)
  VX_INTEGER(Uintfast, uint32_t)
  VX_INTEGER(Long, int64_t)
  VX_INTEGER(Intmax, int64_t)
  VX_INTEGER(ULong, uint64_t)
  VX_INTEGER(Uintmax, uint64_t)
  VX_INTEGER_FORMAT(Pointer, uint64_t)
}

}  // namespace
