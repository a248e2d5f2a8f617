// Column aggregates: sum, or sum and row count, of a database column with an optional null mask. Overflow
// goes into a flag byte, never into the status.
#include <signal_tzm/reduce.h>

#include "frame/call.h"
#include "frame/sum.h"

#include <bit>

using namespace tzm;

namespace {

using Int128 = __int128;
using UInt128 = unsigned __int128;

constexpr UInt128 Join(uint64_t high, uint64_t low) { return static_cast<UInt128>(high) << 64 | low; }

constexpr UInt128 kDecimalLimit = Join(0x4B3B4CA85A86C47A, 0x098A224000000000);  // 10^38
constexpr uint64_t kSign = uint64_t{1} << 63;

// Rows handled at a time: their values and null bytes stay in the first-level cache.
constexpr size_t kBlock = 512;

// All ones in the lanes whose null byte is 0, zero in the others.
template <class D>
TZM_INLINE Vec<D> Present(D d, const Orva8u* nulls) {
  const hn::RebindToUnsigned<D> du;
  const auto bytes = LoadBytes(du, nulls);
  return hn::BitCast(d, hn::VecFromMask(du, hn::Eq(bytes, hn::Zero(du))));
}

// Calls add(values) for every register of the rows, null rows and those past the end as zeros.
template <class T, class Add>
TZM_INLINE void ForEachRegister(const T* src, const Orva8u* nulls, size_t len, Add add) {
  const Full<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  if (nulls == nullptr) {
    ReduceSteps<kLanes>(len, [&](const T* from) TZM_LAMBDA { add(hn::LoadU(d, from)); }, [] {}, src);
  } else {
    ReduceSteps<kLanes>(
        len, [&](const T* from, const Orva8u* mask) TZM_LAMBDA { add(hn::And(hn::LoadU(d, from), Present(d, mask))); },
        [] {}, src, nulls);
  }
}

uint64_t CountPresent(const Orva8u* nulls, size_t len) {
  if (nulls == nullptr) return len;
  const Full<uint8_t> d;
  const hn::Repartition<uint64_t, decltype(d)> d64;
  auto counts = hn::Zero(d64);  // of nulls
  ReduceRegisters(
      len,
      [&](auto bytes) TZM_LAMBDA {
        const auto present = hn::VecFromMask(d, hn::Eq(bytes, hn::Zero(d)));
        counts = hn::Add(counts, hn::SumsOf8(hn::AndNot(present, hn::Set(d, 1))));
      },
      [] {}, nulls);
  return len - hn::GetLane(hn::SumOfLanes(d64, counts));
}

// ---- Sums that cannot overflow: no legal length of 16- or 32-bit rows fills 64 bits ----

struct Total {
  int64_t sum;
  bool overflow;
};

void AddRows(const Orva16s* src, const Orva8u* nulls, size_t len, Total& total) {
  static_assert(kBlock < kPairSums);
  auto sums = hn::Zero(Full<int32_t>());
  ForEachRegister(src, nulls, len, [&](auto values) TZM_LAMBDA { sums = AddPairs(sums, values); });
  total.sum += WideSum(sums);
}

void AddRows(const Orva32s* src, const Orva8u* nulls, size_t len, Total& total) {
  const Full<int32_t> d;
  const hn::Half<decltype(d)> half;
  const Full<int64_t> d64;
  auto low = hn::Zero(d64), high = hn::Zero(d64);
  ForEachRegister(src, nulls, len, [&](auto values) TZM_LAMBDA {
    low = hn::Add(low, hn::PromoteTo(d64, hn::LowerHalf(half, values)));
    high = hn::Add(high, hn::PromoteTo(d64, hn::UpperHalf(half, values)));
  });
  total.sum += hn::GetLane(hn::SumOfLanes(d64, hn::Add(low, high)));
}

// ---- 64-bit rows: the first add that overflows stops the sum and leaves its wrapped value ----

void AddRows(const Orva64s* src, const Orva8u* nulls, size_t len, Total& total) {
  if (total.overflow) return;
  // If even `len` rows of the block's greatest magnitude could not overflow, the order of the adds cannot
  // be seen. `bits` collects the bits of all magnitudes (of x, or of -x - 1).
  const Full<int64_t> d;
  auto sums = hn::Zero(d), bits = hn::Zero(d);
  ForEachRegister(src, nulls, len, [&](auto values) TZM_LAMBDA {
    sums = hn::Add(sums, values);
    bits = hn::Or(bits, hn::Xor(values, hn::BroadcastSignBit(values)));
  });
  int64_t lane[hn::MaxLanes(d)];
  hn::StoreU(bits, d, lane);
  int64_t magnitude = 0;
  for (int64_t b : lane) magnitude |= b;
  const Int128 most = (static_cast<Int128>(magnitude) + 1) * static_cast<Int128>(len);
  using Limits = std::numeric_limits<int64_t>;
  if (total.sum + most <= Limits::max() && total.sum - most >= Limits::min()) {
    total.sum += hn::GetLane(hn::SumOfLanes(d, sums));
    return;
  }
  for (size_t i = 0; i < len && !total.overflow; ++i)
    if (nulls == nullptr || nulls[i] == 0)
      total.overflow = __builtin_add_overflow(total.sum, LoadElement(src + i), &total.sum);
}

// ---- Binary64 rows: strictly left to right ----

struct FloatTotal {
  double sum;
};

void AddRows(const Orva64f* src, const Orva8u* nulls, size_t len, FloatTotal& total) {
  double sum = total.sum;
  if (nulls == nullptr) {
    for (size_t i = 0; i < len; ++i) sum += LoadElement(src + i);
  } else {
    // A null row adds +0, which changes no sum that started at +0; no branch can be mispredicted.
    for (size_t i = 0; i < len; ++i) {
      const auto bits = LoadElement(reinterpret_cast<const uint64_t*>(src) + i) & -static_cast<uint64_t>(nulls[i] == 0);
      sum += std::bit_cast<double>(bits);
    }
  }
  total.sum = sum;
}

// ---- Decimals: a two's-complement 128-bit sum, sticky overflow ----

struct DecimalTotal {
  Int128 sum;
  bool overflow;
};

// The value of a row, or 0 for a null one, without a branch.
Int128 Value(OrvaDecimal128 row, bool present) {
  const UInt128 magnitude = Join(row.hi & ~kSign, row.lo);
  const UInt128 negative = static_cast<UInt128>(-static_cast<Int128>(row.hi >> 63));
  return static_cast<Int128>(((magnitude ^ negative) - negative) & static_cast<UInt128>(-static_cast<Int128>(present)));
}

// No legal length of 64-bit rows fills 128 bits. With 2^63 added a row is unsigned, and its halves are
// summed apart.
void AddRows(const Orva64s* src, const Orva8u* nulls, size_t len, DecimalTotal& total) {
  const Full<uint64_t> d;
  auto low = hn::Zero(d), high = hn::Zero(d);
  size_t rows = 0;
  ForEachRegister(src, nulls, len, [&](auto values) TZM_LAMBDA {
    const auto biased = hn::Xor(hn::BitCast(d, values), hn::Set(d, kSign));
    low = hn::Add(low, hn::And(biased, hn::Set(d, 0xffffffff)));
    high = hn::Add(high, hn::ShiftRight<32>(biased));
    rows += hn::Lanes(d);
  });
  total.sum += (static_cast<Int128>(hn::GetLane(hn::SumOfLanes(d, high))) << 32) + hn::GetLane(hn::SumOfLanes(d, low));
  total.sum -= static_cast<Int128>(rows) << 63;
}

void AddRows(const OrvaDecimal128* src, const Orva8u* nulls, size_t len, DecimalTotal& total) {
  if (total.overflow) return;
  // A row is x, or with its sign s as all ones (x ^ s) + 1. The halves of (x ^ s) are summed apart, the low
  // one in two pieces, where as above no order of adds can overflow.
  const Full<uint64_t> d;
  const Full<int64_t> di;
  constexpr size_t kLanes = hn::MaxLanes(d);
  auto low = hn::Zero(d), middle = hn::Zero(d), high = hn::Zero(d), negative = hn::Zero(d), bits = hn::Zero(d);
  const auto add = [&](auto lo, auto hi) TZM_LAMBDA {
    const auto sign = hn::BitCast(d, hn::BroadcastSignBit(hn::BitCast(di, hi)));
    const auto magnitude = hn::And(hi, hn::Set(d, ~kSign));
    const auto x = hn::Xor(lo, sign);
    low = hn::Add(low, hn::And(x, hn::Set(d, 0xffffffff)));
    middle = hn::Add(middle, hn::ShiftRight<32>(x));
    high = hn::Add(high, hn::Xor(magnitude, sign));
    negative = hn::Sub(negative, sign);
    bits = hn::Or(bits, magnitude);
  };
  const auto addFrom = [&](const OrvaDecimal128* from, auto present) TZM_LAMBDA {
    Vec<decltype(d)> lo, hi;
    hn::LoadInterleaved2(d, reinterpret_cast<const uint64_t*>(from), lo, hi);
    add(present(lo), present(hi));
  };
  if (nulls == nullptr) {
    ReduceSteps<kLanes>(
        len, [&](const OrvaDecimal128* from) TZM_LAMBDA { addFrom(from, [](auto v) TZM_LAMBDA { return v; }); }, [] {},
        src);
  } else {
    ReduceSteps<kLanes>(
        len,
        [&](const OrvaDecimal128* from, const Orva8u* mask) TZM_LAMBDA {
          const auto present = hn::BitCast(d, Present(di, mask));
          addFrom(from, [=](auto v) TZM_LAMBDA { return hn::And(v, present); });
        },
        [] {}, src, nulls);
  }

  uint64_t lane[kLanes], magnitude = 0;
  hn::StoreU(bits, d, lane);
  for (uint64_t b : lane) magnitude |= b;
  // Every row is below (magnitude + 1) * 2^64, `len` of them are below 2^126 if this holds.
  constexpr Int128 kHalf = static_cast<Int128>(1) << 126;
  if (magnitude < (uint64_t{1} << 62) / kBlock && total.sum <= kHalf && total.sum >= -kHalf) {
    const auto sum = [&](auto v) { return static_cast<UInt128>(hn::GetLane(hn::SumOfLanes(d, v))); };
    total.sum += static_cast<Int128>((sum(high) << 64) + (sum(middle) << 32) + sum(low) + sum(negative));
    return;
  }
  for (size_t i = 0; i < len && !total.overflow; ++i) {
    const Int128 value = Value(LoadElement(src + i), nulls == nullptr || nulls[i] == 0);
    total.overflow = __builtin_add_overflow(total.sum, value, &total.sum);
  }
}

// ---- What is delivered ----

void Deliver(const Total& total, Orva64s* sum, Orva8u* overflow) {
  StoreElement(total.sum, sum);
  *overflow = total.overflow;
}
void Deliver(const Total& total, Orva64f* sum, Orva8u* overflow) {
  StoreElement(static_cast<double>(total.sum), sum);
  *overflow = total.overflow;
}
void Deliver(const FloatTotal& total, Orva64f* sum, Orva8u* overflow) {
  StoreElement(total.sum, sum);
  *overflow = 0;
}
// Sign and magnitude; the limit is tested here only, on the total. A total of -2^127 has no such form:
// it reads as +0, which elements of legal size cannot reach.
void Deliver(const DecimalTotal& total, OrvaDecimal128* sum, Orva8u* overflow) {
  const bool negative = total.sum < 0;
  const UInt128 magnitude = negative ? -static_cast<UInt128>(total.sum) : static_cast<UInt128>(total.sum);
  const uint64_t high = static_cast<uint64_t>(magnitude >> 64) ^ (negative ? kSign : 0);
  StoreElement(OrvaDecimal128{static_cast<uint64_t>(magnitude), high}, sum);
  *overflow = total.overflow || Join(high & ~kSign, static_cast<uint64_t>(magnitude)) >= kDecimalLimit;
}

template <class Total, class T, class Sum>
OrvaStatus AggSum(const T* src, int32_t len, const Orva8u* nulls, Orva8u* overflow, Sum* sum) {
  if (OrvaStatus status = CheckArrays(len, src, overflow, sum)) return status;
  Total total = {};
  for (size_t rows = len, i = 0; i < rows; i += kBlock)
    AddRows(src + i, nulls != nullptr ? nulls + i : nullptr, std::min(kBlock, rows - i), total);
  Deliver(total, sum, overflow);
  return ORVA_STS_NO_ERR;
}

// The sum and the count of present rows; the division is the caller's.
template <class Total, class T, class Sum>
OrvaStatus AggMean(const T* src, int32_t len, const Orva8u* nulls, Orva8u* overflow, Sum* sum, uint64_t* count) {
  if (OrvaStatus status = CheckPointers(count)) return status;
  if (OrvaStatus status = AggSum<Total>(src, len, nulls, overflow, sum)) return status;
  StoreElement(CountPresent(nulls, len), count);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_AggSum_16s(const Orva16s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow, Orva64s* sum) {
  return AggSum<Total>(src, len, nulls, overflow, sum);
}

OrvaStatus ORVAS_AggSum_32s(const Orva32s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow, Orva64s* sum) {
  return AggSum<Total>(src, len, nulls, overflow, sum);
}

OrvaStatus ORVAS_AggSum_64s(const Orva64s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow, Orva64s* sum) {
  return AggSum<Total>(src, len, nulls, overflow, sum);
}

OrvaStatus ORVAS_AggSum_64f(const Orva64f* src, int32_t len, const Orva8u* nulls, Orva8u* overflow, Orva64f* sum) {
  return AggSum<FloatTotal>(src, len, nulls, overflow, sum);
}

OrvaStatus ORVAS_AggSum_decimal64(const Orva64s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                  OrvaDecimal128* sum) {
  return AggSum<DecimalTotal>(src, len, nulls, overflow, sum);
}

OrvaStatus ORVAS_AggSum_decimal128(const OrvaDecimal128* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                   OrvaDecimal128* sum) {
  return AggSum<DecimalTotal>(src, len, nulls, overflow, sum);
}

OrvaStatus ORVAS_AggMean_16s(const Orva16s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow, Orva64f* sum,
                             uint64_t* count) {
  return AggMean<Total>(src, len, nulls, overflow, sum, count);
}

OrvaStatus ORVAS_AggMean_32s(const Orva32s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow, Orva64f* sum,
                             uint64_t* count) {
  return AggMean<Total>(src, len, nulls, overflow, sum, count);
}

OrvaStatus ORVAS_AggMean_64s(const Orva64s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow, Orva64f* sum,
                             uint64_t* count) {
  return AggMean<Total>(src, len, nulls, overflow, sum, count);
}

OrvaStatus ORVAS_AggMean_64f(const Orva64f* src, int32_t len, const Orva8u* nulls, Orva8u* overflow, Orva64f* sum,
                             uint64_t* count) {
  return AggMean<FloatTotal>(src, len, nulls, overflow, sum, count);
}

OrvaStatus ORVAS_AggMean_decimal64(const Orva64s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                   OrvaDecimal128* sum, uint64_t* count) {
  return AggMean<DecimalTotal>(src, len, nulls, overflow, sum, count);
}

OrvaStatus ORVAS_AggMean_decimal128(const OrvaDecimal128* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                    OrvaDecimal128* sum, uint64_t* count) {
  return AggMean<DecimalTotal>(src, len, nulls, overflow, sum, count);
}
