// Goertzel: one bin of the discrete-time Fourier transform at any relative frequency, by a complex
// rotation in Horner form from the end of the signal to its start.
#include <signal_tzm/transform.h>

#include "frame/call.h"
#include "frame/vector.h"

#include <cmath>

using namespace tzm;

namespace {

// Every lane l sums src[lanes*m + l] * exp(-i lanes m theta); at the end it is turned by l*theta.
template <class Real>
struct Rotation {
  static constexpr size_t kLanes = 16 / sizeof(Real);
  using Lanes = LaneArray<Real, kLanes>;
  Lanes laneCos, laneSin;  // of l * theta
  Lanes stepCos, stepSin;  // of lanes * theta

  // Multiples of the angle from one sine and cosine, in binary64, rounded once to the sample's type.
  explicit Rotation(double frequency) {
    double s, c;
    sincos(kTwoPi * frequency, &s, &c);
    const double cos2 = Fma(2 * c, c, -1.0), sin2 = 2 * s * c;
    if constexpr (kLanes == 2) {
      const Real cosines[] = {1, c}, sines[] = {0, s};
      Fill(cosines, sines, cos2, sin2);
    } else {
      const double cos3 = Fma(4 * c, c, -3.0) * c, sin3 = Fma(-(4 * s), s, 3.0) * s;
      const Real cosines[] = {1, Real(c), Real(cos2), Real(cos3)}, sines[] = {0, Real(s), Real(sin2), Real(sin3)};
      Fill(cosines, sines, Real(Fma(2 * cos2, cos2, -1.0)), Real(2 * sin2 * cos2));
    }
  }

 private:
  void Fill(const Real* cosines, const Real* sines, Real cosine, Real sine) {
    laneCos = Lanes::Load(cosines);
    laneSin = Lanes::Load(sines);
    stepCos = Lanes::Set(cosine);
    stepSin = Lanes::Set(sine);
  }
};

template <class Sample, class Complex>
OrvaStatus Goertzel(const Sample* src, int32_t len, Complex* dst, double frequency) {
  using Real = decltype(dst->re);
  using Turn = Rotation<Real>;
  using Lanes = typename Turn::Lanes;
  constexpr bool kReal = std::is_same_v<Sample, Real>;
  const Turn turn(frequency);

  // The samples past the last whole block come first, in their lanes, zeros above them.
  const int32_t blocks = len / static_cast<int32_t>(Turn::kLanes);
  Sample tail[Turn::kLanes] = {};
  std::memcpy(tail, src + blocks * Turn::kLanes, len % Turn::kLanes * sizeof(Sample));
  Lanes re, im = Lanes::Set(0);
  if constexpr (kReal) re = Lanes::Load(tail);
  else Lanes::LoadComplex(Parts(tail), re, im);

  // Z' = x + Z * (C - iS)
  for (int32_t block = blocks - 1; block >= 0; --block) {
    const Sample* const from = src + block * Turn::kLanes;
    Lanes x, turned;
    if constexpr (kReal) {
      x = Lanes::Load(from);
      turned = im * turn.stepCos;
    } else {
      Lanes y;
      Lanes::LoadComplex(Parts(from), x, y);
      turned = MulAdd(im, turn.stepCos, y);
    }
    const Lanes next = MulAdd(im, turn.stepSin, MulAdd(re, turn.stepCos, x));
    im = NegMulAdd(re, turn.stepSin, turned);
    re = next;
  }

  const Lanes sumRe = MulAdd(im, turn.laneSin, re * turn.laneCos);
  const Lanes sumIm = NegMulAdd(re, turn.laneSin, im * turn.laneCos);
  StoreElement(Complex{sumRe.FoldPairs(), sumIm.FoldPairs()}, dst);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_Goertz_32f(const Orva32f* src, int32_t len, Orva32fc* dst, Orva32f rFreq) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (rFreq < 0 || rFreq >= 1) return ORVA_STS_REL_FREQ_ERR;
  return Goertzel(src, len, dst, rFreq);
}

OrvaStatus ORVAS_Goertz_64f(const Orva64f* src, int32_t len, Orva64fc* dst, Orva64f rFreq) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (rFreq < 0 || rFreq >= 1) return ORVA_STS_REL_FREQ_ERR;
  return Goertzel(src, len, dst, rFreq);
}

// The one member that takes 1.0, by deliberate exception.
OrvaStatus ORVAS_Goertz_32fc(const Orva32fc* src, int32_t len, Orva32fc* dst, Orva32f rFreq) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (rFreq < 0 || rFreq > 1) return ORVA_STS_REL_FREQ_ERR;
  return Goertzel(src, len, dst, rFreq);
}

OrvaStatus ORVAS_Goertz_64fc(const Orva64fc* src, int32_t len, Orva64fc* dst, Orva64f rFreq) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (rFreq < 0 || rFreq >= 1) return ORVA_STS_REL_FREQ_ERR;
  return Goertzel(src, len, dst, rFreq);
}
