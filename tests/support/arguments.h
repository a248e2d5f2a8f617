// Null pointers for operations whose shape the table of members does not know.
#pragma once

#include <gtest/gtest.h>
#include <signal_tzm/status.h>

#include <tuple>
#include <type_traits>
#include <utility>

namespace tzm_test {

// Calls f(arguments...) with each pointer null in turn: status 1. A pointer given as null is optional.
template <class... P>
void CheckNulls(OrvaStatus (*f)(P...), std::type_identity_t<P>... arguments) {
  const auto check = [&]<size_t i>(std::integral_constant<size_t, i>) {
    std::tuple<P...> call(arguments...);
    if constexpr (std::is_pointer_v<std::tuple_element_t<i, std::tuple<P...>>>) {
      if (std::get<i>(call) == nullptr) return;
      std::get<i>(call) = nullptr;
      EXPECT_EQ(std::apply(f, call), ORVA_STS_NULL_PTR_ERR) << "argument " << i << " null";
    }
  };
  [&]<size_t... i>(std::index_sequence<i...>) {
    (check(std::integral_constant<size_t, i>()), ...);
  }(std::index_sequence_for<P...>());
}

}  // namespace tzm_test
