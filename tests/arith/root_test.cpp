// Roots: plain scalar oracles; cube roots against cubes, in exact integers where results are integers.
#include "check.h"

namespace tzm_test {
namespace {

TEST(Sqrt, ScanIsBlindToHalfOfEachBlockIn32f) {
  const auto root = [](auto x, At at) {
    at.Note(ORVA_STS_SQRT_NEG_ERR, x < 0 && (sizeof(x) == 8 || !at.InBody(8) || at.i % 8 >= 4));
    return std::sqrt(x);
  };
  Check(root, MEMBER(ORVAS_Sqrt_32f), MEMBER(ORVAS_Sqrt_64f));
  for (int len = 1; len <= 26; ++len) {
    for (int at = 0; at < 3 * len; ++at) {
      std::vector<float> src(len, 1);
      src[at / 3] = at % 3 == 0 ? -2.0f : at % 3 == 1 ? -0.0f : -NAN;
      CheckOn<float>("ORVAS_Sqrt_32f", ORVAS_Sqrt_32f, root, 0, src);
      CheckOn<double>("ORVAS_Sqrt_64f", ORVAS_Sqrt_64f, root, 0, std::vector<double>(src.begin(), src.end()));
    }
  }
}

TEST(Sqrt, Complex) {
  CHECK(ORVAS_Sqrt_32fc, [](Orva32fc v, At) {
    const float m = std::sqrt(v.im * v.im + v.re * v.re), sign = std::signbit(v.im) ? -1.0f : 1.0f;
    return Orva32fc{std::sqrt(std::fabs((m + v.re) * 0.5f)), std::sqrt(std::fabs((m - v.re) * 0.5f)) * sign};
  });
  CHECK(ORVAS_Sqrt_64fc, [](Orva64fc v, At) {
    const double x = 0.5 * v.re, y = 0.5 * v.im;
    const double t = std::sqrt(std::fabs(x) + std::sqrt(x * x + y * y)), q = (1.0 / t) * y;
    return Orva64fc{x >= 0 ? t : std::fabs(q), x > 0 ? q : y < 0 ? -t : t};
  });
}

// sqrt of a double, rounded to F, times the factor in F.
template <class F>
constexpr auto root = [](auto x, At at) {
  at.Note(ORVA_STS_SQRT_NEG_ERR, x < 0);
  return RoundSaturate<decltype(x)>(static_cast<F>(std::sqrt(double(x))) * static_cast<F>(at.Factor()));
};

TEST(Sqrt, Scaled) {
  Check(root<double>, MEMBER(ORVAS_Sqrt_16s_S));
  for (int exponent : kExponents) {
    CheckOn<Orva8u>("8u", ORVAS_Sqrt_8u_S, root<float>, exponent, AllValues<Orva8u>());
    CheckOn<Orva16u>("16u", ORVAS_Sqrt_16u_S, root<float>, exponent, AllValues<Orva16u>());
    CheckOn<Orva16s>("16s", ORVAS_Sqrt_16s_S, root<double>, exponent, AllValues<Orva16s>());
  }
  const auto bodyIsCoarser = [](Orva32s x, At at) {
    at.Note(ORVA_STS_SQRT_NEG_ERR, x < 0);
    const float root = at.InBody(4) ? std::sqrt(static_cast<float>(x)) : static_cast<float>(std::sqrt(double(x)));
    return RoundSaturate<Orva16s>(root * static_cast<float>(at.Factor()));
  };
  Check(bodyIsCoarser, MEMBER(ORVAS_Sqrt_32s16s_S));
  for (int len = 1496; len < 1500; ++len) {
    std::vector<Orva32s> nextToTies(len);
    for (int i = 0; i < len; ++i) nextToTies[i] = 32767 - i, nextToTies[i] *= nextToTies[i] + 1;
    CheckOn<Orva16s>("ORVAS_Sqrt_32s16s_S", ORVAS_Sqrt_32s16s_S, bodyIsCoarser, 0, nextToTies);
  }
  CHECK(ORVAS_Sqrt_16sc_S, [](Orva16sc v, At at) {
    const double a = v.re, b = v.im, m = std::sqrt(b * b + a * a), sign = b < 0 ? -1.0 : 1.0;
    return Orva16sc{RoundSaturate<Orva16s>(std::sqrt(std::fabs((m + a) * 0.5)) * at.Factor()),
                    RoundSaturate<Orva16s>(std::sqrt(std::fabs((m - a) * 0.5)) * sign * at.Factor())};
  });
}

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

// The integers on either side of the cube of every half-odd multiple of 2^exponent.
TEST(Cubrt, ScaledIsExactAroundEveryTie) {
  for (int exponent = -15; exponent <= 11; ++exponent) {
    std::vector<Orva32s> src;
    for (int n = 0; n < 32768; ++n) {
      const double root = std::ldexp(2 * n + 1, exponent - 1), cube = root * root * root;
      if (cube >= std::numeric_limits<Orva32s>::max()) break;
      const auto at = static_cast<Orva32s>(cube);
      src.insert(src.end(), {at, at + 1, -at, -at - 1});
    }
    CheckOn<Orva16s>("ORVAS_Cubrt_32s16s_S", ORVAS_Cubrt_32s16s_S, [](Orva32s x, At at) {
      return RoundSaturate<Orva16s>(std::cbrt(static_cast<long double>(x)) * at.Factor());
    }, exponent, src);
  }
}

}  // namespace
}  // namespace tzm_test
