// Coders by themselves over whole domains, and the drivers, whose bodies do what single steps do.
#include <gtest/gtest.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <random>

#include "tests/unicode/texts.h"
#include "unicode/coders.h"
#include "unicode/processor.h"

namespace {

using namespace vxnls;
using namespace vxtest;
using namespace std::string_view_literals;
using enum std::endian;

template <std::endian order>
std::string ordered(uint32_t value, unsigned bits) {
  std::string text;
  for (unsigned i = 0; i < bits; i += 8) text += static_cast<char>(value >> (order == big ? bits - 8 - i : i));
  return text;
}
template <std::endian order>
std::string utf16_of(uint32_t c) {
  return c < 0x10000 ? ordered<order>(c, 16) : ordered<order>(U16_LEAD(c), 16) + ordered<order>(U16_TRAIL(c), 16);
}
template <std::endian order>
std::string utf32_of(uint32_t c) {
  return ordered<order>(c, 32);
}

// The rule, one step a character, behind addresses that the drivers do not know. The last three have no way back, no
// body of their own, and know the low 16 bits alone: kept on purpose.
struct Form {
  std::string (*spelled)(uint32_t);
  int64_t shortest;  // the room of so many bytes is not looked at
  VXEncoder encoder, encode_step;
  VXDecoder decoder = nullptr, decode_step = nullptr;
};
// NOLINTNEXTLINE(cert-err58-cpp): addresses of functions throw nothing
const Form forms[] = {
    {utf8_of, 1, UTF32_UTF8, encode_one<Utf8Sink>, UTF8_UTF32, decode_one<Utf8Source>},
    {utf16_of<little>, 2, UTF32_UTF16s, encode_one<Utf16Sink<little>>, UTF16_UTF32_SWAP,
     decode_one<Utf16Source<little>>},
    {utf16_of<big>, 2, UTF32_UTF16s_SWAP, encode_one<Utf16Sink<big>>, UTF16_UTF32, decode_one<Utf16Source<big>>},
    {utf32_of<little>, 0, COPY_UTF32_SWAP, encode_one<Utf32Sink<little>>, COPY_UTF32b_SWAP,
     decode_one<Utf32Source<little>>},
    {utf32_of<big>, 0, COPY_UTF32, encode_one<Utf32Sink<big>>, COPY_UTF32b, decode_one<Utf32Source<big>>},
    {[](uint32_t c) { return utf8_of(c & 0xFFFF); }, 1, UTF16_UTF8, encode_one<Utf8UnitSink>},
    {[](uint32_t c) { return utf16_of<little>(c & 0xFFFF); }, 2, UTF32_UTF16, encode_one<Utf16UnitSink<little>>},
    {[](uint32_t c) { return utf16_of<big>(c & 0xFFFF); }, 2, UTF32_UTF16_SWAP, encode_one<Utf16UnitSink<big>>},
};

// The sides of UTF-32; a caller's own coder has no body.
const struct Order {
  VXEncoder encoder;
  VXReader reader;
} orders[] = {
    {COPY_UTF32_SWAP, Byte2DWord}, {COPY_UTF32, Byte2DWord_swap}, {encode_one<Utf32Sink<little>>, load32<little>}};

/// What a driver returns, tells, and leaves in the room.
struct Result {
  VXStatus status = 0;
  int64_t written = -1;
  std::string room;
  bool operator==(const Result&) const = default;
};
template <class Driver, class First, class Second>
Result driven(Driver driver, First first, Second second, std::string_view text, size_t room, const Place& place = {}) {
  static GuardedBuffer<uint8_t> input(1 << 23), output(1 << 23);
  uint8_t* const out = output.at(room, place.guard, place.away_out);
  std::fill_n(out, room, uint8_t{0xAA});
  Result r;
  r.status = driver(input.copy(bytes(text), text.size(), place.guard, place.away_in), length_of(text), out,
                    static_cast<int64_t>(room), &r.written, first, second);
  r.room.assign(out, out + room);
  return r;
}

/// The driver gives with the body of a known pair what it gives with steps.
bool to_utf32_is_as_stepped(const Form& form, const Order& order, std::string_view text, size_t room,
                            const Place& place = {}) {
  return driven(ConvertToUTF32, form.decoder, order.encoder, text, room, place) ==
         driven(ConvertToUTF32, form.decode_step, order.encoder, text, room, place);
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
      for (int64_t there = c % 64 == 0 ? -1 : n; there < n; ++there) {
        const auto size = static_cast<size_t>(std::max<int64_t>(there, 0));
        ASSERT_EQ(read_by(form.decoder, memory.copy(bytes(expected), size), there),
                  (Read{0xFFFD, static_cast<int64_t>(size), VX_E_INCOMPLETE}));
      }
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
    EXPECT_TRUE(driven(ConvertFromUTF32, form.encoder, Byte2DWord, all, spelled.size()) ==
                (Result{0, length_of(spelled), spelled}));
    EXPECT_TRUE(driven(ConvertToUTF32, form.decoder, COPY_UTF32_SWAP, spelled, all.size()) ==
                (Result{0, length_of(all), all}));
    const auto* const units = reinterpret_cast<const VXChar*>(all.data());
    EXPECT_TRUE(form.shortest != 1 || GET_UTF8_LEN_FROM_VXCHAR(units, length_of(all) / 4) == length_of(spelled));
  }
}

