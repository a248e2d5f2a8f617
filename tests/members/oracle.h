// What an operation computes, said for one element or for whole arrays, as the outputs and the status of a call.
#pragma once

#include <signal_tzm/status.h>

#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <tuple>
#include <type_traits>
#include <vector>

#include "support/sample.h"

namespace tzm_test {

enum class Role {
  kSource,      // const pointer before the length: `len` elements
  kMask,        // const pointer to bytes after the length: `len` elements, may be null
  kInput,       // any other const pointer after the length: one element
  kDst,         // pointer before the length: `len` elements
  kSrcDst,      // the same in a member whose name ends in _I or _IS
  kLength,
  kResult,      // pointer after the length: one element
  kConstant,    // a sample, a level, a selector
  kScale        // a double after the length of an operation with integer results
};

// One argument of a call.
struct Value {
  alignas(8) unsigned char bytes[16];
  template <class T>
  T As() const { return Load<T>(bytes); }
  template <class T>
  void Set(const T& value) {
    static_assert(sizeof(T) <= sizeof bytes);
    std::memcpy(bytes, &value, sizeof value);
  }
};

template <class T>
using ElementOf = std::remove_cv_t<std::remove_pointer_t<T>>;

// By the types alone; only a name tells kSrcDst from kDst. The length is the first int32_t after a pointer, unless it
// is a constant that a destination of its type follows, and the length later.
template <class... A>
constexpr std::array<Role, sizeof...(A)> RolesOf() {
  constexpr size_t n = sizeof...(A);
  constexpr bool kPointer[] = {std::is_pointer_v<A>..., false}, kInt[] = {std::is_same_v<A, int32_t>..., false};
  constexpr bool kConst[] = {std::is_const_v<std::remove_pointer_t<A>>..., false};
  constexpr bool kDouble[] = {std::is_same_v<A, double>...}, kToInt[] = {std::is_same_v<A, int32_t*>..., false};
  constexpr bool kBytes[] = {std::is_same_v<ElementOf<A>, Orva8u>...};
  constexpr bool kIntegers = ((std::is_pointer_v<A> && !std::is_const_v<std::remove_pointer_t<A>> &&
                               SampleOf<ElementOf<A>>().kind < Kind::k16f) || ...);
  size_t length = 0, last = 0;
  for (size_t i = 0; i < n; ++i)
    if (kInt[i]) last = i;
  for (bool seen = false; length < n && !(seen && kInt[length] && !(kToInt[length + 1] && last > length)); ++length)
    seen |= kPointer[length];
  std::array<Role, n> roles;
  for (size_t i = 0; i < n; ++i) {
    if (i == length) roles[i] = Role::kLength;
    else if (!kPointer[i]) roles[i] = i > length && kDouble[i] && kIntegers ? Role::kScale : Role::kConstant;
    else if (kConst[i]) roles[i] = i < length ? Role::kSource : kBytes[i] ? Role::kMask : Role::kInput;
    else roles[i] = i < length ? Role::kDst : Role::kResult;
  }
  return roles;
}

// The exponent of a scale: its logarithm, truncated toward zero.
inline int ExponentOf(double scale) {
  int above;
  const bool power = std::frexp(scale, &above) == 0.5;
  return above > 0 || power ? above - 1 : above;
}

// What an oracle is told of the call, and the status that it gives back.
struct At {
  int exponent, second;  // of the scales
  int i, len;
  const unsigned char *before, *after;  // the destination before the call and after it
  OrvaStatus& status;
  bool InBody(int step) const { return i < len - len % step; }
  double Factor() const { return std::ldexp(1.0, -exponent); }
  float FloatFactor() const { return static_cast<float>(Factor()); }
  bool Note(OrvaStatus given, bool when) const {
    if (when) status = given;
    return when;
  }
  template <class T>
  T Before() const { return Load<T>(before + static_cast<size_t>(i) * sizeof(T)); }
  template <class T>
  T After() const { return Load<T>(after + static_cast<size_t>(i) * sizeof(T)); }
};

// Outputs of a call in the order of the arguments. An oracle changes those from before the call into what they have to
// be after it, where `actual` ones are.
using Outputs = std::vector<std::vector<unsigned char>>;
using Oracle = std::function<OrvaStatus(const Value*, const Outputs& actual, Outputs& outputs)>;

template <class F>
struct OracleOf;
template <class... A>
struct OracleOf<OrvaStatus(A...)> {
  static constexpr auto kRoles = RolesOf<A...>();
  static constexpr auto kPositions = std::index_sequence_for<A...>();
  template <size_t k>
  using Type = std::tuple_element_t<k, std::tuple<A...>>;
  static constexpr size_t Nth(Role role, size_t nth) {
    for (size_t k = 0; k < kRoles.size(); ++k)
      if (kRoles[k] == role && nth-- == 0) return k;
    return kRoles.size();
  }
  static constexpr bool kNoSource = Nth(Role::kSource, 0) == kRoles.size();
  using Element = ElementOf<Type<Nth(kNoSource ? Role::kDst : Role::kSource, 0)>>;  // of the first array
  static constexpr size_t kLengthAt = Nth(Role::kLength, 0), kScaleAt = Nth(Role::kScale, 0),
                          kSecondAt = Nth(Role::kScale, 1);

