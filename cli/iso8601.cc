#include "cli/iso8601.h"

#include <fmt/format.h>

#include <charconv>
#include <cstdlib>

namespace vxcli::iso8601 {

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

/// Reads from left to right; the first thing that is not as expected ends it with a Fault.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  Text read() {
    Text result;
    const bool marked = is_digit(peek(1)) && (take('T') || take('t'));
    if (!marked && !begins_with_time()) {
      result.date = date();
      if (at_end()) return result;
      if (!take('T') && !take('t') && !take(' ')) miss(at_, "\"T\" and a time, or the end");
    }
    result.time = time();
    if (!at_end()) result.offset = offset();
    if (!at_end()) miss(at_, "the end");
    return result;
  }

 private:
  [[noreturn]] static void miss(size_t at, std::string expected) { throw Fault{at, std::move(expected)}; }

  bool at_end() const { return at_ == text_.size(); }
  char peek(size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }
  bool take(char c) {
    if (at_end() || text_[at_] != c) return false;
    ++at_;
    return true;
  }
  size_t digits_ahead() const {
    size_t count = 0;
    while (is_digit(peek(count))) ++count;
    return count;
  }
  bool begins_with_time() const { return digits_ahead() == 2 && peek(2) == ':'; }

  /// Two digits that make a number from `low` to `high`.
  int32_t two_digits(int32_t low, int32_t high, std::string_view what) {
    const size_t start = at_;
    if (digits_ahead() != 2) miss(start, fmt::format("{} of two digits", what));
    const int32_t value = (text_[at_] - '0') * 10 + (text_[at_ + 1] - '0');
    if (value < low || value > high) miss(start, fmt::format("{} from {:02} to {:02}", what, low, high));
    at_ += 2;
    return value;
  }

  void hyphen() {
    if (!take('-')) miss(at_, "\"-\"");
  }

  Date date() {
    const size_t start = at_;
    const bool negative = take('-');
    if (!negative) take('+');
    const size_t count = digits_ahead();
    if (count == 0) miss(start, "a date as 2026-11-21, or a time as 14:05");
    if (count < 3 && peek(count) == ':') miss(start, "an hour of two digits");
    int32_t year = 0;
    if (count == 4 || count == 5) std::from_chars(text_.data() + at_, text_.data() + at_ + count, year);
    if (negative || year < 1582 || year > 20000) miss(start, "a year from 1582 to 20000");
    at_ += count;
    hyphen();
    const int32_t month = two_digits(1, 12, "a month");
    hyphen();
    return {year, month, two_digits(1, 31, "a day")};
  }

  Time time() {
    Time result{};
    result.hour = two_digits(0, 23, "an hour");
    if (!take(':')) miss(at_, "\":\" and minutes");
    result.minute = two_digits(0, 59, "a minute");
    if (!take(':')) return result;
    result.second = two_digits(0, 59, "a second");
    if (!take('.') && !take(',')) return result;
    if (digits_ahead() == 0) miss(at_, "decimals of a second");
    at_ += digits_ahead();
    return result;
  }

  int32_t offset() {
    if (take('Z') || take('z')) return 0;
    if (peek() == ' ' && (peek(1) == '+' || peek(1) == '-')) ++at_;
    const bool west = peek() == '-';
    if (!west && peek() != '+') miss(at_, "an offset as +02:00 or Z, or the end");
    ++at_;
    // Hours and minutes may stand together, so they are counted before they are read.
    const size_t count = digits_ahead();
    if (count != 2 && count != 4) miss(at_, "an offset as +02, +0200 or +02:00");
    const int32_t hours = (text_[at_] - '0') * 10 + (text_[at_ + 1] - '0');
    if (hours > 23) miss(at_, "hours from 00 to 23");
    at_ += 2;
    const bool with_minutes = count == 4 || take(':');
    const int32_t minutes = with_minutes ? two_digits(0, 59, "minutes") : 0;
    return (west ? -1 : 1) * (hours * 3600 + minutes * 60);
  }

  const std::string_view text_;
  size_t at_ = 0;
};

}  // namespace

std::variant<Text, Fault> read(std::string_view text) {
  try {
    return Reader(text).read();
  } catch (Fault& fault) {
    return std::move(fault);
  }
}

std::string write(const Date& date) { return fmt::format("{:04}-{:02}-{:02}", date.year, date.month, date.day); }

std::string write_offset(int32_t seconds) {
  const int32_t size = std::abs(seconds);
  std::string text = fmt::format("{}{:02}:{:02}", seconds < 0 ? '-' : '+', size / 3600, size / 60 % 60);
  if (size % 60 != 0) text += fmt::format(":{:02}", size % 60);
  return text;
}

}  // namespace vxcli::iso8601
