// Character classes of one code point.
#ifndef VXNLS_CLASSES_H
#define VXNLS_CLASSES_H

#include "vxnls/types.h"

#ifdef __cplusplus
extern "C" {
#endif

VX_API int32_t vxnlsisdigit(uint32_t), vxnlsislower(uint32_t), vxnlsisupper(uint32_t), vxnlsisalpha(uint32_t),
               vxnlsisspace(uint32_t), vxnlsisalnum(uint32_t), vxnlsisprint(uint32_t), vxnlsisxdigit(uint32_t),
               vxnlsispunct(uint32_t), vxnlsisgraph(uint32_t), vxnlsiscntrl(uint32_t);

#ifdef __cplusplus
}
#endif

#endif
