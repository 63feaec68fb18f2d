// The module, its locales, and what a host offers them: absent, made once, and answering what it must not. Whatever a
// host says, nothing outside the buffers is touched, and what leaves the library keeps to what its headers say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <regex>
#include <utility>

#include "module/host_services.h"
#include "tests/support/character_host.h"
#include "tests/support/failing_host.h"
#include "tests/support/guard_page.h"
#include "tests/support/null_arguments.h"
#include "tests/support/zoned_locale.h"

namespace {

using vxtest::FailingHost;
using vxtest::GuardedBuffer;
using vxtest::Holdings;
using vxtest::units;

std::u32string text_of(const VXChar* text, int64_t length) { return std::u32string(text, text + length); }

TEST(Loading, VersionsAndTheRecordOfTheModule) {
  FailingHost host;
  std::array<int64_t, 8> v{};
  EXPECT_EQ(vxextver(&host.stored, &v[0], &v[1]), 0u);
  EXPECT_EQ(Exported_VXHandle, &host.stored);
  EXPECT_EQ(vxextent(&host.kernel), 0u);  // in place of the first
  EXPECT_EQ(Exported_VXHandle, &host.kernel);
  NLSModule* module = nullptr;
  EXPECT_EQ(host.trace([&] { module = vxnlsloc(&host.kernel, nullptr); }),
            "create_pool kernel @2=80 null vxnlsloc pool\nallocate vxnlsloc pool 96 80000000\n");
  EXPECT_EQ(module->reqVersion(module, &v[2], &v[3], &v[4]), 0u);
  EXPECT_EQ(module->version(module, &v[5], &v[6], &v[7]), 0u);
  EXPECT_EQ(v, (std::array<int64_t, 8>{6, 1, 6, 1, 1, 6, 0, 0}));
  EXPECT_TRUE(std::memcmp(module, "nevo", 4) == 0 && module->host == &host.kernel);
  EXPECT_EQ(module->realDestroy(module), 0u);
  NLSModule without_pool = {};
  EXPECT_EQ(NLSLOCRealDestroy(&without_pool) | NLSLOCRealDestroy(nullptr), 0u);
  EXPECT_EQ(vxnlsloc(nullptr, &host.journal), nullptr);
  host.fail_call(2, {VX_E_MEMORY});
  const std::string failing = host.trace([&] { EXPECT_EQ(vxnlsloc(&host.kernel, &host.journal), nullptr); });
  EXPECT_THAT(failing, testing::HasSubstr("\nstatus_to_journal journal 4 -2143305726 *\n"));
  vxextent(nullptr);
}

TEST(Loading, TheBuildRecordIsWrittenWholeAndNoFurther) {
  struct {
    VXBuildRecord record;
    uint8_t behind[16];
  } room;
  std::memset(&room, 0x5A, sizeof room);
  vxvercn1(&room.record);
  const VXBuildRecord& r = room.record;
  EXPECT_EQ(std::count(std::begin(room.behind), std::end(room.behind), 0x5A), 16);
  EXPECT_EQ(std::string(r.empty3) + r.empty9 + r.empty12 + r.empty14 + r.component5 + r.component7, "vxnlsvxext");
  EXPECT_TRUE(std::string_view(r.hotfix13).ends_with("_VERSION_HOTFIX_NUMBER=" + std::string(39, ' ')));
  // The three ways in which the record tells the day of the build agree, by the C library's calendar.
  const time_t built = r.time;
  char text[64];
  EXPECT_NE(std::strftime(text, sizeof text, "%a %b %e %H:%M:%S UTC %Y", std::gmtime(&built)), 0u);
  EXPECT_STREQ(r.date17, text);
  EXPECT_NE(std::strftime(text, sizeof text, "%Y%m%d", std::gmtime(&built)), 0u);
  EXPECT_TRUE(std::string_view(r.label).ends_with(text));
}

// What is written by way of journals is in the tests of the real host.
TEST(Journal, PassesEverythingOnAndReversesNothing) {
  FailingHost host;
  const auto pass_on = [&](VXJournal* journal) {
    EXPECT_EQ(vxlMessageToBuf(journal, 1, 2, 3, 4, 5) | vxlMessageToJnl(journal, 0x80000001, units(U"M"), 2), 0u);
    EXPECT_EQ(vxlStatusToBuf(journal, -1, 2, 3, 4) | vxlStatusToJnl(journal, 0x80000001, -2), 0u);
    EXPECT_EQ(vxlGetLocale(journal, 1, 2, 3, 4, 5), journal);
  };
  EXPECT_EQ(host.trace([&] { pass_on(nullptr), pass_on(&host.journal); }),
            R"(message_to_buffer journal 1 2 3 4 5 *
message_to_journal journal 80000001 * 2 *
status_to_buffer journal -1 2 3 4 *
status_to_journal journal 80000001 -2 *
get_locale journal 1 2 3 4 5
)");
  uint8_t bytes[] = {1, 2};
  for (const int64_t n : {INT64_MIN, INT64_C(1)}) vxzbytrv(bytes, n), vxzbytrv(nullptr, 5), vxztchrv(nullptr, 5);
  EXPECT_EQ(bytes[0], 1);
}

// Services of the stored handle

TEST(HostServices, AreAbsentWithoutAHandleOrWithAnEmptyOne) {
  VXHandle empty = {};
  for (VXHandle* handle : {&empty, static_cast<VXHandle*>(nullptr)}) {
    vxextent(handle);
    EXPECT_TRUE(vxnls::host::unicode_database() == nullptr && vxnls::host::normaliser() == nullptr);
    EXPECT_EQ(vxGetBDConv(), nullptr);
    EXPECT_EQ(vxnls::host::integer_option(nullptr, 0, 77), 77);
  }
  // Without a zone, a service or a host there is no zone to ask.
  vxtest::ZonedLocale whole;
  whole.use(U"Zone/East");
  for (int lacking = 0; lacking < 4; ++lacking) {
    HostContext context = whole.context;
    VXLocale asking = whole.locale;
    if (lacking == 0) context.zones = nullptr;
    asking.host = lacking == 1 ? nullptr : &context;
    if (lacking == 2) asking.timeZone = nullptr;
    vxnls::host::ZoneState state = {{}, 99, 99};
    vxnls::host::describe_zone(&asking, 0, &state);
    EXPECT_TRUE(state.name_length == (lacking < 3 ? 0 : 9) && state.offset == (lacking < 3 ? 0 : 7200)) << lacking;
    EXPECT_EQ(vxnls::host::zone_offset(&asking, asking.timeZone, VX_ZONE_FROM_UTC, 0), state.offset) << lacking;
  }
}

// While the library makes its object, another thread stores one: here the host does it from inside the operation.
TEST(HostServices, AreMadeOnceAndTheLoserOfARaceGoesByWhatIsThere) {
  const auto ask = [] { return std::pair{vxnls::host::unicode_database(), vxnls::host::normaliser()}; };
  FailingHost host;
  ASSERT_TRUE(host.load_module());
  EXPECT_EQ(host.trace([&] { ask(), ask(); }), "load_extension stored vxnlsudb 0\ncreate_normaliser *\n");
  static VXUnicodeDatabase winner;
  static VXNormaliser winning_normaliser, losing_normaliser;
  static int destroyed = 0;
  static constexpr VXExtensionOps extension_ops = {[](VXExtension*) -> VXStatus { return ++destroyed, 0; }};
  VXHandleOps ops = {};
  ops.load_extension = [](VXHandle* self, const VXChar*, int64_t, uint64_t) {
    static VXExtension loser = {&extension_ops};
    return self->characters->database = &winner, &loser;
  };
  VXCharDataOps character_ops = {};
  character_ops.create_normaliser = [](VXCharData* self) {
    return self->normaliser = &winning_normaliser, &losing_normaliser;
  };
  VXCharData characters = {&character_ops, nullptr, nullptr};
  VXHandle handle = {&ops, nullptr, nullptr, &characters, nullptr};
  vxextent(&handle);
  EXPECT_EQ(ask(), std::pair(&winner, &winning_normaliser));
  EXPECT_EQ(characters.normaliser, &winning_normaliser);
  EXPECT_EQ(destroyed, 1);
  vxextent(nullptr);
}

// The host's own conversion of doubles: what it claims to have written, with which status and of which units.
struct Claim {
  int64_t length;
  VXStatus status;
  VXChar unit;
  int64_t units;  // that it writes in truth, from the first on
} claim;

VXStatus claim_double(VXLocale*, int32_t, int32_t, uint32_t, VXChar* buffer, int64_t size, int64_t* length,
                      const NLSDoubleExOpts*, double) {
  std::fill_n(buffer, std::min(size, claim.units), claim.unit);
  if (length != nullptr) *length = claim.length;
  return claim.status;
}

TEST(HostileHost, ConversionsThatClaimAnyLength) {
  static constexpr VXHandleOps no_operations = {};
  VXRuntime runtime = {{1, 0, &claim_double}};
  VXHandle handle = {&no_operations, nullptr, nullptr, nullptr, &runtime};
  vxextent(&handle);
  EXPECT_EQ(vxGetBDConv(), &runtime.bdconv);
  vxtest::PlainLocale plain;
  VXLocale* const locale = plain.get();
  GuardedBuffer<VXChar> wide_memory(1500);
  GuardedBuffer<uint8_t> memory(1500);
  int64_t written = 0;
  const auto to_utf8 = [&](uint8_t* to, int64_t size, int64_t* length) {
    return NLSDoubleFormatUWithExOpts(locale, 4, 1, NLS_FORMAT_FIXED, to, size, length, nullptr, 1.5);
  };
  for (const int64_t size : {0, 1, 2, 5, 62, 1023, 1024, 1025, 1500}) {
    VXChar* const wide = wide_memory.at(static_cast<size_t>(size));
    for (const int64_t length : {INT64_MIN, INT64_C(-1), INT64_C(0), INT64_C(1), size - 1, size, size + 1,
                                 INT64_C(1024), INT64_C(1025), INT64_C(1) << 32, INT64_MAX}) {
      for (const VXStatus status : {VXStatus{0}, VX_E_MEMORY}) {
        for (const VXChar unit : {VXChar{'7'}, VXChar{0xD800}, VXChar{0x10FFFF}, VXChar{0xFFFFFFFF}}) {
          claim = {length, status, unit, size};
          SCOPED_TRACE(testing::Message() << length << " of " << size << ", status " << status);
          for (const auto write : {&NLSDoubleFormat, &NLSPercentFormat, &NLSCurrencyFormat}) {
            EXPECT_EQ(write(locale, 9, 2, 1, wide, size, &(written = 0), -0.5), status);
            // "%", parentheses or "$" are counted in any case.
            EXPECT_TRUE(written >= 0 && written <= size + (write == &NLSDoubleFormat ? 0 : 2)) << written;
            if (write == &NLSPercentFormat && status == 0 && length >= 0 && length <= size - 2) {
              EXPECT_EQ(wide[length + 1], VXChar{')'});  // "%)" stands right behind what was claimed
            }
          }
          const VXStatus told = to_utf8(memory.at(static_cast<size_t>(size)), size, &(written = -1));
          EXPECT_TRUE(told == status || told == VX_E_TRUNCATED);
          EXPECT_TRUE(written >= 0 && written <= size) << written;
        }
      }
    }
  }
  EXPECT_EQ(NLSDoubleFormatWithExOpts(locale, 9, 2, 0, wide_memory.at(3), 3, nullptr, nullptr, 1), VX_E_MEMORY);
  // A host that claims more than it wrote gets no more out of the library than zeros.
  claim = {1024, 0, '7', 1};
  uint8_t text[1024];
  EXPECT_EQ(to_utf8(text, 1024, &written), 0u);
  EXPECT_EQ(std::string(text, text + written), '7' + std::string(1023, '\0'));
  VX_EXPECT_NULLS_REFUSED(to_utf8, text, 9, &written);
  // A table that is there and offers nothing leaves the library its own.
  runtime.bdconv.format_double = nullptr;
  EXPECT_EQ(to_utf8(text, 4, &written), 0u);
  EXPECT_EQ(std::string(text, text + written), " 1.5");
  vxextent(nullptr);
}

// Mappings to what is no character, or to one of another length.
TEST(HostileHost, MappingsToAnyValue) {
  vxtest::CharacterHost host;
  VXChar mapped = 0;
  host.lower = host.upper = [&](uint32_t) { return mapped; };
  const std::string_view text = "a\u00E9z\u20AC\U0001F600\u00E9";
  const auto* const in = reinterpret_cast<const uint8_t*>(text.data());
  const int64_t n = std::ssize(text);
  GuardedBuffer<uint8_t> source(text.size()), target(64);
  for (const VXChar value : {0u, 0x41u, 0x7FFu, 0xD800u, 0xFFFFu, 0x10FFFFu, 0x110000u, 0x1FFFFFu, 0x200000u,
                             0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(mapped = value);
    for (const auto change : {vxzsu8Lower2, vxzsu8Upper2}) {
      int64_t needed = -1, written = -1;
      EXPECT_EQ(change(in, n, nullptr, 0, &needed), 0u);
      for (const int64_t room : {needed, needed - 1}) {
        EXPECT_EQ(change(in, n, target.at(static_cast<size_t>(room)), room, &written), room < needed ? VX_E_ROOM : 0);
        EXPECT_TRUE(room < needed ? written < needed : written == needed);
      }
    }
    for (const auto change : {vxzsu8Lower, vxzsu8Upper}) change(source.copy(in, text.size()), n);
    const int32_t order = vxzsu8NormCompare(source.copy(in, text.size()), n, in, n - 2);
    EXPECT_EQ(vxzsu8NormCompare(in, n - 2, in, n), -order);
  }
}

// Names of any length and offsets that are written are in datetime_format_test.cc.
TEST(HostileHost, ZonesAtAnyDistanceFromUtc) {
  static int32_t offset;
  static const VXZoneServiceOps claiming = {vxtest::zone_rules.open, vxtest::zone_rules.close,
                                            [](VXZoneService*, VXZone*, int32_t, double) { return offset; }, nullptr};
  vxtest::ZonedLocale locale;
  locale.use(U"Zone/East");
  locale.zones.ops = &claiming;
  vxtest::set_name(locale.data.datetimePattern, U"%Y-%m-%d %Z");
  for (const int32_t east : {INT32_MIN, INT32_MIN + 1, -86400, -59, 0, 86399, 360000, INT32_MAX}) {
    offset = east;
    for (const std::u32string_view text : {U"1582-01-01 Zone/West", U"20000-12-31 Zone/West"}) {
      double value = 0;
      int64_t consumed = 0;
      NLSBufToDatetime(locale.get(), units(text), std::ssize(text), 0, &value, &consumed);
      EXPECT_LT(std::abs(value), 569318630400.0 + 1) << "the two offsets take each other away";
    }
  }
}

// Locales

struct LocaleTest : testing::Test {
  void SetUp() override { ASSERT_TRUE(host.load_module() && host.make_cache()); }
  void TearDown() override {
    for (VXLocale* locale : alone) host.destroy_private(locale);
    host.close();
    EXPECT_EQ(host.holdings(), Holdings{});
    EXPECT_EQ(host.complaints, stray_releases);
  }

  /// A locale outside the cache, destroyed at the end.
  VXLocale* make(std::u32string_view name, std::u32string_view zone = {}) {
    VXLocale* const locale = host.create(name, &status, zone, false);
    if (locale != nullptr) alone.push_back(locale);
    return locale;
  }
  VXZone* get(std::u32string_view id) { return NLSGetTZh(locale, units(id), std::ssize(id)); }
  VXStatus set(std::u32string_view id) { return NLSSetTimezoneId(locale, units(id), std::ssize(id)); }

  FailingHost host;
  std::vector<VXLocale*> alone;
  VXLocale* locale = nullptr;
  VXStatus status = 0x5A5A5A5A;
  std::string stray_releases;
};

// Hosts rely on the order in which they are called, and on what they are given.
TEST_F(LocaleTest, IsMadeAndDestroyedInAFixedOrder) {
  const auto create = [&] { host.create(U"en_US", nullptr, U"America/New_York  "); };
  const std::string look_up = R"(normalise_zone * America/New_York   @0=10 * [50] *
acquire creation 1 1
 lookup_locale * en_US 8 *
 find VXNLS Locale track 2000000 0 en_US America/New_York
)";
  const std::string made = look_up + R"( allocate pool 1016 80000000
 allocate pool 49248 0
 load_extension stored vxemsg 0
 fill vxnlsldb block 49248 en_US
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
  release_entry vxnls Locale VXETZ track entry
  release_lock vxnls Locale VXZ lock
 insert VXNLS Locale track 4000000 0 block 1016 0 en_US America/New_York *
)";
  const std::string found = " release_entry VXNLS Locale track entry\n release_lock creation\n";
  const std::string taking_apart = R"(destroy_lock vxnls Locale VXZ lock
destroy_track vxnls Locale VXETZ track
close_zone zones America/New_York
free pool block 24
destroy_lock vxnls Locale VXMSG lock
destroy_track vxnls Locale VXMSG track
destroy_extension vxemsg
)";
  const std::string record = "free pool block 49248\n", object = "free pool block 1016\n";
  // Refused by the cache, which is the last step: everything goes, the record first and the lock last.
  const std::string going = record + taking_apart + object + "release_lock creation\n";
  host.fail_call(std::count(made.begin(), made.end(), '\n'), {VX_E_MEMORY});
  EXPECT_EQ(host.trace(create), made + std::regex_replace(going, std::regex("^(?=.)", std::regex::multiline), " "));
  host.fail_call(0);
  EXPECT_EQ(host.trace(create), made + found);
  EXPECT_EQ(host.trace(create), look_up + found);
  EXPECT_EQ(host.trace([&] { host.destroy_cache(); }),
            "destroy_track VXNLS Locale track\n" + taking_apart + record + object);
}

