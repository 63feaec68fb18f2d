#include "cli/column/profiler.h"

#include <algorithm>
#include <bitset>
#include <map>
#include <unordered_map>

#include "cli/column/clean.h"
#include "cli/column/form.h"
#include "cli/column/library.h"
#include "cli/column/number_text.h"
#include "cli/column/reader.h"
#include "cli/column/vocabulary.h"
#include "cli/text.h"
#include "vxnls/locale_blocks.h"

namespace vxcli::column {

const std::vector<std::string>& auto_locales() {
  static const std::vector<std::string> names = {
      "en_US", "en_GB", "de_DE", "fr_FR", "es_ES", "pt_BR", "it_IT", "nl_NL", "pl_PL", "ru_RU", "tr_TR",
      "ja_JP", "zh_CN", "ko_KR", "ar_EG", "hi_IN", "sv_SE", "da_DK", "nb_NO", "fi_FI", "cs_CZ", "sk_SK",
      "hu_HU", "ro_RO", "uk_UA", "el_GR", "he_IL", "fa_IR", "th_TH", "vi_VN", "id_ID", "bg_BG", "hr_HR",
      "sr_RS", "sl_SI", "lt_LT", "lv_LV", "et_EE", "ca_ES", "de_CH", "fr_CA", "bn_BD"};
  return names;
}

namespace {

constexpr size_t shown_bytes = 200;
constexpr double overwhelming = 0.95;

/// Values of one sort: how many, and the first of them.
struct Tally {
  uint64_t count = 0;
  std::vector<Example> first;

