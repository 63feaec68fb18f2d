#include "cli/column/reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <tuple>
#include <vector>

#include "cli/column/clean.h"
#include "cli/column/form.h"
#include "cli/column/library.h"
#include "cli/column/number_text.h"
#include "cli/datetime_writer.h"
#include "cli/errors.h"
#include "cli/refusal.h"
#include "cli/text.h"

namespace vxcli::column {

namespace {

char* two_digits(char* to, int32_t number) {
  to[0] = static_cast<char>('0' + number / 10 % 10);
  to[1] = static_cast<char>('0' + number % 10);
  return to + 2;
}

char* four_digits(char* to, int32_t number) { return two_digits(two_digits(to, number / 100), number % 100); }

char* put_date(char* to, const Day& day) {
  to = four_digits(to, day.year);
  *to++ = '-';
  to = two_digits(to, day.month);
  *to++ = '-';
  return two_digits(to, day.day);
}

char* put_time(char* to, int32_t seconds) {
  to = two_digits(to, seconds / 3600);
  *to++ = ':';
  to = two_digits(to, seconds / 60 % 60);
  *to++ = ':';
  return two_digits(to, seconds % 60);
}

void append_offset(std::string& out, int32_t seconds) {
  if (seconds == 0) {
    out += 'Z';
    return;
  }
  char text[6];
  text[0] = seconds < 0 ? '-' : '+';
  const int32_t minutes = std::abs(seconds) / 60;
  char* to = two_digits(text + 1, minutes / 60);
  *to++ = ':';
  two_digits(to, minutes % 60);
  out.append(text, 6);
}

/// What a form found.
struct Found {
  Day day;
  Clock clock;
};

std::string iso_date(const Day& day) { return fmt::format("{:04}-{:02}-{:02}", day.year, day.month, day.day); }

}  // namespace

struct Reader::State {
  State(const LocaleMaker& make_locale, const Decision& given, const OutputChoice& output)
      : decision(given), library(make_locale, given.locale, given.strict), rule(given) {
    try {
      forms = parse_forms(decision);
    } catch (const ValueError& error) {
      fail(ExitCode::usage, "column {}: {}", in_quotes(decision.column), error.what());
    }
    for (const Form& form : forms) {
      year_first = year_first || (form.date && form.date->order == Order::year_first);
    }
    own_currency = utf8(library.locale()->localeData->currencySymbol);
    set_output(make_locale, output);
  }

  void set_output(const LocaleMaker& make_locale, const OutputChoice& output) {
    if (output.to_pattern.empty() && output.to_locale.empty()) return;
    const bool numeric = decision.kind == Kind::number || decision.kind == Kind::integer;
    if (decision.kind == Kind::text) return;
    VXLocale* const locale = make_locale(output.to_locale.empty() ? decision.locale : output.to_locale);
    if (numeric) {
      if (!output.to_pattern.empty()) fail(ExitCode::usage, "--to: numbers have no pattern; --to-locale writes them");
      number_locale = locale;
      return;
    }
    if (decision.kind == Kind::period) {
      fail(ExitCode::usage, "column {}: periods are written by ISO 8601 only", in_quotes(decision.column));
    }
    writer.emplace(locale, decision.kind == Kind::date   ? DatetimeKind::date
                           : decision.kind == Kind::time ? DatetimeKind::time
                                                         : DatetimeKind::datetime);
    if (!output.to_pattern.empty()) writer->use_pattern("--to", output.to_pattern);
  }

  Outcome read(std::string_view value) {
    out.clear();
    shown = {};
    form = nullptr;
    explained = false;
    unwritten.clear();
    original = value;
    outcome = read_value(value);
    return outcome;
  }

  Outcome read_value(std::string_view value) {
    if (decision.kind == Kind::text) {
      const bool perhaps_empty = value.empty() || value[0] <= ' ' || static_cast<unsigned char>(value[0]) >= 0x80;
      if (perhaps_empty && value.size() <= longest_value) {
        cleaned.set(value, decision.strict);
        if (without_blanks(cleaned.text()).empty()) return Outcome::empty;
      }
      shown = value;
      return Outcome::read;
    }
    if (value.size() > longest_value) return Outcome::unread;
    cleaned.set(value, decision.strict);
    const std::string_view text = cleaned.text();
    if (text.empty() || (decision.strict && without_blanks(text).empty())) return Outcome::empty;
    return decision.kind == Kind::number || decision.kind == Kind::integer ? read_number(text) : read_forms(text);
  }

