#include "host/locale_database/cldr.h"

#include <new>

#include "host/locale_database/text.h"

namespace vxnlsldb {

namespace {

/// Whether there is what was looked for. That memory was exhausted is no answer to that.
bool found_with(UErrorCode status) {
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  return U_SUCCESS(status);
}

icu::ResourceBundle open(const char* name, Found& found) {
  UErrorCode status = U_ZERO_ERROR;
  icu::ResourceBundle bundle(nullptr, icu::Locale(name), status);
  if (found_with(status) && status != U_USING_DEFAULT_WARNING) {
    found = status == U_USING_FALLBACK_WARNING ? Found::by_inheritance : Found::exactly;
    return bundle;
  }
  // ICU would stand in the process's own locale for an unknown one; a record must not depend on that.
  const icu::Locale root("");  // icu::Locale::getRoot() is a reference to nothing when memory is exhausted
  const bool asked_for_root = icu::Locale(name) == root;
  status = U_ZERO_ERROR;
  icu::ResourceBundle rooted(nullptr, root, status);
  found = !found_with(status) ? Found::nothing : asked_for_root ? Found::exactly : Found::by_inheritance;
  return rooted;
}

icu::UnicodeString string_in(const icu::ResourceBundle& bundle) {
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString text = bundle.getType() == URES_ARRAY ? bundle.getStringEx(0, status) : bundle.getString(status);
  if (!found_with(status)) text.remove();
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
  return found_with(status) ? utf32(string_in(found)) : std::u32string();
}

std::vector<std::u32string> Cldr::list(std::initializer_list<const char*> path) const {
  UErrorCode status = U_ZERO_ERROR;
  const icu::ResourceBundle found = at(path, status);
  std::vector<std::u32string> texts;
  if (!found_with(status)) return texts;
  for (int32_t i = 0; i < found.getSize(); ++i) {
    status = U_ZERO_ERROR;
    texts.push_back(utf32(string_in(found.get(i, status))));
  }
  return texts;
}

}  // namespace vxnlsldb
