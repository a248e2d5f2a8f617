#include <signal_tzm/correlate.h>

#include <cmath>

#include "members.h"
#include "support/random.h"

namespace tzm_test {

namespace {

// Square matrices of about `len` elements.
template <class T>
std::function<Timed(int32_t)> Time(OrvaStatus (*run)(const T*, const T*, T*, int32_t, int32_t, int32_t)) {
  return [=](int32_t len) {
    const int32_t side = static_cast<int32_t>(std::sqrt(len));
    const auto a = SharedArray<T>(side * side), c = SharedArray<T>(side * side);
    return Timed{[=] { return run(a->data(), a->data(), c->data(), side, side, side); },
                 3 * static_cast<int64_t>(sizeof(T)) * side * side};
  };
}

// The order of summation is the CBLAS's own: no digest.
const Rows rows("correlate", {
    Member({"ORVAS_MMul_32f"}).Benchmark(Time(ORVAS_MMul_32f)),
    Member({"ORVAS_MMul_64f"}).Benchmark(Time(ORVAS_MMul_64f)),
    Member({"ORVAS_MMul_32fc"}).Benchmark(Time(ORVAS_MMul_32fc)),
    Member({"ORVAS_MMul_64fc"}).Benchmark(Time(ORVAS_MMul_64fc)),
});

}  // namespace

}  // namespace tzm_test
