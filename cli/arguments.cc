#include "cli/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <utility>

#include "cli/options.h"
#include "cli/suggest.h"
#include "cli/text.h"

namespace vxcli {

namespace {

using Words = std::vector<std::string>;

Words names_of(std::span<const Command* const> commands) {
  Words names;
  for (const Command* one : commands) names.emplace_back(one->name);
  return names;
}

/// The commands named `name`, wherever they stand below the last of `path`.
void collect_namesakes(const CommandPath& path, std::string_view name, Words& found) {
  for (const Command* child : path.back()->commands) {
    CommandPath longer = path;
    longer.push_back(child);
    if (child->name == name) found.push_back(in_quotes(full_name(longer)));
    collect_namesakes(longer, name, found);
  }
}

[[noreturn]] void refuse_command(const CommandPath& path, const std::string& word) {
  Words elsewhere;
  collect_namesakes({&root_command}, word, elsewhere);
  const std::string suggestion = elsewhere.empty() ? did_you_mean(word, names_of(path.back()->commands))
                                                   : fmt::format("; did you mean {}?", alternatives(elsewhere));
  fail(ExitCode::usage, "\"{}\" has no command {}{}", full_name(path), in_quotes(word), suggestion);
}

/// The commands below the last of `path` that have an option so spelled.
void collect_owners(const CommandPath& path, std::string_view spelling, Words& owners) {
  for (const Command* child : path.back()->commands) {
    CommandPath longer = path;
    longer.push_back(child);
    if (std::any_of(child->options.begin(), child->options.end(),
                    [&](const Option* option) { return spelled(*option) == spelling; })) {
      owners.push_back(in_quotes(full_name(longer)));
    }
    collect_owners(longer, spelling, owners);
  }
}

[[noreturn]] void refuse_option(const CommandPath& path, std::string_view word) {
  const std::string spelling(word.substr(0, word.find('=')));
  Words owners;
  collect_owners(path, spelling, owners);
  if (!owners.empty()) {
    fail(ExitCode::usage, "option {} belongs to {} and stands behind the command", spelling, alternatives(owners));
  }
  Words known;
  for (const Option* option : options_of(path)) {
    if (!option->name.empty()) known.push_back(spelled(*option));
  }
  std::string suggestion = did_you_mean(spelling, known);
  if (suggestion.empty()) suggestion = fmt::format("; \"{} --help\" lists its options", full_name(path));
  fail(ExitCode::usage, "\"{}\" has no option {}{}", full_name(path), in_quotes(spelling), suggestion);
}

/// What the parsing library has to say, in the command's own words.
[[noreturn]] void explain(const CLI::ParseError& error, const std::vector<const Option*>& options) {
  // Its texts begin with the option's name, some with dashes and some without.
  const std::string_view text = error.what();
  const std::string_view bare = text.substr(std::min(text.find_first_not_of('-'), text.size()));
  const std::string_view name = bare.substr(0, bare.find_first_of(": "));
  for (const Option* option : options) {
    if (name != option->name && name != std::string_view(&option->letter, 1)) continue;
    if (option->is_flag()) fail(ExitCode::usage, "option {} takes no value", spelled(*option));
    fail(ExitCode::usage, "option {} wants a value: {} {}", spelled(*option), spelled(*option), option->value);
  }
  fail(ExitCode::usage, "{}", text);
}

}  // namespace

bool looks_like_option(std::string_view word) {
  return word.size() > 1 && word[0] == '-' && word[1] != '.' && (word[1] < '0' || word[1] > '9');
}

std::vector<const Option*> options_of(const CommandPath& path) {
  std::vector<const Option*> all;
  for (const Command* command : path) {
    for (const Option* option : command->options) {
      if (std::find(all.begin(), all.end(), option) == all.end()) all.push_back(option);
    }
  }
  return all;
}

const Command* find_command(const Command& parent, std::string_view name) {
  const auto found = std::find_if(parent.commands.begin(), parent.commands.end(),
                                  [&](const Command* one) { return one->name == name; });
  return found == parent.commands.end() ? nullptr : *found;
}

void for_each_command(const std::function<void(const CommandPath&)>& each) {
  const std::function<void(const CommandPath&)> walk = [&](const CommandPath& path) {
    each(path);
    for (const Command* child : path.back()->commands) {
      CommandPath longer = path;
      longer.push_back(child);
      walk(longer);
    }
  };
  walk({&root_command});
}

std::string full_name(const CommandPath& path) {
  std::string name;
  for (const Command* command : path) name += (name.empty() ? "" : " ") + std::string(command->name);
  return name;
}

std::string spelled(const Option& option) {
  return option.name.empty() ? fmt::format("-{}", option.letter) : fmt::format("--{}", option.name);
}

Arguments::Arguments(std::vector<std::string> words) : path_{&root_command} {
  // The parsing library takes "--option=" for an option whose value is the next word.
  for (size_t i = 0; i < words.size() && words[i] != end_of_options; ++i) {
    std::string& word = words[i];
    if (word.size() < 4 || !word.starts_with("--") || word.find('=') != word.size() - 1) continue;
    word.pop_back();
    words.insert(words.begin() + static_cast<std::ptrdiff_t>(i) + 1, "");
  }

  while (!command().commands.empty()) {
    read_level(words, true);
    if (words.empty()) break;
    if (looks_like_option(words[0])) {
      if (words[0] == end_of_options) break;
      refuse_option(path_, words[0]);
    }
    const Command* const child = find_command(command(), words[0]);
    if (child == nullptr) {
      if (command().run != nullptr) break;
      refuse_command(path_, words[0]);
    }
    path_.push_back(child);
    words.erase(words.begin());
  }
  read_level(words, false);

  bool only_values = false;
  for (std::string& word : words) {
    if (!only_values && word == end_of_options) {
      only_values = true;
    } else if (!only_values && looks_like_option(word)) {
      refuse_option(path_, word);
    } else {
      values_.push_back(std::move(word));
    }
  }
  if (has(options::help) || has(options::short_help) || has(options::version)) return;
  check_choices();
  check_count();
}

/// Takes the options that are known so far out of the words: all of them, or those before the first other word.
void Arguments::read_level(std::vector<std::string>& words, bool stop_at_first_word) {
  CLI::App app;
  app.set_help_flag();
  app.allow_extras();
  app.prefix_command(stop_at_first_word);
  const std::vector<const Option*> known = options_of(path_);
  std::vector<CLI::Option*> parsed;
  for (const Option* option : known) {
    std::string names = option->name.empty() ? "" : fmt::format("--{}", option->name);
    if (option->letter != 0) names += fmt::format("{}-{}", names.empty() ? "" : ",", option->letter);
    if (option->is_flag()) {
      parsed.push_back(
          app.add_flag(names)->disable_flag_override()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast));
    } else {
      parsed.push_back(app.add_option(names)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll));
    }
  }
  std::reverse(words.begin(), words.end());
  try {
    app.parse(words);
  } catch (const CLI::ParseError& error) {
    explain(error, known);
  }
  for (size_t i = 0; i < known.size(); ++i) {
    if (parsed[i]->count() > 0) adopt(*known[i], parsed[i]->results());
  }
  words = app.remaining();
}

