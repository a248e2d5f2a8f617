// The order of the checks of tones.
#include <gtest/gtest.h>
#include <signal_tzm/generate.h>

#include <cmath>

namespace tzm_test {
namespace {

constexpr double kTwoPi = 6.283185307179586;

// Phase, then length, then magnitude and frequency. The turn in binary32 is above 2 pi.
TEST(Tone, StatusOrder) {
  Orva16s x[5] = {7};
  const Orva32f zero = 0, negative = -1e-9f, turn = 6.2831855f, below = 6.283185f;
  EXPECT_EQ(ORVAS_Tone_16s(nullptr, 0, 5, 0.1f, &negative), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(ORVAS_Tone_16s(x, 0, 5, 0.1f, &negative), ORVA_STS_RANGE_ERR);
  EXPECT_EQ(ORVAS_Tone_16s(x, 5, 5, 0.1f, &turn), ORVA_STS_RANGE_ERR);
  EXPECT_EQ(ORVAS_Tone_16s(x, 0, 0, 0.1f, &zero), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(x[0], 7);
  EXPECT_EQ(ORVAS_Tone_16s(x, 5, 5, 0.0f, &below), ORVA_STS_NO_ERR);
  const Orva64f turn64 = kTwoPi, below64 = std::nextafter(kTwoPi, 0.0);
  Orva64f y;
  EXPECT_EQ(ORVAS_Tone_64f(&y, 1, 5, 0.1, &turn64), ORVA_STS_RANGE_ERR);
  EXPECT_EQ(ORVAS_Tone_64f(&y, 1, 5, 0.1, &below64), ORVA_STS_NO_ERR);
}

}  // namespace
}  // namespace tzm_test
