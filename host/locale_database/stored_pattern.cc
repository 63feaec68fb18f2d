#include "host/locale_database/stored_pattern.h"

#include <algorithm>
#include <span>

#include "host/locale_database/text.h"

namespace vxnlsldb {

namespace {

bool is_letter(char32_t c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool is_number(char32_t directive) {
  return directive != 0 && std::u32string_view(U"dmYHIMS").find(directive) != std::u32string_view::npos;
}

bool is_month_name(char32_t directive) { return directive == 'b' || directive == 'B'; }

/// The literal text from a step to the next directive, lower-cased.
std::u32string literal_after(const Pattern& pattern, size_t step) {
  std::u32string text;
  while (++step < pattern.size() && pattern[step].directive == 0) text += pattern[step].literal;
  return fold(text);
}

using Names = std::span<const std::u32string>;

/// The entry that a reader takes at the start of the text, or -1.
int first_match(Names list, std::u32string_view text) {
  for (size_t i = 0; i < list.size(); ++i) {
    if (text.starts_with(list[i])) return static_cast<int>(i);
  }
  return -1;
}

std::optional<Misreading> misread_in(Names written, std::initializer_list<Names> lists, std::u32string_view after) {
  for (size_t i = 0; i < written.size(); ++i) {
    const std::u32string text = written[i] + std::u32string(after);
    for (const Names list : lists) {
      const int taken = first_match(list, text);
      if (taken < 0) continue;
      const std::u32string& name = list[static_cast<size_t>(taken)];
      if (static_cast<size_t>(taken) != i || name.size() != written[i].size()) return Misreading{written[i], name};
      break;
    }
  }
  return std::nullopt;
}

bool is_blank(const Step& step) { return step.directive == 0 && step.literal == ' '; }

/// Without blanks, padding and the width of names: what the lenient reader sees of a pattern.
Pattern lenient_shape(const Pattern& pattern) {
  Pattern shape;
  for (Step step : pattern) {
    if (is_blank(step)) continue;
    step.unpadded = false;
    if (is_month_name(step.directive)) step.directive = 'b';
    if (step.directive == 0) step.literal = fold(std::u32string(1, step.literal))[0];
    shape.push_back(step);
  }
  return shape;
}

/// Day and month exchanged: the two fields that a reader cannot tell apart by their digits.
Step exchanged(Step step) {
  if (step.directive == 'd') {
    step.directive = 'm';
  } else if (step.directive == 'm') {
    step.directive = 'd';
  }
  return step;
}

/// For patterns of one shape.
bool same_blanks(const Pattern& a, const Pattern& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const Step& x, const Step& y) { return is_blank(x) == is_blank(y); });
}

}  // namespace

std::optional<Pattern> take_apart(std::u32string_view stored) {
  Pattern pattern;
  for (size_t i = 0; i < stored.size(); ++i) {
    if (stored[i] != '%') {
      pattern.push_back({0, stored[i], false});
      continue;
    }
    if (++i == stored.size()) return std::nullopt;
    const bool unpadded = stored[i] == '#';
    if (unpadded && ++i == stored.size()) return std::nullopt;
    if (is_letter(stored[i])) {
      pattern.push_back({stored[i], 0, unpadded});
    } else if (stored[i] == '%' && !unpadded) {
      pattern.push_back({0, U'%', false});
    } else {
      return std::nullopt;
    }
  }
  return pattern;
}

std::u32string spelled(const Step& step) {
  if (step.directive == 0) return step.literal == '%' ? U"%%" : std::u32string(1, step.literal);
  return (step.unpadded ? U"%#" : U"%") + std::u32string(1, step.directive);
}

int count(const Pattern& pattern, char32_t directive) {
  return static_cast<int>(
      std::count_if(pattern.begin(), pattern.end(), [=](const Step& step) { return step.directive == directive; }));
}

int position(const Pattern& pattern, char32_t directive) {
  for (size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i].directive == directive) return static_cast<int>(i);
  }
  return -1;
}

std::optional<Misreading> misread_name(const Pattern& pattern, const FoldedNames& names) {
  for (size_t i = 0; i < pattern.size(); ++i) {
    const std::u32string after = literal_after(pattern, i);
    std::optional<Misreading> wrong;
    switch (pattern[i].directive) {
      case 'A': wrong = misread_in(names.days, {names.days}, after); break;
      case 'B': wrong = misread_in(names.months, {names.months}, after); break;
      case 'b':
        wrong = misread_in(names.alt_months, {names.alt_months}, after);
        if (!wrong) wrong = misread_in(names.alt_months, {names.months, names.alt_months}, after);
        break;
      default: break;
    }
    if (wrong) return wrong;
  }
  return std::nullopt;
}

char32_t number_before_digit(const Pattern& pattern, const FoldedNames& names) {
  const auto digit_begins_one_of = [](Names list) {
    return std::any_of(list.begin(), list.end(), [](const std::u32string& name) { return is_digit(name[0]); });
  };
  const auto begins_with_digit = [&](const Step& step) {
    if (step.directive == 0) return is_digit(step.literal);
    if (step.directive == 'A') return digit_begins_one_of(names.days);
    if (step.directive == 'B') return digit_begins_one_of(names.months);
    if (step.directive == 'b') return digit_begins_one_of(names.alt_months);
    return is_number(step.directive);
  };
  for (size_t i = 0; i + 1 < pattern.size(); ++i) {
    // A year has four positions in every reader.
    if (pattern[i].directive == 'Y' || !is_number(pattern[i].directive)) continue;
    if (begins_with_digit(pattern[i + 1])) return pattern[i].directive;
  }
  return 0;
}

Overlap overlap(const Pattern& earlier, const Pattern& later) {
  const Pattern first = lenient_shape(earlier);
  Pattern second = lenient_shape(later);
  const auto begins_with_first = [&] {
    return first.size() <= second.size() && std::equal(first.begin(), first.end(), second.begin());
  };
  if (!begins_with_first()) {
    std::transform(second.begin(), second.end(), second.begin(), exchanged);
    return begins_with_first() ? Overlap::order : Overlap::none;
  }
  if (first.size() < second.size()) return Overlap::part;
  return same_blanks(earlier, later) ? Overlap::none : Overlap::blanks;
}

}  // namespace vxnlsldb
