// Complex logarithm, sine and cosine, powers by accuracy class, scaled exponentials and logarithms: against
// the system's functions in long double, and C's values at zeros, infinities and NaN.
#include <gtest/gtest.h>
#include <signal_tzm/elementary.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

using Wide = std::complex<long double>;

// |actual - exact| in units of the last place of the type. Beyond the type's range only infinity will do.
template <class T>
double Ulps(T actual, long double exact) {
  if (std::fabs(exact) > std::numeric_limits<T>::max())
    return std::isinf(actual) && std::signbit(actual) == std::signbit(exact) ? 0 : 1e9;
  if (std::isnan(actual) || std::isinf(actual)) return 1e9;
  const int exponent = std::max(std::ilogb(exact), std::numeric_limits<T>::min_exponent - 1);
  return static_cast<double>(std::fabs(actual - exact) /
                             std::ldexp(1.0L, exponent - std::numeric_limits<T>::digits + 1));
}

template <class Complex>
void CheckAccuracy(OrvaStatus (*member)(const Complex*, Complex*, int32_t), Wide (*exact)(Wide),
                   std::vector<Complex> values, double bound) {
  std::vector<Complex> dst(values.size());
  ASSERT_EQ(member(values.data(), dst.data(), static_cast<int32_t>(values.size())), ORVA_STS_NO_ERR);
  for (size_t i = 0; i < values.size(); ++i) {
    const Wide expected = exact(Wide(values[i].re, values[i].im));
    ASSERT_LE(Ulps(dst[i].re, expected.real()), bound) << "re of (" << values[i].re << ", " << values[i].im << ")";
    ASSERT_LE(Ulps(dst[i].im, expected.imag()), bound) << "im of (" << values[i].re << ", " << values[i].im << ")";
  }
}

// Parts of all sizes up to `reMost` and `imMost`, both signs.
template <class Complex>
std::vector<Complex> Plane(double reMost, double imMost) {
  using T = decltype(Complex::re);
  Random random(3);
  const auto part = [&](double most) {
    const double size = std::ldexp(random.Unit() + 1e-9, -static_cast<int>(random.Below(40)));
    return static_cast<T>(random.Below(2) ? most * size : -most * size);
  };
  std::vector<Complex> values(3000);
  for (Complex& z : values) z = {part(reMost), part(imMost)};
  return values;
}

Wide Log10(Wide z) { return {std::log(z).real() / std::log(10.0L), std::arg(z) / std::log(10.0L)}; }
Wide Sin(Wide z) { return std::sin(z); }
Wide Cos(Wide z) { return std::cos(z); }

TEST(ComplexFunctions, AccurateOverThePlane) {
  for (double re : {1.0, 1e5}) {
    for (double im : {1.0, 20.0, 90.0}) {
      CheckAccuracy(ORVAS_Sin_32fc, Sin, Plane<Orva32fc>(re, im), 0.501);
      CheckAccuracy(ORVAS_Cos_32fc, Cos, Plane<Orva32fc>(re, im), 0.501);
      CheckAccuracy(ORVAS_Sin_64fc, Sin, Plane<Orva64fc>(re, im), 3);
      CheckAccuracy(ORVAS_Cos_64fc, Cos, Plane<Orva64fc>(re, im), 3);
    }
  }
  // Where cosh y alone overflows.
  CheckAccuracy(ORVAS_Sin_64fc, Sin, Plane<Orva64fc>(1e-300, 1390), 3.5);
  CheckAccuracy(ORVAS_Cos_64fc, Cos, Plane<Orva64fc>(1e-2, 712), 3.5);
  for (double size : {1e-300, 1e-20, 1.0, 1e20, 1e300}) {
    CheckAccuracy(ORVAS_Log10_64fc, Log10, Plane<Orva64fc>(size, size), 2.5);
    if (size > 1e-30 && size < 1e30) CheckAccuracy(ORVAS_Log10_32fc, Log10, Plane<Orva32fc>(size, size), 0.501);
  }
}

TEST(ComplexFunctions, LogarithmNearTheUnitCircle) {
  Random random(4);
  std::vector<Orva64fc> values(3000);
  for (Orva64fc& z : values) {
    const double angle = 7 * random.Unit();
    z = {std::cos(angle), std::sin(angle)};  // rounding leaves |z|^2 - 1 of about 1e-16
  }
  values[0] = {1, 1e-160}, values[1] = {1e-9, 1}, values[2] = {0.6, 0.8}, values[3] = {1, 0};
  CheckAccuracy(ORVAS_Log10_64fc, Log10, values, 3);
}

