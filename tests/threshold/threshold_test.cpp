// Thresholds against the rules said one element at a time, and at the sharp places.
#include <signal_tzm/threshold.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

// Runs `member` over every variety and length and holds it against `rule(x, inBody)` of each element, the
// body being the first elements up to a multiple of `block`.
template <class T, class Member, class Rule>
void ExpectRule(const char* name, size_t block, Member member, Rule rule) {
  for (Variety variety : kVarieties) {
    const auto all = RandomArray<T>(75, 3, variety);
    for (size_t n = 1; n <= all.size(); ++n) {
      const GuardedArray<T> src(std::vector<T>(all.begin(), all.begin() + static_cast<long>(n)));
      GuardedArray<T> dst(n);
      std::vector<T> expected(n);
      for (size_t i = 0; i < n; ++i) expected[i] = rule(src.data()[i], i < n / block * block);
      EXPECT_EQ(ORVA_STS_NO_ERR, member(src.data(), dst.data(), static_cast<int32_t>(n))) << name;
      ASSERT_TRUE(SameBits(name, expected.data(), dst.data(), n)) << name << " length " << n;
    }
  }
}
#define EXPECT_RULE(T, block, member, arguments, rule) \
  ExpectRule<T>(#member, block, [&](const T* src, T* dst, int32_t n) { return member(src, dst, n, arguments); }, rule)
#define WITH(...) __VA_ARGS__

template <class T>
T MaxOrNan(T x, T level) {
  if (x != x || level != level) return std::numeric_limits<T>::quiet_NaN();
  if (x == level) return std::signbit(x) ? level : x;
  return x > level ? x : level;
}
template <class T>
T MinOrNan(T x, T level) {
  return -MaxOrNan(-x, -level);
}

template <class T>
void ExpectFloatLevels(OrvaStatus (*lt)(const T*, T*, int32_t, T), OrvaStatus (*gt)(const T*, T*, int32_t, T)) {
  const size_t block = 16 / sizeof(T);
  for (T level : {T(0.5), T(0), T(-0.0), T(-3), std::numeric_limits<T>::quiet_NaN(), std::numeric_limits<T>::infinity()}) {
    EXPECT_RULE(T, block, lt, level, [=](T x, bool body) { return body ? MaxOrNan(x, level) : level > x ? level : x; });
    EXPECT_RULE(T, block, gt, level, [=](T x, bool body) { return body ? MinOrNan(x, level) : level < x ? level : x; });
  }
}

TEST(Threshold, FloatLevelsInBodyAndTail) {
  ExpectFloatLevels<Orva32f>(ORVAS_Threshold_LT_32f, ORVAS_Threshold_GT_32f);
  ExpectFloatLevels<Orva64f>(ORVAS_Threshold_LT_64f, ORVAS_Threshold_GT_64f);
}

template <class T, class Members>
void ExpectIntegers(Members m) {
  for (T level : {T(0), T(1), T(5), T(-7), std::numeric_limits<T>::max(), std::numeric_limits<T>::min()}) {
    EXPECT_RULE(T, 1, m.lt, level, [=](T x, bool) { return x < level ? level : x; });
    EXPECT_RULE(T, 1, m.gt, level, [=](T x, bool) { return x > level ? level : x; });
    EXPECT_RULE(T, 1, m.ltAbsVal, WITH(level, T(77)), [=](T x, bool) {
      const int64_t magnitude = std::min<int64_t>(std::abs(int64_t{x}), std::numeric_limits<T>::max());
      return magnitude < level ? T(77) : x;
    });
    if (level < 0) continue;
    EXPECT_RULE(T, 1, m.ltAbs, level, [=](T x, bool) { return std::abs(int64_t{x}) >= level ? x : x >= 0 ? level : T(-level); });
    EXPECT_RULE(T, 1, m.gtAbs, level, [=](T x, bool) { return std::abs(int64_t{x}) <= level ? x : x >= 0 ? level : T(-level); });
  }
  EXPECT_RULE(T, 1, m.ltValGtVal, WITH(T(-9), T(70), T(20), T(80)), [](T x, bool) { return x < -9 ? T(70) : x > 20 ? T(80) : x; });
}

TEST(Threshold, Integers) {
  struct {
    decltype(&ORVAS_Threshold_LT_16s) lt = ORVAS_Threshold_LT_16s, gt = ORVAS_Threshold_GT_16s,
                                      ltAbs = ORVAS_Threshold_LTAbs_16s, gtAbs = ORVAS_Threshold_GTAbs_16s;
    decltype(&ORVAS_Threshold_LTAbsVal_16s) ltAbsVal = ORVAS_Threshold_LTAbsVal_16s;
    decltype(&ORVAS_Threshold_LTValGTVal_16s) ltValGtVal = ORVAS_Threshold_LTValGTVal_16s;
  } narrow;
  struct {
    decltype(&ORVAS_Threshold_LT_32s) lt = ORVAS_Threshold_LT_32s, gt = ORVAS_Threshold_GT_32s,
                                      ltAbs = ORVAS_Threshold_LTAbs_32s, gtAbs = ORVAS_Threshold_GTAbs_32s;
    decltype(&ORVAS_Threshold_LTAbsVal_32s) ltAbsVal = ORVAS_Threshold_LTAbsVal_32s;
    decltype(&ORVAS_Threshold_LTValGTVal_32s) ltValGtVal = ORVAS_Threshold_LTValGTVal_32s;
  } wide;
  ExpectIntegers<Orva16s>(narrow);
  ExpectIntegers<Orva32s>(wide);
  EXPECT_RULE(Orva16s, 1, ORVAS_Threshold_LTVal_16s, WITH(5, 77), [](Orva16s x, bool) { return Orva16s(x < 5 ? 77 : x); });
  EXPECT_RULE(Orva16s, 1, ORVAS_Threshold_GTVal_16s, WITH(5, 77), [](Orva16s x, bool) { return Orva16s(x > 5 ? 77 : x); });
}

TEST(Threshold, FloatRules) {
  const double nan = NAN;
  for (double level : {0.5, 0.0, 2.0, nan}) {
    EXPECT_RULE(Orva64f, 1, ORVAS_Threshold_LTVal_64f, WITH(level, 77), [=](double x, bool) { return x < level ? 77 : x; });
    EXPECT_RULE(Orva64f, 1, ORVAS_Threshold_GTVal_64f, WITH(level, 77), [=](double x, bool) { return x > level ? 77 : x; });
    EXPECT_RULE(Orva64f, 1, ORVAS_Threshold_LTAbs_64f, level, [=](double x, bool) {
      return std::fabs(x) >= level ? x : x >= 0 ? level : -level;
    });
    EXPECT_RULE(Orva64f, 1, ORVAS_Threshold_GTAbs_64f, level, [=](double x, bool) {
      return std::fabs(x) > level ? (x < 0 ? -level : level) : x;
    });
    EXPECT_RULE(Orva64f, 1, ORVAS_Threshold_LTAbsVal_64f, WITH(level, 77), [=](double x, bool) {
      return std::fabs(x) < level ? 77 : x;
    });
    const float level32 = static_cast<float>(level);
    EXPECT_RULE(Orva32f, 1, ORVAS_Threshold_LTAbs_32f, level32, [=](float x, bool) {
      return std::fabs(x) >= level32 ? x : x >= 0 ? level32 : -level32;
    });
  }
  EXPECT_RULE(Orva32f, 1, ORVAS_Threshold_LTValGTVal_32f, WITH(-0.5f, 7, 0.5f, 8), [](float x, bool) {
    return x > 0.5f ? 8.0f : x < -0.5f ? 7.0f : x;
  });
}

TEST(Threshold, Relation) {
  const Orva16s src[] = {4, 5, 6};
  Orva16s dst[3];
  EXPECT_EQ(ORVA_STS_BAD_ARG_ERR, ORVAS_Threshold_16s(nullptr, dst, 0, 5, 1));
  EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_Threshold_16s(src, dst, 3, 5, 0));
  EXPECT_EQ(5, dst[0]);
  EXPECT_EQ(6, dst[2]);
  EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_Threshold_16s(src, dst, 3, 5, 4));
  EXPECT_EQ(4, dst[0]);
  EXPECT_EQ(5, dst[2]);
}

