// Division: quotients of two arrays, element by element, the divisor first.
#include <signal_tzm/arith.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/estimate.h"
#include "frame/float_lanes.h"
#include "frame/product.h"
#include "frame/scale.h"

using namespace tzm;

namespace {

// The kernels of this file give whether a zero divisor was met.
OrvaStatus Status(bool zero) { return zero ? ORVA_STS_DIV_ZERO_WARN : ORVA_STS_NO_ERR; }

// ---- Floating ----

template <class T>
OrvaStatus Divide(const T* divisor, const T* dividend, T* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, divisor, dividend, dst)) return status;
  const Full<T> d;
  AnyLane<decltype(d)> zero;
  ForEach<hn::MaxLanes(d)>(len, [&](const T* divisors, const T* dividends, T* to) TZM_LAMBDA {
    const auto a = hn::LoadU(d, divisors);
    zero.See(hn::Eq(a, hn::Zero(d)));
    hn::StoreU(hn::Div(hn::LoadU(d, dividends), a), d, to);
  }, divisor, dividend, dst);
  return Status(zero.Seen());
}

// Loops over complex elements with their parts apart, in registers of tag `real`: kernel(c, d, a, b, re, im) of c + di,
// the divisor, and a + bi, the dividend, gives what warns where it is zero.
template <class Real, class Complex, class Kernel>
TZM_INLINE bool DivideParts(Real real, size_t len, Kernel kernel, const Complex* divisor, const Complex* dividend,
                            Complex* dst) {
  AnyLane<Real> zero;
  ForEach<hn::MaxLanes(real), 2>(len, [&](const Complex* divisors, const Complex* dividends, Complex* to) TZM_LAMBDA {
    Vec<Real> c, d, a, b, re, im;
    LoadParts(real, Parts(divisors), c, d);
    LoadParts(real, Parts(dividends), a, b);
    zero.See(hn::Eq(kernel(c, d, a, b, re, im), hn::Zero(real)));
    StoreParts(re, im, real, Parts(to));
  }, divisor, dividend, dst);
  return zero.Seen();
}

// Body and tail deliberately differ in what is fused and in what warns: in the tail a real numerator of
// zero, which a zero divisor has, and so has a zero dividend over any divisor.
template <bool kBody>
TZM_INLINE bool DivideComplex32(size_t len, const Orva32fc* divisor, const Orva32fc* dividend, Orva32fc* dst) {
  using Real = std::conditional_t<kBody, Full<float>, hn::CappedTag<float, 8>>;  // few elements: narrow registers
  using V = Vec<Real>;
  return DivideParts(Real(), len, [](V c, V d, V a, V b, V& re, V& im) TZM_LAMBDA {
    const V squares = hn::Mul(d, d), product = hn::Mul(d, a);
    const V denominator = kBody ? hn::Add(hn::Mul(c, c), squares) : hn::MulAdd(c, c, squares);
    const V real = hn::MulAdd(c, a, hn::Mul(d, b));
    re = hn::Div(real, denominator);
    im = hn::Div(kBody ? hn::Sub(hn::Mul(b, c), product) : hn::MulSub(c, b, product), denominator);
    return kBody ? denominator : real;
  }, divisor, dividend, dst);
}

// ---- Integers of 8 and 16 bits, and 32 by 16, in binary32 ----

enum class Rounding { kToZero, kToEven, kFromZero, kUnknown };

// What a rounding to nearest, ties to even, makes the wanted one of.
template <Rounding kRounding, class V>
TZM_INLINE V BeforeRounding(V y) {
  // The number just below 0.5 carries ties, and nothing below a tie, to the next integer.
  if constexpr (kRounding == Rounding::kFromZero)
    y = hn::Add(y, hn::CopySignToAbs(hn::Set(hn::DFromV<V>(), 0.49999997f), y));
  return kRounding == Rounding::kToEven ? y : hn::Trunc(y);
}

// What the members that share this kernel differ in.
struct Way {
  Rounding rounding = Rounding::kToEven;
  bool maximumAtZero = false;  // a zero divisor gives the largest value, also for a zero dividend
  bool warns = true;
};

