// Thresholds of real samples: elements below or above a level, or of small or large magnitude, are
// replaced. Comparisons are strict and what is not caught is copied bit for bit.
#include <signal_tzm/threshold.h>

#include "frame/call.h"
#include "frame/drive.h"

using namespace tzm;

namespace {

// dst = rule(src), with `rule` on a register.
template <class T, class Rule>
TZM_INLINE void Apply(size_t len, const Rule& rule, const T* src, T* dst) {
  const Full<T> d;
  ForEach<hn::MaxLanes(d)>(len, [&](const T* x, T* out) TZM_LAMBDA { hn::StoreU(rule(hn::LoadU(d, x)), d, out); }, src,
                           dst);
}
// The same with one rule for the blocks of 128 bits and another for the tail.
template <class T, class Body, class Tail>
TZM_INLINE void ApplyBodyAndTail(size_t len, const Body& body, const Tail& tail, const T* src, T* dst) {
  BodyAndTail<16 / sizeof(T)>(
      len, [&](size_t count, auto... at) TZM_LAMBDA { Apply(count, body, at...); },
      [&](size_t count, auto... at) TZM_LAMBDA { Apply(count, tail, at...); }, src, dst);
}

template <class T>
auto Splat(T value) {
  return hn::Set(Full<T>(), value);
}

// ---- Levels ----

// Floating samples: in the body (whole blocks of 128 bits) the vector unit's maximum or minimum, NaN from
// either side and -0 below +0; in the tail a comparison, so that a NaN level does nothing there, a NaN
// sample stays, and a zero keeps its sign. Only a level that is NaN or 0 tells the two apart.
template <class T, class Body, class Tail>
TZM_INLINE OrvaStatus Limit(const T* src, T* dst, int32_t len, T level, const Body& body, const Tail& tail) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if constexpr (std::is_floating_point_v<T>) {
    if (!(level < 0 || level > 0)) {
      ApplyBodyAndTail(len, body, tail, src, dst);
      return ORVA_STS_NO_ERR;
    }
  }
  Apply(len, tail, src, dst);
  return ORVA_STS_NO_ERR;
}

template <class T>
OrvaStatus Lt(const T* src, T* dst, int32_t len, T level) {
  const auto limit = Splat(level);
  return Limit(
      src, dst, len, level, [=](auto x) TZM_LAMBDA { return MaxOrNaN(x, limit); },
      [=](auto x) TZM_LAMBDA { return MaxOrSecond(limit, x); });
}

template <class T>
OrvaStatus Gt(const T* src, T* dst, int32_t len, T level) {
  const auto limit = Splat(level);
  return Limit(
      src, dst, len, level, [=](auto x) TZM_LAMBDA { return MinOrNaN(x, limit); },
      [=](auto x) TZM_LAMBDA { return MinOrSecond(limit, x); });
}

template <class T>
OrvaStatus ByRelation(const T* src, T* dst, int32_t len, T level, int32_t relOp) {
  if (relOp == ORVA_RELATION_LESS) return Lt(src, dst, len, level);
  if (relOp == ORVA_RELATION_GREATER) return Gt(src, dst, len, level);
  return ORVA_STS_BAD_ARG_ERR;
}

template <class T>
OrvaStatus LtVal(const T* src, T* dst, int32_t len, T level, T value) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const auto limit = Splat(level), with = Splat(value);
  Apply(len, [=](auto x) TZM_LAMBDA { return hn::IfThenElse(hn::Lt(x, limit), with, x); }, src, dst);
  return ORVA_STS_NO_ERR;
}

template <class T>
OrvaStatus GtVal(const T* src, T* dst, int32_t len, T level, T value) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const auto limit = Splat(level), with = Splat(value);
  Apply(len, [=](auto x) TZM_LAMBDA { return hn::IfThenElse(hn::Gt(x, limit), with, x); }, src, dst);
  return ORVA_STS_NO_ERR;
}

