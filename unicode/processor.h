// What the processor can run beyond the instructions that every one of its kind has.
#ifndef VXNLS_UNICODE_PROCESSOR_H
#define VXNLS_UNICODE_PROCESSOR_H

#if defined(__x86_64__) && __has_include(<sys/platform/x86.h>)
#define VXNLS_HAS_AVX2_VARIANTS 1
#else
#define VXNLS_HAS_AVX2_VARIANTS 0
#endif

namespace vxnls {

/// Whether AVX2 may be used. The C library knows since it was loaded: two loads, nothing is kept here.
bool processor_has_avx2();

}  // namespace vxnls

#endif
