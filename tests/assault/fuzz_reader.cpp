// Sound files of bad faith for the tool's reader: samples, or a sentence that says what is wrong.
#include <sys/mman.h>
#include <unistd.h>

#include <exception>
#include <string>

#include "audio.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const int file = memfd_create("sound", 0);
  static const std::string path = "/proc/self/fd/" + std::to_string(file);
  if (ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) != static_cast<ssize_t>(size)) return 0;
  try {
    tzm::AudioReader reader(path, 1);
    std::vector<float> block(4096);
    for (int blocks = 0; blocks < 64 && reader.Read(block) == block.size(); ++blocks) {
    }
  } catch (const std::exception& e) {
    if (*e.what() == 0) __builtin_trap();
  }
  return 0;
}
