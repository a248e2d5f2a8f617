// Convolution: dst[k] = sum over i of src1[i] * src2[k-i], directly or by transforms.
#include <signal_tzm/correlate.h>

#include "correlate/transform_area.h"

#include <algorithm>
#include <utility>

using namespace tzm;

namespace {

// Direct outputs that form a block, when src2 is longer than kShort.
template <class T>
constexpr int64_t kBlock = 64 / sizeof(T);
constexpr int32_t kShort = 16;

// ---- Chains over exactly the samples that an output needs ----

// Two finite sequences and the sample ranges of their convolution: output k sums from First(k) to End(k).
template <class T>
struct Pair {
  const T* src1;
  const T* src2;
  int64_t len1, len2;

  int64_t First(int64_t k) const { return std::max<int64_t>(k - len2 + 1, 0); }
  int64_t End(int64_t k) const { return std::min(k + 1, len1); }
  T Chain(int64_t k, int64_t from, int64_t end, T sum) const {
    for (int64_t i = from; i < end; ++i) sum = Fma(LoadElement(src2 + (k - i)), LoadElement(src1 + i), sum);
    return sum;
  }
};

// sum += many[kStep*t ...] * one[-kStep*t] for t = 0, 1, ... count-1.
template <int kStep, class T, size_t kLanes>
TZM_INLINE void AddProducts(const T* one, const T* many, int64_t count, LaneArray<T, kLanes>& sum) {
  using Lanes = LaneArray<T, kLanes>;
  for (int64_t t = 0; t < count; ++t)
    sum = MulAdd(Lanes::Load(many + kStep * t), Lanes::Set(LoadElement(one - kStep * t)), sum);
}

// kOutputs outputs from k on, each of which needs all of the shorter sequence.
template <size_t kOutputs, class T>
void FullOverlap(const Pair<T>& pair, int64_t k, T* dst) {
  auto sum = LaneArray<T, kOutputs>::Set(0);
  if (pair.len1 >= pair.len2)
    AddProducts<1>(pair.src2 + (pair.len2 - 1), pair.src1 + (k - pair.len2 + 1), pair.len2, sum);
  else
    AddProducts<-1>(pair.src1, pair.src2 + k, pair.len1, sum);
  sum.Store(dst);
}

// kOutputs outputs from k on: together where all of them need src1[i], one by one before and after.
template <size_t kOutputs, class T>
void AnyOverlap(const Pair<T>& pair, int64_t k, T* dst) {
  const int64_t from = pair.First(k + kOutputs - 1), end = pair.End(k);
  T sums[kOutputs] = {};
  if (from < end) {
    for (size_t j = 0; j < kOutputs; ++j) sums[j] = pair.Chain(k + j, pair.First(k + j), from, 0);
    auto sum = LaneArray<T, kOutputs>::Load(sums);
    AddProducts<-1>(pair.src1 + from, pair.src2 + (k - from), end - from, sum);
    sum.Store(sums);
    for (size_t j = 0; j < kOutputs; ++j) sums[j] = pair.Chain(k + j, end, pair.End(k + j), sums[j]);
  } else {
    for (size_t j = 0; j < kOutputs; ++j) sums[j] = pair.Chain(k + j, pair.First(k + j), pair.End(k + j), 0);
  }
  std::memcpy(dst, sums, sizeof sums);
}

// Outputs `first` to `end`, which may lie outside of the convolution, to dst[0] and on. A group that would
// pass the end of its stretch starts earlier and does some outputs again.
template <class T>
void Chains(const Pair<T>& pair, int64_t first, int64_t end, T* dst) {
  constexpr int64_t kWide = 4 * kBlock<T>;
  using Group = void (*)(const Pair<T>&, int64_t, T*);
  const auto at = [=](int64_t k) { return dst + (k - first); };
  const auto cover = [&](int64_t low, int64_t k, int64_t last, Group block) {
    if (last - low < kBlock<T>)
      for (; k < last; ++k) StoreElement(pair.Chain(k, pair.First(k), pair.End(k), 0), at(k));
    for (; k < last; k += kBlock<T>) {
      const int64_t start = std::min(k, last - kBlock<T>);
      block(pair, start, at(start));
    }
  };
  // The middle, where all of the shorter sequence takes part, and what comes before and after.
  const int64_t middle = std::clamp(std::min(pair.len1, pair.len2) - 1, first, end);
  const int64_t after = std::clamp(std::max(pair.len1, pair.len2), middle, end);
  cover(first, first, middle, AnyOverlap<kBlock<T>, T>);
  int64_t k = middle;
  for (; after - k >= kWide; k += kWide) FullOverlap<kWide>(pair, k, at(k));
  cover(middle, k, after, FullOverlap<kBlock<T>, T>);
  cover(after, after, end, AnyOverlap<kBlock<T>, T>);
}

// ---- Blocks ----

// Outputs k0 to k0+B-1 of a block take every sample that one of them needs, against B neighbours of src2
// with zeros beyond its ends. The zeros stay zeros unless the sample is an infinity or NaN, or the sum so
// far a negative zero.
template <class T>
class Blocks {
 public:
  // The edge table, 4B-4 samples: the end of src2, zeros, the start of src2.
  Blocks(const Pair<T>& pair, T* table) : pair_(pair), table_(table) {
    constexpr size_t kEdge = (kB - 1) * sizeof(T);
    std::memcpy(table, pair.src2 + (pair.len2 - kB + 1), kEdge);
    std::fill(table + kB - 1, table + 3 * kB - 3, T(0));
    std::memcpy(table + 3 * kB - 3, pair.src2, kEdge);
  }

