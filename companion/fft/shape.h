// Transforms along any axes of split arrays with any strides.
#pragma once

#include <signal_tzm/companion.h>

#include "transform.h"

#include <algorithm>
#include <vector>

namespace tzm::fft {

template <class T>
class Shape {
 public:
  // Axes outermost first; the first `batches` are not transformed.
  Shape(std::vector<tzm_fft_iodim> axes, size_t batches) : axes_(std::move(axes)), batches_(batches) {
    size_t inner = 0;
    for (size_t k = 0; k < axes_.size(); ++k) {
      const auto n = static_cast<size_t>(axes_[k].n);
      points_ *= n;
      if (k < batches_) continue;
      transforms_.push_back(MakeComplex<T>(n, 1));
      longest_ = std::max(longest_, n);
      inner = std::max(inner, transforms_.back()->Scratch());
    }
    scratch_ = 2 * RoundUp(points_) + 2 * RoundUp(longest_) + inner;
  }
  size_t Scratch() const { return scratch_; }

  void Run(const View<const T>& in, const View<T>& out, T* scratch, Helpers& helpers) const {
    const View<T> packed = {Form::kSplit, scratch, scratch + RoundUp(points_)};
    const View<T> line = {Form::kSplit, packed.im + RoundUp(points_), packed.im + RoundUp(points_) + RoundUp(longest_)};
    size_t at = 0;
    ForEach(0, 0, &tzm_fft_iodim::is, [&](ptrdiff_t place) {
      packed.Put(at++, {LoadElement(in.re + place), LoadElement(in.im + place)});
    });
    // The last axis first; in the packed arrays each axis has the stride of those after it.
    size_t stride = 1;
    for (size_t k = axes_.size(); k-- > batches_;) {
      const auto n = static_cast<size_t>(axes_[k].n);
      const Complex<T>& transform = *transforms_[k - batches_];
      for (size_t first = 0; first < points_; first += n * stride) {
        for (size_t column = first; column < first + stride; ++column) {
          for (size_t j = 0; j < n; ++j) line.Put(j, {packed.re[column + j * stride], packed.im[column + j * stride]});
          transform.Run({Form::kSplit, line.re, line.im}, line, line.im + RoundUp(longest_), helpers);
          for (size_t j = 0; j < n; ++j) packed.Put(column + j * stride, {line.re[j], line.im[j]});
        }
      }
      stride *= n;
    }
    at = 0;
    ForEach(0, 0, &tzm_fft_iodim::os, [&](ptrdiff_t place) {
      StoreElement(packed.re[at], out.re + place);
      StoreElement(packed.im[at++], out.im + place);
    });
  }

 private:
  static size_t RoundUp(size_t count) { return (count + kLine - 1) / kLine * kLine; }

  // f(place) for all elements in row-major order.
  void ForEach(size_t axis, ptrdiff_t place, int32_t tzm_fft_iodim::*stride, auto f) const {
    if (axis == axes_.size()) return f(place);
    for (ptrdiff_t k = 0; k < axes_[axis].n; ++k) ForEach(axis + 1, place + k * (axes_[axis].*stride), stride, f);
  }

  std::vector<tzm_fft_iodim> axes_;
  size_t batches_, points_ = 1, longest_ = 0, scratch_;
  std::vector<std::unique_ptr<Complex<T>>> transforms_;
};

}  // namespace tzm::fft