// ---- Reciprocals ----

template <class T>
void ExpectInverse(OrvaStatus (*member)(const T*, T*, int32_t, T)) {
  const size_t block = 16 / sizeof(T);
  EXPECT_RULE(T, block, member, T(0.7), [](T x, bool body) {
    const T level = T(0.7);
    if (x == 0) return 1 / level;
    if (std::fabs(x) >= level) return 1 / x;
    if (x != x) return body ? -(1 / level) : x;
    return std::fabs(x) / x / level;
  });
  for (size_t n = 1; n < 20; ++n) {
    std::vector<T> src(n, T(2)), dst(n);
    EXPECT_EQ(ORVA_STS_NO_ERR, member(src.data(), dst.data(), static_cast<int32_t>(n), T(0)));
    for (size_t zero = 0; zero < n; ++zero) {
      src[zero] = zero % 2 ? T(0) : T(-0.0);
      EXPECT_EQ(ORVA_STS_INV_ZERO_ERR, member(src.data(), dst.data(), static_cast<int32_t>(n), zero % 3 ? T(0) : T(NAN)));
      for (size_t i = 0; i < n; ++i) EXPECT_EQ(i == zero ? std::numeric_limits<T>::infinity() : T(0.5), dst[i]);
      src[zero] = 2;
    }
  }
}

TEST(Threshold, Inverse) {
  ExpectInverse<Orva32f>(ORVAS_Threshold_LTInv_32f);
  ExpectInverse<Orva64f>(ORVAS_Threshold_LTInv_64f);
}

// ---- Complex samples ----

