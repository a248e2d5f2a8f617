// FIR design by the window method: lowpass, highpass, bandpass and bandstop taps of linear phase.
#include <signal_tzm/arith.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/fir.h>
#include <signal_tzm/generate.h>
#include <signal_tzm/reduce.h>

#include "frame/call.h"
#include "frame/vector.h"

#include <cmath>

using namespace tzm;

namespace {

constexpr int32_t kFewestTaps = 5;

// cos(kb) and sin(kb) for k = 0, 1, ... by the recurrence v[k+1] = 2 cos(b) v[k] - v[k-1], for
// b = 2 pi f; and the angle A = b (T-1)/2, by which the middle of the taps is turned to 0.
class Oscillator {
 public:
  Oscillator(double frequency, int32_t tapsLen) {
    sincos(kTwoPi * frequency, &sin_, &cos_);
    twice_ = 2 * cos_;
    sincos(kPi * frequency * (tapsLen - 1), &middleSin, &middleCos);
  }
  // (c, s) . (cos kb, sin kb)
  double Turn(double c, double s) const { return c * lastCos_ + s * lastSin_; }
  void Next() {
    const double cosine = twice_ * cos_ - lastCos_, sine = twice_ * sin_ - lastSin_;
    lastCos_ = cos_;
    lastSin_ = sin_;
    cos_ = cosine;
    sin_ = sine;
  }
  double middleCos, middleSin;

 private:
  double lastCos_ = 1, lastSin_ = 0, cos_, sin_, twice_;
};

// sin(2 pi f m)/pi and cos(2 pi f m)/pi, m counted from the middle, for ascending taps.
class Tone {
 public:
  Tone(double frequency, int32_t tapsLen)
      : turn_(frequency, tapsLen), cos_(turn_.middleCos / kPi), sin_(turn_.middleSin / kPi) {}
  double Sine() const { return turn_.Turn(-sin_, cos_); }
  double Cosine() const { return turn_.Turn(cos_, sin_); }
  void Next() { turn_.Next(); }

