// What is decided about a column, and the file that keeps it.
#include "cli/column/profile.h"

#include <gtest/gtest.h>

namespace {}  // namespace
