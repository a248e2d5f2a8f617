#!/usr/bin/env bash
# Inputs of bad faith, made by libFuzzer under the sanitizers: formats, and sound files for the tool's reader.
#   fuzz.sh BUILD RUNS   (needs clang++ and build/native; BUILD keeps the inputs that reach something new)
set -euo pipefail
cd "$(dirname "$0")/../.."
build=$1 runs=$2
flags=(-std=c++20 -O1 -g -march=native -Iinclude -Isrc -Itool -DHWY_COMPILE_ONLY_STATIC
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
python3 - "$build/sounds" <<'PYTHON'
import sys, wave
for width in (1, 2, 3, 4):
    with wave.open(f"{sys.argv[1]}/seed{width}", "wb") as sound:
        sound.setnchannels(1 + width % 2), sound.setsampwidth(width), sound.setframerate(8000)
        sound.writeframes(bytes(range(240)))
PYTHON

clang++ "${flags[@]}" tests/assault/fuzz_format.cpp src/format/format.cpp -o "$build/format"
libraries=build/native/lib
# shellcheck disable=SC2046
clang++ "${flags[@]}" -Dmain=tool_main -DTZM_VERSION='"fuzz"' -DTZM_MARCH='"native"' tests/assault/fuzz_reader.cpp \
  tool/*.cpp $(pkg-config --cflags --libs sndfile cairo cairo-png cairo-svg) -ldl -L"$libraries" \
  -Wl,-rpath,"$PWD/$libraries" -lsignal_tzm -Wl,--no-as-needed -ltzm_core -ltzm_vmath -ltzm_fft -lopenblas -lm \
  -o "$build/reader"
"$build/format" -runs="$runs" -max_len=128 -verbosity=0 -print_final_stats=1 "$build/formats"
"$build/reader" -runs="$((runs / 100))" -max_len=4096 -verbosity=0 -print_final_stats=1 -close_fd_mask=3 "$build/sounds"
