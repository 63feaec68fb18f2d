#include <gtest/gtest.h>

#include <bit>
#include <chrono>
#include <cmath>
#include <limits>
#include <random>

#include "calendar/work_area.h"
#include "tests/support/day_counter.h"
#include "vxnls/vxnls.h"

namespace {

using vxnls::NLSFMT_Global_Values;

const double nan_of_a = std::bit_cast<double>(uint64_t{0xFFFFFD0000000000});  // the special missing value .A
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr uint64_t missing = 0xFFFFFE0000000000;

uint64_t bits(double value) { return std::bit_cast<uint64_t>(value); }

struct Fields {
  double year, month, day;
  bool operator==(const Fields&) const = default;
};

// The counter is the standard library's calendar up to the day that the year 4000 lacks.
TEST(Calendar, EveryDayThroughEveryFunction) {
  using namespace std::chrono;
  const sys_days epoch = 1960y / January / 1;
  vxtest::DayCounter at;
  for (int32_t d = vxnls::first_day; d < vxnls::end_day; ++d, at.next()) {
    const vxnls::CivilDate civil = {at.year, at.month, at.day};
    if (const sys_days day = epoch + days{d}; day <= 4000y / February / 28) {
      ASSERT_EQ(year_month_day{day}, year{civil.year} / civil.month / civil.day);
      ASSERT_EQ(weekday{day}.c_encoding(), at.week_day);
    }
    ASSERT_TRUE(vxnls::civil_from_day(d) == civil && vxnls::day_number(civil) == d && vxnls::is_valid(civil)) << d;
    ASSERT_EQ(vxnls::week_day(d), at.week_day) << d;
    const auto date = static_cast<double>(d), year = static_cast<double>(at.year),
               month = static_cast<double>(at.month), day = static_cast<double>(at.day),
               julian = static_cast<double>(at.year * 1000 + at.day_of_year);
    // The first nine days count below the first Sunday with a remainder that truncates: kept on purpose.
    ASSERT_EQ(NLSwekday(date), static_cast<double>(d >= -138052 ? at.week_day + 1 : (d + 138052) % 7 + 1)) << d;
    const double within_day = d >= -138052 ? 0.9 : -0.9;  // the fraction is cut off toward that Sunday
    ASSERT_TRUE(d == vxnls::first_day || NLSwekday(date + within_day) == NLSwekday(date)) << d;

    int32_t its_year = 0;
    ASSERT_TRUE(NLSjuldat(&its_year, date) == julian && its_year == at.year) << d;
    ASSERT_TRUE(NLSjuldat(nullptr, date + 0.9) == julian && vxfmtzjuldat(date) == julian) << d;
    NLSCalendarWork work = NLSFMT_Global_Values;
    Fields f{}, g{};
    ASSERT_EQ(NLSymdjul(&f.year, &f.month, &f.day, &work, julian), 0u);
    ASSERT_EQ(vxfmtzymdjul(&g.year, &g.month, &g.day, julian), 0u);
    ASSERT_TRUE(f == (Fields{year, month, day}) && f == g) << d;
    ASSERT_TRUE(NLSdatjul(&work, julian) == date && vxfmtzdatjul(julian) == date) << d;
    ASSERT_TRUE(work.year == at.year && work.dayOfYear == at.day_of_year) << d;
    ASSERT_TRUE(work.daysInYear == 365 + at.leap() && work.monthDays[1] == 28 + at.leap()) << d;
    ASSERT_TRUE(NLSjulymd(&work, year, month, day) == julian && vxfmtzjulymd(year, month, day) == julian) << d;
    ASSERT_EQ(work.dayOfYear, at.day_of_year - at.day) << d;  // what the walk over the months leaves
    ASSERT_EQ(NLSmdy(&work, month, day, year), date) << d;
    if (at.ends_month()) {
      ASSERT_EQ(NLSFMT_Global_Values.monthDays[at.month - 1], at.month == 2 ? 0 : at.day);
      ASSERT_TRUE(bits(NLSmdy(&work, month, day + 1, year)) == missing &&
                  bits(NLSmdy(&work, month, 0, year)) == missing && !vxnls::is_valid({at.year, at.month, at.day + 1}))
          << d;
    }

    // Each day has another second; all 86,400 have their turn.
    const auto second = static_cast<int32_t>((d - vxnls::first_day) * int64_t{7919} % 86400);
    const double t = date * 86400 + second + 0.25;
    ASSERT_TRUE(NLSdatprt(t) == date && NLStimprt(t) == second + 0.25) << t;
    ASSERT_TRUE(NLShour(t) == second / 3600 && NLSminute(t) == second / 60 % 60 && NLSsecond(t) == second % 60 + 0.25)
        << t;
    const vxnls::DayAndSecond split = vxnls::day_and_second(t);
    ASSERT_TRUE(split.day == d && split.second == second) << t;
    ASSERT_TRUE(NLSdatprt(date * 86400) == date && NLSdatprt(date * 86400 + 86399) == date) << d;
  }
  EXPECT_EQ(at.year, 20001);
}

TEST(Calendar, InvalidValuesAreMissing) {
  for (const double t : {-11928470400.5, 569318630400.0, 1e300, -1e300, infinity, -infinity, std::nan(""), nan_of_a}) {
    for (const auto f : {NLSdatprt, NLStimprt, NLShour, NLSminute, NLSsecond}) EXPECT_EQ(bits(f(t)), missing) << t;
  }
  int32_t year = 77;
  for (const double d : {-138061.5, -138062.0, 6589336.0, infinity, -infinity, nan_of_a}) {
    const uint64_t expected = std::isnan(d) ? bits(d) : missing;  // a special missing value passes through
    EXPECT_TRUE(bits(NLSjuldat(&year, d)) == expected && bits(vxfmtzjuldat(d)) == expected) << d;
    EXPECT_TRUE(bits(NLSwekday(d)) == missing && year == 77) << d;
  }
  EXPECT_EQ(missing, qmmissv_struct[2]);
  EXPECT_EQ(missing, bits(vxnls::ordinary_missing));
}

// What the loop over all days does not meet: fractions, what is no date, and what the work area holds then.
void expect_of_julian(double julian, double date_or_nan, int32_t year, int32_t days_in_year, int32_t day_of_year,
                      int32_t february) {
  SCOPED_TRACE(julian);
  NLSCalendarWork work = NLSFMT_Global_Values, split = work;
  work.reserved = 12345;
  const bool is_date = !std::isnan(date_or_nan);
  const uint64_t date = is_date ? bits(date_or_nan) : missing;
  EXPECT_EQ(bits(NLSdatjul(&work, julian)), date);
  EXPECT_EQ(bits(vxfmtzdatjul(julian)), julian > 20000365 ? missing : date);
  EXPECT_TRUE(work.year == year && work.daysInYear == days_in_year && work.dayOfYear == day_of_year);
  EXPECT_TRUE(work.monthDays[1] == february && work.reserved == 12345 && work.yearCutoff == 1950);
  Fields f{}, g{};
  EXPECT_EQ(NLSymdjul(&f.year, &f.month, &f.day, &split, julian), 0u);
  EXPECT_EQ(vxfmtzymdjul(&g.year, &g.month, &g.day, julian), 0u);
  EXPECT_TRUE(split.year == year && split.monthDays[1] == february);
  EXPECT_EQ(split.dayOfYear, is_date ? f.day : day_of_year);  // what the walk over the months leaves
  for (const double field : {f.year, f.month, f.day}) EXPECT_EQ(bits(field) == missing, !is_date);
  EXPECT_TRUE(bits(g.year) == bits(f.year) && bits(g.month) == bits(f.month) && bits(g.day) == bits(f.day));
}

TEST(Calendar, JulianDatesAndTheWorkArea) {
  expect_of_julian(1960001.9, 0, 1960, 366, 1, 29);
  expect_of_julian(20000365.5, 6589335, 20000, 365, 365, 28);
  expect_of_julian(49001, 32508, 2049, 365, 1, 28);
  expect_of_julian(1.99, 14610, 2000, 366, 1, 29);
  for (const int32_t year : {2001, 4000, 20000}) expect_of_julian(year * 1000 + 366, NAN, year, 365, 366, 28);
  // Without a valid form only the year as read is left.
  constexpr auto no_year = static_cast<int32_t>(std::numeric_limits<int64_t>::min() / 1000);
  static const struct {
    double julian;
    int64_t year;
  } cases[] = {
      {1581365, 1581}, {100001, 100},     {20001001, 20001}, {1960000, 1960},     {1960367, 1960},          {0.99, 0},
      {-1, 0},         {-1960001, -1960}, {NAN, no_year},    {infinity, no_year}, {1e15 + 1, 1000000000000}};
  for (const auto& c : cases) expect_of_julian(c.julian, NAN, static_cast<int32_t>(c.year), 0, 0, 0);
}

void expect_of_fields(double year, double month, double day, double julian_or_nan, int32_t work_year, int32_t february,
                      int32_t day_of_year) {
  SCOPED_TRACE(testing::Message() << year << "-" << month << "-" << day);
  NLSCalendarWork work = NLSFMT_Global_Values;
  const uint64_t julian = std::isnan(julian_or_nan) ? missing : bits(julian_or_nan);
  EXPECT_EQ(bits(NLSjulymd(&work, year, month, day)), julian);
  EXPECT_EQ(bits(vxfmtzjulymd(year, month, day)), julian);
  EXPECT_TRUE(work.year == work_year && work.monthDays[1] == february && work.dayOfYear == day_of_year);
  EXPECT_EQ(work.daysInYear, work_year == 0 ? 0 : 337 + february);
  const double date = NLSmdy(&work, month, day, year);
  EXPECT_EQ(bits(date), julian == missing ? missing : bits(NLSdatjul(&work, julian_or_nan)));
}

TEST(Calendar, FieldsAndTheWorkArea) {
  expect_of_fields(2001, 2, 29, NAN, 2001, 28, 0);
  expect_of_fields(2000, 2, 29.5, NAN, 2000, 29, 0);
  expect_of_fields(4000, 2, 29, NAN, 4000, 28, 0);
  expect_of_fields(2001, 2, 15.7, 2001046, 2001, 28, 31);
  expect_of_fields(2001, 1.9, 3, 2001003, 2001, 28, 0);
  expect_of_fields(2001.9, 12, 31, 2001365, 2001, 28, 334);
  expect_of_fields(24, 3, 1, 2024061, 2024, 29, 60);
  expect_of_fields(50.7, 1, 1, 1950001, 1950, 28, 0);
  // Refused at once: nothing is written.
  static const Fields refused[] = {{99.5, 1, 1},   {1581.5, 1, 1},  {100, 1, 1},     {20000.5, 1, 1}, {-0.5, 1, 1},
                                   {2001, 0.9, 1}, {2001, 12.5, 1}, {2001, 1, 0.5},  {2001, 1, 31.5}, {NAN, 1, 1},
                                   {2001, NAN, 1}, {2001, 1, NAN},  {infinity, 1, 1}};
  for (const Fields& c : refused) expect_of_fields(c.year, c.month, c.day, NAN, 0, 0, 0);
}

// The C library's remainder and floor, on the borders and on random datetimes of every size and fineness.
TEST(Calendar, TimeFieldsAgainstTheCLibrary) {
  std::mt19937_64 random(42);
  for (int i = 0; i < 1000000; ++i) {
    static constexpr double borders[] = {0, -1, -0.5, -86400, 86400, -11928470400, 569318630399.5, -1e-12};
    double t = static_cast<double>(random() >> 11) / 9007199254740992.0 * 581247100800.0 - 11928470400.0;
    if (i % 3 == 1)
      t = std::floor(t / 3600) * 3600 +
          static_cast<double>(random() % 3 - 1) * std::ldexp(1, -static_cast<int>(random() % 60));
    if (i % 3 == 2) t = std::ldexp(t, -static_cast<int>(random() % 60));
    if (i < 8) t = borders[i];
    if (!(t >= -11928470400.0 && t < 569318630400.0)) continue;
    const double within = std::fmod(t, 86400);
    const double by_value = t < 0 ? 86400 - std::fabs(within) : within;
    ASSERT_EQ(NLSdatprt(t), std::trunc((t + 11928470400) / 86400) - 138061) << t;
    ASSERT_EQ(NLStimprt(t), std::fmod(t <= 0 ? t + 11928470400 : t, 86400)) << t;
    ASSERT_EQ(NLShour(t), std::floor((within < 0 ? within + 86400 : within) / 3600)) << t;
    ASSERT_EQ(NLSminute(t), std::floor(std::floor(std::fmod(by_value, 3600)) / 60)) << t;
    ASSERT_EQ(NLSsecond(t), std::fmod(by_value, 60)) << t;
  }
  // Kept on purpose: what is lost against a day; and the date is rounded, the time is not.
  EXPECT_EQ(NLShour(-1e-12), 24);
  EXPECT_EQ(NLSdatprt(86399.9999999), 1);
  EXPECT_EQ(NLStimprt(86399.9999999), 86399.9999999);
}

// A host whose only service is one option.
struct OneOption {
  static constexpr int64_t unset = INT64_MIN;
  static inline int64_t value = unset;
  static inline int queries = 0;
  static VXStatus read(VXOptionService*, const VXChar* name, int64_t length, uint32_t kind, int64_t* cell) {
    ++queries;
    EXPECT_EQ(std::u32string(name, name + length), U"VX_NAME_YEARCUTOFF");
    EXPECT_EQ(kind, VX_OPTION_INTEGER);
    EXPECT_EQ(*cell, 1950);
    if (value != unset) *cell = value;
    return 0;
  }
  OneOption() { Exported_VXHandle = &handle; }
  ~OneOption() { Exported_VXHandle = nullptr; }
  VXOptionServiceOps ops{&read};
  VXOptionService service{&ops};
  VXHandle handle{nullptr, nullptr, &service, nullptr, nullptr};
};

TEST(Calendar, TwoDigitYears) {
  static constexpr struct {
    int64_t cutoff;
    double year, widened;
  } cases[] = {
      {1950, 0, 2000},  {1950, 49, 2049}, {1950, 50, 1950}, {1950, 99, 1999}, {1900, 0, 1900},    {1900, 99, 1999},
      {1999, 98, 2098}, {1999, 99, 1999}, {1582, 81, 1681}, {1582, 82, 1582}, {19950, 49, 20049}, {1550, 81, 1581},
  };
  OneOption host;
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.year << " from " << c.cutoff);
    NLSCalendarWork work = NLSFMT_Global_Values;
    work.yearCutoff = static_cast<int32_t>(c.cutoff);
    EXPECT_EQ(NLSjulymd(&work, c.year, 1, 2), c.widened * 1000 + 2);
    Fields f{};
    NLSymdjul(&f.year, &f.month, &f.day, &work, c.year * 1000 + 2);
    EXPECT_EQ(f.year, c.widened);

