// The table of a locale leads to the very functions that a program finds by name.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
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
  void* const library = dlopen(VX_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(library, nullptr) << dlerror();
  vxtest::FailingHost host;
  ASSERT_TRUE(host.load_module());
  VXLocale* const locale = host.create(U"en_US", nullptr);
  ASSERT_NE(locale, nullptr);
  const auto* const bytes = reinterpret_cast<const uint8_t*>(locale);
  std::istringstream names(slots);
  size_t count = 0;
  for (std::string name; names >> name; ++count) {
    void* slot = nullptr;
    std::memcpy(&slot, bytes + 296 + 8 * count, sizeof slot);
    EXPECT_NE(slot, nullptr);
    EXPECT_EQ(slot, dlsym(library, name.c_str())) << "slot " << count + 1 << ", " << name;
  }
  EXPECT_EQ(count, 64u);
  NLSModule* const module = host.module();
  EXPECT_EQ(reinterpret_cast<void*>(module->localeCreate), dlsym(library, "NLSLocaleCreate"));
  EXPECT_EQ(reinterpret_cast<void*>(module->localeDestroyCallback), dlsym(library, "NLSLocaleDestroyCallback"));
  EXPECT_EQ(reinterpret_cast<void*>(module->realDestroy), dlsym(library, "NLSLOCRealDestroy"));
  EXPECT_EQ(reinterpret_cast<void*>(locale->destroy), dlsym(library, "NLSLocaleDestroy"));
  host.destroy_private(locale);
  dlclose(library);
}

}  // namespace
