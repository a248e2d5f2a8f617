// Vector mathematics: kernels of our own over the registers that the compiler was told of, with the same bits on
// each. A result depends on nothing but its arguments: not on its position, its neighbours or the address.
#include <signal_tzm/companion.h>

#include <algorithm>

#include "arctangent.h"
#include "exp.h"
#include "frame/drive.h"
#include "log.h"
#include "power.h"
#include "trigonometric.h"

namespace {

using namespace vmath;

// r[i] = function(a[i], ...) for `n` elements; kTurn registers make a turn of the loop.
template <size_t kTurn = 1, class T, class Function, class... Source>
TZM_INLINE void Map(int32_t n, Function function, T* r, const Source*... a) {
  if (n < 1) return;
  const Full<T> d;
  ForEach<hn::MaxLanes(d), kTurn>(n, [=](T* to, const Source*... from) TZM_LAMBDA {
    hn::StoreU(function(hn::LoadU(d, from)...), d, to);
  }, r, a...);
}
// Roots are dear, those of a register of 64 bytes twice as dear as of 32: the latter, so that the last step takes few
// again, and two steps a turn, so that the last turn takes none.
template <class T>
TZM_INLINE void Roots(int32_t n, const T* a, T* r) {
  if (n < 1) return;
  const hn::CappedTag<T, 32 / sizeof(T)> d;
  ForEach<hn::MaxLanes(d), 2>(n, [=](const T* from, T* to) TZM_LAMBDA {
    hn::StoreU(hn::Sqrt(hn::LoadU(d, from)), d, to);
  }, a, r);
}
template <class T>
TZM_INLINE void Store(Vec<Full<T>> v, T* to) {
  hn::StoreU(v, Full<T>(), to);
}
template <class T>
TZM_INLINE void Store(SineCosine<Vec<Full<T>>> v, T* sine, T* cosine) {
  Store(v.sine, sine);
  Store(v.cosine, cosine);
}
// The same of a function in stages, on x86-64: the first one of the next register stands before the second one of this,
// so that the machine, which looks only so far ahead, finds work that waits for nothing. The last register ends with
// the array; it is read before what it overlaps is written. (On AArch64 what is kept for the second stage would be
// moved from register to register, by as many instructions as that saves.)
template <class T, class Function, class... To>
TZM_INLINE void MapInStages(int32_t n, Function function, const T* a, To*... to) {
  if (n < 1) return;
  const Full<T> d;
  constexpr int32_t kStep = hn::MaxLanes(d);
#if HWY_ARCH_X86
  if (n >= kStep) {
    const int32_t last = n - kStep;
    auto x = hn::LoadU(d, a);
    auto begun = Function::Begin(x);
    for (int32_t i = 0; i < last;) {
      const int32_t next = std::min(i + kStep, last);
      const auto nextX = hn::LoadU(d, a + next);
      const auto nextBegun = Function::Begin(nextX);
      Store(Function::End(x, begun), to + i...);
      x = nextX;
      begun = nextBegun;
      i = next;
    }
    Store(Function::End(x, begun), to + last...);
    return;
  }
#endif
  ForEach<kStep, 1>(n, [=](const T* from, To*... result) TZM_LAMBDA {
    Store(function(hn::LoadU(d, from)), result...);
  }, a, to...);
}
// A function of two arguments for binary32: where the first step, which gives halves in binary64 and tells where they
// hold but for as many units as the function says, leaves a lane open, the second takes the register.
template <class Function>
struct InSteps {
  TZM_INLINE F operator()(F x, F y) const {
    V low, high;
    M32 holds;
    const F result = Function::First(x, y, low, high, holds);
    if (AnyOpen<Function::kUnits>({low, high}, holds)) return Second(low, high, x, y);
    return result;
  }

 private:
  static __attribute__((noinline)) F Second(V low, V high, F x, F y) {
    const Halves a = Widen(x), b = Widen(y);
    return NarrowPair(S(), Function::Second(low, a.low, b.low), Function::Second(high, a.high, b.high));
  }
};

}  // namespace

#define ONE_SOURCE(T, name, function) \
  void name(int32_t n, const T* a, T* r) { Map(n, function, r, a); }
#define IN_STAGES(T, name, function) \
  void name(int32_t n, const T* a, T* r) { MapInStages(n, function, a, r); }
#define TWO_SOURCES(T, name, function) \
  void name(int32_t n, const T* a, const T* b, T* r) { Map(n, function, r, a, b); }

void vsmul(int32_t n, const Orva32f* a, const Orva32f* b, Orva32f* r) {
  Map<4>(n, [](auto x, auto y) TZM_LAMBDA { return hn::Mul(x, y); }, r, a, b);
}
void vdmul(int32_t n, const Orva64f* a, const Orva64f* b, Orva64f* r) {
  Map<4>(n, [](auto x, auto y) TZM_LAMBDA { return hn::Mul(x, y); }, r, a, b);
}
void vssqrt(int32_t n, const Orva32f* a, Orva32f* r) { Roots(n, a, r); }
void vdsqrt(int32_t n, const Orva64f* a, Orva64f* r) { Roots(n, a, r); }

ONE_SOURCE(Orva32f, vsexp, Exp32())
ONE_SOURCE(Orva64f, vdexp, Exp64())
IN_STAGES(Orva32f, vsln, Log32<Natural>())
ONE_SOURCE(Orva64f, vdln, Log64<Natural>())
IN_STAGES(Orva32f, vslog10, Log32<Decimal>())
ONE_SOURCE(Orva64f, vdlog10, Log64<Decimal>())
IN_STAGES(Orva32f, vssin, Sin32())
IN_STAGES(Orva64f, vdsin, Sin64())
IN_STAGES(Orva32f, vscos, Cos32())
IN_STAGES(Orva64f, vdcos, Cos64())
IN_STAGES(Orva32f, vstan, Tan32())
IN_STAGES(Orva64f, vdtan, Tan64())
IN_STAGES(Orva32f, vsatan, Atan32())
ONE_SOURCE(Orva64f, vdatan, Atan64())
TWO_SOURCES(Orva32f, vsatan2, InSteps<Atan2_32>())
TWO_SOURCES(Orva64f, vdatan2, Atan2_64())
TWO_SOURCES(Orva32f, vspow, InSteps<Pow32>())
TWO_SOURCES(Orva64f, vdpow, Pow64())

#undef TWO_SOURCES
#undef IN_STAGES
#undef ONE_SOURCE

void vssincos(int32_t n, const Orva32f* a, Orva32f* s, Orva32f* c) { MapInStages(n, SinCos32(), a, s, c); }
void vdsincos(int32_t n, const Orva64f* a, Orva64f* s, Orva64f* c) { MapInStages(n, SinCos64(), a, s, c); }
