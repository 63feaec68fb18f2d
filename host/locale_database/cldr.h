// A locale's CLDR data as ICU carries it, read with the inheritance of CLDR (sr_Latn_RS, sr_Latn, root).
#ifndef VXNLS_HOST_LOCALE_DATABASE_CLDR_H
#define VXNLS_HOST_LOCALE_DATABASE_CLDR_H

#include <unicode/resbund.h>

#include <string>
#include <vector>

namespace vxnlsldb {

enum class Found { exactly, by_inheritance, nothing };

class Cldr {
 public:
  /// Opens the data of a locale; an ancestor's where it has none itself.
  explicit Cldr(const char* name);

  Found found() const { return found_; }
  /// The locale whose data is used, aliases resolved.
  std::string canonical() const;

  /// The text at a path such as {"NumberElements", "latn", "symbols", "decimal"}; empty when CLDR has none.
  std::u32string text(std::initializer_list<const char*> path) const;
  /// The texts of the list at a path. An element with an override for its digits counts as its text.
  std::vector<std::u32string> list(std::initializer_list<const char*> path) const;

 private:
  icu::ResourceBundle at(std::initializer_list<const char*> path, UErrorCode& status) const;

  Found found_;
  icu::ResourceBundle bundle_;
};

}  // namespace vxnlsldb

#endif
