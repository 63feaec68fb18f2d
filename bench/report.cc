// report DOCS NOTES JSON...: reads what the programs of bench/ wrote, prints the table, and writes DOCS/performance.md
// and DOCS/performance.svg. NOTES is bench/notes.md.
#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace {

using nlohmann::json;

struct Contender {
  std::string name;
  double time = 0;  // median, in ns a call
};

struct Row {
  std::string id, title;
  double reach = 0;  // 0: none
  double bytes = 0;  // 0: calls are counted
  Contender ours;
  std::vector<Contender> peers;  // the fastest first

  const Contender& best() const { return peers.front(); }
  double ratio() const { return ours.time / best().time; }
  bool complete() const { return ours.time > 0 && !peers.empty(); }
  bool reached() const { return reach == 0 || ratio() <= reach; }
  std::string shown(const Contender& c) const {
    if (bytes > 0) return fmt::format("{:.2f} GB/s", bytes / c.time);
    if (c.time >= 1e6) return fmt::format("{:.2f} ms", c.time / 1e6);
    if (c.time >= 1e5) return fmt::format("{:.1f} µs", c.time / 1e3);
    return fmt::format("{:.{}f} ns", c.time, c.time < 100 ? 1 : 0);
  }
};

struct Family {
  std::string name, date;
  std::vector<Row> rows;
};

double in_nanoseconds(const json& run) {
  const std::string unit = run.at("time_unit");
  return run.at("cpu_time").get<double>() * (unit == "ns" ? 1 : unit == "us" ? 1e3 : unit == "ms" ? 1e6 : 1e9);
}

std::vector<std::string> split(const std::string& text, char at) {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, at);) parts.push_back(part);
  return parts;
}

Family read(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error(path + ": cannot be read");
  const json all = json::parse(file);
  const json& context = all.at("context");
  Family family{context.at("family"), context.at("date"), {}};
  for (const auto& [key, value] : context.items()) {
    if (!key.starts_with("row ")) continue;  // "row 007 ID", sorted
    const auto parts = split(value.get<std::string>(), '\t');
    Row row;
    row.id = key.substr(8);
    row.title = parts.at(0);
    row.reach = std::stod(parts.at(1));
    row.bytes = std::stod(parts.at(2));
    family.rows.push_back(row);
  }
  for (const json& run : all.at("benchmarks")) {
    if (run.value("aggregate_name", "") != "median") continue;
    const std::string name = run.at("run_name");
    const size_t slash = name.find('/');
    const std::string id = name.substr(0, slash);
    const auto row = std::find_if(family.rows.begin(), family.rows.end(), [&](const Row& r) { return r.id == id; });
    if (row == family.rows.end()) throw std::runtime_error(fmt::format("{}: {} is not declared", path, id));
    const Contender contender{name.substr(slash + 1), in_nanoseconds(run)};
    if (contender.name == "vxnlsloc") {
      row->ours = contender;
    } else {
      row->peers.push_back(contender);
    }
  }
  std::erase_if(family.rows, [](const Row& row) { return !row.complete(); });
  for (Row& row : family.rows) {
    std::sort(row.peers.begin(), row.peers.end(), [](const auto& a, const auto& b) { return a.time < b.time; });
  }
  return family;
}

/// The paragraphs of notes.md by row.
std::map<std::string, std::string> read_notes(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error(path + ": cannot be read");
  std::map<std::string, std::string> notes;
  std::string id;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("## ")) {
      id = line.substr(3);
    } else if (!id.empty()) {
      notes[id] += line + "\n";
    }
  }
  for (auto& [_, text] : notes) {
    text.erase(0, text.find_first_not_of('\n'));
    text.erase(text.find_last_not_of('\n') + 1);
  }
  return notes;
}

std::string others(const Row& row) {
  std::string text;
  for (size_t i = 1; i < row.peers.size(); ++i) {
    text += fmt::format("{}{} {}", i > 1 ? "; " : "", row.peers[i].name, row.shown(row.peers[i]));
  }
  return text;
}

std::string reach_of(const Row& row) { return row.reach == 0 ? "" : fmt::format("{:.3g}", row.reach); }
const char* verdict(const Row& row) { return row.reach == 0 ? "" : row.reached() ? "yes" : "no"; }

void print(const Family& family) {
  fmt::print("\n{:<52} {:<34} {:>12} {:>12} {:>7} {:>7}  reached\n", family.name, "fastest peer", "peer", "ours",
             "ratio", "reach");
  for (const Row& row : family.rows) {
    fmt::print("{:<52} {:<34} {:>12} {:>12} {:>7.3f} {:>7}  {}\n", row.title, row.best().name, row.shown(row.best()),
               row.shown(row.ours), row.ratio(), reach_of(row), verdict(row));
  }
}

std::string processor() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  }
  return "an unknown processor";
}

