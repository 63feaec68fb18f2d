// Each UTF-8 service name gives the bytes, lengths, values and status of the entry point behind it.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/plain_locale.h"
#include "vxnls/vxnls.h"

namespace {

vxtest::PlainLocale& english() {
  static vxtest::PlainLocale locale;
  return locale;
}

/// Everything that a call leaves behind. Cells that it does not write keep what they held.
struct Trace {
  VXStatus status = 0xEEEEEEEE;
  int64_t length = -77;
  std::vector<uint8_t> buffer = std::vector<uint8_t>(64, 0xEE);
  uint64_t values[3] = {0xEEEEEEEE, 0xEEEEEEEE, 0xEEEEEEEE};
  bool operator==(const Trace&) const = default;
};

/// Runs the same calls through two functions, which must have one type.
class Pair {
 public:
  explicit Pair(const char* name) : name_(name) {}
  ~Pair() {
    EXPECT_GT(succeeded_, 0) << name_ << ": no call was a success";
    EXPECT_GT(failed_, 0) << name_ << ": no call was a failure";
  }
  Pair(const Pair&) = delete;
  Pair& operator=(const Pair&) = delete;

  template <class Function, class Call>
  void expect_same(Function* forwarder, std::type_identity_t<Function>* entry_point, Call call) {
    Trace through, direct;
    through.status = call(forwarder, through);
    direct.status = call(entry_point, direct);
    EXPECT_EQ(through, direct) << name_ << " status " << std::hex << through.status << " and " << direct.status;
    ++(direct.status == 0 ? succeeded_ : failed_);
  }

