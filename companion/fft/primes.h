// Complex transforms of lengths with a large prime factor: a convolution through transforms of another length.
#pragma once

#include "matrix.h"
#include "spectrum.h"

namespace tzm::fft {

// Bluestein's: with the chirp c[j] = exp(-pi i j^2 / n), result k is c[k] times the sum of x[j] c[j] conj c[k - j]. The
// spectrum of conj c / size is correctly rounded, so that it adds next to nothing to the error of two transforms.
template <class T>
class Chirp final : public Complex<T> {
  using D = Full<T>;
  static constexpr size_t kLane = kLanes<D>;

 public:
  Chirp(size_t n, size_t workers)
      : n_(n), size_(Size(n)), half_(size_ / 2), stride_(size_ + kLine / sizeof(T)), chirp_(2 * n),
        kernel_(2 * (half_ + 1)) {
    const Roots<Wide<double>> roots(2 * n);
    const Wide<double> scale = Wide<double>{1, 0} / static_cast<double>(size_);
    size_t square = 0;  // j^2 modulo 2n
    EvenSpectrum(size_).Run(
        [&](size_t j) {
          if (j >= n) return Number<Wide<double>>{};
          const auto c = roots(square);
          square = (square + 2 * j + 1) % (2 * n);
          chirp_.get()[j] = Rounded<T>(c.re);
          chirp_.get()[n + j] = Rounded<T>(c.im);
          return scale * Number<Wide<double>>{c.re, -c.im};
        },
        [&](size_t k, const auto& bin) {
          kernel_.get()[k] = Rounded<T>(bin.re);
          kernel_.get()[half_ + 1 + k] = Rounded<T>(bin.im);
        });
    inner_ = MakeComplex<T>(size_, workers);
    this->scratch_ = 2 * stride_ + inner_->Scratch();
  }

  void Run(const View<const T>& in, const View<T>& out, T* scratch, Helpers& helpers) const override {
    T *const re = scratch, *const im = re + stride_, *const rest = im + stride_;
    Rotate(in, View<T>{Form::kSplit, re, im});
    std::fill(re + n_, re + size_, T{0});
    std::fill(im + n_, im + size_, T{0});
    inner_->Run({Form::kSplit, re, im}, {Form::kSplit, re, im}, rest, helpers);
    const D d;
    const auto multiply = [&](size_t k, const Cx<D>& by) TZM_LAMBDA {
      const Cx<D> product = Product(by, Cx<D>{hn::LoadU(d, re + k), hn::LoadU(d, im + k)});
      hn::StoreU(product.re, d, re + k);
      hn::StoreU(product.im, d, im + k);
    };
    const T *const kernelRe = kernel_.get(), *const kernelIm = kernelRe + half_ + 1;
    for (size_t k = 0; k < half_; k += kLane) {
      const size_t mirror = half_ - k - (kLane - 1);
      multiply(k, {hn::LoadU(d, kernelRe + k), hn::LoadU(d, kernelIm + k)});
      multiply(half_ + k, {hn::Reverse(d, hn::LoadU(d, kernelRe + mirror)),
                           hn::Reverse(d, hn::LoadU(d, kernelIm + mirror))});
    }
    inner_->Run({Form::kSplit, im, re}, {Form::kSplit, im, re}, rest, helpers);
    Rotate(View<const T>{Form::kSplit, re, im}, out);
  }

 private:
  // A power of two, or three, five, nine or fifteen times one, that the convolution does not fold. As n is above
  // kLargestFactor, it is a multiple of 32.
  static size_t Size(size_t n) {
    size_t best = 0;
    for (size_t size : {8, 24, 40, 72, 120}) {
      while (size < 2 * n - 1) size *= 2;
      if (best == 0 || size < best) best = size;
    }
    return best;
  }

  // The first n numbers times the chirp.
  void Rotate(const View<const T>& from, const View<T>& to) const {
    const D d;
    const T *const re = chirp_.get(), *const im = re + n_;
    size_t k = 0;
    const Array<Form::kSplit, const T> chirp = {re, im};
    Open(from, [&](const auto& source) {
      Open<false>(to, [&](const auto& target) {
        for (; k + kLane <= n_; k += kLane)
          Store(d, Product(Load(d, chirp, k), Load(d, source, k)), target, k);
      });
    });
    for (; k < n_; ++k) {
      const Number<T> x = from.Get(k);
      to.Put(k, {Fma(-im[k], x.im, re[k] * x.re), Fma(im[k], x.re, re[k] * x.im)});
    }
  }

  size_t n_, size_, half_, stride_;
  Table<T> chirp_;   // n real parts, n imaginary ones
  Table<T> kernel_;  // numbers 0 ... half of a symmetric spectrum: real parts, imaginary parts
  std::unique_ptr<Complex<T>> inner_;
};

}  // namespace tzm::fft
