#include "compare.h"

#include <cstring>

namespace tzm_test {

std::string FirstDifference(Sample sample, const void* expected, const void* actual, size_t n) {
  const char* e = static_cast<const char*>(expected);
  const char* a = static_cast<const char*>(actual);
  const size_t size = sample.PartSize();
  for (size_t i = 0; i < n * sample.parts; ++i, e += size, a += size) {
    if (std::memcmp(e, a, size) == 0 || (IsNaN(sample.kind, e) && IsNaN(sample.kind, a))) continue;
    std::string index = "index " + std::to_string(i / sample.parts);
    if (sample.parts > 1) index += " part " + std::to_string(i % sample.parts);
    return index + ": expected " + Print(sample.kind, e) + ", actual " + Print(sample.kind, a);
  }
  return {};
}

testing::AssertionResult SameBits(const std::string& operation, Sample sample, const void* expected, const void* actual,
                                  size_t n, uint64_t seed) {
  const std::string difference = FirstDifference(sample, expected, actual, n);
  if (difference.empty()) return testing::AssertionSuccess();
  return testing::AssertionFailure() << operation << " length " << n << " seed " << seed << " " << difference;
}

}  // namespace tzm_test
