// Complex numbers in registers: their places in memory, and transposition.
#pragma once

#include "frame/vector.h"

namespace tzm::fft {

// The real and the imaginary parts of as many complex numbers as a register has lanes.
template <class D>
struct Cx {
  Vec<D> re, im;
};

// A block is such a register pair in scratch memory: V real parts, then V imaginary ones.
template <class D>
constexpr size_t kLanes = hn::MaxLanes(D());
template <class D>
constexpr size_t kBlock = 2 * kLanes<D>;

#if HWY_ARCH_ARM_A64 && !defined(__clang__)
// GCC 12 leaves most loads and stores of neighbours single. "Ump" is its constraint for the address of a pair.
#define TZM_PAIRED_MOVES 1
template <class D>
using Unaligned __attribute__((aligned(4), may_alias)) = decltype(Vec<D>().raw);
#else
#define TZM_PAIRED_MOVES 0
#endif

// An address that the compiler does not see through. On AArch64 it would give each number that it knows a place and an
// address of its own, and compute the addresses of what moves on together from one of them, again and again.
template <class T>
TZM_INLINE T Opaque(T address) {
#if HWY_ARCH_ARM_A64
  asm("" : "+r"(address));
#endif
  return address;
}

template <class D, class T = hn::TFromD<D>>
TZM_INLINE Cx<D> LoadBlock(D d, const T* from) {
  return {InRegister(hn::LoadU(d, from)), InRegister(hn::LoadU(d, from + kLanes<D>))};
}
template <class D, class T = hn::TFromD<D>>
TZM_INLINE void StoreBlock(D d, const Cx<D>& x, T* to) {
#if TZM_PAIRED_MOVES
  if constexpr (sizeof(x.re.raw) == 16) {
    auto* const both = reinterpret_cast<Unaligned<D>*>(to);
    asm("stp %q2, %q3, %0" : "=Ump"(both[0]), "=Ump"(both[1]) : "w"(x.re.raw), "w"(x.im.raw));
    return;
  }
#endif
  hn::StoreU(x.re, d, to);
  hn::StoreU(x.im, d, to + kLanes<D>);
}
// The same of a block that is loaded once, and not again where a register is wanting.
template <class D, class T = hn::TFromD<D>>
TZM_INLINE Cx<D> LoadOnce(D d, const T* from) {
#if TZM_PAIRED_MOVES
  if constexpr (sizeof(Vec<D>().raw) == 16) {
    Cx<D> x;
    const auto* const both = reinterpret_cast<const Unaligned<D>*>(from);
    asm("ldp %q0, %q1, %2" : "=w"(x.re.raw), "=w"(x.im.raw) : "Ump"(both[0]), "Ump"(both[1]));
    return x;
  }
#endif
  return LoadBlock(d, from);
}

// The same, and `from` or `to` moves on by so many blocks, which costs no instruction.
template <ptrdiff_t kBlocks, class D, class T = hn::TFromD<D>>
TZM_INLINE Cx<D> LoadMoving(D d, const T*& from) {
  constexpr ptrdiff_t kBy = kBlocks * static_cast<ptrdiff_t>(kBlock<D>);
  Cx<D> x;
#if TZM_PAIRED_MOVES
  if constexpr (sizeof(x.re.raw) == 16) {
    asm volatile("ldp %q0, %q1, [%2], %3"
                 : "=w"(x.re.raw), "=w"(x.im.raw), "+r"(from)
                 : "i"(kBy * sizeof(T))
                 : "memory");
    return x;
  }
#endif
  x = LoadBlock(d, from);
  from += kBy;
  return x;
}
template <ptrdiff_t kBlocks, class D, class T = hn::TFromD<D>>
TZM_INLINE void StoreMoving(D d, const Cx<D>& x, T*& to) {
  constexpr ptrdiff_t kBy = kBlocks * static_cast<ptrdiff_t>(kBlock<D>);
#if TZM_PAIRED_MOVES
  if constexpr (sizeof(x.re.raw) == 16) {
    asm volatile("stp %q1, %q2, [%0], %3" : "+r"(to) : "w"(x.re.raw), "w"(x.im.raw), "i"(kBy * sizeof(T)) : "memory");
    return;
  }
#endif
  StoreBlock(d, x, to);
  to += kBy;
}

// The caller's complex numbers: pairs; pairs with the parts exchanged, which make a forward transform an inverse one;
// two arrays; or real parts alone, whose results are the pairs 0 ... n/2: kHalf, the pairs of all results before `im`.
// Of pairs, `re` is the array.
enum class Form { kPairs, kExchanged, kSplit, kReal, kHalf };
template <class T>
struct Number {
  T re, im;
};
template <class T>
struct View {
  using Real = std::remove_const_t<T>;
  Form form;
  T* re;
  T* im;

