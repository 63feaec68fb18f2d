// A million rows from ten countries, dirt included, against answers that were known before: days by std::chrono, their
// texts by ICU's own formatter and patterns that stand here, numbers by their digits. Nothing of what is tested takes
// part.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "cli/column/profiler.h"
#include "cli/column/reader.h"
#include "tests/cli/column_host.h"

namespace {

using namespace vxcli::column;
using icu::UnicodeString;
using Random = std::mt19937;

constexpr size_t rows_a_country = 100'000;

size_t below(Random& random, size_t limit) { return random() % limit; }  // the same with every standard library

/// What a cell of the column means: the text that it is to become. Nothing: it cannot be read, or only against the rest
/// of the column.
struct Cell {
  std::string text;
  std::optional<std::string> answer;
  bool against = false;  // it can be read in one way, which is not that of the column
  bool hard = false;     // people understand it, by what is in no locale: "ca. 5.3.2021", "2O21-03-05"
};

/// A country's ICU patterns, the numeric ones all in one order, and how it writes numbers.
struct Country {
  const char* locale;
  const char* dates;
  const char* other_order;  // with day and month exchanged; null: none
  const char *decimal_point, *group_separator;
  char16_t zero = u'0';
};
const Country countries[] = {
    {"en_US", "M/d/yy|MM/dd/yyyy|MMM d, yyyy|MMMM d, yyyy|EEE, MMM d, yyyy|d-MMM-yy|yyyy-MM-dd", "dd/MM/yyyy", ".",
     ","},
    {"en_GB", "dd/MM/yyyy|d/M/yy|d MMM yyyy|d MMMM yyyy|EEEE, d MMMM yyyy|yyyy-MM-dd", "MM/dd/yyyy", ".", ","},
    {"de_DE", "dd.MM.yyyy|d.M.yy|d. MMMM yyyy|d. MMM yyyy|EEE, d. MMM yyyy|yyyy-MM-dd", "MM.dd.yyyy", ",", "."},
    {"fr_FR", "dd/MM/yyyy|dd/MM/yy|d MMM yyyy|d MMMM yyyy|EEEE d MMMM yyyy|dd-MM-yyyy", "MM/dd/yyyy", ",", "\u202F"},
    {"es_ES", "d/M/yy|dd-MM-yyyy|d MMM yyyy|d 'de' MMMM 'de' yyyy|EEEE, d 'de' MMMM 'de' yyyy|yyyy/MM/dd", "MM-dd-yyyy",
     ",", "."},
    {"pt_BR", "dd/MM/yyyy|dd/MM/yy|d 'de' MMM 'de' yyyy|d 'de' MMMM 'de' yyyy|yyyy-MM-dd", "MM/dd/yyyy", ",", "."},
    {"pl_PL", "dd.MM.yyyy|d.MM.yyyy|d MMM yyyy|d MMMM yyyy|EEEE, d MMMM yyyy|yyyy-MM-dd", "MM.dd.yyyy", ",", "\u00A0"},
    {"ru_RU", "dd.MM.yyyy|dd.MM.yy|d MMM yyyy 'г'.|d MMMM yyyy 'г'.|d MMMM yyyy|yyyy-MM-dd", "MM.dd.yyyy", ",",
     "\u00A0"},
    {"ja_JP", "yyyy/MM/dd|yy/MM/dd|yyyy年M月d日|yyyy-MM-dd|yyyy.MM.dd", nullptr, ".", ","},
    {"ar_EG", "d\u200F/M\u200F/yyyy|dd/MM/yy|d MMMM yyyy|EEEE، d MMMM yyyy|yyyy-MM-dd", "MM/dd/yyyy", "\u066B",
     "\u066C", u'\u0660'}};

/// Moves the digits of a text to those of another zero.
void use_digits(UnicodeString& text, char16_t zero) {
  for (int32_t i = 0; i < text.length(); ++i) {
    if (text[i] >= u'0' && text[i] <= u'9') text.setCharAt(i, static_cast<char16_t>(text[i] - u'0' + zero));
  }
}

/// What people write and no locale has: the meaning is plain, the text is not.
void make_hard(UnicodeString& text, Random& random) {
  const int32_t zero = text.indexOf(u'0');
  switch (below(random, 4)) {
    case 0: text.append(u" (?)"); break;
    case 1: text.insert(0, u"ca. "); break;
    case 2: zero < 0 ? text.append(u"*") : text.replace(zero, 1, u'O'); break;
    default: text.append(u";");
  }
}

/// What copying and exporting does to a text, its meaning kept.
void soil(UnicodeString& text, Random& random, bool number) {
  static constexpr char16_t spaces[] = {0x00A0, 0x202F, 0x2009};
  switch (below(random, 12)) {
    case 0: text.insert(0, u' '); break;
    case 1: text.append(u' ').append(char16_t{0x00A0}); break;
    case 2: text.insert(0, char16_t{0x200E}); break;
    case 3: text.append(char16_t{0x200F}); break;
    case 4: text.findAndReplace(u" ", UnicodeString(spaces[below(random, 3)])); break;
    case 5: use_digits(text, 0xFF10); break;  // full-width
    case 6: text.findAndReplace(u"-", UnicodeString(number ? char16_t{0x2212} : char16_t{0x2010})); break;
    case 7: text.append(u'\t'); break;
    default: break;
  }
}

/// `rows` cells, always the same for a seed. 6 in 100 are empty or rubbish, 1 in 100 is hard, 1 in 4 of the others
/// soiled; of 1 in 200 `write` is asked to write against the column, where that shows.
template <class Write>
std::vector<Cell> column(size_t rows, Random& random, const std::vector<const char*>& rubbish, bool number,
                         const Write& write) {
  std::vector<Cell> cells;
  while (cells.size() < rows) {
    const size_t luck = below(random, 1000);
    if (luck < 60) {
      cells.push_back({luck < 5 ? "" : luck < 10 ? " \u00A0" : rubbish[below(random, rubbish.size())], std::nullopt});
      continue;
    }
    Cell cell;
    UnicodeString text = write(luck < 65, cell);
    cell.hard = !cell.against && below(random, 100) == 0;
    if (cell.against) cell.answer.reset();
    else if (cell.hard) make_hard(text, random);
    else if (below(random, 4) == 0) soil(text, random, number);
    text.toUTF8String(cell.text);
    cells.push_back(std::move(cell));
  }
  return cells;
}

std::vector<Cell> date_column(const Country& country, size_t rows, uint32_t seed) {
  std::vector<std::unique_ptr<icu::SimpleDateFormat>> formats;
  const auto add = [&](const std::string& pattern) {  // in the Gregorian calendar, UTC
    UErrorCode error = U_ZERO_ERROR;
    const icu::Locale locale(country.locale);
    formats.push_back(std::make_unique<icu::SimpleDateFormat>(UnicodeString::fromUTF8(pattern), locale, error));
    auto calendar = std::make_unique<icu::GregorianCalendar>(locale, error);
    calendar->setGregorianChange(-1e17, error);
    formats.back()->adoptCalendar(calendar.release());
    formats.back()->adoptTimeZone(icu::TimeZone::createTimeZone("UTC"));
  };
  std::istringstream patterns(country.dates);
  for (std::string pattern; std::getline(patterns, pattern, '|');) add(pattern);
  const size_t own = formats.size();
  if (country.other_order != nullptr) add(country.other_order);
  Random random(seed);
  // Every other column has recent days only: two-digit years that could be days as well.
  const bool recent = seed % 2 == 1 && country.other_order != nullptr;
  const std::chrono::sys_days first(std::chrono::year(recent ? 2001 : 1960) / 1 / 1);
  return column(rows, random,
                {"n/a", "?", "unknown", "-", "31/02/2021", "30.02.2021", "00/00/0000", "2021-13-01", "12", "1/2",
                 "32.01.2021", "2021-02-30", "99/99/99", "1234567", "tomorrow", "12:30", "2021-1"},
                false, [&](bool against, Cell& cell) {
                  const auto day = first + std::chrono::days(below(random, recent ? 8765 : 36524));
                  const std::chrono::year_month_day fields(day);
                  const auto of_month = static_cast<unsigned>(fields.day());
                  cell.answer = fmt::format("{:04}-{:02}-{:02}", static_cast<int>(fields.year()),
                                            static_cast<unsigned>(fields.month()), of_month);
                  cell.against = against && country.other_order != nullptr && of_month > 12;
                  const auto noon = std::chrono::milliseconds(day.time_since_epoch()) + std::chrono::hours(12);
                  UnicodeString text;
                  return (cell.against ? formats.back() : formats[below(random, own)])
                      ->format(static_cast<UDate>(noon.count()), text);
                });
}

std::vector<Cell> number_column(const Country& country, size_t rows, uint32_t seed) {
  Random random(seed);
  const std::string point = country.decimal_point, separator = country.group_separator;
  return column(rows, random,
                {"n/a", "--", "1.2.3", "1,2,3", "12a", "e5", "1..2", "1,,2", "2021-03-04", "1.23.4567", "+-5"}, true,
                [&](bool against, Cell& cell) {
                  std::string sign(below(random, 5) == 0 ? "-" : ""), whole = std::to_string(random() % 10), fraction;
                  for (size_t more = whole == "0" ? 0 : below(random, 9); more > 0; --more) {
                    whole += static_cast<char>('0' + random() % 10);
                  }
                  for (size_t more = below(random, 3) == 0 ? 0 : 1 + below(random, 4); more > 0; --more) {
                    fraction += static_cast<char>('0' + random() % 10);
                  }
                  cell.answer = sign + whole + (fraction.empty() ? "" : "." + fraction);
                  const bool grouped = below(random, 2) == 0 && whole.size() > 3;
                  cell.against = against && point.size() + separator.size() == 2 && grouped && !fraction.empty();
                  for (size_t i = whole.size() - 3; grouped && i > 0 && i < whole.size(); i -= 3) {
                    whole.insert(i, cell.against ? point : separator);
                  }
                  if (!fraction.empty()) fraction.insert(0, cell.against ? separator : point);
                  UnicodeString text = UnicodeString::fromUTF8(sign + whole + fraction);
                  use_digits(text, country.zero);
                  return text;
                });
}
using MakeColumn = decltype(&date_column);

struct Score {
  uint64_t rows = 0, readable = 0, hard = 0, read = 0, right = 0, wrong = 0, ambiguous = 0;

