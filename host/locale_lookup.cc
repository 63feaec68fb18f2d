#include "host/locale_lookup.h"

#include <unicode/localebuilder.h>
#include <unicode/locid.h>
#include <unicode/uenum.h>
#include <unicode/uloc.h>
#include <unicode/ures.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <vector>

namespace vxhost {

namespace {

using Names = std::vector<std::string_view>;

bool is_available(std::string_view name) {
  return std::binary_search(available_locales().begin(), available_locales().end(), name);
}

/// The locale that ICU keeps an old name for: "no_NO_NY" is nn_NO. Nothing for other names.
std::optional<std::string> of_old_name(const char* name) {
  UErrorCode error = U_ZERO_ERROR;
  const std::unique_ptr<UEnumeration, decltype(&uenum_close)> old_names(
      uloc_openAvailableByType(ULOC_AVAILABLE_ONLY_LEGACY_ALIASES, &error), uenum_close);
  for (;;) {
    const char* const old_name = uenum_next(old_names.get(), nullptr, &error);
    if (U_FAILURE(error) || old_name == nullptr) return std::nullopt;
    if (std::strcmp(old_name, name) == 0) break;
  }
  const std::unique_ptr<UResourceBundle, decltype(&ures_close)> bundle(ures_open(nullptr, name, &error), ures_close);
  const char* const target = ures_getLocaleByType(bundle.get(), ULOC_ACTUAL_LOCALE, &error);
  return U_SUCCESS(error) && is_available(target) ? std::optional<std::string>(target) : std::nullopt;
}

/// The names of one language: "de" and all that begin with "de_".
Names of_language(std::string_view language) {
  Names names;
  const Names& all = available_locales();
  for (auto at = std::lower_bound(all.begin(), all.end(), language); at != all.end() && at->starts_with(language);
       ++at) {
    if (at->size() == language.size() || (*at)[language.size()] == '_') names.push_back(*at);
  }
  return names;
}

icu::Locale with_likely_subtags(icu::Locale locale) {
  UErrorCode error = U_ZERO_ERROR;
  locale.addLikelySubtags(error);
  return locale;
}

/// The locale of ICU that is `wanted` in another spelling. Where a language alone and one with its region are the same,
/// the one that says as much as `wanted` does.
std::optional<std::string> same_locale(const icu::Locale& wanted) {
  if (is_available(wanted.getName())) return wanted.getName();
  if (auto target = of_old_name(wanted.getName())) return target;
  const icu::Locale whole = with_likely_subtags(wanted);
  std::optional<std::string> found;
  for (const std::string_view name : of_language(wanted.getLanguage())) {
    const icu::Locale one(std::string(name).c_str());
    if (with_likely_subtags(one) != whole) continue;
    if (!found || (*one.getCountry() != 0) == (*wanted.getCountry() != 0)) found = name;
  }
  return found;
}

icu::Locale without_variant(const icu::Locale& locale) {
  UErrorCode error = U_ZERO_ERROR;
  icu::LocaleBuilder builder;
  return builder.setLanguage(locale.getLanguage())
      .setScript(locale.getScript())
      .setRegion(locale.getCountry())
      .build(error);
}

std::string script_of(const icu::Locale& locale) { return with_likely_subtags(locale).getScript(); }

/// The widest locale of the language in the script of `wanted`; root when ICU has the language in other scripts only.
std::optional<std::string> parent_locale(const icu::Locale& wanted) {
  const std::string language = wanted.getLanguage();
  if (of_language(language).empty()) return std::nullopt;
  const std::string script = script_of(wanted);
  if (script_of(icu::Locale(language.c_str())) == script) return language;
  const std::string in_script = language + '_' + script;
  return is_available(in_script) ? in_script : "root";
}

struct Modifier {
  std::string_view name;
  const char* script;
};
constexpr Modifier script_modifiers[] = {
    {"latin", "Latn"}, {"cyrillic", "Cyrl"}, {"devanagari", "Deva"}, {"arabic", "Arab"}};

}  // namespace

const std::vector<std::string_view>& available_locales() {
  static const Names& names = *new const Names([] {  // outlives hosts that a program closes while it ends
    Names made;
    const int32_t count = uloc_countAvailable();
    if (count == 0) throw std::bad_alloc();  // ICU could not read its list
    for (int32_t i = 0; i < count; ++i) made.emplace_back(uloc_getAvailable(i));
    std::sort(made.begin(), made.end());
    return made;
  }());
  return names;
}

ResolvedLocale resolve_locale(std::string_view name) {
  ResolvedLocale none{"", VX_E_NOMATCH};
  if (name.size() >= ULOC_FULLNAME_CAPACITY) return none;

  // POSIX: language_region.charset@modifier. A modifier with "=" is a list of keywords.
  const size_t at_sign = name.find('@');
  const std::string_view modifier = at_sign == name.npos ? std::string_view() : name.substr(at_sign + 1);
  const std::string_view before = name.substr(0, at_sign);
  const std::string base(before.substr(0, before.find('.')));
  if (base.empty() ||
      base.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-") != std::string::npos) {
    return none;
  }
  bool honoured = modifier.empty() || modifier == "euro";
  if (base == "C" || base == "POSIX") return {"en_US_POSIX", honoured ? 0 : VX_W_SUBSTITUTE};
  if (base == "root" || base == "und") return {"root", honoured ? 0 : VX_W_SUBSTITUTE};

  icu::Locale wanted = icu::Locale::createCanonical(base.c_str());
  if (wanted.isBogus() || *wanted.getLanguage() == 0) return none;
  if (std::strchr(wanted.getName(), '@') != nullptr) {
    honoured = false;
    wanted = icu::Locale(wanted.getBaseName());
  }
  for (const Modifier& known : script_modifiers) {
    if (modifier != known.name) continue;
    UErrorCode error = U_ZERO_ERROR;
    icu::LocaleBuilder builder;
    wanted = builder.setLocale(wanted).setScript(known.script).build(error);
    honoured = U_SUCCESS(error);
  }

  if (auto same = same_locale(wanted)) return {*same, honoured ? 0 : VX_W_SUBSTITUTE};
  if (*wanted.getVariant() != 0) {
    wanted = without_variant(wanted);
    if (auto same = same_locale(wanted)) return {*same, VX_W_SUBSTITUTE};
  }
  if (auto parent = parent_locale(wanted)) return {*parent, VX_W_SUBSTITUTE};
  return none;
}

}  // namespace vxhost
