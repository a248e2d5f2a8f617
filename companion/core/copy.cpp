// Copies and fills: moves by bytes are the C library's, the rest changes order, sign or value on the way.
#include <signal_tzm/companion.h>

#include "frame/call.h"
#include "frame/drive.h"

#include <cstring>

namespace {

using namespace tzm;

template <class T>
OrvaStatus Copy(const T* src, T* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  std::memcpy(dst, src, len * sizeof(T));
  return ORVA_STS_NO_ERR;
}

template <class T>
OrvaStatus Move(const T* src, T* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  std::memmove(dst, src, len * sizeof(T));
  return ORVA_STS_NO_ERR;
}

template <class T>
OrvaStatus Zero(T* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, dst)) return status;
  std::memset(dst, 0, len * sizeof(T));
  return ORVA_STS_NO_ERR;
}

// Fills `len` reals with `even` and `odd` in turn.
template <class T>
TZM_INLINE void Fill(T even, T odd, T* dst, size_t len) {
  const Full<T> d;
  const auto pattern = hn::OddEven(hn::Set(d, odd), hn::Set(d, even));
  ForEach<hn::MaxLanes(d)>(len, [=](T* to) TZM_LAMBDA { hn::StoreU(pattern, d, to); }, dst);
}

template <class T>
OrvaStatus SetReal(T value, T* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, dst)) return status;
  Fill(value, value, dst, len);
  return ORVA_STS_NO_ERR;
}

template <class C>
OrvaStatus SetComplex(C value, C* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, dst)) return status;
  Fill(value.re, value.im, Parts(dst), 2 * size_t(len));
  return ORVA_STS_NO_ERR;
}

template <class T>
OrvaStatus Add(const T* src, T* srcDst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, srcDst)) return status;
  const Full<T> d;
  ForEach<hn::MaxLanes(d)>(len, [=](const T* a, const T* b, T* to) TZM_LAMBDA {
    hn::StoreU(hn::Add(hn::LoadU(d, b), hn::LoadU(d, a)), d, to);
  }, src, static_cast<const T*>(srcDst), srcDst);
  return ORVA_STS_NO_ERR;
}

// Inverts the sign bit of every imaginary part, of a NaN too.
template <class C>
OrvaStatus Conj(const C* src, C* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  using T = decltype(C::re);
  const Full<T> d;
  const auto signs = hn::OddEven(hn::SignBit(d), hn::Zero(d));
  ForEach<hn::MaxLanes(d)>(2 * size_t(len), [=](const T* from, T* to) TZM_LAMBDA {
    hn::StoreU(hn::Xor(hn::LoadU(d, from), signs), d, to);
  }, Parts(src), Parts(dst));
  return ORVA_STS_NO_ERR;
}

// Works from both ends to the middle, so that the source may be the destination.
template <class T>
OrvaStatus Flip(const T* src, T* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const Full<uint8_t> bytes;
  constexpr size_t kStep = hn::MaxLanes(bytes) / sizeof(T);
  const auto reversed = [=](const T* from) TZM_LAMBDA {
    const auto v = hn::LoadU(bytes, reinterpret_cast<const uint8_t*>(from));
    if constexpr (sizeof(T) == 16) {
      return hn::ReverseBlocks(bytes, v);
    } else {
      const Full<std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>> d;
      return hn::BitCast(bytes, hn::Reverse(d, hn::BitCast(d, v)));
    }
  };
  size_t begin = 0, end = len;
  for (; end - begin >= kStep; begin += kStep, end -= kStep) {
    // The last two may overlap: both are read before one is written.
    const auto first = reversed(src + begin), last = reversed(src + (end - kStep));
    hn::StoreU(last, bytes, reinterpret_cast<uint8_t*>(dst + begin));
    hn::StoreU(first, bytes, reinterpret_cast<uint8_t*>(dst + (end - kStep)));
    if (end - begin < 2 * kStep) return ORVA_STS_NO_ERR;
  }
  for (; begin < end; ++begin, --end) {
    const T first = LoadElement(src + begin), last = LoadElement(src + (end - 1));
    StoreElement(last, dst + begin);
    StoreElement(first, dst + (end - 1));
  }
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_Copy_16s(const Orva16s* src, Orva16s* dst, int32_t len) { return Copy(src, dst, len); }
OrvaStatus ORVAS_Copy_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len) { return Copy(src, dst, len); }
OrvaStatus ORVAS_Copy_32f(const Orva32f* src, Orva32f* dst, int32_t len) { return Copy(src, dst, len); }
OrvaStatus ORVAS_Copy_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len) { return Copy(src, dst, len); }
OrvaStatus ORVAS_Copy_64f(const Orva64f* src, Orva64f* dst, int32_t len) { return Copy(src, dst, len); }
OrvaStatus ORVAS_Copy_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len) { return Copy(src, dst, len); }

