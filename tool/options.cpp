// Command-line options of a subcommand, over getopt_long.
#include "options.h"

#include <getopt.h>

#include <charconv>
#include <cstdio>

#include "command.h"
#include "text.h"

namespace tzm {
namespace {

constexpr int kCompletion = 256, kFirstOption = 257;  // getopt_long's values: above every letter

// The whole text as a number from low to high; `shown` names the option in the error line.
template <class T>
T ParseNumber(const std::string& shown, const std::string& text, T low, T high) {
  T value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !(value >= low && value <= high)) {
    throw UsageError(Format("--%s takes a number from %.10g to %.10g, not '%s'", shown.c_str(), double(low),
                            double(high), text.c_str()));
  }
  return value;
}

std::string Joined(std::span<const std::string_view> names, const char* between = ", ") {
  std::string list;
  for (const auto name : names) list.append(list.empty() ? "" : between).append(name);
  return list;
}

}  // namespace

Options::Options(std::string command, std::string operands, std::string about, std::string example)
    : command_(std::move(command)),
      operands_(std::move(operands)),
      about_(std::move(about)),
      example_(std::move(example)) {}

void Options::Flag(const char* name, char letter, const char* help, bool& target) {
  options_.push_back({name, letter, "", help, [&target](const std::string&) { target = true; }});
}

template <class T>
void Options::Number(const char* name, char letter, const char* help, T& target, std::type_identity_t<T> low,
                     std::type_identity_t<T> high) {
  const bool open = target == T{} || target != target;  // 0, or a NaN for what was not given
  const std::string shown = open ? help : Format("%s (default %.10g)", help, double(target));
  options_.push_back({name, letter, "N", shown, [=, &target](const std::string& text) {
                        target = ParseNumber(name, text, low, high);
                      }});
}
template void Options::Number(const char*, char, const char*, int32_t&, int32_t, int32_t);
template void Options::Number(const char*, char, const char*, double&, double, double);

void Options::Channel(int32_t& target, bool all) {
  const std::string help = Format("channel, counted from 1%s (default %d)", all ? ", or all" : "", target);
  options_.push_back({"channel", 'c', "N", help, [=, &target](const std::string& text) {
                        target = all && text == "all" ? 0 : ParseNumber("channel", text, 1, kMostChannels);
                      }, all ? "all" : ""});
}

void Options::Text(const char* name, char letter, const char* placeholder, const char* help, std::string& target) {
  options_.push_back({name, letter, placeholder, help, [=, &target](const std::string& text) {
                        if (text.empty()) throw UsageError(Format("--%s is empty", name));
                        target = text;
                      }});
}

void Options::Choice(const char* name, char letter, std::span<const std::string_view> names, const char* help,
                     size_t& target) {
  std::string shown = Format("%s: %s", help, Joined(names).c_str());
  if (target < names.size()) shown += Format(" (default %s)", std::string(names[target]).c_str());
  options_.push_back({name, letter, "NAME", shown, [=, &target](const std::string& text) {
                        for (size_t i = 0; i < names.size(); ++i) {
                          if (names[i] == text) return static_cast<void>(target = i);
                        }
                        throw UsageError(
                            Format("--%s is one of %s, not '%s'", name, Joined(names).c_str(), text.c_str()));
                      }, Joined(names, " ")});
}

std::optional<std::vector<std::string>> Options::Parse(int argc, char** argv, size_t count) const {
  std::vector<option> table;
  std::string letters = ":h";  // the colon: a missing value is told apart from an unknown option
  for (size_t i = 0; i < options_.size(); ++i) {
    const Option& o = options_[i];
    const bool value = !o.placeholder.empty();
    table.push_back({o.name.c_str(), value ? required_argument : no_argument, nullptr, kFirstOption + int(i)});
    if (o.letter) letters.append(1, o.letter).append(value ? ":" : "");
  }
  table.push_back({"help", no_argument, nullptr, 'h'});
  table.push_back({"completion", required_argument, nullptr, kCompletion});
  table.push_back({});

  opterr = 0;
  optind = 1;
  for (int found; (found = getopt_long(argc, argv, letters.c_str(), table.data(), nullptr)) != -1;) {
    if (found == 'h') return PrintHelp(), std::nullopt;
    if (found == kCompletion) return PrintCompletion(optarg), std::nullopt;
    // A short option stands alone in optopt; of a long one getopt has just passed the whole word.
    const std::string word = optopt > 0 && optopt < kCompletion ? Format("-%c", optopt) : argv[optind - 1];
    if (found == ':') throw UsageError(Format("option '%s' needs a value", word.c_str()));
    if (found == '?') throw UsageError(Format("unknown or misused option '%s'", word.c_str()));
    for (size_t i = 0; i < options_.size(); ++i) {
      if (found == kFirstOption + int(i) || found == options_[i].letter) options_[i].set(optarg ? optarg : "");
    }
  }
  if (size_t(argc - optind) < count) {
    throw UsageError(Format("missing operand: %s wanted, %d given", operands_.c_str(), argc - optind));
  }
  if (size_t(argc - optind) > count) throw UsageError(Format("one operand too many: '%s'", argv[optind + int(count)]));
  return std::vector<std::string>(argv + optind, argv + argc);
}

void Options::PrintHelp() const {
  std::printf("Usage: tzm %s [OPTION...]%s%s\n\n%s\n\nOptions:\n", command_.c_str(), operands_.empty() ? "" : " ",
              operands_.c_str(), about_.c_str());
  const auto line = [](const std::string& option, const std::string& help) {
    std::printf("  %-25s  %s\n", option.c_str(), help.c_str());
  };
  for (const Option& o : options_) {
    const std::string letter = o.letter ? Format("-%c, ", o.letter) : "    ";
    line(letter + "--" + o.name + (o.placeholder.empty() ? "" : " " + o.placeholder), o.help);
  }
  line("-h, --help", "this text");
  std::printf("\nExamples:\n  %s\n", example_.c_str());
}

// A branch of the script that main.cpp prints, for the words after this command.
void Options::PrintCompletion(const std::string& shell) const {
  const bool zsh = shell == "zsh";
  if (zsh) {
    std::printf("    %s)\n      _arguments -s", command_.c_str());
  } else {
    std::printf("    %s)\n      case $3 in\n", command_.c_str());
  }
  std::string all = "--help -h";
  for (const Option& o : options_) {
    const std::string name = "--" + o.name, letter = o.letter ? Format("-%c", o.letter) : "";
    const bool value = !o.placeholder.empty(), file = value && o.placeholder != "N" && o.words.empty();
    all += " " + name + (o.letter ? " " + letter : "");
    if (zsh) {
      const std::string names = o.letter ? "{" + name + (value ? "=," : ",") + letter + "}" : name + (value ? "=" : "");
      const std::string action = file ? "_files" : o.words.empty() ? " " : "(" + o.words + ")";
      std::printf(" \\\n        %s'[%s]%s'", names.c_str(), ZshEscaped(o.help).c_str(),
                  value ? (":" + o.placeholder + ":" + action).c_str() : "");
    } else if (value && !file) {
      std::printf("        %s%s) words='%s' ;;\n", name.c_str(), o.letter ? (" | " + letter).c_str() : "",
                  o.words.empty() ? " " : o.words.c_str());
    }
  }
  if (zsh) {
    std::printf(" \\\n        {--help,-h}'[this text]'%s\n      ;;\n",
                operands_.empty() ? "" : " \\\n        '*:file:_files'");
  } else {
    std::printf("      esac\n      options='%s'\n      ;;\n", all.c_str());
  }
}

}  // namespace tzm
