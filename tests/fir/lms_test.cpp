// LMS adaptive FIR filter: outputs, taps and line to the bit against the plain algorithm, statuses, failures.
#include <signal_tzm/fir.h>

#include <algorithm>
#include <climits>
#include <cmath>

#include "support/testing.h"

namespace tzm_test::lms_test {

template <class SampleType>
struct Lms {
  using Sample = SampleType;
  const char* name;
  float step;  // one that keeps the adaptation bounded for moderate samples
  OrvaStatus (*init)(FIRLMSState**, const Orva32f*, int32_t, const Sample*, int32_t);
  OrvaStatus (*run)(FIRLMSState*, const Sample*, const Sample*, Sample*, int32_t, Orva32f);
  OrvaStatus (*get_taps)(const FIRLMSState*, Orva32f*);
  OrvaStatus (*get_line)(const FIRLMSState*, Sample*, int32_t*);
  OrvaStatus (*set_line)(FIRLMSState*, const Sample*, int32_t);
  OrvaStatus (*release)(FIRLMSState*);
};
constexpr Lms<Orva32f> k32f = {"FIRLMS_32f", 0x1p-12f, ORVAS_FIRLMSInit_32f, ORVAS_FIRLMS_32f, ORVAS_FIRLMSGetTaps_32f,
                               ORVAS_FIRLMSGetDlyLine_32f, ORVAS_FIRLMSSetDlyLine_32f, ORVAS_FIRLMSRelease_32f};
constexpr Lms<Orva16s> k16s = {"FIRLMS32f_16s", 0x1p-26f, ORVAS_FIRLMSInit32f_16s, ORVAS_FIRLMS32f_16s,
                               ORVAS_FIRLMSGetTaps32f_16s, ORVAS_FIRLMSGetDlyLine32f_16s,
                               ORVAS_FIRLMSSetDlyLine32f_16s, ORVAS_FIRLMSRelease32f_16s};

void ForEachLms(auto test) { test(k32f, k16s), test(k16s, k32f); }
Orva32f Output(Orva32f y, Orva32f) { return y; }
// The low half of the nearest 32-bit integer.
Orva16s Output(Orva32f y, Orva16s) {
  if (std::isnan(y)) return 0;
  return static_cast<Orva16s>(static_cast<int64_t>(std::clamp(std::nearbyint(double{y}), -0x1p31, 0x1p31 - 1)));
}

// The filter said plainly.
template <class Sample>
struct Plain {
  std::vector<Orva32f> taps;    // oldest sample's first
  std::vector<Sample> history;  // all inputs so far, behind the delay line

  Plain(const std::vector<Orva32f>& natural, const std::vector<Sample>& line, size_t index)
      : taps(natural.rbegin(), natural.rend()) {
    for (size_t i = 0; i < line.size(); ++i) history.push_back(line[(index + i) % line.size()]);
  }

  std::vector<Sample> Run(const std::vector<Sample>& src, const std::vector<Sample>& ref, Orva32f mu) {
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
      const float error = (static_cast<float>(ref[n]) - y) * (2 * mu);
      for (size_t j = 0; j < size; ++j) taps[j] = std::fma(error, static_cast<float>(p[j]), taps[j]);
    }
    return dst;
  }
};

template <class L, class Sample = typename L::Sample>
void ExpectLine(const L& lms, const FIRLMSState* state, const std::vector<Sample>& line, int32_t index) {
  GuardedArray<Sample> got(line.size());
  int32_t start = -1;
  ASSERT_EQ(lms.get_line(state, got.data(), &start), 0);
  EXPECT_EQ(start, index);
  EXPECT_TRUE(SameBits("line", line.data(), got.data(), line.size()));
}

