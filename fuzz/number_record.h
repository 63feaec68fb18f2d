// What the targets of numbers share: an input as a record, as hostile as it comes, and texts in both flavours.
#ifndef VXNLS_FUZZ_NUMBER_RECORD_H
#define VXNLS_FUZZ_NUMBER_RECORD_H

#include "fuzz/input.h"
#include "tests/number_parse/models.h"
#include "tests/support/plain_locale.h"
#include "unicode/text_flavour.h"

namespace vxfuzz {

/// A small count most of the time, and any at all when its first byte says so.
inline int64_t take_length(Input& in) {
  const uint8_t small = in.byte();
  return small < 0xF0 ? small % 64 : in.take<int64_t>();
}

/// A character: a byte, or a unit of 32 bits after 0xFF.
inline VXChar take_char(Input& in) {
  const uint8_t c = in.byte();
  return c == 0xFF ? in.take<VXChar>() : c;
}

/// Sets a name to characters and a length that need not go together.
inline void take_name(Input& in, NLSName& name) {
  name.length = take_length(in);
  const size_t count = in.byte() % 61;
  for (size_t i = 0; i < std::size(name.text); ++i) name.text[i] = i < count ? take_char(in) : U' ';
}

inline void take_number_record(Input& in, VXLocaleData& data) {
  data.decimalPoint = take_char(in);
  data.groupSeparator = take_char(in);
  take_name(in, data.groupingPattern);
}

/// A text and the code points that it spells.
struct Spelled {
  Spelled(const uint8_t* text, int64_t length) {
    for (int64_t at = 0; at < length;) {
      const auto c = vxnls::Utf8Text::decode(text + at, length - at);
      uint8_t again[4];
      is_utf8 = is_utf8 && c.status == 0 && vxnls::Utf8Text::append(c.code_point, again) == c.consumed &&
                std::equal(again, again + c.consumed, text + at);
      is_ascii = is_ascii && c.code_point < 0x80;
      units += static_cast<char32_t>(c.code_point);
      starts.push_back(at);
      at += c.consumed;
    }
    starts.push_back(length);
  }
  int64_t size() const { return std::ssize(units); }
  /// What is read of the units, as of the bytes.
  vxtest::Reading in_bytes(vxtest::Reading reading) const {
    int64_t& consumed = std::get<2>(reading);
    consumed = starts[static_cast<size_t>(consumed)];
    return reading;
  }

  bool is_utf8 = true, is_ascii = true;
  std::u32string units;
  std::vector<int64_t> starts;  // the byte at which each begins, and the end
};

/// What is told of a text is what its reader gave, and its places lie in the text.
inline VXNumberReading require_told(VXLocale* locale, const uint8_t* text, int64_t length, uint32_t kind,
                                    uint32_t flags, const vxtest::Reading& got) {
  VXNumberReading told{};
  vxnlsExplainNumber(locale, text, length, kind, flags, &told);
  require(got == vxtest::Reading(told.status, told.value.unsigned_integer, told.consumed));
  require((told.fault == VX_FAULT_NONE) == (told.status == 0) && told.consumed >= 0 && told.consumed <= length);
  require(told.fault_offset >= 0 && told.fault_length >= 0 && told.fault_offset + told.fault_length <= length);
  return told;
}

}  // namespace vxfuzz

#endif