// round(b/a * factor), saturated; a zero divisor gives infinity by the dividend's sign, or NaN and so 0.
template <Way kWay, bool kSafe, class Divisor, class Dividend, class T>
bool Quotients(size_t len, float factor, const Divisor* divisor, const Dividend* dividend, T* dst) {
  const Full<float> d;
  const auto scale = hn::Set(d, factor);
  AnyLane<decltype(d)> zero;
  RoundEach(len, [&](auto a, auto b) TZM_LAMBDA {
    const auto isZero = hn::Eq(a, hn::Zero(d));
    if constexpr (kWay.warns) zero.See(isZero);
    if constexpr (kWay.rounding == Rounding::kUnknown) {
      return hn::Zero(d);
    } else {
      Vec<Full<float>> y;
      if constexpr (sizeof(Dividend) == 4) y = hn::Div(b, a);
      else if constexpr (kSafe) y = IntegerQuotient(a, b);
      else y = RoundedToOdd(IntegerQuotient(a, b), a, b);
      if constexpr (kWay.maximumAtZero) y = hn::IfThenElse(isZero, hn::Inf(d), y);
      return BeforeRounding<kWay.rounding>(hn::Mul(y, scale));
    }
  }, dst, divisor, dividend);
  return zero.Seen();
}
template <Way kWay, class Divisor, class Dividend, class T>
bool Quotients(size_t len, float factor, const Divisor* divisor, const Dividend* dividend, T* dst) {
  if constexpr (sizeof(Dividend) == 2)
    if (factor > kSafeFactor) return Quotients<kWay, false>(len, factor, divisor, dividend, dst);
  return Quotients<kWay, true>(len, factor, divisor, dividend, dst);
}

// The unsigned members: in the tail behind whole blocks a zero divisor gives the largest value without any
// division, and so does 0 by 0, which gives 0 in the body.
template <size_t kBlock, class T>
OrvaStatus DivideUnsigned(const T* divisor, const T* dividend, T* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, divisor, dividend, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const float factor = QuotientFactor(scale);
  bool zero = false;
  BodyAndTail<kBlock>(
      len, [&](size_t count, auto... at) TZM_LAMBDA { zero |= Quotients<Way{}>(count, factor, at...); },
      [&](size_t count, auto... at) TZM_LAMBDA { zero |= Quotients<Way{.maximumAtZero = true}>(count, factor, at...); },
      divisor, dividend, dst);
  return Status(zero);
}

