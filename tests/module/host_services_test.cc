// Loading, journals, and what a host offers beside its locales: absent, made once, and answering what it must not.
// Whatever a host says, nothing outside the buffers is touched, and what leaves the library keeps to what its headers
// say.
#include "module/host_services.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <utility>

#include "tests/support/character_host.h"
#include "tests/support/failing_host.h"
#include "tests/support/guard_page.h"
#include "tests/support/null_arguments.h"
#include "tests/support/zoned_locale.h"

namespace {

using vxtest::Calls;
using vxtest::FailingHost;
using vxtest::GuardedBuffer;
using vxtest::Holdings;

TEST(Loading, VersionsDiffer) {
  FailingHost host;
  std::array<int64_t, 8> v{};
  EXPECT_EQ(vxextver(&host.stored, &v[0], &v[1]), 0u);
  EXPECT_EQ(Exported_VXHandle, &host.stored);
  EXPECT_EQ(vxextent(&host.kernel), 0u);  // in place of the first
  EXPECT_EQ(Exported_VXHandle, &host.kernel);
  NLSModule* module = nullptr;
  const Calls calls = {"create_pool kernel @2=80 null vxnlsloc pool", "allocate vxnlsloc pool 96 80000000"};
  EXPECT_EQ(host.trace([&] { module = vxnlsloc(&host.kernel, nullptr); }), calls);
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(module->reqVersion(module, &v[2], &v[3], &v[4]), 0u);
  EXPECT_EQ(module->version(module, &v[5], &v[6], &v[7]), 0u);
  EXPECT_EQ(v, (std::array<int64_t, 8>{6, 1, 6, 1, 1, 6, 0, 0}));
  EXPECT_EQ(std::memcmp(module, "nevo", 4), 0);
  EXPECT_EQ(module->host, &host.kernel);
  EXPECT_EQ(module->realDestroy(module), 0u);
  NLSModule without_pool = {};
  EXPECT_EQ(NLSLOCRealDestroy(&without_pool) | NLSLOCRealDestroy(nullptr), 0u);
  EXPECT_EQ(vxnlsloc(nullptr, &host.journal), nullptr);
  // The pool is made, the record does not fit: a line in the journal.
  host.fail_call(2, {VX_E_MEMORY});
  const Calls failing = host.trace([&] { EXPECT_EQ(vxnlsloc(&host.kernel, &host.journal), nullptr); });
  EXPECT_EQ(failing.at(2), "status_to_journal journal 4 -2143305726 *");
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
  EXPECT_EQ(std::count(std::begin(r.zero18), std::end(r.zero18), 0u), std::ssize(r.zero18));
  EXPECT_EQ(std::string(r.empty3) + r.empty9 + r.empty12 + r.empty14 + r.component5 + r.component7, "vxnlsvxext");
  EXPECT_EQ(std::string(r.hotfix13).substr(2), "_VERSION_HOTFIX_NUMBER=" + std::string(39, ' '));
  EXPECT_EQ(std::string(r.image15), "VERCON_IMAGE_DESCRIPTION=" + std::string(39, ' '));
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

// What is written by way of journals is in the tests of the real host.
TEST(Journal, PassesEverythingOn) {
  FailingHost host;
  const VXChar message[] = {'M', 0};
  const auto pass_on = [&](VXJournal* journal) {
    EXPECT_EQ(vxlMessageToBuf(journal, 1, 2, 3, 4, 5) | vxlMessageToJnl(journal, 0x80000001, message, 2), 0u);
    EXPECT_EQ(vxlStatusToBuf(journal, -1, 2, 3, 4) | vxlStatusToJnl(journal, 0x80000001, -2), 0u);
    EXPECT_EQ(vxlGetLocale(journal, 1, 2, 3, 4, 5), journal);
  };
  EXPECT_EQ(host.trace([&] { pass_on(nullptr), pass_on(&host.journal); }),
            (Calls{"message_to_buffer journal 1 2 3 4 5 *", "message_to_journal journal 80000001 M 2 *",
                   "status_to_buffer journal -1 2 3 4 *", "status_to_journal journal 80000001 -2 *",
                   "get_locale journal 1 2 3 4 5"}));
}

// Texts of any length are reversed in hostile_input_test.cc.
TEST(Reversal, OfNothing) {
  uint8_t bytes[] = {1, 2};
  VXChar units[] = {1, 2};
  for (const int64_t n : {INT64_MIN, INT64_C(-1), INT64_C(0), INT64_C(1)}) vxzbytrv(bytes, n), vxztchrv(units, n);
  EXPECT_TRUE(bytes[0] == 1 && units[0] == 1);
  EXPECT_EQ(vxzbytrv(nullptr, 5), 0u);
  vxztchrv(nullptr, 5);
}

// Services of the stored handle

TEST(HostServices, AreAbsentWithoutAHandleOrWithAnEmptyOne) {
  VXHandle empty = {};
  for (VXHandle* handle : {&empty, static_cast<VXHandle*>(nullptr)}) {
    vxextent(handle);
    EXPECT_EQ(vxnls::host::characters(), nullptr);
    EXPECT_EQ(vxnls::host::unicode_database(), nullptr);
    EXPECT_EQ(vxnls::host::normaliser(), nullptr);
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
  EXPECT_EQ(host.trace(ask), (Calls{"load_extension stored vxnlsudb 0", "create_normaliser *"}));
  EXPECT_EQ(host.trace(ask), Calls{});
  static VXUnicodeDatabase winner;
  static VXNormaliser winning_normaliser, losing_normaliser;
  static int destroyed = 0;
  static constexpr VXExtensionOps extension_ops = {[](VXExtension*) -> VXStatus { return ++destroyed, 0; }};
  VXHandleOps ops = {};
  ops.load_extension = [](VXHandle* self, const VXChar*, int64_t, uint64_t) {
    static VXExtension loser = {&extension_ops};
    self->characters->database = &winner;
    return &loser;
  };
  VXCharDataOps character_ops = {};
  character_ops.create_normaliser = [](VXCharData* self) {
    self->normaliser = &winning_normaliser;
    return &losing_normaliser;
  };
  VXCharData characters = {&character_ops, nullptr, nullptr};
  VXHandle handle = {&ops, nullptr, nullptr, &characters, nullptr};
  vxextent(&handle);
  EXPECT_EQ(ask(), std::pair(&winner, &winning_normaliser));
  EXPECT_EQ(characters.normaliser, &winning_normaliser);
  EXPECT_EQ(destroyed, 1);
  vxextent(nullptr);
  host.close();
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
  ASSERT_EQ(vxextent(&handle), 0u);
  EXPECT_EQ(vxGetBDConv(), &runtime.bdconv);
  vxtest::PlainLocale plain;
  VXLocale* const locale = plain.get();
  GuardedBuffer<VXChar> units(1500);
  GuardedBuffer<uint8_t> bytes(1500);
  const auto to_utf8 = [&](uint8_t* to, int64_t size, int64_t* length) {
    return NLSDoubleFormatUWithExOpts(locale, 4, 1, NLS_FORMAT_FIXED, to, size, length, nullptr, 1.5);
  };
  for (const int64_t size : {0, 1, 2, 5, 62, 1023, 1024, 1025, 1500}) {
    VXChar* const wide = units.at(static_cast<size_t>(size));
    uint8_t* const narrow = bytes.at(static_cast<size_t>(size));
    for (const int64_t length : {INT64_MIN, INT64_C(-1), INT64_C(0), INT64_C(1), size - 1, size, size + 1,
                                 INT64_C(1024), INT64_C(1025), INT64_C(1) << 32, INT64_MAX}) {
      for (const VXStatus status : {VXStatus{0}, VX_E_MEMORY}) {
        for (const VXChar unit : {VXChar{'7'}, VXChar{0xD800}, VXChar{0x10FFFF}, VXChar{0xFFFFFFFF}}) {
          claim = {length, status, unit, size};
          SCOPED_TRACE(testing::Message() << length << " of " << size << ", status " << status);
          for (const auto write : {&NLSDoubleFormat, &NLSPercentFormat, &NLSCurrencyFormat}) {
            int64_t written = 0;
            EXPECT_EQ(write(locale, 9, 2, 1, wide, size, &written, -0.5), status);
            // "%", parentheses or "$" are counted in any case.
            EXPECT_TRUE(written >= 0 && written <= size + (write == &NLSDoubleFormat ? 0 : 2)) << written;
            if (write == &NLSPercentFormat && status == 0 && length >= 0 && length <= size - 2) {
              EXPECT_EQ(wide[length + 1], VXChar{')'});  // "%)" stands right behind what was claimed
            }
          }
          int64_t written = -1;
          const VXStatus told = to_utf8(narrow, size, &written);
          EXPECT_TRUE(told == status || told == VX_E_TRUNCATED);
          EXPECT_TRUE(written >= 0 && written <= size) << written;
        }
      }
    }
  }
  EXPECT_EQ(NLSDoubleFormatWithExOpts(locale, 9, 2, 0, units.at(3), 3, nullptr, nullptr, 1), VX_E_MEMORY);
  // A host that claims more than it wrote gets no more out of the library than zeros.
  claim = {1024, 0, '7', 1};
  int64_t written = 0;
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

// A zone service that claims any length of a name and any offset; what is written then is in datetime_format_test.cc.
TEST(HostileHost, ZonesOfAnyNameAndAnyDistanceFromUtc) {
  static int64_t claimed;
  static int32_t offset;
  static constexpr VXZoneServiceOps claiming = {
      [](VXZoneService*, const VXChar*, int64_t, uint64_t) { return reinterpret_cast<VXZone*>(&claimed); },
      [](VXZoneService*, VXZone*) -> VXStatus { return 0; },
      [](VXZoneService*, VXZone*, int32_t, double) { return offset; },
      [](VXZoneService*, VXZone*, int32_t, double, VXChar*, int64_t* length, int32_t* east) -> VXStatus {
        EXPECT_EQ(std::exchange(*length, claimed), 50);
        return *east = offset, 0;
      }};
  vxtest::ZonedLocale locale;
  locale.use(U"Zone/East");
  locale.zones.ops = &claiming;
  vxtest::set_name(locale.data.datetimePattern, U"%Y-%m-%d %Z");
  for (const int32_t east : {INT32_MIN, INT32_MIN + 1, -86400, -59, 0, 86399, 360000, INT32_MAX}) {
    offset = east;
    for (const int64_t length : {INT64_MIN, INT64_C(-1), INT64_C(0), INT64_C(50), INT64_C(51), INT64_MAX}) {
      claimed = length;
      vxnls::host::ZoneState state;
      vxnls::host::describe_zone(&locale.locale, 0, &state);
      EXPECT_TRUE(state.name_length == std::clamp<int64_t>(length, 0, 50) && state.offset == offset);
      for (const std::string_view text : {"1582-01-01 Zone/West", "20000-12-31 Zone/West"}) {
        const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data());
        double value = 0;
        int64_t consumed = 0;
        const VXStatus status = NLSBufToDatetimeU(locale.get(), bytes, std::ssize(text), 0, &value, &consumed);
        EXPECT_LT(std::abs(value), 569318630400.0 + 1) << "the two offsets take each other away";
        VXExplanation why;
        why.size = sizeof why;
        EXPECT_EQ(vxnlsExplain(locale.get(), VX_EXPLAIN_DATETIME, 0, bytes, std::ssize(text), &why), 0u);
        EXPECT_EQ(why.status, status);
      }
    }
  }
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

// Any byte as the group separator of a single-byte text: also a digit, the sign, the point.
TEST(HostileHost, SeparatorsOfAnyByte) {
  static uint8_t byte;
  static constexpr VXConverterOps ops = {[](VXConverter*, VXChar, uint8_t* out) -> VXStatus { return *out = byte, 0; }};
  VXConverter converter = {&ops};
  vxtest::PlainLocale locale;
  locale.data.groupSeparator = 0x2019;
  GuardedBuffer<uint8_t> memory(16);
  do {
    for (const std::string_view text : {"1\264234.5E1", " -1.5 ", "\x60\xF1\x4B\xF5\xC5\xF1"}) {
      const uint8_t* const at = memory.copy(reinterpret_cast<const uint8_t*>(text.data()), text.size());
      for (const auto read : {NLSBufToDoubleA, NLSBufToDoubleE}) {
        double value = 0;
        int64_t consumed = -1;
        const auto n = static_cast<int32_t>(text.size());
        const VXStatus status = read(locale.get(), at, n, &value, &consumed, &converter);
        EXPECT_TRUE(consumed >= 0 && consumed <= n) << int{byte};
        EXPECT_TRUE(status == 0 || ((status == VX_E_NOTNUMBER || status == VX_E_RANGE) && std::isnan(value)))
            << int{byte};
      }
    }
  } while (++byte != 0);
}

}  // namespace
