// Options: what a call sets, what the environment presets, and what stays untouched.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>
#include <vector>

#include "host/option_service.h"

namespace {

int64_t read(VXOptionService& service, const std::string& name, int64_t preset, uint32_t kind = VX_OPTION_INTEGER) {
  const std::vector<VXChar> wide(name.begin(), name.end());
  int64_t cell = preset;
  service.ops->read(&service, wide.data(), static_cast<int64_t>(wide.size()), kind, &cell);
  return cell;
}

TEST(Options, EnvironmentIsThePreset) {
  static constexpr struct {
    const char* value;
    int64_t read;
  } cases[] = {
      {"1920", 1920}, {"-5", -5},  {"", 7},
      {"abc", 7},     {"19x0", 7}, {" 1920", 7},
      {"1.5", 7},     {"0", 0},    {"99999999999999999999", 7},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    setenv("VX_TEST_OPTION", c.value, 1);
    vxhost::OptionService service;
    EXPECT_EQ(read(service, "VX_TEST_OPTION", 7), c.read);
  }
  unsetenv("VX_TEST_OPTION");
}

TEST(Options, ACallWinsAndTheEnvironmentIsReadOnce) {
  setenv("VX_TEST_OPTION", "1", 1);
  vxhost::OptionService service;
  EXPECT_EQ(read(service, "VX_TEST_OPTION", 7), 1);
  setenv("VX_TEST_OPTION", "2", 1);
  EXPECT_EQ(read(service, "VX_TEST_OPTION", 7), 1);
  EXPECT_TRUE(service.set("VX_TEST_OPTION", 3));
  EXPECT_EQ(read(service, "VX_TEST_OPTION", 7), 3);
  unsetenv("VX_TEST_OPTION");
}

TEST(Options, OtherNamesAndKindsLeaveTheCellAlone) {
  setenv("HOST_TEST_OPTION", "1", 1);
  vxhost::OptionService service;
  EXPECT_EQ(read(service, "HOST_TEST_OPTION", 7), 7);
  EXPECT_EQ(read(service, "VX_UNSET", 7), 7);
  EXPECT_EQ(read(service, "", 7), 7);
  EXPECT_EQ(read(service, std::string(1000, 'V'), 7), 7);
  EXPECT_TRUE(service.set("VX_A", 1));
  EXPECT_EQ(read(service, "VX_A", 7, 2), 7);
  for (const char* const name : {"", "PATH", "VX-A", "VX_a", "vx_A"}) EXPECT_FALSE(service.set(name, 1)) << name;
  unsetenv("HOST_TEST_OPTION");
}

}  // namespace
