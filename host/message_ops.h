// The operations of the extension "vxemsg".
#ifndef VXNLS_HOST_MESSAGE_OPS_H
#define VXNLS_HOST_MESSAGE_OPS_H

#include "vxnls/host.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct VXHostMessageOps {
  VXExtensionOps base; /* destroy */

  /// What a status means, in English: UTF-8, one line without a full stop, valid for good. Null for an unknown status.
  const char* (*text)(VXExtension*, VXStatus status);
} VXHostMessageOps;

#ifdef __cplusplus
}
#endif

#endif
