// Column aggregates: every member against the ordered loop over the rows, with any masks; overflow that
// sticks; the limit of decimals.
#include <signal_tzm/reduce.h>

#include <gtest/gtest.h>

#include <limits>
#include <numeric>

#include "support/arguments.h"
#include "support/compare.h"
#include "support/exact.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

constexpr Orva8u kUnwritten = 77;
constexpr int64_t kMost = std::numeric_limits<int64_t>::max(), kLeast = std::numeric_limits<int64_t>::min();
constexpr uint64_t kSign = uint64_t{1} << 63;

template <class RowType, class SumType, class MeanType>
struct Column {
  using Row = RowType;
  using Sum = SumType;
  using Mean = MeanType;
  const char* name;
  OrvaStatus (*sum)(const Row*, int32_t, const Orva8u*, Orva8u*, Sum*);
  OrvaStatus (*mean)(const Row*, int32_t, const Orva8u*, Orva8u*, Mean*, uint64_t*);
};

#define COLUMN(tag) {#tag, ORVAS_AggSum_##tag, ORVAS_AggMean_##tag}
constexpr Column<Orva16s, Orva64s, Orva64f> k16s = COLUMN(16s);
constexpr Column<Orva32s, Orva64s, Orva64f> k32s = COLUMN(32s);
constexpr Column<Orva64s, Orva64s, Orva64f> k64s = COLUMN(64s);
constexpr Column<Orva64f, Orva64f, Orva64f> k64f = COLUMN(64f);
constexpr Column<Orva64s, OrvaDecimal128, OrvaDecimal128> kDecimal64 = COLUMN(decimal64);
constexpr Column<OrvaDecimal128, OrvaDecimal128, OrvaDecimal128> kDecimal128 = COLUMN(decimal128);
#undef COLUMN

template <class Test>
void ForEachColumn(Test test) {
  test(k16s), test(k32s), test(k64s), test(k64f), test(kDecimal64), test(kDecimal128);
}

Int128 Value(OrvaDecimal128 row) {
  const Int128 magnitude = static_cast<Int128>(row.hi & ~kSign) << 64 | row.lo;
  return row.hi & kSign ? -magnitude : magnitude;
}
Int128 Value(Orva64s row) { return row; }

// The ordered loop. Accumulator: int64_t, double or Int128.
template <class Accumulator, class Row>
Accumulator Ordered(const std::vector<Row>& rows, const Orva8u* nulls, bool& overflow, uint64_t& count) {
  Accumulator sum = 0;
  overflow = false;
  count = 0;
  for (size_t i = 0; i < rows.size(); ++i) {
    if (nulls != nullptr && nulls[i] != 0) continue;
    ++count;
    if (overflow) continue;
    if constexpr (std::is_same_v<Accumulator, double>) sum += rows[i];
    else overflow = __builtin_add_overflow(sum, static_cast<Accumulator>(Value(rows[i])), &sum);
  }
  return sum;
}

void Deliver(int64_t total, bool, Orva64s& sum, Orva8u&) { sum = total; }
void Deliver(int64_t total, bool, Orva64f& sum, Orva8u&) { sum = static_cast<double>(total); }
void Deliver(double total, bool, Orva64f& sum, Orva8u&) { sum = total; }
void Deliver(Int128 total, bool overflow, OrvaDecimal128& sum, Orva8u& flag) {
  using Unsigned = unsigned __int128;
  const Unsigned magnitude = total < 0 ? -static_cast<Unsigned>(total) : static_cast<Unsigned>(total);
  Unsigned limit = 1;
  for (int k = 0; k < 38; ++k) limit *= 10;
  sum = {static_cast<uint64_t>(magnitude), static_cast<uint64_t>(magnitude >> 64) ^ (total < 0 ? kSign : 0)};
  flag = overflow || (magnitude & ~(Unsigned{kSign} << 64)) >= limit;
}

