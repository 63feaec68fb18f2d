/* A library with the entry points of libvxnlsloc.so that a host must not take: UNFIT says why. */
#include <stdlib.h>

#include "vxnls/module.h"

enum { other_version, no_module, newer_host_wanted };

VX_API VXStatus vxextent(VXHandle* kernel);
VXStatus vxextent(VXHandle* kernel) {
  (void)kernel;
  return 0;
}

VXStatus vxextver(VXHandle* kernel, int64_t* major, int64_t* minor) {
  *major = UNFIT == other_version ? 7 : 6;
  *minor = 1;
  return vxextent(kernel);
}

static VXStatus required(NLSModule* module, int64_t* major, int64_t* minor, int64_t* revision) {
  (void)module;
  *major = 6;
  *minor = 2;
  *revision = 0;
  return 0;
}

static VXStatus destroy(NLSModule* module) {
  free(module);
  return 0;
}

NLSModule* vxnlsloc(VXHandle* kernel, VXJournal* journal) {
  NLSModule* const module = UNFIT == no_module ? NULL : calloc(1, sizeof *module);
  (void)kernel, (void)journal;
  if (module == NULL) return NULL;
  module->reqVersion = required;
  module->realDestroy = destroy;
  return module;
}
