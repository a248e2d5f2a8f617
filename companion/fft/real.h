// Transforms between n real numbers and the n/2 + 1 first bins of their spectrum.
#pragma once

#include "passes.h"
#include "roots.h"
#include "transform.h"

#include <cstring>

namespace tzm::fft {

// An even length above 16 through a complex transform of half of it, another through one of its own length.
template <class T>
class Real {
  using D = Full<T>;
  static constexpr size_t kLane = kLanes<D>;
  static constexpr size_t kShort = 32;  // points that are not halved and need no work area

 public:
  Real(size_t n, size_t workers)
      : n_(n), half_(n / 2), complex_(MakeComplex<T>(IsHalved() ? half_ : n, workers)), table_(IsHalved() ? half_ : 0) {
    scratch_ = complex_->Scratch() + (IsHalved() || n <= kShort ? 0 : 2 * n + kLine);
    if (!IsHalved()) return;
    const Roots<T> roots(n);
    T *const re = table_.get(), *const im = re + half_ / 2;
    for (size_t k = 1; k < (half_ + 1) / 2; ++k) {
      const Number<T> w = roots(k);
      re[k - 1] = w.re;
      im[k - 1] = w.im;
    }
  }
  size_t Scratch() const { return scratch_; }

  void Forward(const T* in, T* out, T* scratch, Helpers& helpers) const {
    if (!IsHalved()) {
      T few[2 * kShort];
      T* const whole = n_ <= kShort ? few : scratch;
      complex_->Run({Form::kReal, in, nullptr}, {Form::kPairs, whole, nullptr}, Rest(scratch), helpers);
      std::memcpy(static_cast<void*>(out), whole, 2 * (half_ + 1) * sizeof(T));
      StoreElement(T{0}, out + 1);
      if (n_ % 2 == 0) StoreElement(T{0}, out + n_ + 1);
      return;
    }
    complex_->Run({Form::kPairs, in, nullptr}, {Form::kPairs, out, nullptr}, scratch, helpers);
    const View<T> bins = {Form::kPairs, out, nullptr};
    const Number<T> first = bins.Get(0);
    bins.Put(0, {first.re + first.im, 0});
    bins.Put(half_, {first.re - first.im, 0});
    if (half_ % 2 == 0) bins.Put(half_ / 2, {bins.Get(half_ / 2).re, -bins.Get(half_ / 2).im});
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
  }

  void Inverse(const T* in, T* out, T* scratch, Helpers& helpers) const {
    const View<const T> bins = {Form::kPairs, in, nullptr};
    if (!IsHalved()) {
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
      return;
    }
    const Number<T> first = bins.Get(0), last = bins.Get(half_);
    const Number<T> middle = bins.Get(half_ / 2);
    ForEachPair(in, out, [](auto d, auto& a, auto& b, auto w) TZM_LAMBDA {
      (void)d;
      const std::remove_reference_t<decltype(a)> even = {hn::Add(a.re, b.re), hn::Sub(a.im, b.im)};
      const std::remove_reference_t<decltype(a)> odd = {hn::Sub(a.re, b.re), hn::Add(a.im, b.im)};
      w.im = hn::Neg(w.im);
      const auto turned = Product(w, odd);
      a = {hn::Sub(even.re, turned.im), hn::Add(even.im, turned.re)};
      b = {hn::Add(even.re, turned.im), hn::Sub(turned.re, even.im)};
    });
    const View<T> numbers = {Form::kPairs, out, nullptr};
    numbers.Put(0, {first.re + last.re, first.re - last.re});
    if (half_ % 2 == 0) numbers.Put(half_ / 2, {2 * middle.re, -2 * middle.im});
    complex_->Run({Form::kExchanged, out, nullptr}, {Form::kExchanged, out, nullptr}, scratch, helpers);
  }

 private:
  bool IsHalved() const { return n_ % 2 == 0 && n_ > 16; }
  T* Rest(T* scratch) const { return n_ <= kShort ? scratch : scratch + (2 * n_ + kLine) / kLine * kLine; }

  // f(tag, a, b, w) on all pairs a = x[k], b = x[n/2 - k] below the middle, w = exp(-2 pi i k / n).
  void ForEachPair(const T* in, T* out, auto f) const {
    const View<const T> from = {Form::kPairs, in, nullptr};
    const View<T> to = {Form::kPairs, out, nullptr};
    const T *const re = table_.get(), *const im = re + half_ / 2;
    const size_t end = (half_ + 1) / 2;
    const D d;
    size_t k = 1;
    for (; k + kLane <= end; k += kLane) {
      Cx<D> a, b;
      const size_t mirror = half_ - k - (kLane - 1);
      hn::LoadInterleaved2(d, in + 2 * k, a.re, a.im);
      hn::LoadInterleaved2(d, in + 2 * mirror, b.re, b.im);
      b = {hn::Reverse(d, b.re), hn::Reverse(d, b.im)};
      f(d, a, b, Cx<D>{hn::LoadU(d, re + k - 1), hn::LoadU(d, im + k - 1)});
      hn::StoreInterleaved2(a.re, a.im, d, out + 2 * k);
      hn::StoreInterleaved2(hn::Reverse(d, b.re), hn::Reverse(d, b.im), d, out + 2 * mirror);
    }
    const hn::CappedTag<T, 1> one;
    for (; k < end; ++k) {
      const auto set = [=](Number<T> x) { return Cx<decltype(one)>{hn::Set(one, x.re), hn::Set(one, x.im)}; };
      const auto get = [](const auto& x) { return Number<T>{hn::GetLane(x.re), hn::GetLane(x.im)}; };
      auto a = set(from.Get(k)), b = set(from.Get(half_ - k));
      f(one, a, b, set({re[k - 1], im[k - 1]}));
      to.Put(k, get(a));
      to.Put(half_ - k, get(b));
    }
  }

  size_t n_, half_, scratch_;
  std::unique_ptr<Complex<T>> complex_;
  Table<T> table_;  // the roots 1 ... n/4 of n: real parts, imaginary parts
};

}  // namespace tzm::fft
