// Real elementary functions: the vector math companion over the whole array, and a scan of the input that decides
// the status. The scans are contract, not a full check: callers see the statuses that they give and no others, and
// the companion always runs over every element.
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/vector.h"

using namespace tzm;

namespace {

// Elements of one 128-bit block, the unit of the scans.
template <class T>
constexpr size_t kBlock = 16 / sizeof(T);

template <class T, class Test>
bool Any(const T* values, size_t count, Test test) {
  bool any = false;
  for (size_t i = 0; i < count; ++i) any |= test(LoadElement(values + i));
  return any;
}

// ---- Exponentials and logarithms ----

// The first block is tested for the first condition in any lane, then for the second; then the elements
// past the last whole block, of which the last offender decides, the second condition winning within
// one element. What lies between is deliberately never looked at. `First` and `Second` tell the place
// by a flag, true in the tail.
template <class T, class First, class Second>
OrvaStatus ScanEnds(const T* src, int32_t len, First first, OrvaStatus firstStatus, Second second,
                    OrvaStatus secondStatus) {
  OrvaStatus inBody = ORVA_STS_NO_ERR, inTail = ORVA_STS_NO_ERR;
  BodyAndTail<kBlock<T>>(
      len,
      [&](size_t, const T* body) {
        if (Any(body, kBlock<T>, [&](T x) { return first(x, false); })) inBody = firstStatus;
        else if (Any(body, kBlock<T>, [&](T x) { return second(x, false); })) inBody = secondStatus;
      },
      [&](size_t count, const T* tail) {
        for (size_t i = 0; i < count; ++i) {
          const T x = LoadElement(tail + i);
          if (first(x, true)) inTail = firstStatus;
          if (second(x, true)) inTail = secondStatus;
        }
      },
      src);
  return inBody != ORVA_STS_NO_ERR ? inBody : inTail;
}

// Largest and smallest arguments of a finite, normal result. The binary32 pair of the first block and the
// binary64 pair of the tail are deliberately not the same numbers.
constexpr float kExpHigh32 = 0x1.62e42ep+6f, kExpLow32 = -0x1.5d589ep+6f;
constexpr double kExpHigh32Tail = 88.72283, kExpLow32Tail = -87.33654;
constexpr double kExpHigh64 = 709.78271, kExpLow64 = -708.39641;

OrvaStatus ScanExp(const Orva32f* src, int32_t len) {
  return ScanEnds(
      src, len, [](float x, bool tail) { return tail ? x > kExpHigh32Tail : x > kExpHigh32; }, ORVA_STS_OVERFLOW_ERR,
      [](float x, bool tail) { return tail ? x < kExpLow32Tail : x < kExpLow32; }, ORVA_STS_UNDERFLOW_ERR);
}
OrvaStatus ScanExp(const Orva64f* src, int32_t len) {
  return ScanEnds(
      src, len, [](double x, bool) { return x > kExpHigh64; }, ORVA_STS_OVERFLOW_ERR,
      [](double x, bool) { return x < kExpLow64; }, ORVA_STS_UNDERFLOW_ERR);
}

template <class T>
OrvaStatus ScanLog(const T* src, int32_t len) {
  return ScanEnds(
      src, len, [](T x, bool) { return x == 0; }, ORVA_STS_SINGULARITY_ERR, [](T x, bool) { return x < 0; },
      ORVA_STS_DOMAIN_ERR);
}

// The scan comes first, since the call may overwrite what it looks at.
template <class T, class Scan, class Function>
OrvaStatus ScanAndCall(const T* src, T* dst, int32_t len, Scan scan, Function function) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const OrvaStatus status = scan(src, len);
  function(len, src, dst);
  return status;
}

template <class T>
OrvaStatus NoScan(const T*, int32_t) {
  return ORVA_STS_NO_ERR;
}

// By way of a copy. A failed allocation, like a null array, is found by the copy, whose status is the
// answer: the memory status is deliberately not used here.
template <class T, class Malloc, class Copy, class Function>
OrvaStatus CallOnCopy(T* srcDst, int32_t len, Malloc make, Copy copy, Function function) {
  if (len < 1) return ORVA_STS_SIZE_ERR;
  T* const scratch = make(len);
  OrvaStatus status = copy(srcDst, scratch, len);
  if (status == ORVA_STS_NO_ERR) status = function(scratch, srcDst, len);
  ORVAS_Free(scratch);
  return status;
}

// ---- Tangent ----