// Runs of all lengths on one state, the destination now and then the reference.
TEST(FIRLMS, RunsTheAlgorithmToTheBit) {
  ForEachLms([]<class L>(const L& lms, const auto&) {
    using Sample = typename L::Sample;
    for (Variety variety : {Variety::kModerate, Variety::kSpecial})
      for (int32_t size : {1, 2, 7, 8, 9, 15, 16, 17, 24, 31, 64, 67}) {
        const auto place = size % 2 != 0 ? Place::kUnaligned : Place::kEnd;
        const int32_t index = size % 3 == 0 ? size - 1 : size / 2, given = index - 3 * size;
        const auto taps = RandomArray<Orva32f>(size, size, variety);
        const auto line = RandomArray<Sample>(size, 100 + size);
        FIRLMSState* state = nullptr;
        const bool set = size % 2 == 0;  // or given at the start
        ASSERT_EQ(lms.init(&state, GuardedArray(taps, place).data(), size, set ? nullptr : line.data(), given), 0);
        EXPECT_EQ(set ? lms.set_line(state, line.data(), given) : 0, 0);
        ExpectLine(lms, state, line, index);
        Plain<Sample> plain(taps, line, index);
        uint64_t seed = 0;
        for (int32_t len : {1, 2, size, size + 1, 1, 3 * size + 5, 40, 7}) {
          SCOPED_TRACE(testing::Message() << lms.name << ", " << size << " taps, length " << len);
          const auto src = RandomArray<Sample>(len, ++seed), ref = RandomArray<Sample>(len, 50 + seed);
          GuardedArray<Sample> from(src, place), towards(ref, place), dst(len, place);
          GuardedArray<Orva32f> adapted(size, place);
          Sample* const out = seed % 2 == 0 ? towards.data() : dst.data();
          ASSERT_EQ(lms.run(state, from.data(), towards.data(), out, len, lms.step), 0);
          ASSERT_TRUE(SameBits("output", plain.Run(src, ref, lms.step).data(), out, len, seed));
          ASSERT_EQ(lms.get_taps(state, adapted.data()), 0);
          std::reverse(adapted.begin(), adapted.end());
          ASSERT_TRUE(SameBits("taps", plain.taps.data(), adapted.data(), size, seed));
          ExpectLine(lms, state, {plain.history.end() - size, plain.history.end()}, 0);
        }
        EXPECT_EQ(lms.release(state), 0);
      }
  });
}

TEST(FIRLMS, SixteenBitOutputWraps) {
  const std::vector<float> taps = {0.5f, 1.5f, -2.5f, 40000, -40000, 65536, 3e9f, -3e9f, NAN};
  std::vector<Orva16s> outputs;
  for (float tap : taps) {
    FIRLMSState* state = nullptr;
    ASSERT_EQ(ORVAS_FIRLMSInit32f_16s(&state, &tap, 1, nullptr, 0), 0);
    const Orva16s src = 1, ref = 0;
    ASSERT_EQ(ORVAS_FIRLMS32f_16s(state, &src, &ref, &outputs.emplace_back(77), 1, 0), 0);
    ORVAS_FIRLMSRelease32f_16s(state);
  }
  EXPECT_EQ(outputs, (std::vector<Orva16s>{0, 2, -2, -25536, 25536, 0, -1, 0, 0}));
}

// A state of the other member is refused, after pointers and length.
TEST(FIRLMS, StatusesInTheirOrderAndFaults) {
  ForEachLms([]<class L>(const L& lms, const auto& other) {
    using Sample = typename L::Sample;
    FIRLMSState *state = nullptr, *foreign = nullptr;
    for (int32_t size : {0, INT_MIN}) EXPECT_EQ(lms.init(&state, nullptr, size, nullptr, 0), ORVA_STS_LMS_TAPS_ERR);
    EXPECT_EQ(lms.init(&state, nullptr, 67108865, nullptr, 0), ORVA_STS_MEM_ALLOC_ERR);
    EXPECT_EQ(state, nullptr);
    // Every index is reduced.
    for (auto [given, reduced] : {std::pair{INT_MIN, 0}, {INT_MAX, 3}, {-1, 3}, {4, 0}}) {
      ASSERT_EQ(lms.init(&state, nullptr, 4, nullptr, given), 0);
      ExpectLine(lms, state, std::vector<Sample>(4), reduced);
      lms.release(state);
    }
    EXPECT_EQ(ForEachFaultOfInit([&](auto** made) { return lms.init(made, nullptr, 4, nullptr, 0); }, lms.release), 1);
    ASSERT_EQ(other.init(&foreign, nullptr, 1, nullptr, 0), 0);
    Sample sample = 4, dst = 7;
    Orva32f tap = 7;
    int32_t index = 7;
    EXPECT_EQ(lms.run(foreign, &sample, &sample, &dst, 0, 1), ORVA_STS_SIZE_ERR);
    for (OrvaStatus status : {lms.run(foreign, &sample, &sample, &dst, 1, 1), lms.get_taps(foreign, &tap),
                              lms.get_line(foreign, &dst, &index), lms.set_line(foreign, &sample, 0)})
      EXPECT_EQ(status, ORVA_STS_CONTEXT_MATCH_ERR);
    EXPECT_TRUE(dst == 7 && tap == 7 && index == 7);
    EXPECT_EQ(other.release(foreign), 0);
    // Without taps the first output is 0, and the first error moves them.
    ASSERT_EQ(lms.init(&state, nullptr, 1, nullptr, 0), 0);
    EXPECT_EQ(lms.run(state, &sample, &sample, &dst, 1, 0.25f), 0);
    EXPECT_EQ(lms.get_taps(state, &tap), 0);
    EXPECT_TRUE(dst == 0 && tap == 8);
    EXPECT_EQ(lms.release(state), 0);
  });
}

}  // namespace tzm_test::lms_test
