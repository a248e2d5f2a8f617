// LMS adaptive FIR filter: outputs, taps and line to the bit against the plain algorithm, statuses, failures.
#include <signal_tzm/fir.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>

#include "support/arguments.h"
#include "support/compare.h"
#include "support/faults.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

template <class SampleType>
struct Kind {
  using Sample = SampleType;
  const char* name;
  OrvaStatus (*init)(FIRLMSState**, const Orva32f*, int32_t, const Sample*, int32_t);
  OrvaStatus (*run)(FIRLMSState*, const Sample*, const Sample*, Sample*, int32_t, Orva32f);
  OrvaStatus (*get_taps)(const FIRLMSState*, Orva32f*);
  OrvaStatus (*get_line)(const FIRLMSState*, Sample*, int32_t*);
  OrvaStatus (*set_line)(FIRLMSState*, const Sample*, int32_t);
  OrvaStatus (*release)(FIRLMSState*);
};

constexpr Kind<Orva32f> k32f = {"FIRLMS_32f", ORVAS_FIRLMSInit_32f, ORVAS_FIRLMS_32f, ORVAS_FIRLMSGetTaps_32f,
                                ORVAS_FIRLMSGetDlyLine_32f, ORVAS_FIRLMSSetDlyLine_32f, ORVAS_FIRLMSRelease_32f};
constexpr Kind<Orva16s> k16s = {"FIRLMS32f_16s", ORVAS_FIRLMSInit32f_16s, ORVAS_FIRLMS32f_16s,
                                ORVAS_FIRLMSGetTaps32f_16s, ORVAS_FIRLMSGetDlyLine32f_16s,
                                ORVAS_FIRLMSSetDlyLine32f_16s, ORVAS_FIRLMSRelease32f_16s};

template <class Test>
void ForEachKind(Test test) {
  test(k32f);
  test(k16s);
}

Orva32f Output(Orva32f y, Orva32f) { return y; }
// The low half of the nearest 32-bit integer.
Orva16s Output(Orva32f y, Orva16s) {
  if (std::isnan(y)) return 0;
  const double nearest = std::clamp(std::nearbyint(static_cast<double>(y)), -0x1p31, 0x1p31 - 1);
  return static_cast<Orva16s>(static_cast<uint16_t>(static_cast<int64_t>(nearest)));
}

// The filter said plainly, on the last T - 1 inputs.
template <class Sample>
struct Plain {
  std::vector<Orva32f> taps;    // oldest sample's first
  std::vector<Sample> history;  // all inputs so far, behind the delay line

  Plain(std::vector<Orva32f> natural, const std::vector<Sample>& line, int32_t index)
      : taps(natural.rbegin(), natural.rend()) {
    for (size_t i = 1; i < line.size(); ++i) history.push_back(line[(static_cast<size_t>(index) + i) % line.size()]);
  }

  std::vector<Sample> Run(const std::vector<Sample>& src, const std::vector<Sample>& ref, Orva32f mu) {
    const Orva32f step = 2 * mu;
    const size_t size = taps.size(), body = size - size % 8;
    std::vector<Sample> dst;
    for (size_t n = 0; n < src.size(); ++n) {
      history.push_back(src[n]);
      const Sample* const p = &history[history.size() - size];
      float lanes[8] = {};
      for (size_t j = 0; j < body; ++j) lanes[j % 8] = std::fma(taps[j], static_cast<float>(p[j]), lanes[j % 8]);
      for (size_t k = 0; k < 4; ++k) lanes[k] += lanes[k + 4];
      float y = (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]);
      for (size_t j = body; j < size; ++j) y = std::fma(taps[j], static_cast<float>(p[j]), y);
      dst.push_back(Output(y, Sample{}));
      const float error = (static_cast<float>(ref[n]) - y) * step;
      for (size_t j = 0; j < size; ++j) taps[j] = std::fma(error, static_cast<float>(p[j]), taps[j]);
    }
    return dst;
  }
};

// Steps that keep the adaptation bounded for moderate samples.
float StepFor(const Kind<Orva32f>&) { return 0x1p-12f; }
float StepFor(const Kind<Orva16s>&) { return 0x1p-26f; }

