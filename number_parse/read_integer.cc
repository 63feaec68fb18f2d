// The integer readers: one template over the type and the text flavour, exported under sixteen names.
#include "number_parse/integer_text.h"
#include "vxnls/number_parse.h"

namespace vxnls {

namespace {

template <class Code, class Integer>
VXStatus read_integer(const VXLocale* locale, const typename Code::Unit* text, int64_t length, uint32_t flags,
                      Integer* value, uint64_t* consumed) {
  if (length < 0) return VX_E_LENGTH;
  if (value == nullptr || consumed == nullptr) return VX_E_NULL;
  *value = 0;
  *consumed = 0;
  if (text == nullptr && length > 0) return VX_E_NULL;
  const Marks<Code> marks(conventions_of(locale, flags));
  const auto integer = IntegerRecogniser<Integer, Code>(marks, flags, text, length).recognise();
  *value = integer.value();
  *consumed = static_cast<uint64_t>(integer.consumed);
  return status_of(integer.fault.reason);
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
