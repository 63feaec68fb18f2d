// Patterns of three numbers with one character between them, as "%d.%m.%Y" or "%H:%M:%S": nearly all that locales have
// without names. They are told by eight characters at once and then need no walk.
#ifndef VXNLS_CALENDAR_TRIPLES_H
#define VXNLS_CALENDAR_TRIPLES_H

#include "unicode/eight_units.h"

namespace vxnls {

enum class Order : uint8_t { none, day_month_year, month_day_year, year_month_day, hour_minute_second };

/// Eight characters as a number.
constexpr Eight eight_characters(const char* text) {
  Eight characters = 0;
  for (int i = 0; i < 8; ++i) characters |= Eight{static_cast<uint8_t>(text[i])} << 8 * i;
  return characters;
}

/// A pattern of this kind, and its text in two digits a number: where what stands between the numbers stands.
inline constexpr Eight between_numbers = eight_characters("\0\0\xFF\0\0\xFF\0\0");

struct Triple {
  Order order;
  Eight between;  // what stands there, ASCII, neither "%" nor NUL; other bytes are 0

  constexpr uint8_t first() const { return static_cast<uint8_t>(between >> 16); }
  constexpr uint8_t second() const { return static_cast<uint8_t>(between >> 40); }
};

inline constexpr int64_t triple_length = 8;                           // of its pattern
inline constexpr int64_t two_triples_length = 2 * triple_length + 1;  // a date, a character, a time
inline constexpr int64_t date_length = 10, time_length = 8;           // of its text
inline constexpr int64_t date_and_time_length = date_length + 1 + time_length;

/// The triple in eight units of a pattern: of a time when `of_time`, else of a date.
template <bool of_time>
[[gnu::always_inline]] inline Triple triple_at(const VXChar* from) {
  constexpr Eight ones = between_numbers & eight_of(1), highs = between_numbers & eight_of(0x80),
                  percents = between_numbers & eight_of('%');
  const Eight characters = take_eight(from), between = characters & between_numbers;
  // NUL may stand for what is no byte.
  if (((between | (between - ones) | ((between ^ percents) - ones)) & highs) != 0) return {};
  const Eight numbers = characters & ~between_numbers;
  if constexpr (of_time) {
    if (numbers == eight_characters("%H\0%M\0%S")) return {Order::hour_minute_second, between};
  } else {
    if (numbers == eight_characters("%Y\0%m\0%d")) return {Order::year_month_day, between};
    if (numbers == eight_characters("%d\0%m\0%Y")) return {Order::day_month_year, between};
    if (numbers == eight_characters("%m\0%d\0%Y")) return {Order::month_day_year, between};
  }
  return {};
}

/// A pattern of a date, one character that stands for itself, and a time.
struct TwoTriples {
  Triple date, time;
  VXChar between;

  explicit operator bool() const { return date.order != Order::none && time.order != Order::none; }
};

/// Of 17 units of a pattern.
[[gnu::always_inline]] inline TwoTriples two_triples_at(const VXChar* from) {
  const VXChar between = from[triple_length];
  if (between >= 0x80 || between == '%') return {};
  return {triple_at<false>(from), triple_at<true>(from + triple_length + 1), between};
}

}  // namespace vxnls

#endif
