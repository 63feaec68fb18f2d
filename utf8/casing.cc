// Upper and lower case of UTF-8 text: one walk over the characters, and three receivers of what it finds.
#include "utf8/casing.h"

#include <string.h>

#include "unicode/coders.h"
#include "utf8/steps.h"
#include "vxnls/utf8.h"

using namespace vxnls;

namespace {

constexpr bool is_one_byte(uint8_t byte) { return byte < 0xC0; }

/// How many one-byte characters stand together here; stray continuation bytes are such.
int64_t one_byte_run(ByteView text) {
  int64_t run = 0;
  for (uint64_t eight; text.length - run >= 8; run += 8) {
    memcpy(&eight, text.bytes + run, 8);
    if ((eight & eight << 1 & UINT64_C(0x8080808080808080)) != 0) break;  // two high bits: a lead
  }
  while (run < text.length && is_one_byte(text.bytes[run])) ++run;
  return run;
}

/// Tells the receiver of every run of one-byte characters, and of every other character mapped or unchanged, until it
/// has no room. A character is as long as its lead announces, as far as there are bytes.
template <class Case, class Receiver>
bool walk(ByteView text, Receiver& receiver) {
  const CaseMapping<Case> mapping(CaseUse::casing);
  for (int64_t at = 0; at < text.length;) {
    const ByteView rest = {text.bytes + at, text.length - at};
    if (is_one_byte(*rest.bytes)) {
      const int64_t run = one_byte_run(rest);
      if (!receiver.template ascii<Case>({rest.bytes, run})) return false;
      at += run;
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

/// Writes into the text that is being read. Never past its end: what lies there is dropped, and a mapped character that
/// is cut off by the end is left out.
class InPlace {
 public:
  explicit InPlace(uint8_t* text, int64_t length) : at_(text), end_(text + length) {}

  template <class Case>
  bool ascii(ByteView run) {
    const int64_t count = std::min(run.length, end_ - at_);
    if (at_ == run.bytes) {
      for (int64_t i = 0; i < count; ++i) at_[i] = Case::ascii(at_[i]);
    } else {
      // Byte by byte on purpose: once a character has grown, this reads what it has just written.
      for (int64_t i = 0; i < count; ++i) at_[i] = Case::ascii(run.bytes[i]);
    }
    at_ += count;
    return true;
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
  void pad() { memset(at_, ' ', static_cast<size_t>(end_ - at_)); }

 private:
  uint8_t *at_, *end_;
};

class Measure {
 public:
  template <class Case>
  bool ascii(ByteView run) {
    return unchanged(run);
  }
  bool unchanged(ByteView character) {
    length_ += character.length;
    return true;
  }
  bool mapped(VXChar c) {
    length_ += Utf8Text::units(c);
    return true;
  }
  int64_t length() const { return length_; }

 private:
  int64_t length_ = 0;
};

class Write {
 public:
  Write(uint8_t* out, int64_t room) : out_(out), room_(room) {}

  template <class Case>
  bool ascii(ByteView run) {
    const int64_t count = std::min(run.length, room_ - length_);
    for (int64_t i = 0; i < count; ++i) out_[length_ + i] = Case::ascii(run.bytes[i]);
    length_ += count;
    return count == run.length;
  }
  bool unchanged(ByteView character) {
    if (character.length > room_ - length_) return false;
    memcpy(out_ + length_, character.bytes, static_cast<size_t>(character.length));
    length_ += character.length;
    return true;
  }
  bool mapped(VXChar c) {
    const Encoded e = Utf8Sink::encode(c, out_ + length_, room_ - length_);
    length_ += e.written;
    return e.status == 0;
  }
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
