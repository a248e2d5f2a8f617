#!/usr/bin/env bash
# Malformed inputs, made by libFuzzer under the sanitizers: formats, and sound files for the tool's reader.
#   fuzz.sh BUILD FORMATS SOUNDS   (how many; needs clang++ and build/native; BUILD keeps the inputs that reach
#   something new)
set -euo pipefail
cd "$(dirname "$0")/../.."
build=$1 formats=$2 sounds=$3
flags=(-std=c++20 -O2 -g1 -march=native -Iinclude -Isrc -Itool -DHWY_COMPILE_ONLY_STATIC
  -fsanitize=fuzzer,address,undefined -fno-sanitize=alignment -fno-sanitize-recover=undefined)
mkdir -p "$build/formats" "$build/sounds"

# What to begin with.
while read -r number format; do
  printf '01234567\77\5%s' "$format" >"$build/formats/seed$number"
done <<'TEXT'
1 %d|%5.3f|%-8x|%+e
2 %#o %hhd %lld %zu %jx
3 %Lf %.40Le %La
4 %c%%%p %G %08.3A
TEXT
for ending in wav w64 aiff au flac caf ogg opus mp3; do
  for format in u8 16 24 float ulaw; do
    build/native/bin/tzm tone -s 0.005 --format "$format" "$build/sounds/$format.$ending" >"$build/said" 2>&1 ||
      continue
  done
  [[ $ending != @(ogg|opus|mp3) ]] || build/native/bin/tzm tone -s 0.005 "$build/sounds/one.$ending" >"$build/said"
done

clang++ "${flags[@]}" tests/assault/fuzz_format.cpp src/format/format.cpp -o "$build/format"
# shellcheck disable=SC2046
clang++ "${flags[@]}" tests/assault/fuzz_reader.cpp tool/{audio_reader,audio_writer,new_file,options,text}.cpp \
  $(pkg-config --cflags --libs sndfile) -o "$build/reader"
"$build/format" -runs="$formats" -max_len=128 -verbosity=0 -print_final_stats=1 -artifact_prefix="$build/" \
  "$build/formats"
# Small stacks, whose shadow is cleared for every thread, and little memory kept aside: ten times as fast. The sound
# library's own decoders leak what they took for a file that they refuse.
ulimit -s 256
ASAN_OPTIONS=detect_leaks=0:quarantine_size_mb=1:thread_local_quarantine_size_kb=64:detect_stack_use_after_return=0 \
  "$build/reader" -runs="$sounds" -max_len=2048 -verbosity=0 -print_final_stats=1 -artifact_prefix="$build/" \
  -close_fd_mask=3 "$build/sounds"
