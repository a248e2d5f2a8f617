#include <signal_tzm/fir.h>

#include <array>

#include "members.h"
#include "support/random.h"

namespace tzm_test {

namespace {

// Two runs of a filter, the second with the delay line of the first.
template <class State, auto kInit, auto kRun, auto kRelease, class Tap, class Sample>
void DigestPieces(Digest& digest, bool transforms, int32_t taps_len, int32_t up, int32_t down, int32_t first,
                  int32_t second, auto... parameters) {
  for (Variety variety : kVarieties) {
    // By transforms a NaN's sign, which no machine promises, chooses the limit of an integer.
    if (transforms && variety != Variety::kModerate) continue;
    const auto taps = RandomArray<Tap>(taps_len, 1, variety);
    const auto src = RandomArray<Sample>(down * (first + second), 2, variety);
    std::vector<Sample> dst(up * (first + second)), delay(taps_len);
    State* state = nullptr;
    digest.AddStatus(kInit(taps.data(), taps_len, parameters..., &state));
    digest.AddStatus(kRun(src.data(), dst.data(), first, state, nullptr, delay.data()));
    digest.AddStatus(kRun(&src[first * down], &dst[first * up], second, state, delay.data(), delay.data()));
    digest.AddStatus(kRelease(state));
    digest.Add(dst.data(), dst.size());
    digest.Add(delay.data(), delay.size());
  }
}
template <auto kInit, auto kRun, auto kRelease, class Tap, class Sample>
void DigestSingleRate(Digest& digest) {
  for (int32_t route : {1, 2})  // direct, by transforms
    for (int32_t taps_len : {1, 5, 40, 131})
      DigestPieces<FIRSRState, kInit, kRun, kRelease, Tap, Sample>(digest, route == 2, taps_len, 1, 1, 277, 123, 300,
                                                                 route);
}
template <auto kInit, auto kRun, auto kRelease, class Tap, class Sample>
void DigestMultiRate(Digest& digest) {
  for (auto [taps_len, up, down] : {std::array{7, 1, 1}, {64, 1, 4}, {50, 3, 2}, {33, 20, 7}})
    DigestPieces<FIRMRState, kInit, kRun, kRelease, Tap, Sample>(digest, false, taps_len, up, down, 29, 11, up, up - 1,
                                                                 down, down / 2);
}

// Two runs, the first shorter than the filter; then the taps and the line.
template <auto kInit, auto kRun, auto kGetTaps, auto kGetLine, auto kSetLine, auto kRelease, class Sample>
void DigestAdaptive(Digest& digest) {
  for (int32_t taps_len : {1, 8, 21, 64}) {
    for (Variety variety : kVarieties) {
      const auto taps = RandomArray<Orva32f>(taps_len, 1, variety);
      const auto src = RandomArray<Sample>(300, 2, variety), ref = RandomArray<Sample>(300, 3, variety);
      std::vector<Sample> dst(300), line(taps_len);
      std::vector<Orva32f> adapted(taps_len);
      int32_t index = 0;
      FIRLMSState* state = nullptr;
      digest.AddStatus(kInit(&state, taps.data(), taps_len, nullptr, 0));
      digest.AddStatus(kSetLine(state, src.data(), taps_len + 3));
      digest.AddStatus(kRun(state, src.data(), ref.data(), dst.data(), 20, 0x1p-20f));
      digest.AddStatus(kRun(state, &src[20], &ref[20], &dst[20], 280, 0x1p-20f));
      digest.AddStatus(kGetTaps(state, adapted.data()));
      digest.AddStatus(kGetLine(state, line.data(), &index));
      digest.AddStatus(kRelease(state));
      digest.Add(dst.data(), dst.size());
      digest.Add(adapted.data(), adapted.size());
      digest.Add(line.data(), line.size());
      digest.Add(&index, 1);
    }
  }
}

void DigestSparse(Digest& digest) {
  for (const std::vector<int32_t>& positions : {std::vector{0}, {1, 2, 30}, {0, 5, 16, 100, 333}}) {
    for (Variety variety : kVarieties) {
      const auto taps = RandomArray<Orva32f>(positions.size(), 1, variety);
      const auto src = RandomArray<Orva32f>(400, 2, variety);
      std::vector<Orva32f> dst(400), line(positions.back());
      FIRSparseState* state = nullptr;
      digest.AddStatus(ORVAS_FIRSparseInit_32f(taps.data(), positions.data(), static_cast<int32_t>(positions.size()),
                                               nullptr, &state));
      digest.AddStatus(ORVAS_FIRSparseSetDlyLine_32f(state, src.data()));
      digest.AddStatus(ORVAS_FIRSparse_32f(src.data(), dst.data(), 70, state));
      digest.AddStatus(ORVAS_FIRSparse_32f(&src[70], &dst[70], 330, state));
      digest.AddStatus(ORVAS_FIRSparseGetDlyLine_32f(state, line.data()));
      digest.AddStatus(ORVAS_FIRSparseRelease_32f(state));
      digest.Add(dst.data(), dst.size());
      digest.Add(line.data(), line.size());
    }
  }
}

constexpr int32_t kLongestDesign = 129;

// Calls design(taps, tapsLen, winType, doNormal, buffer) with all windows.
void DigestDesign(Digest& digest, auto design) {
  FIRGenState* buffer = nullptr;
  digest.AddStatus(ORVAS_FIRGenInit_64f(kLongestDesign, &buffer));
  for (int32_t taps_len : {4, 5, 6, 32, kLongestDesign}) {
    for (int32_t window : {0, 1, 2, 3, 4}) {
      for (int32_t normal : {0, 1}) {
        std::vector<Orva64f> taps(taps_len);
        digest.AddStatus(design(taps.data(), taps_len, window, normal, buffer));
        digest.Add(taps.data(), taps.size());
      }
    }
  }
  digest.AddStatus(ORVAS_FIRGenRelease(buffer));
}
template <auto kDesign>
void DigestCut(Digest& digest) {
  DigestDesign(digest, [](auto... rest) { return kDesign(0.2, rest...); });
}
template <auto kDesign>
void DigestBand(Digest& digest) {
  DigestDesign(digest, [](auto... rest) { return kDesign(0.1, 0.35, rest...); });
}

#define SINGLE_RATE(run, init, tap, sample)                                                                     \
  Member({"ORVAS_FIRSR" #run, "ORVAS_FIRSRInit" #init, "ORVAS_FIRSRRelease" #init},                              \
         DigestSingleRate<ORVAS_FIRSRInit##init, ORVAS_FIRSR##run, ORVAS_FIRSRRelease##init, tap, sample>)
#define ADAPTIVE(name, type, sample)                                                                           \
  Member({"ORVAS_FIRLMS" #name "_" #type, "ORVAS_FIRLMSInit" #name "_" #type, "ORVAS_FIRLMSGetTaps" #name "_" #type,  \
          "ORVAS_FIRLMSGetDlyLine" #name "_" #type, "ORVAS_FIRLMSSetDlyLine" #name "_" #type,                    \
          "ORVAS_FIRLMSRelease" #name "_" #type},                                                                \
         DigestAdaptive<ORVAS_FIRLMSInit##name##_##type, ORVAS_FIRLMS##name##_##type,                            \
                        ORVAS_FIRLMSGetTaps##name##_##type, ORVAS_FIRLMSGetDlyLine##name##_##type,               \
                        ORVAS_FIRLMSSetDlyLine##name##_##type, ORVAS_FIRLMSRelease##name##_##type, sample>)
#define CUT(design)                                                                           \
  Member({"ORVAS_FIRGen" #design "_64f"}, DigestCut<ORVAS_FIRGen##design##_64f>)
#define BAND(design)                                                                          \
  Member({"ORVAS_FIRGen" #design "_64f"}, DigestBand<ORVAS_FIRGen##design##_64f>)
#define MULTI_RATE(run, init, tap, sample)                                                                      \
  Member({"ORVAS_FIRMR" #run, "ORVAS_FIRMRInit" #init, "ORVAS_FIRMRRelease" #init},                              \
         DigestMultiRate<ORVAS_FIRMRInit##init, ORVAS_FIRMR##run, ORVAS_FIRMRRelease##init, tap, sample>)

#define PAIRINGS(row)                                                                                  \
  row(_32f, _32f, Orva32f, Orva32f), row(_16s, _32f, Orva32f, Orva16s), row(_64f, _64f, Orva64f, Orva64f), \
  row(_32fc, _32fc, Orva32fc, Orva32fc), row(_16sc, _32fc, Orva32fc, Orva16sc),                        \
  row(_64fc, _64fc, Orva64fc, Orva64fc), row(32f_32fc, 32f_32fc, Orva32f, Orva32fc),

}  // namespace

static const Rows rows("fir", {
    PAIRINGS(SINGLE_RATE)
    PAIRINGS(MULTI_RATE)
    ADAPTIVE(, 32f, Orva32f),
    ADAPTIVE(32f, 16s, Orva16s),
    Member({"ORVAS_FIRSparse_32f", "ORVAS_FIRSparseInit_32f", "ORVAS_FIRSparseGetDlyLine_32f",
            "ORVAS_FIRSparseSetDlyLine_32f", "ORVAS_FIRSparseRelease_32f"}, DigestSparse),
    CUT(Lowpass),
    CUT(Highpass),
    BAND(Bandpass),
    BAND(Bandstop),
    Member({"ORVAS_FIRGenInit_64f", "ORVAS_FIRGenRelease"}),
});

#undef SINGLE_RATE
#undef ADAPTIVE
#undef CUT
#undef BAND
#undef MULTI_RATE
#undef PAIRINGS

}  // namespace tzm_test
