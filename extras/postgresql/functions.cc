// The functions that SQL calls. An error of the server is a long jump, so nothing in here has a destructor; whatever
// has one is behind session.h.
extern "C" {
#include <postgres.h>

#include <catalog/namespace.h>
#include <fmgr.h>
#include <mb/pg_wchar.h>
#include <storage/ipc.h>
#include <utils/builtins.h>
#include <utils/date.h>
#include <utils/datetime.h>

PG_MODULE_MAGIC;
}

#include <string_view>

#include "extras/postgresql/session.h"

namespace {

using vxpg::Problem;

/// Closes the host of this server process when that ends.
void at_exit(int, Datum) {
  const int64_t alive = vxpg::close();
  elog(DEBUG1, "vxnlsloc: the host is closed, %lld of its objects are alive", static_cast<long long>(alive));
}

void close_at_exit() {
  static bool registered = false;
  if (registered) return;
  on_proc_exit(at_exit, 0);
  registered = true;
}

/// An argument in UTF-8. A text that is not valid in the server's encoding is an error of the server's own.
std::string_view utf8_argument(FunctionCallInfo fcinfo, int number) {
  const text* const argument = PG_GETARG_TEXT_PP(number);
  const char* const bytes = VARDATA_ANY(argument);
  const int length = static_cast<int>(VARSIZE_ANY_EXHDR(argument));
  const char* const converted = pg_server_to_any(bytes, length, PG_UTF8);
  // The original comes back when there is nothing to convert; only a copy ends in NUL.
  return {converted, converted == bytes ? static_cast<size_t>(length) : strlen(converted)};
}

Datum text_in_server_encoding(std::string_view utf8) {
  const int length = static_cast<int>(utf8.size());
  const char* const converted = pg_any_to_server(utf8.data(), length, PG_UTF8);
  const int size = converted == utf8.data() ? length : static_cast<int>(strlen(converted));
  return PointerGetDatum(cstring_to_text_with_len(converted, size));
}

/// A part of a message. What the server's encoding has no character for becomes "?": an error that cannot be told must
/// not turn into another one.
char* message_part(std::string_view utf8) {
  const int encoding = GetDatabaseEncoding();
  if (encoding == PG_UTF8 || encoding == PG_SQL_ASCII) return pnstrdup(utf8.data(), utf8.size());
  const Oid conversion = FindDefaultConversionProc(PG_UTF8, encoding);
  const size_t room = utf8.size() * MAX_CONVERSION_GROWTH + 1;
  auto* const result = static_cast<char*>(palloc(room));
  size_t written = 0;
  while (!utf8.empty()) {
    int taken = 0;
    if (OidIsValid(conversion)) {
      auto* const from = reinterpret_cast<unsigned char*>(const_cast<char*>(utf8.data()));
      taken = pg_do_encoding_conversion_buf(conversion, PG_UTF8, encoding, from, static_cast<int>(utf8.size()),
                                            reinterpret_cast<unsigned char*>(result + written),
                                            static_cast<int>(room - written), true);
      written += strlen(result + written);
    }
    utf8.remove_prefix(static_cast<size_t>(taken));
    if (utf8.empty()) break;
    result[written++] = '?';
    utf8.remove_prefix(1);
    while (!utf8.empty() && (static_cast<unsigned char>(utf8.front()) & 0xC0) == 0x80) utf8.remove_prefix(1);
  }
  result[written] = '\0';
  return result;
}

struct State {
  Problem problem;
  int for_date, for_number;  // SQLSTATEs
};
const State states[] = {{Problem::not_understood, ERRCODE_INVALID_DATETIME_FORMAT, ERRCODE_INVALID_TEXT_REPRESENTATION},
                        {Problem::too_long, ERRCODE_PROGRAM_LIMIT_EXCEEDED, ERRCODE_PROGRAM_LIMIT_EXCEEDED},
                        {Problem::no_such_day, ERRCODE_DATETIME_FIELD_OVERFLOW, ERRCODE_DATETIME_FIELD_OVERFLOW},
                        {Problem::out_of_range, ERRCODE_DATETIME_FIELD_OVERFLOW, ERRCODE_NUMERIC_VALUE_OUT_OF_RANGE},
                        {Problem::locale, ERRCODE_INVALID_PARAMETER_VALUE, ERRCODE_INVALID_PARAMETER_VALUE},
                        {Problem::form, ERRCODE_INVALID_PARAMETER_VALUE, ERRCODE_INVALID_PARAMETER_VALUE},
                        {Problem::memory, ERRCODE_OUT_OF_MEMORY, ERRCODE_OUT_OF_MEMORY},
                        {Problem::host, ERRCODE_SYSTEM_ERROR, ERRCODE_SYSTEM_ERROR}};

enum class Kind { date, number };

int state_of(Problem problem, Kind kind) {
  for (const State& state : states) {
    if (state.problem == problem) return kind == Kind::date ? state.for_date : state.for_number;
  }
  return ERRCODE_INTERNAL_ERROR;
}

/// The error of the server for a problem. `doing` is "read date"; `value` in quotes where messages show it.
[[noreturn]] void report(Problem problem, Kind kind, const char* doing, std::string_view value,
                         std::string_view locale) {
  // What is handed out as text is good until the next call, so it is copied one by one.
  const char* const detail = message_part(vxpg::problem_text());
  const char* const shown_value = message_part(value);
  const char* const shown_locale = message_part(vxpg::quoted(locale));
  ereport(ERROR, (errcode(state_of(problem, kind)),
                  errmsg("cannot %s %s in locale %s", doing, shown_value, shown_locale), errdetail("%s.", detail)));
  pg_unreachable();
}

/// Says that another locale stands in for the one that was asked for.
void tell_remark() {
  const std::string_view remark = vxpg::take_remark();
  if (!remark.empty()) {
    const char* const text = message_part(remark);
    ereport(WARNING, (errmsg("%s", text)));
  }
}

std::string_view server_text(const char* text) { return {text, strlen(text)}; }

Datum format_number(FunctionCallInfo fcinfo, int32_t decimals) {
  const double number = PG_GETARG_FLOAT8(0);
  const std::string_view locale = utf8_argument(fcinfo, 1);
  close_at_exit();
  std::string_view text;
  const Problem problem = vxpg::format_number(number, locale, decimals, text);
  if (problem != Problem::none) {
    const char* const value = DatumGetCString(DirectFunctionCall1(float8out, PG_GETARG_DATUM(0)));
    report(problem, Kind::number, "write number", server_text(value), locale);
  }
  const Datum result = text_in_server_encoding(text);
  tell_remark();
  return result;
}

}  // namespace

