// The reference host as a program meets it: opening, locales, journals, other hosts, and nothing alive after the end.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "tests/host/temporary_folder.h"
#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace {

std::string alive() {
  char text[300];
  vxhostAliveText(text, sizeof text);
  return text;
}

VXHost* open(const char* folder = nullptr) {
  VXHost* host = nullptr;
  EXPECT_EQ(vxhostOpen(folder, &host), 0u) << vxhostOpenFailure();
  return host;
}

class Host : public testing::Test {
 protected:
  ~Host() override {
    vxhostClose(host);
    EXPECT_EQ(vxhostAlive(), 0) << alive();
    EXPECT_EQ(Exported_VXHandle, nullptr);
    EXPECT_EQ(vxnlsisalpha('a'), 1) << "without a host the built-in tables answer";
    EXPECT_EQ(vxnlsisalpha(0x16E40), 0);
  }
  VXLocale* locale(const std::string& name, const char* zone = "UTC", uint32_t flags = 0) const {
    VXLocale* made = nullptr;
    EXPECT_EQ(vxhostLocale(host, name.c_str(), zone, flags, &made), 0u) << name;
    return made;
  }
  VXJournal* journal() const {
    static constexpr VXJournalAttributes attributes{};
    VXHandle* const kernel = vxhostContext(host)->kernel;
    return kernel->ops->create_journal(kernel, &attributes, 0, "a journal");
  }

  VXHost* host = open();
};

TEST_F(Host, OneNameAndZoneAreOneObject) {
  VXLocale* const german = locale("de_DE", "Europe/Berlin");
  ASSERT_NE(german, nullptr);
  EXPECT_EQ(locale("de-DE", "europe/BERLIN "), german) << "other spellings of both";
  EXPECT_EQ(locale("de_DE.UTF-8", "Europe/Berlin", 6), german) << "unknown flags";
  for (int i = 0; i < 5000; ++i) {  // more names than are worth remembering
    ASSERT_EQ(locale("de_DE." + std::to_string(i), "Europe/Berlin"), german);
  }
  EXPECT_EQ(locale("de_US"), locale("de")) << "the substitute is the shared object";
  VXLocale* const own = locale("de_DE", "Europe/Berlin", 1);
  EXPECT_EQ((std::set{german, own, locale("de_DE", "Europe/Berlin", 1), locale("de_DE", "Europe/Vienna"),
                      locale("de_AT", "Europe/Berlin")})
                .size(),
            5u);
  EXPECT_EQ(locale("de_DE", "Europe/Berlin"), german);
}

