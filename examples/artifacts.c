/* artifacts ELECTROCARDIOGRAM: the mean of every ten seconds without the moments when the electrodes slipped, as a
 * database forms the mean of a column with nulls. */
#include <string.h>

#include "support.h"

int main(int argc, char** argv) {
  enum { LIMIT = 520 }; /* counts of the converter, 200 to the millivolt: this heart stays below 2.6 mV */
  const Recording recording = ReadRecording(argc, argv, 1);
  const int32_t rate = recording.rate, rows = 10 * rate;
  Orva8u* nulls = (Orva8u*)Allocate((size_t)recording.len, sizeof(Orva8u));
  int32_t i, start;

  /* A row is null where its byte is not 0: here, in the second before and the second after each value too large. */
  for (i = 0; i < recording.len; ++i) {
    const int32_t from = i < rate ? 0 : i - rate, to = i < recording.len - rate ? i + rate : recording.len;
    if (abs(recording.counts[i]) > LIMIT) memset(nulls + from, 1, (size_t)(to - from));
  }

  printf("seconds,rows,mean,mean of all rows\n");
  for (start = 0; start + rows <= recording.len; start += rows) {
    Orva64f sum, all;
    uint64_t count, countAll;
    Orva8u overflow; /* 1 where the sum passed 64 bits, which 16-bit rows cannot reach */
    CHECK(ORVAS_AggMean_16s(recording.counts + start, rows, nulls + start, &overflow, &sum, &count));
    CHECK(ORVAS_AggMean_16s(recording.counts + start, rows, NULL, &overflow, &all, &countAll));
    /* The division is ours: by 0 where all rows are null, which gives NaN. */
    printf("%d,%d,%.17g,%.17g\n", (int)(start / rate), (int)count, sum / (double)count, all / (double)countAll);
  }
  free(nulls);
  FreeRecording(recording);
  return 0;
}
