// Transforms between n real numbers and the n/2 + 1 first bins of their spectrum.
#pragma once

#include "passes.h"
#include "roots.h"
#include "transform.h"

#include <algorithm>
#include <cstring>

namespace tzm::fft {

// An even length above kLongestWhole through a complex transform of half of it, another through one of its own length.
template <class T>
class Real {
  static constexpr size_t kShort = 32;  // points that are not halved and need no work area

 public:
  Real(size_t n, size_t workers)
      : n_(n), half_(n / 2), pairs_((half_ - 1) / 2), complex_(MakeComplex<T>(IsHalved() ? half_ : n, workers)) {
    scratch_ = complex_->Scratch() + (IsHalved() || n <= kShort ? 0 : 2 * n + kLine);
    if (!IsHalved()) return;
    WithLanes(half_ / 2, [&](auto d) {
      using D = decltype(d);
      if (half_ % (2 * kLanes<D>) == 0) ++pairs_;  // the middle with itself, which fills the last register
      const Roots<T> roots(n);
      table_ = Table<T>((pairs_ + kLanes<D> - 1) / kLanes<D> * kBlock<D>);
      T* to = table_.get();
      for (size_t first = 0; first < pairs_; first += kLanes<D>, to += kBlock<D>) {
        for (size_t lane = 0; lane < kLanes<D>; ++lane) {
          const Number<T> w = roots(1 + std::min(first, pairs_ - kLanes<D>) + InOrder<D>(lane));
          to[lane] = w.re;
          to[kLanes<D> + lane] = w.im;
        }
      }
    });
  }
  size_t Scratch() const { return scratch_; }

  void Forward(const T* in, T* out, T* scratch, Helpers& helpers) const {
    return IsHalved() ? ForwardHalved(in, out, scratch, helpers) : ForwardWhole(in, out, scratch, helpers);
  }
  void Inverse(const T* in, T* out, T* scratch, Helpers& helpers) const {
    return IsHalved() ? InverseHalved(in, out, scratch, helpers) : InverseWhole(in, out, scratch, helpers);
  }

 private:
  bool IsHalved() const { return n_ % 2 == 0 && n_ > kLongestWhole; }
  T* Rest(T* scratch) const { return n_ <= kShort ? scratch : scratch + (2 * n_ + kLine) / kLine * kLine; }

  static Number<T> Pair(const T* from) { return {LoadElement(from), LoadElement(from + 1)}; }
  static void PutPair(T re, T im, T* to) {
    StoreElement(re, to);
    StoreElement(im, to + 1);
  }

  // Functions of their own, which take the room of their variables only when they are called.
  HWY_NOINLINE void ForwardHalved(const T* in, T* out, T* scratch, Helpers& helpers) const {
    complex_->Run({Form::kPairs, in, nullptr}, {Form::kPairs, out, nullptr}, scratch, helpers);
    const size_t h = half_;  // by itself: a store to `out` might change a member
    const Number<T> first = Pair(out), middle = Pair(out + h);  // there is a middle if h is even
    PutPair(first.re + first.im, 0, out);
    PutPair(first.re - first.im, 0, out + 2 * h);
    ForEachPair(out, out, [](auto d, auto& a, auto& b, const auto& w) TZM_LAMBDA {
      const auto half = hn::Set(d, T{0.5});
      const auto re = hn::Mul(half, b.re), im = hn::Mul(half, b.im);
      std::remove_reference_t<decltype(a)> even = {hn::MulAdd(half, a.re, re), hn::MulSub(half, a.im, im)};
      const std::remove_reference_t<decltype(a)> odd = {hn::MulAdd(half, a.im, im), hn::NegMulAdd(half, a.re, re)};
      b = odd;
      Combine(even, b, Product(w, odd));
      a = even;
      b.im = hn::Neg(b.im);
    });
    if (h % 2 == 0) PutPair(middle.re, -middle.im, out + h);
  }

  HWY_NOINLINE void InverseHalved(const T* in, T* out, T* scratch, Helpers& helpers) const {
    const Number<T> first = Pair(in), middle = Pair(in + half_ / 2 * 2), last = Pair(in + 2 * half_);
    ForEachPair(in, out, [](auto d, auto& a, auto& b, auto w) TZM_LAMBDA {
      (void)d;
      const std::remove_reference_t<decltype(a)> even = {hn::Add(a.re, b.re), hn::Sub(a.im, b.im)};
      const std::remove_reference_t<decltype(a)> odd = {hn::Sub(a.re, b.re), hn::Add(a.im, b.im)};
      w.im = hn::Neg(w.im);
      const auto turned = Product(w, odd);
      a = {hn::Sub(even.re, turned.im), hn::Add(even.im, turned.re)};
      b = {hn::Add(even.re, turned.im), hn::Sub(turned.re, even.im)};
    });
    PutPair(first.re + last.re, first.re - last.re, out);
    if (half_ % 2 == 0) PutPair(2 * middle.re, -2 * middle.im, out + half_);
    complex_->Run({Form::kExchanged, out, nullptr}, {Form::kExchanged, out, nullptr}, scratch, helpers);
  }

