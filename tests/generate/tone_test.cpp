// The order of the checks of tones: phase, then length, then magnitude and frequency.
#include <gtest/gtest.h>
#include <signal_tzm/generate.h>

namespace tzm_test {
namespace {

TEST(Tone, StatusOrder) {
  Orva16s x[5] = {7};
  const Orva32f zero = 0, negative = -1e-9f;
  EXPECT_EQ(ORVAS_Tone_16s(nullptr, 0, 5, 0.1f, &negative), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(ORVAS_Tone_16s(x, 0, 5, 0.1f, &negative), ORVA_STS_RANGE_ERR);
  EXPECT_EQ(ORVAS_Tone_16s(x, 0, 0, 0.1f, &zero), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(x[0], 7);
}

}  // namespace
}  // namespace tzm_test
