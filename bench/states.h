// What to time of the operations that the table of members cannot call by itself.
#pragma once

#include <signal_tzm/status.h>

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "support/random.h"

namespace tzm_bench {

// What to time, and how many bytes of arrays it reads and writes.
struct Timed {
  std::function<OrvaStatus()> run;
  int64_t bytes;
};
using Make = std::function<Timed(int32_t)>;

// By the names of the operations.
const std::map<std::string, Make>& AllStates();

// Moderate values that live as long as the benchmark that holds them.
template <class T>
std::shared_ptr<std::vector<T>> SharedArray(int64_t n) {
  return std::make_shared<std::vector<T>>(tzm_test::RandomArray<T>(static_cast<size_t>(n), 1));
}

}  // namespace tzm_bench