TEST_F(LocaleTest, HasItsPartsInPlace) {
  locale = make(U"en_GB", U"UTC");
  EXPECT_EQ(std::memcmp(locale, "nevo", 4), 0);
  EXPECT_STREQ(locale->typeName, "VXLocale handle");
  EXPECT_EQ(locale->destroy(locale), 0u);  // and the locale is still there
  const NLSName& in_record = locale->localeData->localeName;
  EXPECT_EQ(text_of(in_record.text, in_record.length), U"en_GB");
  VXChar name[62] = {'!'};
  int64_t length = 99;
  const uint64_t* counted = nullptr;
  void* block = locale;
  VX_EXPECT_NULLS_REFUSED(std::bind_front(NLSLocaleToLocName, locale), name, &length);
  EXPECT_TRUE(NLSGetLocaleName(locale, 0, nullptr) == VX_E_NULL && NLSGetLocaleData(locale, 0, nullptr) == VX_E_NULL);
  EXPECT_EQ(NLSGetLocaleData(locale, 10, &block), VX_E_KIND);
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
  const auto is_in_zone = [&](std::u32string_view zone) {
    vxnls::host::ZoneState state;
    vxnls::host::describe_zone(locale, 0, &state);
    return text_of(state.name, state.name_length) == zone;
  };
  locale = make(U"en_US", U"Asia/Kolkata ");
  EXPECT_TRUE(is_in_zone(U"Asia/Kolkata"));
  host.system_zone = U"UTC";
  const VXChar* const name = units(U"en_US");
  const LocaleCreateOptions no_zone = {0, {}, nullptr, 5}, empty = {0, {}, name, 0}, negative = {0, {}, name, -1};
  for (const auto* const options : {&no_zone, &empty, &negative, static_cast<const LocaleCreateOptions*>(nullptr)}) {
    locale = NLSLocaleCreate(&host.context, name, 5, nullptr, options);
    EXPECT_TRUE(locale != nullptr && is_in_zone(U"UTC"));
  }
  EXPECT_EQ(host.holdings()["block 1016"], 1 + 1) << "a private one, and a shared one, also without options";
  // One unit is an identifier already. A refused zone ends the creation before the lock is taken; the lock is released
  // nevertheless.
  EXPECT_EQ(make(U"en_US", U"A"), nullptr);
  EXPECT_EQ(status, VX_E_ZONE);
  stray_releases = "released but not held: creation\n";
}

