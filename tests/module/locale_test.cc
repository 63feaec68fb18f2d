#include "vxnls/locale.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <thread>

#include "tests/support/failing_host.h"
#include "tests/support/plain_locale.h"

namespace {

using vxtest::FailingHost;
using vxtest::Holdings;
using vxtest::Op;

constexpr VXStatus untouched = 0x5A5A5A5A;

std::u32string text_of(const VXChar* text, int64_t length) { return std::u32string(text, text + length); }

struct LocaleTest : testing::Test {
  void SetUp() override { ASSERT_TRUE(host.load_module()); }
  void TearDown() override {
    for (VXLocale* locale : alone) host.destroy_private(locale);
    host.close();
    EXPECT_EQ(host.holdings(), Holdings{});
    EXPECT_EQ(host.complaints(), std::vector<std::string>{});
  }

  /// A locale outside the cache, destroyed at the end.
  VXLocale* make(std::u32string_view name, VXStatus* status = nullptr, std::u32string_view zone = {}) {
    VXLocale* const locale = host.create(name, status, zone, false);
    if (locale != nullptr) alone.push_back(locale);
    return locale;
  }
  std::u32string zone_of(const VXLocale* locale) {
    VXChar name[50];
    int64_t length = 50;
    int32_t offset = 0;
    host.context()->zones->ops->describe(host.context()->zones, locale->timeZone, VX_ZONE_FROM_UTC, 0, name, &length,
                                         &offset);
    return text_of(name, length);
  }

