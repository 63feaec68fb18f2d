#include "cli/completion.h"

#include <algorithm>

#include "cli/arguments.h"
#include "cli/options.h"

namespace vxcli {

namespace {

struct FoundOption {
  const Option* option = nullptr;
  size_t value_at = std::string_view::npos;  // where the value begins that stands in the same word

  bool wants_next_word() const { return option != nullptr && !option->is_flag() && value_at == std::string_view::npos; }
};

/// The option that a word names; in a group of letters the last one, or the first that takes the others as its value.
FoundOption option_in(std::string_view word, std::span<const Option* const> known) {
  const auto find = [&](const auto& matches) -> const Option* {
    const auto found = std::find_if(known.begin(), known.end(), matches);
    return found == known.end() ? nullptr : *found;
  };
  if (word.starts_with("--")) {
    const size_t equals = word.find('=');
    const std::string_view name = word.substr(2, std::min(equals, word.size()) - 2);
    const Option* const option = find([&](const Option* one) { return one->name == name; });
    return {option, equals == std::string_view::npos ? equals : equals + 1};
  }
  FoundOption last;
  for (size_t i = 1; i < word.size(); ++i) {
    last.option = find([&](const Option* one) { return one->letter == word[i]; });
    if (last.option == nullptr) break;
    if (last.option->is_flag()) continue;
    if (i + 1 < word.size()) last.value_at = i + 1;
    break;
  }
  return last;
}

/// Enough of a help text for a line of a list.
std::string in_brief(std::string_view help) { return std::string(help.substr(0, help.find("; "))); }

Completion values_of(Completes what, std::span<const std::string_view> choices, std::string prefix) {
  Completion completion{.what = what, .prefix = std::move(prefix), .candidates = {}};
  if (choices.empty()) return completion;
  completion.what = Completes::choices;
  for (const std::string_view choice : choices) {
    completion.candidates.push_back({fmt::format("{}{}", completion.prefix, choice), ""});
  }
  return completion;
}

Completion options_after(std::span<const Option* const> known) {
  Completion completion{.what = Completes::choices, .prefix = {}, .candidates = {}};
  for (const Option* option : known) {
    if (!option->name.empty())
      completion.candidates.push_back({fmt::format("--{}", option->name), in_brief(option->help)});
  }
  for (const Option* option : known) {
    if (option->letter != 0)
      completion.candidates.push_back({fmt::format("-{}", option->letter), in_brief(option->help)});
  }
  return completion;
}

Completion values_of(const Command& command, const Option& option, std::string prefix) {
  Completion completion = values_of(option.completes, option.choices, std::move(prefix));
  if (&option == &options::locale && command.ranks_locales) {
    completion.candidates.push_back(
        {fmt::format("{}{}", completion.prefix, options::ranked_locale), "the locale that explains most"});
  }
  return completion;
}

void add_commands(const Command& parent, Completion& completion) {
  for (const Command* child : parent.commands) {
    completion.candidates.push_back({std::string(child->name), std::string(child->summary)});
  }
}

Completion commands_or_value(const Command& command, std::span<const std::string> values) {
  Completion completion;
  const auto& wanted = command.arguments;
  if (!wanted.empty() && (values.size() < wanted.size() || wanted.back().repeats)) {
    const Argument& argument = wanted[std::min(values.size(), wanted.size() - 1)];
    completion = values_of(argument.completes, argument.choices, "");
  }
  if (completion.what == Completes::commands) {
    const Command* parent = &root_command;
    for (const std::string& value : values) parent = parent == nullptr ? nullptr : find_command(*parent, value);
    if (parent != nullptr) add_commands(*parent, completion);
  } else if (values.empty()) {
    add_commands(command, completion);
  }
  return completion;
}

}  // namespace

Completion complete(std::span<const std::string> words) {
  CommandPath path{&root_command};
  if (words.empty()) return commands_or_value(root_command, {});
  const std::string_view current = words.back();
  std::vector<std::string> values;
  bool only_values = false;
  const Option* waiting = nullptr;  // takes the next word as its value
  for (const std::string& word : words.first(words.size() - 1)) {
    if (waiting != nullptr) {
      waiting = nullptr;
    } else if (only_values) {  // NOLINT(bugprone-branch-clone): also what looks like an option
      values.push_back(word);
    } else if (word == end_of_options) {
      only_values = true;
    } else if (looks_like_option(word)) {
      const FoundOption found = option_in(word, options_of(path));
      if (found.wants_next_word()) waiting = found.option;
    } else if (const Command* const child = values.empty() ? find_command(*path.back(), word) : nullptr) {
      path.push_back(child);
    } else {
      values.push_back(word);
    }
  }
  if (waiting != nullptr) return values_of(*path.back(), *waiting, "");
  if (!only_values && current.starts_with('-')) {
    const std::vector<const Option*> known = options_of(path);
    const FoundOption found = option_in(current, known);
    if (found.option == nullptr || found.value_at == std::string_view::npos) return options_after(known);
    return values_of(*path.back(), *found.option, std::string(current.substr(0, found.value_at)));
  }
  return commands_or_value(*path.back(), values);
}

std::string_view completion_script(std::string_view shell) {
  // bash breaks words at "=" and ":", too, and wants back what stands behind the last break.
  static constexpr std::string_view bash = R"sh(# Completion of vxnls in bash, written by "vxnls completion bash".
_vxnls() {
  local line=$COMP_LINE word blank i prefix what answer
  local -a words=()
  for ((i = 0; i <= COMP_CWORD; ++i)); do
    word=${COMP_WORDS[i]}
    blank=${line%%[![:blank:]]*}
    line=${line#"$blank"}
    line=${line#"$word"}
    if [[ -z $blank && ${#words[@]} -gt 0 ]]; then
      words[${#words[@]}-1]+=$word
    else
      words+=("$word")
    fi
  done
  word=${word##[=:]}
  prefix=${words[${#words[@]}-1]}
  prefix=${prefix%"$word"}
  COMPREPLY=()
  {
    IFS= read -r what
    if [[ $what == files* ]]; then
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
    else
      while IFS=$'\t' read -r answer what; do
        [[ $answer == "$prefix$word"* ]] && COMPREPLY+=("${answer#"$prefix"}")
      done
    fi
  } < <("${words[0]/#\~/$HOME}" completion next -- "${words[@]:1}" 2>/dev/null)
}
complete -F _vxnls vxnls
)sh";
  static constexpr std::string_view zsh = R"sh(#compdef vxnls
# Completion of vxnls in zsh, written by "vxnls completion zsh".
_vxnls() {
  local -a answers described
  local answer
  answers=("${(@f)$(_call_program candidates ${words[1]} completion next -- "${(@qq)${(@Q)words[2,CURRENT]}}" 2>/dev/null)}")
  if [[ $answers[1] == files* ]]; then
    [[ -n ${answers[1]#files?} ]] && compset -P '*='
    _files
    return
  fi
  for answer in "${(@)answers[2,-1]}"; do
    described+=("${${answer%%$'\t'*}//:/\\:}:${answer#*$'\t'}")
  done
  _describe vxnls described
}
if [[ $funcstack[1] == _vxnls ]]; then
  _vxnls "$@"
else
  compdef _vxnls vxnls
fi
)sh";
  static constexpr std::string_view fish = R"sh(# Completion of vxnls in fish, written by "vxnls completion fish".
function __vxnls_candidates
    set -l words (commandline -opc)
    set -l current (commandline -ct | string unescape)
    set -l answers ($words[1] completion next -- $words[2..-1] "$current" 2>/dev/null)
    if string match -q 'files*' -- $answers[1]
        set -l prefix (string replace -r '^files\t?' '' -- $answers[1])
        set -l part (string sub -s (math 1 + (string length -- "$prefix")) -- "$current")
        printf "$prefix%s\n" (__fish_complete_path "$part")
    else
        printf '%s\n' $answers[2..-1]
    end
end
complete -c vxnls -f -a '(__vxnls_candidates)'
)sh";
  return shell == "bash" ? bash : shell == "zsh" ? zsh : fish;
}

}  // namespace vxcli
