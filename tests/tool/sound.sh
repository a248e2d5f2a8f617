# How every command reads and writes sound.

# Integers are those nearest to what was computed, ties to even, and saturate; with dither they are as near on the
# average, the error's deviation being half a place of the last bit.
"$make_sound" noise.wav 2 200000 1000 0.9 0.2
"$tzm" filter -f 12000 --format double noise.wav made.raw >/dev/null
for bits in 8 16 24 32; do
  for dither in '' --dither; do
    "$tzm" filter -f 12000 --format $bits $dither noise.wav "$bits$dither.wav" >/dev/null
    "$tzm" filter -f 12000 --format $bits $dither noise.wav "$bits$dither.raw" >/dev/null
  done
done
/usr/bin/python3 - <<'END' || wrong 'rounding'
import numpy
made = numpy.fromfile("made.raw")[1::2]  # the channel that sounds
for bits in 8, 16, 24, 32:
    top = 2.0 ** (bits - 1)
    wanted = numpy.clip(numpy.rint(made * top), -top, top - 1)
    for name in f"{bits}", f"{bits}--dither":
        data = numpy.fromfile(name + ".raw", numpy.uint8).reshape(-1, bits // 8)[1::2]
        got = numpy.zeros((len(made), 4), numpy.uint8)
        got[:, 4 - bits // 8:] = data
        got = got.view(numpy.int32)[:, 0] / 2.0 ** (32 - bits)
        if name.isdigit():
            assert (got == wanted).all(), name
        inside = abs(made * top) < top - 2
        error = (got - made * top)[inside]
        deviation = (0.25 if "dither" in name else 1 / 12 if bits < 32 else 0) ** 0.5
        assert abs(error.mean()) < 0.01, (name, error.mean())
        assert bits == 32 or abs(error.std() - deviation) < 0.02, (name, error.std())
        assert inside.sum() < len(made), name
END

# The name says the format; it is read again as it was written, from a file and from a pipe, and half of it is told.
"$make_sound" sine.wav 1 96000 1000 0.5 0
"$make_sound" rough.wav 1 480000 1000 0.5 0.2
for format in 'wav RIFF' 'w64 riff' 'aiff FORM' 'au .snd' 'caf caff' 'flac fLaC' \
  'ogg OggS' 'opus OggS' 'MP3 -' 'raw -'; do
  read -r ending magic <<<"$format"
  "$tzm" filter -f 20000 --dither sine.wav "made.$ending" >/dev/null
  [ "$magic" = - ] || [ "$(head -c 4 "made.$ending")" = "$magic" ] || wrong "no $ending: $(head -c 4 "made.$ending")"
  raw=()
  if [ "$ending" = raw ]; then raw=(--raw --rate 48000 --format float); fi
  near "level of $ending" "$(figure '.channels[0].rms_db' stats "${raw[@]}" "made.$ending")" -9.031 0.1
  if [[ $ending != @(caf|raw|MP3) ]]; then
    "$tzm" filter -f 20000 rough.wav "rough.$ending" >/dev/null
    head -c $(($(stat -c %s "rough.$ending") / 2)) "rough.$ending" >"half.$ending"
    promise=' of the 480000 samples that it promises'
    if [[ $ending == @(ogg|opus) ]]; then promise='its end is missing after'; fi
    warns "$promise" stats --json "half.$ending"
    near "samples of half a $ending" "$(jq .samples "$said.out")" 240000 50000
  fi
  if [[ $ending != @(caf|flac|opus|MP3) ]]; then
    level=$(figure '.channels[0].rms_db' stats "${raw[@]}" - < <(cat "made.$ending"))
    near "level of $ending in a pipe" "$level" -9.031 0.1
    [[ $ending == raw || $("$tzm" stats - < <(cat "rough.$ending") 2>&1) != *cut* ]] ||
      wrong "a whole $ending is cut off"
  fi
done
warns 'standard input' stats - < <(cat half.wav)
warns 'is cut off' filter -f 100 half.wav out.wav
near 'what was made of it' "$(figure .samples stats out.wav)" 240000 100
"$tzm" resample -r 8000 --format ulaw sine.wav law.au >/dev/null
near 'level of law.au' "$(figure '.channels[0].rms_db' stats law.au)" -9.031 0.05
"$tzm" filter -f 3900 law.au law.raw >/dev/null
"$tzm" resample --raw --raw-rate 8000 --format ulaw -r 48000 law.raw law.flac >/dev/null
near 'level of law.flac' "$(figure '.channels[0].rms_db' stats law.flac)" -9.031 0.05
refuses 2 'tells no format' tone out.xyz
refuses 2 'tells no format' tone out
refuses 2 'leave out --format' tone --format 16 out.ogg
refuses 1 'in this --format' tone --format float out.flac
refuses 1 'cannot write' tone -r 44100 out.opus

# Pipes: bit for bit what files give; a header with the length where that can be known in the end.
"$tzm" filter -f 5000 --format 16 noise.wav file.wav >/dev/null
"$tzm" filter -f 5000 --format 16 - - < <(cat noise.wav) 2>/dev/null | tee pipe.wav | "$tzm" stats --json - >pipe.json
cmp <(tail -c 800000 pipe.wav) <(tail -c 800000 file.wav) || wrong 'a pipe makes other samples'
near 'samples in a pipe' "$(jq .samples pipe.json)" 200000 0
"$tzm" filter -f 5000 --format 16 - - <noise.wav >redirected.wav 2>/dev/null
near 'bytes that its header tells' "$(od -An -tu4 -j40 -N4 redirected.wav)" 800000 0
tail -c 1600000 noise.wav |
  "$tzm" resample --raw --raw-rate 48000 --channels 2 --format float -r 16000 - raw.wav >/dev/null
"$tzm" resample -r 16000 noise.wav same.wav >/dev/null
cmp raw.wav same.wav || wrong 'headerless samples'
/usr/bin/python3 -c 'import numpy, sys
sys.stdout.buffer.write(numpy.fromfile("noise.wav", "<f4", offset=44).astype(">f4"))' |
  "$tzm" resample --raw --big-endian --raw-rate 48000 --channels 2 --format float -r 16000 - raw.wav >/dev/null
cmp raw.wav same.wav || wrong 'samples with high bytes first'
refuses 2 'needs --rate' stats --raw made.raw
refuses 2 'need --raw' stats --channels 2 made.raw
refuses 1 'from a pipe WAV' stats - < <(cat made.flac)
