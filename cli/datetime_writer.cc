#include "cli/datetime_writer.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "cli/errors.h"
#include "cli/text.h"

namespace vxcli {

namespace style {

int32_t date_number(std::string_view word) {
  return word == "1" || word == "medium" ? 1 : word == "2" || word == "long" ? 2 : 0;
}
int32_t time_number(std::string_view word) { return word == "1" || word == "short" ? 1 : 0; }

}  // namespace style

namespace {

int64_t stored_length(const NLSName& name) { return std::clamp<int64_t>(name.length, 0, std::ssize(name.text)); }

/// False, with nothing changed, when the text has more than 60 units.
bool store(NLSName& name, std::u32string_view text) {
  if (text.size() > std::size(name.text)) return false;
  std::copy(text.begin(), text.end(), name.text);
  name.length = static_cast<int64_t>(text.size());
  return true;
}

std::u32string stored(const NLSName& name) { return {name.text, name.text + stored_length(name)}; }

/// The pattern with every directive that writes an offset (%z, %?Z, %?z) replaced by the offset itself.
std::u32string with_offset(std::u32string_view text, int32_t seconds) {
  const int32_t minutes = std::abs(seconds) / 60;
  const std::string digits = fmt::format("{}{:02}{:02}", seconds < 0 ? '-' : '+', minutes / 60, minutes % 60);
  std::u32string result;
  for (size_t at = 0; at < text.size();) {
    size_t length = 1;
    if (text[at] == U'%' && at + 1 < text.size()) {
      const bool modified = text[at + 1] == U'?' || text[at + 1] == U'#';
      length = std::min<size_t>(modified ? 3 : 2, text.size() - at);
    }
    const std::u32string_view part = text.substr(at, length);
    if (part == U"%z" || part == U"%?z" || part == U"%?Z") {
      result.append(digits.begin(), digits.end());
    } else {
      result += part;
    }
    at += length;
  }
  return result;
}

}  // namespace

void store_pattern(NLSName& entry, std::string_view option, const std::string& pattern) {
  const auto units = utf32(pattern);
  if (!units) fail(ExitCode::usage, "{} {}: it is not UTF-8", option, in_quotes(pattern));
  if (units->size() > std::size(entry.text)) {
    fail(ExitCode::usage, "{} {}: it has {} characters, at most {} are possible", option, in_quotes(pattern),
         units->size(), std::size(entry.text));
  }
  constexpr size_t most_bytes = 180;
  if (pattern.size() > most_bytes) {
    fail(ExitCode::usage, "{} {}: it has {} bytes, at most {} are possible", option, in_quotes(pattern), pattern.size(),
         most_bytes);
  }
  store(entry, *units);
}

NLSName& main_pattern(VXLocale& locale, DatetimeKind kind) {
  VXLocaleData& data = *locale.localeData;
  return kind == DatetimeKind::date   ? data.datePattern
         : kind == DatetimeKind::time ? data.timePattern
                                      : data.datetimePattern;
}

NLSName& DatetimeWriter::entry() const {
  VXLocaleData& data = *locale_->localeData;
  switch (kind_) {
    case DatetimeKind::date:
      return style_ == 1 ? data.datePattern1 : style_ == 2 ? data.datePattern2 : data.datePattern;
    case DatetimeKind::time: return style_ != 0 ? data.timePattern1 : data.timePattern;
    default: return data.datetimePattern;
  }
}

VXStatus DatetimeWriter::format(int64_t seconds, std::string& text) const {
  std::array<uint8_t, 2048> buffer;  // the longest text of the library has 512 bytes
  int64_t length = 0;
  VXStatus status = 0;
  const auto value = static_cast<double>(seconds);
  constexpr auto room = static_cast<int64_t>(buffer.size());
  if (kind_ == DatetimeKind::date) {
    const iso8601::Date date = date_of(day_of(seconds));
    status = locale_->ops.NLSDateFormatU(locale_, static_cast<uint32_t>(date.month), static_cast<uint32_t>(date.day),
                                         static_cast<uint32_t>(date.year), style_, buffer.data(), room, &length);
  } else if (kind_ == DatetimeKind::time) {
    status = locale_->ops.NLSTimeFormatU(locale_, style_, buffer.data(), room, &length, value);
  } else {
    status = locale_->ops.NLSDatetimeFormatU(locale_, 0, buffer.data(), room, &length, value);
  }
  text.assign(reinterpret_cast<const char*>(buffer.data()), static_cast<size_t>(length));
  return status;
}

std::string DatetimeWriter::written(int64_t seconds) const {
  std::string text;
  const VXStatus status = format(seconds, text);
  if (status == VX_E_TRUNCATED) refuse("the pattern writes more than the 512 bytes that a text may have");
  if (status != 0) fail(ExitCode::host, "the value cannot be written (status 0x{:08x})", status);
  return text;
}

bool DatetimeWriter::accepts(std::u32string_view text) const {
  store(entry(), text);
  std::string ignored;
  return format(0, ignored) != VX_E_DIRECTIVE;
}

void DatetimeWriter::explain(std::string_view option, const std::string& own, const std::u32string& units) {
  size_t begin = units.size();
  while (begin > 0 && !accepts(std::u32string_view(units).substr(0, begin))) --begin;
  std::u32string directive = units.substr(begin, 2);
  if (directive == U"%?" || directive == U"%#") directive = units.substr(begin, 3);
  std::string shown;
  for (const char32_t c : directive) shown += utf8(c);
  size_t byte = 0;
  for (const char32_t c : units.substr(0, begin)) byte += utf8(c).size();
  const std::string where = fmt::format("{} {}: at byte {}: ", option, in_quotes(own), byte);

  const DatetimeKind wanted = std::exchange(kind_, DatetimeKind::datetime);
  const bool writes_time = wanted == DatetimeKind::date && accepts(directive);
  kind_ = wanted;
  if (writes_time) fail(ExitCode::usage, "{}{} writes a time, and a date has none", where, in_quotes(shown));
  if (directive.back() == U'%' || directive == U"%?" || directive == U"%#") {
    fail(ExitCode::usage, "{}the pattern ends within a directive; \"%%\" writes a percent sign", where);
  }
  fail(ExitCode::usage, "{}{} is no directive; \"vxnls format datetime --help\" lists them", where, in_quotes(shown));
}

void DatetimeWriter::use_pattern(std::string_view option, const std::string& own) {
  style_ = 0;
  store_pattern(entry(), option, own);
  const std::u32string units = stored(entry());
  if (!accepts(units)) explain(option, own, units);
}

void DatetimeWriter::use_styles(int32_t date, int32_t time) {
  if (kind_ != DatetimeKind::datetime) {
    style_ = kind_ == DatetimeKind::date ? date : time;
    return;
  }
  const VXLocaleData& data = *locale_->localeData;
  const NLSName& date_pattern = date == 1 ? data.datePattern1 : date == 2 ? data.datePattern2 : data.datePattern;
  const NLSName& time_pattern = time != 0 ? data.timePattern1 : data.timePattern;
  if (!store(entry(), stored(date_pattern) + U' ' + stored(time_pattern))) {
    fail(ExitCode::usage, "the patterns of these styles do not fit together into 60 characters; use --pattern");
  }
}

int32_t DatetimeWriter::offset_at(int32_t direction, int64_t seconds) const {
  VXZoneService* const zones = locale_->host->zones;
  return zones->ops->offset(zones, locale_->timeZone, direction, static_cast<double>(seconds));
}

Moment DatetimeWriter::at_instant(int64_t utc) const {
  const int32_t offset = offset_at(VX_ZONE_FROM_UTC, utc);
  check_seconds(utc + offset);
  return {utc + offset, offset};
}

std::string DatetimeWriter::write(const Moment& moment) {
  // Of a local time that occurs twice the library writes the offset of the first. Where the value says which one is
  // meant, its offset is put into the pattern.
  const bool other_offset = moment.offset && *moment.offset != offset_at(VX_ZONE_FROM_LOCAL, moment.seconds);
  if (!other_offset) return written(moment.seconds);
  const std::u32string whole_pattern = stored(entry());
  if (!store(entry(), with_offset(whole_pattern, *moment.offset))) {
    refuse("it is the second of two equal local times, and its offset makes the pattern longer than 60 characters");
  }
  std::string text = written(moment.seconds);
  store(entry(), whole_pattern);
  return text;
}

}  // namespace vxcli
