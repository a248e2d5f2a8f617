// Complex transforms of lengths with a large prime factor: a convolution through transforms of another length.
#pragma once

#include "matrix.h"

namespace tzm::fft {

// Bluestein's: with the chirp c[j] = exp(-pi i j^2 / n), result k is c[k] times the sum of x[j] c[j] conj c[k - j].
template <class T>
class Chirp final : public Complex<T> {
  using D = Full<T>;

 public:
  Chirp(size_t n, size_t workers)
      : n_(n), size_(Size(n)), stride_(size_ + kLine / sizeof(T)), chirp_(2 * n), kernel_(2 * stride_),
        inner_(MakeComplex<T>(size_, workers)) {
    this->scratch_ = 2 * stride_ + inner_->Scratch();
    T *const re = kernel_.get(), *const im = re + stride_;
    std::fill_n(re, 2 * stride_, T{0});
    const Roots<T> roots(2 * n);
    for (size_t j = 0, square = 0; j < n; ++j) {
      const Number<T> c = roots(square);
      chirp_.get()[j] = c.re;
      chirp_.get()[n + j] = c.im;
      for (size_t at : {j, (size_ - j) % size_}) {
        re[at] = c.re / static_cast<T>(size_);
        im[at] = -c.im / static_cast<T>(size_);
      }
      square = (square + 2 * j + 1) % (2 * n);
    }
    Table<T> scratch(inner_->Scratch());
    Helpers none;
    inner_->Run({Form::kSplit, re, im}, {Form::kSplit, re, im}, scratch.get(), none);
  }

  void Run(const View<const T>& in, const View<T>& out, T* scratch, Helpers& helpers) const override {
    T *const re = scratch, *const im = re + stride_, *const rest = im + stride_;
    Rotate(in, View<T>{Form::kSplit, re, im});
    std::fill(re + n_, re + size_, T{0});
    std::fill(im + n_, im + size_, T{0});
    inner_->Run({Form::kSplit, re, im}, {Form::kSplit, re, im}, rest, helpers);
    const D d;
    const T *const kernelRe = kernel_.get(), *const kernelIm = kernelRe + stride_;
    for (size_t k = 0; k < size_; k += kLanes<D>) {  // the arrays have room for whole registers
      const Cx<D> product = Product(Cx<D>{hn::LoadU(d, kernelRe + k), hn::LoadU(d, kernelIm + k)},
                                    Cx<D>{hn::LoadU(d, re + k), hn::LoadU(d, im + k)});
      hn::StoreU(product.re, d, re + k);
      hn::StoreU(product.im, d, im + k);
    }
    inner_->Run({Form::kSplit, im, re}, {Form::kSplit, im, re}, rest, helpers);
    Rotate(View<const T>{Form::kSplit, re, im}, out);
  }

 private:
  // A power of two, or three, five, nine or fifteen times one, that the convolution does not fold.
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
      Open(to, [&](const auto& target) {
        for (; k + kLanes<D> <= n_; k += kLanes<D>)
          Store(d, Product(Load(d, chirp, k), Load(d, source, k)), target, k);
      });
    });
    for (; k < n_; ++k) {
      const Number<T> x = from.Get(k);
      to.Put(k, {Fma(-im[k], x.im, re[k] * x.re), Fma(im[k], x.re, re[k] * x.im)});
    }
  }

  size_t n_, size_, stride_;
  Table<T> chirp_;   // n real parts, n imaginary ones
  Table<T> kernel_;  // the spectrum of the chirp's conjugate over `size`, from both ends
  std::unique_ptr<Complex<T>> inner_;
};

}  // namespace tzm::fft
