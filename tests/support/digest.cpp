#include "digest.h"

namespace tzm_test {

void Digest::Add(Sample sample, const void* data, size_t n) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  const size_t size = sample.PartSize();
  for (size_t i = 0; i < n * sample.parts; ++i, bytes += size) {
    const bool nan = IsNaN(sample.kind, bytes);
    for (size_t j = 0; j < size; ++j) value_ = (value_ ^ (nan ? 0xff : bytes[j])) * 0x100000001b3;
  }
}

}  // namespace tzm_test
