// Single values of a column under a given decision.
#include "cli/column/reader.h"

#include <gtest/gtest.h>

#include "cli/errors.h"
#include "tests/cli/column_host.h"

namespace {

using namespace vxcli::column;
using vxtest::ColumnHost;

constexpr Outcome read = Outcome::read, unread = Outcome::unread, ambiguous = Outcome::ambiguous,
                  contradicts = Outcome::contradicts, empty = Outcome::empty;

Decision decision_of(Kind kind, const char* locale, std::vector<std::string> forms = {}, Order order = Order::none) {
  Decision decision;
  decision.column.push_back('c');
  decision.kind = kind;
  decision.locale = locale;
  decision.forms = std::move(forms);
  decision.order = order;
  return decision;
}

Decision numbers(std::string point, std::string separators = {}, std::string unit = {}) {
  Decision decision = decision_of(Kind::number, "de_DE");
  decision.decimal_point = std::move(point);
  decision.group_separators = std::move(separators);
  decision.unit = std::move(unit);
  return decision;
}

/// A value and what becomes of it: its new text, or the part of it that is complained about.
struct Case {
  const char* value;
  Outcome outcome;
  const char* text = "";
  const char* expected = "";  // stands in the message
};

void expect(ColumnHost& host, const Decision& decision, std::initializer_list<Case> cases,
            const OutputChoice& output = {}) {
  Reader reader(host.maker(), decision, output);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    const std::string value = c.value;
    const Outcome outcome = reader.read(value);
    EXPECT_EQ(outcome, c.outcome);
    const Refusal& refusal = reader.refusal();
    const std::string shown =
        outcome == read ? std::string(reader.text()) : value.substr(refusal.position, refusal.length);
    EXPECT_EQ(shown, c.text) << refusal.position;
    EXPECT_NE(refusal.expected.find(c.expected), std::string::npos) << refusal.expected;
  }
}

TEST(ColumnReader, Dates) {
  ColumnHost host;
  expect(host,
         decision_of(Kind::date, "de_DE", {"%Y-%m-%d", "%d.%m.%Y", "%d.%m.%y", "%d. %b %Y", "%A, %d. %b %Y"},
                     Order::day_first),
         {{"2021-03-04", read, "2021-03-04"},
          {"4.3.2021", read, "2021-03-04"},
          {"04.03.59", read, "2059-03-04"},
          {"04.03.60", read, "1960-03-04"},
          {"5. März 2021", read, "2021-03-05"},
          {"5. Mörz 2021", unread, "Mörz", "is not the name of a month"},
          {"5. Feb 2021", read, "2021-02-05"},  // CLDR has "Feb."
          {"05. Feb. 2021", read, "2021-02-05"},
          {"Fr., 5. März 2021", read, "2021-03-05"},
          {"Sa., 5. März 2021", unread, "Sa., ", "another day of the week"},
          {"29.02.2000", read, "2000-02-29"},
          {"29.02.1900", unread, "29.02.1900", "no day 1900-02-29"},
          {"12.25.2021", contradicts, "12.25.2021", "day-first"},
          {"2021-25-12", unread, "25", "is not a month (1 to 12)"},
          {"4.3.2021 x", unread, " x", "follows"},
          {"4.3.202", unread, "202", "is not a year"},
          {"4/3/2021", unread, "/", "is wanted"},
          {"", empty},
          {" \u00A0 ", empty},
          // Text that people really have. Places are those of the original.
          {"\u200F4\u200F.3.2021\u00A0", read, "2021-03-04"},
          {"５.３.２０２１", read, "2021-03-05"},
          {"٠٥.٠٣.٢٠٢١", read, "2021-03-05"},
          {"2021\u201103\u201204", read, "2021-03-04"},
          {"\u00A0\u200E4.\u200E13.2021", contradicts, "4.\u200E13.2021"},
          {"\u00A0\u200E４.\u200E1３.202x", unread, "1３", "is not a month"},
          {"4.3.2021\xFF", unread, "\xFF", "follows"}});
  Decision century = decision_of(Kind::date, "en_US", {"%m/%d/%y"}, Order::month_first);
  century.first_year = 1900;
  expect(host, century,
         {{"12/31/99", read, "1999-12-31"},
          {"12/31/00", read, "1900-12-31"},
          {"02/29/00", unread, "02/29/00", "no day 1900-02-29"}});
}

