# What goes wrong: each mistake has its line and its status, and no file is lost or left.
"$make_sound" sine.wav 2 9000 1000 0.5 0
"$make_sound" nan.wav 2 9000 nan 0.5 0
"$make_sound" none.wav 2 0 1 1 0
echo 'no sound' >broken.wav
cp sine.wav kept.wav

# Options, which all commands read alike.
refuses 2 'which command'
refuses 2 "unknown command 'pds'" pds sine.wav
refuses 2 'missing operand: FILE wanted, 0 given' psd
refuses 2 "one operand too many: 'b'" psd a b
refuses 2 "'--colour'" psd --colour sine.wav
refuses 2 "'-z'" psd -z sine.wav
refuses 2 "'--segment' needs a value" psd sine.wav --segment
refuses 2 "from 8 to 134217727, not '12x'" psd --segment 12x sine.wav
refuses 2 "not '-1'" psd --overlap -1 sine.wav
refuses 2 "not 'nan'" psd --overlap nan sine.wav
refuses 2 "not 'welch'" psd --window welch sine.wav
refuses 2 'has 2 channels and no channel 3' psd --channel 3 sine.wav
refuses 2 '.png or .svg' psd -o plot.pdf sine.wav
refuses 2 'exclude each other' psd --csv --json sine.wav

# Every command with a file that it cannot read, or one that it cannot write.
for call in 'psd IN' 'spectrogram IN' 'envelope IN' 'stats IN' 'detect IN' 'delay IN' 'delay -r IN sine.wav' \
  'filter -f 100 IN OUT' 'resample -r 8000 IN OUT' 'denoise -r IN --reference-channel 2 sine.wav OUT' \
  'denoise -r sine.wav --reference-channel 2 IN OUT' \
  'convolve IN sine.wav OUT' 'convolve sine.wav IN OUT' 'tone -s 0.1 OUT'; do
  if [[ $call == *IN* ]]; then
    for reason in 'absent.wav No such file' '. it is a folder' 'broken.wav no sound file' 'nan.wav not finite' \
      'none.wav holds no samples'; do
      read -r file text <<<"$reason"
      read -ra words <<<"${call/IN/$file}"
      refuses 1 "$text" "${words[@]/OUT/kept.wav}"
    done
  fi
  if [[ $call == *OUT ]]; then
    for reason in 'absent/out.wav No such file' '. no plain file' '/dev/full no plain file'; do
      read -r file text <<<"$reason"
      read -ra words <<<"${call/IN/sine.wav}"
      refuses 1 "$text" "${words[@]/OUT/$file}"
    done
  fi
done

# A full device; a limit on the size of files; an end from outside.
"$tzm" stats sine.wav >/dev/full 2>said.err && wrong 'no failure on a full device'
head -c 40000 sine.wav >cut.wav
status=0
"$tzm" filter -f 100 cut.wav closed.wav <&- >/dev/null 2>&- || status=$?
[ "$status" = 3 ] || wrong 'a file took the number of the closed standard error, and a warning'
grep -q 'No space left' said.err || wrong "on a full device: $(cat said.err)"
(
  ulimit -f 20 && failures=0
  refuses 1 'File too large' tone -s 10 kept.wav
  "$tzm" envelope -c 2 -o plot.svg sine.wav >said.txt 2>&1 && wrong 'a plot beyond the limit'
  { grep -q 'File too large' said.txt && [ ! -e plot.svg ]; } || wrong "of a plot beyond the limit: $(cat said.txt)"
  [ "$failures" = 0 ]
) || wrong 'a limit on the size of files'
"$tzm" tone -s 1000000 kept.wav &
until compgen -G '*.part' >/dev/null; do sleep 0.1; done
kill $! && wait $! && wrong 'a long command that ended well'
if compgen -G '*.part' >/dev/null; then wrong 'a part of a file is left'; fi
cmp -s sine.wav kept.wav || wrong 'a failure touched the output'

# What is replaced keeps its mode.
(umask 022 && chmod 600 kept.wav && "$tzm" tone -s 0.1 kept.wav >/dev/null && [ "$(stat -c %a kept.wav)" = 600 ]) ||
  wrong "a private file is now $(stat -c %a kept.wav)"

# A terminal is told no nonsense about sound of unknown length; saturation is told.
script -qec "yes | head -c 20000000 | '$tzm' filter --raw --rate 48000 -f 100 - out.wav" /dev/null >said.txt
{ grep -q '208.33 s' said.txt && ! grep -qE 'nan|inf|%' said.txt; } || wrong "of a pipe it said: $(cat said.txt)"
"$tzm" tone -f 1 -p 90 -a 1 -s 0.00002 one.wav >/dev/null
"$tzm" convolve -g 1 one.wav one.wav out.wav | grep -q '^1 sample' || wrong 'saturation'

# What the shells complete is what the commands take.
"$tzm" --completion bash >tzm.bash
[ "$(bash -c '. ./tzm.bash; compopt() { :; }; COMP_WORDS=(tzm psd --window ha) COMP_CWORD=3; _tzm tzm ha --window
  echo "${COMPREPLY[@]}"; COMP_WORDS=(tzm sp) COMP_CWORD=1; _tzm tzm sp tzm; echo "${COMPREPLY[@]}"' | xargs)" = \
  'hann hamming spectrogram' ] || wrong 'completion for bash'
"$tzm" --completion zsh >_tzm
grep -q -- "--segment=,-s}'\[samples in a segment" _tzm || wrong 'completion for zsh'
refuses 2 "bash or zsh, not 'fish'" --completion fish
refuses 2 'bash or zsh' --completion

for command in '' $("$tzm" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p'); do
  "$tzm" ${command:+"$command"} --help | grep -q '^Examples:' || wrong "$command --help"
done
