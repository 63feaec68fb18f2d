#include <gtest/gtest.h>
#include <iconv.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "tests/support/guard_page.h"
#include "vxnls/unicode.h"

namespace {

using Bytes = std::vector<uint8_t>;
using vxtest::Guard;
using vxtest::GuardedBuffer;

// The same coders behind addresses that the drivers do not know: these go one step a character.
template <auto coder>
VXStatus decode_as(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed) {
  return coder(in, remaining, code_point, consumed);
}
template <auto coder>
VXStatus encode_as(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written) {
  return coder(code_point, out, room, written);
}
template <auto reader>
uint32_t read_as(const uint8_t* bytes) {
  return reader(bytes);
}

struct Result {
  VXStatus status;
  int64_t written;
  Bytes bytes;
  bool operator==(const Result&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Result& r) {
  return out << std::hex << r.status << std::dec << ", " << r.written << " bytes " << testing::PrintToString(r.bytes);
}

class Random {
 public:
  explicit Random(uint32_t seed) : engine_(seed) {}
  uint32_t below(uint64_t end) { return static_cast<uint32_t>(engine_() % end); }

 private:
  std::mt19937 engine_;
};

/// Text of a kind: 0 ASCII, 1 two-byte, 2 three-byte, 3 four-byte characters, 4 everything mixed.
uint32_t character_of(Random& random, unsigned kind) {
  static constexpr uint32_t first[] = {0, 0x80, 0x800, 0x10000}, last[] = {0x7F, 0x7FF, 0xFFFF, 0x10FFFF};
  if (kind == 4) kind = random.below(4);
  return first[kind] + random.below(last[kind] - first[kind] + 1);
}

void append(Bytes& text, uint32_t c, VXEncoder encoder) {
  uint8_t bytes[4];
  int64_t written = 0;
  encoder(c, bytes, 4, &written);
  text.insert(text.end(), bytes, bytes + written);
}

TEST(ToUtf32, KnownPairsEqualOneStepACharacter) {
  struct Pair {
    VXDecoder decoder;
    VXEncoder encoder;
    VXDecoder unknown;
    VXEncoder maker;  // of the input
  };
  static const Pair pairs[] = {
      {UTF8_UTF32, COPY_UTF32_SWAP, decode_as<UTF8_UTF32>, UTF32_UTF8},
      {UTF8_UTF32, COPY_UTF32, decode_as<UTF8_UTF32>, UTF32_UTF8},
      {UTF16_UTF32, COPY_UTF32_SWAP, decode_as<UTF16_UTF32>, UTF32_UTF16s_SWAP},
      {UTF16_UTF32, COPY_UTF32, decode_as<UTF16_UTF32>, UTF32_UTF16s_SWAP},
      {UTF16_UTF32_SWAP, COPY_UTF32_SWAP, decode_as<UTF16_UTF32_SWAP>, UTF32_UTF16s},
      {UTF16_UTF32_SWAP, COPY_UTF32, decode_as<UTF16_UTF32_SWAP>, UTF32_UTF16s},
      {COPY_UTF32b, COPY_UTF32_SWAP, decode_as<COPY_UTF32b>, COPY_UTF32},
      {COPY_UTF32b, COPY_UTF32, decode_as<COPY_UTF32b>, COPY_UTF32},
      {COPY_UTF32b_SWAP, COPY_UTF32_SWAP, decode_as<COPY_UTF32b_SWAP>, COPY_UTF32_SWAP},
      {COPY_UTF32b_SWAP, COPY_UTF32, decode_as<COPY_UTF32b_SWAP>, COPY_UTF32_SWAP},
  };
  Random random(20240307);
  GuardedBuffer<uint8_t> input(1300), output(5200);
  for (int round = 0; round < 60000; ++round) {
    const Pair& pair = pairs[static_cast<size_t>(round) % std::size(pairs)];
    Bytes text;
    const unsigned kind = random.below(5);
    for (unsigned n = random.below(round % 7 == 0 ? 301 : 40); n > 0; --n)
      append(text, character_of(random, kind), pair.maker);
    for (unsigned faults = random.below(3); faults > 0 && !text.empty(); --faults) {
      text[random.below(text.size())] = static_cast<uint8_t>(random.below(256));
    }
    if (random.below(4) == 0 && !text.empty())
      text.resize(text.size() - random.below(std::min<size_t>(text.size(), 4)));
    const auto length = static_cast<int64_t>(text.size());
    const int64_t room = random.below(2) != 0
                             ? 4 * length + 3
                             : static_cast<int64_t>(random.below(static_cast<uint64_t>(4 * length + 4)));
    const Guard guard = random.below(2) != 0 ? Guard::behind : Guard::before;

    const auto convert = [&](VXDecoder decoder, const uint8_t* in) {
      uint8_t* const out = output.at(static_cast<size_t>(room), guard);
      std::fill_n(out, room, uint8_t{0xAA});
      Result r{0, -1, {}};
      r.status = ConvertToUTF32(in, length, out, room, &r.written, decoder, pair.encoder);
      r.bytes.assign(out, out + room);
      return r;
    };
    text.resize(text.size() + 8);  // the coder by itself may look past the end
    const Result expected = convert(pair.unknown, text.data());
    text.resize(text.size() - 8);
    ASSERT_EQ(convert(pair.decoder, input.copy(text.data(), text.size(), guard)), expected)
        << "round " << round << " " << testing::PrintToString(text) << " room " << room;
  }
}

TEST(FromUtf32, KnownPairsEqualOneStepACharacter) {
  struct Pair {
    VXEncoder encoder;
    VXReader reader;
    VXEncoder unknown;
    int64_t shortest;  // written without looking at the room
  };
  static const Pair pairs[] = {
      {UTF32_UTF8, Byte2DWord, encode_as<UTF32_UTF8>, 1},
      {UTF32_UTF8, Byte2DWord_swap, encode_as<UTF32_UTF8>, 1},
      {UTF32_UTF16s, Byte2DWord, encode_as<UTF32_UTF16s>, 2},
      {UTF32_UTF16s, Byte2DWord_swap, encode_as<UTF32_UTF16s>, 2},
      {UTF32_UTF16s_SWAP, Byte2DWord, encode_as<UTF32_UTF16s_SWAP>, 2},
      {UTF32_UTF16s_SWAP, Byte2DWord_swap, encode_as<UTF32_UTF16s_SWAP>, 2},
      {COPY_UTF32, Byte2DWord, encode_as<COPY_UTF32>, 4},
      {COPY_UTF32, Byte2DWord_swap, encode_as<COPY_UTF32>, 4},
      {COPY_UTF32_SWAP, Byte2DWord, encode_as<COPY_UTF32_SWAP>, 4},
      {COPY_UTF32_SWAP, Byte2DWord_swap, encode_as<COPY_UTF32_SWAP>, 4},
      {UTF16_UTF8, Byte2DWord, encode_as<UTF16_UTF8>, 1},
      {UTF32_UTF16, Byte2DWord, encode_as<UTF32_UTF16>, 2},
      {UTF32_UTF16_SWAP, Byte2DWord_swap, encode_as<UTF32_UTF16_SWAP>, 2},
  };
  Random random(19600101);
  GuardedBuffer<uint8_t> input(1300), output(1300);
  for (int round = 0; round < 60000; ++round) {
    const Pair& pair = pairs[static_cast<size_t>(round) % std::size(pairs)];
    const VXEncoder maker = pair.reader == Byte2DWord ? COPY_UTF32_SWAP : COPY_UTF32;
    Bytes text;
    const unsigned kind = random.below(5);
    for (unsigned n = random.below(round % 7 == 0 ? 301 : 40); n > 0; --n)
      append(text, character_of(random, kind), maker);
    if (random.below(4) == 0 && !text.empty())
      text[random.below(text.size())] = static_cast<uint8_t>(random.below(256));
    for (unsigned n = random.below(4); n > 0; --n) text.push_back(0xEE);  // no character of its own
    const auto length = static_cast<int64_t>(text.size());
    const auto room = static_cast<int64_t>(random.below(static_cast<uint64_t>(length + 4)));
    const Guard guard = random.below(2) != 0 ? Guard::behind : Guard::before;

    Result known{0, -1, {}};
    uint8_t* const out = output.at(static_cast<size_t>(room), guard);
    std::fill_n(out, room, uint8_t{0xAA});
    known.status = ConvertFromUTF32(input.copy(text.data(), text.size(), guard), length, out, room, &known.written,
                                    pair.encoder, pair.reader);
    known.bytes.assign(out, out + room);

    Result expected{0, -1, Bytes(static_cast<size_t>(room) + 4, 0xAA)};
    expected.status = ConvertFromUTF32(text.data(), length, expected.bytes.data(), room, &expected.written,
                                       pair.unknown, pair.reader);
    // The coder by itself writes its shortest form into less room; inside the driver that is the end.
    int64_t whole = 0;
    if (expected.status == 0 && expected.written == room && pair.shortest == 2 && room % 2 == 1) {
      whole = room - 1;
      expected.status = VX_E_ROOM;
      expected.written = whole;
      std::fill(expected.bytes.begin() + whole, expected.bytes.end(), uint8_t{0xAA});
    }
    expected.bytes.resize(static_cast<size_t>(room));
    ASSERT_EQ(known, expected) << "round " << round << " " << testing::PrintToString(text) << " room " << room;
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
  static const struct {
    const char* name;
    VXEncoder encoder;
    VXDecoder decoder;
  } forms[] = {
      {"UTF-8", UTF32_UTF8, UTF8_UTF32},
      {"UTF-16LE", UTF32_UTF16s, UTF16_UTF32_SWAP},
      {"UTF-16BE", UTF32_UTF16s_SWAP, UTF16_UTF32},
      {"UTF-32BE", COPY_UTF32, COPY_UTF32b},
      {"UTF-32LE", COPY_UTF32_SWAP, COPY_UTF32b_SWAP},
  };
  for (const auto& form : forms) {
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
  GuardedBuffer<uint8_t> input(8), output(32);
  for (const int64_t reported : {INT64_MIN, int64_t{-1}, int64_t{0}, int64_t{1}, int64_t{5}, INT64_MAX}) {
    report = reported;
    const uint8_t text[8] = {};
    int64_t written = -1;
    EXPECT_EQ(ConvertToUTF32(input.copy(text, 8), 8, output.at(32), 32, &written, decoder, COPY_UTF32), 0u);
    EXPECT_EQ(written, reported < 1 ? 32 : reported == 1 ? 32 : reported == 5 ? 8 : 4);
    EXPECT_EQ(ConvertToUTF32(input.copy(text, 8), 8, output.at(30), 30, &written, UTF8_UTF32, encoder), 0u);
    EXPECT_EQ(written, 28);
    EXPECT_EQ(ConvertFromUTF32(input.copy(text, 8), 8, output.at(9), 9, &written, encoder, Byte2DWord), 0u);
    EXPECT_EQ(written, reported < 0 ? 0 : std::min<int64_t>(9, reported > 9 ? 9 : 2 * reported));
  }
}

}  // namespace
