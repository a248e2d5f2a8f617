#!/usr/bin/env bash
# consumers.sh WAY BUILD SCRATCH SOURCE: installs the build by cmake --install and moves the prefix (WAY is `prefix`),
# or makes its Debian packages, looks into them and unpacks them into a root of their own (WAY is `packages`). Then
# builds SOURCE against it in C and C++, by CMake and by pkg-config; each program must find its tone. The environment
# tells the compilers.
set -euo pipefail
way=$1 build=$2 scratch=$3/$1 source=$4
rm -rf "$scratch"
mkdir -p "$scratch"

wrong() {
  echo "$*"
  exit 1
}

# holds PACKAGE FILE...: the package has the files.
holds() {
  local package=$1 file
  shift
  dpkg-deb --contents "$scratch/$package"_*.deb >"$scratch/$package.files"
  for file in "$@" "usr/share/doc/$package/"{copyright,changelog.gz}; do
    grep -qE " \./$file( ->|$)" "$scratch/$package.files" || wrong "$package lacks $file"
  done
}

# field PACKAGE NAME EXPECTED...: the field of the package has all that is expected.
field() {
  local package=$1 name=$2 value expected
  shift 2
  value=", $(dpkg-deb --field "$scratch/$package"_*.deb "$name"),"
  for expected in "$@"; do
    [[ $value == *", $expected"[,\ ]* ]] || wrong "$name of $package is '$value', without '$expected'"
  done
}

