// The operations of the extension "vxnlsldb": the table that every locale database has, and what this host asks
// besides.
#ifndef VXNLS_HOST_LOCALE_DATABASE_OPS_H
#define VXNLS_HOST_LOCALE_DATABASE_OPS_H

#include "vxnls/host.h"
#include "vxnls/locale.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The table of operations behind a VXLocaleDatabase of this host. All of them may be called from several threads at
/// once. Names are canonical ICU names ("de_DE", "sr_Latn_RS", "en_US_POSIX", "root").
typedef struct VXHostLocaleDatabaseOps {
  VXLocaleDatabaseOps base; /* destroy, fill */

  /// Fills a record without keeping anything, as `base.fill` does, and calls `each` for every entry that could not be
  /// taken over as CLDR has it. A non-zero result of `each` ends the walk. Texts are UTF-8, valid during the call.
  /// Returns the status that `fill` gives for the name.
  VXStatus (*for_each_fallback)(VXLocaleDatabase*, const char* name,
                                int (*each)(void* user, const char* entry, const char* used, const char* reason),
                                void* user);

  /// Holds a filled record against the rules of docs/locale-data.md and calls `each` for every one that is broken: the
  /// rule ("R6"), the field of VXLocaleData ("datePattern1"), and what is wrong. A non-zero result of `each` ends the
  /// walk. Any bytes may stand in the record. Returns 0, or 0x803fe831 for a null argument.
  VXStatus (*check)(VXLocaleDatabase*, const VXLocaleData* record,
                    int (*each)(void* user, const char* rule, const char* entry, const char* text), void* user);
} VXHostLocaleDatabaseOps;

#ifdef __cplusplus
}
#endif

#endif
