// Magnitude, power spectrum, phase and polar forms in their own sums, roots, angles and roundings; what the others
// compute stands in tests/elementary.
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>

#include <bit>

#include "members.h"
#include "support/exact.h"
#include "support/random.h"

namespace tzm_test {

namespace {

// value(re, im, At) for parts in two arrays, or in one.
template <class F>
struct OfParts {
  F value;
  auto operator()(auto re, auto im, const At& at) const { return value(re, im, at); }
  auto operator()(auto z, const At& at) const { return value(z.re, z.im, at); }
};

const auto fused = [](auto re, auto im, At) { return std::fma(re, re, im * im); };
const auto plain = [](auto re, auto im, At) { return re * re + im * im; };
int64_t Exact64(int64_t re, int64_t im) {  // wraps for two parts of -2^31
  return static_cast<int64_t>(static_cast<uint64_t>(re * re) + static_cast<uint64_t>(im * im));
}
double Root(int64_t re, int64_t im) { return std::sqrt(static_cast<double>(Exact64(re, im))); }

const OfParts exactSum{[](int16_t re, int16_t im, At) { return static_cast<float>(Exact64(re, im)); }};
const OfParts scaledSum{[](int16_t re, int16_t im, At at) {
  return Scaled<Orva16s>(Int128{Exact64(re, im)}, at.exponent);
}};

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
const OfParts angle{[](auto re, auto im, const At&) {
  using T = std::conditional_t<sizeof(re) == 8, double, float>;
  const T x = re, y = im, pi = static_cast<T>(3.14159265358979323846), half = x < 0 ? pi : T(0);
  return Arctan(y / x) + (y < 0 ? -half : half);
}};
const OfParts scaledAngle{[](int16_t re, int16_t im, At at) {
  return RoundSaturate<Orva16s>(angle(re, im, at) * at.FloatFactor());
}};

template <class F>
auto Polar(F size) {
  return OfParts{[=](auto re, auto im, At at) { return std::pair(size(re, im, at), Arctan2(im, re)); }};
}
template <class Result>
constexpr auto cartesian = [](auto mag, decltype(mag) phase, At) {
  decltype(mag) sine, cosine;
  Sincos(phase, sine, cosine);
  return Result{mag * cosine, mag * sine};
};

const Rows rows("elementary", {
    // Looks at its length first, and hears of a failed allocation from the copy.
    MEMBERS(ORVAS_Exp_32f_I, ORVAS_Exp_64f_I).LengthFirst().Allocates(ORVA_STS_NULL_PTR_ERR),
    MEMBERS(ORVAS_Powx_32f_A11, ORVAS_Powx_32f_A21, ORVAS_Powx_32f_A24, ORVAS_Powx_64f_A26, ORVAS_Powx_64f_A50,
            ORVAS_Powx_64f_A53).Constants({{2.5}, {-3}, {0}, {-0.5}}),

    MEMBERS(ORVAS_PowerSpectr_32f).Is(fused),
    MEMBERS(ORVAS_PowerSpectr_64f, ORVAS_PowerSpectr_32fc, ORVAS_PowerSpectr_64fc).Is(OfParts{plain}),
    MEMBERS(ORVAS_PowerSpectr_16s32f, ORVAS_PowerSpectr_16sc32f).Is(exactSum),
    MEMBERS(ORVAS_PowerSpectr_16s_S, ORVAS_PowerSpectr_16sc_S).Is(scaledSum),
    MEMBERS(ORVAS_Magnitude_32f, ORVAS_Magnitude_64f).Is(magnitude),
    MEMBERS(ORVAS_Magnitude_32fc).Is(OfParts{complexMagnitude}),
    // The last bit of the system's cabs differs between machines.
    MEMBERS(ORVAS_Magnitude_64fc).Is(OfParts{complexMagnitude}).Inexact().On(kEverySize),
    MEMBERS(ORVAS_Magnitude_16s32f).Is([](int16_t re, int16_t im, At at) {
      return at.InBody(4) ? std::sqrt(static_cast<float>(Exact64(re, im))) : static_cast<float>(Root(re, im));
    }),
    MEMBERS(ORVAS_Magnitude_16sc32f).Is([](Orva16sc z, At at) {
      return at.InBody(4) ? std::sqrt(fused(float(z.re), float(z.im), at)) : static_cast<float>(Root(z.re, z.im));
    }),
    MEMBERS(ORVAS_Magnitude_16sc_S).Is(OfParts{scaledMagnitude}),
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

}  // namespace

}  // namespace tzm_test
