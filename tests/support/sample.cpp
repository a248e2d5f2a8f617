#include "sample.h"

#include <cstdint>
#include <cstdio>

namespace tzm_test {
std::string Print(Kind kind, const void* part) {
  char text[64];
  if (kind == Kind::k16f) std::snprintf(text, sizeof text, "0x%04x", Load<uint16_t>(part));
  else if (kind == Kind::k32f)
    std::snprintf(text, sizeof text, "%.9g (0x%08x)", Load<float>(part), Load<uint32_t>(part));
  else if (kind == Kind::k64f)
    std::snprintf(text, sizeof text, "%.17g (0x%016llx)", Load<double>(part),
                  static_cast<unsigned long long>(Load<uint64_t>(part)));
  else return Visit(kind, [=](auto type) { return std::to_string(Load<decltype(type)>(part)); });
  return text;
}

bool IsNaN(Kind kind, const void* part) {
  switch (kind) {
    case Kind::k16f: return (Load<uint16_t>(part) & 0x7fff) > 0x7c00;
    case Kind::k32f: return (Load<uint32_t>(part) & 0x7fffffff) > 0x7f800000;
    case Kind::k64f: return (Load<uint64_t>(part) & ~(uint64_t{1} << 63)) > uint64_t{0x7ff} << 52;
    default: return false;
  }
}

}  // namespace tzm_test
