// The count of threads for transforms, set and asked for.
#include <signal_tzm/transform.h>

#include "members.h"

namespace tzm_test {

static void Count(Digest& digest, auto get, auto set) {
  for (int32_t count : {3, 0, -1, 1, 8}) {
    int32_t threads = 0;
    digest.Call(set, count);
    digest.Call(get, &threads);
    digest.Add(&threads, 1);
  }
}

static const Rows rows("frame", {SCENARIO(Count, ORVAS_GetFFTNumberThreads, ORVAS_SetFFTNumberThreads)});

}  // namespace tzm_test
