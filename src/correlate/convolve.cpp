// Convolution: dst[k] = sum over i of src1[i] * src2[k-i], directly or by transforms.
#include <signal_tzm/correlate.h>

#include "correlate/transform_area.h"
#include "frame/drive.h"

#include <algorithm>
#include <cmath>

using namespace tzm;

namespace {

// Direct outputs that form a block, when src2 is longer than kShort.
template <class T>
constexpr int64_t kBlock = 64 / sizeof(T);
constexpr int32_t kShort = 16;

// Two sequences and, for their convolution, the samples of src1 that output k sums: First(k) to End(k). With a bias,
// sums take src2 from so many samples further back, only what they need may be read of it, and outputs may lie before
// the first one.
template <class T>
struct Pair {
  const T* src1;
  const T* src2;
  int64_t len1, len2;
  int64_t bias = 0;

  int64_t First(int64_t k) const { return std::max<int64_t>(k - len2 + 1, 0); }
  int64_t End(int64_t k) const { return std::min(k + 1, len1); }
  const T* Src2(int64_t index) const { return src2 + (index - bias); }
  T Chain(int64_t k) const {
    T sum = 0;
    for (int64_t i = First(k), end = End(k); i < end; ++i)
      sum = Fma(LoadElement(Src2(k - i)), LoadElement(src1 + i), sum);
    return sum;
  }
};

// ---- Outputs that need all of the shorter sequence ----

// sum += many[kStep*t ...] * one[-kStep*t] for t = 0 to count-1, with the lanes of `sum` as outputs. Loads
// are the limit, half of them cross a cache line: every other register lags one register's lanes behind its
// neighbour, so that both want the same elements of `many`.
template <int kStep, class T, size_t kLanes>
TZM_INLINE void AddProducts(const T* one, const T* many, int64_t count, LaneArray<T, kLanes>& sum) {
  using Lanes = LaneArray<T, kLanes>;
  const typename Lanes::D d;
  constexpr int64_t kLag = Lanes::kWidth;
  const auto neighbours = [&](size_t r, int64_t t) TZM_LAMBDA {
    return hn::LoadU(d, many + static_cast<int64_t>(r) * kLag + kStep * t);
  };
  const auto factor = [&](int64_t t) TZM_LAMBDA { return hn::Set(d, LoadElement(one - kStep * t)); };
  const auto step = [&](size_t r, int64_t t) TZM_LAMBDA {
    sum.v[r] = hn::MulAdd(neighbours(r, t), factor(t), sum.v[r]);
  };
  constexpr size_t kPairs = Lanes::kRegisters / 2, kAhead = kStep > 0 ? 0 : 1, kBehind = 1 - kAhead;
  if (kPairs < 2 || count < 4 * kLag) {
    for (int64_t t = 0; t < count; ++t) Unrolled<Lanes::kRegisters>([&](auto r) TZM_LAMBDA { step(r, t); });
    return;
  }
  for (int64_t t = 0; t < kLag; ++t) Unrolled<kPairs>([&](auto p) TZM_LAMBDA { step(2 * p + kAhead, t); });
  for (int64_t t = kLag; t < count; ++t) {
    const auto ahead = factor(t), behind = factor(t - kLag);
    Unrolled<kPairs>([&](auto p) TZM_LAMBDA {
      constexpr size_t kFirst = 2 * p + kAhead, kSecond = 2 * p + kBehind;
      const auto both = InRegister(neighbours(kFirst, t));
      sum.v[kFirst] = hn::MulAdd(both, ahead, sum.v[kFirst]);
      sum.v[kSecond] = hn::MulAdd(both, behind, sum.v[kSecond]);
    });
  }
  for (int64_t t = count - kLag; t < count; ++t) Unrolled<kPairs>([&](auto p) TZM_LAMBDA { step(2 * p + kBehind, t); });
}

template <size_t kOutputs, class T>
HWY_NOINLINE void FullOverlap(const Pair<T>& pair, int64_t k, T* dst) {
  auto sum = LaneArray<T, kOutputs>::Set(0);
  if (pair.len1 >= pair.len2)
    AddProducts<1>(pair.Src2(pair.len2 - 1), pair.src1 + (k - pair.len2 + 1), pair.len2, sum);
  else
    AddProducts<-1>(pair.src1, pair.Src2(k), pair.len1, sum);
  sum.Store(dst);
}

// ---- Outputs at the ends ----

// The two ends of src2 among zeros, 4B-4 samples: its last B-1, then 2B-2 zeros, then its first B-1. src2 has
// B-1 samples or more.
template <class T>
class EdgeTable {
 public:
  static constexpr int64_t kB = kBlock<T>;
  static constexpr size_t kSize = 4 * kB - 4;

