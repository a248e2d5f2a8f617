#!/usr/bin/env bash
# The manual builds, which it does not with an operation undocumented, and knows every operation of the library.
#   manual.sh CMAKE BUILD NM LIBRARY
set -euo pipefail
"$1" --build "$2" --target docs
sed -n '/kind="function"/,/<name>/s/.*<name>\(.*\)<\/name>.*/\1/p' "$2/manual/operations.xml" | LC_ALL=C sort -u \
  >"$2/manual/operations"
missing=$("$3" -D --defined-only "$4" | awk '{print $3}' | LC_ALL=C sort | LC_ALL=C comm -23 - "$2/manual/operations")
[ -z "$missing" ] || { echo "exported, but not in the manual:" $missing; exit 1; }