  void add(std::string_view value, const Place& place, size_t shown) {
    if (count++ < shown) first.push_back({place, std::string(value.substr(0, longest_value + 1))});
  }
  void merge(const Tally& later, size_t shown) {
    count += later.count;
    const size_t room = shown - std::min(shown, first.size());
    first.insert(first.end(), later.first.begin(),
                 later.first.begin() + static_cast<ptrdiff_t>(std::min(room, later.first.size())));
  }
};

/// In which orders a date can be read, and which of them say the same.
using OrderBits = uint8_t;
constexpr OrderBits day_bit = 1, month_bit = 2, year_bit = 4;
constexpr OrderBits day_is_month = 8, day_is_year = 16, month_is_year = 32;  // the results are equal
constexpr OrderBits two_digit_year = 64;
constexpr size_t order_bits = 128;
constexpr size_t moment_kinds = 4;  // date, time, datetime, period

constexpr OrderBits bit_of(Order order) {
  return order == Order::day_first     ? day_bit
         : order == Order::month_first ? month_bit
         : order == Order::year_first  ? year_bit
                                       : OrderBits{0};
}

/// What the orders of `considered` make of a value: how many read it, and whether they say the same.
struct OrderVerdict {
  int readings = 0;
  bool same = true;
};
OrderVerdict verdict(OrderBits bits, OrderBits considered) {
  const auto in = static_cast<OrderBits>(bits & considered);
  OrderVerdict result;
  for (const OrderBits bit : {day_bit, month_bit, year_bit}) result.readings += (in & bit) != 0 ? 1 : 0;
  const auto both = [&](OrderBits a, OrderBits b) { return (in & a) != 0 && (in & b) != 0; };
  if (both(day_bit, month_bit) && (bits & day_is_month) == 0) result.same = false;
  if (both(day_bit, year_bit) && (bits & day_is_year) == 0) result.same = false;
  if (both(month_bit, year_bit) && (bits & month_is_year) == 0) result.same = false;
  return result;
}

/// The parts of a form, by their places in the tables.
struct FormKey {
  uint8_t weekday = 0;    // 1 and more: what stands behind it
  uint8_t date = 0;       // 1 and more
  uint8_t connector = 0;  // 1 and more
  uint8_t time = 0;       // 1 and more
  uint8_t offset = 0;
  uint8_t period = 0;  // 1 and more
  uint64_t number() const {
    uint64_t all = 0;
    for (const uint8_t part : {date, weekday, connector, time, offset, period}) all = all << 8 | part;
    return all;
  }
};

struct FormTally {
  FormKey key;
  Kind kind = Kind::text;
  Tally tally;
};
using FormTallies = std::unordered_map<uint64_t, FormTally>;

constexpr std::string_view behind_weekday[] = {", ", " ", ","};

/// What a moment was recognised as.
struct Recognised {
  Kind kind = Kind::text;
  OrderBits bits = 0;
  FormKey form;
  uint8_t first_number = 0, last_number = 0;  // of a date with a two-digit year
};

/// The forms that are tried with a locale: those of every column, then those with names and its own.
struct Forms {
  std::vector<DateForm> dates;
  std::vector<TimeForm> times;
  std::vector<PeriodForm> periods;
  size_t numeric_dates = 0, numeric_times = 0, numeric_periods = 0;  // the first, which depend on no locale
};

template <class Form, class Make>
void add_form(std::vector<Form>& forms, std::string_view pattern, Make make, bool strict) {
  const std::string plain = strict ? std::string(pattern) : plain_pattern(pattern);
  if (plain.empty()) return;
  for (const Form& known : forms) {
    if (known.pattern == plain) return;
  }
  if (forms.size() < 250) forms.push_back(make(plain, strict));
}

bool has_names(std::string_view pattern) {
  return pattern.find("%b") != std::string_view::npos || pattern.find("%q") != std::string_view::npos;
}

Forms make_forms(const VXLocaleData& data, bool strict, bool basic) {
  Forms forms;
  const auto date = [&](std::string_view pattern) { add_form(forms.dates, pattern, make_date_form, strict); };
  const auto time = [&](std::string_view pattern) { add_form(forms.times, pattern, make_time_form, strict); };
  const auto period = [&](std::string_view pattern) { add_form(forms.periods, pattern, make_period_form, strict); };
  if (basic) date(basic_date);
  for (const std::string_view pattern : numeric_dates) {
    if (!strict || pattern.find("%y") == std::string_view::npos) date(pattern);
  }
  for (const std::string_view pattern : numeric_times) time(pattern);
  for (const std::string_view pattern : periods) {
    if (!has_names(pattern)) period(pattern);
  }
  forms.numeric_dates = forms.dates.size();
  forms.numeric_times = forms.times.size();
  forms.numeric_periods = forms.periods.size();
  for (const NLSName* pattern : {&data.datePattern2, &data.datePattern1, &data.datePattern}) date(utf8(*pattern));
  for (const std::string_view pattern : named_dates) {
    if (!strict || pattern.find("%y") == std::string_view::npos) date(pattern);
  }
  for (const NLSName* pattern : {&data.timePattern, &data.timePattern1}) time(utf8(*pattern));
  for (const std::string_view pattern : named_times) time(pattern);
  for (const NLSName* pattern :
       {&data.monthYearPattern1, &data.monthYearPattern2, &data.quarterPattern1, &data.quarterPattern2}) {
    period(utf8(*pattern));
  }
  for (const std::string_view pattern : periods) {
    if (has_names(pattern)) period(pattern);
  }
  return forms;
}

/// A pattern without its directives.
std::string literals_of(std::string_view pattern) {
  std::string literals;
  for (size_t at = 0; at < pattern.size(); ++at) {
    if (pattern[at] != '%') {
      literals += pattern[at];
      continue;
    }
    at = std::min(pattern.find_first_not_of("#0?", at + 1), pattern.size());  // its letter
    literals += ' ';
  }
  return literals;
}

std::string pattern_of(const Forms& forms, const FormKey& key, Order order) {
  std::string pattern;
  if (key.period != 0) return forms.periods[key.period - 1U].pattern;
  if (key.weekday != 0) pattern += "%A" + std::string(behind_weekday[key.weekday - 1U]);
  if (key.date != 0) {
    const DateForm& date = forms.dates[key.date - 1U];
    pattern += date.pattern_in(date.has(order) ? order : Order::day_first);
  }
  if (key.connector != 0) pattern += connectors[key.connector - 1U];
  if (key.time != 0) pattern += forms.times[key.time - 1U].pattern;
  if (key.offset != 0) pattern += "%z";
  return pattern;
}

/// The customs that a locale decides by.
Order order_of(const VXLocaleData& data) {
  const auto& customs = *reinterpret_cast<const VXLocaleCustoms*>(data.block6);
  const Order orders[] = {Order::day_first, Order::month_first, Order::year_first, Order::none};
  return orders[std::clamp(customs.dateOrder, 0, 3)];
}

class LocaleForms {
 public:
  LocaleForms(const LocaleMaker& make_locale, const std::string& locale, const ProfilerOptions& options)
      : name(locale), library(make_locale, locale, options.strict) {
    const VXLocaleData& data = *library.locale()->localeData;
    const bool basic = options.kind == Kind::date || options.kind == Kind::datetime;
    forms = make_forms(data, options.strict, basic);
    order = order_of(data);
    decimal_point = data.decimalPoint;
    currency = utf8(data.currencySymbol);
  }

  /// `names`: also forms that depend on the locale.
  bool recognise(std::string_view text, bool names, std::optional<Kind> first, int32_t first_year, Recognised& found) {
    first_year_ = first_year;
    if (first == Kind::time && time_alone(text, names, found)) return true;
    if (first == Kind::period && period(text, names, found)) return true;
    found.form = {};
    const bool digit = text[0] >= '0' && text[0] <= '9';
    if ((digit || names) && dated(text, {}, names, found)) return true;
    if (names && !digit && with_weekday(text, found)) return true;
    return time_alone(text, names, found) || period(text, names, found);
  }

