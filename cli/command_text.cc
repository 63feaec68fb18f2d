// vxnls case, compare, chars
#include <unicode/uchar.h>

#include <algorithm>
#include <vector>

#include "cli/coding.h"
#include "cli/commands.h"
#include "cli/for_each_value.h"
#include "cli/json.h"
#include "cli/options.h"
#include "cli/session.h"
#include "cli/text.h"
#include "vxnls/classes.h"
#include "vxnls/strings.h"
#include "vxnls/utf8.h"

namespace vxcli {

namespace {

const uint8_t* bytes_of(std::string_view text) { return reinterpret_cast<const uint8_t*>(text.data()); }
int64_t size_of(std::string_view text) { return static_cast<int64_t>(text.size()); }

std::u32string units_of(std::string_view text) {
  auto units = utf32(text);
  if (!units) refuse("it is not UTF-8");
  return *units;
}

std::string code_point_name(VXChar c) { return fmt::format("U+{:04X}", c); }

// ---------------------------------------------------------------------------------------------------------------------

using ToCase = VXStatus (*)(const uint8_t*, int64_t, uint8_t*, int64_t, int64_t*);

std::string cased(ToCase function, std::string_view text) {
  units_of(text);
  if (text.empty()) return {};
  int64_t needed = 0;
  function(bytes_of(text), size_of(text), nullptr, 0, &needed);
  std::string result(static_cast<size_t>(needed), '\0');
  int64_t written = 0;
  function(bytes_of(text), size_of(text), reinterpret_cast<uint8_t*>(result.data()), needed, &written);
  result.resize(static_cast<size_t>(written));
  return result;
}

ExitCode run_case(Invocation& invocation, ToCase function) {
  invocation.session.host();  // its character data maps what is not ASCII
  const bool json = invocation.arguments.has(options::json);
  return for_each_value(invocation, invocation.arguments.values(), [&](std::string_view text) {
    std::string result = cased(function, text);
    return json ? json_line({{"value", text}, {"text", result}}) : result;
  });
}

ExitCode run_upper(Invocation& invocation) { return run_case(invocation, vxzsu8Upper2); }
ExitCode run_lower(Invocation& invocation) { return run_case(invocation, vxzsu8Lower2); }

// ---------------------------------------------------------------------------------------------------------------------

constexpr std::string_view mode_words[] = {"code-points", "padded", "ignore-case", "normalised"};
constexpr std::string_view mode_titles[] = {"by code points", "blank-padded", "ignoring case", "normalised"};
constexpr Option mode{.name = "mode",
                      .value = "MODE",
                      .help = "one comparison only: its result, -1, 0 or 1, is printed alone",
                      .choices = mode_words,
                      .completes = Completes::choices};

int sign(int32_t number) { return number < 0 ? -1 : number > 0 ? 1 : 0; }

struct Comparison {
  int result;
  std::string remark;
};

Comparison compare_by(VXHost* host, size_t which, std::string_view a, std::string_view b, const std::u32string& ua,
                      const std::u32string& ub) {
  const std::vector<VXChar> wa(ua.begin(), ua.end());
  const std::vector<VXChar> wb(ub.begin(), ub.end());
  switch (which) {
    case 0:
    case 1:
      return {NLSSSOrderCompare(nullptr, wa.data(), static_cast<int64_t>(wa.size()), wb.data(),
                                static_cast<int64_t>(wb.size()), static_cast<uint32_t>(which)),
              ""};
    case 2: {
      const int32_t result = vxzsu8NormCompare(bytes_of(a), size_of(a), bytes_of(b), size_of(b));
      if (result == 1 || result == -1) return {0, "they differ only in case"};
      return {sign(result), ""};
    }
    default: {
      VXStatus status = 0;
      const int32_t result = vxzsu8ICUNormCompare(bytes_of(a), size_of(a), bytes_of(b), size_of(b), 0, &status);
      if (status != 0) fail_with_status(host, "the texts cannot be normalised", status);
      return {sign(result), ""};
    }
  }
}

/// Where two texts part: the character, counted from 1, and what stands there in each.
std::string parting(const std::u32string& a, const std::u32string& b) {
  const auto [in_a, in_b] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  if (in_a == a.end() && in_b == b.end()) return "the same code points";
  const auto shown = [](auto at, auto end) {
    return at == end ? std::string("the end") : fmt::format("{} {}", code_point_name(*at), in_quotes(utf8(*at)));
  };
  size_t byte = 0;
  for (auto at = a.begin(); at != in_a; ++at) byte += utf8(*at).size();
  return fmt::format("they part at character {} (byte {}): {} and {}", in_a - a.begin() + 1, byte, shown(in_a, a.end()),
                     shown(in_b, b.end()));
}

ExitCode run_compare(Invocation& invocation) {
  VXHost* const host = invocation.session.host();
  const auto& values = invocation.arguments.values();
  if (values.size() != 2) fail(ExitCode::usage, "two texts are wanted, {} given", values.size());
  const auto units = [](const std::string& text) {
    try {
      return units_of(text);
    } catch (const ValueError& error) {
      fail(ExitCode::some_unread, "{}: {}", in_quotes(text), error.what());
    }
  };
  const std::u32string a = units(values[0]);
  const std::u32string b = units(values[1]);
  const auto wanted = invocation.arguments.value(mode);
  Table table;
  Json object{{"a", values[0]}, {"b", values[1]}};
  for (size_t i = 0; i < std::size(mode_words); ++i) {
    if (wanted && *wanted != mode_words[i]) continue;
    const Comparison comparison = compare_by(host, i, values[0], values[1], a, b);
    if (wanted && !invocation.arguments.has(options::json)) {
      invocation.out.line(std::to_string(comparison.result));
      return ExitCode::done;
    }
    object[std::string(mode_words[i])] = comparison.result;
    constexpr std::string_view signs[] = {"<", "=", ">"};
    table.row({std::string(mode_titles[i]),
               fmt::format("{} {} {}", in_quotes(values[0]), signs[comparison.result + 1], in_quotes(values[1])),
               comparison.remark});
  }
  object["parting"] = parting(a, b);
  if (invocation.arguments.has(options::json)) {
    invocation.out.line(json_line(object));
  } else {
    invocation.out.put(table.text());
    invocation.out.line(parting(a, b));
  }
  return ExitCode::done;
}

// ---------------------------------------------------------------------------------------------------------------------

struct Class {
  std::string_view word;
  int32_t (*test)(uint32_t);
};
constexpr Class classes[] = {{"alpha", vxnlsisalpha}, {"upper", vxnlsisupper},   {"lower", vxnlsislower},
                             {"digit", vxnlsisdigit}, {"xdigit", vxnlsisxdigit}, {"space", vxnlsisspace},
                             {"punct", vxnlsispunct}, {"cntrl", vxnlsiscntrl},   {"print", vxnlsisprint},
                             {"graph", vxnlsisgraph}};

std::vector<std::string> classes_of(VXChar c) {
  std::vector<std::string> words;
  for (const Class& each : classes) {
    if (each.test(c) != 0) words.emplace_back(each.word);
  }
  return words;
}

std::string bytes_in(const char* coding, VXChar c) {
  std::string bytes;
  find_coding(coding)->encode(c, bytes);
  std::string shown;
  for (const char byte : bytes) {
    shown += fmt::format("{}{:02X}", shown.empty() ? "" : " ", static_cast<unsigned char>(byte));
  }
  return shown;
}

std::string name_of(VXChar c) {
  char name[128];
  for (const UCharNameChoice choice : {U_UNICODE_CHAR_NAME, U_CHAR_NAME_ALIAS, U_EXTENDED_CHAR_NAME}) {
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = u_charName(static_cast<UChar32>(c), choice, name, sizeof name, &error);
    if (U_SUCCESS(error) && length > 0) return name;
  }
  return "";
}

/// A code point that upper- or lower-casing gives; empty when it is itself.
std::string partner(ToCase function, VXChar c) {
  const std::string text = utf8(c);
  const std::string other = cased(function, text);
  return other == text ? std::string() : fmt::format("{} {}", code_point_name(units_of(other).front()), other);
}

ExitCode run_chars(Invocation& invocation) {
  invocation.session.host();
  const bool json = invocation.arguments.has(options::json);
  return for_each_value(invocation, invocation.arguments.values(), [&](std::string_view text) {
    Table table;
    std::string lines;
    if (!json) table.row({"code point", "", "name", "classes", "UTF-8", "UTF-16BE", "upper", "lower"});
    for (const VXChar c : units_of(text)) {
      const std::vector<std::string> words = classes_of(c);
      const std::string upper = partner(vxzsu8Upper2, c);
      const std::string lower = partner(vxzsu8Lower2, c);
      if (json) {
        if (!lines.empty()) lines += '\n';
        lines += json_line({{"code_point", code_point_name(c)},
                            {"text", utf8(c)},
                            {"name", name_of(c)},
                            {"classes", words},
                            {"utf8", bytes_in("utf-8", c)},
                            {"utf16be", bytes_in("utf-16be", c)},
                            {"upper", upper.substr(0, upper.find(' '))},
                            {"lower", lower.substr(0, lower.find(' '))}});
        continue;
      }
      const bool visible = vxnlsisgraph(c) != 0;
      table.row({code_point_name(c), visible ? utf8(c) : "", name_of(c), fmt::format("{}", fmt::join(words, " ")),
                 bytes_in("utf-8", c), bytes_in("utf-16be", c), upper, lower});
    }
    if (!json) lines = table.text();
    if (lines.ends_with('\n')) lines.pop_back();
    return lines;
  });
}

// ---------------------------------------------------------------------------------------------------------------------

constexpr Argument text_arguments[] = {
    {.name = "TEXT", .help = "UTF-8; without one, every line of standard input", .repeats = true}};
constexpr Argument two_texts[] = {{.name = "A", .help = "UTF-8", .required = true},
                                  {.name = "B", .help = "UTF-8", .required = true}};
constexpr const Option* text_options[] = {&options::json};
constexpr const Option* compare_options[] = {&mode, &options::json};

constexpr Example upper_examples[] = {{"vxnls case upper 'Grüße aus Köln'", "GRÜßE AUS KÖLN"},
                                      {"echo αθήνα | vxnls case upper", "ΑΘΉΝΑ"},
                                      {"vxnls case upper one two", "ONE\nTWO"}};
constexpr Example lower_examples[] = {{"vxnls case lower ΑΘΗΝΑ", "αθηνα"},
                                      {"echo ÉCOLE | vxnls case lower", "école"},
                                      {"vxnls case lower ONE TWO", "one\ntwo"}};
constexpr Example compare_examples[] = {{"vxnls compare abc abd --mode code-points", "-1"},
                                        {"vxnls compare abc 'abc  ' --mode padded", "0"},
                                        {"vxnls compare Straße STRASSE --mode ignore-case", "1"}};
constexpr Example chars_examples[] = {
    {"vxnls chars é --json",
     R"({"code_point":"U+00E9","text":"é","name":"LATIN SMALL LETTER E WITH ACUTE",)"
     R"("classes":["alpha","lower","print","graph"],"utf8":"C3 A9","utf16be":"00 E9","upper":"U+00C9","lower":""})"},
    {"vxnls chars 😀 --json", R"({"code_point":"U+1F600","text":"😀","name":"GRINNING FACE","classes":["print","graph"],)"
                             R"("utf8":"F0 9F 98 80","utf16be":"D8 3D DE 00","upper":"","lower":""})"},
    {"printf A | vxnls chars | tail -n 1",
     "U+0041      A  LATIN CAPITAL LETTER A  alpha upper xdigit print graph  41     00 41            U+0061 a"}};

constexpr Command case_upper{.name = "upper",
                             .summary = "Writes text in upper case",
                             .description = "Character by character: one character never becomes two.",
                             .arguments = text_arguments,
                             .options = text_options,
                             .examples = upper_examples,
                             .run = run_upper};
constexpr Command case_lower{.name = "lower",
                             .summary = "Writes text in lower case",
                             .description = "Character by character: one character never becomes two.",
                             .arguments = text_arguments,
                             .options = text_options,
                             .examples = lower_examples,
                             .run = run_lower};
constexpr const Command* case_commands[] = {&case_upper, &case_lower};
constexpr Example case_examples[] = {
    {"vxnls case upper straße", "STRAßE"}, {"vxnls case lower ΑΘΗΝΑ", "αθηνα"}, {"echo Ǆ | vxnls case lower", "ǆ"}};

}  // namespace

const Command change_case{.name = "case",
                          .summary = "Writes text in upper or lower case",
                          .examples = case_examples,
                          .commands = case_commands};

const Command compare{.name = "compare",
                      .summary = "Compares two texts in four ways",
                      .description =
                          "By code points; by code points with the shorter text padded with blanks; ignoring case and "
                          "trailing blanks; and by canonical equivalence. Says at which character they part.",
                      .arguments = two_texts,
                      .options = compare_options,
                      .examples = compare_examples,
                      .run = run_compare};

const Command chars{
    .name = "chars",
    .summary = "Shows the characters of a text",
    .description = "Code point, name, classes, bytes in UTF-8 and UTF-16, and what casing makes of each.",
    .arguments = text_arguments,
    .options = text_options,
    .examples = chars_examples,
    .run = run_chars};

}  // namespace vxcli
