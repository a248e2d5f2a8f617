// tzm: finds the subcommand, runs it, and turns whatever goes wrong into one line and an exit status.
#include <fcntl.h>

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

enum ExitStatus { kSuccess = 0, kFailed = 1, kWrongUsage = 2, kWarned = 3 };

std::string g_name = "tzm";  // with the command, for the lines on standard error
bool g_warned = false;

void Complain(const char* kind, const std::string& text, const std::string& advice = "") {
  std::fprintf(stderr, "%s: %s%s%s\n", g_name.c_str(), kind, CleanText(text).c_str(), advice.c_str());
}

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
      "  -h, --help              this text; `tzm COMMAND --help` explains a command\n"
      "  -V, --version           the version\n"
      "      --completion SHELL  completion for bash or zsh: source <(tzm --completion bash)\n\n"
      "Examples:\n"
      "  tzm psd /usr/share/sounds/alsa/Front_Center.wav\n"
      "  tzm tone --keys 0123 number.wav && tzm detect number.wav\n"
      "  tzm stats --json speech.wav | jq '.channels[0].rms_db'\n");
}

// A script for bash or zsh: the commands from here, what follows them from each command's own table of options.
void PrintCompletion(const char* shell) {
  const bool zsh = std::strcmp(shell, "zsh") == 0;
  if (!zsh && std::strcmp(shell, "bash") != 0) {
    throw UsageError(Format("--completion takes bash or zsh, not '%s'", shell));
  }
  std::string names, described;
  for (const auto& [name, command] : Commands()) {
    names.append(name).append(" ");
    described += Format("\n      '%s:%s'", command.name, ZshEscaped(command.summary).c_str());
  }
  std::printf("%s made by `tzm --completion %s`\n", zsh ? "#compdef tzm\n#" : "# bash completion of tzm,", shell);
  if (zsh) {
    std::printf("_tzm() {\n  local -a commands=(%s)\n"
                "  if (( CURRENT == 2 )); then\n    if [[ $PREFIX == -* ]]; then compadd -- --help --version\n"
                "    else _describe command commands; fi\n    return\n  fi\n"
                "  shift words; (( CURRENT-- ))\n  case $words[1] in\n", described.c_str());
  } else {
    std::printf("_tzm() {\n  local words='' options=''\n  case ${COMP_WORDS[1]} in\n");
  }
  for (const auto& [name, command] : Commands()) {
    std::string text(name), option = "--completion", value(shell);
    char* arguments[] = {text.data(), option.data(), value.data(), nullptr};
    command.run(3, arguments);
  }
  if (zsh) {
    std::printf("  esac\n}\n_tzm \"$@\"\n");
  } else {
    std::printf("  esac\n  if [ \"$COMP_CWORD\" -eq 1 ]; then words='%s--help --version'\n"
                "  elif [ -z \"$words\" ] && [[ $2 == -* ]]; then words=$options; fi\n"
                "  [ -n \"$words\" ] || return\n  compopt +o default\n"
                "  mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$2\")\n}\n"
                "complete -o default -F _tzm tzm\n", names.c_str());
  }
}

void Dispatch(int argc, char** argv) {
  const std::string_view word = argc > 1 ? argv[1] : "";
  if (word == "--help" || word == "-h") return PrintHelp();
  if (word == "--version" || word == "-V") return static_cast<void>(std::puts("tzm " TZM_VERSION));
  if (word == "--completion" && argc < 4) return PrintCompletion(argc == 3 ? argv[2] : "");
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

// Takes the standard descriptors that the caller closed, so that no file gets their numbers; they go on failing.
void HoldStandardDescriptors() {
  for (int descriptor = 0; descriptor <= 2; ++descriptor)
    if (fcntl(descriptor, F_GETFD) < 0) open("/dev/null", descriptor == 1 ? O_RDONLY : O_WRONLY);
}

int Main(int argc, char** argv) {
  HoldStandardDescriptors();
  if (argc > 1 && Commands().contains(argv[1])) g_name = g_name + " " + argv[1];
  try {
    Dispatch(argc, argv);
    FlushOutput();
    return g_warned ? kWarned : kSuccess;
  } catch (const UsageError& error) {
    Complain("", error.what(), " (see '" + g_name + " --help')");
    return kWrongUsage;
  } catch (const std::bad_alloc&) {
    Complain("", "not enough memory");
  } catch (const std::exception& error) {
    Complain("", error.what());
  }
  return kFailed;
}

}  // namespace

Registration::Registration(const Command& command) { Commands().emplace(command.name, command); }

void Warn(const std::string& text) {
  g_warned = true;
  Complain("warning: ", text);
}

void Require(OrvaStatus status, const char* operation) {
  if (status == ORVA_STS_MEM_ALLOC_ERR) throw std::bad_alloc();
  if (status != ORVA_STS_NO_ERR) throw Failure(Format("%s failed with status %d", operation, status));
}

}  // namespace tzm

int main(int argc, char** argv) { return tzm::Main(argc, argv); }
