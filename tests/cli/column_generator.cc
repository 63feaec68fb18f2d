#include "tests/cli/column_generator.h"

#include <fmt/format.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <chrono>
#include <memory>
#include <random>

namespace vxtest {

namespace {

using Random = std::mt19937;
using Days = std::chrono::sys_days;

size_t below(Random& random, size_t limit) { return random() % limit; }  // the same with every standard library

std::string utf8(const icu::UnicodeString& text) {
  std::string bytes;
  return text.toUTF8String(bytes);
}

/// Writes days by ICU's patterns, in the Gregorian calendar at noon UTC.
class Writer {
 public:
  Writer(const char* locale, const char* pattern) {
    UErrorCode error = U_ZERO_ERROR;
    // cppcheck-suppress useInitializationList ; the constructor leaves its status in a variable
    format_ =
        std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString::fromUTF8(pattern), icu::Locale(locale), error);
    auto calendar = std::make_unique<icu::GregorianCalendar>(icu::Locale(locale), error);
    calendar->setGregorianChange(-1e17, error);
    format_->adoptCalendar(calendar.release());
    format_->adoptTimeZone(icu::TimeZone::createTimeZone("UTC"));
  }
  icu::UnicodeString write(Days day) const {
    icu::UnicodeString text;
    const auto noon = std::chrono::milliseconds(day.time_since_epoch()) + std::chrono::hours(12);
    return format_->format(static_cast<UDate>(noon.count()), text);
  }

 private:
  std::unique_ptr<icu::SimpleDateFormat> format_;
};

const char16_t spaces[] = {0x00A0, 0x202F, 0x2009};

/// What people write and no locale has: the meaning is plain, the text is not.
icu::UnicodeString make_hard(icu::UnicodeString text, Random& random) {
  switch (below(random, 4)) {
    case 0: return text.append(u" (?)");
    case 1: return text.insert(0, u"ca. ");
    case 2: {  // the letter O for a zero
      const int32_t zero = text.indexOf(u'0');
      return zero < 0 ? text.append(u"*") : text.replace(zero, 1, u'O');
    }
    default: return text.append(u";");
  }
}

/// What copying and exporting does to a text, its meaning kept.
void soil(icu::UnicodeString& text, Random& random, bool number) {
  switch (below(random, 12)) {
    case 0: text.insert(0, u' '); break;
    case 1: text.append(u' ').append(static_cast<UChar>(0x00A0)); break;
    case 2: text.insert(0, static_cast<UChar>(0x200E)); break;
    case 3: text.append(static_cast<UChar>(0x200F)); break;
    case 4: text.findAndReplace(u" ", icu::UnicodeString(spaces[below(random, 3)])); break;
    case 5: {  // full-width digits
      for (int32_t i = 0; i < text.length(); ++i) {
        if (text[i] >= u'0' && text[i] <= u'9') text.replace(i, 1, static_cast<UChar>(text[i] - u'0' + 0xFF10));
      }
      break;
    }
    case 6: text.findAndReplace(u"-", icu::UnicodeString(static_cast<UChar>(number ? 0x2212 : 0x2010))); break;
    case 7: text.append(u'\t'); break;
    default: break;
  }
}

const char* const rubbish[] = {"n/a",        "?",          "unknown",  "-",     "31/02/2021", "30.02.2021",
                               "00/00/0000", "2021-13-01", "12",       "1/2",   "32.01.2021", "2021-02-30",
                               "99/99/99",   "1234567",    "tomorrow", "12:30", "2021-1"};
const char* const no_numbers[] = {"n/a",  "--",   "1.2.3",      "1,2,3",     "12a", "e5",
                                  "1..2", "1,,2", "2021-03-04", "1.23.4567", "+-5"};

}  // namespace

const std::vector<ColumnSource>& column_sources() {
  static const std::vector<ColumnSource> sources = {
      {"en_US",
       {"M/d/yy", "MM/dd/yyyy", "MMM d, yyyy", "MMMM d, yyyy", "EEE, MMM d, yyyy", "d-MMM-yy", "yyyy-MM-dd"},
       "dd/MM/yyyy",
       u'0',
       ".",
       ","},
      {"en_GB",
       {"dd/MM/yyyy", "d/M/yy", "d MMM yyyy", "d MMMM yyyy", "EEEE, d MMMM yyyy", "yyyy-MM-dd"},
       "MM/dd/yyyy",
       u'0',
       ".",
       ","},
      {"de_DE",
       {"dd.MM.yyyy", "d.M.yy", "d. MMMM yyyy", "d. MMM yyyy", "EEE, d. MMM yyyy", "yyyy-MM-dd"},
       "MM.dd.yyyy",
       u'0',
       ",",
       "."},
      {"fr_FR",
       {"dd/MM/yyyy", "dd/MM/yy", "d MMM yyyy", "d MMMM yyyy", "EEEE d MMMM yyyy", "dd-MM-yyyy"},
       "MM/dd/yyyy",
       u'0',
       ",",
       "\u202F"},
      {"es_ES",
       {"d/M/yy", "dd-MM-yyyy", "d MMM yyyy", "d 'de' MMMM 'de' yyyy", "EEEE, d 'de' MMMM 'de' yyyy", "yyyy/MM/dd"},
       "MM-dd-yyyy",
       u'0',
       ",",
       "."},
      {"pt_BR",
       {"dd/MM/yyyy", "dd/MM/yy", "d 'de' MMM 'de' yyyy", "d 'de' MMMM 'de' yyyy", "yyyy-MM-dd"},
       "MM/dd/yyyy",
       u'0',
       ",",
       "."},
      {"pl_PL",
       {"dd.MM.yyyy", "d.MM.yyyy", "d MMM yyyy", "d MMMM yyyy", "EEEE, d MMMM yyyy", "yyyy-MM-dd"},
       "MM.dd.yyyy",
       u'0',
       ",",
       "\u00A0"},
      {"ru_RU",
       {"dd.MM.yyyy", "dd.MM.yy", "d MMM yyyy 'г'.", "d MMMM yyyy 'г'.", "d MMMM yyyy", "yyyy-MM-dd"},
       "MM.dd.yyyy",
       u'0',
       ",",
       "\u00A0"},
      {"ja_JP", {"yyyy/MM/dd", "yy/MM/dd", "yyyy年M月d日", "yyyy-MM-dd", "yyyy.MM.dd"}, nullptr, u'0', ".", ","},
      {"ar_EG",
       {"d\u200F/M\u200F/yyyy", "dd/MM/yy", "d MMMM yyyy", "EEEE، d MMMM yyyy", "yyyy-MM-dd"},
       "MM/dd/yyyy",
       u'\u0660',
       "\u066B",
       "\u066C"}};
  return sources;
}

