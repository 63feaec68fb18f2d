#include "cli/help.h"

#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/options.h"
#include "cli/text.h"

namespace vxcli {

namespace {

constexpr size_t page_width = 80;

struct Entry {
  std::string name;
  std::string help;
};

/// Names in one column, help in another that begins where the longest name (or the 28th column) ends.
std::string definitions(std::string_view heading, const std::vector<Entry>& entries, Colors colors) {
  if (entries.empty()) return {};
  size_t column = 0;
  for (const Entry& entry : entries) column = std::max(column, std::min<size_t>(entry.name.size() + 4, 28));
  std::string text = fmt::format("\n{}\n", colors.paint(Tint::heading, heading));
  for (const Entry& entry : entries) {
    text += "  " + colors.paint(Tint::name, entry.name);
    const size_t width = entry.name.size() + 2;
    text += width + 2 > column ? '\n' + std::string(column, ' ') : std::string(column - width, ' ');
    text += wrapped(entry.help, page_width, column) + '\n';
  }
  return text;
}

Entry entry_of(const Option& option) {
  std::string name = option.letter != 0 ? fmt::format("-{}", option.letter) : "  ";
  if (!option.name.empty()) name += fmt::format("{}--{}", option.letter != 0 ? ", " : "  ", option.name);
  if (!option.is_flag()) name += fmt::format(" {}", option.value);
  std::string help(option.help);
  return {name, help + one_of(option.choices)};
}

std::vector<Entry> entries_of(std::span<const Option* const> options) {
  std::vector<Entry> entries;
  for (const Option* option : options) entries.push_back(entry_of(*option));
  return entries;
}

std::vector<Entry> entries_of(std::span<const Definition> definitions) {
  std::vector<Entry> entries;
  for (const Definition& one : definitions) entries.push_back({std::string(one.name), std::string(one.meaning)});
  return entries;
}

std::string usage_lines(const CommandPath& path, Colors colors) {
  const Command& command = *path.back();
  const std::string name = full_name(path);
  std::string text;
  if (command.run != nullptr) {
    text += fmt::format("{} [OPTION...]", name);
    for (const Argument& argument : command.arguments) {
      const std::string shown = fmt::format("{}{}", argument.name, argument.repeats ? "..." : "");
      text += argument.required ? fmt::format(" {}", shown) : fmt::format(" [{}]", shown);
    }
  }
  if (!command.commands.empty()) text += fmt::format("{}{} COMMAND ...", text.empty() ? "" : "\n       ", name);
  return colors.paint(Tint::heading, "Usage:") + ' ' + text + '\n';
}

}  // namespace

std::string one_of(std::span<const std::string_view> choices) {
  if (choices.empty()) return {};
  return ": " + alternatives(std::vector<std::string>(choices.begin(), choices.end()));
}

std::string help_text(const CommandPath& path, HelpLength length, Colors colors) {
  const Command& command = *path.back();
  std::string text = usage_lines(path, colors);
  text += '\n' + wrapped(fmt::format("{}.", command.summary), page_width) + '\n';
  if (length == HelpLength::whole && !command.description.empty()) {
    text += '\n' + wrapped(command.description, page_width) + '\n';
  }

  std::vector<Entry> entries;
  for (const Command* one : command.commands) entries.push_back({std::string(one->name), std::string(one->summary)});
  text += definitions("Commands:", entries, colors);
  entries.clear();
  for (const Argument& argument : command.arguments) {
    entries.push_back({std::string(argument.name), std::string(argument.help) + one_of(argument.choices)});
  }
  text += definitions("Arguments:", entries, colors);
  if (path.size() > 1) text += definitions("Options:", entries_of(command.options), colors);
  text += definitions("Options of every command:", entries_of(root_command.options), colors);

  if (length == HelpLength::whole && path.size() == 1) {
    text += definitions("Environment:", entries_of(environment), colors);
    text += definitions("Exit codes:", entries_of(exit_codes), colors);
  }

  if (length == HelpLength::whole && !command.examples.empty()) {
    text += fmt::format("\n{}\n", colors.paint(Tint::heading, "Examples:"));
    for (const Example& example : command.examples) {
      text += fmt::format("  {} {}\n", colors.paint(Tint::faint, "$"), colors.paint(Tint::name, example.line));
      for (size_t at = 0; at < example.output.size();) {
        const size_t end = std::min(example.output.find('\n', at), example.output.size());
        text += fmt::format("  {}\n", example.output.substr(at, end - at));
        at = end + 1;
      }
    }
  } else if (length == HelpLength::in_short && !(command.description.empty() && command.examples.empty())) {
    text += fmt::format("\n\"{} --help\" says more.\n", full_name(path));
  }
  return text;
}

}  // namespace vxcli
