// vxnls format number, percent, currency, integer
#include <array>
#include <charconv>
#include <cmath>

#include "cli/commands.h"
#include "cli/for_each_value.h"
#include "cli/json.h"
#include "cli/number.h"
#include "cli/options.h"
#include "cli/session.h"
#include "cli/text.h"

namespace vxcli {

namespace {

/// A flag of the command and the option bit that it stands for.
struct Bit {
  Option option;
  uint32_t bit;
};

constexpr Bit group{{.name = "group", .help = "separate groups of digits as the locale does"}, NLS_FORMAT_GROUP};
constexpr Bit plus{{.name = "plus", .help = "\"+\" before numbers that are not negative"}, NLS_FORMAT_PLUS};
constexpr Bit blank{{.name = "blank", .help = "a blank where \"+\" could stand"}, NLS_FORMAT_BLANK};
constexpr Bit left{{.name = "left", .help = "left in the field"}, NLS_FORMAT_LEFT};
constexpr Bit zero_pad{{.name = "zero-pad", .help = "zeros up to the width"}, NLS_FORMAT_ZERO_PAD};
constexpr Bit fixed{{.name = "fixed",
                     .help = "fill the width (1 to 32) exactly: fewer decimals, exponent form or * when "
                             "the number does not fit"},
                    NLS_FORMAT_FIXED};
constexpr Bit best{{.name = "best", .help = "as many decimals as the width has room for"}, NLS_FORMAT_BEST};
constexpr Bit exponent{{.name = "exponent", .help = "exponent form; in the field with --width"}, NLS_FORMAT_EXPONENT};
constexpr Bit general{{.name = "general", .help = "general form; --decimals counts significant digits"},
                      NLS_FORMAT_GENERAL};
constexpr Bit keep_zeros{{.name = "keep-zeros", .help = "keep the trailing zeros of the general form"},
                         NLS_FORMAT_KEEP_ZEROS};
constexpr Bit integer_only{{.name = "integer", .help = "no decimals"}, NLS_FORMAT_INTEGER};
constexpr Bit fraction_only{{.name = "fraction", .help = "the fraction part alone"}, NLS_FORMAT_FRACTION};
constexpr Bit hex{{.name = "hex", .help = "hexadecimal, with small letters"}, NLS_FORMAT_HEX_LOWER};
constexpr Bit hex_upper{{.name = "hex-upper", .help = "hexadecimal, with capital letters"}, NLS_FORMAT_HEX_UPPER};
constexpr Bit octal{{.name = "octal", .help = "octal"}, NLS_FORMAT_OCTAL};
constexpr Bit prefix{{.name = "prefix", .help = "0x before hexadecimal digits, 0 before octal ones"},
                     NLS_FORMAT_HEX_PREFIX | NLS_FORMAT_OCTAL_PREFIX};
constexpr Bit parentheses{{.name = "parentheses", .help = "negative values in parentheses, without \"-\""}, 1};

constexpr const Bit* number_bits[] = {&group, &plus,     &blank,   &left,       &zero_pad,     &fixed,
                                      &best,  &exponent, &general, &keep_zeros, &integer_only, &fraction_only};
constexpr const Bit* integer_bits[] = {&group, &plus, &blank, &left, &zero_pad, &hex, &hex_upper, &octal, &prefix};
constexpr const Bit* percent_bits[] = {&parentheses};

constexpr Option width{.name = "width", .value = "N", .help = "columns of the field; more when the text is longer"};
constexpr Option decimals{.name = "decimals", .value = "N", .help = "digits after the decimal point"};
constexpr Option precision{.name = "precision", .value = "N", .help = "least number of digits"};
constexpr Option missing{
    .name = "missing", .value = "CHARACTER", .help = "what stands for a missing value, in place of \".\""};
constexpr Option flags{
    .name = "flags", .value = "BITS", .help = "option bits of the library, added as they are: 0x21000"};

constexpr int32_t widest = 512;
constexpr int32_t most_decimals = 350;
constexpr int32_t usual_digits = 15;  // that every double keeps

uint32_t bits_of(const Arguments& arguments, std::span<const Bit* const> bits) {
  uint32_t result = 0;
  for (const Bit* bit : bits) {
    if (arguments.has(bit->option)) result |= bit->bit;
  }
  if (const auto text = arguments.value(flags)) {
    const char* const begin = text->c_str() + (text->starts_with("0x") ? 2 : 0);
    uint32_t value = 0;
    const auto [end, error] =
        std::from_chars(begin, text->c_str() + text->size(), value, text->starts_with("0x") ? 16 : 10);
    if (error != std::errc{} || end != text->c_str() + text->size()) {
      fail(ExitCode::usage, "--flags {}: 32 bits are wanted, as 0x21000", in_quotes(*text));
    }
    result |= value;
  }
  return result;
}

/// These say different things of the same.
void check_one_of(const Arguments& arguments, std::initializer_list<const Bit*> bits) {
  const Option* given = nullptr;
  for (const Bit* bit : bits) {
    if (!arguments.has(bit->option)) continue;
    if (given != nullptr) fail(ExitCode::usage, "{} and {} exclude each other", spelled(*given), spelled(bit->option));
    given = &bit->option;
  }
}

int32_t number_of(const Arguments& arguments, const Option& option, int32_t least, int32_t most, int32_t preset) {
  const auto text = arguments.value(option);
  return text ? option_number(spelled(option), *text, least, most) : preset;
}

/// Text and status of one number.
struct Written {
  std::string text;
  VXStatus status;
};

/// The buffer of one call, in either flavour.
class Field {
 public:
  static constexpr int64_t room = 2048;

