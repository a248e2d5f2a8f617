/* mains ELECTROCARDIOGRAM: the frequency of the mains by the recorder's clock, to a thousandth of a hertz. The chirp-Z
 * transform is a Fourier transform that looks at a narrow band only, as closely as you like. */
#include <math.h>

#include "support.h"

int main(int argc, char** argv) {
  enum { POINTS = 1001 };
  static Orva64fc spectrum[POINTS];
  static Orva64f magnitude[POINTS];
  const double pi = 3.141592653589793, low = 59.9, step = 0.0002; /* hertz */
  const Recording recording = ReadRecording(argc, argv, 1);
  Orva64f* src = (Orva64f*)Allocate((size_t)recording.len, sizeof(Orva64f));
  Orva64fc from, by; /* the first point on the unit circle, and the turn from point to point */
  int32_t i, best = 0;

  for (i = 0; i < recording.len; ++i) src[i] = recording.samples[i];
  CHECK(ORVAS_WinHann_64f_I(src, recording.len)); /* keeps the heart's own frequencies from leaking into the band */

  from.re = cos(2 * pi * low / recording.rate);
  from.im = sin(2 * pi * low / recording.rate);
  by.re = cos(2 * pi * step / recording.rate);
  by.im = -sin(2 * pi * step / recording.rate); /* w has the sign of the Fourier transform's exponent, a the other */
  CHECK(ORVAS_CZT_64f(src, recording.len, spectrum, POINTS, by, from));
  CHECK(ORVAS_Magnitude_64fc(spectrum, magnitude, POINTS));

  printf("hertz,magnitude\n");
  for (i = 0; i < POINTS; ++i) {
    printf("%.9g,%.17g\n", low + i * step, magnitude[i]);
    if (magnitude[i] > magnitude[best]) best = i;
  }
  fprintf(stderr, "mains: %.4f Hz\n", low + best * step);
  free(src);
  FreeRecording(recording);
  return 0;
}
