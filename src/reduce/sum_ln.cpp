// Sums of natural logarithms: each from a table of 256 rows and a short series, added in order.
#include <signal_tzm/companion.h>
#include <signal_tzm/reduce.h>

#include "frame/call.h"
#include "frame/result.h"

#include <bit>

using namespace tzm;

namespace {

// ---- The table of logarithms ----

// ln(1 + i/256), i from 0 to 256, correctly rounded. It is 2 atanh(z), z = i/(512 + i) being at most a
// third: the sum of 2 z^k/k over odd k, in fixed point with 116 bits behind the point. Each term loses
// less than three units of the last bit, far below what could turn the rounding to 53 bits.
constexpr double TableLn(unsigned i) {
  constexpr int kPoint = 116;
  using Fixed = unsigned __int128;
  Fixed power = ((Fixed{2} << kPoint) * i) / (512 + i), sum = 0;
  for (unsigned k = 1; power != 0; k += 2) {
    sum += power / k;
    for (int factor = 0; factor < 2; ++factor) power = power * i / (512 + i);
  }
  return static_cast<double>(sum) / static_cast<double>(Fixed{1} << kPoint);
}
constexpr double kLn2 = TableLn(256);

// Row i holds the logarithm and the reciprocal of head = 1 + i/256. The last row stands for 2: a fraction
// just below 2 is reduced about 2, its remainder shifted by kOffset[1] to small values on both sides of 0.
struct Row {
  double lnHead, recipHead;
};
constexpr unsigned kRows = 256;
struct Table {
  Row row[kRows];
};
constexpr Table kTable = [] {
  Table table = {};
  for (unsigned i = 0; i < kRows - 1; ++i) table.row[i] = {TableLn(i), kRows / double(kRows + i)};
  table.row[kRows - 1] = {kLn2, 0.5};
  return table;
}();
constexpr float kOffset[2] = {0, -0x1p-9f};

// ---- One logarithm ----

struct Reduced {
  double recipHead;
  float offset;
  double head;  // exponent * ln 2 + lnHead
};
// What exponent and top 8 bits of the fraction say. The exponent deliberately counts as an unsigned number: for a
// sample below 1 it wraps to 2^32 less a little.
TZM_INLINE Reduced Reduce(uint32_t exponent, unsigned i) {
  const Row row = kTable.row[i];
  return {row.recipHead, kOffset[i == kRows - 1], Fma(double(exponent), kLn2, row.lnHead)};
}

// How the scaled remainder is rounded: after the product and after the offset, or once after both.
enum class Remainder { kTwice, kOnce };

template <Remainder kRemainder>
TZM_INLINE float Ln32(float x) {
  const uint32_t bits = std::bit_cast<uint32_t>(x);
  const Reduced reduced = Reduce((bits >> 23 & 0xff) - 127, bits >> 15 & 0xff);
  const double r = std::bit_cast<float>(0x3f800000 | (bits & 0x7fff)) - 1.0f;
  float t;
  if constexpr (kRemainder == Remainder::kTwice) t = static_cast<float>(r * reduced.recipHead) + reduced.offset;
  else t = static_cast<float>(Fma(r, reduced.recipHead, double(reduced.offset)));
  const float tail = t * Fma(t, Fma(t, 0.33333334f, -0.5f), 1.0f);
  return static_cast<float>(reduced.head + tail);
}

TZM_INLINE Reduced Reduce64(uint64_t bits) {
  return Reduce(static_cast<uint32_t>(bits >> 52 & 0x7ff) - 1023, bits >> 44 & 0xff);
}

// The remainder keeps only binary32 precision.
TZM_INLINE double Ln64(double x) {
  const uint64_t bits = std::bit_cast<uint64_t>(x);
  const Reduced reduced = Reduce64(bits);
  const double r = static_cast<float>(std::bit_cast<double>(0x3ff0000000000000 | (bits & 0xfffffffffff))) - 1.0f;
  const double t = Fma(r, reduced.recipHead, double(reduced.offset)), u = t * t;
  // The series of ln(1 + t); the first coefficient is deliberately one unit above the nearest to 1/7.
  const double p = Fma(u, Fma(u, Fma(u, 0.14285714285714288, 0.2), 0.3333333333333333), 1.0);
  const double q = Fma(u, Fma(u, Fma(u, -0.125, -0.16666666666666666), -0.25), -0.5);
  return reduced.head + Fma(t, p, u * q);
}

// Adds ln(i) for each i in order. Zero and negative samples give -infinity and NaN, and the last of
// them the status.
template <class Sum, class Src, class Ln>
OrvaStatus SumLn(const Src* src, int32_t len, Sum* result, Ln ln) {
  OrvaStatus status = ORVA_STS_NO_ERR;
  Sum sum = 0;
  for (size_t i = 0, count = static_cast<size_t>(len); i < count; ++i) {
    const Src x = LoadElement(src + i);
    if (x == 0) {
      sum += -std::numeric_limits<Sum>::infinity();
      status = ORVA_STS_LN_ZERO_WARN;
    } else if (x < 0) {
      sum += std::numeric_limits<Sum>::quiet_NaN();
      status = ORVA_STS_LN_NEG_WARN;
    } else {
      sum += ln(i);
    }
  }
  Give(sum, result);
  return status;
}

}  // namespace

OrvaStatus ORVAS_SumLn_32f(const Orva32f* src, int32_t len, Orva32f* sum) {
  if (OrvaStatus status = CheckArrays(len, src, sum)) return status;
  return SumLn(src, len, sum, [=](size_t i) TZM_LAMBDA { return Ln32<Remainder::kTwice>(LoadElement(src + i)); });
}

OrvaStatus ORVAS_SumLn_64f(const Orva64f* src, int32_t len, Orva64f* sum) {
  if (OrvaStatus status = CheckArrays(len, src, sum)) return status;
  return SumLn(src, len, sum, [=](size_t i) TZM_LAMBDA { return Ln64(LoadElement(src + i)); });
}

OrvaStatus ORVAS_SumLn_32f64f(const Orva32f* src, int32_t len, Orva64f* sum) {
  if (OrvaStatus status = CheckArrays(len, src, sum)) return status;
  Orva64f* wide = ORVAS_Malloc_64f(len);
  if (wide == nullptr) return ORVA_STS_NULL_PTR_ERR;
  // The one failure after which the block stays behind, as this member's contract has it.
  if (OrvaStatus status = ORVAS_Convert_32f64f(src, wide, len)) return status;
  const OrvaStatus status = SumLn(src, len, sum, [=](size_t i) TZM_LAMBDA {
    return Reduce64(std::bit_cast<uint64_t>(LoadElement(wide + i))).head;
  });
  ORVAS_Free(wide);
  return status;
}

OrvaStatus ORVAS_SumLn_16s32f(const Orva16s* src, int32_t len, Orva32f* sum) {
  if (OrvaStatus status = CheckArrays(len, src, sum)) return status;
  return SumLn(src, len, sum, [=](size_t i) TZM_LAMBDA { return Ln32<Remainder::kOnce>(LoadElement(src + i)); });
}