template <class K>
void Check(const K& column, const std::vector<typename K::Row>& rows, const std::vector<Orva8u>& mask, uint64_t seed) {
  using Row = typename K::Row;
  using Accumulator = std::conditional_t<std::is_same_v<typename K::Sum, OrvaDecimal128>, Int128,
                                         std::conditional_t<std::is_same_v<Row, double>, double, int64_t>>;
  const auto len = static_cast<int32_t>(rows.size());
  const auto place = seed % 2 != 0 ? Place::kUnaligned : Place::kEnd;
  const GuardedArray<Row> src(rows, place);
  const GuardedArray<Orva8u> nulls(mask);
  const Orva8u* const given = mask.empty() ? nullptr : nulls.data();
  SetCallUnderTest(column.name + std::string(" length ") + std::to_string(len));

  bool overflow;
  uint64_t expected_count;
  const Accumulator total = Ordered<Accumulator>(rows, given, overflow, expected_count);
  typename K::Sum expected_sum;
  typename K::Mean expected_mean;
  Orva8u expected_flag = overflow;
  Deliver(total, overflow, expected_sum, expected_flag);
  Deliver(total, overflow, expected_mean, expected_flag);

  typename K::Sum sum;
  typename K::Mean mean;
  Orva8u flag = kUnwritten, mean_flag = kUnwritten;
  uint64_t count = kUnwritten;
  ASSERT_EQ(column.sum(src.data(), len, given, &flag, &sum), 0);
  ASSERT_EQ(column.mean(src.data(), len, given, &mean_flag, &mean, &count), 0);
  ASSERT_TRUE(SameBits(std::string("AggSum_") + column.name, &expected_sum, &sum, 1, seed)) << "length " << len;
  ASSERT_TRUE(SameBits(std::string("AggMean_") + column.name, &expected_mean, &mean, 1, seed)) << "length " << len;
  ASSERT_EQ(flag, expected_flag) << column.name << " length " << len << " seed " << seed;
  ASSERT_EQ(mean_flag, expected_flag) << column.name << " length " << len << " seed " << seed;
  ASSERT_EQ(count, expected_count) << column.name << " length " << len << " seed " << seed;
}

// Masks of no, all, few and many nulls, of any byte but 0, in runs and singly.
std::vector<Orva8u> RandomMask(Random& random, size_t n) {
  const uint64_t of_100[] = {0, 1, 10, 50, 99, 100};
  const uint64_t nulls = of_100[random.Below(6)], run = 1 + random.Below(20);
  std::vector<Orva8u> mask(n);
  for (size_t i = 0; i < n; ++i) {
    if (i % run != 0) mask[i] = mask[i - 1];
    else if (random.Below(100) < nulls) mask[i] = static_cast<Orva8u>(1 + random.Below(255));
  }
  return mask;
}

// Rows small enough never to overflow, of which a few are moved next to the edge of the accumulator.
template <class Row>
std::vector<Row> RandomRows(Random& random, size_t n) {
  const Variety variety = kVarieties[random.Below(3)];
  auto rows = RandomArray<Row>(n, random.Next(), variety);
  if constexpr (sizeof(Row) == 8 && std::is_integral_v<Row>) {
    if (random.Below(2) != 0)
      for (Row& row : rows) row >>= 12 + random.Below(40);
    for (uint64_t extremes = random.Below(4); extremes != 0; --extremes)
      rows[random.Below(n)] = random.Below(2) != 0 ? kMost - static_cast<int64_t>(random.Below(3)) : kLeast;
  } else if constexpr (std::is_same_v<Row, OrvaDecimal128>) {
    const int shift = static_cast<int>(random.Below(62));
    for (Row& row : rows) row.hi = (row.hi & kSign) | (row.hi & ~kSign) >> shift;
  }
  return rows;
}

TEST(Column, GivesWhatTheOrderedLoopGives) {
  ForEachColumn([]<class K>(const K& column) {
    for (uint64_t seed = 1; seed <= 1500; ++seed) {
      Random random(seed);
      const size_t len = seed <= 160 ? seed : 1 + random.Below(2500);
      const auto rows = RandomRows<typename K::Row>(random, len);
      Check(column, rows, seed % 4 == 0 ? std::vector<Orva8u>() : RandomMask(random, len), seed);
      if (testing::Test::HasFatalFailure()) return;
    }
  });
}