std::string page(const std::vector<Family>& families, const std::map<std::string, std::string>& notes) {
  std::string text =
      "# Performance\n\n"
      "Written by `script/bench`. Do not edit.\n\n"
      "Times of vxnlsloc and of its peers on the same seeded inputs in the same process, in interleaved repetitions; "
      "medians of\nprocessor time. The ratio is ours divided by the fastest peer's: below 1 is ahead. Values do not "
      "come again within\n65,536 calls, texts are cut from 192 KiB of each kind or 1 MiB.\n\n"
      "![Ratios](performance.svg)\n\n";
  size_t with_target = 0, reached = 0;
  for (const Family& family : families) {
    for (const Row& row : family.rows) {
      with_target += row.reach != 0;
      reached += row.reach != 0 && row.reached();
    }
  }
  text += fmt::format("{}; g++ {}; {} of {} rows reach their ratio.\n", processor(), __VERSION__, reached, with_target);
  for (const Family& family : families) {
    text += fmt::format("\n## {}\n\nMeasured {}.\n\n", family.name, family.date);
    text += "| Row | Fastest peer | Peer | Ours | Ratio | To reach | Reached | Other peers |\n";
    text += "|---|---|---:|---:|---:|---:|---|---|\n";
    for (const Row& row : family.rows) {
      text += fmt::format("| {} | {} | {} | {} | {:.3f} | {} | {} | {} |\n", row.title, row.best().name,
                          row.shown(row.best()), row.shown(row.ours), row.ratio(), reach_of(row), verdict(row),
                          others(row));
    }
    for (const Row& row : family.rows) {
      if (row.reached()) continue;
      const auto note = notes.find(row.id);
      text += fmt::format("\n**{}**: {}\n", row.title,
                          note != notes.end() ? note->second : "no note yet (`bench/notes.md`, `" + row.id + "`).");
    }
  }
  return text;
}

std::string escaped(const std::string& text) {
  std::string out;
  for (const char c : text) {
    out += c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '&' ? "&amp;" : std::string(1, c);
  }
  return out;
}

/// A bar a row: its length is the ratio, the tick the ratio to reach, the line at the right the fastest peer.
std::string chart(const std::vector<Family>& families) {
  constexpr int label = 380, one = 460, line = 18, top = 46;
  int rows = 0;
  for (const Family& family : families) rows += static_cast<int>(family.rows.size()) + 2;
  const int height = top + rows * line + 10;
  constexpr int width = label + one * 5 / 4 + 60;
  std::string svg = fmt::format(
      R"(<svg xmlns="http://www.w3.org/2000/svg" width="{0}" height="{1}" viewBox="0 0 {0} {1}" role="img">
<title>Time of vxnlsloc as a share of its fastest peer's</title>
<style>
  text {{ font: 12px system-ui, sans-serif; fill: #1f2328; }}
  .family {{ font-weight: 600; }}
  .paper {{ fill: #ffffff; }}
  .ahead {{ fill: #2f7d4f; }}
  .behind {{ fill: #b3541e; }}
  .peer {{ stroke: #57606a; }}
  .reach {{ stroke: #1f2328; stroke-width: 2; }}
  @media (prefers-color-scheme: dark) {{
    text {{ fill: #e6edf3; }}
    .paper {{ fill: #0d1117; }}
    .ahead {{ fill: #4fb37a; }}
    .behind {{ fill: #e08a4f; }}
    .peer {{ stroke: #9198a1; }}
    .reach {{ stroke: #e6edf3; }}
  }}
</style>
<rect class="paper" width="{0}" height="{1}"/>
<text x="10" y="20">Time as a share of the fastest peer's; shorter is faster. Tick: the share to reach; green: reached.</text>
<line class="peer" x1="{2}" y1="28" x2="{2}" y2="{3}"/>
<text x="{4}" y="38">the fastest peer</text>
)",
      width, height, label + one, height - 8, label + one + 4);
  int y = top;
  for (const Family& family : families) {
    y += line;
    svg += fmt::format("<text class=\"family\" x=\"10\" y=\"{}\">{}</text>\n", y + 12, escaped(family.name));
    y += line;
    for (const Row& row : family.rows) {
      const double length = std::min(row.ratio(), 1.25) * one;
      svg +=
          fmt::format("<text x=\"{}\" y=\"{}\" text-anchor=\"end\">{}</text>", label - 8, y + 12, escaped(row.title));
      svg += fmt::format("<rect class=\"{}\" x=\"{}\" y=\"{}\" width=\"{:.1f}\" height=\"{}\" rx=\"2\"/>",
                         row.reached() ? "ahead" : "behind", label, y + 2, length, line - 5);
      if (row.reach > 0) {
        const double at = label + std::min(row.reach, 1.25) * one;
        svg += fmt::format("<line class=\"reach\" x1=\"{0:.1f}\" y1=\"{1}\" x2=\"{0:.1f}\" y2=\"{2}\"/>", at, y,
                           y + line - 1);
      }
      svg += fmt::format("<text x=\"{:.1f}\" y=\"{}\">{:.2f}</text>\n",
                         label + std::max(length, row.reach > 0 ? std::min(row.reach, 1.25) * one : 0) + 6, y + 12,
                         row.ratio());
      y += line;
    }
  }
  return svg + "</svg>\n";
}

void write(const std::string& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
  if (!file.flush()) throw std::runtime_error(path + ": cannot be written");
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc < 4) {
    std::cerr << "usage: report DOCS NOTES JSON...\n";
    return 2;
  }
  std::vector<Family> families;
  for (int i = 3; i < argc; ++i) families.push_back(read(argv[i]));
  for (const Family& family : families) print(family);
  const std::string docs = argv[1];
  if (docs != "-") {
    write(docs + "/performance.md", page(families, read_notes(argv[2])));
    write(docs + "/performance.svg", chart(families));
  }
  return 0;
} catch (const std::exception& error) {
  std::cerr << "report: " << error.what() << '\n';
  return 1;
}
