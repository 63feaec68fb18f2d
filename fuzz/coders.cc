// The drivers: pairs that are known by their addresses give what one step a character gives, in every variant, nothing
// outside the buffers is touched, and what was converted comes back. Counts of whole blocks equal those of steps.
#include "fuzz/input.h"
#include "unicode/text_flavour.h"
#include "unicode/transcode.h"
#include "utf8/runs.h"
#include "vxnls/unicode.h"
#include "vxnls/utf8.h"

namespace {

using vxfuzz::require;
using Bytes = std::vector<uint8_t>;

// The same rules at addresses that the drivers do not know, held to their bounds.
template <auto decoder>
VXStatus decode_unknown(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed) {
  return decoder(in, remaining, code_point, consumed);
}
template <>
VXStatus decode_unknown<&UTF8_UTF32>(const uint8_t* in, int64_t remaining, uint32_t* code_point, int64_t* consumed) {
  const auto c = vxnls::Utf8Text::decode(in, remaining);
  *code_point = c.code_point;
  *consumed = c.consumed;
  return c.status;
}
template <auto encoder, int64_t shortest>
VXStatus encode_unknown(uint32_t code_point, uint8_t* out, int64_t room, int64_t* written) {
  *written = 0;
  return room < shortest ? VX_E_ROOM : encoder(code_point, out, room, written);
}

struct ToUtf32 {
  VXDecoder decoder, unknown;
  VXEncoder encoder;
};
constexpr VXEncoder machine = &COPY_UTF32_SWAP, network = &COPY_UTF32;
const ToUtf32 to_utf32[] = {
    {&UTF8_UTF32, &decode_unknown<&UTF8_UTF32>, machine},
    {&UTF8_UTF32, &decode_unknown<&UTF8_UTF32>, network},
    {&UTF16_UTF32, &decode_unknown<&UTF16_UTF32>, machine},
    {&UTF16_UTF32, &decode_unknown<&UTF16_UTF32>, network},
    {&UTF16_UTF32_SWAP, &decode_unknown<&UTF16_UTF32_SWAP>, machine},
    {&UTF16_UTF32_SWAP, &decode_unknown<&UTF16_UTF32_SWAP>, network},
    {&COPY_UTF32b, &decode_unknown<&COPY_UTF32b>, machine},
    {&COPY_UTF32b_SWAP, &decode_unknown<&COPY_UTF32b_SWAP>, network},
};

struct FromUtf32 {
  VXEncoder encoder, unknown;
};
const FromUtf32 from_utf32[] = {
    {&UTF32_UTF8, &encode_unknown<&UTF32_UTF8, 1>},
    {&UTF32_UTF16s, &encode_unknown<&UTF32_UTF16s, 2>},
    {&UTF32_UTF16s_SWAP, &encode_unknown<&UTF32_UTF16s_SWAP, 2>},
    {&UTF32_UTF16, &encode_unknown<&UTF32_UTF16, 2>},
    {&UTF32_UTF16_SWAP, &encode_unknown<&UTF32_UTF16_SWAP, 2>},
    {&UTF16_UTF8, &encode_unknown<&UTF16_UTF8, 1>},
    {&COPY_UTF32, &encode_unknown<&COPY_UTF32, 4>},
    {&COPY_UTF32_SWAP, &encode_unknown<&COPY_UTF32_SWAP, 4>},
};

struct Result {
  VXStatus status = 0;
  int64_t written = -1;
  Bytes bytes;
  explicit Result(size_t room) : bytes(room, 0xAA) {}
  bool operator==(const Result&) const = default;
};

int64_t size(const Bytes& bytes) { return static_cast<int64_t>(bytes.size()); }

Result convert_to(const Bytes& text, size_t room, VXDecoder decoder, VXEncoder encoder) {
  Result r(room);
  r.status = ConvertToUTF32(text.data(), size(text), r.bytes.data(), size(r.bytes), &r.written, decoder, encoder);
  return r;
}

Result convert_from(const Bytes& text, size_t room, VXEncoder encoder, VXReader reader) {
  Result r(room);
  r.status = ConvertFromUTF32(text.data(), size(text), r.bytes.data(), size(r.bytes), &r.written, encoder, reader);
  return r;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t length) {
  if (length < 3) return 0;
  const unsigned choice = data[0];
  const size_t less = data[1] + 256u * (data[2] % 4);  // room taken away
  Bytes text;                                          // long enough for whole blocks
  for (unsigned times = data[2] / 4 % 16 + 1; times > 0; --times) text.insert(text.end(), data + 3, data + length);

  const ToUtf32& to = to_utf32[choice % std::size(to_utf32)];
  const size_t wide = 4 * text.size() - std::min(less, 4 * text.size());
  const Result units = convert_to(text, wide, to.decoder, to.encoder);
  require(units == convert_to(text, wide, to.unknown, to.encoder));

  const FromUtf32& from = from_utf32[choice / 8 % std::size(from_utf32)];
  const VXReader reader = choice % 2 != 0 ? &Byte2DWord : &Byte2DWord_swap;
  const size_t narrow = text.size() - std::min(less, text.size());
  require(convert_from(text, narrow, from.encoder, reader) == convert_from(text, narrow, from.unknown, reader));

  Result generic(wide);
  if (to.decoder == &UTF8_UTF32) {
    const auto body =
        to.encoder == machine ? vxnls::generic_transcoders.from_utf8.little : vxnls::generic_transcoders.from_utf8.big;
    const vxnls::Converted done = body(text.data(), size(text), generic.bytes.data(), static_cast<int64_t>(wide / 4));
    generic.status = done.status;
    generic.written = 4 * done.count;
    require(generic == units);
  }
  const vxnls::ByteView whole = vxnls::bytes_of(text.data(), size(text));
  require(vxzsu8NumChars(whole.bytes, whole.length) == vxnls::count_by_runs(whole, vxnls::generic_utf8_runs));
  std::vector<VXChar> characters(static_cast<size_t>(units.written) / sizeof(VXChar));
  if (!characters.empty()) std::memcpy(characters.data(), units.bytes.data(), characters.size() * sizeof(VXChar));
  const auto count = static_cast<int64_t>(characters.size());
  require(vxnls::transcoders().utf8_length(characters.data(), count) ==
          vxnls::generic_transcoders.utf8_length(characters.data(), count));

  // UTF-8 that is well-formed throughout comes back as it was.
  const Bytes all(text);
  const Result decoded = convert_to(all, 4 * all.size(), &UTF8_UTF32, machine);
  if (decoded.status != 0) return 0;
  bool well_formed = true;
  for (int64_t at = 0, n = 0; at < size(all); at += n) {
    uint32_t c;
    int64_t good;
    require(UTF8_UTF32(all.data() + at, size(all) - at, &c, &n) == 0);
    well_formed = well_formed && isLegalUTF8(all.data() + at, n, &good) == 1;
  }
  const Bytes used(decoded.bytes.begin(), decoded.bytes.begin() + decoded.written);
  const Result back = convert_from(used, all.size(), &UTF32_UTF8, &Byte2DWord);
  require(!well_formed || (back.status == 0 && back.bytes == all));
  return 0;
}
