// Complex transforms whose length has no prime factor above kLargestFactor: the schedules of the graph.
//
// The n points are a matrix of n1 rows and n2 columns. The first levels of the graph are transforms of the columns, V
// of them in the lanes of the registers; a transposition puts the V next results of a column into lanes; the other
// levels are transforms of length n2 over these.
#pragma once

#include "direct.h"
#include "passes.h"
#include "roots.h"
#include "transform.h"

#include <cmath>

namespace tzm::fft {

// The prime factors in the order of the graph's levels.
inline std::vector<size_t> Factors(size_t n) {
  std::vector<size_t> factors;
  for (size_t factor = 2; n > 1; factor += factor == 2 ? 1 : 2) {
    if (factor * factor > n) factor = n;
    for (; n % factor == 0; n /= factor) factors.push_back(factor);
  }
  return factors;
}

// Levels that one pass takes: a power of two, an odd factor, or two of 3. The first pass takes three of 2 where there
// are three, and one of 3.
inline std::vector<size_t> Radices(size_t n, bool first) {
  std::vector<size_t> radices;
  while (n % 8 == 0 && (n % 32 != 16 || (first && radices.empty()))) radices.push_back(8), n /= 8;
  for (size_t most : {4, 2}) for (; n % most == 0; n /= most) radices.push_back(most);
  if (n % 9 == 0 && first && radices.empty()) radices.push_back(3), n /= 3;
  for (; n % 9 == 0; n /= 9) radices.push_back(9);
  for (size_t factor : Factors(n)) radices.push_back(factor);
  return radices;
}

// A radix that has no pass of its own.
struct AnyPrime {};

// f(levels) for the levels of a radix.
template <class F>
void WithLevels(size_t radix, F&& f) {
  switch (radix) {
    case 2: return f(Two());
    case 4: return f(Four());
    case 8: return f(Eight());
    case 3: return f(Three());
    case 9: return f(Chain<Three, Three>());
    case 5: return f(Five());
    case 7: return f(Seven());
    case 11: return f(Eleven());
    case 13: return f(Thirteen());
    default: return f(AnyPrime());
  }
}

// The factors of a pass along rows `row` ... `row` + V - 1 of n1 in the lanes, after `s` results of each: the
// blocks of a butterfly for each of the s. Beyond the last row they are the last one's.
template <class D, class T = hn::TFromD<D>>
constexpr T* TabulateRows(D, const auto& roots, size_t radix, size_t n, size_t n1, size_t s, size_t row, T* to) {
  for (size_t k = 0; k < s; ++k) {
    ForEachTwiddle(radix, n1 * s, [&](size_t order, size_t times, size_t plus) {
      for (size_t lane = 0; lane < kLanes<D>; ++lane) {
        const size_t own = std::min(row + InOrder<D>(lane), n1 - 1);
        const Number<T> w = roots(n / order * (times * (own + n1 * k) + plus));
        to[lane] = w.re;
        to[kLanes<D> + lane] = w.im;
      }
      to += kBlock<D>;
    });
  }
  return to;
}

template <class T>
class Matrix final : public Complex<T> {
  using D = Full<T>;
  static constexpr size_t kLane = kLanes<D>, kNumber = kBlock<D>;
  static constexpr size_t kStrip = std::max<size_t>(1, 256 / (kNumber * sizeof(T)));  // blocks side by side
  static constexpr size_t kNear = size_t{1} << 14;  // bytes in the nearest cache, from where all may go at once
  static constexpr size_t kPad = 256 / sizeof(T);  // against arrays in the same sets of a cache

