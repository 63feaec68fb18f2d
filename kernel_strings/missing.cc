#include <algorithm>
#include <bit>
#include <type_traits>

#include "vxnls/bytes.h"

namespace {

constexpr uint64_t pattern(uint32_t code) { return UINT64_C(0xFFFF000000000000) | uint64_t{(256 - code) & 0xFF} << 40; }

constexpr uint32_t ordinary = 2;

constexpr uint32_t code_of(VXChar letter) {
  if (letter == '_') return 1;
  if (letter >= 'A' && letter <= 'Z') return letter - 'A' + 3;
  if (letter >= 'a' && letter <= 'z') return letter - 'a' + 3;
  return ordinary;
}

}  // namespace

#define VX_ROW(c) pattern(c), pattern((c) + 1), pattern((c) + 2), pattern((c) + 3)
const uint64_t qmmissv_struct[29] = {pattern(ordinary), VX_ROW(1),  VX_ROW(5),  VX_ROW(9),
                                     VX_ROW(13),        VX_ROW(17), VX_ROW(21), VX_ROW(25)};

double qmMissVal(VXChar letter) { return std::bit_cast<double>(pattern(code_of(letter))); }

void qmMissArray(double* out, int64_t n, VXChar letter) {
  if (out != nullptr && n > 0) std::fill_n(out, n, qmMissVal(letter));
}
