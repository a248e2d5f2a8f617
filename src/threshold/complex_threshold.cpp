// Thresholds of complex samples: magnitudes are compared with a real level, and an element is scaled along
// its own direction or replaced.
#include <signal_tzm/threshold.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/estimate.h"

using namespace tzm;

namespace {

OrvaStatus Check(const Orva32fc* src, const Orva32fc* dst, int32_t len, Orva32f level) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  return level < 0 ? ORVA_STS_THRESH_NEG_ERR : ORVA_STS_NO_ERR;
}

// rule(d, re, im) replaces the parts of one register's worth of elements, in the machine's order.
template <class D, class Rule>
TZM_INLINE void Apply(D d, size_t len, Rule&& rule, const Orva32fc* src, Orva32fc* dst) {
  ForEach<hn::MaxLanes(d), 2>(len, [&](const Orva32fc* x, Orva32fc* out) TZM_LAMBDA {
    Vec<D> re, im;
    LoadParts(d, Parts(x), re, im);
    rule(d, re, im);
    StoreParts(re, im, d, Parts(out));
  }, src, dst);
}

// Where a squared magnitude is a subnormal number its exact root stands for the estimated one.
template <class D>
TZM_INLINE Vec<D> ExactIfSubnormal(D d, Vec<D> square, Vec<D> magnitude) {
  const hn::RebindToSigned<D> bits;
  const auto subnormal = hn::And(hn::Gt(hn::BitCast(bits, square), hn::Zero(bits)),
                                 hn::Lt(hn::BitCast(bits, square), hn::Set(bits, 0x00800000)));
  return hn::IfThenElse(hn::RebindMask(d, subnormal), hn::Sqrt(square), magnitude);
}

// One part times the level and a factor or its divisor, in binary64.
template <class D, class Turn>
TZM_INLINE Vec<D> Rescaled(D d, Vec<D> part, Vec<D> magnitude, Turn turn) {
  const hn::Half<D> half;
  const hn::RepartitionToWide<D> wide;
  const auto low = turn(hn::PromoteTo(wide, hn::LowerHalf(half, part)),
                        hn::PromoteTo(wide, hn::LowerHalf(half, magnitude)));
  const auto high = turn(hn::PromoteTo(wide, hn::UpperHalf(half, part)),
                         hn::PromoteTo(wide, hn::UpperHalf(half, magnitude)));
  return NarrowPair(d, low, high);
}

