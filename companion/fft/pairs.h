// Complex transforms of a few tens of points in straight-line code, on complex numbers that stay pairs in registers.
#pragma once

#include "matrix.h"

#include <bit>

namespace tzm::fft {

// As many complex numbers as there are pairs of lanes.
template <class D>
struct Pairs {
  Vec<D> parts;
};
template <class D>
constexpr size_t kNumbers = kLanes<D> / 2;

// A factor of the pairs of a register: the real parts twice; the imaginary ones negated, and as they are.
template <class D>
struct PairFactor {
  Vec<D> re, im;
};
template <class D>
TZM_INLINE Vec<D> Alternating(D d, hn::TFromD<D> even, hn::TFromD<D> odd) {
  return hn::OddEven(hn::Set(d, odd), hn::Set(d, even));
}
template <class D>
TZM_INLINE Pairs<D> Product(const PairFactor<D>& w, const Pairs<D>& x) {
  const D d;
  return {hn::MulAdd(w.im, hn::Reverse2(d, x.parts), hn::Mul(w.re, x.parts))};
}
template <class D, class T = hn::TFromD<D>>
TZM_INLINE Pairs<D> Times(T re, T im, const Pairs<D>& x) {
  const D d;
  return Product({hn::Set(d, re), Alternating(d, -im, im)}, x);
}
template <class D, class T = hn::TFromD<D>>
TZM_INLINE Pairs<D> QuarterTimes(T re, T im, const Pairs<D>& x) {
  return Times(im, -re, x);
}
template <class D>
TZM_INLINE Pairs<D> Sum(const Pairs<D>& a, const Pairs<D>& b) {
  return {hn::Add(a.parts, b.parts)};
}
template <class D>
TZM_INLINE Pairs<D> Scaled(Vec<D> c, const Pairs<D>& x) {
  return {hn::Mul(c, x.parts)};
}
template <class D>
TZM_INLINE Pairs<D> Scaled(Vec<D> c, const Pairs<D>& x, const Pairs<D>& b) {
  return {hn::MulAdd(c, x.parts, b.parts)};
}
template <class D>
TZM_INLINE void Combine(Pairs<D>& a, Pairs<D>& b, const Pairs<D>& t) {
  const auto sum = hn::Add(a.parts, t.parts);
  b.parts = hn::Sub(a.parts, t.parts);
  a.parts = sum;
}
template <class D>
TZM_INLINE void Combine(Pairs<D>& a, Pairs<D>& b) {
  Combine(a, b, Pairs<D>(b));
}
template <class D>
TZM_INLINE void CombineQuarter(Pairs<D>& a, Pairs<D>& b) {
  const D d;
  Combine(a, b, Pairs<D>{hn::Xor(hn::Reverse2(d, b.parts), Alternating(d, 0, -0.0))});
}
template <class D>
TZM_INLINE void CombineQuarter(Pairs<D>& a, Pairs<D>& b, Vec<D> c) {
  const D d;
  const auto turned = hn::Reverse2(d, b.parts), by = hn::Xor(c, Alternating(d, 0, -0.0));
  b.parts = hn::NegMulAdd(by, turned, a.parts);
  a.parts = hn::MulAdd(by, turned, a.parts);
}

template <class D>
TZM_INLINE void Copy(const Pairs<D>& from, Pairs<D>& to) {
  to.parts = from.parts;
}
template <class D>
TZM_INLINE Pairs<D> Same(const Pairs<D>& x) {
  return {x.parts};
}

// Rows become columns.
template <class D>
TZM_INLINE void Transpose(D d, Pairs<D>* x) {
  if constexpr (kNumbers<D> == 2) {
    const auto low = hn::ConcatLowerLower(d, x[1].parts, x[0].parts);
    x[1].parts = hn::ConcatUpperUpper(d, x[1].parts, x[0].parts);
    x[0].parts = low;
  } else if constexpr (kNumbers<D> == 4) {
    const hn::Repartition<double, D> pairs;
    Vec<decltype(pairs)> y[4];
    Unrolled<4>([&](auto k) TZM_LAMBDA { y[k] = hn::BitCast(pairs, x[k].parts); });
    Transpose(pairs, y);
    Unrolled<4>([&](auto k) TZM_LAMBDA { x[k].parts = hn::BitCast(d, y[k]); });
  }
}

// The numbers from `at` on. kOneLess: one number less than a register has.
template <bool kOneLess = false, Form kForm, class D, class T = hn::TFromD<D>>
TZM_INLINE Pairs<D> GetPairs(D d, const Array<kForm, const T>& from, size_t at) {
  const hn::Half<D> half;
  if constexpr (kOneLess) {
    const hn::Half<decltype(half)> one;
    const auto low = GetPairs(half, from, at);
    const auto high = GetPairs(one, from, at + kNumbers<D> / 2);
    return {hn::Combine(d, hn::ZeroExtendVector(half, high.parts), low.parts)};
  } else if constexpr (kForm == Form::kPairs) {
    return {hn::LoadU(d, from.re + 2 * at)};
  } else if constexpr (kForm == Form::kExchanged) {
    return {hn::Reverse2(d, hn::LoadU(d, from.re + 2 * at))};
  } else if constexpr (kNumbers<D> > 1) {
    static_assert(kForm == Form::kReal);
    const auto re = hn::LoadU(half, from.re + at), im = hn::Zero(half);
    if constexpr (sizeof(T) == 4) {  // the number as the lower half of an integer
      const hn::Repartition<uint64_t, D> pairs;
      return {hn::BitCast(d, hn::PromoteTo(pairs, hn::BitCast(hn::RebindToUnsigned<decltype(half)>(), re)))};
    } else {
      return {hn::Combine(d, hn::InterleaveUpper(half, re, im), hn::InterleaveLower(half, re, im))};
    }
  } else {
    const auto re = hn::Set(d, LoadElement(from.re + at));
    if constexpr (kForm == Form::kReal) return {hn::InterleaveLower(d, re, hn::Zero(d))};
    else return {hn::InterleaveLower(d, re, hn::Set(d, LoadElement(from.im + at)))};
  }
}
// Results from `at` on; of real numbers those up to n/2.
template <size_t n, Form kForm, class D, class T = hn::TFromD<D>>
TZM_INLINE void PutPairs(D d, const Pairs<D>& x, const Array<kForm, T>& to, size_t at) {
  if constexpr (kForm == Form::kReal) {
    if (at + kNumbers<D> <= n / 2 + 1) return hn::StoreU(x.parts, d, to.re + 2 * at);
    if constexpr (kNumbers<D> > 1) {
      if (at > n / 2) return;
      const hn::Half<D> half;
      PutPairs<n>(half, {hn::LowerHalf(half, x.parts)}, to, at);
      PutPairs<n>(half, {hn::UpperHalf(half, x.parts)}, to, at + kNumbers<D> / 2);
    }
  } else if constexpr (kForm == Form::kPairs) {
    hn::StoreU(x.parts, d, to.re + 2 * at);
  } else if constexpr (kForm == Form::kExchanged) {
    hn::StoreU(hn::Reverse2(d, x.parts), d, to.re + 2 * at);
  } else {
    static_assert(kNumbers<D> == 1);
    StoreElement(hn::GetLane(x.parts), to.re + at);
    StoreElement(hn::GetLane(hn::Reverse2(d, x.parts)), to.im + at);
  }
}

// As many points as one pass has.
template <class T, class Levels>
class Tiny final : public Complex<T> {
  using D = hn::CappedTag<T, 2>;

