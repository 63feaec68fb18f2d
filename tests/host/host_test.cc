// The reference host as a program meets it: opening, locales, journals, options, and nothing alive after the end.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "tests/host/temporary_folder.h"
#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace {

std::string alive() {
  char text[300];
  vxhostAliveText(text, sizeof text);
  return text;
}

std::string name_of(const VXLocale* locale) { return {locale->name, locale->name + locale->nameLength}; }

std::string datetime(VXLocale* locale, double value) {
  uint8_t text[300];
  int64_t length = 0;
  EXPECT_EQ(locale->ops.NLSDatetimeFormatU(locale, 0, text, sizeof text, &length, value), 0u);
  return {text, text + length};
}

class Host : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(vxhostAlive(), 0) << alive();
    ASSERT_EQ(vxhostOpen(nullptr, &host), 0u) << vxhostOpenFailure();
    EXPECT_STREQ(vxhostOpenFailure(), "");
  }
  void TearDown() override {
    vxhostClose(host);
    EXPECT_EQ(vxhostAlive(), 0) << alive();
    EXPECT_EQ(alive(), "");
    EXPECT_EQ(Exported_VXHandle, nullptr);
  }
  VXLocale* locale(const char* name, const char* zone = "UTC", uint32_t flags = 0) {
    VXLocale* made = nullptr;
    EXPECT_EQ(vxhostLocale(host, name, zone, flags, &made), 0u) << name;
    return made;
  }

  VXHost* host = nullptr;
};

TEST_F(Host, OpensAndCloses) {
  EXPECT_NE(vxhostContext(host), nullptr);
  EXPECT_NE(vxhostContext(host)->localeCache, nullptr);
  EXPECT_NE(Exported_VXHandle, nullptr);
  const std::string versions = vxhostVersions(host);
  for (const char* const part : {"ICU 7", "CLDR 4", "Unicode 1", "tz 20"}) {
    EXPECT_NE(versions.find(part), std::string::npos) << versions;
  }
}

TEST_F(Host, OneNameAndZoneAreOneObject) {
  VXLocale* const german = locale("de_DE", "Europe/Berlin");
  ASSERT_NE(german, nullptr);
  EXPECT_EQ(name_of(german), "de_DE");
  EXPECT_EQ(german->host, vxhostContext(host));
  EXPECT_EQ(locale("de_DE", "Europe/Berlin"), german);
  EXPECT_EQ(locale("de-DE", "europe/BERLIN "), german) << "other spellings of both";
  EXPECT_EQ(locale("de_DE.UTF-8", "Europe/Berlin", 6), german) << "unknown flags";
  EXPECT_NE(locale("de_DE", "Europe/Vienna"), german);
  EXPECT_NE(locale("de_AT", "Europe/Berlin"), german);
  EXPECT_EQ(locale("de_US", "Europe/Berlin"), locale("de", "Europe/Berlin")) << "the substitute is the shared object";

  VXLocale* const own = locale("de_DE", "Europe/Berlin", 1);
  EXPECT_NE(own, german);
  EXPECT_NE(locale("de_DE", "Europe/Berlin", 1), own);
  EXPECT_EQ(locale("de_DE", "Europe/Berlin"), german);
  EXPECT_EQ(datetime(own, 2110896000.0 + 5), datetime(german, 2110896000.0 + 5));
}

TEST_F(Host, WritesByTheZoneInForce) {
  VXLocale* const own = locale("en_US", "Europe/Berlin", 1);
  static constexpr char pattern[] = "%Y-%m-%d %H:%M:%S %z %Z";
  own->localeData->datetimePattern.length = sizeof pattern - 1;
  std::copy_n(pattern, sizeof pattern - 1, own->localeData->datetimePattern.text);
  EXPECT_EQ(datetime(own, 2110896000.0), "2026-11-21 16:00:00 +0100 Europe/Berlin");
  EXPECT_EQ(datetime(own, 2110896000.0 - 150 * 86400), "2026-06-24 16:00:00 +0200 Europe/Berlin");
  static constexpr VXChar tokyo[] = {'j', 'A', 'p', 'a', 'n'};
  EXPECT_EQ(own->ops.NLSSetTimezoneId(own, tokyo, 5), 0u);
  EXPECT_EQ(datetime(own, 2110896000.0), "2026-11-21 16:00:00 +0900 Asia/Tokyo");
}

