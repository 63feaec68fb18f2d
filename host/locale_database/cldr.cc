#include "host/locale_database/cldr.h"

#include "host/locale_database/text.h"

namespace vxnlsldb {

namespace {

icu::ResourceBundle open(const char* name, Found& found) {
  UErrorCode status = U_ZERO_ERROR;
  icu::ResourceBundle bundle(nullptr, icu::Locale(name), status);
  if (U_SUCCESS(status) && status != U_USING_DEFAULT_WARNING) {
    found = status == U_USING_FALLBACK_WARNING ? Found::by_inheritance : Found::exactly;
    return bundle;
  }
  // ICU would stand in the process's own locale for an unknown one; a record must not depend on that.
  const bool root = icu::Locale(name) == icu::Locale::getRoot();
  status = U_ZERO_ERROR;
  icu::ResourceBundle rooted(nullptr, icu::Locale::getRoot(), status);
  found = U_FAILURE(status) ? Found::nothing : root ? Found::exactly : Found::by_inheritance;
  return rooted;
}

icu::UnicodeString string_in(const icu::ResourceBundle& bundle) {
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString text = bundle.getType() == URES_ARRAY ? bundle.getStringEx(0, status) : bundle.getString(status);
  if (U_FAILURE(status)) text.remove();
  return text;
}

}  // namespace

Cldr::Cldr(const char* name) : found_(Found::nothing), bundle_(open(name, found_)) {}

std::string Cldr::canonical() const {
  UErrorCode status = U_ZERO_ERROR;
  return bundle_.getLocale(ULOC_VALID_LOCALE, status).getName();
}

icu::ResourceBundle Cldr::at(std::initializer_list<const char*> path, UErrorCode& status) const {
  // The member function that steps down with inheritance is not const, though it changes nothing.
  icu::ResourceBundle bundle(bundle_);
  for (const char* key : path) bundle = bundle.getWithFallback(key, status);
  return bundle;
}

std::u32string Cldr::text(std::initializer_list<const char*> path) const {
  UErrorCode status = U_ZERO_ERROR;
  const icu::ResourceBundle found = at(path, status);
  return U_FAILURE(status) ? std::u32string() : utf32(string_in(found));
}

std::vector<std::u32string> Cldr::list(std::initializer_list<const char*> path) const {
  UErrorCode status = U_ZERO_ERROR;
  const icu::ResourceBundle found = at(path, status);
  std::vector<std::u32string> texts;
  if (U_FAILURE(status)) return texts;
  for (int32_t i = 0; i < found.getSize(); ++i) {
    status = U_ZERO_ERROR;
    texts.push_back(utf32(string_in(found.get(i, status))));
  }
  return texts;
}

}  // namespace vxnlsldb