  Outcome read_forms(std::string_view text) {
    Outcome best = Outcome::unread;
    for (const Form& each : forms) {
      Found found;
      const Outcome outcome_of_form = try_form(each, text, found);
      if (outcome_of_form == Outcome::read) {
        form = &each;
        return write(each, found) ? Outcome::read : Outcome::unread;
      }
      if (outcome_of_form != Outcome::unread && best != Outcome::ambiguous) {
        best = outcome_of_form;
        form = &each;
      }
    }
    return best;
  }

  /// Everything behind the date.
  bool read_tail(const Form& each, std::string_view rest, Found& found) {
    if (!each.time) return rest.empty();
    if (each.date) {
      const size_t between = literal_length(each.between, rest);
      if (between == std::string_view::npos) return false;
      rest.remove_prefix(between);
    }
    return each.time->piece.fits(rest) && library.clock(*each.time, rest, found.clock) &&
           found.clock.has_offset == each.offset;
  }

  bool read_by(const Form& each, Order order, std::string_view rest, std::string_view weekday, Found& found) {
    const Piece& piece = each.date->pieces[static_cast<size_t>(order)];
    size_t consumed = 0;
    if (!piece.fits(rest) || !library.date(piece, rest, found.day, consumed)) return false;
    if (each.date->two_digits && !move_into_century(found.day, decision.first_year)) return false;
    if (!read_tail(each, rest.substr(consumed), found)) return false;
    return weekday.empty() || !library.names_other_weekday(weekday, weekday_of(found.day));
  }

  Outcome try_form(const Form& each, std::string_view text, Found& found) {
    if (each.period) {
      const bool fits = each.period->piece.fits(text) && library.period(*each.period, text, found.day);
      return fits ? Outcome::read : Outcome::unread;
    }
    std::string_view weekday;
    if (each.after_weekday) {
      size_t consumed = 0;
      if ((text[0] >= '0' && text[0] <= '9') || !library.weekday(text, consumed)) return Outcome::unread;
      weekday = text.substr(0, consumed);
      text.remove_prefix(consumed);
      const size_t between = literal_length(*each.after_weekday, text);
      if (between == std::string_view::npos) return Outcome::unread;
      text.remove_prefix(between);
    }
    if (!each.date) return read_tail(each, text, found) ? Outcome::read : Outcome::unread;
    if (each.date->order == Order::none) {
      return read_by(each, Order::none, text, weekday, found) ? Outcome::read : Outcome::unread;
    }
    if (each.date->has(decision.order)) {
      if (read_by(each, decision.order, text, weekday, found)) return Outcome::read;
      for (const Order order : {Order::day_first, Order::month_first, Order::year_first}) {
        if (order == decision.order || (order == Order::year_first && !year_first)) continue;
        if (each.date->has(order) && read_by(each, order, text, weekday, found)) return Outcome::contradicts;
      }
      return Outcome::unread;
    }
    // Nothing was decided: what all possible orders agree on is read.
    bool any = false;
    for (const Order order : {Order::day_first, Order::month_first, Order::year_first}) {
      if (!each.date->has(order) || (order == Order::year_first && !year_first)) continue;
      Found other;
      if (!read_by(each, order, text, weekday, other)) continue;
      if (any && !(other.day == found.day)) return Outcome::ambiguous;
      found = other;
      any = true;
    }
    return any ? Outcome::read : Outcome::unread;
  }

  /// The reading of `number` that the decision takes.
  const NumberReading& taken() const {
    const bool comma = decision.decimal_point == "," || (decision.decimal_point.empty() && !number.point.possible);
    return comma ? number.comma : number.point;
  }

  Outcome read_number(std::string_view text) {
    size_t fault = 0;
    if (!number.scan(text, own_currency, fault)) return Outcome::unread;
    if (decision.strict && number.digits.size() + (text[0] == '-' || text[0] == '+' ? 1 : 0) != text.size()) {
      return Outcome::unread;
    }
    if (!library.number(number)) return Outcome::unread;
    const Outcome judged = rule.judge(bits_of(number), number.unit);
    if (judged != Outcome::read) return judged;
    const NumberReading& reading = taken();
    number.append_plain(reading, out);
    if (number_locale != nullptr) localise(out);
    shown = out;
    return Outcome::read;
  }

