/// Loading: the version queries, the module object and the build record.
///
/// A host loads libvxnlsloc.so, finds `vxextver` and `vxnlsloc` by name and calls them in this order; everything else
/// is reached through the module and the locales that it creates, or by name.
#ifndef VXNLS_MODULE_H
#define VXNLS_MODULE_H

#include "vxnls/host.h"
#include "vxnls/locale.h"

#ifdef __cplusplus
extern "C" {
#endif

/// What `vxvercn1` gives out: 208 bytes. Texts are NUL-terminated ASCII and constant. The numbers in the names are the
/// positions of the words, from 1.
typedef struct VXBuildRecord {
  const char *label, *location, *empty3;          /* product version label; where the build was made; "" */
  int64_t time;                                   /* of the build, in seconds since 1970-01-01 UTC */
  const char *component5, *stamp6;                /* "vxnls" and its stamp of 8 characters */
  const char *component7, *stamp8;                /* "vxext" and its stamp of 18 characters */
  const char *empty9, *text10, *text11, *empty12; /* "", "version", "::", "" */
  const char *hotfix13, *empty14, *image15;       /* 64 characters, a key ending in "=" and blanks; ""; likewise */
  const char *host16, *date17; /* name of the machine; date of the build as the date command has it */
  uint64_t zero18[9];
} VXBuildRecord;

/// The module: 96 bytes, in a pool of its own.
struct NLSModule {
  uint32_t eyeCatcher; /* 0x6f76656e: the bytes "nevo" */
  uint32_t pad;
  void* reserved8[2];
  /// The host interface that the module requires: writes 6, 1, 1. Returns 0.
  VXStatus (*reqVersion)(NLSModule*, int64_t* major, int64_t* minor, int64_t* revision);
  /// The interface that the module offers: writes 6, 0, 0. Returns 0.
  VXStatus (*version)(NLSModule*, int64_t* major, int64_t* minor, int64_t* revision);
  VXHandle* host;                      /* the handle given to vxnlsloc */
  VXStatus (*realDestroy)(NLSModule*); /* NLSLOCRealDestroy */
  void* reserved56[2];
  VXPool* pool; /* "vxnlsloc pool", in which this record lies */
  /// NLSLocaleCreate
  VXLocale* (*localeCreate)(HostContext*, const VXChar* name, int64_t length, VXStatus* status,
                            const LocaleCreateOptions*);
  VXStatus (*localeDestroyCallback)(VXTrackEntry*); /* NLSLocaleDestroyCallback */
};

/// The kernel handle that vxextver or vxextent stored; null before. While it is null, the library answers from its
/// built-in data, and no locale can be created.
extern VX_API VXHandle* Exported_VXHandle;

/// The interface version, 6.1; then does what vxextent does. Both pointers must not be null. Returns 0.
VX_API VXStatus vxextver(VXHandle*, int64_t* major, int64_t* minor);

/// Stores the kernel handle in Exported_VXHandle, in place of an earlier one; it is not checked and may be null. Called
/// once while loading, before any other thread uses the library: the store is not synchronised. Returns 0.
VX_API VXStatus vxextent(VXHandle*);

/// Makes the module. `journal` may be null.
/// Returns the module; null when the pool cannot be made (nothing is reported) or when the pool is exhausted (status
/// 0x803fc002 goes to the journal at level 4, and the pool is destroyed).
VX_API NLSModule* vxnlsloc(VXHandle*, VXJournal* journal);

/// Copies the build record, 208 bytes.
VX_API void vxvercn1(VXBuildRecord*);

/// Destroys the module's pool, and with it the module. Locales are not touched: they live in the context's pool. Null
/// is allowed. Returns 0.
VX_API VXStatus NLSLOCRealDestroy(NLSModule*);

#ifdef __cplusplus
}
#endif

#endif