  void add_words(Vocabulary& words, Vocabulary::Locales locale) const {
    for (const std::string_view directive : {"%b", "%A", "%q", "%p"}) {
      const std::vector<std::string> names = library.names(directive);
      words.add_names(directive, directive, names, locale);
      const auto add = [&](const auto& list) {
        for (const auto& form : list) words.add_names(form.pattern, directive, names, locale);
      };
      add(forms.dates);
      add(forms.times);
      add(forms.periods);
    }
    const auto add_literals = [&](const auto& list) {
      for (const auto& form : list) words.add(literals_of(form.pattern), locale);
    };
    add_literals(forms.dates);
    add_literals(forms.times);
    add_literals(forms.periods);
    for (const std::string_view connector : connectors) words.add(connector, locale);
    for (const std::string_view offset : {"Z", "UTC", "GMT"}) words.add(offset, locale);
  }

  std::string name;
  Library library;
  Forms forms;
  Order order = Order::none;
  VXChar decimal_point = 0;
  std::string currency;

 private:
  bool with_weekday(std::string_view text, Recognised& found) {
    size_t consumed = 0;
    if (!library.weekday(text, consumed)) return false;
    const std::string_view weekday = text.substr(0, consumed);
    text.remove_prefix(consumed);
    for (size_t i = 0; i < std::size(behind_weekday); ++i) {
      const size_t between = literal_length(behind_weekday[i], text);
      if (between == std::string_view::npos) continue;
      found.form = {};
      found.form.weekday = static_cast<uint8_t>(i + 1);
      if (dated(text.substr(between), weekday, true, found)) return true;
    }
    return false;
  }

  /// The first form that reads a date. One that does so only with the year first yields to a later one that does not:
  /// the reader tries that, too, where no year stands in front.
  bool dated(std::string_view text, std::string_view weekday, bool names, Recognised& found) {
    const size_t count = names ? forms.dates.size() : forms.numeric_dates;
    const FormKey start = found.form;
    std::optional<Recognised> year_first;
    for (size_t i = 0; i < count; ++i) {
      found.form = start;
      if (!one_date(forms.dates[i], text, weekday, names, found)) continue;
      found.form.date = static_cast<uint8_t>(i + 1);
      if ((found.bits & (day_bit | month_bit | year_bit)) != year_bit) return true;
      if (!year_first) year_first = found;
    }
    if (year_first) found = *year_first;
    return year_first.has_value();
  }

  bool one_date(const DateForm& form, std::string_view text, std::string_view weekday, bool names, Recognised& found) {
    const uint8_t weekday_key = found.form.weekday;
    if (form.order == Order::none) {
      Day day;
      found.bits = 0;
      return in_order(form, Order::none, text, weekday, names, found, day);
    }
    Day days[4];
    OrderBits bits = 0;
    Recognised last;
    for (const Order order : {Order::day_first, Order::month_first, Order::year_first}) {
      if (!form.has(order)) continue;
      Recognised each;
      each.form.weekday = weekday_key;
      if (!in_order(form, order, text, weekday, names, each, days[static_cast<size_t>(order)])) continue;
      bits = static_cast<OrderBits>(bits | bit_of(order));
      last = each;
    }
    if (bits == 0) return false;
    found = last;
    const Day &d = days[1], &m = days[2], &y = days[3];
    const auto equal = [&](OrderBits both, const Day& a, const Day& b, OrderBits bit) {
      if ((bits & both) == both && a == b) bits = static_cast<OrderBits>(bits | bit);
    };
    equal(day_bit | month_bit, d, m, day_is_month);
    equal(day_bit | year_bit, d, y, day_is_year);
    equal(month_bit | year_bit, m, y, month_is_year);
    if (form.two_digits) {
      const auto number = [](int32_t value) { return static_cast<uint8_t>(value % 100); };
      const bool by_day = (bits & day_bit) != 0, by_month = (bits & month_bit) != 0;
      found.first_number = number(by_day ? d.day : by_month ? m.month : y.year);
      found.last_number = number(by_day ? d.year : by_month ? m.year : y.day);
      bits = static_cast<OrderBits>(bits | two_digit_year);
    }
    found.bits = bits;
    return true;
  }

  bool in_order(const DateForm& form, Order order, std::string_view text, std::string_view weekday, bool names,
                Recognised& found, Day& day) {
    const Piece& piece = form.pieces[static_cast<size_t>(order)];
    size_t consumed = 0;
    if (!piece.fits(text) || !library.date(piece, text, day, consumed)) return false;
    if (form.two_digits && !move_into_century(day, first_year_)) return false;
    if (!weekday.empty() && library.names_other_weekday(weekday, weekday_of(day))) return false;
    return tail(text.substr(consumed), names, found);
  }

