#include "cli/coding.h"

#include <algorithm>

#include "cli/table/splitter.h"
#include "vxnls/utf8.h"

namespace vxcli {

namespace {

constexpr uint32_t last_code_point = 0x10FFFF;

bool is_surrogate(uint32_t c) { return c >= 0xD800 && c <= 0xDFFF; }
bool is_high_surrogate(uint32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool is_continuation(uint8_t byte) { return (byte & 0xC0) == 0x80; }

Step character(uint32_t code_point, size_t bytes) { return {Step::Outcome::character, code_point, bytes}; }
Step fault(size_t bytes) { return {Step::Outcome::fault, 0, bytes}; }
constexpr Step wanting{Step::Outcome::wanting, 0, 0};

/// A UTF-8 sequence by its lead byte; surrogates pass where `surrogates` allows them.
Step decode_utf8_sequence(std::span<const uint8_t> bytes, bool surrogates) {
  if (bytes[0] < 0x80) return character(bytes[0], 1);
  if (bytes[0] < 0xC2 || bytes[0] > 0xF4) return fault(1);
  const auto length = static_cast<size_t>(utf8_len(bytes.data()));
  // What is there must be the beginning of a character, or it is a fault however much follows.
  const auto second_is_right = [&] {
    const uint8_t second = bytes[1];
    if (!is_continuation(second)) return false;
    switch (bytes[0]) {
      case 0xE0: return second >= 0xA0;
      case 0xED: return surrogates || second < 0xA0;
      case 0xF0: return second >= 0x90;
      case 0xF4: return second < 0x90;
      default: return true;
    }
  };
  size_t right = 1;
  while (right < length && right < bytes.size() && (right == 1 ? second_is_right() : is_continuation(bytes[right])))
    ++right;
  if (right == length) {
    uint32_t code_point = 0;
    int64_t consumed = 0;
    UTF8_UTF32(bytes.data(), static_cast<int64_t>(length), &code_point, &consumed);
    return character(code_point, length);
  }
  return right == bytes.size() ? wanting : fault(right);
}

Step decode_utf8(std::span<const uint8_t> bytes) { return decode_utf8_sequence(bytes, false); }

Step decode_modified_utf8(std::span<const uint8_t> bytes) {
  if (bytes[0] == 0xC0) {  // NUL
    if (bytes.size() == 1) return wanting;
    return bytes[1] == 0x80 ? character(0, 2) : fault(1);
  }
  if (bytes[0] >= 0xF0) return fault(1);  // supplementary characters are pairs of surrogates
  const Step first = decode_utf8_sequence(bytes, true);
  if (first.outcome != Step::Outcome::character || !is_surrogate(first.code_point)) return first;
  if (!is_high_surrogate(first.code_point)) return fault(first.bytes);
  const auto behind = bytes.subspan(first.bytes);
  if (behind.empty()) return wanting;
  const Step second = decode_utf8_sequence(behind, true);
  if (second.outcome == Step::Outcome::wanting && behind[0] == 0xED) return wanting;
  const bool low = second.outcome == Step::Outcome::character && is_surrogate(second.code_point) &&
                   !is_high_surrogate(second.code_point);
  if (!low) return fault(first.bytes);
  return character(0x10000 + ((first.code_point & 0x3FF) << 10 | (second.code_point & 0x3FF)),
                   first.bytes + second.bytes);
}

template <VXDecoder decoder>
Step decode_utf16(std::span<const uint8_t> bytes) {
  if (bytes.size() < 2) return wanting;
  uint32_t code_point = 0;
  int64_t consumed = 0;
  const VXStatus status = decoder(bytes.data(), static_cast<int64_t>(bytes.size()), &code_point, &consumed);
  if (status == 0) return character(code_point, static_cast<size_t>(consumed));
  return status == VX_E_INCOMPLETE ? wanting : fault(2);
}

template <VXDecoder decoder>
Step decode_utf32(std::span<const uint8_t> bytes) {
  if (bytes.size() < 4) return wanting;
  uint32_t code_point = 0;
  int64_t consumed = 0;
  decoder(bytes.data(), 4, &code_point, &consumed);
  return is_surrogate(code_point) || code_point > last_code_point ? fault(4) : character(code_point, 4);
}

template <VXEncoder encoder>
void encode(uint32_t code_point, std::string& out) {
  uint8_t bytes[4];
  int64_t written = 0;
  encoder(code_point, bytes, sizeof bytes, &written);
  out.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(written));
}

void encode_modified_utf8(uint32_t code_point, std::string& out) {
  constexpr uint32_t nul_as_two_bytes = 1;
  uint8_t plain[4];
  uint8_t bytes[6];
  int64_t length = 0;
  int64_t written = 0;
  UTF32_UTF8(code_point, plain, sizeof plain, &length);
  vxzsu8Encode(plain, length, bytes, sizeof bytes, &written, nul_as_two_bytes);
  out.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(written));
}

size_t convert(std::span<const uint8_t> bytes, uint32_t* units, VXDecoder decoder) {
  int64_t written = 0;
  ConvertToUTF32(bytes.data(), static_cast<int64_t>(bytes.size()), reinterpret_cast<uint8_t*>(units),
                 static_cast<int64_t>(bytes.size() * sizeof *units), &written, decoder, COPY_UTF32_SWAP);
  return static_cast<size_t>(written) / sizeof *units;
}

Coding::Run run_of_utf8(std::span<const uint8_t> bytes, uint32_t* units) {
  const size_t sound =
      std::min(table::invalid_utf8({reinterpret_cast<const char*>(bytes.data()), bytes.size()}), bytes.size());
  return {convert(bytes.first(sound), units, UTF8_UTF32), sound};
}

template <VXDecoder decoder>
Coding::Run run_of_utf16(std::span<const uint8_t> bytes, uint32_t* units) {
  const size_t characters = convert(bytes, units, decoder);
  const auto pairs =
      static_cast<size_t>(std::count_if(units, units + characters, [](uint32_t unit) { return unit > 0xFFFF; }));
  return {characters, 2 * (characters + pairs)};
}

template <VXDecoder decoder>
Coding::Run run_of_utf32(std::span<const uint8_t> bytes, uint32_t* units) {
  // In small pieces: what stands behind a fault is decoded in vain.
  constexpr size_t piece = 4096;
  const size_t all = convert(bytes.first(std::min(piece, bytes.size())), units, decoder);
  const auto end =
      std::find_if(units, units + all, [](uint32_t unit) { return is_surrogate(unit) || unit > last_code_point; });
  const auto characters = static_cast<size_t>(end - units);
  return {characters, 4 * characters};
}

constexpr Coding codings_table[] = {
    {"utf-8", decode_utf8, encode<UTF32_UTF8>, run_of_utf8, UTF32_UTF8},
    {"modified-utf-8", decode_modified_utf8, encode_modified_utf8},
    {"utf-16le", decode_utf16<UTF16_UTF32_SWAP>, encode<UTF32_UTF16s>, run_of_utf16<UTF16_UTF32_SWAP>, UTF32_UTF16s},
    {"utf-16be", decode_utf16<UTF16_UTF32>, encode<UTF32_UTF16s_SWAP>, run_of_utf16<UTF16_UTF32>, UTF32_UTF16s_SWAP},
    {"utf-32le", decode_utf32<COPY_UTF32b_SWAP>, encode<COPY_UTF32_SWAP>, run_of_utf32<COPY_UTF32b_SWAP>,
     COPY_UTF32_SWAP},
    {"utf-32be", decode_utf32<COPY_UTF32b>, encode<COPY_UTF32>, run_of_utf32<COPY_UTF32b>, COPY_UTF32},
};

char folded(char c) { return c == '_' ? '-' : c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

void encode_run(const Coding& coding, std::span<const uint32_t> characters, std::string& out) {
  const size_t before = out.size();
  out.resize(before + characters.size_bytes());
  int64_t written = 0;
  ConvertFromUTF32(reinterpret_cast<const uint8_t*>(characters.data()), static_cast<int64_t>(characters.size_bytes()),
                   reinterpret_cast<uint8_t*>(out.data() + before), static_cast<int64_t>(characters.size_bytes()),
                   &written, coding.encoder, Byte2DWord);
  out.resize(before + static_cast<size_t>(written));
}

std::span<const Coding> codings() { return codings_table; }

const Coding* find_coding(std::string_view name) {
  const auto found = std::find_if(std::begin(codings_table), std::end(codings_table), [&](const Coding& coding) {
    return std::equal(name.begin(), name.end(), coding.name.begin(), coding.name.end(),
                      [](char a, char b) { return folded(a) == b; });
  });
  return found == std::end(codings_table) ? nullptr : found;
}

}  // namespace vxcli
