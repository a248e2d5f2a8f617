/* envelope RECORDING: how loud the recording is at every moment. The Hilbert transform makes of a real signal a complex
 * one, the analytic signal, that turns as the signal swings; its magnitude is the envelope. */
#include "support.h"

int main(int argc, char** argv) {
  const Recording recording = ReadRecording(argc, argv, 1);
  Orva32fc* analytic = (Orva32fc*)Allocate((size_t)recording.len, sizeof(Orva32fc));
  Orva32f* envelope = (Orva32f*)Allocate((size_t)recording.len, sizeof(Orva32f));
  OrvaHilbertSpec* spec = NULL;
  int32_t i;

  CHECK(ORVAS_HilbertInit_32f32fc(recording.len, &spec)); /* made for one length, used as often as you like */
  CHECK(ORVAS_Hilbert_32f32fc(recording.samples, analytic, recording.len, spec));
  CHECK(ORVAS_Magnitude_32fc(analytic, envelope, recording.len));

  printf("envelope\n");
  for (i = 0; i < recording.len; ++i) printf("%.9g\n", envelope[i]);
  CHECK(ORVAS_HilbertRelease_32f32fc(spec));
  free(analytic);
  free(envelope);
  FreeRecording(recording);
  return 0;
}
