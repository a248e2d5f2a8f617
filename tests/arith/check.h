// Runs element-wise members over exponents, lengths and kinds of samples, each element and the status held
// against an oracle that says in scalars what the member computes.
#pragma once

#include <gtest/gtest.h>
#include <signal_tzm/arith.h>

#include "support/exact.h"

namespace tzm_test {

const int kExponents[] = {0, 1, 2, 3, 7, 8, 9, 14, 15, 16, 17, 22, 23, 30, 31, 32, 33, 40, 62, 63, 64, 65, 300, 1023,
                          -1, -2, -3, -4, -7, -8, -9, -15, -16, -17, -30, -31, -33, -62, -64, -65, -300, -1074};
const int kLengths[] = {1, 2, 3, 5, 7, 8, 9, 15, 16, 17, 24, 31, 33, 47, 48, 49, 63, 64, 127, 128};

// What an oracle is told of the call, and the status that it gives back.
struct At {
  int exponent, i, len;
  OrvaStatus& status;
  bool InBody(int step) const { return i < len - len % step; }
  double Factor() const { return std::ldexp(1.0, -exponent); }
  bool Note(OrvaStatus given, bool when) const {
    if (when) status = given;
    return when;
  }
};

// Sources are arrays and constants; the first is an array.
template <class T>
const T* Argument(const std::vector<T>& source) { return source.data(); }
template <class T>
T Argument(T constant) { return constant; }
template <class T>
T Element(const std::vector<T>& source, int i) { return source[i]; }
template <class T>
T Element(T constant, int) { return constant; }

// member(sources..., dst, len[, scale]) against oracle(elements..., At).
template <class Dst, class Member, class Oracle, class First, class... More>
void CheckOn(const char* name, Member member, Oracle oracle, int exponent, const std::vector<First>& first,
             const More&... more) {
  const int len = static_cast<int>(first.size());
  std::vector<Dst> dst(len), expected(len);
  OrvaStatus status, expectedStatus = ORVA_STS_NO_ERR;
  for (int i = 0; i < len; ++i)
    expected[i] = oracle(first[i], Element(more, i)..., At{exponent, i, len, expectedStatus});
  if constexpr (requires { member(first.data(), Argument(more)..., dst.data(), len, 1.0); })
    status = member(first.data(), Argument(more)..., dst.data(), len, std::ldexp(1.0, exponent));
  else status = member(first.data(), Argument(more)..., dst.data(), len);
  ASSERT_TRUE(SameBits(name, expected.data(), dst.data(), len)) << "exponent " << exponent << ", length " << len;
  ASSERT_EQ(status, expectedStatus) << name << ", exponent " << exponent << ", length " << len;
}

// The same on random samples, for every length and kind, and every exponent if there is a scale.
template <class A, class... P, class Oracle>
void CheckMember(const char* name, OrvaStatus (*member)(const A*, P...), Oracle oracle) {
  using Second = std::tuple_element_t<0, std::tuple<P...>>;
  using T = std::remove_const_t<std::remove_pointer_t<Second>>;
  using Third = std::tuple_element_t<1, std::tuple<P...>>;
  constexpr bool kScaled = std::is_same_v<std::tuple_element_t<sizeof...(P) - 1, std::tuple<P...>>, double>;
  for (int exponent : kExponents) {
    if (!kScaled && exponent != 0) return;
    for (int len : kLengths) {
      for (Variety variety : kVarieties) {
        const uint64_t seed = 100 * len + exponent;
        const auto first = RandomArray<A>(len, seed, variety), second = RandomArray<T>(len, seed + 1, variety);
        if constexpr (!std::is_pointer_v<Third>) CheckOn<T>(name, member, oracle, exponent, first);
        else if constexpr (!std::is_pointer_v<Second>)
          CheckOn<std::remove_pointer_t<Third>>(name, member, oracle, exponent, first, second[0]);
        else CheckOn<std::remove_pointer_t<Third>>(name, member, oracle, exponent, first, second);
        if (testing::Test::HasFatalFailure()) return;
      }
    }
  }
}

#define CHECK(member, ...) CheckMember(#member, member, __VA_ARGS__)

// Check(oracle, MEMBER(ORVAS_...), ...) for all members that have this oracle.
#define MEMBER(member) std::make_pair(#member, member)
template <class Oracle, class... Member>
void Check(Oracle oracle, std::pair<const char*, Member>... members) {
  (CheckMember(members.first, members.second, oracle), ...);
}

// An in-place member in the shape of the one that it has, or would have, for a twin.
template <auto kMember, class V, class T, class... Scale>
OrvaStatus (*const kOutOfPlace)(const T*, V, T*, int32_t, Scale...) =
    [](const T* src, V value, T* dst, int32_t len, Scale... scale) {
      std::copy(src, src + len, dst);
      return kMember(value, dst, len, scale...);
    };

// Every value of an integer type.
template <class T>
std::vector<T> AllValues() {
  std::vector<T> values(size_t{1} << (8 * sizeof(T)));
  for (size_t i = 0; i < values.size(); ++i) values[i] = static_cast<T>(i);
  return values;
}

}  // namespace tzm_test
