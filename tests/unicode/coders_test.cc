// Coders by themselves over whole domains, and the drivers, whose bodies do what single steps do.
#include <gtest/gtest.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <random>
#include <span>

#include "tests/unicode/texts.h"
#include "unicode/coders.h"
#include "unicode/transcode.h"

namespace {

using namespace vxnls;
using namespace vxtest;
using namespace std::string_view_literals;
using enum std::endian;

template <std::endian order>
std::string utf16_of(uint32_t c) {
  uint16_t units[2];
  size_t n = 0;
  U16_APPEND_UNSAFE(units, n, c);
  std::string text;
  for (size_t i = 0; i < n; ++i) {
    const char low = static_cast<char>(units[i]), high = static_cast<char>(units[i] >> 8);
    text += order == big ? std::string{high, low} : std::string{low, high};
  }
  return text;
}

template <std::endian order>
std::string utf32_of(uint32_t c) {
  std::string text;
  for (unsigned i = 0; i < 32; i += 8) text += static_cast<char>(c >> (order == big ? 24 - i : i));
  return text;
}

// The rule, one step a character, behind addresses that the drivers do not know. The last three have no way back, no
// body of their own, and know the low 16 bits alone: kept on purpose.
struct Form {
  std::string (*spelled)(uint32_t);
  int64_t shortest;  // the room of so many bytes is not looked at
  VXEncoder encoder, encode_step;
  ByOrder<FromUtf32Body> Transcoders::*to = nullptr;
  VXDecoder decoder = nullptr, decode_step = nullptr;
  ByOrder<ToUtf32Body> Transcoders::*from = nullptr;
};
// NOLINTNEXTLINE(cert-err58-cpp): addresses of functions throw nothing
const Form forms[] = {
    {utf8_of, 1, UTF32_UTF8, encode_one<Utf8Sink>, &Transcoders::to_utf8, UTF8_UTF32, decode_one<Utf8Source>,
     &Transcoders::from_utf8},
    {utf16_of<little>, 2, UTF32_UTF16s, encode_one<Utf16Sink<little>>, &Transcoders::to_utf16_little, UTF16_UTF32_SWAP,
     decode_one<Utf16Source<little>>, &Transcoders::from_utf16_little},
    {utf16_of<big>, 2, UTF32_UTF16s_SWAP, encode_one<Utf16Sink<big>>, &Transcoders::to_utf16_big, UTF16_UTF32,
     decode_one<Utf16Source<big>>, &Transcoders::from_utf16_big},
    {utf32_of<little>, 0, COPY_UTF32_SWAP, encode_one<Utf32Sink<little>>, &Transcoders::to_utf32_little,
     COPY_UTF32b_SWAP, decode_one<Utf32Source<little>>, &Transcoders::from_utf32_little},
    {utf32_of<big>, 0, COPY_UTF32, encode_one<Utf32Sink<big>>, &Transcoders::to_utf32_big, COPY_UTF32b,
     decode_one<Utf32Source<big>>, &Transcoders::from_utf32_big},
    {[](uint32_t c) { return utf8_of(c & 0xFFFF); }, 1, UTF16_UTF8, encode_one<Utf8UnitSink>},
    {[](uint32_t c) { return utf16_of<little>(c & 0xFFFF); }, 2, UTF32_UTF16, encode_one<Utf16UnitSink<little>>},
    {[](uint32_t c) { return utf16_of<big>(c & 0xFFFF); }, 2, UTF32_UTF16_SWAP, encode_one<Utf16UnitSink<big>>},
};
const std::span<const Form> two_way(forms, 5);
const Form& utf8_form = forms[0];

// The sides of UTF-32; a caller's own coder has no body.
const struct Order {
  VXEncoder encoder;
  VXReader reader;
  ToUtf32Body* ByOrder<ToUtf32Body>::*to;
  FromUtf32Body* ByOrder<FromUtf32Body>::*from;
} orders[] = {{COPY_UTF32_SWAP, Byte2DWord, &ByOrder<ToUtf32Body>::little, &ByOrder<FromUtf32Body>::little},
              {COPY_UTF32, Byte2DWord_swap, &ByOrder<ToUtf32Body>::big, &ByOrder<FromUtf32Body>::big},
              {encode_one<Utf32Sink<little>>, load32<little>, nullptr, nullptr}};

const Transcoders* best_variant() {
#if VXNLS_HAS_AVX2_VARIANTS
  if (processor_has_avx2()) return &avx2_transcoders;
#endif
  return &generic_transcoders;
}

/// Where text and output lie: before or behind a page that may not be touched, or a little away from it, in order to be
/// aligned otherwise.
struct Place {
  Guard guard = Guard::behind;
  size_t away_in = 64, away_out = 64;
};

/// What `convert(in, out, &written)` returns, tells, and leaves in the room.
struct Result {
  VXStatus status = 0;
  int64_t written = -1;
  std::string room;
  bool operator==(const Result&) const = default;
};
template <class Convert>
Result converted(std::string_view text, size_t room, const Place& place, Convert convert) {
  static GuardedBuffer<uint8_t> input(16384), output(32768);
  uint8_t* const out = output.at(room, place.guard, place.away_out);
  std::fill_n(out, room, uint8_t{0xAA});
  Result r;
  r.status = convert(input.copy(bytes(text), text.size(), place.guard, place.away_in), out, &r.written);
  r.room.assign(out, out + room);
  return r;
}

/// The driver, and the bodies of every variant, give what the driver gives with steps.
bool to_utf32_is_as_stepped(const Form& form, const Order& order, std::string_view text, size_t size,
                            const Place& place = {}) {
  const auto n = length_of(text), room = static_cast<int64_t>(size);
  const auto drive = [&](VXDecoder decoder) {
    return converted(text, size, place, [&](const uint8_t* in, uint8_t* out, int64_t* written) {
      return ConvertToUTF32(in, n, out, room, written, decoder, order.encoder);
    });
  };
  const auto run = [&](const Transcoders* variant) {
    return converted(text, size, place, [&](const uint8_t* in, uint8_t* out, int64_t* written) {
      const Converted c = (variant->*form.from.*order.to)(in, n, out, room / 4);
      *written = 4 * c.count;
      return c.status;
    });
  };
  const Result expected = drive(form.decode_step);
  return drive(form.decoder) == expected &&
         (order.to == nullptr || (run(&generic_transcoders) == expected && run(best_variant()) == expected));
}
bool from_utf32_is_as_stepped(const Form& form, const Order& order, std::string_view text, size_t size,
                              const Place& place) {
  const auto n = length_of(text), room = static_cast<int64_t>(size);
  const auto drive = [&](VXEncoder encoder) {
    return converted(text, size, place, [&](const uint8_t* in, uint8_t* out, int64_t* written) {
      return ConvertFromUTF32(in, n, out, room, written, encoder, order.reader);
    });
  };
  const auto run = [&](const Transcoders* variant) {
    return converted(text, size, place, [&](const uint8_t* in, uint8_t* out, int64_t* written) {
      const Converted c = (variant->*form.to.*order.from)(in, n / 4, out, room);
      *written = c.count;
      return c.status;
    });
  };
  const Result expected = drive(form.encode_step);
  return drive(form.encoder) == expected &&
         (form.to == nullptr || order.from == nullptr ||
          (run(&generic_transcoders) == expected && run(best_variant()) == expected));
}

struct Read {
  uint32_t code_point;
  int64_t consumed;
  VXStatus status;
  bool operator==(const Read&) const = default;
};
Read read_by(VXDecoder decoder, const uint8_t* at, int64_t remaining) {
  Read r{0xDEADBEEF, -99, 0};
  r.status = decoder(at, remaining, &r.code_point, &r.consumed);
  return r;
}

// In every room, and back; then all scalar values by the drivers.
TEST(Drivers, EveryCodePointThroughEveryPairAndBack) {
  GuardedBuffer<uint8_t> memory(64);
  for (const Form& form : forms) {
    std::string all, spelled;
    for (uint32_t c = 0; c < 0x110000; ++c) {
      const std::string expected = form.spelled(c);
      const int64_t n = length_of(expected);
      for (int64_t room = c % 64 == 0 ? -1 : n - 1; room <= n; ++room) {
        const bool fits = room == n || n == form.shortest;
        const std::string untouched(static_cast<size_t>(fits ? n : std::max<int64_t>(room, 0)), '?');
        uint8_t* const out = memory.copy(bytes(untouched), untouched.size());
        int64_t written = -1;
        ASSERT_EQ(form.encoder(c, out, room, &written), fits ? 0 : VX_E_ROOM) << c;
        ASSERT_TRUE(written == (fits ? n : 0) &&
                    std::string(out, out + untouched.size()) == (fits ? expected : untouched));
      }
      if (form.decoder == nullptr) continue;
      const Read back = read_by(form.decoder, memory.copy(bytes(expected), expected.size()), n);
      if (U_IS_SURROGATE(c) && form.shortest == 2) {
        ASSERT_EQ(back, (Read{0xFFFD, 2, U16_IS_LEAD(c) ? VX_E_INCOMPLETE : VX_E_SEQUENCE})) << c;
      } else {
        ASSERT_EQ(back, (Read{c, n, 0})) << c;
      }
      if (U_IS_SURROGATE(c)) continue;
      all += utf32_of<little>(c);
      spelled += expected;
    }
    if (form.decoder == nullptr) continue;
    std::string made(spelled.size(), 0), back(all.size(), 0);
    int64_t written = 0;
    const auto data = [](std::string& text) { return reinterpret_cast<uint8_t*>(text.data()); };
    EXPECT_EQ(
        ConvertFromUTF32(bytes(all), length_of(all), data(made), length_of(made), &written, form.encoder, Byte2DWord),
        0u);
    EXPECT_TRUE(written == length_of(made) && made == spelled);
    EXPECT_EQ(
        ConvertToUTF32(bytes(made), written, data(back), length_of(back), &written, form.decoder, COPY_UTF32_SWAP), 0u);
    EXPECT_TRUE(written == length_of(back) && back == all);
    const auto* const units = reinterpret_cast<const VXChar*>(all.data());
    EXPECT_TRUE(form.shortest != 1 || GET_UTF8_LEN_FROM_VXCHAR(units, length_of(all) / 4) == length_of(spelled));
  }
}

// All 2^32 in the long run; otherwise all that begin with a surrogate, and one in 64 of the others. Those without a
// fault go through the bodies in one text, and those with one, or a part of them, amid others.
TEST(Drivers, EveryPairOfUtf16Units) {
  for (uint32_t first = 0; first < 0x10000; ++first) {
    if (!visited(first) || (!is_long_run() && !U16_IS_SURROGATE(first) && first % 64 != 0)) continue;
    std::string faultless[2];  // little-endian, big-endian
    for (uint32_t second = 0; second < 0x10000; ++second) {
      const char a = static_cast<char>(first), b = static_cast<char>(first >> 8), c = static_cast<char>(second),
                 d = static_cast<char>(second >> 8);
      const char orders_of_bytes[2][4] = {{a, b, c, d}, {b, a, d, c}};
      const bool is_pair = U16_IS_LEAD(first) && U16_IS_TRAIL(second);
      const bool has_fault = !is_pair && (U16_IS_SURROGATE(first) || U16_IS_SURROGATE(second));
      const Read expected = is_pair ? Read{static_cast<uint32_t>(U16_GET_SUPPLEMENTARY(first, second)), 4, 0}
                            : U16_IS_LEAD(first)  ? Read{0xFFFD, 4, VX_E_SEQUENCE}
                            : U16_IS_TRAIL(first) ? Read{0xFFFD, 2, VX_E_SEQUENCE}
                                                  : Read{first, 2, 0};
      for (size_t i = 0; i < 2; ++i) {
        const Form& form = forms[1 + i];
        const std::string_view text(orders_of_bytes[i], 4);
        ASSERT_EQ(read_by(form.decoder, bytes(text), 4), expected) << std::hex << first << ' ' << second;
        if (!has_fault) faultless[i] += text;
        if (has_fault && (first + second) % (is_long_run() ? 1 : 61) == 0) {
          std::string amid(80, 'a');
          for (size_t unit = 0; unit < 80; unit += 2) amid[unit + 1 - i] = 0;
          amid.replace(size_t{2} * ((first * 7 + second) % 39), 4, text);
          ASSERT_TRUE(to_utf32_is_as_stepped(form, orders[0], amid, 160)) << std::hex << first << ' ' << second;
        }
        if (faultless[i].size() < 8192 && second != 0xFFFF) continue;
        ASSERT_TRUE(to_utf32_is_as_stepped(form, orders[0], faultless[i], 2 * faultless[i].size()))
            << std::hex << first;
        faultless[i].clear();
      }
    }
  }
}

// What the contract says of a lead and the bytes behind it, from the code points' ranges and not from tables.
Read utf8_by_contract(const uint8_t* text, int64_t remaining, int64_t readable) {
  const uint8_t lead = text[0];
  const int length = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF8 ? 4 : lead < 0xFC ? 5 : 6;
  const bool begins = lead < 0x80 || (lead > 0xC1 && lead < 0xF5);
  if (begins && remaining < length) return {0xFFFD, remaining, VX_E_INCOMPLETE};
  if (begins) {
    uint32_t value = length == 1 ? lead : lead % (1u << (7 - length));
    for (int i = 1; i < length; ++i) value = value * 64 + text[i] % 64;
    return {value, length, 0};
  }
  int64_t n = 1;
  while (n < length && n < readable && text[n] / 64 == 2) ++n;
  return {0xFFFD, n, VX_E_SEQUENCE};
}

/// UTF8_UTF16 knows one status. Beyond U+10FFFF, too: a high surrogate that counts on.
bool utf16_is_as_contract(const uint8_t* text, int64_t n, const Read& expected) {
  const uint32_t c = expected.code_point;
  uint16_t units[2] = {0xAAAA, 0xAAAA};
  int64_t consumed = -1;
  return UTF8_UTF16(text, n, units, &consumed) == (expected.status == 0 ? 0 : VX_E_SEQUENCE) &&
         consumed == expected.consumed && units[0] == (c < 0x10000 ? c : 0xD800 + (c - 0x10000) / 0x400) &&
         units[1] == (c < 0x10000 ? 0xAAAA : 0xDC00 + c % 0x400);
}

/// The lead is held against neither the length nor, for F4, the second byte.
bool is_judged_as_contract(const uint8_t* b, int64_t n) {
  int64_t whole = 1, good = -1;
  while (whole < n && b[whole] / 64 == 2) ++whole;
  const bool lead = b[0] < 0x80 || (b[0] > 0xC1 && b[0] < 0xF5);
  const bool overlong = n > 1 && ((b[0] == 0xE0 && b[1] < 0xA0) || (b[0] == 0xF0 && b[1] < 0x90));
  const bool surrogate = n > 1 && b[0] == 0xED && b[1] > 0x9F;
  return isLegalUTF8(b, n, &good) == (whole == n && lead && !overlong && !surrogate) && good == whole;
}

TEST(Coders, EveryString) {
  expect_of_every_string(0, [turn = size_t{0}](const uint8_t* text, int64_t n) mutable {
    const Read expected = utf8_by_contract(text, n, n);
    const auto inside = Utf8Text::decode(text, n);
    uint8_t continued[8];  // by itself the decoder counts on past what remains
    std::fill(std::copy_n(text, n, continued), std::end(continued), uint8_t{0x80});
    if (Read{inside.code_point, inside.consumed, inside.status} != expected || !is_judged_as_contract(text, n) ||
        !utf16_is_as_contract(text, n, expected) ||
        read_by(UTF8_UTF32, continued, n) != utf8_by_contract(continued, n, 8))
      return false;
    if (n == 4 && text[0] < 0xC0) return true;  // amid others a character and a string of three bytes
    std::string amid(100, 'a');
    amid.replace(++turn % 67, static_cast<size_t>(n), reinterpret_cast<const char*>(text), static_cast<size_t>(n));
    return to_utf32_is_as_stepped(utf8_form, orders[0], amid, 400);
  });
}

TEST(Coders, EndsOfInputAndCodePointsPastTheEnd) {
  static const struct {
    VXDecoder decoder;
    std::string_view text;
    uint32_t code_point;
  } texts[] = {{UTF8_UTF32, "\xF4\xBF\xBF\xBF", 0x13FFFF},
               {UTF16_UTF32, "\xD8\x01\xDC\x02"sv, 0x10402},
               {UTF16_UTF32_SWAP, "\x01\xD8\x02\xDC"sv, 0x10402},
               {COPY_UTF32b, "\xFF\xFE\xFD\xFC", 0xFFFEFDFC},
               {COPY_UTF32b_SWAP, "\xFC\xFD\xFE\xFF", 0xFFFEFDFC}};
  GuardedBuffer<uint8_t> memory(4);
  for (const auto& t : texts) {
    for (int64_t n = -1; n <= 4; ++n) {
      const int64_t there = std::max<int64_t>(n, 0);
      const Read expected = n == 4 ? Read{t.code_point, 4, 0} : Read{0xFFFD, there, VX_E_INCOMPLETE};
      EXPECT_EQ(read_by(t.decoder, memory.copy(bytes(t.text), static_cast<size_t>(there)), n), expected) << n;
    }
  }
  static const struct {
    VXEncoder encoder;
    uint32_t code_point;
    std::string_view text;
  } past[] = {{UTF32_UTF8, 0x110000, "\xF4\x90\x80\x80"},
              {UTF32_UTF8, 0xFFFFFFFF, "\xEF\xBF\xBF\xBF"},  // F0 + 3FFF, of which one byte is kept
              {COPY_UTF32, 0x12345678, "\x12\x34\x56\x78"},
              {COPY_UTF32_SWAP, 0x12345678, "\x78\x56\x34\x12"}};
  for (const auto& p : past) {
    int64_t written = -1;
    uint8_t* const out = memory.at(4);
    EXPECT_EQ(p.encoder(p.code_point, out, 4, &written), 0u);
    EXPECT_EQ(std::string(out, out + written), p.text);
  }
  int64_t good = 0;
  for (const int64_t n : {-1, 0, 5}) EXPECT_TRUE(isLegalUTF8(bytes("\xFF"), n, &good) == 1 && good == n) << n;
}

TEST(Coders, BytesAndUnitsAtAnyAlignment) {
  const uint8_t text[] = {0, 0x12, 0x34, 0x56, 0x78, 0x9A};
  EXPECT_EQ(Byte2DWord(text + 1), 0x78563412u);
  EXPECT_EQ(Byte2DWord_swap(text + 1), 0x12345678u);
  EXPECT_EQ(Byte2Word(text + 1), 0x3412);
  EXPECT_EQ(Byte2Word_swap(text + 1), 0x1234);
  EXPECT_EQ(BYTE_UTF16_UTF32(text + 1), 0x1234);
  EXPECT_EQ(BYTE_UTF16_UTF32_SWAP(text + 1), 0x3412);
  for (const int64_t n : {-5, 0, 3, 6}) {
    for (int64_t room = -1; room <= 7; ++room) {
      const int64_t there = std::max<int64_t>(n, 0), count = std::clamp<int64_t>(room, 0, there);
      uint8_t out[8] = {};
      int64_t copied = -1;
      EXPECT_EQ(COPY_UTF(text, n, out, room, &copied), count < there ? VX_E_ROOM : 0) << n << ' ' << room;
      EXPECT_TRUE(copied == count && std::equal(text, text + count, out) && out[count] == 0) << n << ' ' << room;
    }
  }
  EXPECT_EQ(GET_UTF8_LEN_FROM_VXCHAR(nullptr, 0) + GET_UTF8_LEN_FROM_VXCHAR(nullptr, -3), 0);
}

/// Texts of characters that take 1, 2, 3 or 4 bytes of UTF-8, of ASCII with few and with many others, of all; then of
/// nothing but the first or the last character of a length.
std::vector<std::string> texts_in(const Form& form, size_t length, std::mt19937& random) {
  static constexpr uint32_t first[] = {0, 0x80, 0x800, 0x10000}, last[] = {0x7F, 0x7FF, 0xFFFF, 0x10FFFF};
  std::vector<std::string> texts(15);
  for (size_t kind = 0; kind < texts.size(); ++kind) {
    while (texts[kind].size() < length) {
      const bool ascii = (kind == 4 && random() % 50 != 0) || (kind == 5 && random() % 6 != 0);
      const size_t units = ascii ? 0 : kind < 4 ? kind : random() % 4;
      const uint32_t c = first[units] + static_cast<uint32_t>(random()) % (last[units] - first[units] + 1);
      texts[kind] += form.spelled(kind < 7 ? c : kind < 11 ? first[kind - 7] : last[kind - 11]);
    }
    texts[kind].resize(length);
  }
  return texts;
}

// Every length, and in each a fault at every place, each time with other text, room and alignment.
TEST(Drivers, EveryVariantGivesWhatStepsGive) {
  static constexpr char faults[] = "\0A\x80\xBF\xC1\xC3\xD8\xDC\xE2\xF1\xF5\xFF";
  static constexpr uint32_t special[] = {0x7F,     0x80,     0x7FF,    0x800,      0xD800,     0xFFFF,     0x10000,
                                         0x10FFFF, 0x110000, 0x1FFFFF, 0x3FFFFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
  constexpr size_t longest = 300;
  std::mt19937 random(20240307);
  const auto below = [&](size_t end) { return random() % end; };
  const auto away = [&] { return below(3) != 0 ? 0 : below(64); };
  const auto sweep = [&](const Form& source, size_t unit, auto fault, auto holds) {
    const auto texts = texts_in(source, unit * longest, random);
    for (size_t count = 0; count <= longest; ++count) {
      for (size_t turn = 0, rounds = is_long_run() ? 64 : 2; turn < rounds * (count + 1); ++turn) {
        std::string text = texts[below(texts.size())].substr(0, unit * count + (count < longest ? below(unit) : 0));
        if (turn / rounds < count) fault().copy(&text[turn / rounds * unit], unit);
        const size_t room = below(3) != 0 ? 4 * count : below(4 * count + 4);
        const Place place = {below(2) != 0 ? Guard::behind : Guard::before, away(), away()};
        ASSERT_TRUE(holds(text, room, place)) << testing::PrintToString(text) << " room " << room;
      }
    }
  };
  const auto byte = [&] { return std::string(1, faults[below(std::size(faults) - 1)]); };
  for (const Form& form : two_way) {
    sweep(form, 1, byte, [&](std::string_view text, size_t room, const Place& place) {
      return to_utf32_is_as_stepped(form, orders[below(3)], text, room, place);
    });
  }
  for (const bool swapped : {false, true}) {
    const Form& source = forms[3 + swapped];
    const auto character = [&] { return source.spelled(special[below(std::size(special))]); };
    sweep(source, 4, character, [&](std::string_view text, size_t room, const Place& place) {
      const Order& order = orders[swapped ? 1 : 2 * below(2)];
      static GuardedBuffer<VXChar> memory(longest + 64);
      std::vector<VXChar> units;
      int64_t length = 0;
      for (size_t at = 0; at + 4 <= text.size(); at += 4) {
        units.push_back(order.reader(bytes(text) + at));
        length += Utf8Text::units(units.back());
      }
      const VXChar* const in = memory.copy(units.data(), units.size(), place.guard, place.away_in);
      const auto count = static_cast<int64_t>(units.size());
      return from_utf32_is_as_stepped(forms[below(std::size(forms))], order, text, room, place) &&
             generic_transcoders.utf8_length(in, count) == length && best_variant()->utf8_length(in, count) == length &&
             GET_UTF8_LEN_FROM_VXCHAR(in, count) == length;
    });
  }
}

TEST(Drivers, WhereTheyStop) {
  struct Row {
    std::string_view text;
    int64_t length, room, written;
    VXStatus status;
  };
  static const Row to[] = {
      {"AB", 2, 7, 4, 0},  // the output is full: no failure
      {"AB", 2, 3, 0, 0},
      {"AB", -1, 8, 0, 0},
      {"AB", 2, -8, 0, 0},
      {"A\xC3", 2, 8, 4, VX_E_INCOMPLETE},
      {"A\x80Z", 3, 12, 4, VX_E_SEQUENCE},
      {"A\x80Z", 3, 4, 4, 0},  // full before the fault
  };
  static const Row from[] = {
      {"A\0\0"sv, 3, 4, 0, 0},
      {"A\0\0\0B\0\0"sv, 7, 4, 1, 0},
      {"A\0\0\0B\0\0\0"sv, 8, 1, 1, 0},  // the room is used up: no failure
      {"A\0\0\0\xE9\0\0\0"sv, 8, 2, 1, VX_E_ROOM},
      {"A\0\0\0"sv, 4, 0, 0, 0},
      {"A\0\0\0"sv, 4, -4, 0, 0},
  };
  uint8_t out[16];
  int64_t written;
  const auto check = [&](const auto& rows, auto drive, auto first, auto second) {
    for (const auto& c : rows) {
      EXPECT_EQ(drive(bytes(c.text), c.length, out, c.room, &written, first, second), c.status) << c.text;
      EXPECT_EQ(written, c.written) << c.text << c.room;
      EXPECT_EQ(drive(bytes(c.text), c.length, out, c.room, nullptr, first, second), c.status) << c.text;
    }
    for (int missing = 0; missing < 4; ++missing) {
      written = -1;
      EXPECT_EQ(drive(missing == 0 ? nullptr : bytes("A\0\0"), 4, missing == 1 ? nullptr : out, 4, &written,
                      missing == 2 ? nullptr : first, missing == 3 ? nullptr : second),
                VX_E_NULL);
      EXPECT_EQ(written, 0);
    }
  };
  check(to, ConvertToUTF32, &UTF8_UTF32, &COPY_UTF32);
  check(from, ConvertFromUTF32, &UTF32_UTF8, &Byte2DWord);
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
  const auto drive = [](auto convert, size_t room, auto first, auto second) {
    return converted("\0\0\0\0\0\0\0\0"sv, room, {Guard::behind, 0, 0},
                     [&](const uint8_t* in, uint8_t* out, int64_t* written) {
                       return convert(in, 8, out, static_cast<int64_t>(room), written, first, second);
                     });
  };
  for (const int64_t reported : {INT64_MIN, int64_t{-1}, int64_t{0}, int64_t{1}, int64_t{5}, INT64_MAX}) {
    report = reported;
    EXPECT_EQ(drive(ConvertToUTF32, 32, decoder, &COPY_UTF32).written, reported <= 1 ? 32 : reported == 5 ? 8 : 4);
    EXPECT_EQ(drive(ConvertToUTF32, 30, &UTF8_UTF32, encoder).written, 28);
    const Result refused = drive(ConvertToUTF32, 32, &UTF8_UTF32, refusing);
    EXPECT_TRUE(refused.status == 0x803fe999u && refused.written == 0);
    EXPECT_EQ(drive(ConvertFromUTF32, 9, encoder, &Byte2DWord).written,
              reported < 0 ? 0 : std::min<int64_t>(9, reported > 9 ? 9 : 2 * reported));
  }
}

}  // namespace
