// vxnls parse number, integer
#include <bit>
#include <cmath>

#include "cli/commands.h"
#include "cli/for_each_value.h"
#include "cli/json.h"
#include "cli/number.h"
#include "cli/options.h"
#include "cli/refusal.h"
#include "cli/session.h"
#include "cli/text.h"
#include "vxnls/explain_number.h"

namespace vxcli {

namespace {

constexpr Option spaces{.name = "spaces", .help = "where a no-break space separates groups, a space does so too"};
constexpr Option bits{.name = "bits", .help = "the bits of the double in hexadecimal"};
constexpr Option hex{.name = "hex", .help = "hexadecimal digits, with or without 0x"};
constexpr Option fraction{.name = "fraction", .help = "a fraction may follow and is dropped"};
constexpr Option trailing_blanks{.name = "trailing-blanks", .help = "blanks may follow"};
constexpr Option rest{.name = "rest", .help = "other text may follow behind a blank"};

struct Type {
  std::string_view word;
  uint32_t kind;
};
constexpr Type types[] = {
    {"int32", VX_NUMBER_INT32}, {"uint32", VX_NUMBER_UINT32}, {"int64", VX_NUMBER_INT64}, {"uint64", VX_NUMBER_UINT64}};
constexpr std::string_view type_words[] = {"int32", "uint32", "int64", "uint64"};
constexpr Option type{.name = "type",
                      .value = "TYPE",
                      .help = "what the number must fit; int64, or uint64 with --hex, when not given",
                      .choices = type_words,
                      .completes = Completes::choices};

VXNumberReading ask(Invocation& invocation, std::string_view text, uint32_t kind, uint32_t flags) {
  VXNumberReading reading;
  const VXStatus asked = vxnlsExplainNumber(invocation.session.locale(), reinterpret_cast<const uint8_t*>(text.data()),
                                            static_cast<int64_t>(text.size()), kind, flags, &reading);
  if (asked != reading.status) fail_with_status(invocation.session.host(), "reading", asked);
  return reading;
}

/// Reads one value; throws ValueError when the whole of it is not understood.
VXNumberReading read(Invocation& invocation, std::string_view text, uint32_t kind, uint32_t flags) {
  VXNumberReading reading = ask(invocation, text, kind, flags);
  if (reading.fault == VX_FAULT_TEXT_AFTER && invocation.arguments.has(rest)) {
    // The reader of doubles takes no other text, so it gets what stands before that.
    const std::string_view before = text.substr(0, static_cast<size_t>(reading.fault_offset));
    if (before.ends_with(' ') || before.ends_with('\t')) reading = ask(invocation, before, kind, flags);
  }
  const bool dropped = reading.fault == VX_FAULT_FRACTION_DISCARDED;
  if (dropped) {
    invocation.messages.note(fmt::format("{}: the fraction was dropped", in_quotes(text)));
  } else if (reading.status != 0) {
    refuse("at byte {}: {}", reading.fault_offset, describe_reason(reading, text));
  }
  const std::string_view left = text.substr(static_cast<size_t>(reading.consumed));
  if (!without_blanks(left).empty() && !invocation.arguments.has(rest)) {
    refuse("at byte {}: {} follows the number", reading.consumed, in_quotes(left));
  }
  return reading;
}

std::string print(const Invocation& invocation, std::string_view text, const VXNumberReading& reading,
                  std::string shown, const Json& extra) {
  if (!invocation.arguments.has(options::json)) return shown;
  Json object{{"value", text}, {"text", std::move(shown)}};
  object.update(extra);
  object["consumed"] = reading.consumed;
  object["status"] = fmt::format("0x{:08x}", reading.status);
  object["locale"] = invocation.session.locale_name();
  return json_line(object);
}

ExitCode run_number(Invocation& invocation) {
  const Arguments& arguments = invocation.arguments;
  const uint32_t flags = arguments.has(spaces) ? NLS_READ_SPACE_SEPARATOR : 0;
  return for_each_value(invocation, arguments.values(), [&](std::string_view text) {
    if (without_blanks(text).empty()) refuse("there is no number");
    const VXNumberReading reading = read(invocation, text, VX_NUMBER_DOUBLE, flags);
    const double value = reading.value.number;
    const std::string pattern = fmt::format("0x{:016x}", std::bit_cast<uint64_t>(value));
    std::string shown = arguments.has(bits) ? pattern : plain_text(value);
    const Json number = std::isfinite(value) ? Json(value) : Json(nullptr);
    return print(invocation, text, reading, std::move(shown),
                 {{"number", number},
                  {"missing", std::isnan(value) ? Json(plain_text(value)) : Json(nullptr)},
                  {"bits", pattern}});
  });
}

ExitCode run_integer(Invocation& invocation) {
  const Arguments& arguments = invocation.arguments;
  const uint32_t flags = (arguments.has(hex) ? NLS_READ_HEXADECIMAL : 0) |
                         (arguments.has(fraction) ? NLS_READ_FRACTION : 0) |
                         (arguments.has(trailing_blanks) ? NLS_READ_TRAILING_BLANKS : 0) |
                         (arguments.has(spaces) ? NLS_READ_SPACE_SEPARATOR : 0);
  uint32_t kind = arguments.has(hex) ? VX_NUMBER_UINT64 : VX_NUMBER_INT64;
  if (const auto word = arguments.value(type)) {
    for (const Type& each : types) {
      if (each.word == *word) kind = each.kind;
    }
  }
  const bool is_signed = kind == VX_NUMBER_INT32 || kind == VX_NUMBER_INT64;
  if (is_signed && arguments.has(hex))
    fail(ExitCode::usage, "--hex reads numbers without a sign: --type uint32 or uint64");
  return for_each_value(invocation, arguments.values(), [&](std::string_view text) {
    if (without_blanks(text).empty()) refuse("there is no number");
    const VXNumberReading reading = read(invocation, text, kind, flags);
    return is_signed ? print(invocation, text, reading, std::to_string(reading.value.signed_integer),
                             {{"number", reading.value.signed_integer}})
                     : print(invocation, text, reading, std::to_string(reading.value.unsigned_integer),
                             {{"number", reading.value.unsigned_integer}});
  });
}

constexpr Argument arguments[] = {{.name = "TEXT",
                                   .help = "what is read, negative numbers behind \"--\"; without one, every line of "
                                           "standard input",
                                   .repeats = true}};
constexpr const Option* number_options[] = {
    &spaces, &bits, &rest, &options::json, &options::unread, &options::ok_unread, &options::chunk_header};
constexpr const Option* integer_options[] = {
    &type, &hex,           &fraction,        &trailing_blanks,    &spaces,
    &rest, &options::json, &options::unread, &options::ok_unread, &options::chunk_header};

constexpr Example number_examples[] = {{"vxnls parse number 1.234.567,89 --locale de_DE", "1234567.89"},
                                       {"vxnls parse number '1 234,5' --locale fr_CA --spaces", "1234.5"},
                                       {"vxnls parse number 0.1 --locale en_US --bits", "0x3fb999999999999a"},
                                       {"vxnls parse number '12,50 km' --locale de_DE --rest", "12.5"},
                                       {"printf '2\\n1,5\\n-\\n1\\n2,5\\n' | vxnls parse number --locale de_DE "
                                        "--chunk-header --unread '\\N' --ok-unread 2>/dev/null",
                                        "1.5\n\\N\n2.5"}};
constexpr Example integer_examples[] = {{"vxnls parse integer 0xFF --hex", "255"},
                                        {"vxnls parse integer 1.234.567 --locale de_DE", "1234567"},
                                        {"vxnls parse integer 12.50 --locale en_US --fraction --quiet", "12"}};

}  // namespace

const Command parse_number{
    .name = "number",
    .summary = "Reads numbers as the locale writes them",
    .description =
        "The locale's decimal point and group separator count; where the separators stand does not. An exponent may "
        "follow (1e6, 1D6). \".A\" to \".Z\" and \"._\" are special missing values and printed as such.",
    .arguments = arguments,
    .options = number_options,
    .examples = number_examples,
    .run = run_number,
    .category = LocaleCategory::numeric};

const Command parse_integer{
    .name = "integer",
    .summary = "Reads whole numbers as the locale writes them",
    .description = "The locale's group separator may stand between the digits, wherever it likes.",
    .arguments = arguments,
    .options = integer_options,
    .examples = integer_examples,
    .run = run_integer,
    .category = LocaleCategory::numeric};

}  // namespace vxcli
