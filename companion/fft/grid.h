// Complex transforms of some tens to some hundreds of points with odd factors: two passes, each of one or two radices.
//
// The n points are a matrix of n1 rows and n2 columns, as in matrix.h, but the passes are made for their numbers of
// points, and the last register of a side begins where it ends with it, over what the one before has done.
#pragma once

#include "pairs.h"

namespace tzm::fft {

// The transforms of the columns, V at once, transposed: number k of column j goes to lane k of the block j of the row
// block of k.
template <class T, size_t kLane, class A, class B>
void GridColumns(const View<const T>& in, T* matrix, size_t columns, const T* twiddles) {
  using Side = Chain<A, B>;
  using D = hn::CappedTag<T, kLane>;
  constexpr size_t kRows = Side::kRadix, kNumber = kBlock<D>;
  const D d;
  const View<const T> source = in;
  for (size_t j = 0; j < columns; j += kLane) {
    const size_t at = std::min(j, columns - kLane);
    Cx<D> y[kRows];
    Side::template Run<D>(
        [&](Cx<D>* x, auto part) TZM_LAMBDA {
          Open<kRows % 2 == 1>(source, [&](const auto& from) TZM_LAMBDA {
            Unrolled<A::kRadix>([&](auto i) TZM_LAMBDA {
              x[i] = Load(d, from, at + (part + B::kRadix * i) * columns);
            });
          });
        },
        [&](auto get, auto put) TZM_LAMBDA { A::First(d, get, put); },
        [&](auto k, auto get, auto put) TZM_LAMBDA {
          const T* const w = twiddles + 2 * k * B::kTwiddles;
          B::Next(d, get, [&](size_t q) TZM_LAMBDA {
            return Cx<D>{hn::Set(d, w[2 * q]), hn::Set(d, w[2 * q + 1])};
          }, put);
        },
        [&](const Cx<D>* x, auto k) TZM_LAMBDA {
          Unrolled<kRows / Side::kApart>([&](auto t) TZM_LAMBDA { Copy(x[t], y[k + Side::kApart * t]); });
        });
    Unrolled<(kRows + kLane - 1) / kLane>([&](auto block) TZM_LAMBDA {
      constexpr size_t kFirst = std::min(block * kLane, kRows - kLane);
      Vec<D> re[kLane], im[kLane];
      Unrolled<kLane>([&](auto t) TZM_LAMBDA {
        re[t] = y[kFirst + InOrder<D>(t)].re;
        im[t] = y[kFirst + InOrder<D>(t)].im;
      });
      StoreTransposed<true>(d, re, im, matrix + (block * columns + at) * kNumber);
    });
  }
}

// The transforms of the rows, V at once.
template <class T, size_t kLane, class A, class B>
void GridRows(const T* matrix, const View<T>& out, size_t rows, const T* twiddles) {
  using Side = Chain<A, B>;
  using D = hn::CappedTag<T, kLane>;
  constexpr size_t kNumber = kBlock<D>;
  const D d;
  const View<T> target = out;
  for (size_t j = 0; j < rows; j += kLane) {
    const size_t at = std::min(j, rows - kLane);
    Side::template Run<D>(
        [&](Cx<D>* x, auto part) TZM_LAMBDA {
          Unrolled<A::kRadix>([&](auto i) TZM_LAMBDA {
            x[i] = LoadBlock(d, matrix + (part + B::kRadix * i) * kNumber);
          });
        },
        [&](auto get, auto put) TZM_LAMBDA {
          A::Next(d, get, [&](size_t q) TZM_LAMBDA { return LoadBlock(d, twiddles + q * kNumber); }, put);
        },
        [&](auto k, auto get, auto put) TZM_LAMBDA {
          const T* const w = twiddles + (A::kTwiddles + k * B::kTwiddles) * kNumber;
          B::Next(d, get, [&](size_t q) TZM_LAMBDA { return LoadBlock(d, w + q * kNumber); }, put);
        },
        [&](const Cx<D>* x, auto k) TZM_LAMBDA {
          Open<false>(target, [&](const auto& to) TZM_LAMBDA {
            Unrolled<Side::kRadix / Side::kApart>([&](auto t) TZM_LAMBDA {
              Store(d, x[t], to, at + (k + Side::kApart * t) * rows);
            });
          });
        });
    matrix += Side::kRadix * kNumber;
    twiddles += Side::kTwiddles * kNumber;
  }
}

// f(chain) for a side of so many points; nothing where it has no pass.
template <class F>
constexpr void WithColumns(size_t points, F&& f) {
  switch (points) {
    case 2: return f(Chain<Two>());
    case 3: return f(Chain<Three>());
    case 4: return f(Chain<Four>());
    case 5: return f(Chain<Five>());
    case 6: return f(Chain<Two, Three>());
    case 7: return f(Chain<Seven>());
    case 8: return f(Chain<Eight>());
    case 9: return f(Chain<Three, Three>());
    case 10: return f(Chain<Two, Five>());
    case 12: return f(Chain<Four, Three>());
    case 15: return f(Chain<Three, Five>());
    case 16: return f(Chain<Sixteen>());
    case 20: return f(Chain<Four, Five>());
    case 24: return f(Chain<Eight, Three>());
    case 25: return f(Chain<Five, Five>());
    case 32: return f(Chain<Eight, Four>());
    case 40: return f(Chain<Eight, Five>());
  }
}
template <class F>
constexpr void WithRows(size_t points, F&& f) {
  switch (points) {
    case 3: return f(Chain<Three>());
    case 5: return f(Chain<Five>());
    case 6: return f(Chain<Two, Three>());
    case 7: return f(Chain<Seven>());
    case 9: return f(Chain<Three, Three>());
    case 10: return f(Chain<Two, Five>());
    case 11: return f(Chain<Eleven>());
    case 12: return f(Chain<Four, Three>());
    case 13: return f(Chain<Thirteen>());
    case 15: return f(Chain<Three, Five>());
    case 20: return f(Chain<Four, Five>());
    case 21: return f(Chain<Three, Seven>());
    case 25: return f(Chain<Five, Five>());
    case 35: return f(Chain<Five, Seven>());
  }
}

// How a length is cut, and for how many transforms at once.
struct Cut {
  size_t lanes = 0, rows = 0, columns = 0;  // no lanes: there are no such passes
};

// Whether a side of so many points may have passes for so many lanes: few lanes are for few points.
constexpr bool Fits(size_t points, size_t lanes, size_t most) {
  return points >= lanes && (lanes == most || points <= 8 * lanes);
}

// The cut of n with about the fewest operations, for at most kMost lanes.
template <size_t kMost>
constexpr Cut BestCut(size_t n) {
  Cut best;
  bool taken = std::has_single_bit(n) || n <= 20;  // other passes have these
  WithWoven(n, [&](auto) { taken = true; });
  if (taken) return best;
  size_t least = SIZE_MAX, rows = 1;
  for (size_t factor = 2; factor <= 13; ++factor) {
    while (n / rows % factor == 0) {
      rows *= factor;
      if (rows % std::gcd(n, size_t{8}) != 0) continue;  // the first pass takes the levels without a table
      const size_t columns = n / rows;
      for (size_t lanes = 2; lanes <= kMost; lanes *= 2) {
        if (!Fits(rows, lanes, kMost) || !Fits(columns, lanes, kMost)) continue;
        size_t sides = 0, work = 0;
        const auto add = [&](size_t transforms, size_t a, size_t b) {
          const auto each = [](size_t radix) { return radix % 2 == 0 ? 3 * std::countr_zero(radix) : 2 * radix; };
          work += (transforms + lanes - 1) / lanes * a * b * (8 + each(a) + each(b));
          ++sides;
        };
        WithColumns(rows, [&]<class A, class B>(Chain<A, B>) { add(columns, A::kRadix, B::kRadix); });
        WithRows(columns, [&]<class A, class B>(Chain<A, B>) { add(rows, A::kRadix, B::kRadix); });
        if (sides == 2 && work < least) least = work, best = {lanes, rows, columns};
      }
    }
  }
  return best;
}

// The sides that occur in the cut of any length.
template <size_t kMost>
struct Cuts {
  static constexpr size_t kLongest = 40;
  bool columns[kMost + 1][kLongest + 1] = {}, rows[kMost + 1][kLongest + 1] = {};