 private:
  Oscillator turn_;
  double cos_, sin_;
};

// The work buffer's first entries: the window's values.
Orva64f* Window(FIRGenState* buffer) { return reinterpret_cast<Orva64f*>(buffer); }

OrvaStatus CheckDesign(const Orva64f* taps, int32_t tapsLen, const FIRGenState* buffer) {
  if (OrvaStatus status = CheckPointers(taps, buffer)) return status;
  return tapsLen < kFewestTaps ? ORVA_STS_SIZE_ERR : ORVA_STS_NO_ERR;
}

// A bad frequency deliberately has the status of a bad length.
OrvaStatus CheckFrequency(double frequency) {
  return frequency > 0 && frequency < 0.5 ? ORVA_STS_NO_ERR : ORVA_STS_SIZE_ERR;
}

OrvaStatus CheckBand(double low, double high) {
  if (OrvaStatus status = CheckFrequency(low)) return status;
  if (OrvaStatus status = CheckFrequency(high)) return status;
  return low < high ? ORVA_STS_NO_ERR : ORVA_STS_SIZE_ERR;
}

OrvaStatus MakeWindow(FIRGenState* buffer, int32_t len, int32_t kind) {
  ORVAS_Set_64f(1.0, Window(buffer), len);
  switch (kind) {
    case ORVA_WINDOW_BARTLETT: return ORVAS_WinBartlett_64f_I(Window(buffer), len);
    case ORVA_WINDOW_BLACKMAN: return ORVAS_WinBlackmanOpt_64f_I(Window(buffer), len);
    case ORVA_WINDOW_HAMMING: return ORVAS_WinHamming_64f_I(Window(buffer), len);
    case ORVA_WINDOW_HANN: return ORVAS_WinHann_64f_I(Window(buffer), len);
    default: return ORVA_STS_FIRGEN_WINDOW_ERR;
  }
}

// taps[k] = window[k] * value(k) / m for the first half; the centre, where there is one, has no window.
template <class Value>
void FillHalf(Orva64f* taps, int32_t tapsLen, FIRGenState* buffer, double centre, Value value) {
  const double middle = (tapsLen - 1) / 2.0;
  for (int32_t k = 0; k < tapsLen / 2; ++k) StoreElement(Window(buffer)[k] * value() / (k - middle), taps + k);
  if (tapsLen % 2 != 0) StoreElement(centre, taps + tapsLen / 2);
}

// Scales so that `total`, the gain at one frequency, becomes 1 or -1.
void Normalise(Orva64f* taps, int32_t tapsLen, double total) {
  const double by = total < 0 ? -total : total;  // a zero keeps its sign
  ORVAS_DivC_64f(taps, by, taps, tapsLen / 2);
  if (tapsLen % 2 != 0) StoreElement(LoadElement(taps + tapsLen / 2) / by, taps + tapsLen / 2);
}

// Twice a sum over the first half, and the centre tap, with its sign at that frequency.
double Total(const Orva64f* taps, int32_t tapsLen, double half, bool negativeCentre) {
  const double total = 2 * half;
  if (tapsLen % 2 == 0) return total;
  const double centre = LoadElement(taps + tapsLen / 2);
  return negativeCentre ? total - centre : total + centre;
}

double GainAtZero(const Orva64f* taps, int32_t tapsLen) {
  double half = 0;
  ORVAS_Sum_64f(taps, tapsLen / 2, &half);
  return Total(taps, tapsLen, half, false);
}

double GainAtNyquist(const Orva64f* taps, int32_t tapsLen) {
  double sums[2] = {0, 0};
  for (int32_t k = 0; k < tapsLen / 2; ++k) sums[k % 2] += LoadElement(taps + k);
  return Total(taps, tapsLen, sums[0] - sums[1], tapsLen / 2 % 2 != 0);
}

double GainAt(double frequency, const Orva64f* taps, int32_t tapsLen) {
  Oscillator turn(frequency, tapsLen);
  double half = 0;
  for (int32_t k = 0; k < tapsLen / 2; ++k, turn.Next())
    half += LoadElement(taps + k) * turn.Turn(turn.middleCos, turn.middleSin);
  return Total(taps, tapsLen, half, false);
}

void Mirror(Orva64f* taps, int32_t tapsLen, bool odd) {
  for (int32_t k = 0; k < tapsLen / 2; ++k) {
    const double tap = LoadElement(taps + k);
    StoreElement(odd ? -tap : tap, taps + (tapsLen - 1 - k));
  }
}

}  // namespace