TEST(FIRLMS, RunsTheAlgorithmToTheBit) {
  ForEachKind([]<class K>(const K& kind) {
    using Sample = typename K::Sample;
    for (Variety variety : {Variety::kModerate, Variety::kSpecial}) {
      for (int32_t size : {1, 2, 7, 8, 9, 15, 16, 17, 24, 31, 64, 67}) {
        const auto place = size % 2 != 0 ? Place::kUnaligned : Place::kEnd;
        const int32_t index = size % 3 == 0 ? size - 1 : size / 2;
        const GuardedArray<Orva32f> taps(RandomArray<Orva32f>(size, size, variety), place);
        const auto line = RandomArray<Sample>(size, 100 + size);
        FIRLMSState* state = nullptr;
        ASSERT_EQ(kind.init(&state, taps.data(), size, line.data(), index - 3 * size), 0);
        Plain<Sample> plain({taps.data(), taps.data() + size}, line, index);
        uint64_t seed = 0;
        for (int32_t len : {1, 2, size, size + 1, 1, 3 * size + 5, 40, 7}) {
          const auto src = RandomArray<Sample>(len, ++seed), ref = RandomArray<Sample>(len, 50 + seed);
          const GuardedArray<Sample> from(src, place), towards(ref, place);
          GuardedArray<Sample> dst(len, place), last(size, place);
          GuardedArray<Orva32f> adapted(size, place);
          SetCallUnderTest(kind.name + std::string(" taps ") + std::to_string(size) + " length " + std::to_string(len));
          ASSERT_EQ(kind.run(state, from.data(), towards.data(), dst.data(), len, StepFor(kind)), 0);
          const auto expected = plain.Run(src, ref, StepFor(kind));
          ASSERT_TRUE(SameBits(kind.name, expected.data(), dst.data(), len, seed)) << size << " taps";
          ASSERT_EQ(kind.get_taps(state, adapted.data()), 0);
          std::reverse(adapted.begin(), adapted.end());
          ASSERT_TRUE(SameBits(kind.name, plain.taps.data(), adapted.data(), size, seed)) << "taps of " << size;
          int32_t start = -1;
          ASSERT_EQ(kind.get_line(state, last.data(), &start), 0);
          EXPECT_EQ(start, 0);
          const size_t known = std::min<size_t>(size, plain.history.size());
          ASSERT_TRUE(SameBits(kind.name, &*(plain.history.end() - known), last.data() + (size - known), known, seed));
        }
        EXPECT_EQ(kind.release(state), 0);
      }
    }
  });
}

TEST(FIRLMS, LineIsSetAndReadBack) {
  ForEachKind([]<class K>(const K& kind) {
    using Sample = typename K::Sample;
    constexpr int32_t kSize = 4;
    const std::vector<Orva32f> taps = {1, 2, 4, 8};
    const std::vector<Sample> line = {10, 20, 30, 40}, zeros(8), src = {1, 2};
    std::vector<Sample> got(kSize), dst(2);
    for (auto [given, reduced] : {std::array{0, 0}, {3, 3}, {4, 0}, {-1, 3}, {INT_MIN, 0}, {INT_MAX, 3}}) {
      FIRLMSState* state = nullptr;
      int32_t index = -1;
      ASSERT_EQ(kind.init(&state, taps.data(), kSize, nullptr, given), 0);
      ASSERT_EQ(kind.get_line(state, got.data(), &index), 0);
      EXPECT_EQ(got, std::vector<Sample>(kSize));
      EXPECT_EQ(index, reduced);
      ASSERT_EQ(kind.set_line(state, line.data(), given), 0);
      ASSERT_EQ(kind.get_line(state, got.data(), &index), 0);
      EXPECT_EQ(got, line);
      EXPECT_EQ(index, reduced);
      ASSERT_EQ(kind.run(state, src.data(), zeros.data(), dst.data(), 2, 0), 0);
      EXPECT_EQ(dst, Plain<Sample>(taps, line, reduced).Run(src, zeros, 0)) << given;
      kind.release(state);
    }
    // Without taps the first output is 0, and the first error moves them.
    FIRLMSState* state = nullptr;
    std::vector<Orva32f> moved(kSize);
    const std::vector<Sample> one = {4}, ref = {2};
    ASSERT_EQ(kind.init(&state, nullptr, kSize, nullptr, 0), 0);
    ASSERT_EQ(kind.run(state, one.data(), ref.data(), dst.data(), 1, 0.25f), 0);
    EXPECT_EQ(dst[0], 0);
    kind.get_taps(state, moved.data());
    EXPECT_EQ(moved, (std::vector<Orva32f>{4, 0, 0, 0}));
    kind.release(state);
  });
}

