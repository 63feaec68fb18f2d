// Locales for the tests of columns.
#ifndef VXNLS_TESTS_CLI_COLUMN_HOST_H
#define VXNLS_TESTS_CLI_COLUMN_HOST_H

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "cli/column/profiler.h"
#include "vxnls/vxhost.h"

namespace vxtest {

class ColumnHost {
 public:
  explicit ColumnHost(std::string zone = "UTC") : zone_(std::move(zone)) {
    VXHost* host = nullptr;
    EXPECT_EQ(vxhostOpen(nullptr, &host), 0U) << vxhostOpenFailure();
    host_.reset(host);
  }
  vxcli::column::LocaleMaker maker() {
    return [this](const std::string& name) {
      VXLocale* locale = nullptr;
      EXPECT_EQ(vxhostLocale(host_.get(), name.c_str(), zone_.c_str(), 1, &locale), 0U) << name;
      return locale;
    };
  }

 private:
  struct Close {
    void operator()(VXHost* host) const { vxhostClose(host); }
  };
  std::unique_ptr<VXHost, Close> host_;
  std::string zone_;
};

}  // namespace vxtest

#endif
