// Programs that go where the tests of a build do not; docs/testing.md tells how they are run, and what they tried.
#pragma once

#include <string>
#include <vector>

namespace tzm_test {

int Huge(const std::vector<std::string>& names);
int Sweep(const std::vector<std::string>& arguments);
int OutOfMemory(const std::vector<std::string>& names);

}  // namespace tzm_test
