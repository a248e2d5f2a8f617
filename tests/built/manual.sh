#!/usr/bin/env bash
# The manual builds, which it does not with an operation undocumented, and knows every operation of the library and
# every status; its links lead somewhere, and its man pages have the headers' tables.
#   manual.sh CMAKE BUILD NM LIBRARY SOURCE_DIR
set -euo pipefail
"$1" --build "$2" --target tzm_docs
sed -n '/kind="function"/,/<name>/s/.*<name>\(.*\)<\/name>.*/\1/p' "$2/docs/operations.xml" | LC_ALL=C sort -u \
  >"$2/docs/operations"
missing=$("$3" -D --defined-only --without-symbol-versions "$4" | awk '$2 == "T" {print $3}' | LC_ALL=C sort |
  LC_ALL=C comm -23 - "$2/docs/operations")
[ -z "$missing" ] || { echo "exported, but not in the manual: ${missing//$'\n'/ }"; exit 1; }
for status in $(grep -oE 'ORVA_STS_\w+ = [0-9]+' "$5/include/signal_tzm/status.h" | tr -d ' '); do
  row="| ${status#*=} | \`${status%=*}\` |"
  grep -qF "$row" "$5/docs/errors.md" || { echo "not in docs/errors.md: $status"; exit 1; }
done
! grep -oE 'href="[^"]*\.md[#"]' "$2"/docs/html/*.html || { echo "links to what is not in the manual"; exit 1; }
tables=$(cat "$5"/include/signal_tzm/*.h | grep -c '|---')
made=$(zcat "$2"/docs/man3/signal_tzm_*.gz | grep -c '^\.TS')
[ "$made" = "$tables" ] || { echo "man pages have $made tables, the headers $tables"; exit 1; }
