// The worst error found of each elementary function, in units of the last place of the exact result, against
// correctly rounded values (MPFR, MPC), and the input that shows it: the rows of docs/accuracy.md.
#include <mpc.h>
#include <signal_tzm/elementary.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "support/random.h"

namespace {

constexpr int32_t kBatch = 4096;
constexpr mpfr_prec_t kBits = 200;
int64_t batches = 100;
bool every = false;

tzm_test::Random draw(0);

template <class T>
using Bits = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;
template <class T>
T FromBits(uint64_t bits) {
  const auto narrow = static_cast<Bits<T>>(bits);
  T x;
  std::memcpy(&x, &narrow, sizeof x);
  return x;
}

double PowerOfTwoBelow(double x) {
  uint64_t bits;
  std::memcpy(&bits, &x, sizeof x);
  return FromBits<double>(bits & 0x7ff0000000000000);
}

// Arguments: any bits; evenly between two numbers; evenly in the exponent of two, without or with both signs.
struct Range {
  enum { kAny, kEven, kPositive, kSigned } kind;
  double from, to;
  template <class T>
  T Pick() const {
    if (kind == kAny) return FromBits<T>(draw.Next());
    if (kind == kEven) return static_cast<T>(from + (to - from) * draw.Unit());
    const double exponent = std::log2(from) + (std::log2(to) - std::log2(from)) * draw.Unit();
    const double x = std::ldexp(1 + draw.Unit(), static_cast<int>(std::floor(exponent)));
    return static_cast<T>(kind == kSigned && draw.Next() % 2 ? -x : x);
  }
};
constexpr Range kAny = {Range::kAny, 0, 0};

// Zeros, infinities, NaN, the ends of the subnormal, the normal and the whole numbers; each beside each of them
// makes the first batch of a row.
template <class T>
std::vector<T> SpecialValues() {
  using Limits = std::numeric_limits<T>;
  std::vector<T> values = {Limits::quiet_NaN()};
  const T below = std::nextafter(Limits::min(), T(0)), one = std::nextafter(T(1), T(0));
  for (T x : {T(0), Limits::denorm_min(), below, Limits::min(), T(0.5), one, T(1), std::nextafter(T(1), T(2)), T(2),
              T(2.5), T(3), T(88.5), T(103.9), T(710), T(745), std::ldexp(T(1), Limits::digits), Limits::max(),
              Limits::infinity()}) {
    values.push_back(x);
    values.push_back(-x);
  }
  return values;
}

class Number {
 public:
  Number() { mpfr_init2(value_, kBits); }
  ~Number() { mpfr_clear(value_); }
  operator mpfr_ptr() { return value_; }

 private:
  mpfr_t value_;
};

template <class T>
T Rounded(mpfr_ptr x) {
  if constexpr (sizeof(T) == 4) return mpfr_get_flt(x, MPFR_RNDN);
  else return mpfr_get_d(x, MPFR_RNDN);
}

// In units of the last place of the exact result, of the least normal number's below it. Where the result is
// no number, infinite, or zero, nothing but the same will do, signs included.
template <class T>
double Ulps(T actual, mpfr_ptr exact) {
  const T rounded = Rounded<T>(exact);
  if (std::isnan(rounded) && std::isnan(actual)) return 0;
  const bool same = std::memcmp(&rounded, &actual, sizeof(T)) == 0;
  if (mpfr_zero_p(exact) || !std::isfinite(rounded) || !std::isfinite(actual)) return same ? 0 : HUGE_VAL;
  const auto exponent = std::max<mpfr_exp_t>(mpfr_get_exp(exact), std::numeric_limits<T>::min_exponent);
  Number error;
  mpfr_sub_d(error, exact, static_cast<double>(actual), MPFR_RNDN);
  mpfr_mul_2si(error, error, std::numeric_limits<T>::digits - exponent, MPFR_RNDN);
  return std::fabs(mpfr_get_d(error, MPFR_RNDN));
}

struct Worst {
  double error = -1;
  std::string input;
  template <class... Value>
  void See(double ulps, const char* format, Value... value) {
    if (ulps <= error) return;
    char text[100];
    std::snprintf(text, sizeof text, format, static_cast<double>(value)...);
    error = ulps;
    input = text;
  }
  void Print(const char* name, const std::string& range) const {
    std::printf("| %s | %s | %.4f | %s |\n", name, range.c_str(), error, input.c_str());
    std::fflush(stdout);
  }
};

using Exact1 = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
using Exact2 = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t);
using ExactComplex = int (*)(mpc_ptr, mpc_srcptr, mpc_rnd_t);

