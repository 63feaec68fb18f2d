// Upper and lower case of UTF-8 text: one walk over the characters, and three receivers of what it finds.
#include "utf8/casing.h"

#include <string.h>

#include <bit>

#include "unicode/coders.h"
#include "utf8/steps.h"
#include "vxnls/utf8.h"

using namespace vxnls;

namespace {

constexpr bool is_one_byte(uint8_t byte) { return byte < 0xC0; }

/// The leads among eight bytes: their top bits. Two high bits make one.
constexpr uint64_t leads_of(uint64_t bytes) { return bytes & bytes << 1 & UINT64_C(0x8080808080808080); }

uint64_t load_eight(const uint8_t* at) {
  uint64_t eight;
  memcpy(&eight, at, 8);
  return eight;
}
void store_eight(uint8_t* at, uint64_t eight) { memcpy(at, &eight, 8); }

/// How many one-byte characters stand together here; stray continuation bytes are such.
int64_t one_byte_run(ByteView text) {
  int64_t run = 0;
  while (text.length - run >= 8 && leads_of(load_eight(text.bytes + run)) == 0) run += 8;
  while (run < text.length && is_one_byte(text.bytes[run])) ++run;
  return run;
}

/// Writes the one-byte characters at the front of `in`, mapped, and gives their count, at most `most`. `out` may be
/// `in`.
template <class Case>
int64_t map_run(const uint8_t* in, int64_t most, uint8_t* out) {
  constexpr int64_t worth_it = 16;
  int64_t at = 0;
  while (most - at >= 8) {
    const uint64_t bytes = load_eight(in + at), leads = leads_of(bytes);
    if (leads != 0) {  // what stands behind the run is written back as it was
      const int length = std::countr_zero(leads) / 8;
      const uint64_t kept = ~UINT64_C(0) << 8 * length;
      store_eight(out + at, (Case::eight(bytes) & ~kept) | (load_eight(out + at) & kept));
      return at + length;
    }
    store_eight(out + at, Case::eight(bytes));
    at += 8;
    if (at == worth_it) at += (utf8_runs().*Case::run)(in + at, most - at, out + at);
  }
  for (; at < most && is_one_byte(in[at]); ++at) out[at] = Case::ascii(in[at]);
  return at;
}

/// Copies one character of up to 6 bytes.
void copy_character(uint8_t* out, ByteView character) {
  for (int64_t i = 0; i < character.length && i < longest_sequence; ++i) out[i] = character.bytes[i];
}

/// Tells the receiver of every run of one-byte characters, and of every other character mapped or unchanged, until it
/// has no room. A character is as long as its lead announces, as far as there are bytes.
template <class Case, class Receiver>
bool walk(ByteView text, Receiver& receiver) {
  const CaseMapping<Case> mapping(CaseUse::casing);
  for (int64_t at = 0; at < text.length;) {
    // No branch on whether a run begins here: that is hard to foresee.
    at += receiver.template ascii<Case>({text.bytes + at, text.length - at});
    if (at == text.length) break;
    const ByteView rest = {text.bytes + at, text.length - at};
    if (is_one_byte(*rest.bytes)) {  // no room for it, or it has just been written there in place
      if (receiver.full()) return false;
      continue;
    }
    const int64_t length = TrustingStep::length(rest.bytes, rest.length);
    const VXChar c = Utf8Text::decode(rest.bytes, rest.length).code_point;
    const VXChar mapped = mapping(c);
    if (!(mapped == c ? receiver.unchanged({rest.bytes, length}) : receiver.mapped(mapped))) return false;
    at += length;
  }
  return true;
}

// The receivers. ascii() takes the one-byte characters at the front of a text and gives how many; fewer than there are
// for want of room.

/// Writes into the text that is being read. Never past its end: what lies there is dropped, and a mapped character that
/// is cut off by the end is left out.
class InPlace {
 public:
  explicit InPlace(uint8_t* text, int64_t length) : at_(text), end_(text + length) {}