  constexpr bool IsPairs() const { return form == Form::kPairs || form == Form::kExchanged || form == Form::kHalf; }
  View From(size_t first) const {
    return {form, re + first * (IsPairs() ? 2 : 1), form == Form::kSplit ? im + first : im};
  }
  Number<Real> Get(size_t k) const {
    switch (form) {
      case Form::kPairs: return {LoadElement(re + 2 * k), LoadElement(re + 2 * k + 1)};
      case Form::kExchanged: return {LoadElement(re + 2 * k + 1), LoadElement(re + 2 * k)};
      case Form::kSplit: return {LoadElement(re + k), LoadElement(im + k)};
      default: return {LoadElement(re + k), 0};
    }
  }
  void Put(size_t k, Number<Real> x) const {
    if (form == Form::kHalf && re + 2 * k >= im) return;
    if (form == Form::kSplit) {
      StoreElement(x.re, re + k);
      StoreElement(x.im, im + k);
    } else {
      StoreElement(form == Form::kExchanged ? x.im : x.re, re + 2 * k);
      StoreElement(form == Form::kExchanged ? x.re : x.im, re + 2 * k + 1);
    }
  }
};

// LoadParts leaves elements in the order of the machine: lane `lane` has element InOrder(lane) of the V in memory, and
// StoreParts takes them so. On machines with wide registers these are made of 128-bit ones.
template <class D>
constexpr size_t InOrder(size_t lane) {
  constexpr size_t kBlockLanes = 16 / sizeof(hn::TFromD<D>), kHalf = kBlockLanes / 2;
  if (kLanes<D> <= kBlockLanes) return lane;
  const size_t block = lane / kBlockLanes, rest = lane % kBlockLanes;
  return kHalf * block + rest % kHalf + (rest / kHalf) * kLanes<D> / 2;
}
#if HWY_ARCH_X86
static_assert(InOrder<hn::CappedTag<float, 8>>(2) == 4 && InOrder<hn::CappedTag<double, 4>>(1) == 2);
#endif

// Elements as they are in memory into that order, and back.
template <class D>
TZM_INLINE Vec<D> FromMemory(D d, Vec<D> v) {
  (void)d;
#if HWY_ARCH_X86
  if constexpr (kLanes<D> * sizeof(hn::TFromD<D>) > 16) {
    const hn::Repartition<uint64_t, D> d64;
#if HWY_TARGET <= HWY_AVX3
    if constexpr (kLanes<D> * sizeof(hn::TFromD<D>) == 64) {
      const __m512i order = _mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7);
      return hn::BitCast(d, Vec<decltype(d64)>{_mm512_permutexvar_epi64(order, hn::BitCast(d64, v).raw)});
    }
#endif
    if constexpr (kLanes<D> * sizeof(hn::TFromD<D>) == 32)
      return hn::BitCast(d, Vec<decltype(d64)>{_mm256_permute4x64_epi64(hn::BitCast(d64, v).raw, 0xd8)});
  }
#endif
  return v;
}
template <class D>
TZM_INLINE Vec<D> ToMemory(D d, Vec<D> v) {
  if constexpr (kLanes<D> == kLanes<Full<hn::TFromD<D>>>) return PartsInOrder(v);
  else return FromMemory(d, v);  // its own inverse in 256 bits
}

