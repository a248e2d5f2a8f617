// heartbeats ELECTROCARDIOGRAM: when the heart beats. The steep swing of each beat lies between 5 and 15 Hz: a
// bandpass keeps it, squares make it stand out, a moving mean makes one hill of it, a threshold finds the hill.
#include <algorithm>
#include <vector>

#include "support.h"

// `src` through a filter of an odd number of taps that are symmetric, without the delay that it causes.
static std::vector<Orva64f> Filtered(const std::vector<Orva64f>& src, const std::vector<Orva64f>& taps) {
  const auto tapsLen = static_cast<int32_t>(taps.size()), len = static_cast<int32_t>(src.size()) + tapsLen / 2;
  std::vector<Orva64f> padded(src), dst(len);
  padded.resize(len);  // zeros behind the end
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

  std::vector<Orva64f> band(rate / 2 * 2 + 1);
  FIRGenState* work = nullptr;
  CHECK(ORVAS_FIRGenInit_64f(static_cast<int32_t>(band.size()), &work));
  CHECK(ORVAS_FIRGenBandpass_64f(5 * hertz, 15 * hertz, band.data(), static_cast<int32_t>(band.size()),
                                 ORVA_WINDOW_HAMMING, kNormalised, work));
  CHECK(ORVAS_FIRGenRelease(work));
  const std::vector<Orva64f> mean(rate / 16 * 2 + 1, 1.0 / (rate / 16 * 2 + 1));  // an eighth of a second

  std::vector<Orva64f> swing = Filtered({recording.samples, recording.samples + len}, band);
  CHECK(ORVAS_Sqr_64f_I(swing.data(), len));
  std::vector<Orva64f> hills = Filtered(swing, mean);

  // What lies below twice the mean becomes 0; each run of what is left is a beat, at its highest point.
  Orva64f level;
  CHECK(ORVAS_Mean_64f(hills.data(), len, &level));
  CHECK(ORVAS_Threshold_LTVal_64f_I(hills.data(), len, 2 * level, 0));
  printf("seconds,height\n");
  for (auto begin = hills.begin(); begin != hills.end();) {
    begin = std::find_if(begin, hills.end(), [](Orva64f x) { return x > 0; });
    const auto end = std::find(begin, hills.end(), 0.0), top = std::max_element(begin, end);
    if (top != hills.end()) printf("%.9g,%.17g\n", (top - hills.begin()) * hertz, *top);
    begin = end;
  }
  FreeRecording(recording);
}
