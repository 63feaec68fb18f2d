// Dates and numbers of every locale in SQLite, an existing C program that loads extensions:
//
//   .load ./vxnls_sqlite
//   SELECT vx_parse_date('21. November 2026', 'de_DE');            -- 2026-11-21
//   SELECT vx_format_date('2026-11-21', 'de_DE');                  -- 21.11.2026
//   SELECT vx_parse_number('1.234,5', 'de_DE');                    -- 1234.5
//   SELECT vx_format_number(1234.5, 'de_DE', 2);                   -- 1.234,50
//
// NULL gives NULL. A text that cannot be read is an error, and says why.
#include <sqlite3ext.h>

#include <cstdio>
#include <string>

#include "vxnls/vxnls.hpp"

SQLITE_EXTENSION_INIT1

namespace {

using namespace std::chrono;
using vxnls::form;

const vxnls::host& host() {
  static const vxnls::host opened = vxnls::host::open().value();
  return opened;
}

std::string_view text_of(sqlite3_value* value) {
  const auto* const text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return {text == nullptr ? "" : text, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}
vxnls::locale locale_of(sqlite3_value* value) { return host().locale(text_of(value), "UTC").value(); }

void give(sqlite3_context* context, std::string_view text) {
  sqlite3_result_text(context, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

void parse_date(sqlite3_context* context, sqlite3_value** values) {
  const auto day = locale_of(values[1]).parse<year_month_day>(text_of(values[0]), form::any).value();
  char iso[16];
  static_cast<void>(std::snprintf(iso, sizeof iso, "%04d-%02u-%02u", static_cast<int>(day.year()),
                                  static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day())));
  give(context, iso);
}
void format_date(sqlite3_context* context, sqlite3_value** values) {
  static const auto iso = host().locale("en_US", "UTC", {.date = "%Y-%m-%d"}).value();
  const auto day = iso.parse<year_month_day>(text_of(values[0])).value();
  give(context, locale_of(values[1]).format<vxnls::buffer<vxnls::text_room>>(day).value());
}
void parse_number(sqlite3_context* context, sqlite3_value** values) {
  sqlite3_result_double(context, locale_of(values[1]).parse<double>(text_of(values[0])).value());
}
void format_number(sqlite3_context* context, sqlite3_value** values) {
  const int decimals = sqlite3_value_int(values[2]);
  const double number = sqlite3_value_double(values[0]);
  give(context, locale_of(values[1]).format(number, {.decimals = decimals, .group = true}).value());
}

/// No exception leaves an extension: it becomes the error of the statement.
template <void (*function)(sqlite3_context*, sqlite3_value**)>
void call(sqlite3_context* context, int count, sqlite3_value** values) {
  const auto is_null = [](sqlite3_value* value) { return sqlite3_value_type(value) == SQLITE_NULL; };
  if (std::any_of(values, values + count, is_null)) return sqlite3_result_null(context);
  try {
    function(context, values);
  } catch (const std::exception& failure) {
    sqlite3_result_error(context, failure.what(), -1);
  }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int sqlite3_vxnlssqlite_init(sqlite3* database, char** message,
                                                                               const sqlite3_api_routines* routines) {
  SQLITE_EXTENSION_INIT2(routines)
  if (const auto opened = vxnls::host::open(); !opened) {
    *message = sqlite3_mprintf("%s", opened.why().what);
    return SQLITE_ERROR;
  }
  constexpr struct {
    const char* name;
    int arguments;
    void (*call)(sqlite3_context*, int, sqlite3_value**);
  } functions[] = {{"vx_parse_date", 2, &call<parse_date>},
                   {"vx_format_date", 2, &call<format_date>},
                   {"vx_parse_number", 2, &call<parse_number>},
                   {"vx_format_number", 3, &call<format_number>}};
  for (const auto& one : functions) {
    const int status = sqlite3_create_function(database, one.name, one.arguments,
                                               SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, nullptr, one.call,
                                               nullptr, nullptr);
    if (status != SQLITE_OK) return status;
  }
  return SQLITE_OK;
}
