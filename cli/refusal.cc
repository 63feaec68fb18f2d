#include "cli/refusal.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/text.h"

namespace vxcli {

namespace {

/// What a directive reads, with its article.
struct FieldName {
  std::string_view letters;
  std::string_view name;
};
constexpr FieldName fields[] = {
    {"YyG", "a year"},
    {"mo", "a month"},
    {"de", "a day of a month"},
    {"HIkl", "an hour"},
    {"M", "a minute"},
    {"S", "a second"},
    {"s", "milliseconds"},
    {"uw", "a number of a week day"},
    {"UVW", "a week"},
    {"aAFf", "the name of a week day"},
    {"bBC", "the name of a month"},
    {"p", "AM or PM"},
    {"qQ", "the name of a quarter"},
    {"z", "an offset from UTC"},
    {"Z", "a time zone"},
    {"%", "\"%\""},
};

std::string_view field_name(VXChar letter) {
  const auto found = std::find_if(std::begin(fields), std::end(fields), [&](const FieldName& field) {
    return letter < 0x80 && field.letters.find(static_cast<char>(letter)) != std::string_view::npos;
  });
  return found == std::end(fields) ? "this" : found->name;
}

struct SourceName {
  uint32_t source;
  std::string_view name;
};
constexpr SourceName sources[] = {
    {VX_SOURCE_DATE, "the locale's date pattern"},
    {VX_SOURCE_DATE_1, "the locale's medium date pattern"},
    {VX_SOURCE_DATE_2, "the locale's long date pattern"},
    {VX_SOURCE_DATETIME, "the locale's datetime pattern"},
    {VX_SOURCE_TIME, "the locale's time pattern"},
    {VX_SOURCE_TIME_1, "the locale's short time pattern"},
    {VX_SOURCE_QUARTER_1, "the locale's first quarter pattern"},
    {VX_SOURCE_QUARTER_2, "the locale's second quarter pattern"},
    {VX_SOURCE_MONTH_1, "the locale's first month pattern"},
    {VX_SOURCE_MONTH_2, "the locale's second month pattern"},
    {VX_SOURCE_WEEK_1, "the locale's first week pattern"},
    {VX_SOURCE_WEEK_2, "the locale's second week pattern"},
    {VX_SOURCE_COMMON_DATE, "a common form of dates"},
    {VX_SOURCE_COMMON_MONTH, "a common form of months"},
    {VX_SOURCE_COMMON_QUARTER, "a common form of quarters"},
    {VX_SOURCE_SUNDAY_WEEK, "a common form of weeks from Sunday"},
    {VX_SOURCE_ISO_WEEK, "a common form of ISO weeks"},
    {VX_SOURCE_MONDAY_WEEK, "a common form of weeks from Monday"},
    {VX_SOURCE_COMMON_TIME, "a common form of times"},
    {VX_SOURCE_SHORT_TIME, "the locale's time pattern without seconds"},
    {VX_SOURCE_SHORT_TIME_1, "the locale's short time pattern without seconds"},
};

/// The offending part, or how to call its absence.
std::string what_stands(const VXExplainRefusal& refusal, std::string_view text) {
  const auto at = static_cast<size_t>(std::clamp<int64_t>(refusal.position, 0, static_cast<int64_t>(text.size())));
  const std::string_view part = text.substr(at, static_cast<size_t>(std::max<int64_t>(refusal.length, 0)));
  return part.empty() ? "the end of the text" : in_quotes(part);
}

std::string reading(const VXExplainRefusal& refusal) {
  if (refusal.is_directive == 0) return {};
  return fmt::format(", reading {}", directive(refusal.letter, refusal.modifier));
}

/// The common forms of quarters read their number as one of a month.
bool is_number_of_quarter(const VXExplainRefusal& refusal) {
  return refusal.is_directive != 0 && refusal.letter == 'o' && refusal.candidate.source == VX_SOURCE_COMMON_QUARTER;
}

std::string wanted(const VXExplainRefusal& refusal) {
  if (is_number_of_quarter(refusal)) return "a quarter";
  if (refusal.is_directive != 0) return std::string(field_name(refusal.letter));
  return refusal.letter != 0 ? in_quotes(utf8(refusal.letter)) : "more";
}

}  // namespace

std::string directive(VXChar letter, VXChar modifier) {
  return fmt::format("%{}{}", modifier != 0 ? utf8(modifier) : std::string(), utf8(letter));
}

std::string describe_source(const VXExplainCandidate& candidate) {
  for (const SourceName& source : sources) {
    if (source.source == candidate.source) return std::string(source.name);
  }
  return "no form";
}

std::string describe_reason(const VXExplainRefusal& refusal, std::string_view text) {
  const std::string stands = what_stands(refusal, text);
  switch (refusal.reason) {
    case VX_REASON_TEXT_ENDED:
      return fmt::format("the text ends where {} is wanted{}", wanted(refusal), reading(refusal));
    case VX_REASON_NO_DIGIT:
      return fmt::format("{} stands where {} is wanted{}", stands, wanted(refusal), reading(refusal));
    case VX_REASON_WIDTH:
      return fmt::format("{} stands where {} wants {} positions; {} takes {}", stands,
                         directive(refusal.letter, refusal.modifier), refusal.width, directive(refusal.letter, '#'),
                         refusal.width == 2 ? "one" : "fewer");
    case VX_REASON_BLANK_FIELD:
      return fmt::format("blanks fill the {} positions of {}{}", refusal.width, wanted(refusal), reading(refusal));
    case VX_REASON_TOO_MANY_DIGITS:
      return fmt::format("{} has more than {} digits{}", stands, refusal.width, reading(refusal));
    case VX_REASON_RANGE:
      return fmt::format("{} is not {} ({} to {}){}", stands, wanted(refusal), refusal.minimum,
                         is_number_of_quarter(refusal) ? 4 : refusal.maximum, reading(refusal));
    case VX_REASON_NO_NAME: return fmt::format("{} is not {}{}", stands, wanted(refusal), reading(refusal));
    case VX_REASON_LITERAL: return fmt::format("{} stands where {} is wanted", stands, wanted(refusal));
    case VX_REASON_TRAILING_TEXT: return fmt::format("{} follows what was read", stands);
    case VX_REASON_ZONE_UNKNOWN: return fmt::format("{} is no time zone{}", stands, reading(refusal));
    case VX_REASON_BROKEN_TEXT: return fmt::format("it is not UTF-8");
    case VX_REASON_DIRECTIVE:
      return fmt::format("the pattern holds {}, which reads nothing here", directive(refusal.letter, refusal.modifier));
    case VX_REASON_PATTERN_ENDED: return "the pattern ends within a directive";
    case VX_REASON_MARKER:
      return fmt::format("hour {} does not go with AM or PM ({} to {} would)", refusal.value, refusal.minimum,
                         refusal.maximum);
    case VX_REASON_NO_YEAR: return "no year or no week was read";
    case VX_REASON_NO_QUARTER: return "no quarter was read";
    case VX_REASON_BEFORE_CALENDAR: return "the period begins before 1582-01-01, the first day of the calendar";
    case VX_REASON_NO_SUCH_DAY: return "the month has no such day";
    default: return "it is not understood";
  }
}

std::string describe(const VXExplainRefusal& refusal, std::string_view text) {
  return fmt::format("at byte {}: {}", refusal.position, describe_reason(refusal, text));
}

std::string describe_reason(const VXNumberReading& reading, std::string_view text) {
  const auto at = static_cast<size_t>(reading.fault_offset);
  const std::string_view part = text.substr(std::min(at, text.size()), static_cast<size_t>(reading.fault_length));
  const std::string stands = part.empty() ? "the end of the text" : in_quotes(part);
  switch (reading.fault) {
    case VX_FAULT_EMPTY: return "there is no number";
    case VX_FAULT_NO_DIGIT: return stands + " stands where a digit is wanted";
    case VX_FAULT_SIGN_ALONE: return stands + " follows the sign, not a digit";
    case VX_FAULT_SIGN_REFUSED: return stands + " before a number that has no sign";
    case VX_FAULT_LEADING_SEPARATOR: return "a group separator before the first digit";
    case VX_FAULT_WRONG_POINT: return "\".\" is not the decimal point of the locale";
    case VX_FAULT_POINT_ALONE: return "a decimal point without digits";
    case VX_FAULT_MISSING_LETTER: return "\".\" followed by neither a digit nor the letter of a missing value";
    case VX_FAULT_SECOND_POINT: return "a second decimal point";
    case VX_FAULT_SEPARATOR_IN_FRACTION: return "a group separator after the decimal point";
    case VX_FAULT_EXPONENT_WITHOUT_DIGITS: return stands + " stands where the digits of the exponent are wanted";
    case VX_FAULT_EXPONENT_RANGE: return fmt::format("the exponent {} is outside -30800 to 30800", stands);
    case VX_FAULT_POINT_IN_INTEGER: return "a decimal point in a whole number; --fraction drops what follows it";
    case VX_FAULT_TEXT_AFTER: return stands + " follows the number";
    case VX_FAULT_OVERFLOW: return stands + " is too large";
    case VX_FAULT_UNDERFLOW: return stands + " is too small for a double";
    default: return "it is not understood";
  }
}

}  // namespace vxcli
