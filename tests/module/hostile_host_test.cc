// A host that answers what it must not: lengths beyond the room, nulls, values far outside of what they mean. Whatever
// it says, nothing outside the buffers is touched, and what leaves the library keeps to what its headers say.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/character_host.h"
#include "tests/support/failing_host.h"
#include "tests/support/guard_page.h"
#include "tests/support/null_arguments.h"
#include "tests/support/zoned_locale.h"

namespace {

using vxtest::FailingHost;
using vxtest::GuardedBuffer;
using vxtest::Holdings;

constexpr auto least = std::numeric_limits<int32_t>::min();
constexpr auto most = std::numeric_limits<int32_t>::max();

TEST(HostileHost, AContextThatLacksWhatItMustHave) {
  FailingHost host;
  ASSERT_TRUE(host.load_module());
  HostContext& context = *host.context();
  const HostContext whole = context;
  for (int lacking = 0; lacking < 3; ++lacking) {
    if (lacking == 0) context.kernel = nullptr;
    if (lacking == 1) context.pool = nullptr;
    if (lacking == 2) context.creationLock = nullptr;
    VXStatus status = 1;
    EXPECT_EQ(host.create(U"en_US", &status), nullptr);
    EXPECT_EQ(status, VX_E_NULL) << lacking;
    static_cast<HostContext&>(context) = whole;
  }
}

// The entry that a track's insert must give is null, with a status of success.
TEST(HostileHost, ATrackThatKeepsNothing) {
  FailingHost host;
  ASSERT_TRUE(host.load_module() && host.make_cache());
  const Holdings before = host.holdings();
  VXTrack& cache = *host.context()->localeCache;
  const VXTrackOps* const whole = cache.ops;
  VXTrackOps forgetful = *whole;
  forgetful.insert = [](VXTrack*, uint32_t, uint64_t, void*, uint64_t, const void*, int64_t,
                        VXStatus* status) -> VXTrackEntry* {
    *status = 0;
    return nullptr;
  };
  cache.ops = &forgetful;
  EXPECT_EQ(host.create(U"en_US", nullptr), nullptr);
  cache.ops = whole;
  EXPECT_EQ(host.holdings(), before);
}

// The host's own conversion of doubles: what it claims to have written, with which status and of which units.
struct Claim {
  int64_t length;
  VXStatus status;
  VXChar unit;
};
Claim claim;

VXStatus claim_double(VXLocale*, int32_t, int32_t, uint32_t, VXChar* buffer, int64_t size, int64_t* length,
                      const NLSDoubleExOpts*, double) {
  for (int64_t i = 0; i < size; ++i) buffer[i] = claim.unit;
  if (length != nullptr) *length = claim.length;
  return claim.status;
}

TEST(HostileHost, ConversionsThatClaimAnyLength) {
  static constexpr VXHandleOps no_operations = {};
  VXRuntime runtime = {{1, 0, &claim_double}};
  VXHandle handle = {&no_operations, nullptr, nullptr, nullptr, &runtime};
  ASSERT_EQ(vxextent(&handle), 0u);
  vxtest::PlainLocale locale;
  constexpr int64_t longest = 1500;
  GuardedBuffer<VXChar> units(longest);
  GuardedBuffer<uint8_t> bytes(longest);
  int64_t calls = 0;
  for (const int64_t size : {0, 1, 2, 5, 62, 1023, 1024, 1025, 1500}) {
    VXChar* const wide = units.at(static_cast<size_t>(size));
    uint8_t* const narrow = bytes.at(static_cast<size_t>(size));
    for (const int64_t length : {INT64_MIN, INT64_C(-1), INT64_C(0), INT64_C(1), size - 1, size, size + 1,
                                 INT64_C(1024), INT64_C(1025), INT64_C(1) << 32, INT64_MAX}) {
      for (const VXStatus status : {VXStatus{0}, VX_E_MEMORY}) {
        for (const VXChar unit : {VXChar{'7'}, VXChar{0xD800}, VXChar{0x10FFFF}, VXChar{0xFFFFFFFF}}) {
          claim = {length, status, unit};
          SCOPED_TRACE(testing::Message() << length << " of " << size << ", status " << status);
          for (const auto write : {&NLSDoubleFormat, &NLSPercentFormat, &NLSCurrencyFormat}) {
            const int64_t added = write == &NLSDoubleFormat ? 0 : 2;  // "%", parentheses or "$", counted in any case
            int64_t written = -1;
            EXPECT_EQ(write(locale.get(), 9, 2, 1, wide, size, &written, -0.5), status);
            EXPECT_TRUE(written >= -1 && written <= size + added) << written;
            if (write == &NLSPercentFormat && status == 0 && length >= 0 && length <= size - 2) {
              EXPECT_EQ(wide[length + 1], VXChar{')'});  // "%)" stands right behind what was claimed
            }
          }
          int64_t written = -1;
          const VXStatus told = NLSDoubleFormatUWithExOpts(locale.get(), 9, 2, 0, narrow, size, &written, nullptr, 1);
          EXPECT_TRUE(told == status || told == VX_E_TRUNCATED);
          EXPECT_TRUE(written >= 0 && written <= size) << written;
          calls += 4;
        }
      }
    }
  }
  EXPECT_EQ(NLSDoubleFormatWithExOpts(locale.get(), 9, 2, 0, units.at(3), 3, nullptr, nullptr, 1), VX_E_MEMORY);
  EXPECT_EQ(calls, 9 * 11 * 2 * 4 * 4);
  // A host that claims more than it wrote gets no more out of the library than zeros.
  claim = {1024, 0, '7'};
  int64_t written = 0;
  uint8_t text[1024];
  runtime.bdconv.format_double = [](VXLocale*, int32_t, int32_t, uint32_t, VXChar* buffer, int64_t, int64_t* length,
                                    const NLSDoubleExOpts*, double) -> VXStatus {
    buffer[0] = '7';
    *length = 1024;
    return 0;
  };
  EXPECT_EQ(NLSDoubleFormatUWithExOpts(locale.get(), 9, 2, 0, text, 1024, &written, nullptr, 1), 0u);
  EXPECT_EQ(std::string(text, text + written), '7' + std::string(1023, '\0'));
  const auto to_utf8 = [&](uint8_t* to, int64_t* length) {
    return NLSDoubleFormatUWithExOpts(locale.get(), 9, 2, 0, to, 9, length, nullptr, 1);
  };
  VX_EXPECT_NULLS_REFUSED(to_utf8, text, &written);
  // A table that is there and offers nothing leaves the library its own.
  runtime.bdconv.format_double = nullptr;
  EXPECT_EQ(NLSDoubleFormatUWithExOpts(locale.get(), 4, 1, NLS_FORMAT_FIXED, text, 4, &written, nullptr, 1.5), 0u);
  EXPECT_EQ(std::string(text, text + written), " 1.5");
  vxextent(nullptr);
}

// Offsets outside of a day, in every place where one is used.
TEST(HostileHost, ZonesAnyDistanceFromUtc) {
  static int32_t offset;
  static constexpr VXZoneServiceOps zone_ops = {
      nullptr, nullptr, [](VXZoneService*, VXZone*, int32_t, double) { return offset; },
      [](VXZoneService*, VXZone*, int32_t, double, VXChar*, int64_t* length, int32_t* told) -> VXStatus {
        *length = 7;  // of blanks: nothing is written
        *told = offset;
        return 0;
      }};
  const struct {
    int32_t offset;
    const char* written;
  } cases[] = {{least, "-2314"}, {least + 1, "-2314"}, {-86400, "-2400"}, {-59, "-0000"},
               {0, "+0000"},     {86399, "+2359"},     {360000, "+0000"}, {most, "+2314"}};
  for (const auto& c : cases) {
    offset = c.offset;
    vxtest::ZonedLocale locale;
    locale.use(U"Zone/East");
    locale.zones.ops = &zone_ops;
    vxtest::set_name(locale.data.datetimePattern, U"%z|%Z|");
    uint8_t text[40];
    int64_t length = 0;
    EXPECT_EQ(NLSDatetimeFormatU(locale.get(), 0, text, sizeof text, &length, 0), 0u);
    EXPECT_EQ(std::string(text, text + length), std::string(c.written) + "|       |");

    vxtest::set_name(locale.data.datetimePattern, U"%Y-%m-%d %Z");
    for (const std::string_view read : {"1582-01-01 Zone/West", "20000-12-31 Zone/West"}) {
      double value = 0;
      NLSBufToDatetimeU(locale.get(), reinterpret_cast<const uint8_t*>(read.data()), static_cast<int64_t>(read.size()),
                        0, &value, &length);
      EXPECT_LT(std::abs(value), 569318630400.0 + 1) << "the two offsets take each other away";
      VXExplanation why;
      why.size = sizeof why;
      EXPECT_EQ(vxnlsExplain(locale.get(), VX_EXPLAIN_DATETIME, 0, reinterpret_cast<const uint8_t*>(read.data()),
                             static_cast<int64_t>(read.size()), &why),
                0u);
    }
  }
}

// Mappings to what is no character, or to one of another length.
TEST(HostileHost, MappingsToAnyValue) {
  vxtest::CharacterHost host;
  VXChar answer = 0;
  host.lower = host.upper = [&](uint32_t) { return answer; };
  const std::string text = "a\u00E9z\u20AC\U0001F600\u00E9";
  const auto* const in = reinterpret_cast<const uint8_t*>(text.data());
  const auto n = static_cast<int64_t>(text.size());
  GuardedBuffer<uint8_t> source(text.size()), target(64);
  GuardedBuffer<VXChar> wide(6);
  for (const VXChar mapped : {0u, 0x41u, 0x7FFu, 0xD800u, 0xFFFFu, 0x10FFFFu, 0x110000u, 0x1FFFFFu, 0x200000u,
                              0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(mapped);
    answer = mapped;
    for (const auto change : {vxzsu8Lower2, vxzsu8Upper2}) {
      int64_t needed = -1, written = -1;
      EXPECT_EQ(change(in, n, nullptr, 0, &needed), 0u);
      ASSERT_TRUE(needed >= 2 && needed <= 24) << needed;
      EXPECT_EQ(change(in, n, target.at(static_cast<size_t>(needed)), needed, &written), 0u);
      EXPECT_EQ(written, needed);
      EXPECT_EQ(change(in, n, target.at(static_cast<size_t>(needed - 1)), needed - 1, &written), VX_E_ROOM);
      EXPECT_LT(written, needed);
    }
    for (const auto change : {vxzsu8Lower, vxzsu8Upper}) change(source.copy(in, text.size()), n);
    for (const auto change : {vxzstlo, vxzstup}) {
      VXChar* const units = wide.at(6);
      for (int i = 0; i < 6; ++i) units[i] = 0xE9;
      change(units, 6);
      EXPECT_EQ(units[5], mapped);
    }
    const int32_t order = vxzsu8NormCompare(source.copy(in, text.size()), n, in, n - 2);
    EXPECT_EQ(vxzsu8NormCompare(in, n - 2, in, n), -order);
  }
}

// Any byte as the group separator of a single-byte text: also a digit, the sign, the point.
TEST(HostileHost, SeparatorsOfAnyByte) {
  static uint8_t answer;
  static constexpr VXConverterOps converter_ops = {[](VXConverter*, VXChar, uint8_t* byte) -> VXStatus {
    *byte = answer;
    return 0;
  }};
  VXConverter converter = {&converter_ops};
  vxtest::PlainLocale locale;
  locale.data.groupSeparator = 0x2019;
  GuardedBuffer<uint8_t> memory(16);
  for (int byte = 0; byte < 256; ++byte) {
    answer = static_cast<uint8_t>(byte);
    for (const std::string_view text : {"1\xB4"
                                        "234.5E1",
                                        " -1.5 ", "\x60\xF1\x4B\xF5\xC5\xF1"}) {
      const uint8_t* const at = memory.copy(reinterpret_cast<const uint8_t*>(text.data()), text.size());
      for (const auto read : {NLSBufToDoubleA, NLSBufToDoubleE}) {
        double value = 0;
        int64_t consumed = -1;
        const VXStatus status =
            read(locale.get(), at, static_cast<int32_t>(text.size()), &value, &consumed, &converter);
        EXPECT_TRUE(status == 0 || status == VX_E_NOTNUMBER || status == VX_E_RANGE) << byte;
        EXPECT_TRUE(consumed >= 0 && consumed <= static_cast<int64_t>(text.size())) << byte;
        EXPECT_TRUE(status == 0 || std::isnan(value)) << byte;
      }
    }
  }
}

TEST(HostileHost, ClassesOfAnyNumber) {
  vxtest::CharacterHost host;
  static constexpr uint8_t mark[] = {0xCC, 0x81, 0};
  for (const int32_t answer : {least, -1, 0, 1, 2, most}) {
    host.test_class = [&](uint32_t, uint32_t) { return answer; };
    for (const auto test : {vxnlsisdigit, vxnlsislower, vxnlsisupper, vxnlsisalpha, vxnlsisalnum, vxnlsisprint,
                            vxnlsisgraph, vxnlsispunct, vxnlsisxdigit, vxnlsiscntrl}) {
      for (const uint32_t c : {0x300u, 0xD800u, 0x110000u, 0xFFFFFFFFu}) EXPECT_EQ(test(c), answer != 0) << c;
    }
    EXPECT_EQ(vxzsu8IsCombining(mark), answer != 0);
  }
}

}  // namespace
