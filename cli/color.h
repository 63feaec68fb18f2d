// Colours on a terminal.
#ifndef VXNLS_CLI_COLOR_H
#define VXNLS_CLI_COLOR_H

#include <string>
#include <string_view>

namespace vxcli {

enum class Tint { heading, name, error, note, warning, good, faint };

/// Paints, or leaves every text as it is.
class Colors {
 public:
  constexpr explicit Colors(bool on = false) : on_(on) {}

  bool on() const { return on_; }
  /// What is painted takes no more columns than the text: display_width() knows. An empty text stays empty.
  std::string paint(Tint tint, std::string_view text) const;

 private:
  bool on_;
};

/// The colours of what is written to a descriptor. `choice` is the value of --color: "always" and "never" say it all;
/// otherwise NO_COLOR (set and not empty) means none, CLICOLOR_FORCE (set, not empty and not "0") means colours, and
/// without both a terminal that is not a "dumb" one gets them.
Colors colors_for(std::string_view choice, int descriptor);

}  // namespace vxcli

#endif
