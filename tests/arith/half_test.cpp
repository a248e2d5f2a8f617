// Conversions to and from binary16 over all of its values, under every rounding mode of the caller;
// normalisation.
#include "check.h"

#include <algorithm>
#include <cfenv>

namespace tzm_test {
namespace {

// The value of a half: f * 2^(e - 25) with the leading one made explicit.
double Value(Orva16f half) {
  const int exponent = half >> 10 & 31, fraction = half & 1023;
  double magnitude = exponent == 0 ? std::ldexp(fraction, -24) : std::ldexp(1024 + fraction, exponent - 25);
  if (exponent == 31) magnitude = fraction == 0 ? INFINITY : NAN;
  return half & 0x8000 ? -magnitude : magnitude;
}

// The half that x rounds to. Its bits less the sign are its magnitude in units of 2^e, plus 1024 * (e + 24).
Orva16f ToHalf(double x, bool nearest) {
  if (std::isnan(x)) return std::signbit(x) ? 0xfe00 : 0x7e00;
  const int exponent = std::max(std::ilogb(std::clamp(std::fabs(x), 0x1p-30, 0x1p30)), -14) - 10;
  const double units = std::ldexp(std::fabs(x), -exponent), most = nearest || std::isinf(x) ? 0x7c00 : 0x7bff;
  const double bits = (nearest ? std::nearbyint(units) : std::trunc(units)) + 1024.0 * (exponent + 24);
  return static_cast<Orva16f>(static_cast<int>(std::min(bits, most)) | (std::signbit(x) ? 0x8000 : 0));
}

// Calls under a rounding mode of the caller, which must survive.
int callersMode;
template <auto kMember, uint32_t... kMode>
constexpr auto under = [](auto* src, auto* dst, int32_t len, auto... scale)
    -> decltype(kMember(src, dst, len, kMode..., scale...)) {
  std::fesetround(callersMode);
  const OrvaStatus status = kMember(src, dst, len, kMode..., scale...);
  EXPECT_EQ(std::fegetround(), callersMode);
  std::fesetround(FE_TONEAREST);
  return status;
};

template <uint32_t kMode>
void CheckConversions() {
  const auto narrowed = [=](auto x, At) { return ToHalf(x, kMode == 1); };
  const auto real = [](Orva16f x, At) { return static_cast<float>(Value(x)); };
  std::vector<Orva32f> floats = {1e30f, -1e30f, 65519.996f, 65520.0f, -0.0f, 0x1p-25f, 0x1.000002p-25f, 0x1p-149f};
  for (int half = 0; half < 0x10000; ++half) {
    const float value = static_cast<float>(Value(static_cast<Orva16f>(half)));
    const float middle = value + (static_cast<float>(Value(static_cast<Orva16f>(half + 1))) - value) / 2;
    floats.insert(floats.end(), {value, middle, std::nextafter(middle, -INFINITY), std::nextafter(middle, INFINITY)});
  }
  CheckOn<Orva16f>("32f16f", under<ORVAS_Convert_32f16f, kMode>, narrowed, 0, floats);
  CheckOn<Orva16f>("16s16f", under<ORVAS_Convert_16s16f, kMode>, narrowed, 0, AllValues<Orva16s>());
  CheckOn<Orva32f>("16f32f", under<ORVAS_Convert_16f32f>, real, 0, AllValues<Orva16f>());
  for (int exponent : {0, 1, -1, 10, -20, -128, 127, 149, 151, -1074}) {
    CheckOn<Orva16s>("16f16s", under<ORVAS_Convert_16f16s_S, kMode>, [](Orva16f x, At at) {
      const float y = static_cast<float>(at.Factor()) * static_cast<float>(Value(x));
      return RoundSaturate<Orva16s>(kMode == 1 ? y : std::trunc(y));
    }, exponent, AllValues<Orva16f>());
  }
}

TEST(Half, EveryValueUnderEveryMode) {
  for (int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    callersMode = mode;
    CheckConversions<0>();
    CheckConversions<1>();
  }
}

// A member with its two constants, as a unary one.
template <auto kMember, class T, class... Scale>
OrvaStatus (*const kNormalize)(const T*, T*, int32_t, Scale...) =
    [](const T* src, T* dst, int32_t len, Scale... scale) {
      if constexpr (!std::is_class_v<T>) return kMember(src, dst, len, T(100.7), 0.7f, scale...);
      else return kMember(src, dst, len, {decltype(T::re)(100.7), -32768}, 0.7f, scale...);
    };

// Scaled members and binary64 have the fused form always, binary32 from `fusedFrom` elements on.
constexpr auto normal = [](auto x, At at) {
  using T = decltype(x);
  const auto part = [&](auto v, double constant, int fusedFrom) {
    using Part = decltype(v);
    using Real = std::conditional_t<sizeof(v) == 8, double, float>;
    const Real vSub = Part(constant), vDiv = 0.7f, r = 1 / vDiv;
    const bool fused = !std::is_same_v<Part, float> || at.len >= fusedFrom;
    const Real y = fused ? std::fma(Real(v), r, -(vSub / vDiv)) : (Real(v) - vSub) * r;
    if constexpr (std::is_integral_v<Part>) return RoundSaturate<Part>(static_cast<float>(at.Factor()) * y);
    else return y;
  };
  if constexpr (!std::is_class_v<T>) return part(x, 100.7, 64);
  else return T{part(x.re, 100.7, 128), part(x.im, -32768, 128)};
};

TEST(Normalize, TheFormFollowsTheLength) {
  Check(normal, MEMBER((kNormalize<ORVAS_Normalize_32f, Orva32f>)), MEMBER((kNormalize<ORVAS_Normalize_64f, Orva64f>)));
  CHECK((kNormalize<ORVAS_Normalize_32fc, Orva32fc>), normal);
  CHECK((kNormalize<ORVAS_Normalize_64fc, Orva64fc>), normal);
  CHECK((kNormalize<ORVAS_Normalize_16s_S, Orva16s, double>), normal);
  CHECK((kNormalize<ORVAS_Normalize_16sc_S, Orva16sc, double>), normal);
}

}  // namespace
}  // namespace tzm_test
