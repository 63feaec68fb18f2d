#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

#include "calendar/work_area.h"
#include "tests/support/day_counter.h"
#include "vxnls/vxnls.h"

namespace {

const double nan_of_a = std::bit_cast<double>(uint64_t{0xFFFFFD0000000000});  // the special missing value .A
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr uint64_t missing = 0xFFFFFE0000000000;
constexpr auto nothing = std::numeric_limits<double>::quiet_NaN();  // is expected as the ordinary missing value

uint64_t bits(double value) { return std::bit_cast<uint64_t>(value); }
bool is(double got, double wanted) { return bits(got) == (std::isnan(wanted) ? missing : bits(wanted)); }

struct Fields {
  double year, month, day;
  bool are(const Fields& f) const { return is(year, f.year) && is(month, f.month) && is(day, f.day); }
};

/// A fresh work area after a year was looked at, none with `days_in_year` 0, and a day of it.
NLSCalendarWork left(int32_t year = 0, int32_t days_in_year = 0, int32_t day_of_year = 0) {
  const int32_t february = days_in_year == 0 ? 0 : days_in_year - 337;
  return {year, days_in_year, day_of_year, 12345, {31, february, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}, 1950};
}
bool same(const NLSCalendarWork& a, const NLSCalendarWork& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

/// All that is made of a Julian date.
bool julian_is(double julian, double date, const Fields& fields, NLSCalendarWork after) {
  NLSCalendarWork work = left(), split = left();
  Fields f{}, g{};
  const bool dates = is(NLSdatjul(&work, julian), date) && same(work, after) &&
                     is(vxfmtzdatjul(julian), julian > 20000365 ? nothing : date);
  if (!std::isnan(date)) after.dayOfYear = static_cast<int32_t>(fields.day);  // what the walk over the months leaves
  return dates && NLSymdjul(&f.year, &f.month, &f.day, &split, julian) == 0 && same(split, after) && f.are(fields) &&
         vxfmtzymdjul(&g.year, &g.month, &g.day, julian) == 0 && g.are(fields);
}

/// All that is made of year, month and day.
bool fields_are(const Fields& f, double julian, const NLSCalendarWork& after) {
  NLSCalendarWork work = left(), of_julian = left();
  const bool julians =
      is(NLSjulymd(&work, f.year, f.month, f.day), julian) && is(vxfmtzjulymd(f.year, f.month, f.day), julian);
  return julians && same(work, after) && is(NLSmdy(&work, f.month, f.day, f.year), NLSdatjul(&of_julian, julian));
}

TEST(Calendar, EveryDayThroughEveryFunction) {
  vxtest::DayCounter at;
  for (int32_t d = vxnls::first_day; d < vxnls::end_day; ++d, at.next()) {
    const vxnls::CivilDate civil = {at.year, at.month, at.day};
    ASSERT_TRUE(vxnls::civil_from_day(d) == civil && vxnls::day_number(civil) == d && vxnls::is_valid(civil)) << d;
    ASSERT_EQ(vxnls::week_day(d), at.week_day) << d;
    // The first nine days count below the first Sunday with a remainder that truncates: kept on purpose.
    const double date = d, week_day = d >= -138052 ? at.week_day + 1 : (d + 138052) % 7 + 1;
    const double within_day = d >= -138052 ? 0.9 : -0.9;  // the fraction is cut off toward that Sunday
    ASSERT_EQ(NLSwekday(date), week_day) << d;
    ASSERT_TRUE(d == vxnls::first_day || NLSwekday(date + within_day) == week_day) << d;

    int32_t year = 0;
    const Fields fields = {static_cast<double>(at.year), static_cast<double>(at.month), static_cast<double>(at.day)};
    const double julian = fields.year * 1000 + at.day_of_year;
    ASSERT_TRUE(NLSjuldat(&year, date) == julian && year == at.year) << d;
    ASSERT_TRUE(NLSjuldat(nullptr, date + 0.9) == julian && vxfmtzjuldat(date) == julian) << d;
    NLSCalendarWork work = left(at.year, 365 + at.leap(), at.day_of_year);
    ASSERT_TRUE(julian_is(julian, date, fields, work)) << d;
    work.dayOfYear -= at.day;
    ASSERT_TRUE(fields_are(fields, julian, work)) << d;
    if (at.ends_month()) {
      ASSERT_EQ(bits(NLSmdy(&work, fields.month, fields.day + 1, fields.year)), missing) << d;
      ASSERT_EQ(bits(NLSmdy(&work, fields.month, 0, fields.year)), missing) << d;
      ASSERT_FALSE(vxnls::is_valid({at.year, at.month, at.day + 1})) << d;
    }

    // Each day has another second; all 86,400 have their turn.
    const auto second = static_cast<int32_t>((d - vxnls::first_day) * int64_t{7919} % 86400);
    const double t = date * 86400 + second + 0.25;
    ASSERT_TRUE(NLSdatprt(t) == date && NLStimprt(t) == second + 0.25) << t;
    const int32_t hour = second / 3600, minute = second / 60 % 60;
    ASSERT_TRUE(NLShour(t) == hour && NLSminute(t) == minute && NLSsecond(t) == second % 60 + 0.25) << t;
    const vxnls::DayAndSecond split = vxnls::day_and_second(t);
    ASSERT_TRUE(split.day == d && split.second == second) << t;
    ASSERT_TRUE(NLSdatprt(date * 86400) == date && NLSdatprt(date * 86400 + 86399) == date) << d;
  }
  EXPECT_EQ(at.year, 20001);
}

// What the loop over all days does not meet: fractions, what is no date, and what the work area holds then.
TEST(Calendar, RefusalsAndFractions) {
  for (const double t : {-11928470400.5, 569318630400.0, -infinity, infinity, std::nan(""), nan_of_a}) {
    for (const auto f : {NLSdatprt, NLStimprt, NLShour, NLSminute, NLSsecond}) EXPECT_EQ(bits(f(t)), missing) << t;
  }
  int32_t year = 77;
  for (const double d : {-138061.5, 6589336.0, infinity, -infinity, nan_of_a}) {
    const uint64_t expected = std::isnan(d) ? bits(d) : missing;  // a special missing value passes through
    EXPECT_TRUE(bits(NLSjuldat(&year, d)) == expected && bits(vxfmtzjuldat(d)) == expected) << d;
    EXPECT_TRUE(bits(NLSwekday(d)) == missing && year == 77) << d;
  }
  EXPECT_TRUE(missing == qmmissv_struct[2] && missing == bits(vxnls::ordinary_missing));

  EXPECT_TRUE(julian_is(1960001.9, 0, {1960, 1, 1}, left(1960, 366, 1)));
  EXPECT_TRUE(julian_is(20000365.5, 6589335, {20000, 12, 31}, left(20000, 365, 365)));
  EXPECT_TRUE(julian_is(49001, 32508, {2049, 1, 1}, left(2049, 365, 1)));
  EXPECT_TRUE(julian_is(1.99, 14610, {2000, 1, 1}, left(2000, 366, 1)));
  constexpr Fields no_fields = {nothing, nothing, nothing};
  for (const int32_t y : {2001, 4000, 20000}) {
    EXPECT_TRUE(julian_is(y * 1000 + 366, nothing, no_fields, left(y, 365, 366)));
  }
  // Without a valid form only the year as read is left.
  for (const double julian : {1581365., 100001., 20001001., 1960000., 1960367., 0.99, -1., -1960001., 1e15 + 1}) {
    const auto y = static_cast<int32_t>(static_cast<int64_t>(julian) / 1000);
    EXPECT_TRUE(julian_is(julian, nothing, no_fields, left(y))) << julian;
  }
  for (const double julian : {nothing, infinity}) {
    constexpr auto least = static_cast<int32_t>(std::numeric_limits<int64_t>::min() / 1000);
    EXPECT_TRUE(julian_is(julian, nothing, no_fields, left(least)));
  }

  EXPECT_TRUE(fields_are({2001, 2, 29}, nothing, left(2001, 365)));
  EXPECT_TRUE(fields_are({2000, 2, 29.5}, nothing, left(2000, 366)));
  EXPECT_TRUE(fields_are({4000, 2, 29}, nothing, left(4000, 365)));
  EXPECT_TRUE(fields_are({2001, 2, 15.7}, 2001046, left(2001, 365, 31)));
  EXPECT_TRUE(fields_are({2001, 1.9, 3}, 2001003, left(2001, 365, 0)));
  EXPECT_TRUE(fields_are({2001.9, 12, 31}, 2001365, left(2001, 365, 334)));
  EXPECT_TRUE(fields_are({24, 3, 1}, 2024061, left(2024, 366, 60)));
  EXPECT_TRUE(fields_are({50.7, 1, 1}, 1950001, left(1950, 365, 0)));
  // Refused at once: nothing is written.
  for (const double y : {99.5, 1581.5, 100., 20000.5, -0.5, nothing, infinity})
    EXPECT_TRUE(fields_are({y, 1, 1}, nothing, left())) << y;
  for (const double m : {0.9, 12.5, nothing}) EXPECT_TRUE(fields_are({2001, m, 1}, nothing, left())) << m;
  for (const double d : {0.5, 31.5, nothing}) EXPECT_TRUE(fields_are({2001, 1, d}, nothing, left())) << d;
}

// The C library's remainder and floor, where the loop over all days does not come.
TEST(Calendar, TimeFieldsAgainstTheCLibrary) {
  for (const double t :
       {0., -0.5, -1e-9, 60 - 1e-9, -3600 - 1e-7, -86400., 86400 - 1e-6, 1e9 / 7, -1e9 / 7, 5e11 / 7}) {
    const double within = std::fmod(t, 86400), by_value = t < 0 ? 86400 - std::fabs(within) : within;
    EXPECT_EQ(NLSdatprt(t), std::trunc((t + 11928470400) / 86400) - 138061) << t;
    EXPECT_EQ(NLStimprt(t), std::fmod(t <= 0 ? t + 11928470400 : t, 86400)) << t;
    EXPECT_EQ(NLShour(t), std::floor((within < 0 ? within + 86400 : within) / 3600)) << t;
    EXPECT_EQ(NLSminute(t), std::floor(std::floor(std::fmod(by_value, 3600)) / 60)) << t;
    EXPECT_EQ(NLSsecond(t), std::fmod(by_value, 60)) << t;
  }
  // Kept on purpose: what is lost against a day; and the date is rounded, the time is not.
  EXPECT_EQ(NLShour(-1e-12), 24);
  EXPECT_TRUE(NLSdatprt(86399.9999999) == 1 && NLStimprt(86399.9999999) == 86399.9999999);
}

// A host whose only service is one option.
constexpr int64_t unset = INT64_MIN;
int64_t option = unset;
int queries = 0;

VXStatus read_option(VXOptionService*, const VXChar* name, int64_t length, uint32_t kind, int64_t* cell) {
  ++queries;
  EXPECT_EQ(std::u32string(name, name + length), U"VX_NAME_YEARCUTOFF");
  EXPECT_TRUE(kind == VX_OPTION_INTEGER && *cell == 1950);
  if (option != unset) *cell = option;
  return 0;
}

TEST(Calendar, TwoDigitYears) {
  constexpr std::array<int32_t, 3> cases[] = {{1950, 49, 2049}, {1950, 50, 1950},   {1900, 0, 1900},
                                              {1900, 99, 1999}, {1999, 98, 2098},   {1582, 81, 1681},
                                              {1582, 82, 1582}, {19950, 49, 20049}, {1550, 81, 1581}};
  VXOptionServiceOps ops{&read_option};
  VXOptionService service{&ops};
  VXHandle handle{nullptr, nullptr, &service, nullptr, nullptr};
  Exported_VXHandle = &handle;
  for (const auto& [cutoff, year, widened] : cases) {
    SCOPED_TRACE(testing::Message() << year << " from " << cutoff);
    NLSCalendarWork work = left();
    work.yearCutoff = cutoff;
    option = cutoff, queries = 0;
    Fields f{}, g{};
    const double julian = year * 1000 + 2, wanted = widened * 1000 + 2;
    EXPECT_TRUE(NLSjulymd(&work, year, 1, 2) == wanted && vxfmtzjulymd(year, 1, 2) == wanted);
    NLSymdjul(&f.year, &f.month, &f.day, &work, julian);
    vxfmtzymdjul(&g.year, &g.month, &g.day, julian);
    EXPECT_TRUE(f.year == widened && g.year == widened && is(vxfmtzdatjul(julian), NLSdatjul(&work, julian)));
    EXPECT_EQ(queries, 3);
    // Four digits, and what is refused before the year is looked at, ask nobody.
    vxfmtzjulymd(2001, 1, 2), vxfmtzdatjul(2001002), vxfmtzymdjul(&f.year, &f.month, &f.day, 2001002);
    vxfmtzjulymd(1, 13, 2), vxfmtzdatjul(1367), vxfmtzdatjul(0);
    EXPECT_EQ(queries, 3);
  }
  option = unset;  // 1950 stands
  EXPECT_EQ(vxfmtzjulymd(49, 1, 1) + vxfmtzjulymd(50, 1, 1), 2049001 + 1950001);
  // A cutoff far from all years gives some number and no fault.
  for (const int64_t wild : {INT64_MAX, INT64_MIN + 1, int64_t{-50}}) {
    option = wild;
    NLSCalendarWork work = left();
    work.yearCutoff = wild == -50 ? -50 : wild > 0 ? INT32_MAX : INT32_MIN;
    EXPECT_EQ(vxfmtzdatjul(7001), NLSdatjul(&work, 7001));
  }
  Exported_VXHandle = nullptr;
}

}  // namespace
