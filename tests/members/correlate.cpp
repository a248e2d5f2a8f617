// Convolutions, correlations, matrix products: what the digest runs.
#include <signal_tzm/correlate.h>

#include "members.h"

namespace tzm_test::correlate_rows {

constexpr int32_t kDirect = ORVA_ROUTE_DIRECT, kFft = ORVA_ROUTE_FFT;

// Both routes of every length pair: short, long and uneven sequences.
template <class T, class... P>
void Convolution(Digest& digest, OrvaStatus (*run)(const T*, P...), auto init, auto release) {
  for (int32_t route : {kDirect, kFft})
    for (Variety variety : {Variety::kModerate, Variety::kSpecial})
      for (int32_t len1 : {1, 10, 50, 150, 700})
        for (int32_t len2 : {1, 7, 16, 17, 60, 200, 500}) {
          const auto src1 = RandomArray<T>(len1, 1, variety), src2 = RandomArray<T>(len2, 2, variety);
          std::vector<T> dst(len1 + len2 - 1);
          ConvState* state = nullptr;
          digest.Call(init, len1, len2, route, &state);
          digest.Call(run, src1.data(), len1, src2.data(), len2, dst.data(), state);
          digest.Add(dst.data(), dst.size());
          release(state);
        }
}

template <class T, class... P>
void Autocorrelation(Digest& digest, OrvaStatus (*run)(const T*, P...), auto init, auto release) {
  for (int32_t route : {kDirect, kFft})
    for (Variety variety : {Variety::kModerate, Variety::kSpecial})
      for (int32_t len : {1, 5, 40, 77, 500})
        for (int32_t dstLen : {1, 8, 33, 79, 300}) {
          const auto src = RandomArray<T>(len, 1, variety);
          std::vector<T> dst(dstLen);
          CorrState* state = nullptr;
          digest.Call(init, len, dstLen, route, &state);
          digest.Call(run, src.data(), len, dst.data(), dstLen, dstLen % 3, state);
          digest.Add(dst.data(), dst.size());
          release(state);
        }
}

template <class T, class... P>
void CrossCorrelation(Digest& digest, OrvaStatus (*run)(const T*, P...), auto init, auto release) {
  for (int32_t route : {kDirect, kFft})
    for (Variety variety : {Variety::kModerate, Variety::kSpecial})
      for (int32_t len1 : {1, 6, 41, 300})
        for (int32_t len2 : {1, 39, 78, 200})
          for (int32_t low : {-len1 - 2, -3, 11}) {
            const auto src1 = RandomArray<T>(len1, 1, variety), src2 = RandomArray<T>(len2, 2, variety);
            std::vector<T> dst(len1 + len2);
            const int32_t dstLen = len1 + len2;
            CorrState* state = nullptr;
            digest.Call(init, len1, len2, dstLen, low, route, &state);
            digest.Call(run, src1.data(), len1, src2.data(), len2, dst.data(), dstLen, low, len2 % 3, state);
            digest.Add(dst.data(), dst.size());
            release(state);
          }
}

void Biased(Digest& digest, auto run) {
  for (int32_t bias : {0, 5, -20})
    for (int32_t len2 : {1, 20, 100}) {
      const auto src1 = RandomArray<Orva32f>(90, 1), around = RandomArray<Orva32f>(len2 + 60, 2);
      std::vector<Orva32f> dst(150);
      digest.Call(run, src1.data(), 90, around.data() + 30, len2, dst.data(), 150, bias);
      digest.Add(dst.data(), dst.size());
    }
}

#define CORRELATIONS(type)                                                                                      \
  SCENARIO(Autocorrelation, ORVAS_AutoCorrNorm_##type, ORVAS_AutoCorrInit_##type, ORVAS_CorrRelease_##type),    \
      SCENARIO(CrossCorrelation, ORVAS_CrossCorrNorm_##type, ORVAS_CrossCorrInit_##type, ORVAS_CorrRelease_##type)

const Rows rows("correlate", {
    SCENARIO(Convolution, ORVAS_Convolve_32f, ORVAS_ConvInit_32f, ORVAS_ConvRelease_32f),
    SCENARIO(Convolution, ORVAS_Convolve_64f, ORVAS_ConvInit_64f, ORVAS_ConvRelease_64f),
    SCENARIO(Biased, ORVAS_ConvBiased_32f),
    CORRELATIONS(32f), CORRELATIONS(64f), CORRELATIONS(32fc), CORRELATIONS(64fc),
    // The order of summation is the CBLAS's own: no digest.
    Member("ORVAS_MMul_32f"), Member("ORVAS_MMul_64f"), Member("ORVAS_MMul_32fc"), Member("ORVAS_MMul_64fc"),
});

}  // namespace tzm_test::correlate_rows
