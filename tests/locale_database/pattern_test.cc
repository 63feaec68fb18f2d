// CLDR patterns turned into stored ones, and stored ones taken apart.
#include <gtest/gtest.h>

#include "host/locale_database/cldr_pattern.h"
#include "host/locale_database/stored_pattern.h"
#include "host/locale_database/text.h"

using namespace vxnlsldb;

TEST(CldrPattern, BecomesStoredPattern) {
  static constexpr struct {
    const char32_t *cldr, *as_cldr, *padded;  // null: no counterpart
  } cases[] = {
      {U"d.M.yy", U"%#d.%m.%Y", U"%d.%m.%Y"},
      {U"dd/MM/y", U"%d/%m/%Y", U"%d/%m/%Y"},
      {U"d. MMM y", U"%#d. %b %Y", U"%d. %b %Y"},
      {U"y年M月d日", U"%Y年%m月%#d日", U"%Y年%m月%d日"},
      {U"d 'de' MMMM 'de' y", U"%#d de %B de %Y", U"%d de %B de %Y"},
      {U"LL.y", U"%m.%Y", U"%m.%Y"},
      {U"h:mm:ss a", U"%#I:%M:%S %p", U"%#I:%M:%S %p"},
      {U"hh:mm\u202Fa", U"%I:%M %p", U"%I:%M %p"},
      {U"H:m:s", U"%#H:%#M:%S", U"%#H:%M:%S"},
      {U"HH 'h' mm 'min' ss 's'", U"%H h %M min %S s", U"%H h %M min %S s"},
      {U"d\u200F/M\u200F/y", U"%#d/%m/%Y", U"%d/%m/%Y"},
      {U" d\u00A0 'o''clock' y''", U"%#d o'clock %Y'", U"%d o'clock %Y'"},
      {U"d '100%' y", U"%#d 100%% %Y", U"%d 100%% %Y"},
      {U"d MMMM G y", U"%#d %B n. %%Chr. %Y", U"%d %B n. %%Chr. %Y"},
      {U"ah:mm", nullptr, nullptr},  // the day period comes first
      {U"B h:mm", nullptr, nullptr},
      {U"EEEE, d. MMMM y", nullptr, nullptr},
      {U"d. MMMMM y", nullptr, nullptr},  // a narrow name tells no month
      {U"d. LLLL y", nullptr, nullptr},   // names for use outside of dates
      {U"MM/Y", nullptr, nullptr},        // the year of the week
      {U"k:mm", nullptr, nullptr},
      {U"K:mm a", nullptr, nullptr},
      {U"yyyyy-MM-dd", nullptr, nullptr},
      {U"", nullptr, nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(utf8(c.cldr));
    for (const auto& [padding, expected] :
         {std::pair{Padding::as_cldr, c.as_cldr}, std::pair{Padding::all, c.padded}}) {
      const Translation got = translate(c.cldr, padding, U"n. %Chr.");
      EXPECT_EQ(got.obstacle.empty(), expected != nullptr) << got.obstacle;
      if (expected != nullptr) {
        EXPECT_EQ(utf8(got.stored), utf8(expected));
      }
    }
  }
}

TEST(CldrPattern, SaysWhereTextsWillDiffer) {
  EXPECT_EQ(translate(U"d.MM.yy", Padding::all, U"").change, "");  // padding that was asked for
  EXPECT_NE(translate(U"d.M.y", Padding::as_cldr, U"").change, "");
  EXPECT_NE(translate(U"H:m", Padding::all, U"").change, "");
  EXPECT_EQ(translate(U"H:m", Padding::as_cldr, U"").change, "");
}

TEST(StoredPattern, IsTakenApart) {
  const auto pattern = take_apart(U"%#d%%. %B");
  ASSERT_TRUE(pattern);
  EXPECT_EQ(*pattern, (Pattern{{'d', 0, true}, {0, '%', false}, {0, '.', false}, {0, ' ', false}, {'B', 0, false}}));
  for (const char32_t* broken : {U"%", U"100%", U"%#", U"%1", U"%#%", U"%?d", U"%%%"}) {
    EXPECT_FALSE(take_apart(broken)) << utf8(broken);
  }
}

namespace {

Pattern parsed(std::u32string_view stored) { return take_apart(stored).value(); }

FoldedNames names_of(std::initializer_list<const char32_t*> months, std::initializer_list<const char32_t*> alt_months) {
  FoldedNames names;
  for (size_t i = 0; i < 12; ++i)
    names.months[i] = names.alt_months[i] = U"month" + std::u32string(1, U'a' + char32_t(i));
  std::copy(months.begin(), months.end(), names.months.begin());
  std::copy(alt_months.begin(), alt_months.end(), names.alt_months.begin());
  return names;
}

}  // namespace

TEST(StoredPattern, NamesThatReadAsOthers) {
  static const struct {
    const char32_t* stored;
    FoldedNames names;
    const char32_t *written, *taken;  // null: all read back
  } cases[] = {
      {U"%#d %B", names_of({U"jan", U"feb"}, {}), nullptr, nullptr},
      {U"%#d %B", names_of({U"thang 1", U"thang 10"}, {}), U"thang 10", U"thang 1"},
      {U"%#d %b", names_of({}, {U"thang 1", U"thang 10"}), U"thang 10", U"thang 1"},
      {U"%#d %B", names_of({U"jan", U"jan"}, {}), U"jan", U"jan"},
      {U"%#d %B", names_of({U""}, {}), U"monthb", U""},
      {U"%#d %B", names_of({U"thang 10", U"thang 1"}, {}), nullptr, nullptr},  // the longer one is tried first
      {U"%#d %B0", names_of({U"thang 10", U"thang 1"}, {}), U"thang 1", U"thang 10"},
      {U"%#d %b", names_of({U"may"}, {U"may."}), U"may.", U"may"},  // lenient readers try the full names first
      {U"%#d %b", names_of({U"may", U"june"}, {U"june"}), U"june", U"june"},
      {U"%#d %b", names_of({U"januar"}, {U"jan"}), nullptr, nullptr},
      {U"%#d %b", names_of({U"jan. 2"}, {U"jan."}), nullptr, nullptr},
      {U"%#d %b 2", names_of({U"jan. 2"}, {U"jan."}), U"jan.", U"jan. 2"},
      {U"%#d", names_of({U"a", U"ab"}, {}), nullptr, nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(utf8(c.stored));
    const auto wrong = misread_name(parsed(c.stored), c.names);
    ASSERT_EQ(wrong.has_value(), c.written != nullptr) << utf8(wrong->written) << " as " << utf8(wrong->taken);
    if (wrong) {
      EXPECT_EQ(utf8(wrong->written), utf8(c.written));
      EXPECT_EQ(utf8(wrong->taken), utf8(c.taken));
    }
  }
}

TEST(StoredPattern, NumbersThatRunIntoDigits) {
  const FoldedNames numeric = names_of({U"1月"}, {});
  const struct {
    const char32_t* stored;
    char32_t directive;
  } cases[] = {
      {U"%Y%m", 0}, {U"%m%Y", 'm'}, {U"%d%B", 'd'}, {U"%d %B", 0},
      {U"%d%b", 0}, {U"%I1", 'I'},  {U"%Y1", 0},    {U"%H%M", 'H'},
  };
  for (const auto& c : cases) EXPECT_EQ(number_before_digit(parsed(c.stored), numeric), c.directive) << utf8(c.stored);
}

TEST(StoredPattern, EarlierPatternsThatTakeTheTextsOfLaterOnes) {
  static constexpr struct {
    const char32_t *earlier, *later;
    Overlap overlap;
  } cases[] = {
      {U"%d.%m.%Y", U"%#d. %B %Y", Overlap::none},
      {U"%d.%m.%Y", U"%#d.%m.%Y", Overlap::none},   // the same texts
      {U"%#d %b %Y", U"%#d %B %Y", Overlap::none},  // either list is tried
      {U"%d.%m.%Y", U"%#d. %m. %Y", Overlap::blanks},
      {U"%d. %m. %Y", U"%#d.%m.%Y", Overlap::blanks},
      {U"%d.%m.%Y", U"%d.%m.%Y г.", Overlap::part},
      {U"%d.%m.%Y г.", U"%d.%m.%Y", Overlap::none},
      {U"%d %b %Y", U"%d %B %Yж", Overlap::part},
      {U"%m/%d/%Y", U"%d/%m/%Y", Overlap::order},
      {U"%Y/%m/%d", U"%Y/%d/%m", Overlap::order},
      {U"%Y/%m/%d", U"%d/%m/%Y", Overlap::none},  // a year is too long for a day
      {U"%d DE %b", U"%d de %b", Overlap::none},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(overlap(parsed(c.earlier), parsed(c.later)), c.overlap) << utf8(c.earlier) << " before " << utf8(c.later);
  }
}