TEST_F(Host, RefusesWhatIsNoLocaleAndNoZone) {
  VXLocale* made = nullptr;
  const std::string long_name(10000, 'a');
  const std::string longish_name(200, 'a');
  static constexpr char utc[] = "UTC";
  const struct {
    const char *name, *zone;
    VXStatus status;
  } cases[] = {
      {"xx_YY", utc, VX_E_NOMATCH},
      {"", utc, VX_E_NOMATCH},
      {"../de", utc, VX_E_NOMATCH},
      {"de/DE", utc, VX_E_NOMATCH},
      {"d\xFF", utc, VX_E_NOMATCH},
      {"d\xC3\xA9", utc, VX_E_NOMATCH},
      {long_name.c_str(), utc, VX_E_NOMATCH},
      {nullptr, utc, VX_E_NULL},
      {"de_DE", "", VX_E_ZONE},
      {"de_DE", "Europe/Berlim", VX_E_ZONE},
      {"de_DE", "../../etc/passwd", VX_E_ZONE},
      {"de_DE", "/usr/share/zoneinfo/Europe/Berlin", VX_E_ZONE},
      {"de_DE", "Europe/B\xFF", VX_E_ZONE},
      {"de_DE", long_name.c_str(), VX_E_ZONE},
      {"de_DE", longish_name.c_str(), VX_E_ZONE},
      {longish_name.c_str(), utc, VX_E_NOMATCH},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.name != nullptr ? c.name : "null").substr(0, 20) + " in " +
                 std::string(c.zone).substr(0, 20));
    made = reinterpret_cast<VXLocale*>(1);
    EXPECT_EQ(vxhostLocale(host, c.name, c.zone, 0, &made), c.status);
    EXPECT_EQ(made, nullptr);
  }
  EXPECT_EQ(vxhostLocale(nullptr, "de_DE", utc, 0, &made), VX_E_NULL);
  EXPECT_EQ(vxhostLocale(host, "de_DE", utc, 0, nullptr), VX_E_NULL);

  char canonical[64];
  EXPECT_EQ(vxhostResolveLocale(host, "zh_TW", canonical, sizeof canonical), 0u);
  EXPECT_STREQ(canonical, "zh_Hant_TW");
  EXPECT_EQ(vxhostResolveLocale(host, "de_US", canonical, sizeof canonical), VX_W_SUBSTITUTE);
  EXPECT_STREQ(canonical, "de");
  EXPECT_EQ(vxhostResolveLocale(host, "xx_YY", canonical, sizeof canonical), VX_E_NOMATCH);
  EXPECT_STREQ(canonical, "");
  EXPECT_EQ(vxhostResolveLocale(host, "de_DE", canonical, 5), VX_E_ROOM);
  EXPECT_EQ(vxhostResolveLocale(host, "de_DE", canonical, 6), 0u);
}

