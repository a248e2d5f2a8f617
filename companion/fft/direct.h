// Levels of a prime radix from 17 on: sums over all pairs of points.
//
// With a primitive root g, pair i is of the points g^i and p - g^i, and a result is number g^a: the factors of pair i
// in it are the cosine and sine of 2 pi g^(a+i) / p. Those of one result stand in a row, and those of the next one
// place further on.
#pragma once

#include "passes.h"
#include "roots.h"

#include <vector>

namespace tzm::fft {

constexpr size_t kLargestFactor = 167;  // beyond it a convolution is faster

template <class T>
class Prime {
 public:
  explicit Prime(size_t p) : p_(p), places_(PowersOfRoot(p)), cos_(p + kLanes<Full<T>>), sin_(p + kLanes<Full<T>>) {
    const Roots<T> roots(p);
    for (size_t k = 0; k < p - 1; ++k) {
      const Number<T> w = roots(places_[k]);
      cos_[k] = w.re;
      sin_[k] = -w.im;
    }
  }
  size_t p() const { return p_; }
  size_t pairs() const { return p_ / 2; }
  size_t place(size_t k) const { return places_[k]; }  // of pair or result k the first point; p less this is the second
  const T* cos() const { return cos_.data(); }
  const T* sin() const { return sin_.data(); }

 private:
  // 1, g, g^2 ... modulo p, of the smallest root for which these are all numbers below p.
  static std::vector<size_t> PowersOfRoot(size_t p) {
    for (size_t g = 2;; ++g) {
      std::vector<size_t> powers = {1};
      while (powers.back() * g % p != 1) powers.push_back(powers.back() * g % p);
      if (powers.size() == p - 1) return powers;
    }
  }

