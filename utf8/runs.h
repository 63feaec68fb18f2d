// The front of a text in whole blocks, many bytes at a time where the processor can. Each gives how many bytes it did,
// which may be none; the rest is for one step a character.
#ifndef VXNLS_UTF8_RUNS_H
#define VXNLS_UTF8_RUNS_H

#include "unicode/processor.h"
#include "utf8/steps.h"

namespace vxnls {

struct Utf8Runs {
  /// Adds the characters that begin in the bytes done, which end between two characters.
  int64_t (*count)(const uint8_t* text, int64_t length, int64_t* characters);
  /// The letters A to Z (upper: a to z) mapped and all else that stands below C0 copied; ends before the first lead.
  /// `out` is `in` or does not overlap it.
  int64_t (*lower)(const uint8_t* in, int64_t length, uint8_t* out);
  int64_t (*upper)(const uint8_t* in, int64_t length, uint8_t* out);
};

extern const Utf8Runs generic_utf8_runs;
#if VXNLS_HAS_AVX2_VARIANTS
extern const Utf8Runs avx2_utf8_runs;
#endif

inline const Utf8Runs& utf8_runs() {
#if VXNLS_HAS_AVX2_VARIANTS
  if (processor_has_avx2()) return avx2_utf8_runs;
#endif
  return generic_utf8_runs;
}

/// Characters as the leads and the continuation bytes behind them tell (CheckingStep).
int64_t count_by_runs(ByteView text, const Utf8Runs& runs);

}  // namespace vxnls

#endif