look_into_packages() {
  local run=libsignal-tzm${VERSION%%.*} package deb commands
  commands=$(${EMULATOR:-} "$build/bin/tzm" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/-\1/p')
  # shellcheck disable=SC2046,SC2086
  {
    holds "$run" "usr/$LIBDIR/lib"{signal_tzm,tzm_{core,vmath,fft}}.so.{"$VERSION","${VERSION%%.*}"}
    holds libsignal-tzm-dev "usr/$LIBDIR/lib"{signal_tzm,tzm_{core,vmath,fft}}.so usr/include/signal_tzm.h \
      "usr/$LIBDIR/"{pkgconfig/signal_tzm.pc,cmake/signal_tzm/signal_tzmConfig.cmake}
    holds tzm usr/bin/tzm usr/share/bash-completion/completions/tzm usr/share/zsh/vendor-completions/_tzm \
      $(printf 'usr/share/man/man1/tzm%s.1.gz\n' '' $commands)
  }
  dpkg-deb --info "$scratch/${run}"_*.deb symbols >"$scratch/symbols"
  grep -q '^ ORVAS_Mul_32f@SIGNAL_TZM_0.1 0.1.0$' "$scratch/symbols" || wrong "$run does not list the library's names"
  for package in "$run" libsignal-tzm-dev tzm; do
    field "$package" Version "$VERSION"
    field "$package" Architecture "$ARCHITECTURE"
  done
  field "$run" Depends libc6 libgomp1
  field libsignal-tzm-dev Depends "$run (= $VERSION)" libopenblas-dev
  field tzm Depends "$run (= $VERSION)" libcairo2 libsndfile1 libopenblas0
  if [ -z "$TOOLCHAIN" ]; then
    holds libsignal-tzm-doc \
      usr/share/doc/libsignal-tzm-doc/{README.md,docs/testing.md,examples/{find_tone.c,gallery.py}}
    if command -v doxygen >/dev/null; then
      holds libsignal-tzm-doc usr/share/doc/libsignal-tzm-doc/html/index.html \
        usr/share/doc-base/libsignal-tzm-doc.signal-tzm usr/share/man/man3/{signal_tzm_arith_squares,ORVAS_Sqr_32f}.3.gz
    fi
    field libsignal-tzm-doc Architecture all
  fi
  if command -v lintian >/dev/null; then
    lintian --fail-on error "$scratch"/*.deb || wrong 'lintian has objections'
  fi
  for deb in "$scratch"/*.deb; do dpkg-deb --extract "$deb" "$scratch/root"; done
}

# The Python package beside the library, without the build folder.
look_into_python() {
  local package=python3-signal-tzm
  holds $package usr/lib/python3/dist-packages/signal_tzm/{__init__.py,py.typed,_raw.abi3.so}
  field $package Architecture "$ARCHITECTURE"
  field $package Depends "libsignal-tzm${VERSION%%.*} (= $VERSION)" python3-numpy python3-cffi-backend \
    libc6 libopenblas0
  [ -n "$TOOLCHAIN" ] || [ "$(PYTHONPATH=$scratch/root/usr/lib/python3/dist-packages PYTHONDONTWRITEBYTECODE=1 \
    /usr/bin/python3 -c 'import signal_tzm as tz; print(tz.sum([1.0, 2.0]))')" = 3.0 ] || wrong 'Python got no sum'
}

if [ "$way" = packages ]; then
  cpack --config "$build/CPackConfig.cmake" -B "$scratch" >"$scratch/cpack.log" || wrong "$(cat "$scratch/cpack.log")"
  look_into_packages
  if compgen -G "$scratch/python3-*.deb" >/dev/null; then look_into_python; fi
  prefix=$scratch/root/usr
else
  "$CMAKE" --install "$build" --prefix "$scratch/installed" >"$scratch/install.log"
  mv "$build/install_manifest.txt" "$scratch"  # tzm_uninstall is not to find it
  "$CMAKE" --install "$build" --prefix "$scratch/alone" --component runtime >>"$scratch/install.log"
  rm "$build/install_manifest_runtime.txt"
  [ ! -e "$scratch/alone/share" ] || wrong 'what only packages have was installed'
  prefix=$scratch/moved
  mv "$scratch/installed" "$prefix"
fi
if grep -rl -e "$scratch/installed" -e "$build" "$prefix/$LIBDIR/cmake" "$prefix/$LIBDIR/pkgconfig"; then
  wrong 'the files above name the place where they were built or first installed'
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
  [ "$said" = "strongest: 1000 Hz" ] || wrong "${program##*/} said '$said'"
done
# The installed tool, which needs no LD_LIBRARY_PATH, and the level of the library that the loader takes for it.
level() {
  env -u LD_LIBRARY_PATH "$@" "$prefix/bin/tzm" info --json | sed 's/.*"vector_level": "\([^"]*\)".*/\1/'
}
if [ -x "$prefix/bin/tzm" ]; then
  [ "$(${EMULATOR:-} "$prefix/bin/tzm" --version)" = "tzm $VERSION" ] || wrong 'version of the installed tzm'
fi
if [ -n "$HWCAPS" ]; then
  narrow=$(level GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX512F) wide=$(level) expected=$MARCH
  if /lib64/ld-linux-x86-64.so.2 --help | grep -q "$HWCAPS (supported"; then expected=$HWCAPS; fi
  [ "$narrow $wide" = "$MARCH $expected" ] || wrong "levels $narrow and $wide, not $MARCH and $expected"
fi

# All examples, as someone builds them who has the installed package alone; they need the target's libsndfile.
if [ -z "${TOOLCHAIN:-}" ]; then
  "$CMAKE" -S "$(dirname "$source")" -B "$scratch/examples" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_C_FLAGS="$FLAGS" -DCMAKE_CXX_FLAGS="$FLAGS" >"$scratch/examples.log"
  "$CMAKE" --build "$scratch/examples" >>"$scratch/examples.log"
fi

# What was installed goes away again; and the source tree is part of another project, whose targets keep their names.
if [ "$way" = prefix ]; then
  mv "$prefix" "$scratch/installed"
  tree=$(dirname "$source")/..
  "$CMAKE" -P "$tree/cmake/uninstall.cmake" "$scratch"
  left=$(find "$scratch/installed" ! -type d -o -name 'signal_tzm*' -o -name glibc-hwcaps)
  [ -z "$left" ] || wrong "tzm_uninstall leaves $left"
  mkdir "$scratch/parent"
  printf '%s\n' 'cmake_minimum_required(VERSION 3.25)' 'project(parent LANGUAGES C CXX)' \
    'foreach(name docs packages uninstall)' 'add_custom_target(${name})' 'endforeach()' \
    "add_subdirectory($tree signal_tzm)" >"$scratch/parent/CMakeLists.txt"
  "$CMAKE" -S "$scratch/parent" -B "$scratch/parent/build" -G Ninja \
    ${TOOLCHAIN:+-DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN"} >"$scratch/parent.log"
  ! grep -q 'share/doc' "$scratch/parent/build/signal_tzm/cmake_install.cmake" ||
    wrong 'another project installs our documents'
  grep -q -- '-O3' "$scratch/parent/build/build.ninja" || wrong 'the library is not optimised in another project'
fi
