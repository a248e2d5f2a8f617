// A transform in double-double arithmetic, whose results can be correctly rounded: for the tables of convolutions.
#pragma once

#include "roots.h"
#include "transform.h"

namespace tzm::fft {

// The spectrum of `size` numbers with x[size - j] = x[j], through a transform of half as many: of
// (x[j] + x[half - j])/2 - sin(pi j/half) (x[j] - x[half - j]). The sums of its numbers k and half - k are the even
// bins, and i times their differences is what each odd bin has more than the one before. The operations on each number
// and their order do not depend on the lanes.
class EvenSpectrum {
  using D = hn::CappedTag<double, 4>;
  using Row = Number<Wide<Vec<D>>>;  // a number in each lane
  using One = Number<Wide<double>>;
  static constexpr size_t kLane = kLanes<D>, kRow = 4 * kLane;

 public:
  // `size` is a multiple of 32 without factors above 5.
  explicit EvenSpectrum(size_t size)
      : half_(size / 2), rows_(half_ / kLane), apart_(half_ + 1), roots_(size), numbers_(4 * apart_),
        matrix_(4 * half_) {}

  // put(k, bin) for the bins 0 ... half of the numbers get(0), get(1) ... get(half), asked for in this order.
  void Run(auto&& get, auto&& put) {
    const D d;
    double *const numbers = numbers_.get(), *const last = numbers + half_;
    const auto forEachPair = [&](auto&& f) TZM_LAMBDA {
      for (size_t j = 0; j < half_ / 2; j += kLane) {
        double* const mirror = last - j - (kLane - 1);
        f(j, GetParts(d, numbers + j, apart_), Reversed(GetParts(d, mirror, apart_)), mirror);
      }
    };
    for (size_t j = 0; j <= half_; ++j) PutParts(get(j), numbers + j, apart_);
    One odd = GetParts(last, apart_) - GetParts(numbers, apart_);
    const auto add = [&](const One& x) { odd = Normalized(odd + x); };
    const Row halves = InAll({{0.5, 0}, {0, 0}});
    forEachPair([&](size_t j, const Row& a, const Row& b, double* mirror) TZM_LAMBDA {
      const Row w = FromLanes(d, [&](size_t lane) { return roots_(j + lane); });
      const Row difference = a - b, mean = halves.re * (a + b), turned = w.im * difference;
      PutParts(mean + turned, numbers + j, apart_);
      PutParts(Reversed(mean - turned), mirror, apart_);
      ForEachLane(w.re * difference, [&](size_t, const One& x) { add(x + x); });
    });
    Columns(0, 1, matrix_.get());
    for (size_t k = 0; k < rows_; k += kLane) Rows(k);
    PutParts(GetParts(numbers, apart_), last, apart_);
    forEachPair([&](size_t k, const Row& a, const Row& b, double*) TZM_LAMBDA {
      ForEachLane(a + b, [&](size_t lane, const One& x) { put(2 * (k + lane), x); });
      ForEachLane(a - b, [&](size_t lane, const One& x) {
        add({-x.im, x.re});
        put(2 * (k + lane) + 1, odd);
      });
    });
    const One middle = GetParts(numbers + half_ / 2, apart_);
    put(half_, middle + middle);
  }