 public:
  Matrix(size_t n, size_t workers) : n_(n), workers_(workers) {
    n1_ = Rows(n);
    n2_ = n / n1_;
    blocks_ = (n1_ + kLane - 1) / kLane;
    strips_ = (n2_ + kLane - 1) / kLane;
    group_ = 2 * n * sizeof(T) <= kNear ? std::max(blocks_, strips_) : kStrip;
    part_ = std::max(n2_, kLane) * kNumber + kPad;
    if (!IsFused()) for (size_t radix : Radices(n1_, true)) columnSteps_.push_back({radix, 0});
    for (size_t radix : Radices(n2_, false)) rowSteps_.push_back({radix, 0});
    Tabulate(Roots<T>(n));

    narrow_ = n2_ < kLane ? 2 * (n + kLane) : 0;
    const size_t columns = IsFused() ? 0 : 2 * n1_ * std::min(group_, strips_) * kNumber;
    for (size_t p : Factors(n)) {
      if (p > 13 && (primes_.empty() || primes_.back().p() != p)) primes_.emplace_back(p);
    }
    const size_t work = primes_.empty() ? 0 : primes_.back().p() * kNumber;
    worker_ = std::max(columns, part_ * std::min(group_, blocks_)) + work + kPad / 2;
    this->storesHalf_ = n % 2 == 1;
    this->scratch_ = RoundUp(narrow_) + RoundUp(blocks_ * part_) + workers_ * RoundUp(worker_);
  }

  void Run(const View<const T>& in, const View<T>& out, T* scratch, Helpers& helpers) const override {
    View<const T> from = in;
    if (narrow_ != 0) from = Widened(in, scratch);
    T* const matrix = scratch + RoundUp(narrow_);
    const View<T> half = {Form::kHalf, out.re, out.re + n_ + 1};
    const Job job = {*this, from, out.form == Form::kReal ? half : out, matrix};
    ForEach<&Matrix::Columns>(job, strips_, helpers);
    ForEach<&Matrix::RowsOf>(job, blocks_, helpers);
  }

 private:
  using Fused = PowerOfTwo<kLane == 16 ? 4 : 3>;  // rows whose pass transposes at once
  static constexpr size_t kFused = Fused::kRadix;

  struct Step {
    size_t radix, twiddles;  // where the table begins
  };
  struct Job {
    const Matrix& self;
    View<const T> in;
    View<T> out;
    T* matrix;
  };

  static size_t RoundUp(size_t count) {
    constexpr size_t kUnit = kLine / sizeof(T);
    return (count + kUnit - 1) / kUnit * kUnit;
  }
  bool IsFused() const { return n1_ == kFused && n2_ >= kLane; }
  T* Worker(T* matrix, size_t worker) const {
    return matrix + RoundUp(blocks_ * part_) + worker * RoundUp(worker_);
  }
  // The strips or the blocks, in groups.
  template <auto kWork>
  void ForEach(const Job& job, size_t count, Helpers& helpers) const {
    const auto work = [](const void* context, size_t group, size_t worker) {
      const Job& job = *static_cast<const Job*>(context);
      (job.self.*kWork)(job, group, job.self.Worker(job.matrix, worker));
    };
    helpers.Run((count + group_ - 1) / group_, workers_, work, &job, experience_);
  }

  // The number of rows: what makes the fewest registers, or about as many as columns where threads may share them,
  // which serves one thread as well. The first pass must take the levels without a table.
  static size_t Rows(size_t n) {
    size_t best = n, rows = 1;
    double least = HUGE_VAL;
    for (size_t factor : Factors(n)) {
      rows *= factor;
      if (rows % std::gcd(n, size_t{8}) != 0) continue;
      const size_t columns = n / rows;
      const auto filled = [](size_t count) { return static_cast<double>((count + kLane - 1) / kLane * kLane); };
      double cost = (filled(rows) / rows + filled(columns) / columns) * (rows == kFused ? 0.8 : 1);
      if (rows < kLane || columns < kLane) cost *= 1.5;
      const auto bits = [](size_t count) { return std::log2(static_cast<double>(count)); };
      if (n >= kThreadedPoints) cost *= 1 + std::abs(bits(rows) - bits(columns));
      else cost *= 1 + 0.1 * Radices(rows, true).size();
      if (cost < least) least = cost, best = rows;
    }
    return best;
  }

  size_t BlockStart(size_t block) const { return n1_ < kLane ? 0 : std::min(block * kLane, n1_ - kLane); }

