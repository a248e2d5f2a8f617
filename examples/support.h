/* What the examples share: stopping at an error, and reading a recording (by libsndfile, so that any common format
 * will do). Their results are comma-separated values on standard output. */
#ifndef EXAMPLES_SUPPORT_H
#define EXAMPLES_SUPPORT_H

#include <signal_tzm.h>
#include <sndfile.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

/* Every operation returns a status: 0, a warning (300 to 306) or an error. These programs have nothing better to do
 * than to stop at either. */
#define CHECK(call) Check(call, #call)

static inline void Check(OrvaStatus status, const char* call) {
  if (status == ORVA_STS_NO_ERR) return;
  fprintf(stderr, "status %d (see signal_tzm/status.h) from %s\n", (int)status, call);
  exit(1);
}

static inline void* Allocate(size_t count, size_t size) {
  void* block = calloc(count, size);
  if (block == NULL) {
    fprintf(stderr, "no memory\n");
    exit(1);
  }
  return block;
}

typedef struct Recording {
  int32_t len, rate; /* samples, samples per second */
  Orva32f* samples;  /* full scale is 1 */
  Orva16s* counts;   /* the same as 16-bit numbers */
} Recording;

/* What was printed may still fail to arrive: a full disk, a closed pipe. */
static inline void FlushOutput(void) {
  if (fflush(stdout) == 0 && !ferror(stdout)) return;
  perror("standard output");
  _exit(1);
}

/* Reads a recording of one channel, the argument `index` of the program. */
static inline Recording ReadRecording(int argc, char** argv, int index) {
  SF_INFO info = {0, 0, 0, 0, 0, 0};
  SNDFILE* file;
  Recording recording;
  atexit(FlushOutput);
  if (index >= argc) {
    fprintf(stderr, "usage: %s RECORDING ...\n", argv[0]);
    exit(2);
  }
  file = sf_open(argv[index], SFM_READ, &info);
  if (file == NULL || info.channels != 1 || info.frames < 1 || info.frames > INT32_MAX) {
    fprintf(stderr, "%s: %s\n", argv[index],
            file == NULL ? sf_strerror(NULL) : "not a recording of one channel with samples");
    exit(1);
  }
  recording.len = (int32_t)info.frames;
  recording.rate = info.samplerate;
  recording.samples = (Orva32f*)Allocate((size_t)info.frames, sizeof(Orva32f));
  recording.counts = (Orva16s*)Allocate((size_t)info.frames, sizeof(Orva16s));
  if (sf_readf_float(file, recording.samples, info.frames) != info.frames) {
    fprintf(stderr, "%s: cannot read all of it\n", argv[index]);
    exit(1);
  }
  sf_close(file);
  CHECK(ORVAS_MulC_32f16s_S(recording.samples, 32768, recording.counts, recording.len, 1));
  return recording;
}

static inline void FreeRecording(Recording recording) {
  free(recording.samples);
  free(recording.counts);
}

#endif
