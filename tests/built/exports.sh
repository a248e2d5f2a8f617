#!/usr/bin/env bash
# Holds the built library against the public headers: what it exports, what it leaves unresolved, what it
# needs, whether the table of members knows every operation, and README.md their number. The companions beside it
# export what their header declares, the tool nothing of ours.
#   exports.sh LIBRARY TOOL INCLUDE_DIR CC NM READELF PROGRAM...   (PROGRAM --names lists the table; TOOL may be empty)
set -euo pipefail
library=$1 tool=$2 include=$3 cc=$4 nm=$5 readelf=$6
shift 6
failed=0
dir=$(mktemp -d)
trap 'rm -r "$dir"' EXIT
export LC_ALL=C

# The operations that the given headers declare with the export mark.
declared() {
  printf '#include <signal_tzm/%s>\n' "$@" | "$cc" -x c -std=c99 -E -P -I "$include" - | tr '\n' ' ' |
    grep -oE 'visibility\("default"\)\)\)[^;(]*\(' | grep -oE '\w+ *\($' | tr -d ' (' | sort -u
}

# The names that the files define for others; those of versions aside.
exported() {
  "$nm" -D --defined-only --without-symbol-versions "$@" | awk 'NF == 3 && $2 != "A" {print $3}' | sort -u
}

# Lines of the first sorted list that the second lacks are a failure, with a reason.
none_beyond() {
  local extra
  extra=$(comm -23 "$1" "$2")
  if [ -n "$extra" ]; then
    echo "$3:" $extra
    failed=1
  fi
}

cd "$include/signal_tzm"
declared companion.h > "$dir/companion"
declared *.h | comm -23 - "$dir/companion" > "$dir/declared"
exported "$library" > "$dir/exported"
none_beyond "$dir/exported" "$dir/declared" "exported but not declared"
none_beyond "$dir/declared" "$dir/exported" "declared but not exported"

told=$(awk -F'|' '$4 ~ /^ *[0-9]+ *$/ {sum += $4} END {print sum}' "$include/../README.md")
if [ "$told" != "$(wc -l <"$dir/declared")" ]; then
  echo "README.md counts $told operations, the headers declare $(wc -l <"$dir/declared")"
  failed=1
fi

companions=("${library%/*}"/libtzm_*.so)
exported "${companions[@]}" > "$dir/provided"
none_beyond "$dir/provided" "$dir/companion" "exported by a companion but not declared"
grep -v ^cblas_ "$dir/companion" > "$dir/owed"
none_beyond "$dir/owed" "$dir/provided" "declared but exported by no companion"
for file in "${companions[@]}" ${tool:+"$tool"}; do
  "$readelf" -d "$file" | grep -q 'FLAGS.* NOW' || { echo "names are not bound when it loads: $file"; failed=1; }
done
if [ -n "$tool" ]; then
  exported "$tool" | grep -i -e tzm -e orva > "$dir/tool" || true  # the C++ library's names are the linker's affair
  none_beyond "$dir/tool" /dev/null "exported by the tool"
fi

"$@" --names | sort -u > "$dir/rows"
grep '^ORVAS_' "$dir/exported" > "$dir/operations" || true
none_beyond "$dir/operations" "$dir/rows" "exported, but without a row in tests/members"

# Names with a version come from the C library, which is on the load record. The others are the
# companions', a CBLAS's and the mathematical library's; weak ones are the linker's own.
{
  cat "$dir/companion"
  printf '%s\n' cblas_{s,d,c,z}gemm pow sqrt sqrtf cbrt cbrtf sin cos sincos sinh cosh exp log log10 atan atan2 \
    atan2f cabs
} | sort -u > "$dir/allowed"
"$nm" -D --undefined-only "$library" | awk '$1 == "U" && $2 !~ /@GLIBC_/ {print $2}' | sort -u > "$dir/unresolved"
none_beyond "$dir/unresolved" "$dir/allowed" "unresolved, but no companion's name"

"$readelf" -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -v '^ld-linux-' | sort > "$dir/needed"
printf '%s\n' libc.so.6 libgomp.so.1 | diff - "$dir/needed" > "$dir/record" ||
  { echo "load record is not libgomp.so.1, libc.so.6 and the loader:"; cat "$dir/record"; failed=1; }

echo "$(wc -l < "$dir/exported") exported, $(wc -l < "$dir/unresolved") unresolved"
exit $failed
