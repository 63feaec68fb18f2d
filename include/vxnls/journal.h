/// Messages and statuses on their way to the journals of the host, and small utilities.
///
/// The four helpers package their variable arguments and hand everything to the object's own operation, whose result
/// they return. For a null object they do nothing and return 0. What the words a1 to a5 and the variable arguments mean
/// is the host's affair.
#ifndef VXNLS_JOURNAL_H
#define VXNLS_JOURNAL_H

#include "vxnls/host.h"

#ifdef __cplusplus
extern "C" {
#endif

/// A message into a buffer: the object's message_to_buffer.
VX_API VXStatus vxlMessageToBuf(VXJournal*, uint64_t a1, uint64_t a2, uint64_t a3, uint64_t a4, uint64_t a5, ...);

/// A message, NUL-terminated, into the journal at a level: the object's message_to_journal.
VX_API VXStatus vxlMessageToJnl(VXJournal*, uint32_t level, const VXChar* message, uint64_t extra, ...);

/// The text of a status into a buffer: the object's status_to_buffer. The status is widened with its sign.
VX_API VXStatus vxlStatusToBuf(VXJournal*, int32_t status, uint64_t a1, uint64_t a2, uint64_t a3, ...);

/// A status into the journal at a level: the object's status_to_journal. The status is widened with its sign.
VX_API VXStatus vxlStatusToJnl(VXJournal*, uint32_t level, int32_t status, ...);

/// Reverses the n bytes of a buffer in place; below 2, or with a null buffer, nothing is done. Returns 0.
VX_API VXStatus vxzbytrv(uint8_t* buffer, int64_t n);

/// Reverses the n units of a buffer in place; below 2, or with a null buffer, nothing is done.
VX_API void vxztchrv(VXChar* buffer, int64_t n);

/// The conversion table of the stored kernel handle; null when there is no handle or it has no such table.
VX_API VXBDConv* vxGetBDConv(void);

#ifdef __cplusplus
}
#endif

#endif