  template <class Call>
  Written utf8_text(Call call) {
    int64_t length = 0;
    const VXStatus status = call(bytes_.data(), room, &length);
    return {std::string(reinterpret_cast<const char*>(bytes_.data()), static_cast<size_t>(length)), status};
  }
  template <class Call>
  Written wide_text(Call call) {
    int64_t length = 0;
    const VXStatus status = call(units_.data(), room, &length);
    std::string text;
    if (length > room) length = room;
    for (int64_t i = 0; i < length; ++i) text += utf8(units_[static_cast<size_t>(i)]);
    return {text, status};
  }

 private:
  std::array<uint8_t, room> bytes_{};
  std::array<VXChar, room> units_{};
};

/// What stands in for the text when a status tells of a failure; notes what was changed to make it fit.
void look_at(const Invocation& invocation, const Written& written, std::string_view value) {
  switch (written.status) {
    case 0: return;
    case VX_W_PRECISION:
      return invocation.messages.note(
          fmt::format("{}: fewer decimals, or exponent form, to fit the width", in_quotes(value)));
    case VX_E_GROUPING:
      return invocation.messages.note(fmt::format("{}: the group separators do not fit the width", in_quotes(value)));
    case VX_E_TRUNCATED: refuse("the number does not fit the width");
    case VX_E_WIDTH:
      fail(ExitCode::usage, "--width: a fixed field has 1 to 32 columns, for the exponent form at least 7");
    case VX_E_DIRECTIVE: refuse("the number has more digits than can be shown");
    default: fail(ExitCode::host, "the number cannot be written (status 0x{:08x})", written.status);
  }
}

std::string print(Invocation& invocation, std::string_view value, const Written& written, Json number) {
  look_at(invocation, written, value);
  if (!invocation.arguments.has(options::json)) return written.text;
  return json_line({{"value", value},
                    {"text", written.text},
                    {"number", std::move(number)},
                    {"status", fmt::format("0x{:08x}", written.status)},
                    {"locale", invocation.session.locale_name()}});
}

Json json_number(double value) { return std::isfinite(value) ? Json(value) : Json(plain_text(value)); }

/// An infinity needs a field; without --width it gets the least one.
int32_t width_for(double value, int32_t wanted) { return wanted == 0 && std::isinf(value) ? 4 : wanted; }

std::string without_leading_blanks(std::string text) {
  return text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
}

ExitCode run_number(Invocation& invocation) {
  const Arguments& arguments = invocation.arguments;
  check_one_of(arguments, {&exponent, &general, &integer_only, &fraction_only});
  uint32_t bits = bits_of(arguments, number_bits);
  const int32_t columns = number_of(arguments, width, 0, widest, 0);
  const auto places =
      arguments.has(decimals) ? std::optional(number_of(arguments, decimals, 0, most_decimals, 0)) : std::nullopt;
  if (places == NLS_BEST_DECIMALS) fail(ExitCode::usage, "--decimals 99: use --best for as many decimals as fit");
  if (arguments.has(exponent.option) && columns > 0 && !places) {
    bits = (bits & ~exponent.bit) | NLS_FORMAT_FIXED_EXPONENT;
  }
  constexpr uint32_t forms = NLS_FORMAT_GENERAL | NLS_FORMAT_PLAIN | NLS_FORMAT_FRACTION | NLS_FORMAT_INTEGER |
                             NLS_FORMAT_EXPONENT | NLS_FORMAT_BEST | NLS_FORMAT_FIXED | NLS_FORMAT_FIXED_EXPONENT |
                             NLS_FORMAT_SIGNIFICANT;
  if ((bits & forms) == 0 && places) bits |= NLS_FORMAT_PLAIN;
  const bool in_field = (bits & (NLS_FORMAT_FIXED | NLS_FORMAT_FIXED_EXPONENT | NLS_FORMAT_SIGNIFICANT)) != 0;
  if (in_field && columns == 0) fail(ExitCode::usage, "a fixed field wants --width, 1 to 32");
  const bool general_form = (bits & forms) == 0 || (bits & NLS_FORMAT_GENERAL) != 0;
  const int32_t digits = places.value_or(general_form ? usual_digits : (bits & NLS_FORMAT_FIXED) != 0 ? 0 : 6);

  NLSDoubleExOpts extended{0, {}, 0};
  if (const auto text = arguments.value(missing)) {
    const auto units = utf32(*text);
    if (!units || units->size() != 1) fail(ExitCode::usage, "--missing {}: one character is wanted", in_quotes(*text));
    extended = {1, {}, units->front()};
  }
  VXLocale* const locale = invocation.session.locale();
  Field field;
  return for_each_value(invocation, arguments.values(), [&](std::string_view value) {
    const double number = plain_number(value);
    const Written written = field.utf8_text([&](uint8_t* buffer, int64_t size, int64_t* length) {
      return locale->ops.NLSDoubleFormatUWithExOpts(locale, width_for(number, columns), digits, bits, buffer, size,
                                                    length, &extended, number);
    });
    return print(invocation, value, written, json_number(number));
  });
}

ExitCode run_percent(Invocation& invocation) {
  const Arguments& arguments = invocation.arguments;
  const uint32_t bits = bits_of(arguments, percent_bits);
  const int32_t columns = number_of(arguments, width, 0, widest, 0);
  const int32_t digits = number_of(arguments, decimals, 0, most_decimals, 0);
  VXLocale* const locale = invocation.session.locale();
  Field field;
  return for_each_value(invocation, arguments.values(), [&](std::string_view value) {
    const double number = plain_number(value);
    const Written written = field.wide_text([&](VXChar* buffer, int64_t size, int64_t* length) {
      return locale->ops.NLSPercentFormat(locale,
                                          width_for(number, columns) + (columns == 0 && std::isinf(number) ? 2 : 0),
                                          digits, bits, buffer, size, length, number);
    });
    return print(invocation, value, written, json_number(number));
  });
}

ExitCode run_currency(Invocation& invocation) {
  const Arguments& arguments = invocation.arguments;
  uint32_t bits = arguments.has(integer_only.option) ? 1 : 0;
  const int32_t columns = number_of(arguments, width, 0, widest, 0);
  const int32_t digits = number_of(arguments, decimals, 0, most_decimals, 2);
  VXLocale* const locale = invocation.session.locale();
  Field field;
  return for_each_value(invocation, arguments.values(), [&](std::string_view value) {
    const double number = plain_number(value);
    // The symbol floats to the number in a field; without a width the field is wide, and its blanks are dropped.
    Written written = field.wide_text([&](VXChar* buffer, int64_t size, int64_t* length) {
      return locale->ops.NLSCurrencyFormat(locale, columns == 0 ? widest : columns, digits, bits, buffer, size, length,
                                           number);
    });
    if (columns == 0) written.text = without_leading_blanks(written.text);
    return print(invocation, value, written, json_number(number));
  });
}

ExitCode run_integer(Invocation& invocation) {
  const Arguments& arguments = invocation.arguments;
  check_one_of(arguments, {&hex, &hex_upper, &octal});
  const uint32_t bits = bits_of(arguments, integer_bits);
  const int32_t columns = number_of(arguments, width, 0, widest, 0);
  const bool pads = (bits & NLS_FORMAT_ZERO_PAD) != 0;
  const bool bases = (bits & (NLS_FORMAT_HEX_LOWER | NLS_FORMAT_HEX_UPPER | NLS_FORMAT_OCTAL)) != 0;
  const int32_t digits = number_of(arguments, precision, 0, most_decimals, pads ? 0 : 1);
  VXLocale* const locale = invocation.session.locale();
  Field field;
  return for_each_value(invocation, arguments.values(), [&](std::string_view value) {
    const PlainInteger number = plain_integer(value);
    if (number.negative && bases && number.magnitude != 0) refuse("hexadecimal and octal digits have no sign");
    const bool is_signed =
        !bases && number.magnitude <= uint64_t{1} << 63 && (number.negative || number.magnitude >> 63 == 0);
    const auto negated = static_cast<int64_t>(number.negative ? 0 - number.magnitude : number.magnitude);
    const Written written = field.utf8_text([&](uint8_t* buffer, int64_t size, int64_t* length) {
      return is_signed
                 ? locale->ops.NLSIntmaxFormatU(locale, negated, columns, digits, bits, buffer, size, length)
                 : locale->ops.NLSUintmaxFormatU(locale, number.magnitude, columns, digits, bits, buffer, size, length);
    });
    return print(invocation, value, written, is_signed ? Json(negated) : Json(number.magnitude));
  });
}

constexpr Argument number_arguments[] = {
    {.name = "VALUE",
     .help = "1234567.891, 1e6, inf, or a missing value as . or .A; negative ones behind \"--\"; without values, every "
             "line of standard input is one",
     .repeats = true}};
constexpr Argument integer_arguments[] = {
    {.name = "VALUE",
     .help = "-12, 255 or 0xFF; negative ones behind \"--\"; without values, every line of standard input is one",
     .repeats = true}};

constexpr const Option* number_options[] = {&decimals,
                                            &width,
                                            &group.option,
                                            &plus.option,
                                            &blank.option,
                                            &left.option,
                                            &zero_pad.option,
                                            &fixed.option,
                                            &best.option,
                                            &exponent.option,
                                            &general.option,
                                            &keep_zeros.option,
                                            &integer_only.option,
                                            &fraction_only.option,
                                            &missing,
                                            &flags,
                                            &options::json,
                                            &options::unread,
                                            &options::ok_unread,
                                            &options::chunk_header};
constexpr const Option* percent_options[] = {&decimals,
                                             &width,
                                             &parentheses.option,
                                             &options::json,
                                             &options::unread,
                                             &options::ok_unread,
                                             &options::chunk_header};
constexpr const Option* currency_options[] = {&decimals,
                                              &width,
                                              &integer_only.option,
                                              &options::json,
                                              &options::unread,
                                              &options::ok_unread,
                                              &options::chunk_header};
constexpr const Option* integer_options[] = {
    &width,           &precision,       &group.option,       &plus.option,          &blank.option,  &left.option,
    &zero_pad.option, &hex.option,      &hex_upper.option,   &octal.option,         &prefix.option, &flags,
    &options::json,   &options::unread, &options::ok_unread, &options::chunk_header};

constexpr Example number_examples[] = {
    {"vxnls format number 1234567.891 --locale de_DE --decimals 2 --group", "1.234.567,89"},
    {"vxnls format number 1234567.891 --locale hi_IN --decimals 2 --group", "12,34,567.89"},
    {"vxnls format number 1e15 --locale en_US --width 10 --fixed", "      1E15"}};
constexpr Example percent_examples[] = {
    {"vxnls format percent --locale en_US --decimals 1 --parentheses -- -0.125", "(12.5%)"},
    {"vxnls format percent 0.5 --locale de_DE", "50%"},
    {"vxnls format percent 0.1234 --locale fr_FR --decimals 2 --width 10", "    12,34%"}};
constexpr Example currency_examples[] = {{"vxnls format currency 1234.5 --locale en_US", "$1,234.50"},
                                         {"vxnls format currency 1234567 --locale en_IN --integer", "₹12,34,567"},
                                         {"vxnls format currency 1234.5 --locale ja_JP --width 14", "     ￥1,234.50"}};
constexpr Example integer_examples[] = {
    {"vxnls format integer 255 --hex --prefix", "0xff"},
    {"vxnls format integer 1234567 --locale de_DE --group --width 12", "   1.234.567"},
    {"vxnls format integer 42 --zero-pad --width 8", "00000042"}};

}  // namespace

const Command format_number{
    .name = "number",
    .summary = "Writes numbers as the locale does",
    .description =
        "Without options a number is written with up to 15 significant digits. --decimals gives plain notation, "
        "rounded half up on the exact digits. A width is the least number of columns; --fixed makes it the exact one.",
    .arguments = number_arguments,
    .options = number_options,
    .examples = number_examples,
    .run = run_number,
    .category = LocaleCategory::numeric};

const Command format_percent{.name = "percent",
                             .summary = "Writes shares of 1 as percentages",
                             .description = "0.5 is 50%.",
                             .arguments = number_arguments,
                             .options = percent_options,
                             .examples = percent_examples,
                             .run = run_percent,
                             .category = LocaleCategory::numeric};

const Command format_currency{
    .name = "currency",
    .summary = "Writes amounts with the locale's currency symbol",
    .description = "The symbol of the locale's region stands right before the number, whose digits are grouped.",
    .arguments = number_arguments,
    .options = currency_options,
    .examples = currency_examples,
    .run = run_currency,
    .category = LocaleCategory::numeric};

const Command format_integer{
    .name = "integer",
    .summary = "Writes whole numbers",
    .description = "Numbers of 64 bits, -9223372036854775808 to 18446744073709551615, decimal, hexadecimal or octal.",
    .arguments = integer_arguments,
    .options = integer_options,
    .examples = integer_examples,
    .run = run_integer,
    .category = LocaleCategory::numeric};

}  // namespace vxcli
