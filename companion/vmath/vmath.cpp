// Vector math: the deterministic functions of SLEEF, which give the same bits on every vector unit, within
// 1 ulp, and the vector unit's own product and square root. A result depends on nothing but its arguments:
// not on its position, its neighbours or the address.
//
// vssincos gives the bits of vssin and vscos: the joint function of SLEEF differs from the single ones in
// one result of fifteen, so the pair is made by the single ones.
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

}  // namespace

void vsmul(int32_t n, const Orva32f* a, const Orva32f* b, Orva32f* r) {
  Map(n, [](auto x, auto y) TZM_LAMBDA { return hn::Mul(x, y); }, r, a, b);
}
void vdmul(int32_t n, const Orva64f* a, const Orva64f* b, Orva64f* r) {
  Map(n, [](auto x, auto y) TZM_LAMBDA { return hn::Mul(x, y); }, r, a, b);
}
void vssqrt(int32_t n, const Orva32f* a, Orva32f* r) {
  Map(n, [](auto x) TZM_LAMBDA { return hn::Sqrt(x); }, r, a);
}
void vdsqrt(int32_t n, const Orva64f* a, Orva64f* r) {
  Map(n, [](auto x) TZM_LAMBDA { return hn::Sqrt(x); }, r, a);
}

#define CALL_1(sleef) [](auto x) TZM_LAMBDA { return decltype(x){sleef(x.raw)}; }
#define CALL_2(sleef) [](auto x, auto y) TZM_LAMBDA { return decltype(x){sleef(x.raw, y.raw)}; }

void vssin(int32_t n, const Orva32f* a, Orva32f* r) { Map(n, CALL_1(SLEEF_32(sin)), r, a); }
void vdsin(int32_t n, const Orva64f* a, Orva64f* r) { Map(n, CALL_1(SLEEF_64(sin)), r, a); }
void vscos(int32_t n, const Orva32f* a, Orva32f* r) { Map(n, CALL_1(SLEEF_32(cos)), r, a); }
void vdcos(int32_t n, const Orva64f* a, Orva64f* r) { Map(n, CALL_1(SLEEF_64(cos)), r, a); }
void vstan(int32_t n, const Orva32f* a, Orva32f* r) { Map(n, CALL_1(SLEEF_32(tan)), r, a); }
void vdtan(int32_t n, const Orva64f* a, Orva64f* r) { Map(n, CALL_1(SLEEF_64(tan)), r, a); }
void vsatan(int32_t n, const Orva32f* a, Orva32f* r) { Map(n, CALL_1(SLEEF_32(atan)), r, a); }
void vdatan(int32_t n, const Orva64f* a, Orva64f* r) { Map(n, CALL_1(SLEEF_64(atan)), r, a); }
void vsexp(int32_t n, const Orva32f* a, Orva32f* r) { Map(n, CALL_1(SLEEF_32(exp)), r, a); }
void vdexp(int32_t n, const Orva64f* a, Orva64f* r) { Map(n, CALL_1(SLEEF_64(exp)), r, a); }
void vsln(int32_t n, const Orva32f* a, Orva32f* r) { Map(n, CALL_1(SLEEF_32(log)), r, a); }
void vdln(int32_t n, const Orva64f* a, Orva64f* r) { Map(n, CALL_1(SLEEF_64(log)), r, a); }
void vslog10(int32_t n, const Orva32f* a, Orva32f* r) { Map(n, CALL_1(SLEEF_32(log10)), r, a); }
void vdlog10(int32_t n, const Orva64f* a, Orva64f* r) { Map(n, CALL_1(SLEEF_64(log10)), r, a); }
void vsatan2(int32_t n, const Orva32f* a, const Orva32f* b, Orva32f* r) { Map(n, CALL_2(SLEEF_32(atan2)), r, a, b); }
void vdatan2(int32_t n, const Orva64f* a, const Orva64f* b, Orva64f* r) { Map(n, CALL_2(SLEEF_64(atan2)), r, a, b); }
void vspow(int32_t n, const Orva32f* a, const Orva32f* b, Orva32f* r) { Map(n, CALL_2(SLEEF_32(pow)), r, a, b); }
void vdpow(int32_t n, const Orva64f* a, const Orva64f* b, Orva64f* r) { Map(n, CALL_2(SLEEF_64(pow)), r, a, b); }

void vssincos(int32_t n, const Orva32f* a, Orva32f* s, Orva32f* c) {
  MapPair(n, CALL_1(SLEEF_32(sin)), CALL_1(SLEEF_32(cos)), a, s, c);
}
void vdsincos(int32_t n, const Orva64f* a, Orva64f* s, Orva64f* c) {
  MapPair(n, CALL_1(SLEEF_64(sin)), CALL_1(SLEEF_64(cos)), a, s, c);
}
