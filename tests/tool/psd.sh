# `tzm psd`.

# A sine of amplitude a on a bin, through a Hann window of N points: density a^2/2 over its noise bandwidth of
# 1.5 rate/(N - 1).
"$make_sound" tone.wav 2 96000 1000 0.5 0
"$tzm" psd --channel 2 --segment 4800 --json tone.wav >tone.json
near "tone's frequency" "$(jq '.peaks[0].frequency_hz' tone.json)" 1000 0.05
near "tone's density" "$(jq '.peaks[0].density_db' tone.json)" -20.792 0.01
near "tone's count of segments" "$(jq .segments tone.json)" 39 0
near "tone's mean square" "$(jq '[.spectrum.density_db[] | pow(10; . / 10)] | add * 10' tone.json)" 0.125 0.0005
near "tone's highest bin" "$(jq '.spectrum | .density_db as $d | .frequency_hz[$d | index(max)]' tone.json)" 1000 0

# Between two bins; another channel has none.
"$make_sound" between.wav 2 96000 1003.1 0.5 0.0001
near 'frequency between bins' "$(figure '.peaks[0].frequency_hz' psd -c 2 between.wav)" 1003.1 0.5
near "first channel's peaks" "$(figure '.peaks | length' psd between.wav)" 0 0

# A file of many pieces gives what SciPy's estimate gives, also when the steps do not divide the pieces.
"$make_sound" long.wav 1 2500000 440 0.1 0.2
/usr/bin/python3 - "$tzm" <<'END' || wrong "SciPy's estimates"
import io, math, subprocess, sys, numpy, scipy.signal
samples = numpy.fromfile("long.wav", numpy.float32, offset=44).astype(float)
for shape in ("1000 0 hann", "1000 0.37 hann", "512 0.5 hamming", "4096 0.5 blackman", "4097 0.5 bartlett",
              "30000 0.95 rectangular"):
    segment, overlap, name = shape.split()
    said = subprocess.run([sys.argv[1], "psd", "-s", segment, "-p", overlap, "-w", name, "--csv", "long.wav"],
                          capture_output=True, text=True, check=True).stdout
    window = scipy.signal.get_window(name.replace("rectangular", "boxcar"), int(segment), fftbins=False)
    hertz, density = scipy.signal.welch(samples, 48000, window, noverlap=math.ceil(int(segment) * float(overlap)),
                                        detrend=False)
    difference = abs(numpy.loadtxt(io.StringIO(said), delimiter=",", skiprows=1).T - [hertz, 10 * numpy.log10(density)])
    assert difference.max() < 0.0005, (shape, difference.max())
END

# The recordings: a table, a plot of the format that its name asks for.
"$tzm" psd "$recordings/Front_Center.wav" >table.txt
[ "$(head -c 8 Front_Center-psd.png | od -An -tx1 | tr -d ' ')" = 89504e470d0a1a0a ] || wrong "no PNG by default"
[ "$(grep -c '^ *[0-9]' table.txt)" = 8 ] || wrong "table of eight peaks: $(cat table.txt)"
"$tzm" psd --frequency linear --peaks 3 -o noise.svg "$recordings/Noise.wav" >table.txt
grep -q '<svg' noise.svg || wrong "no SVG"
[ "$(grep -c '^ *[0-9]' table.txt)" = 3 ] || wrong "table of three peaks: $(cat table.txt)"

# Names that are no text, and silence, are no obstacle.
cp tone.wav $'b\xe4d "name"\n.wav'
"$tzm" psd --json -c 2 -o odd.svg $'b\xe4d "name"\n.wav' |
  jq -e '.file == "b?d \"name\"?.wav"' >/dev/null || wrong "JSON of an odd name"
"$tzm" psd tone.wav | grep -q 'Silence: there is nothing to draw' || wrong 'silence drawn'
warns 'nothing to draw' psd --json -o silent.svg tone.wav
jq -e '.spectrum.density_db[9] == null' "$said.out" >/dev/null || wrong 'JSON of silence'

# All channels at once: as each alone; as an array.
"$tzm" psd -c all -o all.svg --npy tone.wav >all.npy
"$tzm" psd -c 2 --csv tone.wav >second.csv
near 'second of all channels' "$(/usr/bin/python3 -c 'import numpy
all, second = numpy.load("all.npy"), numpy.loadtxt("second.csv", delimiter=",", skiprows=1)
print(abs(all["density_db_2"] - second[:, 1]).max() + abs(all["frequency_hz"] - second[:, 0]).max())')" 0 1e-4
grep -q '<svg' all.svg || wrong 'no plot of all channels'
near 'channels of the peaks' "$(figure '[.peaks[].channel] | unique | .[]' psd -c all tone.wav)" 2 0

"$make_sound" short.wav 1 5 1000 0.5 0
cp tone.wav tone.png
refuses 2 'is the sound itself' psd -o tone.png tone.png
refuses 2 'leaves no step' psd --segment 10 --overlap 0.95 tone.wav
refuses 2 'longer than' psd --segment 100000 tone.wav
refuses 1 'holds 5 samples' psd short.wav