TEST(ColumnReader, UndecidedOrders) {
  ColumnHost host;
  expect(host, decision_of(Kind::date, "en_US", {"%d/%m/%y"}),
         {{"25/12/21", read, "2021-12-25"},
          {"12/25/21", read, "2021-12-25"},
          {"03/03/21", read, "2021-03-03"},
          {"03/04/21", ambiguous, "03/04/21", "--day-first"},
          {"31/02/21", unread, "31/02/21", "no day"}});
  // The same where years may stand first.
  expect(host, decision_of(Kind::date, "en_US", {"%d/%m/%y", "%y/%m/%d"}),
         {{"99/12/31", read, "1999-12-31"}, {"25/12/21", ambiguous, "25/12/21"}, {"25/12/60", read, "1960-12-25"}});
}

TEST(ColumnReader, TimesAndDatetimes) {
  ColumnHost host;
  expect(host, decision_of(Kind::time, "en_US", {"%H:%M:%S", "%H:%M", "%I:%M %p"}),
         {{"9:05", read, "09:05:00"},
          {"9:05 PM", read, "21:05:00"},
          {"12:05\u202Fa.m.", read, "00:05:00"},
          {"23:59:59,123456789", read, "23:59:59.123456789"},
          {"24:00", unread, "24", "is not an hour (0 to 23)"},
          {"13:05 PM", unread, "13", "is not an hour (1 to 12)"},
          {"10:60", unread, "60", "is not a minute"},
          {"10:20Z", unread, "Z", "is not AM or PM"}});
  expect(host,
         decision_of(Kind::datetime, "en_US",
                     {"%Y-%m-%dT%H:%M:%S", "%Y-%m-%dT%H:%M:%S%z", "%A, %d %b %Y %H:%M:%S%z", "%m/%d/%Y, %I:%M %p"},
                     Order::month_first),
         {{"2021-03-04T10:20:30", read, "2021-03-04T10:20:30"},
          {"2021-03-04t10:20:30.5", read, "2021-03-04T10:20:30.5"},
          {"2021-03-04T10:20:30Z", read, "2021-03-04T10:20:30Z"},
          {"2021-03-04T10:20:30 -0330", read, "2021-03-04T10:20:30-03:30"},
          {"2021-03-04T10:20:30+13:00", unread, "13", "is not an offset"},
          {"Fri, 05 Mar 2021 10:20:30 GMT", read, "2021-03-05T10:20:30Z"},
          {"3/4/2021,  10:20 pm", read, "2021-03-04T22:20:00"},
          {"13/4/2021, 10:20 pm", contradicts, "13/4/2021, 10:20 pm"},
          {"2021-03-04", unread, "", "ends where a time is wanted"},
          {"2021-03-04 10:20:30", unread, " ", "is wanted before the time"}});
}

TEST(ColumnReader, Periods) {
  ColumnHost host;
  expect(host, decision_of(Kind::period, "fr_FR", {"%Y-W%V", "W%V %Y", "%Y-%m", "%m/%Y", "%b %Y", "%q %Y", "%Y-%q"}),
         {{"2021-W09", read, "2021-W09"},
          {"W53 2020", read, "2020-W53"},
          {"2021-3", read, "2021-03"},
          {"03/2021", read, "2021-03"},
          {"mars 2021", read, "2021-03"},
          {"févr. 2021", read, "2021-02"},
          {"T1 2021", read, "2021-Q1"},
          {"2021-Q3", read, "2021-Q3"},
          {"2021-W54", unread, "54", "is not a week"},
          {"13/2021", unread, "13", "is not a month"}});
}