// One argument. `near` is the function in binary64: for binary32 results so close to the truth that MPFR has to
// judge only those that may be the worst so far, and every number can be looked at.
template <class T>
void One(const char* name, OrvaStatus (*member)(const T*, T*, int32_t), Exact1 exact, double (*near)(double),
         Range range, const std::string& text) {
  const bool all = every && sizeof(T) == 4 && range.kind == Range::kAny;
  const int64_t count = all ? (int64_t{1} << 32) / kBatch : batches;
  const std::vector<T> special = SpecialValues<T>();
  Worst worst;
  Number value;
  std::vector<T> x(kBatch), y(kBatch);
  for (int64_t k = 0; k < count; ++k) {
    for (size_t i = 0; i < kBatch; ++i) {
      // In an order without order: errors that grow from number to number would all be new worst ones.
      if (all) x[i] = FromBits<T>((static_cast<uint64_t>(k) * kBatch + i) * 0x9e3779b1);
      else x[i] = k == 0 && range.kind == Range::kAny && i < special.size() ? special[i] : range.Pick<T>();
    }
    member(x.data(), y.data(), kBatch);
    for (size_t i = 0; i < kBatch; ++i) {
      if constexpr (sizeof(T) == 4) {
        const double likely = near(static_cast<double>(x[i]));
        if (std::isnan(likely) && std::isnan(y[i])) continue;
        if (y[i] == static_cast<float>(likely) && std::signbit(y[i]) == std::signbit(likely) &&
            (std::isinf(y[i]) || likely == 0))
          continue;
        const double unit = 0x1p-23 * std::max(0x1p-126, PowerOfTwoBelow(likely));
        if (likely != 0 && std::fabs(y[i] - likely) < (worst.error - 1e-6) * unit) continue;
      }
      mpfr_set_d(value, static_cast<double>(x[i]), MPFR_RNDN);
      exact(value, value, MPFR_RNDN);
      worst.See(Ulps(y[i], value), "%a", x[i]);
    }
  }
  worst.Print(name, all ? "every number" : text);
}

// Two arguments, `call(a, b, r)` for a batch; with kConstant b is the same throughout a batch.
template <class T, bool kConstant = false, class Call>
void Two(const char* name, Call call, Exact2 exact, Range first, Range second, const std::string& text) {
  const std::vector<T> special = SpecialValues<T>();
  const size_t n = special.size();
  Worst worst;
  Number value, other;
  std::vector<T> a(kBatch), b(kBatch), r(kBatch);
  for (int64_t k = 0; k < batches; ++k) {
    const bool specials = first.kind == Range::kAny && (kConstant ? k < static_cast<int64_t>(n) : k == 0);
    const T constant = specials ? special[static_cast<size_t>(k) % n] : second.Pick<T>();
    for (size_t i = 0; i < kBatch; ++i) {
      a[i] = specials && i < n * n ? special[i % n] : first.Pick<T>();
      b[i] = kConstant ? constant : specials && i < n * n ? special[i / n] : second.Pick<T>();
    }
    call(a.data(), b.data(), r.data());
    for (size_t i = 0; i < kBatch; ++i) {
      mpfr_set_d(value, static_cast<double>(a[i]), MPFR_RNDN);
      mpfr_set_d(other, static_cast<double>(b[i]), MPFR_RNDN);
      exact(value, value, other, MPFR_RNDN);
      worst.See(Ulps(r[i], value), "%a, %a", a[i], b[i]);
    }
  }
  worst.Print(name, text);
}

// A complex argument, the parts of the result by themselves.
template <class Complex>
void Plane(const char* name, OrvaStatus (*member)(const Complex*, Complex*, int32_t), ExactComplex exact, Range re,
           Range im, const std::string& text) {
  using T = decltype(Complex::re);
  Worst worst;
  mpc_t value;
  mpc_init2(value, kBits);
  std::vector<Complex> z(kBatch), w(kBatch);
  for (int64_t k = 0; k < batches; ++k) {
    for (Complex& v : z) v = {re.Pick<T>(), im.Pick<T>()};
    member(z.data(), w.data(), kBatch);
    for (size_t i = 0; i < kBatch; ++i) {
      mpc_set_d_d(value, static_cast<double>(z[i].re), static_cast<double>(z[i].im), MPC_RNDNN);
      exact(value, value, MPC_RNDNN);
      worst.See(Ulps(w[i].re, mpc_realref(value)), "(%a, %a), re", z[i].re, z[i].im);
      worst.See(Ulps(w[i].im, mpc_imagref(value)), "(%a, %a), im", z[i].re, z[i].im);
    }
  }
  mpc_clear(value);
  worst.Print(name, text);
}

