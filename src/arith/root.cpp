// Element-wise square and cube roots.
#include "frame/call.h"
#include "frame/drive.h"
#include "frame/scale.h"

#include <signal_tzm/arith.h>
#include <signal_tzm/companion.h>

using namespace tzm;

namespace {

// ---- Square roots with a scan ----

// Whether an element below zero is among the lanes from `kFirst` on of the blocks of `kBlock` elements;
// whole blocks only.
template <int32_t kBlock, int32_t kFirst, class T>
bool AnyNegative(const T* src, int32_t whole) {
  const hn::FixedTag<T, kBlock - kFirst> d;
  auto negative = hn::Zero(d);
  for (int32_t i = kFirst; i < whole; i += kBlock)
    negative = hn::Or(negative, hn::VecFromMask(d, hn::Lt(hn::LoadU(d, src + i), hn::Zero(d))));
  return !hn::AllFalse(d, hn::MaskFromVec(negative));
}

// The scan goes block by block, and on to the rest if it found nothing.
template <int32_t kBlock, int32_t kFirst, class T>
OrvaStatus ScanForNegative(const T* src, int32_t len) {
  const int32_t whole = len - len % kBlock;
  if (AnyNegative<kBlock, kFirst>(src, whole)) return ORVA_STS_SQRT_NEG_ERR;
  for (int32_t i = whole; i < len; ++i)
    if (LoadElement(src + i) < 0) return ORVA_STS_SQRT_NEG_ERR;
  return ORVA_STS_NO_ERR;
}

// ---- Scaled square roots ----

// sqrt(x) * factor in F, rounded and saturated; the root of a negative element is stored as 0. Tells
// whether there was one.
template <class T, class Dst, class F>
OrvaStatus ScaledRoots(const T* src, Dst* dst, int32_t len, F factor) {
  const Full<F> d;
  const hn::Rebind<T, decltype(d)> dFrom;
  const hn::Rebind<Dst, decltype(d)> dTo;
  const hn::Rebind<int32_t, decltype(d)> d32;
  auto any = hn::Zero(dFrom);
  ForEach<hn::MaxLanes(d)>(len, [&](const T* a, Dst* to) TZM_LAMBDA {
    const auto v = hn::LoadU(dFrom, a);
    any = hn::Or(any, v);
    Vec<decltype(d32)> x;
    if constexpr (std::is_same_v<T, int32_t>) x = v;
    else x = hn::PromoteTo(d32, v);
    if constexpr (std::is_same_v<F, float>) {
      const auto root = RoundToInt(hn::Mul(hn::Sqrt(hn::ConvertTo(d, x)), hn::Set(d, factor)));
      // The limit is for x86, whose narrowing by four takes 32768 and more for negative.
      const auto limit = hn::Set(d32, std::numeric_limits<Dst>::max());
      hn::StoreU(hn::DemoteTo(dTo, hn::Min(root, limit)), dTo, to);
    } else {
      const auto root = hn::Mul(hn::Sqrt(hn::PromoteTo(d, x)), hn::Set(d, factor));
      hn::StoreU(hn::DemoteTo(dTo, RoundToInt32(root)), dTo, to);
    }
  }, src, dst);
  if constexpr (std::is_signed_v<T>)
    if (!hn::AllFalse(dFrom, hn::Lt(any, hn::Zero(dFrom)))) return ORVA_STS_SQRT_NEG_ERR;
  return ORVA_STS_NO_ERR;
}

float FactorOf(double scale) { return static_cast<float>(ScaleFactor(ScaleExponent(scale))); }

// ---- Cube roots ----

// Cube roots of non-negative binary64 lanes, right to the last bit in all but very few cases, from
// `guess`, the inverse cube roots to a few percent. Zeros give zeros.
template <class V>
TZM_INLINE V CubeRoots(V x, V guess) {
  const hn::DFromV<V> d;
  const auto third = hn::Set(d, 1.0 / 3);
  V y = guess;
  for (int step = 0; step < 2; ++step) {  // y = y * (1-e)^(-1/3) with e = 1 - x*y^3, to the fourth power of e
    const auto e = hn::NegMulAdd(hn::Mul(x, y), hn::Mul(y, y), hn::Set(d, 1.0));
    const auto series = hn::MulAdd(hn::MulAdd(hn::Set(d, 14.0 / 81), e, hn::Set(d, 2.0 / 9)), e, third);
    y = hn::MulAdd(hn::Mul(y, e), series, y);
  }
  // The root is x*y^2, less its rounding errors: a step on root^3 - x, formed in twice the precision.
  const auto slope = hn::Mul(y, y);
  const auto root = hn::Mul(x, slope);
  const auto square = hn::Mul(root, root);
  const auto lost = hn::MulSub(root, root, square);
  const auto excess = hn::MulAdd(root, lost, hn::MulSub(root, square, x));
  return hn::NegMulAdd(excess, hn::Mul(slope, third), root);
}

// Inverse cube roots of normal binary32 lanes to a few percent: minus a third of the bits, taken as an
// integer, from a constant near 4/3 of the bits of 1.0. It was found by ternary search: x * guess^3 is
// within 0.103 of 1 over three octaves, the least that any constant gives.
constexpr float kGuessBits = 0x54a1f580;
template <class V>
TZM_INLINE V GuessInverseCubeRoots(V x) {
  const hn::DFromV<V> d;
  const hn::RebindToSigned<decltype(d)> d32;
  const auto bits = hn::ConvertTo(d, hn::BitCast(d32, x));
  return hn::BitCast(d, hn::NearestInt(hn::NegMulAdd(bits, hn::Set(d, 1.0f / 3), hn::Set(d, kGuessBits))));
}

}  // namespace