  bool tail(std::string_view rest, bool names, Recognised& found) {
    found.kind = Kind::date;
    if (rest.empty()) return true;
    for (size_t i = 0; i < connectors.size(); ++i) {
      const size_t between = literal_length(connectors[i], rest);
      if (between == std::string_view::npos || !time(rest.substr(between), names, found)) continue;
      found.kind = Kind::datetime;
      found.form.connector = static_cast<uint8_t>(i + 1);
      return true;
    }
    return false;
  }

  bool time(std::string_view text, bool names, Recognised& found) {
    const size_t count = names ? forms.times.size() : forms.numeric_times;
    for (size_t i = 0; i < count; ++i) {
      Clock clock;
      const TimeForm& form = forms.times[i];
      if (!form.piece.fits(text) || !library.clock(form, text, clock)) continue;
      found.form.time = static_cast<uint8_t>(i + 1);
      found.form.offset = clock.has_offset ? 1 : 0;
      return true;
    }
    return false;
  }

  bool time_alone(std::string_view text, bool names, Recognised& found) {
    found = {};
    found.kind = Kind::time;
    return time(text, names, found);
  }

  bool period(std::string_view text, bool names, Recognised& found) {
    found = {};
    found.kind = Kind::period;
    const size_t count = names ? forms.periods.size() : forms.numeric_periods;
    for (size_t i = 0; i < count; ++i) {
      Day day;
      if (!forms.periods[i].piece.fits(text) || !library.period(forms.periods[i], text, day)) continue;
      found.form.period = static_cast<uint8_t>(i + 1);
      return true;
    }
    return false;
  }

  int32_t first_year_ = 1960;
};

/// The counts of moments, of a locale or of all.
struct Moments {
  std::vector<Tally> sorts = std::vector<Tally>(moment_kinds * order_bits);
  FormTallies forms;

  void add(const Recognised& found, std::string_view value, const Place& place, size_t shown) {
    sorts[static_cast<size_t>(found.kind) * order_bits + found.bits].add(value, place, shown);
    FormTally& form = forms[found.form.number()];
    form.key = found.form;
    form.kind = found.kind;
    form.tally.add(value, place, 1);
  }
  void merge(const Moments& later, size_t shown) {
    for (size_t i = 0; i < sorts.size(); ++i) sorts[i].merge(later.sorts[i], shown);
    for (const auto& [number, form] : later.forms) {
      FormTally& mine = forms[number];
      mine.key = form.key;
      mine.kind = form.kind;
      mine.tally.merge(form.tally, 1);
    }
  }
  uint64_t total() const {
    uint64_t sum = 0;
    for (const Tally& tally : sorts) sum += tally.count;
    return sum;
  }
};

std::string cut(std::string_view value) {
  size_t end = std::min(value.size(), shown_bytes);
  while (end < value.size() && end > 0 && (value[end] & 0xC0) == 0x80) --end;
  return std::string(value.substr(0, end));
}

}  // namespace

struct Profiler::State {
  struct PerLocale {
    std::unique_ptr<LocaleForms> forms;
    Moments moments;
    Tally unread;
  };

  LocaleMaker make_locale;
  ProfilerOptions options;
  std::vector<PerLocale> locales;
  Vocabulary words;

  uint64_t values = 0, empty = 0;
  Moments moments;                                    // that depend on no locale
  std::map<std::string, std::vector<Tally>> numbers;  // by unit; in each by NumberBits
  std::vector<Tally>* plain_numbers = nullptr;        // those without a unit
  std::bitset<100> first_numbers, last_numbers;       // of dates with two-digit years
  uint64_t years_first = 0;                           // of these, those that begin with what can only be a year
  Cleaned cleaned;

  State(const LocaleMaker& maker, ProfilerOptions given) : make_locale(maker), options(std::move(given)) {
    for (const std::string& name : options.locales) {
      PerLocale& each = locales.emplace_back();
      each.forms = std::make_unique<LocaleForms>(make_locale, name, options);
      each.forms->add_words(words, Vocabulary::bit(locales.size() - 1));
    }
    plain_numbers = &numbers_with("");
  }

  std::vector<Tally>& numbers_with(std::string_view unit) {
    std::vector<Tally>& tallies = numbers[std::string(unit)];
    if (tallies.empty()) tallies.resize(size_t{1} << number_bits);
    return tallies;
  }

  void note_numbers(const Recognised& found) {
    if ((found.bits & two_digit_year) == 0) return;
    first_numbers.set(found.first_number);
    last_numbers.set(found.last_number);
    const bool no_day = found.first_number == 0 || found.first_number > 31;
    if (no_day) ++years_first;
  }

  bool add_number(std::string_view text, std::string_view value, const Place& place) {
    NumberText number;
    size_t fault = 0;
    LocaleForms& first = *locales.front().forms;
    if (!number.scan(text, first.currency, fault)) return false;
    if (options.strict && number.digits.size() + (text[0] == '-' || text[0] == '+' ? 1 : 0) != text.size()) {
      return false;
    }
    if (!first.library.number(number)) return false;
    std::vector<Tally>& tallies = number.unit.empty() ? *plain_numbers : numbers_with(number.unit);
    tallies[bits_of(number)].add(value, place, options.shown);
    return true;
  }