TEST_F(LocaleTest, MakesItsJournalOnceAndOnlyForALogger) {
  const std::string logger = "find_logger * App.NLS\ncreate_logger * App.NLS\n",
                    journal = "create_journal kernel 0 vxnlsLocaleJnl\n", zone = "os_zone * * [50] 8\n";
  const auto expect_first = [&](const std::string& calls) {
    EXPECT_THAT(host.trace([&] { make(U"en_US"); }), testing::StartsWith(calls));
  };
  expect_first(zone);
  host.context.localeJournal = nullptr;
  expect_first(journal + zone);
  host.context.logger = nullptr;
  host.fail_call(1, {VX_E_MEMORY});
  expect_first(logger + zone);
  host.context.logger = nullptr;
  host.kernel.loggers = nullptr;  // no service
  expect_first(zone);
}

TEST_F(LocaleTest, HoldsWhatTheHostClaimsToItsRoom) {
  const std::u32string long_name(1000, U'n');
  static VXLocaleRecord record;
  record.name = units(long_name);
  host.record = &record;
  for (const int64_t claimed : {INT64_MIN, INT64_C(-1), INT64_C(0), INT64_C(1), INT64_C(60), INT64_C(61), INT64_C(62),
                                INT64_C(63), INT64_C(1000), INT64_MAX}) {
    SCOPED_TRACE(record.length = claimed);
    locale = make(U"xx_YY");
    ASSERT_EQ(status, 0u);
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
  const VXChar* const name = units(U"en_US");
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
  for (const auto member : {0, 1, 2}) {
    HostContext incomplete = context;
    if (member == 0) incomplete.kernel = nullptr;
    if (member == 1) incomplete.pool = nullptr;
    if (member == 2) incomplete.creationLock = nullptr;
    EXPECT_EQ(refusal(&incomplete, name, 5), VX_E_NULL) << member;
  }
  vxextent(nullptr);
  EXPECT_EQ(refusal(&context, name, 5), 0u) << "no message service: the lookup's status, kept on purpose";
  vxextent(&host.stored);
  const VXLocaleRecord no_name = {nullptr, 5};
  for (const VXLocaleRecord* const record : {&no_name, static_cast<const VXLocaleRecord*>(nullptr)}) {
    host.record = record;
    EXPECT_EQ(refusal(&context, name, 5), VX_E_NULL);
  }
}

TEST_F(LocaleTest, KeepsItsZoneUnlessThereIsAnother) {
  locale = make(U"en_US", U"UTC");
  VXZone* const utc = locale->timeZone;
  const std::string hit = host.trace([&] { EXPECT_EQ(get(U"UTC  "), utc); });
  EXPECT_EQ(std::ranges::count(hit, '\n'), 3) << "one handle for every name, and no lock: " << hit;
  const VXChar blank = ' ';
  EXPECT_EQ(NLSSetTimezoneId(locale, nullptr, 5) | NLSSetTimezoneId(locale, &blank, 0), 0u);
  EXPECT_EQ(NLSSetTimezoneId(locale, &blank, -1), VX_E_ZONE);
  EXPECT_EQ(set(U"Atlantis/Poseidonis"), VX_E_ZONE);
  EXPECT_EQ(locale->timeZone, utc);
  EXPECT_EQ(host.trace([&] { NLSGetTZh(locale, nullptr, 3), NLSGetTZh(locale, &blank, INT64_MIN); }), "");
  EXPECT_EQ(host.trace([&] { EXPECT_EQ(get(U""), nullptr); }), "normalise_zone *  @0=10 * [50] *\n");
  EXPECT_EQ(set(U"Asia/Kolkata"), 0u);
  EXPECT_TRUE(locale->timeZone == get(U"Asia/Kolkata ") && locale->timeZone != utc);
  EXPECT_EQ(set(U"UTC"), 0u);
  EXPECT_EQ(locale->timeZone, utc) << "the zone before stays in the cache";
  VXZoneService* const zones = std::exchange(host.context.zones, nullptr);
  EXPECT_EQ(get(U"America/New_York"), nullptr);
  EXPECT_EQ(get(U"UTC"), utc) << "what is known stays, also without a service";
  host.context.zones = zones;
}

}  // namespace
