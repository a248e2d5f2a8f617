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

/** The file's name without its folders. */
std::string BaseName(const std::string& path);

}  // namespace tzm

#endif
