#include "vxnls/locale.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <sstream>
#include <utility>

#include "module/host_services.h"
#include "tests/support/failing_host.h"
#include "tests/support/null_arguments.h"
#include "tests/support/plain_locale.h"

namespace {

using vxtest::Calls;
using vxtest::FailingHost;
using vxtest::Holdings;
using vxtest::units;

std::u32string text_of(const VXChar* text, int64_t length) { return std::u32string(text, text + length); }

struct LocaleTest : testing::Test {
  void SetUp() override { ASSERT_TRUE(host.load_module()); }
  void TearDown() override {
    for (VXLocale* locale : alone) host.destroy_private(locale);
    host.close();
    EXPECT_EQ(host.holdings(), Holdings{});
    EXPECT_EQ(host.complaints, Calls(static_cast<size_t>(stray_releases), "released but not held: creation"));
  }

  /// A locale outside the cache, destroyed at the end.
  VXLocale* make(std::u32string_view name, std::u32string_view zone = {}) {
    VXLocale* const locale = host.create(name, &status, zone, false);
    if (locale != nullptr) alone.push_back(locale);
    return locale;
  }
  VXZone* get(std::u32string_view id) { return NLSGetTZh(locale, units(id), static_cast<int64_t>(id.size())); }
  VXStatus set(std::u32string_view id) { return NLSSetTimezoneId(locale, units(id), static_cast<int64_t>(id.size())); }

  FailingHost host;
  std::vector<VXLocale*> alone;
  VXLocale* locale = nullptr;
  VXStatus status = 0x5A5A5A5A;
  int stray_releases = 0;
};

/// The lines of `text`.
Calls operator""_calls(const char* text, size_t) {
  Calls lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}
Calls operator+(Calls all, const Calls& more) {
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

// Hosts rely on the order in which they are called, and on what they are given.
TEST_F(LocaleTest, IsMadeAndDestroyedInAFixedOrder) {
  const Calls beginning = R"(find_logger * App.NLS
create_journal kernel 0 vxnlsLocaleJnl
os_zone * * [50] 8
acquire creation 1 1
 lookup_locale * en_US 8 *)"_calls;
  const Calls blocks = R"( allocate pool 1016 80000000
 allocate pool 49248 0
 load_extension stored vxemsg 0)"_calls;
  const Calls parts = R"( fill vxnlsldb block 49248 en_US
 create_lock kernel journal vxnls Locale VXMSG lock
 create_lock kernel journal vxnls Locale VXZ lock
 create_track kernel @0=1 @16=1 @27=20 journal vxnls Locale VXMSG track
 set_destroy vxnls Locale VXMSG track 0 1
 create_track kernel @0=1 @16=1 @27=20 journal vxnls Locale VXETZ track
 set_destroy vxnls Locale VXETZ track 0 *
 normalise_zone * America/New_York @0=10 * [50] *
 find vxnls Locale VXETZ track 2000000 0 America/New_York
 acquire vxnls Locale VXZ lock 1 1
  find vxnls Locale VXETZ track 2000000 0 America/New_York
  open_zone zones America/New_York 0
  allocate pool 24 80000000
  insert vxnls Locale VXETZ track 4000000 0 block 24 0 America/New_York *
  release_entry vxnls Locale VXETZ track *
  release_lock vxnls Locale VXZ lock)"_calls;
  const Calls cache = R"( release_lock creation
create_track kernel @0=1 @16=1 @27=20 journal VXNLS Locale track
set_destroy VXNLS Locale track 0 *)"_calls;
  const Calls taking_apart = R"(destroy_lock vxnls Locale VXZ lock
destroy_track vxnls Locale VXETZ track
close_zone zones America/New_York
free pool block 24
destroy_lock vxnls Locale VXMSG lock
destroy_track vxnls Locale VXMSG track
destroy_extension vxemsg)"_calls;
  const Calls record = {"free pool block 49248"}, object = {"free pool block 1016"};
  EXPECT_EQ(host.trace([&] { host.make_cache(); }), beginning + blocks + Calls{" load_extension kernel vxnlsldb 0"} +
                                                        parts + cache + taking_apart + record + object);

  const auto create = [&] { host.create(U"en_US", nullptr, U"America/New_York  "); };
  const Calls look_up = R"(normalise_zone * America/New_York   @0=10 * [50] *
