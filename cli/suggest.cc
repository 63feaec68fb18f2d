#include "cli/suggest.h"

#include <algorithm>

#include "cli/text.h"

namespace vxcli {

namespace {

constexpr size_t most_suggestions = 3;

char folded(char c) {
  if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
  return c == '-' || c == ' ' ? '_' : c;
}

/// The beginning of a word is as near to it as one slip.
size_t steps_between(std::string_view word, std::string_view candidate) {
  constexpr size_t shortest_beginning = 3;
  const size_t distance = edit_distance(word, candidate);
  if (word.size() < shortest_beginning || word.size() >= candidate.size()) return distance;
  return edit_distance(word, candidate.substr(0, word.size())) == 0 ? 1 : distance;
}

}  // namespace

size_t edit_distance(std::string_view a, std::string_view b) {
  // Three rows of the table of distances between beginnings of the texts: of i, i - 1 and i - 2 characters of `a`.
  std::vector<size_t> row(b.size() + 1);
  std::vector<size_t> above(b.size() + 1);
  std::vector<size_t> above_that(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    std::swap(above_that, above);
    std::swap(above, row);
    row[0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      const char x = folded(a[i - 1]);
      const char y = folded(b[j - 1]);
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (x == y ? 0 : 1)});
      if (i > 1 && j > 1 && x == folded(b[j - 2]) && y == folded(a[i - 2])) {
        row[j] = std::min(row[j], above_that[j - 2] + 1);
      }
    }
  }
  return row[b.size()];
}

std::vector<std::string> nearest(std::string_view word, const std::vector<std::string>& candidates) {
  constexpr size_t longest_word = 64;  // longer ones are no slip of the finger
  if (word.size() > longest_word) return {};
  size_t best = std::min<size_t>(3, word.size() / 3) + 1;  // one step too far
  std::vector<std::string> found;
  for (const std::string& candidate : candidates) {
    size_t distance = steps_between(word, candidate);
    if (const size_t slash = candidate.rfind('/'); slash != std::string::npos) {
      distance = std::min(distance, steps_between(word, std::string_view(candidate).substr(slash + 1)));
    }
    if (distance > best || (distance == best && found.empty())) continue;
    if (distance < best) found.clear();
    best = distance;
    if (found.size() < most_suggestions) found.push_back(candidate);
  }
  return found;
}

std::string did_you_mean(std::string_view word, const std::vector<std::string>& candidates) {
  const std::vector<std::string> found = nearest(word, candidates);
  return found.empty() ? "" : "; did you mean " + alternatives(found) + "?";
}

}  // namespace vxcli
