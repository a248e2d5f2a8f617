// Kaiser window, by the power series of the modified Bessel function I0.
#include <signal_tzm/generate.h>

#include "frame/bessel.h"
#include "frame/call.h"
#include "generate/window.h"

#include <array>

using namespace tzm;

namespace {

// I0(x) = 1 + sum over k of t(k) with t(0) = 1 and t(k) = t(k - 1) * (y / k^2) of y = (x/2)^2, in each lane.
//
// The quotients are those of a division: multiplied by the reciprocal, with one step of correction. That
// gives the division's bits for each of these divisors and every y (tested over all fractions) but for y so
// small, below 2^-100, that no term changes the sum.
constexpr size_t kTerms32 = 32;
constexpr auto kReciprocals = [] {
  std::array<float, kTerms32> reciprocals{};
  for (size_t k = 1; k <= kTerms32; ++k) reciprocals[k - 1] = 1.0f / static_cast<float>(k * k);
  return reciprocals;
}();

template <class D, class V = Vec<D>>
TZM_INLINE V BesselI0Of32Terms(D d, V x) {
  const auto half = hn::Mul(x, hn::Set(d, 0.5f)), y = hn::Mul(half, half);
  auto sum = hn::Set(d, 1.0f), term = sum;
  for (size_t k = 1; k <= kTerms32; ++k) {
    const auto reciprocal = hn::Set(d, kReciprocals[k - 1]);
    const auto estimate = hn::Mul(y, reciprocal);
    const auto rest = hn::NegMulAdd(estimate, hn::Set(d, static_cast<float>(k * k)), y);
    const auto last = sum;
    term = hn::Mul(term, hn::MulAdd(rest, reciprocal, estimate));
    sum = hn::Add(sum, term);
    // A term that changes no sum has shrunk below the largest, and so do all that follow.
    if (k % 8 == 0 && hn::AllTrue(d, hn::Eq(sum, last))) break;
  }
  return sum;
}

template <class Real>
class Kaiser {
 public:
  using D = Full<Real>;

  Kaiser(int32_t len, Real alpha) : n_(static_cast<Real>(len - 1)), alpha_(alpha) {
    const hn::CappedTag<Real, 1> one;
    whole_ = hn::GetLane(Series(one, hn::Set(one, alpha * n_ * Real(0.5))));
  }
  // I0(alpha sqrt((n - i) i)) / I0(alpha n / 2)
  template <class DB>
  TZM_INLINE Vec<DB> Block(DB d, size_t i) const {
    const auto index = Indices(d, i);
    const auto root = hn::Sqrt(hn::Mul(hn::Sub(hn::Set(d, n_), index), index));
    return hn::Div(Series(d, hn::Mul(root, hn::Set(d, alpha_))), hn::Set(d, whole_));
  }

 private:
  template <class DB>
  static TZM_INLINE Vec<DB> Series(DB d, Vec<DB> x) {
    if constexpr (std::is_same_v<Real, float>) return BesselI0Of32Terms(d, x);
    else return BesselI0(d, x);
  }

  Real n_, alpha_, whole_;
};

template <class Sample, class Real>
OrvaStatus ApplyKaiser(const Sample* src, Sample* dst, int32_t len, Real alpha) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  // The largest argument whose series stays in the range of the type, squared terms included.
  constexpr double kLimit = std::is_same_v<Real, double> ? 308.0 : 38.0;
  if (__builtin_fabs(static_cast<double>(alpha)) * (len - 1) * 0.5 > kLimit) return ORVA_STS_KAISER_ALPHA_ERR;
  ApplyWindow(src, dst, len, 0, Kaiser<Real>(len, alpha));
  return ORVA_STS_NO_ERR;
}

}  // namespace

// A member and its twin in place.
#define TZM_KAISER(member, in_place, T, Alpha)                         \
  OrvaStatus member(const T* src, T* dst, int32_t len, Alpha alpha) {  \
    return ApplyKaiser(src, dst, len, alpha);                          \
  }                                                                    \
  OrvaStatus in_place(T* srcDst, int32_t len, Alpha alpha) {           \
    return member(srcDst, srcDst, len, alpha);                         \
  }

TZM_KAISER(ORVAS_WinKaiser_16s, ORVAS_WinKaiser_16s_I, Orva16s, Orva32f)
TZM_KAISER(ORVAS_WinKaiser_16sc, ORVAS_WinKaiser_16sc_I, Orva16sc, Orva32f)
TZM_KAISER(ORVAS_WinKaiser_32f, ORVAS_WinKaiser_32f_I, Orva32f, Orva32f)
TZM_KAISER(ORVAS_WinKaiser_32fc, ORVAS_WinKaiser_32fc_I, Orva32fc, Orva32f)
TZM_KAISER(ORVAS_WinKaiser_64f, ORVAS_WinKaiser_64f_I, Orva64f, Orva64f)
TZM_KAISER(ORVAS_WinKaiser_64fc, ORVAS_WinKaiser_64fc_I, Orva64fc, Orva64f)
#undef TZM_KAISER
