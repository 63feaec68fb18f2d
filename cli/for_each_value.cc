#include "cli/for_each_value.h"

#include <unistd.h>

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

ExitCode convert_input(Invocation& invocation, const Convert& convert) {
  if (isatty(STDIN_FILENO) != 0) invocation.messages.note("reading values, one a line; Ctrl-D ends them");
  const bool json = invocation.arguments.has(options::json);
  LineReader reader(STDIN_FILENO, "standard input", [&] { invocation.out.flush(); });
  ExitCode code = ExitCode::done;
  LineReader::Line line;
  while (reader.next(line)) {
    if (line.number == 1 && line.text.starts_with(byte_order_mark)) line.text.remove_prefix(byte_order_mark.size());
    try {
      if (line.too_long) refuse("longer than {} bytes", LineReader::longest_line);
      invocation.out.line(convert(line.text));
    } catch (const ValueError& error) {
      invocation.messages.error(fmt::format("line {}: {}: {}", line.number, in_quotes(line.text), error.what()));
      code = ExitCode::some_unread;
      if (json) {
        invocation.out.line(json_line({{"value", line.text}, {"line", line.number}, {"error", error.what()}}));
      } else {
        invocation.out.line("");
      }
    }
  }
  return code;
}

}  // namespace

ExitCode for_each_value(Invocation& invocation, std::span<const std::string> values, const Convert& convert) {
  return values.empty() ? convert_input(invocation, convert) : convert_arguments(invocation, values, convert);
}

}  // namespace vxcli
