// A million rows from ten countries, dirt included, against answers that were known before.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <string>

#include "cli/column/profiler.h"
#include "cli/column/reader.h"
#include "tests/cli/column_generator.h"
#include "tests/cli/column_host.h"

namespace {

using namespace vxcli::column;
using vxtest::Cell;

constexpr size_t rows_a_country = 100'000;

struct Score {
  uint64_t rows = 0, readable = 0, hard = 0, read = 0, right = 0, wrong = 0, ambiguous = 0;

  void print(const std::string& name) const {
    const auto share = [](uint64_t part, uint64_t whole) {
      return whole == 0 ? 100.0 : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
    };
    std::printf("%-16s rows %8lu  read %8lu  precision %8.4f %%  recall %8.4f %%  ambiguous %6lu\n", name.c_str(), rows,
                read, share(right, read), share(right, readable), ambiguous);
  }
  void add(const Score& more) {
    rows += more.rows;
    readable += more.readable;
    hard += more.hard;
    read += more.read;
    right += more.right;
    wrong += more.wrong;
    ambiguous += more.ambiguous;
  }
};

/// Profiles a column in several pieces and reads it by the decision. Holds the report against what the reader does.
Score measure(const std::vector<Cell>& cells, const ProfilerOptions& options, const LocaleMaker& make_locale,
              Decision& decision, bool answers_known = true) {
  std::vector<Profiler> parts;
  const size_t cuts[] = {0, cells.size() / 3, cells.size() / 2, cells.size()};
  for (size_t part = 0; part + 1 < std::size(cuts); ++part) {
    parts.emplace_back(make_locale, options);
    for (size_t i = cuts[part]; i < cuts[part + 1]; ++i) parts.back().add(cells[i].text, {i + 2, i + 1, 0});
  }
  for (size_t part = 1; part < parts.size(); ++part) parts[0].merge(parts[part]);
  const ColumnReport report = parts[0].report("column");
  decision = report.decision;

  Score score;
  std::map<Outcome, uint64_t> outcomes;
  std::set<uint64_t> left;  // records that were not read
  Reader reader(make_locale, report.decision);
  uint64_t shown = 0;
  for (size_t i = 0; i < cells.size(); ++i) {
    const Cell& cell = cells[i];
    const Outcome outcome = reader.read(cell.text);
    ++outcomes[outcome];
    ++score.rows;
    if (cell.answer) ++score.readable;
    if (cell.hard) ++score.hard;
    if (outcome == Outcome::ambiguous) ++score.ambiguous;
    if (outcome != Outcome::read && outcome != Outcome::empty) left.insert(i + 1);
    if (outcome != Outcome::read) continue;
    ++score.read;
    if (cell.answer && *cell.answer == reader.text()) ++score.right;
    else if (++score.wrong && answers_known && shown++ < 5)
      ADD_FAILURE() << '"' << cell.text << "\" was read as " << reader.text();
  }
  EXPECT_EQ(report.values, cells.size());
  EXPECT_EQ(report.read, outcomes[Outcome::read]);
  EXPECT_EQ(report.empty, outcomes[Outcome::empty]);
  EXPECT_EQ(report.unread, outcomes[Outcome::unread]);
  EXPECT_EQ(report.ambiguous, outcomes[Outcome::ambiguous]);
  EXPECT_EQ(report.contradicting, outcomes[Outcome::contradicts]);
  for (const auto* list : {&report.first_unread, &report.first_ambiguous, &report.first_contradicting}) {
    for (const Unread& each : *list) {
      EXPECT_EQ(left.erase(each.place.record), 1U) << each.value;
      EXPECT_LE(each.position + each.length, cells[each.place.record - 1].text.size());
      EXPECT_FALSE(each.expected.empty());
    }
  }
  EXPECT_TRUE(left.empty()) << left.size() << " values that were not read are not in the report";
  return score;
}

ProfilerOptions options_for(const std::string& locale) {
  ProfilerOptions options;
  options.locales = {locale};
  options.locale_source = "LANG";
  options.shown = 1'000'000;  // every value that is not read
  return options;
}

using MakeColumn = std::vector<Cell> (*)(const vxtest::ColumnSource&, size_t, uint32_t);

/// Each country's column by itself.
Score each_country(MakeColumn make, const std::function<void(const vxtest::ColumnSource&, const Decision&)>& check) {
  vxtest::ColumnHost host;
  Score all;
  uint32_t seed = 1;
  for (const vxtest::ColumnSource& source : vxtest::column_sources()) {
    SCOPED_TRACE(source.locale);
    Decision decision;
    const Score score =
        measure(make(source, rows_a_country, seed++), options_for(source.locale), host.maker(), decision);
    check(source, decision);
    score.print(source.locale);
    all.add(score);
  }
  all.print("all");
  EXPECT_EQ(all.wrong, 0U);
  return all;
}

TEST(ColumnMillion, Dates) {
  const Score all = each_country(vxtest::date_column, [](const vxtest::ColumnSource& source, const Decision& decision) {
    EXPECT_EQ(decision.kind, Kind::date);
    const Order order = std::string(source.locale) == "en_US"   ? Order::month_first
                        : std::string(source.locale) == "ja_JP" ? Order::year_first
                                                                : Order::day_first;
    EXPECT_EQ(decision.order, order);
    EXPECT_EQ(decision.order_by, Source::evidence);
  });
  EXPECT_EQ(all.right, all.readable - all.hard);
}

TEST(ColumnMillion, Numbers) {
  const Score all =
      each_country(vxtest::number_column, [](const vxtest::ColumnSource& source, const Decision& decision) {
        EXPECT_EQ(decision.kind, Kind::number);
        if (source.zero == u'0') {
          EXPECT_EQ(decision.decimal_point, source.decimal_point);
        }
      });
  EXPECT_EQ(all.right, all.readable - all.hard);
}

/// Bytes lost, doubled and changed: what is read is anybody's guess, but report and reader agree on every value.
TEST(ColumnMillion, DamagedTextsAreCountedAsTheyAreRead) {
  vxtest::ColumnHost host;
  std::mt19937 random(1);
  static constexpr std::string_view signs = "0123456789.,-/: '+%()TZeEaAmM\xC2\xA0\xE2\x80\x8F\xD9\xAB\xFF\t";
  for (const MakeColumn make : {vxtest::date_column, vxtest::number_column}) {
    uint32_t seed = 1;
    for (const vxtest::ColumnSource& source : vxtest::column_sources()) {
      SCOPED_TRACE(source.locale);
      std::vector<Cell> cells = make(source, 3000, seed++);
      for (Cell& cell : cells) {
        for (size_t edits = random() % 4; edits > 0 && !cell.text.empty(); --edits) {
          const size_t at = random() % cell.text.size();
          const char sign = signs[random() % signs.size()];
          switch (random() % 4) {
            case 0: cell.text.erase(at, 1); break;
            case 1: cell.text.insert(at, 1, sign); break;
            case 2: cell.text[at] = sign; break;
            default: cell.text.insert(at, cell.text.substr(at, random() % 8)); break;
          }
        }
      }
      Decision decision;
      measure(cells, options_for(source.locale), host.maker(), decision, false);
      ProfilerOptions asked = options_for(source.locale);
      asked.kind = make == vxtest::date_column ? Kind::date : Kind::number;
      measure(cells, asked, host.maker(), decision, false);
      asked.strict = true;
      measure(cells, asked, host.maker(), decision, false);
    }
  }
}

/// All countries in one column: nothing can be decided, and nothing may be misread.
TEST(ColumnMillion, MixedCountriesAreReportedAndNeverMisread) {
  vxtest::ColumnHost host;
  for (const MakeColumn make : {vxtest::date_column, vxtest::number_column}) {
    std::vector<std::vector<Cell>> columns;
    uint32_t seed = 1;
    for (const vxtest::ColumnSource& source : vxtest::column_sources()) {
      columns.push_back(make(source, rows_a_country / 10, seed++));
    }
    std::vector<Cell> cells;
    for (size_t row = 0; row < rows_a_country / 10; ++row) {
      for (const std::vector<Cell>& column : columns) {
        cells.push_back(column[row]);
        // Against its own country's order, but here that is one of several.
        if (cells.back().against) cells.pop_back();
      }
    }
    Decision decision;
    const Score score = measure(cells, options_for("en_GB"), host.maker(), decision);
    score.print(make == vxtest::date_column ? "mixed dates" : "mixed numbers");
    EXPECT_EQ(decision.order, Order::none);
    EXPECT_EQ(decision.decimal_point, "");
    EXPECT_GT(score.ambiguous, 0U);
    EXPECT_EQ(score.wrong, 0U);
  }
}

}  // namespace
