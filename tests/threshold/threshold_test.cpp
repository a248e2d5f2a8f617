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
template <class T, class Rule, class... Level>
void ExpectRule(const char* name, size_t block, OrvaStatus (*member)(const T*, T*, int32_t, Level...), Rule rule,
                std::type_identity_t<Level>... levels) {
  for (Variety variety : kVarieties) {
    const auto all = RandomArray<T>(75, 3, variety);
    for (size_t n = 1; n <= all.size(); ++n) {
      const GuardedArray<T> src(std::vector<T>(all.begin(), all.begin() + static_cast<long>(n)));
      GuardedArray<T> dst(n);
      std::vector<T> expected(n);
      for (size_t i = 0; i < n; ++i) expected[i] = rule(src.data()[i], i < n / block * block);
      EXPECT_EQ(ORVA_STS_NO_ERR, member(src.data(), dst.data(), static_cast<int32_t>(n), levels...)) << name;
      ASSERT_TRUE(SameBits(name, expected.data(), dst.data(), n)) << name << " length " << n;
    }
  }
}
// The rule is an expression of the element x, in the body or not.
#define EXPECT_RULE(tag, name, block, rule, ...)                                          \
  ExpectRule<Orva##tag>(#name, block, ORVAS_Threshold_##name##_##tag,                     \
                        [&]([[maybe_unused]] Orva##tag x, [[maybe_unused]] bool body) {   \
                          return static_cast<Orva##tag>(rule);                            \
                        }, __VA_ARGS__)

// ---- Real samples ----

// The magnitude of a sample; its integer form never overflows.
template <class T>
auto Magnitude(T x) {
  if constexpr (std::is_integral_v<T>) return std::abs(int64_t{x});
  else return std::fabs(x);
}
template <class T>
auto SaturatedMagnitude(T x) {
  if constexpr (std::is_integral_v<T>) return std::min<int64_t>(Magnitude(x), std::numeric_limits<T>::max());
  else return Magnitude(x);
}

template <class T>
T MaxOrNan(T x, T level) {
  if (x != x || level != level) return std::numeric_limits<T>::quiet_NaN();
  if (x == level) return std::signbit(x) ? level : x;
  return x > level ? x : level;
}

// The members that all four types have.
#define EXPECT_REAL(tag)                                                                                      \
  for (const Orva##tag level : Levels<Orva##tag>()) {                                                         \
    EXPECT_RULE(tag, LTAbsVal, 1, SaturatedMagnitude(x) < level ? 77 : x, level, 77);                         \
    if (level < 0) continue;                                                                                  \
    EXPECT_RULE(tag, LTAbs, 1, Magnitude(x) >= level ? x : x >= 0 ? level : -level, level);                   \
    EXPECT_RULE(tag, GTAbs, 1, Magnitude(x) > level ? (x < 0 ? -level : level) : x, level);                   \
  }                                                                                                           \
  EXPECT_RULE(tag, LTValGTVal, 1, x < -2 ? 70 : x > 1 ? 80 : x, -2, 70, 1, 80)
#define EXPECT_REPLACED(tag)                                                 \
  for (const Orva##tag level : Levels<Orva##tag>()) {                        \
    EXPECT_RULE(tag, LTVal, 1, x < level ? 77 : x, level, 77);               \
    EXPECT_RULE(tag, GTVal, 1, x > level ? 77 : x, level, 77);               \
  }
#define EXPECT_INTEGERS(tag)                                                 \
  for (const Orva##tag level : Levels<Orva##tag>()) {                        \
    EXPECT_RULE(tag, LT, 1, x < level ? level : x, level);                   \
    EXPECT_RULE(tag, GT, 1, x > level ? level : x, level);                   \
  }                                                                          \
  EXPECT_REAL(tag)
