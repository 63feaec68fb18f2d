// The fixed field of the formatter of doubles, written the slow way: strings, exact digits by big integers, and double
// arithmetic only where the rounding is defined by it.
#ifndef VXNLS_TESTS_NUMBER_FORMAT_FIXED_FIELD_MODEL_H
#define VXNLS_TESTS_NUMBER_FORMAT_FIXED_FIELD_MODEL_H

#include <string>
#include <vector>

#include "tests/number_format/exact_decimal.h"
#include "vxnls/number_format.h"

namespace vxtest {

struct FieldConventions {
  std::string point, separator;  // UTF-8
  std::vector<int> groups;       // from the right, the last one repeats; -1: no further groups; 0: never fits
};

struct Field {
  VXStatus status = 0;
  std::string text;
  bool is_written = true;  // false: neither text nor length
  bool operator==(const Field&) const = default;
};

class FixedFieldModel {
 public:
  /// With `units_are_bytes` point and separator take as many units as bytes, otherwise one.
  FixedFieldModel(const FieldConventions& conventions, bool units_are_bytes)
      : conventions_(conventions),
        point_(units_are_bytes ? conventions.point.size() : 1, '\1'),
        separator_(units_are_bytes ? conventions.separator.size() : 1, '\2') {}

  Field format(double value, int32_t width, int32_t decimals, uint32_t flags, int64_t size);

 private:
  struct Exponent {
    bool fits;
    std::string text;
  };

  Field missing(double value, int32_t width, int32_t decimals, int64_t size);
  Field in_exponent_form(VXStatus status);
  Exponent exponent(double value, int room, int digits);
  std::string decimal_text(double value, int decimals, int room, bool* fits);
  bool lay_out(std::string* text, bool grouped);
  Field done(VXStatus status, const std::string& text);
  Field stars(VXStatus status) { return {status, std::string(static_cast<size_t>(field_), '*')}; }

  FieldConventions conventions_;
  std::string point_, separator_;  // what stands for them until the text is done
  ExactDecimal exact_;
  // of the call under way
  bool negative_ = false, reports_ = false;  // reports_: fewer decimals are a status of their own, groups are inserted
  uint32_t flags_ = 0;
  int field_ = 0, room_ = 0;
  double magnitude_ = 0;
};

}  // namespace vxtest

#endif