// Also as units, which may hold anything: through the library, and within a text that names a zone.
TEST_F(Host, RefusesWhatIsNoLocaleAndNoZone) {
  VXLocale* const own = locale("en_US", "Europe/Berlin", 1);
  VXZone* const berlin = own->timeZone;
  own->localeData->datetimePattern = {2, {'%', 'Z'}};
  const std::u32string none[] = {U"xx_YY",
                                 U"../../etc/passwd",
                                 U"/etc/localtime",
                                 U"Europe/../Europe/Paris",
                                 U"d\u00C9",
                                 U"Asia/Tok\u0179o",
                                 {U"Asia/Tokyo\0", 11},
                                 {U"de\0DE", 5},
                                 std::u32string(200, U'a'),
                                 std::u32string(10000, U'A'),
                                 std::u32string(10000, U' '),
                                 {0xD800, 0x110000, 0xFFFFFFFF}};
  for (const std::u32string& name : none) {
    SCOPED_TRACE(testing::PrintToString(name.substr(0, 30)));
    const std::vector<VXChar> units(name.begin(), name.end());
    const auto n = static_cast<int64_t>(units.size());
    double value = 0;
    int64_t consumed = 0;
    VXStatus status = 0;
    EXPECT_EQ(NLSSetTimezoneId(own, units.data(), n), VX_E_ZONE);
    EXPECT_EQ(own->timeZone, berlin);
    EXPECT_EQ(NLSBufToDatetime(own, units.data(), n, 0, &value, &consumed), VX_E_NOMATCH);
    LocaleCreateOptions options = {1, {}, units.data(), n};
    EXPECT_EQ(NLSLocaleCreate(vxhostContext(host), own->name, 5, &status, &options), nullptr);
    EXPECT_EQ(status, VX_E_ZONE);
    EXPECT_EQ(NLSLocaleCreate(vxhostContext(host), units.data(), n, &status, nullptr), nullptr);
    EXPECT_EQ(status, VX_E_NOMATCH);
    const std::string bytes = std::string(units.begin(), units.end()).c_str();  // up to a NUL
    VXLocale* made = own;
    EXPECT_EQ(vxhostLocale(host, bytes.c_str(), "UTC", 0, &made), bytes == "de" ? 0 : VX_E_NOMATCH);
    EXPECT_EQ(vxhostLocale(host, "de_DE", bytes.c_str(), 0, &made), bytes == "Asia/Tokyo" ? 0 : VX_E_ZONE);
    EXPECT_EQ(made != nullptr, bytes == "Asia/Tokyo");
  }
  // What is written is the offset in force.
  own->localeData->datetimePattern = {5, {'%', 'z', ' ', '%', 'Z'}};
  static constexpr VXChar japan[] = {'j', 'A', 'p', 'a', 'n'};
  for (const char* const wanted : {"+0100 Europe/Berlin", "+0200 Europe/Berlin", "+0900 Asia/Tokyo"}) {
    uint8_t text[60];
    int64_t length = 0;
    const double value = wanted[2] == '2' ? 2098000000.0 : 2110896000.0;  // summer and autumn of 2026
    EXPECT_EQ(wanted[2] == '9' ? own->ops.NLSSetTimezoneId(own, japan, 5) : 0, 0u);
    EXPECT_EQ(own->ops.NLSDatetimeFormatU(own, 0, text, sizeof text, &length, value), 0u);
    EXPECT_EQ(std::string(text, text + length), wanted);
  }
  // Kept on purpose: for a new locale in an unknown zone the library releases a lock that it never took.
  const int64_t strays = vxhostStrayReleases();
  VXLocale* made = nullptr;
  EXPECT_EQ(vxhostLocale(host, "de_DE", "Nowhere/Else", 0, &made), VX_E_ZONE);
  EXPECT_EQ(vxhostStrayReleases(), strays + 1);
  EXPECT_EQ(vxhostLocale(host, "", "UTC", 0, &made), VX_E_NOMATCH);
  EXPECT_EQ(vxhostLocale(host, "de_DE", "", 0, &made), VX_E_ZONE);
  EXPECT_EQ(vxhostLocale(host, nullptr, "UTC", 0, &made), VX_E_NULL);
  EXPECT_EQ(vxhostLocale(nullptr, "de_DE", "UTC", 0, &made), VX_E_NULL);
  EXPECT_EQ(vxhostLocale(host, "de_DE", "UTC", 0, nullptr), VX_E_NULL);
}

void keep(void* user, uint32_t level, double time, const char* text) {
  EXPECT_NEAR(time, static_cast<double>(::time(nullptr)), 60);
  static_cast<std::vector<std::string>*>(user)->push_back(std::to_string(level) + ' ' + text);
}

TEST_F(Host, JournalsMessagesAndStatuses) {
  std::vector<std::string> entries;
  vxhostSetJournal(host, keep, &entries);
  VXJournal* const to = journal();
  static constexpr VXChar insert[] = {'i', 'n', 0};
  std::string text = "%s=%d, %u, %x; %ld %lu %lx 100%% %q %l %?";
  std::vector<VXChar> message(text.begin(), text.end());
  message.insert(message.end(), {0xD800, 0});  // no character
  vxlMessageToJnl(to, 2, message.data(), 0, insert, -1, 4000000000u, 255u, int64_t{-5000000000},
                  uint64_t{18000000000000000000u}, uint64_t{0xABCDEF0123456789u});
  vxlStatusToJnl(to, 4, 0x12345678);
  EXPECT_THAT(entries,
              testing::ElementsAre(
                  "2 in=-1, 4000000000, ff; -5000000000 18000000000000000000 abcdef0123456789 100% %q %l %?\uFFFD",
                  "4 0x12345678"));

  VXChar buffer[60];
  int64_t length = -1;
  const auto word = [](auto* pointer) { return reinterpret_cast<uint64_t>(pointer); };
  EXPECT_EQ(vxlMessageToBuf(to, word(message.data()), word(buffer), 8, word(&length), 0, insert, 42, 1, 1, int64_t{1},
                            uint64_t{1}, uint64_t{1}),
            VX_E_TRUNCATED);
  EXPECT_EQ(std::string(buffer, buffer + length), "in=42, 1");
  EXPECT_EQ(vxlStatusToBuf(to, static_cast<int32_t>(VX_E_ZONE), word(buffer), 60, word(&length)), 0u);
  EXPECT_EQ(std::string(buffer, buffer + length), "0x803fe83c: no time zone has this name");
  EXPECT_EQ(vxlStatusToBuf(to, 0, 0, 60, word(&length)), VX_E_NULL);
  EXPECT_EQ(vxlMessageToBuf(to, 0, word(buffer), 60, word(&length), 0), VX_E_NULL);
  EXPECT_EQ(vxlGetLocale(to, 0, 0, 0, 0, 0), nullptr);

  // One line when the system's zone is unknown: a stand-in for locales, and for nothing else.
  VXHostZoneInfo info;
  for (const char* const tz : {"CET-1CEST,M3.5.0,M10.5.0/3", "/nowhere", "japan"}) {
    entries.clear();
    setenv("TZ", tz, 1);
    const bool known = tz == std::string_view("japan");
    EXPECT_EQ(locale("en_US", nullptr), locale("en_US", known ? "Asia/Tokyo" : "America/New_York"));
    EXPECT_EQ(vxhostZoneInfo(host, nullptr, VX_ZONE_FROM_UTC, 0, &info), known ? 0 : VX_E_ZONE);
    EXPECT_EQ(testing::PrintToString(entries),
              known ? "{}" : R"({ "3 Invalid OS TIMEZONE value is detected. Use default TIMEZONE value instead" })");
  }
  EXPECT_STREQ(info.id, "Asia/Tokyo");
  unsetenv("TZ");
}

