// The largest parameter of Kaiser windows.
#include <gtest/gtest.h>
#include <signal_tzm/generate.h>

#include <cmath>

namespace tzm_test {
namespace {

TEST(Window, KaiserLimits) {
  Orva32f x[] = {2, 3};
  EXPECT_EQ(ORVAS_WinKaiser_32f_I(x, 2, std::nextafter(-76.0f, -77.0f)), ORVA_STS_KAISER_ALPHA_ERR);
  EXPECT_EQ(x[1], 3);
  EXPECT_EQ(ORVAS_WinKaiser_32f_I(x, 2, 76), ORVA_STS_NO_ERR);
  EXPECT_LT(x[0], 1e-14f);
  Orva64f y[] = {2, 3};
  EXPECT_EQ(ORVAS_WinKaiser_64f_I(y, 2, std::nextafter(616.0, 617.0)), ORVA_STS_KAISER_ALPHA_ERR);
  EXPECT_EQ(ORVAS_WinKaiser_64f_I(y, 2, -616), ORVA_STS_NO_ERR);
  EXPECT_EQ(ORVAS_WinKaiser_64f_I(y, 2, NAN), ORVA_STS_NO_ERR);
  EXPECT_TRUE(std::isnan(y[0]));
}

}  // namespace
}  // namespace tzm_test