template <class T>
OrvaStatus LtValGtVal(const T* src, T* dst, int32_t len, T levelLT, T valueLT, T levelGT, T valueGT) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (levelLT > levelGT) return ORVA_STS_THRESH_ORDER_ERR;
  const auto low = Splat(levelLT), withLow = Splat(valueLT), high = Splat(levelGT), withHigh = Splat(valueGT);
  Apply(len, [=](auto x) TZM_LAMBDA {
    return hn::IfThenElse(hn::Gt(x, high), withHigh, hn::IfThenElse(hn::Lt(x, low), withLow, x));
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

// ---- Magnitudes ----

// For integers the magnitude is compared as two one-sided levels, which no sample overflows: the most
// negative one counts as large.
template <class T>
T Negative(T level) {
  if constexpr (std::is_floating_point_v<T>) return -level;
  else return static_cast<T>(-static_cast<std::make_unsigned_t<T>>(level));
}

template <class T>
OrvaStatus LtAbs(const T* src, T* dst, int32_t len, T level) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (level < 0) return ORVA_STS_THRESH_NEG_ERR;
  const auto limit = Splat(level), negative = Splat(Negative(level)), zero = Splat(T{0});
  Apply(len, [=](auto x) TZM_LAMBDA {
    if constexpr (std::is_floating_point_v<T>) {
      const auto to = hn::IfThenElse(hn::Ge(x, zero), limit, negative);  // NaN to -level
      return hn::IfThenElse(hn::Ge(hn::Abs(x), limit), x, to);
    } else {
      const auto to = hn::IfThenElse(hn::Lt(x, zero), negative, limit);
      return hn::IfThenElse(hn::And(hn::Lt(x, limit), hn::Gt(x, negative)), to, x);
    }
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

template <class T>
OrvaStatus GtAbs(const T* src, T* dst, int32_t len, T level) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (level < 0) return ORVA_STS_THRESH_NEG_ERR;
  const auto limit = Splat(level), negative = Splat(Negative(level));
  Apply(len, [=](auto x) TZM_LAMBDA {
    if constexpr (std::is_floating_point_v<T>) {
      const auto to = hn::IfThenElse(hn::Lt(x, hn::Zero(Full<T>())), negative, limit);
      return hn::IfThenElse(hn::Gt(hn::Abs(x), limit), to, x);
    } else {
      return hn::Min(hn::Max(x, negative), limit);
    }
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

// Deliberately without a check of the level: below a negative one lies no magnitude.
template <class T>
OrvaStatus LtAbsVal(const T* src, T* dst, int32_t len, T level, T value) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const auto limit = Splat(level), negative = Splat(Negative(level)), with = Splat(value);
  Apply(len, [=](auto x) TZM_LAMBDA {
    if constexpr (std::is_floating_point_v<T>) return hn::IfThenElse(hn::Lt(hn::Abs(x), limit), with, x);
    else return hn::IfThenElse(hn::And(hn::Lt(x, limit), hn::Gt(x, negative)), with, x);
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

// ---- Reciprocals ----

// 1/x limited to 1/level. A NaN sample gives -1/level in the body and NaN in the tail. At level 0 (or
// NaN) a zero of either sign gives +infinity and is reported at the end.
template <class T>
OrvaStatus LtInv(const T* src, T* dst, int32_t len, T level) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (level < 0) return ORVA_STS_THRESH_NEG_ERR;
  const Full<T> d;
  const auto one = Splat(T{1}), zero = Splat(T{0});
  if (level > 0) {
    const auto limit = Splat(level), most = hn::Div(one, limit), least = hn::Neg(most);
    const auto limited = [=](auto x) TZM_LAMBDA { return hn::IfThenElse(hn::Ge(x, zero), most, least); };
    ApplyBodyAndTail(
        len,
        [=](auto x) TZM_LAMBDA { return hn::IfThenElse(hn::Ge(hn::Abs(x), limit), hn::Div(one, x), limited(x)); },
        [=](auto x) TZM_LAMBDA { return hn::IfThenElse(hn::Lt(hn::Abs(x), limit), limited(x), hn::Div(one, x)); },
        src, dst);
    return ORVA_STS_NO_ERR;
  }
  AnyLane<Full<T>> met;
  Apply(len, [&](auto x) TZM_LAMBDA {
    const auto isZero = hn::Eq(x, zero);
    met.See(isZero);
    return hn::IfThenElse(isZero, hn::Inf(d), hn::Div(one, x));
  }, src, dst);
  return met.Seen() ? ORVA_STS_INV_ZERO_ERR : ORVA_STS_NO_ERR;
}

}  // namespace

// A member and its twin in place, by their names.
#define TZM_LEVEL(member, in_place, rule, T)                                                            \
  OrvaStatus member(const T* src, T* dst, int32_t len, T level) { return rule(src, dst, len, level); }  \
  OrvaStatus in_place(T* srcDst, int32_t len, T level) { return rule(srcDst, srcDst, len, level); }
#define TZM_LEVEL_VALUE(member, in_place, rule, T)                           \
  OrvaStatus member(const T* src, T* dst, int32_t len, T level, T value) {   \
    return rule(src, dst, len, level, value);                                \
  }                                                                          \
  OrvaStatus in_place(T* srcDst, int32_t len, T level, T value) {            \
    return rule(srcDst, srcDst, len, level, value);                          \
  }
#define TZM_TWO_LEVELS(member, in_place, T)                                                                    \
  OrvaStatus member(const T* src, T* dst, int32_t len, T levelLT, T valueLT, T levelGT, T valueGT) {           \
    return LtValGtVal(src, dst, len, levelLT, valueLT, levelGT, valueGT);                                      \
  }                                                                                                            \
  OrvaStatus in_place(T* srcDst, int32_t len, T levelLT, T valueLT, T levelGT, T valueGT) {                    \
    return LtValGtVal(srcDst, srcDst, len, levelLT, valueLT, levelGT, valueGT);                                \
  }
#define TZM_RELATION(member, in_place, T)                                       \
  OrvaStatus member(const T* src, T* dst, int32_t len, T level, int32_t relOp) {\
    return ByRelation(src, dst, len, level, relOp);                             \
  }                                                                             \
  OrvaStatus in_place(T* srcDst, int32_t len, T level, int32_t relOp) {         \
    return ByRelation(srcDst, srcDst, len, level, relOp);                       \
  }

TZM_RELATION(ORVAS_Threshold_16s, ORVAS_Threshold_16s_I, Orva16s)
TZM_RELATION(ORVAS_Threshold_32f, ORVAS_Threshold_32f_I, Orva32f)
TZM_RELATION(ORVAS_Threshold_64f, ORVAS_Threshold_64f_I, Orva64f)
TZM_LEVEL(ORVAS_Threshold_LT_16s, ORVAS_Threshold_LT_16s_I, Lt, Orva16s)
TZM_LEVEL(ORVAS_Threshold_LT_32s, ORVAS_Threshold_LT_32s_I, Lt, Orva32s)
TZM_LEVEL(ORVAS_Threshold_LT_32f, ORVAS_Threshold_LT_32f_I, Lt, Orva32f)
TZM_LEVEL(ORVAS_Threshold_LT_64f, ORVAS_Threshold_LT_64f_I, Lt, Orva64f)
TZM_LEVEL(ORVAS_Threshold_GT_16s, ORVAS_Threshold_GT_16s_I, Gt, Orva16s)
TZM_LEVEL(ORVAS_Threshold_GT_32s, ORVAS_Threshold_GT_32s_I, Gt, Orva32s)
TZM_LEVEL(ORVAS_Threshold_GT_32f, ORVAS_Threshold_GT_32f_I, Gt, Orva32f)
TZM_LEVEL(ORVAS_Threshold_GT_64f, ORVAS_Threshold_GT_64f_I, Gt, Orva64f)
TZM_LEVEL_VALUE(ORVAS_Threshold_LTVal_16s, ORVAS_Threshold_LTVal_16s_I, LtVal, Orva16s)
TZM_LEVEL_VALUE(ORVAS_Threshold_LTVal_32f, ORVAS_Threshold_LTVal_32f_I, LtVal, Orva32f)
TZM_LEVEL_VALUE(ORVAS_Threshold_LTVal_64f, ORVAS_Threshold_LTVal_64f_I, LtVal, Orva64f)
TZM_LEVEL_VALUE(ORVAS_Threshold_GTVal_16s, ORVAS_Threshold_GTVal_16s_I, GtVal, Orva16s)
TZM_LEVEL_VALUE(ORVAS_Threshold_GTVal_32f, ORVAS_Threshold_GTVal_32f_I, GtVal, Orva32f)
TZM_LEVEL_VALUE(ORVAS_Threshold_GTVal_64f, ORVAS_Threshold_GTVal_64f_I, GtVal, Orva64f)
TZM_TWO_LEVELS(ORVAS_Threshold_LTValGTVal_16s, ORVAS_Threshold_LTValGTVal_16s_I, Orva16s)
TZM_TWO_LEVELS(ORVAS_Threshold_LTValGTVal_32s, ORVAS_Threshold_LTValGTVal_32s_I, Orva32s)
TZM_TWO_LEVELS(ORVAS_Threshold_LTValGTVal_32f, ORVAS_Threshold_LTValGTVal_32f_I, Orva32f)
TZM_TWO_LEVELS(ORVAS_Threshold_LTValGTVal_64f, ORVAS_Threshold_LTValGTVal_64f_I, Orva64f)
TZM_LEVEL(ORVAS_Threshold_LTAbs_16s, ORVAS_Threshold_LTAbs_16s_I, LtAbs, Orva16s)
TZM_LEVEL(ORVAS_Threshold_LTAbs_32s, ORVAS_Threshold_LTAbs_32s_I, LtAbs, Orva32s)
TZM_LEVEL(ORVAS_Threshold_LTAbs_32f, ORVAS_Threshold_LTAbs_32f_I, LtAbs, Orva32f)
TZM_LEVEL(ORVAS_Threshold_LTAbs_64f, ORVAS_Threshold_LTAbs_64f_I, LtAbs, Orva64f)
TZM_LEVEL(ORVAS_Threshold_GTAbs_16s, ORVAS_Threshold_GTAbs_16s_I, GtAbs, Orva16s)
TZM_LEVEL(ORVAS_Threshold_GTAbs_32s, ORVAS_Threshold_GTAbs_32s_I, GtAbs, Orva32s)
TZM_LEVEL(ORVAS_Threshold_GTAbs_32f, ORVAS_Threshold_GTAbs_32f_I, GtAbs, Orva32f)
TZM_LEVEL(ORVAS_Threshold_GTAbs_64f, ORVAS_Threshold_GTAbs_64f_I, GtAbs, Orva64f)
TZM_LEVEL_VALUE(ORVAS_Threshold_LTAbsVal_16s, ORVAS_Threshold_LTAbsVal_16s_I, LtAbsVal, Orva16s)
TZM_LEVEL_VALUE(ORVAS_Threshold_LTAbsVal_32s, ORVAS_Threshold_LTAbsVal_32s_I, LtAbsVal, Orva32s)
TZM_LEVEL_VALUE(ORVAS_Threshold_LTAbsVal_32f, ORVAS_Threshold_LTAbsVal_32f_I, LtAbsVal, Orva32f)
TZM_LEVEL_VALUE(ORVAS_Threshold_LTAbsVal_64f, ORVAS_Threshold_LTAbsVal_64f_I, LtAbsVal, Orva64f)
TZM_LEVEL(ORVAS_Threshold_LTInv_32f, ORVAS_Threshold_LTInv_32f_I, LtInv, Orva32f)
TZM_LEVEL(ORVAS_Threshold_LTInv_64f, ORVAS_Threshold_LTInv_64f_I, LtInv, Orva64f)
#undef TZM_LEVEL
#undef TZM_LEVEL_VALUE
#undef TZM_TWO_LEVELS
#undef TZM_RELATION