// Names in units, which may hold anything: through the library, and within a text that names a zone.
TEST_F(Host, NamesOfAnyUnits) {
  VXLocale* const own = locale("en_US", "Europe/Berlin", 1);
  VXZone* const berlin = own->timeZone;
  static constexpr char pattern[] = "%Z";
  own->localeData->datetimePattern.length = sizeof pattern - 1;
  std::copy_n(pattern, sizeof pattern - 1, own->localeData->datetimePattern.text);
  HostContext* const context = vxhostContext(host);
  for (const std::u32string& name :
       {std::u32string(U"../../etc/passwd"), std::u32string(U"/etc/localtime"),
        std::u32string(U"Europe/../Europe/Paris"), std::u32string(U"Asia/Tokyo\0", 11), std::u32string(U"\0", 1),
        std::u32string(U"de\0DE", 5), std::u32string(10000, U'A'), std::u32string(10000, U' '),
        std::u32string(10000, U'/'), std::u32string(1, 0x141), std::u32string{0xD800, 0x110000, 0xFFFFFFFF},
        U"Asia/Tok" + std::u32string(1, 0x100 + U'y') + U"o"}) {
    SCOPED_TRACE(testing::PrintToString(name.substr(0, 30)));
    const std::vector<VXChar> units(name.begin(), name.end());
    const auto n = static_cast<int64_t>(units.size());
    EXPECT_EQ(NLSGetTZh(own, units.data(), n), nullptr);
    EXPECT_EQ(NLSSetTimezoneId(own, units.data(), n), VX_E_ZONE);
    EXPECT_EQ(own->timeZone, berlin);
    double value = 0;
    int64_t consumed = 0;
    EXPECT_EQ(NLSBufToDatetime(own, units.data(), n, 0, &value, &consumed), VX_E_NOMATCH);
    VXStatus status = 0;
    LocaleCreateOptions options = {1, {}, units.data(), n};
    EXPECT_EQ(NLSLocaleCreate(context, own->name, 5, &status, &options), nullptr);
    EXPECT_EQ(status, VX_E_ZONE);
    EXPECT_EQ(NLSLocaleCreate(context, units.data(), n, &status, nullptr), nullptr);
    EXPECT_EQ(status, VX_E_NOMATCH);
  }
}

struct Entry {
  uint32_t level;
  double time;
  std::string text;
};
void keep(void* user, uint32_t level, double time, const char* text) {
  static_cast<std::vector<Entry>*>(user)->push_back({level, time, text});
}

std::vector<VXChar> wide(const std::string& text) {
  std::vector<VXChar> units(text.begin(), text.end());
  units.push_back(0);
  return units;
}

TEST_F(Host, JournalsMessagesAndStatuses) {
  std::vector<Entry> entries;
  vxhostSetJournal(host, keep, &entries);
  VXHandle* const kernel = vxhostContext(host)->kernel;
  static constexpr VXJournalAttributes attributes{};
  VXJournal* const journal = kernel->ops->create_journal(kernel, &attributes, 0, "test");
  const auto insert = wide("in");
  auto message = wide("%s=%d, %u, %x; %ld %lu %lx 100%% %q %l %?");
  message[message.size() - 2] = 0xD800;  // no character
  vxlMessageToJnl(journal, 2, message.data(), 0, insert.data(), -1, 4000000000u, 255u, int64_t{-5000000000},
                  uint64_t{18000000000000000000u}, uint64_t{0xABCDEF0123456789u});
  vxlStatusToJnl(journal, 4, static_cast<int32_t>(VX_E_ZONE));
  vxlStatusToJnl(journal, 4, 0x12345678);
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[0].text,
            "in=-1, 4000000000, ff; -5000000000 18000000000000000000 abcdef0123456789 100% %q %l %\uFFFD");
  EXPECT_EQ(entries[0].level, 2u);
  EXPECT_NEAR(entries[0].time, static_cast<double>(time(nullptr)), 60);
  EXPECT_EQ(entries[1].text, "0x803fe83c: no time zone has this name");
  EXPECT_EQ(entries[2].text, "0x12345678");

  VXChar buffer[60];
  int64_t length = -1;
  const auto word = [](auto* pointer) { return reinterpret_cast<uint64_t>(pointer); };
  EXPECT_EQ(vxlMessageToBuf(journal, word(message.data()), word(buffer), 8, word(&length), 0, insert.data(), 42, 1, 1,
                            int64_t{1}, uint64_t{1}, uint64_t{1}),
            VX_E_TRUNCATED);
  EXPECT_EQ(std::string(buffer, buffer + length), "in=42, 1");
  EXPECT_EQ(vxlStatusToBuf(journal, static_cast<int32_t>(VX_E_ZONE), word(buffer), 60, word(&length)), 0u);
  EXPECT_EQ(std::string(buffer, buffer + length), "0x803fe83c: no time zone has this name");
  EXPECT_EQ(vxlStatusToBuf(journal, 0, 0, 60, word(&length)), VX_E_NULL);
  EXPECT_EQ(vxlMessageToBuf(journal, 0, word(buffer), 60, word(&length), 0), VX_E_NULL);
  EXPECT_EQ(vxlGetLocale(journal, 0, 0, 0, 0, 0), nullptr);
  vxhostSetJournal(host, nullptr, nullptr);
  vxlStatusToJnl(journal, 4, 1);
  EXPECT_EQ(entries.size(), 3u);
}

