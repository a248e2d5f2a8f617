#!/usr/bin/env bash
# Holds the built library's binary interface, its functions with their parameter types, against the committed one.
#   abi.sh LIBRARY INCLUDE_DIR ABI_FILE            compares
#   abi.sh LIBRARY INCLUDE_DIR ABI_FILE --write    writes ABI_FILE anew, after a change that is meant
# The file is what abidw makes, of public types only, without what every entry repeats; a function is a line.
set -euo pipefail
library=$1 include=$2 file=$3

if [ "${4:-}" = --write ]; then
  abidw --headers-dir "$include" --drop-private-types --exported-interfaces-only --drop-undefined-syms --no-corpus-path \
    --no-comp-dir-path --no-show-locs --no-architecture --no-elf-needed --no-parameter-names "$library" |
    sed -zE "s/ (mangled-name|visibility)='[^']*'//g; s/ binding='global-binding'//g; s/\n +/\n/g
      s/\n<(parameter|return|\/function)/<\1/g" >"$file"
  exit
fi

if abidiff --no-architecture --headers-dir2 "$include" --drop-private-types \
  --suppressions "$(dirname "$0")/abi.suppr" "$file" "$library"; then
  exit
fi
echo "The interface has changed. If that is meant: $0 $library $include $file --write"
exit 1
