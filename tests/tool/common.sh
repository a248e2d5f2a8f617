# shellcheck shell=bash disable=SC2034
# What the end-to-end tests of tzm share; sourced with TZM MAKE_SOUND ... SCRATCH in the arguments. The test runs in
# a fresh folder below SCRATCH.
set -euo pipefail
tzm=$1 make_sound=$2
recordings=/usr/share/sounds/alsa
scratch=${*: -1}/$(basename "$0" .sh)
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

# refuses STATUS TEXT ARGUMENT...: one line on standard error that has TEXT, nothing on standard output, no plot.
refuses() {
  local status=$1 text=$2 got=0
  shift 2
  "$tzm" "$@" >said.out 2>said.err || got=$?
  [ "$got" = "$status" ] || wrong "'$*': exit status $got, not $status"
  [ ! -s said.out ] || wrong "'$*' printed $(cat said.out)"
  { [ "$(wc -l <said.err)" = 1 ] && grep -qF -- "$text" said.err; } || wrong "'$*' said: $(cat said.err)"
  if compgen -G '*.png' >/dev/null; then wrong "'$*' left a plot"; fi
}

# explains COMMAND: its --help has an example.
explains() {
  # shellcheck disable=SC2086
  "$tzm" $1 --help | grep -q '^Example:' || wrong "$1 --help"
}