 public:
  Tiny() { this->storesHalf_ = true; }
  void Run(const View<const T>& in, const View<T>& out, T*, Helpers&) const override {
    OpenBoth(in, out, [](const auto& from, const auto& to) TZM_LAMBDA {
      const D d;
      Pairs<D> x[Levels::kRadix];
      Unrolled<Levels::kRadix>([&](auto i) TZM_LAMBDA { x[i] = GetPairs(d, from, i); });
      Levels::First(d, [&](auto i) TZM_LAMBDA { return x[i]; },
                    [&](auto t, const Pairs<D>& result) TZM_LAMBDA { PutPairs<Levels::kRadix>(d, result, to, t); });
    });
  }
};

// A by B points without common factors, as A and B are a pass each: point B i + A j modulo A B is number (i, j) of a
// matrix, and so is the result that leaves the remainders i and j.
template <class T, class ByA, class ByB>
class Coprime final : public Complex<T> {
  using D = hn::CappedTag<T, 2>;
  static constexpr size_t A = ByA::kRadix, B = ByB::kRadix;

  static constexpr size_t Remaining(size_t i, size_t j) {
    size_t k = i;
    while (k % B != j) k += A;
    return k;
  }
  static constexpr bool kReal = A * B <= kLongestWhole;

 public:
  Coprime() { this->storesHalf_ = kReal; }
  void Run(const View<const T>& in, const View<T>& out, T*, Helpers&) const override {
    OpenBoth<kReal>(in, out, [](const auto& from, const auto& to) TZM_LAMBDA {
      const D d;
      Pairs<D> x[A][B];
      Unrolled<B>([&](auto j) TZM_LAMBDA {
        ByA::First(d, [&](auto i) TZM_LAMBDA { return GetPairs(d, from, (B * i + A * j) % (A * B)); },
                   [&](auto t, const Pairs<D>& result) TZM_LAMBDA { x[t][j] = result; });
      });
      Unrolled<A>([&](auto i) TZM_LAMBDA {
        ByB::First(d, [&](auto j) TZM_LAMBDA { return x[i][j]; },
                   [&](auto t, const Pairs<D>& result) TZM_LAMBDA {
          PutPairs<A * B>(d, result, to, Constant<Remaining(i, t)>());
        });
      });
    });
  }
};

template <class ByColumns, class ByRows>
struct Sides {};
// f(sides) for the lengths of Woven; nothing for others.
template <class F>
constexpr void WithWoven(size_t n, F&& f) {
  switch (n) {
    case 9: return f(Sides<Three, Chain<Three>>());
    case 18: return f(Sides<Two, Chain<Three, Three>>());
    case 21: return f(Sides<Three, Chain<Seven>>());
    case 24: return f(Sides<Eight, Chain<Three>>());
    case 25: return f(Sides<Five, Chain<Five>>());
    case 27: return f(Sides<Three, Chain<Three, Three>>());
    case 28: return f(Sides<Four, Chain<Seven>>());
    case 30: return f(Sides<Two, Chain<Three, Five>>());
    case 36: return f(Sides<Four, Chain<Three, Three>>());
    case 40: return f(Sides<Eight, Chain<Five>>());
    case 45: return f(Sides<Three, Chain<Three, Five>>());
    case 48: return f(Sides<Sixteen, Chain<Three>>());
    case 50: return f(Sides<Two, Chain<Five, Five>>());
    case 60: return f(Sides<Four, Chain<Three, Five>>());
    case 72: return f(Sides<Eight, Chain<Three, Three>>());
    case 75: return f(Sides<Three, Chain<Five, Five>>());
    case 80: return f(Sides<Sixteen, Chain<Five>>());
    case 96: return f(Sides<Sixteen, Chain<Two, Three>>());
    case 100: return f(Sides<Four, Chain<Five, Five>>());
    case 120: return f(Sides<Eight, Chain<Three, Five>>());
    case 144: return f(Sides<Sixteen, Chain<Three, Three>>());
  }
}

// A matrix whose columns are a pass and whose rows are a chain, as in matrix.h but in one straight line, several
// columns and then several rows to a register. The last register of a side begins where it ends with it, over what the
// one before has done. Where three columns are all, the register that holds them has room for a fourth.
template <class T, class ByColumns, class ByRows>
class Woven final : public Complex<T> {
  static constexpr size_t kRows = ByColumns::kRadix, kColumns = ByRows::kRadix, kPoints = kRows * kColumns;
  static constexpr size_t kMost = std::min(kLanes<Full<T>>, 32 / sizeof(T)) / 2;  // of 256 bits
  static constexpr size_t kAtOnce = std::min(kMost, std::bit_floor(kRows));
  static_assert(kColumns + 1 >= kAtOnce);
  using D = hn::CappedTag<T, 2 * kAtOnce>;
  using N = Pairs<D>;
  static constexpr size_t kBlocks = (kRows + kAtOnce - 1) / kAtOnce, kStrips = (kColumns + kAtOnce - 1) / kAtOnce;
  static constexpr bool kReal = kPoints % 2 == 1;