// Elements whose magnitude is caught(magnitude, level) are brought to the level. The body (pairs of
// elements) takes the magnitude and its reciprocal from the vector unit's estimates, each refined by two
// steps; the tail divides. A zero element has a NaN magnitude and is never scaled.
template <class Caught>
OrvaStatus Limit(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level, Caught caught) {
  if (OrvaStatus status = Check(src, dst, len, level)) return status;
  const Full<float> dAll;
  const hn::RepartitionToWide<decltype(dAll)> wide;
  const auto limit = hn::Set(dAll, level);
  const auto wideLimit = hn::Set(wide, static_cast<double>(level));
  const auto apply = [&](auto d, auto& re, auto& im, auto magnitude, auto turn) TZM_LAMBDA {
    const auto mask = caught(magnitude, limit);
    if (hn::AllFalse(d, mask)) return;
    re = hn::IfThenElse(mask, Rescaled(d, re, magnitude, turn), re);
    im = hn::IfThenElse(mask, Rescaled(d, im, magnitude, turn), im);
  };
  const auto body = [&](auto d, auto& re, auto& im) TZM_LAMBDA {
    const auto square = hn::MulAdd(im, im, hn::Mul(re, re));
    auto root = ReciprocalRootEstimate(square);
    for (int step = 0; step < 2; ++step) root = hn::Mul(root, ReciprocalRootStep(hn::Mul(square, root), root));
    // The machine's estimate is not defined here for what is neither normal nor subnormal.
    const auto normal = hn::And(hn::Gt(square, hn::Zero(d)), hn::IsFinite(square));
    const auto magnitude = hn::IfThenElse(normal, hn::Mul(root, square), hn::NaN(d));
    apply(d, re, im, ExactIfSubnormal(d, square, magnitude), [&](auto part, auto mag) TZM_LAMBDA {
      auto reciprocal = ReciprocalEstimate(mag);
      for (int step = 0; step < 2; ++step) reciprocal = hn::Mul(reciprocal, ReciprocalStep(mag, reciprocal));
      return hn::Mul(hn::Mul(part, wideLimit), reciprocal);
    });
  };
  const auto tail = [&](auto d, auto& re, auto& im) TZM_LAMBDA {
    const auto square = hn::MulAdd(re, re, hn::Mul(im, im));
    const auto magnitude = hn::Mul(hn::Div(hn::Set(d, 1.0f), hn::Sqrt(square)), square);
    apply(d, re, im, ExactIfSubnormal(d, square, magnitude), [&](auto part, auto mag) TZM_LAMBDA {
      return hn::Div(hn::Mul(part, wideLimit), mag);
    });
  };
  BodyAndTail<2>(
      len, [&](size_t count, auto... at) TZM_LAMBDA { Apply(dAll, count, body, at...); },
      [&](size_t count, auto... at) TZM_LAMBDA { Apply(dAll, count, tail, at...); }, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus Lt(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level) {
  return Limit(src, dst, len, level, [](auto magnitude, auto limit) TZM_LAMBDA { return hn::Lt(magnitude, limit); });
}

OrvaStatus Gt(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level) {
  return Limit(src, dst, len, level, [](auto magnitude, auto limit) TZM_LAMBDA { return hn::Gt(magnitude, limit); });
}

OrvaStatus ByRelation(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level, int32_t relOp) {
  if (relOp == ORVA_RELATION_LESS) return Lt(src, dst, len, level);
  if (relOp == ORVA_RELATION_GREATER) return Gt(src, dst, len, level);
  return ORVA_STS_BAD_ARG_ERR;
}

// Squares are compared, no root is taken.
template <class Caught>
OrvaStatus Replace(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level, Orva32fc value, Caught caught) {
  if (OrvaStatus status = Check(src, dst, len, level)) return status;
  const Full<float> dAll;
  const auto limit = hn::Set(dAll, level * level), withRe = hn::Set(dAll, value.re), withIm = hn::Set(dAll, value.im);
  Apply(dAll, len, [&](auto, auto& re, auto& im) TZM_LAMBDA {
    const auto mask = caught(hn::MulAdd(re, re, hn::Mul(im, im)), limit);
    re = hn::IfThenElse(mask, withRe, re);
    im = hn::IfThenElse(mask, withIm, im);
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus LtVal(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level, Orva32fc value) {
  return Replace(src, dst, len, level, value, [](auto square, auto limit) TZM_LAMBDA { return hn::Lt(square, limit); });
}

OrvaStatus GtVal(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level, Orva32fc value) {
  return Replace(src, dst, len, level, value, [](auto square, auto limit) TZM_LAMBDA { return hn::Gt(square, limit); });
}

// The reciprocal, limited in magnitude to 1/level, or not, at level 0. In the body parts are multiplied by reciprocals,
// in the tail divided. A NaN magnitude gives NaN by way of the plain reciprocal. Tells whether a zero was met at
// level 0.
template <bool kLimited, class D>
bool Invert(D d, const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level) {
  using V = Vec<D>;
  const V limit = hn::Set(d, level), one = hn::Set(d, 1.0f), zero = hn::Zero(d);
  bool met = false;

  // `plain` and `scaled` give one part (of the conjugate) over the square, and at the limit.
  const auto rule = [&](V& re, V& im, V magnitude, auto plain, auto scaled) TZM_LAMBDA {
    const auto isZero = hn::Eq(magnitude, zero);
    const V conjugate = hn::Neg(im);
    const V plainRe = plain(re), plainIm = plain(conjugate);
    if constexpr (kLimited) {
      const auto small = hn::Lt(magnitude, limit);
      const V zeroRe = hn::CopySign(hn::Div(one, limit), re), zeroIm = hn::Div(conjugate, limit);
      re = hn::IfThenElse(isZero, zeroRe, hn::IfThenElse(small, scaled(re), plainRe));
      im = hn::IfThenElse(isZero, zeroIm, hn::IfThenElse(small, scaled(conjugate), plainIm));
    } else {
      const V zeroRe = hn::CopySign(hn::Inf(d), re), zeroIm = hn::Mul(im, hn::Set(d, -0.5f));
      re = hn::IfThenElse(isZero, zeroRe, plainRe);
      im = hn::IfThenElse(isZero, zeroIm, plainIm);
    }
  };
  const auto body = [&](D, V& re, V& im) TZM_LAMBDA {
    const V square = hn::MulAdd(re, re, hn::Mul(im, im)), magnitude = hn::Sqrt(square);
    // Deliberately coarse: a zero real part and a zero imaginary part anywhere in one step raise the
    // status, an element whose square underflows does not.
    const auto zeroRe = hn::Eq(re, zero), zeroIm = hn::Eq(im, zero);
    if (!kLimited && !hn::AllFalse(d, zeroRe) && !hn::AllFalse(d, zeroIm)) met = true;
    const V reciprocal = hn::Div(one, square), mostReciprocal = hn::Div(one, limit);
    rule(re, im, magnitude, [&](V part) TZM_LAMBDA { return hn::Mul(part, reciprocal); },
         [&](V part) TZM_LAMBDA { return hn::Mul(hn::Mul(magnitude, hn::Mul(part, reciprocal)), mostReciprocal); });
  };
  const auto tail = [&](D, V& re, V& im) TZM_LAMBDA {
    const V square = hn::MulAdd(re, re, hn::Mul(im, im)), magnitude = hn::Sqrt(square);
    if (!kLimited && !hn::AllFalse(d, hn::Eq(magnitude, zero))) met = true;
    const V ratio = hn::Div(magnitude, square);
    rule(re, im, magnitude, [&](V part) TZM_LAMBDA { return hn::Div(part, square); },
         [&](V part) TZM_LAMBDA { return hn::Div(hn::Mul(ratio, part), limit); });
  };
  BodyAndTail<4>(
      len, [&](size_t count, auto... at) TZM_LAMBDA { Apply(d, count, body, at...); },
      [&](size_t count, auto... at) TZM_LAMBDA { Apply(d, count, tail, at...); }, src, dst);
  return met;
}

OrvaStatus LtInv(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level) {
  if (OrvaStatus status = Check(src, dst, len, level)) return status;
  if (level > 0) return Invert<true>(Full<float>(), src, dst, len, level), ORVA_STS_NO_ERR;
  const hn::FixedTag<float, 4> step;  // in which zeros raise the status
  return Invert<false>(step, src, dst, len, level) ? ORVA_STS_INV_ZERO_ERR : ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_Threshold_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level, int32_t relOp) {
  return ByRelation(src, dst, len, level, relOp);
}

OrvaStatus ORVAS_Threshold_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f level, int32_t relOp) {
  return ByRelation(srcDst, srcDst, len, level, relOp);
}

OrvaStatus ORVAS_Threshold_LT_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level) {
  return Lt(src, dst, len, level);
}

OrvaStatus ORVAS_Threshold_LT_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f level) {
  return Lt(srcDst, srcDst, len, level);
}

OrvaStatus ORVAS_Threshold_GT_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level) {
  return Gt(src, dst, len, level);
}

OrvaStatus ORVAS_Threshold_GT_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f level) {
  return Gt(srcDst, srcDst, len, level);
}

OrvaStatus ORVAS_Threshold_LTVal_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level,
                                      Orva32fc value) {
  return LtVal(src, dst, len, level, value);
}

OrvaStatus ORVAS_Threshold_LTVal_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f level, Orva32fc value) {
  return LtVal(srcDst, srcDst, len, level, value);
}

OrvaStatus ORVAS_Threshold_GTVal_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level,
                                      Orva32fc value) {
  return GtVal(src, dst, len, level, value);
}

OrvaStatus ORVAS_Threshold_GTVal_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f level, Orva32fc value) {
  return GtVal(srcDst, srcDst, len, level, value);
}

OrvaStatus ORVAS_Threshold_LTInv_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level) {
  return LtInv(src, dst, len, level);
}

OrvaStatus ORVAS_Threshold_LTInv_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f level) {
  return LtInv(srcDst, srcDst, len, level);
}
