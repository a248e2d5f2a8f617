// Text: formatting into a string, and clean UTF-8.
#ifndef TZM_TOOL_TEXT_H
#define TZM_TOOL_TEXT_H

#include <string>

namespace tzm {

/** printf into a string. */
__attribute__((format(printf, 1, 2))) std::string Format(const char* format, ...);

/** The text with every byte that is not part of valid UTF-8, and every control character, replaced by '?':
 * file names may hold anything, plots and JSON may not. */
std::string CleanText(const std::string& text);

/** Whether a path, "-", stands for standard input or output. */
inline bool IsStandard(const std::string& path) { return path == "-"; }

/** The text for a script of zsh, between brackets or colons in single quotes. */
std::string ZshEscaped(const std::string& text);

/** The file's name without its folders; "standard input" for that. */
std::string BaseName(const std::string& path);

/** The path, or "standard input". */
std::string ShownName(const std::string& path);

}  // namespace tzm

#endif
