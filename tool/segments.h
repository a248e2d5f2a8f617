// Power spectra of the segments of a sound, all channels at once.
#ifndef TZM_TOOL_SEGMENTS_H
#define TZM_TOOL_SEGMENTS_H

#include <signal_tzm/arith.h>
#include <signal_tzm/elementary.h>
#include <signal_tzm/transform.h>

#include <algorithm>
#include <bit>

#include "audio.h"
#include "command.h"
#include "handle.h"
#include "progress.h"
#include "stream.h"
#include "text.h"

namespace tzm {

using ForwardTransform = Handle<OrvaTransformSpec, ORVAS_DFTRToCRelease_32f>;

/** A forward transform of `len` real samples that divides by nothing. */
inline ForwardTransform MakeForwardTransform(int32_t len) {
  return MakeHandle<ForwardTransform>(
      "the transform", [&](auto** made) { return ORVAS_DFTRToCInit_32f(len, ORVA_DIVIDE_NONE, made); });
}

/** The segment that was asked for; if none was (0), the usual one, of a sound shorter than that the longest power of
 * two that it holds. Throws Failure for a sound shorter than the shortest segment. */
inline int32_t ChooseSegment(AudioReader& reader, int32_t asked, int32_t shortest, int32_t usual) {
  const size_t ahead = reader.Ahead();
  if (ahead < size_t(shortest)) {
    throw Failure(Format("'%s' holds %zu sample%s, and the shortest segment is %d", reader.Name().c_str(), ahead,
                         ahead == 1 ? "" : "s", shortest));
  }
  return asked > 0 ? asked : int32_t(std::min(size_t(usual), std::bit_floor(ahead)));
}

/** take(c, power): the squared magnitudes of half the spectrum of each full segment of channel c under the window, in
 * the order of the segments, which begin a step apart. Gives the count of samples read. Throws UsageError for a sound
 * shorter than a segment, before any work where its file tells. */
template <class Take>
int64_t ForEachSegment(AudioReader& reader, const std::vector<float>& window, size_t step, const Take& take) {
  constexpr size_t kSamplesAtOnce = 1 << 16;
  const size_t len = window.size(), overlapped = len - step;
  const auto require = [&](int64_t samples) {
    if (samples >= int64_t(len)) return;
    throw UsageError(Format("--segment %zu is longer than '%s' with its %lld samples", len, reader.Name().c_str(),
                            static_cast<long long>(samples)));
  };
  if (reader.Length() > 0) require(reader.Length());
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
    if (held < wanted) {
      require(read);
      return read;
    }
    for (auto& channel : samples) std::copy(channel.end() - std::ptrdiff_t(overlapped), channel.end(), channel.begin());
    held = overlapped;
  }
}

}  // namespace tzm

#endif
