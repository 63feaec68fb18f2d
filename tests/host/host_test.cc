// The reference host as a program meets it: opening, locales, journals, other hosts, many threads (a thread sanitizer
// build listens), and nothing alive after the end.
#include <gmock/gmock.h>
#include <sys/resource.h>

#include <barrier>
#include <cstring>
#include <map>
#include <set>
#include <thread>

#include "host/locale_database_ops.h"
#include "tests/host/temporary_folder.h"
#include "vxnls/vxhost.h"
#include "vxnls/vxnls.h"

namespace {

VXHost* open(const char* folder = nullptr) {
  VXHost* host = nullptr;
  EXPECT_EQ(vxhostOpen(folder, &host), 0u) << vxhostOpenFailure();
  return host;
}

class Host : public testing::Test {
 protected:
  ~Host() override {
    vxhostClose(host);
    char alive[300];
    vxhostAliveText(alive, sizeof alive);
    EXPECT_EQ(vxhostAlive(), 0) << alive;
    EXPECT_EQ(Exported_VXHandle, nullptr);
    EXPECT_EQ(vxnlsisalpha('a'), 1) << "without a host the built-in tables answer";
    EXPECT_EQ(vxnlsisalpha(0x16E40), 0);
  }
  VXLocale* locale(const std::string& name, const char* zone = "UTC", uint32_t flags = 0) const {
    VXLocale* made = nullptr;
    EXPECT_EQ(vxhostLocale(host, name.c_str(), zone, flags, &made), 0u) << name;
    return made;
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
  using namespace std::string_literals;
  for (const std::u32string& name :
       {U"xx_YY"s, U"de DE"s, U"../../etc/passwd"s, U"/etc/localtime"s, U"Europe/../Europe/Paris"s, U"d\u00C9"s,
        U"Asia/Tok\u0179o"s, U"Asia/Tokyo\0"s, U"de\0DE"s, std::u32string(200, U'a'), std::u32string(10000, U'A'),
        std::u32string(10000, U' '), U"\xD800\x110000\xFFFFFFFF"s}) {
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
    std::string bytes(units.begin(), units.end());
    bytes.resize(std::min(bytes.find('\0'), bytes.size()));
    VXLocale* made = own;
    EXPECT_EQ(vxhostLocale(host, bytes.c_str(), "UTC", 0, &made), bytes == "de" ? 0 : VX_E_NOMATCH);
    EXPECT_EQ(vxhostLocale(host, "de_DE", bytes.c_str(), 0, &made), bytes == "Asia/Tokyo" ? 0 : VX_E_ZONE);
    EXPECT_EQ(made != nullptr, bytes == "Asia/Tokyo");
  }
  // Kept on purpose: for a new locale in an unknown zone the library releases a lock that it never took.
  const int64_t strays = vxhostStrayReleases();
  VXLocale* made = nullptr;
  EXPECT_EQ(vxhostLocale(host, "de_DE", "Nowhere/Else", 0, &made), VX_E_ZONE);
  EXPECT_EQ(vxhostStrayReleases(), strays + 1);
  EXPECT_EQ(vxhostLocale(host, nullptr, "UTC", 0, &made), VX_E_NULL);
  EXPECT_EQ(vxhostLocale(nullptr, "de_DE", "UTC", 0, &made), VX_E_NULL);
  EXPECT_EQ(vxhostLocale(host, "de_DE", "UTC", 0, nullptr), VX_E_NULL);
}

void keep(void* user, uint32_t level, double time, const char* text) {
  EXPECT_NEAR(time, static_cast<double>(::time(nullptr)), 60);
  *static_cast<std::string*>(user) += std::to_string(level) + ' ' + text + '\n';
}

TEST_F(Host, JournalsMessagesAndStatuses) {
  std::string entries;
  vxhostSetJournal(host, keep, &entries);
  VXHandle* const kernel = vxhostContext(host)->kernel;
  static constexpr VXJournalAttributes attributes{};
  VXJournal* const to = kernel->ops->create_journal(kernel, &attributes, 0, "a journal");
  static constexpr VXChar insert[] = {'i', 'n', 0};
  const std::u32string text = U"%s=%d, %u, %x; %ld %lu %lx 100%% %q %l %?\xD800";  // the last one is no character
  const std::vector<VXChar> message(text.c_str(), text.c_str() + text.size() + 1);
  vxlMessageToJnl(to, 2, message.data(), 0, insert, -1, 4000000000u, 255u, int64_t{-5000000000},
                  uint64_t{18000000000000000000u}, uint64_t{0xABCDEF0123456789u});
  vxlStatusToJnl(to, 4, 0x12345678);
  EXPECT_EQ(entries,
            "2 in=-1, 4000000000, ff; -5000000000 18000000000000000000 abcdef0123456789 100% %q %l %?\uFFFD\n"
            "4 0x12345678\n");
  VXChar buffer[9] = {};
  int64_t length = -1;
  const auto word = [](auto* pointer) { return reinterpret_cast<uint64_t>(pointer); };
  EXPECT_EQ(vxlMessageToBuf(to, word(message.data()), word(buffer), 8, word(&length), 0, insert, 42, 1, 1, int64_t{1},
                            uint64_t{1}, uint64_t{1}),
            VX_E_TRUNCATED);
  EXPECT_EQ(std::string(buffer, buffer + 9), std::string("in=42, 1").append(1, '\0'));
  // One line when the system's zone is unknown: a stand-in for locales, and for nothing else.
  VXHostZoneInfo info;
  for (const char* const tz : {"CET-1CEST,M3.5.0,M10.5.0/3", "/nowhere", "japan"}) {
    entries.clear();
    setenv("TZ", tz, 1);
    const bool known = tz == std::string_view("japan");
    EXPECT_EQ(locale("en_US", nullptr), locale("en_US", known ? "Asia/Tokyo" : "America/New_York"));
    EXPECT_EQ(vxhostZoneInfo(host, nullptr, VX_ZONE_FROM_UTC, 0, &info), known ? 0 : VX_E_ZONE);
    EXPECT_EQ(entries, known ? "" : "3 Invalid OS TIMEZONE value is detected. Use default TIMEZONE value instead\n");
  }
  EXPECT_STREQ(info.id, "Asia/Tokyo");
  unsetenv("TZ");
}

// There is a text for each status, and for no other number.
TEST_F(Host, TellsStatuses) {
  std::set<std::string> texts;
  char text[200];
  for (VXStatus status = VX_E_MEMORY; status != VX_E_MEMORY + 0x3000; ++status) {
    ASSERT_EQ(vxhostStatusText(host, status, text, sizeof text), 0u);
    texts.emplace(text + std::min<size_t>(strlen(text), 12));  // behind the number
  }
  EXPECT_EQ(texts.size(), 24u) << "with that of all others";
  EXPECT_EQ(vxhostStatusText(host, VX_E_ZONE, text, 11), VX_E_TRUNCATED);
  EXPECT_STREQ(text, "0x803fe83c");
}

// Several hosts share the library's one kernel handle, and nothing else; the first may close first.
TEST_F(Host, HasOthersBesideIt) {
  VXHandle* const stored = Exported_VXHandle;
  VXHost* const first = host;
  VXLocale* const of_first = locale("de_DE");
  host = open();
  VXLocale* const of_second = locale("de_DE");
  EXPECT_NE(of_first, of_second);
  std::string entries, others;
  vxhostSetJournal(first, keep, &entries);
  vxhostSetJournal(host, keep, &others);
  VXHandle* const kernel = vxhostContext(first)->kernel;
  static constexpr VXChar name[] = {'n', 'o', 'n', 'e'};
  EXPECT_EQ(kernel->ops->load_extension(kernel, name, 4, 0), nullptr);
  EXPECT_TRUE(!entries.empty() && others.empty());
  vxhostClose(first);
  EXPECT_EQ(Exported_VXHandle, stored);
  EXPECT_EQ(locale("de_DE"), of_second);
  EXPECT_EQ(vxnlsisalpha(0x16E40), 1);  // newer than the library's own tables
  for (const int32_t cutoff : {2000, 1900}) {
    EXPECT_EQ(vxhostSetOption(host, "VX_NAME_YEARCUTOFF", cutoff), 0u);
    EXPECT_EQ(vxfmtzjulymd(50, 1, 1), vxfmtzjulymd(cutoff + 50, 1, 1));
  }
  EXPECT_EQ(vxhostSetOption(host, "PATH", 1), VX_E_KIND);
}

/// A moment written, and what reading that gives.
auto written(VXLocale* locale) {
  std::vector<VXChar> text(200);
  int64_t length = 0, consumed = 0;
  double value = 0;
  EXPECT_EQ(locale->ops.NLSDatetimeFormat(locale, 0, text.data(), 200, &length, 2e9), 0u);
  text.resize(static_cast<size_t>(length));
  const VXStatus status = locale->ops.NLSBufToDatetime(locale, text.data(), length, 0, &value, &consumed);
  return std::tuple(text, status, value);
}

VXStatus set_zone(VXLocale* locale, std::string_view name) {
  const std::vector<VXChar> id(name.begin(), name.end());
  return locale->ops.NLSSetTimezoneId(locale, id.data(), static_cast<int64_t>(id.size()));
}

std::atomic<int64_t> entries{0}, fills{0}, of_their_own{0};
const VXLocaleDatabaseOps* real_database;

TEST_F(Host, EveryLocaleIsCreatedOnceAndServes32Threads) {
  static constexpr const char* zones[] = {"Europe/Berlin", "America/New_York", "Asia/Tokyo", "UTC"};
  setenv("TZ", "No/Where", 1);  // so that each locale with the system's zone is told of in the journal
  vxhostSetJournal(
      host, [](void*, uint32_t, double, const char*) { ++entries; }, nullptr);
  // Each locale that is created is filled once.
  VXLocaleDatabase* const database = vxhostContext(host)->localeDatabase;
  real_database = database->ops;
  VXHostLocaleDatabaseOps counting = *reinterpret_cast<const VXHostLocaleDatabaseOps*>(real_database);
  counting.base.fill = [](VXLocaleDatabase* self, VXLocaleData* record, const VXChar* name, int64_t length) {
    return ++fills, real_database->fill(self, record, name, length);
  };
  database->ops = &counting.base;
  std::vector<std::string> names;
  const auto add = [](void* all, const char* name) {
    return static_cast<std::vector<std::string>*>(all)->emplace_back(name), 0;
  };
  vxhostForEachLocale(host, add, &names);
  ASSERT_GT(names.size(), 800u);
  std::vector<std::map<size_t, std::pair<VXLocale*, decltype(written(nullptr))>>> found(32);
  std::barrier start(32);
  const auto work = [&](size_t t) {
    start.arrive_and_wait();
    for (size_t i = 0; i < names.size(); ++i) {
      const size_t n = (i + t / 4 * 100) % names.size();  // four threads want the same locales in the same order
      VXLocale* locale = nullptr;
      ASSERT_EQ(vxhostLocale(host, names[n].c_str(), zones[n % std::size(zones)], 0, &locale), 0u);
      EXPECT_EQ(set_zone(locale, zones[(n + i) % std::size(zones)]), 0u);
      EXPECT_EQ(set_zone(locale, "xxx"), VX_E_ZONE);
      found[t][n] = {locale, written(locale)};
      if (i % 16 != 0) continue;
      VXLocale* own = nullptr;
      EXPECT_EQ(vxhostLocale(host, names[n].c_str(), nullptr, 1, &own), 0u);
      ++of_their_own;
      EXPECT_EQ(set_zone(own, zones[i % std::size(zones)]), 0u);
      EXPECT_EQ(written(own), found[t][n].second);
      EXPECT_EQ(vxhostLocale(host, "de_DE", "Nowhere", 0, &own), VX_E_ZONE);
      uint8_t word[] = "\u00C9t\u00C9";
      vxzsu8Lower(word, sizeof word - 1);
      EXPECT_EQ(vxzsu8ICUNormCompare(word, 5, word, 5, 0, nullptr), 0);
      VXHostZoneInfo info;
      EXPECT_EQ(vxhostZoneInfo(host, zones[i % std::size(zones)], VX_ZONE_FROM_UTC, 1e9, &info), 0u);
      if (i % 256 == 0) vxhostClose(open());
    }
  };
  std::vector<std::jthread> all;
  for (size_t t = 0; t < found.size(); ++t) all.emplace_back(work, t);
  all.clear();
  for (const auto& of_one : found) EXPECT_TRUE(of_one == found[0]);
  EXPECT_EQ(fills, static_cast<int64_t>(names.size()) + of_their_own);
  EXPECT_EQ(entries, of_their_own);
  unsetenv("TZ");
  database->ops = real_database;
}

TEST(HostOpening, WantsDescriptorsOnlyForAMoment) {
  VXHost* const host = open();
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  for (const auto& [descriptors, wanted] : {std::pair(rlim_t{0}, VX_E_MEMORY), {limit.rlim_cur, VXStatus{0}}}) {
    limit.rlim_cur = descriptors;
    setrlimit(RLIMIT_NOFILE, &limit);
    VXLocale* made = nullptr;
    VXHostZoneInfo info;
    EXPECT_EQ(vxhostZoneInfo(host, "Asia/Pyongyang", VX_ZONE_FROM_UTC, 0, &info), wanted);
    EXPECT_EQ(vxhostLocale(host, "de_DE", "Asia/Pyongyang", 0, &made), wanted);
  }
  vxhostClose(host);
}

TEST(HostOpening, JournalsToStandardErrorWhenTheEnvironmentSaysSo) {
  setenv("VXHOST_JOURNAL", "stderr", 1);
  setenv("VXHOST_PATH", "some", 1);
  testing::internal::CaptureStderr();
  vxhostClose(open());
  for (const char* const set : {"VXHOST_JOURNAL", "VXHOST_PATH"}) unsetenv(set);
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              testing::MatchesRegex("20[0-9-]*T[0-9:]*[.][0-9]*Z host level 3: VXHOST_PATH: some is refused: .*\n"));
}

TEST(HostOpening, SaysWhatIsMissing) {
  const std::string libraries = VXHOST_FOLDER "/", the_library = "libvxnlsloc.so";
  const vxtest::TemporaryFolder folder;
  const struct {
    std::string target, name;  // which lies there, beside those before
    VXStatus status;
    const char* reason;
  } cases[] = {
      {"gone", "any", VX_E_ROOM, "/libvxnlsloc.so"},
      {libraries + "vxemsg.so", the_library, VX_E_ROOM, "vxextver"},  // without the entry points
      {UNFIT_LIBRARIES "other_version.so", the_library, VX_E_ROOM, "7.1"},
      {UNFIT_LIBRARIES "no_module.so", the_library, VX_E_MEMORY, "memory"},
      {UNFIT_LIBRARIES "newer_host_wanted.so", the_library, VX_E_ROOM, "6.2.0"},
      {libraries + the_library, the_library, VX_E_ROOM, "vxemsg"},
      {libraries + "vxemsg.so", "vxemsg.so", VX_E_ROOM, "vxnlsldb"},
      {libraries + "vxnlsldb.so", "vxnlsldb.so", 0, ""},
  };
  for (const auto& c : cases) {
    std::filesystem::remove(folder.file(c.name));
    folder.link(c.target, c.name);
    VXHost* host = reinterpret_cast<VXHost*>(1);
    EXPECT_EQ(vxhostOpen(folder.path().c_str(), &host), c.status) << c.target;
    EXPECT_EQ(host != nullptr, c.status == 0);
    EXPECT_THAT(vxhostOpenFailure(), testing::HasSubstr(c.reason));
    vxhostClose(host);
    EXPECT_EQ(vxhostAlive(), 0);
  }
  std::filesystem::remove(folder.file("vxemsg.so"));
  setenv("VXHOST_PATH", ("lib:" + libraries).c_str(), 1);
  vxhostClose(open(folder.path().c_str()));
  unsetenv("VXHOST_PATH");
}

}  // namespace