// One row of the edge and one that steps over it, anywhere: the wrapped value stays, no later row is
// added, and the count goes on.
TEST(Column, OverflowSticks) {
  constexpr size_t kLen = 1100;
  for (size_t at : {size_t{0}, size_t{1}, size_t{7}, size_t{8}, size_t{511}, size_t{512}, size_t{600}, kLen - 2}) {
    for (bool masked : {false, true}) {
      std::vector<Orva64s> rows(kLen, 5);
      std::vector<Orva8u> mask(masked ? kLen : 0);
      for (size_t i = 0; masked && i < kLen; ++i) mask[i] = i % 3 == 2 || i == at + 1 ? 0x80 : 0;
      std::fill(rows.begin(), rows.begin() + static_cast<ptrdiff_t>(at), 0);
      rows[at] = kMost;
      if (masked) mask[at] = 0, mask.back() = 0, rows[at + 1] = kLeast;
      Check(k64s, rows, mask, at);
      for (Orva64s& row : rows) row = -row - 1;
      Check(k64s, rows, mask, at);
    }
  }
  const Orva64s rows[] = {kMost, 1, 5};
  Orva64s sum;
  Orva64f mean;
  Orva8u flag;
  uint64_t count;
  ASSERT_EQ(ORVAS_AggSum_64s(rows, 3, nullptr, &flag, &sum), 0);
  EXPECT_EQ(sum, kLeast);
  EXPECT_EQ(flag, 1);
  ASSERT_EQ(ORVAS_AggMean_64s(rows, 3, nullptr, &flag, &mean, &count), 0);
  EXPECT_EQ(mean, -0x1p63);
  EXPECT_EQ(count, 3u);

  // The same for 128 bits, by elements far beyond a legal decimal.
  const OrvaDecimal128 huge = {~uint64_t{0}, ~kSign}, minus = {1, kSign};
  for (size_t at : {0, 5, 511, 700}) {
    std::vector<OrvaDecimal128> column(900, OrvaDecimal128{3, 0});
    column[at] = huge;
    Check(kDecimal128, column, {}, at);
    Check(kDecimal128, std::vector<OrvaDecimal128>(900, minus), {}, at);
  }
}

TEST(Column, DecimalLimit) {
  const OrvaDecimal128 limit = {0x098A224000000000, 0x4B3B4CA85A86C47A}, below = {limit.lo - 1, limit.hi};
  const OrvaDecimal128 one = {1, 0}, minus_one = {1, kSign}, minus_zero = {0, kSign};
  const OrvaDecimal128 half = {0, uint64_t{1} << 62}, minus_half = {0, kSign | uint64_t{1} << 62};
  struct { std::vector<OrvaDecimal128> rows; OrvaDecimal128 sum; Orva8u flag; } const cases[] = {
      {{below}, below, 0},
      {{below, one}, limit, 1},
      {{limit, minus_one}, below, 0},  // a running sum at the limit comes back
      {{{below.lo, below.hi | kSign}}, {below.lo, below.hi | kSign}, 0},
      {{{below.lo, below.hi | kSign}, minus_one}, {limit.lo, limit.hi | kSign}, 1},
      {{minus_zero}, {0, 0}, 0},
      {{one, minus_one}, {0, 0}, 0},
      {{minus_half, minus_half}, {0, 0}, 0},  // -2^127 has no sign and magnitude
      {{half, half}, {0, 0}, 1},              // wrapped to the same, but by overflow
  };
  for (const auto& [rows, expected, flag] : cases) {
    OrvaDecimal128 sum = one;
    Orva8u overflow = kUnwritten;
    ASSERT_EQ(ORVAS_AggSum_decimal128(rows.data(), static_cast<int32_t>(rows.size()), nullptr, &overflow, &sum), 0);
    EXPECT_TRUE(SameBits("AggSum_decimal128", &expected, &sum, 1)) << &rows - &cases[0].rows;
    EXPECT_EQ(overflow, flag);
  }
}

TEST(Column, StatusesInTheirOrder) {
  ForEachColumn([]<class K>(const K& column) {
    const typename K::Row row = {};
    const Orva8u mask = 1;
    typename K::Sum sum;
    typename K::Mean mean;
    Orva8u flag = kUnwritten;
    uint64_t count = kUnwritten;
    CheckNulls(column.sum, &row, 0, nullptr, &flag, &sum);
    CheckNulls(column.mean, &row, 0, nullptr, &flag, &mean, &count);
    EXPECT_EQ(column.mean(&row, 0, &mask, &flag, &mean, &count), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(column.sum(&row, -1, &mask, &flag, &sum), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(flag, kUnwritten);
    EXPECT_EQ(count, kUnwritten);
    ASSERT_EQ(column.mean(&row, 1, &mask, &flag, &mean, &count), 0);
    const typename K::Mean zero = {};
    EXPECT_TRUE(SameBits(column.name, &zero, &mean, 1));
    EXPECT_EQ(flag, 0);
    EXPECT_EQ(count, 0u);
  });
}

}  // namespace
}  // namespace tzm_test
