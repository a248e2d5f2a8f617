// Sound files, read as binary32 samples in blocks of any size. Full scale of integer formats is 1.
#ifndef TZM_TOOL_AUDIO_H
#define TZM_TOOL_AUDIO_H

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace tzm {

class AudioReader {
 public:
  /** Opens the file for one of its channels, counted from 1. Throws Failure, or UsageError for a channel that the
   * file does not have. */
  AudioReader(const std::string& path, int32_t channel);

  int32_t Rate() const { return info_.samplerate; }
  int32_t Channels() const { return info_.channels; }
  int64_t Length() const { return info_.frames; }

  /** Reads the next samples of the channel; fewer than asked for only at the end of the file. */
  size_t Read(std::span<float> dst);

 private:
  struct Close {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };

  std::string path_;
  int32_t channel_;
  SF_INFO info_{};
  std::unique_ptr<SNDFILE, Close> file_;
  std::vector<float> frames_;  // one block of all channels
};

}  // namespace tzm

#endif
