// The header serves programs that are compiled without exceptions and run-time types: this one only has to compile.
#include "vxnls/vxnls.hpp"

[[maybe_unused]] static auto digits_of(vxnls::locale locale, std::string_view text) {
  const auto digits = locale.format(locale.parse<int>(text).value()).value();
  return std::ranges::distance(vxnls::code_points(digits));
}
