// vxnls locale show
#include <unicode/uchar.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <functional>

#include "cli/commands.h"
#include "cli/json.h"
#include "cli/locale_database.h"
#include "cli/options.h"
#include "cli/session.h"
#include "cli/text.h"
#include "vxnls/locale_blocks.h"

namespace vxcli {

namespace {

// What stands where in the record. The words in the first two columns are what people see, also as keys of JSON.

enum class Form {
  name,     // one counted name or more
  ascii,    // NUL-terminated
  unit,     // one VXChar, 0: none
  integer,  // int32_t
  short_integer,
  words,    // int32_t that stands for a word of a list, from 0
  week_day  // int32_t from 1, Sunday
};

struct Field {
  std::string_view key;
  Form form;
  size_t at;
  size_t count = 1;  // names; bytes of ascii
  std::span<const std::string_view> words = {};
};

struct Section {
  std::string_view title;
  std::string_view key;
  std::span<const Field> fields;
};

/// Lists that belong together, side by side: a row an index.
struct Grid {
  std::string_view title;
  std::string_view key;
  std::span<const std::string_view> rows;
  std::span<const Field> columns;
};

constexpr std::string_view no_yes[] = {"no", "yes"};
constexpr std::string_view week_days[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
constexpr std::string_view measurement_systems[] = {"metric", "US", "UK"};
constexpr std::string_view date_orders[] = {"day month year", "month day year", "year month day", "another"};
constexpr std::string_view months[] = {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12"};
constexpr std::string_view quarters[] = {"1", "2", "3", "4"};
constexpr std::string_view eras[] = {"before", "after"};

constexpr size_t identity = offsetof(VXLocaleData, block2);
constexpr size_t clock_word = offsetof(VXLocaleData, word11848);
constexpr size_t signs = offsetof(VXLocaleData, word15832);
constexpr size_t currency_names = offsetof(VXLocaleData, block3Names);
constexpr size_t currency_form = offsetof(VXLocaleData, block3Rest);
constexpr size_t customs = offsetof(VXLocaleData, block6);
constexpr size_t data_version = offsetof(VXLocaleData, block7);
constexpr size_t number_form = offsetof(VXLocaleData, block8);
constexpr size_t texts = offsetof(VXLocaleData, block9);

constexpr Field locale_fields[] = {
    {"localeName", Form::name, offsetof(VXLocaleData, localeName)},
    {"englishName", Form::name, offsetof(VXLocaleData, block1)},
    {"ownName", Form::name, texts + offsetof(VXLocaleTexts, ownName)},
    {"language", Form::ascii, identity + offsetof(VXLocaleIdentity, language), 12},
    {"language3", Form::ascii, identity + offsetof(VXLocaleIdentity, language3), 4},
    {"englishLanguage", Form::name, texts + offsetof(VXLocaleTexts, englishLanguage)},
    {"ownLanguage", Form::name, texts + offsetof(VXLocaleTexts, ownLanguage)},
    {"script", Form::ascii, identity + offsetof(VXLocaleIdentity, script), 8},
    {"englishScript", Form::name, texts + offsetof(VXLocaleTexts, englishScript)},
    {"ownScript", Form::name, texts + offsetof(VXLocaleTexts, ownScript)},
    {"region", Form::ascii, identity + offsetof(VXLocaleIdentity, region), 8},
    {"region3", Form::ascii, identity + offsetof(VXLocaleIdentity, region3), 4},
    {"englishRegion", Form::name, texts + offsetof(VXLocaleTexts, englishRegion)},
    {"ownRegion", Form::name, texts + offsetof(VXLocaleTexts, ownRegion)},
    {"variant", Form::ascii, identity + offsetof(VXLocaleIdentity, variant), 36},
    {"languageTag", Form::ascii, identity + offsetof(VXLocaleIdentity, languageTag), 64},
    {"canonical", Form::ascii, identity + offsetof(VXLocaleIdentity, canonical), 48},
    {"rightToLeft", Form::words, identity + offsetof(VXLocaleIdentity, rightToLeft), 1, no_yes}};

constexpr Field pattern_fields[] = {{"datePattern", Form::name, offsetof(VXLocaleData, datePattern)},
                                    {"datePattern1", Form::name, offsetof(VXLocaleData, datePattern1)},
                                    {"datePattern2", Form::name, offsetof(VXLocaleData, datePattern2)},
                                    {"datetimePattern", Form::name, offsetof(VXLocaleData, datetimePattern)},
                                    {"timePattern", Form::name, offsetof(VXLocaleData, timePattern)},
                                    {"timePattern1", Form::name, offsetof(VXLocaleData, timePattern1)}};

constexpr Field time_fields[] = {
    {"amMarker", Form::name, offsetof(VXLocaleData, amMarker)},
    {"pmMarker", Form::name, offsetof(VXLocaleData, pmMarker)},
    {"hourCycle", Form::integer, clock_word + offsetof(VXLocaleClock, hourCycle)},
    {"dayPeriodFirst", Form::words, clock_word + offsetof(VXLocaleClock, dayPeriodFirst), 1, no_yes}};

constexpr Field period_fields[] = {{"quarterPattern1", Form::name, offsetof(VXLocaleData, quarterPattern1)},
                                   {"quarterPattern2", Form::name, offsetof(VXLocaleData, quarterPattern2)},
                                   {"monthYearPattern1", Form::name, offsetof(VXLocaleData, monthYearPattern1)},
                                   {"monthYearPattern2", Form::name, offsetof(VXLocaleData, monthYearPattern2)},
                                   {"weekPattern1", Form::name, offsetof(VXLocaleData, weekPattern1)},
                                   {"weekPattern2", Form::name, offsetof(VXLocaleData, weekPattern2)}};

constexpr Field day_columns[] = {
    {"dayNames", Form::name, offsetof(VXLocaleData, dayNames), 7},
    {"altDayNames", Form::name, offsetof(VXLocaleData, altDayNames), 7},
    {"standaloneDays", Form::name, texts + offsetof(VXLocaleTexts, standaloneDays), 7},
    {"standaloneAltDays", Form::name, texts + offsetof(VXLocaleTexts, standaloneAltDays), 7},
    {"narrowDays", Form::name, texts + offsetof(VXLocaleTexts, narrowDays), 7}};

constexpr Field month_columns[] = {
    {"monthNames", Form::name, offsetof(VXLocaleData, monthNames), 12},
    {"altMonthNames", Form::name, offsetof(VXLocaleData, altMonthNames), 12},
    {"standaloneMonths", Form::name, texts + offsetof(VXLocaleTexts, standaloneMonths), 12},
    {"standaloneAltMonths", Form::name, texts + offsetof(VXLocaleTexts, standaloneAltMonths), 12},
    {"narrowMonths", Form::name, texts + offsetof(VXLocaleTexts, narrowMonths), 12}};

constexpr Field quarter_columns[] = {
    {"quarterNames", Form::name, offsetof(VXLocaleData, quarterNames), 4},
    {"fullQuarterNames", Form::name, offsetof(VXLocaleData, names14336), 4},
    {"standaloneQuarters", Form::name, texts + offsetof(VXLocaleTexts, standaloneQuarters), 4}};

constexpr Field era_columns[] = {{"eras", Form::name, texts + offsetof(VXLocaleTexts, eras), 2},
                                 {"altEras", Form::name, texts + offsetof(VXLocaleTexts, altEras), 2}};

constexpr Field number_fields[] = {
    {"decimalPoint", Form::unit, offsetof(VXLocaleData, decimalPoint)},
    {"groupSeparator", Form::unit, offsetof(VXLocaleData, groupSeparator)},
    {"groupingPattern", Form::name, offsetof(VXLocaleData, groupingPattern)},
    {"minimumGroupingDigits", Form::integer, number_form + offsetof(VXLocaleNumberForm, minimumGroupingDigits)},
    {"plusSign", Form::unit, number_form + offsetof(VXLocaleNumberForm, plusSign)},
    {"minusSign", Form::unit, signs + offsetof(VXLocaleSigns, minusSign)},
    {"percentSign", Form::unit, signs + offsetof(VXLocaleSigns, percentSign)},
    {"perMilleSign", Form::unit, number_form + offsetof(VXLocaleNumberForm, perMilleSign)},
    {"infinity", Form::unit, number_form + offsetof(VXLocaleNumberForm, infinity)},
    {"notANumber", Form::name, number_form + offsetof(VXLocaleNumberForm, notANumber)},
    {"exponent", Form::name, number_form + offsetof(VXLocaleNumberForm, exponent)},
    {"digits", Form::name, offsetof(VXLocaleData, block4Name)},
    {"decimalPattern", Form::name, number_form + offsetof(VXLocaleNumberForm, decimalPattern)},
    {"percentPattern", Form::name, number_form + offsetof(VXLocaleNumberForm, percentPattern)}};

constexpr Field currency_fields[] = {
    {"currencySymbol", Form::name, offsetof(VXLocaleData, currencySymbol)},
    {"isoCode", Form::name, currency_names + offsetof(VXLocaleCurrencyNames, isoCode)},
    {"name", Form::name, currency_names + offsetof(VXLocaleCurrencyNames, name)},
    {"narrowSymbol", Form::name, currency_names + offsetof(VXLocaleCurrencyNames, narrowSymbol)},
    {"pattern", Form::name, currency_form + offsetof(VXLocaleCurrencyForm, pattern)},
    {"decimalPoint", Form::unit, currency_form + offsetof(VXLocaleCurrencyForm, decimalPoint)},
    {"groupSeparator", Form::unit, currency_form + offsetof(VXLocaleCurrencyForm, groupSeparator)},
    {"fractionDigits", Form::integer, currency_form + offsetof(VXLocaleCurrencyForm, fractionDigits)},
    {"cashFractionDigits", Form::integer, currency_form + offsetof(VXLocaleCurrencyForm, cashFractionDigits)}};

constexpr Field custom_fields[] = {
    {"dateOrder", Form::words, customs + offsetof(VXLocaleCustoms, dateOrder), 1, date_orders},
    {"firstWeekDay", Form::week_day, customs + offsetof(VXLocaleCustoms, firstWeekDay), 1, week_days},
    {"minimalDays", Form::integer, customs + offsetof(VXLocaleCustoms, minimalDays)},
    {"weekendFirst", Form::week_day, customs + offsetof(VXLocaleCustoms, weekendFirst), 1, week_days},
    {"weekendLast", Form::week_day, customs + offsetof(VXLocaleCustoms, weekendLast), 1, week_days},
    {"measurementSystem", Form::words, customs + offsetof(VXLocaleCustoms, measurementSystem), 1, measurement_systems},
    {"paperWidth", Form::integer, customs + offsetof(VXLocaleCustoms, paperWidth)},
    {"paperHeight", Form::integer, customs + offsetof(VXLocaleCustoms, paperHeight)},
    {"calendar", Form::ascii, customs + offsetof(VXLocaleCustoms, calendar), 32},
    {"numbering", Form::ascii, customs + offsetof(VXLocaleCustoms, numbering), 16}};

constexpr Field text_fields[] = {
    {"quotation", Form::name, texts + offsetof(VXLocaleTexts, quotation), 4},
    {"cldrDatePatterns", Form::name, texts + offsetof(VXLocaleTexts, cldrDatePatterns), 4},
    {"cldrTimePatterns", Form::name, texts + offsetof(VXLocaleTexts, cldrTimePatterns), 4}};

constexpr Field version_fields[] = {
    {"cldr", Form::short_integer, data_version + offsetof(VXLocaleDataVersion, cldr)},
    {"layout", Form::short_integer, data_version + offsetof(VXLocaleDataVersion, layout)}};

constexpr Section locale_section{"Locale", "locale", locale_fields};
constexpr Section pattern_section{"Patterns, and what they write on 2026-11-21 at 14:05:09", "patterns",
                                  pattern_fields};
constexpr Section sections[] = {
    {"Times", "times", time_fields},       {"Patterns for reading periods", "periods", period_fields},
    {"Numbers", "numbers", number_fields}, {"Currency", "currency", currency_fields},
    {"Customs", "customs", custom_fields}, {"Texts", "texts", text_fields},
    {"Data", "data", version_fields}};
constexpr Grid grids[] = {{"Week days", "days", week_days, day_columns},
                          {"Months", "months", months, month_columns},
                          {"Quarters", "quarters", quarters, quarter_columns},
                          {"Eras", "eras", eras, era_columns}};

/// A locale's record, read by the tables above.
class Record {
 public:
  explicit Record(const VXLocaleData& data) : bytes_(reinterpret_cast<const std::byte*>(&data)) {}

  std::string text(const Field& field, size_t index = 0) const {
    switch (field.form) {
      case Form::name: return utf8(at<NLSName>(field.at + index * sizeof(NLSName)));
      case Form::ascii: {
        const auto* const begin = reinterpret_cast<const char*>(bytes_ + field.at);
        return {begin, strnlen(begin, field.count)};
      }
      case Form::unit: {
        const auto unit = at<VXChar>(field.at);
        return unit == 0 ? "" : utf8(unit);
      }
      case Form::words:
      case Form::week_day: {
        const auto index_of_word = static_cast<size_t>(number(field) - (field.form == Form::week_day ? 1 : 0));
        return index_of_word < field.words.size() ? std::string(field.words[index_of_word])
                                                  : std::to_string(number(field));
      }
      default: return std::to_string(number(field));
    }
  }

  /// As a page shows it.
  std::string shown(const Field& field) const {
    if (field.form == Form::unit) return shown_unit(at<VXChar>(field.at));
    if (field.form != Form::name || field.count == 1) return text(field);
    std::string list;
    for (size_t i = 0; i < field.count; ++i) list += (i > 0 ? " | " : "") + text(field, i);
    return list;
  }

  Json json(const Field& field) const {
    if (field.form == Form::integer || field.form == Form::short_integer) return number(field);
    if (field.form == Form::words && field.words.data() == no_yes) return number(field) != 0;
    if (field.form != Form::name || field.count == 1) return text(field);
    Json list = Json::array();
    for (size_t i = 0; i < field.count; ++i) list.push_back(text(field, i));
    return list;
  }

 private:
  template <class T>
  T at(size_t offset) const {
    T value;
    std::memcpy(&value, bytes_ + offset, sizeof value);
    return value;
  }

  int32_t number(const Field& field) const {
    return field.form == Form::short_integer ? at<uint16_t>(field.at) : at<int32_t>(field.at);
  }

  /// Separators are often invisible, so they come with their name.
  static std::string shown_unit(VXChar unit) {
    if (unit == 0) return "";
    std::array<char, 128> name{};
    UErrorCode error = U_ZERO_ERROR;
    u_charName(static_cast<UChar32>(unit), U_EXTENDED_CHAR_NAME, name.data(), static_cast<int32_t>(name.size()),
               &error);
    return fmt::format("{}  U+{:04X} {}", utf8(unit), unit, U_SUCCESS(error) ? name.data() : "");
  }

  const std::byte* bytes_;
};

/// What a pattern writes on 2026-11-21 at 14:05:09.
std::string example(VXLocale* locale, std::string_view entry) {
  constexpr double moment = 24431 * 86400.0 + 14 * 3600 + 5 * 60 + 9;
  std::array<uint8_t, 2048> buffer;
  int64_t length = 0;
  VXStatus status = 0;
  if (entry.starts_with("datetime")) {
    status = locale->ops.NLSDatetimeFormatU(locale, 0, buffer.data(), buffer.size(), &length, moment);
  } else if (entry.starts_with("date")) {
    const int32_t style = entry.ends_with('1') ? 1 : entry.ends_with('2') ? 2 : 0;
    status = locale->ops.NLSDateFormatU(locale, 11, 21, 2026, style, buffer.data(), buffer.size(), &length);
  } else {
    const int32_t flag = entry.ends_with('1') ? 1 : 0;
    status = locale->ops.NLSTimeFormatU(locale, flag, buffer.data(), buffer.size(), &length, moment);
  }
  if (status != 0) return fmt::format("(status 0x{:08x})", status);
  return {reinterpret_cast<const char*>(buffer.data()), static_cast<size_t>(length)};
}

void put_section(Output& out, const Record& record, const Section& section) {
  Table table("  ");
  for (const Field& field : section.fields) table.row({std::string(field.key), record.shown(field)});
  out.put(fmt::format("\n{}\n{}", section.title, table.text()));
}

void put_grid(Output& out, const Record& record, const Grid& grid) {
  Table table("  ");
  std::vector<std::string> cells{""};
  for (const Field& column : grid.columns) cells.emplace_back(column.key);
  table.row(cells);
  for (size_t i = 0; i < grid.rows.size(); ++i) {
    cells = {std::string(grid.rows[i])};
    for (const Field& column : grid.columns) cells.push_back(record.text(column, i));
    table.row(cells);
  }
  out.put(fmt::format("\n{}\n{}", grid.title, table.text()));
}

void put_page(Output& out, VXLocale* locale, const std::vector<LocaleDatabase::Fallback>& fallbacks) {
  const Record record(*locale->localeData);
  out.line(fmt::format("{}  {}", record.text(locale_fields[0]), record.text(locale_fields[1])));
  put_section(out, record, locale_section);
  Table patterns("  ");
  for (const Field& field : pattern_fields) {
    patterns.row({std::string(field.key), record.text(field), example(locale, field.key)});
  }
  out.put(fmt::format("\n{}\n{}", pattern_section.title, patterns.text()));
  for (const Grid& grid : grids) put_grid(out, record, grid);
  for (const Section& section : sections) put_section(out, record, section);
  Table table("  ");
  for (const auto& one : fallbacks) table.row({one.entry, one.used, one.reason});
  out.put("\nEntries that do not stand as CLDR has them\n" + (fallbacks.empty() ? "  none\n" : table.text()));
}

Json page_as_json(VXLocale* locale, const std::vector<LocaleDatabase::Fallback>& fallbacks) {
  const Record record(*locale->localeData);
  Json page = Json::object();
  const auto put = [&](const Section& section) {
    for (const Field& field : section.fields)
      page[std::string(section.key)][std::string(field.key)] = record.json(field);
  };
  put(locale_section);
  put(pattern_section);
  for (const Field& field : pattern_fields) page["examples"][std::string(field.key)] = example(locale, field.key);
  for (const Grid& grid : grids) {
    for (const Field& column : grid.columns) page[std::string(grid.key)][std::string(column.key)] = record.json(column);
  }
  for (const Section& section : sections) put(section);
  page["fallbacks"] = Json::array();
  for (const auto& one : fallbacks) {
    page["fallbacks"].push_back({{"entry", one.entry}, {"used", one.used}, {"reason", one.reason}});
  }
  return page;
}

ExitCode run(Invocation& invocation) {
  Session& session = invocation.session;
  const auto& values = invocation.arguments.values();
  const LocaleDatabase database(session.host());
  const std::string name = values.empty() ? session.locale_name() : session.resolve_locale(values[0], "");
  VXLocale* const locale = session.locale_called(name);
  const auto fallbacks = database.fallbacks(name);
  if (invocation.arguments.has(options::json)) {
    invocation.out.line(json_page(page_as_json(locale, fallbacks)));
  } else {
    put_page(invocation.out, locale, fallbacks);
  }
  return ExitCode::done;
}

constexpr Argument arguments[] = {
    {.name = "LOCALE", .help = "which locale; else that of --locale", .completes = Completes::locales}};
constexpr const Option* command_options[] = {&options::json};
constexpr Example examples[] = {{"vxnls locale show pl_PL | grep timePattern",
                                 "  datetimePattern  %d.%m.%Y %H:%M:%S  21.11.2026 14:05:09\n"
                                 "  timePattern      %H:%M:%S           14:05:09\n"
                                 "  timePattern1     %H:%M              14:05"},
                                {"vxnls locale show sr-Latn-RS | grep -A 8 'Week days'",
                                 "Week days\n"
                                 "             dayNames    altDayNames  standaloneDays  standaloneAltDays  narrowDays\n"
                                 "  Sunday     nedelja     ned          nedelja         ned                n\n"
                                 "  Monday     ponedeljak  pon          ponedeljak      pon                p\n"
                                 "  Tuesday    utorak      uto          utorak          uto                u\n"
                                 "  Wednesday  sreda       sre          sreda           sre                s\n"
                                 "  Thursday   četvrtak    čet          četvrtak        čet                č\n"
                                 "  Friday     petak       pet          petak           pet                p\n"
                                 "  Saturday   subota      sub          subota          sub                s"},
                                {"vxnls locale show hi_IN --json | grep group",
                                 "    \"groupSeparator\": \",\",\n"
                                 "    \"groupingPattern\": \"3;2\",\n"
                                 "    \"groupSeparator\": \",\","}};

}  // namespace

const Command locale_show{
    .name = "show",
    .summary = "Shows the whole record of a locale",
    .description =
        "Every entry by its name in the record, with what each pattern writes, and the entries that could not be taken "
        "over as CLDR has them. Where a list is shown in one line, \"|\" stands between its members.",
    .arguments = arguments,
    .options = command_options,
    .examples = examples,
    .run = run,
    .category = LocaleCategory::both};

}  // namespace vxcli
