// Drivers: the loops, remainders and unrolling that element-wise kernels share.
#pragma once

#include "frame/vector.h"

#include <tuple>

namespace tzm {

// Elements without a value yet.
template <class T, size_t n>
struct Unset {
  Unset() {}
  T element[n];
};

// Calls kernel(arrays + i...) for i = 0, kStep, 2*kStep, ... until `len` elements are done. The kernel
// loads, computes and stores exactly kStep elements of each array; an array is a source if its pointer
// is to const, a destination, which the kernel never reads, if not; a destination may be the very array
// of a source. The last, incomplete step runs on copies that are filled up with the array's own last
// element, so the kernel sees no value that is not data (no false warnings), a value does not depend on
// its position, and nothing outside the arrays is touched. The complete steps run kUnroll at a time.
//
// Where body and tail of an operation differ, its member calls ForEach twice: with the body's kernel
// up to the last multiple of the body's step, and with the tail's kernel for the rest.
template <size_t kStep, size_t kUnroll = 2, class Kernel, class... T>
TZM_INLINE void ForEach(size_t len, Kernel&& kernel, T*... arrays) {
  const auto step = [&](size_t at) TZM_LAMBDA { kernel((arrays + at)...); };
  size_t i = 0;
  if constexpr (kUnroll > 1) {
    for (; len - i >= kUnroll * kStep; i += kUnroll * kStep) {
      [&]<size_t... kPart>(std::index_sequence<kPart...>) TZM_LAMBDA {
        (step(i + kPart * kStep), ...);
      }(std::make_index_sequence<kUnroll>());
    }
  }
  for (; len - i >= kStep; i += kStep) step(i);
  const size_t rest = len - i;
  if (rest == 0) return;

  std::tuple<Unset<std::remove_const_t<T>, kStep>...> padded;
  std::apply([&](auto&... copy) TZM_LAMBDA {
    const auto fill = [&](auto* to, auto* from) TZM_LAMBDA {
      if constexpr (std::is_const_v<std::remove_pointer_t<decltype(from)>>) {
        std::memcpy(to, from + i, rest * sizeof(*from));
        for (size_t k = rest; k < kStep; ++k) to[k] = to[rest - 1];
      }
    };
    const auto drain = [&](auto* from, auto* to) TZM_LAMBDA {
      if constexpr (!std::is_const_v<std::remove_pointer_t<decltype(to)>>)
        std::memcpy(to + i, from, rest * sizeof(*to));
    };
    (fill(copy.element, arrays), ...);
    kernel(static_cast<T*>(copy.element)...);
    (drain(copy.element, arrays), ...);
  }, padded);
}

// Calls block(count, arrays + i...) for blocks of kBlock elements and for what is left, with `count` elements each:
// work in several passes, by way of a companion or of an array on the stack, goes by blocks that stay in the cache.
template <int32_t kBlock, class Block, class... T>
TZM_INLINE void ForBlocks(size_t len, Block&& block, T*... arrays) {
  for (size_t i = 0; i < len; i += kBlock)
    block(static_cast<int32_t>(HWY_MIN(size_t{kBlock}, len - i)), (arrays + i)...);
}

// Calls step(one register from each array) for all elements, the last register filled up with zeros, and
// flush() after at most kRegisters steps and at the end: an exact integer reduction keeps narrow lanes
// in step and empties them into wide ones in flush.
template <size_t kRegisters = size_t{1} << 32, class Step, class Flush, class T, class... More>
TZM_INLINE void ForRegisters(size_t len, Step&& step, Flush&& flush, const T* array, const More*... more) {
  const Full<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  const auto at = [&](size_t i) TZM_LAMBDA { step(hn::LoadU(d, array + i), hn::LoadU(d, more + i)...); };
  for (size_t i = 0; i < len;) {
    const size_t end = HWY_MIN(len, i + kRegisters * kLanes);
    for (; end - i >= 2 * kLanes; i += 2 * kLanes) {
      at(i);
      at(i + kLanes);
    }
    if (end - i >= kLanes) {
      at(i);
      i += kLanes;
    }
    if (i < end) {
      const auto rest = [&](const T* from) TZM_LAMBDA {
        T padded[kLanes] = {};
        std::memcpy(padded, from + i, (end - i) * sizeof(T));
        return hn::LoadU(d, padded);
      };
      step(rest(array), rest(more)...);
      i = end;
    }
    flush();
  }
}

}  // namespace tzm