TEST(ColumnReader, Numbers) {
  ColumnHost host;
  expect(host, numbers(",", ".' ", "€"),
         {{"1.234,50", read, "1234.50"},
          {"-1.234.567", read, "-1234567"},
          {"\u22121,5", read, "-1.5"},
          {"1,5-", read, "-1.5"},
          {"(1,5)", read, "-1.5"},
          {"1\u202F234,5", read, "1234.5"},
          {"1’234,5 €", read, "1234.5"},
          {"€\u00A01,5", read, "1.5"},
          {"-€1,5", read, "-1.5"},
          {"+,5", read, "0.5"},
          {"5,", read, "5"},
          {"1,5E-3", read, "1.5E-3"},
          {"00,10", read, "00.10"},
          {"1.234", read, "1234"},
          {"1,234", read, "1.234"},
          {"٤٫٥", read, "4.5"},
          {"١٬٢٣٤٫٥", read, "1234.5"},
          {"123456789012345678901234567890,12345678901234567890", read,
           "123456789012345678901234567890.12345678901234567890"},
          {"1.5", contradicts, "1.5", "decimal point of the column is \",\""},
          {"0.123", contradicts, "0.123"},
          {"1,5 %", contradicts, "1,5 %", "\"%\" stands at a number"},
          {"$1,5", contradicts, "$1,5", "the column has \"€\""},
          {"1.23.456", unread, "1.23.456", "separators"},
          {"1,234,567", contradicts, "1,234,567"},
          {"12,5x", unread, "x", "follows the number"},
          {"x", unread, "x", "a digit is wanted"},
          {"-", unread, "", "a digit is wanted"},
          {".", unread, "."},
          {".A", unread, "A"},
          {"1e999", unread, "1e999", "too large"}});
  expect(host, numbers(""),
         {{"1,234", ambiguous, "1,234", "--decimal"},
          {"1.234", ambiguous, "1.234"},
          {"1,5", read, "1.5"},
          {"1.5", read, "1.5"},
          {"1.234,5", read, "1234.5"},
          {"12,34,567", read, "1234567"},
          {"12.34.567", unread, "12.34.567"},
          {"0,123", read, "0.123"}});
  expect(host, numbers(".", ",", "%"),
         {{"12.5 %", read, "12.5"},
          {"%12.5", read, "12.5"},
          {"12.5", contradicts, "12.5", "carry \"%\""},
          {"1 234 %", contradicts, "1 234 %", "groups are separated by \",\""}});
  Decision whole = numbers(".", ",");
  whole.kind = Kind::integer;
  expect(host, whole, {{"1,234", read, "1234"}, {"1.5", contradicts, "1.5", "whole numbers"}});
}

TEST(ColumnReader, StrictTakesValuesAsTheyStand) {
  ColumnHost host;
  Decision date = decision_of(Kind::date, "de_DE", {"%d.%m.%Y", "%#d. %B %Y"}, Order::day_first);
  date.strict = true;
  expect(host, date,
         {{"04.03.2021", read, "2021-03-04"},
          {"5. März 2021", read, "2021-03-05"},
          {"4.3.2021", unread, "3"},
          {"04.03.2021 ", unread, " ", "follows"},
          {"\u200E04.03.2021", unread, "\u200E04"},
          {"０４.03.2021", unread, "０４"},
          {"  ", empty}});
  Decision number = numbers(".", ",");
  number.strict = true;
  expect(host, number,
         {{"-1,234.5", read, "-1234.5"},
          {"\u22121.5", unread, "−"},
          {"(1.5)", unread, "1.5", "a plain number"},
          {"1.5 ", unread, "1.5"}});
}

TEST(ColumnReader, OtherOutputs) {
  ColumnHost host("Europe/Berlin");
  const Decision date = decision_of(Kind::date, "en_US", {"%m/%d/%Y"}, Order::month_first);
  expect(host, date, {{"3/4/2021", read, "4. März 2021"}}, {.to_pattern = "%#d. %B %Y", .to_locale = "de_DE"});
  expect(host, date, {{"3/4/2021", read, "04/03/2021"}}, {.to_pattern = "", .to_locale = "fr_FR"});
  // An instant is told by the clocks of the zone.
  expect(host, decision_of(Kind::datetime, "en_US", {"%Y-%m-%dT%H:%M:%S", "%Y-%m-%dT%H:%M:%S%z"}),
         {{"2021-07-04T23:20:30Z", read, "05.07.2021 01:20"}, {"2021-07-04T23:20:30", read, "04.07.2021 23:20"}},
         {.to_pattern = "%d.%m.%Y %H:%M", .to_locale = ""});
  expect(host, numbers(".", ","),
         {{"-1,234,567.123456789012345678", read, "-1.234.567,123456789012345678"}, {"12", read, "12"}},
         {.to_pattern = "", .to_locale = "de_DE"});
  expect(host, numbers(".", ","), {{"12345678.5", read, "1,23,45,678.5"}}, {.to_pattern = "", .to_locale = "hi_IN"});
  for (const char* wrong : {"%d.%Q", "%H:%M", "%"}) {
    EXPECT_THROW(Reader(host.maker(), date, {.to_pattern = wrong, .to_locale = ""}), vxcli::Failure) << wrong;
  }
}

TEST(ColumnReader, RefusesFormsThatCannotBeMeant) {
  ColumnHost host;
  for (const char* form : {"", "x", "%", "%d.%m", "%d.%m.%Y %d", "%d.%m.%Y%H", "%Y-W%V %H", "%H:%M %d.%m.%Y", "%I:%M",
                           "%d %A %m %Y", "%d.%m.%Q", "%d.%m.%Y%z", "%m/%d/%Y", "%H:%M", "%Y-%m", "\xFF%d.%m.%Y"}) {
    EXPECT_THROW(Reader(host.maker(), decision_of(Kind::date, "de_DE", {form}, Order::day_first)), vxcli::Failure)
        << form;
  }
}

}  // namespace
