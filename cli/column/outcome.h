// What became of a value.
#ifndef VXNLS_CLI_COLUMN_OUTCOME_H
#define VXNLS_CLI_COLUMN_OUTCOME_H

#include <cstdint>

namespace vxcli::column {

enum class Outcome : uint8_t {
  read,
  empty,       ///< nothing, or blanks only
  unread,      ///< no form of the decision reads it
  ambiguous,   ///< it reads in two ways, and the column decides for neither
  contradicts  ///< it reads only against what was decided
};

}  // namespace vxcli::column

#endif