  bool add_moment(std::string_view text, std::string_view value, const Place& place) {
    Recognised found;
    if (!locales.front().forms->recognise(text, false, options.kind, options.first_year, found)) return false;
    moments.add(found, value, place, options.shown);
    note_numbers(found);
    return true;
  }

  void add(std::string_view value, const Place& place) {
    ++values;
    cleaned.set(value.size() > longest_value ? std::string_view() : value, options.strict);
    const std::string_view text = cleaned.text();
    if (value.size() <= longest_value && without_blanks(text).empty()) {
      ++empty;
      return;
    }
    const bool digits = text.find_first_of("0123456789") != std::string_view::npos;
    if (digits) {
      const bool moments_first = options.kind && *options.kind <= Kind::period;
      if (moments_first && add_moment(text, value, place)) return;
      if (add_number(text, value, place)) return;
      if (!moments_first && add_moment(text, value, place)) return;
    }
    const Vocabulary::Locales speak = digits ? words.which(text) : 0;
    for (size_t i = 0; i < locales.size(); ++i) {
      PerLocale& each = locales[i];
      Recognised found;
      const bool possible = (speak & Vocabulary::bit(i)) != 0;
      if (possible && each.forms->recognise(text, true, options.kind, options.first_year, found)) {
        each.moments.add(found, value, place, options.shown);
        if (&each == &locales.front()) note_numbers(found);
      } else {
        each.unread.add(value, place, options.shown);
      }
    }
  }

  void clear() {
    values = empty = years_first = 0;
    moments = {};
    numbers.clear();
    plain_numbers = &numbers_with("");
    first_numbers.reset();
    last_numbers.reset();
    for (PerLocale& each : locales) {
      each.moments = {};
      each.unread = {};
    }
  }

  void merge(const State& later) {
    values += later.values;
    empty += later.empty;
    moments.merge(later.moments, options.shown);
    for (const auto& [unit, tallies] : later.numbers) {
      std::vector<Tally>& mine = numbers_with(unit);
      for (size_t i = 0; i < tallies.size(); ++i) mine[i].merge(tallies[i], options.shown);
    }
    years_first += later.years_first;
    first_numbers |= later.first_numbers;
    last_numbers |= later.last_numbers;
    for (size_t i = 0; i < locales.size(); ++i) {
      locales[i].moments.merge(later.locales[i].moments, options.shown);
      locales[i].unread.merge(later.locales[i].unread, options.shown);
    }
  }
};

namespace {

/// Which side most values speak for.
struct Vote {
  uint64_t all = 0;
  uint64_t most = 0;
  size_t winner = 0;
  void add(size_t side, uint64_t count) {
    all += count;
    if (count > most) {
      most = count;
      winner = side;
    }
  }
  bool decided() const { return all > 0 && static_cast<double>(most) >= overwhelming * static_cast<double>(all); }
};

void append(std::vector<Example>& to, const std::vector<Example>& more) {
  to.insert(to.end(), more.begin(), more.end());
}

void keep_first(std::vector<Example>& examples, size_t shown) {
  std::sort(examples.begin(), examples.end(), [](const Example& a, const Example& b) {
    return a.place.record != b.place.record ? a.place.record < b.place.record : a.place.offset < b.place.offset;
  });
  if (examples.size() > shown) examples.resize(shown);
}

/// Turns counts into a report.
class Judge {
 public:
  using State = Profiler::State;
  Judge(const State& state, const std::string& column) : state_(state) {
    report_.decision.column = column;
    report_.values = state.values;
    report_.empty = state.empty;
  }

  ColumnReport judge() {
    rank_locales();
    const State::PerLocale& locale = state_.locales[best_];
    Decision& decision = report_.decision;
    decision.locale = locale.forms->name;
    decision.locale_source = state_.options.locale_source;
    decision.first_year = state_.options.first_year;
    decision.strict = state_.options.strict;
    decide_decimal_point();
    decide_kind(locale);
    decide_order(locale);
    if (decision.kind == Kind::integer || decision.kind == Kind::number) decide_unit();
    else forget_numbers();
    list_forms(locale);
    count(locale);
    explain();
    return std::move(report_);
  }

 private:
  /// Every sort of moments, of the locale and of all.
  template <class Each>
  void each_moment(const State::PerLocale& locale, Each each) const {
    for (const Moments* moments : {&state_.moments, &locale.moments}) {
      for (size_t i = 0; i < moments->sorts.size(); ++i) {
        if (moments->sorts[i].count != 0) {
          each(static_cast<Kind>(i / order_bits), static_cast<OrderBits>(i % order_bits), moments->sorts[i]);
        }
      }
    }
  }
  template <class Each>
  void each_number(Each each) const {
    for (const auto& [unit, tallies] : state_.numbers) {
      for (size_t i = 0; i < tallies.size(); ++i) {
        if (tallies[i].count != 0) each(unit, static_cast<NumberBits>(i), tallies[i]);
      }
    }
  }

