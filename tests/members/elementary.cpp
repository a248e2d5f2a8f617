// Real functions: the companion's, and the statuses of the contract's scans. Complex functions and powers: those of
// the system in long double. Magnitude, power spectrum, phase and polar forms in their own sums, roots and angles.
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>

#include <bit>
#include <complex>

#include "members.h"

namespace tzm_test::elementary_rows {

// ---- Real functions ----

constexpr OrvaStatus kDomain = ORVA_STS_DOMAIN_ERR;

// The companion's function of every element, whatever the scan says.
auto Scanned(auto* function, auto scan) {
  return [=]<class T>(const std::vector<T>& x, const auto&... rest) {  // another source or none, and At
    std::vector<T> y(x.size());
    const auto len = static_cast<int32_t>(x.size());
    scan(x, rest...);
    if constexpr (sizeof...(rest) == 1) function(len, x.data(), y.data());
    else function(len, x.data(), std::get<0>(std::tie(rest...)).data(), y.data());
    return y;
  };
}
const auto none = [](const auto&...) {};

// Looks at the first block of 128 bits, for the first condition before the second, and at what follows the last whole
// block, where the last offender decides; the block prevails.
auto Ends(auto first, OrvaStatus first_status, auto second, OrvaStatus second_status) {
  return [=]<class T>(const std::vector<T>& x, const At& at) {
    const int block = 16 / sizeof(T), whole = at.len / block * block;
    for (int i = whole; i < at.len; ++i)
      at.Note(first_status, first(x[i], true)), at.Note(second_status, second(x[i], true));
    for (int i = 0; whole > 0 && i < block; ++i) at.Note(second_status, second(x[i], false));
    for (int i = 0; whole > 0 && i < block; ++i) at.Note(first_status, first(x[i], false));
  };
}
// The last numbers without a status; in binary32 they differ between block and tail.
constexpr uint32_t kLast32[] = {0x42b17217, 0x42b17216, 0xc2aeac4f, 0xc2aeac4e};
constexpr uint64_t kLast64[] = {0x40862e42fd75e204, 0xc086232bd9018e75};
const auto exponential = Ends([](auto x, bool tail) {
  if constexpr (sizeof x == 4) return x > std::bit_cast<float>(kLast32[tail]);
  else return x > std::bit_cast<double>(kLast64[0]);
}, ORVA_STS_OVERFLOW_ERR, [](auto x, bool tail) {
  if constexpr (sizeof x == 4) return x < std::bit_cast<float>(kLast32[2 + tail]);
  else return x < std::bit_cast<double>(kLast64[1]);
}, ORVA_STS_UNDERFLOW_ERR);
const auto logarithm = Ends([](auto x, bool) { return x == 0; }, ORVA_STS_SINGULARITY_ERR,
                            [](auto x, bool) { return x < 0; }, kDomain);

// Infinity counts in the tail; in the body two finite numbers do, of which one in the first part of a step only.
template <class T>
constexpr T kInFirstPart = sizeof(T) == 4 ? 0x1.fep+30 : 0x1.ffcp+62;
template <class T>
constexpr T kEverywhere = sizeof(T) == 4 ? 0x1.ffp+31 : 0x1.ffep+63;
const auto tangent = []<class T>(const std::vector<T>& x, const At& at) {
  const int step = sizeof(T) == 4 ? 16 : 4, part = sizeof(T) == 4 ? 8 : 4;
  for (int i = 0; i < at.len; ++i) {
    const bool body = i < at.len / step * step, first = x[i] == kInFirstPart<T> && i % step < part;
    at.Note(kDomain, body ? x[i] == kEverywhere<T> || first : std::isinf(x[i]));
  }
};
// The last block and the tail, in opposite senses.
const auto power = []<class T>(const std::vector<T>& x, const std::vector<T>& y, const At& at) {
  const int block = 16 / sizeof(T), whole = at.len / block * block;
  for (int i = std::max(whole - block, 0); i < at.len; ++i) {
    const bool integer = std::isfinite(y[i]) && y[i] == std::trunc(y[i]);
    at.Note(kDomain, (x[i] == 0 && y[i] < 0) || (x[i] < 0 && integer == (i < whole)));
  }
};

// Ones, among them any two of the sharp numbers anywhere.
template <class T>
void Sharp(const std::vector<T>& sharp, const RunCase& run) {
  for (int len : {1, 2, 3, 4, 5, 9, 13, 35})
    for (int at = 0; at < len; ++at)
      for (T x : sharp)
        for (T y : sharp) {
          std::vector<T> src(len, T(1));
          src[at] = x;
          if (at + 1 < len) src[at % 2 == 0 ? at + 1 : len - 1] = y;
          run(Case(src));
        }
}
const auto kExponents = []<class T>(T, auto run) {
  std::vector<T> sharp = {T(NAN), T(HUGE_VAL), T(-HUGE_VAL)};
  if constexpr (sizeof(T) == 4)
    for (uint32_t last : kLast32) sharp.insert(sharp.end(), {std::bit_cast<T>(last), std::bit_cast<T>(last + 1)});
  else
    for (uint64_t last : kLast64) sharp.insert(sharp.end(), {std::bit_cast<T>(last), std::bit_cast<T>(last + 1)});
  Sharp(sharp, run);
};
const auto kSigns = []<class T>(T, auto run) { Sharp<T>({0, T(-0.0), -1, T(NAN)}, run); };
const auto kInfinities = []<class T>(T, auto run) {
  Sharp<T>({T(HUGE_VAL), T(-HUGE_VAL), T(NAN), 0, kInFirstPart<T>, kEverywhere<T>}, run);
};
const auto kPowers = []<class T>(T, auto run) {
  for (size_t len : {1, 2, 4, 7, 13})
    for (size_t at = 0; at < len; ++at)
      for (T x : {T(-2), T(0), T(-0.0), T(NAN)})
        for (double y : {2.0, -3.0, 0.0, -0.0, 1e30, 0.5, -2.5, HUGE_VAL, -HUGE_VAL, double(NAN), -1.0}) {
          std::vector<T> base(len, T(1)), exponent = base;
          base[at] = x, exponent[at] = static_cast<T>(y);
          run(Case(base, exponent));
        }
};

// Rounded once from the scaled value; beyond binary64 infinite, whatever the scale.
template <class T>
T ScaledOnce(long double value, At at) {
  using Limits = std::numeric_limits<T>;
  return static_cast<T>(std::clamp<long double>(std::nearbyint(std::ldexp(value, -at.exponent)), Limits::min(),
                                                Limits::max()));
}
const auto scaledExponential = []<class T>(T x, At at) {
  return ScaledOnce<T>(x > 709 ? HUGE_VALL : std::exp(static_cast<long double>(x)), at);
};
const auto scaledLogarithm = []<class T>(T x, At at) {
  at.Note(ORVA_STS_LN_ZERO_WARN, x == 0);
  return at.Note(ORVA_STS_LN_NEG_WARN, x < 0) ? T(0) : ScaledOnce<T>(std::log(static_cast<long double>(x)), at);
};
const auto kAllSizes = []<class T>(T, auto run) {
  std::vector<T> src = {700, 709, 710, 32767, std::numeric_limits<T>::max(), std::numeric_limits<T>::min(), 0};
  for (int x = 40; x >= -20; --x) src.push_back(static_cast<T>(x));
  run(Case(src));
  src.resize(600, 2);  // the last offender blocks before the end
  run(Case(src));
};

// ---- Within a bound ----

using Wide = std::complex<long double>;

auto Nearly(auto exact, double ulps) {
  return [=]<class C>(C z, At at) {
    const C actual = at.After<C>();
    Wide e = exact(Wide(z.re, z.im), at);  // where one part is NaN, C leaves the sign of the other free
    if (std::isnan(e.real())) e.imag(std::copysign(e.imag(), static_cast<long double>(actual.im)));
    if (std::isnan(e.imag())) e.real(std::copysign(e.real(), static_cast<long double>(actual.re)));
    return C{Near(actual.re, e.real(), ulps), Near(actual.im, e.imag(), ulps)};
  };
}
const auto sine = [](Wide z, At) { return std::sin(z); };
const auto cosine = [](Wide z, At) { return std::cos(z); };
const auto logarithm10 = [](Wide z, At at) {
  at.Note(ORVA_STS_SINGULARITY_ERR, z == Wide(0));
  return std::log(z) / std::log(10.0L);
};
// All special parts beside each other, and parts of all sizes up to the largest given, both signs.
template <class C>
Case Plane(double re_most, double im_most) {
  using T = decltype(C::re);
  Random random(3);
  const auto part = [&](double most) {
    const double size = std::ldexp(random.Unit() + 1e-9, -static_cast<int>(random.Below(40)));
    return static_cast<T>(random.Below(2) ? most * size : -most * size);
  };
  std::vector<C> values;
  const T special[] = {0, T(-0.0), T(0.75), T(-2.5), T(HUGE_VAL), T(-HUGE_VAL), T(NAN)};
  for (T re : special)
    for (T im : special) values.push_back({re, im});
  while (values.size() < 3000) values.push_back({part(re_most), part(im_most)});
  return Case(values);
}
// In the last two cosh alone overflows.
const auto kStrips = []<class C>(C, auto run) {
  for (auto [re, im] : {std::pair(1e5, 1.0), {1e5, 20.0}, {1e5, 90.0}, {1e-300, 1390.0}, {1e-2, 712.0}})
    run(Plane<C>(re, im));
};
const auto kSquaresAndCircle = []<class C>(C, auto run) {
  for (double size : {1e-300, 1e-20, 1.0, 1e20, 1e300})
    if (sizeof(C) == 16 || std::fabs(std::log10(size)) < 30) run(Plane<C>(size, size));
  std::vector<C> circle = {{1, decltype(C::re)(1e-160)}, {decltype(C::re)(1e-9), 1}};
  for (int i = 0; i < 3000; ++i) {
    const Wide z = std::polar(1.0L, 0.002L * i);
    circle.push_back({decltype(C::re)(z.real()), decltype(C::re)(z.imag())});
  }
  run(Case(circle));
};

// Poles, and finite numbers without a power, of which the last one decides.
template <class T>
auto Power(double ulps) {
  return [=](T x, T y, At at) {
    at.Note(kDomain, x < 0 && std::isfinite(x) && std::isfinite(y) && y != std::trunc(y));
    at.Note(ORVA_STS_SINGULARITY_ERR, x == 0 && y < 0);
    return Near(at.After<T>(), std::pow(static_cast<long double>(x), static_cast<long double>(y)), ulps);
  };
}
const auto kPowersOfAll = []<class T>(T, auto run) {
  Random random(6);
  for (double y : {0.0, -0.0, 2.0, 3.0, -2.0, -3.0, 0.5, -0.5, -0.37, 17.25, 1e-3, 300.0, 1e20, -1e20, HUGE_VAL,
                   -HUGE_VAL, double(NAN)}) {
    std::vector<T> src = {0, T(-0.0), T(0.5), T(-0.5), 1, -1, 3, -3, T(HUGE_VAL), T(-HUGE_VAL), T(NAN)};
    while (src.size() < 500)
      src.push_back(static_cast<T>(std::ldexp(random.Unit() + 1e-9, static_cast<int>(random.Below(40)) - 20)));
    run(Case(src).With({y}));
  }
  for (T pole : {T(0), T(-0.0)}) run(Case(std::vector<T>{2, pole}).With({-0.5}));  // beside no negative number
};

// ---- Magnitudes and angles ----

// value(re, im, At) for parts in two arrays, or in one.
auto OfParts(auto value) {
  return [=](auto z, auto... rest) {
    if constexpr (requires { z.re; }) return value(z.re, z.im, rest...);
    else return value(z, rest...);
  };
}

const auto fused = [](auto re, auto im, At) { return std::fma(re, re, im * im); };
const auto plain = [](auto re, auto im, At) { return re * re + im * im; };
int64_t Exact64(int64_t re, int64_t im) {  // wraps for two parts of -2^31
  return static_cast<int64_t>(static_cast<uint64_t>(re * re) + static_cast<uint64_t>(im * im));
}
double Root(int64_t re, int64_t im) { return std::sqrt(static_cast<double>(Exact64(re, im))); }

const auto exactSum = OfParts([](int16_t re, int16_t im, At) { return static_cast<float>(Exact64(re, im)); });
const auto scaledSum = OfParts([](int16_t re, int16_t im, At at) {
  return Scaled<Orva16s>(Int128{Exact64(re, im)}, at.exponent);
});

// The root of a^2 + b^2 on scaled numbers, with the high halves of the exact products apart.
double ScaledHypot(double re, double im) {
  if (std::isinf(re) || std::isinf(im)) return HUGE_VAL;
  if (std::isnan(re) || std::isnan(im)) return NAN;
  const auto word = [](double x) { return std::bit_cast<uint64_t>(x) >> 32; };
  const auto head = [](double x) { return std::bit_cast<double>(std::bit_cast<uint64_t>(x) >> 32 << 32); };
  double a = std::fmax(std::fabs(re), std::fabs(im)), b = std::fmin(std::fabs(re), std::fabs(im));
  if (b == 0) return a;
  if (word(a) - word(b) > 0x03c00000) return a + b;
  const int shift = word(b) <= 0x000fffff ? 1022 : word(b) <= 0x23cfffff ? 600 : word(a) > 0x5f300000 ? -600 : 0;
  a = std::ldexp(a, shift), b = std::ldexp(b, shift);
  const double w = a - b;
  if (w > b) {
    const double t1 = head(a), t2 = a - t1;
    return std::sqrt(t1 * t1 - (b * -b - t2 * (a + t1))) * std::ldexp(1, -shift);
  }
  const double y1 = head(b), y2 = b - y1, t1 = head(a + a) * 2, t2 = (a + a) - t1;
  return std::sqrt(t1 * y1 - (w * -w - (t1 * y2 + t2 * b))) * std::ldexp(1, -shift);
}
// Random exponents seldom bring the parts close to each other: all ratios, at all sizes.
const Cases kEverySize = [](auto run) {
  Random random(5);
  for (int exponent = -1074; exponent < 1024; ++exponent) {
    std::vector<Orva64fc> src;
    for (int i = 0; i < 16; ++i) {
      double part[] = {std::ldexp(random.Unit() + 0.5, exponent), std::ldexp(random.Unit() + 0.5, exponent)};
      if (random.Below(2)) part[i % 2] = std::ldexp(part[i % 2], -static_cast<int>(random.Below(70)));
      src.push_back({random.Below(2) ? -part[0] : part[0], part[1]});
    }
    run(Case(src));
  }
};

const auto magnitude = [](auto re, auto im, At at) { return std::sqrt(fused(re, im, at)); };
// The tail's cabs of re + i*im takes 0*im into its real part, so that there infinity does not prevail over NaN.
const auto complexMagnitude = [](auto re, auto im, At at) {
  if constexpr (sizeof(re) == 4) return std::sqrt(plain(re, im, at));
  else return at.InBody(2) ? ScaledHypot(re, im) : std::hypot(re + 0 * im, im);
};
const auto scaledMagnitude = [](int16_t re, int16_t im, At at) {
  return RoundSaturate<Orva16s>(Root(re, im) * at.FloatFactor());
};

// The companion's functions, one value at a time.
float Arctan(float x) { vsatan(1, &x, &x); return x; }
double Arctan(double x) { vdatan(1, &x, &x); return x; }
float Arctan2(float y, float x) { vsatan2(1, &y, &x, &y); return y; }
double Arctan2(double y, double x) { vdatan2(1, &y, &x, &y); return y; }
void Sincos(float x, float& sine, float& cosine) { vssincos(1, &x, &sine, &cosine); }
void Sincos(double x, double& sine, double& cosine) { vdsincos(1, &x, &sine, &cosine); }

// arctan(im/re) and a correction that moves it to the right quadrant.
const auto angle = OfParts([](auto re, auto im, At) {
  using T = std::conditional_t<sizeof(re) == 8, double, float>;
  const T x = re, y = im, pi = static_cast<T>(3.14159265358979323846), half = x < 0 ? pi : T(0);
  return Arctan(y / x) + (y < 0 ? -half : half);
});
const auto scaledAngle = OfParts([](int16_t re, int16_t im, At at) {
  return RoundSaturate<Orva16s>(angle(re, im, at) * at.FloatFactor());
});

auto Polar(auto size) {
  return OfParts([=](auto re, auto im, At at) { return std::pair(size(re, im, at), Arctan2(im, re)); });
}
template <class Result>
constexpr auto cartesian = [](auto mag, decltype(mag) phase, At) {
  decltype(mag) sine, cosine;
  Sincos(phase, sine, cosine);
  return Result{mag * cosine, mag * sine};
};

#define REAL(name, function, scan, cases)                                        \
  MEMBERS(ORVAS_##name##_32f).Gives(Scanned(vs##function, scan)).On(cases),      \
      MEMBERS(ORVAS_##name##_64f).Gives(Scanned(vd##function, scan)).On(cases)
#define POWX(tag, T, ulps) \
  MEMBERS(ORVAS_Powx_##tag).Is(Power<T>(ulps)).On(kPowersOfAll).Constants({{2.5}, {-3}, {0}, {-0.5}})

const Rows rows("elementary", {
    REAL(Exp, exp, exponential, kExponents), REAL(Ln, ln, logarithm, kSigns), REAL(Log10, log10, logarithm, kSigns),
    REAL(Tan, tan, tangent, kInfinities), REAL(Pow, pow, power, kPowers), REAL(Sin, sin, none, none),
    REAL(Cos, cos, none, none), REAL(Arctan, atan, none, none), REAL(Arctan2, atan2, none, none),
    MEMBERS(ORVAS_Exp_16s_S, ORVAS_Exp_32s_S).Is(scaledExponential).On(kAllSizes),
    MEMBERS(ORVAS_Ln_16s_S, ORVAS_Ln_32s_S).Is(scaledLogarithm).On(kAllSizes),
    // Looks at its length first, and hears of a failed allocation from the copy.
    MEMBERS(ORVAS_Exp_32f_I, ORVAS_Exp_64f_I).LengthFirst().Allocates(ORVA_STS_NULL_PTR_ERR),
    MEMBERS(ORVAS_Sin_32fc).Is(Nearly(sine, 0.501)).On(kStrips),
    MEMBERS(ORVAS_Cos_32fc).Is(Nearly(cosine, 0.501)).On(kStrips),
    MEMBERS(ORVAS_Sin_64fc).Is(Nearly(sine, 3)).On(kStrips),
    MEMBERS(ORVAS_Cos_64fc).Is(Nearly(cosine, 3)).On(kStrips),
    MEMBERS(ORVAS_Log10_32fc).Is(Nearly(logarithm10, 0.501)).On(kSquaresAndCircle),
    MEMBERS(ORVAS_Log10_64fc).Is(Nearly(logarithm10, 3)).On(kSquaresAndCircle),
    POWX(32f_A11, float, 0.501), POWX(32f_A21, float, 0.501), POWX(32f_A24, float, 0.501),
    POWX(64f_A26, double, 0x1p12), POWX(64f_A50, double, 1), POWX(64f_A53, double, 1),  // 53 - 12 good bits

    MEMBERS(ORVAS_PowerSpectr_32f).Is(fused),
    MEMBERS(ORVAS_PowerSpectr_64f, ORVAS_PowerSpectr_32fc, ORVAS_PowerSpectr_64fc).Is(OfParts(plain)),
    MEMBERS(ORVAS_PowerSpectr_16s32f, ORVAS_PowerSpectr_16sc32f).Is(exactSum),
    MEMBERS(ORVAS_PowerSpectr_16s_S, ORVAS_PowerSpectr_16sc_S).Is(scaledSum),
    MEMBERS(ORVAS_Magnitude_32f, ORVAS_Magnitude_64f).Is(magnitude),
    MEMBERS(ORVAS_Magnitude_32fc).Is(OfParts(complexMagnitude)),
    // The last bit of the system's cabs differs between machines.
    MEMBERS(ORVAS_Magnitude_64fc).Is(OfParts(complexMagnitude)).Inexact().On(kEverySize),
    MEMBERS(ORVAS_Magnitude_16s32f).Is([](int16_t re, int16_t im, At at) {
      return at.InBody(4) ? std::sqrt(static_cast<float>(Exact64(re, im))) : static_cast<float>(Root(re, im));
    }),
    MEMBERS(ORVAS_Magnitude_16sc32f).Is([](Orva16sc z, At at) {
      return at.InBody(4) ? std::sqrt(fused(float(z.re), float(z.im), at)) : static_cast<float>(Root(z.re, z.im));
    }),
    MEMBERS(ORVAS_Magnitude_16sc_S).Is(OfParts(scaledMagnitude)),
    MEMBERS(ORVAS_Magnitude_16s_S).Is([](int16_t re, int16_t im, At at) {
      const float body = std::sqrt(static_cast<float>(Exact64(re, im))) * at.FloatFactor();
      return at.InBody(8) ? RoundSaturate<Orva16s>(body) : scaledMagnitude(re, im, at);
    }),
    MEMBERS(ORVAS_Magnitude_32sc_S).Is([](Orva32sc z, At at) {  // two least parts wrap in the tail
      const double root = at.InBody(4) ? std::sqrt(fused(double(z.re), double(z.im), at)) : Root(z.re, z.im);
      return RoundSaturate<Orva32s>(root * at.Factor());
    }).On([](auto run) {
      const Orva32s least = std::numeric_limits<Orva32s>::min();
      run(Case(std::vector<Orva32sc>{{least, least}, {3, 4}, {3, 4}, {3, 4}, {least, least}}));
    }),
    MEMBERS(ORVAS_Phase_32f, ORVAS_Phase_64f, ORVAS_Phase_16s32f, ORVAS_Phase_32fc, ORVAS_Phase_64fc,
            ORVAS_Phase_16sc32f).Is(angle).NotInPlace().Allocates(),
    MEMBERS(ORVAS_Phase_16s_S, ORVAS_Phase_16sc_S).Is(scaledAngle).NotInPlace().Allocates(),

    // There and back. Any two arrays are magnitudes and angles.
    MEMBERS(ORVAS_CartToPolar_32f, ORVAS_CartToPolar_64f).Is(Polar(magnitude)).NotInPlace(),
    MEMBERS(ORVAS_CartToPolar_32fc).Is(Polar(complexMagnitude)).NotInPlace(),
    MEMBERS(ORVAS_CartToPolar_64fc).Is(Polar(complexMagnitude)).NotInPlace().Inexact(),
    MEMBERS(ORVAS_CartToPolar_16sc_S).Is([](Orva16sc z, At at) {
      return std::pair(scaledMagnitude(z.re, z.im, at),
                       RoundSaturate<Orva16s>(Arctan2(float(z.im), float(z.re)) *
                                              static_cast<float>(std::ldexp(1.0, -at.second))));
    }).NotInPlace().Allocates(),
    MEMBERS(ORVAS_PolarToCart_32f).Is(cartesian<std::pair<float, float>>).NotInPlace(),
    MEMBERS(ORVAS_PolarToCart_64f).Is(cartesian<std::pair<double, double>>).NotInPlace(),
    MEMBERS(ORVAS_PolarToCart_32fc).Is(cartesian<Orva32fc>).NotInPlace().Allocates(),
    MEMBERS(ORVAS_PolarToCart_64fc).Is(cartesian<Orva64fc>).NotInPlace().Allocates(),
    MEMBERS(ORVAS_PolarToCart_16sc_S).Is([](int16_t r, int16_t phi, At at) {
      float sine, cosine;
      Sincos(phi * static_cast<float>(std::ldexp(1.0, -at.second)), sine, cosine);
      return Orva16sc{RoundSaturate<Orva16s>(r * cosine * at.FloatFactor()),
                      RoundSaturate<Orva16s>(r * sine * at.FloatFactor())};
    }).NotInPlace(),
});

}  // namespace tzm_test::elementary_rows