#define EXPECT_FLOATS(tag)                                                                                       \
  for (const Orva##tag level : Levels<Orva##tag>()) {                                                            \
    EXPECT_RULE(tag, LT, 16 / sizeof level, body ? MaxOrNan(x, level) : level > x ? level : x, level);               \
    EXPECT_RULE(tag, GT, 16 / sizeof level, body ? -MaxOrNan(-x, -level) : level < x ? level : x, level);            \
  }                                                                                                              \
  EXPECT_REAL(tag)

template <class T>
std::vector<T> Levels() {
  using Limits = std::numeric_limits<T>;
  if constexpr (std::is_integral_v<T>) return {0, 1, 5, -7, Limits::max(), Limits::min()};
  else return {T(0.5), 0, T(-0.0), -3, Limits::quiet_NaN(), Limits::infinity()};
}

TEST(Threshold, Integers) {
  EXPECT_INTEGERS(16s);
  EXPECT_INTEGERS(32s);
  EXPECT_REPLACED(16s);
}

TEST(Threshold, Floats) {
  EXPECT_FLOATS(32f);
  EXPECT_FLOATS(64f);
  EXPECT_REPLACED(32f);
  EXPECT_REPLACED(64f);
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
T Inverse(T x, T level, bool body) {
  if (x == 0) return 1 / level;
  if (std::fabs(x) >= level) return 1 / x;
  if (x != x) return body ? -(1 / level) : x;
  return std::fabs(x) / x / level;
}

template <class T>
void ExpectZerosReported(OrvaStatus (*member)(const T*, T*, int32_t, T)) {
  for (size_t n = 1; n < 20; ++n) {
    const auto len = static_cast<int32_t>(n);
    std::vector<T> src(n, T(2)), dst(n);
    EXPECT_EQ(ORVA_STS_NO_ERR, member(src.data(), dst.data(), len, T(0)));
    for (size_t zero = 0; zero < n; ++zero) {
      src[zero] = zero % 2 ? T(0) : T(-0.0);
      EXPECT_EQ(ORVA_STS_INV_ZERO_ERR, member(src.data(), dst.data(), len, zero % 3 ? T(0) : T(NAN)));
      for (size_t i = 0; i < n; ++i) EXPECT_EQ(i == zero ? std::numeric_limits<T>::infinity() : T(0.5), dst[i]);
      src[zero] = 2;
    }
  }
}

TEST(Threshold, Inverse) {
  EXPECT_RULE(32f, LTInv, 4, Inverse(x, 0.7f, body), 0.7f);
  EXPECT_RULE(64f, LTInv, 2, Inverse(x, 0.7, body), 0.7);
  ExpectZerosReported(ORVAS_Threshold_LTInv_32f);
  ExpectZerosReported(ORVAS_Threshold_LTInv_64f);
}

// ---- Complex samples ----

float Square(Orva32fc x) { return std::fmaf(x.re, x.re, x.im * x.im); }

Orva32fc Inverse(Orva32fc x, float level, bool body) {
  const float square = Square(x), magnitude = std::sqrt(square);
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
  EXPECT_RULE(32fc, LTInv, 4, Inverse(x, 0.7f, body), 0.7f);
  const auto run = [](std::vector<Orva32fc> src) {
    std::vector<Orva32fc> dst(src.size());
    const OrvaStatus status = ORVAS_Threshold_LTInv_32fc(src.data(), dst.data(), static_cast<int32_t>(src.size()), 0);
    for (size_t i = 0; i < src.size(); ++i) {
      const Orva32fc expected = Inverse(src[i], 0, i < src.size() / 4 * 4);
      EXPECT_TRUE(SameBits("LTInv_32fc", &expected, &dst[i], 1)) << i;
    }
    return status;
  };
  const Orva32fc one = {1, 2}, real = {1, 0}, imaginary = {0, 1}, tiny = {1e-30f, 1e-30f}, zero = {-0.0f, 0};
  EXPECT_EQ(ORVA_STS_NO_ERR, run({one, one, one, one}));
  EXPECT_EQ(ORVA_STS_INV_ZERO_ERR, run({one, one, one, zero}));
  EXPECT_EQ(ORVA_STS_INV_ZERO_ERR, run({one, real, one, imaginary}));                // no zero element
  EXPECT_EQ(ORVA_STS_NO_ERR, run({one, one, one, real, imaginary, one, one, one}));  // not in one step
  EXPECT_EQ(ORVA_STS_NO_ERR, run({one, one, tiny, one}));                            // underflow in the body
  EXPECT_EQ(ORVA_STS_INV_ZERO_ERR, run({one, one, one, one, tiny}));                 // and in the tail
  EXPECT_EQ(ORVA_STS_NO_ERR, run({one, one, one, one, real, imaginary}));
}

// The estimates as the architecture defines them, by integers.
float RootEstimate(float x) {
  int exponent;
  const double fraction = std::frexp(x, &exponent);
  const int a = static_cast<int>(fraction * (exponent % 2 != 0 ? 256 : 512));
  const int64_t middle = a < 256 ? 2 * a + 1 : 2 * (a / 2 * 2 + 1);
  int64_t b = 512;
  while (middle * (b + 1) * (b + 1) < int64_t{1} << 28) ++b;
  return static_cast<float>(std::ldexp(static_cast<double>((b + 1) / 2), -8 - (exponent + (exponent % 2 != 0)) / 2));
}
double ReciprocalEstimate(double x) {
  int exponent;
  const int a = static_cast<int>(std::frexp(x, &exponent) * 512);
  return std::ldexp(((1 << 19) / (2 * a + 1) + 1) / 2, -8 - exponent);
}

Orva32fc Limited(Orva32fc x, float level, bool less, bool body) {
  const float square = body ? std::fmaf(x.im, x.im, x.re * x.re) : Square(x);
  if (!(square > 0) || std::isinf(square)) return x;
  float magnitude = 1 / std::sqrt(square) * square;
  if (body) {
    float root = RootEstimate(square);
    for (int step = 0; step < 2; ++step) root = root * (std::fmaf(-(square * root), root, 3.0f) * 0.5f);
    magnitude = root * square;
  }
  if (square < std::numeric_limits<float>::min()) magnitude = std::sqrt(square);
  if (less ? !(magnitude < level) : !(magnitude > level)) return x;
  double reciprocal = ReciprocalEstimate(magnitude);
  for (int step = 0; step < 2; ++step) reciprocal = reciprocal * std::fma(-double{magnitude}, reciprocal, 2.0);
  const auto part = [&](double from) {
    return static_cast<float>(body ? from * level * reciprocal : from * level / magnitude);
  };
  return {part(x.re), part(x.im)};
}

TEST(Threshold, ComplexLevels) {
  for (float level : {0.0f, 1.5f, 0x1p-70f, 3e18f, NAN}) {
    EXPECT_RULE(32fc, LT, 2, Limited(x, level, true, body), level);
    EXPECT_RULE(32fc, GT, 2, Limited(x, level, false, body), level);
    const Orva32fc value = {7, 8};
    EXPECT_RULE(32fc, LTVal, 1, level * level > Square(x) ? value : x, level, value);
    EXPECT_RULE(32fc, GTVal, 1, Square(x) > level * level ? value : x, level, value);
  }
  // Zero, overflow and NaN have no direction; subnormal squares have an exact root.
  const std::vector<Orva32fc> odd = {{0, 0}, {3e30f, 0}, {NAN, 1}, {0x1p-70f, 0}, {0, -6}, {6, 8}};
  std::vector<Orva32fc> dst(6);
  EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_Threshold_LT_32fc(odd.data(), dst.data(), 6, 5));
  EXPECT_TRUE(SameBits("LT", odd.data(), dst.data(), 3));
  EXPECT_NEAR(5, dst[3].re, 1e-4);
  EXPECT_EQ(-6, dst[4].im);
  EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_Threshold_GT_32fc(odd.data(), dst.data(), 6, 5));
  EXPECT_NEAR(3, dst[5].re, 1e-6);
  EXPECT_NEAR(4, dst[5].im, 1e-6);
}

}  // namespace
}  // namespace tzm_test
