// What a subcommand is, and how a failure leaves it.
#ifndef TZM_TOOL_COMMAND_H
#define TZM_TOOL_COMMAND_H

#include <signal_tzm/status.h>

#include <stdexcept>
#include <string>

namespace tzm {

struct Command {
  const char* name;
  const char* summary;                // one line for `tzm --help`
  void (*run)(int argc, char** argv);  // argv[0] is the name; a failure leaves as an exception
};

/** Each subcommand's file defines one of these at namespace scope; main finds the command by its name. */
struct Registration {
  explicit Registration(const Command& command);
};

/** A wrong call: exit status 2, and the line points to --help. The text is one line without a full stop. */
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/** Anything else that went wrong: exit status 1. The text is one line without a full stop. */
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/** Says on standard error what makes the result less than it should be; the exit status, otherwise of success, becomes
 * 3. The text is one line without a full stop. */
void Warn(const std::string& text);

/** Throws a Failure unless the library's operation succeeded. */
void Require(OrvaStatus status, const char* operation);

}  // namespace tzm

#endif
