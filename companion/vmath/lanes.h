// Registers of binary64 and of binary32 numbers, and small tables in them. The arithmetic is that of IEEE 754 with
// fused steps, lane by lane: no estimates, no choice for a whole register but whether any lane needs a rare path, whose
// results are blended in by lane, or, being right in binary32, are those of the others too. So the width of a register
// changes no bit.
#pragma once

#include "frame/vector.h"

#include <bit>

namespace vmath {

using namespace tzm;

using D = Full<double>;
using Bits = hn::RebindToSigned<D>;
using V = Vec<D>;
using I = Vec<Bits>;
using M = Mask<D>;
constexpr size_t kLanes = hn::MaxLanes(D());
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using S = Full<float>;
using Bits32 = hn::RebindToSigned<S>;
using F = Vec<S>;
using I32 = Vec<Bits32>;
using M32 = Mask<S>;

TZM_INLINE V C(double value) { return hn::Set(D(), value); }
TZM_INLINE F C32(float value) { return hn::Set(S(), value); }
TZM_INLINE I BitsOf(V v) { return hn::BitCast(Bits(), v); }
TZM_INLINE V OfBits(I i) { return hn::BitCast(D(), i); }
TZM_INLINE I32 BitsOf(F v) { return hn::BitCast(Bits32(), v); }
TZM_INLINE F OfBits(I32 i) { return hn::BitCast(S(), i); }
TZM_INLINE I SetBits(uint64_t bits) { return hn::Set(Bits(), static_cast<int64_t>(bits)); }
template <int kCount>
TZM_INLINE I ShiftRightLogical(I i) {
  const hn::RebindToUnsigned<D> d;
  return hn::BitCast(Bits(), hn::ShiftRight<kCount>(hn::BitCast(d, i)));
}
TZM_INLINE bool Any(M m) { return HWY_UNLIKELY(!hn::AllFalse(D(), m)); }
TZM_INLINE bool NotAll(M m) { return HWY_UNLIKELY(!hn::AllTrue(D(), m)); }
TZM_INLINE bool NotAll(M32 m) { return HWY_UNLIKELY(!hn::AllTrue(S(), m)); }

// One rounding: a*b + c, a*b - c, c - a*b.
template <class Vector>
TZM_INLINE Vector Fma(Vector a, Vector b, Vector c) {
  return hn::MulAdd(a, b, c);
}
template <class Vector>
TZM_INLINE Vector Fms(Vector a, Vector b, Vector c) {
  return hn::MulSub(a, b, c);
}
template <class Vector>
TZM_INLINE Vector Fnma(Vector a, Vector b, Vector c) {
  return hn::NegMulAdd(a, b, c);
}

// A register of binary32 as two of binary64, step by step side by side, so that neither waits for the other.
struct Halves {
  V low, high;
};
TZM_INLINE Halves Fma(Halves a, Halves b, Halves c) { return {Fma(a.low, b.low, c.low), Fma(a.high, b.high, c.high)}; }
TZM_INLINE Halves Mul(Halves a, Halves b) { return {hn::Mul(a.low, b.low), hn::Mul(a.high, b.high)}; }
template <class Vector, class T>
TZM_INLINE Vector Constant(T value) {
  if constexpr (std::is_same_v<Vector, Halves>) return {C(value), C(value)};
  else return hn::Set(hn::DFromV<Vector>(), value);
}

// Lanes with |a| > b, and with |a| < b, b being positive: AArch64 compares magnitudes.
template <class Vector>
TZM_INLINE auto AbsGreater(Vector a, Vector b) {
#if HWY_ARCH_ARM_A64
  Mask<hn::DFromV<Vector>> greater;  // the compiler's intrinsic is two instructions where one is a constant
  auto& m = greater.raw;
  if constexpr (std::is_same_v<Vector, V>) asm("facgt %0.2d, %1.2d, %2.2d" : "=w"(m) : "w"(a.raw), "w"(b.raw));
  else asm("facgt %0.4s, %1.4s, %2.4s" : "=w"(m) : "w"(a.raw), "w"(b.raw));
  return greater;
#else
  return hn::Gt(hn::Abs(a), b);
#endif
}
template <class Vector>
TZM_INLINE auto AbsLess(Vector a, Vector b) {
#if HWY_ARCH_ARM_A64
  return AbsGreater(b, a);
#else
  return hn::Lt(hn::Abs(a), b);
#endif
}
// Two numbers in order, of which one is NaN if any is.
template <class Vector>
struct Ordered {
  Vector least, most;
};
template <class Vector>
TZM_INLINE Ordered<Vector> InOrder(Vector a, Vector b) {
#if HWY_ARCH_X86
  return {hn::Min(a, b), hn::Max(b, a)};
#else
  return {MinOrNaN(a, b), MaxOrNaN(a, b)};
#endif
}
// Lanes of `where` with a < b, or with a = b: AVX-512 compares under a mask.
TZM_INLINE M LessWhere(M where, V a, V b) {
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
  return {_mm512_mask_cmp_pd_mask(where.raw, a.raw, b.raw, _CMP_LT_OQ)};
#else
  return hn::And(where, hn::Lt(a, b));
#endif
}
TZM_INLINE M32 EqualWhere(M32 where, F a, F b) {
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
  return {_mm512_mask_cmp_ps_mask(where.raw, a.raw, b.raw, _CMP_EQ_OQ)};
#else
  return hn::And(where, hn::Eq(a, b));
#endif
}
// a + b and a - b in the lanes of `where`, a in the others: AVX-512 adds under a mask.
TZM_INLINE V AddWhere(M where, V a, V b) {
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
  return V{_mm512_mask_add_pd(a.raw, where.raw, a.raw, b.raw)};
#else
  return hn::Add(a, hn::IfThenElseZero(where, b));
#endif
}
TZM_INLINE V SubWhere(M where, V a, V b) {
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
  return V{_mm512_mask_sub_pd(a.raw, where.raw, a.raw, b.raw)};
#else
  return hn::Sub(a, hn::IfThenElseZero(where, b));
#endif
}

#if HWY_ARCH_ARM_A64
// The halves of both lanes, which leave the vector registers at once.
TZM_INLINE uint64_t LowerHalves(I i) {
  return vget_lane_u64(vreinterpret_u64_u32(vmovn_u64(vreinterpretq_u64_s64(i.raw))), 0);
}
TZM_INLINE uint64_t UpperHalves(I i) {
  return vget_lane_u64(vreinterpret_u64_u32(vshrn_n_u64(vreinterpretq_u64_s64(i.raw), 32)), 0);
}
#endif
// Lanes in which none of the bits is set, and whether any is in some lane; the bits are of the upper half.
template <uint64_t kBits>
TZM_INLINE M NoneOf(I i) {
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
  return {_mm512_testn_epi64_mask(i.raw, SetBits(kBits).raw)};
#else
  return hn::RebindMask(D(), hn::Eq(hn::And(i, SetBits(kBits)), hn::Zero(Bits())));
#endif
}
template <uint64_t kBits>
TZM_INLINE bool AnyOf(I i) {
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
  return NotAll(NoneOf<kBits>(i));
#elif HWY_ARCH_X86
  return HWY_UNLIKELY(!_mm256_testz_si256(i.raw, SetBits(kBits).raw));
#else
  return HWY_UNLIKELY((UpperHalves(i) & (kBits | kBits >> 32)) != 0);
#endif
}

// Added to a number below 2^51, in binary32 2^22, it leaves the nearest integer in the low bits of the sum.
constexpr double kToInteger = 0x1.8p52;
constexpr float kToInteger32 = 0x1.8p23f;

// x with its sign inverted where the lowest bit of `odd` is set.
TZM_INLINE F NegateIfOdd(F x, I32 odd) { return OfBits(hn::Xor(BitsOf(x), hn::ShiftLeft<31>(odd))); }

// Constants that fused steps on x add to. AArch64's steps overwrite the addend: a constant that stays in a register is
// copied for each of them, which takes as long as the step; loads take nothing beside arithmetic.
template <const auto& kConstants, class Vector>
class Addends {
 public:
#if HWY_ARCH_ARM_A64
  explicit TZM_INLINE Addends(Vector x) {
    const auto raw = x.raw;
    const auto* from = kFilled.number;
    asm("" : "+r"(from) : "w"(raw));  // so that the loads stay in the loop
    from_ = from;
  }
  TZM_INLINE Vector operator[](size_t i) const { return hn::Load(kTag, from_ + i * kWidth); }