  void Tabulate(const Roots<T>& roots) {
    size_t count = 0, s = 1;
    for (Step& step : columnSteps_) {
      step.twiddles = count;
      if (s > 1) count += 2 * TwiddleCount(step.radix) * s;
      s *= step.radix;
    }
    const size_t columns = count = RoundUp(count);
    s = 1;
    for (Step& step : rowSteps_) {
      step.twiddles = count;
      count += kNumber * TwiddleCount(step.radix) * s;
      s *= step.radix;
    }
    tableBlock_ = count - columns;
    table_ = Table<T>(columns + blocks_ * tableBlock_);

    s = 1;
    for (const Step& step : columnSteps_) {
      T* to = table_.get() + step.twiddles;
      for (size_t k = 0; k < s && s > 1; ++k) {
        ForEachTwiddle(step.radix, s, [&](size_t order, size_t times, size_t plus) {
          const Number<T> w = roots(n_ / order * (times * k + plus));
          *to++ = w.re;
          *to++ = w.im;
        });
      }
      s *= step.radix;
    }
    for (size_t block = 0; block < blocks_; ++block) {
      s = 1;
      for (const Step& step : rowSteps_) {
        T* const to = table_.get() + step.twiddles + block * tableBlock_;
        TabulateRows(D(), roots, step.radix, n_, n1_, s, BlockStart(block), to);
        s *= step.radix;
      }
    }
  }

  // Arrays of which V numbers can be read from anywhere.
  View<const T> Widened(const View<const T>& in, T* to) const {
    T *const re = to, *const im = to + n_ + kLane;
    const D d;
    size_t whole = 0;
    Open(in, [&](const auto& from) {
      for (; whole + kLane <= n_; whole += kLane)
        Store(d, Load(d, from, whole), Array<Form::kSplit, T>{re, im}, whole);
    });
    for (size_t k = whole; k < n_; ++k) {
      const Number<T> x = in.Get(k);
      re[k] = x.re;
      im[k] = x.im;
    }
    std::fill_n(re + n_, kLane, T{0});
    std::fill_n(im + n_, kLane, T{0});
    return {Form::kSplit, re, im};
  }

  // The first n1 numbers of each block are the next of the result: blocks overlap, and the later one is right.
  void StoreNarrow(const View<T>& out, const T* from, size_t rows, size_t count) const {
    const D d;
    for (size_t k = 0; k < count; ++k, from += kNumber) {
      const size_t at = k * rows;
      const Cx<D> x = LoadBlock(d, from);
      if (at + kLane <= n_) {
        Open(out, [&](const auto& to) { Store(d, x, to, at); });
        continue;
      }
      HWY_ALIGN T re[kLane], im[kLane];
      hn::Store(ToMemory(d, x.re), d, re);
      hn::Store(ToMemory(d, x.im), d, im);
      for (size_t i = 0; i < rows; ++i) out.Put(at + i, {re[i], im[i]});
    }
  }

  // Columns of a group of strips, and the transposition of what comes of them.
  void Columns(const Job& job, size_t group, T* scratch) const {
    const size_t first = group * group_, end = std::min(first + group_, strips_);
    // The last strip, if it overlaps the one before, by itself.
    const bool whole = n2_ % kLane == 0 || n2_ < kLane || end < strips_;
    if (whole || end - first > 1) ColumnsOf(job, first * kLane, end - first - !whole, scratch);
    if (!whole) ColumnsOf(job, n2_ - kLane, 1, scratch);
  }

  void ColumnsOf(const Job& job, size_t column, size_t count, T* scratch) const {
    const D d;
    if (IsFused()) {
      return Open<false>(job.in.From(column), [&](const auto& from) {
        PassTransposed<Fused>(d, from, job.matrix + column * kNumber, n2_, count, part_);
      });
    }
    const size_t row = count * kNumber;
    T* a = scratch;
    T* b = scratch + n1_ * row;
    T* const work = b + n1_ * row;
    size_t s = 1;
    for (const Step& step : columnSteps_) {
      const size_t m = n1_ / s / step.radix;
      const T* const from = a;
      const Geometry shape = {m, s, count, s == 1 ? n2_ : s * row, row, kNumber, s * row, row, kNumber, 0};
      if (s == 1) {
        Geometry first = shape;
        first.inGroup = kLane;
        Take<Twiddles::kNone>(step, job.in.From(column), b, first, table_.get(), work);
      } else {
        Take<Twiddles::kShared>(step, from, b, shape, table_.get() + step.twiddles, work);
      }
      std::swap(a, b);
      s *= step.radix;
    }
    if (rowSteps_.empty()) return StoreNarrow(job.out, a, 1, n1_);
    // Where there are fewer rows than lanes, what stands behind them goes to lanes that nobody reads.
    for (size_t block = 0; block < blocks_; ++block) {
      for (size_t q = 0; q < count; ++q) {
        T* const to = job.matrix + block * part_ + (column + q * kLane) * kNumber;
        Vec<D> re[kLane], im[kLane];
        Unrolled<kLane>([&](auto t) TZM_LAMBDA {
          const Cx<D> x = LoadBlock(d, a + std::min(BlockStart(block) + InOrder<D>(t), n1_ - 1) * row + q * kNumber);
          re[t] = x.re;
          im[t] = x.im;
        });
        StoreTransposed(d, re, im, to);  // there is room for V columns
      }
    }
  }

