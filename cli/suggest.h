// "Did you mean ...?"
#ifndef VXNLS_CLI_SUGGEST_H
#define VXNLS_CLI_SUGGEST_H

#include <string>
#include <string_view>
#include <vector>

namespace vxcli {

/// The steps from one text to the other: a character left out, put in, replaced, or two neighbours swapped. Upper and
/// lower case of ASCII letters are the same, and so are "-", "_" and " ".
size_t edit_distance(std::string_view a, std::string_view b);

/// What `word` may be a slip of the finger for: the nearest of `candidates`, at most three, in their order; nothing
/// when all are far away. The beginning of a candidate, of three characters or more, is near. A word also stands for
/// the part of a candidate behind its last "/".
std::vector<std::string> nearest(std::string_view word, const std::vector<std::string>& candidates);

/// "; did you mean a, b or c?", or nothing.
std::string did_you_mean(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace vxcli

#endif
