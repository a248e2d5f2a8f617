// The FFT companion's two sets of names as one template over the real type.
#pragma once

#include <signal_tzm/companion.h>

namespace tzm {

constexpr int32_t kForward = -1, kInverse = 1;

template <class Real>
struct Fft;

template <>
struct Fft<Orva32f> {
  using Complex = Orva32fc;
  using Plan = tzm_fftf_plan;
  static Plan PlanComplex(int32_t n, int32_t sign) { return tzm_fftf_plan_dft_1d(n, nullptr, nullptr, sign, 0); }
  static Plan PlanRealToComplex(int32_t n) { return tzm_fftf_plan_dft_r2c_1d(n, nullptr, nullptr, 0); }
  static Plan PlanComplexToReal(int32_t n) { return tzm_fftf_plan_dft_c2r_1d(n, nullptr, nullptr, 0); }
  static constexpr auto PlanSplit = tzm_fftf_plan_guru_split_dft;
  static constexpr auto Execute = tzm_fftf_execute_dft;
  static constexpr auto ExecuteRealToComplex = tzm_fftf_execute_dft_r2c;
  static constexpr auto ExecuteComplexToReal = tzm_fftf_execute_dft_c2r;
  static constexpr auto ExecuteSplit = tzm_fftf_execute_split_dft;
  static constexpr auto Destroy = tzm_fftf_destroy_plan;
};

template <>
struct Fft<Orva64f> {
  using Complex = Orva64fc;
  using Plan = tzm_fft_plan;
  static Plan PlanComplex(int32_t n, int32_t sign) { return tzm_fft_plan_dft_1d(n, nullptr, nullptr, sign, 0); }
  static Plan PlanRealToComplex(int32_t n) { return tzm_fft_plan_dft_r2c_1d(n, nullptr, nullptr, 0); }
  static Plan PlanComplexToReal(int32_t n) { return tzm_fft_plan_dft_c2r_1d(n, nullptr, nullptr, 0); }
  static constexpr auto PlanSplit = tzm_fft_plan_guru_split_dft;
  static constexpr auto Execute = tzm_fft_execute_dft;
  static constexpr auto ExecuteRealToComplex = tzm_fft_execute_dft_r2c;
  static constexpr auto ExecuteComplexToReal = tzm_fft_execute_dft_c2r;
  static constexpr auto ExecuteSplit = tzm_fft_execute_split_dft;
  static constexpr auto Destroy = tzm_fft_destroy_plan;
};

}  // namespace tzm
