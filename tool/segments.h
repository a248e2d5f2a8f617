// Power spectra of the segments of a sound, all channels at once.
#ifndef TZM_TOOL_SEGMENTS_H
#define TZM_TOOL_SEGMENTS_H

#include <signal_tzm/arith.h>
#include <signal_tzm/elementary.h>
#include <signal_tzm/transform.h>

#include "audio.h"
#include "handle.h"
#include "progress.h"
#include "stream.h"

namespace tzm {

using ForwardTransform = Handle<OrvaTransformSpec, ORVAS_DFTRToCRelease_32f>;

/** A forward transform of `len` real samples that divides by nothing. */
inline ForwardTransform MakeForwardTransform(int32_t len) {
  return MakeHandle<ForwardTransform>(
      "the transform", [&](auto** made) { return ORVAS_DFTRToCInit_32f(len, ORVA_DIVIDE_NONE, made); });
}

/** take(c, power): the squared magnitudes of half the spectrum of each full segment of channel c under the window, in
 * the order of the segments, which begin a step apart. Gives the count of samples read. */
template <class Take>
int64_t ForEachSegment(AudioReader& reader, const std::vector<float>& window, size_t step, const Take& take) {
  constexpr size_t kSamplesAtOnce = 1 << 16;
  const size_t len = window.size(), overlapped = len - step;
  const ForwardTransform transform = MakeForwardTransform(int32_t(len));
  Planes samples(reader.Channels(), std::vector<float>(overlapped + step * std::max<size_t>(1, kSamplesAtOnce / step)));
  Progress progress("reading", reader.Length());
  int64_t read = 0;
  for (size_t held = 0, wanted = samples[0].size();;) {
    const size_t got = reader.Read(samples, held);
    held += got;
    InParallel(samples.size(), [&](size_t c) {
      std::vector<float> windowed(len), power(len / 2 + 1);
      std::vector<Orva32fc> bin(power.size());
      for (size_t at = 0; at + len <= held; at += step) {
        Require(ORVAS_Mul_32f(&samples[c][at], window.data(), windowed.data(), int32_t(len)), "the product");
        Require(ORVAS_DFTRToC_32f(windowed.data(), &bin[0].re, transform.get()), "the transform");
        Require(ORVAS_PowerSpectr_32fc(bin.data(), power.data(), int32_t(power.size())), "the power");
        take(c, power);
      }
    });
    progress.Show(read += int64_t(got));
    if (held < wanted) return read;
    for (auto& channel : samples) std::copy(channel.end() - std::ptrdiff_t(overlapped), channel.end(), channel.begin());
    held = overlapped;
  }
}

}  // namespace tzm

#endif
