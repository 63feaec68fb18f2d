#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "tests/support/failing_host.h"

namespace {

using vxtest::FailingHost;
using vxtest::Holdings;

TEST(Loading, VersionsDiffer) {
  FailingHost host;
  int64_t major = -1;
  int64_t minor = -1;
  EXPECT_EQ(vxextver(host.stored(), &major, &minor), 0u);
  EXPECT_EQ(std::tuple(major, minor), std::tuple(6, 1));
  EXPECT_EQ(Exported_VXHandle, host.stored());
  EXPECT_EQ(vxextent(host.kernel()), 0u);  // in place of the first
  EXPECT_EQ(Exported_VXHandle, host.kernel());

  NLSModule* const module = vxnlsloc(host.kernel(), nullptr);
  ASSERT_NE(module, nullptr);
  int64_t revision = -1;
  EXPECT_EQ(module->reqVersion(module, &major, &minor, &revision), 0u);
  EXPECT_EQ(std::tuple(major, minor, revision), std::tuple(6, 1, 1));
  EXPECT_EQ(module->version(module, &major, &minor, &revision), 0u);
  EXPECT_EQ(std::tuple(major, minor, revision), std::tuple(6, 0, 0));
  EXPECT_EQ(std::memcmp(module, "nevo", 4), 0);
  EXPECT_EQ(module->host, host.kernel());
  EXPECT_EQ(module->realDestroy(module), 0u);
  EXPECT_EQ(host.holdings(), Holdings{});
  EXPECT_EQ(NLSLOCRealDestroy(nullptr), 0u);
  EXPECT_EQ(vxnlsloc(nullptr, host.journal()), nullptr);
  NLSModule without_pool = {};
  EXPECT_EQ(NLSLOCRealDestroy(&without_pool), 0u);
  vxextent(nullptr);
}

TEST(Loading, ExhaustedPoolIsReportedOnce) {
  FailingHost host;
  host.fail_call(2, false, VX_E_MEMORY);  // the pool is made, the record does not fit
  EXPECT_EQ(vxnlsloc(host.kernel(), host.journal()), nullptr);
  const auto lines = host.journal_lines();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].level, 4u);
  EXPECT_EQ(lines[0].status, int64_t{0x803fc002} - (int64_t{1} << 32));
  EXPECT_EQ(host.holdings(), Holdings{});
  host.fail_call(2, false, VX_E_MEMORY);
  EXPECT_EQ(vxnlsloc(host.kernel(), nullptr), nullptr);  // without a journal in silence
  EXPECT_EQ(host.journal_lines().size(), 1u);
  EXPECT_TRUE(host.complaints().empty());
}

TEST(BuildRecord, IsWrittenWholeAndNoFurther) {
  struct {
    VXBuildRecord record;
    uint8_t behind[16];
  } room;
  std::memset(&room, 0x5A, sizeof room);
  vxvercn1(&room.record);
  for (const uint8_t byte : room.behind) EXPECT_EQ(byte, 0x5A);
  for (const uint64_t word : room.record.zero18) EXPECT_EQ(word, 0u);
  const VXBuildRecord& r = room.record;
  for (const char* empty : {r.empty3, r.empty9, r.empty12, r.empty14}) EXPECT_STREQ(empty, "");
  EXPECT_STREQ(r.component5, "vxnls");
  EXPECT_STREQ(r.component7, "vxext");
  EXPECT_EQ(std::strlen(r.stamp6), 8u);
  EXPECT_EQ(std::strlen(r.stamp8), 18u);
  for (const auto& [field, key] : {std::pair{r.hotfix13, std::string("_VERSION_HOTFIX_NUMBER=")},
                                   std::pair{r.image15, std::string("VERCON_IMAGE_DESCRIPTION=")}}) {
    const std::string text = field;
    EXPECT_EQ(text.size(), 64u);
    const size_t at = text.find(key);
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(text.find_first_not_of(' ', at + key.size()), std::string::npos);
  }
  // The three ways in which the record tells the day of the build agree, by the C library's calendar.
  const time_t built = r.time;
  tm utc = {};
  gmtime_r(&built, &utc);
  char text[64];
  std::strftime(text, sizeof text, "%a %b %e %H:%M:%S UTC %Y", &utc);
  EXPECT_STREQ(r.date17, text);
  std::strftime(text, sizeof text, "%Y%m%d", &utc);
  EXPECT_EQ(std::string(r.label).substr(std::strlen(r.label) - 8), text);
}

}  // namespace