 private:
  const char* name_;
  int succeeded_ = 0, failed_ = 0;
};

constexpr int64_t capacities[] = {0, 3, 64};

TEST(Forwarders, DatesAndTimesWritten) {
  const double missing = qmMissVal('.');
  Pair date("date");
  for (const uint32_t day : {7u, 32u}) {
    for (const int32_t style : {0, 1, 2}) {
      for (const int64_t capacity : capacities) {
        date.expect_same(&vxzsu8DateFormat, &NLSDateFormatU, [&](auto f, Trace& t) {
          return f(english().get(), 3, day, 2024, style, t.buffer.data(), capacity, &t.length);
        });
      }
    }
  }
  for (const int32_t flag : {0, 1}) {
    Pair time("time"), datetime("datetime");
    for (const double value : {45296.0, -1.0, missing}) {
      for (const int64_t capacity : capacities) {
        time.expect_same(&vxzsu8TimeFormat, &NLSTimeFormatU, [&](auto f, Trace& t) {
          return f(english().get(), flag, t.buffer.data(), capacity, &t.length, value);
        });
        datetime.expect_same(&vxzsu8DatetimeFormat, &NLSDatetimeFormatU, [&](auto f, Trace& t) {
          return f(english().get(), 9, t.buffer.data(), capacity, &t.length, value);
        });
      }
    }
  }
}

const std::string_view texts[] = {"",         "12",      "-1,234.5e1 ",         "99999999999999999999",
                                  "x",        " 7 ",     "03/07/2024",          "3 Mar 2024",
                                  "14:05:09", "2:05 PM", "03/07/2024 14:05:09", ".A"};

const uint8_t* bytes(std::string_view text) { return reinterpret_cast<const uint8_t*>(text.data()); }

TEST(Forwarders, DatesAndTimesRead) {
  Pair date("to date"), time("to time"), datetime("to datetime");
  for (const std::string_view text : texts) {
    const auto length = static_cast<int64_t>(text.size());
    for (const uint32_t kind : {0u, 1u, 2u, 4u, 8u, 0x40u}) {
      date.expect_same(&vxzsu8ToDate, &NLSBufToDateU, [&](auto f, Trace& t) {
        uint32_t parts[] = {71, 72, 73};
        const VXStatus status = f(english().get(), bytes(text), length, kind, parts, parts + 1, parts + 2, &t.length);
        for (size_t i = 0; i < 3; ++i) t.values[i] = parts[i];
        return status;
      });
      const auto seconds = [&](auto f, Trace& t) {
        double value = -0.5;
        const VXStatus status = f(english().get(), bytes(text), length, kind, &value, &t.length);
        t.values[0] = std::bit_cast<uint64_t>(value);
        return status;
      };
      time.expect_same(&vxzsu8ToTime, &NLSBufToTimeU, seconds);
      datetime.expect_same(&vxzsu8ToDatetime, &NLSBufToDatetimeU, seconds);
    }
  }
}

TEST(Forwarders, Doubles) {
  Pair written("double"), read("to double"), read_with("to double with options");
  const NLSDoubleExOpts star = {1, {}, '*'};
  for (const double value : {0.0, -1234567.891, 1e300, qmMissVal('B')}) {
    for (const int64_t size : capacities) {
      for (const NLSDoubleExOpts* const options : {static_cast<const NLSDoubleExOpts*>(nullptr), &star}) {
        written.expect_same(&vxzsu8DoubleFormat, &NLSDoubleFormatUWithExOpts, [&](auto f, Trace& t) {
          return f(english().get(), 12, 2, 0x20000, t.buffer.data(), size, &t.length, options, value);
        });
      }
    }
  }
  for (const std::string_view text : texts) {
    const auto length = static_cast<int32_t>(text.size());
    const auto keep = [](Trace& t, double value, VXStatus status) {
      t.values[0] = std::bit_cast<uint64_t>(value);
      return status;
    };
    read.expect_same(&vxzsu8ToDouble, &NLSBufToDoubleU, [&](auto f, Trace& t) {
      double value = -0.5;
      const VXStatus status = f(english().get(), bytes(text), length, &value, &t.length);
      return keep(t, value, status);
    });
    for (const uint32_t flags : {0u, 0x4000u}) {
      read_with.expect_same(&vxzsu8ToDoubleWithOpts, &NLSBufToDoubleUWithOpts, [&](auto f, Trace& t) {
        double value = -0.5;
        const VXStatus status = f(english().get(), bytes(text), length, flags, &value, &t.length);
        return keep(t, value, status);
      });
    }
  }
}

template <class Integer, class Function>
void expect_same_written(const char* name, Function* forwarder, std::type_identity_t<Function>* entry_point) {
  Pair pair(name);
  using Limits = std::numeric_limits<Integer>;
  for (const Integer value : {Limits::min(), Integer{0}, Integer{1234567}, Limits::max()}) {
    for (const int64_t size : capacities) {
      for (const uint32_t flags : {0u, 0x20000u, 0x80u}) {
        pair.expect_same(forwarder, entry_point, [&](auto f, Trace& t) {
          return f(english().get(), value, 5, 1, flags, t.buffer.data(), size, &t.length);
        });
      }
    }
  }
}

template <class Integer, class Function>
void expect_same_read(const char* name, Function* forwarder, std::type_identity_t<Function>* entry_point) {
  Pair pair(name);
  for (const std::string_view text : texts) {
    for (const uint32_t flags : {0u, 1u}) {
      pair.expect_same(forwarder, entry_point, [&](auto f, Trace& t) {
        Integer value = 99;
        const VXStatus status =
            f(english().get(), bytes(text), static_cast<int64_t>(text.size()), flags, &value, &t.values[1]);
        t.values[0] = static_cast<uint64_t>(value);
        return status;
      });
    }
  }
}

TEST(Forwarders, Integers) {
#define VX_INTEGER(name, type)                                                            \
  expect_same_written<type>(#name " format", &vxzsu8##name##Format, &NLS##name##FormatU); \
  expect_same_read<type>("to " #name, &vxzsu8To##name, &NLSBufTo##name##U);
  VX_INTEGER(Int, int32_t)
  VX_INTEGER(Intfast, int32_t)
  VX_INTEGER(UInt, uint32_t)
  VX_INTEGER(Uintfast, uint32_t)
  VX_INTEGER(Long, int64_t)
  VX_INTEGER(Intmax, int64_t)
  VX_INTEGER(ULong, uint64_t)
  VX_INTEGER(Uintmax, uint64_t)
#undef VX_INTEGER
  expect_same_written<uint64_t>("Pointer format", &vxzsu8PointerFormat, &NLSPointerFormatU);
}

}  // namespace
