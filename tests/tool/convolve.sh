# `tzm convolve` and `tzm delay`.

# Noise over several blocks with the response 0, 1/2, 0, -1/2, ... of 20 samples, against plain sums.
"$make_sound" noise.wav 1 150000 0 0 0.5
"$make_sound" short.wav 1 20 12000 0.5 0
"$tzm" convolve noise.wav short.wav made.wav >/dev/null
near 'difference from sums' "$(paste <(values noise.wav 150000; yes 0 | head -19) <(values made.wav 150019) | awk '
  { x[NR % 32] = $1; y = 0; for (k = 1; k < 20; k += 2) if (NR > k) y += (k % 4 == 1 ? 0.5 : -0.5) * x[(NR - k) % 32]
    print y - $2 }' | worst)" 0 1e-6

# A response longer than a block: sound and response are exchangeable. One for each channel; a gain.
"$make_sound" long.wav 1 80001 0.3 0.001 0.01
"$tzm" convolve noise.wav long.wav one.wav >/dev/null
"$tzm" convolve long.wav noise.wav other.wav >/dev/null
near 'difference of the exchanged' "$(difference one.wav other.wav 230000)" 0 2e-5
"$make_sound" stereo.wav 2 96000 1000 0.25 0
"$tzm" tone -f 1 -p -90 -a 1 -s 0.00002 --format float minus.wav >/dev/null
"$tzm" convolve -g -6.0206 stereo.wav minus.wav made.wav >/dev/null
near 'level after a gain' "$(figure '.channels[1].rms_db' stats made.wav)" -21.072 0.001

# Delays: of noise cut off at its start, of the longer one against it, of an inverted one, and half a sample.
tail -c $((4 * (150000 - 12345))) noise.wav |
  "$tzm" convolve --raw --rate 48000 --format float - minus.wav late.wav >/dev/null
"$tzm" convolve noise.wav minus.wav inverted.wav >/dev/null
"$tzm" tone -f 1 -p 90 -s 0.00004 --format float half.wav >/dev/null
"$tzm" convolve noise.wav half.wav between.wav >/dev/null
near 'delay' "$(figure .delay_samples delay -r late.wav noise.wav)" 12345 0.01
near 'delay of the earlier one' "$(figure .delay_samples delay -r noise.wav late.wav)" -12345 0.01
near 'coefficient beyond the range' "$(figure .coefficient delay -r noise.wav --range 50 late.wav)" 0 0.05
near 'delay by half a sample' "$(figure .delay_samples delay -r noise.wav between.wav)" 0.5 0.01
near 'coefficient by half a sample' "$(figure .coefficient delay -r noise.wav between.wav)" 0.7071 0.005
[ "$(figure '[.delay_samples, .coefficient] | tostring' delay -r noise.wav noise.wav)" = '"[0,1]"' ] || wrong 'equals'
near 'delay of a pipe' "$(figure .delay_samples delay -r noise.wav - <late.wav)" -12345 0.01
near 'delay of the inverted' "$(figure .delay_samples delay -r noise.wav inverted.wav)" 0 0.001
near 'coefficient of the inverted' "$(figure .coefficient delay -r noise.wav inverted.wav)" -1 1e-4
near 'lags' "$("$tzm" delay --csv --range 1 -r noise.wav -o lags.svg late.wav | wc -l)" 98 0
grep -q '<svg' lags.svg || wrong 'no plot of the lags'

"$tzm" tone -r 8000 slow.wav >/dev/null
"$make_sound" none.wav 1 0 1 1 0
refuses 1 'tzm resample' convolve noise.wav slow.wav out.wav
refuses 1 'has 2 channels, the recording 1' convolve noise.wav stereo.wav out.wav
refuses 1 'is silent' delay stereo.wav
refuses 2 'has 1 channel' delay noise.wav
refuses 1 'tzm resample' delay -r slow.wav noise.wav