Orva32fc ComplexInverse(Orva32fc x, float level, bool body) {
  const float square = std::fmaf(x.re, x.re, x.im * x.im), magnitude = std::sqrt(square);
  if (magnitude == 0) {
    if (level > 0) return {std::copysign(1 / level, x.re), -x.im / level};
    return {std::copysign(INFINITY, x.re), -0.5f * x.im};
  }
  const float reciprocal = 1 / square;
  if (!(level > 0) || !(magnitude < level))
    return body ? Orva32fc{x.re * reciprocal, -x.im * reciprocal} : Orva32fc{x.re / square, -x.im / square};
  const float ratio = magnitude / square, most = 1 / level;
  if (body) return {magnitude * (x.re * reciprocal) * most, magnitude * (-x.im * reciprocal) * most};
  return {ratio * x.re / level, ratio * -x.im / level};
}

TEST(Threshold, ComplexInverse) {
  EXPECT_RULE(Orva32fc, 4, ORVAS_Threshold_LTInv_32fc, 0.7f, [](Orva32fc x, bool body) { return ComplexInverse(x, 0.7f, body); });
  const auto run = [](std::vector<Orva32fc> src) {
    std::vector<Orva32fc> dst(src.size());
    const OrvaStatus status = ORVAS_Threshold_LTInv_32fc(src.data(), dst.data(), static_cast<int32_t>(src.size()), 0);
    for (size_t i = 0; i < src.size(); ++i) {
      const Orva32fc expected = ComplexInverse(src[i], 0, i < src.size() / 4 * 4);
      EXPECT_TRUE(SameBits("LTInv_32fc", &expected, &dst[i], 1)) << i;
    }
    return status;
  };
  const Orva32fc one = {1, 2}, real = {1, 0}, imaginary = {0, 1}, tiny = {1e-30f, 1e-30f}, zero = {-0.0f, 0};
  EXPECT_EQ(ORVA_STS_NO_ERR, run({one, one, one, one}));
  EXPECT_EQ(ORVA_STS_INV_ZERO_ERR, run({one, one, one, zero}));
  EXPECT_EQ(ORVA_STS_INV_ZERO_ERR, run({one, real, one, imaginary}));                   // no zero element
  EXPECT_EQ(ORVA_STS_NO_ERR, run({one, one, one, real, imaginary, one, one, one}));     // not in one step
  EXPECT_EQ(ORVA_STS_NO_ERR, run({one, one, tiny, one}));                               // underflow in the body
  EXPECT_EQ(ORVA_STS_INV_ZERO_ERR, run({one, one, one, one, tiny}));                    // and in the tail
  EXPECT_EQ(ORVA_STS_NO_ERR, run({one, one, one, one, real, imaginary}));
}

TEST(Threshold, ComplexLevels) {
  // Scaled to the level along their direction, within the rounding of the estimates.
  for (size_t n : {1, 2, 3, 8, 17, 64, 65}) {
    const auto src = RandomArray<Orva32fc>(n, n);
    std::vector<Orva32fc> dst(n);
    for (bool less : {true, false}) {
      const auto member = less ? ORVAS_Threshold_LT_32fc : ORVAS_Threshold_GT_32fc;
      EXPECT_EQ(ORVA_STS_NO_ERR, member(src.data(), dst.data(), static_cast<int32_t>(n), 1.5f));
      for (size_t i = 0; i < n; ++i) {
        const double magnitude = std::hypot(double{src[i].re}, double{src[i].im});
        if (std::fabs(magnitude - 1.5) < 1e-6) continue;
        if ((magnitude < 1.5) != less) {
          EXPECT_TRUE(SameBits("copied", &src[i], &dst[i], 1));
        } else {
          EXPECT_NEAR(src[i].re * 1.5 / magnitude, dst[i].re, 4e-7);
          EXPECT_NEAR(src[i].im * 1.5 / magnitude, dst[i].im, 4e-7);
        }
      }
    }
  }
  // Zero, overflow and NaN have no direction; subnormal squares have an exact root.
  const Orva32fc odd[] = {{0, 0}, {3e30f, 0}, {NAN, 1}, {0x1p-70f, 0}, {0, -6}, {6, 8}};
  Orva32fc dst[6];
  EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_Threshold_LT_32fc(odd, dst, 6, 5));
  EXPECT_TRUE(SameBits("LT", odd, dst, 3));
  EXPECT_NEAR(5, dst[3].re, 1e-4);
  EXPECT_EQ(-6, dst[4].im);
  EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_Threshold_GT_32fc(odd, dst, 6, 5));
  EXPECT_NEAR(3, dst[5].re, 1e-6);
  EXPECT_NEAR(4, dst[5].im, 1e-6);
  const auto squares = [](Orva32fc x) { return std::fmaf(x.re, x.re, x.im * x.im); };
  const Orva32fc value = {7, 8};
  EXPECT_RULE(Orva32fc, 1, ORVAS_Threshold_LTVal_32fc, WITH(0.9f, value), [&](Orva32fc x, bool) { return 0.9f * 0.9f > squares(x) ? value : x; });
  EXPECT_RULE(Orva32fc, 1, ORVAS_Threshold_GTVal_32fc, WITH(0.9f, value), [&](Orva32fc x, bool) { return squares(x) > 0.9f * 0.9f ? value : x; });
}

}  // namespace
}  // namespace tzm_test
