// Locales for the tests of columns.
#ifndef VXNLS_TESTS_CLI_COLUMN_HOST_H
#define VXNLS_TESTS_CLI_COLUMN_HOST_H

#include <gtest/gtest.h>

#include <string>

#include "cli/column/profiler.h"
#include "vxnls/vxhost.h"

namespace vxtest {

/// The host stays open to the end of the program.
inline vxcli::column::LocaleMaker locale_maker(const std::string& zone = "UTC") {
  static VXHost* const host = [] {
    VXHost* opened = nullptr;
    EXPECT_EQ(vxhostOpen(nullptr, &opened), 0U) << vxhostOpenFailure();
    return opened;
  }();
  return [zone](const std::string& name) {
    VXLocale* locale = nullptr;
    EXPECT_EQ(vxhostLocale(host, name.c_str(), zone.c_str(), 1, &locale), 0U) << name;
    return locale;
  };
}

}  // namespace vxtest

#endif
