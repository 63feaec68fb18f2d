#include "cli/report.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "cli/text.h"

namespace vxcli {

using column::ColumnReport;
using column::Evidence;
using column::Kind;
using column::Source;
using column::Unread;

namespace {

/// A bar of `width` columns, in eighths of one.
std::string bar(uint64_t part, uint64_t whole, size_t width) {
  constexpr std::array<std::string_view, 8> eighths = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
  if (whole == 0 || part == 0) return {};
  const double exact = static_cast<double>(part) / static_cast<double>(whole) * static_cast<double>(width * 8);
  const auto count = std::max<size_t>(1, static_cast<size_t>(std::llround(exact)));  // something is never nothing
  std::string text;
  for (size_t i = 0; i < count / 8; ++i) text += "█";
  return text + std::string(eighths[count % 8]);
}

std::string values_told(uint64_t count) { return count == 1 ? "1 value" : fmt::format("{} values", count); }

std::string first_of(const Evidence& evidence) {
  if (evidence.first.empty()) return {};
  const column::Example& example = evidence.first.front();
  return fmt::format(" (the first {} on line {})", in_quotes(example.value), example.place.line);
}

/// "12 values read only with the day first (the first "25/12/21" on line 17)"
void add_evidence(std::vector<std::string>& sentences, const Evidence& evidence, std::string_view what) {
  if (evidence.count == 0) return;
  sentences.push_back(fmt::format("{} {} {}{}", values_told(evidence.count), evidence.count == 1 ? "reads" : "read",
                                  what, first_of(evidence)));
}

std::string open_question(uint64_t count, std::string_view two, Source decided) {
  return fmt::format("{} could be read {}{}", values_told(count), two,
                     decided == Source::nothing ? "; nothing decides" : "");
}

}  // namespace

std::vector<Share> shares_of(const ColumnReport& report) {
  return {{"read", "by the decision", report.read, Tint::good},
          {"ambiguous", "two readings, and nothing that decides", report.ambiguous, Tint::warning},
          {"contradicting", "can be read only against the decision", report.contradicting, Tint::note},
          {"unread", "no form fits", report.unread, Tint::error},
          {"empty", "nothing there", report.empty, Tint::faint}};
}

std::string percent(uint64_t part, uint64_t whole) {
  if (whole == 0) return "–";
  if (part == whole) return "100 %";
  const double share = static_cast<double>(part) / static_cast<double>(whole) * 100;
  if (part != 0 && share < 0.1) return "<0.1 %";
  if (share > 99.9) return ">99.9 %";
  return fmt::format("{:.1f} %", share);
}

std::vector<std::string> reasons_of(const ColumnReport& report) {
  std::vector<std::string> sentences;
  if (report.decision.kind == Kind::text) return sentences;
  add_evidence(sentences, report.day_first, "only with the day first");
  add_evidence(sentences, report.month_first, "only with the month first");
  add_evidence(sentences, report.year_first, "only with the year first");
  if (report.either_order != 0) {
    sentences.push_back(
        open_question(report.either_order, "with the day or the month first", report.decision.order_by));
  }
  add_evidence(sentences, report.point, "only with a decimal point");
  add_evidence(sentences, report.comma, "only with a decimal comma");
  if (report.either_decimal != 0) {
    sentences.push_back(
        open_question(report.either_decimal, "with a decimal point or a decimal comma", report.decision.decimal_by));
  }
  const std::string& separators = report.decision.group_separators;
  if (!separators.empty())
    sentences.push_back(fmt::format("groups of digits are separated by {}", in_quotes(separators)));
  return sentences;
}

namespace {

void put_list(std::string& text, Colors colors, std::string_view title, uint64_t count,
              const std::vector<Unread>& cells) {
  if (count == 0) return;
  text += colors.paint(Tint::heading, title);
  if (cells.size() < count) text += fmt::format(", the first {} of {}", cells.size(), count);
  text += '\n';
  Table table("  ");
  for (const Unread& cell : cells) {
    table.row({fmt::format("line {}", cell.place.line), fmt::format("byte {}", cell.place.offset),
               in_quotes(cell.value), cell.expected});
  }
  text += table.text();
}

void put_column(std::string& text, const ColumnReport& report, Colors colors, bool bars) {
  constexpr size_t bar_width = 24;
  text += fmt::format("\n{}  {}\n", colors.paint(Tint::heading, visible(report.decision.column)),
                      columns::describe(report.decision));
  Table shares("  ");
  for (const Share& share : shares_of(report)) {
    if (share.count == 0 && share.name != "read") continue;
    std::vector<std::string> row{std::string(share.name), std::to_string(share.count),
                                 percent(share.count, report.values)};
    if (bars) row.push_back(colors.paint(share.tint, bar(share.count, report.values, bar_width)));
    shares.row(std::move(row));
  }
  text += shares.text();
  for (const std::string& sentence : reasons_of(report)) text += fmt::format("  {}\n", sentence);
  if (!report.forms.empty()) {
    text += colors.paint(Tint::heading, "forms") + '\n';
    Table forms("  ");
    for (const column::FormShare& form : report.forms) {
      std::vector<std::string> row{form.pattern, std::to_string(form.count),
                                   percent(form.count, report.values - report.empty)};
      if (bars) row.push_back(colors.paint(Tint::good, bar(form.count, report.values - report.empty, bar_width)));
      row.push_back(fmt::format("as {} on line {}", in_quotes(form.example.value), form.example.place.line));
      forms.row(std::move(row));
    }
    text += forms.text();
  }
  put_list(text, colors, "ambiguous", report.ambiguous, report.first_ambiguous);
  put_list(text, colors, "against the decision", report.contradicting, report.first_contradicting);
  put_list(text, colors, "unread", report.unread, report.first_unread);
  if (report.locales.size() > 1) {
    text += colors.paint(Tint::heading, "locales") + '\n';
    Table locales("  ");
    for (const column::LocaleRank& rank : report.locales) {
      locales.row({rank.locale, std::to_string(rank.explained), percent(rank.explained, report.values - report.empty)});
    }
    text += locales.text();
  }
}

}  // namespace

std::string report_text(const FileReport& report, Colors colors, bool bars) {
  std::string text = fmt::format("{}: {}, {} {}\n", visible(report.file), report.format, report.findings.records,
                                 report.findings.records == 1 ? "record" : "records");
  for (const std::string& note : report.findings.notes()) text += fmt::format("{}\n", note);
  for (const ColumnReport& column : report.columns) put_column(text, column, colors, bars);
  return text;
}

Json report_json(const FileReport& report) {
  Json columns = Json::array();
  for (const ColumnReport& column : report.columns) columns.push_back(to_json(column));
  Json object{{"file", report.file},
              {"format", report.format},
              {"records", report.findings.records},
              {"flawed_records", report.findings.flaws}};
  if (report.findings.flaws != 0) object["first_flaw"] = report.findings.first_flaw;
  if (report.findings.broken_at) object["invalid_utf8_at"] = *report.findings.broken_at;
  object["columns"] = columns;
  return object;
}

}  // namespace vxcli
