// Comparison by bits, any NaN equal to any other, with a message that lets the failure be repeated.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "sample.h"

namespace tzm_test {

// Empty when all `n` elements are equal; else index, expected and actual value of the first difference.
std::string FirstDifference(Sample sample, const void* expected, const void* actual, size_t n);

// EXPECT_TRUE(SameBits("ORVAS_Mul_32f", expected.data(), dst.data(), len, seed));
testing::AssertionResult SameBits(const std::string& operation, Sample sample, const void* expected, const void* actual,
                                  size_t n, uint64_t seed);

template <class T>
testing::AssertionResult SameBits(const std::string& operation, const T* expected, const T* actual, size_t n,
                                  uint64_t seed = 0) {
  return SameBits(operation, SampleOf<T>(), expected, actual, n, seed);
}

}  // namespace tzm_test
