// Conversions to and from binary16 over all of its values, under every rounding mode of the caller.
#include <signal_tzm/arith.h>

#include <cfenv>
#include <cmath>
#include <limits>

#include "support/compare.h"
#include "support/random.h"

namespace tzm_test {
namespace {

// The value of a finite or infinite half: f * 2^(e - 25) with the leading one made explicit.
double Value(Orva16f half) {
  const int exponent = half >> 10 & 31, fraction = half & 1023;
  double magnitude = exponent == 0 ? std::ldexp(fraction, -24) : std::ldexp(1024 + fraction, exponent - 25);
  if (exponent == 31) magnitude = fraction == 0 ? INFINITY : NAN;
  return half & 0x8000 ? -magnitude : magnitude;
}

// The half that x rounds to: the largest one not above |x|, or its successor if that is nearer.
Orva16f ToHalf(double x, bool nearest) {
  if (std::isnan(x)) return 0x7e00;
  const double magnitude = std::fabs(x);
  int below = 0;
  for (int bit = 0x4000; bit != 0; bit /= 2)
    if (below + bit <= 0x7c00 && Value(static_cast<Orva16f>(below + bit)) <= magnitude) below += bit;
  if (nearest && below < 0x7c00) {
    const double low = Value(static_cast<Orva16f>(below));
    const double high = below == 0x7bff ? 65536 : Value(static_cast<Orva16f>(below + 1));
    if (magnitude - low > high - magnitude || (magnitude - low == high - magnitude && below % 2 != 0)) ++below;
  }
  return static_cast<Orva16f>(std::signbit(x) ? below | 0x8000 : below);
}

Orva16f Canonical(Orva16f half) { return (half & 0x7fff) > 0x7c00 ? 0x7e00 : half; }

class Half : public testing::TestWithParam<int> {
 protected:
  // Runs op under the caller's rounding mode, which must survive it.
  template <class Op>
  void Call(Op op) {
    std::fesetround(GetParam());
    const OrvaStatus status = op();
    const int after = std::fegetround();
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(after, GetParam());
  }
};

TEST_P(Half, FromEvery16BitInteger) {
  std::vector<Orva16s> src(65536 + 5);
  std::vector<Orva16f> dst(src.size()), want(src.size());
  for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<Orva16s>(i);
  for (const uint32_t mode : {0u, 1u}) {
    for (size_t i = 0; i < src.size(); ++i) want[i] = ToHalf(src[i], mode == 1);
    Call([&] { return ORVAS_Convert_16s16f(src.data(), dst.data(), static_cast<int32_t>(src.size()), mode); });
    EXPECT_TRUE(SameBits("ORVAS_Convert_16s16f", want.data(), dst.data(), dst.size())) << mode;
  }
}

TEST_P(Half, FromFloatsAroundEveryHalf) {
  std::vector<Orva32f> src = {1e30f, -1e30f, 65519.996f, 65520.0f, -0.0f, 0x1p-25f, 0x1.000002p-25f, 0x1p-149f};
  for (uint32_t half = 0; half < 0x10000; ++half) {
    const float value = static_cast<float>(Value(static_cast<Orva16f>(half)));
    const float next = static_cast<float>(Value(static_cast<Orva16f>(half + 1)));
    const float middle = value + (next - value) / 2;
    src.insert(src.end(), {value, middle, std::nextafter(middle, value), std::nextafter(middle, next)});
  }
  src.resize(src.size() - 1);  // and a tail
  std::vector<Orva16f> dst(src.size()), want(src.size());
  for (const uint32_t mode : {0u, 1u}) {
    for (size_t i = 0; i < src.size(); ++i) want[i] = ToHalf(src[i], mode == 1);
    Call([&] { return ORVAS_Convert_32f16f(src.data(), dst.data(), static_cast<int32_t>(src.size()), mode); });
    for (Orva16f& half : dst) half = Canonical(half);
    EXPECT_TRUE(SameBits("ORVAS_Convert_32f16f", want.data(), dst.data(), dst.size())) << mode;
  }
}

TEST_P(Half, EveryHalfToFloatAndInteger) {
  std::vector<Orva16f> src(65536 + 5);
  for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<Orva16f>(i);
  const auto len = static_cast<int32_t>(src.size());
  std::vector<Orva32f> real(src.size()), wantReal(src.size());
  for (size_t i = 0; i < src.size(); ++i) wantReal[i] = static_cast<float>(Value(src[i]));
  Call([&] { return ORVAS_Convert_16f32f(src.data(), real.data(), len); });
  EXPECT_TRUE(SameBits("ORVAS_Convert_16f32f", wantReal.data(), real.data(), real.size()));

  std::vector<Orva16s> dst(src.size()), want(src.size());
  constexpr double kScales[] = {1, 2, 0.5, 0x1p10, 0x1p-20, 0x1p-128, 0x1p127, 0x1p149, 0x1p151, 0x1p-1074};
  for (const double scale : kScales) {
    const float factor = static_cast<float>(1 / scale);
    for (const uint32_t mode : {0u, 1u}) {
      for (size_t i = 0; i < src.size(); ++i) {
        const float y = factor * wantReal[i];
        want[i] = std::isnan(y)   ? Orva16s(0)
                  : y >= 32767.0f  ? Orva16s(32767)
                  : y <= -32768.0f ? Orva16s(-32768)
                                   : static_cast<Orva16s>(mode == 1 ? std::nearbyint(y) : std::trunc(y));
      }
      Call([&] { return ORVAS_Convert_16f16s_S(src.data(), dst.data(), len, mode, scale); });
      EXPECT_TRUE(SameBits("ORVAS_Convert_16f16s_S", want.data(), dst.data(), dst.size())) << mode << " " << scale;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(CallersMode, Half, testing::Values(FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO));

TEST(HalfStatus, ModeBeforeScale) {
  const Orva16f src = 0x4100;
  Orva16s dst = 5;
  EXPECT_EQ(ORVAS_Convert_16f16s_S(&src, &dst, 1, 2, 0.0), ORVA_STS_ROUND_MODE_ERR);
  EXPECT_EQ(ORVAS_Convert_16f16s_S(&src, &dst, 0, 2, 0.0), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(ORVAS_Convert_16f16s_S(&src, &dst, 1, 1, 0.0), ORVA_STS_SCALE_ERR);
  EXPECT_EQ(dst, 5);
}

// ---- Normalisation ----

template <class Real>
Real Fused(Real x, Real vSub, Real vDiv) {
  return std::fma(x, 1 / vDiv, -(vSub / vDiv));
}

// One kind of member at one length; `parts` of an element take their own constant, even and odd.
template <class Real, class Run>
bool CheckNormalize(const char* name, int len, int parts, bool fused, Run run) {
  const Real even = Real(1.3), odd = parts == 2 ? Real(-0.9) : even, vDiv = Real(0.7);
  const auto src = RandomArray<Real>(parts * len, len, Variety::kSpecial);
  std::vector<Real> dst(src.size()), want(src.size());
  bool different = false;
  for (size_t i = 0; i < src.size(); ++i) {
    const Real vSub = i % 2 != 0 ? odd : even;
    const Real forms[] = {(src[i] - vSub) * (1 / vDiv), Fused(src[i], vSub, vDiv)};
    want[i] = forms[fused];
    different |= forms[0] != forms[1];
  }
  EXPECT_EQ(run(src.data(), dst.data(), even, odd, vDiv), 0);
  EXPECT_TRUE(SameBits(name, want.data(), dst.data(), dst.size())) << "len " << len;
  return different;
}

TEST(Normalize, TheFormFollowsTheLength) {
  bool different = false;
  for (int len = 1; len <= 260; ++len) {
    different |= CheckNormalize<Orva32f>("ORVAS_Normalize_32f", len, 1, len >= 64,
        [=](auto* src, auto* dst, float vSub, float, float vDiv) {
          return ORVAS_Normalize_32f(src, dst, len, vSub, vDiv);
        });
    CheckNormalize<Orva64f>("ORVAS_Normalize_64f", len, 1, true,
        [=](auto* src, auto* dst, double vSub, double, double vDiv) {
          return ORVAS_Normalize_64f(src, dst, len, vSub, vDiv);
        });
    CheckNormalize<Orva32f>("ORVAS_Normalize_32fc", len, 2, len >= 128,
        [=](auto* src, auto* dst, float re, float im, float vDiv) {
          return ORVAS_Normalize_32fc(reinterpret_cast<const Orva32fc*>(src), reinterpret_cast<Orva32fc*>(dst), len,
                                      {re, im}, vDiv);
        });
    CheckNormalize<Orva64f>("ORVAS_Normalize_64fc", len, 2, true,
        [=](auto* src, auto* dst, double re, double im, double vDiv) {
          return ORVAS_Normalize_64fc(reinterpret_cast<const Orva64fc*>(src), reinterpret_cast<Orva64fc*>(dst), len,
                                      {re, im}, vDiv);
        });
  }
  EXPECT_TRUE(different);  // else the lengths prove nothing
}

TEST(Normalize, ScaledIntegers) {
  const int n = 65536 + 3;
  std::vector<Orva16s> src(2 * n), dst(2 * n), want(2 * n);
  for (int i = 0; i < 2 * n; ++i) src[i] = static_cast<Orva16s>(i);
  for (const double scale : {1.0, 0.25, 16.0, 0x1p-200, 0x1p200}) {
    for (const float vDiv : {0.7f, -3.0f, 1e30f, 1e-42f}) {
      const float factor = static_cast<float>(1 / scale);
      const auto expect = [&](float even, float odd, int count) {
        for (int i = 0; i < count; ++i) {
          const float y = factor * Fused<float>(src[i], i % 2 ? odd : even, vDiv);
          want[i] = std::isnan(y)   ? Orva16s(0)
                    : y >= 32767.0f  ? Orva16s(32767)
                    : y <= -32768.0f ? Orva16s(-32768)
                                     : static_cast<Orva16s>(std::nearbyint(y));
        }
      };
      expect(-32768, -32768, n);
      EXPECT_EQ(ORVAS_Normalize_16s_S(src.data(), dst.data(), n, -32768, vDiv, scale), 0);
      ASSERT_TRUE(SameBits("ORVAS_Normalize_16s_S", want.data(), dst.data(), n)) << scale << " " << vDiv;
      expect(100, 32767, 2 * n);
      EXPECT_EQ(ORVAS_Normalize_16sc_S(reinterpret_cast<const Orva16sc*>(src.data()),
                                       reinterpret_cast<Orva16sc*>(dst.data()), n, {100, 32767}, vDiv, scale), 0);
      ASSERT_TRUE(SameBits("ORVAS_Normalize_16sc_S", want.data(), dst.data(), 2 * n)) << scale << " " << vDiv;
    }
  }
}

}  // namespace
}  // namespace tzm_test