// Whether any element reaches a limit above 0.
template <class T>
bool Reaches(const T* src, size_t len, T limit) {
  const Full<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  auto most0 = hn::Zero(d), most1 = most0, most2 = most0, most3 = most0;  // one alone would be a chain
  ForEach<4 * kLanes, 1>(len, [&](const T* from) TZM_LAMBDA {
    most0 = MaxOrSecond(hn::LoadU(d, from), most0);
    most1 = MaxOrSecond(hn::LoadU(d, from + kLanes), most1);
    most2 = MaxOrSecond(hn::LoadU(d, from + 2 * kLanes), most2);
    most3 = MaxOrSecond(hn::LoadU(d, from + 3 * kLanes), most3);
  }, src);
  const auto most = hn::Max(hn::Max(most0, most1), hn::Max(most2, most3));
  return !hn::AllFalse(d, hn::Ge(most, hn::Set(d, limit)));
}

// The body looks for the bit patterns of the infinities taken as integers and turned into floating values,
// two finite numbers, so a true infinity raises nothing there; the tail looks for true infinities. In
// binary32 the smaller of the two counts in the first half of each body step only. All deliberate. Few
// arrays reach even the smaller one, and whether they do is seen at little cost.
template <size_t kStep, size_t kFirstPart, class T>
bool ScanTan(const T* src, size_t len, T inFirstPart, T everywhere) {
  const hn::CappedTag<T, kFirstPart> d;
  AnyLane<decltype(d)> equal;
  bool infinite = false;
  BodyAndTail<kStep>(
      len,
      [&](size_t count, const T* body) {
        if (!Reaches(body, count, inFirstPart)) return;
        ForEach<kStep, 1>(count, [&](const T* from) TZM_LAMBDA {
          Unrolled<kStep / hn::MaxLanes(d)>([&](auto part) TZM_LAMBDA {
            const auto x = hn::LoadU(d, from + part * hn::MaxLanes(d));
            equal.See(hn::Eq(x, hn::Set(d, everywhere)));
            if constexpr (part * hn::MaxLanes(d) < kFirstPart) equal.See(hn::Eq(x, hn::Set(d, inFirstPart)));
          });
        }, body);
      },
      [&](size_t count, const T* tail) { infinite = Any(tail, count, [](T x) { return x - x != 0 && x == x; }); }, src);
  return infinite || equal.Seen();
}

// The scan of a block comes before the call, which may overwrite it.
template <size_t kStep, size_t kFirstPart, class T, class Function>
OrvaStatus Tan(const T* src, T* dst, int32_t len, T inFirstPart, T everywhere, Function function) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  bool found = false;
  ForBlocks<kInCache<T>>(len, [&](int32_t count, const T* from, T* to) {
    found |= ScanTan<kStep, kFirstPart>(from, count, inFirstPart, everywhere);
    function(count, from, to);
  }, src, dst);
  return found ? ORVA_STS_DOMAIN_ERR : ORVA_STS_NO_ERR;
}

// ---- Powers ----

// Every magnitude of 2^52 (2^23) and above is an integer, infinity too; a NaN is none.
template <class T>
bool IsInteger(T x) {
  const hn::CappedTag<T, 1> one;
  return hn::GetLane(hn::Trunc(hn::Set(one, x))) == x;
}

// The last whole block raises a negative base with an integer exponent, the harmless case; the tail
// raises one with an exponent that is not an integer. Both raise a zero base with a negative exponent.
// Earlier blocks are not looked at. The two senses are deliberate. An infinite exponent is no integer.
template <class T>
OrvaStatus ScanPow(const T* src1, const T* src2, int32_t len) {
  bool found = false;
  const auto look = [&](const T* base, const T* exponent, size_t count, bool harmless) {
    for (size_t i = 0; i < count; ++i) {
      const T x = LoadElement(base + i), y = LoadElement(exponent + i);
      const bool integer = IsInteger(y) && y - y == 0;
      found |= (x < 0 && integer == harmless) || (x == 0 && y < 0);
    }
  };
  BodyAndTail<kBlock<T>>(
      len,
      [&](size_t count, const T* base, const T* exponent) {
        const size_t last = count - kBlock<T>;
        look(base + last, exponent + last, kBlock<T>, true);
      },
      [&](size_t count, const T* base, const T* exponent) { look(base, exponent, count, false); }, src1, src2);
  return found ? ORVA_STS_DOMAIN_ERR : ORVA_STS_NO_ERR;
}

template <class T, class Function>
OrvaStatus Pow(const T* src1, const T* src2, T* dst, int32_t len, Function function) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  const OrvaStatus status = ScanPow(src1, src2, len);
  function(len, src1, src2, dst);
  return status;
}

}  // namespace

OrvaStatus ORVAS_Exp_32f(const Orva32f* src, Orva32f* dst, int32_t len) {
  return ScanAndCall(src, dst, len, [](auto* x, int32_t n) { return ScanExp(x, n); }, vsexp);
}

