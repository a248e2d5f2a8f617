// Filters and their design: what the digest runs.
#include <signal_tzm/fir.h>

#include <array>

#include "members.h"

namespace tzm_test::fir_rows {

// Two runs of a filter, the second with the delay line of the first.
template <class Tap, class Sample, class State, class... P>
void DigestPieces(Digest& digest, OrvaStatus (*run)(const Sample*, Sample*, int32_t, State*, const Sample*, Sample*),
                  OrvaStatus (*init)(const Tap*, P...), OrvaStatus (*release)(State*), int32_t taps_len, int32_t up,
                  int32_t down, int32_t first, int32_t second, auto... parameters) {
  for (Variety variety : kVarieties) {
    const auto taps = RandomArray<Tap>(taps_len, 1, variety);
    const auto src = RandomArray<Sample>(down * (first + second), 2, variety);
    std::vector<Sample> dst(up * (first + second)), delay(taps_len);
    State* state = nullptr;
    digest.Call(init, taps.data(), taps_len, parameters..., &state);
    digest.Call(run, src.data(), dst.data(), first, state, nullptr, delay.data());
    digest.Call(run, &src[first * down], &dst[first * up], second, state, delay.data(), delay.data());
    digest.Call(release, state);
    digest.Add(dst.data(), dst.size());
    digest.Add(delay.data(), delay.size());
  }
}
void SingleRate(Digest& digest, auto run, auto init, auto release) {
  for (int32_t route : {ORVA_ROUTE_DIRECT, ORVA_ROUTE_FFT})
    for (int32_t taps_len : {1, 5, 40, 131})
      DigestPieces(digest, run, init, release, taps_len, 1, 1, 277, 123, 300, route);
}
void MultiRate(Digest& digest, auto run, auto init, auto release) {
  for (auto [taps_len, up, down] : {std::array{7, 1, 1}, {64, 1, 4}, {50, 3, 2}, {33, 20, 7}})
    DigestPieces(digest, run, init, release, taps_len, up, down, 29, 11, up, up - 1, down, down / 2);
}

// Two runs, the first shorter than the filter; then the taps and the line.
template <class Sample>
void Adaptive(Digest& digest, OrvaStatus (*run)(FIRLMSState*, const Sample*, const Sample*, Sample*, int32_t, Orva32f),
              auto init, auto get_taps, auto get_line, auto set_line, auto release) {
  for (int32_t taps_len : {1, 8, 21, 64})
    for (Variety variety : kVarieties) {
      const auto taps = RandomArray<Orva32f>(taps_len, 1, variety);
      const auto src = RandomArray<Sample>(300, 2, variety), ref = RandomArray<Sample>(300, 3, variety);
      std::vector<Sample> dst(300), line(taps_len);
      std::vector<Orva32f> adapted(taps_len);
      int32_t index = 0;
      FIRLMSState* state = nullptr;
      digest.Call(init, &state, taps.data(), taps_len, nullptr, 0);
      digest.Call(set_line, state, src.data(), taps_len + 3);
      digest.Call(run, state, src.data(), ref.data(), dst.data(), 20, 0x1p-20f);
      digest.Call(run, state, &src[20], &ref[20], &dst[20], 280, 0x1p-20f);
      digest.Call(get_taps, state, adapted.data());
      digest.Call(get_line, state, line.data(), &index);
      digest.Call(release, state);
      digest.Add(dst.data(), dst.size());
      digest.Add(adapted.data(), adapted.size());
      digest.Add(line.data(), line.size());
      digest.Add(&index, 1);
    }
}

void Sparse(Digest& digest, auto...) {
  for (const std::vector<int32_t>& positions : {std::vector{0}, {1, 2, 30}, {0, 5, 16, 100, 333}})
    for (Variety variety : kVarieties) {
      const auto taps = RandomArray<Orva32f>(positions.size(), 1, variety);
      const auto src = RandomArray<Orva32f>(400, 2, variety);
      std::vector<Orva32f> dst(400), line(positions.back());
      FIRSparseState* state = nullptr;
      digest.Call(ORVAS_FIRSparseInit_32f, taps.data(), positions.data(), static_cast<int32_t>(positions.size()),
                  nullptr, &state);
      digest.Call(ORVAS_FIRSparseSetDlyLine_32f, state, src.data());
      digest.Call(ORVAS_FIRSparse_32f, src.data(), dst.data(), 70, state);
      digest.Call(ORVAS_FIRSparse_32f, &src[70], &dst[70], 330, state);
      digest.Call(ORVAS_FIRSparseGetDlyLine_32f, state, line.data());
      digest.Call(ORVAS_FIRSparseRelease_32f, state);
      digest.Add(dst.data(), dst.size());
      digest.Add(line.data(), line.size());
    }
}

constexpr int32_t kLongestDesign = 129;

// Taps with all windows.
void Design(Digest& digest, auto design, auto... frequencies) {
  FIRGenState* buffer = nullptr;
  digest.Call(ORVAS_FIRGenInit_64f, kLongestDesign, &buffer);
  for (int32_t taps_len : {4, 5, 6, 32, kLongestDesign})
    for (int32_t window : {0, 1, 2, 3, 4})
      for (int32_t normal : {0, 1}) {
        std::vector<Orva64f> taps(taps_len);
        digest.Call(design, frequencies..., taps.data(), taps_len, window, normal, buffer);
        digest.Add(taps.data(), taps.size());
      }
  digest.Call(ORVAS_FIRGenRelease, buffer);
}
void Cut(Digest& digest, auto design) { Design(digest, design, 0.2); }
void Band(Digest& digest, auto design) { Design(digest, design, 0.1, 0.35); }

#define PAIRINGS(run, family)                                                                                     \
  SCENARIO(run, ORVAS_##family##_32f, ORVAS_##family##Init_32f, ORVAS_##family##Release_32f),                     \
      SCENARIO(run, ORVAS_##family##_16s, ORVAS_##family##Init_32f, ORVAS_##family##Release_32f),                 \
      SCENARIO(run, ORVAS_##family##_64f, ORVAS_##family##Init_64f, ORVAS_##family##Release_64f),                 \
      SCENARIO(run, ORVAS_##family##_32fc, ORVAS_##family##Init_32fc, ORVAS_##family##Release_32fc),              \
      SCENARIO(run, ORVAS_##family##_16sc, ORVAS_##family##Init_32fc, ORVAS_##family##Release_32fc),              \
      SCENARIO(run, ORVAS_##family##_64fc, ORVAS_##family##Init_64fc, ORVAS_##family##Release_64fc),              \
      SCENARIO(run, ORVAS_##family##32f_32fc, ORVAS_##family##Init32f_32fc, ORVAS_##family##Release32f_32fc)

const Rows rows("fir", {
    PAIRINGS(SingleRate, FIRSR),
    PAIRINGS(MultiRate, FIRMR),
    SCENARIO(Adaptive, ORVAS_FIRLMS_32f, ORVAS_FIRLMSInit_32f, ORVAS_FIRLMSGetTaps_32f, ORVAS_FIRLMSGetDlyLine_32f,
             ORVAS_FIRLMSSetDlyLine_32f, ORVAS_FIRLMSRelease_32f),
    SCENARIO(Adaptive, ORVAS_FIRLMS32f_16s, ORVAS_FIRLMSInit32f_16s, ORVAS_FIRLMSGetTaps32f_16s,
             ORVAS_FIRLMSGetDlyLine32f_16s, ORVAS_FIRLMSSetDlyLine32f_16s, ORVAS_FIRLMSRelease32f_16s),
    SCENARIO(Sparse, ORVAS_FIRSparse_32f, ORVAS_FIRSparseInit_32f, ORVAS_FIRSparseGetDlyLine_32f,
             ORVAS_FIRSparseSetDlyLine_32f, ORVAS_FIRSparseRelease_32f),
    SCENARIO(Cut, ORVAS_FIRGenLowpass_64f), SCENARIO(Cut, ORVAS_FIRGenHighpass_64f),
    SCENARIO(Band, ORVAS_FIRGenBandpass_64f), SCENARIO(Band, ORVAS_FIRGenBandstop_64f),
    Member("ORVAS_FIRGenInit_64f, ORVAS_FIRGenRelease"),
});

}  // namespace tzm_test::fir_rows
