#include <gtest/gtest.h>
#include <iconv.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "tests/support/guard_page.h"
#include "unicode/coders.h"
#include "unicode/transcode.h"

namespace {

using namespace vxnls;
using enum std::endian;
using Bytes = std::vector<uint8_t>;
using vxtest::Guard;
using vxtest::GuardedBuffer;

// The rule, one step a character, behind addresses that the drivers do not know.
struct Form {
  const char* name;
  VXDecoder decoder, decode_step;
  VXEncoder encoder, encode_step;
  ByOrder<ToUtf32Body> Transcoders::*from;
  ByOrder<FromUtf32Body> Transcoders::*to;
};
const Form forms[] = {
    {"UTF-8", UTF8_UTF32, decode_one<Utf8Source>, UTF32_UTF8, encode_one<Utf8Sink>, &Transcoders::from_utf8,
     &Transcoders::to_utf8},
    {"UTF-16LE", UTF16_UTF32_SWAP, decode_one<Utf16Source<little>>, UTF32_UTF16s, encode_one<Utf16Sink<little>>,
     &Transcoders::from_utf16_little, &Transcoders::to_utf16_little},
    {"UTF-16BE", UTF16_UTF32, decode_one<Utf16Source<big>>, UTF32_UTF16s_SWAP, encode_one<Utf16Sink<big>>,
     &Transcoders::from_utf16_big, &Transcoders::to_utf16_big},
    {"UTF-32LE", COPY_UTF32b_SWAP, decode_one<Utf32Source<little>>, COPY_UTF32_SWAP, encode_one<Utf32Sink<little>>,
     &Transcoders::from_utf32_little, &Transcoders::to_utf32_little},
    {"UTF-32BE", COPY_UTF32b, decode_one<Utf32Source<big>>, COPY_UTF32, encode_one<Utf32Sink<big>>,
     &Transcoders::from_utf32_big, &Transcoders::to_utf32_big},
};
struct Order {
  VXEncoder encoder;
  VXReader reader;
  ToUtf32Body* ByOrder<ToUtf32Body>::*to;
  FromUtf32Body* ByOrder<FromUtf32Body>::*from;
};
const Order orders[] = {
    {COPY_UTF32_SWAP, Byte2DWord, &ByOrder<ToUtf32Body>::little, &ByOrder<FromUtf32Body>::little},
    {COPY_UTF32, Byte2DWord_swap, &ByOrder<ToUtf32Body>::big, &ByOrder<FromUtf32Body>::big},
};

std::vector<const Transcoders*> variants() {
  std::vector<const Transcoders*> all = {&generic_transcoders};
#if VXNLS_HAS_AVX2_VARIANTS
  if (processor_has_avx2()) all.push_back(&avx2_transcoders);
#endif
  return all;
}

struct Result {
  VXStatus status;
  int64_t written;
  Bytes bytes;  // the whole room: what was not written has stayed
  bool operator==(const Result&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Result& r) {
  return out << std::hex << r.status << std::dec << ", " << r.written << " bytes " << testing::PrintToString(r.bytes);
}

class Random {
 public:
  explicit Random(uint32_t seed) : engine_(seed) {}
  int64_t below(int64_t end) { return static_cast<int64_t>(engine_() % static_cast<uint64_t>(end)); }
  template <class T, size_t n>
  const T& of(const T (&all)[n]) {
    return all[below(n)];
  }

