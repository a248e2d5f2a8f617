#include <signal_tzm/transform.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("frame", {
    Member({"ORVAS_GetFFTNumberThreads", "ORVAS_SetFFTNumberThreads"}, [](Digest& digest) {
      for (int32_t count : {3, 0, -1, 1, 8}) {
        digest.AddStatus(ORVAS_SetFFTNumberThreads(count));
        int32_t threads = 0;
        digest.AddStatus(ORVAS_GetFFTNumberThreads(&threads));
        digest.Add(&threads, 1);
      }
    }),
});

}  // namespace tzm_test
