/* telephone RECORDING: what a telephone lets through, 300 to 3400 Hz. The recording goes through the filter in blocks,
 * as sound comes from a microphone: the filter's output has no seams. */
#include "support.h"

int main(int argc, char** argv) {
  enum { TAPS = 513, BLOCK = 480, NORMALISED = 1 };
  static Orva64f design[TAPS];
  static Orva32f taps[TAPS];
  static Orva16s heard[BLOCK], past[TAPS - 1]; /* silence before the first sample */
  const Recording recording = ReadRecording(argc, argv, 1);
  FIRGenState* work = NULL;
  FIRSRState* filter = NULL;
  int32_t i, start;

  /* The filter's taps, by the window method. Frequencies are fractions of the sampling rate. */
  CHECK(ORVAS_FIRGenInit_64f(TAPS, &work));
  CHECK(ORVAS_FIRGenBandpass_64f(300.0 / recording.rate, 3400.0 / recording.rate, design, TAPS, ORVA_WINDOW_HAMMING,
                                 NORMALISED, work));
  CHECK(ORVAS_FIRGenRelease(work));
  for (i = 0; i < TAPS; ++i) taps[i] = (Orva32f)design[i];

  /* 16-bit samples run on the state of 32f. What has to be remembered from block to block is in `past`. */
  CHECK(ORVAS_FIRSRInit_32f(taps, TAPS, BLOCK, ORVA_ROUTE_DIRECT, &filter));
  printf("said,heard\n");
  for (start = 0; start < recording.len; start += BLOCK) {
    const Orva16s* said = recording.counts + start;
    const int32_t len = recording.len - start < BLOCK ? recording.len - start : BLOCK;
    CHECK(ORVAS_FIRSR_16s(said, heard, len, filter, past, past));
    for (i = 0; i < len; ++i) printf("%d,%d\n", said[i], heard[i]);
  }
  CHECK(ORVAS_FIRSRRelease_32f(filter));
  FreeRecording(recording);
  return 0;
}
