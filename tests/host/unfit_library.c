/* A library with the entry points of libvxnlsloc.so that a host must not take: UNFIT says why. */
#include "vxnls/module.h"

/* NOLINTBEGIN(misc-redundant-expression): UNFIT is one of these */
enum { other_version, no_module, newer_host_wanted };

VXStatus vxextver(VXHandle* kernel, int64_t* major, int64_t* minor) {
  (void)kernel;
  *major = UNFIT == other_version ? 7 : 6;
  *minor = 1;
  return 0;
}

VXStatus vxextent(VXHandle* kernel) { return kernel == NULL ? 0 : VX_E_NULL; }

static VXStatus required(NLSModule* module, int64_t* major, int64_t* minor, int64_t* revision) {
  *major = 6, *minor = 2, *revision = 0;
  return module->host == NULL ? 0 : VX_E_NULL;
}
static VXStatus destroy(NLSModule* module) { return module->reqVersion == required ? 0 : VX_E_NULL; }

NLSModule* vxnlsloc(VXHandle* kernel, VXJournal* journal) {
  static NLSModule module = {.reqVersion = required, .realDestroy = destroy};
  (void)kernel, (void)journal;
  return UNFIT == no_module ? NULL : &module;
}
/* NOLINTEND(misc-redundant-expression) */
