// The library's readers, for pieces of forms.
#ifndef VXNLS_CLI_COLUMN_LIBRARY_H
#define VXNLS_CLI_COLUMN_LIBRARY_H

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "cli/column/form.h"
#include "cli/column/number_text.h"
#include "cli/column/profiler.h"
#include "vxnls/explain.h"
#include "vxnls/explain_number.h"
#include "vxnls/table.h"

namespace vxcli::column {

struct Day {
  int32_t year = 0, month = 0, day = 0;
  bool operator==(const Day&) const = default;
};

bool exists(const Day& day);
/// Moves a day, of whose year two digits are known, into the hundred years from `first_year` on. False when it is not
/// there: 29 February of 1900.
bool move_into_century(Day& day, int32_t first_year);
/// 0 Sunday .. 6 Saturday
int weekday_of(const Day& day);
/// The ISO week that a day lies in.
struct Week {
  int32_t year, week;
};
Week week_of(const Day& day);

struct Clock {
  int32_t seconds = 0;        ///< since midnight
  std::string_view fraction;  ///< digits
  bool has_offset = false;
  int32_t offset = 0;  ///< seconds east of UTC
};

/// What is at most tried with the names of a locale: as its record has them, then the forms that stand alone and AM and
/// PM.
class Library {
 public:
  Library(const LocaleMaker& make_locale, const std::string& locale, bool strict);

  // cppcheck-suppress CastIntegerToAddressAtReturn ; the array holds addresses
  VXLocale* locale() const { return locales_[0]; }
  /// What a directive with names ("%b", "%A", "%q", "%p") can read.
  std::vector<std::string> names(std::string_view directive) const;

  /// Each reads the beginning of a text; `consumed` counts bytes.
  bool weekday(std::string_view text, size_t& consumed);
  bool date(const Piece& piece, std::string_view text, Day& day, size_t& consumed);
  bool time(const TimeForm& form, std::string_view text, int32_t& seconds, size_t& consumed);
  /// The whole of a text: a time, perhaps a fraction, perhaps an offset.
  bool clock(const TimeForm& form, std::string_view text, Clock& clock);
  bool offset(std::string_view text, int32_t& seconds);
  /// Its first day.
  bool period(const PeriodForm& form, std::string_view text, Day& first);
  /// Whether the digits can be read in all ways that are possible: no double is too small for them.
  bool number(const NumberText& number);

  /// Whether the text is a name of another day of the week and not of this one.
  bool names_other_weekday(std::string_view text, int weekday) const;

  void explain_date(const Piece& piece, std::string_view text, VXExplanation& told);
  void explain_time(const TimeForm& form, std::string_view text, VXExplanation& told);
  void explain_period(const PeriodForm& form, std::string_view text, VXExplanation& told);
  void explain_offset(std::string_view text, VXExplanation& told);
  void explain_number(std::string_view digits, const NumberReading& reading, VXNumberReading& told);

 private:
  void set_date(size_t names, const Piece& piece);
  void set_time(size_t names, const Piece& piece);
  void set_period(size_t names, const PeriodForm& form);
  void set_number(const NumberReading& reading);
  bool has_week(const PeriodForm& form, std::string_view text, int32_t week);
  bool accepts(std::string_view digits, const NumberReading& reading);

  std::array<VXLocale*, 2> locales_{};
  std::array<uint32_t, 2> date_{}, time_{};  // ids of the pieces that stand in the records
  Piece weekday_piece_, offset_piece_;
  std::string offset_text_;
  int32_t offset_value_ = 0;
  std::array<std::string, 14> weekdays_;
};

}  // namespace vxcli::column

#endif
