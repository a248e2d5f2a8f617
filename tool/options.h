// Command-line options of a subcommand: each is declared once, with its help, its range and where its value
// goes; parsing, error lines and the --help text follow from that.
#ifndef TZM_TOOL_OPTIONS_H
#define TZM_TOOL_OPTIONS_H

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tzm {

/** Of any sound. */
inline constexpr int32_t kMostChannels = 1024, kHighestRate = 10'000'000;

class Options {
 public:
  /** `operands` as in "FILE" or "", `about` and `example` are paragraphs of the --help text. */
  Options(std::string command, std::string operands, std::string about, std::string example);

  // The value a target holds when its option is declared is the default that --help shows, save for 0 and "",
  // which stand for "chosen by the command", as a choice beyond the names does. A letter of 0 means that there is no
  // short form.
  void Flag(const char* name, char letter, const char* help, bool& target);
  template <class T>  // int32_t or double
  void Number(const char* name, char letter, const char* help, T& target, std::type_identity_t<T> low,
              std::type_identity_t<T> high);
  /** --channel: its number, counted from 1; with `all`, the word "all" gives 0. */
  void Channel(int32_t& target, bool all = false);
  void Text(const char* name, char letter, const char* placeholder, const char* help, std::string& target);
  void Choice(const char* name, char letter, std::span<const std::string_view> names, const char* help, size_t& target);

  /** Sets the targets and gives the operands, exactly `count` of them; after --help it has printed the text and
   * gives nothing, and so after --completion, which prints what a shell wants to know. Throws UsageError. */
  std::optional<std::vector<std::string>> Parse(int argc, char** argv, size_t count) const;

 private:
  struct Option {
    std::string name;
    char letter;
    std::string placeholder;  // empty: takes no value
    std::string help;
    std::function<void(const std::string&)> set;
    std::string words = {};  // the values to choose from, with blanks between them
  };

  void PrintHelp() const;
  void PrintCompletion(const std::string& shell) const;

  std::string command_, operands_, about_, example_;
  std::vector<Option> options_;
};

}  // namespace tzm

#endif
