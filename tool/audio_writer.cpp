// Sound files and streams, written through libsndfile.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <span>
#include <type_traits>

#include "audio.h"
#include "command.h"
#include "text.h"

namespace tzm {
namespace {

constexpr std::array<std::string_view, 9> kFormatNames{"8", "u8", "16", "24", "32", "float", "double", "ulaw", "alaw"};
constexpr std::array<int, 9> kFormats{SF_FORMAT_PCM_S8, SF_FORMAT_PCM_U8, SF_FORMAT_PCM_16,
                                      SF_FORMAT_PCM_24, SF_FORMAT_PCM_32, SF_FORMAT_FLOAT,
                                      SF_FORMAT_DOUBLE, SF_FORMAT_ULAW,   SF_FORMAT_ALAW};

// What a file's ending says, and the one way in which some formats hold samples.
struct Container {
  std::string_view ending;
  int format, samples = 0;
};
constexpr Container kContainers[] = {{".wav", SF_FORMAT_RF64},  // WAV without its limit of 4 GB; below that it is WAV
                                     {".w64", SF_FORMAT_W64},
                                     {".aiff", SF_FORMAT_AIFF},
                                     {".aif", SF_FORMAT_AIFF},
                                     {".au", SF_FORMAT_AU},
                                     {".snd", SF_FORMAT_AU},
                                     {".caf", SF_FORMAT_CAF},
                                     {".raw", SF_FORMAT_RAW | SF_ENDIAN_LITTLE},
                                     {".flac", SF_FORMAT_FLAC},
                                     {".ogg", SF_FORMAT_OGG, SF_FORMAT_VORBIS},
                                     {".oga", SF_FORMAT_OGG, SF_FORMAT_VORBIS},
                                     {".opus", SF_FORMAT_OGG, SF_FORMAT_OPUS},
                                     {".mp3", SF_FORMAT_MPEG, SF_FORMAT_MPEG_LAYER_III}};

// The bits of an integer that a sample becomes; 0 where it stays as it is. The logarithmic formats cut 14 and 13 bits
// down to 8, the other small ones take 16.
int Bits(int format) {
  switch (format) {
    case SF_FORMAT_FLOAT: case SF_FORMAT_DOUBLE: case SF_FORMAT_VORBIS: case SF_FORMAT_OPUS:
    case SF_FORMAT_MPEG_LAYER_III: return 0;
    case SF_FORMAT_PCM_S8: case SF_FORMAT_PCM_U8: return 8;
    case SF_FORMAT_ALAW: return 13;
    case SF_FORMAT_ULAW: return 14;
    case SF_FORMAT_PCM_24: return 24;
    case SF_FORMAT_PCM_32: return 32;
    default: return 16;
  }
}

constexpr sf_count_t kLongestStream = UINT32_MAX - 36;  // bytes that the header of WAV can tell

// Where on standard output a header goes that can be written again once the length is known: -1 for a pipe.
off_t HeaderPlace() {
  struct stat about;
  const bool file = fstat(STDOUT_FILENO, &about) == 0 && S_ISREG(about.st_mode);
  if (!file || (fcntl(STDOUT_FILENO, F_GETFL) & O_APPEND) || std::fflush(stdout) != 0) return -1;
  return lseek(STDOUT_FILENO, 0, SEEK_CUR);
}

// Of uniform numbers the difference of two, in units of the last place: noise between -1 and 1 that makes the error of
// rounding independent of the sound. The same for a sample however the sound comes in blocks.
double Dither(uint64_t channel, uint64_t at) {
  uint64_t x = (at << 10 ^ channel) * 0x9E3779B97F4A7C15u;
  x = (x ^ x >> 30) * 0xBF58476D1CE4E5B9u;
  x = (x ^ x >> 27) * 0x94D049BB133111EBu;
  x ^= x >> 31;
  return (double(x >> 32) - double(x & 0xFFFFFFFFu)) * 0x1p-32;
}

// To nearest, ties to even, for magnitudes that leave two bits of the significand.
template <class Real>
Real Rounded(Real value) {
  constexpr Real kWhole = Real(1.5) / std::numeric_limits<Real>::epsilon();
  return value + kWhole - kWhole;
}

// The samples of all channels in turn, each as convert(value, channel, its number) makes it.
template <class Out, class T, class Convert>
void Interleave(const std::vector<std::vector<T>>& src, size_t first, size_t count, Out* dst, const Convert& convert) {
  std::vector<const T*> from;
  for (const auto& channel : src) from.push_back(channel.data() + first);
  WithChannels(src.size(), [&](auto channels) {
    for (size_t i = 0; i < count; ++i) {
      for (size_t c = 0; c < channels; ++c) dst[i * channels + c] = convert(from[c][i], c, i);
    }
  });
}

sf_count_t WriteFrames(SNDFILE* file, const std::vector<int16_t>& frames, sf_count_t count) {
  return sf_writef_short(file, frames.data(), count);
}
sf_count_t WriteFrames(SNDFILE* file, const std::vector<int32_t>& frames, sf_count_t count) {
  return sf_writef_int(file, frames.data(), count);
}
sf_count_t WriteFrames(SNDFILE* file, const std::vector<float>& frames, sf_count_t count) {
  return sf_writef_float(file, frames.data(), count);
}
sf_count_t WriteFrames(SNDFILE* file, const std::vector<double>& frames, sf_count_t count) {
  return sf_writef_double(file, frames.data(), count);
}

// By values, unlike std::clamp, so that the compiler makes vector code of it.
template <class Real>
Real Bounded(Real value, Real low, Real high) {
  value = value < low ? low : value;
  return value > high ? high : value;
}

// What the name's ending says. A stream is WAV.
const Container& FindContainer(const std::string& path) {
  std::string ending = IsStandard(path) ? ".wav" : std::filesystem::path(path).extension().string();
  for (char& c : ending) c = char(std::tolower(static_cast<unsigned char>(c)));
  std::string known;
  for (const Container& c : kContainers) {
    if (c.ending == ending) return c;
    known.append(" ").append(c.ending);
  }
  throw UsageError(Format("the ending of '%s' tells no format that can be written: choose one of%s", path.c_str(),
                          known.c_str()));
}

// The format that was asked for, or else the first one beside the source's that the file can hold; 0 if none is.
int ChooseFormat(const Container& container, SF_INFO info, int source, int asked) {
  if (container.samples != 0 && asked != 0) {
    throw UsageError(Format("%s files have one way to hold samples: leave out --format",
                            std::string(container.ending).c_str()));
  }
  const auto chosen = [&](std::initializer_list<int> formats) {
    for (const int samples : formats) {
      info.format = container.format | samples;
      if (samples != 0 && sf_format_check(&info)) return info.format;
    }
    return 0;
  };
  if (container.samples != 0) return chosen({container.samples});
  const int wanted = asked ? asked : source;
  const int eight = Bits(wanted) == 8 ? SF_FORMAT_PCM_U8 + SF_FORMAT_PCM_S8 - wanted : 0;  // with a sign or without
  return asked ? chosen({wanted, eight}) : chosen({wanted, eight, SF_FORMAT_FLOAT, SF_FORMAT_PCM_24});
}

// Standard output for libsndfile: it goes forward only.
sf_count_t StreamPosition(void* written) { return *static_cast<sf_count_t*>(written); }
sf_count_t StreamSeek(sf_count_t, int, void* written) { return StreamPosition(written); }
sf_count_t StreamRead(void*, sf_count_t, void*) { return 0; }
sf_count_t StreamWrite(const void* bytes, sf_count_t count, void* written) {
  const size_t done = std::fwrite(bytes, 1, size_t(count), stdout);
  *static_cast<sf_count_t*>(written) += sf_count_t(done);
  return sf_count_t(done);
}

// The header of a WAV stream of which `bytes` of samples follow; all ones say that nobody knows.
std::string StreamHeader(const SF_INFO& info, uint32_t bytes) {
  const int samples = info.format & SF_FORMAT_SUBMASK;
  const bool logarithmic = samples == SF_FORMAT_ULAW || samples == SF_FORMAT_ALAW;
  const int bits = logarithmic ? 8 : samples == SF_FORMAT_DOUBLE ? 64 : samples == SF_FORMAT_FLOAT ? 32 : Bits(samples);
  const int tag = samples == SF_FORMAT_ALAW ? 6 : samples == SF_FORMAT_ULAW ? 7 : Bits(samples) == 0 ? 3 : 1;
  const auto rate = uint32_t(info.samplerate), channels = uint32_t(info.channels);
  const uint32_t frame = channels * uint32_t(bits) / 8;
  std::string header;
  const auto add = [&](uint32_t number, int size) {
    for (int i = 0; i < size; ++i) header += char(number >> 8 * i & 0xFF);
  };
  header += "RIFF";
  add(bytes == UINT32_MAX ? bytes : bytes + 36, 4);
  header += "WAVEfmt ";
  add(16, 4);
  add(uint32_t(tag), 2);
  add(channels, 2);
  add(rate, 4);
  add(rate * frame, 4);
  add(frame, 2);
  add(uint32_t(bits), 2);
  header += "data";
  add(bytes, 4);
  return header;
}

}  // namespace

void SoundOptions::Declare(Options& options, Use use, const char* rateName) {
  use_ = use;
  rateName_ = rateName;
  if (use != Use::kWrites) {
    options.Flag("raw", 0, "FILE is samples without a header", raw);
    options.Number(rateName, 0, "with --raw: sampling rate in Hz", rate, 1, kHighestRate);
    options.Number("channels", 0, "with --raw: how many channels", channels, 1, kMostChannels);
    options.Flag("big-endian", 0, "with --raw: high bytes come first", bigEndian);
  }
  options.Choice("format", 0, kFormatNames,
                 use == Use::kReads    ? "with --raw: samples (16 by default)"
                 : use == Use::kWrites ? "samples of OUTPUT"
                                       : "samples of OUTPUT (FILE's by default); with --raw of FILE (16 by default)",
                 format);
  if (use != Use::kReads) options.Flag("dither", 0, "add triangular noise before integers are rounded", dither);
}

void SoundOptions::Check() const {
  if (raw && rate == 0) throw UsageError(Format("--raw needs --%s", rateName_));
  if (!raw && use_ == Use::kReads && SampleFormat()) throw UsageError("--format needs --raw");
  if (!raw && (rate != 0 || channels != 1 || bigEndian)) {
    throw UsageError(Format("--%s, --channels and --big-endian need --raw", rateName_));
  }
}

int SoundOptions::SampleFormat() const { return format < kFormats.size() ? kFormats[format] : 0; }

AudioWriter::AudioWriter(const std::string& path, int32_t rate, int32_t channels, int sourceFormat,
                         const SoundOptions& options)
    : path_(path), dither_(options.dither) {
  info_.samplerate = rate;
  info_.channels = channels;
  if (!IsStandard(path)) place_.emplace(path);
  const Container& container = FindContainer(path);
  const int asked = options.raw ? 0 : options.SampleFormat();  // with --raw it is the source's
  info_.format = ChooseFormat(container, info_, sourceFormat, asked);
  if (info_.format == 0) {
    Fail(Format("a file in %s cannot hold %d channel%s at %d Hz%s", std::string(container.ending).c_str(), channels,
                channels == 1 ? "" : "s", rate, asked ? " in this --format" : ""));
  }
  bits_ = Bits(info_.format & SF_FORMAT_SUBMASK);
  if (place_) {
    file_.reset(sf_open(place_->Part().c_str(), SFM_WRITE, &info_));
  } else {
    info_.format = SF_FORMAT_RAW | SF_ENDIAN_LITTLE | (info_.format & SF_FORMAT_SUBMASK);
    SF_VIRTUAL_IO stream{StreamPosition, StreamSeek, StreamRead, StreamWrite, StreamPosition};
    file_.reset(sf_open_virtual(&stream, SFM_WRITE, &info_, &streamed_));
  }
  if (!file_) Fail(SoundError(nullptr));
  sf_command(file_.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);
}

// Where the system fails, it tells why; the sound library does not.
void AudioWriter::Fail(const std::string& reason) const {
  if (place_) place_->Fail(reason);
  throw Failure(Format("cannot write to standard output: %s", reason.c_str()));
}

// Writes samples of the type Out, integers in their highest bits.
template <class Out, class T>
bool AudioWriter::WriteAs(const std::vector<std::vector<T>>& src, size_t first, size_t count) {
  auto& frames = std::get<std::vector<Out>>(frames_);
  frames.resize(src.size() * count);
  const auto write = [&](const auto& convert) { Interleave(src, first, count, frames.data(), convert); };
  if constexpr (std::is_same_v<Out, T>) {
    write([](T value, size_t, size_t) { return value; });
  } else {
    const double scale = std::ldexp(1.0, bits_ - 1), place = std::ldexp(1.0, int(8 * sizeof(Out)) - bits_);
    const auto quantise = [=]<class Real>(T value, Real noise) {
      const auto most = Real(scale), near = Bounded(Real(value) * most, -2 * most, 2 * most);
      return Out(int32_t(Bounded(Rounded(near + noise), -most, most - 1) * Real(place)));
    };
    using Real = std::conditional_t<sizeof(Out) == 2, T, double>;  // binary32 suffices for 16 bits
    if (dither_) {
      write([&](T value, size_t c, size_t i) { return quantise(value, Dither(c, uint64_t(written_) + i)); });
    } else {
      write([&](T value, size_t, size_t) { return quantise(value, Real(0)); });
    }
  }
  return WriteFrames(file_.get(), frames, sf_count_t(count)) == sf_count_t(count);
}

template <class T>
void AudioWriter::WriteBlock(size_t first, size_t count) {
  const auto& src = std::get<std::vector<std::vector<T>>>(taken_);
  uint32_t bad = 0;
  for (const auto& channel : src) {
    for (const T value : std::span(channel).subspan(first, count)) {
      bad |= !(std::abs(value) <= std::numeric_limits<T>::max());
      saturated_ += bits_ > 0 && std::abs(value) > 1;
    }
  }
  if (bad) Fail("the result is beyond what a sample can hold");
  if (!place_ && written_ == 0) {
    header_ = HeaderPlace();
    const std::string header = StreamHeader(info_, UINT32_MAX);
    if (std::fwrite(header.data(), 1, header.size(), stdout) != header.size()) Fail(std::strerror(errno));
  }
  const bool good = bits_ == 0    ? WriteAs<T>(src, first, count)
                    : bits_ == 16 ? WriteAs<int16_t>(src, first, count)
                                  : WriteAs<int32_t>(src, first, count);
  if (!good) Fail(place_ ? SoundError(file_.get()) : std::strerror(errno));
  written_ += int64_t(count);
}

template <class T>
void AudioWriter::Write(std::vector<std::vector<T>>& src, size_t first, size_t count) {
  if (pending_.valid()) pending_.get();
  if (count == 0) return;
  std::swap(std::get<std::vector<std::vector<T>>>(taken_), src);
  src.resize(std::get<std::vector<std::vector<T>>>(taken_).size());
  pending_ = std::async(std::launch::async, [=, this] { WriteBlock<T>(first, count); });
}
template void AudioWriter::Write(Planes&, size_t, size_t);
template void AudioWriter::Write(WidePlanes&, size_t, size_t);

void AudioWriter::Finish() {
  if (pending_.valid()) pending_.get();
  if (const int error = sf_close(file_.release())) Fail(sf_error_number(error));
  std::FILE* const said = place_ ? stdout : stderr;
  if (place_) {
    place_->Complete();
    std::printf("%s: %d Hz, %d channel%s, %.2f s\n", CleanText(path_).c_str(), info_.samplerate, info_.channels,
                info_.channels == 1 ? "" : "s", double(written_) / info_.samplerate);
  } else if (header_ >= 0 && streamed_ < kLongestStream) {
    const std::string header = StreamHeader(info_, uint32_t(streamed_));
    if (std::fflush(stdout) != 0 || pwrite(STDOUT_FILENO, header.data(), header.size(), header_) < 0) {
      Fail(std::strerror(errno));
    }
  }
  if (saturated_ > 0) {
    std::fprintf(said, "%lld sample%s beyond full scale %s saturated.\n", static_cast<long long>(saturated_),
                 saturated_ == 1 ? "" : "s", saturated_ == 1 ? "is" : "are");
  }
}

}  // namespace tzm
