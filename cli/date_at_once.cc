#include "cli/date_at_once.h"

#include <cmath>

#include "cli/text.h"
#include "vxnls/calendar.h"
#include "vxnls/table.h"

namespace vxcli {

std::optional<iso8601::Date> date_at_once(VXLocale* locale, std::string_view text, uint32_t kind) {
  uint32_t month = 0;
  uint32_t day = 0;
  uint32_t year = 0;
  int64_t consumed = 0;
  const VXStatus status =
      locale->ops.NLSBufToDateU(locale, reinterpret_cast<const uint8_t*>(text.data()),
                                static_cast<int64_t>(text.size()), kind, &month, &day, &year, &consumed);
  if (status != 0 || year == 0) return std::nullopt;  // refused, or no full date
  NLSCalendarWork work{0, 0, 0, 0, {31, 0, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}, 1950};
  if (std::isnan(NLSmdy(&work, month, day, year))) return std::nullopt;  // the month has no such day
  if (!without_blanks(text.substr(static_cast<size_t>(consumed))).empty()) return std::nullopt;
  return iso8601::Date{static_cast<int32_t>(year), static_cast<int32_t>(month), static_cast<int32_t>(day)};
}

}  // namespace vxcli
