// Thresholds: the rules said one element at a time.
#include <signal_tzm/threshold.h>

#include "members.h"

namespace tzm_test::threshold_rows {

constexpr OrvaStatus kNegative = ORVA_STS_THRESH_NEG_ERR, kOrder = ORVA_STS_THRESH_ORDER_ERR;

// A body and a tail of all kinds of samples by sharp levels, beside which other constants stand.
template <auto... more>
constexpr auto kLevels = []<class T>(T, auto run) {
  using Limits = std::numeric_limits<T>;
  std::vector<double> levels = {0.5, 0, -0.0, -3, Limits::quiet_NaN(), Limits::infinity()};
  if (std::is_integral_v<T>) levels = {0, 1, 5, -7, double(Limits::max()), double(Limits::min())};
  for (double level : levels)
    for (Variety variety : kVarieties)
      for (size_t len : {1, 75}) run(Case(RandomArray<T>(len, 3, variety)).With({level, more...}));
};

// ---- Real samples ----

// The magnitude of a sample; its integer form never overflows.
const auto magnitude = [](auto x) {
  if constexpr (std::is_integral_v<decltype(x)>) return std::abs(int64_t{x});
  else return std::fabs(x);
};

template <class T>
T MaxOrNan(T x, T level) {
  if (x != x || level != level) return std::numeric_limits<T>::quiet_NaN();
  if (x == level) return std::signbit(x) ? level : x;
  return x > level ? x : level;
}

const auto notBelow = [](auto x, decltype(x) level, At at) {
  if constexpr (std::is_floating_point_v<decltype(x)>)
    if (at.InBody(16 / sizeof x)) return MaxOrNan(x, level);
  return level > x ? level : x;
};
const auto notAbove = [](auto x, decltype(x) level, At at) {
  if constexpr (std::is_floating_point_v<decltype(x)>)
    if (at.InBody(16 / sizeof x)) return -MaxOrNan(-x, -level);
  return level < x ? level : x;
};
const auto byRelation = [](auto x, decltype(x) level, int32_t relation, At at) {
  return relation == 0 ? notBelow(x, level, at) : notAbove(x, level, at);
};
const auto lessReplaced = [](auto x, decltype(x) level, decltype(x) value, At) { return x < level ? value : x; };
const auto greaterReplaced = [](auto x, decltype(x) level, decltype(x) value, At) { return x > level ? value : x; };
const auto smallReplaced = [](auto x, decltype(x) level, decltype(x) value, At) {
  auto size = magnitude(x);  // integers saturate
  using T = decltype(x);
  if constexpr (std::is_integral_v<T>) size = std::min<int64_t>(size, std::numeric_limits<T>::max());
  return size < level ? value : x;
};
const auto bothReplaced = [](auto x, decltype(x) low, decltype(x) under, decltype(x) high, decltype(x) over, At at) {
  at.Note(kOrder, low > high);
  return x < low ? under : x > high ? over : x;
};
const auto sizeNotBelow = [](auto x, decltype(x) level, At at) -> decltype(x) {
  at.Note(kNegative, level < 0);
  return magnitude(x) >= level ? x : x >= 0 ? level : -level;
};
const auto sizeNotAbove = [](auto x, decltype(x) level, At at) -> decltype(x) {
  at.Note(kNegative, level < 0);
  return magnitude(x) > level ? (x < 0 ? -level : level) : x;
};

// ---- Reciprocals ----

const auto inverse = [](auto x, decltype(x) level, At at) -> decltype(x) {
  at.Note(ORVA_STS_INV_ZERO_ERR, x == 0 && !(level > 0));
  at.Note(kNegative, level < 0);
  if (x == 0) return level > 0 ? 1 / level : std::numeric_limits<decltype(x)>::infinity();
  if (!(level > 0) || std::fabs(x) >= level) return 1 / x;
  if (x != x) return at.InBody(16 / sizeof x) ? -(1 / level) : x;
  return std::fabs(x) / x / level;
};
const auto kZeros = []<class T>(T, auto run) {
  for (size_t n = 1; n < 20; ++n)
    for (size_t zero = 0; zero <= n; ++zero) {
      std::vector<T> src(n, T(2));
      if (zero < n) src[zero] = zero % 2 ? T(0) : T(-0.0);
      for (double level : {0.0, double(NAN)}) run(Case(src).With({level}));
    }
};

float Square(Orva32fc x) { return std::fmaf(x.re, x.re, x.im * x.im); }

Orva32fc Inverse(Orva32fc x, float level, bool body) {
  const float square = Square(x), size = std::sqrt(square);
  if (size == 0) {
    if (level > 0) return {std::copysign(1 / level, x.re), -x.im / level};
    return {std::copysign(INFINITY, x.re), -0.5f * x.im};
  }
  const float reciprocal = 1 / square;
  if (!(level > 0) || !(size < level))
    return body ? Orva32fc{x.re * reciprocal, -x.im * reciprocal} : Orva32fc{x.re / square, -x.im / square};
  const float ratio = size / square, most = 1 / level;
  if (body) return {size * (x.re * reciprocal) * most, size * (-x.im * reciprocal) * most};
  return {ratio * x.re / level, ratio * -x.im / level};
}
// Zeros are reported of real and of imaginary parts in one step of the body, and of magnitudes in the tail.
const auto complexInverse = [](const std::vector<Orva32fc>& src, float level, At at) {
  std::vector<Orva32fc> dst;
  const int len = static_cast<int>(src.size());
  for (at.i = 0; at.i < len; ++at.i) {
    const bool body = at.InBody(4);
    bool re = false, im = false;
    for (int k = at.i / 4 * 4; body && k < at.i / 4 * 4 + 4; ++k) re |= src[k].re == 0, im |= src[k].im == 0;
    at.Note(ORVA_STS_INV_ZERO_ERR, !(level > 0) && (body ? re && im : Square(src[at.i]) == 0));
    dst.push_back(Inverse(src[at.i], level, body));
  }
  at.Note(kNegative, level < 0);
  return dst;
};
const Cases kComplexZeros = [](auto run) {
  const Orva32fc one = {1, 2}, real = {1, 0}, imaginary = {0, 1}, tiny = {1e-30f, 1e-30f}, zero = {-0.0f, 0};
  for (const std::vector<Orva32fc>& src : std::vector<std::vector<Orva32fc>>{
           {one, one, one, one}, {one, one, one, zero},
           {one, real, one, imaginary},                        // no zero element, and yet
           {one, one, one, real, imaginary, one, one, one},    // not in one step
           {one, one, tiny, one}, {one, one, one, one, tiny},  // underflow in the body, and in the tail
           {one, one, one, one, real, imaginary}})
    run(Case(src).With({0}));
};

// ---- Complex samples ----

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
// Zero, overflow and NaN have no direction; subnormal squares have an exact root.
template <bool kLess>
constexpr auto limited = [](Orva32fc x, float level, At at) -> Orva32fc {
  at.Note(kNegative, level < 0);
  const bool body = at.InBody(2);
  const float square = body ? std::fmaf(x.im, x.im, x.re * x.re) : Square(x);
  if (!(square > 0) || std::isinf(square)) return x;
  float size = 1 / std::sqrt(square) * square;
  if (body) {
    float root = RootEstimate(square);
    for (int step = 0; step < 2; ++step) root = root * (std::fmaf(-(square * root), root, 3.0f) * 0.5f);
    size = root * square;
  }
  if (square < std::numeric_limits<float>::min()) size = std::sqrt(square);
  if (kLess ? !(size < level) : !(size > level)) return x;
  double reciprocal = ReciprocalEstimate(size);
  for (int step = 0; step < 2; ++step) reciprocal = reciprocal * std::fma(-double{size}, reciprocal, 2.0);
  const auto part = [&](double from) {
    return static_cast<float>(body ? from * level * reciprocal : from * level / size);
  };
  return {part(x.re), part(x.im)};
};
template <auto... more>
constexpr Cases kComplexLevels = [](auto run) {
  for (double level : {0.0, 1.5, 0x1p-70, 3e18, double(NAN), 5.0}) {
    for (Variety variety : kVarieties) run(Case(RandomArray<Orva32fc>(75, 3, variety)).With({level, more...}));
    const std::vector<Orva32fc> sharp = {{0, 0}, {3e30f, 0}, {NAN, 1}, {0x1p-70f, 0}, {0, -6}, {6, 8}};
    run(Case(sharp).With({level, more...}));
  }
};

#define INTEGERS(name) MEMBERS(ORVAS_Threshold_##name##_16s, ORVAS_Threshold_##name##_32s)
#define FLOATS(name) MEMBERS(ORVAS_Threshold_##name##_32f, ORVAS_Threshold_##name##_64f)

const Rows rows("threshold", {
    MEMBERS(ORVAS_Threshold_16s).Is(byRelation).Constants({{3, 0}, {3, 4}})
        .BadConstants({{3, 1}}, ORVA_STS_BAD_ARG_ERR).ConstantsFirst(),
    MEMBERS(ORVAS_Threshold_32f, ORVAS_Threshold_64f).Is(byRelation).Constants({{0.5, 0}, {0.5, 4}})
        .BadConstants({{0.5, 5}}, ORVA_STS_BAD_ARG_ERR).ConstantsFirst(),
    MEMBERS(ORVAS_Threshold_32fc).Is([](Orva32fc x, float level, int32_t relation, At at) {
      return relation == 0 ? limited<true>(x, level, at) : limited<false>(x, level, at);
    }).Constants({{0.5, 0}, {2, 4}}).BadConstants({{0.5, -1}}, ORVA_STS_BAD_ARG_ERR).ConstantsFirst(),
    INTEGERS(LT).Is(notBelow).On(kLevels<>).Constants({{3}, {-100}}),
    INTEGERS(GT).Is(notAbove).On(kLevels<>).Constants({{3}, {-100}}),
    FLOATS(LT).Is(notBelow).On(kLevels<>).Constants({{0.5}, {0}, {NAN}}),
    FLOATS(GT).Is(notAbove).On(kLevels<>).Constants({{0.5}, {0}, {NAN}}),
    MEMBERS(ORVAS_Threshold_LT_32fc).Is(limited<true>).On(kComplexLevels<>)
        .Constants({{0.5}, {2}, {0}}).BadConstants({{-1}}, kNegative),
    MEMBERS(ORVAS_Threshold_GT_32fc).Is(limited<false>).On(kComplexLevels<>)
        .Constants({{0.5}, {2}, {0}}).BadConstants({{-1}}, kNegative),
    MEMBERS(ORVAS_Threshold_LTVal_16s).Is(lessReplaced).On(kLevels<77>).Constants({{3, 77}}),
    MEMBERS(ORVAS_Threshold_GTVal_16s).Is(greaterReplaced).On(kLevels<77>).Constants({{3, 77}}),
    FLOATS(LTVal).Is(lessReplaced).On(kLevels<77>).Constants({{0.5, 77}, {NAN, 77}}),
    FLOATS(GTVal).Is(greaterReplaced).On(kLevels<77>).Constants({{0.5, 77}, {NAN, 77}}),
    MEMBERS(ORVAS_Threshold_LTVal_32fc).Is([](Orva32fc x, float level, Orva32fc value, At at) {
      return at.Note(kNegative, level < 0) || !(level * level > Square(x)) ? x : value;
    }).On(kComplexLevels<7, 8>).Constants({{2, 7, 8}}).BadConstants({{-1, 7, 8}}, kNegative),
    MEMBERS(ORVAS_Threshold_GTVal_32fc).Is([](Orva32fc x, float level, Orva32fc value, At at) {
      return at.Note(kNegative, level < 0) || !(Square(x) > level * level) ? x : value;
    }).On(kComplexLevels<7, 8>).Constants({{2, 7, 8}}).BadConstants({{-1, 7, 8}}, kNegative),
    INTEGERS(LTValGTVal).Is(bothReplaced).Constants({{-3, 7, 30, 8}}).BadConstants({{2, 7, 1, 8}}, kOrder),
    FLOATS(LTValGTVal).Is(bothReplaced).Constants({{-0.5, 7, 0.5, 8}}).BadConstants({{2, 7, 1, 8}}, kOrder),
    MEMBERS(ORVAS_Threshold_LTAbs_16s).Is(sizeNotBelow).On(kLevels<>)
        .Constants({{30}, {0}, {32767}}).BadConstants({{-1}}, kNegative),
    MEMBERS(ORVAS_Threshold_GTAbs_16s).Is(sizeNotAbove).On(kLevels<>)
        .Constants({{30}, {0}, {32767}}).BadConstants({{-1}}, kNegative),
    MEMBERS(ORVAS_Threshold_LTAbs_32s).Is(sizeNotBelow).On(kLevels<>)
        .Constants({{300}, {0}, {2147483647}}).BadConstants({{-1}}, kNegative),
    MEMBERS(ORVAS_Threshold_GTAbs_32s).Is(sizeNotAbove).On(kLevels<>)
        .Constants({{300}, {0}, {2147483647}}).BadConstants({{-1}}, kNegative),
    FLOATS(LTAbs).Is(sizeNotBelow).On(kLevels<>).Constants({{0.5}, {0}}).BadConstants({{-1}}, kNegative),
    FLOATS(GTAbs).Is(sizeNotAbove).On(kLevels<>).Constants({{0.5}, {0}}).BadConstants({{-1}}, kNegative),
    MEMBERS(ORVAS_Threshold_LTAbsVal_16s).Is(smallReplaced).On(kLevels<77>)
        .Constants({{30, 77}, {-5, 77}, {-32768, 77}}),
    MEMBERS(ORVAS_Threshold_LTAbsVal_32s).Is(smallReplaced).On(kLevels<77>).Constants({{300, 77}, {-5, 77}}),
    FLOATS(LTAbsVal).Is(smallReplaced).On(kLevels<77>).Constants({{0.5, 77}, {-5, 77}}),
    FLOATS(LTInv).Is(inverse).On(kLevels<>).On(kZeros).Constants({{0.5}, {0}, {NAN}}).BadConstants({{-1}}, kNegative),
    MEMBERS(ORVAS_Threshold_LTInv_32fc).Gives(complexInverse).On(kComplexZeros).On(kComplexLevels<>)
        .Constants({{0.5}, {0}, {NAN}}).BadConstants({{-1}}, kNegative),
});

}  // namespace tzm_test::threshold_rows
