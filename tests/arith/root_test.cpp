// The cube root of binary32, which no formula gives to the bit.
#include <gtest/gtest.h>
#include <signal_tzm/arith.h>

#include <cmath>

#include "support/compare.h"
#include "support/random.h"

namespace tzm_test {
namespace {

TEST(Cubrt, WithinOneUlp) {
  for (Variety variety : kVarieties) {
    const auto src = RandomArray<float>(4003, 1, variety);
    std::vector<float> dst(4003);
    ASSERT_EQ(ORVAS_Cubrt_32f(src.data(), dst.data(), 4003), ORVA_STS_NO_ERR);
    for (int i = 0; i < 4003; ++i) {
      const float ulp = std::nextafter(std::fabs(dst[i]), INFINITY) - std::fabs(dst[i]);
      if (src[i] == 0 || !std::isfinite(src[i])) EXPECT_TRUE(SameBits("ORVAS_Cubrt_32f", &src[i], &dst[i], 1));
      else EXPECT_LT(std::fabs(dst[i] - std::cbrt(double{src[i]})), ulp) << src[i];
    }
  }
}

}  // namespace
}  // namespace tzm_test
