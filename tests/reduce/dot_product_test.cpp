// Dot products against loops that add one product after the other where it belongs.
#include <gtest/gtest.h>
#include <signal_tzm/reduce.h>

#include "support/reduction.h"

namespace tzm_test {
namespace {

// ---- Floating sums ----

// Real by real, or by each part of complex samples: one fused step a product.
template <class Sum, class Result, size_t kLanes, size_t kStep>
constexpr auto kFused = [](const auto& a, const auto& b) {
  return EachPart<Result>([&](int part) {
    const auto x = PartOf<Sum>(a, 0), y = PartOf<Sum>(b, part);
    const auto add = [&](Sum& sum, size_t i) { sum = std::fma(x[i], y[i], sum); };
    return LaneSum<Sum>(x.size(), kLanes, kStep, Fold::kHalves, add, add);
  });
};

// Complex by complex: a product of two roundings, added in a third; or two fused steps in the body.
template <class Sum, class Result, size_t kLanes, size_t kStep, bool kChained>
constexpr auto kComplex = [](const auto& a, const auto& b) {
  const auto ar = PartOf<Sum>(a, 0), ai = PartOf<Sum>(a, 1), br = PartOf<Sum>(b, 0), bi = PartOf<Sum>(b, 1);
  return EachPart<Result>([&](int part) {
    const auto& second = part == 0 ? br : bi;  // beside ar
    const auto& third = part == 0 ? bi : br;   // beside ai
    const auto product = [&](size_t i) { return part == 0 ? -(ai[i] * third[i]) : ai[i] * third[i]; };
    const auto plain = [&](Sum& sum, size_t i) { sum += std::fma(ar[i], second[i], product(i)); };
    const auto chained = [&](Sum& sum, size_t i) {
      sum = std::fma(part == 0 ? -ai[i] : ai[i], third[i], std::fma(ar[i], second[i], sum));
    };
    if constexpr (kChained) return LaneSum<Sum>(a.size(), kLanes, kStep, Fold::kHalves, chained, plain);
    else return LaneSum<Sum>(a.size(), kLanes, kStep, Fold::kHalves, plain, plain);
  });
};

TEST(DotProduct, Floats) {
  CheckReduction<Orva32f, Orva32f>(ORVAS_DotProd_32f, kFused<float, Orva32f, 8, 8>);
  CheckReduction<Orva64f, Orva64f>(ORVAS_DotProd_64f, kFused<double, Orva64f, 2, 2>);
  CheckReduction<Orva32f, Orva32f>(ORVAS_DotProd_32f64f, kFused<double, Orva64f, 2, 2>);
  CheckReduction<Orva32f, Orva32fc>(ORVAS_DotProd_32f32fc, kFused<float, Orva32fc, 8, 8>);
  CheckReduction<Orva32f, Orva32fc>(ORVAS_DotProd_32f32fc64fc, kFused<double, Orva64fc, 2, 4>);
  CheckReduction<Orva64f, Orva64fc>(ORVAS_DotProd_64f64fc, kFused<double, Orva64fc, 2, 4>);
  CheckReduction<Orva32fc, Orva32fc>(ORVAS_DotProd_32fc, kComplex<float, Orva32fc, 8, 8, false>);
  CheckReduction<Orva64fc, Orva64fc>(ORVAS_DotProd_64fc, kComplex<double, Orva64fc, 4, 4, false>);
  CheckReduction<Orva32fc, Orva32fc>(ORVAS_DotProd_32fc64fc, kComplex<double, Orva64fc, 2, 4, true>);
}

TEST(DotProduct, NothingIsConjugatedAndABodyGivesNoMinusZero) {
  ExpectResult<Orva32fc, Orva32fc, Orva32fc>({-1, 0}, 0, ORVAS_DotProd_32fc, {{0, 1}}, {{0, 1}});
  for (size_t len : {1, 8})
    ExpectResult(0.0f, 0, ORVAS_DotProd_32f, std::vector<Orva32f>(len, -1.0f), std::vector<Orva32f>(len, 0.0f));
}

// ---- Integers ----

TEST(DotProduct, ExactIntegers) {
  const auto modulo = [](const auto& a, const auto& b) {
    unsigned __int128 re = 0, im = 0;
    for (size_t i = 0; i < a.size(); ++i) {
      Orva16sc x = {0, 0};
      if constexpr (requires { a[i].re; }) x = a[i];
      else x.re = a[i];
      const Exact product = Product(x, b[i]);
      re += product.re, im += product.im;
    }
    return Orva64sc{static_cast<int64_t>(re), static_cast<int64_t>(im)};
  };
  CheckReduction<Orva16sc, Orva16sc>(ORVAS_DotProd_16sc64sc, modulo);
  CheckReduction<Orva16s, Orva16sc>(ORVAS_DotProd_16s16sc64sc, modulo);
  const std::vector<Orva16sc> least(33, {-32768, -32768});
  ExpectResult(modulo(least, least), 0, ORVAS_DotProd_16sc64sc, least, least);
}

// The body summed in two lanes, which take neighbouring pairs of products in turn; nothing rounds while the sums are
// below 2^53, but 32-bit products may.
template <size_t kStep, class A, class B>
double Body(const std::vector<A>& a, const std::vector<B>& b) {
  double lane[2] = {0, 0};
  for (size_t i = 0; i < a.size() / kStep * kStep; i += kStep) {
    double add[2] = {0, 0};
    for (size_t k = 0; k < kStep; ++k) add[k / 2 % 2] += static_cast<double>(int64_t{a[i + k]} * b[i + k]);
    lane[0] += add[0], lane[1] += add[1];
  }
  return lane[0] + lane[1];
}

template <size_t kStep, class Result, class A, class B>
Result ScaledOracle(const std::vector<A>& a, const std::vector<B>& b, double factor) {
  double sum = factor * Body<kStep>(a, b);
  for (size_t i = a.size() / kStep * kStep; i < a.size(); ++i) sum = std::fma(a[i] * factor, double(b[i]), sum);
  if constexpr (std::is_integral_v<Result>) return RoundSaturate<Result>(sum);
  else return static_cast<Result>(sum);
}

TEST(DotProduct, IntegersSummedInBinary64) {
  CheckReduction<Orva16s, Orva16s>(ORVAS_DotProd_16s32f,
                                   [](auto& a, auto& b) { return ScaledOracle<8, Orva32f>(a, b, 1); });
  CheckReduction<Orva16s, Orva16s>(ORVAS_DotProd_16s64s,
                                   [](auto& a, auto& b) { return ScaledOracle<8, Orva64s>(a, b, 1); });
  for (const auto& [scale, by] : kFactors) {
    const double factor = by;
    const auto oracle8 = [=](auto& a, auto& b) { return ScaledOracle<8, Orva32s>(a, b, factor); };
    const auto oracle4 = [=](auto& a, auto& b) { return ScaledOracle<4, Orva32s>(a, b, factor); };
    CheckReduction<Orva16s, Orva16s>(With(ORVAS_DotProd_16s32s_S, scale), oracle8);
    CheckReduction<Orva16s, Orva32s>(With(ORVAS_DotProd_16s32s32s_S, scale), oracle4);
    CheckReduction<Orva32s, Orva32s>(With(ORVAS_DotProd_32s_S, scale), oracle4);
  }
}

TEST(DotProduct, IntegersBeyondExactSums) {
  // Over 2^21 steps of 8 products of 2^30 a lane passes 2^53, and the odd products that follow are lost in part.
  std::vector<Orva16s> a((8 << 21) + 8003, -32768);
  for (size_t i = 8 << 21; i < a.size(); ++i) a[i] = static_cast<Orva16s>(i % 251);
  const std::vector<Orva16s> b(a.size(), -32767);
  const double sum = ScaledOracle<8, double>(a, b, 1);
  ExpectResult(static_cast<Orva64s>(sum), 0, ORVAS_DotProd_16s64s, a, b);
  ExpectResult(static_cast<Orva32f>(sum), 0, ORVAS_DotProd_16s32f, a, b);
}

}  // namespace
}  // namespace tzm_test