// Equal in the sense of C's annex on complex arithmetic: the sign beside a NaN is free.
template <class T>
testing::AssertionResult SameSpecial(std::complex<double> expected, T re, T im) {
  const bool free = std::isnan(expected.real()) || std::isnan(expected.imag());
  const auto same = [&](double e, double a) {
    if (std::isnan(e) || std::isnan(a)) return std::isnan(e) && std::isnan(a);
    if (std::isfinite(e) && e != 0) return std::fabs(a / e - 1) < 1e-6;
    return std::fabs(e) == std::fabs(a) && (free || std::signbit(e) == std::signbit(a));
  };
  if (same(expected.real(), re) && same(expected.imag(), im)) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "expected " << expected << ", got (" << re << "," << im << ")";
}

template <class Complex>
void CheckSpecial(OrvaStatus (*log)(const Complex*, Complex*, int32_t),
                  OrvaStatus (*sin)(const Complex*, Complex*, int32_t),
                  OrvaStatus (*cos)(const Complex*, Complex*, int32_t)) {
  using T = decltype(Complex::re);
  const T values[] = {0, T(-0.0), T(0.75), T(-2.5), T(HUGE_VAL), T(-HUGE_VAL), T(NAN)};
  for (T re : values) {
    for (T im : values) {
      const Complex z = {re, im};
      const std::complex<double> wide(re, im);
      Complex dst;
      const bool zero = re == 0 && im == 0;
      EXPECT_EQ(log(&z, &dst, 1), zero ? ORVA_STS_SINGULARITY_ERR : ORVA_STS_NO_ERR);
      const std::complex<double> logarithm = std::log(wide);
      EXPECT_TRUE(SameSpecial({logarithm.real() / M_LN10, logarithm.imag() / M_LN10}, dst.re, dst.im))
          << "log10 of " << wide;
      EXPECT_EQ(sin(&z, &dst, 1), ORVA_STS_NO_ERR);
      EXPECT_TRUE(SameSpecial(std::sin(wide), dst.re, dst.im)) << "sin of " << wide;
      EXPECT_EQ(cos(&z, &dst, 1), ORVA_STS_NO_ERR);
      EXPECT_TRUE(SameSpecial(std::cos(wide), dst.re, dst.im)) << "cos of " << wide;
    }
  }
}

TEST(ComplexFunctions, SpecialValuesAreThoseOfC) {
  CheckSpecial(ORVAS_Log10_32fc, ORVAS_Sin_32fc, ORVAS_Cos_32fc);
  CheckSpecial(ORVAS_Log10_64fc, ORVAS_Sin_64fc, ORVAS_Cos_64fc);
}

template <class T>
void CheckPowx(OrvaStatus (*member)(const T*, T, T*, int32_t), double bound) {
  Random random(6);
  for (T y : {T(2), T(-3), T(0.5), T(-0.37), T(17.25), T(1e-3), T(300)}) {
    std::vector<T> src(1000), dst(1000);
    for (T& x : src) x = static_cast<T>(std::ldexp(random.Unit() + 1e-9, static_cast<int>(random.Below(40)) - 20));
    ASSERT_EQ(member(src.data(), y, dst.data(), 1000), ORVA_STS_NO_ERR);
    for (size_t i = 0; i < src.size(); ++i)
      ASSERT_LE(Ulps(dst[i], std::pow(static_cast<long double>(src[i]), static_cast<long double>(y))), bound)
          << src[i] << " to " << y;
  }
  const T values[] = {0, T(-0.0), T(0.5), T(-0.5), 1, -1, 3, -3, T(HUGE_VAL), T(-HUGE_VAL), T(NAN)};
  for (T x : values) {
    for (T y : {T(0), T(-0.0), T(2), T(3), T(-2), T(-3), T(0.5), T(-0.5), T(1e20), T(-1e20), T(HUGE_VAL), T(-HUGE_VAL),
                T(NAN)}) {
      T dst;
      const OrvaStatus status = member(&x, y, &dst, 1);
      const T expected = std::pow(x, y);
      EXPECT_TRUE(
          (std::isnan(expected) && std::isnan(dst)) ||
          (std::signbit(expected) == std::signbit(dst) && (expected == dst || Ulps<T>(dst, expected) <= 1 + bound)))
          << x << " to " << y << " gives " << dst << ", not " << expected;
      const bool outside = x < 0 && std::isfinite(x) && std::isfinite(y) && y != std::trunc(y);
      EXPECT_EQ(status, x == 0 && y < 0 ? ORVA_STS_SINGULARITY_ERR
                        : outside       ? ORVA_STS_DOMAIN_ERR
                                        : ORVA_STS_NO_ERR)
          << x << " to " << y;
    }
  }
}

