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
};

std::span<const Coding> codings();
/// By name, upper and lower case and "-" and "_" being the same: utf-8, UTF_16LE.
const Coding* find_coding(std::string_view name);

}  // namespace vxcli

#endif
