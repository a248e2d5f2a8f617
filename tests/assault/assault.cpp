// Programs that go where the tests of a build do not; docs/testing.md tells how they are run, and what they tried.
#include <cstdio>
#include <string>
#include <vector>

namespace tzm_test {
using Arguments = std::vector<std::string>;
int Huge(const Arguments& names);
int Sweep(const Arguments& arguments);
int OutOfMemory(const Arguments& names);
}  // namespace tzm_test

int main(int argc, char** argv) {
  const tzm_test::Arguments arguments(argv + (argc > 1 ? 2 : 1), argv + argc);
  const std::string what = argc > 1 ? argv[1] : "";
  if (what == "huge") return tzm_test::Huge(arguments);
  if (what == "sweep") return tzm_test::Sweep(arguments);
  if (what == "memory") return tzm_test::OutOfMemory(arguments);
  std::fprintf(stderr, "usage: assault huge [NAME ...] | sweep [SEED [CALLS]] | memory [NAME ...]\n");
  return 2;
}