 private:
  static constexpr hn::DFromV<Vector> kTag{};
  static constexpr size_t kWidth = hn::MaxLanes(kTag);
  static constexpr auto kFilled = [] {
    struct {
      alignas(16) hn::TFromV<Vector> number[std::size(kConstants) * kWidth];
    } filled{};
    for (size_t i = 0; i < std::size(filled.number); ++i) filled.number[i] = kConstants[i / kWidth];
    return filled;
  }();
  const hn::TFromV<Vector>* from_;
#else
  explicit TZM_INLINE Addends(Vector) {}
  TZM_INLINE Vector operator[](size_t i) const { return hn::Set(hn::DFromV<Vector>(), kConstants[i]); }
#endif
};

template <const auto& kConstants>
class Addends<kConstants, Halves> {
 public:
  explicit TZM_INLINE Addends(Halves x) : low_(x.low), high_(x.high) {}
  TZM_INLINE Halves operator[](size_t i) const { return {low_[i], high_[i]}; }

 private:
  const Addends<kConstants, V> low_, high_;
};

// c[0] + c[1] x + c[2] x^2 ...: by Horner's rule, and in two chains, of the even and of the odd powers.
template <const auto& c, class Vector>
TZM_INLINE Vector Polynomial(Vector x) {
  constexpr size_t N = std::size(c);
  const Addends<c, Vector> addend(x);
  Vector p = Constant<Vector>(c[N - 1]);
  Unrolled<N - 1>([&](auto i) TZM_LAMBDA { p = Fma(p, x, addend[N - 2 - i]); });
  return p;
}
template <const auto& c>
TZM_INLINE V PolynomialInTwo(V x, V x2) {
  constexpr size_t N = std::size(c);
  const Addends<c, V> addend(x2);
  V last = C(c[N - 1]), before = C(c[N - 2]);
  Unrolled<N - 2>([&](auto i) TZM_LAMBDA {
    V& chain = i % 2 == 0 ? last : before;
    chain = Fma(chain, x2, addend[N - 3 - i]);
  });
  return N % 2 == 0 ? Fma(last, x, before) : Fma(before, x, last);
}

// A function in two stages: the second takes the argument and what the first made of it.
template <class Function>
struct InStages {
  template <class Vector>
  TZM_INLINE auto operator()(Vector x) const {
    return Function::End(x, Function::Begin(x));
  }
};

// a + b and what its rounding lost; for the second of them |a| >= |b|, or a is 0.
struct Sum {
  V sum, rest;
};
TZM_INLINE Sum TwoSum(V a, V b) {
  const V sum = hn::Add(a, b), other = hn::Sub(sum, a);
  return {sum, hn::Add(hn::Sub(a, hn::Sub(sum, other)), hn::Sub(b, other))};
}
TZM_INLINE Sum FastTwoSum(V a, V b) {
  const V sum = hn::Add(a, b);
  return {sum, hn::Add(hn::Sub(a, sum), b)};
}

// ---- Binary32, right in the last bit ----
//
// A first step knows the result well enough to round it in nearly every lane; where it does not in some lane, the
// second takes the whole register: the function of binary64, rounded once. That the first step is as good as it says is
// what ./run verify shows, at every number.

TZM_INLINE Halves Widen(F x) {
  return {hn::PromoteTo(D(), hn::LowerHalf(x)), hn::PromoteTo(D(), hn::UpperHalf(hn::Half<S>(), x))};
}

// Values that round in binary64 to the middle between two binary32 numbers, from which binary32 would round them to
// the wrong side, and what they are in binary32: no polynomial helps there. bench/accuracy/verify.cpp finds them.
struct Middle {
  double middle, right;
};
template <size_t N>
TZM_INLINE V Settled(const Middle (&list)[N], V y) {
  Unrolled<N>([&](auto i) TZM_LAMBDA { y = hn::IfThenElse(hn::Eq(y, C(list[i].middle)), C(list[i].right), y); });
  return y;
}
template <class Function, const auto&... kMiddles>
inline __attribute__((noinline)) F SecondStep(F x) {
  const Halves wide = Widen(x);
  const auto settled = [](V half) TZM_LAMBDA {
    V y = Function()(half);
    ((y = Settled(kMiddles, y)), ...);
    return y;
  };
  return NarrowPair(S(), settled(wide.low), settled(wide.high));
}

// The lower or the upper 32 bits of both halves' lanes; on x86-64 in other lanes than there, for one instruction.
template <bool kUpper>
TZM_INLINE F WordsOf(Halves y) {
  const F low = hn::BitCast(S(), y.low), high = hn::BitCast(S(), y.high);
#if HWY_ARCH_X86
  return F{TZM_X86(shuffle_ps)(low.raw, high.raw, kUpper ? 0xdd : 0x88)};
#else
  return kUpper ? hn::ConcatOdd(S(), high, low) : hn::ConcatEven(S(), high, low);
#endif
}
// Whether they are below a limit whose last 32 bits are zero: the first 32, as binary32, keep the order of magnitudes,
// or are NaN.
TZM_INLINE M32 WordsBelow(Halves y, double limit) {
  const auto upper = static_cast<uint32_t>(std::bit_cast<uint64_t>(limit) >> 32);
  return AbsLess(WordsOf<true>(y), C32(std::bit_cast<float>(upper)));
}
// Whether normal numbers of binary32, known in binary64 but for kUnits units, a power of two, lie certainly on one side
// of a middle, as the last 29 bits tell: those of both halves, each in some lane, together with some lane of the mask
// in `also`, where there is one.
template <uint32_t kUnits, class... Also>
TZM_INLINE M32 IsSureWithin(Halves y, Also... also) {
  const I32 fromMiddle = hn::Add(BitsOf(WordsOf<false>(y)), hn::Set(Bits32(), kUnits - 0x10000000));
  I32 bits = hn::Set(Bits32(), 0x20000000 - 2 * kUnits);
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
  return {_mm512_mask_test_epi32_mask((__mmask16{0xffff} & ... & also.raw), fromMiddle.raw, bits.raw)};
#else
  ((bits = hn::And(bits, BitsOf(hn::VecFromMask(S(), also)))), ...);
#if HWY_ARCH_ARM_A64
  return M32(vtstq_s32(fromMiddle.raw, bits.raw));
#else
  return hn::RebindMask(S(), hn::Gt(hn::And(fromMiddle, bits), hn::Zero(Bits32())));
#endif
#endif
}
// Whether any may lie on either side, or is not in a lane of a mask in `also`. AArch64 takes halves of the lanes that
// tell out of the vector registers, where a carry from each says that it is not zero, and so knows no less than 2^15
// units.
template <uint32_t kUnits, class... Also>
TZM_INLINE bool AnyOpen(Halves y, Also... also) {
#if HWY_ARCH_ARM_A64
  constexpr uint32_t kKnown = std::max<uint32_t>(kUnits, 0x8000);
  constexpr uint64_t kEach = 0x0001000100010001, kLeast = 2 * kKnown >> 16, kSign = 0x8000;
  const hn::RebindToUnsigned<S> d;
  auto ends = hn::BitCast(d, WordsOf<false>(y));
  ((ends = hn::IfThenElse(hn::RebindMask(d, also), ends, hn::Set(d, 0x10000000))), ...);
  const auto fromMiddle = vaddhn_u32(ends.raw, vdupq_n_u32(kKnown - 0x10000000));
  const uint64_t bits = vget_lane_u64(vreinterpret_u64_u16(fromMiddle), 0) & (0x2000 - kLeast) * kEach;
  return HWY_UNLIKELY((~(bits + (kSign - kLeast) * kEach) & kSign * kEach) != 0);
#else
  return NotAll(IsSureWithin<kUnits>(y, also...));
#endif
}

// Eight or sixteen entries of a few binary32 numbers each, in columns that registers permute: for registers of sixteen
// eight entries stand twice. AArch64 permutes bytes: a column has the entries' third bytes, then the fourth, the first
// and the second ones, of which the last two stay away where they are zero.
template <size_t kColumns, size_t kEntries>
struct Table32 {
  float column[kColumns][kEntries];
};
#if HWY_ARCH_X86
template <const auto& kTable>
constexpr auto kTwice = [] {
  constexpr size_t kEntries = std::size(kTable.column[0]);
  struct {
    alignas(64) float column[std::size(kTable.column)][16];
  } twice{};
  for (size_t c = 0; c < std::size(twice.column); ++c)
    for (size_t r = 0; r < 16; ++r) twice.column[c][r] = kTable.column[c][r % kEntries];
  return twice;
}();
#else
template <const auto& kTable>
constexpr auto kBytes = [] {
  constexpr size_t kColumns = std::size(kTable.column), kEntries = std::size(kTable.column[0]);
  struct {
    alignas(16) uint8_t column[kColumns][4 * kEntries];
    alignas(16) uint8_t lowest[16], start[16];  // of a lane's bytes: the lowest one, where the entries' start
    bool isShort[kColumns];
  } table{};
  for (size_t byte = 0; byte < 16; ++byte) {
    table.lowest[byte] = byte & ~3;
    table.start[byte] = (byte + 2) % 4 * kEntries;
  }
  for (size_t c = 0; c < kColumns; ++c) {
    uint32_t any = 0;
    for (size_t r = 0; r < kEntries; ++r) {
      const auto bits = std::bit_cast<uint32_t>(kTable.column[c][r]);
      any |= bits;
      for (size_t byte = 0; byte < 4; ++byte) table.column[c][table.start[byte] + r] = bits >> 8 * byte & 255;
    }
    table.isShort[c] = any << 16 == 0;
  }
  return table;
}();
#endif
// A column's entries of which the low bits of the lanes are the numbers.
template <const auto& kTable, size_t kColumn>
TZM_INLINE F Lookup32(I32 index) {
  [[maybe_unused]] constexpr bool kSixteen = std::size(kTable.column[0]) == 16;
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
  return F{_mm512_permutexvar_ps(index.raw, _mm512_load_ps(kTwice<kTable>.column[kColumn]))};
#elif HWY_ARCH_X86
  const float* column = kTwice<kTable>.column[kColumn];
  const __m256 first = _mm256_permutevar8x32_ps(_mm256_load_ps(column), index.raw);
  if constexpr (!kSixteen) return F{first};
  const __m256 second = _mm256_permutevar8x32_ps(_mm256_load_ps(column + 8), index.raw);
  return F{_mm256_blendv_ps(first, second, hn::BitCast(S(), hn::ShiftLeft<28>(index)).raw)};
#else
  const auto& table = kBytes<kTable>;
  const auto lowest = vqtbl1q_u8(vreinterpretq_u8_s32(index.raw), vld1q_u8(table.lowest));
  const uint8x16_t bytes = vbslq_u8(vdupq_n_u8(kSixteen ? 15 : 7), lowest, vld1q_u8(table.start));
  if constexpr (kSixteen && !table.isShort[kColumn])
    return F(vreinterpretq_f32_u8(vqtbl4q_u8(vld1q_u8_x4(table.column[kColumn]), bytes)));
  else return F(vreinterpretq_f32_u8(vqtbl2q_u8(vld1q_u8_x2(table.column[kColumn]), bytes)));
#endif
}

// Sixteen entries of a few numbers each, or 32 of numbers whose last 32 bits are zero. Registers that hold eight
// numbers hold a column, or its upper halves, in two and permute it; the others load whole rows and transpose. No
// gathers: many machines run them in microcode. With twice as many entries as are stored, the negated ones follow: in
// rows they are there, where columns are permuted what becomes of an entry is negated.
template <size_t kColumns, size_t kStored = 16, size_t kEntries = kStored>
struct Table {
  alignas(64) double column[kColumns][kStored];
};
template <size_t kColumns, size_t kEntries>
struct Rows {
  static constexpr size_t kLast = kEntries - 1;
  alignas(64) double row[kEntries][kColumns];
};
template <size_t kColumns, size_t kStored, size_t kEntries>
constexpr auto Transposed(const Table<kColumns, kStored, kEntries>& table) {
  Rows<kColumns, kEntries> rows{};
  for (size_t c = 0; c < kColumns; ++c)
    for (size_t r = 0; r < kEntries; ++r)
      rows.row[r][c] = r < kStored ? table.column[c][r] : -table.column[c][r - kStored];
  return rows;
}
template <const auto& kTable>
constexpr auto kRows = Transposed(kTable);
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
template <const auto& kTable>
constexpr auto kUpperHalves = [] {
  constexpr size_t kColumns = std::size(kTable.column), kStored = std::size(kTable.column[0]);
  struct {
    alignas(64) uint32_t column[kColumns][kStored];
  } halves{};
  for (size_t c = 0; c < kColumns; ++c)
    for (size_t r = 0; r < kStored; ++r)
      halves.column[c][r] = static_cast<uint32_t>(std::bit_cast<uint64_t>(kTable.column[c][r]) >> 32);
  return halves;
}();
TZM_INLINE V WithSignOf(I entry, V y) {
  return OfBits(hn::Xor(BitsOf(y), hn::And(hn::ShiftLeft<59>(entry), BitsOf(C(-0.0)))));
}
#else
TZM_INLINE V WithSignOf(I, V y) { return y; }
#endif

template <size_t kColumns>
struct Entry {
  V number[kColumns];
};
// The entries whose numbers are in the lanes from bit kFrom on; where 32 are stored, it is in the upper half.
template <const auto& kTable, int kFrom = 0>
TZM_INLINE auto Lookup(I lanes) {
  constexpr size_t kColumns = std::size(kTable.column);
  Entry<kColumns> entry;
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
  if constexpr (std::size(kTable.column[0]) == 16) {
    const I index = ShiftRightLogical<kFrom>(lanes);
    Unrolled<kColumns>([&](auto c) TZM_LAMBDA {
      const double* column = kTable.column[c];
      entry.number[c] = V{_mm512_permutex2var_pd(_mm512_load_pd(column), index.raw, _mm512_load_pd(column + 8))};
    });
  } else {
    const __m512i index = _mm512_srli_epi32(lanes.raw, kFrom - 32);
    Unrolled<kColumns>([&](auto c) TZM_LAMBDA {
      const uint32_t* column = kUpperHalves<kTable>.column[c];
      const __m512i first = _mm512_load_si512(column), second = _mm512_load_si512(column + 16);
      entry.number[c] = V{_mm512_castsi512_pd(_mm512_maskz_permutex2var_epi32(0xaaaa, first, index, second))};
    });
  }
#elif HWY_ARCH_X86
  constexpr auto& rows = kRows<kTable>;
  const auto row = [](int64_t bits) TZM_LAMBDA { return rows.row[bits >> kFrom & rows.kLast]; };
  const __m128i low = _mm256_castsi256_si128(lanes.raw), high = _mm256_extracti128_si256(lanes.raw, 1);
  const double* lane[] = {row(_mm_cvtsi128_si64(low)), row(_mm_extract_epi64(low, 1)), row(_mm_cvtsi128_si64(high)),
                          row(_mm_extract_epi64(high, 1))};
  const auto pair = [&](size_t a, size_t b, size_t c) TZM_LAMBDA {
    return _mm256_insertf128_pd(_mm256_castpd128_pd256(_mm_load_pd(lane[a] + c)), _mm_load_pd(lane[b] + c), 1);
  };
  if constexpr (kColumns == 1) {
    const auto two = [&](size_t a) TZM_LAMBDA { return _mm_loadh_pd(_mm_load_sd(lane[a]), lane[a + 1]); };
    entry.number[0] = V{_mm256_insertf128_pd(_mm256_castpd128_pd256(two(0)), two(2), 1)};
  } else {
    Unrolled<kColumns / 2>([&](auto half) TZM_LAMBDA {
      constexpr size_t c = 2 * half;
      const __m256d even = pair(0, 2, c), odd = pair(1, 3, c);
      entry.number[c] = V{_mm256_unpacklo_pd(even, odd)};
      entry.number[c + 1] = V{_mm256_unpackhi_pd(even, odd)};
    });
  }
#else
  constexpr auto& rows = kRows<kTable>;
  constexpr int kHalf = kFrom < 32 ? 0 : 32;
  const uint64_t both = kHalf == 0 ? LowerHalves(lanes) : UpperHalves(lanes);
  const double *first = rows.row[both >> (kFrom - kHalf) & rows.kLast];
  const double* second = rows.row[both >> (kFrom - kHalf + 32) & rows.kLast];
  if constexpr (kColumns == 1) {
    entry.number[0] = V(vcombine_f64(vld1_f64(first), vld1_f64(second)));
  } else {
    Unrolled<kColumns / 2>([&](auto half) TZM_LAMBDA {
      constexpr size_t c = 2 * half;
      const float64x2_t even = vld1q_f64(first + c), odd = vld1q_f64(second + c);
      entry.number[c] = V(vtrn1q_f64(even, odd));
      entry.number[c + 1] = V(vtrn2q_f64(even, odd));
    });
  }
#endif
  return entry;
}

}  // namespace vmath
