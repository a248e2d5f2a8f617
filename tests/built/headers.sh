#!/usr/bin/env bash
# Each public header alone, and each example, compiles without a warning: in C99, C++11 and C++20, by the build's
# compilers and by Clang where it is installed.   headers.sh SOURCE_DIR CC CXX
set -euo pipefail
cd "$1/include"
shift
compilers=("$1 $2")
if command -v clang >/dev/null && command -v clang++ >/dev/null; then compilers+=("clang clang++"); fi
status=0

# check COMPILER LANGUAGE STANDARD: what is read from standard input
check() {
  "$1" -x "$2" -std="$3" -Wall -Wextra -Wpedantic -Wconversion -Werror -fsyntax-only -I . -I ../examples - || status=1
}

for pair in "${compilers[@]}"; do
  read -r cc cxx <<<"$pair"
  for file in signal_tzm/*.h *.h ../examples/*.c ../examples/*.cpp; do
    included="#include \"$file\""
    case $file in *.cpp) ;; *) check "$cc" c c99 <<<"$included" && check "$cxx" c++ c++11 <<<"$included" ;; esac
    check "$cxx" c++ c++20 <<<"$included"
  done
done
exit $status
