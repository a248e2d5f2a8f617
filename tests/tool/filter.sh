# `tzm filter`.

# gain FREQUENCY OPTION...: the filter's gain in dB at a frequency, measured on a long sine.
gain() {
  "$make_sound" in.wav 1 240000 "$1" 0.5 0
  "$tzm" filter "${@:2}" in.wav out.wav >/dev/null
  figure '.channels[0].rms_db + 9.0309' stats out.wav
}
near 'lowpass, below' "$(gain 1000 -f 3000)" 0 0.02
near 'lowpass, at the cut-off' "$(gain 3000 -f 3000)" -6.02 0.1
near 'lowpass, above' "$(gain 4000 -f 3000 -t 1001)" -70 20
near 'highpass, below' "$(gain 1000 -k highpass -f 3000 -w hann)" -70 20
near 'highpass, above' "$(gain 9000 -k highpass -f 3000 -w blackman)" 0 0.02
near 'bandpass, below' "$(gain 1000 -k bandpass -f 3000 -u 6000)" -70 20
near 'bandpass, inside' "$(gain 4500 -k bandpass -f 3000 -u 6000)" 0 0.02
near 'bandpass, at its upper edge' "$(gain 6000 -k bandpass -f 3000 -u 6000)" -6.02 0.1
near 'bandstop, inside' "$(gain 4500 -k bandstop -f 3000 -u 6000)" -70 20
near 'bandstop, above' "$(gain 12000 -k bandstop -f 3000 -u 6000)" 0 0.02

# The output lies in time as the input, whatever the length of the filter: sample by sample they differ by no more
# than the ripple of the pass band (0.0022 with hamming). A file of many blocks and two channels, so that the edges of
# blocks are in it too; both ends, which a filter blurs, are left aside.
"$make_sound" long.wav 2 300000 500 0.5 0
for taps in 5 63 1023; do
  "$tzm" filter -f 12000 -t "$taps" --response plot.svg long.wav same.wav >said.txt
  near "length with $taps taps" "$(figure .samples stats same.wav)" 300000 0
  near "difference with $taps taps" "$(difference long.wav same.wav 560000 20000)" 0 0.0011
done
{ grep -q '48000 Hz, 2 channels, 6.25 s' said.txt && grep -q '<svg' plot.svg; } || wrong "it said: $(cat said.txt)"

# A recording keeps its rate and 16-bit samples; one may be filtered into itself.
cp "$recordings/Front_Center.wav" self.wav
"$tzm" filter -k bandpass -f 300 -u 3400 self.wav self.wav >/dev/null
near 'bytes of a recording' "$(($(stat -c %s self.wav) - $(stat -c %s "$recordings/Front_Center.wav")))" 0 100
"$tzm" psd --csv self.wav | awk -F, 'NR > 1 && $1 > 4500 && $2 > -90 { bad = 1 } END { exit bad }' ||
  wrong 'a recording after a bandpass'

# The taps are those of SciPy: what the filter makes of one sample.
/usr/bin/python3 - "$tzm" <<'END' || wrong "SciPy's taps"
import subprocess, sys, numpy, scipy.signal
click = numpy.eye(1, 501, 250, numpy.float32).tobytes()
for kind, name in zip(("lowpass", "highpass", "bandpass", "bandstop", "lowpass", "bandstop"),
                      ("hamming", "hann", "blackman", "kaiser", "bartlett", "rectangular")):
    edges = [3000, 9000] if kind[0] == "b" else [3000]
    subprocess.run([sys.argv[1], "filter", "-k", kind, "-w", name, "-f", "3000", *["-u", "9000"][:2 * len(edges) - 2],
                    "-t", "401", "--raw", "--rate", "48000", "--format", "float", "-", "taps.raw"], input=click,
                   stdout=subprocess.DEVNULL, check=True)
    window = {"kaiser": ("kaiser", scipy.signal.kaiser_beta(80)), "rectangular": "boxcar"}.get(name, name)
    expected = scipy.signal.firwin(401, edges, pass_zero=kind, fs=48000, window=window)
    difference = abs(numpy.fromfile("taps.raw", numpy.float32)[50:451] - expected).max()
    assert difference < 3e-7, (kind, name, difference)
END
"$tzm" filter -w blackman-opt -f 3000 in.wav out.wav >/dev/null || wrong 'blackman-opt'

refuses 2 'is for --window kaiser' filter -f 100 -a 60 in.wav out2.wav
refuses 2 'is the sound itself' filter -f 100 --response self.png "$(cp in.wav self.png; echo self.png)" out2.wav
refuses 2 'needs --cutoff' filter in.wav out2.wav
refuses 2 'needs --upper' filter -k bandstop -f 100 in.wav out2.wav
refuses 2 'takes no --upper' filter -f 100 -u 200 in.wav out2.wav
refuses 2 'not below half' filter -f 24000 in.wav out2.wav
refuses 2 'must lie below' filter -k bandpass -f 300 -u 300 in.wav out2.wav
refuses 2 '--taps is odd' filter -f 300 -t 64 in.wav out2.wav
