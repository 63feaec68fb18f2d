// Which locale a name means.
#include <gtest/gtest.h>
#include <unicode/uloc.h>

#include "host/locale_lookup.h"

namespace {

TEST(LocaleLookup, EveryLocaleOfIcuIsItself) {
  for (int32_t i = 0; i < uloc_countAvailable(); ++i) {
    const std::string name = uloc_getAvailable(i);
    const auto found = vxhost::resolve_locale(name);
    EXPECT_EQ(found.name, name);
    EXPECT_EQ(found.status, 0u) << name;

    char tag[ULOC_FULLNAME_CAPACITY];
    UErrorCode error = U_ZERO_ERROR;
    uloc_toLanguageTag(name.c_str(), tag, sizeof tag, true, &error);
    if (name == "en_US_POSIX") continue;  // as a tag it carries a keyword
    const auto by_tag = vxhost::resolve_locale(tag);
    EXPECT_EQ(by_tag.name, name) << tag;
    EXPECT_EQ(by_tag.status, 0u) << tag;
  }
}

TEST(LocaleLookup, Names) {
  static constexpr VXStatus same = 0, other = VX_W_SUBSTITUTE;
  static constexpr struct {
    const char* asked;
    const char* found;
    VXStatus status;
  } cases[] = {
      {"de_DE", "de_DE", same},
      {"de-DE", "de_DE", same},
      {"DE_de", "de_DE", same},
      {"de_DE.UTF-8", "de_DE", same},
      {"de_DE.ISO-8859-15@euro", "de_DE", same},
      {"C", "en_US_POSIX", same},
      {"C.UTF-8", "en_US_POSIX", same},
      {"POSIX", "en_US_POSIX", same},
      {"root", "root", same},
      {"und", "root", same},
      // one locale, several names
      {"zh_TW", "zh_Hant_TW", same},
      {"zh_SG", "zh_Hans_SG", same},
      {"sr_RS", "sr_Cyrl_RS", same},
      {"sr_RS@latin", "sr_Latn_RS", same},
      {"sr_RS.UTF-8@latin", "sr_Latn_RS", same},
      {"uz_UZ@cyrillic", "uz_Cyrl_UZ", same},
      {"iw_IL", "he_IL", same},
      {"no_NO", "no", same},
      {"no_Latn_NO", "no", same},
      {"no_NO_NY", "nn_NO", same},
      {"ars", "ar_SA", same},
      {"tl_PH", "fil_PH", same},
      {"de_Latn", "de", same},
      {"de_Latn_DE", "de_DE", same},
      {"eng_USA", "en_US", same},
      {"cmn-Hans-CN", "zh_Hans_CN", same},
      // something wider stands in
      {"de_US", "de", other},
      {"en_XX", "en", other},
      {"zh_Hant_XX", "zh_Hant", other},
      {"zh_AU", "zh_Hant", other},  // Chinese in Australia is written in traditional characters
      {"sr_Latn_AT", "sr_Latn", other},
      {"az_Arab", "root", other},  // ICU has it in two other scripts
      {"de_DE_1996", "de_DE", other},
      {"ca_ES@valencia", "ca_ES", other},
      {"de_DE@calendar=hebrew", "de_DE", other},
      {"de-DE-u-nu-thai", "de_DE", other},
      {"C@latin", "en_US_POSIX", other},
      // nothing does
      {"xx_YY", "", VX_E_NOMATCH},
      {"tlh", "", VX_E_NOMATCH},
      {"english", "", VX_E_NOMATCH},
      {"d", "", VX_E_NOMATCH},
      {"", "", VX_E_NOMATCH},
      {"_DE", "", VX_E_NOMATCH},
      {"@latin", "", VX_E_NOMATCH},
      {".UTF-8", "", VX_E_NOMATCH},
      {"de DE", "", VX_E_NOMATCH},
      {"de/DE", "", VX_E_NOMATCH},
      {"../de", "", VX_E_NOMATCH},
      {"d\xC3\xA9", "", VX_E_NOMATCH},
      {"123", "", VX_E_NOMATCH},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.asked);
    const auto found = vxhost::resolve_locale(c.asked);
    EXPECT_EQ(found.name, c.found);
    EXPECT_EQ(found.status, c.status);
  }
  EXPECT_EQ(vxhost::resolve_locale(std::string(10000, 'a')).status, VX_E_NOMATCH);
  EXPECT_EQ(vxhost::resolve_locale(std::string_view("de\0DE", 5)).status, VX_E_NOMATCH);
}

TEST(LocaleLookup, AParentNeverChangesTheScript) {
  for (int32_t i = 0; i < uloc_countAvailable(); ++i) {
    UErrorCode error = U_ZERO_ERROR;
    char language[ULOC_LANG_CAPACITY];
    char whole[ULOC_FULLNAME_CAPACITY];
    char script[ULOC_SCRIPT_CAPACITY];
    char parent_script[ULOC_SCRIPT_CAPACITY];
    uloc_getLanguage(uloc_getAvailable(i), language, sizeof language, &error);
    uloc_addLikelySubtags(uloc_getAvailable(i), whole, sizeof whole, &error);
    uloc_getScript(whole, script, sizeof script, &error);
    const std::string nowhere = std::string(language) + '_' + script + "_AQ";
    const auto found = vxhost::resolve_locale(nowhere);
    EXPECT_EQ(found.status, VX_W_SUBSTITUTE) << nowhere;
    uloc_addLikelySubtags(found.name.c_str(), whole, sizeof whole, &error);
    uloc_getScript(whole, parent_script, sizeof parent_script, &error);
    EXPECT_TRUE(found.name == "root" || std::string_view(parent_script) == script) << nowhere << ": " << found.name;
  }
}

}  // namespace
