// What the C++ face costs: its calls beside the calls of the C interface that they make.
#include "vxnls/vxnls.hpp"

#include "bench/common.h"

using namespace vxbench;
using namespace std::chrono;

int main(int argc, char** argv) {
  VXLocale* const raw = locale("de_DE", "Europe/Berlin");
  const vxnls::locale german(raw);
  const NLSOps& ops = raw->ops;
  static char room[64];
  const auto bytes = reinterpret_cast<uint8_t*>(room);
  static int64_t length = 0;

  const auto days_out = values<year_month_day>(
      "a day", [](Random& random) { return year_month_day{sys_days{days{between(random, -50000, 50000)}}}; });
  const auto c_date = [=, &ops](size_t i) {
    const year_month_day& day = days_out[i];
    return ops.NLSDateFormatU(raw, static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                              static_cast<uint32_t>(static_cast<int>(day.year())), 0, bytes, sizeof room, &length);
  };
  Row("face-date-to-memory", "write a date into memory of the caller's", {.reach = 1.15})
      .ours([=](size_t i) { return german.format_to(room, days_out[i])->size(); })
      .peer("the C call", c_date);
  Row("face-date-to-string", "write a date into a `std::string` of its own", {})
      .ours([=](size_t i) { return german.format(days_out[i])->size(); })
      .peer("the C call", c_date);

  const auto texts = values<std::string>("a date", [&](Random& random) {
    return *german.format(year_month_day{sys_days{days{between(random, -50000, 50000)}}});
  });
  Row("face-date-from-text", "read a date", {.reach = 1.5})
      .ours([=](size_t i) { return german.parse<year_month_day>(texts[i])->year(); })
      .peer("the C call", [=, &ops](size_t i) {
        uint32_t month = 0, day = 0, year = 0;
        ops.NLSBufToDateU(raw, reinterpret_cast<const uint8_t*>(texts[i].data()), static_cast<int64_t>(texts[i].size()),
                          0, &month, &day, &year, &length);
        return year;
      });

  const auto numbers = values<double>(
      "an amount", [](Random& random) { return static_cast<double>(between(random, 0, 100000000)) / 100; });
  Row("face-double-to-memory", "write a double, grouped, two decimals", {.reach = 1.1})
      .ours([=](size_t i) { return german.format_to(room, numbers[i], {.decimals = 2, .group = true})->size(); })
      .peer("the C call", [=, &ops](size_t i) {
        return ops.NLSDoubleFormatUWithExOpts(raw, 0, 2, NLS_FORMAT_PLAIN | NLS_FORMAT_GROUP, bytes, sizeof room,
                                              &length, nullptr, numbers[i]);
      });
  const auto amounts = values<std::string>("an amount in text", [&](Random& random) {
    return *german.format(static_cast<double>(between(random, 0, 100000000)) / 100, {.decimals = 2, .group = true});
  });
  Row("face-double-from-text", "read a double, grouped, two decimals", {.reach = 1.25})
      .ours([=](size_t i) { return *german.parse<double>(amounts[i]); })
      .peer("the C call", [=, &ops](size_t i) {
        double value = 0;
        ops.NLSBufToDoubleUWithOpts(raw, reinterpret_cast<const uint8_t*>(amounts[i].data()),
                                    static_cast<int32_t>(amounts[i].size()), 0, &value, &length);
        return value;
      });
  return run("C++ face", argc, argv);
}
