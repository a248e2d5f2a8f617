// tzm info: which library and which companions this program runs with.
#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <signal_tzm/transform.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "command.h"
#include "options.h"
#include "output.h"
#include "text.h"

namespace tzm {
namespace {

// A part of the process, known by one of the names that it must define.
struct Part {
  const char* name;
  const char* symbol;
  const char* about;
};
constexpr Part kLibrary{"library", "ORVAS_GetFFTNumberThreads", "signal_tzm"};
constexpr std::array<Part, 5> kCompanions{{{"core", "ORVA_Malloc", "memory, copy, convert"},
                                           {"vmath", "vssin", "vector mathematics"},
                                           {"fft", "tzm_fft_plan_dft_1d", "transforms in binary64"},
                                           {"fftf", "tzm_fftf_plan_dft_1d", "transforms in binary32"},
                                           {"cblas", "cblas_sgemm", "matrix products"}}};

// The file that defines the symbol for all of the process, links resolved.
std::string DefiningFile(const char* symbol) {
  void* const address = dlsym(RTLD_DEFAULT, symbol);
  Dl_info info;
  if (!address || dladdr(address, &info) == 0) return "not found";
  std::error_code failed;
  const auto path = std::filesystem::canonical(info.dli_fname, failed);
  return failed ? info.dli_fname : path.string();
}

// For which processors the file that defines the symbol was made, as its note says to the loader. Without one it is the
// baseline of the build.
std::string VectorLevel(const char* symbol) {
  Dl_info info;
  link_map* map = nullptr;
  void* const address = dlsym(RTLD_DEFAULT, symbol);
  if (!address || dladdr1(address, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) == 0) return "not found";
  const auto* base = static_cast<const char*>(info.dli_fbase);
  const auto* header = reinterpret_cast<const ElfW(Ehdr)*>(base);
  const auto* segments = reinterpret_cast<const ElfW(Phdr)*>(base + header->e_phoff);
  for (int s = 0; s < header->e_phnum; ++s) {
    if (segments[s].p_type != PT_GNU_PROPERTY) continue;
    // After the note's header and its name, "GNU": properties of a type, a size and data, filled up to the word.
    const char* at = reinterpret_cast<const char*>(map->l_addr + segments[s].p_vaddr) + sizeof(ElfW(Nhdr)) + 4;
    const char* const end = at + segments[s].p_memsz - sizeof(ElfW(Nhdr)) - 4;
    while (at < end) {
      std::array<uint32_t, 3> property;  // type, size, the data's first word
      std::memcpy(property.data(), at, sizeof property);
      if (property[0] == GNU_PROPERTY_X86_ISA_1_NEEDED) {
        for (const auto& [bit, level] : {std::pair(GNU_PROPERTY_X86_ISA_1_V4, "x86-64-v4"),
                                         {GNU_PROPERTY_X86_ISA_1_V3, "x86-64-v3"},
                                         {GNU_PROPERTY_X86_ISA_1_V2, "x86-64-v2"}}) {
          if (property[2] & bit) return level;
        }
      }
      at += 8 + (property[1] + sizeof(ElfW(Addr)) - 1) / sizeof(ElfW(Addr)) * sizeof(ElfW(Addr));
    }
  }
  return TZM_MARCH;
}

// What follows ".so." in the name of the library's file.
std::string VersionInName(const std::string& file) {
  const size_t at = file.rfind(".so.");
  return at == std::string::npos ? "unknown" : file.substr(at + 4);
}

void Run(int argc, char** argv) {
  bool json = false;
  Options options("info", "",
                  "Tells which library this program runs with, which library plays each of its companions,\n"
                  "for which processors the library that runs was built, and how many threads a transform may take.",
                  "tzm info --json");
  options.Flag("json", 0, "print as JSON", json);
  if (!options.Parse(argc, argv, 0)) return;

  int32_t threads = 0;
  Require(ORVAS_GetFFTNumberThreads(&threads), "the thread count");
  const std::string library = DefiningFile(kLibrary.symbol);
  if (json) {
    JsonObject object, companions;
    for (const Part& c : kCompanions) companions.Add(c.name, DefiningFile(c.symbol));
    object.Add("tool_version", std::string(TZM_VERSION));
    object.Add("library_version", VersionInName(library));
    object.Add("library", library);
    object.Add("vector_level", VectorLevel(kLibrary.symbol));
    object.Add("fft_threads", threads);
    object.Add("companions", companions);
    return object.Print();
  }
  const auto line = [](const char* name, const std::string& text) {
    std::printf("%-14s %s\n", name, CleanText(text).c_str());
  };
  line("tzm", TZM_VERSION);
  line("signal_tzm", VersionInName(library) + ", " + library);
  line("vector level", VectorLevel(kLibrary.symbol));
  line("FFT threads", Format("%d at most", threads));
  std::printf("companions:\n");
  for (const Part& c : kCompanions) {
    std::printf("  %-6s %s (%s)\n", c.name, CleanText(DefiningFile(c.symbol)).c_str(), c.about);
  }
}

const Registration registration({"info", "library, companions, vector level, thread count", Run});

}  // namespace
}  // namespace tzm