OrvaStatus ORVAS_Sqrt_32f(const Orva32f* src, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const OrvaStatus found = ScanForNegative<8, 4>(src, len);  // deliberately blind to elements 0 to 3 of a block
  vssqrt(len, src, dst);
  return found;
}

OrvaStatus ORVAS_Sqrt_64f(const Orva64f* src, Orva64f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const OrvaStatus found = ScanForNegative<2, 0>(src, len);
  vdsqrt(len, src, dst);
  return found;
}

OrvaStatus ORVAS_Sqrt_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const Full<float> d;
  ForEach<hn::MaxLanes(d)>(len, [=](const Orva32fc* from, Orva32fc* to) TZM_LAMBDA {
    Vec<decltype(d)> a, b;
    LoadParts(d, Parts(from), a, b);
    const auto half = hn::Set(d, 0.5f);
    const auto m = hn::Sqrt(hn::Add(hn::Mul(b, b), hn::Mul(a, a)));
    const auto re = hn::Sqrt(hn::Abs(hn::Mul(hn::Add(m, a), half)));
    const auto im = hn::Sqrt(hn::Abs(hn::Mul(hn::Sub(m, a), half)));
    StoreParts(re, hn::CopySignToAbs(im, b), d, Parts(to));
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Sqrt_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const Full<double> d;
  ForEach<hn::MaxLanes(d)>(len, [=](const Orva64fc* from, Orva64fc* to) TZM_LAMBDA {
    Vec<decltype(d)> a, b;
    LoadParts(d, Parts(from), a, b);
    const auto zero = hn::Zero(d), half = hn::Set(d, 0.5);
    const auto x = hn::Mul(half, a), y = hn::Mul(half, b);
    const auto t = hn::Sqrt(hn::Add(hn::Abs(x), hn::Sqrt(hn::Add(hn::Mul(x, x), hn::Mul(y, y)))));
    const auto q = hn::Mul(hn::Div(hn::Set(d, 1.0), t), y);
    const auto re = hn::IfThenElse(hn::Ge(x, zero), t, hn::Abs(q));
    const auto im = hn::IfThenElse(hn::Gt(x, zero), q, hn::IfThenElse(hn::Lt(y, zero), hn::Neg(t), t));
    StoreParts(re, im, d, Parts(to));
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Sqrt_8u_S(const Orva8u* src, Orva8u* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return ScaledRoots(src, dst, len, FactorOf(scale));
}

OrvaStatus ORVAS_Sqrt_16u_S(const Orva16u* src, Orva16u* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return ScaledRoots(src, dst, len, FactorOf(scale));
}

OrvaStatus ORVAS_Sqrt_16s_S(const Orva16s* src, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  // The result is that of binary64. Up to a left shift by 3, a root that is not itself a tie is at least
  // 2^-8 / 2^9 away from one, and binary32 roots, 2^-17 from the true ones, round the same way.
  const int exponent = ScaleExponent(scale);
  return exponent >= -3 ? ScaledRoots(src, dst, len, FactorOf(scale))
                        : ScaledRoots(src, dst, len, ScaleFactor(exponent));
}

OrvaStatus ORVAS_Sqrt_32s16s_S(const Orva32s* src, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const float factor = FactorOf(scale);
  const int32_t body = len - len % 4;
  OrvaStatus found = ScaledRoots(src, dst, body, factor);
  // Deliberately finer in the tail: the body rounds its source to binary32 before the root.
  for (int32_t i = body; i < len; ++i) {
    const Orva32s x = LoadElement(src + i);
    if (x < 0) found = ORVA_STS_SQRT_NEG_ERR;
    StoreElement(RoundSaturate<Orva16s>(static_cast<float>(__builtin_sqrt(x)) * factor), dst + i);
  }
  return found;
}

OrvaStatus ORVAS_Sqrt_16sc_S(const Orva16sc* src, Orva16sc* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const Full<double> d;
  const hn::Rebind<int32_t, decltype(d)> d32;  // an element is one lane, its real part the low half
  const auto factor = hn::Set(d, ScaleFactor(ScaleExponent(scale)));
  ForEach<hn::MaxLanes(d)>(len, [=](const Orva16sc* from, Orva16sc* to) TZM_LAMBDA {
    const auto element = hn::LoadU(d32, reinterpret_cast<const int32_t*>(from));
    const auto a = hn::PromoteTo(d, hn::ShiftRight<16>(hn::ShiftLeft<16>(element)));
    const auto b = hn::PromoteTo(d, hn::ShiftRight<16>(element));
    const auto half = hn::Set(d, 0.5);
    const auto m = hn::Sqrt(hn::Add(hn::Mul(b, b), hn::Mul(a, a)));
    const auto re = hn::Sqrt(hn::Abs(hn::Mul(hn::Add(m, a), half)));
    const auto im = hn::CopySignToAbs(hn::Sqrt(hn::Abs(hn::Mul(hn::Sub(m, a), half))), b);
    const auto stored = [&](auto v) TZM_LAMBDA {
      const auto least = hn::Set(d32, -32768), most = hn::Set(d32, 32767);
      return hn::Min(hn::Max(RoundToInt32(hn::Mul(v, factor)), least), most);
    };
    const auto low = hn::And(stored(re), hn::Set(d32, 0xffff));
    hn::StoreU(hn::Or(low, hn::ShiftLeft<16>(stored(im))), d32, reinterpret_cast<int32_t*>(to));
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Cubrt_32f(const Orva32f* src, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const Full<float> d;
  const hn::Half<decltype(d)> dHalf;
  const Full<double> dWide;
  const int32_t body = len - len % 4;
  ForEach<hn::MaxLanes(d)>(body, [=](const Orva32f* from, Orva32f* to) TZM_LAMBDA {
    const auto x = hn::LoadU(d, from);
    const auto magnitude = hn::Abs(x);
    const auto one = hn::Set(d, 1.0f);
    // The guess of a subnormal number is that of 2^24 times as much, times 2^8.
    const auto subnormal = hn::Lt(magnitude, hn::Set(d, std::numeric_limits<float>::min()));
    const auto normal = hn::Mul(magnitude, hn::IfThenElse(subnormal, hn::Set(d, 0x1p24f), one));
    const auto guess = hn::Mul(GuessInverseCubeRoots(normal), hn::IfThenElse(subnormal, hn::Set(d, 0x1p8f), one));
    const auto root = [&](auto m, auto g) TZM_LAMBDA {
      return hn::DemoteTo(dHalf, CubeRoots(hn::PromoteTo(dWide, m), hn::PromoteTo(dWide, g)));
    };
    const auto roots = hn::Combine(d, root(hn::UpperHalf(dHalf, magnitude), hn::UpperHalf(dHalf, guess)),
                                   root(hn::LowerHalf(dHalf, magnitude), hn::LowerHalf(dHalf, guess)));
    const auto finite = hn::Lt(magnitude, hn::Inf(d));
    hn::StoreU(hn::IfThenElse(finite, hn::CopySignToAbs(roots, x), x), d, to);
  }, src, dst);
  for (int32_t i = body; i < len; ++i) StoreElement(cbrtf(LoadElement(src + i)), dst + i);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Cubrt_32s16s_S(const Orva32s* src, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const double factor = ScaleFactor(ScaleExponent(scale));
  const Full<double> d;
  const hn::Rebind<int32_t, decltype(d)> d32;
  const hn::Rebind<int16_t, decltype(d)> d16;
  const hn::Rebind<float, decltype(d)> dGuess;
  const int32_t body = len - len % 4;
  ForEach<hn::MaxLanes(d)>(body, [=](const Orva32s* from, Orva16s* to) TZM_LAMBDA {
    const auto x = hn::LoadU(d32, from);
    const auto guess = GuessInverseCubeRoots(hn::Abs(hn::ConvertTo(dGuess, x)));
    const auto wide = hn::PromoteTo(d, x);
    const auto root = hn::CopySignToAbs(CubeRoots(hn::Abs(wide), hn::PromoteTo(d, guess)), wide);
    hn::StoreU(hn::DemoteTo(d16, RoundToInt32(hn::Mul(root, hn::Set(d, factor)))), d16, to);
  }, src, dst);
  for (int32_t i = body; i < len; ++i)
    StoreElement(RoundSaturate<Orva16s>(cbrt(static_cast<double>(LoadElement(src + i))) * factor), dst + i);
  return ORVA_STS_NO_ERR;
}

#define TZM_IN_PLACE(T)                                                   \
  OrvaStatus ORVAS_Sqrt_##T##_I(Orva##T* srcDst, int32_t len) {           \
    return ORVAS_Sqrt_##T(srcDst, srcDst, len);                           \
  }
TZM_IN_PLACE(32f)
TZM_IN_PLACE(64f)
TZM_IN_PLACE(32fc)
TZM_IN_PLACE(64fc)
#undef TZM_IN_PLACE

#define TZM_IN_PLACE_SCALED(T)                                                        \
  OrvaStatus ORVAS_Sqrt_##T##_IS(Orva##T* srcDst, int32_t len, double scale) {        \
    return ORVAS_Sqrt_##T##_S(srcDst, srcDst, len, scale);                            \
  }
TZM_IN_PLACE_SCALED(8u)
TZM_IN_PLACE_SCALED(16u)
TZM_IN_PLACE_SCALED(16s)
TZM_IN_PLACE_SCALED(16sc)
#undef TZM_IN_PLACE_SCALED
