// One benchmark for each row of the table of members and each size, named operation/size; scaled
// operations also with scales that shift nothing and to the left. What a row reads and writes counts as
// bytes processed, an element as an item.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "members/caller.h"
#include "sizes.h"
#include "states.h"

namespace {

using namespace tzm_test;

void Count(benchmark::State& state, int32_t len, int64_t bytes) {
  const int64_t iterations = static_cast<int64_t>(state.iterations());
  state.SetItemsProcessed(iterations * len);
  state.SetBytesProcessed(iterations * bytes);
}

void Register(const Member& member, const Size& size, size_t scale, const std::string& name) {
  int64_t element = 0;
  for (const Argument& argument : member.arguments) {
    const int64_t bytes = static_cast<int64_t>(argument.sample.Size());
    if (argument.role == Role::kSource || argument.role == Role::kMask || argument.role == Role::kDst) element += bytes;
    if (argument.role == Role::kSrcDst) element += 2 * bytes;
  }
  const int32_t len = std::max(member.min_length, static_cast<int32_t>(static_cast<int64_t>(size.bytes) / element));
  benchmark::RegisterBenchmark(name.c_str(), [=, &member](benchmark::State& state) {
    Caller caller(member, len);
    if (!IsSuccess(caller.Run({.len = len, .scale = scale, .place = Place::kStart}))) state.SkipWithError("refused");
    for (auto _ : state) {
      benchmark::DoNotOptimize(member.invoke(member.function, caller.values.data()));
      benchmark::ClobberMemory();
    }
    Count(state, len, element * len);
  });
}

void RegisterState(const std::string& name, const tzm_bench::Make& make, int32_t len) {
  benchmark::RegisterBenchmark((name + "/" + std::to_string(len)).c_str(), [=](benchmark::State& state) {
    const tzm_bench::Timed timed = make(len);
    if (!IsSuccess(timed.run())) state.SkipWithError("refused");
    for (auto _ : state) {
      benchmark::DoNotOptimize(timed.run());
      benchmark::ClobberMemory();
    }
    Count(state, len, timed.bytes);
  });
}

}  // namespace

int main(int argc, char** argv) {
  for (const Member* member : AllMembers()) {
    if (member->IsScenario()) continue;
    const bool scaled = member->Has(Role::kScale);
    for (const Size& size : kSizes) Register(*member, size, scaled ? 1 : 0, member->name + "/" + size.name);
    if (scaled)
      for (size_t scale : {0, 2})
        Register(*member, kSizes[0], scale, member->name + "/L1/scale:" + std::to_string(kScales[scale]).substr(0, 4));
  }
  for (const auto& [name, make] : tzm_bench::AllStates())
    for (int32_t len : {1024, 16384, 262144}) RegisterState(name, make, len);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
}
