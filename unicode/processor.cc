#include "unicode/processor.h"

#if VXNLS_HAS_AVX2_VARIANTS
#if defined(__clang__)
#define _Bool bool  // the header is written in C
#endif
#include <sys/platform/x86.h>
bool vxnls::processor_has_avx2() { return CPU_FEATURE_ACTIVE(AVX2); }
#else
bool vxnls::processor_has_avx2() { return false; }
#endif