extern "C" {

PG_FUNCTION_INFO_V1(vx_parse_date);
PG_FUNCTION_INFO_V1(vx_format_date);
PG_FUNCTION_INFO_V1(vx_parse_number);
PG_FUNCTION_INFO_V1(vx_format_number);
PG_FUNCTION_INFO_V1(vx_versions);

Datum vx_parse_date(PG_FUNCTION_ARGS) {
  const std::string_view value = utf8_argument(fcinfo, 0);
  const std::string_view locale = utf8_argument(fcinfo, 1);
  const std::string_view form = utf8_argument(fcinfo, 2);
  close_at_exit();
  vxpg::Date read{};
  const Problem problem = vxpg::parse_date(value, locale, form, read);
  if (problem != Problem::none) report(problem, Kind::date, "read date", vxpg::quoted(value), locale);
  tell_remark();
  PG_RETURN_DATEADT(date2j(read.year, read.month, read.day) - POSTGRES_EPOCH_JDATE);
}

Datum vx_format_date(PG_FUNCTION_ARGS) {
  const DateADT date = PG_GETARG_DATEADT(0);
  const std::string_view locale = utf8_argument(fcinfo, 1);
  const std::string_view form = utf8_argument(fcinfo, 2);
  close_at_exit();
  // An infinite date has no fields; it is as far out of range as the year 0.
  int year = 0, month = 0, day = 0;
  if (!DATE_NOT_FINITE(date)) j2date(date + POSTGRES_EPOCH_JDATE, &year, &month, &day);
  std::string_view text;
  const Problem problem = vxpg::format_date({year, month, day}, locale, form, text);
  if (problem != Problem::none) {
    const char* const value = DatumGetCString(DirectFunctionCall1(date_out, PG_GETARG_DATUM(0)));
    report(problem, Kind::date, "write date", server_text(value), locale);
  }
  const Datum result = text_in_server_encoding(text);
  tell_remark();
  return result;
}

Datum vx_parse_number(PG_FUNCTION_ARGS) {
  const std::string_view value = utf8_argument(fcinfo, 0);
  const std::string_view locale = utf8_argument(fcinfo, 1);
  close_at_exit();
  double number = 0;
  const Problem problem = vxpg::parse_number(value, locale, number);
  if (problem != Problem::none && problem != Problem::missing) {
    report(problem, Kind::number, "read number", vxpg::quoted(value), locale);
  }
  tell_remark();
  if (problem == Problem::missing) PG_RETURN_NULL();
  PG_RETURN_FLOAT8(number);
}

/// Of two arguments, the general form; of three, so many decimals.
Datum vx_format_number(PG_FUNCTION_ARGS) {
  if (PG_NARGS() < 3) return format_number(fcinfo, vxpg::general_form);
  const int32 decimals = PG_GETARG_INT32(2);
  // Every number below 0 is refused alike; the least one is not that of the general form.
  return format_number(fcinfo, decimals < 0 ? PG_INT32_MIN : decimals);
}

Datum vx_versions(PG_FUNCTION_ARGS) {
  (void)fcinfo;
  close_at_exit();
  std::string_view text;
  const Problem problem = vxpg::versions(text);
  if (problem != Problem::none) {
    const char* const detail = message_part(vxpg::problem_text());
    ereport(ERROR, (errcode(state_of(problem, Kind::number)), errmsg("there are no versions to tell"),
                    errdetail("%s.", detail)));
  }
  return text_in_server_encoding(text);
}

}  // extern "C"
