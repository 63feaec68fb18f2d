#include "cli/column/library.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <span>

#include "cli/column/clean.h"
#include "cli/text.h"
#include "cli/value.h"
#include "vxnls/locale_blocks.h"

namespace vxcli::column {

namespace {

constexpr uint32_t strictly = 0;
constexpr uint32_t leniently = 0x44;  // the main pattern alone
constexpr uint32_t any_time = 4;
constexpr uint32_t kind_of_length[] = {16, 8, 128};  // by PeriodForm::Length

const uint8_t* bytes(std::string_view text) { return reinterpret_cast<const uint8_t*>(text.data()); }
int64_t size_of(std::string_view text) { return static_cast<int64_t>(text.size()); }

bool is_digit(char c) { return c >= '0' && c <= '9'; }

/// The longest run of digits.
size_t longest_number(std::string_view text) {
  size_t longest = 0, run = 0;
  for (const char c : text) {
    run = is_digit(c) ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  return longest;
}

bool right_year(const Piece& piece, std::string_view read) {
  if (piece.year_digits == 0) return true;
  return piece.year_digits == 4 ? longest_number(read) >= 4 : longest_number(read) <= 2;
}

void store(NLSName& name, std::string_view text) {
  const auto units = utf32(text);
  if (!units || units->size() > std::size(name.text)) return;
  std::copy(units->begin(), units->end(), name.text);
  name.length = static_cast<int64_t>(units->size());
}

/// Only what counts of it.
void copy(NLSName& to, const NLSName& from) {
  to.length = from.length;
  std::memcpy(to.text, from.text, static_cast<size_t>(from.length) * sizeof(VXChar));
}

/// Names as they stand in cleaned texts.
void clean_names(std::span<NLSName> names) {
  for (NLSName& name : names) {
    Cleaned cleaned;
    const std::string text = utf8(name);
    cleaned.set(text, false);
    store(name, cleaned.text());
  }
}

void clean_record(VXLocaleData& data) {
  clean_names(data.dayNames);
  clean_names(data.altDayNames);
  clean_names(data.monthNames);
  clean_names(data.altMonthNames);
  clean_names(data.quarterNames);
  clean_names({&data.amMarker, 1});
  clean_names({&data.pmMarker, 1});
}

std::string folded(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 0x20);
  }
  return lower;
}

int64_t number_of(const Day& day) { return day_number({day.year, day.month, day.day}); }

}  // namespace

bool exists(const Day& day) {
  constexpr int8_t lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (day.month < 1 || day.month > 12 || day.day < 1) return false;
  // As in the library's calendar, the year 4000 is a common one.
  const bool leap = day.year % 4 == 0 && (day.year % 100 != 0 || day.year % 400 == 0) && day.year % 4000 != 0;
  return day.day <= lengths[day.month - 1] + (leap && day.month == 2 ? 1 : 0);
}

bool move_into_century(Day& day, int32_t first_year) {
  day.year = first_year + ((day.year - first_year) % 100 + 100) % 100;
  return exists(day);
}

int weekday_of(const Day& day) {
  constexpr int64_t friday = 5, whole_weeks = 140'000;  // of day 0; so that nothing is below 0
  return static_cast<int>((number_of(day) + friday + whole_weeks) % 7);
}

Week week_of(const Day& day) {
  const int64_t monday = number_of(day) - (weekday_of(day) + 6) % 7;
  const int64_t thursday = monday + 3;
  const int32_t year = date_of(thursday).year;
  return {year, static_cast<int32_t>((thursday - number_of({year, 1, 1})) / 7 + 1)};
}

Library::Library(const LocaleMaker& make_locale, const std::string& locale, bool strict) {
  for (VXLocale*& each : locales_) each = make_locale(locale);
  VXLocaleData& alone = *locales_[1]->localeData;
  const auto& texts = *reinterpret_cast<const VXLocaleTexts*>(alone.block9);
  std::copy(std::begin(texts.standaloneMonths), std::end(texts.standaloneMonths), alone.monthNames);
  std::copy(std::begin(texts.standaloneAltMonths), std::end(texts.standaloneAltMonths), alone.altMonthNames);
  std::copy(std::begin(texts.standaloneDays), std::end(texts.standaloneDays), alone.dayNames);
  std::copy(std::begin(texts.standaloneAltDays), std::end(texts.standaloneAltDays), alone.altDayNames);
  // Quarters stand alone by their full names, or as Q1 to Q4 where the locale abbreviates them otherwise.
  const bool known = utf8(alone.quarterNames[0]) == "Q1";
  for (size_t i = 0; i < 4; ++i) {
    if (known) alone.quarterNames[i] = alone.names14336[i];
    else store(alone.quarterNames[i], fmt::format("Q{}", i + 1));
  }
  store(alone.amMarker, "AM");
  store(alone.pmMarker, "PM");
  if (!strict) {
    for (VXLocale* each : locales_) clean_record(*each->localeData);
  }
  const VXLocaleData& data = *locales_[0]->localeData;
  for (size_t i = 0; i < 7; ++i) {
    weekdays_[i] = folded(utf8(data.dayNames[i]));
    weekdays_[7 + i] = folded(utf8(data.altDayNames[i]));
  }
  weekday_piece_ = make_date_form("%A", strict).pieces[0];
  offset_piece_ = make_time_form("%z", strict).piece;
}

