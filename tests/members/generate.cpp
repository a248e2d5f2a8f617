// Windows, tones, chirps: the bits of a restatement, one value at a time, itself held against the formulas; noise.
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>
#include <signal_tzm/generate.h>

#include <bit>

#include "members.h"

namespace tzm_test::generate_rows {

constexpr double kTwoPi = 6.283185307179586;

// ---- Windows ----

template <class Sample>
constexpr bool kInteger = SampleOf<Sample>().kind <= Kind::k64s;
template <class Sample>
constexpr bool kDouble = SampleOf<Sample>().kind == Kind::k64f;

enum Shape { kHann, kHamming, kBartlett, kBlackman, kBlackmanOpt, kKaiser };

// Sine (quarter 0) or cosine (quarter 1) as the seed makes it.
double Seed(double x, int quarter) {
  if (quarter == 1 && x < 1.4901e-08) return 1;
  const double shift = 6755399441055744.0;
  const double q = std::fma(quarter == 1 ? x + 1.5707963267948966 : x, 0.3183098861837907, shift);
  const double n = q - shift - 0.5 * quarter;
  double r = std::fma(n, -3.141592653589793, x);
  r = std::fma(n, -1.224646799147353e-16, r);
  r = std::fma(n, -2.165713347843828e-32, r);
  double p = -7.37705809619668e-13;
  for (double next : {1.6048414030217128e-10, -2.5051890975380964e-08, 2.7557316777625683e-06,
                      -0.00019841269826540578, 0.008333333333291278, -0.1666666666666626})
    p = std::fma(p, r * r, next);
  const double y = std::fma(r * r * r, p, r);
  return std::bit_cast<uint64_t>(q) & 1 ? -y : y;
}

// The cosines of `n` indices: those below `body` by the seed and its rotation `lanes` indices on.
std::vector<double> Cosines(int lanes, int body, int n, double w) {
  const double turnC = std::cos(lanes * w), turnS = std::sin(lanes * w);
  std::vector<double> c, s;
  for (int i = 0; i < n; ++i) {
    if (i >= lanes && i < body) {
      const double c0 = c[static_cast<size_t>(i - lanes)], s0 = s[static_cast<size_t>(i - lanes)];
      c.push_back(std::fma(-s0, turnS, c0 * turnC));
      s.push_back(std::fma(c0, turnS, s0 * turnC));
    } else {
      const bool seed = lanes == 4 && i < body;
      c.push_back(seed ? Seed(i * w, 1) : std::cos(i * w));
      s.push_back(seed ? Seed(i * w, 0) : std::sin(i * w));
    }
  }
  return c;
}

double TableSine(int k) {
  k &= 63;
  return k == 32 ? 1.2246e-16 : static_cast<double>(sinl(3.14159265358979323846264338327950288L * k / 32));
}

// The cosine of x 64ths of a turn, from the table at n.
template <class T>
T TableCosine(T x, T n) {
  const T c1 = T(0.09817477042468103), c2 = T(-0.004817389940423465), c3 = T(-0.00015767166072981726), r = x - n;
  const int k = static_cast<int>(n);
  return std::fma(-(r * std::fma(r * r, c3, c1)), T(TableSine(k)), T(TableSine(16 - k)) * std::fma(r * r, c2, T(1)));
}

float Hamming(int i, int len) {
  const double s = 64.0 / (len - 1);
  if (len >= 10 && i < (((len - 6) / 2 - 2) & ~3) + 5) {
    const float x = static_cast<float>(i) * static_cast<float>(s);
    const float product = TableCosine(x, std::nearbyint(x)) * 0.46f;
    return 0.54f - product;
  }
  const double x = i * (s * 0.09817477042468103) * 10.185916357881302;
  const float value = static_cast<float>(TableCosine(x, static_cast<double>(std::trunc(static_cast<float>(x)))));
  return static_cast<float>(std::fma(-static_cast<double>(value), 0.46, 0.54));
}

// The series of I0(x) as a function of x/2.
template <class T>
T Series(T half) {
  T sum = 1, term = 1, last = 0;
  for (int k = 1; sizeof(T) == 4 ? k <= 32 : sum != last && sum == sum; ++k) {
    term = term * (half * half / static_cast<T>(k * k));
    last = sum;
    sum = sum + term;
  }
  return sum;
}
template <class T>
T Kaiser(int i, int len, T alpha) {
  const T n = static_cast<T>(len - 1), index = static_cast<T>(i);
  return Series(std::sqrt((n - index) * index) * alpha * T(0.5)) / Series(alpha * n * T(0.5) * T(0.5));
}

// The function that the window is.
double Formula(Shape shape, int i, int len, double alpha) {
  const double x = kTwoPi * i / (len - 1), hann = 0.5 - 0.5 * std::cos(x);
  const auto blackman = [=](double a) { return (a + 1) / 2 - 0.5 * std::cos(x) - a / 2 * std::cos(2 * x); };
  switch (shape) {
    case kHann: return hann;
    case kHamming: return 0.08 + 0.92 * hann;
    case kBartlett: return 2.0 * i / (len - 1);
    case kBlackman: return blackman(alpha);
    case kBlackmanOpt: return blackman(-0.5 / (1 + std::cos(kTwoPi / (len - 1))));
    default: return Series(alpha * std::sqrt((len - 1.0 - i) * i) / 2) / Series(alpha * (len - 1) / 4);
  }
}
// The window of indices below len / 2, by the arithmetic of Sample, with the samples' type T. It is itself held against
// the formula, and NaN where it errs.
template <class Sample, class T>
std::vector<T> Window(Shape shape, int len, double alpha) {
  const int lanes = kDouble<Sample> ? 2 : 4, half = len / 2, body = half - half % lanes;
  const double w = kTwoPi / (len - 1);
  const std::vector<double> cosines = Cosines(lanes, body, half, w);
  if (shape == kBlackmanOpt) {
    if (kDouble<Sample>) alpha = -0.25 / (1 + std::cos(w));
    else if (kInteger<Sample>) alpha = -0.5f / (1.0f + static_cast<float>(std::cos(w)));
    else alpha = -0.5 / (1 + std::cos(w));
  }
  std::vector<T> window;
  for (int i = 0; i < half; ++i) {
    const double c = cosines[static_cast<size_t>(i)];
    double value = 0;
    if (shape == kKaiser) {
      value = Kaiser(i, len, static_cast<T>(alpha));
    } else if (shape == kBartlett) {
      value = static_cast<T>(i) * (T(2) / static_cast<T>(len - 1));
    } else if (shape == kHamming) {
      value = kDouble<Sample> ? std::fma(-std::cos(i * w), 0.46, 0.54) : Hamming(i, len);
    } else if (shape == kBlackmanOpt && kDouble<Sample>) {
      const double cos2 = i < body ? std::fma(2.0, c * c, -1.0) : std::fma(2 * c, c, -1.0);
      value = std::fma(-alpha, cos2, std::fma(-c, 0.5, alpha + 0.5));
    } else {  // integers, in blocks, in binary32 throughout
      using Work = std::conditional_t<kInteger<Sample>, float, double>;
      const Work cw = static_cast<Work>(c), aw = static_cast<Work>(alpha);
      const Work rest = shape == kHann ? 0 : std::fma(-(cw * cw), aw, aw);
      if (i < body) value = std::fma(-cw, Work(0.5), Work(0.5)) + rest;
      else value = std::fma(-static_cast<double>(cw), 0.5, 0.5) + rest;
    }
    // Between its 64 entries the table of the Hamming window errs by up to 4e-6.
    const double error = std::fabs(static_cast<T>(value) - Formula(shape, i, len, alpha));
    window.push_back(error < (kDouble<Sample> ? 1e-12 : 5e-6) ? static_cast<T>(value) : T(NAN));
  }
  return window;
}

// A sample's part times a window value of type T, and an end of a Hamming window, which integers truncate.
template <class Part, class T>
Part Product(Part x, T w) {
  const T product = static_cast<T>(x) * w;
  if constexpr (std::is_integral_v<Part>) return RoundSaturate<Part>(product);
  else return product;
}
template <class Part>
Part HammingEnd(Part x, bool complex) {
  if (std::is_same_v<Part, float> && complex) return static_cast<Part>(static_cast<float>(x) * 0.08f);
  return static_cast<Part>(static_cast<double>(x) * 0.08000000000000002);
}

// With the middle of an odd length as it is.
template <Shape kShape>
constexpr auto windowed = []<class Sample>(const std::vector<Sample>& src, auto... rest) {
  constexpr bool kComplex = SampleOf<Sample>().parts == 2;
  const auto given = std::tuple(rest...);
  double alpha = kDouble<Sample> ? -0.16 : -0.16f;
  if constexpr (sizeof...(rest) == 2) alpha = std::get<0>(given);
  const int len = static_cast<int>(src.size());
  const auto window = Window<Sample, std::conditional_t<kDouble<Sample>, double, float>>(kShape, len, alpha);
  if constexpr (kShape == kKaiser)
    std::get<1>(given).Note(ORVA_STS_KAISER_ALPHA_ERR, std::fabs(alpha) * (len - 1) > (kDouble<Sample> ? 616 : 76));
  std::vector<Sample> dst = src;
  const auto part = [&](auto& x, size_t i) {
    x = kShape == kHamming && i == 0 ? HammingEnd(x, kComplex) : Product(x, window[i]);
  };
  for (size_t i = 0; i < window.size(); ++i)
    for (Sample* x : {&dst[i], &dst[src.size() - 1 - i]}) {
      if constexpr (kComplex) part(x->re, i), part(x->im, i);
      else part(*x, i);
    }
  return dst;
};

const auto kLargestAlpha = []<class T>(T, auto run) {
  const double above = std::nextafter(-76.0f, -77.0f);
  for (double alpha : {76.0, above, 616.0, std::nextafter(-616.0, -617.0), double{NAN}})
    run(Case(RandomArray<T>(2, 1)).With({alpha}));
};

// ---- Tones ----

// The cosine (quarter 0) or sine (1) of p + n w for `len` values of n; the last ones, past the steps, are the system's.
std::vector<double> Sinusoid(int len, int step, double w, double p, int quarter) {
  const double angles[] = {p, p + w};
  double cw, y[4];
  ORVAS_Cos_64f(&w, &cw, 1);
  (quarter == 0 ? ORVAS_Cos_64f : ORVAS_Sin_64f)(angles, y, 2);
  y[2] = std::fma(2 * cw, y[1], -y[0]);
  y[3] = std::fma(2 * cw, y[2], -y[1]);
  const double k = std::fma(2 * cw, 2 * cw, -2.0);
  std::vector<double> values(y, y + 4);
  for (int n = 4; n < len; ++n) {
    const double angle = std::fma(w, n, p), value = quarter == 0 ? std::cos(angle) : std::sin(angle);
    const double *before = &values[values.size() - 4], next = std::fma(k, before[2], -before[0]);
    values.push_back(n < len - len % step ? next : value);
    if (std::abs(values.back() - value) > 1e-11) values.back() = 1e9;  // not the sinusoid itself
  }
  return values;
}

template <class Part>
Part ToneSample(double value) {
  if constexpr (std::is_integral_v<Part>)
    return static_cast<Part>(std::isnan(value) ? 0 : std::clamp(std::trunc(value), -32768.0, 32767.0));
  else return static_cast<Part>(value);
}

template <class Sample>
constexpr auto tone = [](auto magn, auto frequency, auto phase, At at) {
  using Magnitude = decltype(magn);
  using Part = std::conditional_t<std::is_integral_v<Magnitude>, Orva16s, decltype(phase)>;
  constexpr bool kComplex = SampleOf<Sample>().parts == 2;
  std::vector<Sample> dst(static_cast<size_t>(at.len));
  if (at.Note(ORVA_STS_RANGE_ERR, phase < 0 || phase >= static_cast<decltype(phase)>(kTwoPi))) return dst;
  for (int quarter = 0; quarter < (kComplex ? 2 : 1); ++quarter) {
    const auto values = Sinusoid(at.len, std::is_integral_v<Magnitude> ? 4 : 2, frequency * kTwoPi, phase, quarter);
    for (size_t n = 0; n < dst.size(); ++n) {
      const Part part = ToneSample<Part>(values[n] * static_cast<double>(magn));
      if constexpr (kComplex) (quarter == 0 ? dst[n].re : dst[n].im) = part;
      else dst[n] = part;
    }
  }
  return dst;
};
template <class Real>
auto Tones(double highest, auto... magnitudes) {
  return [=](auto run) {
    const Real turn = static_cast<Real>(kTwoPi);
    for (int len = 1; len < 140; len += len < 20 ? 1 : 13)
      for (Real phase : {Real(0), Real(1.25), std::nextafter(turn, Real(0)), turn, Real(-1e-9), Real(NAN)})
        for (double frequency : {0.0, 0.017, 0.4999, highest, double(NAN)})
          for (double magn : {double(magnitudes)...})
            run(Case(std::vector<Real>{phase}).With({magn, frequency}).Length(len));
  };
}

// ---- Chirps ----

const auto jaehne = []<class T>(T magn, At at) {
  using F = std::conditional_t<std::is_same_v<T, Orva32s> || std::is_same_v<T, Orva64f>, double, float>;
  if (at.len == 1) return T(0);
  F angle = static_cast<F>(1.5707963267948966 / at.len) * static_cast<F>(at.i) * static_cast<F>(at.i);
  double value = std::sin(static_cast<double>(angle)) * static_cast<double>(magn);
  if (at.InBody(16 / sizeof(F))) {
    if constexpr (sizeof(F) == 4) vssin(1, &angle, &angle);
    else vdsin(1, &angle, &angle);
    value = angle * static_cast<F>(magn);
  }
  using Limits = std::numeric_limits<T>;
  if (std::is_integral_v<T>) value = std::clamp<double>(std::nearbyint(value), Limits::min(), Limits::max());
  return static_cast<T>(value);
};
auto Chirps(auto... magnitudes) {
  return [=](auto run) {
    for (int len = 1; len < 1100; len += len < 41 ? 1 : 107)
      for (double magn : {double(magnitudes)...}) run(Case().With({magn}).Length(len));
  };
}

// ---- Noise ----

template <class T, class State>
void Noise(Digest& digest, OrvaStatus (*generate)(T*, int32_t, const State*), auto init, auto release) {
  for (int32_t len : {1, 4, 7, 8, 9, 500}) {
    State* state = nullptr;
    digest.make([&] { return init(&state, 100, 80, static_cast<uint32_t>(len)); });
    std::vector<T> dst(static_cast<size_t>(len));
    digest.Call(generate, dst.data(), len, state);
    digest.Add(dst.data(), dst.size());
    release(state);
  }
}

#define NOISE(type) SCENARIO(Noise, ORVAS_RandGauss_##type, ORVAS_RandGaussInit_##type, ORVAS_RandGaussRelease_##type)

// Magnitude and frequency, which real tones take below 0.5 and complex ones below 1.
#define TONE(type, bound, cases)                                                                            \
  MEMBERS(ORVAS_Tone_##type).Gives(tone<Orva##type>).On(cases).Start(0.5)                                   \
      .Constants({{1000, 0.1}, {3, 0}, {32767, 0.37}})                                                      \
      .BadConstants({{0, 0.1}, {-3, 0.1}, {3, -0.1}, {3, bound}}, ORVA_STS_RANGE_ERR)

// A window on reals and complex samples of all types.
#define PART(name, part) ORVAS_Win##name##_##part, ORVAS_Win##name##_##part##c
#define WINDOW(name, shape, shortest) \
  MEMBERS(PART(name, 16s), PART(name, 32f), PART(name, 64f)).Gives(windowed<shape>).MinLength(shortest)
#define KAISER(type, beyond)                                                                            \
  MEMBERS(PART(Kaiser, type)).Gives(windowed<kKaiser>).On(kLargestAlpha)                                \
      .Constants({{1e-6}, {0.01}, {-0.05}}).BadConstants({{beyond}}, ORVA_STS_KAISER_ALPHA_ERR)
#define JAEHNE(...) MEMBERS(__VA_ARGS__).Is(jaehne).Constants({{0}, {100}, {200}})

const Rows rows("generate", {
    WINDOW(Hann, kHann, 3), WINDOW(Hamming, kHamming, 3), WINDOW(Bartlett, kBartlett, 3),
    WINDOW(Blackman, kBlackman, 3).Constants({{-0.16}, {0.3}, {-20}}),
    WINDOW(BlackmanStd, kBlackman, 3), WINDOW(BlackmanOpt, kBlackmanOpt, 4),
    KAISER(16s, 3.9), KAISER(32f, 3.9), KAISER(64f, 31),
    TONE(16s, 0.5, Tones<float>(0.3, 32767)), TONE(32f, 0.5, Tones<float>(0.3, 1.75f)),
    TONE(64f, 0.5, Tones<double>(0.3, 1e3)), TONE(16sc, 1, Tones<float>(0.97, 1001)),
    TONE(32fc, 1, Tones<float>(0.97, 1e-3f)), TONE(64fc, 1, Tones<double>(0.97, 0.1, NAN)),
    NOISE(8u), NOISE(16s), NOISE(32f), NOISE(64f),
    JAEHNE(ORVAS_VectorJaehne_8u).On(Chirps(0, 255)), JAEHNE(ORVAS_VectorJaehne_16u).On(Chirps(0, 65535)),
    JAEHNE(ORVAS_VectorJaehne_16s).On(Chirps(32767)).BadConstants({{-1}}, ORVA_STS_RANGE_ERR),
    JAEHNE(ORVAS_VectorJaehne_32s).On(Chirps(2147483647)).BadConstants({{-1}}, ORVA_STS_RANGE_ERR),
    JAEHNE(ORVAS_VectorJaehne_32f).On(Chirps(1, 1e30, NAN)).BadConstants({{-1}}, ORVA_STS_RANGE_ERR),
    JAEHNE(ORVAS_VectorJaehne_64f).On(Chirps(1, 1e300)).BadConstants({{-1}}, ORVA_STS_RANGE_ERR),
});

}  // namespace tzm_test::generate_rows
