// tzm: finds the subcommand, runs it, and turns whatever goes wrong into one line and an exit status.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <new>
#include <string_view>

#include "command.h"
#include "text.h"

namespace tzm {
namespace {

enum ExitStatus { kSuccess = 0, kFailed = 1, kWrongUsage = 2 };

// Inside a function, so that it exists before the first registration whatever the order of the files.
std::map<std::string_view, Command>& Commands() {
  static std::map<std::string_view, Command> commands;
  return commands;
}

void PrintHelp() {
  std::printf(
      "Usage: tzm COMMAND [OPTION...] [FILE...]\n\n"
      "Analyses, filters and makes sound files with the signal_tzm library.\n\nCommands:\n");
  for (const auto& [name, command] : Commands()) std::printf("  %-12s %s\n", command.name, command.summary);
  std::printf(
      "\nOptions:\n"
      "  -h, --help     this text; `tzm COMMAND --help` explains a command\n"
      "  -V, --version  the version\n\n"
      "Examples:\n"
      "  tzm psd /usr/share/sounds/alsa/Front_Center.wav\n"
      "  tzm tone --keys 0123 number.wav && tzm detect number.wav\n"
      "  tzm stats --json speech.wav | jq '.channels[0].rms_db'\n");
}

void Dispatch(int argc, char** argv) {
  const std::string_view word = argc > 1 ? argv[1] : "";
  if (word == "--help" || word == "-h") return PrintHelp();
  if (word == "--version" || word == "-V") return static_cast<void>(std::puts("tzm " TZM_VERSION));
  if (word.empty()) throw UsageError("which command?");
  const auto found = Commands().find(word);
  if (found == Commands().end()) throw UsageError(Format("unknown command '%s'", argv[1]));
  found->second.run(argc - 1, argv + 1);
}

void FlushOutput() {
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
    throw Failure(Format("cannot write to standard output: %s", std::strerror(errno)));
  }
}

int Main(int argc, char** argv) {
  std::string name = "tzm";
  if (argc > 1 && Commands().contains(argv[1])) name = name + " " + argv[1];
  try {
    Dispatch(argc, argv);
    FlushOutput();
    return kSuccess;
  } catch (const UsageError& error) {
    std::fprintf(stderr, "%s: %s (see '%s --help')\n", name.c_str(), CleanText(error.what()).c_str(), name.c_str());
    return kWrongUsage;
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "%s: not enough memory\n", name.c_str());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", name.c_str(), CleanText(error.what()).c_str());
  }
  return kFailed;
}

}  // namespace

Registration::Registration(const Command& command) { Commands().emplace(command.name, command); }

void Require(OrvaStatus status, const char* operation) {
  if (status == ORVA_STS_MEM_ALLOC_ERR) throw std::bad_alloc();
  if (status != ORVA_STS_NO_ERR) throw Failure(Format("%s failed with status %d", operation, status));
}

}  // namespace tzm

int main(int argc, char** argv) { return tzm::Main(argc, argv); }