  constexpr Cuts() {
    for (size_t a = 2; a <= kLongest; ++a) {
      for (size_t b = 2; b <= kLongest; ++b) {
        const Cut cut = BestCut<kMost>(a * b);
        columns[cut.lanes][cut.rows] = rows[cut.lanes][cut.columns] = true;
      }
    }
  }
};
template <size_t kMost>
constexpr Cuts<kMost> kCuts;

template <class T>
class Grid final : public Complex<T> {
 public:
  // Null where there are no such passes.
  static std::unique_ptr<Complex<T>> Make(size_t n) {
    const Cut cut = BestCut<kMost>(n);
    Plan plan;
    Choose<2>(cut, plan);
    if constexpr (kMost > 2) Choose<4>(cut, plan);
    if constexpr (kMost > 4) Choose<8>(cut, plan);
    return std::unique_ptr<Complex<T>>(cut.lanes == 0 ? nullptr : new Grid(plan));
  }

  void Run(const View<const T>& in, const View<T>& out, T* scratch, Helpers&) const override {
    plan_.columnPass(in, scratch, plan_.columns, table_.get());
    plan_.rowPass(scratch, out, plan_.rows, table_.get() + rowTable_);
  }

 private:
  static constexpr size_t kMost = std::min<size_t>(8, kLanes<Full<T>>);

