// Malformed sound files for the tool's reader: it gives finite samples, no more than a moment of them from a file
// this small, or says what is wrong.
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>

#include "audio.h"
#include "command.h"

void tzm::Warn(const std::string&) {}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const int file = memfd_create("sound", 0);
  static const std::string path = "/proc/self/fd/" + std::to_string(file);
  if (ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) != static_cast<ssize_t>(size)) return 0;
  try {
    tzm::AudioReader reader(path, {}, {});
    tzm::Planes samples(reader.Channels(), std::vector<float>(1000));
    for (size_t got; (got = reader.Read(samples)) > 0;) {
      for (const auto& channel : samples) {
        for (size_t i = 0; i < got; ++i) {
          if (!std::isfinite(channel[i])) std::abort();
        }
      }
    }
  } catch (const tzm::Failure&) {
  }
  return 0;
}
