// Reductions against oracles that fold an array in the order that is promised.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>
#include <type_traits>
#include <vector>

#include "compare.h"
#include "exact.h"
#include "guarded.h"
#include "random.h"

namespace tzm_test {

template <class T>
concept IsComplex = requires(T x) { x.re; };

template <class T>
struct RealPart { using Type = T; };
template <IsComplex T>
struct RealPart<T> { using Type = decltype(T::re); };
template <class T>
using Real = typename RealPart<T>::Type;

// One part of each sample, as numbers of type X.
template <class X, class T>
std::vector<X> PartOf(const std::vector<T>& src, int part) {
  std::vector<X> values;
  for (const T& sample : src) {
    if constexpr (IsComplex<T>) values.push_back(part == 0 ? sample.re : sample.im);
    else values.push_back(sample);
  }
  return values;
}

// A result of one part or two, from a function of the part.
template <class Result, class F>
Result EachPart(F f) {
  if constexpr (IsComplex<Result>) return {static_cast<Real<Result>>(f(0)), static_cast<Real<Result>>(f(1))};
  else return static_cast<Result>(f(0));
}

// Sample i of those up to the last multiple of `step` goes to lane i mod `lanes`, by add(lane, i). The lanes are
// folded in halves (k with k + lanes/2) or in adjacent pairs; the rest is added to the folded sum by tail(sum, i).
enum class Fold { kHalves, kPairs };
template <class Sum, class Add, class Tail>
Sum LaneSum(size_t len, size_t lanes, size_t step, Fold fold, Add add, Tail tail, Sum start = {}) {
  const size_t body = len / step * step;
  std::vector<Sum> lane(lanes, start);
  for (size_t i = 0; i < body; ++i) add(lane[i % lanes], i);
  for (; lanes > 1; lanes /= 2)
    for (size_t k = 0; k < lanes / 2; ++k)
      lane[k] = fold == Fold::kHalves ? lane[k] + lane[k + lanes / 2] : lane[2 * k] + lane[2 * k + 1];
  Sum sum = body == 0 ? Sum{} : lane[0];
  for (size_t i = body; i < len; ++i) tail(sum, i);
  return sum;
}

// Calls check(length, variety, seed) for lengths from `least` to some blocks and all varieties, until a failure.
template <class Check>
void ForLengths(size_t least, Check check) {
  uint64_t seed = 0;
  for (size_t len = least; len < 1100; len += len < 70 ? 1 : 93)
    for (Variety variety : kVarieties) {
      check(len, variety, seed += 8);
      if (testing::Test::HasFailure()) return;
    }
}

// One call on guarded arrays: success, and the result that is expected.
template <class Result, class... Src, class Operation>
void ExpectResult(const Result& expected, uint64_t seed, Operation operation, const std::vector<Src>&... src) {
  const std::tuple<GuardedArray<Src>...> guarded(src...);
  Result result;
  const auto status = std::apply(
      [&](const auto&... array) {
        return operation(array.data()..., static_cast<int32_t>(std::get<0>(guarded).size()), &result);
      },
      guarded);
  ASSERT_EQ(status, 0);
  ASSERT_TRUE(SameBits(__PRETTY_FUNCTION__, &expected, &result, 1, seed)) << "length " << std::get<0>(guarded).size();
}

// operation(src..., len, result) gives oracle(vectors...) for arrays of all varieties.
template <class... Src, class Operation, class Oracle>
void CheckReduction(Operation operation, Oracle oracle, size_t least = 1) {
  ForLengths(least, [&](size_t len, Variety variety, uint64_t seed) {
    const auto check = [&](const std::vector<Src>&... src) { ExpectResult(oracle(src...), seed, operation, src...); };
    const auto next = [&] { return ++seed; };
    std::apply(check, std::tuple{RandomArray<Src>(len, next(), variety)...});
  });
}

// The operation with its last arguments fixed.
inline constexpr auto With = [](auto operation, auto... last) {
  return [=](auto... arguments) { return operation(arguments..., last...); };
};

// Scales with their factors.
inline constexpr struct { double scale, factor; } kFactors[] = {
    {1, 1}, {1.999, 1}, {0.6, 1}, {2, 0.5}, {3, 0.5}, {0.3, 2}, {0x1p9, 0x1p-9}, {0x1p-9, 0x1p9}, {0x1p40, 0x1p-40},
    {0x1p1023, 0x1p-1023}, {0x1p-1074, INFINITY}};

}  // namespace tzm_test
