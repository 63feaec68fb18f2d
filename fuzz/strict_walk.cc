// One pattern against one text, both from the input, by both readers: the flavours agree, the quick steps agree with
// the plain ones, and what was read is read again after it was written by the pattern.
#include "fuzz/parse_property.h"

namespace {

using namespace vxfuzz;

/// Where somebody watches, no step is taken the quick way.
struct Watcher : vxnls::NoTrace {
  static constexpr bool watches = true;
};

/// The quick walk, and the reason of the plain one.
template <class Reader, class In>
vxnls::Walked walk(Locale& locale, const NLSName& pattern, In in, vxnls::NLSParseFields& fields) {
  vxnls::NoTrace nobody;
  Watcher watcher;
  vxnls::NLSParseFields plain_fields;
  const vxnls::Walked quick = vxnls::walk<Reader>(locale.get(), in, vxnls::view(pattern), fields, nobody);
  const vxnls::Walked plain = vxnls::walk<Reader>(locale.get(), in, vxnls::view(pattern), plain_fields, watcher);
  require((quick.reason == VX_REASON_NONE) == (plain.reason == VX_REASON_NONE));
  if (plain.reason == VX_REASON_NONE) {
    require(quick.left == plain.left && std::memcmp(&fields, &plain_fields, sizeof fields) == 0);
  }
  return plain;
}

template <class Reader>
void walk_both(Locale& locale, const NLSName& pattern, const Texts& text, bool lenient) {
  vxnls::NLSParseFields a, b;
  const auto units = vxnls::input_of<vxnls::Utf32Text>(text.units.data(), text.length());
  const auto bytes = vxnls::input_of<vxnls::Utf8Text>(text.bytes.data(), text.byte_length());
  const vxnls::Walked of_units = walk<Reader>(locale, pattern, units, a);
  const vxnls::Walked of_bytes = walk<Reader>(locale, pattern, bytes, b);
  require(of_units.reason == of_bytes.reason);
  if (of_units.reason != VX_REASON_NONE) return;
  text.require_same(text.length() - of_units.left, text.byte_length() - of_bytes.left);
  require(std::memcmp(&a, &b, sizeof a) == 0);
  if (lenient && TwoWay(vxnls::view(pattern), lenient).marker &&
      vxnls::apply_marker(locale.data, vxnls::view(pattern), a) != VX_REASON_NONE) {
    return;
  }
  require_read_back(locale, pattern, lenient,
                    {a.year, a.month, a.day, a.hour, a.minute, a.second, a.milliseconds, a.offset, a.marker, a.quarter,
                     a.week, a.zone != nullptr});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in{data, size};
  const uint8_t options = in.byte();
  NLSName pattern{};
  Locale locale(in, options, {&pattern});
  const Texts text(in);
  walk_both<vxnls::StrictReader>(locale, pattern, text, false);
  walk_both<vxnls::LenientReader>(locale, pattern, text, true);
  return 0;
}
