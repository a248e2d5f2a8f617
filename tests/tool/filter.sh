# shellcheck shell=bash disable=SC2154
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

refuses 2 'needs --cutoff' filter in.wav out2.wav
refuses 2 'needs --upper' filter -k bandstop -f 100 in.wav out2.wav
refuses 2 'takes no --upper' filter -f 100 -u 200 in.wav out2.wav
refuses 2 'not below half' filter -f 24000 in.wav out2.wav
refuses 2 'must lie below' filter -k bandpass -f 300 -u 300 in.wav out2.wav
refuses 2 '--taps is odd' filter -f 300 -t 64 in.wav out2.wav