  template <class Case>
  int64_t ascii(ByteView rest) {
    const int64_t room = end_ - at_;
    if (at_ == rest.bytes) {
      const int64_t run = map_run<Case>(rest.bytes, rest.length, at_);
      at_ += run;
      return run;
    }
    // Byte by byte on purpose: once a character has grown, this reads what it has just written.
    const int64_t run = one_byte_run(rest);
    for (int64_t i = 0; i < std::min(run, room); ++i) at_[i] = Case::ascii(rest.bytes[i]);
    at_ += std::min(run, room);
    return run;
  }
  // Never behind the character that is read: what follows a grown one has become continuation bytes.
  bool unchanged(ByteView character) {
    if (at_ != character.bytes) memmove(at_, character.bytes, static_cast<size_t>(character.length));
    at_ += character.length;
    return true;
  }
  // Kept on purpose: a character that grows overwrites the input behind it.
  bool mapped(VXChar c) {
    at_ += Utf8Sink::encode(c, at_, end_ - at_).written;
    return true;
  }
  static constexpr bool full() { return false; }
  void pad() { memset(at_, ' ', static_cast<size_t>(end_ - at_)); }

 private:
  uint8_t *at_, *end_;
};

class Measure {
 public:
  template <class Case>
  int64_t ascii(ByteView rest) {
    const int64_t run = one_byte_run(rest);
    length_ += run;
    return run;
  }
  bool unchanged(ByteView character) {
    length_ += character.length;
    return true;
  }
  bool mapped(VXChar c) {
    length_ += Utf8Text::units(c);
    return true;
  }
  static constexpr bool full() { return false; }  // GCOV_EXCL_LINE: ascii() leaves none
  int64_t length() const { return length_; }

 private:
  int64_t length_ = 0;
};

class Write {
 public:
  Write(uint8_t* out, int64_t room) : out_(out), room_(room) {}

  template <class Case>
  int64_t ascii(ByteView rest) {
    const int64_t run = map_run<Case>(rest.bytes, std::min(rest.length, room_ - length_), out_ + length_);
    length_ += run;
    return run;
  }
  bool unchanged(ByteView character) {
    if (character.length > room_ - length_) return false;
    copy_character(out_ + length_, character);
    length_ += character.length;
    return true;
  }
  bool mapped(VXChar c) {
    const Encoded e = Utf8Sink::encode(c, out_ + length_, room_ - length_);
    length_ += e.written;
    return e.status == 0;
  }
  bool full() const { return length_ == room_; }
  int64_t length() const { return length_; }

 private:
  uint8_t* out_;
  int64_t room_;
  int64_t length_ = 0;
};

template <class Case>
void change_in_place(uint8_t* text, int64_t n) {
  const ByteView whole = bytes_of(text, n);
  if (whole.length == 0) return;
  InPlace receiver(text, whole.length);
  walk<Case>(whole, receiver);
  receiver.pad();
}

template <class Case>
VXStatus change(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written) {
  const auto into = [&](auto receiver) -> VXStatus {
    const bool fits = walk<Case>(bytes_of(in, length), receiver);
    if (written != nullptr) *written = receiver.length();
    return fits ? 0 : VX_E_ROOM;
  };
  return out == nullptr || room <= 0 ? into(Measure()) : into(Write(out, room));
}

}  // namespace

void vxzsu8Lower(uint8_t* text, int64_t n) { change_in_place<LowerCase>(text, n); }
void vxzsu8Upper(uint8_t* text, int64_t n) { change_in_place<UpperCase>(text, n); }

VXStatus vxzsu8Lower2(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written) {
  return change<LowerCase>(in, length, out, room, written);
}
VXStatus vxzsu8Upper2(const uint8_t* in, int64_t length, uint8_t* out, int64_t room, int64_t* written) {
  return change<UpperCase>(in, length, out, room, written);
}
