// Column aggregates: the mask-free walk beside walks with no null, 1 % and 50 % nulls.
#include <benchmark/benchmark.h>
#include <signal_tzm/reduce.h>

#include "sizes.h"
#include "support/random.h"

namespace {

using namespace tzm_test;

template <class Row, class Sum>
void Register(const char* name, OrvaStatus (*aggregate)(const Row*, int32_t, const Orva8u*, Orva8u*, Sum*)) {
  for (const Size& size : kSizes) {
    for (int nulls : {-1, 0, 1, 50}) {
      const std::string rows = nulls < 0 ? "no mask" : std::to_string(nulls) + "% null";
      benchmark::RegisterBenchmark((name + std::string("/") + size.name + "/" + rows).c_str(),
                                   [=](benchmark::State& state) {
        const size_t row = sizeof(Row) + (nulls < 0 ? 0 : 1), len = size.bytes / (sizeof(Row) + 1);
        const auto src = RandomArray<Row>(len, 1);
        std::vector<Orva8u> mask(len);
        Random random(2);
        for (Orva8u& null : mask) null = static_cast<int>(random.Below(100)) < nulls;
        Orva8u overflow;
        Sum sum;
        for (auto _ : state) {
          benchmark::DoNotOptimize(
              aggregate(src.data(), static_cast<int32_t>(len), nulls < 0 ? nullptr : mask.data(), &overflow, &sum));
          benchmark::ClobberMemory();
        }
        const auto iterations = static_cast<int64_t>(state.iterations());
        state.SetItemsProcessed(iterations * static_cast<int64_t>(len));
        state.SetBytesProcessed(iterations * static_cast<int64_t>(len * row));
      });
    }
  }
}

const bool registered = [] {
  Register("AggSum_16s", ORVAS_AggSum_16s);
  Register("AggSum_32s", ORVAS_AggSum_32s);
  Register("AggSum_64s", ORVAS_AggSum_64s);
  Register("AggSum_64f", ORVAS_AggSum_64f);
  Register("AggSum_decimal64", ORVAS_AggSum_decimal64);
  Register("AggSum_decimal128", ORVAS_AggSum_decimal128);
  return true;
}();

}  // namespace