  struct Plan : Cut {
    size_t columnRadices[2] = {}, rowRadices[2] = {};
    void (*columnPass)(const View<const T>& in, T* matrix, size_t columns, const T* twiddles) = nullptr;
    void (*rowPass)(const T* matrix, const View<T>& out, size_t rows, const T* twiddles) = nullptr;
    size_t (*order)(size_t lane) = nullptr;

    size_t Blocks() const { return (rows + lanes - 1) / lanes; }
  };

  template <size_t kLane>
  static void Choose(const Cut& cut, Plan& plan) {
    if (cut.lanes != kLane) return;
    static_cast<Cut&>(plan) = cut;
    plan.order = InOrder<hn::CappedTag<T, kLane>>;
    WithColumns(cut.rows, [&]<class A, class B>(Chain<A, B>) {
      plan.columnRadices[0] = A::kRadix, plan.columnRadices[1] = B::kRadix;
      if constexpr (kCuts<kMost>.columns[kLane][A::kRadix * B::kRadix]) plan.columnPass = GridColumns<T, kLane, A, B>;
    });
    WithRows(cut.columns, [&]<class A, class B>(Chain<A, B>) {
      plan.rowRadices[0] = A::kRadix, plan.rowRadices[1] = B::kRadix;
      if constexpr (kCuts<kMost>.rows[kLane][A::kRadix * B::kRadix]) plan.rowPass = GridRows<T, kLane, A, B>;
    });
  }

  explicit Grid(const Plan& plan) : plan_(plan) {
    const size_t n = plan.rows * plan.columns, number = 2 * plan.lanes;
    this->scratch_ = plan.Blocks() * plan.columns * number;
    rowTable_ = (2 * plan.rows + kLine - 1) / kLine * kLine;
    table_ = Table<T>(rowTable_ + plan.Blocks() * plan.columns * number);
    const Roots<T> roots(n);
    T* to = table_.get();
    for (size_t k = 0; k < plan.columnRadices[0]; ++k) {
      ForEachTwiddle(plan.columnRadices[1], plan.columnRadices[0], [&](size_t order, size_t times, size_t plus) {
        const Number<T> w = roots(n / order * (times * k + plus));
        *to++ = w.re;
        *to++ = w.im;
      });
    }
    to = table_.get() + rowTable_;
    for (size_t j = 0; j < plan.rows; j += plan.lanes) {
      size_t k = 0;  // of the numbers along the row
      const auto put = [&](size_t order, size_t times, size_t plus) {
        for (size_t lane = 0; lane < plan.lanes; ++lane) {
          const size_t row = std::min(j, plan.rows - plan.lanes) + plan.order(lane);
          const Number<T> w = roots(n / order * (times * (row + plan.rows * k) + plus));
          to[lane] = w.re;
          to[plan.lanes + lane] = w.im;
        }
        to += number;
      };
      ForEachTwiddle(plan.rowRadices[0], plan.rows, put);
      for (; k < plan.rowRadices[0]; ++k) ForEachTwiddle(plan.rowRadices[1], plan.rows * plan.rowRadices[0], put);
    }
  }

  Plan plan_;
  size_t rowTable_;
  Table<T> table_;
};

}  // namespace tzm::fft