std::vector<std::string> Library::names(std::string_view directive) const {
  std::vector<std::string> all;
  const auto add = [&](std::span<const NLSName> list) {
    for (const NLSName& name : list) all.push_back(utf8(name));
  };
  for (const VXLocale* each : locales_) {
    const VXLocaleData& data = *each->localeData;
    if (directive == "%b") {
      add(data.monthNames);
      add(data.altMonthNames);
    } else if (directive == "%A") {
      add(data.dayNames);
      add(data.altDayNames);
    } else if (directive == "%q") {
      add(data.quarterNames);
    } else {
      add({&data.amMarker, 1});
      add({&data.pmMarker, 1});
    }
  }
  return all;
}

void Library::set_date(size_t names, const Piece& piece) {
  if (date_[names] == piece.id) return;
  copy(locales_[names]->localeData->datePattern, piece.units);
  date_[names] = piece.id;
}

void Library::set_time(size_t names, const Piece& piece) {
  if (time_[names] == piece.id) return;
  copy(locales_[names]->localeData->timePattern, piece.units);
  time_[names] = piece.id;
}

void Library::set_period(size_t names, const PeriodForm& form) {
  VXLocaleData& data = *locales_[names]->localeData;
  using Length = PeriodForm::Length;
  NLSName* const first = form.length == Length::week      ? &data.weekPattern1
                         : form.length == Length::quarter ? &data.quarterPattern1
                                                          : &data.monthYearPattern1;
  NLSName* const second = form.length == Length::week      ? &data.weekPattern2
                          : form.length == Length::quarter ? &data.quarterPattern2
                                                           : &data.monthYearPattern2;
  copy(*first, form.piece.units);
  copy(*second, form.piece.units);
}

bool Library::date(const Piece& piece, std::string_view text, Day& day, size_t& consumed) {
  const size_t last = piece.names ? 2 : 1;
  for (size_t names = 0; names < last; ++names) {
    set_date(names, piece);
    uint32_t m = 0, d = 0, y = 0;
    int64_t used = 0;
    const VXStatus status = NLSBufToDateU(locales_[names], bytes(text), size_of(text),
                                          piece.lenient ? leniently : strictly, &m, &d, &y, &used);
    if (status != 0) continue;
    day = {static_cast<int32_t>(y), static_cast<int32_t>(m), static_cast<int32_t>(d)};
    consumed = static_cast<size_t>(used);
    if (y != 0 && exists(day) && right_year(piece, text.substr(0, consumed))) return true;
  }
  return false;
}

bool Library::weekday(std::string_view text, size_t& consumed) {
  for (size_t names = 0; names < 2; ++names) {
    set_date(names, weekday_piece_);
    uint32_t m = 0, d = 0, y = 0;
    int64_t used = 0;
    if (NLSBufToDateU(locales_[names], bytes(text), size_of(text), leniently, &m, &d, &y, &used) != 0) continue;
    consumed = static_cast<size_t>(used);
    return true;
  }
  return false;
}

bool Library::names_other_weekday(std::string_view text, int weekday) const {
  const std::string name = folded(text);
  bool other = false;
  for (size_t i = 0; i < weekdays_.size(); ++i) {
    if (weekdays_[i] != name) continue;
    if (static_cast<int>(i % 7) == weekday) return false;
    other = true;
  }
  return other;
}

bool Library::time(const TimeForm& form, std::string_view text, int32_t& seconds, size_t& consumed) {
  const size_t last = form.names ? 2 : 1;
  for (size_t names = 0; names < last; ++names) {
    set_time(names, form.piece);
    double value = 0;
    int64_t used = 0;
    const uint32_t kind = form.marker_first ? any_time : strictly;
    if (NLSBufToTimeU(locales_[names], bytes(text), size_of(text), kind, &value, &used) != 0) continue;
    if (!(value >= 0 && value < 86400)) continue;  // 12 and more hours with a marker
    seconds = static_cast<int32_t>(value);
    consumed = static_cast<size_t>(used);
    return true;
  }
  return false;
}