  static constexpr size_t Start(size_t group, size_t count) {
    return count < kAtOnce ? 0 : std::min(group * kAtOnce, count - kAtOnce);
  }

 public:
  Woven() { this->storesHalf_ = kReal; }

  void Run(const View<const T>& in, const View<T>& out, T*, Helpers&) const override {
    if (in.form == Form::kPairs) return Take(Array<Form::kPairs, const T>{in.re, nullptr}, out);
    if (in.form == Form::kExchanged) return Take(Array<Form::kExchanged, const T>{in.re, nullptr}, out);
    if constexpr (kReal) if (in.form == Form::kReal) return Take(Array<Form::kReal, const T>{in.re, nullptr}, out);
    // Code for two arrays would be as long again: they become pairs, and back.
    const auto copy = [](const auto& from, const auto& to) TZM_LAMBDA {
      const hn::CappedTag<T, 8> d;
      for (size_t k = 0; k < kPoints; k += hn::Lanes(d)) {
        const size_t at = std::min(k, kPoints - hn::Lanes(d));
        Store(d, Load(d, from, at), to, at);
      }
    };
    T pairs[2 * kPoints];
    copy(Array<Form::kSplit, const T>{in.re, in.im}, Array<Form::kPairs, T>{pairs, nullptr});
    Take(Array<Form::kPairs, const T>{pairs, nullptr}, {Form::kPairs, pairs, nullptr});
    copy(Array<Form::kPairs, const T>{pairs, nullptr}, Array<Form::kSplit, T>{out.re, out.im});
  }

