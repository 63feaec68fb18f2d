// The library's own formatters of doubles, behind the forwarding to the host's conversion table.
#ifndef VXNLS_NUMBER_FORMAT_DOUBLE_FORMAT_H
#define VXNLS_NUMBER_FORMAT_DOUBLE_FORMAT_H

#include "vxnls/number_format.h"

namespace vxnls {

VXStatus NLSDoubleFormatWithExOptsLegacy(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags,
                                         VXChar* buffer, int64_t size, int64_t* length, const NLSDoubleExOpts* extended,
                                         double value);
VXStatus NLSDoubleFormatUWithExOptsLegacy(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags,
                                          uint8_t* buffer, int64_t size, int64_t* length,
                                          const NLSDoubleExOpts* extended, double value);

}  // namespace vxnls

#endif
