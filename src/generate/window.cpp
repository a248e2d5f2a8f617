// Hann, Blackman and Bartlett windows: the cosine ones from a rotation of 4 (2 in binary64) angles at
// a time, so that no trigonometric function runs for a sample but for the last few pairs.
#include <signal_tzm/generate.h>

#include "frame/call.h"
#include "generate/window.h"

#include <bit>
#include <cmath>

using namespace tzm;

namespace {

// ---- Shapes: the window as a function of c = cos x ----
// Block is for vectors, One for the pairs past the last block. There a binary32 cosine comes from the
// members on integers, which hold the cosine in binary32 and the value in binary64.

struct Hann {
  template <class V>
  TZM_INLINE V Block(V c) const {
    const auto half = hn::Set(hn::DFromV<V>(), hn::TFromV<V>(0.5));
    return hn::NegMulAdd(c, half, half);
  }
  double One(double c) const { return Fma(-c, 0.5, 0.5); }
};

// (0.5 - c/2) + (alpha - c^2 alpha), where c^2 rounds by itself and both differences are fused.
template <class T>
struct Blackman {
  T alpha;

  template <class V>
  TZM_INLINE V Block(V c) const {
    const auto a = hn::Set(hn::DFromV<V>(), alpha);
    return hn::Add(Hann().Block(c), hn::NegMulAdd(hn::Mul(c, c), a, a));
  }
  double One(T c) const { return Hann().One(c) + Fma(-(c * c), alpha, alpha); }
};

// (a + 0.5 - c/2) - a (2c^2 - 1), every product fused into its sum but for the c^2 of a block.
struct BlackmanOpt64 {
  double a;

  template <class V>
  TZM_INLINE V Block(V c) const {
    const hn::DFromV<V> d;
    const auto cos2 = hn::MulAdd(hn::Set(d, 2.0), hn::Mul(c, c), hn::Set(d, -1.0));
    return hn::NegMulAdd(hn::Set(d, a), cos2, hn::NegMulAdd(c, hn::Set(d, 0.5), hn::Set(d, a + 0.5)));
  }
  double One(double c) const { return Fma(-a, Fma(2 * c, c, -1.0), Fma(-c, 0.5, a + 0.5)); }
};

// ---- The rotation ----

// Sine (or cosine) of 0 <= a < 3, for the seed: an odd polynomial in the distance r from the nearest
// multiple (odd multiple) of pi (pi/2), which is taken off by three fused steps with pi in three parts. Its degree is
// 15, its coefficients are fitted to the sine up to pi/2, from which it is 2e-16 away.
double SeedSineOrCosine(double a, bool cosine) {
  if (cosine && a < 1.4901e-08) return 1;  // 2^-26 in five digits: below, the cosine rounds to 1
  constexpr double kShift = 6755399441055744.0;  // 1.5 * 2^52: the last bits of a sum are its integer
  const double q = Fma(cosine ? a + 1.5707963267948966 : a, 0.3183098861837907, kShift);
  const double n = cosine ? q - kShift - 0.5 : q - kShift;
  double r = Fma(-n, 3.141592653589793, a);
  r = Fma(-n, 1.224646799147353e-16, r);
  r = Fma(-n, 2.165713347843828e-32, r);
  const double r2 = r * r;
  constexpr double kCoefficients[] = {-7.37705809619668e-13, 1.6048414030217128e-10, -2.5051890975380964e-08,
                                      2.7557316777625683e-06, -0.00019841269826540578, 0.008333333333291278,
                                      -0.1666666666666626};
  double p = kCoefficients[0];
  for (size_t k = 1; k < std::size(kCoefficients); ++k) p = Fma(p, r2, kCoefficients[k]);
  const double y = Fma(r2 * r, p, r);
  return std::bit_cast<uint64_t>(q) % 2 != 0 ? -y : y;
}

// Window values from the cosines and sines of the indices of one block, turned by the block's angle after
// each use: c' = c*C - s*S, s' = s*C + c*S, where the product written first is rounded.
template <class Sample, class Shape>
struct Rotated {
  using Types = WindowTypes<Sample>;
  using Part = typename Types::Part;
  using Real = typename Types::Real;
  using D = Full<Real>;
  using Lanes = LaneArray<double, Types::kBlock>;

  Shape shape;
  double w;  // the angle from one index to the next
  Lanes c, s, stepC, stepS;

  Rotated(int32_t len, Shape windowShape) : shape(windowShape), w(kTwoPi / (len - 1)) {
    double cosines[Types::kBlock] = {1}, sines[Types::kBlock] = {}, cosine = 0, sine = 0;
    if (static_cast<size_t>(len / 2) >= Types::kBlock) {  // else there is no block
      if constexpr (Types::kBlock == 4) {
        for (int k = 0; k < 4; ++k) {
          cosines[k] = SeedSineOrCosine(k * w, true);
          sines[k] = SeedSineOrCosine(k * w, false);
        }
      } else {
        sincos(w, &sines[1], &cosines[1]);
      }
      sincos(Types::kBlock * w, &sine, &cosine);
    }
    c = Lanes::Load(cosines);
    s = Lanes::Load(sines);
    stepC = Lanes::Set(cosine);
    stepS = Lanes::Set(sine);
  }

