# `tzm spectrogram` and `tzm envelope`.

# A sine on a bin: half its squared amplitude there, 6.02 dB less in the bins beside it (Hann), at all times.
"$make_sound" sine.wav 2 48000 3000 0.5 0
"$tzm" spectrogram -c 2 --csv sine.wav >sine.csv
near 'levels of the sine' "$(awk -F, 'NR > 1 { print $66 + 9.031 }' sine.csv | worst)" 0 0.01
near 'levels beside it' "$(awk -F, 'NR > 1 { print $67 + 15.05 }' sine.csv | worst)" 0 0.03
[ "$(head -1 sine.csv | cut -d, -f1,66,67)" = time_s,3000,3046.875 ] || wrong "head of CSV: $(head -c 99 sine.csv)"
near 'times' "$(wc -l <sine.csv)" 185 0
near 'first time' "$(sed -n 2p sine.csv | cut -d, -f1)" "$(awk 'BEGIN { print 512 / 48000 }')" 1e-6

# More segments than columns: a burst in silence is where it was.
"$tzm" tone -s 40 -r 16000 -a 0.5 keys.wav -k 5 >/dev/null
"$tzm" spectrogram --json -s 256 keys.wav >long.json
near 'columns' "$(jq '.spectrograms[0].time_s | length' long.json)" 1250 450
near 'end of the key' "$(jq '.spectrograms[0] | .frequency_hz as $f | [.time_s, .level_db] | transpose |
  map(select(.[1][$f | index(750)] as $l | $l != null and $l > -40)[0]) | max' long.json)" 40 0.05

# Envelopes: of a sine its amplitude, also over the edges of blocks; of a burst its length.
"$tzm" tone -f 1234.5 -a 0.25 -s 5 --format float tone.wav >/dev/null
near 'envelope of a sine' "$("$tzm" envelope --csv tone.wav | awk -F, 'NR > 20 && NR < 980 { print $2 - 0.25 }' |
  worst)" 0 0.0005
near 'steps of an envelope' "$(figure '.envelope.envelope | length' envelope tone.wav)" 1000 0
near 'length of a burst' "$(figure '[.envelope.envelope[] | select(. > 0.1)] | length' envelope -s 10 keys.wav)" 4000 4

# The pictures: PNG by default, SVG by name.
"$tzm" spectrogram "$recordings/Front_Center.wav" >said.txt
"$tzm" envelope "$recordings/Front_Center.wav" >>said.txt
for plot in Front_Center-{spectrogram,envelope}.png; do
  [ "$(head -c 8 "$plot" | od -An -tx1 | tr -d ' ')" = 89504e470d0a1a0a ] || wrong "no PNG: $plot"
  grep -q "Plot: $plot" said.txt || wrong "it said: $(cat said.txt)"
done
"$tzm" spectrogram -o plot.svg "$recordings/Noise.wav" >/dev/null
grep -q '<image' plot.svg || wrong 'no image in SVG'

"$make_sound" silence.wav 1 5000 1 0 0
warns 'nothing to draw' spectrogram --json -o silence.svg silence.wav
jq -e '.spectrograms[0].level_db[0][0] == null' "$said.out" >/dev/null || wrong 'spectrogram of silence'
warns 'nothing to draw' envelope --csv -o silence.svg silence.wav
tail -1 "$said.out" | grep -q ',0$' || wrong 'envelope of silence'

# All channels; arrays.
"$tzm" spectrogram -c all -o all.npy sine.wav >/dev/null
"$tzm" envelope -c all -o all.svg --npy sine.wav >envelopes.npy
/usr/bin/python3 -c 'import numpy
a, e = numpy.load("all.npy"), numpy.load("envelopes.npy")
assert a.shape == (2, 185, 514) and a[1, 0, 65] == 3000 and abs(a[1, 9, 65] + 9.031) < 0.01
assert a[0, 9, 65] == -numpy.inf and abs(e["envelope_2"][9] - 0.5) < 1e-4 and e["envelope_1"].max() == 0' ||
  wrong 'arrays of all channels'

# Against SciPy of the whole file, sample by sample: whole in memory and longer, of even and odd length; slow sines,
# one between the two parts of the method, one at half the rate.
/usr/bin/python3 - "$tzm" <<'END' || wrong 'envelopes'
import io, subprocess, sys, numpy, scipy.signal
for length in 7, 99999, 1200000, 1250235:
    t = 2 * numpy.pi * numpy.arange(length)
    for name, sound in {"slow": 0.5 * numpy.sin(t * 3.3 / length), "middle": 0.5 * numpy.sin(t / 1024),
                        "high": 0.5 * numpy.cos(t * (0.5 - 3 / length)), "constant": 0.5 + 0 * t}.items():
        said = subprocess.run([sys.argv[1], "envelope", "-s", "0.001", "--npy", "--raw", "--rate", "48000", "--format",
                               "float", "-"], input=sound.astype(numpy.float32).tobytes(), capture_output=True).stdout
        got, expected = numpy.load(io.BytesIO(said))["envelope"], abs(scipy.signal.hilbert(sound))
        assert len(got) == length and abs(got - expected).max() < 1e-5, (length, name, abs(got - expected).max())
END
refuses 2 'multiple of 4' spectrogram -s 1022 sine.wav
"$make_sound" short.wav 1 300 1000 0.5 0
near 'segment of a short sound' "$(figure .segment spectrogram short.wav)" 256 0
refuses 2 'longer than' spectrogram -s 512 short.wav
refuses 2 'longer than' psd -s 134217727 short.wav
