#include "cli/table/dialect.h"

#include <algorithm>
#include <cctype>
#include <charconv>

#include "cli/errors.h"
#include "cli/suggest.h"
#include "cli/text.h"

namespace vxcli::table {

namespace {

constexpr struct {
  Format format;
  std::string_view name;
} formats[] = {
    {Format::csv, "csv"},          {Format::tsv, "tsv"},     {Format::tsv_escaped, "tsv-escaped"},
    {Format::json_lines, "jsonl"}, {Format::lines, "lines"},
};

constexpr struct {
  std::string_view ending;
  Format format;
} endings[] = {
    {".csv", Format::csv},          {".tsv", Format::tsv},           {".tab", Format::tsv},
    {".jsonl", Format::json_lines}, {".ndjson", Format::json_lines}, {".txt", Format::lines},
};

bool same_letter(char a, char b) {
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

bool ends_with_ignoring_case(std::string_view text, std::string_view ending) {
  return text.size() >= ending.size() &&
         std::equal(ending.begin(), ending.end(), text.end() - static_cast<std::ptrdiff_t>(ending.size()), same_letter);
}

/// The number that the whole text is, 0 when it is none.
size_t number_of(std::string_view text) {
  size_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? number : 0;
}

Column find_column(const Dialect& dialect, const Head& head, const std::string& wanted) {
  if (dialect.format == Format::json_lines) return {.name = wanted};
  const size_t found = static_cast<size_t>(std::count(head.names.begin(), head.names.end(), wanted));
  if (found == 1) {
    const auto at = std::find(head.names.begin(), head.names.end(), wanted);
    return {.name = wanted, .index = static_cast<size_t>(at - head.names.begin())};
  }
  if (found > 1) fail(ExitCode::usage, "{} columns are named {}: give its number", found, in_quotes(wanted));
  const size_t number = number_of(wanted);
  if (number > 0 && !dialect.has_header() && (dialect.delimited() || number == 1)) {
    return {.name = wanted, .index = number - 1};
  }
  if (number > 0 && number <= head.names.size()) return {.name = head.names[number - 1], .index = number - 1};
  fail(
      ExitCode::usage, "no column {}{}", in_quotes(wanted),
      dialect.has_header() ? did_you_mean(wanted, head.names) : "; without a header line columns have numbers, from 1");
}

}  // namespace

Dialect Dialect::of(Format format) {
  const bool tabs = format == Format::tsv || format == Format::tsv_escaped;
  return {.format = format, .separator = tabs ? '\t' : ','};
}

bool Dialect::delimited() const { return format != Format::json_lines && format != Format::lines; }

std::string_view name_of(Format format) {
  return std::find_if(std::begin(formats), std::end(formats), [&](const auto& row) { return row.format == format; })
      ->name;
}

std::vector<std::string> format_names() {
  std::vector<std::string> names;
  for (const auto& row : formats) names.emplace_back(row.name);
  return names;
}

Format format_of(std::string_view name) {
  for (const auto& row : formats) {
    if (row.name == name) return row.format;
  }
  fail(ExitCode::usage, "no format {}: {}{}", in_quotes(name), alternatives(format_names()),
       did_you_mean(name, format_names()));
}

std::optional<Format> format_of_file(std::string_view file) {
  for (const auto& row : endings) {
    if (ends_with_ignoring_case(file, row.ending)) return row.format;
  }
  return std::nullopt;
}

char separator_of(std::string_view text) {
  if (text == "\\t") return '\t';
  const unsigned char byte = text.size() == 1 ? static_cast<unsigned char>(text[0]) : 0;
  if (byte == 0 || byte > 0x7F || byte == '\n' || byte == '\r' || byte == '"' || std::isalnum(byte) != 0) {
    fail(ExitCode::usage, "no separator {}: one byte of ASCII, or \\t; no quote, line end, letter or digit",
         in_quotes(text));
  }
  return text[0];
}

std::vector<Column> choose_columns(const Dialect& dialect, const Head& head, std::span<const std::string> wanted) {
  std::vector<Column> columns;
  for (const std::string& name : wanted) {
    columns.push_back(find_column(dialect, head, name));
    const Column& added = columns.back();
    const auto same = [&](const Column& other) { return other.name == added.name && other.index == added.index; };
    if (std::count_if(columns.begin(), columns.end(), same) > 1) {
      fail(ExitCode::usage, "column {} is given twice", in_quotes(name));
    }
  }
  return columns;
}

std::string_view describe(Fault fault) {
  switch (fault) {
    case Fault::unterminated_quote: return "a quote that nothing closes: the rest of the input is one cell";
    case Fault::text_after_quote: return "text behind a closing quote";
    case Fault::too_few_cells: return "fewer cells than expected";
    case Fault::too_many_cells: return "more cells than expected";
    case Fault::not_an_object: return "not a JSON object";
    case Fault::repeated_key: return "a key that stood before: the last one counts";
  }
  return {};
}

}  // namespace vxcli::table
