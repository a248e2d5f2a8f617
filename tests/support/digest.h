// A 64-bit digest of outputs (FNV-1a), in which all NaNs of a type are the same.
#pragma once

#include <signal_tzm/status.h>

#include <cstdint>
#include <functional>

#include "sample.h"

namespace tzm_test {

class Digest {
 public:
  void Add(Sample sample, const void* data, size_t n) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    const size_t size = sample.PartSize();
    for (size_t i = 0; i < n * sample.parts; ++i, bytes += size) {
      const bool nan = IsNaN(sample.kind, bytes);
      for (size_t j = 0; j < size; ++j) value_ = (value_ ^ (nan ? 0xff : bytes[j])) * 0x100000001b3;
    }
  }
  template <class T>
  void Add(const T* data, size_t n) {
    Add(SampleOf<T>(), data, n);
  }
  void AddStatus(int32_t status) { Add(&status, 1); }
  // Makes a call and adds its status; a test that runs a scenario may make it in its own way.
  void Call(auto f, auto... arguments) { AddStatus(make([&] { return f(arguments...); })); }
  std::function<OrvaStatus(const std::function<OrvaStatus()>&)> make = [](const auto& call) { return call(); };
  uint64_t Value() const { return value_; }

 private:
  uint64_t value_ = 0xcbf29ce484222325;
};

}  // namespace tzm_test
