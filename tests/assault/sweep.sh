#!/usr/bin/env bash
# The same random calls by several builds, whose digests have to be equal.   sweep.sh SEED CALLS COMMAND COMMAND ...
# A command runs a build's program `assault`; CALLS is how many calls each operation gets.
set -euo pipefail
seed=$1 calls=$2
shift 2
dir=$(mktemp -d)
trap 'rm -r "$dir"' EXIT
for command in "$@"; do
  bash -c "$command sweep $seed $calls" >"$dir/digests"
  [ -e "$dir/first" ] || cp "$dir/digests" "$dir/first"
  diff "$dir/first" "$dir/digests" >&2 && continue
  echo "seed $seed: not the digests of the first command: $command" >&2
  exit 1
done
echo "sweep: seed $seed, $(wc -l <"$dir/first") operations, $calls calls of each, equal in $# builds"
