// The report as a page: one file of HTML, no script, nothing from elsewhere.
#include <fmt/format.h>

#include <string>

#include "cli/report.h"
#include "cli/text.h"

namespace vxcli {

using column::ColumnReport;
using column::Evidence;
using column::Unread;

namespace {

constexpr std::string_view style = R"css(
:root { color-scheme: light dark;
  --page: #ffffff; --text: #1c2330; --soft: #4d5768; --line: #c9d0dc; --track: #e9edf3; --link: #1c56ad;
  --read: #2a7a53; --ambiguous: #a66a00; --contradicting: #7a3fa8; --unread: #b3261e; --empty: #8b95a5; }
@media (prefers-color-scheme: dark) { :root {
  --page: #12161d; --text: #e6eaf1; --soft: #aab4c4; --line: #39424f; --track: #252d39; --link: #8ab4ff;
  --read: #5fbf92; --ambiguous: #e0ad3a; --contradicting: #c79bea; --unread: #ff8a80; --empty: #6d7787; } }
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 72rem; padding: 1.5rem; background: var(--page); color: var(--text);
  font: 1rem/1.5 system-ui, sans-serif; }
h1 { font-size: 1.6rem; margin: 0; overflow-wrap: anywhere; } h2 { font-size: 1.3rem; margin: 0; }
h3 { font-size: 1rem; margin: 1.5rem 0 .25rem; }
p { margin: .25rem 0; } .soft, caption, th { color: var(--soft); }
a { color: var(--link); }
:focus-visible { outline: 3px solid var(--link); outline-offset: 2px; }
.skip { position: absolute; left: -100rem; } .skip:focus { position: static; }
nav ul { list-style: none; display: flex; flex-wrap: wrap; gap: .25rem 1.25rem; padding: 0; margin: 1rem 0; }
section { border-top: 2px solid var(--line); padding: 1.25rem 0; margin: 1.5rem 0 0; }
.scroll { overflow-x: auto; }
table { border-collapse: collapse; min-width: 60%; }
caption { text-align: left; font-weight: 600; padding: .75rem 0 .25rem; }
th, td { text-align: left; vertical-align: top; padding: .25rem 1.5rem .25rem 0; border-bottom: 1px solid var(--line); }
th { font-weight: 600; font-size: .9rem; white-space: nowrap; }
.number { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; }
code { font: .95em/1.4 ui-monospace, monospace; white-space: pre-wrap; overflow-wrap: anywhere; }
mark { background: none; color: inherit; text-decoration: underline wavy var(--unread) 2px; text-underline-offset: 3px; }
.hidden-character { color: var(--soft); border: 1px solid var(--line); border-radius: 3px; padding: 0 2px; font-size: .8em; }
.whole { display: flex; height: 1.25rem; margin: .75rem 0; border-radius: 4px; overflow: hidden; background: var(--track);
  gap: 2px; }
.whole span, .part span { display: block; min-width: 3px; forced-color-adjust: none; }
.part { width: 12rem; height: .8rem; margin-top: .35rem; background: var(--track); border-radius: 3px; overflow: hidden; }
.part span { height: 100%; }
.read { background: var(--read); } .ambiguous { background: var(--ambiguous); }
.contradicting { background: var(--contradicting); } .unread { background: var(--unread); }
.empty { background: var(--empty); }
@media print { body { max-width: none; } .skip, nav { display: none; } }
)css";

/// Text for HTML. Characters that show nothing, or that turn the direction of what follows, are shown by their numbers.
class Escaped {
 public:
  void put(std::string_view text) {
    const auto units = utf32(text);
    if (!units) {
      for (const char byte : text) put_byte(static_cast<unsigned char>(byte));
      return;
    }
    for (const char32_t unit : *units) put_unit(unit);
  }
  std::string take() { return std::move(html_); }
  void raw(std::string_view html) { html_ += html; }

 private:
  static bool shows_nothing(char32_t unit) {
    return unit < 0x20 || (unit >= 0x7F && unit <= 0xA0) || unit == 0xAD || unit == 0x61C ||
           (unit >= 0x2000 && unit <= 0x200F) || (unit >= 0x2028 && unit <= 0x202F) ||
           (unit >= 0x205F && unit <= 0x206F) || unit == 0x3000 || unit == 0xFEFF;
  }
  void put_hidden(std::string_view name) { html_ += fmt::format("<span class=\"hidden-character\">{}</span>", name); }
  void put_byte(unsigned char byte) {
    if (byte < 0x80) put_unit(byte);
    else put_hidden(fmt::format("{:02X}", byte));
  }
  void put_unit(char32_t unit) {
    switch (unit) {
      case U'&': html_ += "&amp;"; return;
      case U'<': html_ += "&lt;"; return;
      case U'>': html_ += "&gt;"; return;
      case U'"': html_ += "&quot;"; return;
      case U'\n': put_hidden("LF"); return;
      case U'\t': put_hidden("TAB"); return;
      default: break;
    }
    if (shows_nothing(unit)) put_hidden(fmt::format("U+{:04X}", static_cast<uint32_t>(unit)));
    else html_ += utf8(static_cast<VXChar>(unit));
  }

  std::string html_;
};

std::string escaped(std::string_view text) {
  Escaped result;
  result.put(text);
  return result.take();
}

std::string code(std::string_view text) { return fmt::format("<code>{}</code>", escaped(text)); }

/// The value with what cannot stand there underlined; where nothing stands there, a mark at the place.
std::string marked(const Unread& cell) {
  const std::string_view value = cell.value;
  const size_t begin = std::min(cell.position, value.size());
  const size_t end = std::min(begin + cell.length, value.size());
  Escaped result;
  result.raw("<code>");
  result.put(value.substr(0, begin));
  result.raw("<mark>");
  if (end == begin) result.raw("&nbsp;");
  result.put(value.substr(begin, end - begin));
  result.raw("</mark>");
  result.put(value.substr(end));
  result.raw("</code>");
  return result.take();
}

double width(uint64_t part, uint64_t whole) {
  return whole == 0 ? 0 : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

struct Heading {
  std::string_view text;
  bool number = false;
};

/// A table in a frame that scrolls by itself and that the keyboard reaches.
class HtmlTable {
 public:
  HtmlTable(std::string caption, std::vector<Heading> headings)
      : caption_(std::move(caption)), headings_(std::move(headings)) {}

  void row(const std::vector<std::string>& cells) {
    rows_ += "<tr>";
    for (size_t i = 0; i < cells.size(); ++i) {
      rows_ += headings_[i].number ? fmt::format("<td class=\"number\">{}</td>", cells[i])
                                   : fmt::format("<td>{}</td>", cells[i]);
    }
    rows_ += "</tr>\n";
  }

  std::string html() const {
    std::string head;
    for (const Heading& heading : headings_) {
      head += fmt::format("<th scope=\"col\"{}>{}</th>", heading.number ? " class=\"number\"" : "", heading.text);
    }
    return fmt::format(
        "<div class=\"scroll\" role=\"region\" tabindex=\"0\" aria-label=\"{0}\"><table><caption>{0}</caption>\n"
        "<thead><tr>{1}</tr></thead>\n<tbody>\n{2}</tbody></table></div>\n",
        caption_, head, rows_);
  }

 private:
  std::string caption_;
  std::vector<Heading> headings_;
  std::string rows_;
};

std::string part(uint64_t count, uint64_t whole) {
  return fmt::format(
      "<div class=\"part\" aria-hidden=\"true\"><span class=\"read\" style=\"width:{:.3f}%\"></span></div>",
      width(count, whole));
}

std::string shares(const ColumnReport& report) {
  std::string pieces;
  std::string told;
  HtmlTable table("Values", {{""}, {"Values", true}, {"Share", true}, {"Meaning"}});
  for (const Share& share : shares_of(report)) {
    if (share.count == 0) continue;
    pieces += fmt::format("<span class=\"{}\" style=\"flex-grow:{}\"></span>", share.name, share.count);
    told += fmt::format("{}{} {}", told.empty() ? "" : ", ", share.name, percent(share.count, report.values));
    table.row(
        {fmt::format("<span class=\"{}\" style=\"display:inline-block;width:.8rem;height:.8rem;border-radius:3px\" "
                     "aria-hidden=\"true\"></span> {}",
                     share.name, share.name),
         std::to_string(share.count), escaped(percent(share.count, report.values)), std::string(share.meaning)});
  }
  return fmt::format("<div class=\"whole\" role=\"img\" aria-label=\"{}\">{}</div>\n{}", escaped(told), pieces,
                     table.html());
}

std::string cells(std::string_view caption, uint64_t count, const std::vector<Unread>& list) {
  if (count == 0) return {};
  const std::string title =
      list.size() < count ? fmt::format("{}: the first {} of {}", caption, list.size(), count) : std::string(caption);
  HtmlTable table(title, {{"Line", true}, {"Byte", true}, {"Value"}, {"Why"}});
  for (const Unread& cell : list) {
    table.row(
        {std::to_string(cell.place.line), std::to_string(cell.place.offset), marked(cell), escaped(cell.expected)});
  }
  return table.html();
}

void add_rows(HtmlTable& table, const Evidence& evidence, std::string_view side) {
  constexpr size_t most = 10;
  for (size_t i = 0; i < std::min(most, evidence.first.size()); ++i) {
    const column::Example& example = evidence.first[i];
    table.row({std::string(side), std::to_string(example.place.line), std::to_string(example.place.offset),
               code(example.value)});
  }
}

std::string evidence(const ColumnReport& report) {
  HtmlTable table("Values that decide", {{"For"}, {"Line", true}, {"Byte", true}, {"Value"}});
  const std::string empty = table.html();
  add_rows(table, report.day_first, "day first");
  add_rows(table, report.month_first, "month first");
  add_rows(table, report.year_first, "year first");
  add_rows(table, report.point, "decimal point");
  add_rows(table, report.comma, "decimal comma");
  const std::string html = table.html();
  return html == empty ? std::string() : html;
}

std::string section(const ColumnReport& report, size_t number) {
  std::string html = fmt::format(
      "<section id=\"column-{0}\" aria-labelledby=\"name-{0}\">\n<h2 id=\"name-{0}\">{1}</h2>\n<p>{2}</p>\n", number,
      escaped(report.decision.column), escaped(columns::describe(report.decision)));
  html += shares(report);
  const std::vector<std::string> reasons = reasons_of(report);
  if (!reasons.empty()) {
    html += "<h3>Why so</h3>\n<ul>\n";
    for (const std::string& reason : reasons) html += fmt::format("<li>{}</li>\n", escaped(reason));
    html += "</ul>\n";
  }
  const uint64_t filled = report.values - report.empty;
  if (!report.forms.empty()) {
    HtmlTable table("Forms", {{"Form"}, {"Values", true}, {"Share", true}, {"Bar"}, {"First", false}, {"Line", true}});
    for (const column::FormShare& form : report.forms) {
      table.row({code(form.pattern), std::to_string(form.count), escaped(percent(form.count, filled)),
                 part(form.count, filled), code(form.example.value), std::to_string(form.example.place.line)});
    }
    html += table.html();
  }
  html += cells("Ambiguous values", report.ambiguous, report.first_ambiguous);
  html += cells("Values against the decision", report.contradicting, report.first_contradicting);
  html += cells("Unread values", report.unread, report.first_unread);
  html += evidence(report);
  if (report.locales.size() > 1) {
    HtmlTable table("Locales, by what they explain", {{"Locale"}, {"Values", true}, {"Share", true}, {"Bar"}});
    for (const column::LocaleRank& rank : report.locales) {
      table.row({escaped(rank.locale), std::to_string(rank.explained), escaped(percent(rank.explained, filled)),
                 part(rank.explained, filled)});
    }
    html += table.html();
  }
  return html + "</section>\n";
}

}  // namespace

std::string report_page(const FileReport& report) {
  std::string links;
  std::string sections;
  for (size_t i = 0; i < report.columns.size(); ++i) {
    const ColumnReport& column = report.columns[i];
    const uint64_t open = column.unread + column.ambiguous + column.contradicting;
    links += fmt::format("<li><a href=\"#column-{}\">{}</a> <span class=\"soft\">{}{}</span></li>\n", i + 1,
                         escaped(column.decision.column), column::word_of(column::kind_words, column.decision.kind),
                         open == 0 ? std::string() : fmt::format(", {} not read", open));
    sections += section(column, i + 1);
  }
  std::string notes;
  for (const std::string& note : report.findings.notes()) notes += fmt::format("<p>{}</p>\n", escaped(note));
  return fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src 'unsafe-inline'\">\n"
      "<title>Columns of {0}</title>\n<style>{1}</style>\n</head>\n<body>\n"
      "<a class=\"skip\" href=\"#columns\">Skip to the columns</a>\n"
      "<header>\n<h1>{0}</h1>\n<p class=\"soft\">{2}, {3} {4}, {5} {6}</p>\n{7}</header>\n"
      "<nav aria-label=\"Columns\"><ul>\n{8}</ul></nav>\n<main id=\"columns\">\n{9}</main>\n</body>\n</html>\n",
      escaped(report.file), style, report.format, report.findings.records,
      report.findings.records == 1 ? "record" : "records", report.columns.size(),
      report.columns.size() == 1 ? "column" : "columns", notes, links, sections);
}

}  // namespace vxcli
