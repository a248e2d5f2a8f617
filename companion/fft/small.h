// Complex transforms of lengths whose passes the compiler knows: powers of two from 8 to 16,384, and primes.
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
  static constexpr size_t kPoints = Rows::kRadix * Columns::kRadix;
  static constexpr bool kReal = kPoints <= kLongestWhole;

 public:
  Small() { this->storesHalf_ = kReal; }

  void Run(const View<const T>& in, const View<T>& out, T*, Helpers&) const override {
    OpenBoth<kReal>(in, out, [&](const auto& from, const auto& to) { Take(from, to); });
  }

 private:
  void Take(auto from, auto to) const {
    const D d;
    const T* const roots = Opaque(kRoots.data());
    constexpr size_t kRowCount = Rows::kRadix, kColumnCount = Columns::kRadix;
    fft::Rows<kRowCount, D, decltype(from)> rows(d, from, kColumnCount);
    fft::Rows<kColumnCount, D, decltype(to)> results(d, to, kRowCount);
    Cx<D> matrix[kRowCount / kLanes][kColumnCount];
    Unrolled<kColumnCount / kLanes>([&](auto strip) TZM_LAMBDA {
      Cx<D> x[kRowCount];
      Rows::First(d, [&](auto i) TZM_LAMBDA { return Load(d, rows.Next(i, strip * kLanes), 0); },
                  [&](auto t, const Cx<D>& result) TZM_LAMBDA { x[t] = result; });
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
      Columns::Next(d, [&](auto i) TZM_LAMBDA { return matrix[block][i]; },
                    [&](size_t q) TZM_LAMBDA { return LoadBlock(d, roots + block * kTable + q * kNumber); },
                    [&](auto t, const Cx<D>& x) TZM_LAMBDA {
                      Put<block * kLanes + t * kRowCount>(d, x, results.Next(t, block * kLanes), to);
                    });
    });
  }

  // The results from kAt on, which are the next of a row.
  template <size_t kAt, Form kForm>
  static TZM_INLINE void Put(D d, const Cx<D>& x, const Array<kForm, T>& next, const Array<kForm, T>& to) {
    if constexpr (kForm != Form::kReal) {
      Store(d, x, next, 0);
    } else if constexpr (kAt < kPoints / 2) {
      Store(d, x, Array<Form::kPairs, T>{to.re, nullptr}, kAt);
    } else if constexpr (kAt == kPoints / 2) {
      StoreElement(hn::GetLane(x.re), to.re + 2 * kAt);
      StoreElement(hn::GetLane(x.im), to.re + 2 * kAt + 1);
    }
  }

  static constexpr size_t kRootCount = Rows::kRadix / kLanes * kTable;
  alignas(kLine) static constexpr std::array<T, kRootCount> kRoots = [] {
    std::array<T, kRootCount> table = {};
    T* to = table.data();
    for (size_t row = 0; row < Rows::kRadix; row += kLanes)
      to = TabulateRows(D(), KnownRoots<T, kPoints>(), Columns::kRadix, kPoints, Rows::kRadix, 1, row, to);
    return table;
  }();
};

// The schedule of Matrix in passes whose shape the compiler knows: the first takes so many levels along the columns,
// the others so many each along the rows.
template <class T, size_t kFirst, size_t... kLater>
class Fixed final : public Complex<T> {
  using D = Full<T>;
  static constexpr size_t kNumber = kBlock<D>, kRows = size_t{1} << kFirst, kColumns = size_t{1} << (kLater + ...);
  static constexpr size_t kPart = kColumns * kNumber;  // a block of rows

 public:
  Fixed() {
    this->scratch_ = (kRows / kLanes<D> + 1) * kPart;
    size_t count = 0, s = 1;
    ((count += kNumber * PowerOfTwo<kLater>::kTwiddles * s, s <<= kLater), ...);
    table_ = Table<T>(kRows / kLanes<D> * count);
    const Roots<T> roots(kRows * kColumns);
    T* to = table_.get();
    for (size_t row = 0; row < kRows; row += kLanes<D>) {
      s = 1;
      ((to = TabulateRows(D(), roots, size_t{1} << kLater, kRows * kColumns, kRows, s, row, to), s <<= kLater), ...);
    }
  }

  void Run(const View<const T>& in, const View<T>& out, T* scratch, Helpers&) const override {
    Open<false>(in, [&](const auto& from) TZM_LAMBDA {
      PassTransposed<PowerOfTwo<kFirst>>(D(), from, scratch + kPart, kColumns, kColumns / kLanes<D>, kPart);
    });
    const T* table = table_.get();
    for (size_t row = 0; row < kRows; row += kLanes<D>)
      table = Row<1, kLater...>(scratch + (row / kLanes<D> + 1) * kPart, scratch, out.From(row), table);
  }

 private:
  // The passes along a block of rows that follow on s results of each column; returns the end of their table.
  template <size_t s, size_t kLevels, size_t... kOthers>
  static TZM_INLINE const T* Row(T* from, T* other, const View<T>& out, const T* table) {
    using Levels = PowerOfTwo<kLevels>;
    constexpr size_t kCount = kColumns / s / Levels::kRadix, kRow = s * kNumber;
    const auto pass = [=](const auto& to, size_t outRow, size_t outStep) TZM_LAMBDA {
      Pass<Levels, Twiddles::kLanes, false>(D(), static_cast<const T*>(from), to,
                                            {kCount, s, 1, kRow, kNumber, 0, outRow, outStep, 0, 0}, table);
    };
    const T* const end = table + kNumber * Levels::kTwiddles * s;
    if constexpr (sizeof...(kOthers) == 0) {
      Open<false>(out, [&](const auto& to) TZM_LAMBDA { pass(to, kRows * s, kRows); });
      return end;
    } else {
      pass(other, kRow, kNumber);
      return Row<s * Levels::kRadix, kOthers...>(other, from, out, end);
    }
  }

  Table<T> table_;
};

// A prime number of points that has no pass.
template <class T>
class Lone final : public Complex<T> {
 public:
  explicit Lone(size_t p) : prime_(p) {
    this->scratch_ = 2 * p;
    this->storesHalf_ = true;
  }
  void Run(const View<const T>& in, const View<T>& out, T* scratch, Helpers&) const override {
    const auto run = [&](auto d) {
      if (in.form == Form::kReal) TransformRealPrime(d, prime_, in.re, out.re, scratch);
      else TransformPrime(d, prime_, in, out, scratch);
    };
    if (prime_.pairs() <= 8) run(hn::CappedTag<T, 8>());
    else run(Full<T>());
  }

 private:
  Prime<T> prime_;
};

}  // namespace tzm::fft
