// Several hosts in one process: they share the library's one kernel handle, and nothing else.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace {

VXHost* open() {
  VXHost* host = nullptr;
  EXPECT_EQ(vxhostOpen(nullptr, &host), 0u) << vxhostOpenFailure();
  return host;
}

VXLocale* locale(VXHost* host) {
  VXLocale* made = nullptr;
  EXPECT_EQ(vxhostLocale(host, "de_DE", "Europe/Berlin", 0, &made), 0u);
  return made;
}

void collect(void* user, uint32_t, double, const char* text) {
  static_cast<std::vector<std::string>*>(user)->emplace_back(text);
}

TEST(SeveralHosts, TheFirstMayCloseFirst) {
  VXHost* const first = open();
  VXHandle* const stored = Exported_VXHandle;
  VXHost* const second = open();
  EXPECT_EQ(Exported_VXHandle, stored);
  EXPECT_NE(vxhostContext(first)->kernel, stored);
  VXLocale* const of_first = locale(first);
  VXLocale* const of_second = locale(second);
  EXPECT_NE(of_first, of_second);
  EXPECT_EQ(vxnlsisalpha(0x16E40), 1);

  std::vector<std::string> journal, other_journal;
  vxhostSetJournal(first, collect, &journal);
  vxhostSetJournal(second, collect, &other_journal);
  VXHandle* const kernel = vxhostContext(first)->kernel;
  static constexpr VXChar name[] = {'n', 'o', 'n', 'e'};
  EXPECT_EQ(kernel->ops->load_extension(kernel, name, 4, 0), nullptr);
  EXPECT_EQ(journal.size(), 1u);
  EXPECT_TRUE(other_journal.empty());

  vxhostClose(first);
  EXPECT_EQ(Exported_VXHandle, stored);
  EXPECT_GT(vxhostAlive(), 0);
  EXPECT_EQ(locale(second), of_second);
  EXPECT_EQ(vxnlsisalpha(0x16E40), 1);
  uint8_t text[100];
  int64_t length = 0;
  EXPECT_EQ(of_second->ops.NLSDateFormatU(of_second, 11, 21, 2026, 0, text, sizeof text, &length), 0u);
  EXPECT_EQ(std::string(text, text + length), "21.11.2026");
  vxhostClose(second);
  EXPECT_EQ(Exported_VXHandle, nullptr);
  EXPECT_EQ(vxhostAlive(), 0);
}

TEST(SeveralHosts, ComeAndGo) {
  for (int i = 0; i < 20; ++i) {
    VXHost* const host = open();
    EXPECT_NE(locale(host), nullptr);
    vxhostClose(host);
    ASSERT_EQ(vxhostAlive(), 0);
  }
  EXPECT_EQ(vxnlsisalpha('a'), 1) << "without a host the built-in tables answer";
  EXPECT_EQ(vxnlsisalpha(0x16E40), 0);
}

}  // namespace
