// Loading: the version queries, the module object and the build record.
#include "module/build_texts.h"
#include "module/eye_catcher.h"
#include "vxnls/journal.h"
#include "vxnls/module.h"

namespace {

// The two levels differ on purpose: 6.1.1 is asked of a host, 6.0.0 is what the module offers; hosts compare both.
VXStatus required_version(NLSModule*, int64_t* major, int64_t* minor, int64_t* revision) {
  *major = 6;
  *minor = 1;
  *revision = 1;
  return 0;
}

VXStatus offered_version(NLSModule*, int64_t* major, int64_t* minor, int64_t* revision) {
  *major = 6;
  *minor = 0;
  *revision = 0;
  return 0;
}

/// A text followed by blanks to 64 characters, for tools that look for the text and patch what follows it.
struct PatchField {
  char text[65];
};

template <size_t N>
constexpr PatchField patch_field(const char (&key)[N]) {
  static_assert(N <= 65);
  PatchField field{};
  for (size_t i = 0; i < 64; ++i) field.text[i] = i < N - 1 ? key[i] : ' ';
  return field;
}

constexpr PatchField hotfix = patch_field("VX_VERSION_HOTFIX_NUMBER=");
constexpr PatchField image = patch_field("VERCON_IMAGE_DESCRIPTION=");

static_assert(sizeof vxnls::build::stamp == 8 + 1, "VXNLS_BUILD_STAMP has 8 characters");
static_assert(sizeof vxnls::build::interface_stamp == 18 + 1, "VXNLS_INTERFACE_STAMP has 18 characters");

constexpr VXBuildRecord build_record = {
    .label = vxnls::build::label,
    .location = vxnls::build::location,
    .empty3 = "",
    .time = vxnls::build::time,
    .component5 = "vxnls",
    .stamp6 = vxnls::build::stamp,
    .component7 = "vxext",
    .stamp8 = vxnls::build::interface_stamp,
    .empty9 = "",
    .text10 = "version",
    .text11 = "::",
    .empty12 = "",
    .hotfix13 = hotfix.text,
    .empty14 = "",
    .image15 = image.text,
    .host16 = vxnls::build::host,
    .date17 = vxnls::build::date,
    .zero18 = {},
};

constexpr VXPoolAttributes pool_attributes = {.flags = 0x800000, .zero = {}};
constexpr uint32_t level_exhausted = 4;

}  // namespace

VXStatus vxextver(VXHandle* kernel, int64_t* major, int64_t* minor) {
  *major = 6;
  *minor = 1;
  return vxextent(kernel);
}

VXStatus vxextent(VXHandle* kernel) {
  Exported_VXHandle = kernel;
  return 0;
}

NLSModule* vxnlsloc(VXHandle* kernel, VXJournal* journal) {
  if (kernel == nullptr) return nullptr;
  VXPool* const pool = kernel->ops->create_pool(kernel, &pool_attributes, journal, "vxnlsloc pool");
  if (pool == nullptr) return nullptr;
  auto* const module = static_cast<NLSModule*>(pool->ops->allocate(pool, sizeof(NLSModule), VX_ZERO_FILL));
  if (module == nullptr) {
    vxlStatusToJnl(journal, level_exhausted, static_cast<int32_t>(VX_E_MEMORY));
    pool->ops->destroy(pool);
    return nullptr;
  }
  module->eyeCatcher = vxnls::eye_catcher;
  module->reqVersion = &required_version;
  module->version = &offered_version;
  module->host = kernel;
  module->realDestroy = &NLSLOCRealDestroy;
  module->pool = pool;
  module->localeCreate = &NLSLocaleCreate;
  module->localeDestroyCallback = &NLSLocaleDestroyCallback;
  return module;
}

void vxvercn1(VXBuildRecord* record) { *record = build_record; }

VXStatus NLSLOCRealDestroy(NLSModule* module) {
  // The record lies in the pool: it is gone with it.
  if (module != nullptr && module->pool != nullptr) module->pool->ops->destroy(module->pool);
  return 0;
}
