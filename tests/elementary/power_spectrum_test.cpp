#include <gtest/gtest.h>
#include <signal_tzm/elementary.h>

#include <cmath>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

// Both forms of a member against `value` of the parts at every length to 70 and over all kinds of values.
template <class T, class Complex, class Result, class Value, class... Scale>
void CheckBoth(OrvaStatus (*pair)(const T*, const T*, Result*, int32_t, Scale...),
               OrvaStatus (*complex)(const Complex*, Result*, int32_t, Scale...), Value pairValue, Value complexValue,
               Scale... scale) {
  for (Variety variety : kVarieties) {
    for (int32_t len = 1; len <= 70; ++len) {
      const GuardedArray<Complex> z(RandomArray<Complex>(len, len, variety));
      GuardedArray<T> re(len), im(len);
      std::vector<Result> pairExpected(len), complexExpected(len);
      for (int32_t i = 0; i < len; ++i) {
        re[i] = z.data()[i].re;
        im[i] = z.data()[i].im;
        pairExpected[i] = pairValue(re[i], im[i]);
        complexExpected[i] = complexValue(re[i], im[i]);
      }
      GuardedArray<Result> dst(len);
      ASSERT_EQ(pair(re.data(), im.data(), dst.data(), len, scale...), ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("pair", pairExpected.data(), dst.data(), len, len));
      ASSERT_EQ(complex(z.data(), dst.data(), len, scale...), ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("complex", complexExpected.data(), dst.data(), len, len));
    }
  }
}

TEST(PowerSpectrum, FloatsAreFusedInTheBinary32PairOnly) {
  const auto rounded32 = +[](float re, float im) {
    volatile float re2 = re * re, im2 = im * im;
    return re2 + im2;
  };
  const auto fused32 = +[](float re, float im) { volatile float im2 = im * im; return std::fma(re, re, im2); };
  const auto rounded64 = +[](double re, double im) {
    volatile double re2 = re * re, im2 = im * im;
    return re2 + im2;
  };
  CheckBoth(ORVAS_PowerSpectr_32f, ORVAS_PowerSpectr_32fc, fused32, rounded32);
  CheckBoth(ORVAS_PowerSpectr_64f, ORVAS_PowerSpectr_64fc, rounded64, rounded64);
}

TEST(PowerSpectrum, IntegersAreExact) {
  const auto value = +[](Orva16s re, Orva16s im) { return static_cast<float>(int64_t{re} * re + int64_t{im} * im); };
  CheckBoth(ORVAS_PowerSpectr_16s32f, ORVAS_PowerSpectr_16sc32f, value, value);
  const Orva16sc least = {-32768, -32768};
  Orva32f dst;
  EXPECT_EQ(ORVAS_PowerSpectr_16sc32f(&least, &dst, 1), ORVA_STS_NO_ERR);
  EXPECT_EQ(dst, 2147483648.0f);
}

}  // namespace
}  // namespace tzm_test
