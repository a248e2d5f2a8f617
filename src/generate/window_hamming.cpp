// Hamming window: from a table of a turn in 64 parts with a short polynomial between them, so that no
// trigonometric function runs; in binary64 from one cosine for each pair of samples.
#include <signal_tzm/generate.h>

#include "frame/call.h"
#include "generate/window.h"

#include <array>
#include <bit>
#include <cmath>

using namespace tzm;

namespace {

constexpr double kEnd = 0.08000000000000002;

// sin(2 pi k / 64), rounded; entry 32 is deliberately the short value 1.2246e-16 of sin(pi) as computed.
template <class T>
constexpr std::array<T, 64> MakeSineTable() {
  constexpr double kQuarter[] = {
      0.0, 0.0980171403295606, 0.19509032201612828, 0.2902846772544624, 0.3826834323650898, 0.47139673682599764,
      0.5555702330196022, 0.6343932841636455, 0.7071067811865476, 0.773010453362737, 0.8314696123025452,
      0.881921264348355, 0.9238795325112867, 0.9569403357322088, 0.9807852804032304, 0.9951847266721969, 1.0};
  std::array<T, 64> table{};
  for (size_t k = 0; k < 32; ++k) table[k] = static_cast<T>(kQuarter[k <= 16 ? k : 32 - k]);
  table[32] = static_cast<T>(1.2246e-16);
  for (size_t k = 33; k < 64; ++k) table[k] = -table[k - 32];
  return table;
}
template <class T>
constexpr std::array<T, 64> kSine = MakeSineTable<T>();

// The cosine of x 64ths of a turn is cs (1 + r^2 c2) - r (c1 + r^2 c3) sn with an integer n next to x,
// r = x - n, sn and cs the sine and cosine of n out of the table, c1 = 2 pi / 64. c2 and c3 lie beside the -c1^2/2 and
// -c1^3/6 of the power series, so that the errors up to |r| = 1 are half as large: 2.1e-6 and 4.2e-8. Of the two
// products the first is rounded, the second fused into the difference.
//
// The blocks are in binary32 with n to the nearest; the pairs past them in binary64 with n truncated: the
// two are deliberately not interchangeable.
struct TableHamming {
  using D = Full<float>;
  double s;  // 64ths of a turn from one index to the next

  template <class DB>
  TZM_INLINE Vec<DB> Block(DB d, size_t i) const {
    const auto set = [=](float x) TZM_LAMBDA { return hn::Set(d, x); };
    const hn::RebindToSigned<DB> di;
    const auto x = hn::Mul(Indices(d, i), set(static_cast<float>(s)));
    const auto n = hn::NearestInt(x);
    const auto r = hn::Sub(x, hn::ConvertTo(d, n));
    // The lanes of a long window mostly have one n.
    Vec<DB> sn, cs;
    const int32_t first = hn::GetLane(n);
    if (hn::AllTrue(di, hn::Eq(n, hn::Set(di, first)))) {
      sn = set(kSine<float>[first & 63]);
      cs = set(kSine<float>[(16 - first) & 63]);
    } else {
      const auto mask = hn::Set(di, 63);
      sn = hn::GatherIndex(d, kSine<float>.data(), hn::And(n, mask));
      cs = hn::GatherIndex(d, kSine<float>.data(), hn::And(hn::Sub(hn::Set(di, 16), n), mask));
    }
    const auto r2 = hn::Mul(r, r);
    const auto even = hn::MulAdd(r2, set(std::bit_cast<float>(0xBB9DDB32)), set(1.0f));
    const auto slope = hn::MulAdd(r2, set(std::bit_cast<float>(0xB92554AA)), set(std::bit_cast<float>(0x3DC90FDB)));
    const auto value = hn::NegMulAdd(hn::Mul(r, slope), sn, hn::Mul(cs, even));
    return hn::Sub(set(0.54f), hn::Mul(value, set(0.46f)));
  }
  float One(size_t i) const {
    constexpr double c1 = 0.09817477042468103, c2 = -0.004817389940423465, c3 = -0.00015767166072981726;
    const double x = (static_cast<double>(i) * (s * c1)) * 10.185916357881302;
    const int32_t n = static_cast<int32_t>(static_cast<float>(x));
    const double r = x - n, r2 = r * r;
    const double even = Fma(r2, c2, 1.0), slope = Fma(r2, c3, c1);
    const double value = Fma(-(r * slope), kSine<double>[n & 63], kSine<double>[(16 - n) & 63] * even);
    return static_cast<float>(Fma(-static_cast<double>(static_cast<float>(value)), 0.46, 0.54));
  }
};

// A cosine for each index, alike in blocks and past them.
struct CosineHamming {
  using D = WindowTypes<Orva64f>::Block;
  double w;

  double One(size_t i) const { return Fma(-cos(static_cast<double>(i) * w), 0.46, 0.54); }
  TZM_INLINE Vec<D> Block(D d, size_t i) const {
    const double values[] = {One(i), One(i + 1)};
    return hn::LoadU(d, values);
  }
};

// The ends of the signal, which take the exact end value. Integers deliberately truncate here and here alone.
template <class Sample>
void WeighEnd(const Sample* src, Sample* dst, size_t i) {
  using Part = typename WindowTypes<Sample>::Part;
  constexpr size_t kParts = WindowTypes<Sample>::kParts;
  for (size_t k = i * kParts; k < (i + 1) * kParts; ++k) {
    const Part x = LoadElement(reinterpret_cast<const Part*>(src) + k);
    Part* const to = reinterpret_cast<Part*>(dst) + k;
    if constexpr (std::is_same_v<Sample, Orva32fc>) StoreElement(x * 0.08f, to);
    else StoreElement(static_cast<Part>(x * kEnd), to);
  }
}

template <class Sample>
OrvaStatus ApplyHamming(const Sample* src, Sample* dst, int32_t len) {
  WeighEnd(src, dst, 0);
  WeighEnd(src, dst, static_cast<size_t>(len) - 1);
  if constexpr (std::is_same_v<typename WindowTypes<Sample>::Part, double>)
    ApplyWindow(src, dst, len, 1, CosineHamming{kTwoPi / (len - 1)});
  else
    ApplyWindow(src, dst, len, 1, TableHamming{64.0 / (len - 1)});
  return ORVA_STS_NO_ERR;
}

}  // namespace

// A member and its twin in place.
#define TZM_HAMMING(member, in_place, T)                             \
  OrvaStatus member(const T* src, T* dst, int32_t len) {             \
    if (OrvaStatus status = CheckPointers(src, dst)) return status;  \
    if (len < 3) return ORVA_STS_SIZE_ERR;                           \
    return ApplyHamming(src, dst, len);                              \
  }                                                                  \
  OrvaStatus in_place(T* srcDst, int32_t len) {                      \
    return member(srcDst, srcDst, len);                              \
  }

TZM_HAMMING(ORVAS_WinHamming_16s, ORVAS_WinHamming_16s_I, Orva16s)
TZM_HAMMING(ORVAS_WinHamming_16sc, ORVAS_WinHamming_16sc_I, Orva16sc)
TZM_HAMMING(ORVAS_WinHamming_32f, ORVAS_WinHamming_32f_I, Orva32f)
TZM_HAMMING(ORVAS_WinHamming_32fc, ORVAS_WinHamming_32fc_I, Orva32fc)
TZM_HAMMING(ORVAS_WinHamming_64f, ORVAS_WinHamming_64f_I, Orva64f)
TZM_HAMMING(ORVAS_WinHamming_64fc, ORVAS_WinHamming_64fc_I, Orva64fc)
#undef TZM_HAMMING
