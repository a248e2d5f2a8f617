#!/usr/bin/env bash
# Each public header compiles alone, as C99 and as C++17.   headers.sh INCLUDE_DIR CC CXX
set -euo pipefail
cd "$1"
status=0
for header in signal_tzm/*.h *.h; do
  [ -e "$header" ] || continue
  echo "#include <$header>" | "$2" -x c -std=c99 -Wall -Wextra -pedantic -Werror -fsyntax-only -I . - || status=1
  echo "#include <$header>" | "$3" -x c++ -std=c++17 -Wall -Wextra -pedantic -Werror -fsyntax-only -I . - || status=1
done
exit $status
