// The vector math functions for the vector unit that the including file is compiled for, in its own namespace
// TZM_UNIT. A result depends on nothing but its arguments: not on its position, its neighbours or the address.
#pragma once

#include <signal_tzm/companion.h>

#include "frame/drive.h"

#include <sleef.h>

// SLEEF's function for a whole register of binary32 and of binary64.
#if HWY_ARCH_ARM_A64
#define SLEEF_32(function) Sleef_finz_##function##f4_u10advsimd
#define SLEEF_64(function) Sleef_finz_##function##d2_u10advsimd
#elif HWY_MAX_BYTES == 64
#define SLEEF_32(function) Sleef_finz_##function##f16_u10avx512f
#define SLEEF_64(function) Sleef_finz_##function##d8_u10avx512f
#else
#define SLEEF_32(function) Sleef_finz_##function##f8_u10avx2
#define SLEEF_64(function) Sleef_finz_##function##d4_u10avx2
#endif

#define SLEEF(function)                                                                                    \
  [](auto x, auto... more) TZM_LAMBDA {                                                                    \
    using Vector = decltype(x);                                                                            \
    if constexpr (sizeof(hn::TFromV<Vector>) == 4) return Vector{SLEEF_32(function)(x.raw, more.raw...)};  \
    else return Vector{SLEEF_64(function)(x.raw, more.raw...)};                                            \
  }

namespace TZM_UNIT {
namespace {

using namespace tzm;

// r[i] = function(a[i], ...) for `n` elements.
template <class T, class Function, class... Source>
TZM_INLINE void Map(int32_t n, Function function, T* r, const Source*... a) {
  if (n < 1) return;
  const Full<T> d;
  ForEach<hn::MaxLanes(d)>(n, [=](T* to, const Source*... from) TZM_LAMBDA {
    hn::StoreU(function(hn::LoadU(d, from)...), d, to);
  }, r, a...);
}

// s[i] = sine(a[i]) and c[i] = cosine(a[i]) for `n` elements.
template <class T, class Sine, class Cosine>
TZM_INLINE void MapPair(int32_t n, Sine sine, Cosine cosine, const T* a, T* s, T* c) {
  if (n < 1) return;
  const Full<T> d;
  ForEach<hn::MaxLanes(d)>(n, [=](const T* from, T* toSine, T* toCosine) TZM_LAMBDA {
    const auto x = hn::LoadU(d, from);
    hn::StoreU(sine(x), d, toSine);
    hn::StoreU(cosine(x), d, toCosine);
  }, a, s, c);
}

// SLEEF's exp and pow of binary64 take the last 2e-9 below the largest number for infinite. There the square of the
// root, or the next lower power times the base, is a number, or infinite where it has to be.
struct Exp {
  template <class V>
  TZM_INLINE V operator()(V x) const {
    const auto exp = SLEEF(exp);
    if constexpr (sizeof(hn::TFromV<V>) == 8) {
      const hn::DFromV<V> d;
      const auto top = hn::Gt(x, hn::Set(d, 0x1.62e42fe102c83p+9));  // SLEEF's last number
      if (HWY_UNLIKELY(!hn::AllFalse(d, top))) {
        const V root = exp(hn::Mul(x, hn::Set(d, 0.5)));
        return hn::IfThenElse(top, hn::Mul(root, root), exp(x));
      }
    }
    return exp(x);
  }
};
struct Pow {
  template <class V>
  TZM_INLINE V operator()(V x, V y) const {
    const auto pow = SLEEF(pow);
    const V result = pow(x, y);
    if constexpr (sizeof(hn::TFromV<V>) == 8) {
      const hn::DFromV<V> d;
      const auto infinite = hn::IsInf(result);
      if (HWY_UNLIKELY(!hn::AllFalse(d, infinite))) {
        const V base = hn::Abs(x), lower = pow(base, hn::Sub(y, hn::CopySign(hn::Set(d, 1.0), y)));
        const V power = hn::IfThenElse(hn::Gt(y, hn::Zero(d)), hn::Mul(lower, base), hn::Div(lower, base));
        const auto top = hn::And(infinite, hn::And(hn::IsFinite(x), hn::Ne(x, hn::Zero(d))));
        return hn::IfThenElse(top, hn::CopySign(power, result), result);
      }
    }
    return result;
  }
};

}  // namespace

#define ONE_SOURCE(name, function)                                                             \
  void vs##name(int32_t n, const Orva32f* a, Orva32f* r) { Map(n, function, r, a); }            \
  void vd##name(int32_t n, const Orva64f* a, Orva64f* r) { Map(n, function, r, a); }
#define TWO_SOURCES(name, function)                                                                             \
  void vs##name(int32_t n, const Orva32f* a, const Orva32f* b, Orva32f* r) { Map(n, function, r, a, b); }        \
  void vd##name(int32_t n, const Orva64f* a, const Orva64f* b, Orva64f* r) { Map(n, function, r, a, b); }

TWO_SOURCES(mul, [](auto x, auto y) TZM_LAMBDA { return hn::Mul(x, y); })
ONE_SOURCE(sqrt, [](auto x) TZM_LAMBDA { return hn::Sqrt(x); })
ONE_SOURCE(sin, SLEEF(sin))
ONE_SOURCE(cos, SLEEF(cos))
ONE_SOURCE(tan, SLEEF(tan))
ONE_SOURCE(atan, SLEEF(atan))
ONE_SOURCE(exp, Exp())
ONE_SOURCE(ln, SLEEF(log))
ONE_SOURCE(log10, SLEEF(log10))
TWO_SOURCES(atan2, SLEEF(atan2))
TWO_SOURCES(pow, Pow())

// The bits of sine and cosine by themselves: SLEEF's joint function differs from them in one result of fifteen.
void vssincos(int32_t n, const Orva32f* a, Orva32f* s, Orva32f* c) { MapPair(n, SLEEF(sin), SLEEF(cos), a, s, c); }
void vdsincos(int32_t n, const Orva64f* a, Orva64f* s, Orva64f* c) { MapPair(n, SLEEF(sin), SLEEF(cos), a, s, c); }

#undef TWO_SOURCES
#undef ONE_SOURCE
#undef SLEEF

}  // namespace TZM_UNIT
