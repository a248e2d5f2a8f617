// Lengths of which 32 bits overflow: every operation of the table on arrays of two thousand million elements, made of a
// small block of memory that is mapped again and again. Beginning and end of an array are pages of its own; there, and
// in the results, a call has to give what it gives at an ordinary length that ends with the same step.
#include <signal_tzm.h>
#include <sys/mman.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>

#include "members/caller.h"
#include "support/random.h"

namespace tzm_test {

namespace {

constexpr size_t kBlock = size_t{4} << 20, kOwn = size_t{64} << 10, kPage = 4096, kEdge = kOwn / 16;
constexpr size_t kMost = (size_t{1} << 31) * 16;

void* Map(void* at, size_t bytes, int file, size_t offset) {
  const int flags = MAP_FIXED | MAP_NORESERVE | (file < 0 ? MAP_PRIVATE | MAP_ANONYMOUS : MAP_SHARED);
  void* const mapped = mmap(at, bytes, PROT_READ | PROT_WRITE, flags, file, static_cast<off_t>(offset));
  if (mapped == MAP_FAILED) std::perror("assault: mmap"), std::exit(2);
  return mapped;
}

// Addresses for one array, which all lie on one block but for the pages at both ends.
class Slot {
 public:
  Slot() : file_(memfd_create("assault", 0)) {
    if (file_ < 0 || ftruncate(file_, kBlock) != 0) std::perror("assault: memfd_create"), std::exit(2);
    const int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
    base_ = static_cast<char*>(mmap(nullptr, kMost + kBlock, PROT_NONE, flags, -1, 0));
    if (base_ == MAP_FAILED) std::perror("assault: no addresses"), std::exit(2);
    for (size_t at = 0; at < kMost; at += kBlock) Map(base_ + at, kBlock, file_, 0);
    Map(base_, kOwn, -1, 0);
  }
  // An array of so many bytes, its middle and its ends filled; a page behind it is inaccessible.
  char* Take(size_t bytes) {
    if (tail_ != nullptr)
      for (char* page = tail_; page < tail_ + kOwn + 3 * kPage; page += kPage)
        Map(page, kPage, file_, static_cast<size_t>(page - base_) % kBlock);
    tail_ = base_ + (bytes - kOwn) / kPage * kPage;
    Map(tail_, kOwn + 2 * kPage, -1, 0);
    mprotect(base_ + (bytes + kPage - 1) / kPage * kPage, kPage, PROT_NONE);
    return base_;
  }