// An unknown rounding mode deliberately is no error: it clears the body, whose zero divisors warn as
// ever, and leaves the tail as it was. Of the tails, that of 8 bits never warns.
template <size_t kBlock, class T>
OrvaStatus DivideRounded(const T* divisor, const T* dividend, T* dst, int32_t len, int32_t roundMode, double scale) {
  if (OrvaStatus status = CheckArrays(len, divisor, dividend, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const float factor = QuotientFactor(scale);
  const auto run = [&]<Rounding kRounding>() {
    constexpr Way kBody = {.rounding = kRounding}, kTail = {.rounding = kRounding, .warns = sizeof(T) > 1};
    bool zero = false;
    BodyAndTail<kBlock>(
        len, [&](size_t count, auto... at) TZM_LAMBDA { zero |= Quotients<kBody>(count, factor, at...); },
        [&](size_t count, auto... at) TZM_LAMBDA {
          if constexpr (kRounding != Rounding::kUnknown) zero |= Quotients<kTail>(count, factor, at...);
        },
        divisor, dividend, dst);
    return Status(zero);
  };
  switch (roundMode) {
    case ORVA_ROUND_ZERO: return run.template operator()<Rounding::kToZero>();
    case ORVA_ROUND_NEAREST: return run.template operator()<Rounding::kToEven>();
    case ORVA_ROUND_TIES_AWAY: return run.template operator()<Rounding::kFromZero>();
    default: return run.template operator()<Rounding::kUnknown>();
  }
}

// ---- 32-bit integers and complex 16-bit integers, in binary64 ----

bool ComplexQuotients(size_t len, double factor, const Orva16sc* divisor, const Orva16sc* dividend, Orva16sc* dst) {
  using Product = ConjugateProduct;
  using Lanes = Product::Lanes;
  AnyLane<Lanes::D> zero;
  const auto load = [](const Orva16sc* from) TZM_LAMBDA { return ComplexProduct<int16_t>::Load(Parts(from)); };
  const auto shrink = Lanes::Set(1 / factor);
  ForEach<Product::kStep, 1>(len, [&](const Orva16sc* divisors, const Orva16sc* dividends, Orva16sc* to) TZM_LAMBDA {
    const auto c = load(divisors);
    const Lanes denominator = Product(c, c).re * shrink;
    const Product numerator(load(dividends), c);
    // One reciprocal for both parts: quotients that are integers or ties come out exact, and all others stay
    // on their side of them.
    const auto reciprocal = Lanes::Each([&](size_t r) TZM_LAMBDA {
      zero.See(hn::Eq(denominator.v[r], hn::Zero(Lanes::D())));
      return RoughReciprocal(denominator.v[r]);
    });
    const auto part = [&](const Lanes& n) TZM_LAMBDA {
      return Lanes::Each([&](size_t r) TZM_LAMBDA {
        return CorrectedQuotient(denominator.v[r], n.v[r], reciprocal.v[r]);
      });
    };
    StoreRoundedParts(part(numerator.re), part(numerator.im), Parts(to));
  }, divisor, dividend, dst);
  return zero.Seen();
}

// The tail deliberately has denominator and numerators in wrapping 32-bit integers: a divisor of two parts of
// -32768 has the denominator -2^31 there, which turns the sign of the result.
bool WrappingQuotients(size_t len, double factor, const Orva16sc* divisor, const Orva16sc* dividend, Orva16sc* dst) {
  const auto sum = [](int32_t x, int32_t y) {
    return static_cast<double>(static_cast<int32_t>(static_cast<uint32_t>(x) + static_cast<uint32_t>(y)));
  };
  bool zero = false;
  for (size_t i = 0; i < len; ++i) {
    const Orva16sc c = LoadElement(divisor + i), a = LoadElement(dividend + i);
    const double denominator = sum(c.re * c.re, c.im * c.im);
    const double re = sum(c.re * a.re, c.im * a.im), im = sum(c.re * a.im, -(c.im * a.re));
    zero |= denominator == 0;
    StoreElement(Orva16sc{RoundSaturate<Orva16s>(re / denominator * factor),
                          RoundSaturate<Orva16s>(im / denominator * factor)}, dst + i);
  }
  return zero;
}

}  // namespace

OrvaStatus ORVAS_Div_32f(const Orva32f* src1, const Orva32f* src2, Orva32f* dst, int32_t len) {
  return Divide(src1, src2, dst, len);
}

OrvaStatus ORVAS_Div_64f(const Orva64f* src1, const Orva64f* src2, Orva64f* dst, int32_t len) {
  return Divide(src1, src2, dst, len);
}

OrvaStatus ORVAS_Div_32f_I(const Orva32f* src, Orva32f* srcDst, int32_t len) {
  return ORVAS_Div_32f(src, srcDst, srcDst, len);
}

OrvaStatus ORVAS_Div_64f_I(const Orva64f* src, Orva64f* srcDst, int32_t len) {
  return ORVAS_Div_64f(src, srcDst, srcDst, len);
}

OrvaStatus ORVAS_Div_32fc(const Orva32fc* src1, const Orva32fc* src2, Orva32fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  bool zero = false;
  BodyAndTail<16>(
      len, [&](size_t count, auto... at) TZM_LAMBDA { zero |= DivideComplex32<true>(count, at...); },
      [&](size_t count, auto... at) TZM_LAMBDA { zero |= DivideComplex32<false>(count, at...); }, src1, src2, dst);
  return Status(zero);
}

OrvaStatus ORVAS_Div_32fc_I(const Orva32fc* src, Orva32fc* srcDst, int32_t len) {
  return ORVAS_Div_32fc(src, srcDst, srcDst, len);
}

OrvaStatus ORVAS_Div_64fc(const Orva64fc* src1, const Orva64fc* src2, Orva64fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  const Full<double> real;
  using V = Vec<Full<double>>;
  return Status(DivideParts(real, len, [=](V c, V d, V a, V b, V& re, V& im) TZM_LAMBDA {  // deliberately nothing fused
    const V denominator = hn::Add(hn::Mul(c, c), hn::Mul(d, d));
    const V reciprocal = hn::Div(hn::Set(real, 1.0), denominator);
    re = hn::Mul(hn::Add(hn::Mul(c, a), hn::Mul(d, b)), reciprocal);
    im = hn::Mul(hn::Sub(hn::Mul(c, b), hn::Mul(d, a)), reciprocal);
    return denominator;
  }, src1, src2, dst));
}

OrvaStatus ORVAS_Div_64fc_I(const Orva64fc* src, Orva64fc* srcDst, int32_t len) {
  return ORVAS_Div_64fc(src, srcDst, srcDst, len);
}

OrvaStatus ORVAS_Div_8u_S(const Orva8u* src1, const Orva8u* src2, Orva8u* dst, int32_t len, double scale) {
  return DivideUnsigned<48>(src1, src2, dst, len, scale);
}

OrvaStatus ORVAS_Div_16u_S(const Orva16u* src1, const Orva16u* src2, Orva16u* dst, int32_t len, double scale) {
  return DivideUnsigned<24>(src1, src2, dst, len, scale);
}

OrvaStatus ORVAS_Div_16s_S(const Orva16s* src1, const Orva16s* src2, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return Status(Quotients<Way{}>(len, QuotientFactor(scale), src1, src2, dst));
}

// The tail of up to three elements deliberately divides in binary32, coarser than the body.
OrvaStatus ORVAS_Div_32s_S(const Orva32s* src1, const Orva32s* src2, Orva32s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const float factor = QuotientFactor(scale);
  const Full<double> d;
  const auto wideFactor = hn::Set(d, static_cast<double>(factor));
  AnyLane<decltype(d)> zero;
  bool zeroInTail = false;
  BodyAndTail<4, hn::MaxLanes(d), 2>(
      len,
      [&](const Orva32s* divisors, const Orva32s* dividends, Orva32s* to) TZM_LAMBDA {
        const auto a = LoadFloating(d, divisors), b = LoadFloating(d, dividends);
        zero.See(hn::Eq(a, hn::Zero(d)));
        StoreRounded(hn::Mul(hn::Div(b, a), wideFactor), to);
      },
      [&](const Orva32s* divisor, const Orva32s* dividend, Orva32s* to) TZM_LAMBDA {
        const float a = static_cast<float>(LoadElement(divisor)), b = static_cast<float>(LoadElement(dividend));
        zeroInTail |= a == 0;
        StoreElement(RoundSaturate<Orva32s>(b / a * factor), to);
      },
      src1, src2, dst);
  return Status(zero.Seen() || zeroInTail);
}

OrvaStatus ORVAS_Div_32s16s_S(const Orva16s* src1, const Orva32s* src2, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return Status(Quotients<Way{}>(len, QuotientFactor(scale), src1, src2, dst));
}

OrvaStatus ORVAS_Div_16sc_S(const Orva16sc* src1, const Orva16sc* src2, Orva16sc* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const float factor = QuotientFactor(scale);
  bool zero = false;
  BodyAndTail<8>(
      len, [&](size_t count, auto... at) TZM_LAMBDA { zero |= ComplexQuotients(count, factor, at...); },
      [&](size_t count, auto... at) TZM_LAMBDA { zero |= WrappingQuotients(count, factor, at...); }, src1, src2, dst);
  return Status(zero);
}

OrvaStatus ORVAS_Div_8u_IS(const Orva8u* src, Orva8u* srcDst, int32_t len, double scale) {
  return ORVAS_Div_8u_S(src, srcDst, srcDst, len, scale);
}

OrvaStatus ORVAS_Div_16u_IS(const Orva16u* src, Orva16u* srcDst, int32_t len, double scale) {
  return ORVAS_Div_16u_S(src, srcDst, srcDst, len, scale);
}

OrvaStatus ORVAS_Div_16s_IS(const Orva16s* src, Orva16s* srcDst, int32_t len, double scale) {
  return ORVAS_Div_16s_S(src, srcDst, srcDst, len, scale);
}

OrvaStatus ORVAS_Div_32s_IS(const Orva32s* src, Orva32s* srcDst, int32_t len, double scale) {
  return ORVAS_Div_32s_S(src, srcDst, srcDst, len, scale);
}

OrvaStatus ORVAS_Div_16sc_IS(const Orva16sc* src, Orva16sc* srcDst, int32_t len, double scale) {
  return ORVAS_Div_16sc_S(src, srcDst, srcDst, len, scale);
}

OrvaStatus ORVAS_Div_Round_8u_S(const Orva8u* src1, const Orva8u* src2, Orva8u* dst, int32_t len, int32_t roundMode,
                                double scale) {
  return DivideRounded<32>(src1, src2, dst, len, roundMode, scale);
}

OrvaStatus ORVAS_Div_Round_16u_S(const Orva16u* src1, const Orva16u* src2, Orva16u* dst, int32_t len,
                                 int32_t roundMode, double scale) {
  return DivideRounded<16>(src1, src2, dst, len, roundMode, scale);
}

OrvaStatus ORVAS_Div_Round_16s_S(const Orva16s* src1, const Orva16s* src2, Orva16s* dst, int32_t len,
                                 int32_t roundMode, double scale) {
  return DivideRounded<8>(src1, src2, dst, len, roundMode, scale);
}

OrvaStatus ORVAS_Div_Round_8u_IS(const Orva8u* src, Orva8u* srcDst, int32_t len, int32_t roundMode, double scale) {
  return ORVAS_Div_Round_8u_S(src, srcDst, srcDst, len, roundMode, scale);
}

OrvaStatus ORVAS_Div_Round_16u_IS(const Orva16u* src, Orva16u* srcDst, int32_t len, int32_t roundMode, double scale) {
  return ORVAS_Div_Round_16u_S(src, srcDst, srcDst, len, roundMode, scale);
}

OrvaStatus ORVAS_Div_Round_16s_IS(const Orva16s* src, Orva16s* srcDst, int32_t len, int32_t roundMode, double scale) {
  return ORVAS_Div_Round_16s_S(src, srcDst, srcDst, len, roundMode, scale);
}