OrvaStatus ORVAS_Move_16s(const Orva16s* src, Orva16s* dst, int32_t len) { return Move(src, dst, len); }
OrvaStatus ORVAS_Move_32f(const Orva32f* src, Orva32f* dst, int32_t len) { return Move(src, dst, len); }

OrvaStatus ORVAS_Zero_8u(Orva8u* dst, int32_t len) { return Zero(dst, len); }
OrvaStatus ORVAS_Zero_16s(Orva16s* dst, int32_t len) { return Zero(dst, len); }
OrvaStatus ORVAS_Zero_16sc(Orva16sc* dst, int32_t len) { return Zero(dst, len); }
OrvaStatus ORVAS_Zero_32f(Orva32f* dst, int32_t len) { return Zero(dst, len); }
OrvaStatus ORVAS_Zero_32fc(Orva32fc* dst, int32_t len) { return Zero(dst, len); }
OrvaStatus ORVAS_Zero_64f(Orva64f* dst, int32_t len) { return Zero(dst, len); }
OrvaStatus ORVAS_Zero_64fc(Orva64fc* dst, int32_t len) { return Zero(dst, len); }

OrvaStatus ORVAS_Set_32f(Orva32f value, Orva32f* dst, int32_t len) { return SetReal(value, dst, len); }
OrvaStatus ORVAS_Set_32fc(Orva32fc value, Orva32fc* dst, int32_t len) { return SetComplex(value, dst, len); }
OrvaStatus ORVAS_Set_64f(Orva64f value, Orva64f* dst, int32_t len) { return SetReal(value, dst, len); }
OrvaStatus ORVAS_Set_64fc(Orva64fc value, Orva64fc* dst, int32_t len) { return SetComplex(value, dst, len); }

OrvaStatus ORVAS_Add_32f_I(const Orva32f* src, Orva32f* srcDst, int32_t len) { return Add(src, srcDst, len); }
OrvaStatus ORVAS_Add_64f_I(const Orva64f* src, Orva64f* srcDst, int32_t len) { return Add(src, srcDst, len); }

OrvaStatus ORVAS_Conj_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len) { return Conj(src, dst, len); }
OrvaStatus ORVAS_Conj_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len) { return Conj(src, dst, len); }
OrvaStatus ORVAS_Conj_32fc_I(Orva32fc* srcDst, int32_t len) { return Conj(srcDst, srcDst, len); }
OrvaStatus ORVAS_Conj_64fc_I(Orva64fc* srcDst, int32_t len) { return Conj(srcDst, srcDst, len); }

OrvaStatus ORVAS_Flip_32f(const Orva32f* src, Orva32f* dst, int32_t len) { return Flip(src, dst, len); }
OrvaStatus ORVAS_Flip_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len) { return Flip(src, dst, len); }
OrvaStatus ORVAS_Flip_64f(const Orva64f* src, Orva64f* dst, int32_t len) { return Flip(src, dst, len); }
OrvaStatus ORVAS_Flip_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len) { return Flip(src, dst, len); }