  HWY_NOINLINE void ForwardWhole(const T* in, T* out, T* scratch, Helpers& helpers) const {
    if (complex_->StoresHalf()) {
      complex_->Run({Form::kReal, in, nullptr}, {Form::kReal, out, nullptr}, scratch, helpers);
    } else {
      T few[2 * kShort];
      T* const whole = n_ <= kShort ? few : scratch;
      complex_->Run({Form::kReal, in, nullptr}, {Form::kPairs, whole, nullptr}, Rest(scratch), helpers);
      std::memcpy(static_cast<void*>(out), whole, 2 * (half_ + 1) * sizeof(T));
    }
    StoreElement(T{0}, out + 1);
    if (n_ % 2 == 0) StoreElement(T{0}, out + n_ + 1);
  }
  HWY_NOINLINE void InverseWhole(const T* in, T* out, T* scratch, Helpers& helpers) const {
    const View<const T> bins = {Form::kPairs, in, nullptr};
    T few[2 * kShort];
    T *const re = n_ <= kShort ? few : scratch, *const im = re + n_;
    re[0] = bins.Get(0).re;
    im[0] = 0;
    for (size_t k = 1; k <= half_; ++k) {
      const Number<T> x = bins.Get(k);
      re[k] = re[n_ - k] = x.re;
      im[k] = x.im;
      im[n_ - k] = -x.im;
    }
    if (n_ % 2 == 0) im[half_] = 0;
    complex_->Run({Form::kSplit, im, re}, {Form::kSplit, im, out}, Rest(scratch), helpers);
  }

  // f(tag) with as many lanes as there are pairs to fill.
  static void WithLanes(size_t pairs, auto f) {
    constexpr size_t kMost = kLanes<Full<T>>;
    if constexpr (kMost > 4) if (pairs < kMost) {
      if constexpr (kMost > 8) if (pairs >= 8) return f(hn::CappedTag<T, 8>());
      return f(hn::CappedTag<T, 4>());  // there are four
    }
    f(Full<T>());
  }

  // f(tag, a, b, w) on all pairs a = x[k], b = x[n/2 - k] below the middle, w = exp(-2 pi i k / n), as many at once as
  // there are lanes. The last register ends with the last pair; what it shares with the one before it is computed
  // twice, from numbers that nothing was stored over yet. The middle may be stored over, too.
  void ForEachPair(const T* in, T* out, auto f) const {
    const size_t half = half_, pairs = pairs_;  // by themselves, too
    WithLanes(pairs, [&](auto d) TZM_LAMBDA {
      using D = decltype(d);
      constexpr size_t kLane = kLanes<D>;
      // The addresses of V pairs a and of their b, which `take` and `put` move to the next.
      const auto place = [=](auto* array, size_t k) TZM_LAMBDA {
        return std::pair(Opaque(array + 2 + 2 * k), array + 2 * (half - kLane - k));
      };
      const auto take = [&](auto&& from, const Cx<D>& w, Cx<D>& a, Cx<D>& b) TZM_LAMBDA {
        a = LoadPairs(d, from.first);
        from.first += kBlock<D>;
        b = LoadMirrored(d, from.second);
        f(d, a, b, w);
      };
      const auto put = [&](const Cx<D>& a, const Cx<D>& b, auto&& to) TZM_LAMBDA {
        StorePairs(d, a.re, a.im, to.first);
        to.first += kBlock<D>;
        StoreMirrored(d, b, to.second);
      };
      const size_t rest = pairs % kLane, last = pairs - kLane;
      const T* w = table_.get();
      const T* const end = w + 2 * (pairs - rest);
      auto from = place(in, 0);
      auto to = place(out, 0);
      Cx<D> a, b, lastA, lastB;
      if (rest != 0) take(place(in, last), LoadBlock(d, end), lastA, lastB);
      while (w != end) {
        take(from, LoadMoving<1>(d, w), a, b);
        put(a, b, to);
      }
      if (rest != 0) put(lastA, lastB, place(out, last));
    });
  }

  size_t n_, half_, pairs_, scratch_;
  std::unique_ptr<Complex<T>> complex_;
  Table<T> table_;  // the roots 1 ... n/4 of n, in registers in the order of their use
};

}  // namespace tzm::fft