// All 2^32 in the long run; otherwise all that begin with a surrogate, and one in 64 of the others. Amid others through
// the bodies, too: those with a fault in the long run, and one in 61 of all.
TEST(Drivers, EveryPairOfUtf16Units) {
  for (uint32_t first = 0; first < 0x10000; ++first) {
    if (!visited(first) || (!is_long_run() && !U16_IS_SURROGATE(first) && first % 64 != 0)) continue;
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
        if ((first + second) % (has_fault && is_long_run() ? 1 : 61) != 0) continue;
        std::string amid;
        while (amid.size() < 80) amid += form.spelled('a');
        amid.replace(size_t{2} * ((first * 7 + second) % 39), 4, text);
        ASSERT_TRUE(to_utf32_is_as_stepped(form, orders[0], amid, 160)) << std::hex << first << ' ' << second;
      }
    }
  }
}

// What the contract says of a lead and the bytes behind it.
Read utf8_by_contract(std::string_view readable, int64_t remaining) {
  const auto lead = static_cast<uint8_t>(readable[0]);
  const auto length = static_cast<int64_t>(announced(readable[0]));
  if (!begins(readable[0])) return {0xFFFD, length_of(next(readable, Step::checking)), VX_E_SEQUENCE};
  if (remaining < length) return {0xFFFD, remaining, VX_E_INCOMPLETE};
  uint32_t value = length == 1 ? lead : lead % (1u << (7 - length));
  for (const char byte : readable.substr(1, static_cast<size_t>(length - 1))) {
    value = value * 64 + static_cast<uint8_t>(byte) % 64;
  }
  return {value, length, 0};
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
  expect_of_every_string(0, [turn = size_t{0}](const uint8_t* in, int64_t n) mutable {
    const std::string text(in, in + n), continued = text + std::string(8 - text.size(), '\x80');
    const Read expected = utf8_by_contract(text, n);
    const auto inside = Utf8Text::decode(in, n);
    if (Read{inside.code_point, inside.consumed, inside.status} != expected || !is_judged_as_contract(in, n) ||
        !utf16_is_as_contract(in, n, expected) ||
        // by itself the decoder counts on past what remains
        read_by(UTF8_UTF32, bytes(continued), n) != utf8_by_contract(continued, n))
      return false;
    if (n == 4 && in[0] < 0xC0) return true;  // amid others a character and a string of three bytes
    std::string amid(100, 'a');
    amid.replace(++turn % 67, text.size(), text);
    return to_utf32_is_as_stepped(forms[0], orders[0], amid, 400);
  });
}

