// The general categories that the classes of characters stand for.
#ifndef VXNLS_TESTS_KERNEL_STRINGS_CLASS_CATEGORIES_H
#define VXNLS_TESTS_KERNEL_STRINGS_CLASS_CATEGORIES_H

#include <unicode/uchar.h>

#include <span>

#include "unicode/class_tables.h"
#include "vxnls/classes.h"

namespace vxtest {

inline constexpr uint32_t shown = U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK | U_GC_P_MASK | U_GC_S_MASK;

inline constexpr struct {
  const char* name;
  int32_t (*test)(uint32_t);
  uint32_t asked;  // of a host
  uint32_t categories;
  std::span<const vxnls::CodePointRange> ranges = {};
  uint32_t by_hosts = 0;
} class_categories[] = {
    {"digit", vxnlsisdigit, 0x40, U_GC_ND_MASK, vxnls::digitranges},
    {"lower", vxnlsislower, 0x2, U_GC_LL_MASK, vxnls::lowerranges},
    {"upper", vxnlsisupper, 0x1, U_GC_LU_MASK, vxnls::upperranges},
    {"alpha", vxnlsisalpha, 0x60007, U_GC_L_MASK, vxnls::alpharanges},
    {"alnum", vxnlsisalnum, 0x60047, U_GC_L_MASK | U_GC_ND_MASK},
    {"print", vxnlsisprint, 0x3FFE0FFF, shown | U_GC_Z_MASK, vxnls::printranges},
    // Kept on purpose: the built-in ranges leave private use out.
    {"graph", vxnlsisgraph, 0xFFFE81FF, shown, vxnls::graphranges, U_GC_CO_MASK},
    {"punct", vxnlsispunct, 0x3F80000, U_GC_P_MASK, vxnls::punctranges},
    {"cntrl", vxnlsiscntrl, 0x3C00, U_GC_CC_MASK | U_GC_CF_MASK | U_GC_ZL_MASK | U_GC_ZP_MASK, vxnls::controlranges},
};

}  // namespace vxtest

#endif
