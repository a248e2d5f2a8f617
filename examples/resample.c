/* resample RECORDING: the recording at 16000 samples per second, as speech recognisers want it. */
#include <string.h>

#include "support.h"

int main(int argc, char** argv) {
  enum { TO_RATE = 16000 };
  const Recording recording = ReadRecording(argc, argv, 1);
  ResamplePolyphaseFixedState* resampler = NULL;
  int32_t tapsLen, reach, outLen, i, up = TO_RATE, rest = recording.rate;
  Orva32f *padded, *dst;
  Orva64s time;

  /* 64 samples wide, cut off at 0.9 of the new half rate; alpha 9 keeps what would alias about 90 dB down. */
  CHECK(ORVAS_ResamplePolyphaseFixedInit_32f(recording.rate, TO_RATE, 64, 0.9f, 9, &resampler));

  /* The filter reaches `reach` samples to either side: its length is 2 * U * reach, with U the new rate over the
   * greatest common divisor of the two. The recording gets as much silence around it. */
  CHECK(ORVAS_ResamplePolyphaseFixedGetFilter_32f(resampler, NULL, &tapsLen));
  while (rest != 0) {
    const int32_t remainder = up % rest;
    up = rest;
    rest = remainder;
  }
  reach = tapsLen / 2 / (TO_RATE / up);
  padded = (Orva32f*)Allocate((size_t)recording.len + 2 * (size_t)reach, sizeof(Orva32f));
  memcpy(padded + reach - 1, recording.samples, (size_t)recording.len * sizeof(Orva32f));

  /* Time counts in 1/TO_RATE of a source sample. It begins at the first sample behind the silence, and the outputs
   * cover `len` samples from there. */
  dst = (Orva32f*)Allocate((size_t)((Orva64s)recording.len * TO_RATE / recording.rate) + 1, sizeof(Orva32f));
  time = (Orva64s)(reach - 1) * TO_RATE;
  CHECK(ORVAS_ResamplePolyphaseFixed_32f(padded, recording.len, dst, 1, &time, &outLen, resampler));

  printf("sample\n");
  for (i = 0; i < outLen; ++i) printf("%.9g\n", dst[i]);
  CHECK(ORVAS_ResamplePolyphaseFixedRelease_32f(resampler));
  free(padded);
  free(dst);
  FreeRecording(recording);
  return 0;
}