    OneOption::value = c.cutoff;
    OneOption::queries = 0;
    EXPECT_EQ(vxfmtzjulymd(c.year, 1, 2), c.widened * 1000 + 2);
    vxfmtzymdjul(&f.year, &f.month, &f.day, c.year * 1000 + 2);
    EXPECT_EQ(f.year, c.widened);
    EXPECT_EQ(vxfmtzdatjul(c.year * 1000 + 2), NLSdatjul(&work, c.year * 1000 + 2));
    EXPECT_EQ(OneOption::queries, 3);
    // Four digits, and what is refused before the year is looked at, ask nobody.
    vxfmtzjulymd(2001, 1, 2), vxfmtzdatjul(2001002), vxfmtzymdjul(&f.year, &f.month, &f.day, 2001002);
    vxfmtzjulymd(1, 13, 2), vxfmtzdatjul(1367), vxfmtzdatjul(0);
    EXPECT_EQ(OneOption::queries, 3);
  }
  OneOption::value = OneOption::unset;  // 1950 stands
  EXPECT_EQ(vxfmtzjulymd(49, 1, 1) + vxfmtzjulymd(50, 1, 1), 2049001 + 1950001);
  // A cutoff far from all years gives some number and no fault.
  for (const int64_t wild : {INT64_MAX, INT64_MIN + 1, int64_t{-50}}) {
    OneOption::value = wild;
    NLSCalendarWork work = NLSFMT_Global_Values;
    work.yearCutoff = wild == -50 ? -50 : wild > 0 ? INT32_MAX : INT32_MIN;
    EXPECT_EQ(vxfmtzdatjul(7001), NLSdatjul(&work, 7001));
  }
}

}  // namespace
