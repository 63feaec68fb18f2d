// Runs the key calls under valgrind --tool=callgrind, each over the same seeded values; `script/bench --instructions`
// compares the counts with bench/instructions.txt. Linked directly and not position-independent, as the oldest kind of
// program: that the drivers know its coders shows in the counts.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <string>
#include <vector>

#include "bench/texts.h"

using namespace vxbench;

namespace {

constexpr size_t calls = 256;

struct Text {
  VXChar units[64];
  int64_t length;
};

/// Prints nothing: callgrind writes a dump that is named after the call and holds the count of all calls.
template <class Call>
void count(const char* name, Call call) {
  for (size_t i = 0; i < 16; ++i) call(i);  // symbols are bound, caches of the host filled
  CALLGRIND_ZERO_STATS;
  for (size_t i = 0; i < calls; ++i) call(i);
  CALLGRIND_DUMP_STATS_AT(name);
}

template <class Write>
std::vector<Text> written(Write write) {
  std::vector<Text> texts(calls);
  for (size_t i = 0; i < calls; ++i) require(write(i, texts[i].units, &texts[i].length) == 0, "a value is not written");
  return texts;
}

void text_calls() {
  static uint8_t out[16384 + 64], wide[16384 + 64];
  int64_t length = 0;
  for (const Kind& kind : kinds) {
    Random random = random_of(kind.id);
    static std::string text;
    text = text_of(kind, 4096, random);
    const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data());
    const std::string of = std::string(" ") + kind.id;
    const auto to = [&](int64_t n) {
      return ConvertToUTF32(bytes, n, wide, sizeof wide, &length, UTF8_UTF32, COPY_UTF32_SWAP);
    };
    count(("utf8-to-utf32-4k" + of).c_str(), [&](size_t) { to(4096); });
    const int64_t units = length;
    count(("utf32-to-utf8-4k" + of).c_str(),
          [&](size_t) { ConvertFromUTF32(wide, units, out, sizeof out, &length, UTF32_UTF8, Byte2DWord); });
    if (kind.ascii == 85) {
      count("utf8-to-utf32-64 latin", [&](size_t) { to(64); });
      count("count-characters-4k latin", [&](size_t) { vxzsu8NumChars(bytes, 4096); });
      count("lower-4k latin", [&](size_t) { vxzsu8Lower2(bytes, 4096, out, sizeof out, &length); });
    }
  }
}

void date_calls(VXLocale* locale) {
  VXChar out[64];
  int64_t length = 0, consumed = 0;
  double value = 0;
  uint32_t month = 0, day = 0, year = 0;
  Random random = random_of("dates");
  std::vector<double> moments(calls);
  for (double& moment : moments) moment = static_cast<double>(between(random, 0, 4'000'000'000));
  const auto date = [&](size_t i, VXChar* to, int64_t* size) {
    const auto m = static_cast<uint32_t>(i % 12 + 1), d = static_cast<uint32_t>(i % 28 + 1);
    return NLSDateFormat(locale, m, d, static_cast<uint32_t>(1960 + i % 100), 0, to, 64, size);
  };
  const auto moment = [&](size_t i, VXChar* to, int64_t* size) {
    return NLSDatetimeFormat(locale, 0, to, 64, size, moments[i]);
  };
  const auto dates = written(date), datetimes = written(moment);
  count("write-date", [&](size_t i) { date(i, out, &length); });
  count("write-datetime", [&](size_t i) { moment(i, out, &length); });
  count("read-date",
        [&](size_t i) { NLSBufToDate(locale, dates[i].units, dates[i].length, 0, &month, &day, &year, &consumed); });
  count("recognise-date",
        [&](size_t i) { NLSBufToDate(locale, dates[i].units, dates[i].length, 4, &month, &day, &year, &consumed); });
  count("read-datetime",
        [&](size_t i) { NLSBufToDatetime(locale, datetimes[i].units, datetimes[i].length, 0, &value, &consumed); });
}

void number_calls(VXLocale* locale) {
  VXChar out[64];
  int64_t length = 0, consumed = 0, integer = 0;
  uint64_t used = 0;
  double value = 0;
  Random random = random_of("numbers");
  std::vector<int64_t> integers(calls);
  for (int64_t& each : integers) each = between(random, -1'000'000'000'000, 1'000'000'000'000);
  const auto in_cents = [&](size_t i) {
    const int64_t cents = integers[i] / 1000;
    return static_cast<double>(cents) / 100;
  };
  const auto fixed = [&](size_t i, VXChar* to, int64_t* size) {
    return NLSDoubleFormat(locale, 20, 2, NLS_FORMAT_FIXED | NLS_FORMAT_GROUP, to, 64, size, in_cents(i));
  };
  const auto grouped = [&](size_t i, VXChar* to, int64_t* size) {
    return NLSLongFormat(locale, integers[i], 0, 0, NLS_FORMAT_GROUP, to, 64, size);
  };
  const auto doubles = written(fixed), longs = written(grouped);
  count("write-double-grouped", [&](size_t i) { fixed(i, out, &length); });
  count("write-double-12.2",
        [&](size_t i) { NLSDoubleFormat(locale, 12, 2, NLS_FORMAT_FIXED, out, 64, &length, in_cents(i)); });
  count("write-double-general",
        [&](size_t i) { NLSDoubleFormat(locale, 0, 15, NLS_FORMAT_GENERAL, out, 64, &length, in_cents(i)); });
  count("write-int64", [&](size_t i) { NLSLongFormat(locale, integers[i], 0, 0, 0, out, 64, &length); });
  count("write-int64-grouped", [&](size_t i) { grouped(i, out, &length); });
  count("read-double-grouped", [&](size_t i) {
    NLSBufToDouble(locale, doubles[i].units, static_cast<int32_t>(doubles[i].length), &value, &consumed);
  });
  count("read-int64-grouped",
        [&](size_t i) { NLSBufToLong(locale, longs[i].units, longs[i].length, 0, &integer, &used); });
}

}  // namespace

int main() {
  VXLocale* const locale = vxbench::locale("de_DE");
  text_calls();
  date_calls(locale);
  number_calls(locale);
  return 0;
}
