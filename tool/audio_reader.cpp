// Sound files and streams, read through libsndfile.
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <numeric>
#include <span>
#include <system_error>

#include "audio.h"
#include "command.h"
#include "text.h"

namespace tzm {
namespace {

constexpr float kLargestSample = 1e10f;  // 200 dB beyond full scale, and integers that were never scaled
constexpr int64_t kUnknown = int64_t{1} << 40;  // frames; libsndfile gives more where a file does not tell

// Why the system will not let us read the file; empty when it will. The sound library does not tell.
std::string SystemError(const std::string& path) {
  std::error_code ignored;  // access tells it as well
  if (std::filesystem::is_directory(path, ignored)) return "it is a folder";
  return access(path.c_str(), R_OK) == 0 ? "" : std::strerror(errno);
}

// What a stream whose length was not known when it began has in place of it: all ones, or a little below a power of
// two so that the sizes around it do not overflow.
bool IsPlaceholder(int64_t bytes) {
  constexpr int64_t kSlack = 1 << 12;
  for (const int64_t top : {int64_t{INT32_MAX}, int64_t{UINT32_MAX}, INT64_MAX}) {
    if (bytes <= top && bytes > top - kSlack) return true;
  }
  return false;
}

// The bytes of a sample of every channel; 0 where samples are coded together.
int64_t FrameBytes(const SF_INFO& info) {
  const auto all = int64_t(info.channels);
  switch (info.format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8: case SF_FORMAT_PCM_U8: case SF_FORMAT_ULAW: case SF_FORMAT_ALAW: return all;
    case SF_FORMAT_PCM_16: return 2 * all;
    case SF_FORMAT_PCM_24: return 3 * all;
    case SF_FORMAT_PCM_32: case SF_FORMAT_FLOAT: return 4 * all;
    case SF_FORMAT_DOUBLE: return 8 * all;
    default: return 0;
  }
}

// One of the channels, times the scale.
template <class T>
void TakeChannel(const T* src, size_t channels, size_t count, float scale, float* dst) {
  WithChannels(channels, [=](auto all) {
    for (size_t i = 0; i < count; ++i) dst[i] = float(src[i * all]) * scale;
  });
}

}  // namespace

std::string SoundError(SNDFILE* file) {
  std::string said = sf_strerror(file);
  if (said.starts_with("Error : ")) said.erase(0, 8);
  if (said.ends_with('.')) said.pop_back();
  return said;
}

AudioReader::AudioReader(const std::string& path, const SoundOptions& options, std::vector<int32_t> channels,
                         bool twice)
    : path_(path), shown_(ShownName(path)), channels_(std::move(channels)) {
  if (options.raw) {
    info_.format = SF_FORMAT_RAW | (options.bigEndian ? SF_ENDIAN_BIG : SF_ENDIAN_LITTLE) |
                   (options.SampleFormat() ? options.SampleFormat() : SF_FORMAT_PCM_16);
    info_.samplerate = options.rate;
    info_.channels = options.channels;
  }
  if (IsStandard(path)) {
    if (twice && lseek(STDIN_FILENO, 0, SEEK_CUR) == -1) Spool();
    file_.reset(sf_open_fd(STDIN_FILENO, SFM_READ, &info_, SF_FALSE));
  } else {
    const std::string reason = SystemError(path);
    if (!reason.empty()) throw Failure(Format("cannot read '%s': %s", path.c_str(), reason.c_str()));
    file_.reset(sf_open(path.c_str(), SFM_READ, &info_));
  }
  if (!file_) {
    const char* const hint = IsStandard(path) ? " (from a pipe WAV, AIFF, AU and Ogg can be read)"
                                                : " (--raw reads samples without a header)";
    throw Failure(Format("'%s' is no sound file that can be read: %s%s", shown_.c_str(), SoundError(nullptr).c_str(),
                         hint));
  }
  for (const int32_t channel : channels_) {
    if (channel > info_.channels) {
      throw UsageError(Format("'%s' has %d channel%s and no channel %d", shown_.c_str(), info_.channels,
                              info_.channels == 1 ? "" : "s", channel));
    }
  }
  if (channels_.empty()) {
    channels_.resize(size_t(info_.channels));
    std::iota(channels_.begin(), channels_.end(), 1);
  }
  promised_ = Promised();
  blockFrames_ = std::clamp<size_t>((size_t{1} << 18) / size_t(info_.channels), kAhead, 1 << 16);
}

// Standard input becomes a file without a name.
void AudioReader::Spool() {
  std::FILE* const copy = std::tmpfile();
  std::vector<char> bytes(1 << 16);
  bool good = copy != nullptr;
  for (ssize_t got = 0; good && (got = read(STDIN_FILENO, bytes.data(), bytes.size())) != 0;) {
    good = got > 0 && std::fwrite(bytes.data(), 1, size_t(got), copy) == size_t(got);
  }
  good = good && std::fflush(copy) == 0 && dup2(fileno(copy), STDIN_FILENO) >= 0 &&
         lseek(STDIN_FILENO, 0, SEEK_SET) == 0;
  const int error = errno;
  if (copy) std::fclose(copy);
  if (!good) throw Failure(Format("keeping standard input for a second reading: %s", std::strerror(error)));
}

// What libsndfile noted of the file: its headers' numbers, and what it found wrong with them.
std::string AudioReader::Log() const {
  std::string log(1 << 14, '\0');
  log.resize(size_t(sf_command(file_.get(), SFC_GET_LOG_INFO, log.data(), int(log.size()))));
  return log;
}

// How many frames the header tells of, even if the file ends before; 0 where it does not. libsndfile cuts its own count
// to what is there, but its log has the bytes of both: "data : 576000 (should be 287978)". For W64 and RF64 the second
// of them stands with the whole file only.
int64_t AudioReader::Promised() const {
  const int64_t frames = info_.frames < kUnknown ? int64_t(info_.frames) : 0;
  const int64_t width = FrameBytes(info_), wave64 = (info_.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_W64 ? 24 : 0;
  const std::string log = Log();
  struct Entry {
    const char* name;
    int64_t more;  // bytes that are counted but hold no samples
  };
  for (const auto& [name, more] :
       {Entry{"Data size :", 0}, Entry{"data :", wave64}, Entry{"SSND :", 8}, Entry{"Data Size   :", 0}}) {
    const size_t at = log.find(name);
    if (at == std::string::npos) continue;
    char* rest;
    const int64_t promised = std::max(0LL, std::strtoll(log.data() + at + std::strlen(name), &rest, 10));
    if (IsPlaceholder(promised)) return 0;
    int64_t there = 0;
    const bool told = std::sscanf(rest, " (should be %" SCNd64, &there) == 1;
    if (!told && (IsStandard(path_) || log.rfind("(should be", at) != std::string::npos)) there = more + frames * width;
    there = std::max(there, int64_t{0});
    if (width > 0 && (there - more) / width == frames) return std::max(frames, (promised - more) / width);
    if (there <= more) break;
    const double all = std::round(double(promised - more) / double(there - more) * double(frames));
    return std::max(frames, int64_t(std::min(all, 0x1p62)));
  }
  return frames;
}

// The next block, which the task that reads ahead makes: what it touches, nothing else does meanwhile.
void AudioReader::ReadBlock(Block& block) {
  const auto all = size_t(info_.channels), len = blockFrames_ * all;
  sf_count_t got;
  if (SampleFormat() == SF_FORMAT_PCM_16) {
    block.whole.resize(len);
    got = sf_readf_short(file_.get(), block.whole.data(), sf_count_t(blockFrames_));
  } else {
    block.frames.resize(len);
    got = sf_readf_float(file_.get(), block.frames.data(), sf_count_t(blockFrames_));
  }
  block.count = size_t(std::max<sf_count_t>(0, got));
  block.used = 0;
  block.error.clear();
  if (block.count < blockFrames_ && sf_error(file_.get())) block.error = SoundError(file_.get());
  const auto isBad = [](float v) {  // NaN has more bits than infinity, and that more than any number
    return (std::bit_cast<int32_t>(v) & INT32_MAX) > std::bit_cast<int32_t>(kLargestSample);
  };
  uint32_t bad = 0;
  const std::span<const float> samples(block.frames.data(), std::min(block.frames.size(), block.count * all));
  for (const float v : samples) bad |= isBad(v);
  if (bad) {
    const auto first = std::find_if(samples.begin(), samples.end(), isBad);
    const int64_t at = frame_ + (first - samples.begin()) / std::ptrdiff_t(all);
    throw Failure(Format("'%s' holds a sample that is not finite, or beyond %g, at %.4f s", shown_.c_str(),
                         double(kLargestSample), double(at) / info_.samplerate));
  }
  frame_ += int64_t(block.count);
}

void AudioReader::ReadAhead() {
  next_ = std::async(std::launch::async, [this] { ReadBlock(ahead_); });
}

// False at the end.
bool AudioReader::NextBlock() {
  if (ended_) return false;
  if (!next_.valid()) ReadAhead();
  next_.get();
  std::swap(block_, ahead_);
  ended_ = block_.count < blockFrames_;
  if (ended_) {
    CheckEnd();
  } else {
    ReadAhead();
  }
  return true;
}

size_t AudioReader::Read(Planes& dst, size_t at) {
  const size_t wanted = dst[0].size() - at;
  size_t done = 0;
  while (done < wanted) {
    if (block_.used == block_.count) {
      if (NextBlock()) continue;
      break;
    }
    const size_t count = std::min(wanted - done, block_.count - block_.used), all = size_t(info_.channels);
    for (size_t c = 0; c < dst.size(); ++c) {
      float* const to = &dst[c][at + done];
      const size_t from = block_.used * all + size_t(channels_[c]) - 1;
      if (block_.frames.empty()) {
        TakeChannel(&block_.whole[from], all, count, 0x1p-15f, to);
      } else {
        TakeChannel(&block_.frames[from], all, count, 1, to);
      }
    }
    block_.used += count;
    done += count;
  }
  return done;
}

size_t AudioReader::Ahead() {
  if (block_.used == block_.count) NextBlock();
  return block_.count - block_.used;
}

void AudioReader::CheckEnd() {
  if (frame_ == 0 && block_.error.empty()) throw Failure(Format("'%s' holds no samples", shown_.c_str()));
  // An Ogg file that is whole tells its length; of a stream, as of VOC, only the log tells whether its end came.
  const std::string log = Log();
  const bool open = log.find(promised_ == 0 ? "without an End-Of-Stream" : "a truncated file") != std::string::npos;
  if (frame_ < promised_) {
    Warn(Format("'%s' is cut off: it holds %lld of the %lld samples that it promises%s", shown_.c_str(),
                static_cast<long long>(frame_), static_cast<long long>(promised_),
                block_.error.empty() ? "" : (" (" + block_.error + ")").c_str()));
    promised_ = frame_;
  } else if (open) {
    Warn(Format("'%s' is cut off: its end is missing after %lld samples", shown_.c_str(),
                static_cast<long long>(frame_)));
  } else if (!block_.error.empty()) {
    throw Failure(Format("reading '%s': %s", shown_.c_str(), block_.error.c_str()));
  }
}

void AudioReader::Rewind() {
  if (next_.valid()) next_.get();
  if (sf_seek(file_.get(), 0, SEEK_SET) != 0) {
    throw Failure(Format("reading '%s' again: %s", shown_.c_str(), SoundError(file_.get()).c_str()));
  }
  frame_ = 0;
  block_ = {};
  ended_ = false;
}

AudioPair::AudioPair(const std::string& path, int32_t channel, const std::string& otherPath, int32_t otherChannel,
                     const SoundOptions& options)
    : first_(path, options, path == otherPath ? std::vector{channel, otherChannel} : std::vector{channel}) {
  if (path == otherPath) return;
  second_.emplace(otherPath, SoundOptions{}, std::vector{otherChannel});
  if (first_.Rate() != second_->Rate()) {
    throw Failure(Format("'%s' has %d Hz, the reference %d: make them equal with tzm resample", ShownName(path).c_str(),
                         first_.Rate(), second_->Rate()));
  }
}

std::array<size_t, 2> AudioPair::Read(Planes& dst, size_t at) {
  std::array<size_t, 2> counts;
  if (second_) {
    Planes one{std::move(dst[0])}, other{std::move(dst[1])};
    counts = {first_.Read(one, at), second_->Read(other, at)};
    dst = {std::move(one[0]), std::move(other[0])};
  } else {
    counts.fill(first_.Read(dst, at));
  }
  for (size_t c : {0, 1}) std::fill(dst[c].begin() + std::ptrdiff_t(at + counts[c]), dst[c].end(), 0.0f);
  return counts;
}

}  // namespace tzm