// There is a text for each status, and for no other number.
TEST_F(Host, TellsStatuses) {
  std::set<std::string> texts;
  char text[200];
  for (const auto& [from, count] : {std::pair<VXStatus, VXStatus>{0, 1}, {VX_E_SPLIT, 1}, {VX_E_MEMORY, 0x3000}}) {
    for (VXStatus status = from; status != from + count; ++status) {
      ASSERT_EQ(vxhostStatusText(host, status, text, sizeof text), 0u);
      char number[20];
      snprintf(number, sizeof number, "0x%08x", status);
      EXPECT_THAT(text, testing::StartsWith(number));
      if (std::string_view(text) != number) texts.insert(std::string(text).substr(12));
    }
  }
  EXPECT_EQ(texts.size(), 25u);
  EXPECT_EQ(vxhostStatusText(host, VX_E_ZONE, text, 11), VX_E_TRUNCATED);
  EXPECT_STREQ(text, "0x803fe83c");
  EXPECT_EQ(vxhostResolveLocale(host, "zh_TW", text, 10), VX_E_ROOM);
  EXPECT_EQ(vxhostResolveLocale(host, "zh_TW", text, SIZE_MAX), 0u);
  EXPECT_STREQ(text, "zh_Hant_TW");
  EXPECT_EQ(vxhostAliveText(text, SIZE_MAX), 0u);
}

TEST_F(Host, WalksGoInOrderAndStopWhenTheyAreTold) {
  using Names = std::vector<std::string>;
  static constexpr auto keep_first = [](void* to, const char* id) {
    return static_cast<Names*>(to)->emplace_back(id), 1;
  };
  static constexpr auto keep_all = [](void* to, const char* id) { return keep_first(to, id) - 1; };
  for (const auto walk : {vxhostForEachZone, vxhostForEachLocale}) {
    Names all, first;
    walk(host, keep_all, &all);
    walk(host, keep_first, &first);
    EXPECT_TRUE(all.size() > 500 && std::is_sorted(all.begin(), all.end()));
    EXPECT_EQ(first, Names{all[0]});
  }
  const auto each = [](void* seen, const char* entry, const char*, const char*) { return keep_first(seen, entry); };
  Names fallbacks;
  EXPECT_EQ(vxhostForEachFallback(host, "vi_XX", each, &fallbacks), VX_W_SUBSTITUTE);
  EXPECT_EQ(vxhostForEachFallback(host, "xx_YY", each, &fallbacks), VX_E_NOMATCH);
  EXPECT_EQ(fallbacks.size(), 1u);
}