TEST(Coders, PastTheEndAndPlainBytes) {
  static const struct {
    VXEncoder encoder;
    VXDecoder decoder;
    uint32_t code_point, back;
    std::string_view text;
  } rows[] = {{UTF32_UTF8, UTF8_UTF32, 0x110000, 0x110000, "\xF4\x90\x80\x80"},
              {UTF32_UTF8, UTF8_UTF32, 0xFFFFFFFF, 0xFFFF, "\xEF\xBF\xBF\xBF"},  // one byte of F0 + 3FFF is kept
              {COPY_UTF32, COPY_UTF32b, 0xF2345678, 0xF2345678, "\xF2\x34\x56\x78"}};
  for (const auto& row : rows) {
    uint8_t out[4];
    int64_t written = -1;
    EXPECT_EQ(row.encoder(row.code_point, out, 4, &written), 0u);
    EXPECT_EQ(std::string(out, out + written), row.text);
    EXPECT_EQ(read_by(row.decoder, out, 4).code_point, row.back);
  }
  int64_t good = 0;
  for (const int64_t n : {-1, 0, 5}) EXPECT_TRUE(isLegalUTF8(bytes("\xFF"), n, &good) == 1 && good == n) << n;
  const uint8_t text[] = {0, 0x12, 0x34, 0x56, 0x78, 0x9A};
  EXPECT_TRUE(Byte2DWord(text + 1) == 0x78563412 && Byte2DWord_swap(text + 1) == 0x12345678);
  EXPECT_TRUE(Byte2Word(text + 1) == 0x3412 && Byte2Word_swap(text + 1) == 0x1234);
  EXPECT_TRUE(BYTE_UTF16_UTF32(text + 1) == 0x1234 && BYTE_UTF16_UTF32_SWAP(text + 1) == 0x3412);
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

// Each time in another room. Told to, the C library hides AVX2: the same tests then run with the generic bodies.
TEST(Drivers, EveryVariantGivesWhatStepsGive) {
  const char* const told = std::getenv("GLIBC_TUNABLES");
  EXPECT_FALSE(told != nullptr && std::string_view(told).ends_with("-AVX2") && processor_has_avx2());
  static constexpr char faults[] = "\0A\x80\xBF\xC1\xC3\xD8\xDC\xE2\xF1\xF5\xFF";
  static constexpr uint32_t special[] = {0x7F,     0x80,     0x7FF,    0x800,      0xD800,     0xFFFF,     0x10000,
                                         0x10FFFF, 0x110000, 0x1FFFFF, 0x3FFFFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
  std::mt19937 random(20240307);
  const auto below = [&](size_t end) { return random() % end; };
  const auto room_for = [&](size_t characters) { return below(3) != 0 ? 4 * characters : below(4 * characters + 4); };
  const auto byte = [&] { return std::string(1, faults[below(std::size(faults) - 1)]); };
  for (const Form& form : forms) {
    if (form.decoder == nullptr) continue;
    expect_of_every_place(random, 1, form.spelled, byte, [&](const std::string& text, const Place& place) {
      return to_utf32_is_as_stepped(form, orders[below(3)], text, room_for(text.size()), place);
    });
  }
  for (const bool swapped : {false, true}) {
    const Form& source = forms[3 + swapped];
    const auto character = [&] { return source.spelled(special[below(std::size(special))]); };
    expect_of_every_place(random, 4, source.spelled, character, [&](const std::string& text, const Place& place) {
      const Order& order = orders[swapped ? 1 : 2 * below(2)];
      static GuardedBuffer<VXChar> memory(400);
      std::vector<VXChar> units;
      int64_t length = 0;
      for (size_t at = 0; at + 4 <= text.size(); at += 4) {
        units.push_back(order.reader(bytes(text) + at));
        length += Utf8Text::units(units.back());
      }
      const VXChar* const in = memory.copy(units.data(), units.size(), place.guard, place.away_in);
      const Form& form = forms[below(std::size(forms))];
      const size_t room = room_for(units.size());
      return driven(ConvertFromUTF32, form.encoder, order.reader, text, room, place) ==
                 driven(ConvertFromUTF32, form.encode_step, order.reader, text, room, place) &&
             GET_UTF8_LEN_FROM_VXCHAR(in, static_cast<int64_t>(units.size())) == length;
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
      {"AB", -1, 8, 0, 0},
      {"AB", 2, -8, 0, 0},
      {"A\xC3", 2, 8, 4, VX_E_INCOMPLETE},
      {"A\x80Z", 3, 4, 4, 0},  // full before the fault
      {"A\x80Z", 3, 12, 4, VX_E_SEQUENCE},
  };
  static const Row from[] = {
      {"A\0\0"sv, 3, 4, 0, 0},
      {"A\0\0\0B\0\0"sv, 7, 4, 1, 0},
      {"A\0\0\0B\0\0\0"sv, 8, 1, 1, 0},  // the room is used up: no failure
      {"A\0\0\0\xE9\0\0\0"sv, 8, 2, 1, VX_E_ROOM},
      {"A\0\0\0"sv, 4, -4, 0, 0},
  };
  uint8_t out[16];
  const auto check = [&](const auto& rows, auto drive, auto first, auto second) {
    int64_t written = -1;
    for (const Row& row : rows) {
      EXPECT_EQ(drive(bytes(row.text), row.length, out, row.room, &written, first, second), row.status) << row.text;
      EXPECT_EQ(written, row.written) << row.text << row.room;
    }
    EXPECT_EQ(drive(bytes("A\0\0"), 4, out, 4, nullptr, first, second), 0u);
    EXPECT_EQ(drive(nullptr, 4, out, 4, &written, first, second), VX_E_NULL);
    EXPECT_EQ(drive(bytes("A\0\0"), 4, nullptr, 4, &written, first, second), VX_E_NULL);
    EXPECT_EQ(drive(bytes("A\0\0"), 4, out, 4, nullptr, nullptr, second), VX_E_NULL);
    EXPECT_EQ(drive(bytes("A\0\0"), 4, out, 4, nullptr, first, nullptr), VX_E_NULL);
    EXPECT_EQ(written, 0);
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
    return report == 5 ? 0x803fe999u : 0;
  };
  const std::string_view text = "\0\0\0\0\0\0\0\0"sv;
  const Place edge = {Guard::behind, 0, 0};
  for (const int64_t reported : {INT64_MIN, int64_t{-1}, int64_t{0}, int64_t{1}, int64_t{5}, INT64_MAX}) {
    report = reported;
    EXPECT_EQ(driven(ConvertToUTF32, decoder, &COPY_UTF32, text, 32, edge).written, reported <= 1   ? 32
                                                                                    : reported == 5 ? 8
                                                                                                    : 4);
    const Result to = driven(ConvertToUTF32, &UTF8_UTF32, encoder, text, 30, edge);
    EXPECT_TRUE(reported == 5 ? to.status == 0x803fe999u && to.written == 0 : to.written == 28);
    EXPECT_EQ(driven(ConvertFromUTF32, encoder, &Byte2DWord, text, 9, edge).written,
              reported < 0 || reported == 5 ? 0 : std::min<int64_t>(9, reported > 9 ? 9 : 2 * reported));
  }
}

}  // namespace
