// The short road of both readers: a pattern of three numbers, or of a date and a time, and a text that has all their
// digits. What it reads is what the walk reads; what it does not read is left to the walk.
#ifndef VXNLS_DATETIME_PARSE_TRIPLES_H
#define VXNLS_DATETIME_PARSE_TRIPLES_H

#include <initializer_list>

#include "calendar/civil.h"
#include "calendar/triples.h"
#include "datetime_parse/directives.h"

namespace vxnls {

/// Three numbers of two digits each; not `found` where one is none, or what stands between them is not what shall.
struct ThreeNumbers {
  bool found;
  uint32_t first, second, third;
};

[[gnu::always_inline]] inline ThreeNumbers three_numbers(Eight text, Triple triple) {
  constexpr Eight numbers = ~between_numbers, high = eight_of(0x80);
  constexpr Eight above = (eight_of(0x7F - 9) & numbers) | (eight_of(0x7F) & between_numbers);
  const Eight digits = text ^ (triple.between | (eight_of('0') & numbers));  // 0 to 9, and 0 between
  const Eight values = 10 * digits + (digits >> 8);                          // in each byte, with the one after it
  const auto byte = [=](int i) { return static_cast<uint32_t>(values >> 8 * i) & 0xFF; };
  return {((digits | (digits + above)) & high) == 0, byte(0), byte(3), byte(6)};
}

/// Whether both readers take the numbers of a letter from `minimum` to `maximum`.
constexpr bool ranges_are(VXChar letter, int32_t minimum, int32_t maximum) {
  for (const QuickNumbers* numbers : {&quick_strict_numbers, &quick_lenient_numbers}) {
    const QuickNumber& number = numbers->of(letter);
    if (number.minimum != minimum || number.span != static_cast<uint32_t>(maximum - minimum)) return false;
  }
  return true;
}
static_assert(ranges_are('Y', first_year, last_year) && ranges_are('m', 1, 12) && ranges_are('d', 1, 31));
static_assert(ranges_are('H', 0, 23) && ranges_are('M', 0, 59) && ranges_are('S', 0, 59));

/// The date in ten units of a text, if they are one: in ranges that fit the directives, but not always a day that is.
template <class Unit>
[[gnu::always_inline]] inline bool read_triple(const Unit* at, Triple triple, CivilDate& date) {
  const bool year_first = triple.order == Order::year_month_day;
  const ThreeNumbers numbers = three_numbers(take_eight(year_first ? at + 2 : at), triple);
  const int32_t other = two_digits_at(year_first ? at : at + 8);
  if (!numbers.found || other < 0) return false;
  const auto other_part = static_cast<uint32_t>(other);
  const bool month_first = triple.order == Order::month_day_year;
  const uint32_t year = year_first ? 100 * other_part + numbers.first : 100 * numbers.third + other_part;
  const uint32_t day = year_first ? numbers.third : month_first ? numbers.second : numbers.first;
  const uint32_t month = month_first ? numbers.first : numbers.second;
  if (year < static_cast<uint32_t>(first_year) || month - 1 > 11 || day - 1 > 30) return false;
  date = {static_cast<int32_t>(year), static_cast<int32_t>(month), static_cast<int32_t>(day)};
  return true;
}

/// The time in eight units of a text, if they are one.
template <class Unit>
[[gnu::always_inline]] inline bool read_triple(const Unit* at, Triple triple, TimeOfDay& time) {
  const ThreeNumbers numbers = three_numbers(take_eight(at), triple);
  if (!numbers.found || numbers.first > 23 || numbers.second > 59 || numbers.third > 59) return false;
  time = {static_cast<int32_t>(numbers.first), static_cast<int32_t>(numbers.second),
          static_cast<int32_t>(numbers.third)};
  return true;
}

/// What a pattern of one kind reads at the front of a text; false: hold them against each other in earnest.
template <class Text>
[[gnu::always_inline]] inline bool reads_quickly(TextView pattern, const Input<Text>& in, CivilDate& date) {
  if (pattern.length != triple_length || in.left < date_length) return false;
  const Triple triple = triple_at<false>(pattern.text);
  return triple.order != Order::none && read_triple(in.at, triple, date);
}

template <class Text>
[[gnu::always_inline]] inline bool reads_quickly(TextView pattern, const Input<Text>& in, TimeOfDay& time) {
  if (pattern.length != triple_length || in.left < time_length) return false;
  const Triple triple = triple_at<true>(pattern.text);
  return triple.order != Order::none && read_triple(in.at, triple, time);
}

template <class Text>
[[gnu::always_inline]] inline bool reads_quickly(TextView pattern, const Input<Text>& in, CivilDate& date,
                                                 TimeOfDay& time) {
  if (pattern.length != two_triples_length || in.left < date_and_time_length) return false;
  const TwoTriples triples = two_triples_at(pattern.text);
  return triples && in.at[date_length] == triples.between && read_triple(in.at, triples.date, date) &&
         read_triple(in.at + date_length + 1, triples.time, time);
}

/// The same for either reader, which may be given any pattern; moves past what was read. The lenient one refuses a
/// number with a digit behind it.
template <class Text>
bool reads_quickly(TextView pattern, Input<Text>& in, bool lenient, NLSParseFields& fields) {
  if (pattern.length != triple_length) return false;
  CivilDate date;
  if (!reads_quickly<Text>(pattern, in, date)) return false;
  const auto stands_digit = [&](int64_t i) { return i < in.left && in.at[i] - uint32_t{'0'} <= 9; };
  const bool year_first = stands_digit(2);
  if (lenient && (stands_digit(date_length) || stands_digit(year_first ? 4 : 2) || stands_digit(year_first ? 7 : 5))) {
    return false;
  }
  fields = cleared_fields;
  fields.year = date.year;
  fields.month = date.month;
  fields.day = date.day;
  in.skip(date_length);
  return true;
}

}  // namespace vxnls

#endif