  FailingHost host;
  std::vector<VXLocale*> alone;
};

// Hosts rely on the order in which they are called.
TEST_F(LocaleTest, IsMadeAndDestroyedInAFixedOrder) {
  ASSERT_TRUE(host.make_cache());
  using Calls = std::vector<std::string>;
  const Calls look_up = {"normalise_zone", "acquire creation", "lookup_locale", "find VXNLS Locale track"};
  const Calls parts = {"allocate 1016",
                       "allocate 49248",
                       "load_extension vxemsg",
                       "fill",
                       "create_lock vxnls Locale VXMSG lock",
                       "create_lock vxnls Locale VXZ lock",
                       "create_track vxnls Locale VXMSG track",
                       "set_destroy vxnls Locale VXMSG track",
                       "create_track vxnls Locale VXETZ track",
                       "set_destroy vxnls Locale VXETZ track"};
  const Calls zone = {"normalise_zone created",
                      "find vxnls Locale VXETZ track",
                      "acquire vxnls Locale VXZ lock",
                      "find vxnls Locale VXETZ track",
                      "open_zone Etc/UTC",
                      "allocate 24",
                      "insert vxnls Locale VXETZ track",
                      "release_entry vxnls Locale VXETZ track",
                      "release_lock vxnls Locale VXZ lock"};
  const Calls taking_apart = {"destroy_lock vxnls Locale VXZ lock",
                              "destroy_track vxnls Locale VXETZ track",
                              "close_zone",
                              "free 24",
                              "destroy_lock vxnls Locale VXMSG lock",
                              "destroy_track vxnls Locale VXMSG track",
                              "destroy_extension vxemsg"};
  const auto joined = [](std::initializer_list<Calls> all) {
    Calls result;
    for (const Calls& calls : all) result.insert(result.end(), calls.begin(), calls.end());
    return result;
  };
  const auto create = [this] { host.create(U"en_US", nullptr, U"UTC"); };

  // Refused by the cache, which is the last step: everything goes, the record first and the lock last.
  const Calls insert = {"insert VXNLS Locale track"};
  const Calls refused =
      joined({look_up, parts, zone, insert, {"free 49248"}, taking_apart, {"free 1016", "release_lock creation"}});
  host.fail_call(static_cast<int64_t>(joined({look_up, parts, zone, insert}).size()), false, VX_E_MEMORY);
  EXPECT_EQ(host.trace(create), refused);
  host.fail_nothing();

  EXPECT_EQ(host.trace(create),
            joined({look_up, parts, zone, insert, {"release_entry VXNLS Locale track", "release_lock creation"}}));
  EXPECT_EQ(host.trace(create), joined({look_up, {"release_entry VXNLS Locale track", "release_lock creation"}}));
  EXPECT_EQ(host.trace([this] { host.destroy_cache(); }),
            joined({{"destroy_track VXNLS Locale track"}, taking_apart, {"free 49248", "free 1016"}}));

  FailingHost fresh;
  fresh.load_module();
  VXLocale* locale = nullptr;
  const Calls first = fresh.trace([&] { locale = fresh.create(U"en_US", nullptr); });
  fresh.destroy_private(locale);
  ASSERT_GT(first.size(), 5u);
  EXPECT_EQ(Calls(first.begin(), first.begin() + 5),
            (Calls{"find_logger", "create_logger", "create_journal vxnlsLocaleJnl", "os_zone", "acquire creation"}));
}

TEST_F(LocaleTest, IsSharedByNameAndZone) {
  ASSERT_TRUE(host.make_cache());
  VXStatus status = untouched;
  VXLocale* const first = host.create(U"en_US", &status);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(status, 0u);
  status = untouched;
  EXPECT_EQ(host.create(U"en_US", &status), first);
  EXPECT_EQ(status, 0u);
  EXPECT_EQ(host.create(U"en_US", nullptr, U"america/new_york"), first) << "the system's zone by another spelling";
  EXPECT_NE(host.create(U"en_US", nullptr, U"UTC"), first);
  EXPECT_NE(host.create(U"en_GB", nullptr), first);
  VXLocale* const own = make(U"en_US");
  EXPECT_NE(own, first);
  EXPECT_NE(make(U"en_US"), own);
  EXPECT_EQ(host.create(U"en_US", nullptr), first);
  EXPECT_EQ(host.holdings().entries, 3 + 3 + 2) << "three shared locales, a zone in each, and two private ones";

  // A shared locale keeps its place under the zone it was created with, whatever its current zone is.
  const VXChar utc[] = {'U', 'T', 'C'};
  EXPECT_EQ(NLSSetTimezoneId(first, utc, 3), 0u);
  EXPECT_EQ(host.create(U"en_US", nullptr), first);
}

TEST_F(LocaleTest, WithoutACacheNothingIsShared) {
  VXStatus status = untouched;
  VXLocale* const first = host.create(U"en_US", &status);
  VXLocale* const second = host.create(U"en_US", &status);
  alone = {first, second};
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first, second);
  EXPECT_EQ(status, 0u);
  EXPECT_EQ(host.context()->localeCache, nullptr);
}

TEST_F(LocaleTest, HasItsPartsInPlace) {
  VXLocale* const locale = make(U"en_GB", nullptr, U"UTC");
  ASSERT_NE(locale, nullptr);
  EXPECT_EQ(std::memcmp(locale, "nevo", 4), 0);
  EXPECT_STREQ(locale->typeName, "VXLocale handle");
  EXPECT_EQ(locale->host, host.context());
  EXPECT_EQ(locale->destroy, &NLSLocaleDestroy);
  EXPECT_EQ(locale->destroy(locale), 0u);  // and the locale is still there
  for (const void* part : {static_cast<void*>(locale->messageExt), static_cast<void*>(locale->msgLock),
                           static_cast<void*>(locale->msgTrack), static_cast<void*>(locale->zoneLock),
                           static_cast<void*>(locale->zoneTrack), static_cast<void*>(locale->timeZone)}) {
    EXPECT_NE(part, nullptr);
  }
  EXPECT_EQ(text_of(locale->localeData->localeName.text, locale->localeData->localeName.length), U"en_GB");

  VXChar name[62];
  int64_t length = 0;
  EXPECT_EQ(NLSLocaleToLocName(locale, name, &length), 0u);
  EXPECT_EQ(text_of(name, length), U"en_GB");
  name[0] = '!';
  length = 99;
  EXPECT_EQ(NLSLocaleToLocName(locale, name, nullptr), VX_E_NULL);
  EXPECT_EQ(NLSLocaleToLocName(locale, nullptr, &length), VX_E_NULL);
  EXPECT_EQ(name[0], VXChar{'!'});
  EXPECT_EQ(length, 99);

  const uint64_t* counted = nullptr;
  EXPECT_EQ(NLSGetLocaleName(locale, 0xFFFF, &counted), 0u);
  EXPECT_EQ(*counted, 5u);
  EXPECT_EQ(text_of(reinterpret_cast<const VXChar*>(counted + 1), 5), U"en_GB");
  EXPECT_EQ(NLSGetLocaleName(locale, 0, nullptr), VX_E_NULL);
}

