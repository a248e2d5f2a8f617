// Malformed formats for sprintf_s: nothing beyond the room is touched, and a text always ends in it. Arguments of
// both kinds are there for whatever the format asks; only %s and * get some that fit.
#include <signal_tzm/format.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 12) return 0;
  int64_t n;
  double x;
  std::memcpy(&n, data, 8);
  std::memcpy(&x, data, 8);
  const size_t room = 1 + data[8] % 64;
  const std::string given(reinterpret_cast<const char*>(data + 10), size - 10);
  const std::string text = given.substr(0, data[9] % 16);
  std::string format, plain;  // with at most four conversions, the second without strings and stars
  int conversions = 0;
  for (char c : given) {
    if (c == '%' && ++conversions > 4) break;
    format += c;
    if (c != 's' && c != 'S' && c != '*' && c != 'n') plain += c;
  }
  char* const exact = static_cast<char*>(std::malloc(room));  // the sanitizer watches what lies beyond
  const auto check = [&](int written) {
    const size_t length = strnlen(exact, room);
    if (length == room || (written >= 0 && static_cast<size_t>(written) < length)) std::abort();
  };
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
  check(sprintf_s(exact, room, plain.c_str(), n, n, n, n, x, x, x, x, x, 1.0L * x, 1.0L * x, 1.0L * x));
  const std::string string = "%" + std::to_string(n % 100) + "." + std::to_string(data[9] % 20) + "s|%*.*d";
  check(sprintf_s(exact, room, string.c_str(), text.c_str(), static_cast<int>(n), static_cast<int>(n >> 32), 5));
  std::free(exact);
  return 0;
}
