// What a complex transform of any length is to its users.
#pragma once

#include "helpers.h"
#include "lanes.h"

#include <memory>
#include <new>
#include <utility>

namespace tzm::fft {

constexpr size_t kLine = 64;  // bytes

// Real transforms of longer even lengths are complex ones of half the length, all others complex ones of real parts.
constexpr size_t kLongestWhole = 16;

// Below this many complex points a second thread costs more than it saves (measured on two cores).
constexpr size_t kThreadedPoints = size_t{1} << 15;

// Aligned memory that is not initialised.
template <class T>
class Table {
 public:
  explicit Table(size_t count = 0)
      : data_(count == 0 ? nullptr
                         : static_cast<T*>(operator new(count * sizeof(T), std::align_val_t(kLine)))) {}
  Table(Table&& from) noexcept : data_(std::exchange(from.data_, nullptr)) {}
  Table& operator=(Table&& from) noexcept { return std::swap(data_, from.data_), *this; }
  ~Table() { operator delete(data_, std::align_val_t(kLine)); }
  T* get() const { return data_; }

 private:
  T* data_;
};

// A transform of one length, forward; exchanged parts make it an inverse one.
template <class T>
class Complex {
 public:
  virtual ~Complex() = default;
  // `scratch` has room for as many T as Scratch() says, on a cache line.
  virtual void Run(const View<const T>& in, const View<T>& out, T* scratch, Helpers& helpers) const = 0;
  size_t Scratch() const { return scratch_; }
  bool StoresHalf() const { return storesHalf_; }

 protected:
  size_t scratch_ = 0;
  bool storesHalf_ = false;  // of real numbers the pairs 0 ... n/2; the others store all pairs, as Form::kPairs
};

template <class T>
std::unique_ptr<Complex<T>> MakeComplex(size_t n, size_t workers);

}  // namespace tzm::fft