  /// A plain number as a locale writes it, every digit kept.
  void localise(std::string& plain) const {
    const VXLocaleData& data = *number_locale->localeData;
    std::string result;
    const size_t first = plain.find_first_of("0123456789");
    const size_t last = std::min(plain.find_first_not_of("0123456789", first), plain.size());
    result = plain.substr(0, first);
    const bool by_two = data.groupingPattern.length == 3;  // "3;2"
    for (size_t at = first; at < last; ++at) {
      const size_t left = last - at;  // digits from here on
      const bool boundary = left == 3 || (left > 3 && (by_two ? left % 2 == 1 : left % 3 == 0));
      if (at > first && boundary) result += utf8(data.groupSeparator);
      result += plain[at];
    }
    for (size_t at = last; at < plain.size(); ++at) {
      if (plain[at] == '.') result += utf8(data.decimalPoint);
      else result += plain[at];
    }
    plain = std::move(result);
  }

  bool write(const Form& each, const Found& found) {
    if (writer) return write_by_pattern(found);
    char text[32];
    char* to = text;
    if (each.period) {
      const bool week = each.period->length == PeriodForm::Length::week;
      const Week iso = week ? week_of(found.day) : Week{found.day.year, 0};
      to = four_digits(to, iso.year);
      *to++ = '-';
      if (each.period->length == PeriodForm::Length::month) {
        to = two_digits(to, found.day.month);
      } else if (week) {
        *to++ = 'W';
        to = two_digits(to, iso.week);
      } else {
        *to++ = 'Q';
        *to++ = static_cast<char>('1' + (found.day.month - 1) / 3);
      }
    }
    if (each.date) to = put_date(to, found.day);
    if (each.date && each.time) *to++ = 'T';
    if (each.time) to = put_time(to, found.clock.seconds);
    out.append(text, static_cast<size_t>(to - text));
    if (!found.clock.fraction.empty()) {
      out += '.';
      out += found.clock.fraction;
    }
    if (found.clock.has_offset) append_offset(out, found.clock.offset);
    shown = out;
    return true;
  }

  /// An instant is told by the clocks of the zone.
  bool write_by_pattern(const Found& found) {
    try {
      Moment moment{found.clock.seconds};
      if (decision.kind != Kind::time) {
        moment.seconds += day_number({found.day.year, found.day.month, found.day.day}) * seconds_a_day;
        if (found.clock.has_offset) moment = writer->at_instant(moment.seconds - found.clock.offset);
      }
      constexpr int64_t first_day_of_10000 = 2936548;
      if (day_of(moment.seconds) >= first_day_of_10000)
        refuse("the year is 10000 there, and patterns write four digits");
      out = writer->write(moment);
    } catch (const ValueError& error) {
      unwritten = error.what();
      return false;
    }
    shown = out;
    return true;
  }

  // Why a value was refused, in the cleaned text.
  struct Why {
    size_t furthest = 0, position = 0, length = 0;
    std::string expected;
    VXStatus status = VX_E_NOMATCH;
  };

  static std::string follows(std::string_view rest) { return fmt::format("{} follows what was read", in_quotes(rest)); }

  static Why of(const VXExplanation& told, std::string_view text, size_t base) {
    Why why;
    why.furthest = base + static_cast<size_t>(told.refusal.furthest);
    why.position = base + static_cast<size_t>(told.refusal.position);
    why.length = static_cast<size_t>(told.refusal.length);
    why.expected = describe_reason(told.refusal, text);
    why.status = told.status;
    return why;
  }

  static Why at(size_t position, size_t length, std::string expected) {
    return {position, position, length, std::move(expected), VX_E_NOMATCH};
  }