  void rank_locales() {
    for (const State::PerLocale& locale : state_.locales) {
      uint64_t against = locale.unread.count;
      const OrderBits own = bit_of(locale.forms->order);
      each_moment(locale, [&](Kind, OrderBits bits, const Tally& tally) {
        const OrderVerdict found = verdict(bits, day_bit | month_bit);
        if (found.readings == 1 && (own & (day_bit | month_bit)) != 0 && (bits & own) == 0) against += tally.count;
      });
      const bool comma = locale.forms->decimal_point == ',';
      each_number([&](const std::string&, NumberBits bits, const Tally& tally) {
        const NumberTraits number = traits_of(bits);
        if (comma ? !number.by_comma : !number.by_point) against += tally.count;
      });
      report_.locales.push_back({locale.forms->name, state_.values - state_.empty - against});
    }
    for (size_t i = 1; i < report_.locales.size(); ++i) {
      if (report_.locales[i].explained > report_.locales[best_].explained) best_ = i;
    }
    std::stable_sort(report_.locales.begin(), report_.locales.end(),
                     [](const LocaleRank& a, const LocaleRank& b) { return a.explained > b.explained; });
  }

  void decide_decimal_point() {
    Decision& decision = report_.decision;
    bool point_groups = false, comma_groups = false, blanks = false, apostrophes = false;
    each_number([&](const std::string&, NumberBits bits, const Tally& tally) {
      const NumberTraits number = traits_of(bits);
      if (number.by_point != number.by_comma) {
        Evidence& side = number.by_point ? report_.point : report_.comma;
        side.count += tally.count;
        append(side.first, tally.first);
      }
      if (number.differ) report_.either_decimal += tally.count;
      point_groups = point_groups || number.point_groups;
      comma_groups = comma_groups || number.comma_groups;
      blanks = blanks || number.blank_groups;
      apostrophes = apostrophes || number.apostrophe_groups;
    });
    Vote vote;
    vote.add(0, report_.point.count);
    vote.add(1, report_.comma.count);
    constexpr const char* sides[] = {".", ","};
    const State::PerLocale& locale = state_.locales[best_];
    if (!state_.options.decimal_point.empty()) {
      decision.decimal_point = state_.options.decimal_point;
      decision.decimal_by = Source::option;
    } else if (vote.decided()) {
      decision.decimal_point = sides[vote.winner];
      decision.decimal_by = Source::evidence;
    } else if (vote.all == 0 && state_.options.locale_given) {
      const VXChar own = locale.forms->decimal_point;
      if (own == '.' || own == ',') {
        decision.decimal_point = sides[own == ',' ? 1 : 0];
        decision.decimal_by = Source::locale;
      }
    }
    if (decision.decimal_point != "," && comma_groups) decision.group_separators += ',';
    if (decision.decimal_point != "." && point_groups) decision.group_separators += '.';
    if (blanks) decision.group_separators += ' ';
    if (apostrophes) decision.group_separators += '\'';
  }

  /// Of a column of something else.
  void forget_numbers() {
    Decision& decision = report_.decision;
    decision.decimal_point.clear();
    decision.decimal_by = Source::nothing;
    decision.group_separators.clear();
  }

  bool is_whole(const NumberTraits& number) const {
    const bool comma =
        report_.decision.decimal_point == "," || (report_.decision.decimal_point.empty() && !number.by_point);
    return comma ? number.whole_by_comma : number.whole_by_point;
  }

  void decide_kind(const State::PerLocale& locale) {
    Decision& decision = report_.decision;
    each_moment(locale, [&](Kind kind, OrderBits, const Tally& tally) {
      report_.by_kind[static_cast<size_t>(kind)] += tally.count;
    });
    each_number([&](const std::string&, NumberBits bits, const Tally& tally) {
      const Kind kind = is_whole(traits_of(bits)) ? Kind::integer : Kind::number;
      report_.by_kind[static_cast<size_t>(kind)] += tally.count;
    });
    const auto of = [&](Kind kind) { return report_.by_kind[static_cast<size_t>(kind)]; };
    const uint64_t not_empty = state_.values - state_.empty;
    report_.by_kind[static_cast<size_t>(Kind::text)] = locale.unread.count;
    if (state_.options.kind) {
      decision.kind = *state_.options.kind;
      return;
    }
    uint64_t most = of(Kind::integer) + of(Kind::number);
    decision.kind = of(Kind::number) > 0 ? Kind::number : Kind::integer;
    for (const Kind kind : {Kind::date, Kind::datetime, Kind::time, Kind::period}) {
      if (of(kind) > most) {
        most = of(kind);
        decision.kind = kind;
      }
    }
    if (most == 0 || most * 2 < not_empty) decision.kind = Kind::text;
  }