TEST(FIRLMS, SixteenBitOutputWraps) {
  struct { float tap; Orva16s output; } const cases[] = {
      {0.5f, 0}, {1.5f, 2}, {-2.5f, -2}, {40000, -25536}, {-40000, 25536}, {65536, 0}, {3e9f, -1}, {-3e9f, 0},
      {std::numeric_limits<float>::quiet_NaN(), 0}};
  for (const auto& [tap, output] : cases) {
    FIRLMSState* state = nullptr;
    ASSERT_EQ(ORVAS_FIRLMSInit32f_16s(&state, &tap, 1, nullptr, 0), 0);
    const Orva16s src = 1, ref = 0;
    Orva16s dst = 77;
    ASSERT_EQ(ORVAS_FIRLMS32f_16s(state, &src, &ref, &dst, 1, 0), 0);
    EXPECT_EQ(dst, output) << tap;
    ORVAS_FIRLMSRelease32f_16s(state);
  }
}

TEST(FIRLMS, DestinationMayBeTheReference) {
  ForEachKind([]<class K>(const K& kind) {
    using Sample = typename K::Sample;
    const auto taps = RandomArray<Orva32f>(20, 1);
    const auto src = RandomArray<Sample>(90, 2), ref = RandomArray<Sample>(90, 3);
    auto shared = ref;
    FIRLMSState* state = nullptr;
    ASSERT_EQ(kind.init(&state, taps.data(), 20, nullptr, 0), 0);
    ASSERT_EQ(kind.run(state, src.data(), shared.data(), shared.data(), 90, StepFor(kind)), 0);
    const auto expected = Plain<Sample>(taps, std::vector<Sample>(20), 0).Run(src, ref, StepFor(kind));
    EXPECT_TRUE(SameBits(kind.name, expected.data(), shared.data(), 90));
    kind.release(state);
  });
}

TEST(FIRLMS, StatusesInTheirOrder) {
  ForEachKind([]<class K>(const K& kind) {
    FIRLMSState* state = nullptr;
    CheckNulls(kind.init, &state, nullptr, 0, nullptr, 0);
    EXPECT_EQ(kind.init(&state, nullptr, 0, nullptr, 0), ORVA_STS_LMS_TAPS_ERR);
    EXPECT_EQ(kind.init(&state, nullptr, INT_MIN, nullptr, 0), ORVA_STS_LMS_TAPS_ERR);
    EXPECT_EQ(kind.init(&state, nullptr, 67108865, nullptr, 0), ORVA_STS_MEM_ALLOC_ERR);
    EXPECT_EQ(state, nullptr);
    const int requests = ForEachFault([&] {
      FIRLMSState* made = nullptr;
      const OrvaStatus status = kind.init(&made, nullptr, 5, nullptr, 0);
      EXPECT_EQ(made == nullptr, status != 0);
      kind.release(made);
      return status;
    });
    EXPECT_EQ(requests, 1);

    ASSERT_EQ(kind.init(&state, nullptr, 5, nullptr, 0), 0);
    std::vector<typename K::Sample> a(5), b(5);
    std::vector<Orva32f> taps(5);
    int32_t index;
    CheckNulls(kind.run, state, a.data(), a.data(), b.data(), 0, 1);
    CheckNulls(kind.get_taps, state, taps.data());
    CheckNulls(kind.get_line, state, b.data(), &index);
    CheckNulls(kind.set_line, state, a.data(), 0);
    EXPECT_EQ(kind.release(state), 0);
    EXPECT_EQ(kind.release(nullptr), 0);
  });
}

// A state of the other member is refused, after the length.
TEST(FIRLMS, StatesCarryTheirIdentity) {
  const auto check = [](const auto& kind, const auto& other) {
    FIRLMSState* state = nullptr;
    ASSERT_EQ(other.init(&state, nullptr, 1, nullptr, 0), 0);
    typename std::remove_cvref_t<decltype(kind)>::Sample sample = 7, dst = 7;
    Orva32f tap = 7;
    int32_t index = 7;
    EXPECT_EQ(kind.run(state, &sample, &sample, &dst, 0, 1), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(kind.run(state, &sample, &sample, &dst, 1, 1), ORVA_STS_CONTEXT_MATCH_ERR);
    EXPECT_EQ(kind.get_taps(state, &tap), ORVA_STS_CONTEXT_MATCH_ERR);
    EXPECT_EQ(kind.get_line(state, &dst, &index), ORVA_STS_CONTEXT_MATCH_ERR);
    EXPECT_EQ(kind.set_line(state, &sample, 0), ORVA_STS_CONTEXT_MATCH_ERR);
    EXPECT_TRUE(dst == 7 && tap == 7 && index == 7);
    EXPECT_EQ(other.release(state), 0);
  };
  check(k32f, k16s);
  check(k16s, k32f);
}

}  // namespace
}  // namespace tzm_test