TEST_F(Host, AnUnknownSystemZoneIsNewYorkWithOneLine) {
  std::vector<Entry> entries;
  vxhostSetJournal(host, keep, &entries);
  const char* const before = getenv("TZ");
  const std::string kept = before != nullptr ? before : "";
  setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
  VXLocale* const made = locale("en_US", nullptr);
  EXPECT_EQ(locale("en_US", "America/New_York"), made);
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].level, 3u);
  EXPECT_EQ(entries[0].text, "Invalid OS TIMEZONE value is detected. Use default TIMEZONE value instead");
  VXHostZoneInfo info;
  EXPECT_EQ(vxhostZoneInfo(host, nullptr, VX_ZONE_FROM_UTC, 0, &info), VX_E_ZONE) << "no stand-in here";
  setenv("TZ", "japan", 1);
  EXPECT_EQ(locale("en_US", nullptr), locale("en_US", "Asia/Tokyo"));
  EXPECT_EQ(vxhostZoneInfo(host, nullptr, VX_ZONE_FROM_UTC, 0, &info), 0u);
  EXPECT_STREQ(info.id, "Asia/Tokyo");
  EXPECT_EQ(entries.size(), 1u);
  if (before != nullptr) setenv("TZ", kept.c_str(), 1);
  else unsetenv("TZ");
}

TEST_F(Host, ANewLocaleWithAnUnknownZoneReleasesALockItNeverTook) {
  const int64_t before = vxhostStrayReleases();
  VXLocale* made = nullptr;
  EXPECT_EQ(vxhostLocale(host, "de_DE", "Nowhere/Else", 0, &made), VX_E_ZONE);
  EXPECT_EQ(vxhostStrayReleases(), before + 1);
  EXPECT_NE(locale("de_DE"), nullptr);
  EXPECT_EQ(vxhostStrayReleases(), before + 1);
}