  // As many turns as the vector has blocks.
  template <class DB>
  TZM_INLINE Vec<DB> Block(DB d, size_t i) {
    if constexpr (hn::MaxLanes(d) > Types::kBlock) {
      const hn::Half<DB> half;
      const auto low = Block(half, i);
      return hn::Combine(d, Block(half, i), low);
    } else {
      const Lanes now = c;
      c = NegMulAdd(s, stepS, c * stepC);
      s = MulAdd(now, stepS, s * stepC);
      if constexpr (std::is_same_v<Real, double>) {
        return shape.Block(now.v[0]);
      } else if constexpr (std::is_integral_v<Part>) {  // deliberately the less precise of the two
        return shape.Block(Narrow(d, now));
      } else {
        Lanes value;
        for (size_t r = 0; r < Lanes::kRegisters; ++r) value.v[r] = shape.Block(now.v[r]);
        return Narrow(d, value);
      }
    }
  }
  Real One(size_t i) const {
    const double cosine = cos(static_cast<double>(i) * w);
    if constexpr (std::is_integral_v<Part>) return static_cast<Real>(shape.One(static_cast<float>(cosine)));
    else return static_cast<Real>(shape.One(cosine));
  }

 private:
  template <class DB>
  static TZM_INLINE Vec<DB> Narrow(DB d, const Lanes& x) {
    if constexpr (Lanes::kRegisters == 1) {
      return hn::DemoteTo(d, x.v[0]);
    } else {
      return NarrowPair(d, x.v[0], x.v[1]);
    }
  }
};

template <class Sample, class Shape>
OrvaStatus ApplyRotated(const Sample* src, Sample* dst, int32_t len, Shape shape) {
  ApplyWindow(src, dst, len, 0, Rotated<Sample, Shape>(len, shape));
  return ORVA_STS_NO_ERR;
}

template <class Sample>
OrvaStatus ApplyHann(const Sample* src, Sample* dst, int32_t len) {
  return ApplyRotated(src, dst, len, Hann());
}

// The members on floating samples hold alpha in binary64, those on integers in binary32.
template <class Sample>
using AlphaOf = std::conditional_t<std::is_integral_v<typename WindowTypes<Sample>::Part>, float, double>;

template <class Sample>
OrvaStatus ApplyBlackman(const Sample* src, Sample* dst, int32_t len, AlphaOf<Sample> alpha) {
  return ApplyRotated(src, dst, len, Blackman<AlphaOf<Sample>>{alpha});
}

template <class Sample>
OrvaStatus ApplyBlackmanOpt(const Sample* src, Sample* dst, int32_t len) {
  const double w = kTwoPi / (len - 1);
  if constexpr (std::is_same_v<typename WindowTypes<Sample>::Part, double>) {
    double sine, cosine;
    sincos(w, &sine, &cosine);
    return ApplyRotated(src, dst, len, BlackmanOpt64{-0.25 / (1 + cosine)});
  } else {
    const AlphaOf<Sample> cosine = static_cast<AlphaOf<Sample>>(cos(w));
    return ApplyBlackman(src, dst, len, AlphaOf<Sample>(-0.5) / (1 + cosine));
  }
}

// ---- Bartlett ----

template <class Real>
struct Triangle {
  using D = Full<Real>;
  Real step;

  template <class DB>
  TZM_INLINE Vec<DB> Block(DB d, size_t i) const {
    return hn::Mul(Indices(d, i), hn::Set(d, step));
  }
};

template <class Sample>
OrvaStatus ApplyBartlett(const Sample* src, Sample* dst, int32_t len) {
  using Real = typename WindowTypes<Sample>::Real;
  ApplyWindow(src, dst, len, 0, Triangle<Real>{Real(2) / static_cast<Real>(len - 1)});
  return ORVA_STS_NO_ERR;
}

}  // namespace

// A member and its twin in place.
#define TZM_WINDOW(member, in_place, T, apply, shortest)             \
  OrvaStatus member(const T* src, T* dst, int32_t len) {             \
    if (OrvaStatus status = CheckPointers(src, dst)) return status;  \
    if (len < shortest) return ORVA_STS_SIZE_ERR;                    \
    return apply(src, dst, len);                                     \
  }                                                                  \
  OrvaStatus in_place(T* srcDst, int32_t len) {                      \
    return member(srcDst, srcDst, len);                              \
  }

TZM_WINDOW(ORVAS_WinHann_16s, ORVAS_WinHann_16s_I, Orva16s, ApplyHann, 3)
TZM_WINDOW(ORVAS_WinHann_16sc, ORVAS_WinHann_16sc_I, Orva16sc, ApplyHann, 3)
TZM_WINDOW(ORVAS_WinHann_32f, ORVAS_WinHann_32f_I, Orva32f, ApplyHann, 3)
TZM_WINDOW(ORVAS_WinHann_32fc, ORVAS_WinHann_32fc_I, Orva32fc, ApplyHann, 3)
TZM_WINDOW(ORVAS_WinHann_64f, ORVAS_WinHann_64f_I, Orva64f, ApplyHann, 3)
TZM_WINDOW(ORVAS_WinHann_64fc, ORVAS_WinHann_64fc_I, Orva64fc, ApplyHann, 3)

