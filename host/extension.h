// How an extension of the reference host presents itself, and how the host opens it.
//
// An extension is a shared object NAME.so in the host's folder (or a folder of VXHOST_PATH). It exports one constant,
// `vxhost_extension`. The host checks the version and the name before it calls anything, then opens instances; each
// instance is closed by the `destroy` that begins its table of operations, at any time and from any thread.
//
//   namespace {
//   class Messages : public VXExtension { ... };
//   VXExtension* open(VXHostExtensionOwner* owner) { return new (std::nothrow) Messages(owner); }
//   VXStatus destroy(VXExtension* self) {
//     VXHostExtensionOwner* const owner = static_cast<Messages*>(self)->owner;
//     delete static_cast<Messages*>(self);
//     owner->closed(owner);          // last: the host may unload the code once every instance is closed
//     return 0;
//   }
//   }  // namespace
//   VXHOST_EXTENSION("vxemsg", open);
#ifndef VXNLS_HOST_EXTENSION_H
#define VXNLS_HOST_EXTENSION_H

#include "vxnls/host.h"

#ifdef __cplusplus
extern "C" {
#endif

#define VXHOST_EXTENSION_VERSION 1u

/// What the host lends to an instance from `open` until it reports itself closed.
typedef struct VXHostExtensionOwner VXHostExtensionOwner;
struct VXHostExtensionOwner {
  VXHandle* kernel;                      /* the handle that the extension was loaded through */
  void (*closed)(VXHostExtensionOwner*); /* to be called once by an instance's destroy, as its last act */
};

typedef struct VXHostExtension {
  uint32_t version; /* VXHOST_EXTENSION_VERSION */
  uint32_t zero;
  const char* name;                            /* as it is loaded: "vxemsg" */
  VXExtension* (*open)(VXHostExtensionOwner*); /* a new instance; null when memory is exhausted; throws nothing */
} VXHostExtension;

#ifdef __cplusplus
}

/// Defines the one symbol that an extension exports. At file scope, outside of namespaces.
#define VXHOST_EXTENSION(extension_name, open_function)     \
  extern "C" VX_API const VXHostExtension vxhost_extension; \
  const VXHostExtension vxhost_extension = {VXHOST_EXTENSION_VERSION, 0, extension_name, open_function}
#endif

#endif
