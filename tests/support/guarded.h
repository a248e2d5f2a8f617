// Arrays that end, or start, at an inaccessible page: an access outside of them ends the test at once,
// with a line that names the call under test.
#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

namespace tzm_test {

enum class Place {
  kEnd,       // the last byte is the last one before an inaccessible page
  kStart,     // the first byte is the first one after an inaccessible page
  kUnaligned  // one byte before kEnd: an odd address for every element wider than a byte
};

// Pages between two inaccessible ones.
class GuardedBytes {
 public:
  explicit GuardedBytes(size_t capacity);
  ~GuardedBytes();
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;

  void* At(Place place, size_t bytes) const;
  size_t Capacity() const { return capacity_ - 1; }

 private:
  char* pages_;
  size_t capacity_;
};

template <class T>
class GuardedArray {
 public:
  explicit GuardedArray(size_t n, Place place = Place::kEnd)
      : bytes_(n * sizeof(T)), size_(n), data_(static_cast<T*>(bytes_.At(place, n * sizeof(T)))) {}
  GuardedArray(const std::vector<T>& values, Place place = Place::kEnd) : GuardedArray(values.size(), place) {
    std::copy(values.begin(), values.end(), data_);
  }
  GuardedArray(std::initializer_list<T> values) : GuardedArray(std::vector<T>(values)) {}

  T* data() { return data_; }
  const T* data() const { return data_; }
  size_t size() const { return size_; }
  T* begin() { return data_; }
  T* end() { return data_ + size_; }
  T& operator[](size_t i) { return data_[i]; }

 private:
  GuardedBytes bytes_;
  size_t size_;
  T* data_;
};

// Names the call under test for the report of a memory fault.
void SetCallUnderTest(const std::string& text);

}  // namespace tzm_test