  // The blocks from k to end, as many side by side as fit.
  void Run(int64_t k, int64_t end, T* dst) const { Run<kMostTiled>(k, end, dst); }

 private:
  static constexpr int64_t kB = kBlock<T>;
  using Sums = LaneArray<T, kB>;
  // Blocks side by side that fill the pipelines of two fused units and fit into the registers.
  static constexpr int kMostTiled = Sums::kRegisters == 1 ? 8 : 4;

  // Block r of a tile lags r blocks behind the first one in k and in i: at step t it takes
  // src1[t + B*r], and all blocks take the same neighbours of src2. Its steps:
  int64_t First(int64_t k0, int64_t r) const { return std::max(k0 - pair_.len2 + 1, -kB * r); }
  int64_t End(int64_t k0, int64_t r) const { return std::min(k0 + kB, pair_.len1 - kB * r); }

  // Steps from `from` to `end` of blocks kFirst to kEnd; src2's neighbours of step t start at source - t.
  template <int kFirst, int kEnd>
  static HWY_NOINLINE void Steps(const T* src1, const T* source, int64_t from, int64_t end, Sums* sums) {
    if (from >= end) return;
    Sums sum[kEnd - kFirst];
    for (int r = kFirst; r < kEnd; ++r) sum[r - kFirst] = sums[r];
    for (int64_t t = from; t < end; ++t) {
      const Sums neighbours = Sums::Load(source - t);
      for (int r = kFirst; r < kEnd; ++r)
        sum[r - kFirst] = MulAdd(neighbours, Sums::Set(LoadElement(src1 + (t + kB * r))), sum[r - kFirst]);
    }
    for (int r = kFirst; r < kEnd; ++r) sums[r] = sum[r - kFirst];
  }

  // The same with the neighbours found: up to the last sample that meets the end of src2 in the table,
  // then in src2 itself, then where src2 has not begun for all lanes in the table again.
  template <int kFirst, int kEnd>
  void Phases(int64_t k0, int64_t from, int64_t end, Sums* sums) const {
    const int64_t inside = k0 + kB - pair_.len2, start = k0 + 1;
    Steps<kFirst, kEnd>(pair_.src1, table_ + (inside - 1), from, std::min(end, inside), sums);
    Steps<kFirst, kEnd>(pair_.src1, pair_.src2 + k0, std::max(from, inside), std::min(end, start), sums);
    Steps<kFirst, kEnd>(pair_.src1, table_ + (k0 + 3 * kB - 3), std::max(from, start), end, sums);
  }

