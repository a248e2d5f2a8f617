// Copying memory: the yardstick that report.py divides by.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "sizes.h"

static const bool registered = [] {
  for (const Size& size : kSizes) {
    benchmark::RegisterBenchmark((std::string("memcpy/") + size.name).c_str(), [=](benchmark::State& state) {
      const std::vector<char> src(size.bytes / 2, 1);
      std::vector<char> dst(size.bytes / 2);
      for (auto _ : state) {
        std::memcpy(dst.data(), src.data(), src.size());
        benchmark::ClobberMemory();
      }
      const int64_t iterations = static_cast<int64_t>(state.iterations());
      state.SetBytesProcessed(iterations * static_cast<int64_t>(size.bytes));
      state.SetItemsProcessed(iterations * static_cast<int64_t>(src.size()));
    });
  }
  return true;
}();