  void decide_order(const State::PerLocale& locale) {
    Decision& decision = report_.decision;
    if (decision.kind != Kind::date && decision.kind != Kind::datetime) return;
    const ProfilerOptions& options = state_.options;
    // Is year first to be considered?
    uint64_t two_digits = 0, not_year_first = 0;
    each_moment(locale, [&](Kind, OrderBits bits, const Tally& tally) {
      if ((bits & two_digit_year) == 0) return;
      two_digits += tally.count;
      if ((bits & year_bit) == 0) not_year_first += tally.count;
    });
    const auto few = [&](uint64_t count) {
      return static_cast<double>(count) <= (1 - overwhelming) * static_cast<double>(two_digits);
    };
    const bool by_locale = options.locale_given && locale.forms->order == Order::year_first;
    const bool by_variety = few(not_year_first) && state_.first_numbers.count() < state_.last_numbers.count();
    const bool year_first =
        two_digits > 0 && (!few(state_.years_first) || by_locale || by_variety || options.order == Order::year_first);
    considered_ = static_cast<OrderBits>(day_bit | month_bit | (year_first ? year_bit : 0));

    each_moment(locale, [&](Kind, OrderBits bits, const Tally& tally) {
      const OrderVerdict found = verdict(bits, considered_);
      if (found.readings > 1 && !found.same) report_.either_order += tally.count;
      if (found.readings != 1) return;
      Evidence& side = (bits & day_bit) != 0     ? report_.day_first
                       : (bits & month_bit) != 0 ? report_.month_first
                                                 : report_.year_first;
      side.count += tally.count;
      append(side.first, tally.first);
    });
    Vote vote;
    vote.add(1, report_.day_first.count);
    vote.add(2, report_.month_first.count);
    vote.add(3, report_.year_first.count);
    const auto decide = [&](Order order, Source source) {
      decision.order = order;
      decision.order_by = source;
    };
    if (options.order != Order::none) decide(options.order, Source::option);
    else if (vote.decided()) decide(static_cast<Order>(vote.winner), Source::evidence);
    else if (vote.all == 0 && options.locale_given) decide(locale.forms->order, Source::locale);
    if (decision.order == Order::none) decision.order_by = Source::nothing;
    if (decision.order == Order::day_first || decision.order == Order::month_first) {
      considered_ = day_bit | month_bit;
    }
  }

  void decide_unit() {
    uint64_t all = 0, percent = 0, most = 0;
    std::string currency;
    for (const auto& [unit, tallies] : state_.numbers) {
      uint64_t count = 0;
      for (const Tally& tally : tallies) count += tally.count;
      all += count;
      if (unit == "%") percent = count;
      if (!unit.empty() && unit != "%" && count > most) {
        most = count;
        currency = unit;
      }
    }
    report_.decision.unit = currency;
    if (percent > 0 && static_cast<double>(percent) >= overwhelming * static_cast<double>(all)) {
      report_.decision.unit = "%";
    }
  }

  void list_forms(const State::PerLocale& locale) {
    Decision& decision = report_.decision;
    const Forms& forms = locale.forms->forms;
    std::map<uint64_t, FormTally> seen;
    for (const Moments* moments : {&state_.moments, &locale.moments}) {
      for (const auto& [number, form] : moments->forms) {
        FormTally& mine = seen[number];
        mine.key = form.key;
        mine.kind = form.kind;
        // Both may have it where a date is numeric and its time is not; the first example is the earlier one.
        const bool earlier =
            mine.tally.count == 0 || form.tally.first.front().place.record < mine.tally.first.front().place.record;
        if (earlier) mine.tally.first = form.tally.first;
        mine.tally.count += form.tally.count;
      }
    }
    for (const auto& [number, form] : seen) {
      const std::string pattern = pattern_of(forms, form.key, decision.order);
      const Example& example = form.tally.first.front();
      report_.forms.push_back({pattern, form.kind, form.tally.count, {example.place, cut(example.value)}});
      if (form.kind == decision.kind) add_form(pattern, form.key, forms);
    }
    std::stable_sort(report_.forms.begin(), report_.forms.end(),
                     [](const FormShare& a, const FormShare& b) { return a.count > b.count; });
    if (decision.forms.empty()) default_forms(forms);
  }

  void add_form(const std::string& pattern, const FormKey& key, const Forms& forms) {
    Decision& decision = report_.decision;
    const auto add = [&](const std::string& each) {
      if (std::find(decision.forms.begin(), decision.forms.end(), each) == decision.forms.end()) {
        decision.forms.push_back(each);
      }
    };
    add(pattern);
    // Undecided, and a year may stand first: that is a form of its own.
    if (decision.order == Order::none && (considered_ & year_bit) != 0 && key.date != 0 &&
        forms.dates[key.date - 1U].has(Order::year_first)) {
      add(pattern_of(forms, key, Order::year_first));
    }
  }