TEST_F(Host, TellsAboutZones) {
  VXHostZoneInfo info;
  constexpr double summer_2026 = 24288.5 * 86400;  // 2026-07-01 12:00
  ASSERT_EQ(vxhostZoneInfo(host, "europe/berlin", VX_ZONE_FROM_UTC, summer_2026, &info), 0u);
  EXPECT_STREQ(info.id, "Europe/Berlin");
  EXPECT_STREQ(info.abbreviation, "CEST");
  EXPECT_EQ(info.offset, 7200);
  EXPECT_EQ(info.summer_time, 1);
  EXPECT_EQ(vxhostZoneInfo(host, "Nowhere", VX_ZONE_FROM_UTC, 0, &info), VX_E_ZONE);
  EXPECT_EQ(vxhostZoneInfo(host, "UTC", VX_ZONE_FROM_UTC, std::nan(""), &info), VX_E_RANGE);
  EXPECT_STREQ(info.id, "Europe/Berlin") << "nothing is written on failure";

  struct Walk {
    std::vector<std::string> seen;
    size_t stop_after;
  };
  const auto collect = [](void* user, const char* id) {
    auto& walk = *static_cast<Walk*>(user);
    walk.seen.emplace_back(id);
    return walk.seen.size() == walk.stop_after ? 1 : 0;
  };
  Walk all{{}, 0}, some{{}, 3};
  vxhostForEachZone(host, collect, &all);
  EXPECT_GT(all.seen.size(), 500u);
  EXPECT_TRUE(std::is_sorted(all.seen.begin(), all.seen.end()));
  vxhostForEachZone(host, collect, &some);
  EXPECT_EQ(some.seen, std::vector(all.seen.begin(), all.seen.begin() + 3));

  Walk locales{{}, 0};
  vxhostForEachLocale(host, collect, &locales);
  EXPECT_GT(locales.seen.size(), 700u);
  EXPECT_TRUE(std::is_sorted(locales.seen.begin(), locales.seen.end()));
  char canonical[64];
  for (const std::string& name : locales.seen) {
    EXPECT_EQ(vxhostResolveLocale(host, name.c_str(), canonical, sizeof canonical), 0u) << name;
    EXPECT_EQ(canonical, name);
  }
}

TEST_F(Host, TellsWhatFellBackInALocale) {
  struct Walk {
    int64_t seen = 0, stop_after = 0;
  };
  const auto each = [](void* user, const char* entry, const char* used, const char* reason) {
    EXPECT_NE(*entry, 0);
    EXPECT_NE(used, nullptr);
    EXPECT_NE(*reason, 0);
    auto& walk = *static_cast<Walk*>(user);
    return ++walk.seen == walk.stop_after ? 1 : 0;
  };
  Walk all, one{0, 1}, none;
  EXPECT_EQ(vxhostForEachFallback(host, "vi_VN", each, &all), 0u);  // "tháng 10" begins with "tháng 1"
  EXPECT_GT(all.seen, 1);
  EXPECT_EQ(vxhostForEachFallback(host, "vi_XX", each, &one), VX_W_SUBSTITUTE);
  EXPECT_EQ(one.seen, 1);
  EXPECT_EQ(vxhostForEachFallback(host, "xx_YY", each, &none), VX_E_NOMATCH);
  EXPECT_EQ(vxhostForEachFallback(host, nullptr, each, &none), VX_E_NULL);
  EXPECT_EQ(none.seen, 0);
}

TEST_F(Host, OptionsReachTheLibrary) {
  EXPECT_EQ(vxhostSetOption(host, "VX_NAME_YEARCUTOFF", 2000), 0u);
  EXPECT_EQ(vxfmtzjulymd(50, 1, 1), vxfmtzjulymd(2050, 1, 1));
  EXPECT_EQ(vxhostSetOption(host, "VX_NAME_YEARCUTOFF", 1900), 0u);
  EXPECT_EQ(vxfmtzjulymd(50, 1, 1), vxfmtzjulymd(1950, 1, 1));
  EXPECT_EQ(vxhostSetOption(host, "PATH", 1), VX_E_KIND);
  EXPECT_EQ(vxhostSetOption(host, nullptr, 1), VX_E_NULL);
}

TEST_F(Host, CharactersReachTheLibrary) {
  EXPECT_EQ(vxnlsisalpha(0x416), 1);
  EXPECT_EQ(vxnlsisalpha(0x16E40), 1);  // Medefaidrin, newer than the library's own tables
  EXPECT_EQ(vxnlsisdigit(0x10D30), 1);
  EXPECT_EQ(vxnlsispunct(0x416), 0);
  uint8_t text[] = "\u00C0\U0001E900";  // A with grave, Adlam capital alif
  vxzsu8Lower(text, sizeof text - 1);
  EXPECT_STREQ(reinterpret_cast<const char*>(text), "\u00E0\U0001E922");
  VXStatus status = 77;
  const std::string composed = "\u00E9", decomposed = "e\u0301";
  EXPECT_EQ(vxzsu8ICUNormEqual(reinterpret_cast<const uint8_t*>(composed.data()), 2,
                               reinterpret_cast<const uint8_t*>(decomposed.data()), 3, 0, &status),
            1);
  EXPECT_EQ(status, 0u);
}