acquire creation 1 1
 lookup_locale * en_US 8 *
 find VXNLS Locale track 2000000 0 en_US America/New_York)"_calls;
  const Calls made =
      look_up + blocks + parts + Calls{" insert VXNLS Locale track 4000000 0 block 1016 0 en_US America/New_York *"};
  const Calls found = {" release_entry VXNLS Locale track *", " release_lock creation"};
  // Refused by the cache, which is the last step: everything goes, the record first and the lock last.
  Calls going = record + taking_apart + object + Calls{"release_lock creation"};
  for (std::string& call : going) call = ' ' + call;
  host.fail_call(std::ssize(made), {VX_E_MEMORY});
  EXPECT_EQ(host.trace(create), made + going);
  host.fail_call(0);
  EXPECT_EQ(host.trace(create), made + found);
  EXPECT_EQ(host.trace(create), look_up + found);
  const Calls destroy_cache = {"destroy_track VXNLS Locale track"};
  EXPECT_EQ(host.trace([&] { host.destroy_cache(); }), destroy_cache + taking_apart + record + object);
}

TEST_F(LocaleTest, HasItsPartsInPlace) {
  ASSERT_NE(locale = make(U"en_GB", U"UTC"), nullptr);
  EXPECT_EQ(std::memcmp(locale, "nevo", 4), 0);
  EXPECT_STREQ(locale->typeName, "VXLocale handle");
  EXPECT_EQ(locale->host, &host.context);
  EXPECT_EQ(locale->destroy(locale), 0u);  // and the locale is still there
  const NLSName& in_record = locale->localeData->localeName;
  EXPECT_EQ(text_of(in_record.text, in_record.length), U"en_GB");

  VXChar name[62] = {'!'};
  int64_t length = 99;
  const uint64_t* counted = nullptr;
  void* block = locale;
  VX_EXPECT_NULLS_REFUSED(std::bind_front(NLSLocaleToLocName, locale), name, &length);
  EXPECT_EQ(NLSGetLocaleName(locale, 0, nullptr), VX_E_NULL);
  EXPECT_EQ(NLSGetLocaleData(locale, 0, nullptr), VX_E_NULL);
  for (const uint32_t kind : {10u, 0xFFFFFFFFu}) EXPECT_EQ(NLSGetLocaleData(locale, kind, &block), VX_E_KIND);
  EXPECT_TRUE(name[0] == '!' && length == 99 && block == locale) << "a refusal leaves what there was";
  EXPECT_EQ(NLSLocaleToLocName(locale, name, &length), 0u);
  EXPECT_EQ(text_of(name, length), U"en_GB");
  EXPECT_EQ(NLSGetLocaleName(locale, 0xFFFF, &counted), 0u);
  EXPECT_EQ(text_of(reinterpret_cast<const VXChar*>(counted + 1), static_cast<int64_t>(*counted)), U"en_GB");
  constexpr ptrdiff_t offsets[] = {0, 17352, 248, 15840, 15328, 440, 17096, 17600, 17608, 18624};
  for (uint32_t kind = 0; kind < std::size(offsets); ++kind) {
    EXPECT_EQ(NLSGetLocaleData(locale, kind, &block), 0u);
    EXPECT_EQ(static_cast<uint8_t*>(block) - reinterpret_cast<uint8_t*>(locale->localeData), offsets[kind]) << kind;
  }
}

