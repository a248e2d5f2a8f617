// Sound files through libsndfile.
#include "audio.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "command.h"
#include "text.h"

namespace tzm {
namespace {

constexpr size_t kBlockFrames = 1 << 14;

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
    throw UsageError(Format("--channel %d: '%s' has %d", channel, path.c_str(), info_.channels));
  }
  frames_.resize(kBlockFrames * size_t(info_.channels));
}

size_t AudioReader::Read(std::span<float> dst) {
  size_t done = 0;
  while (done < dst.size()) {
    const size_t wanted = std::min(kBlockFrames, dst.size() - done);
    const auto got = size_t(sf_readf_float(file_.get(), frames_.data(), sf_count_t(wanted)));
    for (size_t i = 0; i < got; ++i) dst[done + i] = frames_[i * size_t(info_.channels) + size_t(channel_ - 1)];
    done += got;
    if (got < wanted) {
      if (sf_error(file_.get())) throw Failure(Format("reading '%s': %s", path_.c_str(), sf_strerror(file_.get())));
      break;
    }
  }
  return done;
}

}  // namespace tzm
