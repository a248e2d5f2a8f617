// The sizes at which everything is measured: bytes of all arrays together.
#pragma once

#include <cstddef>

struct Size {
  const char* name;
  size_t bytes;
};
inline constexpr Size kSizes[] = {{"L1", 16 << 10}, {"L2", 256 << 10}, {"memory", 64 << 20}};
