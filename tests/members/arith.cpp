// Products, quotients, roots, half precision, normalisation: exact integers, or scalars in the steps of the contract.
#include <signal_tzm/arith.h>

#include <bit>

#include "members.h"

namespace tzm_test::arith_rows {

constexpr OrvaStatus kWarns = ORVA_STS_DIV_ZERO_WARN, kRefused = ORVA_STS_DIV_BY_ZERO_ERR,
                     kNegative = ORVA_STS_SQRT_NEG_ERR;

// ---- Products ----

const auto exact = [](auto a, auto b, At at) {
  if constexpr (std::is_class_v<decltype(a)>) return Scaled<decltype(a)>(Product(a, b), at.exponent);
  else return Scaled<decltype(b)>(Int128{a} * b, at.exponent);
};
const auto square = [](auto a, At at) { return exact(a, a, at); };
const auto plain = [](auto a, auto b, At) {
  if constexpr (!std::is_class_v<decltype(a)>) return a * b;
  else return decltype(a){std::fma(a.re, b.re, -(a.im * b.im)), std::fma(a.im, b.re, a.re * b.im)};
};
const auto plainSquare = [](auto a, At) {
  if constexpr (!std::is_class_v<decltype(a)>) return a * a;
  else return decltype(a){std::fma(a.re, a.re, -(a.im * a.im)), a.im * a.re + a.im * a.re};
};
// The exact product rounded to F, times the factor in F.
template <class F>
constexpr auto coarse = [](auto a, decltype(a) b, At at) {
  return RoundSaturate<decltype(a)>(static_cast<F>(int64_t{a} * b) * static_cast<F>(at.Factor()));
};
const auto tailRoundsFirst = [](Orva32sc a, Orva32sc b, At at) {
  if (at.exponent < 23 || at.exponent > 63 || at.InBody(8)) return exact(a, b, at);
  const auto rounded = [&](Int128 x) { return RoundSaturate<Orva32s>(static_cast<double>(x) * at.Factor()); };
  return Orva32sc{rounded(Product(a, b).re), rounded(Product(a, b).im)};
};

// The one sum that leaves its lane: the imaginary part of four most negative parts.
template <class T>
constexpr T kLeast{std::numeric_limits<decltype(T::re)>::min(), std::numeric_limits<decltype(T::re)>::min()};
const auto kOverflow = []<class T>(T, auto run) {
  const std::vector<T> least(24, kLeast<T>);
  run(Case(least, least).With({double(least[0].re), double(least[0].im)}));
};

template <class T>
std::vector<T> AllValues() {
  std::vector<T> values(size_t{1} << (8 * sizeof(T)));
  for (size_t i = 0; i < values.size(); ++i) values[i] = static_cast<T>(i);
  return values;
}
const auto kAll = []<class T>(T, auto run) { run(Case(AllValues<T>())); };

// ---- Quotients ----

// Unsigned members give the maximum for 0 by 0 in the tail of a step.
template <int kStep>
constexpr auto quotient = [](auto a, auto b, At at) {
  using T = decltype(b);
  const bool most = at.Note(kWarns, a == 0) && !at.InBody(kStep) && std::is_unsigned_v<T>;
  return most ? std::numeric_limits<T>::max() : Quotient<T>(b, a, at.exponent);
};
// An unknown mode leaves the tail unwritten.
template <int kStep, bool kTailWarns = true>
constexpr auto rounded = [](auto a, auto b, int32_t mode, At at) {
  using T = decltype(b);
  const bool known = mode >= 0 && mode < 3, inBody = at.InBody(kStep);
  at.Note(kWarns, a == 0 && (inBody || (known && kTailWarns)));
  return known ? Quotient<T>(b, a, at.exponent, Ties{mode}) : inBody ? T(0) : at.Before<T>();
};
const auto byConstant = [](auto x, auto value, At at) {
  return at.Note(kRefused, value == 0) ? 0 : Quotient<decltype(x)>(x, value, at.exponent);
};
const auto kUnknownModes = []<class T>(T, auto run) {
  for (double mode : {-1, 3}) run(Case(RandomArray<T>(75, 3), RandomArray<T>(75, 4)).With({mode}).Exponents({0, 3}));
};

// Pairs of all of 8 bits, and of 16 bits around every integer and tie, by divisors of all sizes.
const Cases kAllBytes = [](auto run) {
  std::vector<Orva8u> a(65536), b(65536);
  for (int i = 0; i < 65536; ++i) a[i] = i >> 8, b[i] = i & 255;
  run(Case(a, b).With({2}));
};
template <class T>
std::pair<std::vector<T>, std::vector<T>> NextToTies(int exponent) {
  Random random(5);
  std::vector<T> a(4800), b(4800);
  for (int i = 0; i < 4800; ++i) {
    a[i] = static_cast<T>(static_cast<Orva16u>(1 + (random.Next() >> (48 + random.Below(16))) % 65535));
    const double unit = std::ldexp(static_cast<Orva16u>(a[i]), exponent - 1);
    const double near = unit * static_cast<double>(random.Below(1 + static_cast<uint64_t>(65535 / unit)));
    b[i] = static_cast<T>(static_cast<Orva16u>(std::max(0.0, near + static_cast<double>(random.Below(3)) - 1)));
  }
  return {a, b};
}
template <int kMode>
constexpr auto kTies = []<class T>(T, auto run) {
  for (int exponent = -18; exponent <= 18; ++exponent) {
    const auto [a, b] = NextToTies<T>(exponent);
    run(Case(a, b).With({kMode}).Exponents({exponent}));
  }
};
const Cases kTiesByConstant = [](auto run) {
  for (int exponent = -18; exponent <= 18; ++exponent) {
    const auto [a, b] = NextToTies<Orva16u>(exponent);
    for (int k = 1; k < 100; ++k) run(Case(b).With({double(a[k])}).Exponents({exponent}));
  }
};
const Cases kBytesByConstant = [](auto run) {
  for (int k = 1; k < 256; ++k) run(Case(AllValues<Orva8u>()).With({double(k)}));
};

// The contract's sums wrap in the tail.
const auto wrapping = [](Orva16sc a, Orva16sc b, At at) {
  const auto sum = [&](int64_t x) { return at.InBody(8) ? x : static_cast<int32_t>(x); };
  const int64_t c = a.re, d = a.im, den = sum(c * c + d * d);
  at.Note(kWarns, den == 0);
  return Orva16sc{Quotient<Orva16s>(sum(c * b.re + d * b.im), den, at.exponent),
                  Quotient<Orva16s>(sum(c * b.im - d * b.re), den, at.exponent)};
};

const auto reciprocal = [](auto x, auto value, At at) { return at.Note(kRefused, value == 0) ? 0 : x * (1 / value); };
const auto complexReciprocal = [](auto x, auto value, At at) {
  const auto den = std::fma(value.re, value.re, value.im * value.im), r = 1 / den;
  const auto re = r * value.re, im = -(r * value.im);
  const auto cross = sizeof(re) == 4 ? std::fma(x.re, im, x.im * re) : std::fma(x.im, re, x.re * im);
  return at.Note(kRefused, den == 0) ? decltype(x){} : decltype(x){std::fma(x.re, re, -(x.im * im)), cross};
};

// The reciprocal's estimate as its tables tell it: x = m * 2^e, m in [256, 512) truncated; round(2^18 / (2m + 1)).
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
// The body refines an estimate, and exchanges infinities.
const auto ofConstant = [](float x, float value, At at) {
  const float e = Refined(x, Refined(x, Estimate(x)));
  at.Note(kWarns, x == 0);
  return at.InBody(4) ? value * (std::isinf(e) ? -e : e) : value / x;
};
const Cases kEstimates = [](auto run) {
  std::vector<float> src = {0x1.fffffcp-129f, 0x1p-128f, 0x1p-127f, 0x1.fffffep126f};
  for (uint32_t top = 0; top < 0x10000; ++top)  // every sign, exponent and leading seven bits of fraction
    src.push_back(std::bit_cast<float>(top << 16 | (top * 40503 & 0xffff)));
  for (double value : {1.0, -3.7, 0.0}) run(Case(src).With({value}));
};

// ---- Roots ----

// The scan for negative samples is blind to half of each block in binary32.
const auto root = [](auto x, At at) {
  at.Note(kNegative, x < 0 && (sizeof(x) == 8 || !at.InBody(8) || at.i % 8 >= 4));
  return std::sqrt(x);
};
const auto kOneNegative = []<class T>(T, auto run) {
  for (int len = 1; len <= 26; ++len)
    for (int at = 0; at < 3 * len; ++at) {
      std::vector<T> src(len, 1);
      src[at / 3] = at % 3 == 0 ? T(-2) : at % 3 == 1 ? T(-0.0) : -std::numeric_limits<T>::quiet_NaN();
      run(Case(src));
    }
};
// sqrt of a double, of unsigned integers rounded to binary32, times the factor.
const auto scaledRoot = []<class T>(T x, At at) {
  using Work = std::conditional_t<std::is_unsigned_v<T>, float, double>;
  at.Note(kNegative, x < 0);
  return RoundSaturate<T>(static_cast<Work>(std::sqrt(double(x))) * static_cast<Work>(at.Factor()));
};
const Cases kNextToHalfRoots = [](auto run) {
  for (int len = 1496; len < 1500; ++len) {
    std::vector<Orva32s> src(len);
    for (int i = 0; i < len; ++i) src[i] = 32767 - i, src[i] *= src[i] + 1;
    run(Case(src).Exponents({0}));
  }
};
// The integers on either side of the cube of every half-odd multiple of 2^exponent.
const Cases kNextToHalfCubes = [](auto run) {
  for (int exponent = -15; exponent <= 11; ++exponent) {
    std::vector<Orva32s> src;
    for (int n = 0; n < 32768; ++n) {
      const double side = std::ldexp(2 * n + 1, exponent - 1), cube = side * side * side;
      if (cube >= std::numeric_limits<Orva32s>::max()) break;
      const auto at = static_cast<Orva32s>(cube);
      src.insert(src.end(), {at, at + 1, -at, -at - 1});
    }
    run(Case(src).Exponents({exponent}));
  }
};

// ---- binary16 ----

// The value of a half: f * 2^(e - 25) with the leading one made explicit.
double HalfValue(Orva16f half) {
  const int exponent = half >> 10 & 31, fraction = half & 1023;
  double magnitude = exponent == 0 ? std::ldexp(fraction, -24) : std::ldexp(1024 + fraction, exponent - 25);
  if (exponent == 31) magnitude = fraction == 0 ? INFINITY : NAN;
  return half & 0x8000 ? -magnitude : magnitude;
}
// The half that x rounds to. Its bits less the sign are its magnitude in units of 2^e, plus 1024 * (e + 24).
const auto toHalf = [](auto from, uint32_t mode, At) -> Orva16f {
  const double x = from;
  if (std::isnan(x)) return std::signbit(x) ? 0xfe00 : 0x7e00;
  const int exponent = std::max(std::ilogb(std::clamp(std::fabs(x), 0x1p-30, 0x1p30)), -14) - 10;
  const double units = std::ldexp(std::fabs(x), -exponent), most = mode == 1 || std::isinf(x) ? 0x7c00 : 0x7bff;
  const double bits = (mode == 1 ? std::nearbyint(units) : std::trunc(units)) + 1024.0 * (exponent + 24);
  return static_cast<Orva16f>(static_cast<int>(std::min(bits, most)) | (std::signbit(x) ? 0x8000 : 0));
};
const auto kAllByMode = []<class T>(T, auto run) {
  for (double mode : {0, 1}) run(Case(AllValues<T>()).With({mode}));
};
const Cases kNextToHalves = [](auto run) {
  std::vector<float> floats = {1e30f, -1e30f, 65519.996f, 65520.0f, -0.0f, 0x1p-25f, 0x1.000002p-25f, 0x1p-149f};
  for (int half = 0; half < 0x10000; ++half) {
    const float value = static_cast<float>(HalfValue(static_cast<Orva16f>(half)));
    const float middle = value + (static_cast<float>(HalfValue(static_cast<Orva16f>(half + 1))) - value) / 2;
    floats.insert(floats.end(), {value, middle, std::nextafter(middle, -INFINITY), std::nextafter(middle, INFINITY)});
  }
  for (double mode : {0, 1}) run(Case(floats).With({mode}));
};

// Scaled members and binary64 have the fused form always, binary32 from 64 floats on, or 128 pairs.
const auto normal = [](auto x, auto sub, auto div, At at) {
  at.Note(kRefused, div == 0);
  const auto part = [&](auto v, auto vSub, int fusedFrom) {
    using Part = decltype(v);
    using Real = std::conditional_t<sizeof(v) == 8, double, float>;
    const Real s = vSub, d = div, r = 1 / d;
    const bool fused = !std::is_same_v<Part, float> || at.len >= fusedFrom;
    const Real y = fused ? std::fma(Real(v), r, -(s / d)) : (Real(v) - s) * r;
    if constexpr (std::is_integral_v<Part>) return RoundSaturate<Part>(at.FloatFactor() * y);
    else return y;
  };
  if constexpr (!std::is_class_v<decltype(x)>) return part(x, sub, 64);
  else return decltype(x){part(x.re, sub.re, 128), part(x.im, sub.im, 128)};
};

const Rows rows("arith", {
    MEMBERS(ORVAS_Mul_32f, ORVAS_Mul_64f, ORVAS_Mul_32fc, ORVAS_Mul_64fc, ORVAS_MulC_32f, ORVAS_MulC_64f,
            ORVAS_MulC_64fc).Is(plain),
    MEMBERS(ORVAS_Mul_32f32fc).Is([](float a, Orva32fc b, At) { return Orva32fc{a * b.re, a * b.im}; }),
    MEMBERS(ORVAS_Mul_16s32f).Is([](int a, int b, At) { return static_cast<float>(a * b); }),
    MEMBERS(ORVAS_Mul_8u16u).Is([](Orva8u a, Orva8u b, At) { return a * b; }),
    MEMBERS(ORVAS_Mul_16s, ORVAS_Mul_16u_S, ORVAS_Mul_16s_S, ORVAS_Mul_16u16s_S, ORVAS_MulC_8u_S, ORVAS_MulC_16u_S)
        .Is(exact),
    MEMBERS(ORVAS_Mul_8u_S).Is(exact).On(kAllBytes),
    MEMBERS(ORVAS_Mul_16sc_S, ORVAS_Mul_32sc_S, ORVAS_MulC_16sc_S).Is(exact).On(kOverflow),
    MEMBERS(ORVAS_Mul_16s32s_S).Is([](int a, int b, At at) { return Scaled<Orva32s>(Int128{a} * b, at.exponent); }),
    MEMBERS(ORVAS_Mul_32s_S, ORVAS_MulC_32s_S).Is(coarse<double>),
    MEMBERS(ORVAS_MulC_16s_S).Is(coarse<float>)
        .On([](auto run) { run(Case(std::vector<Orva16s>{2037}).With({16477}).Exponents({11})); }),  // 16388
    MEMBERS(ORVAS_MulC_32sc_S).Is(tailRoundsFirst).On(kOverflow).On([](auto run) {  // next to a tie
      run(Case(std::vector<Orva32sc>(11, {(1 << 29) + 1, 1})).With({1 << 30, -1}).Exponents({31}));
    }),
    MEMBERS(ORVAS_MulC_32fc).Is([](Orva32fc a, Orva32fc b, At) {  // rounds the other product of the imaginary part
      return Orva32fc{std::fma(a.re, b.re, -(a.im * b.im)), std::fma(a.re, b.im, a.im * b.re)};
    }),
    MEMBERS(ORVAS_MulC_Low_32f16s, ORVAS_MulC_32f16s_S).Is([](float a, float b, At at) {
      return RoundSaturate<Orva16s>(b * a * at.FloatFactor());
    }),
    MEMBERS(ORVAS_MulC_16s_I).Is([](Orva16s value, At at) { return exact(at.Before<Orva16s>(), value, at); }),
    MEMBERS(ORVAS_MulC_64f64s_IS).Is([](double value, At at) {
      return RoundSaturate<Orva64s>(static_cast<double>(at.Before<Orva64s>()) * value * at.Factor());
    }),
    MEMBERS(ORVAS_MulC_64s_IS).Is([](Orva64s value, At at) {
      const auto wrapped = static_cast<Orva64s>(at.Before<uint64_t>() * static_cast<uint64_t>(value));
      return RoundSaturate<Orva64s>(static_cast<double>(wrapped) * at.Factor());
    }),

    MEMBERS(ORVAS_Div_8u_S).Is(quotient<48>).On(kAllBytes),
    MEMBERS(ORVAS_Div_16u_S).Is(quotient<24>).On(kTies<0>),
    MEMBERS(ORVAS_Div_16s_S).Is(quotient<8>).On(kTies<0>),
    MEMBERS(ORVAS_Div_Round_8u_S).Is(rounded<32, false>).Constants({{0}, {1}, {2}}).On(kAllBytes).On(kUnknownModes),
    MEMBERS(ORVAS_Div_Round_16u_S).Is(rounded<16>).Constants({{0}, {1}, {2}}).On(kTies<0>).On(kUnknownModes),
    MEMBERS(ORVAS_Div_Round_16s_S).Is(rounded<8>).Constants({{0}, {1}, {2}}).On(kTies<2>).On(kUnknownModes),
    MEMBERS(ORVAS_Div_32s_S).Is([](Orva32s a, Orva32s b, At at) {
      if (at.Note(kWarns, a == 0)) return Quotient<Orva32s>(b, a, 0);
      return at.InBody(4) ? RoundSaturate<Orva32s>(std::ldexp(double(b) / double(a), -at.exponent))
                          : RoundSaturate<Orva32s>(std::ldexp(float(b) / float(a), -at.exponent));
    }),
    MEMBERS(ORVAS_Div_32s16s_S).Is([](Orva16s a, Orva32s b, At at) {
      if (at.Note(kWarns, a == 0)) return Quotient<Orva16s>(b, a, 0);
      return RoundSaturate<Orva16s>(std::ldexp(float(b) / float(a), -at.exponent));
    }),
    MEMBERS(ORVAS_Div_16sc_S).Is(wrapping).On([](auto run) {
      const std::vector<Orva16sc> least(11, {-32768, -32768}), odd(11, {-32768, 12345});
      run(Case(least, odd));
      run(Case(least, least));
    }),
    MEMBERS(ORVAS_Div_32f, ORVAS_Div_64f).Is([](auto a, auto b, At at) { return at.Note(kWarns, a == 0), b / a; }),
    MEMBERS(ORVAS_Div_32fc).Is([](Orva32fc divisor, Orva32fc dividend, At at) {
      const float c = divisor.re, d = divisor.im, a = dividend.re, b = dividend.im, da = d * a;
      const bool inBody = at.InBody(16);
      const float den = inBody ? c * c + d * d : std::fma(c, c, d * d), re = std::fma(c, a, d * b);
      at.Note(kWarns, (inBody ? den : re) == 0);
      return Orva32fc{re / den, (inBody ? b * c - da : std::fma(c, b, -da)) / den};
    }),
    MEMBERS(ORVAS_Div_64fc).Is([](Orva64fc divisor, Orva64fc dividend, At at) {
      const double c = divisor.re, d = divisor.im, a = dividend.re, b = dividend.im, den = c * c + d * d, t = 1.0 / den;
      at.Note(kWarns, den == 0);
      return Orva64fc{(c * a + d * b) * t, (c * b - d * a) * t};
    }),

    MEMBERS(ORVAS_DivC_32f, ORVAS_DivC_64f).Is(reciprocal).BadConstants({{0}, {-0.0}}, kRefused),
    // Squares that underflow are zero too.
    MEMBERS(ORVAS_DivC_32fc).Is(complexReciprocal).BadConstants({{0, 0}, {1e-30, 0}}, kRefused),
    MEMBERS(ORVAS_DivC_64fc).Is(complexReciprocal).BadConstants({{0, 0}, {0, 1e-200}}, kRefused),
    MEMBERS(ORVAS_DivC_8u_S).Is(byConstant).BadConstants({{0}}, kRefused).ScaleFirst().On(kBytesByConstant),
    MEMBERS(ORVAS_DivC_16u_S).Is(byConstant).BadConstants({{0}}, kRefused).ScaleFirst().On(kTiesByConstant),
    MEMBERS(ORVAS_DivC_16s_S).Is([](Orva16s x, Orva16s value, At at) {
      const float y = (float(x) * (1.0f / float(value))) * at.FloatFactor();
      return at.Note(kRefused, value == 0) ? Orva16s(0) : RoundSaturate<Orva16s>(y);
    }).BadConstants({{0}}, kRefused),
    MEMBERS(ORVAS_DivC_64s_IS).Is([](Orva64s value, At at) {
      const double y = (at.Note(kRefused, value == 0) ? 0 : double(at.Before<Orva64s>()) * (1.0 / double(value)));
      return RoundSaturate<Orva64s>(y * at.Factor());
    }).BadConstants({{0}}, kRefused),
    MEMBERS(ORVAS_DivC_16sc_S).Is([](Orva16sc x, Orva16sc value, At at) {
      const double re = value.re, im = value.im, t = (1.0 / (re * re + im * im)) * at.Factor();
      if (at.Note(kRefused, re == 0 && im == 0)) return Orva16sc{};
      return Orva16sc{RoundSaturate<Orva16s>((x.re * re + x.im * im) * t),
                      RoundSaturate<Orva16s>((x.im * re - x.re * im) * t)};
    }).BadConstants({{0, 0}}, kRefused).ScaleFirst(),
    MEMBERS(ORVAS_DivCRev_32f).Is(ofConstant).On(kEstimates),
    MEMBERS(ORVAS_DivCRev_16u).Is([](Orva16u x, Orva16u value, At at) {
      if (at.Note(kWarns, x == 0)) return Orva16u(value == 0 && at.InBody(48) ? 0 : 65535);
      return RoundSaturate<Orva16u>(float(value) / float(x));
    }).Constants({{0}, {7}, {60000}}),

    MEMBERS(ORVAS_Sqr_32f, ORVAS_Sqr_64f, ORVAS_Sqr_32fc, ORVAS_Sqr_64fc).Is(plainSquare),
    MEMBERS(ORVAS_Sqr_8u_S, ORVAS_Sqr_16u_S, ORVAS_Sqr_16s_S).Is(square).On(kAll),
    MEMBERS(ORVAS_Sqr_16sc_S).Is(square),

    MEMBERS(ORVAS_Sqrt_32f, ORVAS_Sqrt_64f).Is(root).On(kOneNegative),
    MEMBERS(ORVAS_Sqrt_32fc).Is([](Orva32fc v, At) {
      const float m = std::sqrt(v.im * v.im + v.re * v.re), sign = std::signbit(v.im) ? -1.0f : 1.0f;
      return Orva32fc{std::sqrt(std::fabs((m + v.re) * 0.5f)), std::sqrt(std::fabs((m - v.re) * 0.5f)) * sign};
    }),
    MEMBERS(ORVAS_Sqrt_64fc).Is([](Orva64fc v, At) {
      const double x = 0.5 * v.re, y = 0.5 * v.im;
      const double t = std::sqrt(std::fabs(x) + std::sqrt(x * x + y * y)), q = (1.0 / t) * y;
      return Orva64fc{x >= 0 ? t : std::fabs(q), x > 0 ? q : y < 0 ? -t : t};
    }),
    MEMBERS(ORVAS_Sqrt_8u_S, ORVAS_Sqrt_16u_S, ORVAS_Sqrt_16s_S).Is(scaledRoot).On(kAll),
    MEMBERS(ORVAS_Sqrt_32s16s_S).Is([](Orva32s x, At at) {  // coarser in the body
      at.Note(kNegative, x < 0);
      const float root = at.InBody(4) ? std::sqrt(static_cast<float>(x)) : static_cast<float>(std::sqrt(double(x)));
      return RoundSaturate<Orva16s>(root * at.FloatFactor());
    }).On(kNextToHalfRoots),
    MEMBERS(ORVAS_Sqrt_16sc_S).Is([](Orva16sc v, At at) {
      const double a = v.re, b = v.im, m = std::sqrt(b * b + a * a), sign = b < 0 ? -1.0 : 1.0;
      return Orva16sc{RoundSaturate<Orva16s>(std::sqrt(std::fabs((m + a) * 0.5)) * at.Factor()),
                      RoundSaturate<Orva16s>(std::sqrt(std::fabs((m - a) * 0.5)) * sign * at.Factor())};
    }),
    MEMBERS(ORVAS_Cubrt_32f).Is([](float x, At at) {  // no formula gives it to the bit
      return Near(at.After<float>(), std::cbrt(static_cast<long double>(x)), 1);
    }),
    MEMBERS(ORVAS_Cubrt_32s16s_S).Is([](Orva32s x, At at) {
      return RoundSaturate<Orva16s>(std::cbrt(static_cast<long double>(x)) * at.Factor());
    }).On(kNextToHalfCubes),

    MEMBERS(ORVAS_Convert_16s16f).Is(toHalf).AnyRounding().On(kAllByMode)
        .Constants({{0}, {1}}).BadConstants({{2}, {4294967295.0}}, ORVA_STS_ROUND_MODE_ERR),
    MEMBERS(ORVAS_Convert_32f16f).Is(toHalf).AnyRounding().On(kNextToHalves)
        .Constants({{0}, {1}}).BadConstants({{2}, {4294967295.0}}, ORVA_STS_ROUND_MODE_ERR),
    MEMBERS(ORVAS_Convert_16f32f).Is([](Orva16f x, At) { return HalfValue(x); }).AnyRounding().On(kAll),
    MEMBERS(ORVAS_Convert_16f16s_S).Is([](Orva16f x, uint32_t mode, At at) {
      const float y = at.FloatFactor() * static_cast<float>(HalfValue(x));
      return RoundSaturate<Orva16s>(mode == 1 ? y : std::trunc(y));
    }).AnyRounding().On(kAllByMode)
        .Constants({{0}, {1}}).BadConstants({{2}, {4294967295.0}}, ORVA_STS_ROUND_MODE_ERR),

    MEMBERS(ORVAS_Normalize_32f, ORVAS_Normalize_64f, ORVAS_Normalize_16s_S).Is(normal)
        .BadConstants({{1, 0}, {1, -0.0}}, kRefused),
    MEMBERS(ORVAS_Normalize_32fc, ORVAS_Normalize_64fc, ORVAS_Normalize_16sc_S).Is(normal)
        .BadConstants({{1, 1, 0}}, kRefused),
});

}  // namespace tzm_test::arith_rows
