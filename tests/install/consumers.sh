#!/usr/bin/env bash
# consumers.sh BUILD SCRATCH SOURCE: installs the build, moves the prefix, and builds SOURCE against it in C and
# C++, by CMake and by pkg-config; each program must find its tone. The environment tells the compilers.
set -euo pipefail
build=$1 scratch=$2/scratch source=$3
prefix=$scratch/moved
rm -rf "$scratch"
mkdir -p "$scratch"

"$CMAKE" --install "$build" --prefix "$scratch/installed" >"$scratch/install.log"
mv "$scratch/installed" "$prefix"
if grep -rl -e "$scratch/installed" -e "$build" "$prefix/$LIBDIR/cmake" "$prefix/$LIBDIR/pkgconfig"; then
  echo "the files above name the place where they were built or first installed"
  exit 1
fi

"$CMAKE" -S "$(dirname "$0")/consumer" -B "$scratch/consumer" -G Ninja -DSOURCE="$source" \
  -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_FLAGS="$FLAGS" -DCMAKE_CXX_FLAGS="$FLAGS" \
  ${TOOLCHAIN:+-DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN"} >"$scratch/consumer.log"
"$CMAKE" --build "$scratch/consumer" >>"$scratch/consumer.log"

export PKG_CONFIG_PATH=$prefix/$LIBDIR/pkgconfig LD_LIBRARY_PATH=$prefix/$LIBDIR
# The flags of pkg-config are words to be split.
# shellcheck disable=SC2046,SC2086
{
  "$CC" -std=c99 -Wall -Wextra -Werror $FLAGS "$source" -o "$scratch/pc_c" $("$PKG_CONFIG" --cflags --libs signal_tzm)
  "$CXX" -std=c++17 -Wall -Wextra -Werror $FLAGS -x c++ "$source" -x none -o "$scratch/pc_cxx" \
    $("$PKG_CONFIG" --cflags --libs signal_tzm)
}

for program in "$scratch"/consumer/as_c "$scratch"/consumer/as_cxx "$scratch"/pc_c "$scratch"/pc_cxx; do
  said=$(${EMULATOR:-} "$program")
  [ "$said" = "strongest: 1000 Hz" ] || { echo "${program##*/} said '$said'"; exit 1; }
done
if [ -x "$prefix/bin/tzm" ]; then env -u LD_LIBRARY_PATH "$prefix/bin/tzm" --version; fi

# All examples, as someone builds them who has the installed package alone; they need the target's libsndfile.
if [ -z "${TOOLCHAIN:-}" ]; then
  "$CMAKE" -S "$(dirname "$source")" -B "$scratch/examples" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_C_FLAGS="$FLAGS" -DCMAKE_CXX_FLAGS="$FLAGS" >"$scratch/examples.log"
  "$CMAKE" --build "$scratch/examples" >>"$scratch/examples.log"
fi
