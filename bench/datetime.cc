// Dates and datetimes, written and read. The locale's names are the C library's German ones; its patterns are set to
// the forms that all contenders write.
#include <fmt/chrono.h>
#include <fmt/compile.h>
#include <locale.h>
#include <time.h>

#include <array>
#include <cstring>
#include <iomanip>
#include <locale>
#include <memory>
#include <sstream>
#include <string>

#include "bench/short_texts.h"

using namespace vxbench;

namespace {

constexpr const char* iso = "%Y-%m-%d %H:%M:%S";
constexpr time_t seconds_from_1960_to_1970 = 315619200;

// A common date in each of the forms that the library recognises in day-first order, the locale's three before them.
constexpr const char* common_forms[] = {"%d.%m.%Y",   "%d %B %Y", "%d %b %Y", "%d/%m/%Y", "%d-%m-%Y",
                                        "%Y/%m/%d",   "%Y-%m-%d", "%Y.%m.%d", "%Y/%b/%d", "%Y-%b-%d",
                                        "%Y.%b.%d",   "%b %d %Y", "%b/%d/%Y", "%b.%d.%Y", "%b-%d-%Y",
                                        "%a,%b%d,%Y", "%m/%d/%Y", "%m-%d-%Y", "%m.%d.%Y", "%d. %b %Y"};

void set(NLSName& name, std::u32string_view text) {
  name.length = static_cast<int64_t>(text.size());
  std::copy(text.begin(), text.end(), name.text);
}

/// A locale of the host with a record of its own.
struct OwnLocale {
  explicit OwnLocale(const char* name) : locale(*vxbench::locale(name)), data(*locale.localeData) {
    locale.localeData = &data;
    set(data.datetimePattern, U"%Y-%m-%d %H:%M:%S");
    set(data.datePattern, U"%d.%m.%Y");
    set(data.datePattern1, U"%#d %B %Y");
    set(data.datePattern2, U"%#d %b %Y");
  }
  VXLocale locale;
  VXLocaleData data;
};

/// A moment in the shapes in which the contenders take it.
struct Moment {
  double seconds;
  time_t unix_time;
  tm fields;
  uint32_t month, day, year;
};

Moment moment_of(Random& random) {
  Moment moment{};
  const int64_t seconds = between(random, 0, int64_t{90} * 365 * 86400);  // to 2049
  moment.seconds = static_cast<double>(seconds);
  moment.unix_time = seconds - seconds_from_1960_to_1970;
  gmtime_r(&moment.unix_time, &moment.fields);
  moment.month = static_cast<uint32_t>(moment.fields.tm_mon + 1);
  moment.day = static_cast<uint32_t>(moment.fields.tm_mday);
  moment.year = static_cast<uint32_t>(moment.fields.tm_year + 1900);
  return moment;
}

struct Out {
  char bytes[64];
  VXChar units[64];
  uint8_t* utf8() { return reinterpret_cast<uint8_t*>(bytes); }
};

auto by_library(VXLocale* locale, const Texts& texts, uint32_t kind) {
  return [=](size_t i) {
    uint32_t month = 0, day = 0, year = 0;
    int64_t consumed = 0;
    const auto text = texts->utf8(i);
    NLSBufToDateU(locale, text.at, text.length(), kind, &month, &day, &year, &consumed);
    return day;
  };
}
auto by_library_utf32(VXLocale* locale, const Texts& texts, uint32_t kind) {
  return [=](size_t i) {
    uint32_t month = 0, day = 0, year = 0;
    int64_t consumed = 0;
    const auto text = texts->utf32(i);
    NLSBufToDate(locale, text.at, text.length(), kind, &month, &day, &year, &consumed);
    return day;
  };
}
auto by_strptime(const Texts& texts, const char* pattern, locale_t names) {
  return [=](size_t i) {
    tm fields;
    return strptime_l(texts->view(i).data(), pattern, &fields, names) != nullptr ? fields.tm_mday : 0;
  };
}

class Rows {
 public:
  Rows()
      : german_("de_DE"),
        english_("en_US"),
        german_names_(newlocale(LC_ALL_MASK, "de_DE.UTF-8", nullptr)),
        plain_names_(newlocale(LC_ALL_MASK, "C", nullptr)),
        moments_(std::make_shared<std::vector<Moment>>(values<Moment>("moments", moment_of))) {
    require(german_names_ != nullptr, "the C library has no locale de_DE.UTF-8: see script/bench");
  }

