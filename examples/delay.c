/* delay NEAR FAR: how much later the far microphone hears what the near one hears. Where the cross-correlation of the
 * two recordings is largest, they fit each other best. */
#include "support.h"

int main(int argc, char** argv) {
  enum { LOWEST = -2400, LAGS = 4801 };
  static Orva32f correlation[LAGS]; /* correlation[i] belongs to a lag of LOWEST + i samples */
  const Recording near = ReadRecording(argc, argv, 1), far = ReadRecording(argc, argv, 2);
  CorrState* state = NULL;
  int32_t i, best = 0;

  /* The lag is that of the second array behind the first. */
  CHECK(ORVAS_CrossCorrInit_32f(near.len, far.len, LAGS, LOWEST, ORVA_ROUTE_BY_LENGTH, &state));
  CHECK(ORVAS_CrossCorrNorm_32f(near.samples, near.len, far.samples, far.len, correlation, LAGS, LOWEST,
                                ORVA_NORMALISATION_BIASED, state));
  CHECK(ORVAS_CorrRelease_32f(state));

  printf("seconds,correlation\n");
  for (i = 0; i < LAGS; ++i) {
    printf("%.9g,%.9g\n", (double)(LOWEST + i) / near.rate, correlation[i]);
    if (correlation[i] > correlation[best]) best = i;
  }
  fprintf(stderr, "%.2f ms: %.2f m farther away\n", 1e3 * (LOWEST + best) / near.rate,
          343.0 * (LOWEST + best) / near.rate);
  FreeRecording(near);
  FreeRecording(far);
  return 0;
}