 private:
  template <Form kForm>
  HWY_NOINLINE void Take(const Array<kForm, const T>& from, const View<T>& out) const {
    const Array<kForm, T> to = {out.re, nullptr};
    const D d;
    const T* const roots = Opaque(kRoots.data());
    N matrix[kBlocks][kStrips * kAtOnce];
    // Loops that are written out as such compile faster than those of constants.
#pragma GCC unroll 16
    for (size_t strip = 0; strip < kStrips; ++strip) {
      const size_t at = Start(strip, kColumns);
      N x[kRows];
      ByColumns::First(d, [&](auto i) TZM_LAMBDA {
        return GetPairs<(kColumns < kAtOnce && i == kRows - 1)>(d, from, at + i * kColumns);
      }, [&](auto t, const N& result) TZM_LAMBDA { Copy(result, x[t]); });
#pragma GCC unroll 16
      for (size_t block = 0; block < kBlocks; ++block) {
        N y[kAtOnce];
        Unrolled<kAtOnce>([&](auto t) TZM_LAMBDA { y[t] = Same(x[Start(block, kRows) + t]); });
        Transpose(d, y);
        Unrolled<kAtOnce>([&](auto t) TZM_LAMBDA { Copy(y[t], matrix[block][at + t]); });
      }
    }
#pragma GCC unroll 16
    for (size_t block = 0; block < kBlocks; ++block) {
      const size_t at = Start(block, kRows);
      ByRows::template Straight<N>(
          d, [&](auto i) TZM_LAMBDA { return Same(matrix[block][i]); },
          [&](size_t q) TZM_LAMBDA {
            const T* const w = roots + (block * ByRows::kTwiddles + q) * kBlock<D>;
            return PairFactor<D>{hn::LoadU(d, w), hn::LoadU(d, w + kBlock<D> / 2)};
          },
          [&](auto t, const N& x) TZM_LAMBDA { PutPairs<kPoints>(d, x, to, at + t * kRows); });
    }
  }

  static constexpr size_t kRootCount = kBlocks * ByRows::kTwiddles * kBlock<D>;
  alignas(kLine) static constexpr std::array<T, kRootCount> kRoots = [] {
    std::array<T, kRootCount> table = {};
    T* to = table.data();
    for (size_t block = 0; block < kBlocks; ++block) {
      ByRows::ForEachFactor(kRows, [&](size_t order, size_t times, size_t plus, size_t k) {
        for (size_t lane = 0; lane < 2 * kAtOnce; lane += 2) {
          const size_t row = Start(block, kRows) + lane / 2;
          const Number<T> w = KnownRoots<T, kPoints>()(kPoints / order * (times * (row + kRows * k) + plus));
          to[lane] = to[lane + 1] = w.re;
          to[kBlock<D> / 2 + lane] = -w.im;
          to[kBlock<D> / 2 + lane + 1] = w.im;
        }
        to += kBlock<D>;
      });
    }
    return table;
  }();
};

}  // namespace tzm::fft