TEST_F(Host, HasATextForEveryStatus) {
  std::set<std::string> texts;
  static constexpr VXStatus statuses[] = {0,
                                          VX_E_MEMORY,
                                          VX_E_DIGITS,
                                          VX_E_DIRECTIVE,
                                          VX_E_ROOM,
                                          VX_E_SEQUENCE,
                                          VX_E_NOMATCH,
                                          VX_E_MISSING,
                                          VX_E_RANGE,
                                          VX_E_TRUNCATED,
                                          VX_W_FILL,
                                          VX_E_NOTNUMBER,
                                          VX_E_OVERFLOW,
                                          VX_E_UNDERFLOW,
                                          VX_E_INCOMPLETE,
                                          VX_E_WIDTH,
                                          VX_W_PRECISION,
                                          VX_E_KIND,
                                          VX_E_LENGTH,
                                          VX_W_SUBSTITUTE,
                                          VX_E_NULL,
                                          VX_E_MISSCHAR,
                                          VX_E_ZONE,
                                          VX_E_GROUPING,
                                          VX_E_SPLIT};
  char text[200];
  for (const VXStatus status : statuses) {
    ASSERT_EQ(vxhostStatusText(host, status, text, sizeof text), 0u);
    char number[20];
    snprintf(number, sizeof number, "0x%08x: ", status);
    EXPECT_TRUE(std::string(text).starts_with(number)) << text;
    EXPECT_TRUE(texts.insert(std::string(text).substr(12)).second) << text;
  }
  EXPECT_EQ(vxhostStatusText(host, 0x80000001, text, sizeof text), 0u);
  EXPECT_STREQ(text, "0x80000001");
  EXPECT_EQ(vxhostStatusText(host, VX_E_ZONE, text, 11), VX_E_TRUNCATED);
  EXPECT_STREQ(text, "0x803fe83c");
  EXPECT_EQ(vxhostStatusText(host, VX_E_ZONE, text, SIZE_MAX), 0u);
  EXPECT_EQ(vxhostResolveLocale(host, "de_DE", text, SIZE_MAX), 0u);
  EXPECT_EQ(vxhostAliveText(text, SIZE_MAX), 0u);
}

TEST(HostOpening, JournalsToStandardErrorWhenTheEnvironmentSaysSo) {
  setenv("VXHOST_JOURNAL", "stderr", 1);
  setenv("VXHOST_PATH", "some/folder", 1);
  testing::internal::CaptureStderr();
  VXHost* host = nullptr;
  ASSERT_EQ(vxhostOpen(nullptr, &host), 0u);
  unsetenv("VXHOST_JOURNAL");
  unsetenv("VXHOST_PATH");
  VXHandle* const kernel = vxhostContext(host)->kernel;
  static constexpr VXJournalAttributes attributes{};
  VXJournal* const journal = kernel->ops->create_journal(kernel, &attributes, 0, "a journal");
  vxlStatusToJnl(journal, 4, static_cast<int32_t>(VX_E_ZONE));
  vxhostClose(host);
  const std::string text = testing::internal::GetCapturedStderr();
  const std::string time = "20[0-9-]*T[0-9:]*[.][0-9]*Z ";
  EXPECT_THAT(text, testing::MatchesRegex(time + "host level 3: VXHOST_PATH: some/folder is refused: [^\n]*\n" + time +
                                          "a journal level 4: 0x803fe83c: no time zone has this name\n"));
}