// Two numbers of binary32 are half a register, whose instructions x86 has to make up from those for a whole one.
template <class D>
constexpr bool kHalfRegister = HWY_ARCH_X86 && sizeof(hn::TFromD<D>) == 4 && kLanes<D> == 2;
#if HWY_ARCH_X86
// The two upper lanes, as two lanes.
template <class D>
TZM_INLINE Vec<D> Upper(D, __m128 v) {
  return Vec<D>{_mm_movehl_ps(v, v)};
}
#endif
template <class D>
TZM_INLINE Vec<D> UpperInterleaved(D d, Vec<D> a, Vec<D> b) {
#if HWY_ARCH_X86
  if constexpr (kHalfRegister<D>) return Upper(d, _mm_unpacklo_ps(a.raw, b.raw));
#endif
  return hn::InterleaveUpper(d, a, b);
}

// Pairs in memory to and from registers. (A capped register of binary32 has no LoadParts in the machine's order.)
template <class D, class T = hn::TFromD<D>>
TZM_INLINE Cx<D> LoadPairs(D d, const T* from) {
  Cx<D> x;
#if HWY_ARCH_X86
  if constexpr (kHalfRegister<D>) {
    const __m128 pairs = _mm_loadu_ps(from), parts = _mm_shuffle_ps(pairs, pairs, 0xd8);
    x.re.raw = parts;
    x.im = Upper(d, parts);
    return x;
  }
#endif
#if HWY_TARGET <= HWY_AVX3
  if constexpr (sizeof(T) == 4 && kLanes<D> == 8) {
    const __m256 first = _mm256_loadu_ps(from), second = _mm256_loadu_ps(from + 8);
    x.re.raw = _mm256_shuffle_ps(first, second, 0x88);
    x.im.raw = _mm256_shuffle_ps(first, second, 0xdd);
    return x;
  }
#endif
  LoadParts(d, from, x.re, x.im);
  return x;
}
template <class D, class T = hn::TFromD<D>>
TZM_INLINE void StorePairs(D d, Vec<D> re, Vec<D> im, T* to) {
#if HWY_ARCH_X86
  if constexpr (kHalfRegister<D>) return _mm_storeu_ps(to, _mm_unpacklo_ps(re.raw, im.raw));
#endif
  StoreParts(re, im, d, to);
}

// The same of the pairs in reverse order, the last one first; `from` or `to` moves back to those before.
#if HWY_ARCH_ARM_A64  // two registers in exchanged order, which costs nothing
template <class D>
TZM_INLINE Vec<D> ReverseHalves(D d, Vec<D> x) {
  if constexpr (sizeof(hn::TFromD<D>) == 4) return hn::Reverse2(d, x);
  else return x;
}
template <class D, class T = hn::TFromD<D>>
TZM_INLINE Cx<D> LoadMirrored(D d, const T*& from) {
  const Cx<D> pairs = LoadMoving<-1>(d, from);
  const auto re = hn::ConcatEven(d, pairs.re, pairs.im), im = hn::ConcatOdd(d, pairs.re, pairs.im);
  return {ReverseHalves(d, re), ReverseHalves(d, im)};
}
template <class D, class T = hn::TFromD<D>>
TZM_INLINE void StoreMirrored(D d, const Cx<D>& x, T*& to) {
  const auto re = ReverseHalves(d, x.re), im = ReverseHalves(d, x.im);
  StoreMoving<-1>(d, {hn::InterleaveUpper(d, re, im), hn::InterleaveLower(d, re, im)}, to);
}
#else
template <class D, class T = hn::TFromD<D>>
TZM_INLINE Cx<D> LoadMirrored(D d, const T*& from) {
  const Cx<D> x = LoadPairs(d, from);
  from -= kBlock<D>;
  return {hn::Reverse(d, x.re), hn::Reverse(d, x.im)};
}
template <class D, class T = hn::TFromD<D>>
TZM_INLINE void StoreMirrored(D d, const Cx<D>& x, T*& to) {
  StorePairs(d, hn::Reverse(d, x.re), hn::Reverse(d, x.im), to);
  to -= kBlock<D>;
}
#endif