  void write_datetime() {
    const auto moments = moments_;
    const auto at = [moments](size_t i) -> const Moment& { return (*moments)[i]; };
    VXLocale* const locale = &german_.locale;
    const auto out = std::make_shared<Out>();
    const auto utf8 = [=](size_t i) {
      int64_t length = 0;
      NLSDatetimeFormatU(locale, 0, out->utf8(), 64, &length, at(i).seconds);
      return length;
    };
    const auto utf32 = [=](size_t i) {
      int64_t length = 0;
      NLSDatetimeFormat(locale, 0, out->units, 64, &length, at(i).seconds);
      return length;
    };
    const auto by_fmt = [=](size_t i) {
      return fmt::format_to(out->bytes, FMT_COMPILE("{:%Y-%m-%d %H:%M:%S}"), at(i).fields);
    };
    const locale_t names = plain_names_;
    const auto by_libc = [=](size_t i) {
      tm fields;
      gmtime_r(&at(i).unix_time, &fields);
      return strftime_l(out->bytes, 64, iso, &fields, names);
    };
    std::string wanted(out->bytes, static_cast<size_t>(by_fmt(7) - out->bytes));
    require(utf8(7) == 19 && wanted == std::string(out->bytes, 19), "contenders write different datetimes");
    Row("write-datetime", "write `2024-03-07 14:05:09` from seconds", {.reach = 0.65})
        .ours(utf8)
        .peer("fmt, pattern compiled in, broken-down time given", by_fmt);
    Row("write-datetime-from-count", "the same, the peer from a count of seconds too", {.reach = 0.25})
        .ours(utf8)
        .peer("glibc gmtime_r, strftime_l", by_libc);
    Row("write-datetime-utf32", "the same in UTF-32", {.reach = 0.65})
        .ours(utf32)
        .peer("fmt, pattern compiled in, broken-down time given", by_fmt);
  }

  void write_date() {
    const auto moments = moments_;
    const auto at = [moments](size_t i) -> const Moment& { return (*moments)[i]; };
    VXLocale* const locale = &german_.locale;
    const auto out = std::make_shared<Out>();
    const auto utf8 = [=](int32_t style) {
      return [=](size_t i) {
        int64_t length = 0;
        NLSDateFormatU(locale, at(i).month, at(i).day, at(i).year, style, out->utf8(), 64, &length);
        return length;
      };
    };
    const auto utf32 = [=](int32_t style) {
      return [=](size_t i) {
        int64_t length = 0;
        NLSDateFormat(locale, at(i).month, at(i).day, at(i).year, style, out->units, 64, &length);
        return length;
      };
    };
    const auto by_libc = [=](const char* pattern, locale_t names) {
      return [=](size_t i) { return strftime_l(out->bytes, 64, pattern, &at(i).fields, names); };
    };
    const auto by_fmt = [=](size_t i) { return fmt::format_to(out->bytes, FMT_COMPILE("{:%d.%m.%Y}"), at(i).fields); };
    for (size_t i = 0; i < 400; ++i) {
      const std::string wanted(out->bytes, by_libc("%-d %B %Y", german_names_)(i));
      require(wanted == std::string(out->bytes, static_cast<size_t>(utf8(1)(i))), "contenders write different dates");
    }
    Row("write-date", "write `07.03.2024`", {.reach = 0.9}).ours(utf8(0)).peer("fmt, pattern compiled in", by_fmt);
    Row("write-date-libc", "the same against the C library", {.reach = 0.45})
        .ours(utf8(0))
        .peer("glibc strftime_l", by_libc("%d.%m.%Y", plain_names_));
    Row("write-date-utf32", "the same in UTF-32", {.reach = 0.9})
        .ours(utf32(0))
        .peer("fmt, pattern compiled in", by_fmt);
    Row("write-date-german", "write `7 März 2024` in German", {.reach = 0.6})
        .ours(utf8(1))
        .peer("glibc strftime_l", by_libc("%-d %B %Y", german_names_));
    Row("write-date-german-utf32", "the same in UTF-32", {.reach = 0.6})
        .ours(utf32(1))
        .peer("glibc strftime_l", by_libc("%-d %B %Y", german_names_));
  }

