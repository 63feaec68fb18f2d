#include "number_parse/read_double.h"

#include "vxnls/number_parse.h"

using namespace vxnls;

VXStatus NLSBufToDoubleWithOpts(VXLocale* locale, const VXChar* text, int32_t length, uint32_t flags, double* value,
                                int64_t* consumed) {
  return read_double(Marks<Utf32Code>(conventions_of(locale, flags)), text, length, value, consumed);
}

VXStatus NLSBufToDouble(VXLocale* locale, const VXChar* text, int32_t length, double* value, int64_t* consumed) {
  return NLSBufToDoubleWithOpts(locale, text, length, 0, value, consumed);
}

VXStatus NLSBufToDoubleUWithOpts(VXLocale* locale, const uint8_t* text, int32_t length, uint32_t flags, double* value,
                                 int64_t* consumed) {
  return read_double(Marks<Utf8Code>(conventions_of(locale, flags)), text, length, value, consumed);
}

VXStatus NLSBufToDoubleU(VXLocale* locale, const uint8_t* text, int32_t length, double* value, int64_t* consumed) {
  return NLSBufToDoubleUWithOpts(locale, text, length, 0, value, consumed);
}

VXStatus NLSBufToDoubleA(VXLocale* locale, const uint8_t* text, int32_t length, double* value, int64_t* consumed,
                         VXConverter* converter) {
  return read_double(Marks<AsciiCode>(conventions_of(locale, 0), converter), text, length, value, consumed);
}

VXStatus NLSBufToDoubleE(VXLocale* locale, const uint8_t* text, int32_t length, double* value, int64_t* consumed,
                         VXConverter* converter) {
  return read_double(Marks<EbcdicCode>(conventions_of(locale, 0), converter), text, length, value, consumed);
}
