// Seeded samples, the same on every platform: no mathematical library has a part in them.
#pragma once

#include <cstdint>
#include <vector>

#include "sample.h"

namespace tzm_test {

// The splitmix64 sequence.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed) {}
  uint64_t Next() {
    uint64_t z = state_ += 0x9e3779b97f4a7c15;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
    z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
    return z ^ (z >> 31);
  }
  uint64_t Below(uint64_t n) { return Next() % n; }
  // In [0, 1), a multiple of 2^-53.
  double Unit() { return static_cast<double>(Next() >> 11) * 0x1p-53; }

 private:
  uint64_t state_;
};

enum class Variety {
  kModerate,  // floats of magnitude 2^-7 to 8; integers of half the type's bits
  kWide,      // any finite float; any integer
  kSpecial    // as moderate, one in four replaced: zeros, infinities, NaN, subnormals, limits, ties
};
inline constexpr Variety kVarieties[] = {Variety::kModerate, Variety::kWide, Variety::kSpecial};

void Fill(Random& random, Sample sample, Variety variety, void* data, size_t n);

template <class T>
std::vector<T> RandomArray(size_t n, uint64_t seed, Variety variety = Variety::kModerate) {
  std::vector<T> values(n);
  Random random(seed);
  Fill(random, SampleOf<T>(), variety, values.data(), n);
  return values;
}

}  // namespace tzm_test
