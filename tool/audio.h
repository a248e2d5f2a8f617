// Sound files and streams, read and written in blocks of any size. Full scale of integer formats is 1. A block is read
// ahead, and one is written behind, while the caller works.
#ifndef TZM_TOOL_AUDIO_H
#define TZM_TOOL_AUDIO_H

#include <sndfile.h>
#include <sys/types.h>

#include <array>
#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "new_file.h"
#include "options.h"

namespace tzm {

/** Samples of several channels: an array each, of equal lengths. */
using Planes = std::vector<std::vector<float>>;
using WidePlanes = std::vector<std::vector<double>>;

/** Calls work(channels) with 1 and 2 as constants, so that the compiler makes vector code of loops over them. */
template <class Work>
void WithChannels(size_t channels, const Work& work) {
  switch (channels) {
    case 1: return work(std::integral_constant<size_t, 1>());
    case 2: return work(std::integral_constant<size_t, 2>());
    default: return work(channels);
  }
}

struct CloseSound {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, CloseSound>;

/** What the sound library says of a file, null for the last one that it could not open, as a part of a line. */
std::string SoundError(SNDFILE* file);

/** What the user says of samples that no file tells of. */
struct SoundOptions {
  enum class Use { kReads, kWrites, kConverts };

  bool raw = false, bigEndian = false, dither = false;
  int32_t rate = 0, channels = 1;
  size_t format = SIZE_MAX;  // none named

  /** Adds --raw, the rate under its name, --channels, --big-endian, --format where sound is read, --format and --dither
   * where it is written. */
  void Declare(Options& options, Use use, const char* rateName = "rate");
  /** Throws UsageError for options that do not belong together. */
  void Check() const;
  /** The named format as one of libsndfile's SF_FORMAT_ values; 0 if none is named. */
  int SampleFormat() const;

 private:
  Use use_ = Use::kReads;
  const char* rateName_ = "rate";
};

class AudioReader {
 public:
  static constexpr size_t kAhead = 1 << 12;

  /** Opens the file, or standard input for "-", for the channels listed, counted from 1; for all if none is. Throws
   * Failure, or UsageError for a channel that the file does not have. With `twice` it can be read again, from a pipe
   * too. */
  AudioReader(const std::string& path, const SoundOptions& options, std::vector<int32_t> channels, bool twice = false);
  AudioReader(const AudioReader&) = delete;

  /** The file as messages name it. */
  const std::string& Name() const { return shown_; }
  int32_t Rate() const { return info_.samplerate; }
  /** How many the file has, and how many of them are read. */
  int32_t FileChannels() const { return info_.channels; }
  size_t Channels() const { return channels_.size(); }
  /** What the file promises, for progress lines; 0 where it does not tell. */
  int64_t Length() const { return promised_; }
  /** How the file holds a sample, as one of libsndfile's SF_FORMAT_ values. */
  int SampleFormat() const { return info_.format & SF_FORMAT_SUBMASK; }

  /** Reads the next samples of the channels into dst[i][at] and on, up to the arrays' ends; fewer only at the end of
   * the file. Throws Failure for a file without samples, and for a sample (of any channel) that is not finite, or so
   * large that sums of squares could overflow. Warns, at its end, of a file that holds less than it promised. */
  size_t Read(Planes& dst, size_t at = 0);
  /** How many samples come next, or kAhead or more where that is less. */
  size_t Ahead();
  /** Back to the first sample. */
  void Rewind();

 private:
  struct Block {
    std::vector<float> frames;   // of all channels, as the file has them
    std::vector<int16_t> whole;  // the same where it has 16-bit integers
    size_t count = 0, used = 0;
    std::string error;  // what ended the reading early
  };

  void Spool();
  std::string Log() const;
  int64_t Promised() const;
  void ReadBlock(Block& block);
  bool NextBlock();
  void ReadAhead();
  void CheckEnd();

  std::string path_, shown_;
  std::vector<int32_t> channels_;
  SF_INFO info_{};
  SoundFile file_;
  int64_t promised_ = 0, frame_ = 0;  // frame_ is the next one of the file
  size_t blockFrames_;
  Block block_, ahead_;
  bool ended_ = false;
  std::future<void> next_;  // the last member, so that the first to go: its task uses the others
};

/** Two channels side by side, of one file or of two with the same rate. */
class AudioPair {
 public:
  /** As with AudioReader; headerless is what the first path names. Throws Failure for different rates. */
  AudioPair(const std::string& path, int32_t channel, const std::string& otherPath, int32_t otherChannel,
            const SoundOptions& options);

  /** Of the first channel's file. */
  const AudioReader& First() const { return first_; }
  /** Reads into dst[0] and dst[1] from `at` on, zeros where a channel has ended; gives the counts before them. */
  std::array<size_t, 2> Read(Planes& dst, size_t at = 0);

 private:
  AudioReader first_;
  std::optional<AudioReader> second_;
};

/** Writes a sound file in the format that its name's ending says, or a WAV stream for "-". A file stands under its name
 * only when it is complete. */
class AudioWriter {
 public:
  /** Samples are held as the options say; with --raw, or without a word, as in `sourceFormat`, one of libsndfile's
   * SF_FORMAT_ values, or as near to it as the file's format can. Throws Failure, or UsageError for a name or a format
   * that cannot be. */
  AudioWriter(const std::string& path, int32_t rate, int32_t channels, int sourceFormat, const SoundOptions& options);
  AudioWriter(const AudioWriter&) = delete;

  /** Writes the samples [first, first + count) of every channel. Integer formats round to nearest, ties to even, and
   * saturate. The arrays go to the writer, and others of any length come back. Throws Failure, also on account of an
   * earlier call. */
  template <class T>
  void Write(std::vector<std::vector<T>>& src, size_t first, size_t count);
  /** Completes the file and tells what was written. */
  void Finish();

 private:
  template <class T>
  void WriteBlock(size_t first, size_t count);
  template <class Out, class T>
  bool WriteAs(const std::vector<std::vector<T>>& src, size_t first, size_t count);
  [[noreturn]] void Fail(const std::string& reason) const;

  std::string path_;
  std::optional<NewFile> place_;
  SF_INFO info_{};
  SoundFile file_;
  int bits_ = 0;  // of an integer; 0: floating
  bool dither_;
  int64_t written_ = 0, saturated_ = 0;
  sf_count_t streamed_ = 0;  // bytes on standard output after the header
  off_t header_ = -1;        // where that header is, if it can be written again
  std::tuple<Planes, WidePlanes> taken_;  // what is being written
  std::tuple<std::vector<int16_t>, std::vector<int32_t>, std::vector<float>, std::vector<double>> frames_;
  std::future<void> pending_;  // the last member, as in the reader
};

}  // namespace tzm

#endif
