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

/** How many threads work at once. */
inline size_t Processors() {
  static const size_t processors = std::max(1u, std::thread::hardware_concurrency());  // the answer takes a file's time
  return processors;
}

/** Blocks of each channel to work on at once: enough for every processor to have one, and for threads to be begun
 * seldom. */
inline size_t BlocksAtOnce(size_t channels) {
  constexpr size_t kLeast = 4;
  return std::max(kLeast, (Processors() + channels - 1) / channels);
}

/** Calls work(c) for every c below `count`, on all processors. The work on one must leave that on others alone. */
template <class Work>
void InParallel(size_t count, const Work& work) {
  const size_t threads = std::min(count, Processors());
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

/** Channels that are read and made, the samples before a block that a source keeps, and how many blocks are read and
 * worked on together. */
struct Shape {
  size_t sources, results, past = 0, atOnce = 1;
};

/** read(source, at) fills the channels from sample `at` on and gives the count, fewer than asked for only at the end.
 * process(c, source, at, dst, len) makes `len` results of channel c, a block at most, of the samples from
 * source[c][past + at] on; they go to the writer. The blocks are the same however many of them are worked on together.
 * `length` is for the progress line. */
template <class Read, class Process>
void Stream(Shape shape, int64_t length, Trim trim, AudioWriter& writer, const Read& read, const Process& process) {
  const size_t room = shape.atOnce * kStreamBlock, past = shape.past;
  Planes source(shape.sources, std::vector<float>(past + room)), result(shape.results);
  Progress progress("working", length);
  int64_t done = 0;
  for (bool more = true; more || trim.tail > 0;) {
    const size_t count = more ? read(source, past) : 0;
    more = count == room;
    const size_t zeros = more ? 0 : std::min(room - count, trim.tail);
    for (auto& channel : source) std::fill_n(channel.begin() + std::ptrdiff_t(past + count), zeros, 0.0f);
    const size_t len = count + zeros, dropped = std::min(len, trim.drop);
    const size_t blocks = (len + kStreamBlock - 1) / kStreamBlock;
    for (auto& channel : result) channel.resize(room);
    InParallel(blocks * shape.results, [&](size_t i) {
      const size_t c = i / blocks, at = i % blocks * kStreamBlock;
      process(c, source, at, result[c].data() + at, int32_t(std::min(kStreamBlock, len - at)));
    });
    writer.Write(result, dropped, len - dropped);
    for (auto& channel : source) std::copy_n(channel.begin() + std::ptrdiff_t(len), past, channel.begin());
    trim.drop -= dropped;
    trim.tail -= zeros;
    progress.Show(done += int64_t(count));
  }
}

}  // namespace tzm

#endif