OrvaStatus ORVAS_Exp_64f(const Orva64f* src, Orva64f* dst, int32_t len) {
  return ScanAndCall(src, dst, len, [](auto* x, int32_t n) { return ScanExp(x, n); }, vdexp);
}

OrvaStatus ORVAS_Exp_32f_I(Orva32f* srcDst, int32_t len) {
  return CallOnCopy(srcDst, len, ORVAS_Malloc_32f, ORVAS_Copy_32f, ORVAS_Exp_32f);
}

OrvaStatus ORVAS_Exp_64f_I(Orva64f* srcDst, int32_t len) {
  return CallOnCopy(srcDst, len, ORVAS_Malloc_64f, ORVAS_Copy_64f, ORVAS_Exp_64f);
}

OrvaStatus ORVAS_Ln_32f(const Orva32f* src, Orva32f* dst, int32_t len) {
  return ScanAndCall(src, dst, len, ScanLog<Orva32f>, vsln);
}

OrvaStatus ORVAS_Ln_64f(const Orva64f* src, Orva64f* dst, int32_t len) {
  return ScanAndCall(src, dst, len, ScanLog<Orva64f>, vdln);
}

OrvaStatus ORVAS_Ln_32f_I(Orva32f* srcDst, int32_t len) { return ORVAS_Ln_32f(srcDst, srcDst, len); }

OrvaStatus ORVAS_Ln_64f_I(Orva64f* srcDst, int32_t len) { return ORVAS_Ln_64f(srcDst, srcDst, len); }

OrvaStatus ORVAS_Log10_32f(const Orva32f* src, Orva32f* dst, int32_t len) {
  return ScanAndCall(src, dst, len, ScanLog<Orva32f>, vslog10);
}

OrvaStatus ORVAS_Log10_64f(const Orva64f* src, Orva64f* dst, int32_t len) {
  return ScanAndCall(src, dst, len, ScanLog<Orva64f>, vdlog10);
}

OrvaStatus ORVAS_Sin_32f(const Orva32f* src, Orva32f* dst, int32_t len) {
  return ScanAndCall(src, dst, len, NoScan<Orva32f>, vssin);
}

OrvaStatus ORVAS_Sin_64f(const Orva64f* src, Orva64f* dst, int32_t len) {
  return ScanAndCall(src, dst, len, NoScan<Orva64f>, vdsin);
}

OrvaStatus ORVAS_Cos_32f(const Orva32f* src, Orva32f* dst, int32_t len) {
  return ScanAndCall(src, dst, len, NoScan<Orva32f>, vscos);
}

OrvaStatus ORVAS_Cos_64f(const Orva64f* src, Orva64f* dst, int32_t len) {
  return ScanAndCall(src, dst, len, NoScan<Orva64f>, vdcos);
}

OrvaStatus ORVAS_Tan_32f(const Orva32f* src, Orva32f* dst, int32_t len) {
  // 0x7f800000 in the first 8 of 16, 0xff800000 everywhere.
  return Tan<16, 8>(src, dst, len, 2139095040.0f, 4286578688.0f, vstan);
}

OrvaStatus ORVAS_Tan_64f(const Orva64f* src, Orva64f* dst, int32_t len) {
  // 0x7ff0000000000000 and 0xfff0000000000000.
  return Tan<4, 4>(src, dst, len, 9218868437227405312.0, 18442240474082181120.0, vdtan);
}

OrvaStatus ORVAS_Arctan_32f(const Orva32f* src, Orva32f* dst, int32_t len) {
  return ScanAndCall(src, dst, len, NoScan<Orva32f>, vsatan);
}

OrvaStatus ORVAS_Arctan_64f(const Orva64f* src, Orva64f* dst, int32_t len) {
  return ScanAndCall(src, dst, len, NoScan<Orva64f>, vdatan);
}

OrvaStatus ORVAS_Arctan_32f_I(Orva32f* srcDst, int32_t len) { return ORVAS_Arctan_32f(srcDst, srcDst, len); }

OrvaStatus ORVAS_Arctan_64f_I(Orva64f* srcDst, int32_t len) { return ORVAS_Arctan_64f(srcDst, srcDst, len); }

OrvaStatus ORVAS_Arctan2_32f(const Orva32f* src1, const Orva32f* src2, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  vsatan2(len, src1, src2, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Arctan2_64f(const Orva64f* src1, const Orva64f* src2, Orva64f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  vdatan2(len, src1, src2, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Pow_32f(const Orva32f* src1, const Orva32f* src2, Orva32f* dst, int32_t len) {
  return Pow(src1, src2, dst, len, vspow);
}

OrvaStatus ORVAS_Pow_64f(const Orva64f* src1, const Orva64f* src2, Orva64f* dst, int32_t len) {
  return Pow(src1, src2, dst, len, vdpow);
}
