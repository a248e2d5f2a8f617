# `tzm stats` and `tzm info`.

# A sine of whole periods that meets its peak: RMS a/sqrt(2), crest sqrt(2).
"$make_sound" sine.wav 2 96000 1000 0.5 0
"$tzm" stats --json sine.wav >sine.json
level() { jq ".channels[1].$1" sine.json; }
near 'RMS' "$(level rms_db)" -9.0309 0.0001
near 'peak' "$(level peak_db)" -6.0206 0.0001
near 'crest' "$(level crest_db)" 3.0103 0.0001
near 'minimum' "$(level minimum)" -0.5 1e-6
jq -e '.samples == 96000 and .channels[0].rms_db == null and .channels[0].maximum == 0' sine.json >/dev/null ||
  wrong "a silent channel: $(cat sine.json)"

# A part of a period, over the edge between two blocks, against plain sums.
"$make_sound" part.wav 1 70001 0.7 0.25 0
read -r mean deviation power < <(awk 'BEGIN {
  for (n = 0; n < 70001; ++n) { x = 0.25 * sin(8 * atan2(1, 1) * 0.7 * n / 48000); s += x; q += x * x }
  m = s / 70001; print m, sqrt((q - 70001 * m * m) / 70000), 10 * log(q / 70001) / log(10) }')
IFS=, read -r _ rms _ _ got_mean got_deviation _ < <("$tzm" stats --csv part.wav | tail -1)
near 'mean of a part' "$got_mean" "$mean" 1e-6
near 'deviation of a part' "$got_deviation" "$deviation" 1e-6
near 'RMS of a part' "$rms" "$power" 1e-4

"$make_sound" one.wav 1 1 1 0 0.5
near 'one sample' "$(figure '.channels[0] | .deviation + .crest_db + .mean - .maximum' stats one.wav)" 0 0
[ "$("$tzm" stats "$recordings/Front_Center.wav" | grep -c '^ *[0-9]')" = 1 ] || wrong 'table of a recording'

"$tzm" info --json >info.json
jq -e '.tool_version == .library_version and (.fft_threads >= 1) and (.vector_level | length > 0)' info.json \
  >/dev/null || wrong "info: $(cat info.json)"
for path in $(jq -r '.library, .companions[]' info.json); do
  [ -f "$path" ] || wrong "a library that is no file: $path"
done
near 'thread count' "$(ORVA_FFT_THREAD_NUM=3 figure .fft_threads info)" 3 0
"$tzm" info | grep -q '^vector level' || wrong 'text of info'
refuses 2 'one operand too many' info sine.wav
