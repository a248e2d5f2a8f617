// Sound files of bad faith for the tool: `tzm stats` gives figures, or says what is wrong and ends with 1.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

int tool_main(int argc, char** argv);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const int file = memfd_create("sound", 0);
  static std::string path = "/proc/self/fd/" + std::to_string(file);
  static char name[] = "tzm", command[] = "stats";
  if (ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) != static_cast<ssize_t>(size)) return 0;
  char* arguments[] = {name, command, path.data(), nullptr};
  const int status = tool_main(3, arguments);
  if (status != 0 && status != 1) std::abort();
  return 0;
}
