// Single values of a column under a given decision.
#include "cli/column/reader.h"

#include <gtest/gtest.h>

namespace {}  // namespace
