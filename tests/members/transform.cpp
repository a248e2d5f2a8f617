#include <signal_tzm/transform.h>

#include <array>
#include <bit>

#include "members.h"
#include "support/random.h"

namespace tzm_test {

namespace {

using Spec = OrvaTransformSpec;

OrvaStatus Make(OrvaStatus (*init)(int32_t, int32_t, int32_t, Spec**), int32_t size, int32_t direction, Spec** spec) {
  return init(size, direction, 4, spec);
}
OrvaStatus Make(OrvaStatus (*init)(int32_t, int32_t, Spec**), int32_t size, int32_t, Spec** spec) {
  return init(size, 4, spec);
}

template <class Src, class T>
OrvaStatus Run(OrvaStatus (*run)(Src*, T*, const Spec*), T* src, T* dst, size_t, const Spec* spec) {
  return run(src, dst, spec);
}
// Split arrays: two halves of each.
template <class T>
OrvaStatus Run(OrvaStatus (*run)(const T*, const T*, T*, T*, const Spec*), T* src, T* dst, size_t n, const Spec* spec) {
  return run(src, src + n, dst, dst + n, spec);
}

// Both directions where there are two: of powers of two, or of lengths with small and large factors, up to those that
// leave the cache and take threads.
template <class T>
void SpecDigest(Digest& digest, bool order, auto init, auto run, OrvaStatus (*release)(Spec*)) {
  for (int32_t len : {1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 4096, 65536, 3, 6, 15, 17, 31, 45, 60, 67, 100, 105,
                      179, 257, 360, 729, 1000, 1009, 1155, 1920, 4410, 10007, 48000}) {
    if (order && !std::has_single_bit(static_cast<uint32_t>(len))) break;
    for (int32_t direction : {1, -1}) {
      const size_t n = static_cast<size_t>(len);
      Spec* spec = nullptr;
      digest.AddStatus(Make(init, order ? std::countr_zero(static_cast<uint32_t>(len)) : len, direction, &spec));
      auto src = RandomArray<T>(2 * n + 2, n);
      std::vector<T> dst(2 * n + 2);
      digest.AddStatus(Run(run, src.data(), dst.data(), n, spec));
      digest.AddStatus(release(spec));
      digest.Add(dst.data(), dst.size());
    }
  }
}

template <class C>
void InPlaceDigest(Digest& digest, auto init, auto run, auto release) {
  for (int32_t order : {0, 3, 6, 11}) {
    auto data = RandomArray<C>(size_t{1} << order, 1);
    Spec* spec = nullptr;
    digest.AddStatus(init(order, 1, 3, &spec));
    digest.AddStatus(run(data.data(), spec));
    digest.AddStatus(release(spec));
    digest.Add(data.data(), data.size());
  }
}

template <class T, class C>
void ChirpDigest(Digest& digest, OrvaStatus (*run)(const T*, int32_t, C*, int32_t, C, C)) {
  using Real = decltype(C::re);
  for (Variety variety : {Variety::kModerate, Variety::kSpecial})
    for (auto [len, bins] : {std::array{1, 1}, {7, 30}, {100, 57}, {1000, 900}}) {
      const auto src = RandomArray<T>(static_cast<size_t>(len), 1, variety);
      std::vector<C> dst(static_cast<size_t>(bins));
      digest.AddStatus(run(src.data(), len, dst.data(), bins, {Real(0.9976), Real(-0.0817)}, {Real(1.003), Real(0.1)}));
      digest.Add(dst.data(), dst.size());
    }
}

void HilbertDigest(Digest& digest) {
  for (int32_t len : {1, 2, 5, 64, 100, 679, 4096}) {
    const auto src = RandomArray<Orva32f>(static_cast<size_t>(len), 1);
    std::vector<Orva32fc> dst(src.size());
    OrvaHilbertSpec* spec = nullptr;
    digest.AddStatus(ORVAS_HilbertInit_32f32fc(len, &spec));
    digest.AddStatus(ORVAS_Hilbert_32f32fc(src.data(), dst.data(), len, spec));
    digest.AddStatus(ORVAS_HilbertRelease_32f32fc(spec));
    digest.Add(dst.data(), dst.size());
  }
}

// Whole segments, and segments folded onto a shorter transform.
template <class T, class R>
void WelchDigest(Digest& digest, OrvaStatus (*run)(const T*, const R*, R*, int32_t, int32_t, int32_t, double)) {
  const auto src = RandomArray<T>(3000, 1);
  const auto window = RandomArray<R>(500, 2);
  for (int32_t nfft : {0, 16, 77, 100, 499})
    for (const R* weights : {window.data(), static_cast<const R*>(nullptr)}) {
      std::vector<R> dst(500);
      digest.AddStatus(run(src.data(), weights, dst.data(), 3000, nfft, 500, 0.4));
      digest.Add(dst.data(), dst.size());
    }
}

#define SPEC(kind, type)                                                                                          \
  Member({"ORVAS_" #kind "_" #type, "ORVAS_" #kind "Init_" #type, "ORVAS_" #kind "Release_" #type},               \
         [](Digest& digest) {                                                                                     \
    SpecDigest<Orva##type>(digest, #kind[0] == 'F', ORVAS_##kind##Init_##type, ORVAS_##kind##_##type,             \
                           ORVAS_##kind##Release_##type);                                                         \
  })
#define CHIRP(type) \
  Member({"ORVAS_CZT_" #type}, [](Digest& digest) { ChirpDigest<Orva##type>(digest, ORVAS_CZT_##type); })
#define WELCH(type) \
  Member({"ORVAS_Pwelch_" #type}, [](Digest& digest) { WelchDigest<Orva##type>(digest, ORVAS_Pwelch_##type); })

const Rows rows("transform", {
    SPEC(FFTCToC, 32fc),
    SPEC(FFTCToC, 64fc),
    SPEC(FFTCToC, 32f),
    SPEC(FFTCToC, 64f),
    SPEC(FFTRToC, 32f),
    SPEC(FFTRToC, 64f),
    SPEC(FFTCToR, 32f),
    SPEC(FFTCToR, 64f),
    SPEC(DFTCToC, 32fc),
    SPEC(DFTCToC, 64fc),
    SPEC(DFTCToC, 32f),
    SPEC(DFTCToC, 64f),
    SPEC(DFTRToC, 32f),
    SPEC(DFTRToC, 64f),
    SPEC(DFTCToR, 32f),
    SPEC(DFTCToR, 64f),
    Member({"ORVAS_FFTCToC_32fc_I", "ORVAS_FFTCToC_64fc_I"}, [](Digest& digest) {
      InPlaceDigest<Orva32fc>(digest, ORVAS_FFTCToCInit_32fc, ORVAS_FFTCToC_32fc_I, ORVAS_FFTCToCRelease_32fc);
      InPlaceDigest<Orva64fc>(digest, ORVAS_FFTCToCInit_64fc, ORVAS_FFTCToC_64fc_I, ORVAS_FFTCToCRelease_64fc);
    }),

    CHIRP(32f), CHIRP(64f),
    CHIRP(32fc), CHIRP(64fc),

    MEMBERS(ORVAS_Goertz_32f, ORVAS_Goertz_64f, ORVAS_Goertz_64fc)
        .Constants({{0.1}, {0}, {0.75}})
        .BadConstants({-0.1}, ORVA_STS_REL_FREQ_ERR)
        .BadConstants({1}, ORVA_STS_REL_FREQ_ERR),
    MEMBERS(ORVAS_Goertz_32fc)
        .Constants({{0.1}, {0}, {1}})
        .BadConstants({-0.1}, ORVA_STS_REL_FREQ_ERR)
        .BadConstants({1.0001}, ORVA_STS_REL_FREQ_ERR),

    Member({"ORVAS_Hilbert_32f32fc", "ORVAS_HilbertInit_32f32fc", "ORVAS_HilbertRelease_32f32fc"}, HilbertDigest),

    WELCH(32f), WELCH(64f),
    WELCH(32fc), WELCH(64fc),
});
#undef WELCH
#undef CHIRP
#undef SPEC

}  // namespace

}  // namespace tzm_test
