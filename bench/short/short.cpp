// Calls on short arrays beside VOLK's, in turns: nanoseconds a call of ours and of VOLK's, the least of many, and their
// ratio.   [VOLK_CONFIGPATH=bench/short, without AVX-512] tzm_short [PART-OF-A-NAME]
#include <signal_tzm.h>
#include <signal_tzm/companion.h>
#include <volk/volk.h>

#include "../turns.h"

namespace {

constexpr int kLengths[] = {8, 31, 32, 33, 100, 1000, 4096, 100000};
constexpr size_t kMost = 100000;

// Values between 1 and 2, 64 bytes aligned for VOLK's sake, each array in another place of its page.
template <class T>
T* Values(int step) {
  static size_t place = 0;
  place += 576;
  T* const values = reinterpret_cast<T*>(static_cast<char*>(volk_malloc(2 * kMost * sizeof(T) + place, 64)) + place);
  for (size_t i = 0; i < 2 * kMost; ++i) values[i] = static_cast<T>(1 + static_cast<double>(i * step % 97) / 97);
  return values;
}

}  // namespace

int main(int argc, char** argv) {
  const char* const wanted = argc > 1 ? argv[1] : "";
  const auto row = [=](const char* name, auto ours, auto volk) { tzm_bench::Row(name, wanted, kLengths, ours, volk); };
  float *const a = Values<float>(1), *const b = Values<float>(7), *const to = Values<float>(1);
  double *const a64 = Values<double>(1), *const b64 = Values<double>(7), *const to64 = Values<double>(1);
  int16_t* const a16 = Values<int16_t>(1);
  auto *const ca = reinterpret_cast<Orva32fc*>(a), *const cb = reinterpret_cast<Orva32fc*>(b);
  auto* const cto = reinterpret_cast<Orva32fc*>(to);
  auto *const va = reinterpret_cast<lv_32fc_t*>(a), *const vb = reinterpret_cast<lv_32fc_t*>(b);
  auto* const vto = reinterpret_cast<lv_32fc_t*>(to);

  tzm_bench::Head("VOLK's", kLengths);
  row("Mul_32f", [=](int n) { ORVAS_Mul_32f(a, b, to, n); }, [=](int n) { volk_32f_x2_multiply_32f(to, a, b, n); });
  row("Mul_64f", [=](int n) { ORVAS_Mul_64f(a64, b64, to64, n); },
      [=](int n) { volk_64f_x2_multiply_64f(to64, a64, b64, n); });
  row("MulC_32f", [=](int n) { ORVAS_MulC_32f(a, 1.5f, to, n); },
      [=](int n) { volk_32f_s32f_multiply_32f(to, a, 1.5f, n); });
  row("DivC_32f", [=](int n) { ORVAS_DivC_32f(a, 1.5f, to, n); },
      [=](int n) { volk_32f_s32f_multiply_32f(to, a, 1 / 1.5f, n); });
  row("Sqr_32f", [=](int n) { ORVAS_Sqr_32f(a, to, n); }, [=](int n) { volk_32f_x2_multiply_32f(to, a, a, n); });
  row("Div_32f", [=](int n) { ORVAS_Div_32f(b, a, to, n); }, [=](int n) { volk_32f_x2_divide_32f(to, a, b, n); });
  row("Sqrt_32f", [=](int n) { ORVAS_Sqrt_32f(a, to, n); }, [=](int n) { volk_32f_sqrt_32f(to, a, n); });
  row("Threshold_LT_32f", [=](int n) { ORVAS_Threshold_LT_32f(a, to, n, 1.5f); },
      [=](int n) { volk_32f_x2_max_32f(to, a, b, n); });
  row("Add_32f_I", [=](int n) { ORVAS_Add_32f_I(a, to, n); }, [=](int n) { volk_32f_x2_add_32f(to, a, to, n); });
  row("Mul_32fc", [=](int n) { ORVAS_Mul_32fc(ca, cb, cto, n); },
      [=](int n) { volk_32fc_x2_multiply_32fc(vto, va, vb, n); });
  row("MulC_32fc", [=](int n) { ORVAS_MulC_32fc(ca, {1, 2}, cto, n); },
      [=](int n) { volk_32fc_s32fc_multiply_32fc(vto, va, lv_cmake(1.0f, 2.0f), n); });
  row("Div_32fc", [=](int n) { ORVAS_Div_32fc(cb, ca, cto, n); },
      [=](int n) { volk_32fc_x2_divide_32fc(vto, va, vb, n); });
  row("Mul_32f32fc", [=](int n) { ORVAS_Mul_32f32fc(b, ca, cto, n); },
      [=](int n) { volk_32fc_32f_multiply_32fc(vto, va, b, n); });
  row("Magnitude_32fc", [=](int n) { ORVAS_Magnitude_32fc(ca, to, n); },
      [=](int n) { volk_32fc_magnitude_32f(to, va, n); });
  row("PowerSpectr_32fc", [=](int n) { ORVAS_PowerSpectr_32fc(ca, to, n); },
      [=](int n) { volk_32fc_magnitude_squared_32f(to, va, n); });
  row("MulC_Low_32f16s", [=](int n) { ORVAS_MulC_Low_32f16s(a, 100, a16, n); },
      [=](int n) { volk_32f_s32f_convert_16i(a16, a, 100, n); });
  row("Convert_16s32f", [=](int n) { ORVAS_Convert_16s32f(a16, to, n); },
      [=](int n) { volk_16i_s32f_convert_32f(to, a16, 1, n); });
  row("Convert_32f64f", [=](int n) { ORVAS_Convert_32f64f(a, to64, n); },
      [=](int n) { volk_32f_convert_64f(to64, a, n); });
  row("Convert_64f32f", [=](int n) { ORVAS_Convert_64f32f(a64, to, n); },
      [=](int n) { volk_64f_convert_32f(to, a64, n); });
  row("CplxToReal_32fc", [=](int n) { ORVAS_CplxToReal_32fc(ca, to, b, n); },
      [=](int n) { volk_32fc_deinterleave_32f_x2(to, b, va, n); });
  row("RealToCplx_32f", [=](int n) { ORVAS_RealToCplx_32f(a, b, cto, n); },
      [=](int n) { volk_32f_x2_interleave_32fc(vto, a, b, n); });
}