  template <int kTiled>
  void Tile(int64_t k0, T* dst) const {
    Sums sums[kTiled];
    for (Sums& sum : sums) sum = Sums::Set(0);
    [&]<int... s>(std::integer_sequence<int, s...>) {
      // Later blocks begin earlier ...
      (Phases<kTiled - 1 - s, kTiled>(k0, First(k0, kTiled - 1 - s), First(k0, kTiled - 2 - s), sums), ...);
    }(std::make_integer_sequence<int, kTiled - 1>());
    Phases<0, kTiled>(k0, First(k0, 0), End(k0, kTiled - 1), sums);
    [&]<int... s>(std::integer_sequence<int, s...>) {
      // ... and end earlier.
      (Phases<0, kTiled - 1 - s>(k0, End(k0, kTiled - 1 - s), End(k0, kTiled - 2 - s), sums), ...);
    }(std::make_integer_sequence<int, kTiled - 1>());
    for (int r = 0; r < kTiled; ++r) sums[r].Store(dst + k0 + kB * r);
  }

  template <int kTiled>
  void Run(int64_t k, int64_t end, T* dst) const {
    for (; end - k >= kTiled * kB && (kTiled == 1 || First(k, 0) <= End(k, kTiled - 1)); k += kTiled * kB)
      Tile<kTiled>(k, dst);
    if constexpr (kTiled > 1) Run<kTiled / 2>(k, end, dst);
  }

