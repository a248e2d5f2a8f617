# shellcheck shell=bash disable=SC2154
# `tzm spectrogram` and `tzm envelope`.

# A sine on a bin: half its squared amplitude there, 6.02 dB less in the bins beside it (Hann), at all times.
"$make_sound" sine.wav 2 48000 3000 0.5 0
"$tzm" spectrogram -c 2 --csv sine.wav >sine.csv
near 'levels of the sine' "$(awk -F, '$2 == 3000 { print $3 + 9.031 }' sine.csv | worst)" 0 0.01
near 'levels beside it' "$(awk -F, '$2 > 3040 && $2 < 3050 { print $3 + 15.05 }' sine.csv | worst)" 0 0.03
near 'times' "$(grep -c ',3000,' sine.csv)" 184 0
near 'first time' "$(sed -n 2p sine.csv | cut -d, -f1)" "$(awk 'BEGIN { print 512 / 48000 }')" 1e-6

# More segments than columns: a burst in silence is where it was.
"$tzm" tone -f 3000 -s 40 -r 16000 -a 0.5 keys.wav -k 5 >/dev/null
"$tzm" spectrogram --json -s 256 keys.wav >long.json
near 'columns' "$(jq '.levels.time_s | unique | length' long.json)" 1250 450
near 'end of the key' "$(jq '.levels | [.time_s, .frequency_hz, .level_db] | transpose |
  map(select(.[1] == 750 and .[2] != null and .[2] > -40)[0]) | max' long.json)" 40 0.05

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
near 'silence' "$(figure '.levels.level_db[0] == null' spectrogram -o silence.svg silence.wav | grep -c true)" 1 0
"$tzm" envelope --csv -o silence.svg silence.wav | tail -1 | grep -q ',0$' || wrong 'envelope of silence'
refuses 2 'multiple of 4' spectrogram -s 1022 sine.wav
