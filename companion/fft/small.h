// Complex transforms of few points: powers of two from 8 on, without choices, and what one pass takes.
#pragma once

#include "matrix.h"

namespace tzm::fft {

// 2^kRows by 2^kColumns points in registers of kLane lanes.
template <class T, size_t kLane, size_t kRows, size_t kColumns>
class Small final : public Complex<T> {
  using D = hn::CappedTag<T, kLane>;
  using Rows = PowerOfTwo<kRows>;
  using Columns = PowerOfTwo<kColumns>;
  static constexpr size_t kNumber = kBlock<D>, kLanes = fft::kLanes<D>;
  static constexpr size_t kTable = Columns::kTwiddles * kNumber;

 public:
  Small() {
    const Roots<T> roots(Rows::kRadix * Columns::kRadix);
    T* to = table_;
    for (size_t first = 0; first < Rows::kRadix; first += kLanes) {
      Columns::ForEachTwiddle(Rows::kRadix, [&](size_t order, size_t times, size_t plus) {
        for (size_t lane = 0; lane < kLanes; ++lane) {
          const auto w = roots(Rows::kRadix * Columns::kRadix / order * (times * (first + InOrder<D>(lane)) + plus));
          to[lane] = w.re;
          to[kLanes + lane] = w.im;
        }
        to += kNumber;
      });
    }
  }

  void Run(const View<const T>& in, const View<T>& out, T*, Helpers&) const override {
    const D d;
    constexpr size_t kRowCount = Rows::kRadix, kColumnCount = Columns::kRadix;
    Cx<D> matrix[kRowCount / kLanes][kColumnCount];
    Unrolled<kColumnCount / kLanes>([&](auto strip) TZM_LAMBDA {
      Cx<D> x[kRowCount];
      LoadUser<kRowCount>(d, in, x, [=](auto i) TZM_LAMBDA { return strip * kLanes + Rows::From(i) * kColumnCount; });
      Rows::First(d, x);
      Unrolled<kRowCount / kLanes>([&](auto block) TZM_LAMBDA {
        Vec<D> re[kLanes], im[kLanes];
        Unrolled<kLanes>([&](auto t) TZM_LAMBDA {
          re[t] = x[block * kLanes + InOrder<D>(t)].re;
          im[t] = x[block * kLanes + InOrder<D>(t)].im;
        });
        Transpose(d, re);
        Transpose(d, im);
        Unrolled<kLanes>([&](auto t) TZM_LAMBDA { matrix[block][strip * kLanes + InOrder<D>(t)] = {re[t], im[t]}; });
      });
    });
    Unrolled<kRowCount / kLanes>([&](auto block) TZM_LAMBDA {
      Cx<D> x[kColumnCount];
      Unrolled<kColumnCount>([&](auto i) TZM_LAMBDA { x[i] = matrix[block][Columns::From(i)]; });
      Columns::Next(d, x, [&](size_t q) TZM_LAMBDA { return LoadBlock(d, table_ + block * kTable + q * kNumber); });
      StoreUser<kColumnCount>(d, out, x, [=](auto t) TZM_LAMBDA { return block * kLanes + t * kRowCount; });
    });
  }

 private:
  alignas(kLine) T table_[Rows::kRadix / kLanes * kTable];
};

// As many points as one pass has, one in a lane.
template <class T, class Levels>
class Tiny final : public Complex<T> {
 public:
  void Run(const View<const T>& in, const View<T>& out, T*, Helpers&) const override {
    using D = hn::CappedTag<T, 1>;
    const D d;
    Cx<D> x[Levels::kRadix];
    Unrolled<Levels::kRadix>([&](auto i) TZM_LAMBDA {
      const Number<T> number = in.Get(Levels::From(i));
      x[i] = {hn::Set(d, number.re), hn::Set(d, number.im)};
    });
    Levels::First(d, x);
    Unrolled<Levels::kRadix>([&](auto i) TZM_LAMBDA { out.Put(i, {hn::GetLane(x[i].re), hn::GetLane(x[i].im)}); });
  }
};

// A by B points without common factors, as A and B are a pass each: point B i + A j modulo A B is number (i, j) of a
// matrix, and so is the result that leaves the remainders i and j.
template <class T, class ByA, class ByB>
class Coprime final : public Complex<T> {
  using D = hn::CappedTag<T, 1>;
  static constexpr size_t A = ByA::kRadix, B = ByB::kRadix;

  static constexpr size_t Remaining(size_t i, size_t j) {
    size_t k = i;
    while (k % B != j) k += A;
    return k;
  }

 public:
  void Run(const View<const T>& in, const View<T>& out, T*, Helpers&) const override {
    const D d;
    Cx<D> x[A][B];
    Unrolled<B>([&](auto j) TZM_LAMBDA {
      Cx<D> column[A];
      Unrolled<A>([&](auto i) TZM_LAMBDA {
        const Number<T> number = in.Get((B * ByA::From(i) + A * j) % (A * B));
        column[i] = {hn::Set(d, number.re), hn::Set(d, number.im)};
      });
      ByA::First(d, column);
      Unrolled<A>([&](auto i) TZM_LAMBDA { x[i][j] = column[i]; });
    });
    Unrolled<A>([&](auto i) TZM_LAMBDA {
      Cx<D> row[B];
      Unrolled<B>([&](auto j) TZM_LAMBDA { row[j] = x[i][ByB::From(j)]; });
      ByB::First(d, row);
      Unrolled<B>([&](auto j) TZM_LAMBDA {
        out.Put(Remaining(i, j), {hn::GetLane(row[j].re), hn::GetLane(row[j].im)});
      });
    });
  }
};

// A prime number of points that has no pass.
template <class T>
class Lone final : public Complex<T> {
 public:
  explicit Lone(size_t p) : prime_(p) { this->scratch_ = 2 * p; }
  void Run(const View<const T>& in, const View<T>& out, T* scratch, Helpers&) const override {
    TransformPrime(prime_, in, out, scratch);
  }

 private:
  Prime<T> prime_;
};

}  // namespace tzm::fft
