// Complex elements with a real number each.
#pragma once

#include "frame/complex_source.h"
#include "frame/drive.h"

namespace tzm {

#if HWY_ARCH_X86
// Half a register of elements from memory, each in two lanes in a row.
template <class D>
TZM_INLINE Vec<D> LoadTwice(D d, const hn::TFromD<D>* from) {
  using Index = hn::TFromD<hn::RebindToSigned<D>>;
  alignas(64) static constexpr Index kTwice[] = {0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7};
  const auto narrow = hn::ZeroExtendVector(d, hn::LoadU(hn::Half<D>(), from));
  return hn::TableLookupLanes(narrow, hn::SetTableIndices(d, kTwice));
}
#endif

// dst[i] = combine(real[i], src[i]...) in both parts, with `combine` on registers.
template <class Real, class Complex, class Combine, class... Src>
TZM_INLINE void ForEachByReal(size_t len, Combine combine, const Real* real, Complex* dst, const Src*... src) {
  const Full<Real> d;
#if HWY_ARCH_X86
  ForEach<hn::MaxLanes(d) / 2>(len, [=](const Real* by, Complex* to, const Src*... from) TZM_LAMBDA {
    hn::StoreU(combine(LoadTwice(d, by), hn::LoadU(d, Parts(from))...), d, Parts(to));
  }, real, dst, src...);
#else  // the machine takes parts apart as it loads
  ForEach<hn::MaxLanes(d)>(len, [=](const Real* by, Complex* to, const Src*... from) TZM_LAMBDA {
    const auto factor = hn::LoadU(d, by);
    const auto each = [&](const auto&... z) TZM_LAMBDA {
      StoreInterleaved(combine(factor, z.re...), combine(factor, z.im...), d, Parts(to));
    };
    each(LoadSplit(d, from)...);
  }, real, dst, src...);
#endif
}

}  // namespace tzm
