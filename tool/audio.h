// Sound files, read and written as binary32 samples in blocks of any size. Full scale of integer formats is 1.
#ifndef TZM_TOOL_AUDIO_H
#define TZM_TOOL_AUDIO_H

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "new_file.h"

namespace tzm {

/** Samples of several channels: an array each, of equal lengths. */
using Planes = std::vector<std::vector<float>>;

struct CloseSound {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, CloseSound>;

class AudioReader {
 public:
  /** Opens the file for one of its channels, counted from 1. Throws Failure, or UsageError for a channel that the
   * file does not have. */
  AudioReader(const std::string& path, int32_t channel);
  /** Opens the file for all of its channels. */
  explicit AudioReader(const std::string& path) : AudioReader(path, 1) {}

  int32_t Rate() const { return info_.samplerate; }
  int32_t Channels() const { return info_.channels; }
  int64_t Length() const { return info_.frames; }
  /** Throws Failure for a file of length 0. */
  void RequireSamples() const;
  /** How the file holds a sample, as one of libsndfile's SF_FORMAT_ values. */
  int SampleFormat() const { return info_.format & SF_FORMAT_SUBMASK; }

  /** Reads the next samples of the channel; fewer than asked for only at the end of the file. Throws Failure, also
   * for a sample (of any channel) that is not finite, or so large that sums of squares could overflow. */
  size_t Read(std::span<float> dst);
  /** The same of every channel, as many as dst[0] has room for. `dst` has Channels() arrays. */
  size_t Read(Planes& dst);

 private:
  void CheckFrames(size_t count);
  template <class Take>
  size_t ReadFrames(size_t count, const Take& take);

  std::string path_;
  int32_t channel_;
  SF_INFO info_{};
  SoundFile file_;
  int64_t frame_ = 0;  // the next one
  std::vector<float> frames_;  // one block of all channels
};

/** Writes a WAV file, which stands under its name only when it is complete. */
class AudioWriter {
 public:
  /** `format` is one of libsndfile's SF_FORMAT_ values for a sample; one that WAV cannot hold becomes binary32. */
  AudioWriter(const std::string& path, int32_t rate, int32_t channels, int format);
  /** Writes the samples [first, first + count) of every channel. Integer formats saturate. */
  void Write(const Planes& src, size_t first, size_t count);
  /** Completes the file and prints what was written. */
  void Finish();

 private:
  std::string path_;
  NewFile place_;
  SF_INFO info_{};
  SoundFile file_;
  std::vector<float> frames_;
  int64_t written_ = 0, saturated_ = 0;
  bool integer_;
};

}  // namespace tzm

#endif
