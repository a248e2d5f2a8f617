/* loudness RECORDING: as loud as 16 bits can hold, in integer arithmetic alone. */
#include <math.h>

#include "support.h"

int main(int argc, char** argv) {
  const Recording recording = ReadRecording(argc, argv, 1);
  Orva16s* loud = (Orva16s*)Allocate((size_t)recording.len, sizeof(Orva16s));
  Orva32f peak, before, after;
  Orva16s factor;
  int32_t i;
  double scale;

  /* The infinity norm is the largest magnitude. */
  CHECK(ORVAS_Norm_Inf_16s32f(recording.counts, recording.len, &peak));
  if (peak == 0) return fprintf(stderr, "silence\n"), 1;

  /* The gain 32767 / peak is a fraction. Operations on integers whose names end in S divide their results by a power
   * of two, the scale: the gain is written as factor / scale, with the largest factor that 16 bits hold. */
  scale = exp2(floor(log2(peak)));
  factor = (Orva16s)floor(32767.0 / peak * scale);
  CHECK(ORVAS_MulC_16s_S(recording.counts, factor, loud, recording.len, scale));

  /* The L2 norm is the root of the sum of squares. */
  CHECK(ORVAS_Norm_L2_16s32f(recording.counts, recording.len, &before));
  CHECK(ORVAS_Norm_L2_16s32f(loud, recording.len, &after));
  fprintf(stderr, "peak %g, gain %d/%g, root mean square %.1f before, %.1f after\n", peak, factor, scale,
          before / sqrt(recording.len), after / sqrt(recording.len));

  printf("before,after\n");
  for (i = 0; i < recording.len; ++i) printf("%d,%d\n", recording.counts[i], loud[i]);
  free(loud);
  FreeRecording(recording);
  return 0;
}
