// Element-wise square and cube roots.
#include <signal_tzm/arith.h>
#include <signal_tzm/companion.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/estimate.h"
#include "frame/float_lanes.h"
#include "frame/scale.h"
#include "frame/sum.h"

#include <cmath>

using namespace tzm;

namespace {

// ---- Square roots with a scan ----

// Whether any lane of what has been found is set.
struct AnySet {
  template <class Lanes>
  TZM_INLINE bool operator()(const Lanes& found) const {
    return !hn::AllFalse(typename Lanes::D(), hn::MaskFromVec(found.v[0]));
  }
};

// The roots of all elements, and the status: in whole blocks of kBlock elements the last kLanes ones count, a register
// of them, behind them all.
template <size_t kBlock, size_t kLanes, class T, class Root>
TZM_INLINE OrvaStatus ScanAndRoot(int32_t len, const T* src, T* dst, Root root) {
  using Lanes = LaneArray<T, kLanes>;
  const auto see = [=](size_t i, Lanes& found) TZM_LAMBDA {
    const typename Lanes::D d;
    const auto counted = hn::LoadU(d, src + i + (kBlock - kLanes));
    found.v[0] = hn::Or(found.v[0], hn::VecFromMask(d, hn::Lt(counted, hn::Zero(d))));
  };
  const auto seeTail = [=](size_t i, bool& any) TZM_LAMBDA { any |= LoadElement(src + i) < 0; };
  const bool negative = OrderedSum<Lanes, kBlock, AnySet>::template Of<kBlock>(len, see, seeTail);
  root(len, src, dst);
  return negative ? ORVA_STS_SQRT_NEG_ERR : ORVA_STS_NO_ERR;
}

// The same by 512 bytes: the machine scans them while it still takes the roots of those before. A function of its own:
// in the member its registers would be saved for every short array.
template <class T>
constexpr int32_t kScanned = 512 / sizeof(T);
template <size_t kBlock, size_t kLanes, class T, class Root>
__attribute__((noinline)) OrvaStatus ScanAndRootBlocks(int32_t len, const T* src, T* dst, Root root) {
  OrvaStatus status = ORVA_STS_NO_ERR;
  ForBlocks<kScanned<T>>(len, [&](int32_t count, const T* from, T* to) TZM_LAMBDA {
    status = std::max(status, ScanAndRoot<kBlock, kLanes>(count, from, to, root));
  }, src, dst);
  return status;
}

template <size_t kBlock, size_t kLanes, class T, class Root>
TZM_INLINE OrvaStatus Roots(const T* src, T* dst, int32_t len, Root root) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (len <= kScanned<T>) return ScanAndRoot<kBlock, kLanes>(len, src, dst, root);
  return ScanAndRootBlocks<kBlock, kLanes>(len, src, dst, root);
}

// ---- Scaled square roots ----

// sqrt(x) * factor in binary32, rounded and saturated; the root of a negative element is stored as 0. Tells
// whether there was one. With kOdd the root is rounded to odd, so that the result is that of the exact one.
template <bool kOdd = false, class T, class Dst>
OrvaStatus ScaledRoots(size_t len, float factor, const T* src, Dst* dst) {
  const Full<float> d;
  AnyLane<decltype(d)> negative;
  RoundEach(len, [&](auto x) TZM_LAMBDA {
    if constexpr (std::is_signed_v<T>) negative.See(hn::Lt(x, hn::Zero(d)));
    auto root = hn::Sqrt(x);
    if constexpr (kOdd) root = RoundedToOdd(root, root, x);
    return hn::Mul(root, hn::Set(d, factor));
  }, dst, src);
  return negative.Seen() ? ORVA_STS_SQRT_NEG_ERR : ORVA_STS_NO_ERR;
}

// ---- Complex square roots ----

