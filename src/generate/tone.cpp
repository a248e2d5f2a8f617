// Tones: a sampled sinusoid by a linear recurrence in binary64, two samples apart.
#include <signal_tzm/elementary.h>
#include <signal_tzm/generate.h>

#include "frame/call.h"
#include "frame/calls.h"
#include "frame/drive.h"

#include <cmath>

using namespace tzm;

namespace {

// Four values as four parts of samples in a row; the integers are truncated and saturated.
template <class Part, class V = Vec<TwoDoubles>>
TZM_INLINE void StoreFour(V low, V high, Part* to) {
  if constexpr (std::is_same_v<Part, Orva64f>) {
    hn::StoreU(low, TwoDoubles(), to);
    hn::StoreU(high, TwoDoubles(), to + 2);
  } else if constexpr (std::is_same_v<Part, Orva32f>) {
    const hn::FixedTag<float, 4> d;
    hn::StoreU(NarrowPair(d, low, high), d, to);
  } else {
    const hn::FixedTag<Part, 4> d;
    if constexpr (hn::MaxLanes(Full<double>()) >= 4) {
      const hn::FixedTag<hn::TFromV<V>, 4> four;
      hn::StoreU(hn::DemoteTo(d, TruncateToInt32(hn::Combine(four, high, low))), d, to);
    } else {
      hn::StoreU(hn::DemoteTo(d, hn::Combine(FourInts(), TruncateToInt32(high), TruncateToInt32(low))), d, to);
    }
  }
}

// One value; an integer is truncated and loses what is above its 16 bits.
template <class Part>
TZM_INLINE void StoreOne(double value, Part* to) {
  if constexpr (std::is_integral_v<Part>) {
    const hn::CappedTag<double, 1> one;
    StoreElement(static_cast<Part>(hn::GetLane(TruncateToInt32(hn::Set(one, value)))), to);
  } else {
    StoreElement(static_cast<Part>(value), to);
  }
}

// The recurrence of two samples at a time: y[i] = 2 cos(2w) y[i-2] - y[i-4].
struct Chain {
  Vec<TwoDoubles> last, now;

  explicit Chain(const double (&y)[4]) : last(hn::LoadU(TwoDoubles(), y)), now(hn::LoadU(TwoDoubles(), y + 2)) {}
  TZM_INLINE Vec<TwoDoubles> Next(Vec<TwoDoubles> factor) {
    const auto next = hn::MulSub(factor, now, last);
    last = now;
    return now = next;
  }
};

template <class Sample, class Magnitude, class Real>
OrvaStatus Tone(Sample* dst, int32_t len, Magnitude magn, Real rFreq, const Real* phase, Real bound) {
  if (OrvaStatus status = CheckPointers(dst, phase)) return status;
  const auto readPhase = [=] { return static_cast<double>(LoadElement(phase)); };
  const double p = readPhase();
  if (p < 0 || p >= kTwoPi) return ORVA_STS_RANGE_ERR;
  if (len < 1) return ORVA_STS_SIZE_ERR;
  if (magn <= 0 || rFreq < 0 || rFreq >= bound) return ORVA_STS_RANGE_ERR;

  using Part = PartOf<Sample>;
  constexpr int kParts = tzm::kParts<Sample>;
  constexpr int kStep = std::is_integral_v<Part> ? 4 : 2;
  const double w = static_cast<double>(rFreq) * kTwoPi, m = magn;

  // The first four samples of the cosine and, in complex tones, of the sine: y[i] = 2 cos(w) y[i-1] - y[i-2].
  const double angles[] = {p, p + w, w};
  double cosines[3], y[kParts][4];
  ORVAS_Cos_64f(angles, cosines, 3);
  std::memcpy(y[0], cosines, 2 * sizeof(double));
  if constexpr (kParts == 2) ORVAS_Sin_64f(angles, y[1], 2);
  const double twiceCos = 2 * cosines[2];
  for (auto& part : y) {
    part[2] = Fma(twiceCos, part[1], -part[0]);
    part[3] = Fma(twiceCos, part[2], -part[1]);
  }
  const size_t head = std::min<size_t>(len, 4);
  for (size_t i = 0; i < head; ++i)
    for (int part = 0; part < kParts; ++part) StoreOne(y[part][i] * m, Reals(dst) + i * kParts + part);

  // The bulk is never seeded anew, so that its drift grows with the length.
  const auto factor = hn::Set(TwoDoubles(), Fma(twiceCos, twiceCos, -2.0)), scale = hn::Set(TwoDoubles(), m);
  const auto next = [=](Chain& chain) TZM_LAMBDA { return hn::Mul(chain.Next(factor), scale); };
  const auto body = [&](size_t count, Sample* samples) {
    Part* const to = Reals(samples);
    Chain re(y[0]);
    if constexpr (kParts == 2) {
      Chain im(y[1]);
      for (size_t i = 0; i < count; i += 2) {
        const auto c = next(re), s = next(im);
        StoreFour(hn::InterleaveLower(TwoDoubles(), c, s), hn::InterleaveUpper(TwoDoubles(), c, s), to + 2 * i);
      }
    } else {
      for (size_t i = 0; i < count; i += kStep) {
        const auto low = next(re);
        if constexpr (kStep == 2) StoreRounded(low, to + i);
        else StoreFour(low, next(re), to + i);
      }
    }
  };
  const auto tail = [&](size_t count, Sample* samples) {
    for (size_t i = 0; i < count; ++i) {
      Part* const to = Reals(samples + i);
      const double angle = Fma(w, static_cast<double>(samples + i - dst), readPhase());
      if constexpr (kParts == 2) {
        double sine, cosine;
        sincos(angle, &sine, &cosine);
        StoreOne(cosine * m, to);
        StoreOne(sine * m, to + 1);
      } else {
        StoreOne(cos(angle) * m, to);
      }
    }
  };
  BodyAndTail<kStep>(len - head, body, tail, dst + head);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_Tone_16s(Orva16s* dst, int32_t len, Orva16s magn, Orva32f rFreq, const Orva32f* phase) {
  return Tone(dst, len, magn, rFreq, phase, 0.5f);
}

OrvaStatus ORVAS_Tone_32f(Orva32f* dst, int32_t len, Orva32f magn, Orva32f rFreq, const Orva32f* phase) {
  return Tone(dst, len, magn, rFreq, phase, 0.5f);
}

OrvaStatus ORVAS_Tone_64f(Orva64f* dst, int32_t len, Orva64f magn, Orva64f rFreq, const Orva64f* phase) {
  return Tone(dst, len, magn, rFreq, phase, 0.5);
}

OrvaStatus ORVAS_Tone_16sc(Orva16sc* dst, int32_t len, Orva16s magn, Orva32f rFreq, const Orva32f* phase) {
  return Tone(dst, len, magn, rFreq, phase, 1.0f);
}

OrvaStatus ORVAS_Tone_32fc(Orva32fc* dst, int32_t len, Orva32f magn, Orva32f rFreq, const Orva32f* phase) {
  return Tone(dst, len, magn, rFreq, phase, 1.0f);
}

OrvaStatus ORVAS_Tone_64fc(Orva64fc* dst, int32_t len, Orva64f magn, Orva64f rFreq, const Orva64f* phase) {
  return Tone(dst, len, magn, rFreq, phase, 1.0);
}