// A View whose form the compiler knows.
template <Form kForm, class T>
struct Array {
  T *re, *im;

  static constexpr bool kIsPairs = View<T>{kForm, nullptr, nullptr}.IsPairs();
  TZM_INLINE Array From(size_t first) const {
    return {re + first * (kIsPairs ? 2 : 1), kForm == Form::kSplit ? im + first : im};
  }
};
// f(array) for a view, f(pointer) for the blocks of scratch memory. kReal: the view may be of real parts alone, or of
// their results.
template <bool kReal = true, class T, class F>
TZM_INLINE void Open(const View<T>& view, F&& f) {
  switch (view.form) {
    case Form::kPairs: return f(Array<Form::kPairs, T>{view.re, view.im});
    case Form::kExchanged: return f(Array<Form::kExchanged, T>{view.re, view.im});
    case Form::kSplit: return f(Array<Form::kSplit, T>{view.re, view.im});
    case Form::kReal:
      if constexpr (kReal && std::is_const_v<T>) return f(Array<Form::kReal, T>{view.re, view.im});
      break;
    case Form::kHalf:
      if constexpr (kReal && !std::is_const_v<T>) return f(Array<Form::kHalf, T>{view.re, view.im});
  }
  __builtin_unreachable();
}
template <bool kReal = true, class T, class F>
TZM_INLINE void Open(T* blocks, F&& f) {
  f(blocks);
}

// f(in, out) for the views of one transform, which have the same form.
template <bool kReal = true, class T, class F>
TZM_INLINE void OpenBoth(const View<const T>& in, const View<T>& out, F&& f) {
  Open<kReal>(in, [&]<Form kForm>(const Array<kForm, const T>& from) {
    f(from, Array<kForm, T>{out.re, out.im});
  });
}

// V numbers from number `at` on of the caller's, or from element `at` on of the scratch memory.
template <Form kForm, class D, class T = hn::TFromD<D>>
TZM_INLINE Cx<D> Load(D d, const Array<kForm, const T>& from, size_t at) {
  if constexpr (kForm == Form::kPairs) return LoadPairs(d, from.re + 2 * at);
  const auto part = [&](const T* array) TZM_LAMBDA { return FromMemory(d, hn::LoadU(d, array + at)); };
  if constexpr (kForm == Form::kSplit) return {part(from.re), part(from.im)};
  if constexpr (kForm == Form::kReal) return {part(from.re), hn::Zero(d)};
  const Cx<D> pair = LoadPairs(d, from.re + 2 * at);
  return {pair.im, pair.re};
}
template <class D, class T = hn::TFromD<D>>
TZM_INLINE Cx<D> Load(D d, const T* from, size_t at) {
  return LoadOnce(d, from + at);
}
// The first of them only, where the pairs that are wanted end: seldom, and then out of the way.
template <class D, class T = hn::TFromD<D>>
HWY_NOINLINE void StoreSome(D d, Vec<D> re, Vec<D> im, T* to, size_t count) {
  HWY_ALIGN T pairs[kBlock<D>];
  StorePairs(d, re, im, pairs);
  std::memcpy(static_cast<void*>(to), pairs, count * sizeof(T));
}
template <Form kForm, class D, class T = hn::TFromD<D>>
TZM_INLINE void Store(D d, const Cx<D>& x, const Array<kForm, T>& to, size_t at) {
  if constexpr (kForm == Form::kPairs) {
    StorePairs(d, x.re, x.im, to.re + 2 * at);
  } else if constexpr (kForm == Form::kHalf) {
    T* const pairs = to.re + 2 * at;
    if (pairs + kBlock<D> <= to.im) StorePairs(d, x.re, x.im, pairs);
    else if (pairs < to.im) StoreSome(d, x.re, x.im, pairs, static_cast<size_t>(to.im - pairs));
  } else if constexpr (kForm == Form::kExchanged) {
    StorePairs(d, x.im, x.re, to.re + 2 * at);
  } else {
    hn::StoreU(ToMemory(d, x.re), d, to.re + at);
    hn::StoreU(ToMemory(d, x.im), d, to.im + at);
  }
}
template <class D, class T = hn::TFromD<D>>
TZM_INLINE void Store(D d, const Cx<D>& x, T* to, size_t at) {
  StoreBlock(d, x, to + at);
}