  Why why_form(const Form& each, const std::string_view text) {
    VXExplanation told;
    if (each.period) {
      library.explain_period(*each.period, text, told);
      if (told.status != 0) return of(told, text, 0);
      if (told.match.fields.week != 0) return at(0, text.size(), "the year has no such week");
      return at(0, text.size(), fmt::format("{} is wanted", in_quotes(each.pattern)));
    }
    size_t base = 0;
    if (each.after_weekday) {
      size_t consumed = 0;
      if (!library.weekday(text, consumed)) {
        const size_t word = std::min(text.find_first_of(" ,"), text.size());
        return at(0, word,
                  fmt::format("{} is not the name of a week day, reading %A", in_quotes(text.substr(0, word))));
      }
      base = consumed;
      const size_t between = literal_length(*each.after_weekday, text.substr(base));
      if (between == std::string_view::npos) {
        return at(base, std::min<size_t>(1, text.size() - base),
                  fmt::format("{} is wanted behind the week day", in_quotes(*each.after_weekday)));
      }
      base += between;
    }
    std::string_view rest = text.substr(base);
    if (each.date) {
      const bool decided = each.date->order != Order::none && each.date->has(decision.order);
      const Order order = decided ? decision.order : each.date->order;
      const Piece& piece = each.date->pieces[static_cast<size_t>(order)];
      library.explain_date(piece, rest, told);
      if (told.status != 0) return of(told, rest, base);
      const VXExplainFields& fields = told.match.fields;
      Day day{fields.year, fields.month, fields.day};
      const auto used = static_cast<size_t>(told.consumed);
      if (!exists(day) || (each.date->two_digits && !move_into_century(day, decision.first_year))) {
        Why why = at(base, used, fmt::format("there is no day {}", iso_date(day)));
        why.furthest = base + used;
        return why;
      }
      size_t consumed = 0;
      Day again;
      if (!piece.fits(rest) || !library.date(piece, rest, again, consumed)) {
        return at(base, used,
                  fmt::format("a year of {} digits is wanted, by {}", each.date->two_digits ? "two" : "four",
                              in_quotes(each.date->pattern_in(order))));
      }
      if (each.after_weekday &&
          library.names_other_weekday(text.substr(0, text.find_first_of(" ,")), weekday_of(day))) {
        Why why = at(0, base, fmt::format("{} is another day of the week", iso_date(day)));
        why.furthest = base + used;
        return why;
      }
      base += used;
      rest = text.substr(base);
    }
    if (!each.time) return at(base, rest.size(), follows(rest));
    if (each.date) {
      const size_t between = literal_length(each.between, rest);
      if (between == std::string_view::npos) {
        return at(base, std::min<size_t>(1, rest.size()),
                  rest.empty() ? "the text ends where a time is wanted"
                               : fmt::format("{} is wanted before the time", in_quotes(each.between)));
      }
      base += between;
      rest = text.substr(base);
    }
    library.explain_time(*each.time, rest, told);
    if (told.status != 0) return of(told, rest, base);
    base += static_cast<size_t>(told.consumed);
    rest = text.substr(base);
    if (each.offset) {
      size_t blanks = std::min(rest.find_first_not_of(" .,0123456789"), rest.size());
      base += blanks;
      rest = text.substr(base);
      if (rest.empty()) return at(base, 0, "the text ends where an offset from UTC is wanted");
      library.explain_offset(rest, told);
      if (told.status != 0) return of(told, rest, base);
      base += static_cast<size_t>(told.consumed);
      rest = text.substr(base);
    }
    return at(base, rest.size(), follows(rest));
  }

  Why why_number(std::string_view text) {
    size_t fault = 0;
    Why why;
    why.status = VX_E_NOTNUMBER;
    const NumberText& n = number;
    if (!number.scan(text, own_currency, fault)) {
      why.position = fault;
      why.length = std::min<size_t>(text.size() - fault, 1);
      while (fault + why.length < text.size() && (text[fault + why.length] & 0xC0) == 0x80) ++why.length;
      if (n.digits.empty()) {
        why.expected =
            fmt::format("{} stands where a digit is wanted",
                        fault == text.size() ? "the end of the text" : in_quotes(text.substr(fault, why.length)));
      } else if (fault > static_cast<size_t>(n.digits.data() - text.data())) {
        why.expected = fmt::format("{} follows the number", in_quotes(text.substr(fault)));
        why.length = text.size() - fault;
      } else {
        why.length = n.digits.size();
        why.expected = "the separators do not stand where those of groups or a decimal point can";
      }
      return why;
    }
    why.position = static_cast<size_t>(n.digits.data() - text.data());
    why.length = n.digits.size();
    VXNumberReading told;
    library.explain_number(n.digits, taken(), told);
    if (told.status == 0 && n.differ) library.explain_number(n.digits, n.comma, told);
    if (told.status != 0) {
      why.position += static_cast<size_t>(told.fault_offset);
      why.length = static_cast<size_t>(told.fault_length);
      why.expected = describe_reason(told, n.digits);
      why.status = told.status;
    } else {
      why.expected = "a plain number is wanted";
    }
    return why;
  }

  /// How much of the form's numbers and signs the text has.
  static size_t likeness(const Form& each, std::string_view text) {
    if (each.after_weekday) return text[0] >= '0' && text[0] <= '9' ? 0 : 1;
    if (each.period) return each.period->piece.like(text);
    if (!each.date) return each.time->piece.like(text);
    size_t most = 0;
    for (const Piece& piece : each.date->pieces) most = std::max(most, piece.like(text));
    return most;
  }