  /// Nothing of the kind was seen: all that is known.
  void default_forms(const Forms& forms) {
    const Kind kind = report_.decision.kind;
    FormKey key;
    const auto add = [&] { add_form(pattern_of(forms, key, report_.decision.order), key, forms); };
    if (kind == Kind::period) {
      for (key.period = 1; key.period <= forms.periods.size(); ++key.period) add();
    } else if (kind == Kind::time) {
      for (key.time = 1; key.time <= forms.times.size(); ++key.time) add();
    } else if (kind == Kind::date || kind == Kind::datetime) {
      for (key.date = 1; key.date <= forms.dates.size(); ++key.date) {
        if (kind == Kind::date) {
          add();
          continue;
        }
        for (key.connector = 1; key.connector <= 2; ++key.connector) {
          for (key.time = 1; key.time <= 2; ++key.time) {
            for (key.offset = 0; key.offset <= 1; ++key.offset) add();
          }
        }
      }
    }
  }

  Outcome judge_moment(Kind kind, OrderBits bits) const {
    const Decision& decision = report_.decision;
    if (kind != decision.kind) return Outcome::unread;
    if ((bits & (day_bit | month_bit | year_bit)) == 0) return Outcome::read;
    const bool applies =
        decision.order != Order::none && (decision.order != Order::year_first || (bits & two_digit_year) != 0);
    const OrderVerdict found = verdict(bits, considered_);
    if (applies) {
      if ((bits & bit_of(decision.order)) != 0) return Outcome::read;
      return found.readings > 0 ? Outcome::contradicts : Outcome::unread;
    }
    return found.readings == 0 ? Outcome::unread : found.same ? Outcome::read : Outcome::ambiguous;
  }

  void put(Outcome outcome, const Tally& tally) {
    switch (outcome) {
      case Outcome::read: report_.read += tally.count; break;
      case Outcome::ambiguous:
        report_.ambiguous += tally.count;
        append(ambiguous_, tally.first);
        break;
      case Outcome::contradicts:
        report_.contradicting += tally.count;
        append(contradicting_, tally.first);
        break;
      default:
        report_.unread += tally.count;
        append(unread_, tally.first);
        break;
    }
  }

  void count(const State::PerLocale& locale) {
    const Decision& decision = report_.decision;
    const bool text = decision.kind == Kind::text;
    const bool numeric = decision.kind == Kind::integer || decision.kind == Kind::number;
    const NumberRule rule(decision);
    each_moment(locale, [&](Kind kind, OrderBits bits, const Tally& tally) {
      put(text ? Outcome::read : judge_moment(kind, bits), tally);
    });
    each_number([&](const std::string& unit, NumberBits bits, const Tally& tally) {
      put(text ? Outcome::read : numeric ? rule.judge(bits, unit) : Outcome::unread, tally);
    });
    if (locale.unread.count != 0) put(text ? Outcome::read : Outcome::unread, locale.unread);
  }

  void explain() {
    const size_t shown = state_.options.shown;
    for (Evidence* side :
         {&report_.day_first, &report_.month_first, &report_.year_first, &report_.point, &report_.comma}) {
      keep_first(side->first, shown);
      for (Example& example : side->first) example.value = cut(example.value);
    }
    Reader reader(state_.make_locale, report_.decision);
    const auto list = [&](std::vector<Example>& from, std::vector<Unread>& to) {
      keep_first(from, shown);
      for (const Example& example : from) {
        reader.read(example.value);
        const Refusal& refusal = reader.refusal();
        to.push_back(
            {example.place, cut(example.value), refusal.position, refusal.length, refusal.expected, refusal.status});
      }
    };
    list(ambiguous_, report_.first_ambiguous);
    list(contradicting_, report_.first_contradicting);
    list(unread_, report_.first_unread);
  }

  const State& state_;
  ColumnReport report_;
  size_t best_ = 0;  // the locale
  OrderBits considered_ = day_bit | month_bit;
  std::vector<Example> ambiguous_, contradicting_, unread_;
};

}  // namespace

Profiler::Profiler(const LocaleMaker& make_locale, ProfilerOptions options)
    : state_(std::make_unique<State>(make_locale, std::move(options))) {}
Profiler::~Profiler() = default;
Profiler::Profiler(Profiler&&) noexcept = default;
Profiler& Profiler::operator=(Profiler&&) noexcept = default;

void Profiler::add(std::string_view value, const Place& place) { state_->add(value, place); }
void Profiler::clear() { state_->clear(); }
void Profiler::merge(const Profiler& later) { state_->merge(*later.state_); }
ColumnReport Profiler::report(const std::string& column) const { return Judge(*state_, column).judge(); }

}  // namespace vxcli::column
