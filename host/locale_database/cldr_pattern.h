// Patterns of CLDR ("d. MMM y", "h:mm a") turned into patterns of the record ("%#d. %b %Y", "%#I:%M %p").
#ifndef VXNLS_HOST_LOCALE_DATABASE_CLDR_PATTERN_H
#define VXNLS_HOST_LOCALE_DATABASE_CLDR_PATTERN_H

#include <string>
#include <string_view>

namespace vxnlsldb {

/// Main patterns are padded throughout; the others keep CLDR's padding where a directive exists.
enum class Padding { all, as_cldr };

struct Translation {
  std::u32string stored;
  std::string obstacle;  // not empty: what has no counterpart, and `stored` is of no use
  std::string change;    // not empty: where texts will differ from CLDR's, and why; padding that was asked for apart
};

/// Translates a date or time pattern.
///   era  what stands for the field G: dates of the record are all of the current era
Translation translate(std::u32string_view cldr, Padding padding, std::u32string_view era);

/// The clock of a CLDR time pattern.
struct Clock {
  bool twelve_hours;      // h or K
  bool day_period_first;  // a, b or B before the hour
};
Clock clock_of(std::u32string_view cldr);

}  // namespace vxnlsldb

#endif