// The root of a + bi from its modulus m: sqrt((m + a)/2), and sqrt((m - a)/2) with the sign of b.
template <class V>
struct ComplexRoot {
  V re, im;
};
template <class V>
TZM_INLINE ComplexRoot<V> RootByModulus(V a, V b) {
  const auto half = hn::Set(hn::DFromV<V>(), hn::TFromV<V>(0.5));
  const V m = hn::Sqrt(hn::Add(hn::Mul(b, b), hn::Mul(a, a)));
  const V re = hn::Sqrt(hn::Abs(hn::Mul(hn::Add(m, a), half)));
  const V im = hn::Sqrt(hn::Abs(hn::Mul(hn::Sub(m, a), half)));
  return {re, hn::CopySignToAbs(im, b)};
}

// ---- Cube roots ----

// Inverse cube roots of normal binary32 lanes, right to 16 bits. A guess comes from minus a third of the bits,
// taken as an integer, from a constant near 4/3 of the bits of 1.0. That was found by ternary search:
// x * guess^3 is within 0.103 of 1 over three octaves, the least that any constant gives.
constexpr float kGuessBits = 0x54a1f580;
template <class V>
TZM_INLINE V InverseCubeRoots(V x) {
  const hn::DFromV<V> d;
  const hn::RebindToSigned<decltype(d)> d32;
  const auto bits = hn::ConvertTo(d, hn::BitCast(d32, x));
  const V y = hn::BitCast(d, hn::NearestInt(hn::NegMulAdd(bits, hn::Set(d, 1.0f / 3), hn::Set(d, kGuessBits))));
  // y * (1-e)^(-1/3) with e = 1 - x*y^3, to the fourth power of e.
  const V e = hn::NegMulAdd(hn::Mul(x, y), hn::Mul(y, y), hn::Set(d, 1.0f));
  const V series = hn::MulAdd(hn::MulAdd(hn::Set(d, 14.0f / 81), e, hn::Set(d, 2.0f / 9)), e, hn::Set(d, 1.0f / 3));
  return hn::MulAdd(hn::Mul(y, e), series, y);
}

// Cube roots of non-negative binary64 lanes from their inverses y, with which they are right to 40 bits; with
// kFull to the last bit in all but very few cases. Zeros give zeros.
template <bool kFull, class V>
TZM_INLINE V CubeRoots(V x, V y) {
  const hn::DFromV<V> d;
  // z * (1-e)^(-2/3) with z = x*y^2 and e = 1 - z*y, to the third power of e.
  const V z = hn::Mul(hn::Mul(x, y), y);
  const V e = hn::NegMulAdd(z, y, hn::Set(d, 1.0));
  const V root = hn::MulAdd(hn::Mul(z, e), hn::MulAdd(hn::Set(d, 5.0 / 9), e, hn::Set(d, 2.0 / 3)), z);
  if constexpr (!kFull) return root;
  // A Newton step on root^3 - x, formed in twice the precision.
  const V square = hn::Mul(root, root);
  const V lost = hn::MulSub(root, root, square);
  const V excess = hn::MulAdd(root, lost, hn::MulSub(root, square, x));
  return hn::NegMulAdd(excess, hn::Mul(hn::Mul(y, y), hn::Set(d, 1.0 / 3)), root);
}

}  // namespace

OrvaStatus ORVAS_Sqrt_32f(const Orva32f* src, Orva32f* dst, int32_t len) {
  return Roots<8, 4>(src, dst, len, vssqrt);  // deliberately blind to the other half
}

OrvaStatus ORVAS_Sqrt_64f(const Orva64f* src, Orva64f* dst, int32_t len) {
  constexpr size_t kLanes = hn::MaxLanes(Full<double>());
  return Roots<kLanes, kLanes>(src, dst, len, vdsqrt);
}