OrvaStatus ORVAS_FIRGenInit_64f(int32_t tapsLen, FIRGenState** buffer) {
  if (OrvaStatus status = CheckPointers(buffer)) return status;
  if (tapsLen < kFewestTaps) return ORVA_STS_SIZE_ERR;
  // The size of the block is fixed, and with it the limit of the length; only the window's part of it is used.
  const int64_t len = tapsLen, windowBytes = (8 * len + 15) / 16 * 16, tableBytes = 16 * len;
  if (len > 0x7FFFFFE || tableBytes >= 0x7FFFFFFF - windowBytes) return ORVA_STS_OVERFLOW_ERR;
  Orva8u* const block = ORVAS_Malloc_8u(static_cast<int32_t>(windowBytes + tableBytes));
  if (block == nullptr) return ORVA_STS_MEM_ALLOC_ERR;
  *buffer = reinterpret_cast<FIRGenState*>(block);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_FIRGenLowpass_64f(Orva64f relFreq, Orva64f* taps, int32_t tapsLen, int32_t winType,
                                   int32_t doNormal, FIRGenState* buffer) {
  if (OrvaStatus status = CheckDesign(taps, tapsLen, buffer)) return status;
  if (OrvaStatus status = CheckFrequency(relFreq)) return status;
  if (OrvaStatus status = MakeWindow(buffer, tapsLen, winType)) return status;
  Tone tone(relFreq, tapsLen);
  FillHalf(taps, tapsLen, buffer, 2 * relFreq, [&] {
    const double value = tone.Sine();
    tone.Next();
    return value;
  });
  if (doNormal == 1) Normalise(taps, tapsLen, GainAtZero(taps, tapsLen));
  Mirror(taps, tapsLen, false);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_FIRGenHighpass_64f(Orva64f relFreq, Orva64f* taps, int32_t tapsLen, int32_t winType,
                                    int32_t doNormal, FIRGenState* buffer) {
  if (OrvaStatus status = CheckDesign(taps, tapsLen, buffer)) return status;
  if (OrvaStatus status = CheckFrequency(relFreq)) return status;
  if (OrvaStatus status = MakeWindow(buffer, tapsLen, winType)) return status;
  // An even number of taps has no gain at the Nyquist frequency unless the taps are odd.
  const bool even = tapsLen % 2 == 0;
  Tone tone(relFreq, tapsLen);
  FillHalf(taps, tapsLen, buffer, 1 - 2 * relFreq, [&] {
    const double value = even ? -tone.Cosine() : -tone.Sine();
    tone.Next();
    return value;
  });
  if (doNormal == 1) Normalise(taps, tapsLen, GainAtNyquist(taps, tapsLen));
  Mirror(taps, tapsLen, even);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_FIRGenBandpass_64f(Orva64f relFreqLow, Orva64f relFreqHigh, Orva64f* taps, int32_t tapsLen,
                                    int32_t winType, int32_t doNormal, FIRGenState* buffer) {
  if (OrvaStatus status = CheckDesign(taps, tapsLen, buffer)) return status;
  if (OrvaStatus status = CheckBand(relFreqLow, relFreqHigh)) return status;
  if (OrvaStatus status = MakeWindow(buffer, tapsLen, winType)) return status;
  Tone low(relFreqLow, tapsLen), high(relFreqHigh, tapsLen);
  FillHalf(taps, tapsLen, buffer, 2 * (relFreqHigh - relFreqLow), [&] {
    const double value = high.Sine() - low.Sine();
    low.Next();
    high.Next();
    return value;
  });
  if (doNormal == 1) Normalise(taps, tapsLen, GainAt((relFreqLow + relFreqHigh) / 2, taps, tapsLen));
  Mirror(taps, tapsLen, false);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_FIRGenBandstop_64f(Orva64f relFreqLow, Orva64f relFreqHigh, Orva64f* taps, int32_t tapsLen,
                                    int32_t winType, int32_t doNormal, FIRGenState* buffer) {
  if (OrvaStatus status = CheckDesign(taps, tapsLen, buffer)) return status;
  if (OrvaStatus status = CheckBand(relFreqLow, relFreqHigh)) return status;
  if (OrvaStatus status = MakeWindow(buffer, tapsLen, winType)) return status;
  // sin(pi m)/pi, which vanishes for an odd number of taps and alternates for an even one.
  double whole = tapsLen % 2 != 0 ? 0 : tapsLen % 4 == 0 ? 1 / kPi : -1 / kPi;
  Tone low(relFreqLow, tapsLen), high(relFreqHigh, tapsLen);
  FillHalf(taps, tapsLen, buffer, 1 + 2 * (relFreqLow - relFreqHigh), [&] {
    const double value = low.Sine() - high.Sine() + whole;
    whole = -whole;
    low.Next();
    high.Next();
    return value;
  });
  if (doNormal == 1) Normalise(taps, tapsLen, GainAtZero(taps, tapsLen));
  Mirror(taps, tapsLen, false);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_FIRGenRelease(FIRGenState* buffer) {
  ORVAS_Free(buffer);
  return ORVA_STS_NO_ERR;
}
