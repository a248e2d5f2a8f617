// unload LIBRARY COMPANION...: loads all of them, works with them, closes them, twice; then nothing of them is mapped.
#include <dlfcn.h>
#include <signal_tzm.h>
#include <stdio.h>
#include <string.h>

static Orva32f samples[(1 << 16) + 2];

static int Fail(const char* text) {
  fprintf(stderr, "unload: %s\n", text);
  return 1;
}

int main(int argc, char** argv) {
  void* handles[16];
  for (int round = 0; round < 2; ++round) {
    for (int i = argc - 1; i > 0; --i) {  // the library last
      handles[i] = dlopen(argv[i], RTLD_LAZY | RTLD_GLOBAL);
      if (handles[i] == NULL) return Fail(dlerror());
    }
    OrvaTransformSpec* spec = NULL;
    OrvaStatus (*init)(int32_t, int32_t, OrvaTransformSpec**) = dlsym(handles[1], "ORVAS_DFTRToCInit_32f");
    OrvaStatus (*run)(const Orva32f*, Orva32f*, const OrvaTransformSpec*) = dlsym(handles[1], "ORVAS_DFTRToC_32f");
    OrvaStatus (*release)(OrvaTransformSpec*) = dlsym(handles[1], "ORVAS_DFTRToCRelease_32f");
    OrvaStatus (*exponential)(const Orva32f*, Orva32f*, int32_t) = dlsym(handles[1], "ORVAS_Exp_32f");
    memset(samples, 0, sizeof samples);
    if (init(1 << 16, ORVA_DIVIDE_NONE, &spec) != ORVA_STS_NO_ERR || run(samples, samples, spec) != ORVA_STS_NO_ERR ||
        release(spec) != ORVA_STS_NO_ERR || exponential(samples, samples, 1 << 16) != ORVA_STS_NO_ERR)
      return Fail("a call fails");
    for (int i = 1; i < argc; ++i) dlclose(handles[i]);
  }
  FILE* maps = fopen("/proc/self/maps", "r");
  char line[4096];
  while (maps != NULL && fgets(line, sizeof line, maps) != NULL) {
    if (strstr(line, "libsignal_tzm") != NULL || strstr(line, "libtzm_") != NULL) return Fail(line);
  }
  return maps == NULL;
}