int SquareSum(mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr b, mpfr_rnd_t round) { return mpfr_fmma(r, a, a, b, b, round); }
int Angle(mpfr_ptr r, mpfr_srcptr re, mpfr_srcptr im, mpfr_rnd_t round) { return mpfr_atan2(r, im, re, round); }

template <class Complex, class T>
auto OfComplex(OrvaStatus (*member)(const Complex*, T*, int32_t)) {
  return [=](const T* re, const T* im, T* r) {
    std::vector<Complex> z(kBatch);
    for (size_t i = 0; i < kBatch; ++i) z[i] = {re[i], im[i]};
    member(z.data(), r, kBatch);
  };
}
template <class T>
auto OfPair(OrvaStatus (*member)(const T*, const T*, T*, int32_t)) {
  return [=](const T* a, const T* b, T* r) { member(a, b, r, kBatch); };
}
template <class T>
auto OfConstant(OrvaStatus (*member)(const T*, T, T*, int32_t)) {
  return [=](const T* a, const T* b, T* r) { member(a, b[0], r, kBatch); };
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) every = std::strcmp(argv[1], "all") == 0;
  if (argc > 1 && !every) batches = std::atoll(argv[1]);
  if (argc > 2 || batches < 1) return std::fprintf(stderr, "usage: tzm_accuracy [all | BATCHES]\n"), 2;
  std::printf("| Operation | Arguments | Worst error, ulp | Input |\n|---|---|---|---|\n");

