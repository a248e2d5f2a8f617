// What the library does when it is loaded: this program's own symbols stand before those of the FFT companion, and
// keep what they are called with.
#include <gtest/gtest.h>
#include <signal_tzm/companion.h>

#include <cstdlib>

namespace {

// The calls in their order: 1000 for the set-up of threads, else their count; of binary64 negative.
int32_t calls[8], made = 0;
int Keep(int32_t call) {
  if (made < 8) calls[made] = call;
  ++made;
  return 1;
}

TEST(Load, SetsUpBothPrecisions) {
  const char* text = getenv("ORVA_FFT_THREAD_NUM");
  const int32_t threads = text == nullptr || atoi(text) < 1 ? 8 : atoi(text);
  ASSERT_EQ(made, 4);
  EXPECT_EQ(calls[0], 1000);
  EXPECT_EQ(calls[1], threads);
  EXPECT_EQ(calls[2], -1000);
  EXPECT_EQ(calls[3], -threads);
}

}  // namespace

int32_t tzm_fftf_init_threads() { return Keep(1000); }
int32_t tzm_fft_init_threads() { return Keep(-1000); }
void tzm_fftf_plan_with_nthreads(int32_t threads) { Keep(threads); }
void tzm_fft_plan_with_nthreads(int32_t threads) { Keep(-threads); }
