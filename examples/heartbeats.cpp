// heartbeats ELECTROCARDIOGRAM: when the heart beats. The steep swing of each beat lies between 5 and 15 Hz: a
// bandpass keeps it, a moving root mean square makes one hill of it, and the hills that are high, and far enough from
// a higher one, are the beats.
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "support.h"

// `src` through a filter of an odd number of taps that are symmetric, without the delay that it causes.
static std::vector<Orva64f> Filtered(const std::vector<Orva64f>& src, const std::vector<Orva64f>& taps) {
  const auto tapsLen = static_cast<int32_t>(taps.size()), len = static_cast<int32_t>(src.size()) + tapsLen / 2;
  std::vector<Orva64f> padded(src), dst(static_cast<size_t>(len));
  padded.resize(dst.size());  // zeros behind the end
  FIRSRState* filter = nullptr;
  CHECK(ORVAS_FIRSRInit_64f(taps.data(), tapsLen, len, ORVA_ROUTE_BY_LENGTH, &filter));
  CHECK(ORVAS_FIRSR_64f(padded.data(), dst.data(), len, filter, nullptr, nullptr));
  CHECK(ORVAS_FIRSRRelease_64f(filter));
  dst.erase(dst.begin(), dst.begin() + tapsLen / 2);
  return dst;
}

int main(int argc, char** argv) {
  constexpr int32_t kNormalised = 1;
  const Recording recording = ReadRecording(argc, argv, 1);
  const int32_t rate = recording.rate, len = recording.len;
  const double hertz = 1.0 / rate;  // as a fraction of the sampling rate, which is how filters take frequencies

  std::vector<Orva64f> band(static_cast<size_t>(rate / 2 * 2 + 1));
  FIRGenState* work = nullptr;
  CHECK(ORVAS_FIRGenInit_64f(static_cast<int32_t>(band.size()), &work));
  CHECK(ORVAS_FIRGenBandpass_64f(5 * hertz, 15 * hertz, band.data(), static_cast<int32_t>(band.size()),
                                 ORVA_WINDOW_HAMMING, kNormalised, work));
  CHECK(ORVAS_FIRGenRelease(work));
  const int32_t width = rate * 3 / 40 * 2 + 1;  // about 0.15 seconds
  const std::vector<Orva64f> mean(static_cast<size_t>(width), 1.0 / width);

  std::vector<Orva64f> swing = Filtered({recording.samples, recording.samples + len}, band);
  CHECK(ORVAS_Sqr_64f_I(swing.data(), len));
  std::vector<Orva64f> hills = Filtered(swing, mean);

  CHECK(ORVAS_Threshold_LTVal_64f_I(hills.data(), len, 0, 0));  // rounding leaves less than nothing where it is quiet
  CHECK(ORVAS_Sqrt_64f_I(hills.data(), len));

  // The hills above seven tenths of the mean, from the highest down; a heart takes three tenths of a second to beat
  // again, and a lower hill within that is part of the higher one.
  Orva64f level;
  CHECK(ORVAS_Mean_64f(hills.data(), len, &level));
  std::vector<int32_t> tops, beats;
  for (int32_t i = 1; i + 1 < len; ++i) {
    const Orva64f height = hills[size_t(i)];
    if (height >= 0.7 * level && height > hills[size_t(i) - 1] && height > hills[size_t(i) + 1]) tops.push_back(i);
  }
  std::sort(tops.begin(), tops.end(), [&](int32_t a, int32_t b) { return hills[size_t(a)] > hills[size_t(b)]; });
  for (const int32_t top : tops) {
    const auto close = [&](int32_t beat) { return std::abs(beat - top) < rate * 3 / 10; };
    if (std::none_of(beats.begin(), beats.end(), close)) beats.push_back(top);
  }
  std::sort(beats.begin(), beats.end());
  printf("seconds,height\n");
  for (const int32_t beat : beats) printf("%.9g,%.17g\n", beat * hertz, hills[size_t(beat)]);
  FreeRecording(recording);
}