#define ONE(Name, exact, near)                                                                   \
  One<Orva32f>(#Name "_32f", ORVAS_##Name##_32f, exact, near, kAny, "all numbers");               \
  One<Orva64f>(#Name "_64f", ORVAS_##Name##_64f, exact, near, kAny, "all numbers");
#define ONE_MORE(Name, exact, near, from, to)                                                                         \
  One<Orva64f>(#Name "_64f", ORVAS_##Name##_64f, exact, near, {Range::kEven, from, to}, #from " to " #to);
  ONE(Exp, mpfr_exp, std::exp)
  ONE_MORE(Exp, mpfr_exp, std::exp, -745, 710)
  ONE(Ln, mpfr_log, std::log)
  ONE_MORE(Ln, mpfr_log, std::log, 0.9, 1.1)
  ONE(Log10, mpfr_log10, std::log10)
  ONE_MORE(Log10, mpfr_log10, std::log10, 0.9, 1.1)
  ONE(Sin, mpfr_sin, std::sin)
  ONE_MORE(Sin, mpfr_sin, std::sin, -100, 100)
  ONE(Cos, mpfr_cos, std::cos)
  ONE_MORE(Cos, mpfr_cos, std::cos, -100, 100)
  ONE(Tan, mpfr_tan, std::tan)
  ONE_MORE(Tan, mpfr_tan, std::tan, -100, 100)
  ONE(Arctan, mpfr_atan, std::atan)
  ONE_MORE(Arctan, mpfr_atan, std::atan, -10, 10)

  constexpr Range kNear1 = {Range::kSigned, 0x1p-20, 0x1p20}, kWide = {Range::kSigned, 0x1p-300, 0x1p300};
  const char *near1 = "2^-20 to 2^20", *wide = "2^-300 to 2^300", *any = "all numbers";
  for (auto [range, text] : {std::pair(kAny, any), std::pair(kNear1, near1)}) {
    Two<Orva32f>("Arctan2_32f", OfPair(ORVAS_Arctan2_32f), mpfr_atan2, range, range, text);
    Two<Orva64f>("Arctan2_64f", OfPair(ORVAS_Arctan2_64f), mpfr_atan2, range, range, text);
  }
  Two<Orva32f>("Magnitude_32f", OfPair(ORVAS_Magnitude_32f), mpfr_hypot, kNear1, kNear1, near1);
  Two<Orva32f>("Magnitude_32fc", OfComplex(ORVAS_Magnitude_32fc), mpfr_hypot, kNear1, kNear1, near1);
  Two<Orva64f>("Magnitude_64f", OfPair(ORVAS_Magnitude_64f), mpfr_hypot, kWide, kWide, wide);
  Two<Orva64f>("Magnitude_64f", OfPair(ORVAS_Magnitude_64f), mpfr_hypot, kNear1, kNear1, near1);
  Two<Orva64f>("Magnitude_64fc", OfComplex(ORVAS_Magnitude_64fc), mpfr_hypot, kAny, kAny, any);
  Two<Orva64f>("Magnitude_64fc", OfComplex(ORVAS_Magnitude_64fc), mpfr_hypot, kNear1, kNear1, near1);
  Two<Orva32f>("PowerSpectr_32f", OfPair(ORVAS_PowerSpectr_32f), SquareSum, kNear1, kNear1, near1);
  Two<Orva32f>("PowerSpectr_32fc", OfComplex(ORVAS_PowerSpectr_32fc), SquareSum, kNear1, kNear1, near1);
  Two<Orva64f>("PowerSpectr_64f", OfPair(ORVAS_PowerSpectr_64f), SquareSum, kWide, kWide, wide);
  Two<Orva64f>("PowerSpectr_64fc", OfComplex(ORVAS_PowerSpectr_64fc), SquareSum, kWide, kWide, wide);
  Two<Orva32f>("Phase_32fc", OfComplex(ORVAS_Phase_32fc), Angle, kNear1, kNear1, near1);
  Two<Orva64f>("Phase_64fc", OfComplex(ORVAS_Phase_64fc), Angle, kNear1, kNear1, near1);

  constexpr Range kBase = {Range::kPositive, 0x1p-20, 0x1p20};
  const Range small = {Range::kEven, -8, 8}, large = {Range::kEven, -60, 60};
  const char *smallText = "2^-20 to 2^20, to -8 to 8", *largeText = "2^-20 to 2^20, to -60 to 60";
  Two<Orva32f>("Pow_32f", OfPair(ORVAS_Pow_32f), mpfr_pow, kAny, kAny, any);
  Two<Orva32f>("Pow_32f", OfPair(ORVAS_Pow_32f), mpfr_pow, kBase, small, smallText);
  Two<Orva64f>("Pow_64f", OfPair(ORVAS_Pow_64f), mpfr_pow, kAny, kAny, any);
  Two<Orva64f>("Pow_64f", OfPair(ORVAS_Pow_64f), mpfr_pow, kBase, large, largeText);
#define POWX(T, name, range, text)                                                              \
  Two<T, true>(#name, OfConstant(ORVAS_##name), mpfr_pow, kAny, kAny, any);                      \
  Two<T, true>(#name, OfConstant(ORVAS_##name), mpfr_pow, kBase, range, text);
  POWX(Orva32f, Powx_32f_A11, small, smallText)
  POWX(Orva32f, Powx_32f_A21, small, smallText)
  POWX(Orva32f, Powx_32f_A24, small, smallText)
  POWX(Orva64f, Powx_64f_A26, large, largeText)
  POWX(Orva64f, Powx_64f_A50, large, largeText)
  POWX(Orva64f, Powx_64f_A53, large, largeText)

#define PLANE(name, exact, re, im, text) Plane(#name, ORVAS_##name, exact, Range re, Range im, text)
  PLANE(Log10_32fc, mpc_log10, ({Range::kSigned, 0x1p-140, 0x1p127}), ({Range::kSigned, 0x1p-140, 0x1p127}),
        "2^-140 to 2^127");
  PLANE(Log10_64fc, mpc_log10, ({Range::kSigned, 0x1p-1070, 0x1p1023}), ({Range::kSigned, 0x1p-1070, 0x1p1023}),
        "2^-1070 to 2^1023");
  PLANE(Log10_64fc, mpc_log10, ({Range::kEven, 0.5, 0.9}), ({Range::kEven, 0.5, 0.8}), "near the unit circle");
#define SIN_COS(Name, exact)                                                                                       \
  PLANE(Name##_32fc, exact, ({Range::kSigned, 0x1p-140, 0x1p127}), ({Range::kEven, -100, 100}),                    \
        "2^-140 to 2^127, -100 to 100");                                                                           \
  PLANE(Name##_64fc, exact, ({Range::kSigned, 0x1p-60, 0x1p20}), ({Range::kEven, -2, 2}),                          \
        "2^-60 to 2^20, -2 to 2");                                                                                 \
  PLANE(Name##_64fc, exact, ({Range::kSigned, 0x1p-1070, 0x1p1023}), ({Range::kEven, -1500, 1500}),                \
        "2^-1070 to 2^1023, -1500 to 1500");
  SIN_COS(Sin, mpc_sin)
  SIN_COS(Cos, mpc_cos)
}
