// The tones of a telephone's keypad: a key is one tone of its row and one of its column (DTMF).
#ifndef TZM_TOOL_KEYPAD_H
#define TZM_TOOL_KEYPAD_H

#include <array>
#include <string_view>

namespace tzm {

inline constexpr std::array<double, 4> kKeypadRows{697, 770, 852, 941};
inline constexpr std::array<double, 4> kKeypadColumns{1209, 1336, 1477, 1633};
inline constexpr std::string_view kKeys = "123A456B789C*0#D";  // row by row

}  // namespace tzm

#endif
