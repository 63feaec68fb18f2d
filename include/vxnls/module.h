// Loading: the version queries, the module object and the build record.
#ifndef VXNLS_MODULE_H
#define VXNLS_MODULE_H

#include "vxnls/host.h"
#include "vxnls/locale.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct VXBuildRecord {                /* 208 = 26 words; texts NUL-terminated */
  const char *label, *location, *empty3;      /*   0 */
  int64_t time;                               /*  24  seconds since 1970-01-01 UTC */
  const char *component5, *stamp6;            /*  32  "vxnls", 8 characters */
  const char *component7, *stamp8;            /*  48  "vxext", 18 characters */
  const char *empty9, *text10, *text11, *empty12;   /* 64  "", "version", "::", "" */
  const char *hotfix13, *empty14, *image15;   /*  96  64 characters; ""; 64 characters */
  const char *host16, *date17;                /* 120 */
  uint64_t zero18[9];                         /* 136 */
} VXBuildRecord;

struct NLSModule {                            /* 96 */
  uint32_t eyeCatcher;                        /*  0  0x6f76656e "nevo" */
  uint32_t pad;
  void* reserved8[2];                         /*  8 */
  VXStatus (*reqVersion)(NLSModule*, int64_t* major, int64_t* minor, int64_t* revision);   /* 24  6,1,1 */
  VXStatus (*version)(NLSModule*, int64_t* major, int64_t* minor, int64_t* revision);      /* 32  6,0,0 */
  VXHandle* host;                             /* 40 */
  VXStatus (*realDestroy)(NLSModule*);        /* 48 */
  void* reserved56[2];                        /* 56 */
  VXPool* pool;                               /* 72 */
  VXLocale* (*localeCreate)(HostContext*, const VXChar* name, int64_t length, VXStatus* status,
                            const LocaleCreateOptions*);                                   /* 80 */
  VXStatus (*localeDestroyCallback)(VXTrackEntry*);                                        /* 88 */
};

extern VX_API VXHandle* Exported_VXHandle;
VX_API VXStatus   vxextver(VXHandle*, int64_t* major, int64_t* minor);
VX_API VXStatus   vxextent(VXHandle*);
VX_API NLSModule* vxnlsloc(VXHandle*, VXJournal*);
VX_API void       vxvercn1(VXBuildRecord*);
VX_API VXStatus   NLSLOCRealDestroy(NLSModule*);

#ifdef __cplusplus
}
#endif

#endif