OrvaStatus ORVAS_Sqrt_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const Full<float> d;
  ForEach<hn::MaxLanes(d), 2>(len, [=](const Orva32fc* from, Orva32fc* to) TZM_LAMBDA {
    Vec<decltype(d)> a, b;
    LoadParts(d, Parts(from), a, b);
    const auto root = RootByModulus(a, b);
    StoreParts(root.re, root.im, d, Parts(to));
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Sqrt_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const Full<double> d;
  ForEach<hn::MaxLanes(d), 2>(len, [=](const Orva64fc* from, Orva64fc* to) TZM_LAMBDA {
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
  return ScaledRoots(len, FloatFactor(scale), src, dst);
}

OrvaStatus ORVAS_Sqrt_16u_S(const Orva16u* src, Orva16u* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return ScaledRoots(len, FloatFactor(scale), src, dst);
}

OrvaStatus ORVAS_Sqrt_16s_S(const Orva16s* src, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  // The result is that of binary64, which is that of the exact root. Up to a left shift by 3, a root that is not
  // itself a tie is at least 2^-8 / 2^9 away from one, and binary32 roots, 2^-17 from the true ones, round the
  // same way.
  const float factor = FloatFactor(scale);
  return factor <= 8 ? ScaledRoots(len, factor, src, dst) : ScaledRoots<true>(len, factor, src, dst);
}

OrvaStatus ORVAS_Sqrt_32s16s_S(const Orva32s* src, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const float factor = FloatFactor(scale);
  OrvaStatus found = ORVA_STS_NO_ERR;
  // Deliberately finer in the tail: the body rounds its source to binary32 before the root.
  BodyAndTail<4>(
      len, [&](size_t count, auto... at) TZM_LAMBDA { found = ScaledRoots(count, factor, at...); },
      [&](size_t count, const Orva32s* from, Orva16s* to) TZM_LAMBDA {
        for (size_t i = 0; i < count; ++i) {
          const Orva32s x = LoadElement(from + i);
          if (x < 0) found = ORVA_STS_SQRT_NEG_ERR;
          StoreElement(RoundSaturate<Orva16s>(static_cast<float>(__builtin_sqrt(x)) * factor), to + i);
        }
      },
      src, dst);
  return found;
}

OrvaStatus ORVAS_Sqrt_16sc_S(const Orva16sc* src, Orva16sc* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const Full<double> d;
  const hn::Rebind<int32_t, decltype(d)> d32;  // an element is one lane, its real part the low half
  const auto factor = hn::Set(d, ScaleFactor(scale));
  ForEach<hn::MaxLanes(d), 2>(len, [=](const Orva16sc* from, Orva16sc* to) TZM_LAMBDA {
    const auto element = hn::LoadU(d32, reinterpret_cast<const int32_t*>(from));
    const auto a = hn::PromoteTo(d, hn::ShiftRight<16>(hn::ShiftLeft<16>(element)));
    const auto b = hn::PromoteTo(d, hn::ShiftRight<16>(element));
    const auto root = RootByModulus(a, b);
    const auto stored = [&](auto v) TZM_LAMBDA {
      const auto least = hn::Set(d32, -32768), most = hn::Set(d32, 32767);
      return hn::Min(hn::Max(RoundToInt32(hn::Mul(v, factor)), least), most);
    };
    const auto low = hn::And(stored(root.re), hn::Set(d32, 0xffff));
    hn::StoreU(hn::Or(low, hn::ShiftLeft<16>(stored(root.im))), d32, reinterpret_cast<int32_t*>(to));
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Cubrt_32f(const Orva32f* src, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const Full<float> d;
  const hn::Half<decltype(d)> dHalf;
  const Full<double> dWide;
  const auto body = [=](const Orva32f* from, Orva32f* to) TZM_LAMBDA {
    const auto x = hn::LoadU(d, from);
    const auto magnitude = hn::Abs(x);
    const auto one = hn::Set(d, 1.0f);
    // The inverse root of a subnormal number is that of 2^24 times as much, times 2^8.
    const auto subnormal = hn::Lt(magnitude, hn::Set(d, std::numeric_limits<float>::min()));
    const auto normal = hn::Mul(magnitude, hn::IfThenElse(subnormal, hn::Set(d, 0x1p24f), one));
    const auto inverse = hn::Mul(InverseCubeRoots(normal), hn::IfThenElse(subnormal, hn::Set(d, 0x1p8f), one));
    const auto root = [&](auto m, auto y) TZM_LAMBDA {
      return hn::DemoteTo(dHalf, CubeRoots<false>(hn::PromoteTo(dWide, m), hn::PromoteTo(dWide, y)));
    };
    const auto roots = hn::Combine(d, root(hn::UpperHalf(dHalf, magnitude), hn::UpperHalf(dHalf, inverse)),
                                   root(hn::LowerHalf(dHalf, magnitude), hn::LowerHalf(dHalf, inverse)));
    const auto finite = hn::Lt(magnitude, hn::Inf(d));
    hn::StoreU(hn::IfThenElse(finite, hn::CopySignToAbs(roots, x), x), d, to);
  };
  const auto tail = [](const Orva32f* from, Orva32f* to) TZM_LAMBDA { StoreElement(cbrtf(LoadElement(from)), to); };
  BodyAndTail<4, hn::MaxLanes(d), 2>(len, body, tail, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Cubrt_32s16s_S(const Orva32s* src, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const double factor = ScaleFactor(scale);
  const Full<double> d;
  const Full<float> dNarrow;
  const Full<int32_t> d32;
  const hn::Half<Full<float>> dHalf;
  const hn::Half<Full<int32_t>> dHalf32;
  const hn::Rebind<int16_t, decltype(dNarrow)> d16;
  const auto body = [=](const Orva32s* from, Orva16s* to) TZM_LAMBDA {
    const auto x = hn::LoadU(d32, from);
    const auto inverse = InverseCubeRoots(hn::Abs(hn::ConvertTo(dNarrow, x)));
    const auto root = [&](auto part, auto y) TZM_LAMBDA {
      const auto wide = hn::PromoteTo(d, part);
      const auto magnitude = CubeRoots<true>(hn::Abs(wide), hn::PromoteTo(d, y));
      return RoundToInt32(hn::Mul(hn::CopySignToAbs(magnitude, wide), hn::Set(d, factor)));
    };
    const auto low = root(hn::LowerHalf(dHalf32, x), hn::LowerHalf(dHalf, inverse));
    const auto high = root(hn::UpperHalf(dHalf32, x), hn::UpperHalf(dHalf, inverse));
    hn::StoreU(hn::DemoteTo(d16, hn::Combine(d32, high, low)), d16, to);
  };
  const auto tail = [=](const Orva32s* from, Orva16s* to) TZM_LAMBDA {
    StoreElement(RoundSaturate<Orva16s>(cbrt(static_cast<double>(LoadElement(from))) * factor), to);
  };
  BodyAndTail<4, hn::MaxLanes(d32), 2>(len, body, tail, src, dst);
  return ORVA_STS_NO_ERR;
}

#define TZM_IN_PLACE(in_place, member, T)        \
  OrvaStatus in_place(T* srcDst, int32_t len) {  \
    return member(srcDst, srcDst, len);          \
  }
TZM_IN_PLACE(ORVAS_Sqrt_32f_I, ORVAS_Sqrt_32f, Orva32f)
TZM_IN_PLACE(ORVAS_Sqrt_64f_I, ORVAS_Sqrt_64f, Orva64f)
TZM_IN_PLACE(ORVAS_Sqrt_32fc_I, ORVAS_Sqrt_32fc, Orva32fc)
TZM_IN_PLACE(ORVAS_Sqrt_64fc_I, ORVAS_Sqrt_64fc, Orva64fc)
#undef TZM_IN_PLACE

#define TZM_IN_PLACE_SCALED(in_place, member, T)               \
  OrvaStatus in_place(T* srcDst, int32_t len, double scale) {  \
    return member(srcDst, srcDst, len, scale);                 \
  }
TZM_IN_PLACE_SCALED(ORVAS_Sqrt_8u_IS, ORVAS_Sqrt_8u_S, Orva8u)
TZM_IN_PLACE_SCALED(ORVAS_Sqrt_16u_IS, ORVAS_Sqrt_16u_S, Orva16u)
TZM_IN_PLACE_SCALED(ORVAS_Sqrt_16s_IS, ORVAS_Sqrt_16s_S, Orva16s)
TZM_IN_PLACE_SCALED(ORVAS_Sqrt_16sc_IS, ORVAS_Sqrt_16sc_S, Orva16sc)
#undef TZM_IN_PLACE_SCALED
