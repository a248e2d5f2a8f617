// Thresholds of real samples: elements below or above a level, or of small or large magnitude, are
// replaced. Comparisons are strict and what is not caught is copied bit for bit.
#include <signal_tzm/threshold.h>

#include "frame/call.h"
#include "frame/drive.h"

using namespace tzm;

namespace {

// dst = rule(src) for the elements from `begin` on.
template <class T, class Rule>
TZM_INLINE void Apply(const T* src, T* dst, size_t len, const Rule& rule) {
  const Full<T> d;
  ForEach<hn::MaxLanes(d)>(len, [&](const T* x, T* out) TZM_LAMBDA { hn::StoreU(rule(hn::LoadU(d, x)), d, out); }, src,
                           dst);
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
  size_t whole = 0;
  if constexpr (std::is_floating_point_v<T>) {
    if (!(level < 0 || level > 0)) {
      whole = len - len % (16 / sizeof(T));
      Apply(src, dst, whole, body);
    }
  }
  Apply(src + whole, dst + whole, len - whole, tail);
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
  Apply(src, dst, len, [=](auto x) TZM_LAMBDA { return hn::IfThenElse(hn::Lt(x, limit), with, x); });
  return ORVA_STS_NO_ERR;
}

template <class T>
OrvaStatus GtVal(const T* src, T* dst, int32_t len, T level, T value) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const auto limit = Splat(level), with = Splat(value);
  Apply(src, dst, len, [=](auto x) TZM_LAMBDA { return hn::IfThenElse(hn::Gt(x, limit), with, x); });
  return ORVA_STS_NO_ERR;
}

template <class T>
OrvaStatus LtValGtVal(const T* src, T* dst, int32_t len, T levelLT, T valueLT, T levelGT, T valueGT) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (levelLT > levelGT) return ORVA_STS_THRESH_ORDER_ERR;
  const auto low = Splat(levelLT), withLow = Splat(valueLT), high = Splat(levelGT), withHigh = Splat(valueGT);
  Apply(src, dst, len, [=](auto x) TZM_LAMBDA {
    return hn::IfThenElse(hn::Gt(x, high), withHigh, hn::IfThenElse(hn::Lt(x, low), withLow, x));
  });
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
  Apply(src, dst, len, [=](auto x) TZM_LAMBDA {
    if constexpr (std::is_floating_point_v<T>) {
      const auto to = hn::IfThenElse(hn::Ge(x, zero), limit, negative);  // NaN to -level
      return hn::IfThenElse(hn::Ge(hn::Abs(x), limit), x, to);
    } else {
      const auto to = hn::IfThenElse(hn::Lt(x, zero), negative, limit);
      return hn::IfThenElse(hn::And(hn::Lt(x, limit), hn::Gt(x, negative)), to, x);
    }
  });
  return ORVA_STS_NO_ERR;
}

template <class T>
OrvaStatus GtAbs(const T* src, T* dst, int32_t len, T level) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (level < 0) return ORVA_STS_THRESH_NEG_ERR;
  const auto limit = Splat(level), negative = Splat(Negative(level));
  Apply(src, dst, len, [=](auto x) TZM_LAMBDA {
    if constexpr (std::is_floating_point_v<T>) {
      const auto to = hn::IfThenElse(hn::Lt(x, hn::Zero(Full<T>())), negative, limit);
      return hn::IfThenElse(hn::Gt(hn::Abs(x), limit), to, x);
    } else {
      return hn::Min(hn::Max(x, negative), limit);
    }
  });
  return ORVA_STS_NO_ERR;
}

// Deliberately without a check of the level: below a negative one lies no magnitude.
template <class T>
OrvaStatus LtAbsVal(const T* src, T* dst, int32_t len, T level, T value) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const auto limit = Splat(level), negative = Splat(Negative(level)), with = Splat(value);
  Apply(src, dst, len, [=](auto x) TZM_LAMBDA {
    if constexpr (std::is_floating_point_v<T>) return hn::IfThenElse(hn::Lt(hn::Abs(x), limit), with, x);
    else return hn::IfThenElse(hn::And(hn::Lt(x, limit), hn::Gt(x, negative)), with, x);
  });
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
    const size_t body = len - len % (16 / sizeof(T));
    Apply(src, dst, body, [=](auto x) TZM_LAMBDA {
      return hn::IfThenElse(hn::Ge(hn::Abs(x), limit), hn::Div(one, x), limited(x));
    });
    Apply(src + body, dst + body, len - body, [=](auto x) TZM_LAMBDA {
      return hn::IfThenElse(hn::Lt(hn::Abs(x), limit), limited(x), hn::Div(one, x));
    });
    return ORVA_STS_NO_ERR;
  }
  auto met = hn::Zero(d);
  Apply(src, dst, len, [&](auto x) TZM_LAMBDA {
    const auto isZero = hn::Eq(x, zero);
    met = hn::Or(met, hn::VecFromMask(d, isZero));
    return hn::IfThenElse(isZero, hn::Inf(d), hn::Div(one, x));
  });
  return hn::AllFalse(d, hn::MaskFromVec(met)) ? ORVA_STS_NO_ERR : ORVA_STS_INV_ZERO_ERR;
}

}  // namespace

