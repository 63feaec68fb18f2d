// A second reader of doubles, slow and plain, to hold the library's against. Its arithmetic is MPFR's: 64 bits, to
// nearest, ties to even.
#ifndef VXNLS_TESTS_NUMBER_PARSE_DOUBLE_MODEL_H
#define VXNLS_TESTS_NUMBER_PARSE_DOUBLE_MODEL_H

#include <mpfr.h>

#include <string>
#include <string_view>

#include "vxnls/types.h"

namespace vxtest {

struct Signs {
  char32_t point = U'.';
  char32_t separator = U',';
  bool space_separates = false;
};

class DoubleModel {
 public:
  struct Result {
    VXStatus status = 0;
    double value = 0;
    int64_t consumed = 0;      // characters
    bool is_near_tie = false;  // so near the middle of two doubles that the roundings before the last may decide
    std::string decimal;       // of a number: digits and exponent as strtod reads them
  };

  DoubleModel();
  ~DoubleModel();
  DoubleModel(const DoubleModel&) = delete;
  DoubleModel& operator=(const DoubleModel&) = delete;

  Result read(std::u32string_view text, const Signs& signs);
  Result convert(uint64_t high, uint64_t low, int64_t digits, int64_t exponent, bool negative);

 private:
  void set_power(int64_t exponent);  // power_ = 10^exponent, one rounding
  mpfr_t mantissa_, power_, result_, bound_;
};

}  // namespace vxtest

#endif
