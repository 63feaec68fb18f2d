// Percentages and currency amounts, over the formatter of doubles.
#include <climits>

#include "number_format/layout.h"
#include "vxnls/number_format.h"

namespace vxnls {

namespace {

constexpr uint32_t caller_flag = 0x0001;  // the one bit that callers of these two set

int32_t narrower(int32_t width, int64_t by) {
  const int64_t left = width - by;
  return left < INT_MIN ? INT_MIN : static_cast<int32_t>(left);
}

int64_t smaller(int64_t size, int64_t by) { return size > by ? size - by : 0; }

}  // namespace

}  // namespace vxnls

extern "C" {

VXStatus NLSPercentFormat(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags, VXChar* buffer,
                          int64_t size, int64_t* length, double value) {
  if (buffer == nullptr || length == nullptr) return VX_E_NULL;
  constexpr uint32_t plain_notation = 0x0002;
  const int64_t parentheses = (flags & vxnls::caller_flag) != 0 && value < 0 ? 1 : 0;
  const int64_t extra = parentheses + 1;
  *length = 0;
  const VXStatus status = NLSDoubleFormat(locale, vxnls::narrower(width, extra), decimals, plain_notation, buffer,
                                          vxnls::smaller(size, extra), length, value * 100);
  if (status == 0 && *length <= size - extra) {  // a conversion table of the host may say anything
    buffer[*length] = '%';
    if (parentheses != 0) {
      buffer[*length + 1] = ')';
      buffer[0] = '(';
      for (int64_t i = 0; i < *length; ++i) {
        if (buffer[i] == '-') {
          buffer[i] = ' ';
          break;
        }
      }
    }
  }
  *length += extra;  // also after a failure: kept on purpose
  return status;
}

VXStatus NLSCurrencyFormat(VXLocale* locale, int32_t width, int32_t decimals, uint32_t flags, VXChar* buffer,
                           int64_t size, int64_t* length, double value) {
  if (buffer == nullptr || length == nullptr || locale == nullptr || locale->localeData == nullptr) return VX_E_NULL;
  constexpr uint32_t grouped_plain = 0x20002;
  constexpr uint32_t grouped_integer = 0x20008;
  const vxnls::TextView symbol = vxnls::view(locale->localeData->currencySymbol);
  if (size < 0) size = 0;
  const int64_t before = symbol.length < size ? symbol.length : size;
  vxnls::fill(buffer, before, ' ');
  *length = 0;
  VXStatus status = NLSDoubleFormat(locale, vxnls::narrower(width, symbol.length), decimals,
                                    (flags & vxnls::caller_flag) != 0 ? grouped_integer : grouped_plain,
                                    buffer + before, vxnls::smaller(size, symbol.length), length, value);
  if (status == VX_E_GROUPING) status = 0;
  *length += symbol.length;
  if (status != 0) return status;

  // The symbol stands right before the first unit of the field that is not blank; before the number when there is none.
  const int64_t written = *length < size ? *length : size;
  const int64_t field = width < written ? width : written;
  int64_t first = 0;
  while (first < field && buffer[first] == ' ') ++first;
  if (first >= field) first = symbol.length;
  if (first > size) return 0;
  for (int64_t i = 0; i < symbol.length; ++i) buffer[first - symbol.length + i] = symbol.text[i];
  return 0;
}

}  // extern "C"
