#include "sample.h"

#include <cstdint>
#include <cstdio>

namespace tzm_test {

namespace {

// The value of one part, readable, with its bits when it is a floating value.
std::string Print(Kind kind, const void* part) {
  char text[64];
  if (kind == Kind::k16f) std::snprintf(text, sizeof text, "0x%04x", Load<uint16_t>(part));
  else if (kind == Kind::k32f)
    std::snprintf(text, sizeof text, "%.9g (0x%08x)", Load<float>(part), Load<uint32_t>(part));
  else if (kind == Kind::k64f)
    std::snprintf(text, sizeof text, "%.17g (0x%016lx)", Load<double>(part), Load<uint64_t>(part));
  else return Visit(kind, [=](auto type) { return std::to_string(Load<decltype(type)>(part)); });
  return text;
}

}  // namespace

bool IsNaN(Kind kind, const void* part) {
  switch (kind) {
    case Kind::k16f: return (Load<uint16_t>(part) & 0x7fff) > 0x7c00;
    case Kind::k32f: return (Load<uint32_t>(part) & 0x7fffffff) > 0x7f800000;
    case Kind::k64f: return (Load<uint64_t>(part) & ~(uint64_t{1} << 63)) > uint64_t{0x7ff} << 52;
    default: return false;
  }
}

std::string FirstDifference(Sample sample, const void* expected, const void* actual, size_t n) {
  const char *e = static_cast<const char*>(expected), *a = static_cast<const char*>(actual);
  const size_t size = sample.PartSize();
  for (size_t i = 0; i < n * sample.parts; ++i, e += size, a += size) {
    if (std::memcmp(e, a, size) == 0 || (IsNaN(sample.kind, e) && IsNaN(sample.kind, a))) continue;
    std::string index = "index " + std::to_string(i / sample.parts);
    if (sample.parts > 1) index += " part " + std::to_string(i % sample.parts);
    return index + ": expected " + Print(sample.kind, e) + ", actual " + Print(sample.kind, a);
  }
  return {};
}

}  // namespace tzm_test
