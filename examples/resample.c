/* resample RECORDING: the recording at 16000 samples per second, as speech recognisers want it. */
#include <string.h>

#include "support.h"

int main(int argc, char** argv) {
  enum { TO_RATE = 16000, WIDTH = 64 };
  const Recording recording = ReadRecording(argc, argv, 1);
  const int32_t len = recording.len, rate = recording.rate;
  ResamplePolyphaseFixedState* resampler = NULL;
  int32_t reach, outLen, i;
  Orva32f *padded, *dst;
  Orva64s time;

  /* The filter: 64 samples wide (of the lower rate), cut off at 0.9 of the lower rate's half. Alpha 9 leaves of what
   * would alias a part in 30000. */
  CHECK(ORVAS_ResamplePolyphaseFixedInit_32f(rate, TO_RATE, WIDTH, 0.9f, 9, &resampler));

  /* It reaches half its width to either side, rounded up to a multiple of 4: so much silence, or more, has to be around
   * the recording. */
  reach = WIDTH / 2 * (rate > TO_RATE ? rate / TO_RATE + 1 : 1) + 4;
  padded = (Orva32f*)Allocate((size_t)len + 2 * (size_t)reach, sizeof(Orva32f));
  memcpy(padded + reach, recording.samples, (size_t)len * sizeof(Orva32f));

  /* Time is in 1/TO_RATE of a source sample: the outputs begin at the first sample and cover all `len` of them. */
  time = (Orva64s)reach * TO_RATE;
  dst = (Orva32f*)Allocate((size_t)((Orva64s)len * TO_RATE / rate) + 1, sizeof(Orva32f));
  CHECK(ORVAS_ResamplePolyphaseFixed_32f(padded, len, dst, 1, &time, &outLen, resampler));
  CHECK(ORVAS_ResamplePolyphaseFixedRelease_32f(resampler));

  printf("sample\n");
  for (i = 0; i < outLen; ++i) printf("%.9g\n", dst[i]);
  free(padded);
  free(dst);
  FreeRecording(recording);
  return 0;
}
