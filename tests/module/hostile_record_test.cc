// A record whose lengths, patterns and separators are anything. A counted name is read as if its length were held to 0
// to 60, in every place where it is read; nothing is written outside a buffer, and every status is a documented one.
#include <gtest/gtest.h>

#include <bit>
#include <set>
#include <span>
#include <string_view>

#include "tests/support/guard_page.h"
#include "tests/support/zoned_locale.h"

namespace {

using namespace std::literals;

using vxtest::GuardedBuffer;

/// All that came of many calls: statuses, counts, units and values.
using Answers = std::vector<int64_t>;

/// The first of each month of 2020, on every day of the week, in the morning and in the evening.
constexpr int first_of_months[] = {21915, 21946, 21975, 22006, 22036, 22067, 22097, 22128, 22159, 22189, 22220, 22250};
double moment(size_t month) { return first_of_months[month] * 86400.0 + (month % 2 != 0 ? 70000 : 10000); }

/// Texts in common forms, and such that a name or pattern filled up with "m" matches.
std::vector<std::string> make_texts() {
  std::vector<std::string> texts = {"",     "12/25/2020 10:30 pm",       "25 December 2020",   "10:30:15 AM", "W7 2021",
                                    "%%%%", "2020-03-04T05:06:07+01:00", "04Mar2020:10:00:00", "1,234.50"};
  for (const char quarter : "1234"sv) texts.push_back(std::string("Q") + quarter + std::string(58, 'm') + " 2021");
  for (const char* text : {"Q3 2021", "2021 Q3", "Jul 2022", "07/2022"}) texts.push_back(text + std::string(55, 'm'));
  for (const char* text : {"W07 2021", "2021-W07"}) texts.push_back(text + std::string(54, 'm'));
  return texts;
}
/// Runs what reads a record, in both flavours, with rooms that end at a page that nobody may touch.
class EveryReader {
 public:
  /// `room` units for what is written.
  Answers run(VXLocale* locale, int64_t room) {
    answers_.clear();
    for (int32_t style = 0; style < 3; ++style) {
      written(room, [&](auto* out, int64_t* n, auto narrow) {
        return pick(narrow, NLSDateFormatU, NLSDateFormat)(locale, 12, 25, 2020, style, out, room, n);
      });
      written(room, [&](auto* out, int64_t* n, auto narrow) {
        return pick(narrow, NLSTimeFormatU, NLSTimeFormat)(locale, style, out, room, n, 70000);
      });
    }
    for (size_t month = 0; month < 12; ++month) {
      written(room, [&](auto* out, int64_t* n, auto narrow) {
        return pick(narrow, NLSDatetimeFormatU, NLSDatetimeFormat)(locale, 0, out, room, n, moment(month));
      });
    }
    for (const uint32_t flags : {uint32_t{NLS_FORMAT_GROUP}, NLS_FORMAT_GROUP | NLS_FORMAT_FIXED}) {
      written(room, [&](auto* out, int64_t* n, auto narrow) {
        return pick(narrow, NLSDoubleFormatUWithExOpts, NLSDoubleFormatWithExOpts)(locale, 25, 3, flags, out, room, n,
                                                                                   nullptr, -123456789.5);
      });
      written(room, [&](auto* out, int64_t* n, auto narrow) {
        return pick(narrow, NLSLongFormatU, NLSLongFormat)(locale, INT64_MIN, 0, 0, flags, out, room, n);
      });
    }
    written(room, [&](auto* out, int64_t* n, auto narrow) -> VXStatus {
      if constexpr (narrow) return 0;
      const VXStatus status = NLSCurrencyFormat(locale, 90, 2, 0, reinterpret_cast<VXChar*>(out), room, n, 1234567.5);
      if (status != 0) *n = 0;  // it counts what it did not write
      return status;
    });
    for (const std::string& text : texts_) read(locale, text);
    return answers_;
  }

  std::set<VXStatus> statuses;  // all that were answered

 private:
  template <class Narrow, class Wide>
  static auto pick(std::true_type, Narrow narrow, Wide) {
    return narrow;
  }
  template <class Narrow, class Wide>
  static auto pick(std::false_type, Narrow, Wide wide) {
    return wide;
  }

  void answered(VXStatus status, std::initializer_list<int64_t> values) {
    statuses.insert(status);
    answers_.push_back(status);
    answers_.insert(answers_.end(), values);
  }