  Why why_ambiguous(std::string_view text) {
    Why why;
    why.status = 0;
    why.length = text.size();
    why.expected = form != nullptr
                       ? "it reads differently with the day and with the month first, and nothing in the column "
                         "decides; --day-first or --month-first does"
                       : "\".\" or \",\" may be the decimal point or separate groups, and nothing in the "
                         "column decides; --decimal does";
    return why;
  }

  Why why_contradicts(std::string_view text) {
    Why why;
    why.status = 0;
    why.length = text.size();
    if (form != nullptr) {
      why.expected = fmt::format("the column is {}, and it cannot be read so", word_of(order_words, decision.order));
      return why;
    }
    if (number.unit != decision.unit && (!number.unit.empty() || decision.unit == "%")) {
      why.expected = decision.unit.empty()
                         ? fmt::format("{} stands at a number, and the column has plain ones", in_quotes(number.unit))
                     : number.unit.empty() ? fmt::format("the numbers of the column carry {}, this one does not",
                                                         in_quotes(decision.unit))
                                           : fmt::format("{} stands at a number, and the column has {}",
                                                         in_quotes(number.unit), in_quotes(decision.unit));
      return why;
    }
    const NumberReading& reading = taken();
    if (!reading.possible && !decision.decimal_point.empty()) {
      why.expected = fmt::format("the decimal point of the column is {}, and it cannot be read so",
                                 in_quotes(decision.decimal_point));
    } else if (decision.kind == Kind::integer && !reading.whole) {
      why.expected = "the column has whole numbers, and this one has a fraction or an exponent";
    } else {
      why.expected = fmt::format("groups are separated by {} in the column", in_quotes(decision.group_separators));
    }
    return why;
  }

  Why why(std::string_view text) {
    if (outcome == Outcome::ambiguous) return why_ambiguous(text);
    if (outcome == Outcome::contradicts) return why_contradicts(text);
    if (decision.kind == Kind::number || decision.kind == Kind::integer) return why_number(text);
    // Of the forms that are most like the text, the one that came furthest.
    Why best;
    best.length = text.size();
    best.expected = fmt::format("no form of a {} matches", word_of(kind_words, decision.kind));
    std::optional<std::tuple<size_t, size_t, size_t>> rank;
    for (const Form& each : forms) {
      Why one = why_form(each, text);
      const std::tuple own{likeness(each, text), one.furthest, one.position};
      if (rank && own <= *rank) continue;
      rank = own;
      best = std::move(one);
    }
    return best;
  }

  const Refusal& explain() {
    if (explained) return refusal;
    explained = true;
    refusal = {};
    if (outcome == Outcome::read || outcome == Outcome::empty) return refusal;
    if (original.size() > longest_value) {
      refusal = {.position = 0, .length = original.size(), .expected = "it is too long", .status = VX_E_NOMATCH};
      return refusal;
    }
    if (!unwritten.empty()) {
      refusal = {.position = 0, .length = original.size(), .expected = unwritten, .status = 0};
      return refusal;
    }
    const Why found = why(cleaned.text());
    refusal.position = cleaned.original(found.position);
    refusal.length = found.length == 0 ? 0 : cleaned.original(found.position + found.length) - refusal.position;
    refusal.expected = found.expected;
    refusal.status = found.status;
    return refusal;
  }

  Decision decision;
  Library library;
  NumberRule rule;
  std::vector<Form> forms;
  bool year_first = false;  // is considered
  std::string own_currency;
  VXLocale* number_locale = nullptr;     // writes numbers; null: they are written plain
  std::optional<DatetimeWriter> writer;  // of all else; none: by ISO 8601

  Cleaned cleaned;
  NumberText number;
  std::string out;
  std::string_view shown;
  const Form* form = nullptr;
  Outcome outcome = Outcome::empty;
  std::string_view original;
  Refusal refusal;
  bool explained = false;
  std::string unwritten;  // why a value that was read cannot be written
};

Reader::Reader(const LocaleMaker& make_locale, const Decision& decision, const OutputChoice& output)
    : state_(std::make_unique<State>(make_locale, decision, output)) {}
Reader::~Reader() = default;
Reader::Reader(Reader&&) noexcept = default;
Reader& Reader::operator=(Reader&&) noexcept = default;

Outcome Reader::read(std::string_view value) { return state_->read(value); }
std::string_view Reader::text() const { return state_->shown; }
std::string_view Reader::form() const {
  return state_->form == nullptr ? std::string_view() : std::string_view(state_->form->pattern);
}
const Refusal& Reader::refusal() { return state_->explain(); }

}  // namespace vxcli::column