TEST_F(LocaleTest, GivesOutTheBlocksOfItsRecord) {
  VXLocale* const locale = make(U"en_US");
  constexpr ptrdiff_t offsets[] = {0, 17352, 248, 15840, 15328, 440, 17096, 17600, 17608, 18624};
  for (uint32_t kind = 0; kind < std::size(offsets); ++kind) {
    void* block = nullptr;
    EXPECT_EQ(NLSGetLocaleData(locale, kind, &block), 0u);
    EXPECT_EQ(static_cast<uint8_t*>(block) - reinterpret_cast<uint8_t*>(locale->localeData), offsets[kind]) << kind;
  }
  void* block = locale;
  for (const uint32_t kind : {10u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(NLSGetLocaleData(locale, kind, &block), VX_E_KIND);
    EXPECT_EQ(block, locale);
  }
  EXPECT_EQ(NLSGetLocaleData(locale, 0, nullptr), VX_E_NULL);
}

TEST_F(LocaleTest, TakesTheZoneOfTheOptionsOrTheSystems) {
  EXPECT_EQ(zone_of(make(U"en_US", nullptr, U"asia/kolkata")), U"Asia/Kolkata");
  host.answers().system_zone = U"UTC";
  EXPECT_EQ(zone_of(make(U"en_US")), U"Etc/UTC");
  const VXChar name[] = {'e', 'n', '_', 'U', 'S'};
  const VXChar zone[] = {'A'};
  for (const LocaleCreateOptions& options :
       {LocaleCreateOptions{1, {}, nullptr, 5}, LocaleCreateOptions{1, {}, zone, 0},
        LocaleCreateOptions{1, {}, zone, -1}}) {
    VXLocale* const locale = NLSLocaleCreate(host.context(), name, 5, nullptr, &options);
    ASSERT_NE(locale, nullptr);
    alone.push_back(locale);
    EXPECT_EQ(zone_of(locale), U"Etc/UTC");
  }
  VXLocale* const without_options = NLSLocaleCreate(host.context(), name, 5, nullptr, nullptr);
  ASSERT_NE(without_options, nullptr);
  alone.push_back(without_options);

  // One unit is an identifier already. A refused zone ends the creation before the lock is taken; the lock is released
  // nevertheless.
  VXStatus status = untouched;
  for (const auto& id : {U"A", U"Atlantis/Poseidonis"}) {
    const int64_t before = host.stray_releases();
    EXPECT_EQ(make(U"en_US", &status, id), nullptr);
    EXPECT_EQ(status, VX_E_ZONE);
    EXPECT_EQ(host.stray_releases(), before + 1);
  }
}

TEST_F(LocaleTest, ReplacesAnInvalidSystemZone) {
  for (const VXStatus refusal : {VX_E_ROOM, VX_E_ZONE}) {
    host.answers().system_zone_status = refusal;
    EXPECT_EQ(zone_of(make(U"en_US")), U"America/New_York");
    const auto lines = host.journal_lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back().level, 3u);
    EXPECT_EQ(lines.back().message, U"Invalid OS TIMEZONE value is detected. Use default TIMEZONE value instead");
  }
  EXPECT_EQ(host.journal_lines().size(), 2u);
  ASSERT_TRUE(host.make_cache());
  EXPECT_EQ(host.create(U"en_US", nullptr), host.create(U"en_US", nullptr, U"America/New_York"));
  // Any other refusal leaves the blanks in the buffer, which are no zone.
  VXStatus status = untouched;
  host.answers().system_zone_status = VX_E_MEMORY;
  EXPECT_EQ(make(U"en_US", &status), nullptr);
  EXPECT_EQ(status, VX_E_ZONE);
  EXPECT_EQ(host.journal_lines().size(), 4u) << "the cache and the shared locale wrote one each";
}