bool Library::offset(std::string_view text, int32_t& seconds) {
  if (text == "Z" || text == "z" || text == "UTC" || text == "GMT") {
    seconds = 0;
    return true;
  }
  if (text.empty() || (text[0] != '+' && text[0] != '-')) return false;
  if (text == offset_text_) {
    seconds = offset_value_;
    return true;
  }
  VXExplanation told;
  explain_offset(text, told);
  if (told.status != 0 || told.consumed != size_of(text)) return false;
  seconds = told.match.fields.offset;
  if (text.size() <= 6) {
    offset_text_ = text;
    offset_value_ = seconds;
  }
  return true;
}

bool Library::clock(const TimeForm& form, std::string_view text, Clock& clock) {
  size_t at = 0;
  clock = {};
  if (!time(form, text, clock.seconds, at)) return false;
  if (at == text.size()) return true;
  if ((text[at] == '.' || text[at] == ',') && form.pattern.ends_with("%S")) {
    size_t end = at + 1;
    while (end < text.size() && is_digit(text[end])) ++end;
    if (end == at + 1) return false;
    clock.fraction = text.substr(at + 1, end - at - 1);
    at = end;
    if (at == text.size()) return true;
  }
  while (at < text.size() && text[at] == ' ') ++at;
  clock.has_offset = true;
  return offset(text.substr(at), clock.offset);
}

bool Library::period(const PeriodForm& form, std::string_view text, Day& first) {
  const size_t last = form.piece.names ? 2 : 1;
  for (size_t names = 0; names < last; ++names) {
    set_period(names, form);
    uint32_t m = 0, d = 0, y = 0;
    int64_t used = 0;
    const uint32_t kind = kind_of_length[static_cast<size_t>(form.length)];
    if (NLSBufToDateU(locales_[names], bytes(text), size_of(text), kind, &m, &d, &y, &used) != 0) continue;
    if (used != size_of(text) || y == 0 || !right_year(form.piece, text)) continue;
    first = {static_cast<int32_t>(y), static_cast<int32_t>(m), static_cast<int32_t>(d)};
    return form.length != PeriodForm::Length::week || has_week(form, text, week_of(first).week);
  }
  return false;
}

/// The library takes week 0 for the last one of the year before, and week 53 of a year without it for the next year's
/// first.
bool Library::has_week(const PeriodForm& form, std::string_view text, int32_t week) {
  constexpr int32_t first = 1, last = 52;
  if (week > first && week < last) return true;
  VXExplanation told;
  explain_period(form, text, told);
  return told.match.fields.week % 100 == week;
}

void Library::set_number(const NumberReading& reading) {
  VXLocaleData& data = *locales_[0]->localeData;
  data.decimalPoint = reading.decimal_point;
  data.groupSeparator = reading.group_separator != 0    ? reading.group_separator
                        : reading.decimal_point == U'.' ? U','
                                                        : U'.';
}

bool Library::accepts(std::string_view digits, const NumberReading& reading) {
  set_number(reading);
  double value = 0;
  int64_t used = 0;
  return NLSBufToDoubleU(locales_[0], bytes(digits), static_cast<int32_t>(digits.size()), &value, &used) == 0;
}

bool Library::number(const NumberText& number) {
  const NumberReading& first = number.point.possible ? number.point : number.comma;
  return accepts(number.digits, first) && (!number.differ || accepts(number.digits, number.comma));
}

void Library::explain_date(const Piece& piece, std::string_view text, VXExplanation& told) {
  set_date(0, piece);
  told.size = sizeof told;
  vxnlsExplain(locales_[0], VX_EXPLAIN_DATE, piece.lenient ? leniently : strictly, bytes(text), size_of(text), &told);
}

void Library::explain_time(const TimeForm& form, std::string_view text, VXExplanation& told) {
  set_time(0, form.piece);
  told.size = sizeof told;
  vxnlsExplain(locales_[0], VX_EXPLAIN_TIME, strictly, bytes(text), size_of(text), &told);
}

void Library::explain_offset(std::string_view text, VXExplanation& told) {
  set_time(0, offset_piece_);
  told.size = sizeof told;
  vxnlsExplain(locales_[0], VX_EXPLAIN_TIME, strictly, bytes(text), size_of(text), &told);
}

void Library::explain_period(const PeriodForm& form, std::string_view text, VXExplanation& told) {
  set_period(0, form);
  told.size = sizeof told;
  vxnlsExplain(locales_[0], VX_EXPLAIN_DATE, kind_of_length[static_cast<size_t>(form.length)], bytes(text),
               size_of(text), &told);
}

void Library::explain_number(std::string_view digits, const NumberReading& reading, VXNumberReading& told) {
  set_number(reading);
  vxnlsExplainNumber(locales_[0], bytes(digits), size_of(digits), VX_NUMBER_DOUBLE, 0, &told);
}

}  // namespace vxcli::column
