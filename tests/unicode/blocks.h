// The blocks of unicode/eight_units.h as one of its bodies does them.
#ifndef VXNLS_TESTS_UNICODE_BLOCKS_H
#define VXNLS_TESTS_UNICODE_BLOCKS_H

#include <cstdint>

#include "vxnls/types.h"

namespace vxtest {

struct Blocks {
  uint64_t (*take_four)(const VXChar*);
  uint64_t (*take_eight)(const VXChar*);
  void (*put_four)(VXChar*, uint64_t);
  void (*put_eight)(VXChar*, uint64_t);
  bool (*narrow)(const VXChar*, uint8_t*);
  void (*put_units)(VXChar*, int64_t, const VXChar*, int64_t);
  void (*put_bytes)(uint8_t*, int64_t, const uint8_t*, int64_t);
};

extern const Blocks usual_blocks, plain_blocks;

}  // namespace vxtest

#endif