std::vector<Cell> date_column(const ColumnSource& source, size_t rows, uint32_t seed) {
  Random random(seed);
  std::vector<Writer> writers;
  for (const char* pattern : source.dates) writers.emplace_back(source.locale, pattern);
  std::unique_ptr<Writer> other;
  if (source.other_order != nullptr) other = std::make_unique<Writer>(source.locale, source.other_order);
  // Every other column has recent days only: two-digit years that could be days as well.
  const bool recent = seed % 2 == 1 && other != nullptr;
  const Days first = Days(std::chrono::year(recent ? 2001 : 1960) / 1 / 1);
  const size_t days = recent ? 8765 : 36524;
  std::vector<Cell> cells;
  cells.reserve(rows);
  while (cells.size() < rows) {
    const size_t luck = below(random, 1000);
    if (luck < 10) {
      cells.push_back({below(random, 2) == 0 ? "" : " \u00A0", std::nullopt});
      continue;
    }
    if (luck < 60) {
      cells.push_back({rubbish[below(random, std::size(rubbish))], std::nullopt});
      continue;
    }
    const Days day = first + std::chrono::days(below(random, days));
    const std::chrono::year_month_day fields(day);
    const bool shows = other != nullptr && static_cast<unsigned>(fields.day()) > 12;
    if (luck < 65 && shows) {
      cells.push_back({utf8(other->write(day)), std::nullopt, true});
      continue;
    }
    icu::UnicodeString text = writers[below(random, writers.size())].write(day);
    const bool hard = below(random, 100) == 0;
    if (hard) text = make_hard(text, random);
    else if (below(random, 4) == 0) soil(text, random, false);
    const std::string iso = fmt::format("{:04}-{:02}-{:02}", static_cast<int>(fields.year()),
                                        static_cast<unsigned>(fields.month()), static_cast<unsigned>(fields.day()));
    cells.push_back({utf8(text), iso, false, hard});
  }
  return cells;
}

std::vector<Cell> number_column(const ColumnSource& source, size_t rows, uint32_t seed) {
  Random random(seed);
  std::vector<Cell> cells;
  cells.reserve(rows);
  const bool exchangeable =
      std::string(source.decimal_point).size() == 1 && std::string(source.group_separator).size() == 1;
  while (cells.size() < rows) {
    const size_t luck = below(random, 1000);
    if (luck < 10) {
      cells.push_back({"", std::nullopt});
      continue;
    }
    if (luck < 60) {
      cells.push_back({no_numbers[below(random, std::size(no_numbers))], std::nullopt});
      continue;
    }
    const bool negative = below(random, 5) == 0;
    std::string whole = std::to_string(random() % 10), fraction;
    if (whole != "0") {
      for (size_t more = below(random, 9); more > 0; --more) whole += static_cast<char>('0' + random() % 10);
    }
    for (size_t digits = below(random, 3) == 0 ? 0 : 1 + below(random, 4); digits > 0; --digits) {
      fraction += static_cast<char>('0' + random() % 10);
    }
    const bool grouped = below(random, 2) == 0 && whole.size() > 3;
    const bool exchanged = luck < 65 && exchangeable && grouped && !fraction.empty();
    std::string text = negative ? "-" : "";
    for (size_t i = 0; i < whole.size(); ++i) {
      if (grouped && i > 0 && (whole.size() - i) % 3 == 0)
        text += exchanged ? source.decimal_point : source.group_separator;
      text += whole[i];
    }
    const std::string plain = (negative ? "-" : "") + whole + (fraction.empty() ? "" : "." + fraction);
    if (!fraction.empty()) text += (exchanged ? source.group_separator : source.decimal_point) + fraction;
    if (exchanged) {
      cells.push_back({text, std::nullopt, true});
      continue;
    }
    icu::UnicodeString units = icu::UnicodeString::fromUTF8(text);
    for (int32_t i = 0; i < units.length(); ++i) {
      if (units[i] >= u'0' && units[i] <= u'9') {
        units.replace(i, 1, static_cast<UChar>(units[i] - u'0' + source.zero));
      }
    }
    const bool hard = below(random, 100) == 0;
    if (hard) units = make_hard(units, random);
    else if (below(random, 4) == 0) soil(units, random, true);
    cells.push_back({utf8(units), plain, false, hard});
  }
  return cells;
}

}  // namespace vxtest
