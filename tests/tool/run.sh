#!/usr/bin/env bash
# run.sh TEST TZM SCRATCH: an end-to-end test of tzm, TEST.sh beside this file, in a fresh folder below SCRATCH. What
# the tests share stands here.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
tzm=$2 make_sound=$here/make_sound.py recordings=/usr/share/sounds/alsa
scratch=$3/$1 said=$3/$1.said
rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch"
failures=0

wrong() {
  echo "WRONG: $*"
  failures=$((failures + 1))
}

# near WHAT VALUE EXPECTED TOLERANCE
near() {
  awk -v v="$2" -v e="$3" -v t="$4" 'BEGIN { exit !(v != "" && v >= e - t && v <= e + t) }' || wrong "$1 is $2, not $3"
}

# figure FILTER ARGUMENT...: what the filter finds in the JSON that the call prints.
figure() {
  "$tzm" "${@:2}" --json | jq "$1"
}

# The number of largest magnitude in the first column.
worst() {
  awk '{ d = $1 < 0 ? -$1 : $1; if (!(d <= m)) m = d } END { print (NR > 1 ? m + 0 : "nothing") }'
}

# values FILE COUNT [LEFT]: the last COUNT binary32 samples, but for LEFT ones at the end, a line each.
values() {
  tail -c $((4 * ($2 + ${3:-0}))) "$1" | head -c $((4 * $2)) | od -An -v -w4 -tf4
}

# difference FILE FILE COUNT [LEFT]: the largest one between the values.
difference() {
  paste <(values "$1" "${@:3}") <(values "$2" "${@:3}") | awk '{ print $1 - $2 }' | worst
}

# refuses STATUS TEXT ARGUMENT...: one line on standard error that has TEXT, nothing on standard output, no new file.
refuses() {
  local status=$1 text=$2 got=0 before after
  shift 2
  before=$(ls)
  "$tzm" "$@" >"$said.out" 2>"$said.err" || got=$?
  after=$(ls)
  [ "$got" = "$status" ] || wrong "'$*': exit status $got, not $status"
  [ ! -s "$said.out" ] || wrong "'$*' printed $(cat "$said.out")"
  { [ "$(wc -l <"$said.err")" = 1 ] && grep -qF -- "$text" "$said.err"; } || wrong "'$*' said: $(cat "$said.err")"
  [ "$before" = "$after" ] || wrong "'$*' left a file: $after"
}

# warns TEXT ARGUMENT...: status 3, one line on standard error that has TEXT; the rest is in $said.out.
warns() {
  local got=0
  "$tzm" "${@:2}" >"$said.out" 2>"$said.err" || got=$?
  { [ "$got" = 3 ] && [ "$(wc -l <"$said.err")" = 1 ] && grep -qF -- "$1" "$said.err"; } ||
    wrong "'${*:2}': exit status $got, not 3; it said: $(cat "$said.err")"
}

# shellcheck source=/dev/null
. "$here/$1.sh"
[ "$failures" = 0 ]