  size_t p_;
  std::vector<size_t> places_;
  std::vector<T> cos_, sin_;
};

// The transform of one array, as many results at once as there are lanes. `scratch` has room for 2 p numbers.
template <class D, class T = hn::TFromD<D>>
void TransformPrime(D d, const Prime<T>& prime, const View<const T>& in, const View<T>& out, T* scratch) {
  const size_t pairs = prime.pairs();
  const Number<T> first = in.Get(0);
  Number<T> total = first;
  for (size_t i = 0; i < pairs; ++i) {
    const Number<T> x = in.Get(prime.place(i)), y = in.Get(prime.p() - prime.place(i));
    T* const pair = scratch + 4 * i;
    pair[0] = x.re + y.re, pair[1] = x.im + y.im, pair[2] = x.re - y.re, pair[3] = x.im - y.im;
    total = {total.re + pair[0], total.im + pair[1]};
  }
  out.Put(0, total);
  for (size_t a = 0; a < pairs; a += hn::Lanes(d)) {
    Cx<D> even = {hn::Set(d, first.re), hn::Set(d, first.im)}, odd;
    for (size_t i = 0; i < pairs; ++i) {
      const T* const pair = scratch + 4 * i;
      const auto c = hn::LoadU(d, prime.cos() + a + i), s = hn::LoadU(d, prime.sin() + a + i);
      even = {hn::MulAdd(c, hn::Set(d, pair[0]), even.re), hn::MulAdd(c, hn::Set(d, pair[1]), even.im)};
      const auto re = hn::Set(d, pair[2]), im = hn::Set(d, pair[3]);
      if (i == 0) odd = {hn::Mul(s, re), hn::Mul(s, im)};
      else odd = {hn::MulAdd(s, re, odd.re), hn::MulAdd(s, im, odd.im)};
    }
    CombineQuarter(even, odd);
    HWY_ALIGN T part[4][kLanes<D>];
    hn::Store(even.re, d, part[0]);
    hn::Store(even.im, d, part[1]);
    hn::Store(odd.re, d, part[2]);
    hn::Store(odd.im, d, part[3]);
    for (size_t lane = 0; lane < std::min(hn::Lanes(d), pairs - a); ++lane) {
      const size_t place = prime.place(a + lane);
      out.Put(place, {part[0][lane], part[1][lane]});
      out.Put(prime.p() - place, {part[2][lane], part[3][lane]});
    }
  }
}

// The same of real numbers, to the pairs 0 ... p/2. All imaginary parts before the last sums are +0.
template <class D, class T = hn::TFromD<D>>
void TransformRealPrime(D d, const Prime<T>& prime, const T* in, T* out, T* scratch) {
  const size_t pairs = prime.pairs();
  const T first = LoadElement(in);
  T total = first;
  for (size_t i = 0; i < pairs; ++i) {
    const T x = LoadElement(in + prime.place(i)), y = LoadElement(in + prime.p() - prime.place(i));
    scratch[2 * i] = x + y, scratch[2 * i + 1] = x - y;
    total += scratch[2 * i];
  }
  StoreElement(total, out);
  for (size_t a = 0; a < pairs; a += hn::Lanes(d)) {
    auto even = hn::Set(d, first), odd = hn::Zero(d);
    for (size_t i = 0; i < pairs; ++i) {
      const auto s = hn::LoadU(d, prime.sin() + a + i), difference = hn::Set(d, scratch[2 * i + 1]);
      even = hn::MulAdd(hn::LoadU(d, prime.cos() + a + i), hn::Set(d, scratch[2 * i]), even);
      odd = i == 0 ? hn::Mul(s, difference) : hn::MulAdd(s, difference, odd);
    }
    HWY_ALIGN T part[2][kLanes<D>];
    hn::Store(even, d, part[0]);
    hn::Store(odd, d, part[1]);
    for (size_t lane = 0; lane < std::min(hn::Lanes(d), pairs - a); ++lane) {
      const size_t place = prime.place(a + lane);
      T* const to = out + 2 * std::min(place, prime.p() - place);
      StoreElement(place <= pairs ? part[0][lane] + 0 : part[0][lane], to);
      StoreElement(place <= pairs ? 0 - part[1][lane] : 0 + part[1][lane], to + 1);
    }
  }
}

// The level as a pass. `scratch` has room for p blocks.
template <Twiddles kKind, class D, class T = hn::TFromD<D>>
HWY_NOINLINE void PassPrime(D d, const Prime<T>& prime, const auto& in, const auto& out, const Geometry& geometry,
                            const T* twiddles, T* scratch) {
  const Geometry g = geometry;
  const size_t pairs = prime.pairs(), radix = prime.p();
  for (size_t p = 0; p < g.count; ++p) {
    const T* w = twiddles;
    for (size_t k = 0; k < g.steps; ++k) {
      for (size_t b = 0; b < g.groups; ++b) {
        const auto point = [&](size_t j) TZM_LAMBDA {
          const Cx<D> x = Load(d, in, (p + j * g.count) * g.inRow + k * g.inStep + b * g.inGroup);
          if (j == 0 || kKind == Twiddles::kNone) return x;
          if (kKind == Twiddles::kLanes) return Product(LoadBlock(d, w + b * g.twiddleGroup + kBlock<D> * (j - 1)), x);
          return Product(Cx<D>{hn::Set(d, w[2 * j - 2]), hn::Set(d, w[2 * j - 1])}, x);
        };
        const auto put = [&](size_t t, const Cx<D>& x) TZM_LAMBDA {
          Store(d, x, out, (p * radix + t) * g.outRow + k * g.outStep + b * g.outGroup);
        };
        const Cx<D> first = point(0);
        Cx<D> total = first;
        for (size_t i = 0; i < pairs; ++i) {
          Cx<D> sum = point(prime.place(i)), difference = point(radix - prime.place(i));
          Combine(sum, difference);
          StoreBlock(d, sum, scratch + 2 * i * kBlock<D>);
          StoreBlock(d, difference, scratch + (2 * i + 1) * kBlock<D>);
          total = {hn::Add(total.re, sum.re), hn::Add(total.im, sum.im)};
        }
        put(0, total);
        for (size_t a = 0; a < pairs; ++a) {
          Cx<D> even = first, odd;
          for (size_t i = 0; i < pairs; ++i) {
            const Cx<D> sum = LoadBlock(d, scratch + 2 * i * kBlock<D>);
            const Cx<D> difference = LoadBlock(d, scratch + (2 * i + 1) * kBlock<D>);
            const auto c = hn::Set(d, prime.cos()[a + i]), s = hn::Set(d, prime.sin()[a + i]);
            even = {hn::MulAdd(c, sum.re, even.re), hn::MulAdd(c, sum.im, even.im)};
            if (i == 0) odd = {hn::Mul(s, difference.re), hn::Mul(s, difference.im)};
            else odd = {hn::MulAdd(s, difference.re, odd.re), hn::MulAdd(s, difference.im, odd.im)};
          }
          CombineQuarter(even, odd);
          put(prime.place(a), even);
          put(radix - prime.place(a), odd);
        }
      }
      if (kKind == Twiddles::kShared) w += 2 * (radix - 1);
      else if (kKind == Twiddles::kLanes) w += kBlock<D> * (radix - 1);
    }
  }
}

}  // namespace tzm::fft
