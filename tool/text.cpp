// Text: formatting into a string, and clean UTF-8.
#include "text.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <filesystem>

namespace tzm {
namespace {

// The length of the valid UTF-8 sequence that starts at text[at], 0 if there is none.
size_t SequenceLength(const std::string& text, size_t at) {
  const auto lead = static_cast<uint8_t>(text[at]);
  if (lead < 0x80) return lead >= 0x20 && lead != 0x7F ? 1 : 0;
  const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || at + length > text.size()) return 0;
  uint32_t code = lead & (0x7Fu >> length);
  for (size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<uint8_t>(text[at + i]);
    if ((byte & 0xC0) != 0x80) return 0;
    code = code << 6 | (byte & 0x3F);
  }
  const bool overlong = code < (length == 4 ? 0x10000u : length == 3 ? 0x800u : 0x80u);
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  return overlong || surrogate || code > 0x10FFFF ? 0 : length;
}

}  // namespace

std::string Format(const char* format, ...) {
  va_list arguments, again;
  va_start(arguments, format);
  va_copy(again, arguments);
  std::string text(static_cast<size_t>(std::vsnprintf(nullptr, 0, format, arguments)), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  va_end(arguments);
  return text;
}

std::string CleanText(const std::string& text) {
  std::string clean;
  for (size_t at = 0; at < text.size();) {
    const size_t length = SequenceLength(text, at);
    clean += length > 0 ? text.substr(at, length) : "?";
    at += length > 0 ? length : 1;
  }
  return clean;
}

std::string ZshEscaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '[' || c == ']' || c == ':' || c == '\\') escaped += '\\';
    escaped += c == '\'' ? "'\\''" : std::string(1, c);
  }
  return escaped;
}

std::string BaseName(const std::string& path) { return std::filesystem::path(ShownName(path)).filename().string(); }

std::string ShownName(const std::string& path) { return IsStandard(path) ? "standard input" : path; }

}  // namespace tzm
