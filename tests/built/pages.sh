#!/usr/bin/env bash
# Builds and runs every whole program of the pages: a fenced block of c or cpp with a main. A text block right behind it
# is what the program must say.   pages.sh SOURCE_DIR SCRATCH LIBRARY...   The environment tells the compilers.
set -euo pipefail
source=$1 scratch=$2
shift 2
rm -rf "$scratch"
mkdir -p "$scratch"
cd "$source"
for page in README.md docs/*.md; do
  name=$(basename "$page" .md)
  awk -v to="$scratch/$name" '
    /^```(c|cpp)$/ { file = to "_" ++n "." substr($0, 4); next }
    /^```text$/ && code != "" { file = code ".said"; printf "" > file; code = ""; next }
    /^```/ { code = file; file = ""; next }
    file != "" { print > file; next }
    NF { code = "" }' "$page"
done

programs=0 failed=0
for file in "$scratch"/*.c "$scratch"/*.cpp; do
  grep -q 'main(' "$file" || continue
  case $file in
    *.c) compile=("$CC" -std=c99) ;;
    *) compile=("$CXX" -std=c++17) ;;
  esac
  programs=$((programs + 1))
  # shellcheck disable=SC2086
  if ! "${compile[@]}" -Wall -Wextra -Werror $FLAGS -I include "$file" -Wl,--no-as-needed "$@" -lm -o "${file%.*}" ||
    ! ${EMULATOR:-} "${file%.*}" >"${file%.*}.out"; then
    echo "does not build, or fails: $file"
    failed=1
  elif [ -e "$file.said" ]; then
    diff "$file.said" "${file%.*}.out" || { echo "says something else than its page: $file"; failed=1; }
  fi
done
echo "$programs programs"
exit $failed
