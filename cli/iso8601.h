// ISO 8601 as people and programs write it, read strictly: the values of the command, not the texts of a locale.
#ifndef VXNLS_CLI_ISO8601_H
#define VXNLS_CLI_ISO8601_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace vxcli::iso8601 {

struct Date {
  int32_t year, month, day;
};

struct Time {
  int32_t hour, minute, second;
};

struct Text {
  std::optional<Date> date;
  std::optional<Time> time;
  std::optional<int32_t> offset;  // seconds east of UTC; only with a time
};

struct Fault {
  size_t at;             // byte of the text, from 0
  std::string expected;  // "a month from 01 to 12"
};

/// Reads a date (2026-11-21), a time (14:05, 14:05:09, 14:05:09.25) or both with "T" or a blank between them, the time
/// with an offset behind it or not (Z, +02, +0200, +02:00). Decimals of a second are read and left out, because no
/// pattern of a locale shows them. Years have four or five digits, 1582 to 20000, and a sign if need be; days run to 31
/// in every month. Nothing else may stand in the text.
std::variant<Text, Fault> read(std::string_view text);

std::string write(const Date& date);        // 2026-11-21
std::string write_offset(int32_t seconds);  // +02:00, with seconds where there are any

}  // namespace vxcli::iso8601

#endif
