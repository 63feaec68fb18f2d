// A pattern of the record taken apart, and what its readers would make of texts written by it.
#ifndef VXNLS_HOST_LOCALE_DATABASE_STORED_PATTERN_H
#define VXNLS_HOST_LOCALE_DATABASE_STORED_PATTERN_H

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vxnlsldb {

/// One step of a pattern: a directive, or one literal character ("%%" is the literal '%').
struct Step {
  char32_t directive;  // 0: a literal
  char32_t literal;
  bool unpadded;  // "%#d"

  bool operator==(const Step&) const = default;
};
using Pattern = std::vector<Step>;

/// Nothing when a '%' is followed by neither a letter, '#' and a letter, nor '%'.
std::optional<Pattern> take_apart(std::u32string_view stored);

/// As it stands in a stored pattern: "%#d", "%%".
std::u32string spelled(const Step& step);

int count(const Pattern& pattern, char32_t directive);
/// The first step with the directive, or -1.
int position(const Pattern& pattern, char32_t directive);

/// The names that a pattern can write, lower-cased.
struct FoldedNames {
  std::array<std::u32string, 7> days;
  std::array<std::u32string, 12> months, alt_months;
};

/// A name that its reader would take for another, or for another length.
struct Misreading {
  std::u32string written, taken;
};

/// The first name of the pattern that does not read back, by the strict reader or the lenient one. Readers take the
/// first entry that the text begins with, and look at nothing else; the lenient reader of months goes through the full
/// names first, whatever the directive.
std::optional<Misreading> misread_name(const Pattern& pattern, const FoldedNames& names);

/// A number that runs into a digit, which lenient readers refuse: the directive, or 0.
char32_t number_before_digit(const Pattern& pattern, const FoldedNames& names);

/// How the lenient reader gets on with `later`'s texts when it tries `earlier` first.
enum class Overlap {
  none,    // it does not match, or reads the same value to the same end
  blanks,  // the two differ in blanks only, and a year may be read from two of its digits
  part,    // it stops early
  order    // it reads the day as the month
};
Overlap overlap(const Pattern& earlier, const Pattern& later);

}  // namespace vxnlsldb

#endif