 private:
  // The columns of the rows first, first + stride ..., transformed, to as many rows from `to` on.
  void Columns(size_t first, size_t stride, double* to) {
    const size_t n = rows_ / stride;
    if (n == 1) return Put(GetParts(D(), numbers_.get() + first * kLane, apart_), to);
    const size_t radix = n % 2 == 0 ? 2 : n % 3 == 0 ? 3 : 5, s = n / radix;
    for (size_t j = 0; j < radix; ++j) Columns(first + j * stride, stride * radix, to + j * s * kRow);
    const auto level = [&](auto r) {
      constexpr size_t kRadix = r, kPairs = kRadix / 2;
      for (size_t k = 0; k < s; ++k) {
        const auto place = [&](size_t t) TZM_LAMBDA { return to + (t * s + k) * kRow; };
        Row b[kRadix];
        for (size_t j = 0; j < kRadix; ++j) {
          b[j] = Get(place(j));
          if (j * k > 0) b[j] = InAll(roots_(2 * j * k * stride * kLane)) * b[j];
        }
        if constexpr (kRadix == 2) {
          Put(b[0] + b[1], place(0));
          Put(b[0] - b[1], place(1));
        } else {
          Row all = b[0], sum[kPairs], difference[kPairs];
          for (size_t i = 0; i < kPairs; ++i) {
            sum[i] = b[1 + i] + b[kRadix - 1 - i];
            difference[i] = b[1 + i] - b[kRadix - 1 - i];
            all = all + sum[i];
          }
          Put(all, place(0));
          for (size_t t = 1; t <= kPairs; ++t) {
            Row even = b[0], odd = InAll({});
            for (size_t i = 0; i < kPairs; ++i) {
              const Row w = InAll(roots_(2 * half_ / kRadix * (t * (1 + i) % kRadix)));
              even = even + w.re * sum[i];
              odd = odd + w.im * difference[i];
            }
            Put({even.re - odd.im, even.im + odd.re}, place(t));
            Put({even.re + odd.im, even.im - odd.re}, place(kRadix - t));
          }
        }
      }
    };
    if (radix == 5) level(std::integral_constant<size_t, 5>());
    else if (radix == 3) level(std::integral_constant<size_t, 3>());
    else level(std::integral_constant<size_t, 2>());
  }

  // The rows k, k + 1 ..., as many as there are lanes, transformed: result t of them goes to the numbers from
  // rows_ t + k on.
  void Rows(size_t k) {
    const D d;
    Vec<D> part[4][kLane];
    Unrolled<4>([&](auto p) TZM_LAMBDA {
      Unrolled<kLane>([&](auto t) TZM_LAMBDA {
        part[p][t] = hn::Load(d, matrix_.get() + (k + t) * kRow + p * kLane);
      });
      Transpose(d, part[p]);
    });
    Row x[kLane];  // in the order of reversed bits
    Unrolled<kLane>([&](auto t) TZM_LAMBDA {
      x[t % 2 * (kLane / 2) + t / 2] = {{part[0][t], part[1][t]}, {part[2][t], part[3][t]}};
    });
    for (size_t s = 1; s < kLane; s *= 2) {
      for (size_t j = 0; j < s; ++j) {
        const Row w = FromLanes(d, [&](size_t lane) { return roots_((k + lane + rows_ * j) * (kLane / s)); });
        for (size_t first = j; first < kLane; first += 2 * s) {
          const Row a = x[first], b = w * x[first + s];
          x[first] = a + b;
          x[first + s] = a - b;
        }
      }
    }
    for (size_t t = 0; t < kLane; ++t) PutParts(x[t], numbers_.get() + rows_ * t + k, apart_);
  }

  static TZM_INLINE Row Get(const double* from) { return GetParts(D(), from, kLane); }
  static TZM_INLINE void Put(const Row& x, double* to) { PutParts(x, to, kLane); }
  static TZM_INLINE Row InAll(const One& x) {
    const D d;
    return {{hn::Set(d, x.re.hi), hn::Set(d, x.re.lo)}, {hn::Set(d, x.im.hi), hn::Set(d, x.im.lo)}};
  }
  static TZM_INLINE Row Reversed(const Row& x) {
    const D d;
    return {{hn::Reverse(d, x.re.hi), hn::Reverse(d, x.re.lo)}, {hn::Reverse(d, x.im.hi), hn::Reverse(d, x.im.lo)}};
  }

  size_t half_, rows_, apart_;
  Roots<Wide<double>> roots_;
  Table<double> numbers_;  // their four parts, apart_ from each other
  Table<double> matrix_;   // rows, the parts of one kLane from each other
};

}  // namespace tzm::fft
