#include "cli/for_each_value.h"

#include <unistd.h>

#include <charconv>

#include "cli/input.h"
#include "cli/json.h"
#include "cli/options.h"
#include "cli/text.h"

namespace vxcli {

namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

ExitCode convert_arguments(Invocation& invocation, std::span<const std::string> values, const Convert& convert) {
  ExitCode code = ExitCode::done;
  std::string lines;
  for (const std::string& value : values) {
    try {
      lines += convert(value) + '\n';
    } catch (const ValueError& error) {
      invocation.messages.error(fmt::format("{}: {}", in_quotes(value), error.what()));
      code = ExitCode::some_unread;
    }
  }
  if (code == ExitCode::done) invocation.out.put(lines);
  return code;
}

/// The number of values that a block has, by the line before it.
uint64_t announced(Invocation& invocation, const LineReader::Line& line) {
  uint64_t count = 0;
  const char* const last = line.text.data() + line.text.size();
  const auto [end, error] = std::from_chars(line.text.data(), last, count);
  if (error != std::errc{} || end != last || line.too_long) {
    invocation.out.flush();  // what was read before is good
    fail(ExitCode::io, "standard input: line {}: the number of values of a block is wanted, not {}", line.number,
         in_quotes(line.text));
  }
  return count;
}

ExitCode convert_input(Invocation& invocation, const Convert& convert) {
  if (isatty(STDIN_FILENO) != 0) invocation.messages.note("reading values, one a line; Ctrl-D ends them");
  const Arguments& arguments = invocation.arguments;
  const bool json = arguments.has(options::json);
  const bool in_blocks = arguments.has(options::chunk_header);
  const auto unread = arguments.value(options::unread);
  if (json && unread) fail(ExitCode::usage, "--json and --unread exclude each other");
  LineReader reader(STDIN_FILENO, "standard input", [&] { invocation.out.flush(); });
  ExitCode code = ExitCode::done;
  uint64_t left = 0;  // values of the block that are still to come
  LineReader::Line line;
  while (reader.next(line)) {
    if (line.number == 1 && line.text.starts_with(byte_order_mark)) line.text.remove_prefix(byte_order_mark.size());
    if (in_blocks && left == 0) {
      left = announced(invocation, line);
      continue;
    }
    if (in_blocks) --left;
    try {
      if (line.too_long) refuse("longer than {} bytes", LineReader::longest_line);
      invocation.out.line(convert(line.text));
    } catch (const ValueError& error) {
      invocation.messages.error(fmt::format("line {}: {}: {}", line.number, in_quotes(line.text), error.what()));
      code = ExitCode::some_unread;
      if (json) {
        Json refused = Json::object();  // g++ 12 does not give up a list of entries cleanly when memory fails half-way
        refused["value"] = line.text;
        refused["line"] = line.number;
        refused["error"] = error.what();
        invocation.out.line(json_line(refused));
      } else {
        invocation.out.line(unread.value_or(""));
      }
    }
  }
  if (in_blocks && left > 0) fail(ExitCode::io, "standard input ends {} values before its last block does", left);
  return arguments.has(options::ok_unread) ? ExitCode::done : code;
}

/// Options that say something about standard input say nothing about values of the command line.
void check_options(const Arguments& arguments) {
  for (const Option* option : {&options::unread, &options::ok_unread, &options::chunk_header}) {
    if (arguments.has(*option)) fail(ExitCode::usage, "{} goes with standard input, not with values", spelled(*option));
  }
}

}  // namespace

ExitCode for_each_value(Invocation& invocation, std::span<const std::string> values, const Convert& convert) {
  if (values.empty()) return convert_input(invocation, convert);
  check_options(invocation.arguments);
  return convert_arguments(invocation, values, convert);
}

}  // namespace vxcli
