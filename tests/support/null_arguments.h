// An entry point with each of its pointers null in turn.
#ifndef VXNLS_TESTS_SUPPORT_NULL_ARGUMENTS_H
#define VXNLS_TESTS_SUPPORT_NULL_ARGUMENTS_H

#include <gtest/gtest.h>

#include <tuple>
#include <type_traits>
#include <utility>

#include "vxnls/locale.h"

namespace vxtest {

/// Every call is answered with VX_E_NULL: with each pointer among `arguments` null, and with a locale that has no data.
/// Pointers that may be null are bound to the function instead.
template <class Function, class... Arguments>
void expect_nulls_refused(const char* name, Function function, Arguments... arguments) {
  const auto with_null = [&]<size_t at>(std::integral_constant<size_t, at>) {
    std::tuple<Arguments...> given(arguments...);
    auto& argument = std::get<at>(given);
    using Argument = std::remove_reference_t<decltype(argument)>;
    if constexpr (std::is_pointer_v<Argument>) {
      argument = nullptr;
      EXPECT_EQ(std::apply(function, given), VX_E_NULL) << name << ", argument " << at << " is null";
    }
    if constexpr (std::is_same_v<Argument, VXLocale*>) {
      VXLocale empty{};
      argument = &empty;
      EXPECT_EQ(std::apply(function, given), VX_E_NULL) << name << ", a locale without data";
    }
  };
  [&]<size_t... at>(std::index_sequence<at...>) { (with_null(std::integral_constant<size_t, at>()), ...); }
  (std::index_sequence_for<Arguments...>());
}

#define VX_EXPECT_NULLS_REFUSED(function, ...) vxtest::expect_nulls_refused(#function, function, __VA_ARGS__)

}  // namespace vxtest

#endif