TEST_F(LocaleTest, TakesTheZoneOfTheOptionsOrTheSystems) {
  ASSERT_TRUE(host.make_cache());
  const auto is_zone = [&](const VXLocale* given, std::u32string_view zone) {
    vxnls::host::ZoneState state;
    vxnls::host::describe_zone(given, 0, &state);
    return text_of(state.name, state.name_length) == zone;
  };
  EXPECT_TRUE(is_zone(make(U"en_US", U"Asia/Kolkata "), U"Asia/Kolkata"));
  host.system_zone = U"UTC";
  const VXChar name[] = {'e', 'n', '_', 'U', 'S'};
  const LocaleCreateOptions no_zone = {0, {}, nullptr, 5}, empty = {0, {}, name, 0}, negative = {0, {}, name, -1};
  for (const auto* const options : {&no_zone, &empty, &negative, static_cast<const LocaleCreateOptions*>(nullptr)}) {
    locale = NLSLocaleCreate(&host.context, name, 5, nullptr, options);
    EXPECT_TRUE(locale != nullptr && is_zone(locale, U"UTC"));
  }
  EXPECT_EQ(host.holdings()["block 1016"], 1 + 1) << "a private one, and a shared one, also without options";
  // One unit is an identifier already. A refused zone ends the creation before the lock is taken; the lock is released
  // nevertheless.
  EXPECT_EQ(make(U"en_US", U"A"), nullptr);
  EXPECT_EQ(status, VX_E_ZONE);
  ++stray_releases;
}

TEST_F(LocaleTest, MakesItsJournalOnceAndOnlyForALogger) {
  VXLoggerService* const loggers = std::exchange(host.kernel.loggers, nullptr);
  EXPECT_EQ(host.trace([&] { make(U"en_US"); })[0], "os_zone * * [50] 8") << "no service of loggers";
  host.kernel.loggers = loggers;
  EXPECT_EQ(host.trace([&] { make(U"en_US"); })[1], "create_journal kernel 0 vxnlsLocaleJnl") << "after find_logger";
  EXPECT_EQ(host.trace([&] { make(U"en_US"); })[0], "os_zone * * [50] 8") << "both are there";
}

TEST_F(LocaleTest, HoldsWhatTheHostClaimsToItsRoom) {
  const std::u32string long_name(1000, U'n');
  static VXLocaleRecord record;
  record.name = reinterpret_cast<const VXChar*>(long_name.data());
  host.record = &record;
  for (const int64_t claimed : {INT64_MIN, INT64_C(-1), INT64_C(0), INT64_C(1), INT64_C(60), INT64_C(61), INT64_C(62),
                                INT64_C(63), INT64_C(1000), INT64_MAX}) {
    SCOPED_TRACE(record.length = claimed);
    ASSERT_NE(locale = make(U"xx_YY"), nullptr);
    EXPECT_EQ(status, 0u);
    const auto in_locale = std::clamp<int64_t>(claimed, 0, 62);
    EXPECT_EQ(text_of(locale->name, static_cast<int64_t>(locale->nameLength)),
              std::u32string(static_cast<size_t>(in_locale), U'n'));
    EXPECT_EQ(locale->localeData->localeName.length, std::min<int64_t>(in_locale, 60));
    EXPECT_EQ(locale->ops.NLSDateFormat, &NLSDateFormat) << "what lies behind the name";
  }
  // Blanks fill the room behind a zone's identifier, so that a length beyond it reads as the same zone.
  for (const int64_t claimed : {int64_t{50}, int64_t{51}, INT64_MAX, int64_t{-1}, INT64_MIN}) {
    host.claimed_zone_length = claimed;
    EXPECT_EQ(make(U"en_US") != nullptr, claimed > 0) << claimed;
    EXPECT_EQ(get(U"Asia/Kolkata") != nullptr, claimed > 0) << claimed;
  }
}