TEST_F(LocaleTest, MakesItsJournalOnceAndOnlyForALogger) {
  make(U"en_US");
  make(U"en_GB");
  EXPECT_EQ(host.calls(Op::find_logger), 1);
  EXPECT_EQ(host.calls(Op::create_logger), 1);
  EXPECT_EQ(host.calls(Op::create_journal), 1);
  EXPECT_NE(host.context()->localeJournal, nullptr);

  FailingHost known;
  known.answers().logger_exists = true;
  ASSERT_TRUE(known.load_module());
  known.destroy_private(known.create(U"en_US", nullptr));
  EXPECT_EQ(known.calls(Op::create_logger), 0);
  EXPECT_EQ(known.calls(Op::create_journal), 1);

  FailingHost without;
  without.kernel()->loggers = nullptr;
  without.answers().system_zone_status = VX_E_ZONE;
  ASSERT_TRUE(without.load_module());
  without.destroy_private(without.create(U"en_US", nullptr));
  EXPECT_EQ(without.calls(Op::create_journal), 0);
  EXPECT_TRUE(without.journal_lines().empty());
  without.close();
  ASSERT_EQ(vxextent(host.stored()), 0u);
}

TEST_F(LocaleTest, AcceptsASubstituteAndARemark) {
  VXStatus status = untouched;
  host.answers().lookup_status = VX_W_SUBSTITUTE;
  host.answers().fill_status = VX_W_FILL;
  host.answers().canonical_name = U"en_US";
  VXLocale* const locale = make(U"xx_YY", &status);
  ASSERT_NE(locale, nullptr);
  EXPECT_EQ(status, 0u);
  EXPECT_EQ(text_of(locale->name, static_cast<int64_t>(locale->nameLength)), U"en_US");
}

TEST_F(LocaleTest, HoldsNamesToTheirRoom) {
  std::u32string long_name(1000, U'n');
  host.answers().canonical_name = long_name;
  const struct {
    int64_t claimed, in_locale, in_record;
  } cases[] = {{1000, 62, 60}, {63, 62, 60}, {62, 62, 60},        {61, 61, 60}, {60, 60, 60},
               {1, 1, 1},      {0, 0, 0},    {INT64_MAX, 62, 60}, {-1, 0, 0},   {INT64_MIN, 0, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.claimed);
    host.answers().claimed_name_length = c.claimed;
    VXLocale* const locale = make(U"en_US");
    ASSERT_NE(locale, nullptr);
    EXPECT_EQ(static_cast<int64_t>(locale->nameLength), c.in_locale);
    EXPECT_EQ(locale->localeData->localeName.length, c.in_record);
    EXPECT_EQ(locale->ops.NLSDateFormat, &NLSDateFormat) << "what lies behind the name";
  }
}

TEST_F(LocaleTest, HoldsTheSystemsZoneToItsRoom) {
  // Blanks fill the room behind the identifier, so that a length beyond it reads as the same zone.
  for (const int64_t claimed : {int64_t{50}, int64_t{51}, int64_t{5000}, INT64_MAX}) {
    host.answers().claimed_zone_length = claimed;
    EXPECT_NE(make(U"en_US"), nullptr) << claimed;
  }
}

