// The codings that `vxnls transcode` knows: one strict decoding step and one encoding step each.
#ifndef VXNLS_CLI_CODING_H
#define VXNLS_CLI_CODING_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "vxnls/unicode.h"

namespace vxcli {

/// One character of the input.
struct Step {
  enum class Outcome {
    character,  // `code_point` is one
    fault,      // the bytes are no character
    wanting     // the bytes given end within a character
  };
  Outcome outcome;
  uint32_t code_point;
  size_t bytes;
};

struct Coding {
  std::string_view name;
  /// The character at the start of `bytes`, which are not empty. Decodes well-formed text only: no surrogates, nothing
  /// above U+10FFFF, no overlong forms.
  Step (*decode)(std::span<const uint8_t> bytes);
  /// Appends a character.
  void (*encode)(uint32_t code_point, std::string& out);
  /// Many at a time: decodes the characters before the first one that decode() would not give, into as many units as
  /// there are bytes at most, and says how many there are and how many bytes they take. Null: there is no such way.
  struct Run {
    size_t characters;
    size_t bytes;
  };
  Run (*decode_run)(std::span<const uint8_t> bytes, uint32_t* units) = nullptr;
  /// Encodes one character as encode() does. Null: characters go one by one.
  VXEncoder encoder = nullptr;
};

/// Appends many characters; `coding` has an encoder.
void encode_run(const Coding& coding, std::span<const uint32_t> characters, std::string& out);

std::span<const Coding> codings();
/// By name, upper and lower case and "-" and "_" being the same: utf-8, UTF_16LE.
const Coding* find_coding(std::string_view name);

}  // namespace vxcli

#endif
