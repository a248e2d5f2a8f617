# `tzm resample`.

# A resampled sine is the sine at the new rate, sample by sample, away from the ends; blocks and their edges too.
for rates in '48000 16000' '44100 48000' '48000 44100' '16000 48000' '44100 32001' '48000 199999' '99991 100003'; do
  read -r from to <<<"$rates"
  "$tzm" tone -f 1000 -s 5 -r "$from" --format float source.wav >/dev/null
  "$tzm" tone -f 1000 -s 5 -r "$to" --format float wanted.wav >/dev/null
  "$tzm" resample -r "$to" source.wav got.wav >/dev/null
  near "samples $rates" "$(figure .samples stats got.wav)" $((5 * to)) 0
  near "difference $rates" "$(difference wanted.wav got.wav $((3 * to)) "$to")" 0 2e-5
done

# What the lower rate cannot hold is 100 dB down, what it holds stays up to nine tenths.
level() { # RATE FREQUENCY HEARD
  "$tzm" tone -f "$2" -s 4 --format float in.wav >/dev/null
  "$tzm" resample -r "$1" in.wav out.wav >/dev/null
  "$tzm" detect -f "$3" --frame 200 --csv out.wav | awk -F, 'NR > 1 && $1 >= 2 { print $2 + 9.031; exit }'
}
near 'level in the pass band' "$(level 16000 7000 7000)" 0 0.05
near 'alias of 9000 Hz' "$(level 16000 9000 7000)" -150 50
near 'image of 7000 Hz' "$(level 1400030 7000 41000)" -130 35

cp "$recordings/Front_Center.wav" speech.wav
"$tzm" resample -r 16000 speech.wav speech.wav | grep -q 'speech.wav: 16000 Hz, 1 channel, 1.43 s' ||
  wrong 'a recording'
refuses 2 'which --rate' resample in.wav out2.wav
