#include "host/zone_table.h"

#include <sys/auxv.h>

#include <algorithm>
#include <cstdlib>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "host/file.h"

namespace vxhost {

namespace {

constexpr size_t longest_identifier = 50;  // what a caller has room for

/// Identifiers become file names: nothing that leaves the folder gets in, so none begins with "/" or has a ".".
bool is_identifier(std::string_view name) {
  return !name.empty() && name.size() <= longest_identifier && name.front() != '/' &&
         name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_+-/") == name.npos;
}

char fold(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

std::string folded(std::string_view name) {
  std::string key(name);
  std::transform(key.begin(), key.end(), key.begin(), fold);
  return key;
}

template <class Receive>
void for_each_line(std::string_view text, Receive receive) {
  while (!text.empty()) {
    const size_t end = text.find('\n');
    receive(text.substr(0, end));
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  }
}

/// The fields of a line, cut at `separator`; at most `count` are looked at.
std::vector<std::string_view> fields(std::string_view line, char separator, size_t count) {
  std::vector<std::string_view> cut;
  while (cut.size() < count && !line.empty()) {
    const size_t end = line.find(separator);
    cut.push_back(line.substr(0, end));
    line = end == std::string_view::npos ? std::string_view() : line.substr(end + 1);
  }
  cut.resize(count);
  return cut;
}

}  // namespace

std::string ZoneTable::system_folder() {
  const char* const chosen = getauxval(AT_SECURE) == 0 ? std::getenv("TZDIR") : nullptr;
  return chosen != nullptr && *chosen == '/' ? chosen : "/usr/share/zoneinfo";
}

ZoneTable::ZoneTable(std::string folder) : folder_(std::move(folder)) {
  std::unordered_set<std::string_view> of_countries;
  const std::string country_table = contents(folder_ + "/zone.tab");
  for_each_line(country_table, [&](std::string_view line) {
    if (!line.starts_with('#')) of_countries.insert(fields(line, '\t', 3)[2]);
  });

  std::unordered_map<std::string, std::string> targets;  // folded names of links and what they lead to
  const auto add = [&](std::string_view name) {
    if (is_identifier(name)) by_folded_name_.try_emplace(folded(name), Identifier{std::string(name), nullptr});
  };
  const std::string rules = contents(folder_ + "/tzdata.zi");
  for_each_line(rules, [&](std::string_view line) {
    if (line.starts_with("Z ")) {
      add(fields(line, ' ', 2)[1]);
    } else if (line.starts_with("L ")) {
      const auto cut = fields(line, ' ', 3);
      add(cut[2]);
      if (!of_countries.contains(cut[2])) targets[folded(cut[2])] = folded(cut[1]);
    } else if (line.starts_with("# version ")) {
      version_ = line.substr(10);
    }
  });
  add("Etc/UTC");
  add("UTC");
  targets.try_emplace("utc", "etc/utc");

  for (auto& [key, identifier] : by_folded_name_) {
    std::string at = key;
    for (int steps = 0; steps < 8; ++steps) {  // links lead to links at most a few times; a ring ends here
      const auto next = targets.find(at);
      if (next == targets.end() || !by_folded_name_.contains(next->second)) break;
      at = next->second;
    }
    identifier.canonical = &by_folded_name_.find(at)->second;
    in_order_.push_back(&identifier);
  }
  std::sort(in_order_.begin(), in_order_.end(),
            [](const Identifier* a, const Identifier* b) { return a->name < b->name; });
}

const ZoneTable::Identifier* ZoneTable::find(std::string_view name) const {
  while (name.ends_with(' ')) name.remove_suffix(1);
  if (name.size() > longest_identifier) return nullptr;
  char key[longest_identifier];
  std::transform(name.begin(), name.end(), key, fold);
  const auto at = by_folded_name_.find(std::string_view(key, name.size()));
  return at != by_folded_name_.end() ? &at->second : nullptr;
}

}  // namespace vxhost