TEST(Powx, GoodBitsAndSpecialValues) {
  CheckPowx(ORVAS_Powx_32f_A11, 0.501);
  CheckPowx(ORVAS_Powx_32f_A21, 0.501);
  CheckPowx(ORVAS_Powx_32f_A24, 0.501);
  CheckPowx(ORVAS_Powx_64f_A26, 0x1p12);  // 53 - 12 good bits
  CheckPowx(ORVAS_Powx_64f_A50, 1);
  CheckPowx(ORVAS_Powx_64f_A53, 1);
}

TEST(Powx, LastOffendingElementDecides) {
  std::vector<float> src(300, 1), dst(300);
  src[10] = 0, src[200] = -1;
  EXPECT_EQ(ORVAS_Powx_32f_A24(src.data(), -0.5f, dst.data(), 300), ORVA_STS_DOMAIN_ERR);
  EXPECT_EQ(dst[10], HUGE_VALF);
  EXPECT_TRUE(std::isnan(dst[200]));
  EXPECT_EQ(dst[299], 1);
  std::swap(src[10], src[200]);
  EXPECT_EQ(ORVAS_Powx_32f_A24(src.data(), -0.5f, dst.data(), 300), ORVA_STS_SINGULARITY_ERR);
}

template <class T>
void CheckScaled(OrvaStatus (*exp)(const T*, T*, int32_t, double), OrvaStatus (*log)(const T*, T*, int32_t, double)) {
  using Limits = std::numeric_limits<T>;
  std::vector<T> src, dst;
  for (int x = -20; x <= 40; ++x) src.push_back(static_cast<T>(x));
  for (T x : {T(700), T(709), T(710), T(32767), Limits::max(), Limits::min()}) src.push_back(x);
  dst.resize(src.size());
  const auto len = static_cast<int32_t>(src.size());
  for (int exponent : {0, -3, -10, -20, 5, 60, 1000, -1074}) {
    const double scale = std::ldexp(1, exponent);
    const auto expected = [&](long double value) {
      const long double scaled = std::ldexp(value, -exponent);
      if (std::isnan(scaled)) return T(0);
      return static_cast<T>(std::clamp(std::nearbyint(scaled), static_cast<long double>(Limits::min()),
                                       static_cast<long double>(Limits::max())));
    };
    ASSERT_EQ(exp(src.data(), dst.data(), len, scale), ORVA_STS_NO_ERR);
    // Of the largest and smallest exponents one factor is infinite and the other subnormal.
    for (int32_t i = 0; i < len && exponent > -1074; ++i)
      ASSERT_EQ(dst[i], expected(src[i] > 709 ? HUGE_VALL : std::exp(static_cast<long double>(src[i]))))
          << src[i] << " " << exponent;
    ASSERT_EQ(log(src.data(), dst.data(), len, scale), ORVA_STS_LN_NEG_WARN);  // the last one
    for (int32_t i = 0; i < len && exponent > -1074; ++i)
      ASSERT_EQ(dst[i], src[i] < 0 ? T(0) : expected(std::log(static_cast<long double>(src[i]))))
          << src[i] << " " << exponent;
  }
}

TEST(ScaledExpLog, RoundedOnceFromTheScaledValue) {
  CheckScaled(ORVAS_Exp_16s_S, ORVAS_Ln_16s_S);
  CheckScaled(ORVAS_Exp_32s_S, ORVAS_Ln_32s_S);
}

TEST(ScaledExpLog, LastElementWithoutLogarithmDecides) {
  std::vector<Orva16s> x(600, 2);
  x[3] = -1, x[290] = 0;
  std::vector<Orva16s> dst(600);
  EXPECT_EQ(ORVAS_Ln_16s_S(x.data(), dst.data(), 600, 0x1p-10), ORVA_STS_LN_ZERO_WARN);
  EXPECT_EQ(dst[3], 0);
  EXPECT_EQ(dst[290], -32768);
  EXPECT_EQ(dst[599], 710);
  std::swap(x[3], x[290]);
  EXPECT_EQ(ORVAS_Ln_16s_IS(x.data(), 600, 0x1p-10), ORVA_STS_LN_NEG_WARN);
  EXPECT_EQ(x[599], 710);
}

}  // namespace
}  // namespace tzm_test