void Arguments::adopt(const Option& option, const std::vector<std::string>& texts) {
  auto& all = options_[&option];
  all.insert(all.end(), texts.begin(), texts.end());
}

void Arguments::check_choices() const {
  const auto check = [](const auto& name, std::span<const std::string_view> choices, const std::string& text) {
    if (choices.empty() || std::find(choices.begin(), choices.end(), text) != choices.end()) return;
    fail(ExitCode::usage, "{} {}: it is {}", name, in_quotes(text), alternatives({choices.begin(), choices.end()}));
  };
  for (const auto& [option, texts] : options_) {
    for (const std::string& text : texts) check(spelled(*option), option->choices, text);
  }
  const auto& wanted = command().arguments;
  for (size_t i = 0; i < std::min(wanted.size(), values_.size()); ++i) {
    check(wanted[i].name, wanted[i].choices, values_[i]);
  }
}

void Arguments::check_count() const {
  const std::string name = full_name(path_);
  if (command().run == nullptr) {
    fail(ExitCode::usage, "\"{}\" wants a command: {}", name, alternatives(names_of(command().commands)));
  }
  const auto& wanted = command().arguments;
  if (values_.size() > wanted.size() && (wanted.empty() || !wanted.back().repeats)) {
    fail(ExitCode::usage, "\"{}\" takes no {}{}", name, in_quotes(values_[wanted.size()]),
         wanted.empty() ? "" : fmt::format(" behind {}", wanted.back().name));
  }
  if (values_.size() < wanted.size() && wanted[values_.size()].required) {
    const Argument& missing = wanted[values_.size()];
    fail(ExitCode::usage, "\"{}\" wants {}: {}", name, missing.name, missing.help);
  }
}

std::optional<std::string> Arguments::value(const Option& option) const {
  const auto found = options_.find(&option);
  if (found == options_.end() || found->second.empty()) return std::nullopt;
  return found->second.back();
}

std::vector<std::string> Arguments::all_values(const Option& option) const {
  const auto found = options_.find(&option);
  return found == options_.end() ? std::vector<std::string>() : found->second;
}

}  // namespace vxcli
