// The table of a locale leads to the very functions that a program finds by name.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tests/support/failing_host.h"

namespace {

/// The order that hosts were built against, written down apart from the header that the library is built from.
constexpr const char* slots =
    "NLSDateFormat NLSTimeFormat NLSDoubleFormat NLSIntfastFormat NLSIntmaxFormat NLSUintfastFormat NLSUintmaxFormat "
    "NLSPointerFormat NLSCurrencyFormat NLSPercentFormat NLSBufToDatetime NLSBufToDate NLSBufToTime NLSBufToDouble "
    "NLSBufToIntfast NLSBufToIntmax NLSBufToUintfast NLSBufToUintmax NLSKeyCreate NLSKKOrderCompare NLSKSOrderCompare "
    "NLSSSOrderCompare NLSDatetimeFormat NLSGetLocaleData NLSLocaleToLocName NLSIntFormat NLSUIntFormat NLSBufToInt "
    "NLSBufToUInt NLSLongFormat NLSULongFormat NLSBufToLong NLSBufToULong NLSDoubleFormatWithExOpts NLSBufToDoubleU "
    "NLSBufToDoubleA NLSBufToDoubleE NLSDoubleFormatUWithExOpts NLSIntfastFormatU NLSIntmaxFormatU NLSUintfastFormatU "
    "NLSUintmaxFormatU NLSBufToIntfastU NLSBufToIntmaxU NLSBufToUintfastU NLSBufToUintmaxU NLSIntFormatU "
    "NLSUIntFormatU NLSBufToIntU NLSBufToUIntU NLSLongFormatU NLSULongFormatU NLSBufToLongU NLSBufToULongU "
    "NLSBufToDoubleWithOpts NLSBufToDoubleUWithOpts NLSLocaleCreateTheDupTrack NLSSetTimezoneId NLSDatetimeFormatU "
    "NLSDateFormatU NLSTimeFormatU NLSBufToDatetimeU NLSBufToDateU NLSBufToTimeU";

TEST(Slots, NamesAndSlotsLeadToTheSameFunctions) {
  const auto named = [](const char* name) { return dlsym(RTLD_DEFAULT, name); };
  vxtest::FailingHost host;
  ASSERT_TRUE(host.load_module());
  VXLocale* const locale = host.create(U"en_US", nullptr);
  ASSERT_NE(locale, nullptr);
  const auto* const table = reinterpret_cast<void* const*>(reinterpret_cast<const uint8_t*>(locale) + 296);
  std::istringstream names(slots);
  size_t count = 0;
  for (std::string name; names >> name; ++count) {
    EXPECT_TRUE(table[count] != nullptr && table[count] == named(name.c_str())) << "slot " << count + 1 << ", " << name;
  }
  EXPECT_EQ(count, 64u);
  NLSModule* const module = host.module();
  EXPECT_EQ(reinterpret_cast<void*>(module->localeCreate), named("NLSLocaleCreate"));
  EXPECT_EQ(reinterpret_cast<void*>(module->localeDestroyCallback), named("NLSLocaleDestroyCallback"));
  EXPECT_EQ(reinterpret_cast<void*>(module->realDestroy), named("NLSLOCRealDestroy"));
  EXPECT_EQ(reinterpret_cast<void*>(locale->destroy), named("NLSLocaleDestroy"));
  host.destroy_private(locale);
}

}  // namespace
