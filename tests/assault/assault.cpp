#include "assault.h"

#include <cstdio>

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + (argc > 1 ? 2 : 1), argv + argc);
  const std::string what = argc > 1 ? argv[1] : "";
  if (what == "huge") return tzm_test::Huge(arguments);
  if (what == "sweep") return tzm_test::Sweep(arguments);
  if (what == "memory") return tzm_test::OutOfMemory(arguments);
  std::fprintf(stderr, "usage: assault huge [NAME ...] | sweep [SEED [CALLS]] | memory [NAME ...]\n");
  return 2;
}
