# `tzm tone` and `tzm detect`.

# A tone of many blocks against the sine itself, its phase too.
"$tzm" tone -f 997 -a 0.25 -p 30 -s 5 --format float tone.wav >said.txt
grep -q 'tone.wav: 48000 Hz, 1 channel, 5.00 s' said.txt || wrong "it said: $(cat said.txt)"
near 'difference from a sine' "$(values tone.wav 240000 |
  awk '{ print $1 - 0.25 * sin(8 * atan2(1, 1) * (997 * (NR - 1) / 48000 + 30 / 360)) }' | worst)" 0 1e-6
"$tzm" tone -f 1000 -a 1 -s 2 -r 8000 --format 24 tone.wav >/dev/null
near 'level in 24 bits' "$(figure '.channels[0].rms_db' stats tone.wav)" -3.0103 0.001

# Every key of the keypad, at two rates, with its times and its level: two tones of a quarter, of which one leaks
# 5 % of amplitude into the other's bin (268 Hz apart in 25 ms).
for rate in 8000 44100; do
  "$tzm" tone -k '123A456B789C*0#D' -s 0.08 -r "$rate" keys.wav >/dev/null
  "$tzm" detect --json keys.wav >keys.json
  [ "$(jq -r '[.tones[].tone] | add' keys.json)" = '123A456B789C*0#D' ] || wrong "keys at $rate Hz: $(cat keys.json)"
  near 'worst time of a key' "$(jq '[.tones | to_entries[] |
    (.value.start_s - 0.16 * .key | fabs), (.value.duration_s - 0.08 | fabs)] | max' keys.json)" 0 0.0101
  near 'worst level of a key' "$(jq '[.tones[].level_db + 12.04 | fabs] | max' keys.json)" 0 0.5
done
"$tzm" tone -k 0123# even.wav >/dev/null
[ "$("$tzm" detect --csv even.wav | cut -d, -f1-3 | xargs)" = \
  'tone,start_s,duration_s 0,0,0.1 1,0.2,0.1 2,0.4,0.1 3,0.6,0.1 #,0.8,0.1' ] || wrong "keys: $("$tzm" detect even.wav)"
"$tzm" detect -o keys.svg keys.wav | grep -q 'Plot: keys.svg' || wrong 'no plot of keys'
"$tzm" detect --csv keys.wav | sed -n 3p | grep -q '^2,0.1[56]' || wrong 'CSV of keys'

# In noise; not in speech; no key in a tone alone.
"$make_sound" noise.wav 1 96000 1000 0.001 0.2
for sound in noise.wav "$recordings"/{Front_Center,Rear_Left,Side_Right,Noise}.wav; do
  [ "$("$tzm" detect "$sound")" = 'No tone found.' ] || wrong "keys in $sound: $("$tzm" detect "$sound")"
done

# One frequency: level over time, and the time it sounds. 1000.2 Hz is a bin of no frame.
"$make_sound" one.wav 2 96000 1000.2 0.5 0.05
"$tzm" detect -c 2 -f 1000.2 --json -o one.svg one.wav >one.json
near 'start' "$(jq '.tones[0].start_s' one.json)" 0 0.006
near 'duration' "$(jq '.tones[0].duration_s' one.json)" 2 0.012
near 'level' "$(jq '.levels.level_db[200]' one.json)" -9.03 0.1
near 'a missing channel of a tone' "$(figure '.tones | length' detect -f 1000 one.wav)" 0 0
near 'lines of levels' "$("$tzm" detect -c 2 -f 1000 --csv one.wav | wc -l)" 402 0
grep -q '<svg' one.svg || wrong 'no plot of the levels'

refuses 2 'not below half' tone -f 24000 out.wav
refuses 2 'not below half' tone -k 1 -r 3000 out.wav
refuses 2 "not '12x'" tone -k 12x out.wav
refuses 2 'less than a sample' tone -s 0.00001 out.wav
refuses 2 'takes no --frequency' tone -k 1 -f 500 out.wav
refuses 2 'not below half' detect -f 30000 one.wav
