// The formatters of doubles, percentages and amounts over any record, field and value: nothing outside the buffer, a
// length within it, statuses that are documented, and the same text in both flavours where every character is ASCII.
//   16 bits of size, then width, decimals, flags, value, extended options, and the record
#include <algorithm>
#include <cmath>

#include "fuzz/number_record.h"
#include "vxnls/number_format.h"

using vxfuzz::call;
using vxfuzz::require;
using vxfuzz::Written;

namespace {

bool is_ascii(VXChar c) { return c < 0x80; }

bool holds_text(VXStatus status) {
  return status == 0 || status == VX_W_PRECISION || status == VX_E_GROUPING || status == VX_E_MISSCHAR;
}

void check(const Written& written, int64_t size, int32_t width, uint32_t flags) {
  switch (written.status) {
    case 0:
    case VX_W_PRECISION:
    case VX_E_GROUPING:
    case VX_E_MISSCHAR: require(written.length > 0 && written.length <= size); break;
    case VX_E_TRUNCATED:
      require(written.length <= std::max<int64_t>(size, 0));
      require(written.text.find_first_not_of(U'*') == std::u32string::npos);
      break;
    case VX_E_DIRECTIVE: require(written.length == 0); break;
    case VX_E_WIDTH:
      require(width > 0 || written.length == vxfuzz::untouched);
      require(written.text.find_first_not_of(U'*') == std::u32string::npos);
      break;
    default: require(false);
  }
  const auto fixed = NLS_FORMAT_FIXED | NLS_FORMAT_FIXED_EXPONENT | NLS_FORMAT_SIGNIFICANT;
  if ((flags & fixed) == 0) require(written.status != VX_W_PRECISION);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t length) {
  if (length > 1024) return -1;
  vxfuzz::Input bytes{data, length};
  const int64_t size = bytes.take<uint16_t>() % 1000 - 8;
  const auto width = bytes.take<int32_t>();
  const auto decimals = bytes.take<int32_t>();
  const auto flags = bytes.take<uint32_t>();
  const auto value = bytes.take<double>();
  NLSDoubleExOpts extended{};
  extended.options = bytes.take<uint8_t>();
  extended.missing = vxfuzz::take_char(bytes);
  static vxtest::PlainLocale locale;
  vxfuzz::take_number_record(bytes, locale.data);
  vxfuzz::take_name(bytes, locale.data.currencySymbol);
  const NLSDoubleExOpts* const options = (extended.options & 2) != 0 ? nullptr : &extended;

  const Written plain = call<VXChar>(size, [&](auto... to) {
    return NLSDoubleFormatWithExOpts(locale.get(), width, decimals, flags, to..., options, value);
  });
  check(plain, size, width, flags);
  const Written utf8 = call<uint8_t>(size, [&](auto... to) {
    return NLSDoubleFormatUWithExOpts(locale.get(), width, decimals, flags, to..., options, value);
  });
  check(utf8, size, width, flags);
  if (is_ascii(locale.data.decimalPoint) && is_ascii(locale.data.groupSeparator) && is_ascii(extended.missing)) {
    require(plain == utf8);
  }
  if ((flags & NLS_FORMAT_FIXED) != 0 && std::isfinite(value) && width > 0 && holds_text(plain.status)) {
    require(plain.length == std::min<int64_t>(width, size));
  }

  const Written percent = call<VXChar>(
      size, [&](auto... to) { return NLSPercentFormat(locale.get(), width, decimals, flags, to..., value); });
  if (percent.status == 0) require(percent.length <= size && percent.text.find(U'%') != std::u32string::npos);
  const Written currency = call<VXChar>(
      size, [&](auto... to) { return NLSCurrencyFormat(locale.get(), width, decimals, flags, to..., value); });
  require(currency.status != VX_E_GROUPING);
  if (currency.status == 0) require(currency.length <= size);
  return 0;
}