// The same of a View: each number asks for the form.
template <class D, class T = hn::TFromD<D>>
TZM_INLINE Cx<D> Load(D d, const View<const T>& from, size_t at) {
  Cx<D> x;
  Open(from, [&](const auto& array) TZM_LAMBDA { x = Load(d, array, at); });
  return x;
}
template <class D, class T = hn::TFromD<D>>
TZM_INLINE void Store(D d, const Cx<D>& x, const View<T>& to, size_t at) {
  Open(to, [&](const auto& array) TZM_LAMBDA { Store(d, x, array, at); });
}

// Rows of a caller's array that are `apart` from each other, taken or stored from their beginnings, V numbers at once.
// On AArch64, whose instructions for pairs move their address but take no offset, each row has an address of its own.
template <size_t kRows, class D, class A>
class Rows {
  static constexpr bool kMoves = HWY_ARCH_ARM_A64 && A::kIsPairs;

 public:
  TZM_INLINE Rows(D, const A& array, size_t apart) : array_(array), apart_(apart) {
    if constexpr (kMoves) Unrolled<kRows>([&](auto i) TZM_LAMBDA { rows_[i] = array.From(i * apart).re; });
  }
  // From number `at` on, which comes after those of the call before.
  TZM_INLINE A Next(size_t row, size_t at) {
    if constexpr (!kMoves) return array_.From(row * apart_ + at);
    const auto next = Opaque(rows_[row]);
    rows_[row] = next + kBlock<D>;
    return {next, array_.im};
  }

 private:
  A array_;
  size_t apart_;
  decltype(A::re) rows_[kRows];
};

// By registers: an array of both is moved by smaller pieces, for which the next read of a register would wait.
template <class D>
TZM_INLINE void Copy(const Cx<D>& from, Cx<D>& to) {
  to.re = from.re;
  to.im = from.im;
}
template <class D>
TZM_INLINE Cx<D> Same(const Cx<D>& x) {
  return {x.re, x.im};
}

// Rows become columns in each 128-bit part of V registers, which brings the right parts together where there is one.
template <class D>
TZM_INLINE void TransposeParts(D d, Vec<D>* x) {
  constexpr size_t kPart = 16 / sizeof(hn::TFromD<D>);
  if constexpr (kPart == 2 || kLanes<D> == 2) {
    Unrolled<kLanes<D> / 2>([&](auto g) TZM_LAMBDA {
      const auto low = hn::InterleaveLower(d, x[2 * g], x[2 * g + 1]);
      x[2 * g + 1] = UpperInterleaved(d, x[2 * g], x[2 * g + 1]);
      x[2 * g] = low;
    });
  } else {
    const hn::Repartition<double, D> pairs;
    Unrolled<kLanes<D> / 4>([&](auto g) TZM_LAMBDA {
      auto* const y = x + 4 * g;
      const auto a = hn::BitCast(pairs, hn::InterleaveLower(d, y[0], y[1]));
      const auto b = hn::BitCast(pairs, hn::InterleaveUpper(d, y[0], y[1]));
      const auto c = hn::BitCast(pairs, hn::InterleaveLower(d, y[2], y[3]));
      const auto e = hn::BitCast(pairs, hn::InterleaveUpper(d, y[2], y[3]));
      y[0] = hn::BitCast(d, hn::InterleaveLower(pairs, a, c));
      y[1] = hn::BitCast(d, hn::InterleaveUpper(pairs, a, c));
      y[2] = hn::BitCast(d, hn::InterleaveLower(pairs, b, e));
      y[3] = hn::BitCast(d, hn::InterleaveUpper(pairs, b, e));
    });
  }
}

