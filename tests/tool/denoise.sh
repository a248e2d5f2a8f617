# `tzm denoise`.

# A sine in noise that came through a lowpass; the reference has the same noise before it (the same seed). What is
# left of it in the last second of ten is held against the sine alone.
"$make_sound" sine.wav 1 480000 1000 0.1 0
"$make_sound" both.wav 1 480000 1000 0.1 0.2
"$make_sound" noise.wav 1 480000 1000 0 0.2
"$tzm" filter -f 5000 -t 63 both.wav recording.wav >/dev/null
residue() {
  paste <(values sine.wav 48000) <(values "$1" 48000) | awk '{ s += ($1 - $2) ^ 2 } END { print sqrt(s / NR) }'
}
near 'noise before' "$(residue recording.wav)" 0.0527 0.002  # 0.2/sqrt(3) in 5 of 24 kHz
"$tzm" denoise -r noise.wav recording.wav clean.wav >said.txt
near 'noise after' "$(residue clean.wav)" 0 0.008
near 'length' "$(figure .samples stats clean.wav)" 480000 0
"$tzm" denoise -r noise.wav --rate 0.001 recording.wav clean.wav >/dev/null
near 'noise after slow learning' "$(residue clean.wav)" 0 0.003

# The noise in the second channel; a reference that ends early or is silent leaves the recording as it is.
"$make_sound" stereo.wav 2 96000 1000 0.25 0
"$tzm" denoise -c 2 --reference-channel 1 stereo.wav same.wav >/dev/null
near 'with a silent reference' "$(figure '.channels[0].rms_db' stats same.wav)" -15.0515 0.0001
"$make_sound" short.wav 1 10 0 0 0.1
"$tzm" denoise -r short.wav sine.wav same.wav >/dev/null
near 'with a short reference' "$(residue same.wav)" 0 1e-4

"$tzm" tone -r 8000 slow.wav >/dev/null
refuses 2 'its own reference' denoise -c 2 stereo.wav out.wav
refuses 2 'has 1 channel' denoise sine.wav out.wav
refuses 1 'tzm resample' denoise -r slow.wav sine.wav out.wav
