#include "host/locale_database/cldr_pattern.h"

#include <vector>

#include "host/locale_database/text.h"

namespace vxnlsldb {

namespace {

constexpr const char* month_padding = "no directive writes and reads a month without its leading zero";
constexpr const char* minute_padding = "R2: the main time pattern has %M";
constexpr const char* second_padding = "R2: the main time pattern has %S";

struct Field {
  char32_t letter;
  int shortest, longest;    // run lengths that this row answers
  const char32_t* as_cldr;  // null: no directive
  const char32_t* padded;
  const char* change;  // where texts will differ
  const char* padded_change;
  const char* obstacle;
};

constexpr Field fields[] = {
    // letter  run     as CLDR     padded     change         padded change   obstacle
    {'y', 1, 4, U"%Y", U"%Y", nullptr, nullptr, nullptr},  // always four digits, also for "yy"
    {'M', 1, 1, U"%m", U"%m", month_padding, nullptr, nullptr},
    {'M', 2, 2, U"%m", U"%m", nullptr, nullptr, nullptr},
    {'M', 3, 3, U"%b", U"%b", nullptr, nullptr, nullptr},
    {'M', 4, 4, U"%B", U"%B", nullptr, nullptr, nullptr},
    {'L', 1, 1, U"%m", U"%m", month_padding, nullptr, nullptr},
    {'L', 2, 2, U"%m", U"%m", nullptr, nullptr, nullptr},
    {'d', 1, 1, U"%#d", U"%d", nullptr, nullptr, nullptr},
    {'d', 2, 2, U"%d", U"%d", nullptr, nullptr, nullptr},
    {'E', 1, 9, nullptr, nullptr, nullptr, nullptr, "R8: the pattern has a week day"},
    {'c', 1, 9, nullptr, nullptr, nullptr, nullptr, "R8: the pattern has a week day"},
    {'H', 1, 1, U"%#H", U"%#H", nullptr, nullptr, nullptr},
    {'H', 2, 2, U"%H", U"%H", nullptr, nullptr, nullptr},
    {'h', 1, 1, U"%#I", U"%#I", nullptr, nullptr, nullptr},
    {'h', 2, 2, U"%I", U"%I", nullptr, nullptr, nullptr},
    {'m', 1, 1, U"%#M", U"%M", nullptr, minute_padding, nullptr},
    {'m', 2, 2, U"%M", U"%M", nullptr, nullptr, nullptr},
    {'s', 1, 1, U"%S", U"%S", second_padding, second_padding, nullptr},
    {'s', 2, 2, U"%S", U"%S", nullptr, nullptr, nullptr},
    {'a', 1, 3, U"%p", U"%p", nullptr, nullptr, nullptr},
    {'b', 1, 3, U"%p", U"%p", "only AM and PM are told apart", "only AM and PM are told apart", nullptr},
    {'B', 1, 3, U"%p", U"%p", "only AM and PM are told apart", "only AM and PM are told apart", nullptr},
};

const Field* row_of(char32_t letter, int run) {
  for (const Field& field : fields) {
    if (field.letter == letter && run >= field.shortest && run <= field.longest) return &field;
  }
  return nullptr;
}

bool is_letter(char32_t c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

/// Calls field(letter, run) and literal(text) for the pieces of a CLDR pattern, in order.
template <class OnField, class OnLiteral>
void walk(std::u32string_view cldr, OnField field, OnLiteral literal) {
  bool quoted = false;
  for (size_t i = 0; i < cldr.size();) {
    const char32_t c = cldr[i];
    if (c == '\'') {
      const bool apostrophe = i + 1 < cldr.size() && cldr[i + 1] == '\'';
      if (apostrophe) literal(c);
      if (!apostrophe) quoted = !quoted;
      i += apostrophe ? 2 : 1;
    } else if (!quoted && is_letter(c)) {
      int run = 0;
      while (i < cldr.size() && cldr[i] == c) ++i, ++run;
      field(c, run);
    } else {
      literal(c);
      ++i;
    }
  }
}

void add_reason(std::string& reasons, const std::string& reason) {
  if (!reasons.empty()) reasons += "; ";
  reasons += reason;
}

}  // namespace

Translation translate(std::u32string_view cldr, Padding padding, std::u32string_view era) {
  Translation result;
  if (cldr.empty()) result.obstacle = "CLDR has no pattern";
  const auto literal = [&](char32_t c) {
    result.stored += c;
    if (c == '%') result.stored += c;
  };
  const auto field = [&](char32_t letter, int run) {
    if (letter == 'G') {
      for (const char32_t c : era) literal(c);
      return;
    }
    const Field* const row = row_of(letter, run);
    if (row == nullptr || row->as_cldr == nullptr) {
      add_reason(result.obstacle, row != nullptr ? row->obstacle
                                                 : "no directive for " + std::string(static_cast<size_t>(run),
                                                                                     static_cast<char>(letter)));
      return;
    }
    const bool all = padding == Padding::all;
    result.stored += all ? row->padded : row->as_cldr;
    if (const char* const change = all ? row->padded_change : row->change) add_reason(result.change, change);
  };
  walk(cldr, field, literal);
  if (const Clock clock = clock_of(cldr); clock.twelve_hours && clock.day_period_first) {
    add_reason(result.obstacle, "R4: the day period stands before the hour");
  }
  result.stored = clean(result.stored);
  return result;
}

Clock clock_of(std::u32string_view cldr) {
  Clock clock{};
  bool hour_seen = false;
  const auto field = [&](char32_t letter, int) {
    if (letter == 'h' || letter == 'K') clock.twelve_hours = true;
    if (letter == 'h' || letter == 'K' || letter == 'H' || letter == 'k') hour_seen = true;
    if ((letter == 'a' || letter == 'b' || letter == 'B') && !hour_seen) clock.day_period_first = true;
  };
  walk(cldr, field, [](char32_t) {});
  return clock;
}

}  // namespace vxnlsldb