// One member and its in-place companion.
#define TZM_LEVEL(name, rule, tag)                                                                                 \
  OrvaStatus ORVAS_Threshold_##name##_##tag(const Orva##tag* src, Orva##tag* dst, int32_t len, Orva##tag level) {  \
    return rule(src, dst, len, level);                                                                             \
  }                                                                                                                \
  OrvaStatus ORVAS_Threshold_##name##_##tag##_I(Orva##tag* srcDst, int32_t len, Orva##tag level) {                 \
    return rule(srcDst, srcDst, len, level);                                                                       \
  }
#define TZM_LEVEL_VALUE(name, rule, tag)                                                                           \
  OrvaStatus ORVAS_Threshold_##name##_##tag(const Orva##tag* src, Orva##tag* dst, int32_t len, Orva##tag level,    \
                                            Orva##tag value) {                                                     \
    return rule(src, dst, len, level, value);                                                                      \
  }                                                                                                                \
  OrvaStatus ORVAS_Threshold_##name##_##tag##_I(Orva##tag* srcDst, int32_t len, Orva##tag level,                   \
                                                Orva##tag value) {                                                 \
    return rule(srcDst, srcDst, len, level, value);                                                                \
  }
#define TZM_TWO_LEVELS(tag)                                                                                        \
  OrvaStatus ORVAS_Threshold_LTValGTVal_##tag(const Orva##tag* src, Orva##tag* dst, int32_t len,                   \
                                              Orva##tag levelLT, Orva##tag valueLT, Orva##tag levelGT,             \
                                              Orva##tag valueGT) {                                                 \
    return LtValGtVal(src, dst, len, levelLT, valueLT, levelGT, valueGT);                                          \
  }                                                                                                                \
  OrvaStatus ORVAS_Threshold_LTValGTVal_##tag##_I(Orva##tag* srcDst, int32_t len, Orva##tag levelLT,               \
                                                  Orva##tag valueLT, Orva##tag levelGT, Orva##tag valueGT) {       \
    return LtValGtVal(srcDst, srcDst, len, levelLT, valueLT, levelGT, valueGT);                                    \
  }
#define TZM_RELATION(tag)                                                                                          \
  OrvaStatus ORVAS_Threshold_##tag(const Orva##tag* src, Orva##tag* dst, int32_t len, Orva##tag level,             \
                                   int32_t relOp) {                                                                \
    return ByRelation(src, dst, len, level, relOp);                                                                \
  }                                                                                                                \
  OrvaStatus ORVAS_Threshold_##tag##_I(Orva##tag* srcDst, int32_t len, Orva##tag level, int32_t relOp) {           \
    return ByRelation(srcDst, srcDst, len, level, relOp);                                                          \
  }

TZM_RELATION(16s)
TZM_RELATION(32f)
TZM_RELATION(64f)
TZM_LEVEL(LT, Lt, 16s)
TZM_LEVEL(LT, Lt, 32s)
TZM_LEVEL(LT, Lt, 32f)
TZM_LEVEL(LT, Lt, 64f)
TZM_LEVEL(GT, Gt, 16s)
TZM_LEVEL(GT, Gt, 32s)
TZM_LEVEL(GT, Gt, 32f)
TZM_LEVEL(GT, Gt, 64f)
TZM_LEVEL_VALUE(LTVal, LtVal, 16s)
TZM_LEVEL_VALUE(LTVal, LtVal, 32f)
TZM_LEVEL_VALUE(LTVal, LtVal, 64f)
TZM_LEVEL_VALUE(GTVal, GtVal, 16s)
TZM_LEVEL_VALUE(GTVal, GtVal, 32f)
TZM_LEVEL_VALUE(GTVal, GtVal, 64f)
TZM_TWO_LEVELS(16s)
TZM_TWO_LEVELS(32s)
TZM_TWO_LEVELS(32f)
TZM_TWO_LEVELS(64f)
TZM_LEVEL(LTAbs, LtAbs, 16s)
TZM_LEVEL(LTAbs, LtAbs, 32s)
TZM_LEVEL(LTAbs, LtAbs, 32f)
TZM_LEVEL(LTAbs, LtAbs, 64f)
TZM_LEVEL(GTAbs, GtAbs, 16s)
TZM_LEVEL(GTAbs, GtAbs, 32s)
TZM_LEVEL(GTAbs, GtAbs, 32f)
TZM_LEVEL(GTAbs, GtAbs, 64f)
TZM_LEVEL_VALUE(LTAbsVal, LtAbsVal, 16s)
TZM_LEVEL_VALUE(LTAbsVal, LtAbsVal, 32s)
TZM_LEVEL_VALUE(LTAbsVal, LtAbsVal, 32f)
TZM_LEVEL_VALUE(LTAbsVal, LtAbsVal, 64f)
TZM_LEVEL(LTInv, LtInv, 32f)
TZM_LEVEL(LTInv, LtInv, 64f)
#undef TZM_LEVEL
#undef TZM_LEVEL_VALUE
#undef TZM_TWO_LEVELS
#undef TZM_RELATION
