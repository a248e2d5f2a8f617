#include "random.h"

#include <cstring>
#include <limits>

namespace tzm_test {

namespace {

template <class T>
T Integer(Random& random, Variety variety) {
  using Limits = std::numeric_limits<T>;
  const uint64_t bits = random.Next();
  if (variety == Variety::kWide) return static_cast<T>(bits);
  if (variety == Variety::kSpecial && random.Below(4) == 0) {
    const T edges[] = {0, 1, static_cast<T>(-1), Limits::min(), Limits::max(), static_cast<T>(Limits::min() + 1),
                       static_cast<T>(Limits::max() - 1), static_cast<T>(Limits::max() / 2 + 1)};
    return edges[bits % std::size(edges)];
  }
  // Shifting the type's own bits keeps the sign and spreads the small values.
  return static_cast<T>(static_cast<T>(bits) >> (sizeof(T) * 4));
}

// `Bits` is the format's integer, `kFraction` its number of fraction bits.
template <class Bits, int kFraction>
Bits Float(Random& random, Variety variety) {
  constexpr int kWidth = sizeof(Bits) * 8;
  constexpr Bits kSign = static_cast<Bits>(Bits{1} << (kWidth - 1));
  constexpr Bits kInfinity = static_cast<Bits>((kSign - 1) >> kFraction << kFraction);
  constexpr Bits kOne = static_cast<Bits>((kInfinity >> (kFraction + 1)) << kFraction);  // the bits of 1.0
  constexpr Bits kUnit = static_cast<Bits>(Bits{1} << kFraction);
  const Bits bits = static_cast<Bits>(random.Next());
  if (variety == Variety::kWide) {
    const bool finite = (bits & kInfinity) != kInfinity;
    return finite ? bits : static_cast<Bits>(bits & ~(kUnit << 1));
  }
  if (variety == Variety::kSpecial && random.Below(4) == 0) {
    const Bits half = kUnit >> 1;
    const Bits specials[] = {0, kInfinity, static_cast<Bits>(kInfinity | half), static_cast<Bits>(kInfinity - 1), kUnit,
                             1, static_cast<Bits>(kUnit - 1), kOne, static_cast<Bits>(kOne - kUnit),
                             static_cast<Bits>(kOne + half), static_cast<Bits>(kOne + kUnit + half / 2),
                             static_cast<Bits>(kOne + 2 * kUnit)};
    return static_cast<Bits>(specials[bits % std::size(specials)] | (random.Below(2) ? kSign : 0));
  }
  const Bits exponent = static_cast<Bits>(kOne - 7 * kUnit + static_cast<Bits>(random.Below(10)) * kUnit);
  return static_cast<Bits>((bits & (kSign | (kUnit - 1))) | exponent);
}

}  // namespace

void Fill(Random& random, Sample sample, Variety variety, void* data, size_t n) {
  char* to = static_cast<char*>(data);
  const auto put = [&](auto value) {
    std::memcpy(to, &value, sizeof value);
    to += sizeof value;
  };
  for (n *= sample.parts; n > 0; --n) {
    switch (sample.kind) {
      case Kind::k16f: put(Float<uint16_t, 10>(random, variety)); break;
      case Kind::k32f: put(Float<uint32_t, 23>(random, variety)); break;
      case Kind::k64f: put(Float<uint64_t, 52>(random, variety)); break;
      default:
        Visit(sample.kind, [&](auto type) {
          if constexpr (std::is_integral_v<decltype(type)>) put(Integer<decltype(type)>(random, variety));
        });
    }
  }
}

}  // namespace tzm_test