 private:
  int file_;
  char *base_, *tail_ = nullptr;
};

// What depends on the length itself has no small counterpart: only its status is looked at.
bool DependsOnLength(const std::string& name) {
  for (const char* part : {"Mean", "StdDev", "Jaehne", "_Win", "Tone", "Goertz", "Norm_L2", "NormDiff_L2"})
    if (name.find(part) != std::string::npos) return true;
  return false;
}

// The elements of both ends of all outputs, and the status of a call.
struct Ends {
  std::vector<unsigned char> bytes;
  OrvaStatus status;
};
struct Output {
  const char* data;
  size_t size, count;
};
Ends TakeEnds(OrvaStatus status, const std::vector<Output>& outputs) {
  Ends ends{{}, status};
  for (const auto& [data, size, count] : outputs) {
    const size_t edge = std::min(count, kEdge);
    ends.bytes.insert(ends.bytes.end(), data, data + edge * size);
    ends.bytes.insert(ends.bytes.end(), data + (count - edge) * size, data + count * size);
  }
  return ends;
}

// An array of `n` elements: random ones at both ends, and between them parts that are all the same.
char* MakeArray(Slot& slot, Sample sample, size_t n, double middle, size_t* seed) {
  char* const data = slot.Take(n * sample.Size());
  // The block once, by a part of the array in which it is mapped as a whole.
  for (size_t at = 0; at < 2 * kBlock / sample.PartSize(); ++at)
    StorePart(sample.kind, data + kBlock + at * sample.PartSize(), middle);
  for (char* end : {data, data + (n - kEdge) * sample.Size()}) {
    Random random(++*seed);
    Fill(random, sample, Variety::kModerate, end, kEdge);
  }
  return data;
}

// A call of a row at a length.
Ends Run(const Member& member, int32_t len, std::vector<Slot>& slots) {
  std::vector<Value> values(member.arguments.size());
  std::vector<Output> outputs;
  size_t slot = 0, constant = 0, seed = 0;
  const bool kaiser = member.name.find("Kaiser") != std::string::npos;  // whose bound falls with the length
  static Value results[8];
  for (size_t i = 0; i < values.size(); ++i) {
    const Argument& argument = member.arguments[i];
    const size_t size = argument.sample.Size(), n = static_cast<size_t>(len);
    if (argument.role == Role::kLength) values[i].Set(len);
    else if (argument.role == Role::kScale) values[i].Set(4.0);
    else if (argument.role == Role::kConstant) {
      for (size_t part = 0; part < argument.sample.parts; ++part)
        StorePart(argument.sample.kind, values[i].bytes + part * argument.sample.PartSize(),
                  kaiser ? 1e-8 : member.ConstantAt(0, constant++, argument.sample));
    } else if (argument.role == Role::kResult || argument.role == Role::kInput) {
      std::memset(results[i].bytes, 0, sizeof results[i].bytes);
      values[i].Set<void*>(results[i].bytes);
      if (argument.role == Role::kResult) outputs.push_back({reinterpret_cast<char*>(results[i].bytes), size, 1});
    } else {
      const bool neutral = member.Has(Role::kResult) && member.name.find("SumLn") == std::string::npos;
      char* const data = MakeArray(slots[slot++], argument.sample, n, neutral ? 0 : 1, &seed);
      if (argument.role == Role::kMask) {
        for (char* end : {data, data + (n - kEdge)})
          for (size_t at = 0; at < kEdge; ++at) end[at] = end[at] % 3 == 0;
        std::memset(data + kBlock, 0, 2 * kBlock);
      }
      values[i].Set<void*>(data);
      if (argument.role == Role::kDst || argument.role == Role::kSrcDst) outputs.push_back({data, size, n});
    }
  }
  return TakeEnds(member.invoke(member.function, values.data()), outputs);
}

// What works with a state, or on arrays of different lengths: from `from` samples for each of the length to `to`.
struct StateCall {
  std::string name;
  int32_t len;
  std::function<Ends(int32_t len, std::vector<Slot>& slots)> run;
};
template <class T>
StateCall On(const char* name, int32_t len, size_t from, size_t to, OrvaStatus (*call)(const T*, T*, int32_t)) {
  return {name, len, [=](int32_t n, std::vector<Slot>& slots) {
    const Sample sample = SampleOf<T>();
    const size_t size = sample.Size(), count = to * static_cast<size_t>(n);
    size_t seed = 0;
    char* const src = MakeArray(slots[0], sample, from * static_cast<size_t>(n), 1, &seed);
    char* const dst = MakeArray(slots[1], sample, count, 1, &seed);
    const OrvaStatus status = call(reinterpret_cast<T*>(src), reinterpret_cast<T*>(dst), n);
    return TakeEnds(status, {{dst, size, count}});
  }};
}

template <class State>
OrvaStatus With(OrvaStatus (*release)(State*), auto init, auto run) {
  State* state = nullptr;
  OrvaStatus status = init(&state);
  if (status == ORVA_STS_NO_ERR) status = run(state);
  release(state);
  return status;
}

// ORVAS_<name> on samples of a type through the state `c` that `init` makes.
#define ON_STATE(type, name, len, from, to, release, init, run)                  \
  On<type>("ORVAS_" #name, len, from, to, [](auto* s, auto* d, int32_t n) {      \
    return With(ORVAS_##release, [=](auto** c) { return ORVAS_##init; },         \
                [=](auto* c) { return ORVAS_##name run; });                      \
  })

constexpr int kDirect = ORVA_ROUTE_DIRECT;
const Orva32f taps[] = {1, 2, -1, 0.5f, 3};
const int32_t delays[] = {0, 1, 5, 8, 9};

std::vector<StateCall> StateCalls() {
  constexpr int32_t kMax = INT32_MAX, kHalf = 1 << 30;
  return {
      ON_STATE(Orva32f, CrossCorrNorm_32f, kMax, 1, 1, CorrRelease_32f, CrossCorrInit_32f(4, n, n, 0, kDirect, c),
               (s, 4, s, n, d, n, 0, 1, c)),
      ON_STATE(Orva32fc, CrossCorrNorm_32fc, kHalf + 4, 1, 1, CorrRelease_32fc,
               CrossCorrInit_32fc(4, n, n, 0, kDirect, c), (s, 4, s, n, d, n, 0, 1, c)),
      ON_STATE(Orva64fc, CrossCorrNorm_64fc, kHalf + 4, 1, 1, CorrRelease_64fc,
               CrossCorrInit_64fc(4, n, n, 0, kDirect, c), (s, 4, s, n, d, n, 0, 1, c)),
      ON_STATE(Orva32f, Convolve_32f, kMax, 1, 1, ConvRelease_32f, ConvInit_32f(n - 4, 5, kDirect, c),
               (s, n - 4, taps, 5, d, c)),
      On<Orva32f>("ORVAS_ConvBiased_32f", kMax, 1, 1,
                  [](auto* s, auto* d, int32_t n) { return ORVAS_ConvBiased_32f(s, n - 4, taps, 5, d, n, 0); }),
      ON_STATE(Orva32f, FIRMR_32f, kHalf - 2, 1, 2, FIRMRRelease_32f, FIRMRInit_32f(taps, 5, 2, 0, 1, 0, c),
               (s, d, n, c, nullptr, nullptr)),
      ON_STATE(Orva16s, FIRMR_16s, kHalf - 2, 2, 1, FIRMRRelease_32f, FIRMRInit_32f(taps, 5, 1, 0, 2, 0, c),
               (s, d, n, c, nullptr, nullptr)),
      ON_STATE(Orva32f, FIRLMS_32f, kMax, 1, 1, FIRLMSRelease_32f, FIRLMSInit_32f(c, taps, 5, nullptr, 0),
               (c, s, d, d, n, 0)),
      ON_STATE(Orva32f, FIRSparse_32f, kMax, 1, 1, FIRSparseRelease_32f,
               FIRSparseInit_32f(taps, delays, 5, nullptr, c), (s, d, n, c)),
      On<Orva32f>("ORVAS_ResamplePolyphaseFixed_32f", kMax, 1, 1, [](auto* s, auto* d, int32_t n) {
        return With(ORVAS_ResamplePolyphaseFixedRelease_32f,
                    [=](auto** f) { return ORVAS_ResamplePolyphaseFixedInit_32f(1, 1, 8, 0.9f, 5, f); },
                    [=](auto* f) {
                      Orva64s time = 3;
                      int32_t made = 0;
                      const auto status = ORVAS_ResamplePolyphaseFixed_32f(s, n - 7, d, 1, &time, &made, f);
                      return made == n - 7 && time == n - 4 ? status : ORVA_STS_SIZE_ERR;
                    });
      }),
      // As many outputs as an integer holds, of four samples; the last ones are those of a call that begins with them.
      On<Orva32f>("ORVAS_ResamplePolyphase_32f", kMax, 1, 1, [](auto* s, auto* d, int32_t n) {
        return With(ORVAS_ResamplePolyphaseRelease_32f,
                    [=](auto** f) { return ORVAS_ResamplePolyphaseInit_32f(2.5f, 1, 0.9f, 5, 0, f); },
                    [=](auto* f) {
                      constexpr int32_t kLast = 16;
                      const double factor = n / 4.0;
                      double time = 4, late = 4 + (n - kLast) / factor;
                      int32_t made = 0, few = 0;
                      Orva32f last[2 * kLast];
                      const auto status = ORVAS_ResamplePolyphase_32f(s, 4, d, factor, 1, &time, &made, f);
                      ORVAS_ResamplePolyphase_32f(s, 1, last, factor, 1, &late, &few, f);
                      double difference = std::abs(made - n) + (few < kLast);
                      for (int i = 1; i <= kLast && difference == 0; ++i)
                        if (!(std::abs(d[n - i] - last[few - i]) < 1e-5)) difference = 1;
                      for (auto* end : {d, d + n - kEdge}) std::fill_n(end, kEdge, 0.0f);
                      return difference == 0 ? status : ORVA_STS_SIZE_ERR;
                    });
      }),
  };
}
#undef ON_STATE

}  // namespace

int Huge(const std::vector<std::string>& names) {
  std::vector<Slot> slots(4);
  int failed = 0, calls = 0;
  const auto wanted = [&](const std::string& name) {
    return names.empty() || std::find(names.begin(), names.end(), name) != names.end();
  };
  const auto compare = [&](const std::string& name, int32_t len, const auto& run) {
    constexpr int32_t kSteps = 6144;  // a multiple of every step of a contract
    const int32_t small = (3 << 22) / kSteps * kSteps * 2 + len % (2 * kSteps);
    SetCallUnderTest(name + " length " + std::to_string(len));
    const Ends expected = run(small, slots), actual = run(len, slots);
    const bool same = DependsOnLength(name) || expected.bytes == actual.bytes;
    ++calls;
    if (expected.status == actual.status && same) return;
    ++failed;
    std::printf("%s: length %d differs from length %d: statuses %d and %d%s\n", name.c_str(), len, small, actual.status,
                expected.status, same ? "" : ", values too");
  };
  for (const StateCall& call : StateCalls())
    if (wanted(call.name)) compare(call.name, call.len, call.run);
  for (const Member* member : AllMembers())
    if (!member->IsScenario() && wanted(member->name))
      for (int32_t len : {INT32_MAX, (1 << 30) + 1})
        compare(member->name, len, [&](int32_t n, auto& arrays) { return Run(*member, n, arrays); });
  std::printf("huge: %d calls, %d of them wrong\n", calls, failed);
  return calls == 0 || failed != 0;
}

}  // namespace tzm_test