  // A group of blocks of rows. The last block, if it overlaps the one before, by itself.
  void RowsOf(const Job& job, size_t group, T* scratch) const {
    if (rowSteps_.empty()) return;
    const size_t first = group * group_, end = std::min(first + group_, blocks_);
    const bool whole = n1_ % kLane == 0 || n1_ < kLane || end < blocks_;
    if (whole || end - first > 1) RowBlocks(job, first, end - first - !whole, scratch);
    if (!whole) RowBlocks(job, end - 1, 1, scratch);
  }

  void RowBlocks(const Job& job, size_t first, size_t count, T* scratch) const {
    const T* const table = table_.get() + first * tableBlock_;
    T* const work = scratch + std::min(group_, blocks_) * part_;
    const T* last = nullptr;
    size_t s = 1;
    for (size_t q = 0; q < count; ++q) {
      T* a = job.matrix + (first + q) * part_;
      T* b = scratch + q * part_;
      s = 1;
      for (size_t k = 0; k + (n1_ >= kLane) < rowSteps_.size(); ++k) {
        const size_t row = s * kNumber;
        Take<Twiddles::kLanes>(rowSteps_[k], static_cast<const T*>(a), b,
                               {n2_ / s / rowSteps_[k].radix, s, 1, row, kNumber, 0, row, kNumber, 0, 0},
                               table + q * tableBlock_ + rowSteps_[k].twiddles, work);
        std::swap(a, b);
        s *= rowSteps_[k].radix;
      }
      if (q == 0) last = a;
    }
    if (n1_ < kLane) return StoreNarrow(job.out, last, n1_, n2_);
    const View<T> out = job.out.From(BlockStart(first));
    Take<Twiddles::kLanes>(rowSteps_.back(), last, out,
                           {1, s, count, s * kNumber, kNumber, part_, n1_ * s, n1_, kLane, tableBlock_},
                           table + rowSteps_.back().twiddles, work);
  }

  // One pass.
  template <Twiddles kKind>
  void Take(const Step& step, const auto& in, const auto& out, const Geometry& shape, const T* twiddles,
            T* work) const {
    const D d;
    WithLevels(step.radix, [&]<class Levels>(const Levels&) {
      constexpr bool kMiddle = kKind == Twiddles::kLanes && std::is_pointer_v<std::remove_cvref_t<decltype(out)>>;
      if constexpr (std::is_same_v<Levels, AnyPrime>) {
        const auto prime = std::find_if(primes_.begin(), primes_.end(),
                                        [&](const auto& other) { return other.p() == step.radix; });
        PassPrime<kKind>(d, *prime, in, out, shape, twiddles, work);
      } else if constexpr (kKind != Twiddles::kNone || Levels::kRadix != 9) {
        Open<Levels::kRadix % 2 == 1>(in, [&](const auto& from) {
          Open<Levels::kRadix % 2 == 1>(out, [&](const auto& to) {
            Pass<Levels, kKind, !kMiddle>(d, from, to, shape, twiddles);
          });
        });
      }
    });
  }

  size_t n_, workers_, n1_, n2_, blocks_, strips_, group_;
  size_t part_;        // of a block of rows in the matrix
  size_t tableBlock_;  // of its twiddles
  size_t narrow_, worker_;
  std::vector<Step> columnSteps_, rowSteps_;
  std::vector<Prime<T>> primes_;
  Table<T> table_;
  mutable Helpers::Experience experience_;
};

}  // namespace tzm::fft