TEST(HostOpening, SaysWhatIsMissing) {
  const std::string libraries = std::filesystem::path([] {
                                  Dl_info info;
                                  dladdr(reinterpret_cast<const void*>(&vxhostOpen), &info);
                                  return info.dli_fname;
                                }())
                                    .parent_path();
  VXHost* host = reinterpret_cast<VXHost*>(1);
  EXPECT_EQ(vxhostOpen(nullptr, nullptr), VX_E_NULL);
  EXPECT_EQ(vxhostOpen("/nonexistent", &host), VX_E_ROOM);
  EXPECT_EQ(host, nullptr);
  EXPECT_NE(std::string(vxhostOpenFailure()).find("/nonexistent/libvxnlsloc.so"), std::string::npos);

  const vxtest::TemporaryFolder folder;
  folder.write("libvxnlsloc.so", "not a library");
  EXPECT_EQ(vxhostOpen(folder.path().c_str(), &host), VX_E_ROOM);
  std::filesystem::remove(folder.file("libvxnlsloc.so"));
  folder.link(libraries + "/vxemsg.so", "libvxnlsloc.so");  // a library without the entry points
  EXPECT_EQ(vxhostOpen(folder.path().c_str(), &host), VX_E_ROOM);
  EXPECT_NE(std::string(vxhostOpenFailure()).find("vxextver"), std::string::npos) << vxhostOpenFailure();

  // Each extension that creating a locale needs, missing in turn.
  std::filesystem::remove(folder.file("libvxnlsloc.so"));
  folder.link(libraries + "/libvxnlsloc.so", "libvxnlsloc.so");
  for (const std::string name : {"vxemsg", "vxnlsldb"}) {
    EXPECT_EQ(vxhostOpen(folder.path().c_str(), &host), VX_E_ROOM);
    EXPECT_EQ(host, nullptr);
    EXPECT_NE(std::string(vxhostOpenFailure()).find(name), std::string::npos) << vxhostOpenFailure();
    EXPECT_EQ(vxhostAlive(), 0) << alive();
    folder.link(libraries + '/' + name + ".so", name + ".so");
  }
  EXPECT_EQ(vxhostOpen(folder.path().c_str(), &host), 0u) << vxhostOpenFailure();
  vxhostClose(host);

  // Or found by the search path.
  for (const std::string name : {"vxemsg.so", "vxnlsldb.so"}) std::filesystem::remove(folder.file(name));
  setenv("VXHOST_PATH", "lib", 1);
  EXPECT_EQ(vxhostOpen(folder.path().c_str(), &host), VX_E_ROOM);
  setenv("VXHOST_PATH", ("lib:" + libraries).c_str(), 1);
  EXPECT_EQ(vxhostOpen(folder.path().c_str(), &host), 0u) << vxhostOpenFailure();
  vxhostClose(host);
  unsetenv("VXHOST_PATH");
  vxhostClose(nullptr);
  EXPECT_EQ(vxhostAlive(), 0) << alive();
}

TEST(HostOpening, TakesNoUnfitLibrary) {
  static constexpr struct {
    const char* library;
    VXStatus status;
    const char* reason;
  } cases[] = {
      {"other_version", VX_E_ROOM, "7.1"},
      {"no_module", VX_E_MEMORY, ""},
      {"newer_host_wanted", VX_E_ROOM, "6.2.0"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.library);
    const vxtest::TemporaryFolder folder;
    folder.link(UNFIT_LIBRARIES + std::string(c.library) + ".so", "libvxnlsloc.so");
    VXHost* host = nullptr;
    EXPECT_EQ(vxhostOpen(folder.path().c_str(), &host), c.status);
    EXPECT_EQ(host, nullptr);
    EXPECT_NE(std::string(vxhostOpenFailure()).find(c.reason), std::string::npos) << vxhostOpenFailure();
    EXPECT_NE(std::string(vxhostOpenFailure()), "");
    EXPECT_EQ(vxhostAlive(), 0) << alive();
  }
}

}  // namespace