  // The k-th argument as the oracle gets it, or nothing.
  template <size_t k, bool kWhole>
  static auto Given(const Value* values, size_t i, size_t len) {
    if constexpr (kRoles[k] == Role::kConstant) return std::tuple(values[k].As<Type<k>>());
    else if constexpr (kRoles[k] == Role::kInput) return std::tuple(*values[k].As<Type<k>>());
    else if constexpr (kRoles[k] == Role::kMask) return std::tuple(values[k].As<Type<k>>());
    else if constexpr (kRoles[k] == Role::kSource && kWhole)
      return std::tuple(std::vector(values[k].As<Type<k>>(), values[k].As<Type<k>>() + len));
    else if constexpr (kRoles[k] == Role::kSource) return std::tuple(values[k].As<Type<k>>()[i]);
    else return std::tuple();
  }
  // Stores a value, or a vector of all of them, as element i of the output at `position` among the arguments.
  template <size_t k, class V>
  static void Put(Outputs& outputs, size_t output, size_t i, const V& value) {
    using T = ElementOf<Type<k>>;
    if constexpr (requires { value.begin(); }) {
      for (size_t at = 0; at < value.size(); ++at) Put<k>(outputs, output, at, value[at]);
    } else {
      const T stored = static_cast<T>(value);
      std::memcpy(outputs[output].data() + i * sizeof(T), &stored, sizeof(T));
    }
  }
  static constexpr size_t OutputAt(size_t output) {
    for (size_t k = 0; k < kRoles.size(); ++k)
      if ((kRoles[k] == Role::kDst || kRoles[k] == Role::kResult) && output-- == 0) return k;
    return 0;
  }
  template <class R>
  static void Store(Outputs& outputs, size_t i, const R& result) {
    if constexpr (requires { std::tuple_size<R>::value; }) {
      [&]<size_t... o>(std::index_sequence<o...>) {
        (Put<OutputAt(o)>(outputs, o, i, std::get<o>(result)), ...);
      }(std::make_index_sequence<std::tuple_size_v<R>>());
    } else {
      Put<OutputAt(0)>(outputs, 0, i, result);
    }
  }
  template <bool kWhole>
  static Oracle Make(auto oracle) {
    return [=](const Value* values, const Outputs& actual, Outputs& outputs) {
      OrvaStatus status = ORVA_STS_NO_ERR;
      const auto len = static_cast<size_t>(values[kLengthAt].As<int32_t>());
      const Outputs before = outputs;
      At at{0, 0, 0, static_cast<int>(len), before[0].data(), actual[0].data(), status};
      if constexpr (kScaleAt < kRoles.size()) at.exponent = ExponentOf(values[kScaleAt].As<double>());
      if constexpr (kSecondAt < kRoles.size()) at.second = ExponentOf(values[kSecondAt].As<double>());
      for (size_t i = 0; i < (kWhole ? 1 : len); ++i) {
        at.i = static_cast<int>(i);
        const auto given = [&]<size_t... k>(std::index_sequence<k...>) {
          return std::tuple_cat(Given<k, kWhole>(values, i, len)..., std::tuple<const At&>(at));
        }(kPositions);
        Store(outputs, i, std::apply(oracle, given));
      }
      return status;
    };
  }
  static Oracle ForElements(auto oracle) { return Make<false>(oracle); }
  static Oracle ForArrays(auto oracle) { return Make<true>(oracle); }
};

}  // namespace tzm_test
