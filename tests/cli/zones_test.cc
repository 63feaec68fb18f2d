// Zones against the C library, which reads the same tz database with code of its own.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "tests/cli/command_line.h"

namespace {

std::string c_library(const char* zone, const std::vector<int64_t>& instants) {
  setenv("TZ", zone, 1);
  tzset();
  std::string text;
  for (const int64_t instant : instants) {
    const auto seconds = static_cast<time_t>(instant);
    tm parts{};
    localtime_r(&seconds, &parts);
    const long minutes = std::labs(parts.tm_gmtoff) / 60;
    text += fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02} {}{:02}{:02} {} {}\n", parts.tm_year + 1900,
                        parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                        parts.tm_gmtoff < 0 ? '-' : '+', minutes / 60, minutes % 60, parts.tm_wday, zone);
  }
  unsetenv("TZ");
  tzset();
  return text;
}

TEST(Zones, InstantsAgreeWithTheCLibrary) {
  // Every 6 hours and 17 seconds of three years, every half hour of two months with changes of summer time, and steps
  // of about 100 days from 1850 to 2400.
  std::vector<int64_t> instants;
  for (const int64_t year : {1942, 1996, 2026}) {
    const int64_t begin = (year - 1970) * 31556952;
    for (int64_t at = begin; at < begin + 31556952; at += 6 * 3600 + 17) instants.push_back(at);
  }
  for (int64_t at = 1773000000; at < 1775600000; at += 1800) instants.push_back(at);  // March 2026
  for (int64_t at = 1792000000; at < 1794600000; at += 1800) instants.push_back(at);  // October and November 2026
  for (int64_t at = -3786825600; at < 13569465600; at += 8640001) instants.push_back(at);
  std::string lines;
  for (const int64_t instant : instants) lines += fmt::format("@{}\n", instant);

  for (const char* zone :
       {"Etc/UTC",           "Europe/Berlin",     "Europe/London",       "Europe/Dublin", "America/New_York",
        "America/St_Johns",  "America/Sao_Paulo", "Asia/Kolkata",        "Asia/Tokyo",    "Asia/Kathmandu",
        "Africa/Casablanca", "Africa/Cairo",      "Australia/Lord_Howe", "Pacific/Apia",  "Pacific/Auckland",
        "Antarctica/Troll",  "Asia/Tehran",       "Asia/Gaza",           "America/Nuuk",  "Pacific/Chatham"}) {
    SCOPED_TRACE(zone);
    const auto result = vxtest::run_line(
        fmt::format("vxnls format datetime -z {} --pattern '%Y-%m-%d %H:%M:%S %z %W %Z'", zone), lines);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(result.out == c_library(zone, instants));
  }
}

}  // namespace
