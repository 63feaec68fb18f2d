#include "cli/column/form.h"

#include <algorithm>
#include <atomic>
#include <iterator>

#include "cli/errors.h"
#include "cli/text.h"

namespace vxcli::column {

namespace {

constexpr std::string_view numeric_dates_list[] = {
    "%Y-%m-%d",   "%Y/%m/%d",     "%Y.%m.%d",       "%d/%m/%Y",       "%d.%m.%Y",    "%d-%m-%Y",
    "%d/%m/%y",   "%d.%m.%y",     "%d-%m-%y",       "%d. %m. %Y",     "%d. %m. %y",  "%d %m %Y",
    "%d %m %y",   "%Y %m %d",     "%d.%m.%Y.",      "%d. %m. %Y.",    "%Y.%m.%d.",   "%Y. %m. %d.",
    "%Y. %m. %d", "%Y年%m月%d日", "%Y年 %m月 %d日", "%Y년 %m월 %d일", "%d / %m / %Y"};

constexpr std::string_view named_dates_list[] = {"%d %b %Y",  "%d. %b %Y", "%d-%b-%Y",       "%d/%b/%Y",  "%d.%b.%Y",
                                                 "%b %d, %Y", "%b %d %Y",  "%b-%d-%Y",       "%Y-%b-%d",  "%Y %b %d",
                                                 "%Y. %b %d", "%Y/%b/%d",  "%d de %b de %Y", "%d %b, %Y", "%d %b %y",
                                                 "%d. %b %y", "%d-%b-%y",  "%d/%b/%y",       "%b %d, %y"};

constexpr std::string_view numeric_times_list[] = {"%H:%M:%S",     "%H:%M",          "%Hh%M",
                                                   "%H時%M分%S秒", "%H時%M分",       "%H时%M分%S秒",
                                                   "%H时%M分",     "%H시 %M분 %S초", "%H시 %M분"};

constexpr std::string_view named_times_list[] = {"%I:%M:%S %p", "%I:%M %p", "%I %p", "%p %I:%M:%S", "%p %I:%M"};

constexpr std::string_view periods_list[] = {
    "%Y-W%V", "%YW%V", "W%V %Y", "W%V-%Y", "W%V/%Y", "%Y-%m", "%Y/%m", "%m/%Y", "%m-%Y", "%m.%Y", "%Y年%m月", "%b %Y",
    "%b-%Y",  "%b/%Y", "%Y %b",  "%Y-%b",  "%b-%y",  "%q %Y", "%q-%Y", "%q/%Y", "%Y %q", "%Y-%q", "%Y/%q",    "%Y%q"};

constexpr std::string_view connectors_list[] = {"T",    " ",    ", ",     ",",       " - ",  "-",
                                                " um ", " at ", ", at ",  " à ",     " às ", " kl ",
                                                " o ",  " в ",  " alle ", " a las ", ", o ", ", в "};

}  // namespace

constinit const std::span<const std::string_view> numeric_dates = numeric_dates_list;
constinit const std::span<const std::string_view> named_dates = named_dates_list;
constinit const std::span<const std::string_view> numeric_times = numeric_times_list;
constinit const std::span<const std::string_view> named_times = named_times_list;
constinit const std::span<const std::string_view> periods = periods_list;
constinit const std::span<const std::string_view> connectors = connectors_list;

namespace {

constexpr std::string_view date_letters = "YymdbBA";
constexpr std::string_view time_letters = "HIMSp";

struct Directive {
  bool is = false;
  bool modified = false;
  char letter = 0;
  size_t size = 1;  // in bytes of the pattern
};

Directive directive_at(std::string_view pattern, size_t at) {
  Directive found;
  if (pattern[at] != '%') return found;
  size_t end = at + 1;
  while (end < pattern.size() && (pattern[end] == '#' || pattern[end] == '0' || pattern[end] == '?')) {
    found.modified = found.modified || pattern[end] == '#';
    ++end;
  }
  if (end == pattern.size()) refuse("the pattern ends within a directive");
  found.letter = pattern[end];
  found.size = end + 1 - at;
  found.is = found.letter != '%';
  return found;
}

uint8_t digits_of(char letter) {
  switch (letter) {
    case 'Y': return 4;
    case 'A':
    case 'b':
    case 'B':
    case 'p':
    case 'q': return 0;
    default: return 2;
  }
}

bool is_letter(unsigned char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c >= 0x80; }

/// A piece from its part of a pattern.
Piece make_piece(std::string_view pattern, bool strict) {
  static std::atomic<uint32_t> made = 0;
  Piece piece;
  piece.id = ++made;
  bool two_digit_year = false;
  for (size_t at = 0; at < pattern.size();) {
    const Directive directive = directive_at(pattern, at);
    if (directive.is) {
      piece.names = piece.names || digits_of(directive.letter) == 0;
      two_digit_year = two_digit_year || directive.letter == 'y';
    }
    at += directive.size;
  }
  const bool only_marker = pattern.find("%p") != std::string_view::npos;  // read strictly, which applies it to the hour
  piece.lenient = two_digit_year || (piece.names && !only_marker);

  std::string library;  // the pattern for the library
  bool after_name = false;
  for (size_t at = 0; at < pattern.size();) {
    const Directive directive = directive_at(pattern, at);
    const std::string_view rest = pattern.substr(at + directive.size);
    Piece::Token token;
    if (!directive.is) {
      token.byte = pattern[at];
      const bool before_marker = !strict && token.byte == ' ' && rest.starts_with("%p");  // blanks are skipped there
      if (!before_marker) {
        piece.tokens.push_back(token);
        library.append(pattern.substr(at, directive.size));
      }
      at += directive.size;
      continue;
    }
    const uint8_t width = digits_of(directive.letter);
    const bool touches_number = (rest.size() > 1 && rest[0] == '%' && digits_of(directive_at(rest, 0).letter) != 0) ||
                                (!piece.tokens.empty() && piece.tokens.back().what == Piece::Token::What::number);
    const bool can_be_short = std::string_view("dmHI").find(directive.letter) != std::string_view::npos;
    const bool is_short = can_be_short && !touches_number && (!strict || directive.modified || piece.lenient);
    if (width == 0) {
      token.what = Piece::Token::What::name;
      after_name = true;
    } else {
      token.what = Piece::Token::What::number;
      token.least = is_short ? 1 : width;
      token.most = width;
      token.blanks = is_short && !strict;
      if (after_name && (directive.letter == 'Y' || directive.letter == 'y')) piece.year_digits = width;
    }
    piece.tokens.push_back(token);
    library += '%';
    if (is_short && !piece.lenient) library += '#';
    library += directive.letter == 'y' ? 'Y' : directive.letter;
    at += directive.size;
  }
  const auto name = std::find_if(piece.tokens.begin(), piece.tokens.end(),
                                 [](const Piece::Token& token) { return token.what == Piece::Token::What::name; });
  piece.wanted = static_cast<size_t>(name - piece.tokens.begin());
  const auto units = utf32(library);
  if (!units || units->size() > std::size(piece.units.text)) refuse("the pattern has more than 60 characters");
  std::copy(units->begin(), units->end(), piece.units.text);
  piece.units.length = static_cast<int64_t>(units->size());
  return piece;
}

/// The letters of day, month and year in another order; what stands between them stays.
std::string reordered(std::string_view pattern, Order order) {
  const std::string_view letters = order == Order::day_first ? "dmy" : order == Order::month_first ? "mdy" : "ymd";
  const char year = pattern.find("%Y") != std::string_view::npos ? 'Y' : 'y';
  std::string result;
  size_t next = 0;
  for (size_t at = 0; at < pattern.size();) {
    const Directive directive = directive_at(pattern, at);
    if (directive.is && next < letters.size()) {
      result += pattern.substr(at, directive.size - 1);
      result += letters[next] == 'y' ? year : letters[next];
      ++next;
    } else {
      result += pattern.substr(at, directive.size);
    }
    at += directive.size;
  }
  return result;
}

std::string letters_of(std::string_view pattern) {
  std::string letters;
  for (size_t at = 0; at < pattern.size();) {
    const Directive directive = directive_at(pattern, at);
    if (directive.is) letters += directive.letter;
    at += directive.size;
  }
  return letters;
}

}  // namespace

size_t Piece::like(std::string_view text) const {
  size_t at = 0;
  for (size_t i = 0; i < tokens.size(); ++i) {
    const Token& token = tokens[i];
    if (token.what == Token::What::name) {
      while (at < text.size() && text[at] == ' ') ++at;
      return at < text.size() && !(text[at] >= '0' && text[at] <= '9') ? i + 1 : i;
    }
    if (token.what == Token::What::literal) {
      if (at < text.size() && text[at] == token.byte) {
        ++at;
        continue;
      }
      if (lenient && token.byte == ' ') continue;
      const bool same_letter = lenient && at < text.size() && is_letter(static_cast<unsigned char>(token.byte)) &&
                               (text[at] ^ token.byte) == 0x20;
      if (!same_letter) return i;
      ++at;
      continue;
    }
    if (token.blanks) {
      while (at < text.size() && text[at] == ' ') ++at;
    }
    size_t digits = 0;
    while (digits < token.most && at + digits < text.size() && text[at + digits] >= '0' && text[at + digits] <= '9') {
      ++digits;
    }
    if (digits < token.least) return i;
    at += digits;
    const bool another = i + 1 < tokens.size() && tokens[i + 1].what == Token::What::number;
    if (!another && at < text.size() && text[at] >= '0' && text[at] <= '9') return i;
  }
  return tokens.size();
}

bool DateForm::has(Order which) const {
  if (order == Order::none) return which == Order::none;
  return which == Order::day_first || which == Order::month_first || (which == Order::year_first && two_digits);
}

std::string DateForm::pattern_in(Order which) const {
  return order == Order::none || which == Order::none || !has(which) ? pattern : reordered(pattern, which);
}

DateForm make_date_form(std::string_view pattern, bool strict) {
  DateForm form;
  form.pattern = pattern;
  const std::string letters = letters_of(pattern);
  form.two_digits = letters.find('y') != std::string::npos;
  if (letters == "dmY" || letters == "dmy") form.order = Order::day_first;
  if (letters == "mdY" || letters == "mdy") form.order = Order::month_first;
  if (letters == "ymd") form.order = Order::year_first;
  if (form.order == Order::none) {
    form.pieces[0] = make_piece(pattern, strict);
    form.names = form.pieces[0].names;
    return form;
  }
  for (const Order order : {Order::day_first, Order::month_first, Order::year_first}) {
    if (form.has(order)) form.pieces[static_cast<size_t>(order)] = make_piece(reordered(pattern, order), strict);
  }
  return form;
}

TimeForm make_time_form(std::string_view pattern, bool strict) {
  TimeForm form;
  form.pattern = pattern;
  form.piece = make_piece(pattern, strict);
  const std::string letters = letters_of(pattern);
  form.marker_first = letters.find('p') < letters.find_first_of("HI");
  form.names = form.piece.names;
  return form;
}

PeriodForm make_period_form(std::string_view pattern, bool strict) {
  PeriodForm form;
  form.pattern = pattern;
  form.piece = make_piece(pattern, strict);
  form.piece.lenient = true;  // the library reads periods in no other way
  const std::string letters = letters_of(pattern);
  form.length = letters.find('V') != std::string::npos   ? PeriodForm::Length::week
                : letters.find('q') != std::string::npos ? PeriodForm::Length::quarter
                                                         : PeriodForm::Length::month;
  return form;
}

std::string plain_pattern(std::string_view pattern) {
  std::string plain;
  bool after_letter = false;
  for (size_t at = 0; at < pattern.size();) {
    const Directive directive = directive_at(pattern, at);
    if (directive.is) {
      plain += '%';
      plain += directive.letter == 'B' ? 'b' : directive.letter;
      after_letter = digits_of(directive.letter) == 0;
    } else if (pattern[at] != '.' || !after_letter) {
      plain += pattern.substr(at, directive.size);
      after_letter = is_letter(static_cast<unsigned char>(pattern[at]));
    }
    at += directive.size;
  }
  while (plain.ends_with(' ')) plain.pop_back();
  return plain;
}

Form parse_form(std::string_view pattern, bool strict) {
  Form form;
  form.pattern = pattern;
  if (!utf32(pattern)) refuse("it is not UTF-8");

  const std::string letters = letters_of(pattern);
  const auto has = [&](char letter) { return letters.find(letter) != std::string::npos; };
  for (const char letter : letters) {
    if (std::string_view("YymdbBAHIMSpzqV").find(letter) == std::string_view::npos) {
      refuse("%{} reads nothing in a column", letter);
    }
    if (std::count(letters.begin(), letters.end(), letter) > 1) refuse("%{} stands there twice", letter);
  }
  const bool any_time = letters.find_first_of(time_letters) != std::string::npos;
  const bool any_year = has('Y') || has('y');
  if ((has('Y') && has('y')) || (has('b') && has('B')) || (has('m') && (has('b') || has('B')))) {
    refuse("year or month stands there twice");
  }
  if (has('q') || has('V') || (any_year && !has('d'))) {
    if (any_time || has('d') || has('A') || !any_year) refuse("a period has a year and a week, month or quarter alone");
    form.kind = Kind::period;
    form.period = make_period_form(pattern, strict);
    return form;
  }
  if (strict && has('y')) refuse("strict columns have years of four digits, %Y");

  std::string_view rest = pattern;
  if (rest.starts_with("%A")) {
    rest.remove_prefix(2);
    const size_t end = std::min(rest.find('%'), rest.size());
    form.after_weekday = std::string(rest.substr(0, end));
    rest.remove_prefix(end);
  } else if (has('A')) {
    refuse("%A stands first or nowhere");
  }
  // Where the date ends, and where the time begins and ends.
  size_t date_end = 0, time_begin = std::string_view::npos, time_end = 0;
  size_t offset_at = std::string_view::npos;
  for (size_t at = 0; at < rest.size();) {
    const Directive directive = directive_at(rest, at);
    if (directive.is && date_letters.find(directive.letter) != std::string_view::npos) {
      if (time_begin != std::string_view::npos) refuse("the date stands before the time");
      date_end = at + directive.size;
    } else if (directive.is && directive.letter == 'z') {
      offset_at = at;
      if (at + directive.size != rest.size()) refuse("%z stands last");
    } else if (directive.is) {
      if (time_begin == std::string_view::npos) time_begin = at;
      time_end = at + directive.size;
    }
    at += directive.size;
  }
  form.offset = offset_at != std::string_view::npos;
  if (date_end > 0) {
    if (!has('d') || !any_year || (!has('m') && !has('b') && !has('B'))) refuse("a date has day, month and year");
    const size_t end = any_time ? date_end : form.offset ? offset_at : rest.size();
    form.date = make_date_form(rest.substr(0, end), strict);
    form.kind = Kind::date;
  }
  if (any_time) {
    if (!has('H') && !has('I')) refuse("a time has an hour, %H or %I");
    if (has('I') != has('p')) refuse("%I and %p belong together");
    if (date_end > 0) {
      form.between = rest.substr(date_end, time_begin - date_end);
      if (form.between.empty()) refuse("something stands between date and time");
    } else if (time_begin > 0) {
      refuse("a time begins with its hour");
    }
    const size_t end = form.offset ? time_end : rest.size();
    form.time = make_time_form(rest.substr(time_begin, end - time_begin), strict);
    form.kind = form.date ? Kind::datetime : Kind::time;
  }
  if (form.offset && !any_time) refuse("an offset stands behind a time");
  if (form.kind == Kind::text) refuse("it holds neither a date nor a time");
  return form;
}

std::vector<Form> parse_forms(const Decision& decision) {
  std::vector<Form> forms;
  for (const std::string& pattern : decision.forms) {
    try {
      forms.push_back(parse_form(decision.strict ? pattern : plain_pattern(pattern), decision.strict));
      const Form& form = forms.back();
      if (form.kind != decision.kind) {
        refuse("it is a {}, the column a {}", word_of(kind_words, form.kind), word_of(kind_words, decision.kind));
      }
      const bool ordered = form.date && form.date->order != Order::none && form.date->has(decision.order);
      if (ordered && decision.order != Order::none && form.date->order != decision.order) {
        refuse("it is {}, the column {}", word_of(order_words, form.date->order), word_of(order_words, decision.order));
      }
    } catch (const ValueError& error) {
      refuse("the form {}: {}", in_quotes(pattern), error.what());
    }
  }
  return forms;
}

size_t literal_length(std::string_view literal, std::string_view text) {
  size_t at = 0;
  for (size_t i = 0; i < literal.size(); ++i) {
    const char c = literal[i];
    if (c == '%' && i + 1 < literal.size()) ++i;  // "%%"
    if (at == text.size()) return std::string_view::npos;
    const bool same_letter =
        is_letter(static_cast<unsigned char>(c)) && static_cast<unsigned char>(c) < 0x80 && (text[at] ^ c) == 0x20;
    if (text[at] != c && !same_letter) return std::string_view::npos;
    ++at;
    if (c == ' ') {
      while (at < text.size() && text[at] == ' ') ++at;
    }
  }
  return at;
}

}  // namespace vxcli::column
