// The kind of transform that a length gets.
#pragma once

#include "grid.h"
#include "primes.h"
#include "small.h"

namespace tzm::fft {

// Sixteen rows where registers are wide; in 128 bits eight, transposed as soon as they are there, take less.
constexpr bool kNarrow = hn::MaxLanes(Full<double>()) == 2;
template <class Wide, class Narrow>
using Either = std::conditional_t<kNarrow, Narrow, Wide>;

extern template std::unique_ptr<Complex<float>> MakeComplex(size_t n, size_t workers);
extern template std::unique_ptr<Complex<double>> MakeComplex(size_t n, size_t workers);

template <class T>
std::unique_ptr<Complex<T>> MakeComplex(size_t n, size_t workers) {
  using Result = std::unique_ptr<Complex<T>>;
  constexpr auto kLane = [](size_t wanted) { return std::min(wanted, kLanes<Full<T>>); };
  switch (n) {
    case 1: return Result(new Tiny<T, None>);
    case 2: return Result(new Tiny<T, Two>);
    case 3: return Result(new Tiny<T, Three>);
    case 4: return Result(new Tiny<T, Four>);
    case 5: return Result(new Tiny<T, Five>);
    case 6: return Result(new Coprime<T, Two, Three>);
    case 7: return Result(new Tiny<T, Seven>);
    case 8: return Result(new Small<T, kLane(2), 2, 1>);
    case 10: return Result(new Coprime<T, Two, Five>);
    case 11: return Result(new Tiny<T, Eleven>);
    case 12: return Result(new Coprime<T, Four, Three>);
    case 13: return Result(new Tiny<T, Thirteen>);
    case 14: return Result(new Coprime<T, Two, Seven>);
    case 15: return Result(new Coprime<T, Three, Five>);
    case 16: return Result(new Small<T, kLane(4), 2, 2>);
    case 20: return Result(new Coprime<T, Four, Five>);
    case 32: return Result(new Small<T, kLane(4), 3, 2>);
    case 64: return Result(new Small<T, kLane(8), 3, 3>);
    case 128: return Result(new Small<T, kLane(8), 3, 4>);
    case 256: return Result(new Either<Fixed<T, 4, 4>, Fixed<T, 3, 3, 2>>);
    case 512: return Result(new Either<Fixed<T, 4, 2, 3>, Fixed<T, 3, 3, 3>>);
    case 1024: return Result(new Either<Fixed<T, 4, 3, 3>, Fixed<T, 3, 4, 3>>);
    case 2048: return Result(new Either<Fixed<T, 4, 3, 2, 2>, Fixed<T, 3, 4, 4>>);
    case 4096: return Result(new Either<Fixed<T, 4, 3, 3, 2>, Fixed<T, 3, 3, 3, 3>>);
    case 16384: return Result(new Either<Fixed<T, 4, 3, 3, 2, 2>, Fixed<T, 3, 3, 4, 4>>);
  }
  if constexpr (kNarrow) if (n == 8192) return Result(new Fixed<T, 3, 3, 3, 4>);  // others are as fast as matrices
  Result woven;
  WithWoven(n, [&]<class A, class B>(Sides<A, B>) { woven.reset(new Woven<T, A, B>); });
  if (woven != nullptr) return woven;
  const size_t largest = Factors(n).back();
  if (largest == n && n <= kLargestFactor) return Result(new Lone<T>(n));
  if (largest > kLargestFactor) return Result(new Chirp<T>(n, workers));
  if (Result grid = Grid<T>::Make(n)) return grid;
  return Result(new Matrix<T>(n, workers));
}

}  // namespace tzm::fft
