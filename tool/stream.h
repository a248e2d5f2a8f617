// A sound that goes through an operation with memory in blocks, its channels on all processors.
#ifndef TZM_TOOL_STREAM_H
#define TZM_TOOL_STREAM_H

#include <algorithm>
#include <future>
#include <thread>

#include "audio.h"
#include "progress.h"

namespace tzm {

inline constexpr size_t kStreamBlock = 1 << 16;

/** Channels with room for a block. */
inline Planes StreamBlocks(size_t channels) { return Planes(channels, std::vector<float>(kStreamBlock)); }

/** Calls work(c) for every c below `count`, on all processors. The work on one must leave that on others alone. */
template <class Work>
void ForEachChannel(size_t count, const Work& work) {
  const size_t threads = std::min<size_t>(count, std::max(1u, std::thread::hardware_concurrency()));
  const auto share = [&](size_t first) {
    for (size_t c = first; c < count; c += threads) work(c);
  };
  std::vector<std::future<void>> others;
  for (size_t t = 1; t < threads; ++t) others.push_back(std::async(std::launch::async, share, t));
  if (count > 0) share(0);
  for (auto& other : others) other.get();
}

/** What of an operation's results is written: all but the first `drop`, and those of `tail` zeros after the end. An
 * operation that delays by n samples gives a sound in its old place and length with both n. */
struct Trim {
  size_t drop, tail;
};

/** read(source) fills the blocks and gives the count of samples, fewer than a block only at the end;
 * process(c, source, result, len) makes `len` results of channel c, which go to the writer. `length` is for the
 * progress line. */
template <class Read, class Process>
void Stream(size_t sources, size_t results, int64_t length, Trim trim, AudioWriter& writer, const Read& read,
            const Process& process) {
  Planes source = StreamBlocks(sources), result = StreamBlocks(results);
  Progress progress("working", length);
  int64_t done = 0;
  for (bool more = true; more || trim.tail > 0;) {
    const size_t count = more ? read(source) : 0;
    more = count == kStreamBlock;
    const size_t zeros = more ? 0 : std::min(kStreamBlock - count, trim.tail);
    for (auto& channel : source) std::fill_n(channel.begin() + std::ptrdiff_t(count), zeros, 0.0f);
    const size_t len = count + zeros, dropped = std::min(len, trim.drop);
    if (len > 0) ForEachChannel(results, [&](size_t c) { process(c, source, result[c], int32_t(len)); });
    writer.Write(result, dropped, len - dropped);
    trim.drop -= dropped;
    trim.tail -= zeros;
    progress.Show(done += int64_t(count));
  }
}

}  // namespace tzm

#endif
