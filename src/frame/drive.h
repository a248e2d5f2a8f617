// Drivers: the loops, remainders and unrolling that element-wise kernels share.
#pragma once

#include "frame/vector.h"

#include <tuple>

namespace tzm {

// What one step keeps of an array: of a source a copy of an array shorter than the step, of a destination what the
// kernel has computed and is yet to be stored.
template <class T, size_t kStep>
class Kept {
 public:
  Kept() {}  // without a value yet
  // Where the kernel finds the array of fewer elements: filled up with the first of them.
  TZM_INLINE T* Few(T* array, size_t count) {
    if constexpr (std::is_const_v<T>) TakeFew<kStep>(array, element_, count, array);
    return element_;
  }
  // Where it finds a whole step.
  TZM_INLINE T* Whole(T* array) {
    if constexpr (std::is_const_v<T>) return array;
    else return element_;
  }
  TZM_INLINE void StoreFew(T* array, size_t count) const {
    if constexpr (!std::is_const_v<T>) GiveFew<kStep>(element_, array, count);
  }
  TZM_INLINE void StoreWhole(T* array) const {
    if constexpr (!std::is_const_v<T>) CopyElements<kStep>(element_, array);
  }

 private:
  std::remove_const_t<T> element_[kStep];
};

// Whether four steps make a turn, and results are no complex elements.
template <size_t kUnroll, class... T>
constexpr bool kLight = kUnroll >= 4 && ((std::is_const_v<T> || std::is_arithmetic_v<T>) && ...);

// Arrays of complex elements walk along with the steps on AArch64, whose instructions that take parts apart and put
// them together know no offset, but move their address on; the others are found by the index of a step.
template <class T>
constexpr bool kWalks = HWY_ARCH_ARM_A64 && !std::is_arithmetic_v<T>;
template <class T>
TZM_INLINE T* Place(T* array, size_t at) {
  return kWalks<T> ? array : array + at;
}
template <size_t kStep, class T>
TZM_INLINE void Walk(T*& array) {
  if constexpr (kWalks<T>) {
    array += kStep;
    asm("" : "+r"(array));  // GCC would rather add offsets to where the turn began
  }
}

// kUnroll steps in a row, from element i on.
template <size_t kStep, size_t kUnroll, class Kernel, class... T>
TZM_INLINE void Turn(size_t i, Kernel& kernel, T*&... arrays) {
#if HWY_ARCH_ARM_A64
  // The machine loads and stores registers in pairs, but no load may pass a store to what may be its own array: all
  // steps are computed before the first is stored. That needs registers for all of them, so light kernels only, and
  // complex results leave by instructions that the compiler does not follow through an array on the stack.
  if constexpr (kLight<kUnroll, T...>) {
    std::tuple<Kept<T, kStep>...> steps[kUnroll];
    Unrolled<kUnroll>([&](auto k) TZM_LAMBDA {
      std::apply([&](auto&... kept) TZM_LAMBDA { kernel(kept.Whole(Place(arrays, i + k * kStep))...); }, steps[k]);
      (Walk<kStep>(arrays), ...);
    });
    Unrolled<kUnroll>([&](auto k) TZM_LAMBDA {
      std::apply([&](const auto&... kept) TZM_LAMBDA { (kept.StoreWhole(arrays + i + k * kStep), ...); }, steps[k]);
    });
    return;
  }
#endif
  Unrolled<kUnroll>([&](auto k) TZM_LAMBDA {
    kernel(Place(arrays, i + k * kStep)...);
    (Walk<kStep>(arrays), ...);
  });
}

// Whole steps from the start, until no more than kStep elements are left.
template <size_t kStep, size_t kUnroll, class Kernel, class... T>
TZM_INLINE void Steps(size_t len, Kernel& kernel, T*... arrays) {
  constexpr size_t kTurn = kUnroll * kStep;
  const size_t end = kLight<kUnroll, T...> ? len : len - 1;
  size_t i = 0;
  if constexpr (kUnroll > 1) {
    if (end >= kTurn) [[unlikely]] {  // so it stands apart, and a short array jumps over nothing
      for (; i + kTurn <= end; i += kTurn) Turn<kStep, kUnroll>(i, kernel, arrays...);
    }
  }
  for (; i < len - kStep; i += kStep) Turn<kStep, 1>(i, kernel, arrays...);
}

// Calls kernel(arrays + i...) for steps of kStep elements until `len` elements are done. The kernel loads, computes
// and stores exactly kStep elements of each array; an array is a source if its pointer is to const, a destination,
// which the kernel never reads, if not; a destination may be the very array of a source.
//
// The steps go from the start; the last one ends with the array, and overlaps the one before where kStep does not
// divide `len`. It is computed first, from sources that nothing has overwritten yet, and stored last. So a kernel
// may see an element twice; a value does not depend on its position, and nothing outside the arrays is touched.
// An array shorter than a step is filled up to one with its own first element, so that the kernel never sees a value
// that is not data (no false warnings). kUnroll steps make a turn of the loop: four of a light kernel, where the
// last turn is a whole one even if it leaves nothing for the last step, which costs less than three steps one by one;
// two of a kernel that has work for many instructions, or one.
template <size_t kStep, size_t kUnroll = 4, class Kernel, class... T>
TZM_INLINE void ForEach(size_t len, Kernel&& kernel, T*... arrays) {
  std::tuple<Kept<T, kStep>...> last;
  const auto each = [&](auto&& use) TZM_LAMBDA { std::apply(use, last); };
  if (len < kStep) [[unlikely]] {
    if (len == 0) return;
    each([&](auto&... kept) TZM_LAMBDA { kernel(kept.Few(arrays, len)...); });
    each([&](const auto&... kept) TZM_LAMBDA { (kept.StoreFew(arrays, len), ...); });
    return;
  }
  const size_t lastAt = len - kStep;
  each([&](auto&... kept) TZM_LAMBDA { kernel(kept.Whole(arrays + lastAt)...); });

  Steps<kStep, kUnroll>(len, kernel, arrays...);
  each([&](const auto&... kept) TZM_LAMBDA { (kept.StoreWhole(arrays + lastAt), ...); });
}

// For an operation whose tail is computed otherwise than its body: body(count, arrays...) does the whole blocks of
// kBlock elements, tail(count, arrays...) the elements behind them, where there are any.
template <size_t kBlock, class Body, class Tail, class... T>
TZM_INLINE void BodyAndTail(size_t len, Body&& body, Tail&& tail, T*... arrays) {
  const size_t whole = len - len % kBlock;
  if (whole != 0) body(whole, arrays...);
  if (whole != len) tail(len - whole, (arrays + whole)...);
}

// The same with kernels, of kStep elements in the body and of one in the tail.
template <size_t kBlock, size_t kStep, size_t kUnroll = 4, class Body, class Tail, class... T>
TZM_INLINE void BodyAndTail(size_t len, Body&& body, Tail&& tail, T*... arrays) {
  BodyAndTail<kBlock>(
      len, [&](size_t count, T*... at) TZM_LAMBDA { ForEach<kStep, kUnroll>(count, body, at...); },
      [&](size_t count, T*... at) TZM_LAMBDA { for (size_t i = 0; i < count; ++i) tail((at + i)...); }, arrays...);
}

// Elements of T in a block of 8 KB, a power of two: two arrays of them stay in the first cache between two passes.
template <class T>
constexpr int32_t kInCache = (8 << 10) / sizeof(T);

// Calls block(count, arrays + i...) for blocks of kBlock elements and for what is left, with `count` elements each:
// work in several passes, by way of a companion or of an array on the stack, goes by blocks that stay in the cache.
template <int32_t kBlock, class Block, class... T>
TZM_INLINE void ForBlocks(size_t len, Block&& block, T*... arrays) {
  for (size_t i = 0; i < len; i += kBlock)
    block(static_cast<int32_t>(std::min<size_t>(kBlock, len - i)), (arrays + i)...);
}

}  // namespace tzm
