// Powers with one constant exponent, by accuracy class.
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/vector.h"

using namespace tzm;

namespace {

using D = Full<double>;
using V = Vec<D>;
constexpr size_t kStep = hn::MaxLanes(D());
constexpr int32_t kBlock = 128;

struct Exponent {
  explicit Exponent(double y)
      : value(y),
        finite(y - y == 0),
        // From 2^53 on every number is an even integer.
        integer(finite && (y >= 0x1p53 || y <= -0x1p53 || static_cast<double>(static_cast<int64_t>(y)) == y)),
        odd(integer && y < 0x1p53 && y > -0x1p53 && static_cast<int64_t>(y) % 2 != 0) {}
  double value;
  bool finite, integer, odd;
};

// A zero base with a negative exponent is a pole; a negative finite one with a finite exponent that is no
// integer has no power. The last such element decides.
template <class T>
OrvaStatus Scan(const T* src, int32_t len, Exponent y) {
  const bool poles = y.value < 0, outside = y.finite && !y.integer;
  if (!poles && !outside) return ORVA_STS_NO_ERR;
  const Full<T> d;
  AnyLane<Full<T>> notPositive;
  ForEach<hn::MaxLanes(d)>(len, [&](const T* from) TZM_LAMBDA {
    notPositive.See(hn::Le(hn::LoadU(d, from), hn::Zero(d)));
  }, src);
  for (int32_t i = notPositive.Seen() ? len - 1 : -1; i >= 0; --i) {
    const T x = LoadElement(src + i);
    if (poles && x == 0) return ORVA_STS_SINGULARITY_ERR;
    if (outside && x < 0 && x - x == 0) return ORVA_STS_DOMAIN_ERR;
  }
  return ORVA_STS_NO_ERR;
}

// e^(y ln |x|) in binary64, and the sign and the special values that the logarithm does not see.
template <class T>
OrvaStatus PowxByLogarithm(const T* src, T constant, T* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const Exponent y(constant);
  const OrvaStatus status = Scan(src, len, y);
  const V one = hn::Set(D(), 1), zero = hn::Zero(D()), exponent = hn::Set(D(), y.value);
  const V nan = hn::Set(D(), std::numeric_limits<double>::quiet_NaN());
  alignas(64) double block[kBlock];
  ForBlocks<kBlock>(len, [&](int32_t count, const T* source, T* result) {
    ForEach<kStep>(count, [&](const T* from, double* to) TZM_LAMBDA {
      hn::StoreU(hn::Abs(LoadFloating(D(), from)), D(), to);
    }, source, block);
    ORVAS_Ln_64f(block, block, count);
    ForEach<kStep>(count, [&](const double* from, double* to) TZM_LAMBDA {
      hn::StoreU(hn::Mul(hn::LoadU(D(), from), exponent), D(), to);
    }, std::as_const(block), block);
    ORVAS_Exp_64f(block, block, count);
    ForEach<kStep, 2>(count, [&](const T* from, const double* power, T* to) TZM_LAMBDA {
      const V x = LoadFloating(D(), from);
      V value = hn::IfThenElse(hn::Eq(hn::Abs(x), one), one, hn::LoadU(D(), power));
      const auto negative = hn::Lt(x, zero);
      if (y.value != y.value) value = hn::IfThenElse(negative, nan, value);
      if (y.finite && !y.integer) value = hn::IfThenElse(hn::And(negative, hn::IsFinite(x)), nan, value);
      if (y.odd) value = hn::CopySign(value, x);
      if (y.value == 0) value = one;
      StoreRounded(value, to);
    }, source, std::as_const(block), result);
  }, src, dst);
  return status;
}

// By the companion's power, whose logarithm carries more bits than binary64 has.
OrvaStatus PowxByPower(const Orva64f* src, Orva64f constant, Orva64f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const OrvaStatus status = Scan(src, len, Exponent(constant));
  alignas(64) double exponents[kBlock];
  for (double& y : exponents) y = constant;
  ForBlocks<kBlock>(len, [&](int32_t count, const Orva64f* base, Orva64f* power) {
    vdpow(count, base, exponents, power);
  }, src, dst);
  return status;
}

}  // namespace

OrvaStatus ORVAS_Powx_32f_A11(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len) {
  return PowxByLogarithm(src, value, dst, len);
}

OrvaStatus ORVAS_Powx_32f_A21(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len) {
  return PowxByLogarithm(src, value, dst, len);
}

OrvaStatus ORVAS_Powx_32f_A24(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len) {
  return PowxByLogarithm(src, value, dst, len);
}

OrvaStatus ORVAS_Powx_64f_A26(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len) {
  return PowxByLogarithm(src, value, dst, len);
}

OrvaStatus ORVAS_Powx_64f_A50(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len) {
  return PowxByPower(src, value, dst, len);
}

OrvaStatus ORVAS_Powx_64f_A53(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len) {
  return PowxByPower(src, value, dst, len);
}