  template <class Unit, class Write>
  void written_in(GuardedBuffer<Unit>& memory, int64_t room, Write write) {
    Unit* const out = memory.at(static_cast<size_t>(room));
    int64_t length = 0;
    const VXStatus status = write(out, &length, std::bool_constant<sizeof(Unit) == 1>());
    answered(status, {length});
    ASSERT_TRUE(length >= 0 && length <= room) << length;
    for (int64_t i = 0; i < length; ++i) answers_.push_back(static_cast<int64_t>(out[i]));
  }
  template <class Write>
  void written(int64_t room, Write write) {
    written_in(bytes_, room, write);
    written_in(units_, room, write);
  }

  void read(VXLocale* locale, std::string_view text) {
    const auto n = static_cast<int64_t>(text.size());
    uint8_t* const narrow = bytes_.copy(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    VXChar* const wide = units_.at(text.size());
    std::copy(text.begin(), text.end(), wide);
    int64_t used = 0;
    const auto consumed = [&](VXStatus status, double value) {
      answered(status, {used, std::bit_cast<int64_t>(value)});
      EXPECT_TRUE(used >= 0 && used <= n) << used;
      used = 0;
    };
    double value = 0;
    for (uint32_t kind = 1; kind <= 512; kind *= 2) {
      uint32_t month = 0, day = 0, year = 0;
      const auto date = [&] { return (year * 100.0 + month) * 100 + day; };
      consumed(NLSBufToDate(locale, wide, n, kind, &month, &day, &year, &used), date());
      consumed(NLSBufToDateU(locale, narrow, n, kind, &month, &day, &year, &used), date());
      if (kind > 8) continue;
      consumed(NLSBufToTime(locale, wide, n, kind, &value, &used), value);
      consumed(NLSBufToTimeU(locale, narrow, n, kind, &value, &used), value);
      consumed(NLSBufToDatetime(locale, wide, n, kind, &value, &used), value);
      consumed(NLSBufToDatetimeU(locale, narrow, n, kind, &value, &used), value);
    }
    consumed(NLSBufToDouble(locale, wide, static_cast<int32_t>(n), &value, &used), value);
    consumed(NLSBufToDoubleU(locale, narrow, static_cast<int32_t>(n), &value, &used), value);
    int64_t integer = 0;
    uint64_t counted = 0;
    const VXStatus status = NLSBufToLong(locale, wide, n, NLS_READ_FRACTION, &integer, &counted);
    answered(status, {integer, static_cast<int64_t>(counted)});
    EXPECT_LE(counted, text.size());
    for (const uint32_t what : {VX_EXPLAIN_DATE, VX_EXPLAIN_TIME, VX_EXPLAIN_DATETIME}) {
      VXExplanation told;
      told.size = sizeof told;
      EXPECT_EQ(vxnlsExplain(locale, what, 4, narrow, n, &told), 0u);
      answered(told.status, {told.consumed, told.refusal.position, told.refusal.attempts, told.other_count});
    }
  }

  const std::vector<std::string> texts_ = make_texts();
  GuardedBuffer<uint8_t> bytes_{600};
  GuardedBuffer<VXChar> units_{600};
  Answers answers_;
};

/// The names of a record, all counted; those of the blocks that no header describes are read by nobody.
std::span<NLSName> all_names(VXLocaleData& data, size_t from, size_t to) {
  auto* const first = reinterpret_cast<NLSName*>(reinterpret_cast<uint8_t*>(&data) + from);
  return {first, (to - from) / sizeof(NLSName)};
}

TEST(HostileRecord, LengthsAreHeldToTheRoomOfAName) {
  vxtest::ZonedLocale locale;
  locale.use(U"Zone/East");
  vxtest::set_name(locale.data.datetimePattern, U"%A %a %B %b %p");
  EveryReader readers;
  size_t names = 0;
  for (const auto& [from, to] : std::initializer_list<std::pair<size_t, size_t>>{
           {offsetof(VXLocaleData, dayNames), offsetof(VXLocaleData, word11848)},
           {offsetof(VXLocaleData, quarterPattern2), offsetof(VXLocaleData, names14336)},
           {offsetof(VXLocaleData, groupingPattern), offsetof(VXLocaleData, decimalPoint)},
           {offsetof(VXLocaleData, currencySymbol), offsetof(VXLocaleData, block3Rest)}}) {
    for (NLSName& name : all_names(locale.data, from, to)) {
      const NLSName kept = name;
      std::fill(name.text + kept.length, std::end(name.text), VXChar{'m'});
      const auto with_length = [&](int64_t length) {
        name.length = length;
        return readers.run(&locale.locale, 600);
      };
      const Answers none = with_length(0), all = with_length(60);
      SCOPED_TRACE(testing::Message() << "the name at "
                                      << reinterpret_cast<uint8_t*>(&name) - reinterpret_cast<uint8_t*>(&locale.data));
      EXPECT_NE(none, all) << "nobody reads it";
      for (const int64_t length : {INT64_C(61), INT64_C(480), INT64_C(1) << 31, (INT64_C(1) << 32) + 3, INT64_MAX}) {
        ASSERT_TRUE(with_length(length) == all) << length;
      }
      for (const int64_t length : {INT64_C(-1), -(INT64_C(1) << 32) + 3, INT64_MIN}) {
        ASSERT_TRUE(with_length(length) == none) << length;
      }
      name = kept;
      ++names;
    }
  }
  EXPECT_EQ(names, 46u + 10u + 1u + 1u);
}

/// A text of 60 units that says one thing again and again.
std::u32string sixty(std::u32string_view unit) {
  std::u32string text;
  while (text.size() < 60) text += unit;
  return text.substr(0, 60);
}

TEST(HostileRecord, PatternsNamesAndSeparatorsOfAnything) {
  vxtest::ZonedLocale locale;
  locale.use(U"Zone/East");
  EveryReader readers;
  VXLocaleData& data = locale.data;
  const VXLocaleData plain = data;
  const auto everywhere = [&](const std::u32string& text, auto... from_to) {
    for (NLSName& name : all_names(data, from_to...)) vxtest::set_name(name, text);
  };
  const auto run = [&] {
    for (const int64_t room : {0, 1, 59, 60, 179, 180, 181, 511, 512, 513, 600}) readers.run(&locale.locale, room);
  };
  // Directives and modifiers without end, and what no directive may be.
  for (const std::u32string& text :
       {sixty(U"%"), sixty(U"%#"), sixty(U"%?"), sixty(U"%0"), sixty(U"%Z"), sixty(U"%z"), sixty(U"%A"), sixty(U"%B"),
        sixty(U"%p"), sixty(U"%Y"), sixty(U" "), sixty(U"\0"sv), sixty(U"\U0010FFFF"), sixty(U"\uFFFF%"),
        sixty(std::u32string_view(U"\xD800\x110000\xFFFFFFFF", 3)), U'x' + sixty(U"%").substr(1), sixty(U"%S%M%p")}) {
    for (const bool names : {false, true}) {  // long names make a pattern outgrow every room
      if (names)
        everywhere(sixty(U"\U0001F600"), offsetof(VXLocaleData, dayNames), offsetof(VXLocaleData, datePattern));
      everywhere(text, offsetof(VXLocaleData, datePattern), offsetof(VXLocaleData, amMarker));
      everywhere(text, offsetof(VXLocaleData, quarterPattern2), offsetof(VXLocaleData, quarterNames));
      if (names) everywhere(text, offsetof(VXLocaleData, amMarker), offsetof(VXLocaleData, word11848));
      run();
      data = plain;
    }
    everywhere(text, offsetof(VXLocaleData, dayNames), offsetof(VXLocaleData, datePattern));
    vxtest::set_name(data.groupingPattern, text);
    vxtest::set_name(data.currencySymbol, text);
    run();
    data = plain;
  }
  constexpr VXChar any[] = {0, ' ', '-', '0', '%', 'E', 0xA0, 0xD800, 0x10FFFF, 0x110000, 0x80000000, 0xFFFFFFFF};
  for (const VXChar point : any) {
    for (const VXChar separator : any) {
      data.decimalPoint = point;
      data.groupSeparator = separator;
      readers.run(&locale.locale, 40);
    }
  }
  EXPECT_EQ(readers.statuses,
            (std::set<VXStatus>{0, VX_E_DIRECTIVE, VX_E_NOMATCH, VX_E_TRUNCATED, VX_E_NOTNUMBER, VX_E_GROUPING}));
}

}  // namespace
