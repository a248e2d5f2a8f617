/* room RECORDING RESPONSE: the recording as it sounds in a room. What the room makes of a single click is its impulse
 * response; convolution with it does the same to every sample. */
#include "support.h"

int main(int argc, char** argv) {
  const Recording recording = ReadRecording(argc, argv, 1), response = ReadRecording(argc, argv, 2);
  const int32_t len = recording.len + response.len - 1; /* the room goes on sounding when the voice has stopped */
  Orva32f* dst = (Orva32f*)Allocate((size_t)len, sizeof(Orva32f));
  ConvState* state = NULL;
  int32_t i;

  CHECK(ORVAS_ConvInit_32f(recording.len, response.len, ORVA_ROUTE_BY_LENGTH, &state));
  CHECK(ORVAS_Convolve_32f(recording.samples, recording.len, response.samples, response.len, dst, state));
  CHECK(ORVAS_ConvRelease_32f(state));

  printf("sample\n");
  for (i = 0; i < len; ++i) printf("%.9g\n", dst[i]);
  free(dst);
  FreeRecording(recording);
  FreeRecording(response);
  return 0;
}
