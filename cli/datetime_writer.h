// Dates and times written by a pattern of a locale: what `format` does, and `parse` with --to.
#ifndef VXNLS_CLI_DATETIME_WRITER_H
#define VXNLS_CLI_DATETIME_WRITER_H

#include <string>
#include <string_view>

#include "cli/command.h"
#include "cli/value.h"
#include "vxnls/table.h"

namespace vxcli {

enum class DatetimeKind { date, time, datetime };

/// Which of the locale's patterns: the words of --style.
namespace style {
inline constexpr std::string_view date_words[] = {"short", "medium", "long", "main", "1", "2"};
inline constexpr std::string_view time_words[] = {"short", "medium", "main", "1"};
inline constexpr Option date{.name = "style",
                             .value = "STYLE",
                             .help = "which of the locale's date patterns; short is main, medium is 1, long is 2",
                             .choices = date_words,
                             .completes = Completes::choices};
inline constexpr Option time{.name = "style",
                             .value = "STYLE",
                             .help = "which of the locale's time patterns; medium is main, short is 1",
                             .choices = time_words,
                             .completes = Completes::choices};
/// The number by which the library knows a style; 0 is the main one.
int32_t date_number(std::string_view word);
int32_t time_number(std::string_view word);
}  // namespace style

/// Puts a pattern of the command line into an entry of a record. `option` is what messages call it: "--pattern".
/// Throws Failure (usage) when it is not UTF-8 or too long.
void store_pattern(NLSName& entry, std::string_view option, const std::string& pattern);

/// The main pattern of a kind in the record of a locale.
NLSName& main_pattern(VXLocale& locale, DatetimeKind kind);

class DatetimeWriter {
 public:
  /// `locale` is this writer's own: its record is changed. Writes by the main pattern at first.
  DatetimeWriter(VXLocale* locale, DatetimeKind kind) : locale_(locale), kind_(kind) {}

  /// A date or time by another of the locale's patterns, a datetime by two of them with a blank between.
  void use_styles(int32_t date, int32_t time);
  /// Another pattern. Throws Failure (usage), naming the directive that is none.
  void use_pattern(std::string_view option, const std::string& own);

  /// What the clocks of the locale's zone show at an instant. Throws ValueError outside of the calendar.
  Moment at_instant(int64_t utc) const;
  /// Throws ValueError when the moment cannot be written.
  std::string write(const Moment& moment);

 private:
  NLSName& entry() const;
  int32_t offset_at(int32_t direction, int64_t seconds) const;
  VXStatus format(int64_t seconds, std::string& text) const;
  std::string written(int64_t seconds) const;
  bool accepts(std::u32string_view text) const;
  [[noreturn]] void explain(std::string_view option, const std::string& own, const std::u32string& units);

  VXLocale* locale_;
  DatetimeKind kind_;
  int32_t style_ = 0;
};

}  // namespace vxcli

#endif
