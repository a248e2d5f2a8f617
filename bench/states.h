// What to time of the operations that the table of members cannot call by itself.
#pragma once

#include <signal_tzm/status.h>

#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <string>

#include "support/random.h"

namespace tzm_bench {

// What to time, and how many bytes of arrays it reads and writes.
struct Timed {
  std::function<OrvaStatus()> run;
  int64_t bytes;
};
using Make = std::function<Timed(int32_t)>;

// By the names of the operations.
const std::map<std::string, Make>& AllStates();

// Where arrays come from; tests give them places of their own.
inline std::function<std::shared_ptr<void>(size_t bytes)> take_array = [](size_t bytes) {
  return std::shared_ptr<void>(new char[bytes], [](void* block) { delete[] static_cast<char*>(block); });
};

// Moderate values that live as long as the benchmark that holds them.
template <class T>
struct Shared {
  T* data() const { return static_cast<T*>(memory.get()); }
  const Shared* operator->() const { return this; }
  std::shared_ptr<void> memory;
};
template <class T>
Shared<T> SharedArray(int64_t n) {
  const auto values = tzm_test::RandomArray<T>(static_cast<size_t>(n), 1);
  const Shared<T> array{take_array(values.size() * sizeof(T))};
  std::memcpy(array.data(), values.data(), values.size() * sizeof(T));
  return array;
}

// Zeros, aligned as far as any plan of FFTW's wants.
template <class T>
std::shared_ptr<T> Aligned(int64_t n) {
  constexpr std::align_val_t kLine{64};
  return {new (kLine) T[static_cast<size_t>(n)](), [](T* array) { operator delete[](array, kLine); }};
}

}  // namespace tzm_bench
