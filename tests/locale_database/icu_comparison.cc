#include "tests/locale_database/icu_comparison.h"

#include <unicode/dtptngen.h>
#include <unicode/smpdtfmt.h>
#include <unicode/ucal.h>

#include <algorithm>
#include <functional>
#include <span>
#include <stdexcept>

#include "host/locale_database/text.h"
#include "tests/support/plain_locale.h"

namespace vxtest {

namespace {

using icu::DateFormat;
using icu::SimpleDateFormat;

struct Moment {
  int32_t year, month, day, hour, minute, second;
};

std::vector<Moment> moments() {
  std::vector<Moment> all;
  for (int32_t month = 1; month <= 12; ++month) {
    all.push_back({2021, month, 5, month - 1, 5, 7});
    all.push_back({2000, month, 23, month + 11, 40, 59});
  }
  return all;
}

UDate icu_date(const Moment& m) {
  // Months count from 0.
  const int32_t before[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  const bool leap = m.year % 4 == 0 && m.month > 2;
  const int32_t years = m.year - 1970, days = years * 365 + (years + 1) / 4 + before[m.month - 1] + leap + m.day - 1;
  return ((days * 24.0 + m.hour) * 60 + m.minute) * 60000 + m.second * 1000;
}

[[noreturn]] void fail(const std::string& what) { throw std::runtime_error(what); }

std::unique_ptr<SimpleDateFormat> styled(const std::string& locale, DateFormat::EStyle date, DateFormat::EStyle time) {
  const icu::Locale where(locale.c_str());
  DateFormat* const format = date == DateFormat::kNone   ? DateFormat::createTimeInstance(time, where)
                             : time == DateFormat::kNone ? DateFormat::createDateInstance(date, where)
                                                         : DateFormat::createDateTimeInstance(date, time, where);
  auto* const simple = dynamic_cast<SimpleDateFormat*>(format);
  if (simple == nullptr) fail(locale + ": no formatter");
  simple->adoptTimeZone(icu::TimeZone::getGMT()->clone());
  return std::unique_ptr<SimpleDateFormat>(simple);
}

std::unique_ptr<SimpleDateFormat> by_pattern(const std::string& locale, const icu::UnicodeString& pattern) {
  UErrorCode status = U_ZERO_ERROR;
  auto format = std::make_unique<SimpleDateFormat>(pattern, icu::Locale(locale.c_str()), status);
  if (U_FAILURE(status)) fail(locale + ": no formatter for a pattern");
  format->adoptTimeZone(icu::TimeZone::getGMT()->clone());
  return format;
}

std::string text_by(const DateFormat& format, const Moment& moment) {
  icu::UnicodeString text;
  format.format(icu_date(moment), text);
  std::string result;
  return text.toUTF8String(result);
}

std::string cleaned(const std::string& text) {
  return vxnlsldb::utf8(vxnlsldb::clean(vxnlsldb::utf32(icu::UnicodeString::fromUTF8(text))));
}

/// How the text of an entry is written by the library.
using Writer = std::function<VXStatus(VXLocale*, const Moment&, uint8_t*, int64_t*)>;

VXStatus write_date(VXLocale* locale, int32_t style, const Moment& m, uint8_t* out, int64_t* length) {
  return NLSDateFormatU(locale, static_cast<uint32_t>(m.month), static_cast<uint32_t>(m.day),
                        static_cast<uint32_t>(m.year), style, out, 512, length);
}

VXStatus write_time(VXLocale* locale, int32_t flag, const Moment& m, uint8_t* out, int64_t* length) {
  return NLSTimeFormatU(locale, flag, out, 512, length, (m.hour * 60 + m.minute) * 60 + m.second);
}

/// A change of ICU's pattern that the mapping makes on purpose.
struct Adjustment {
  char16_t letter;
  int32_t run, becomes;
  const char* reason;
};

constexpr Adjustment main_date_adjustments[] = {
    {u'y', 2, 1, "four-digit year"},
    {u'M', 1, 2, "padded"},
    {u'd', 1, 2, "padded"},
};
constexpr Adjustment other_date_adjustments[] = {{u'M', 1, 2, "month always in two digits"}};
constexpr Adjustment main_time_adjustments[] = {
    {u'm', 1, 2, "R2: minutes padded"},
    {u's', 1, 2, "R2: seconds padded"},
};

icu::UnicodeString adjusted(const icu::UnicodeString& pattern, std::span<const Adjustment> adjustments,
                            std::vector<std::string>& reasons) {
  icu::UnicodeString result;
  bool quoted = false;
  for (int32_t i = 0; i < pattern.length();) {
    int32_t run = 1;
    while (i + run < pattern.length() && pattern[i + run] == pattern[i]) ++run;
    int32_t length = run;
    if (pattern[i] == u'\'') quoted ^= (run & 1) != 0;
    for (const Adjustment& adjustment : adjustments) {
      if (quoted || adjustment.letter != pattern[i] || adjustment.run != run) continue;
      length = adjustment.becomes;
      if (std::find(reasons.begin(), reasons.end(), adjustment.reason) == reasons.end()) {
        reasons.push_back(adjustment.reason);
      }
    }
    for (int32_t k = 0; k < length; ++k) result += pattern[i];
    i += run;
  }
  return result;
}

struct Entry {
  const char* name;
  DateFormat::EStyle date, time;
  std::span<const Adjustment> adjustments;
  const char* skeleton;  // of the locale's 24-hour clock, where the entry falls back to it
  Writer write;
};

const std::vector<Entry>& entries() {
  const auto date = [](int32_t style) {
    return [style](VXLocale* l, const Moment& m, uint8_t* out, int64_t* length) {
      return write_date(l, style, m, out, length);
    };
  };
  const auto time = [](int32_t flag) {
    return [flag](VXLocale* l, const Moment& m, uint8_t* out, int64_t* length) {
      return write_time(l, flag, m, out, length);
    };
  };
  static const std::vector<Entry> all = {
      {"datePattern", DateFormat::kShort, DateFormat::kNone, main_date_adjustments, "", date(0)},
      {"datePattern1", DateFormat::kMedium, DateFormat::kNone, other_date_adjustments, "", date(1)},
      {"datePattern2", DateFormat::kLong, DateFormat::kNone, other_date_adjustments, "", date(2)},
      {"timePattern", DateFormat::kNone, DateFormat::kMedium, main_time_adjustments, "Hms", time(0)},
      {"timePattern1", DateFormat::kNone, DateFormat::kShort, {}, "Hm", time(1)},
  };
  return all;
}

std::string fallback_reason(const FilledLocale& locale, const std::string& entry) {
  for (const auto& fallback : locale.fallbacks) {
    if (fallback.entry == entry && fallback.reason[0] == 'R' && fallback.reason.substr(0, 2) != "R2") {
      return fallback.reason.substr(0, fallback.reason.find("; CLDR has"));
    }
  }
  return "";
}

icu::UnicodeString pattern_of(const DateFormat& format) {
  icu::UnicodeString pattern;
  dynamic_cast<const SimpleDateFormat&>(format).toPattern(pattern);
  return pattern;
}

/// The pattern that ICU would need to write what the record writes.
icu::UnicodeString expected_pattern(const FilledLocale& locale, const std::string& gregorian, const Entry& entry,
                                    std::vector<std::string>& reasons) {
  const std::string fallback = fallback_reason(locale, entry.name);
  if (fallback.empty())
    return adjusted(pattern_of(*styled(gregorian, entry.date, entry.time)), entry.adjustments, reasons);
  reasons.push_back(fallback);
  std::vector<std::string> told;  // with the main pattern
  if (entry.date != DateFormat::kNone) return expected_pattern(locale, gregorian, entries()[0], told);
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::DateTimePatternGenerator> generator(
      icu::DateTimePatternGenerator::createInstance(icu::Locale(gregorian.c_str()), status));
  return adjusted(generator->getPatternForSkeleton(icu::UnicodeString(entry.skeleton)), entry.adjustments, reasons);
}

}  // namespace

std::vector<Difference> differences_from_icu(const FilledLocale& locale) {
  std::vector<Difference> differences;
  PlainLocale plain;
  plain.data = *locale.data;
  const auto record_text = [&](const Writer& write, const Moment& moment) {
    uint8_t buffer[512];
    int64_t length = 0;
    if (write(plain.get(), moment, buffer, &length) != 0) fail(locale.name + ": a pattern cannot be written");
    return std::string(buffer, buffer + length);
  };
  const std::string gregorian = locale.name + "@calendar=gregorian", plainest = gregorian + ";numbers=latn";

  for (const Entry& entry : entries()) {
    std::vector<std::string> pattern_reasons;
    const icu::UnicodeString pattern = expected_pattern(locale, gregorian, entry, pattern_reasons);
    const auto as_it_is = styled(locale.name, entry.date, entry.time);
    const auto in_calendar = styled(gregorian, entry.date, entry.time);
    const auto in_digits = styled(plainest, entry.date, entry.time);
    const auto expected = by_pattern(plainest, pattern);
    Difference found{entry.name, "", "", {}, ""};
    const auto because = [&](bool changed, const std::string& reason) {
      if (changed && std::find(found.reasons.begin(), found.reasons.end(), reason) == found.reasons.end()) {
        found.reasons.push_back(reason);
      }
    };
    for (const Moment& moment : moments()) {
      const std::string record = record_text(entry.write, moment), icu = text_by(*as_it_is, moment);
      if (record == icu) continue;
      if (found.icu.empty()) found.icu = icu, found.record = record;
      const std::string calendar = text_by(*in_calendar, moment), digits = text_by(*in_digits, moment);
      because(icu != calendar, "Gregorian calendar");
      because(calendar != digits, "ASCII digits");
      because(digits != cleaned(digits), "R9: plain blanks, no marks");
      const std::string last = cleaned(text_by(*expected, moment));
      for (const std::string& reason : pattern_reasons) because(cleaned(digits) != last, reason);
      if (last != record) found.unexplained = last;
    }
    if (!found.icu.empty()) differences.push_back(found);
  }

  const Moment moment = moments().front();
  const auto both = styled(plainest, DateFormat::kShort, DateFormat::kMedium);
  const std::string joined = cleaned(text_by(*styled(plainest, DateFormat::kShort, DateFormat::kNone), moment)) + ' ' +
                             cleaned(text_by(*styled(plainest, DateFormat::kNone, DateFormat::kMedium), moment));
  const auto write_datetime = [](VXLocale* l, const Moment& m, uint8_t* out, int64_t* length) {
    return NLSDatetimeFormatU(l, 0, out, 512, length, icu_date(m) / 1000 + 3653.0 * 86400);
  };
  const std::string record = record_text(write_datetime, moment);
  const std::string parts = record_text(entries()[0].write, moment) + ' ' + record_text(entries()[3].write, moment);
  if (cleaned(text_by(*both, moment)) != joined || record != parts) {
    differences.push_back(
        {"datetimePattern", text_by(*both, moment), record, {"R5: joined by one blank"}, record == parts ? "" : parts});
  }
  return differences;
}

}  // namespace vxtest
