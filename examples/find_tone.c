/* Finds a tone: one second of it, its power spectrum by Welch's method, the strongest bin. */
#include <math.h>
#include <signal_tzm.h>
#include <stdio.h>

int main(void) {
  enum { RATE = 48000, SEGMENT = 960, BINS = SEGMENT / 2 + 1 };
  static Orva32f tone[RATE], density[BINS];
  int i, peak = 0;
  for (i = 0; i < RATE; ++i) tone[i] = (Orva32f)sin(6.283185307179586 * 1000.0 * i / (double)RATE);
  OrvaStatus status = ORVAS_Pwelch_32f(tone, NULL, density, RATE, 0, SEGMENT, 0.5);
  if (status != ORVA_STS_NO_ERR) return printf("status %d\n", status), 1;
  for (i = 1; i < BINS; ++i) peak = density[i] > density[peak] ? i : peak;
  printf("strongest: %d Hz\n", peak * RATE / SEGMENT);
  return 0;
}