// Several hosts share the library's one kernel handle, and nothing else; the first may close first.
TEST_F(Host, HasOthersBesideIt) {
  VXHandle* const stored = Exported_VXHandle;
  VXHost* const first = host;
  VXLocale* const of_first = locale("de_DE");
  host = open();
  EXPECT_NE(vxhostContext(first)->kernel, stored);
  VXLocale* const of_second = locale("de_DE");
  EXPECT_NE(of_first, of_second);
  std::vector<std::string> entries, others;
  vxhostSetJournal(first, keep, &entries);
  vxhostSetJournal(host, keep, &others);
  VXHandle* const kernel = vxhostContext(first)->kernel;
  static constexpr VXChar name[] = {'n', 'o', 'n', 'e'};
  EXPECT_EQ(kernel->ops->load_extension(kernel, name, 4, 0), nullptr);
  EXPECT_TRUE(entries.size() == 1 && others.empty());
  vxhostClose(first);
  EXPECT_EQ(Exported_VXHandle, stored);
  EXPECT_EQ(locale("de_DE"), of_second);
  EXPECT_EQ(vxnlsisalpha(0x16E40), 1);  // newer than the library's own tables
  uint8_t text[100];
  int64_t length = 0;
  EXPECT_EQ(of_second->ops.NLSDateFormatU(of_second, 11, 21, 2026, 0, text, sizeof text, &length), 0u);
  EXPECT_EQ(std::string(text, text + length), "21.11.2026");
  for (const int32_t cutoff : {2000, 1900}) {
    EXPECT_EQ(vxhostSetOption(host, "VX_NAME_YEARCUTOFF", cutoff), 0u);
    EXPECT_EQ(vxfmtzjulymd(50, 1, 1), vxfmtzjulymd(cutoff + 50, 1, 1));
  }
  EXPECT_EQ(vxhostSetOption(host, "PATH", 1), VX_E_KIND);
  EXPECT_EQ(vxhostSetOption(host, nullptr, 1), VX_E_NULL);
}

TEST(HostOpening, JournalsToStandardErrorWhenTheEnvironmentSaysSo) {
  setenv("VXHOST_JOURNAL", "stderr", 1);
  setenv("VXHOST_PATH", "some", 1);
  testing::internal::CaptureStderr();
  vxhostClose(open());
  unsetenv("VXHOST_JOURNAL");
  unsetenv("VXHOST_PATH");
  const char* const wanted =
      "20[0-9-]*T[0-9:]*[.][0-9]*Z host level 3: VXHOST_PATH: some is refused: it is not an .*\n";
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::MatchesRegex(wanted));
}

TEST(HostOpening, SaysWhatIsMissing) {
  const std::string libraries = VXHOST_FOLDER "/";
  const vxtest::TemporaryFolder folder;
  // What lies there as a name of the host's, and what comes of opening it; further names come to the ones before.
  const struct {
    std::string target;
    const char* name;
    VXStatus status;
    const char* reason;
  } cases[] = {
      {"", "", VX_E_ROOM, "/libvxnlsloc.so"},
      {"/dev/null", "libvxnlsloc.so", VX_E_ROOM, "/libvxnlsloc.so"},
      {libraries + "vxemsg.so", "libvxnlsloc.so", VX_E_ROOM, "vxextver"},  // without the entry points
      {UNFIT_LIBRARIES "other_version.so", "libvxnlsloc.so", VX_E_ROOM, "7.1"},
      {UNFIT_LIBRARIES "no_module.so", "libvxnlsloc.so", VX_E_MEMORY, "memory"},
      {UNFIT_LIBRARIES "newer_host_wanted.so", "libvxnlsloc.so", VX_E_ROOM, "6.2.0"},
      {libraries + "libvxnlsloc.so", "libvxnlsloc.so", VX_E_ROOM, "vxemsg"},
      {libraries + "vxemsg.so", "vxemsg.so", VX_E_ROOM, "vxnlsldb"},
      {libraries + "vxnlsldb.so", "vxnlsldb.so", 0, ""},
  };
  for (const auto& c : cases) {
    if (*c.name != 0) {
      std::filesystem::remove(folder.file(c.name));
      folder.link(c.target, c.name);
    }
    VXHost* host = reinterpret_cast<VXHost*>(1);
    EXPECT_EQ(vxhostOpen(folder.path().c_str(), &host), c.status) << c.target;
    EXPECT_EQ(host != nullptr, c.status == 0);
    EXPECT_THAT(vxhostOpenFailure(), testing::HasSubstr(c.reason));
    EXPECT_EQ(*vxhostOpenFailure() == 0, c.status == 0);
    vxhostClose(host);
    EXPECT_EQ(vxhostAlive(), 0) << alive();
  }
  std::filesystem::remove(folder.file("vxemsg.so"));
  setenv("VXHOST_PATH", ("lib:" + libraries).c_str(), 1);
  vxhostClose(open(folder.path().c_str()));
  unsetenv("VXHOST_PATH");
  EXPECT_EQ(vxhostOpen(nullptr, nullptr), VX_E_NULL);
}

}  // namespace
