// The texts of every locale beside ICU's: where they differ there is a reason, and nothing is left once it is allowed
// for.
#include <gtest/gtest.h>

#include "tests/locale_database/icu_comparison.h"

TEST(IcuComparison, EveryDifferenceHasItsReason) {
  for (const auto& locale : vxtest::every_locale()) {
    for (const auto& difference : vxtest::differences_from_icu(locale)) {
      EXPECT_EQ(difference.unexplained, "")
          << locale.name << ' ' << difference.entry << ": ICU " << difference.icu << ", record " << difference.record;
      EXPECT_FALSE(difference.reasons.empty()) << locale.name << ' ' << difference.entry;
    }
  }
}
