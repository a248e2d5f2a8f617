// Quotients against exact ones in wide integers, or against the contract's own floating steps.
#include "check.h"

namespace tzm_test {
namespace {

constexpr OrvaStatus kWarns = ORVA_STS_DIV_ZERO_WARN, kRefused = ORVA_STS_DIV_BY_ZERO_ERR;

// Unsigned members give the maximum for 0 by 0 in the tail of a step.
template <int kStep>
constexpr auto quotient = [](auto a, auto b, At at) {
  using T = decltype(b);
  const bool most = at.Note(kWarns, a == 0) && !at.InBody(kStep) && std::is_unsigned_v<T>;
  return most ? std::numeric_limits<T>::max() : Quotient<T>(b, a, at.exponent);
};

template <auto kMember, int kMode, class T>
OrvaStatus WithMode(const T* a, const T* b, T* dst, int32_t len, double scale) {
  std::fill(dst, dst + len, T(77));
  return kMember(a, b, dst, len, kMode, scale);
}
template <int kMode, int kStep, bool kTailWarns = true>
constexpr auto rounded = [](auto a, auto b, At at) {
  using T = decltype(b);
  const bool known = kMode >= 0 && kMode < 3, inBody = at.InBody(kStep);
  at.Note(kWarns, a == 0 && (inBody || (known && kTailWarns)));
  return known ? Quotient<T>(b, a, at.exponent, Ties{kMode}) : T(inBody ? 0 : 77);
};

template <int... kMode>
void CheckModes() {
  (CHECK((WithMode<ORVAS_Div_Round_8u_S, kMode, Orva8u>), rounded<kMode, 32, false>), ...);
  (CHECK((WithMode<ORVAS_Div_Round_16u_S, kMode, Orva16u>), rounded<kMode, 16>), ...);
  (CHECK((WithMode<ORVAS_Div_Round_16s_S, kMode, Orva16s>), rounded<kMode, 8>), ...);
}

TEST(Division, ScaledIntegersAreExact) {
  CHECK(ORVAS_Div_8u_S, quotient<48>);
  CHECK(ORVAS_Div_16u_S, quotient<24>);
  CHECK(ORVAS_Div_16s_S, quotient<8>);
  CheckModes<-1, 0, 1, 2, 3>();  // the first and the last are unknown
}

// All of 8 bits, and 16 bits around every integer and tie, by divisors of all sizes.
TEST(Division, NextToTies) {
  const auto byConstant = [](auto x, auto value, At at) { return Quotient<decltype(x)>(x, value, at.exponent); };
  std::vector<Orva8u> a8(65280), b8(65280);
  for (int i = 0; i < 65280; ++i) a8[i] = 1 + i / 256, b8[i] = i % 256;
  Random random(5);
  for (int exponent = -18; exponent <= 18; ++exponent) {
    CheckOn<Orva8u>("8u", ORVAS_Div_8u_S, quotient<48>, exponent, a8, b8);
    CheckOn<Orva8u>("8u", WithMode<ORVAS_Div_Round_8u_S, 2, Orva8u>, rounded<2, 32>, exponent, a8, b8);
    std::vector<Orva16u> a(4800), b(4800);
    for (int i = 0; i < 4800; ++i) {
      a[i] = static_cast<Orva16u>(1 + (random.Next() >> (48 + random.Below(16))) % 65535);
      const double unit = std::ldexp(a[i], exponent - 1);
      const double near = unit * static_cast<double>(random.Below(1 + static_cast<uint64_t>(65535 / unit)));
      b[i] = static_cast<Orva16u>(std::max(0.0, near + static_cast<double>(random.Below(3)) - 1));
    }
    const std::vector<Orva16s> as(a.begin(), a.end()), bs(b.begin(), b.end());
    CheckOn<Orva16u>("16u", WithMode<ORVAS_Div_Round_16u_S, 0, Orva16u>, rounded<0, 16>, exponent, a, b);
    CheckOn<Orva16u>("16u", ORVAS_Div_16u_S, quotient<24>, exponent, a, b);
    CheckOn<Orva16s>("16s", ORVAS_Div_16s_S, quotient<8>, exponent, as, bs);
    CheckOn<Orva16s>("16s", WithMode<ORVAS_Div_Round_16s_S, 2, Orva16s>, rounded<2, 8>, exponent, as, bs);
    for (int k = 1; k < 256; ++k) {
      CheckOn<Orva8u>("8u", ORVAS_DivC_8u_S, byConstant, exponent, AllValues<Orva8u>(), Orva8u(k));
      if (k < 100) CheckOn<Orva16u>("16u", ORVAS_DivC_16u_S, byConstant, exponent, b, a[k]);
    }
  }
}

TEST(Division, CoarserMembersRoundTheQuotientFirst) {
  CHECK(ORVAS_Div_32s_S, [](Orva32s a, Orva32s b, At at) {
    if (at.Note(kWarns, a == 0)) return Quotient<Orva32s>(b, a, 0);
    return at.InBody(4) ? RoundSaturate<Orva32s>(std::ldexp(double(b) / double(a), -at.exponent))
                        : RoundSaturate<Orva32s>(std::ldexp(float(b) / float(a), -at.exponent));
  });
  CHECK(ORVAS_Div_32s16s_S, [](Orva16s a, Orva32s b, At at) {
    if (at.Note(kWarns, a == 0)) return Quotient<Orva16s>(b, a, 0);
    return RoundSaturate<Orva16s>(std::ldexp(float(b) / float(a), -at.exponent));
  });
}

TEST(Division, Floating) {
  const auto plain = [](auto a, auto b, At at) { return at.Note(kWarns, a == 0), b / a; };
  Check(plain, MEMBER(ORVAS_Div_32f), MEMBER(ORVAS_Div_64f));
  CHECK(ORVAS_Div_32fc, [](Orva32fc divisor, Orva32fc dividend, At at) {
    const float c = divisor.re, d = divisor.im, a = dividend.re, b = dividend.im, da = d * a;
    const bool inBody = at.InBody(16);
    const float den = inBody ? c * c + d * d : std::fma(c, c, d * d), re = std::fma(c, a, d * b);
    at.Note(kWarns, (inBody ? den : re) == 0);
    return Orva32fc{re / den, (inBody ? b * c - da : std::fma(c, b, -da)) / den};
  });
  CHECK(ORVAS_Div_64fc, [](Orva64fc divisor, Orva64fc dividend, At at) {
    const double c = divisor.re, d = divisor.im, a = dividend.re, b = dividend.im, den = c * c + d * d, t = 1.0 / den;
    at.Note(kWarns, den == 0);
    return Orva64fc{(c * a + d * b) * t, (c * b - d * a) * t};
  });
}

TEST(Division, Complex16WrapsInTheTail) {
  const auto wrapping = [](Orva16sc a, Orva16sc b, At at) {
    const auto sum = [&](int64_t x) { return at.InBody(8) ? x : static_cast<int32_t>(x); };
    const int64_t c = a.re, d = a.im, den = sum(c * c + d * d);
    at.Note(kWarns, den == 0);
    return Orva16sc{Quotient<Orva16s>(sum(c * b.re + d * b.im), den, at.exponent),
                    Quotient<Orva16s>(sum(c * b.im - d * b.re), den, at.exponent)};
  };
  CHECK(ORVAS_Div_16sc_S, wrapping);
  const std::vector<Orva16sc> least(11, {-32768, -32768}), odd(11, {-32768, 12345});
  CheckOn<Orva16sc>("wraps", ORVAS_Div_16sc_S, wrapping, -8, least, odd);
  CheckOn<Orva16sc>("wraps", ORVAS_Div_16sc_S, wrapping, -8, least, least);
}

// ---- One constant ----

TEST(DivisionByConstant, IsTheProductWithTheReciprocal) {
  const auto real = [](auto x, auto value, At at) { return at.Note(kRefused, value == 0) ? 0 : x * (1 / value); };
  Check(real, MEMBER(ORVAS_DivC_32f), MEMBER(ORVAS_DivC_64f));
  const auto complex = [](auto x, auto value, At at) {
    const auto den = std::fma(value.re, value.re, value.im * value.im), r = 1 / den;
    const auto re = r * value.re, im = -(r * value.im);
    const auto cross = sizeof(re) == 4 ? std::fma(x.re, im, x.im * re) : std::fma(x.im, re, x.re * im);
    return at.Note(kRefused, den == 0) ? decltype(x){} : decltype(x){std::fma(x.re, re, -(x.im * im)), cross};
  };
  Check(complex, MEMBER(ORVAS_DivC_32fc), MEMBER(ORVAS_DivC_64fc));
  CHECK(ORVAS_DivC_16s_S, [](Orva16s x, Orva16s value, At at) {
    const float y = (float(x) * (1.0f / float(value))) * static_cast<float>(at.Factor());
    return at.Note(kRefused, value == 0) ? Orva16s(0) : RoundSaturate<Orva16s>(y);
  });
  CHECK((kOutOfPlace<ORVAS_DivC_64s_IS, Orva64s, Orva64s, double>), [](Orva64s x, Orva64s value, At at) {
    const double y = (double(x) * (1.0 / double(value))) * at.Factor();
    return at.Note(kRefused, value == 0) ? x : RoundSaturate<Orva64s>(y);
  });
  CHECK(ORVAS_DivC_16sc_S, [](Orva16sc x, Orva16sc value, At at) {
    const double re = value.re, im = value.im, t = (1.0 / (re * re + im * im)) * at.Factor();
    if (at.Note(kRefused, re == 0 && im == 0)) return Orva16sc{};
    return Orva16sc{RoundSaturate<Orva16s>((x.re * re + x.im * im) * t),
                    RoundSaturate<Orva16s>((x.im * re - x.re * im) * t)};
  });
}

// The estimate as its tables tell it: x = m * 2^e, m in [256, 512) truncated; round(2^18 / (2m + 1)).
float Estimate(float x) {
  if (std::isnan(x)) return x;
  if (std::isinf(x)) return std::copysign(0.0f, x);
  if (std::fabs(x) < 0x1p-128f) return std::copysign(INFINITY, x);
  int exponent;
  const int m = static_cast<int>(std::frexp(std::fabs(x), &exponent) * 512);
  return std::copysign(static_cast<float>(std::ldexp(((1 << 19) / (2 * m + 1) + 1) / 2, -exponent - 8)), x);
}
float Refined(float x, float e) {
  return ((std::isinf(x) && e == 0) || (x == 0 && std::isinf(e)) ? 2.0f : std::fma(-x, e, 2.0f)) * e;
}

TEST(DivisionOfConstant, BodyRefinesAnEstimateAndExchangesInfinities) {
  const auto oracle = [](float x, float value, At at) {
    const float e = Refined(x, Refined(x, Estimate(x)));
    at.Note(kWarns, x == 0);
    return at.InBody(4) ? value * (std::isinf(e) ? -e : e) : value / x;
  };
  CHECK(ORVAS_DivCRev_32f, oracle);
  std::vector<float> src = {0x1.fffffcp-129f, 0x1p-128f, 0x1p-127f, 0x1.fffffep126f};
  for (uint32_t top = 0; top < 0x10000; ++top)  // every sign, exponent and leading seven bits of fraction
    src.push_back(std::bit_cast<float>(top << 16 | (top * 40503 & 0xffff)));
  for (const float value : {1.0f, -3.7f, 0.0f}) CheckOn<float>("body", ORVAS_DivCRev_32f, oracle, 0, src, value);
}

TEST(DivisionOfConstant, Unsigned16) {
  CHECK(ORVAS_DivCRev_16u, [](Orva16u x, Orva16u value, At at) {
    if (at.Note(kWarns, x == 0)) return Orva16u(value == 0 && at.InBody(48) ? 0 : 65535);
    return RoundSaturate<Orva16u>(float(value) / float(x));
  });
}

}  // namespace
}  // namespace tzm_test
