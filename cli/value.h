// What a value of the command means: ISO 8601, a number, "now".
#ifndef VXNLS_CLI_VALUE_H
#define VXNLS_CLI_VALUE_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "cli/iso8601.h"
#include "cli/zone.h"

namespace vxcli {

inline constexpr int64_t first_day = -138061;  // 1582-01-01
inline constexpr int64_t last_day = 6589335;   // 20000-12-31
inline constexpr int64_t seconds_a_day = 86400;
inline constexpr int64_t unix_epoch = 315619200;  // 1970-01-01, in seconds since 1960-01-01

/// A moment on the clocks of a zone.
struct Moment {
  int64_t seconds = 0;  // since 1960-01-01 00:00, local time; a time of day alone: since midnight
  /// The zone's offset then, where the value fixed an instant; otherwise the local time is all that is known.
  std::optional<int32_t> offset = {};
};

/// Reads values:
///   2026-11-21, 14:05:09, 2026-11-21T14:05:09   local time
///   2026-11-21T14:05:09+02:00, ...Z             an instant, shown in the zone
///   @1795262709                                 an instant, in seconds since 1970-01-01 00:00 UTC
///   now                                         the instant of the first such value
///   24431                                       for a date: days since 1960-01-01
///   2110889109.5                                for others: seconds since 1960-01-01 00:00 local time, or since
///   midnight
/// Fractions of a second are left out. Blanks around a value are, too. What is no value throws ValueError.
class ValueReader {
 public:
  explicit ValueReader(const Zone& zone) : zone_(zone) {}

  int64_t date(std::string_view text);  // days since 1960-01-01
  Moment time(std::string_view text);
  Moment datetime(std::string_view text);

 private:
  enum class Wanted { date, time, datetime };
  static std::string_view what_is_wanted(Wanted wanted);
  Moment read(std::string_view text, Wanted wanted);
  Moment read_iso(std::string_view text, size_t skipped, Wanted wanted) const;  // `skipped` bytes stand before it
  Moment at_instant(int64_t utc) const;
  int64_t now();

  const Zone& zone_;
  std::optional<int64_t> now_;
};

/// The day number of a date. Throws ValueError when there is no such day.
int64_t day_number(const iso8601::Date& date);
/// The date of a day number from `first_day` to `last_day`.
iso8601::Date date_of(int64_t day);
/// Both throw ValueError outside of the calendar.
void check_day(int64_t day);
void check_seconds(int64_t seconds);

/// 2026-11-21T14:05:09
std::string write_datetime(int64_t seconds);
/// The day that a datetime belongs to.
int64_t day_of(int64_t seconds);

}  // namespace vxcli

#endif
