// The core companion: copies, fills, conversions, extremes.
#include <signal_tzm/companion.h>

#include <cmath>

#include "members.h"

namespace tzm_test::companion_rows {

const auto same = [](auto x, At) { return x; };
const auto conjugate = [](auto x, At) { return decltype(x){x.re, -x.im}; };
const auto sum = []<class T>(T x, At at) { return at.Before<T>() + x; };
const auto reversed = [](auto src, At) { return decltype(src)(src.rbegin(), src.rend()); };

// The first of the elements with the largest sign * key, those that are NaN passed over.
template <int kSign, bool kMagnitude>
constexpr auto largest = []<class T>(const std::vector<T>& src, At) {
  const auto key = [](T x) { return kMagnitude ? std::fabs(x) : x; };
  T most = NAN;
  for (T x : src)
    if (!(kSign * key(x) <= kSign * most) && !std::isnan(x)) most = key(x);
  return most;
};
// One value among NaNs, one NaN among values, and where +0 follows -0.
template <int kSign>
constexpr auto kAlone = []<class T>(T, auto run) {
  for (int32_t len = 1; len <= 150; ++len)
    for (int32_t i = 0; i < len; ++i) {
      for (auto [one, others] : {std::pair<T, T>(kSign * -INFINITY, NAN), std::pair<T, T>(NAN, -3)}) {
        std::vector<T> src(len, others);
        src[i] = one;
        run(Case(src));
      }
      std::vector<T> zeros(len);
      std::fill_n(zeros.begin(), i + 1, -T(0));
      run(Case(zeros));
    }
};

const Cases kTies = [](auto run) {
  std::vector<Orva64f> src = {std::nextafter(0.5, 0), std::nextafter(0.5, 1), 1.25, 32767.5, -32768.5, 2147483648.0,
                              -1e10, 1e300, -0x1.8p1023, 0x1p1023, INFINITY, -INFINITY, NAN};
  for (double x = -8.5; x < 9; x += 0.5) src.push_back(x);
  for (double mode : {0, 1}) run(Case(src).With({mode}));
};

const Rows rows("companion", {
    MEMBERS(ORVAS_Copy_16s, ORVAS_Copy_16sc, ORVAS_Copy_32f, ORVAS_Copy_32fc, ORVAS_Copy_64f, ORVAS_Copy_64fc,
            ORVAS_Move_16s, ORVAS_Move_32f, ORVAS_Convert_16s32f, ORVAS_Convert_32f64f, ORVAS_Convert_64f32f).Is(same),
    MEMBERS(ORVAS_Zero_8u, ORVAS_Zero_16s, ORVAS_Zero_32f, ORVAS_Zero_64f).Is([](At) { return 0; }),
    MEMBERS(ORVAS_Zero_16sc).Is([](At) { return Orva16sc{}; }),
    MEMBERS(ORVAS_Zero_32fc).Is([](At) { return Orva32fc{}; }),
    MEMBERS(ORVAS_Zero_64fc).Is([](At) { return Orva64fc{}; }),
    MEMBERS(ORVAS_Set_32f, ORVAS_Set_64f).Is(same),
    MEMBERS(ORVAS_Set_32fc, ORVAS_Set_64fc).Is(same).Constants({{1.5, -2}}),
    MEMBERS(ORVAS_Add_32f_I, ORVAS_Add_64f_I).Is(sum),
    MEMBERS(ORVAS_Conj_32fc, ORVAS_Conj_64fc).Is(conjugate),
    MEMBERS(ORVAS_Flip_32f, ORVAS_Flip_32fc, ORVAS_Flip_64f, ORVAS_Flip_64fc).Gives(reversed),
    MEMBERS(ORVAS_CplxToReal_16sc, ORVAS_CplxToReal_32fc, ORVAS_CplxToReal_64fc)
        .Is([](auto z, At) { return std::pair(z.re, z.im); }),
    MEMBERS(ORVAS_RealToCplx_32f).Is([](float re, float im, At) { return Orva32fc{re, im}; }),
    MEMBERS(ORVAS_RealToCplx_64f).Is([](double re, double im, At) { return Orva64fc{re, im}; }),
    MEMBERS(ORVAS_Convert_64f16s_S).Is([](double x, uint32_t mode, At at) {
      const double scaled = x * at.Factor();
      return RoundSaturate<Orva16s>(mode == 1 ? scaled : std::trunc(scaled));
    }).On(kTies).Constants({{0}, {1}}).BadConstants({{2}}, ORVA_STS_ROUND_MODE_ERR),
    MEMBERS(ORVAS_Max_64f).Gives(largest<1, false>).On(kAlone<1>),
    MEMBERS(ORVAS_Min_64f).Gives(largest<-1, false>).On(kAlone<-1>),
    MEMBERS(ORVAS_MaxAbs_32f, ORVAS_MaxAbs_64f).Gives(largest<1, true>).On(kAlone<1>),
});

}  // namespace tzm_test::companion_rows