 private:
  std::mt19937 engine_;
};

void append(Bytes& text, uint32_t c, VXEncoder encoder) {
  uint8_t bytes[4];
  int64_t written = 0;
  encoder(c, bytes, 4, &written);
  text.insert(text.end(), bytes, bytes + written);
}

/// Texts of characters that take 1, 2, 3 or 4 bytes of UTF-8, of ASCII with few and with many others, of all; then of
/// nothing but the first or the last character of a length.
std::vector<Bytes> texts_in(VXEncoder encoder, size_t length, Random& random) {
  static constexpr uint32_t first[] = {0, 0x80, 0x800, 0x10000}, last[] = {0x7F, 0x7FF, 0xFFFF, 0x10FFFF};
  std::vector<Bytes> texts;
  for (int kind = 0; kind < 7; ++kind) {
    Bytes& text = texts.emplace_back();
    while (text.size() < length) {
      const bool ascii = (kind == 4 && random.below(50) != 0) || (kind == 5 && random.below(6) != 0);
      const int64_t units = ascii ? 0 : kind < 4 ? kind : random.below(4);
      append(text, first[units] + static_cast<uint32_t>(random.below(last[units] - first[units] + 1)), encoder);
    }
    text.resize(length);
  }
  for (const auto& ends : {first, last}) {
    for (int i = 0; i < 4; ++i) {
      Bytes& text = texts.emplace_back();
      while (text.size() < length) append(text, ends[i], encoder);
      text.resize(length);
    }
  }
  return texts;
}

constexpr int64_t longest = 300;

/// How often each place of a fault has its turn, each time with other text, room and alignment.
int64_t rounds() { return std::getenv("VXNLS_LONG_TESTS") != nullptr ? 64 : 2; }

/// Where text and output lie: before or behind a page that may not be touched, or a little away from it, in order to be
/// aligned otherwise.
struct Place {
  explicit Place(Random& random)
      : guard(random.below(2) != 0 ? Guard::behind : Guard::before),
        away_in(random.below(3) != 0 ? 0 : static_cast<size_t>(random.below(64))),
        away_out(random.below(3) != 0 ? 0 : static_cast<size_t>(random.below(64))) {}
  Guard guard;
  size_t away_in, away_out;
};

/// Calls `convert(in, out)` on guarded memory with `room` bytes of output.
template <class Convert>
Result converted(const uint8_t* text, int64_t length, int64_t room, const Place& place, Convert convert) {
  static GuardedBuffer<uint8_t> input(4 * longest + 80), output(4 * longest + 80);
  uint8_t* const out = output.at(static_cast<size_t>(room), place.guard, place.away_out);
  std::fill_n(out, room, uint8_t{0xAA});
  Result r{0, -1, {}};
  r.status = convert(input.copy(text, static_cast<size_t>(length), place.guard, place.away_in), out, &r.written);
  r.bytes.assign(out, out + room);
  return r;
}

// Every length, and in each a fault at every place.
TEST(Transcoding, EveryVariantGivesWhatStepsGive) {
  static constexpr uint8_t faults[] = {0x00, 'A', 0x80, 0xBF, 0xC1, 0xC3, 0xD8, 0xDC, 0xE2, 0xF1, 0xF5, 0xFF};
  const auto all = variants();
  Random random(20240307);
  for (const Form& form : forms) {
    const auto texts = texts_in(form.encoder, longest, random);
    for (int64_t length = 0; length <= longest; ++length) {
      for (int64_t turn = 0; turn < rounds() * (length + 1); ++turn) {
        const int64_t fault = turn / rounds();
        Bytes text = texts[static_cast<size_t>(random.below(static_cast<int64_t>(texts.size())))];
        if (fault < length) text[static_cast<size_t>(fault)] = random.of(faults);
        const int64_t room = random.below(3) != 0 ? 4 * length : random.below(4 * length + 4);
        const Place place(random);
        const Order& order = random.of(orders);
        const auto drive = [&](VXDecoder decoder) {
          return converted(text.data(), length, room, place, [&](const uint8_t* in, uint8_t* out, int64_t* written) {
            return ConvertToUTF32(in, length, out, room, written, decoder, order.encoder);
          });
        };
        const Result expected = drive(form.decode_step);
        const auto what = [&] {
          return std::string(form.name) + " of " + testing::PrintToString(text) + " length " + std::to_string(length) +
                 " room " + std::to_string(room);
        };
        ASSERT_EQ(drive(form.decoder), expected) << what();
        for (const Transcoders* const variant : all) {
          const auto body = variant->*form.from.*order.to;
          ASSERT_EQ(converted(text.data(), length, room, place,
                              [&](const uint8_t* in, uint8_t* out, int64_t* written) {
                                const Converted c = body(in, length, out, room / 4);
                                *written = 4 * c.count;
                                return c.status;
                              }),
                    expected)
              << what() << (variant == &generic_transcoders ? ", generic" : ", AVX2");
        }
      }
    }
  }
}

TEST(Transcoding, EveryVariantGivesWhatStepsGiveFromUtf32) {
  static constexpr uint32_t special[] = {0x7F,     0x80,     0x7FF,    0x800,      0xD800,     0xFFFF,     0x10000,
                                         0x10FFFF, 0x110000, 0x1FFFFF, 0x3FFFFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
  const auto all = variants();
  Random random(19600101);
  for (const Order& order : orders) {
    const auto texts = texts_in(order.encoder, 4 * longest, random);
    for (int64_t characters = 0; characters <= longest; ++characters) {
      for (int64_t turn = 0; turn < rounds() * (characters + 1); ++turn) {
        const int64_t fault = turn / rounds();
        Bytes text = texts[static_cast<size_t>(random.below(static_cast<int64_t>(texts.size())))];
        if (fault < characters) {
          Bytes unit;
          append(unit, random.of(special), order.encoder);
          std::copy(unit.begin(), unit.end(), text.begin() + fault * 4);
        }
        const int64_t length = 4 * characters + (characters < longest ? random.below(4) : 0);
        const int64_t room = random.below(3) != 0 ? 4 * characters : random.below(4 * characters + 4);
        const Place place(random);
        const Form& form = random.of(forms);
        const auto drive = [&](VXEncoder encoder) {
          return converted(text.data(), length, room, place, [&](const uint8_t* in, uint8_t* out, int64_t* written) {
            return ConvertFromUTF32(in, length, out, room, written, encoder, order.reader);
          });
        };
        const Result expected = drive(form.encode_step);
        const auto what = [&] {
          return std::string(form.name) + " of " + testing::PrintToString(text) + " characters " +
                 std::to_string(characters) + " room " + std::to_string(room);
        };
        ASSERT_EQ(drive(form.encoder), expected) << what();
        for (const Transcoders* const variant : all) {
          const auto body = variant->*form.to.*order.from;
          ASSERT_EQ(converted(text.data(), length, room, place,
                              [&](const uint8_t* in, uint8_t* out, int64_t* written) {
                                const Converted c = body(in, characters, out, room);
                                *written = c.count;
                                return c.status;
                              }),
                    expected)
              << what() << (variant == &generic_transcoders ? ", generic" : ", AVX2");
        }
        std::vector<VXChar> units(static_cast<size_t>(characters));
        for (size_t i = 0; i < units.size(); ++i) units[i] = order.reader(text.data() + 4 * i);
        static GuardedBuffer<VXChar> guarded(longest + 64);
        const VXChar* const in = guarded.copy(units.data(), units.size(), place.guard, place.away_in);
        int64_t bytes = 0;
        for (const VXChar c : units) bytes += Utf8Text::units(c);
        for (const Transcoders* const variant : all) ASSERT_EQ(variant->utf8_length(in, characters), bytes) << what();
        ASSERT_EQ(GET_UTF8_LEN_FROM_VXCHAR(in, characters), bytes);
      }
    }
  }
}

// The library's coders beside a caller's own have no body of their own, and the same bounds.
TEST(Transcoding, OtherPairsOfTheLibrarysCoders) {
  static constexpr struct {
    VXEncoder encoder, step;
  } others[] = {{UTF32_UTF16, encode_one<Utf16UnitSink<little>>}, {UTF32_UTF16_SWAP, encode_one<Utf16UnitSink<big>>},
                {UTF16_UTF8, encode_one<Utf8UnitSink>},           {UTF32_UTF8, encode_one<Utf8Sink>},
                {UTF32_UTF16s, encode_one<Utf16Sink<little>>},    {UTF32_UTF16s_SWAP, encode_one<Utf16Sink<big>>}};
  const VXReader reader = [](const uint8_t* bytes) { return Byte2DWord(bytes); };
  Random random(1582);
  for (const Bytes& text : texts_in(COPY_UTF32_SWAP, 4 * 40, random)) {
    for (const auto& other : others) {
      for (int64_t room = 0; room <= 130; ++room) {
        const Place place(random);
        const auto drive = [&](VXEncoder encoder) {
          return converted(text.data(), 160, room, place, [&](const uint8_t* in, uint8_t* out, int64_t* written) {
            return ConvertFromUTF32(in, 160, out, room, written, encoder, reader);
          });
        };
        ASSERT_EQ(drive(other.encoder), drive(other.step)) << room;
      }
    }
  }
}

Bytes by_iconv(const char* to, const char* from, Bytes text) {
  const iconv_t converter = iconv_open(to, from);
  Bytes out(4 * text.size() + 16);
  char* in = reinterpret_cast<char*>(text.data());
  char* end = reinterpret_cast<char*>(out.data());
  size_t in_left = text.size(), out_left = out.size();
  EXPECT_EQ(iconv(converter, &in, &in_left, &end, &out_left), 0u) << to << " from " << from;
  iconv_close(converter);
  out.resize(out.size() - out_left);
  return out;
}

TEST(Drivers, EveryScalarValueAgainstIconv) {
  Bytes all;
  for (uint32_t c = 0; c < 0x110000; ++c) {
    if (c < 0xD800 || c > 0xDFFF) append(all, c, COPY_UTF32_SWAP);
  }
  for (const Form& form : forms) {
    const Bytes expected = by_iconv(form.name, "UTF-32LE", all);
    Bytes made(expected.size());
    int64_t written = 0;
    ASSERT_EQ(ConvertFromUTF32(all.data(), static_cast<int64_t>(all.size()), made.data(),
                               static_cast<int64_t>(made.size()), &written, form.encoder, Byte2DWord),
              0u);
    ASSERT_EQ(written, static_cast<int64_t>(made.size()));
    EXPECT_TRUE(made == expected) << form.name;
    Bytes back(all.size());
    ASSERT_EQ(ConvertToUTF32(made.data(), written, back.data(), static_cast<int64_t>(back.size()), &written,
                             form.decoder, COPY_UTF32_SWAP),
              0u);
    EXPECT_TRUE(back == all) << form.name;
  }
}

TEST(Drivers, WhereTheyStop) {
  static const struct {
    Bytes text;
    int64_t length, room, written;
    VXStatus status;
  } to[] = {
      {{0x41, 0x42}, 2, 7, 4, 0},  // the output is full: no failure
      {{0x41, 0x42}, 2, 3, 0, 0},
      {{0x41, 0x42}, 1, 8, 4, 0},
      {{0x41, 0x42}, 0, 8, 0, 0},
      {{0x41, 0x42}, -1, 8, 0, 0},
      {{0x41, 0x42}, 2, -8, 0, 0},
      {{0x41, 0xC3}, 2, 8, 4, VX_E_INCOMPLETE},
      {{0x41, 0x80, 0x42}, 3, 12, 4, VX_E_SEQUENCE},
      {{0x41, 0x80, 0x42}, 3, 4, 4, 0},  // full before the fault
  };
  for (const auto& c : to) {
    uint8_t out[16];
    int64_t written = -1;
    EXPECT_EQ(ConvertToUTF32(c.text.data(), c.length, out, c.room, &written, UTF8_UTF32, COPY_UTF32), c.status);
    EXPECT_EQ(written, c.written) << testing::PrintToString(c.text) << c.room;
    EXPECT_EQ(ConvertToUTF32(c.text.data(), c.length, out, c.room, nullptr, UTF8_UTF32, COPY_UTF32), c.status);
  }
  static const struct {
    Bytes text;
    int64_t room, written;
    VXStatus status;
  } from[] = {
      {{0x41, 0, 0}, 4, 0, 0},
      {{0x41, 0, 0, 0, 0x42, 0, 0}, 4, 1, 0},
      {{0x41, 0, 0, 0, 0x42, 0, 0, 0}, 1, 1, 0},  // the room is used up: no failure
      {{0x41, 0, 0, 0, 0xE9, 0, 0, 0}, 2, 1, VX_E_ROOM},
      {{0x41, 0, 0, 0}, 0, 0, 0},
      {{0x41, 0, 0, 0}, -4, 0, 0},
  };
  for (const auto& c : from) {
    uint8_t out[8];
    int64_t written = -1;
    EXPECT_EQ(ConvertFromUTF32(c.text.data(), static_cast<int64_t>(c.text.size()), out, c.room, &written, UTF32_UTF8,
                               Byte2DWord),
              c.status);
    EXPECT_EQ(written, c.written) << testing::PrintToString(c.text) << c.room;
    EXPECT_EQ(ConvertFromUTF32(c.text.data(), static_cast<int64_t>(c.text.size()), out, c.room, nullptr, UTF32_UTF8,
                               Byte2DWord),
              c.status);
  }
  const uint8_t text[4] = {};
  for (int missing = 0; missing < 4; ++missing) {
    uint8_t memory[4];
    int64_t written = -1;
    const uint8_t* const in = missing == 0 ? nullptr : text;
    uint8_t* const out = missing == 1 ? nullptr : memory;
    EXPECT_EQ(ConvertToUTF32(in, 4, out, 4, &written, missing == 2 ? nullptr : &UTF8_UTF32,
                             missing == 3 ? nullptr : &COPY_UTF32),
              VX_E_NULL);
    EXPECT_EQ(written, 0);
    written = -1;
    EXPECT_EQ(ConvertFromUTF32(in, 4, out, 4, &written, missing == 2 ? nullptr : &UTF32_UTF8,
                               missing == 3 ? nullptr : &Byte2DWord),
              VX_E_NULL);
    EXPECT_EQ(written, 0);
  }
}

// A caller's coders may report anything: the drivers hold it to the buffers.
TEST(Drivers, CodersThatReportNonsense) {
  static int64_t report;
  const VXDecoder decoder = [](const uint8_t*, int64_t, uint32_t* c, int64_t* consumed) -> VXStatus {
    *c = 'x';
    *consumed = report;
    return 0;
  };
  const VXEncoder encoder = [](uint32_t, uint8_t* out, int64_t room, int64_t* written) -> VXStatus {
    std::fill_n(out, room, uint8_t{'y'});  // all the room that is offered
    *written = report;
    return 0;
  };
  const VXEncoder refusing = [](uint32_t, uint8_t*, int64_t, int64_t*) -> VXStatus { return 0x803fe999u; };
  GuardedBuffer<uint8_t> input(8), output(32);
  for (const int64_t reported : {INT64_MIN, int64_t{-1}, int64_t{0}, int64_t{1}, int64_t{5}, INT64_MAX}) {
    report = reported;
    const uint8_t text[8] = {};
    int64_t written = -1;
    EXPECT_EQ(ConvertToUTF32(input.copy(text, 8), 8, output.at(32), 32, &written, decoder, COPY_UTF32), 0u);
    EXPECT_EQ(written, reported < 1 ? 32 : reported == 1 ? 32 : reported == 5 ? 8 : 4);
    EXPECT_EQ(ConvertToUTF32(input.copy(text, 8), 8, output.at(30), 30, &written, UTF8_UTF32, encoder), 0u);
    EXPECT_EQ(written, 28);
    EXPECT_EQ(ConvertToUTF32(input.copy(text, 8), 8, output.at(32), 32, &written, UTF8_UTF32, refusing), 0x803fe999u);
    EXPECT_EQ(written, 0);
    EXPECT_EQ(ConvertFromUTF32(input.copy(text, 8), 8, output.at(9), 9, &written, encoder, Byte2DWord), 0u);
    EXPECT_EQ(written, reported < 0 ? 0 : std::min<int64_t>(9, reported > 9 ? 9 : 2 * reported));
  }
}

}  // namespace
