// The sample types at run time: what a type-erased test needs to know to fill, compare and print them.
#pragma once

#include <signal_tzm/types.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>

namespace tzm_test {

template <class T>
T Load(const void* from) {
  T value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

enum class Kind { k8u, k16u, k16s, k32u, k32s, k64u, k64s, k16f, k32f, k64f };

// f of a value of the kind's type; binary16 is its bits.
template <class F>
auto Visit(Kind kind, F f) {
  switch (kind) {
    case Kind::k8u: return f(uint8_t());
    case Kind::k16s: return f(int16_t());
    case Kind::k32u: return f(uint32_t());
    case Kind::k32s: return f(int32_t());
    case Kind::k64u: return f(uint64_t());
    case Kind::k64s: return f(int64_t());
    case Kind::k32f: return f(float());
    case Kind::k64f: return f(double());
    default: return f(uint16_t());
  }
}

// A sample is one part, or two for a complex pair. Any other record is a run of 64-bit words.
struct Sample {
  Kind kind;
  size_t parts;
  size_t PartSize() const { return Visit(kind, [](auto part) { return sizeof part; }); }
  size_t Size() const { return parts * PartSize(); }
  bool IsFloat() const { return kind >= Kind::k16f; }
  friend bool operator==(const Sample&, const Sample&) = default;
};

template <class T>
constexpr Sample SampleOf() {
  if constexpr (std::is_same_v<T, float>) return {Kind::k32f, 1};
  else if constexpr (std::is_same_v<T, double>) return {Kind::k64f, 1};
  else if constexpr (std::is_integral_v<T>) {
    constexpr bool u = std::is_unsigned_v<T>;
    switch (sizeof(T)) {
      case 1: return {Kind::k8u, 1};
      case 2: return {u ? Kind::k16u : Kind::k16s, 1};
      case 4: return {u ? Kind::k32u : Kind::k32s, 1};
      default: return {u ? Kind::k64u : Kind::k64s, 1};
    }
  } else if constexpr (requires(T x) { x.re; }) {
    return {SampleOf<decltype(T::re)>().kind, 2};
  } else {
    static_assert(std::is_trivially_copyable_v<T> && sizeof(T) % 8 == 0, "give this type a Sample");
    return {Kind::k64u, sizeof(T) / 8};
  }
}

// Whether one part of a floating kind is a NaN.
bool IsNaN(Kind kind, const void* part);

// Empty when all `n` elements are equal, any NaN to any other; else index and both values of the first difference.
std::string FirstDifference(Sample sample, const void* expected, const void* actual, size_t n);

}  // namespace tzm_test