TEST_F(LocaleTest, RefusesArgumentsAndHostsThatCannotBeRight) {
  const VXChar name[] = {'e', 'n', '_', 'U', 'S'};
  const auto refusal = [&](HostContext* context, const VXChar* given, int64_t length) {
    status = 0x5A5A5A5A;
    EXPECT_EQ(NLSLocaleCreate(context, given, length, &status, nullptr), nullptr);
    return status;
  };
  HostContext& context = host.context;
  EXPECT_EQ(refusal(nullptr, name, 5), VX_E_NULL);
  EXPECT_EQ(refusal(&context, nullptr, 5), VX_E_NULL);
  EXPECT_EQ(refusal(&context, name, -1), VX_E_LENGTH);
  EXPECT_EQ(refusal(&context, nullptr, 0), VX_E_NOMATCH) << "what an empty name means is the host's to say";
  const VXLocaleRecord no_name = {nullptr, 5};
  for (const VXLocaleRecord* const record : {&no_name, static_cast<const VXLocaleRecord*>(nullptr)}) {
    host.record = record;
    EXPECT_EQ(refusal(&context, name, 5), VX_E_NULL);
  }
  for (int lacking = 0; lacking < 3; ++lacking) {
    HostContext incomplete = context;
    if (lacking == 0) incomplete.kernel = nullptr;
    if (lacking == 1) incomplete.pool = nullptr;
    if (lacking == 2) incomplete.creationLock = nullptr;
    EXPECT_EQ(refusal(&incomplete, name, 5), VX_E_NULL) << lacking;
  }
  host.record.reset();
  vxextent(nullptr);
  EXPECT_EQ(refusal(&context, name, 5), 0u) << "no message service: the lookup's status, kept on purpose";
  vxextent(&host.stored);
  // The entry that a track's insert must give is null, with a status of success.
  ASSERT_TRUE(host.make_cache());
  const Holdings before = host.holdings();
  const VXTrackOps* const whole = context.localeCache->ops;
  VXTrackOps forgetful = *whole;
  forgetful.insert = [](VXTrack*, uint32_t, uint64_t, void*, uint64_t, auto*, int64_t, VXStatus* inserted) {
    *inserted = 0;
    return static_cast<VXTrackEntry*>(nullptr);
  };
  context.localeCache->ops = &forgetful;
  EXPECT_EQ(refusal(&context, name, 5), 0u);
  context.localeCache->ops = whole;
  EXPECT_EQ(host.holdings(), before);
}

// Zones

TEST_F(LocaleTest, KeepsItsZoneUnlessThereIsAnother) {
  ASSERT_TRUE(host.make_cache());
  ASSERT_NE(locale = host.create(U"en_US", nullptr, U"UTC"), nullptr);
  VXZone* const utc = locale->timeZone;
  const Calls hit = host.trace([&] { EXPECT_EQ(get(U"UTC  "), utc); });
  EXPECT_EQ(hit.size(), 3u) << "normalise_zone, find, release_entry: one handle for every name, and no lock";
  const VXChar blank = ' ';
  EXPECT_EQ(NLSSetTimezoneId(locale, nullptr, 5), 0u);
  EXPECT_EQ(NLSSetTimezoneId(locale, &blank, 0), 0u);
  EXPECT_EQ(NLSSetTimezoneId(locale, &blank, -1), VX_E_ZONE);
  EXPECT_EQ(set(U"Atlantis/Poseidonis"), VX_E_ZONE);
  EXPECT_EQ(locale->timeZone, utc);
  EXPECT_EQ(host.trace([&] { NLSGetTZh(locale, nullptr, 3), NLSGetTZh(locale, &blank, INT64_MIN); }), Calls{});
  EXPECT_EQ(host.trace([&] { EXPECT_EQ(get(U""), nullptr); }).size(), 1u) << "what it means is the host's to say";
  EXPECT_EQ(set(U"Asia/Kolkata"), 0u);
  EXPECT_TRUE(locale->timeZone == get(U"Asia/Kolkata ") && locale->timeZone != utc);
  EXPECT_EQ(set(U"UTC"), 0u);
  EXPECT_EQ(locale->timeZone, utc) << "the zone before stays in the cache";
  VXZoneService* const zones = std::exchange(host.context.zones, nullptr);
  EXPECT_EQ(get(U"America/New_York"), nullptr);
  EXPECT_EQ(get(U"UTC"), utc) << "what is known stays, also without a service";
  host.context.zones = zones;
  EXPECT_NE(get(U"America/New_York"), nullptr);
}

}  // namespace
