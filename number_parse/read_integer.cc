// The integer readers: one template over the type and the text flavour, exported under sixteen names.
#include "number_parse/digit_blocks.h"
#include "number_parse/integer_text.h"
#include "vxnls/number_parse.h"

namespace vxnls {

namespace {

template <class Code, class Integer>
[[gnu::noinline]] VXStatus read_long(const VXLocale* locale, const typename Code::Unit* text, int64_t length,
                                     uint32_t flags, Integer* value, uint64_t* consumed) {
  const Marks<Code> marks(conventions_of(locale, flags));
  const auto integer = IntegerRecogniser<Integer, Code>(marks, flags, text, length).recognise();
  *value = integer.value();
  *consumed = static_cast<uint64_t>(integer.consumed);
  return status_of(integer.fault.reason);
}

/// The short road, for texts that are nothing but a number; false, with nothing written, for all others.
template <class Unit, class Integer>
bool read_short(VXChar separator, const Unit* text, int64_t length, Integer* value) {
  constexpr bool is_signed = std::is_signed_v<Integer>;
  constexpr int64_t most_digits = sizeof(Integer) == 4 ? 10 : 19;
  const int64_t negative = is_signed && *text == '-' ? 1 : 0;
  const Unit* const digits = text + negative;
  const int64_t count = length - negative;
  const bool separated = count > 4 && separator < 0x80 && digits[count - 4] == separator;
  const auto [magnitude, is_number] = separated ? read_blocks<true, most_digits>(digits, count, separator)
                                                : read_blocks<false, most_digits>(digits, count, separator);
  const uint64_t most = std::numeric_limits<Integer>::max() + static_cast<uint64_t>(negative);
  if (!is_number || magnitude > most) return false;
  *value = static_cast<Integer>((magnitude ^ (0 - static_cast<uint64_t>(negative))) + static_cast<uint64_t>(negative));
  return true;
}

template <class Code, class Integer>
VXStatus read_integer(const VXLocale* locale, const typename Code::Unit* text, int64_t length, uint32_t flags,
                      Integer* value, uint64_t* consumed) {
  if (length < 0) return VX_E_LENGTH;
  if (value == nullptr || consumed == nullptr) return VX_E_NULL;
  *value = 0;
  *consumed = 0;
  if (text == nullptr && length > 0) return VX_E_NULL;
  const bool hexadecimal = std::is_unsigned_v<Integer> && (flags & NLS_READ_HEXADECIMAL) != 0;
  if (length > 0 && !hexadecimal && locale != nullptr && locale->localeData != nullptr) {
    const VXChar separator = locale->localeData->groupSeparator;
    if (is_no_digit_or_sign(separator) && read_short(separator, text, length, value)) {
      *consumed = static_cast<uint64_t>(length);
      return 0;
    }
  }
  return read_long<Code>(locale, text, length, flags, value, consumed);
}

}  // namespace

}  // namespace vxnls

#define VX_READ(name, type)                                                                            \
  VXStatus name(VXLocale* locale, const VXChar* text, int64_t length, uint32_t flags, type* value,     \
                uint64_t* consumed) {                                                                  \
    return vxnls::read_integer<vxnls::Utf32Code>(locale, text, length, flags, value, consumed);        \
  }                                                                                                    \
  VXStatus name##U(VXLocale* locale, const uint8_t* text, int64_t length, uint32_t flags, type* value, \
                   uint64_t* consumed) {                                                               \
    return vxnls::read_integer<vxnls::Utf8Code>(locale, text, length, flags, value, consumed);         \
  }
VX_READ(NLSBufToInt, int32_t)
VX_READ(NLSBufToIntfast, int32_t)
VX_READ(NLSBufToUInt, uint32_t)
VX_READ(NLSBufToUintfast, uint32_t)
VX_READ(NLSBufToLong, int64_t)
VX_READ(NLSBufToIntmax, int64_t)
VX_READ(NLSBufToULong, uint64_t)
VX_READ(NLSBufToUintmax, uint64_t)
