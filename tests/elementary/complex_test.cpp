// Complex logarithm, sine and cosine, powers by accuracy class: against the system's functions in long double, and C's
// values at zeros, infinities and NaN.
#include <gtest/gtest.h>
#include <signal_tzm/elementary.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>

#include "support/random.h"

namespace tzm_test {
namespace {

using Wide = std::complex<long double>;

// |actual - exact| in units of the last place of the type. NaN, infinity and zero have to be the same.
template <class T>
double Ulps(T actual, long double exact) {
  const T rounded = static_cast<T>(exact);
  if (std::isnan(rounded) && std::isnan(actual)) return 0;
  if (!std::isfinite(rounded) || !std::isfinite(actual) || exact == 0)
    return rounded == actual && std::signbit(rounded) == std::signbit(actual) ? 0 : HUGE_VAL;
  const int exponent = std::max(std::ilogb(exact), std::numeric_limits<T>::min_exponent - 1);
  return static_cast<double>(std::ldexp(std::fabs(actual - exact), std::numeric_limits<T>::digits - 1 - exponent));
}

// Both parts within `bound`. Where one part is NaN, C leaves the sign of the other free.
template <class Complex>
void CheckValues(OrvaStatus (*member)(const Complex*, Complex*, int32_t), Wide (*exact)(Wide),
                 const std::vector<Complex>& values, double bound, OrvaStatus status = ORVA_STS_NO_ERR) {
  std::vector<Complex> dst(values.size());
  ASSERT_EQ(member(values.data(), dst.data(), static_cast<int32_t>(values.size())), status);
  for (size_t i = 0; i < values.size(); ++i) {
    Wide e = exact(Wide(values[i].re, values[i].im));
    if (std::isnan(e.real())) e.imag(std::copysign(e.imag(), static_cast<long double>(dst[i].im)));
    if (std::isnan(e.imag())) e.real(std::copysign(e.real(), static_cast<long double>(dst[i].re)));
    ASSERT_LE(Ulps(dst[i].re, e.real()), bound) << "re of (" << values[i].re << ", " << values[i].im << ")";
    ASSERT_LE(Ulps(dst[i].im, e.imag()), bound) << "im of (" << values[i].re << ", " << values[i].im << ")";
  }
}

// All special parts beside each other, and parts of all sizes up to `reMost` and `imMost`, both signs.
template <class Complex>
std::vector<Complex> Plane(double reMost, double imMost) {
  using T = decltype(Complex::re);
  const T special[] = {0, T(-0.0), T(0.75), T(-2.5), T(HUGE_VAL), T(-HUGE_VAL), T(NAN)};
  Random random(3);
  const auto part = [&](double most) {
    const double size = std::ldexp(random.Unit() + 1e-9, -static_cast<int>(random.Below(40)));
    return static_cast<T>(random.Below(2) ? most * size : -most * size);
  };
  std::vector<Complex> values;
  for (T re : special)
    for (T im : special) values.push_back({re, im});
  while (values.size() < 3000) values.push_back({part(reMost), part(imMost)});
  return values;
}

Wide Log10(Wide z) { return {std::log(z).real() / std::log(10.0L), std::log(z).imag() / std::log(10.0L)}; }
Wide Sin(Wide z) { return std::sin(z); }
Wide Cos(Wide z) { return std::cos(z); }

TEST(ComplexFunctions, AccurateOverThePlaneAndSpecialValuesAsInC) {
  for (double im : {1.0, 20.0, 90.0}) {
    CheckValues(ORVAS_Sin_32fc, Sin, Plane<Orva32fc>(1e5, im), 0.501);
    CheckValues(ORVAS_Cos_32fc, Cos, Plane<Orva32fc>(1e5, im), 0.501);
    CheckValues(ORVAS_Sin_64fc, Sin, Plane<Orva64fc>(1e5, im), 3);
    CheckValues(ORVAS_Cos_64fc, Cos, Plane<Orva64fc>(1e5, im), 3);
  }
  CheckValues(ORVAS_Sin_64fc, Sin, Plane<Orva64fc>(1e-300, 1390), 3.5);  // where cosh y alone overflows
  CheckValues(ORVAS_Cos_64fc, Cos, Plane<Orva64fc>(1e-2, 712), 3.5);
  for (double size : {1e-300, 1e-20, 1.0, 1e20, 1e300}) {  // one of the special values is the pole
    CheckValues(ORVAS_Log10_64fc, Log10, Plane<Orva64fc>(size, size), 2.5, ORVA_STS_SINGULARITY_ERR);
    if (size < 1e-30 || size > 1e30) continue;
    CheckValues(ORVAS_Log10_32fc, Log10, Plane<Orva32fc>(size, size), 0.501, ORVA_STS_SINGULARITY_ERR);
  }
  std::vector<Orva64fc> circle = {{1, 1e-160}, {1e-9, 1}, {0.6, 0.8}, {1, 0}};
  for (int i = 0; i < 3000; ++i) circle.push_back({std::cos(0.002 * i), std::sin(0.002 * i)});
  CheckValues(ORVAS_Log10_64fc, Log10, circle, 3);
}

template <class T>
void CheckPowx(OrvaStatus (*member)(const T*, T, T*, int32_t), double bound) {
  Random random(6);
  for (T y : {T(0), T(-0.0), T(2), T(3), T(-2), T(-3), T(0.5), T(-0.5), T(-0.37), T(17.25), T(1e-3), T(300), T(1e20),
              T(-1e20), T(HUGE_VAL), T(-HUGE_VAL), T(NAN)}) {
    std::vector<T> src = {0, T(-0.0), T(0.5), T(-0.5), 1, -1, 3, -3, T(HUGE_VAL), T(-HUGE_VAL), T(NAN)}, dst(500);
    while (src.size() < dst.size())
      src.push_back(static_cast<T>(std::ldexp(random.Unit() + 1e-9, static_cast<int>(random.Below(40)) - 20)));
    const bool fraction = std::isfinite(y) && y != std::trunc(y);
    EXPECT_EQ(member(src.data(), y, dst.data(), 500), fraction  ? ORVA_STS_DOMAIN_ERR  // of -3, the last one
                                                      : y < 0 ? ORVA_STS_SINGULARITY_ERR
                                                              : ORVA_STS_NO_ERR);
    for (size_t i = 0; i < src.size(); ++i)
      ASSERT_LE(Ulps(dst[i], std::pow(static_cast<long double>(src[i]), static_cast<long double>(y))), bound)
          << src[i] << " to " << y;
  }
  const T zeroLast[] = {-1, 0, 2, T(-HUGE_VAL), T(NAN)};
  T dst[5];
  EXPECT_EQ(member(zeroLast, T(-0.5), dst, 5), ORVA_STS_SINGULARITY_ERR);
  EXPECT_EQ(member(zeroLast + 2, T(-0.5), dst, 3), ORVA_STS_NO_ERR);
  EXPECT_EQ(member(zeroLast + 1, T(0.5), dst, 2), ORVA_STS_NO_ERR);  // zero has broken powers above 0
}
TEST(Powx, GoodBitsSpecialValuesAndTheLastOffender) {
  CheckPowx(ORVAS_Powx_32f_A11, 0.501);
  CheckPowx(ORVAS_Powx_32f_A21, 0.501);
  CheckPowx(ORVAS_Powx_32f_A24, 0.501);
  CheckPowx(ORVAS_Powx_64f_A26, 0x1p12);  // 53 - 12 good bits
  CheckPowx(ORVAS_Powx_64f_A50, 1);
  CheckPowx(ORVAS_Powx_64f_A53, 1);
}

}  // namespace
}  // namespace tzm_test
