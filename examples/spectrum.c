/* spectrum RECORDING: how the power of a recording is spread over the frequencies, by Welch's method. */
#include "support.h"

int main(int argc, char** argv) {
  enum { SEGMENT = 2048, BINS = SEGMENT / 2 + 1 };
  static Orva32f window[SEGMENT], density[BINS];
  const double pi = 3.141592653589793;
  const Recording recording = ReadRecording(argc, argv, 1);
  int i;

  /* A window operation multiplies samples by the window; of ones it makes the window itself. */
  for (i = 0; i < SEGMENT; ++i) window[i] = 1;
  CHECK(ORVAS_WinHann_32f_I(window, SEGMENT));

  /* The mean over segments of 2048 samples that overlap by half: 0 asks for transforms as long as the segments. */
  CHECK(ORVAS_Pwelch_32f(recording.samples, window, density, recording.len, 0, SEGMENT, 0.5));

  /* It is in power per radian per sample; a hertz is 2 pi / rate of these radians. */
  CHECK(ORVAS_MulC_32f_I((Orva32f)(2 * pi / recording.rate), density, BINS));

  printf("hertz,power per hertz\n");
  for (i = 0; i < BINS; ++i) printf("%.9g,%.9g\n", (double)i * recording.rate / (double)SEGMENT, density[i]);
  FreeRecording(recording);
  return 0;
}