  void print(const char* name) const {
    std::printf("%-13s rows %8lu  read %8lu  precision %8.4f %%  recall %8.4f %%  ambiguous %6lu\n", name, rows, read,
                100 * static_cast<double>(right) / static_cast<double>(read),
                100 * static_cast<double>(right) / static_cast<double>(readable), ambiguous);
  }
};

ProfilerOptions options_for(const std::string& locale) {
  ProfilerOptions options;
  options.locales = {locale};
  options.shown = 1'000'000;  // every value that is not read
  return options;
}

/// Profiles a column in several pieces and reads it by the decision. Holds the report against what the reader does.
Decision measure(const std::vector<Cell>& cells, const ProfilerOptions& options, Score& score) {
  const LocaleMaker make_locale = vxtest::locale_maker();
  std::vector<Profiler> parts;
  for (size_t i = 0; i < cells.size(); ++i) {
    if (i == 0 || i == cells.size() / 3 || i == cells.size() / 2) parts.emplace_back(make_locale, options);
    parts.back().add(cells[i].text, {i + 2, i + 1, 0});
  }
  for (size_t part = 1; part < parts.size(); ++part) parts[0].merge(parts[part]);
  const ColumnReport report = parts[0].report("column");

  std::array<uint64_t, 5> outcomes{};
  std::set<uint64_t> left;  // records that were not read
  Reader reader(make_locale, report.decision);
  for (size_t i = 0; i < cells.size(); ++i) {
    const Cell& cell = cells[i];
    const Outcome outcome = reader.read(cell.text);
    ++outcomes[static_cast<size_t>(outcome)];
    ++score.rows;
    score.readable += cell.answer ? 1 : 0;
    score.hard += cell.hard ? 1 : 0;
    if (outcome != Outcome::read && outcome != Outcome::empty) left.insert(i + 1);
    if (outcome != Outcome::read) continue;
    ++score.read;
    ++(cell.answer == reader.text() ? score.right : score.wrong);
  }
  score.ambiguous += report.ambiguous;
  EXPECT_EQ(report.values, cells.size());
  EXPECT_EQ(outcomes, (std::array{report.read, report.empty, report.unread, report.ambiguous, report.contradicting}))
      << to_json(report)["decision"];
  for (const auto* list : {&report.first_unread, &report.first_ambiguous, &report.first_contradicting}) {
    for (const Unread& each : *list) {
      EXPECT_EQ(left.erase(each.place.record), 1U) << each.value;
      EXPECT_LE(each.position + each.length, cells[each.place.record - 1].text.size());
      EXPECT_FALSE(each.expected.empty());
    }
  }
  EXPECT_TRUE(left.empty()) << left.size() << " values that were not read are not in the report";
  return report.decision;
}

TEST(ColumnAnswers, EachCountryIsReadRightly) {
  for (const MakeColumn make : {&date_column, &number_column}) {
    Score score;
    uint32_t seed = 1;
    for (const Country& country : countries) {
      SCOPED_TRACE(country.locale);
      const Decision decision = measure(make(country, rows_a_country, seed++), options_for(country.locale), score);
      EXPECT_EQ(score.wrong, 0U);
      if (make == &number_column) {
        EXPECT_EQ(decision.kind, Kind::number);
        EXPECT_EQ(decision.decimal_point, country.zero == u'0' ? country.decimal_point : decision.decimal_point);
        continue;
      }
      EXPECT_EQ(decision.kind, Kind::date);
      EXPECT_EQ(decision.order, country.locale == std::string("en_US")   ? Order::month_first
                                : country.locale == std::string("ja_JP") ? Order::year_first
                                                                         : Order::day_first);
      EXPECT_EQ(decision.order_by, Source::evidence);
    }
    EXPECT_EQ(score.right, score.readable - score.hard);
    score.print(make == &date_column ? "dates" : "numbers");
  }
}

/// All countries in one column: nothing can be decided, and nothing may be misread.
TEST(ColumnAnswers, MixedCountriesAreReportedAndNeverMisread) {
  for (const MakeColumn make : {&date_column, &number_column}) {
    std::vector<std::vector<Cell>> columns;
    uint32_t seed = 1;
    for (const Country& country : countries) columns.push_back(make(country, rows_a_country / 10, seed++));
    std::vector<Cell> cells;
    for (size_t row = 0; row < rows_a_country / 10; ++row) {
      for (const std::vector<Cell>& column : columns) {
        if (!column[row].against) cells.push_back(column[row]);  // here its country's order is one of several
      }
    }
    Score score;
    const Decision decision = measure(cells, options_for("en_GB"), score);
    score.print(make == &date_column ? "mixed dates" : "mixed numbers");
    EXPECT_EQ(decision.order, Order::none);
    EXPECT_EQ(decision.decimal_point, "");
    EXPECT_GT(score.ambiguous, 0U);
    EXPECT_EQ(score.wrong, 0U);
  }
}

/// Bytes lost, doubled and changed: what is read is anybody's guess, but report and reader agree on every value.
TEST(ColumnAnswers, DamagedTextsAreCountedAsTheyAreRead) {
  static constexpr std::string_view signs = "0123456789.,-/: '+%()TZeEaAmM\xC2\xA0\xE2\x80\x8F\xD9\xAB\xFF\t";
  Random random(1);
  Score ignored;
  for (const MakeColumn make : {&date_column, &number_column}) {
    uint32_t seed = 1;
    for (const Country& country : countries) {
      SCOPED_TRACE(country.locale);
      std::vector<Cell> cells = make(country, 3000, seed++);
      for (Cell& cell : cells) {
        for (size_t edits = random() % 4; edits > 0 && !cell.text.empty(); --edits) {
          const size_t at = random() % cell.text.size();
          const std::string_view sign = signs.substr(random() % signs.size(), random() % 2);
          cell.text.replace(at, random() % 2, random() % 4 == 0 ? cell.text.substr(at, random() % 8) : sign);
        }
      }
      ProfilerOptions options = options_for(country.locale);
      measure(cells, options, ignored);
      options.kind = make == &date_column ? Kind::date : Kind::number;
      measure(cells, options, ignored);
      options.strict = true;
      measure(cells, options, ignored);
    }
  }
}

}  // namespace
