// The operations of the extension "vxnlsudb": the table that every Unicode database has, and case mapping besides.
#ifndef VXNLS_HOST_UNICODE_DATABASE_OPS_H
#define VXNLS_HOST_UNICODE_DATABASE_OPS_H

#include "vxnls/host.h"

#ifdef __cplusplus
extern "C" {
#endif

/// A class test answers whether the bit of the character's general category is among the bits asked for; surrogates,
/// private and unassigned characters have categories too, values above U+10FFFF have none and are in no class.
typedef struct VXHostUnicodeDatabaseOps {
  VXUnicodeDatabaseOps base; /* destroy, test_class */

  /// Simple case mapping; a character without one, and a value that is no character, is given back.
  uint32_t (*lower)(VXUnicodeDatabase*, uint32_t code_point);
  uint32_t (*upper)(VXUnicodeDatabase*, uint32_t code_point);
} VXHostUnicodeDatabaseOps;

#ifdef __cplusplus
}
#endif

#endif
