// An entry point with each of its pointers null in turn.
#ifndef VXNLS_TESTS_SUPPORT_NULL_ARGUMENTS_H
#define VXNLS_TESTS_SUPPORT_NULL_ARGUMENTS_H

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "vxnls/locale.h"

namespace vxtest {

/// Every call is answered with VX_E_NULL: with each pointer among `arguments` null, and with a locale that has no data.
/// Pointers that may be null are bound to the function instead.
template <class... Arguments>
void expect_nulls_refused(const char* name, auto function, Arguments... arguments) {
  int at = 0;
  const auto with = [&](auto& argument, auto other, const char* what) {
    const auto kept = std::exchange(argument, other);
    EXPECT_EQ(function(arguments...), VX_E_NULL) << name << ", argument " << at << ": " << what;
    argument = kept;
  };
  const auto with_null = [&](auto& argument) {
    using Argument = std::remove_reference_t<decltype(argument)>;
    VXLocale empty{};
    ++at;
    if constexpr (std::is_pointer_v<Argument>) with(argument, nullptr, "null");
    if constexpr (std::is_same_v<Argument, VXLocale*>) with(argument, &empty, "a locale without data");
  };
  (with_null(arguments), ...);
}

#define VX_EXPECT_NULLS_REFUSED(function, ...) vxtest::expect_nulls_refused(#function, function, __VA_ARGS__)

}  // namespace vxtest

#endif