TEST_F(LocaleTest, RefusesArgumentsThatCannotBeRight) {
  VXStatus status = untouched;
  const VXChar name[] = {'e', 'n', '_', 'U', 'S'};
  EXPECT_EQ(NLSLocaleCreate(nullptr, name, 5, &status, nullptr), nullptr);
  EXPECT_EQ(status, VX_E_NULL);
  EXPECT_EQ(NLSLocaleCreate(host.context(), nullptr, 5, &status, nullptr), nullptr);
  EXPECT_EQ(status, VX_E_NULL);
  EXPECT_EQ(NLSLocaleCreate(host.context(), name, -1, &status, nullptr), nullptr);
  EXPECT_EQ(status, VX_E_LENGTH);
  // What an empty name means is the host's to say.
  EXPECT_EQ(NLSLocaleCreate(host.context(), nullptr, 0, &status, nullptr), nullptr);
  EXPECT_EQ(status, VX_E_NOMATCH);
  EXPECT_EQ(make(U"", &status), nullptr);
  EXPECT_EQ(status, VX_E_NOMATCH);
  host.answers().null_record_name = true;
  EXPECT_EQ(make(U"en_US", &status), nullptr);
  EXPECT_EQ(status, VX_E_NULL);
  host.answers().null_record = true;
  EXPECT_EQ(make(U"en_US", &status), nullptr);
  EXPECT_EQ(status, VX_E_NULL);
}

TEST_F(LocaleTest, WithoutAStoredHandleThereIsNoMessageService) {
  VXStatus status = untouched;
  vxextent(nullptr);
  EXPECT_EQ(make(U"en_US", &status), nullptr);
  EXPECT_EQ(status, 0u) << "the status of the lookup, not an error: kept on purpose";
  vxextent(host.stored());
}

// Threads

void at_once(int count, const auto& work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i) threads.emplace_back([&work, i] { work(i); });
  for (std::thread& thread : threads) thread.join();
}

TEST_F(LocaleTest, ThreadsShareOneLocaleAndItsZones) {
  ASSERT_TRUE(host.make_cache());
  constexpr int count = 16;
  constexpr std::u32string_view ids[] = {U"Asia/Kolkata", U"UTC", U"America/New_York"};
  const int64_t filled = host.calls(Op::fill);
  VXLocale* locales[count];
  VXZone* zones[count][3];
  at_once(count, [&](int i) {
    locales[i] = host.create(U"en_US", nullptr);
    for (size_t z = 0; z < 3; ++z) {
      const std::vector<VXChar> id(ids[z].begin(), ids[z].end());
      zones[i][z] = NLSGetTZh(locales[i], id.data(), static_cast<int64_t>(id.size()));
      NLSSetTimezoneId(locales[i], id.data(), static_cast<int64_t>(id.size()));
    }
  });
  EXPECT_EQ(host.calls(Op::fill), filled + 1);
  for (int i = 0; i < count; ++i) {
    EXPECT_NE(locales[i], nullptr);
    EXPECT_EQ(locales[i], locales[0]);
    for (size_t z = 0; z < 3; ++z) EXPECT_EQ(zones[i][z], zones[0][z]);
  }
  EXPECT_EQ(host.holdings().zones, 3);
}

TEST_F(LocaleTest, ThreadsCreateDifferentLocalesFromTheStart) {
  constexpr int count = 16;
  VXLocale* locales[count];
  at_once(count, [&](int i) {
    const char32_t name[] = {U'e', U'n', U'_', U'A', U'A' + static_cast<char32_t>(i)};
    locales[i] = host.create(std::u32string_view(name, 5), nullptr);
  });
  alone.assign(locales, locales + count);
  EXPECT_EQ(std::set<VXLocale*>(alone.begin(), alone.end()).size(), size_t{count});
  EXPECT_EQ(host.holdings().extensions, count) << "a message service each, one locale database";
}

}  // namespace
