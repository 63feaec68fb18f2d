#include "cli/color.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdlib>

namespace vxcli {

namespace {

/// Parameters of "select graphic rendition". The eight colours of every terminal, none of which a background hides.
std::string_view rendition(Tint tint) {
  switch (tint) {
    case Tint::heading:
    case Tint::name: return "1";
    case Tint::error: return "1;31";
    case Tint::note: return "1;36";
    case Tint::warning: return "33";
    case Tint::good: return "32";
    case Tint::faint: return "2";
  }
  return "0";
}

std::string_view variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

std::string Colors::paint(Tint tint, std::string_view text) const {
  if (!on_ || text.empty()) return std::string(text);
  return fmt::format("\x1b[{}m{}\x1b[0m", rendition(tint), text);
}

Colors colors_for(std::string_view choice, int descriptor) {
  if (choice == "always" || choice == "never") return Colors(choice == "always");
  if (!variable("NO_COLOR").empty()) return Colors(false);
  if (const std::string_view force = variable("CLICOLOR_FORCE"); !force.empty() && force != "0") return Colors(true);
  const std::string_view terminal = variable("TERM");
  return Colors(!terminal.empty() && terminal != "dumb" && isatty(descriptor) != 0);
}

}  // namespace vxcli