  EdgeTable(const Pair<T>& pair, T* table) : table_(table) {
    constexpr size_t kEdge = (kB - 1) * sizeof(T);
    std::memcpy(table, pair.src2 + (pair.len2 - kB + 1), kEdge);
    std::fill(table + kB - 1, table + 3 * kB - 3, T(0));
    std::memcpy(table + 3 * kB - 3, pair.src2, kEdge);
  }
  // src2 from index `at` on, where its last sample has the index -1, and where its first one has the index 0.
  const T* BeyondEnd(int64_t at) const { return table_ + (kB - 1 + at); }
  const T* BeforeStart(int64_t at) const { return table_ + (3 * kB - 3 + at); }

 private:
  const T* table_;
};

// A block of B outputs from k on, each over every sample of src1 that one of them needs: where src2 has ended
// for an output, or not begun, it takes the product with a zero.
template <class T>
void BlockWithZeros(const Pair<T>& pair, const EdgeTable<T>& table, int64_t k, T* dst) {
  using Sums = LaneArray<T, kBlock<T>>;
  Sums sum = Sums::Set(0);
  for (int64_t i = pair.First(k), end = pair.End(k + kBlock<T> - 1); i < end; ++i) {
    const int64_t at = k - i;
    const T* const neighbours = at > pair.len2 - kBlock<T> ? table.BeyondEnd(at - pair.len2)
                                : at >= 0                  ? pair.src2 + at
                                                           : table.BeforeStart(at);
    sum = MulAdd(Sums::Load(neighbours), Sums::Set(LoadElement(pair.src1 + i)), sum);
  }
  sum.Store(dst);
}

// The chains of kOutputs outputs from k on, which have a sample of src1 in common. First and last come the samples
// that only some of them need: from one sample to the next one more output begins, or one ends. In the register of
// that one the lanes that do not take the sample keep their sums; the registers before it, or after it, take it whole.
template <size_t kOutputs, class T>
HWY_NOINLINE void Tile(const Pair<T>& pair, const EdgeTable<T>& table, int64_t k, T* dst) {
  using Lanes = LaneArray<T, kOutputs>;
  constexpr int64_t kWidth = Lanes::kWidth;
  constexpr size_t kRegisters = Lanes::kRegisters;
  const typename Lanes::D d;
  auto sum = Lanes::Set(0);
  const int64_t begin = k - pair.len2 + 1;  // the sample that only output k needs, among those of src1 or before
  const auto sample = [&](int64_t i) TZM_LAMBDA { return hn::Set(d, LoadElement(pair.src1 + i)); };

  Unrolled<kRegisters>([&](auto r) TZM_LAMBDA {
    constexpr int64_t kAt = r * kWidth;
    for (int64_t lane = std::max<int64_t>(-begin - kAt, 0); lane < kWidth; ++lane) {
      const auto x = sample(begin + kAt + lane);
      const T* const last = pair.src2 + (pair.len2 - 1 - lane);
      Unrolled<r>([&](auto before) TZM_LAMBDA {
        const auto y = hn::LoadU(d, last - (kAt - static_cast<int64_t>(before) * kWidth));
        sum.v[before] = hn::MulAdd(y, x, sum.v[before]);
      });
      const T* const own = lane + 1 < kWidth ? table.BeyondEnd(-1 - lane) : last;
      const auto next = hn::MulAdd(hn::LoadU(d, own), x, sum.v[r]);
      sum.v[r] = hn::IfThenElse(hn::FirstN(d, static_cast<size_t>(lane + 1)), next, sum.v[r]);
    }
  });
  const int64_t from = std::max<int64_t>(begin + static_cast<int64_t>(kOutputs), 0), end = pair.End(k);
  AddProducts<-1>(pair.src1 + from, pair.src2 + (k - from), end - from, sum);
  Unrolled<kRegisters>([&](auto r) TZM_LAMBDA {
    constexpr int64_t kAt = r * kWidth;
    const int64_t lanes = std::min(pair.len1 - k - kAt, kWidth);
    for (int64_t lane = r == 0 ? 1 : 0; lane < lanes; ++lane) {
      const auto x = sample(k + kAt + lane);
      const T* const own = lane > 0 ? table.BeforeStart(-lane) : pair.src2;
      const auto next = hn::MulAdd(hn::LoadU(d, own), x, sum.v[r]);
      sum.v[r] = hn::IfThenElse(hn::FirstN(d, static_cast<size_t>(lane)), sum.v[r], next);
      Unrolled<kRegisters - 1 - r>([&](auto more) TZM_LAMBDA {
        constexpr size_t kLater = r + 1 + more;
        const auto y = hn::LoadU(d, pair.src2 + (static_cast<int64_t>(kLater) * kWidth - kAt - lane));
        sum.v[kLater] = hn::MulAdd(y, x, sum.v[kLater]);
      });
    }
  });
  sum.Store(dst);
}

// ---- Direct route ----

// Outputs `first` to `end`, which may lie outside of the convolution, to dst[0] and on: each sums exactly
// its own samples.
template <class T>
void Chains(const Pair<T>& pair, int64_t first, int64_t end, T* dst) {
  constexpr int64_t kB = kBlock<T>, kWide = 4 * kB;
  const auto at = [=](int64_t k) { return dst + (k - first); };
  const auto ones = [&](int64_t k, int64_t last) {
    for (; k < last; ++k) StoreElement(pair.Chain(k), at(k));
  };
  // Tiles of two sizes over outputs k to `last`; those that fill none are made with others anew. Not by a driver: a
  // tile is no element-wise step but a work plan, which asks where its outputs lie, and changes no bit.
  const auto tiles = [&](int64_t k, int64_t last, auto fits, auto tile) {
    if (last - k < kB) return ones(k, last);
    for (; last - k >= kWide && fits(k); k += kWide) tile(std::integral_constant<size_t, kWide>(), k);
    for (; k < last; k += kB) tile(std::integral_constant<size_t, kB>(), std::min(k, last - kB));
  };
  const bool tiled = pair.bias == 0 && pair.len2 > kShort;
  const auto edge = [&](int64_t k, int64_t last) {
    const int64_t inside = tiled ? std::clamp(pair.len1 + pair.len2 - 1, k, last) : k;
    if (k < inside) {
      T room[EdgeTable<T>::kSize];
      const EdgeTable<T> table(pair, room);
      tiles(k, inside, [&](int64_t from) { return pair.First(from + kWide - 1) < pair.End(from); },
            [&](auto outputs, int64_t from) { Tile<outputs>(pair, table, from, at(from)); });
    }
    ones(inside, last);
  };
  // The middle, where all of the shorter sequence takes part, and what comes before and after.
  const int64_t middle = std::clamp(std::min(pair.len1, pair.len2) - 1, first, end);
  const int64_t after = std::clamp(std::max(pair.len1, pair.len2), middle, end);
  if (tiled && after - middle < kB) return edge(first, end);
  edge(first, middle);
  tiles(middle, after, [](int64_t) { return true; },
        [&](auto outputs, int64_t from) { FullOverlap<outputs>(pair, from, at(from)); });
  edge(after, end);
}

template <class T>
bool AllFinite(const T* src, int64_t len) {
  const Full<T> d;
  AnyLane<decltype(d)> met;
  ForEach<hn::MaxLanes(d)>(len, [&](const T* from) TZM_LAMBDA {
    met.See(hn::Not(hn::IsFinite(hn::LoadU(d, from))));
  }, src);
  return !met.Seen();
}

// What the zeros beyond the ends of src2 change in the blocks from 0 to `end`, where all samples are finite:
// a sum that is a negative zero when src2 ends for it becomes positive with the first zero product that is.
template <class T>
void AddZeros(const Pair<T>& pair, int64_t end, T* dst) {
  using Lanes = LaneArray<T, kBlock<T>>;
  const typename Lanes::D d;
  const hn::RebindToUnsigned<decltype(d)> du;
  const auto negativeZero = hn::BitCast(du, hn::Set(d, T(-0.0)));
  for (int64_t first = 0; first < end; first += kBlock<T>) {
    const Lanes sums = Lanes::Load(dst + first);
    bool found = false;
    for (const auto& v : sums.v) found |= !hn::AllFalse(du, hn::Eq(hn::BitCast(du, v), negativeZero));
    if (HWY_LIKELY(!found)) continue;
    const int64_t last = std::min(first + kBlock<T>, pair.len1);
    for (int64_t k = first; k < last; ++k) {
      const T sum = LoadElement(dst + k);
      for (int64_t i = k + 1; sum == 0 && i < last; ++i)
        if (!std::signbit(LoadElement(pair.src1 + i))) StoreElement(T(0), dst + k);
    }
  }
}

template <class T>
void Direct(const Pair<T>& pair, T* table, int64_t count, T* dst) {
  const int64_t end = pair.len2 > kShort ? count - count % kBlock<T> : 0;
  if (end > 0 && !AllFinite(pair.src1, pair.len1)) {
    const EdgeTable<T> zeros(pair, table);
    for (int64_t k = 0; k < end; k += kBlock<T>) BlockWithZeros(pair, zeros, k, dst + k);
    Chains(pair, end, count, dst + end);
  } else {
    // Without infinities and NaN a product with zero is a zero: blocks are chains, up to the sign of zeros.
    Chains(pair, 0, count, dst);
    AddZeros(pair, end, dst);
  }
}

// ---- State ----

// On the direct route buffer 0 holds the edge table, and there are no plans.
template <class T>
struct State {
  int32_t transforms;  // 1 on the FFT route, 0 on the direct one
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
  const bool isLong = std::min(src1Len, src2Len) > kShort && total > 512;
  const bool fft = kind == ORVA_ROUTE_FFT || (kind == ORVA_ROUTE_BY_LENGTH && isLong);
  if (fft) {
    if (total >= kLimit<T>) return refuse(ORVA_STS_OVERFLOW_ERR);
    state->transforms = 1;
    state->fftLen = static_cast<int32_t>(TransformLength(total - 1));
    if (!state->area.Make(state->fftLen, 3)) return refuse(ORVA_STS_MEM_ALLOC_ERR);
  } else {
    state->area.buffers[0] = ORVA_Malloc(EdgeTable<T>::kSize * sizeof(T));
    if (state->area.buffers[0] == nullptr) return refuse(ORVA_STS_MEM_ALLOC_ERR);
  }
  *stateOut = reinterpret_cast<ConvState*>(state);
  return ORVA_STS_NO_ERR;
}

template <class T>
OrvaStatus Convolve(const T* src1, int32_t src1Len, const T* src2, int32_t src2Len, T* dst, ConvState* opaque) {
  if (OrvaStatus status = CheckPointers(src1, src2, dst, opaque)) return status;
  if (src1Len < 1 || src2Len < 1) return ORVA_STS_SIZE_ERR;
  const auto* const state = reinterpret_cast<const State<T>*>(opaque);
  const auto& area = state->area;
  const int64_t count = int64_t{src1Len} + src2Len - 1;
  if (state->transforms) {
    const int32_t fftLen = state->fftLen;
    if (TransformLength(count) != fftLen) return ORVA_STS_LEN_MISMATCH_ERR;
    if (!area.Has(3)) return ORVA_STS_NULL_PTR_ERR;
    area.Forward(src1, 0, src1Len, fftLen, 1);
    area.Forward(src2, 0, src2Len, fftLen, 2);
    Multiply(area.Spectrum(1), area.Spectrum(2), area.Spectrum(2), area.Bins(fftLen));
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
  Chains<Orva32f>({src1, src2, src1Len, src2Len, bias}, bias, int64_t{bias} + dstLen, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_ConvRelease_32f(ConvState* state) { return Release(reinterpret_cast<State<Orva32f>*>(state)); }

OrvaStatus ORVAS_ConvRelease_64f(ConvState* state) { return Release(reinterpret_cast<State<Orva64f>*>(state)); }
