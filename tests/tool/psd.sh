#!/usr/bin/env bash
# psd.sh TZM MAKE_SOUND ONE_CALL SCRATCH: `tzm psd` end to end.
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"
one_call=$3

# A sine of amplitude a on a bin, through a Hann window of N points: density a^2/2 over its noise bandwidth of
# 1.5 rate/(N - 1).
"$make_sound" tone.wav 2 96000 1000 0.5 0
"$tzm" psd --channel 2 --segment 4800 --json tone.wav >tone.json
near "tone's frequency" "$(jq '.peaks[0].frequency_hz' tone.json)" 1000 0.05
near "tone's density" "$(jq '.peaks[0].density_db' tone.json)" -20.792 0.01
near "tone's count of segments" "$(jq .segments tone.json)" 39 0
near "tone's mean square" "$(jq '[.spectrum.density_db[] | pow(10; . / 10)] | add * 10' tone.json)" 0.125 0.0005
near "tone's highest bin" "$(jq '.spectrum | .density_db as $d | .frequency_hz[$d | index(max)]' tone.json)" 1000 0
near "first channel's peaks" "$("$tzm" psd --json tone.wav | jq '.peaks | length')" 0 0

# Between two bins, and with the other windows.
"$make_sound" between.wav 1 96000 1003.1 0.5 0.0001
for window in hann hamming blackman bartlett rectangular; do
  "$tzm" psd -w "$window" --json between.wav >between.json
  near "frequency through $window" "$(jq '.peaks[0].frequency_hz' between.json)" 1003.1 2.5
  near "mean square through $window" \
    "$(jq '[.spectrum.density_db[] | pow(10; . / 10)] | add * 48000 / 4096' between.json)" 0.125 0.002
done

# A file of many pieces gives what one call over all of it gives, also when the steps do not divide the pieces.
"$make_sound" long.wav 1 2500000 440 0.1 0.2
for shape in '1000 0.37' '4096 0.5' '30000 0.95'; do
  read -r segment overlap <<<"$shape"
  "$tzm" psd -w rectangular -s "$segment" -p "$overlap" --csv long.wav >long.csv
  near "difference from one call ($shape)" "$("$one_call" long.csv long.wav "$segment" "$overlap")" 0 0.0005
done

# The recordings: a table, a plot of the format that its name asks for.
"$tzm" psd "$recordings/Front_Center.wav" >table.txt
[ "$(head -c 8 Front_Center-psd.png | od -An -tx1 | tr -d ' ')" = 89504e470d0a1a0a ] || wrong "no PNG by default"
[ "$(grep -c '^ *[0-9]' table.txt)" = 8 ] || wrong "table of eight peaks: $(cat table.txt)"
"$tzm" psd --frequency linear --peaks 3 -o noise.svg "$recordings/Noise.wav" >table.txt
grep -q '<svg' noise.svg || wrong "no SVG"
[ "$(grep -c '^ *[0-9]' table.txt)" = 3 ] || wrong "table of three peaks: $(cat table.txt)"
rm ./*.png

# Names that are no text, and silence, are no obstacle.
cp tone.wav $'b\xe4d "name"\n.wav'
"$tzm" psd --json -o odd.svg $'b\xe4d "name"\n.wav' |
  jq -e '.file == "b?d \"name\"?.wav" and .spectrum.density_db[9] == null' >/dev/null || wrong "JSON of an odd name"

# Each mistake: its line and its status.
echo 'no sound' >broken.wav
"$make_sound" short.wav 1 5 1000 0.5 0
"$make_sound" nan.wav 1 9000 nan 0.5 0
refuses 2 'which command'
refuses 2 "unknown command 'pds'" pds tone.wav
refuses 2 'missing operand: FILE' psd
refuses 2 "one operand too many: 'b'" psd a b
refuses 2 "'--colour'" psd --colour tone.wav
refuses 2 "'-z'" psd -z tone.wav
refuses 2 "'--segment' needs a value" psd tone.wav --segment
refuses 2 "from 8 to 268435455, not '12x'" psd --segment 12x tone.wav
refuses 2 "not '0'" psd --overlap 0 tone.wav
refuses 2 "not 'nan'" psd --overlap nan tone.wav
refuses 2 'leaves no step' psd --segment 10 --overlap 0.95 tone.wav
refuses 2 'not '\''welch'\' psd --window welch tone.wav
refuses 2 'has 2' psd --channel 3 tone.wav
refuses 2 '.png or .svg' psd -o plot.pdf tone.wav
refuses 2 'exclude each other' psd --csv --json tone.wav
refuses 2 'longer than' psd --segment 100000 tone.wav
refuses 1 'No such file' psd absent.wav
refuses 1 'it is a folder' psd .
refuses 1 'no sound file' psd broken.wav
refuses 1 'holds 5 samples' psd short.wav
refuses 1 'not finite' psd nan.wav
status=0
"$tzm" psd --csv tone.wav >/dev/full 2>said.err || status=$?
[ "$status" = 1 ] || wrong "a full device: exit status $status"
status=0
"$tzm" psd --csv -o absent/plot.png tone.wav >/dev/null 2>said.err || status=$?
{ [ "$status" = 1 ] && grep -q 'absent/plot.png' said.err; } || wrong "an absent folder: $status, $(cat said.err)"
explains ''
explains psd

[ "$failures" = 0 ]
