// Modified UTF-8: supplementary characters as two three-byte surrogates, NUL as C0 80 on request.
#include <string.h>

#include "utf8/steps.h"
#include "vxnls/utf8.h"

using namespace vxnls;

namespace {

constexpr uint8_t replacement[] = {0xEF, 0xBF, 0xBD};
constexpr uint8_t one_byte_nul[] = {0};
constexpr uint8_t two_byte_nul[] = {0xC0, 0x80};

constexpr bool two_byte_nul_wanted(uint32_t options) { return (options & 1) != 0; }
/// No supplementary characters; the other bit wins.
constexpr bool basic_plane_only(uint32_t options) { return (options & 5) == 4; }

/// A lead and the continuation bytes that are really behind it.
struct Sequence {
  const uint8_t* bytes;
  int64_t length;

  Sequence(const uint8_t* at, int64_t remaining) : bytes(at), length(CheckingStep::length(at, remaining)) {}
  bool complete() const { return length == _utf8_len[bytes[0]]; }
  bool is_surrogate() const { return length == 3 && bytes[0] == 0xED && bytes[1] >= 0xA0; }
  bool has_valid_lead() const { return valid_1st_utf8[bytes[0]] != 0; }
};

/// Writes whole pieces; one that does not fit is not begun, and stays the last one asked for.
class Output {
 public:
  Output(uint8_t* out, int64_t room) : out_(out), room_(bytes_of(out, room).length) {}

  bool put(const uint8_t* bytes, int64_t count) {
    if (count > room_ - written_) return false;
    memcpy(out_ + written_, bytes, static_cast<size_t>(count));
    written_ += count;
    return true;
  }
  template <size_t N>
  bool put(const uint8_t (&bytes)[N]) {
    return put(bytes, static_cast<int64_t>(N));
  }
  bool put(const Sequence& sequence) { return put(sequence.bytes, sequence.length); }
  bool replace() {
    replaced_ = true;
    return put(replacement);
  }
  int64_t written() const { return written_; }
  bool replaced() const { return replaced_; }

 private:
  uint8_t* out_;
  int64_t room_;
  int64_t written_ = 0;
  bool replaced_ = false;
};

// Encoding
// ---------------------------------------------------------------------------------------------------------

/// Kept on purpose: a plane outside 1 to 16, which an overlong sequence or one above U+10FFFF names, is not refused.
bool put_surrogates(Output& out, const uint8_t* b) {
  const uint32_t plane = (b[0] & 0x07u) << 2 | (b[1] & 0x30u) >> 4;
  const uint8_t pair[] = {0xED,
                          static_cast<uint8_t>(0xA0 | (plane - 1)),
                          static_cast<uint8_t>(0x80 + ((b[1] & 0x0F) << 2 | (b[2] >> 4 & 0x03))),
                          0xED,
                          static_cast<uint8_t>(0xB0 + (b[2] & 0x0F)),
                          b[3]};
  return out.put(pair);
}

struct Encoder {
  Output& out;
  uint32_t options;

  bool take(const Sequence& sequence) {
    const uint8_t lead = sequence.bytes[0];
    if (!sequence.complete() || sequence.is_surrogate()) return out.replace();
    if (sequence.length == 1 && !sequence.has_valid_lead()) return out.replace();
    if (sequence.length == 4 && sequence.has_valid_lead()) {
      return basic_plane_only(options) ? out.replace() : put_surrogates(out, sequence.bytes);
    }
    if (lead == 0 && two_byte_nul_wanted(options)) return out.put(two_byte_nul);
    // Kept on purpose: complete sequences with the leads C0, C1 and F5 to FF pass.
    return out.put(sequence);
  }
  bool finish() { return true; }
};

// Decoding
// ---------------------------------------------------------------------------------------------------------

/// Kept on purpose: that the first is a high and the second a low surrogate is not checked.
bool put_combined(Output& out, const uint8_t* high, const uint8_t* low) {
  const uint32_t plane = (high[1] & 0x0Fu) + 1;
  const uint8_t character[] = {static_cast<uint8_t>(0xF0 | plane >> 2),
                               static_cast<uint8_t>(0x80 | (plane & 3) << 4 | (high[2] & 0x3F) >> 2),
                               static_cast<uint8_t>(0x80 | (high[2] & 3) << 4 | (low[1] & 0x0F)), low[2]};
  return out.put(character);
}

struct Decoder {
  Output& out;
  uint32_t options;
  const uint8_t* pending = nullptr;  // a surrogate that waits for its other half

  bool take(const Sequence& sequence) {
    if (sequence.is_surrogate()) {
      if (pending == nullptr) {
        pending = sequence.bytes;
        return true;
      }
      const uint8_t* const first = pending;
      pending = nullptr;
      return put_combined(out, first, sequence.bytes);
    }
    const bool after_half_a_pair = pending != nullptr;
    if (!finish()) return false;
    if (!sequence.complete()) return out.replace();
    // Kept on purpose: what follows half a pair is copied as it stands, C0 80 and invalid leads included.
    if (after_half_a_pair) return out.put(sequence);
    if (two_byte_nul_wanted(options) && sequence.length == 2 && memcmp(sequence.bytes, two_byte_nul, 2) == 0) {
      return out.put(one_byte_nul);
    }
    return sequence.has_valid_lead() ? out.put(sequence) : out.replace();
  }
  /// A half that is still waiting has lost its partner.
  bool finish() {
    if (pending == nullptr) return true;
    pending = nullptr;
    return out.replace();
  }
};

/// Hands the sequences of the input to `coder` until one does not fit.
template <class Coder>
VXStatus convert(ByteView in, uint8_t* out, int64_t room, int64_t* written, uint32_t options) {
  Output output(out, room);
  Coder coder{output, options};
  bool fits = true;
  for (int64_t at = 0; fits && at < in.length;) {
    const Sequence sequence(in.bytes + at, in.length - at);
    fits = coder.take(sequence);
    at += sequence.length;
  }
  fits = fits && coder.finish();
  if (written != nullptr) *written = output.written();
  return !fits ? VX_E_ROOM : output.replaced() ? VX_E_SEQUENCE : 0;
}

}  // namespace

VXStatus vxzsu8Encode(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written,
                      uint32_t options) {
  return convert<Encoder>(bytes_of(in, length), out, room, written, options);
}

VXStatus vxzsu8Decode(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written,
                      uint32_t options) {
  const ByteView text = bytes_of(in, length);
  if (!basic_plane_only(options)) return convert<Decoder>(text, out, room, written, options);
  const int64_t copied = vxzsu8Copy(in, length, out, room);
  if (written != nullptr) *written = copied;
  return copied < text.length ? VX_E_ROOM : 0;
}
