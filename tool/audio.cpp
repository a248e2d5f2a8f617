// Sound files through libsndfile.
#include "audio.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "command.h"
#include "text.h"

namespace tzm {
namespace {

constexpr size_t kBlockFrames = 1 << 14;
constexpr float kLargestSample = 1e10f;  // 200 dB beyond full scale, and integers that were never scaled

// Why the system will not let us read the file; empty when it will. The sound library does not tell.
std::string SystemError(const std::string& path) {
  std::error_code ignored;  // access tells it as well
  if (std::filesystem::is_directory(path, ignored)) return "it is a folder";
  return access(path.c_str(), R_OK) == 0 ? "" : std::strerror(errno);
}

}  // namespace

AudioReader::AudioReader(const std::string& path, int32_t channel) : path_(path), channel_(channel) {
  const std::string reason = SystemError(path);
  if (!reason.empty()) throw Failure(Format("cannot read '%s': %s", path.c_str(), reason.c_str()));
  file_.reset(sf_open(path.c_str(), SFM_READ, &info_));
  if (!file_) throw Failure(Format("'%s' is no sound file that can be read: %s", path.c_str(), sf_strerror(nullptr)));
  if (channel > info_.channels) {
    throw UsageError(Format("'%s' has %d channel%s and no channel %d", path.c_str(), info_.channels,
                            info_.channels == 1 ? "" : "s", channel));
  }
  frames_.resize(kBlockFrames * size_t(info_.channels));
}

void AudioReader::RequireSamples() const {
  if (Length() == 0) throw Failure(Format("'%s' holds no samples", path_.c_str()));
}

void AudioReader::CheckFrames(size_t count) {
  const auto end = frames_.begin() + std::ptrdiff_t(count * size_t(info_.channels));
  const auto bad = std::find_if(frames_.begin(), end, [](float v) { return !(std::abs(v) <= kLargestSample); });
  if (bad != end) {
    const int64_t at = frame_ + (bad - frames_.begin()) / info_.channels;
    throw Failure(Format("'%s' holds a sample that is not finite, or beyond %g, at %.4f s", path_.c_str(),
                         double(kLargestSample), double(at) / info_.samplerate));
  }
  frame_ += int64_t(count);
}

// Calls take(at, count) for every block: frames_ holds `count` frames, which follow the `at` before them.
template <class Take>
size_t AudioReader::ReadFrames(size_t count, const Take& take) {
  size_t done = 0;
  while (done < count) {
    const size_t wanted = std::min(kBlockFrames, count - done);
    const auto got = size_t(sf_readf_float(file_.get(), frames_.data(), sf_count_t(wanted)));
    CheckFrames(got);
    take(done, got);
    done += got;
    if (got < wanted) {
      if (sf_error(file_.get())) throw Failure(Format("reading '%s': %s", path_.c_str(), sf_strerror(file_.get())));
      break;
    }
  }
  return done;
}

size_t AudioReader::Read(std::span<float> dst) {
  const auto channels = size_t(info_.channels), from = size_t(channel_ - 1);
  return ReadFrames(dst.size(), [&](size_t at, size_t count) {
    for (size_t i = 0; i < count; ++i) dst[at + i] = frames_[i * channels + from];
  });
}

size_t AudioReader::Read(Planes& dst) {
  return ReadFrames(dst[0].size(), [&](size_t at, size_t count) {
    for (size_t c = 0; c < dst.size(); ++c) {
      for (size_t i = 0; i < count; ++i) dst[c][at + i] = frames_[i * dst.size() + c];
    }
  });
}

AudioWriter::AudioWriter(const std::string& path, int32_t rate, int32_t channels, int format)
    : path_(path), place_(path) {
  info_.samplerate = rate;
  info_.channels = channels;
  info_.format = SF_FORMAT_RF64 | format;  // WAV without its limit of 4 GB; below that it becomes WAV
  if (!sf_format_check(&info_)) info_.format = SF_FORMAT_RF64 | SF_FORMAT_FLOAT;
  const int held = info_.format & SF_FORMAT_SUBMASK;
  integer_ = held != SF_FORMAT_FLOAT && held != SF_FORMAT_DOUBLE;
  file_.reset(sf_open(place_.Part().c_str(), SFM_WRITE, &info_));
  if (!file_) place_.Fail(sf_strerror(nullptr));
  sf_command(file_.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);
  sf_command(file_.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
}

void AudioWriter::Write(const Planes& src, size_t first, size_t count) {
  frames_.resize(count * src.size());
  for (size_t c = 0; c < src.size(); ++c) {
    for (size_t i = 0; i < count; ++i) {
      const float value = src[c][first + i];
      if (!std::isfinite(value)) place_.Fail("the result is beyond what a sample can hold");
      frames_[i * src.size() + c] = value;
      if (integer_ && !(std::abs(value) <= 1)) ++saturated_;
    }
  }
  if (sf_writef_float(file_.get(), frames_.data(), sf_count_t(count)) != sf_count_t(count)) {
    place_.Fail(sf_strerror(file_.get()));
  }
  written_ += int64_t(count);
}

void AudioWriter::Finish() {
  if (const int error = sf_close(file_.release())) place_.Fail(sf_error_number(error));
  place_.Complete();
  std::printf("%s: %d Hz, %d channel%s, %.2f s\n", CleanText(path_).c_str(), info_.samplerate, info_.channels,
              info_.channels == 1 ? "" : "s", double(written_) / info_.samplerate);
  if (saturated_ > 0) {
    std::printf("%lld samples were beyond full scale and are saturated.\n", static_cast<long long>(saturated_));
  }
}

}  // namespace tzm