TZM_WINDOW(ORVAS_WinBartlett_16s, ORVAS_WinBartlett_16s_I, Orva16s, ApplyBartlett, 3)
TZM_WINDOW(ORVAS_WinBartlett_16sc, ORVAS_WinBartlett_16sc_I, Orva16sc, ApplyBartlett, 3)
TZM_WINDOW(ORVAS_WinBartlett_32f, ORVAS_WinBartlett_32f_I, Orva32f, ApplyBartlett, 3)
TZM_WINDOW(ORVAS_WinBartlett_32fc, ORVAS_WinBartlett_32fc_I, Orva32fc, ApplyBartlett, 3)
TZM_WINDOW(ORVAS_WinBartlett_64f, ORVAS_WinBartlett_64f_I, Orva64f, ApplyBartlett, 3)
TZM_WINDOW(ORVAS_WinBartlett_64fc, ORVAS_WinBartlett_64fc_I, Orva64fc, ApplyBartlett, 3)

// With a given alpha, and with the usual one.
#define TZM_BLACKMAN(member, in_place, standard, standard_in_place, T, Alpha)  \
  OrvaStatus member(const T* src, T* dst, int32_t len, Alpha alpha) {          \
    if (OrvaStatus status = CheckPointers(src, dst)) return status;            \
    if (len < 3) return ORVA_STS_SIZE_ERR;                                     \
    return ApplyBlackman(src, dst, len, alpha);                                \
  }                                                                            \
  OrvaStatus in_place(T* srcDst, int32_t len, Alpha alpha) {                   \
    return member(srcDst, srcDst, len, alpha);                                 \
  }                                                                            \
  OrvaStatus standard(const T* src, T* dst, int32_t len) {                     \
    return member(src, dst, len, Alpha(-0.16));                                \
  }                                                                            \
  OrvaStatus standard_in_place(T* srcDst, int32_t len) {                       \
    return standard(srcDst, srcDst, len);                                      \
  }

TZM_BLACKMAN(ORVAS_WinBlackman_16s, ORVAS_WinBlackman_16s_I,
             ORVAS_WinBlackmanStd_16s, ORVAS_WinBlackmanStd_16s_I, Orva16s, Orva32f)
TZM_BLACKMAN(ORVAS_WinBlackman_16sc, ORVAS_WinBlackman_16sc_I,
             ORVAS_WinBlackmanStd_16sc, ORVAS_WinBlackmanStd_16sc_I, Orva16sc, Orva32f)
TZM_BLACKMAN(ORVAS_WinBlackman_32f, ORVAS_WinBlackman_32f_I,
             ORVAS_WinBlackmanStd_32f, ORVAS_WinBlackmanStd_32f_I, Orva32f, Orva32f)
TZM_BLACKMAN(ORVAS_WinBlackman_32fc, ORVAS_WinBlackman_32fc_I,
             ORVAS_WinBlackmanStd_32fc, ORVAS_WinBlackmanStd_32fc_I, Orva32fc, Orva32f)
TZM_BLACKMAN(ORVAS_WinBlackman_64f, ORVAS_WinBlackman_64f_I,
             ORVAS_WinBlackmanStd_64f, ORVAS_WinBlackmanStd_64f_I, Orva64f, Orva64f)
TZM_BLACKMAN(ORVAS_WinBlackman_64fc, ORVAS_WinBlackman_64fc_I,
             ORVAS_WinBlackmanStd_64fc, ORVAS_WinBlackmanStd_64fc_I, Orva64fc, Orva64f)
#undef TZM_BLACKMAN

// At length 3 the denominator of alpha would be 0.
TZM_WINDOW(ORVAS_WinBlackmanOpt_16s, ORVAS_WinBlackmanOpt_16s_I, Orva16s, ApplyBlackmanOpt, 4)
TZM_WINDOW(ORVAS_WinBlackmanOpt_16sc, ORVAS_WinBlackmanOpt_16sc_I, Orva16sc, ApplyBlackmanOpt, 4)
TZM_WINDOW(ORVAS_WinBlackmanOpt_32f, ORVAS_WinBlackmanOpt_32f_I, Orva32f, ApplyBlackmanOpt, 4)
TZM_WINDOW(ORVAS_WinBlackmanOpt_32fc, ORVAS_WinBlackmanOpt_32fc_I, Orva32fc, ApplyBlackmanOpt, 4)
TZM_WINDOW(ORVAS_WinBlackmanOpt_64f, ORVAS_WinBlackmanOpt_64f_I, Orva64f, ApplyBlackmanOpt, 4)
TZM_WINDOW(ORVAS_WinBlackmanOpt_64fc, ORVAS_WinBlackmanOpt_64fc_I, Orva64fc, ApplyBlackmanOpt, 4)
#undef TZM_WINDOW
