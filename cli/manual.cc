#include "cli/manual.h"

#include <algorithm>
#include <ctime>

#include "cli/commands.h"
#include "cli/help.h"
#include "cli/text.h"
#include "vxnls/module.h"

namespace vxcli {

namespace {

constexpr size_t source_width = 79;

/// As text that the formatter changes nothing of: it would make typographic quotes and dashes of some characters.
std::string escaped(std::string_view text) {
  static constexpr struct {
    char plain;
    std::string_view name;
  } characters[] = {{'\\', "\\e"}, {'-', "\\-"}, {'\'', "\\(aq"}, {'`', "\\(ga"}, {'^', "\\(ha"}, {'~', "\\(ti"}};
  std::string out;
  for (const char c : text) {
    const auto* const found =
        std::find_if(std::begin(characters), std::end(characters), [&](const auto& one) { return one.plain == c; });
    if (found != std::end(characters)) out += found->name;
    else out += c;
  }
  return out;
}

std::string bold(std::string_view text) { return fmt::format("\\fB{}\\fR", escaped(text)); }
std::string italic(std::string_view text) { return fmt::format("\\fI{}\\fR", escaped(text)); }

/// A line that begins with a dot would be a request.
std::string guarded(std::string_view line) { return fmt::format("{}{}\n", line.starts_with('.') ? "\\&" : "", line); }

/// Each sentence on a line of its own, so that the formatter knows where they end.
std::string running_text(std::string_view paragraph) {
  std::string text = escaped(paragraph);
  for (size_t at = 0; (at = text.find(". ", at)) != std::string::npos;) text[++at] = '\n';
  text = wrapped(text, source_width);
  std::string out;
  for (size_t at = 0; at < text.size();) {
    const size_t end = std::min(text.find('\n', at), text.size());
    out += guarded(std::string_view(text).substr(at, end - at));
    at = end + 1;
  }
  return out;
}

std::string section(std::string_view heading) { return fmt::format(".SH {}\n", heading); }

std::string entry(const std::string& head, std::string_view help) {
  return fmt::format(".TP\n{}\n{}", head, running_text(help));
}

std::string head_of(const Option& option) {
  std::string head;
  if (option.letter != 0) head = bold(fmt::format("-{}", option.letter));
  if (!option.name.empty()) head += (head.empty() ? "" : ", ") + bold(fmt::format("--{}", option.name));
  return option.is_flag() ? head : head + ' ' + italic(option.value);
}

std::string options_section(std::string_view heading, std::span<const Option* const> options) {
  if (options.empty()) return {};
  std::string text = section(heading);
  for (const Option* option : options) {
    text += entry(head_of(*option), fmt::format("{}{}", option->help, one_of(option->choices)));
  }
  return text;
}

std::string definitions_section(std::string_view heading, std::span<const Definition> definitions) {
  std::string text = section(heading);
  for (const Definition& one : definitions) text += entry(bold(one.name), one.meaning);
  return text;
}

std::string synopsis(const CommandPath& path) {
  const Command& command = *path.back();
  std::string text = section("SYNOPSIS");
  if (command.run != nullptr) {
    text += bold(full_name(path)) + " [" + italic("OPTION") + "...]";
    for (const Argument& argument : command.arguments) {
      const std::string shown = italic(argument.name) + (argument.repeats ? "..." : "");
      text += argument.required ? ' ' + shown : " [" + shown + ']';
    }
    text += '\n';
  }
  if (command.commands.empty()) return text;
  if (command.run != nullptr) text += ".br\n";
  return text + bold(full_name(path)) + ' ' + italic("COMMAND") + " ...\n";
}

std::string description(const Command& command) {
  std::string text = section("DESCRIPTION") + running_text(fmt::format("{}.", command.summary));
  for (size_t at = 0; at < command.description.size();) {
    const size_t end = std::min(command.description.find("\n\n", at), command.description.size());
    text += ".PP\n" + running_text(command.description.substr(at, end - at));
    at = end + 2;
  }
  return text;
}

std::string reference(const CommandPath& path) { return fmt::format(".BR {} (1)", escaped(manual_name(path))); }

std::string see_also(const CommandPath& path) {
  std::vector<std::string> references;
  if (path.size() > 1) references.push_back(reference({path.begin(), path.end() - 1}));
  for (const Command* child : path.back()->commands) {
    CommandPath longer = path;
    longer.push_back(child);
    references.push_back(reference(longer));
  }
  if (path.size() == 1) references.emplace_back(".BR vxnls\\-profile (5)"), references.emplace_back(".BR vxnlsloc (3)");
  std::string text = section("SEE ALSO");
  for (const std::string& one : references) text += one + (&one == &references.back() ? "\n" : " ,\n");
  return text;
}

/// Of the build, as "2026-11-21".
std::string page_date() {
  VXBuildRecord library;
  vxvercn1(&library);
  const std::time_t seconds = library.time;
  std::tm day{};
  gmtime_r(&seconds, &day);
  return fmt::format("{:04}-{:02}-{:02}", day.tm_year + 1900, day.tm_mon + 1, day.tm_mday);
}

}  // namespace

std::string manual_name(const CommandPath& path) {
  std::string name = full_name(path);
  std::replace(name.begin(), name.end(), ' ', '-');
  return name;
}

std::string manual_page(const CommandPath& path) {
  const Command& command = *path.back();
  const std::string name = manual_name(path);
  std::string title = name;
  for (char& c : title) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  std::string page = fmt::format(
      ".\\\" Written by \"vxnls help --man\" from the table of commands.\n"
      ".TH {} 1 {} \"vxnls {}\" \"User Commands\"\n",
      escaped(title), page_date(), VXNLS_VERSION);
  page += section("NAME") + fmt::format("{} \\- {}\n", escaped(name), escaped(command.summary));
  page += synopsis(path) + description(command);
  if (!command.commands.empty()) page += section("COMMANDS");
  for (const Command* child : command.commands) page += entry(bold(child->name), child->summary);
  if (!command.arguments.empty()) page += section("ARGUMENTS");
  for (const Argument& argument : command.arguments) {
    page += entry(italic(argument.name), fmt::format("{}{}", argument.help, one_of(argument.choices)));
  }
  if (path.size() > 1) page += options_section("OPTIONS", command.options);
  page += options_section("OPTIONS OF EVERY COMMAND", root_command.options);
  page += definitions_section("ENVIRONMENT", environment) + definitions_section("EXIT STATUS", exit_codes);
  page += section("EXAMPLES");
  for (const Example& example : command.examples) {
    page += fmt::format("{}.EX\n", &example == command.examples.data() ? "" : ".PP\n") +
            guarded(fmt::format("$ {}", escaped(example.line)));
    for (size_t at = 0; at < example.output.size();) {
      const size_t end = std::min(example.output.find('\n', at), example.output.size());
      page += guarded(escaped(example.output.substr(at, end - at)));
      at = end + 1;
    }
    page += ".EE\n";
  }
  return page + see_also(path);
}

}  // namespace vxcli