  void read() {
    const auto iso_texts = texts(iso, plain_names_), plain = texts("%d.%m.%Y", plain_names_),
               german = texts("%-d %B %Y", german_names_);
    VXLocale* const locale = &german_.locale;
    const auto datetime = [=](size_t i) {
      double value = 0;
      int64_t consumed = 0;
      const auto text = iso_texts->utf8(i);
      NLSBufToDatetimeU(locale, text.at, text.length(), 0, &value, &consumed);
      return value;
    };
    const auto datetime_utf32 = [=](size_t i) {
      double value = 0;
      int64_t consumed = 0;
      const auto text = iso_texts->utf32(i);
      NLSBufToDatetime(locale, text.at, text.length(), 0, &value, &consumed);
      return value;
    };
    require(datetime(5) == (*moments_)[5].seconds, "a datetime is read wrongly");
    const auto c_datetime = by_strptime(iso_texts, iso, plain_names_);
    Row("read-datetime", "read `2024-03-07 14:05:09` strictly", {.reach = 0.7})
        .ours(datetime)
        .peer("glibc strptime_l, fields only", c_datetime);
    Row("read-datetime-utf32", "the same in UTF-32", {.reach = 0.7})
        .ours(datetime_utf32)
        .peer("glibc strptime_l, fields only", c_datetime);

    const auto c_date = by_strptime(plain, "%d.%m.%Y", plain_names_);
    Row("read-date", "read `07.03.2024` strictly", {.reach = 0.7})
        .ours(by_library(locale, plain, 0))
        .peer("glibc strptime_l, fields only", c_date);
    Row("read-date-utf32", "the same in UTF-32", {.reach = 0.7})
        .ours(by_library_utf32(locale, plain, 0))
        .peer("glibc strptime_l, fields only", c_date);

    const auto stream = std::make_shared<std::istringstream>();
    stream->imbue(std::locale("de_DE.UTF-8"));
    const auto by_stream = [=](size_t i) {
      tm fields{};
      stream->clear();
      stream->str(std::string(german->view(i)));
      *stream >> std::get_time(&fields, "%d %B %Y");
      return fields.tm_mday;
    };
    require(by_stream(3) == (*moments_)[3].fields.tm_mday, "std::get_time does not read German");
    Row("read-date-german", "read `7 März 2024` strictly", {.reach = 0.12})
        .ours(by_library(locale, german, 1))
        .peer("libstdc++ get_time", by_stream)
        .peer("glibc strptime_l, fields only", by_strptime(german, "%d %B %Y", german_names_));
    Row("read-date-german-utf32", "the same in UTF-32", {.reach = 0.12})
        .ours(by_library_utf32(locale, german, 1))
        .peer("libstdc++ get_time", by_stream);
  }

  void recognise() {
    ShortTexts forms;
    Random random = random_of("forms");
    for (const Moment& moment : *moments_) {
      char text[64];
      const auto form = static_cast<size_t>(between(random, 0, std::size(common_forms) - 2));  // the last is not ours
      forms.add({text, strftime_l(text, sizeof text, common_forms[form], &moment.fields, plain_names_)});
    }
    const Texts mixed = std::move(forms).finished();
    VXLocale* const locale = &english_.locale;
    const locale_t names = plain_names_;
    const auto in_turn = [=](size_t i) {
      for (const char* form : common_forms) {
        tm fields;
        const char* const end = strptime_l(mixed->view(i).data(), form, &fields, names);
        if (end != nullptr && *end == 0) return fields.tm_mday;
      }
      return 0;
    };
    constexpr uint32_t common = 4;
    for (size_t i = 0; i < value_count; ++i)
      require(by_library(locale, mixed, common)(i) != 0, "a form is not recognised");
    Row("recognise-date", "recognise a date among 20 forms", {.reach = 0.08})
        .ours(by_library(locale, mixed, common))
        .peer("glibc strptime_l, one form after the other", in_turn);
    Row("recognise-date-utf32", "the same in UTF-32", {.reach = 0.08})
        .ours(by_library_utf32(locale, mixed, common))
        .peer("glibc strptime_l, one form after the other", in_turn);
  }

 private:
  Texts texts(const char* pattern, locale_t names) const {
    ShortTexts all;
    for (const Moment& moment : *moments_) {
      char text[64];
      all.add({text, strftime_l(text, sizeof text, pattern, &moment.fields, names)});
    }
    return std::move(all).finished();
  }

  OwnLocale german_, english_;
  locale_t german_names_, plain_names_;
  std::shared_ptr<std::vector<Moment>> moments_;
};

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): without memory there is nothing to measure
int main(int argc, char** argv) {
  const auto rows = std::make_unique<Rows>();
  rows->write_datetime();
  rows->write_date();
  rows->read();
  rows->recognise();
  return run("datetime", argc, argv);
}
