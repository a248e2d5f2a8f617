// Comparison by bits, any NaN equal to any other, with a message that lets the failure be repeated.
#pragma once

#include <gtest/gtest.h>

#include "sample.h"

namespace tzm_test {

// EXPECT_TRUE(SameBits("ORVAS_Mul_32f", expected.data(), dst.data(), len, seed));
template <class T>
testing::AssertionResult SameBits(const std::string& operation, const T* expected, const T* actual, size_t n,
                                  uint64_t seed = 0) {
  const std::string difference = FirstDifference(SampleOf<T>(), expected, actual, n);
  if (difference.empty()) return testing::AssertionSuccess();
  return testing::AssertionFailure() << operation << " length " << n << " seed " << seed << " " << difference;
}

}  // namespace tzm_test