#if HWY_TARGET <= HWY_AVX3
// The even and the odd 128-bit parts of two registers.
template <class V>
TZM_INLINE V EvenParts(V a, V b) {
  if constexpr (sizeof(hn::TFromV<V>) == 4) return V{_mm512_shuffle_f32x4(a.raw, b.raw, 0x88)};
  else return V{_mm512_shuffle_f64x2(a.raw, b.raw, 0x88)};
}
template <class V>
TZM_INLINE V OddParts(V a, V b) {
  if constexpr (sizeof(hn::TFromV<V>) == 4) return V{_mm512_shuffle_f32x4(a.raw, b.raw, 0xdd)};
  else return V{_mm512_shuffle_f64x2(a.raw, b.raw, 0xdd)};
}
#endif

// Rows become columns in V registers.
template <class D>
TZM_INLINE void Transpose(D d, Vec<D>* x) {
  constexpr size_t kLane = kLanes<D>, kPart = 16 / sizeof(hn::TFromD<D>);
  TransposeParts(d, x);
  if constexpr (kLane == 2 * kPart) Unrolled<kPart>([&](auto i) TZM_LAMBDA {
    const auto low = hn::ConcatLowerLower(d, x[i + kPart], x[i]);
    x[i + kPart] = hn::ConcatUpperUpper(d, x[i + kPart], x[i]);
    x[i] = low;
  });
#if HWY_TARGET <= HWY_AVX3
  if constexpr (kLane == 4 * kPart) Unrolled<kPart>([&](auto i) TZM_LAMBDA {
    const auto a = EvenParts(x[i], x[i + kPart]), c = EvenParts(x[i + 2 * kPart], x[i + 3 * kPart]);
    const auto b = OddParts(x[i], x[i + kPart]), e = OddParts(x[i + 2 * kPart], x[i + 3 * kPart]);
    x[i] = EvenParts(a, c);
    x[i + kPart] = EvenParts(b, e);
    x[i + 2 * kPart] = OddParts(a, c);
    x[i + 3 * kPart] = OddParts(b, e);
  });
#endif
}

// Stores V numbers, whose parts are given, as columns: lane t of number k goes to lane k of block InOrder(t) at `to`.
// By halves where that costs no shuffle, unless what soon loads whole registers would wait for them.
template <bool kWhole = false, class D, class T = hn::TFromD<D>>
TZM_INLINE void StoreTransposed(D d, Vec<D>* re, Vec<D>* im, T* to) {
  constexpr size_t kLane = kLanes<D>, kPart = 16 / sizeof(T);
  const auto place = [=](size_t t) TZM_LAMBDA { return to + InOrder<D>(t) * kBlock<D>; };
  if constexpr (kLane == 2 * kPart && !kWhole) {
    const auto store = [&](Vec<D>* x, size_t at) TZM_LAMBDA {
      TransposeParts(d, x);
      const hn::Half<D> half;
      Unrolled<kLane>([&](auto t) TZM_LAMBDA {
        constexpr size_t kRow = t % kPart, kHalf = t / kPart * kPart;
        hn::StoreU(hn::LowerHalf(half, x[t]), half, place(kRow) + at + kHalf);
        hn::StoreU(hn::UpperHalf(half, x[t]), half, place(kRow + kPart) + at + kHalf);
      });
    };
    store(re, 0);
    store(im, kLane);
  } else {
    Transpose(d, re);
    Transpose(d, im);
    Unrolled<kLane>([&](auto t) TZM_LAMBDA { StoreBlock(d, {re[t], im[t]}, place(t)); });
  }
}

}  // namespace tzm::fft
