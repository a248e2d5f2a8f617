/* hum ELECTROCARDIOGRAM: the recording without the 60 Hz hum of the mains. An adaptive filter is given a clean 60 Hz
 * tone and learns to make of it what it finds of the hum in the recording; what it cannot make is the heart. */
#include "support.h"

int main(int argc, char** argv) {
  enum { TAPS = 6 }; /* a period of the hum at 360 samples per second */
  const Orva32f magn = 1, phase = 0, mu = 0.0005f;
  const Recording recording = ReadRecording(argc, argv, 1);
  const int32_t len = recording.len;
  Orva32f* tone = (Orva32f*)Allocate((size_t)len + TAPS, sizeof(Orva32f));
  Orva32f* hum = (Orva32f*)Allocate((size_t)len, sizeof(Orva32f));
  FIRLMSState* filter = NULL;
  int32_t i;

  /* The tone begins TAPS samples early, to fill the delay line of the filter. Null taps are zeros: it knows nothing. */
  CHECK(ORVAS_Tone_32f(tone, len + TAPS, magn, 60.0f / (Orva32f)recording.rate, &phase));
  CHECK(ORVAS_FIRLMSInit_32f(&filter, NULL, TAPS, tone, 0));

  /* Each output is the filter's idea of the hum; the taps follow, in steps of mu, what it missed. */
  CHECK(ORVAS_FIRLMS_32f(filter, tone + TAPS, recording.samples, hum, len, mu));
  CHECK(ORVAS_FIRLMSRelease_32f(filter));

  printf("recorded,cleaned\n");
  for (i = 0; i < len; ++i) printf("%.9g,%.9g\n", recording.samples[i], recording.samples[i] - hum[i]);
  free(tone);
  free(hum);
  FreeRecording(recording);
  return 0;
}
