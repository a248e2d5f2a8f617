#!/usr/bin/env bash
# Holds the built library's binary interface, its functions with their parameter types, against the committed one.
#   check.sh LIBRARY            compares with signal_tzm.abi
#   check.sh LIBRARY --write    writes signal_tzm.abi anew, after a change that is meant
# The file is what abidw makes, of public types only, without what every entry repeats; a function is a line.
set -euo pipefail
here=$(dirname "$0") library=${1:-}
fail() { echo "check.sh: $*" >&2; exit 2; }
[ -f "$library" ] || fail "no library '$library': check.sh LIBRARY [--write]"
command -v abidw >/dev/null || fail "abidw and abidiff are missing: install abigail-tools"
include=$here/../include file=$here/signal_tzm.abi

if [ "${2:-}" = --write ]; then
  abidw --headers-dir "$include" --drop-private-types --exported-interfaces-only --drop-undefined-syms \
    --type-id-style hash --no-corpus-path --no-comp-dir-path --no-show-locs --no-architecture --no-elf-needed \
    --no-parameter-names \
    "$library" |
    sed -zE "s/ (mangled-name|visibility)='[^']*'//g; s/ binding='global-binding'//g; s/\n +/\n/g
      s/ path='[^']*\/src\// path='src\//g; s/\n<(parameter|return|\/function)/<\1/g" >"$file"
  exit
fi

if abidiff --no-architecture --headers-dir2 "$include" --drop-private-types \
  --suppressions "$here/signal_tzm.suppr" "$file" "$library"; then
  exit
fi
echo "The interface has changed. If that is meant: $0 $library --write"
exit 1