  const Pair<T>& pair_;
  T* table_;
};

template <class T>
void Direct(const Pair<T>& pair, T* table, int64_t count, T* dst) {
  if (pair.len2 <= kShort) return Chains(pair, 0, count, dst);
  // Blocks that meet neither end of src2 are plain chains, and so is what fills no block.
  const auto down = [](int64_t k) { return k - k % kBlock<T>; };
  const int64_t end = down(count);
  const int64_t plain = std::min(down(pair.len1 + kBlock<T> - 2), end);
  const int64_t plainEnd = std::clamp(down(pair.len2), plain, end);
  const Blocks<T> blocks(pair, table);
  blocks.Run(0, plain, dst);
  Chains(pair, plain, plainEnd, dst + plain);
  blocks.Run(plainEnd, end, dst);
  Chains(pair, end, count, dst + end);
}

// ---- State ----

// On the direct route buffer 0 holds the edge table, and there are no plans.
template <class T>
struct State {
  int32_t route;
  int32_t fftLen;
  TransformArea<T, 3> area;
};

// src1Len + src2Len from which the transforms are too long.
template <class T>
constexpr int64_t kLimit = 0x20000000 / sizeof(T) + 1;

template <class T>
OrvaStatus Release(State<T>* state) {
  if (state == nullptr) return ORVA_STS_NO_ERR;
  state->area.Release();
  ORVA_Free(state);
  return ORVA_STS_NO_ERR;
}

template <class T>
OrvaStatus Init(int32_t src1Len, int32_t src2Len, int32_t kind, ConvState** stateOut) {
  if (OrvaStatus status = CheckPointers(stateOut)) return status;
  if (src1Len < 1 || src2Len < 1) return ORVA_STS_SIZE_ERR;
  auto* const state = static_cast<State<T>*>(ORVA_Malloc(sizeof(State<T>)));
  if (state == nullptr) return ORVA_STS_MEM_ALLOC_ERR;
  *state = {};
  const auto refuse = [=](OrvaStatus status) {
    Release(state);
    return status;
  };
  const int64_t total = int64_t{src1Len} + src2Len;
  const bool fft = kind == kFftKind || (kind == kAutomatic && std::min(src1Len, src2Len) > kShort && total > 512);
  if (fft) {
    if (total >= kLimit<T>) return refuse(ORVA_STS_OVERFLOW_ERR);
    state->route = kFftRoute;
    state->fftLen = static_cast<int32_t>(TransformLength(total - 1));
    if (!state->area.Make(state->fftLen, 3)) return refuse(ORVA_STS_MEM_ALLOC_ERR);
  } else {
    state->area.buffers[0] = ORVA_Malloc((4 * kBlock<T> - 4) * sizeof(T));
    if (state->area.buffers[0] == nullptr) return refuse(ORVA_STS_MEM_ALLOC_ERR);
  }
  *stateOut = reinterpret_cast<ConvState*>(state);
  return ORVA_STS_NO_ERR;
}

inline void Multiply(const Orva32fc* a, Orva32fc* b, int32_t len) { ORVAS_Mul_32fc(a, b, b, len); }
inline void Multiply(const Orva64fc* a, Orva64fc* b, int32_t len) { ORVAS_Mul_64fc(a, b, b, len); }

template <class T>
OrvaStatus Convolve(const T* src1, int32_t src1Len, const T* src2, int32_t src2Len, T* dst, ConvState* opaque) {
  if (OrvaStatus status = CheckPointers(src1, src2, dst, opaque)) return status;
  if (src1Len < 1 || src2Len < 1) return ORVA_STS_SIZE_ERR;
  const auto* const state = reinterpret_cast<const State<T>*>(opaque);
  const auto& area = state->area;
  const int64_t count = int64_t{src1Len} + src2Len - 1;
  if (state->route == kFftRoute) {
    const int32_t fftLen = state->fftLen;
    if (TransformLength(count) != fftLen) return ORVA_STS_LEN_MISMATCH_ERR;
    if (!area.Has(3)) return ORVA_STS_NULL_PTR_ERR;
    area.Forward(src1, 0, src1Len, fftLen, 1);
    area.Forward(src2, 0, src2Len, fftLen, 2);
    Multiply(area.Spectrum(1), area.Spectrum(2), area.Bins(fftLen));
    area.Inverse(2, fftLen, dst, static_cast<int32_t>(count));
    return ORVA_STS_NO_ERR;
  }
  if (OrvaStatus status = CheckPointers(area.buffers[0])) return status;
  Direct<T>({src1, src2, src1Len, src2Len}, area.Time(0), count, dst);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_ConvInit_32f(int32_t src1Len, int32_t src2Len, int32_t kind, ConvState** state) {
  return Init<Orva32f>(src1Len, src2Len, kind, state);
}

OrvaStatus ORVAS_ConvInit_64f(int32_t src1Len, int32_t src2Len, int32_t kind, ConvState** state) {
  return Init<Orva64f>(src1Len, src2Len, kind, state);
}

OrvaStatus ORVAS_Convolve_32f(const Orva32f* src1, int32_t src1Len, const Orva32f* src2, int32_t src2Len,
                              Orva32f* dst, ConvState* state) {
  return Convolve(src1, src1Len, src2, src2Len, dst, state);
}

OrvaStatus ORVAS_Convolve_64f(const Orva64f* src1, int32_t src1Len, const Orva64f* src2, int32_t src2Len,
                              Orva64f* dst, ConvState* state) {
  return Convolve(src1, src1Len, src2, src2Len, dst, state);
}

OrvaStatus ORVAS_ConvBiased_32f(const Orva32f* src1, int32_t src1Len, const Orva32f* src2, int32_t src2Len,
                                Orva32f* dst, int32_t dstLen, int32_t bias) {
  if (OrvaStatus status = CheckPointers(src1, src2, dst)) return status;
  if (dstLen < 1 || src2Len < 1 || src1Len < 1) return ORVA_STS_SIZE_ERR;
  // The window of i of output k + bias with src2's index of output k: src2 seen from `bias` further back.
  Chains<Orva32f>({src1, src2 - bias, src1Len, src2Len}, bias, int64_t{bias} + dstLen, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_ConvRelease_32f(ConvState* state) { return Release(reinterpret_cast<State<Orva32f>*>(state)); }

OrvaStatus ORVAS_ConvRelease_64f(ConvState* state) { return Release(reinterpret_cast<State<Orva64f>*>(state)); }
