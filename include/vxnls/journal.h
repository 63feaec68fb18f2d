// Forwarding of messages and statuses to the journals of the host, and small utilities.
#ifndef VXNLS_JOURNAL_H
#define VXNLS_JOURNAL_H

#include "vxnls/host.h"

#ifdef __cplusplus
extern "C" {
#endif

VX_API VXStatus vxlMessageToBuf(VXJournal*, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5, ...);
VX_API VXStatus vxlMessageToJnl(VXJournal*, uint32_t level, const VXChar* message, uint64_t extra, ...);
VX_API VXStatus vxlStatusToBuf(VXJournal*, int32_t status, uint64_t a1, uint64_t a2, uint64_t a3, ...);
VX_API VXStatus vxlStatusToJnl(VXJournal*, uint32_t level, int32_t status, ...);
VX_API VXStatus vxzbytrv(uint8_t* buffer, int64_t n);                     /* returns 0 */
VX_API void     vxztchrv(VXChar* buffer, int64_t n);
VX_API VXBDConv* vxGetBDConv(void);                                       /* null when not offered */

#ifdef __cplusplus
}
#endif

#endif
