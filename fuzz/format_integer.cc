// The integer formatters over any record, field and value: nothing outside the buffer, nothing at all on a refusal, a
// text at least as wide as asked, the same in both flavours with an ASCII separator, and decimals that read back.
//   16 bits of size, then width, precision, flags, value, and the record
#include <cstdlib>

#include "fuzz/number_record.h"
#include "vxnls/number_format.h"
#include "vxnls/number_parse.h"

using vxfuzz::call;
using vxfuzz::require;
using vxfuzz::Written;

namespace {

struct Field {
  int32_t width, precision;
  uint32_t flags;
  int64_t size;
};

void check(const Written& written, const Field& field) {
  require(written.status == 0 || written.status == VX_E_TRUNCATED);
  if (written.status != 0) {
    require(written.length == vxfuzz::untouched);
    return;
  }
  require(written.length <= field.size);
  require(written.length >= std::abs(static_cast<int64_t>(field.width)) && written.length >= field.precision);
}

template <class Value, class Plain, class Utf8, class Reader>
void run(VXLocale* locale, const Field& field, Value value, Plain plain, Utf8 utf8, Reader reader) {
  const Written wide = call<VXChar>(
      field.size, [&](auto... to) { return plain(locale, value, field.width, field.precision, field.flags, to...); });
  check(wide, field);
  const Written narrow = call<uint8_t>(
      field.size, [&](auto... to) { return utf8(locale, value, field.width, field.precision, field.flags, to...); });
  check(narrow, field);
  const VXChar separator = locale->localeData->groupSeparator;
  if (separator < 0x80) require(wide == narrow);

  // What separates groups must not be part of a number to read back, nor a blank in front.
  const bool decimal = (field.flags & (NLS_FORMAT_HEX_LOWER | NLS_FORMAT_HEX_UPPER | NLS_FORMAT_OCTAL)) == 0;
  const bool separable =
      (separator < '0' || separator > '9') && separator != '-' && separator != '+' && separator != ' ';
  if (wide.status != 0 || !decimal || !separable || (value == 0 && field.precision == 0)) return;
  std::vector<VXChar> text(wide.text.begin(), wide.text.end());
  Value read{};
  uint64_t consumed = 0;
  require(reader(locale, text.data(), static_cast<int64_t>(text.size()), 0, &read, &consumed) == 0);
  require(read == value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 1024) return -1;
  vxfuzz::Input bytes{data, size};
  Field field{};
  field.size = bytes.take<uint16_t>() % 1000 - 8;
  field.width = bytes.take<int32_t>();
  field.precision = bytes.take<int32_t>();
  field.flags = bytes.take<uint32_t>();
  const auto value = bytes.take<uint64_t>();
  static vxtest::PlainLocale locale;
  vxfuzz::take_number_record(bytes, locale.data);

  run(locale.get(), field, static_cast<int32_t>(value), NLSIntFormat, NLSIntFormatU, NLSBufToInt);
  run(locale.get(), field, static_cast<uint32_t>(value), NLSUIntFormat, NLSUIntFormatU, NLSBufToUInt);
  run(locale.get(), field, static_cast<int64_t>(value), NLSLongFormat, NLSLongFormatU, NLSBufToLong);
  run(locale.get(), field, value, NLSULongFormat, NLSULongFormatU, NLSBufToULong);
  return 0;
}
