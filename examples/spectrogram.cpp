// spectrogram RECORDING: the power at every time and frequency. A line is a frame of 20 ms, its first number the time
// of its middle in seconds, the others the power in steps of 50 Hz.
#include <memory>
#include <vector>

#include "support.h"

// What an Init makes, a Release takes back: a smart pointer sees to it.
struct ReleaseSpec {
  void operator()(OrvaTransformSpec* spec) const { ORVAS_DFTRToCRelease_32f(spec); }
};

int main(int argc, char** argv) {
  const Recording recording = ReadRecording(argc, argv, 1);
  const int32_t frame = recording.rate / 50, step = frame / 4, bins = frame / 2 + 1;
  if (recording.len < frame) return fprintf(stderr, "shorter than a frame\n"), 1;

  // A real transform of any length (the FFT family takes powers of two only).
  OrvaTransformSpec* made = nullptr;
  CHECK(ORVAS_DFTRToCInit_32f(frame, ORVA_DIVIDE_NONE, &made));
  const std::unique_ptr<OrvaTransformSpec, ReleaseSpec> spec(made);

  std::vector<Orva32f> windowed(static_cast<size_t>(frame)), power(static_cast<size_t>(bins));
  std::vector<Orva32fc> spectrum(power.size());
  for (int32_t start = 0; start + frame <= recording.len; start += step) {
    CHECK(ORVAS_WinHann_32f(recording.samples + start, windowed.data(), frame));
    // The half spectrum comes as an array of reals: real part, imaginary part, ...
    CHECK(ORVAS_DFTRToC_32f(windowed.data(), &spectrum[0].re, spec.get()));
    CHECK(ORVAS_PowerSpectr_32fc(spectrum.data(), power.data(), bins));

    printf("%.9g", (start + 0.5 * frame) / recording.rate);
    for (Orva32f value : power) printf(",%.9g", value);
    printf("\n");
  }
  FreeRecording(recording);
}
