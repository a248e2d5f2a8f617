#!/usr/bin/env bash
# manual.sh TZM MAKE_SOUND ONE_CALL SCRATCH: every command and every option that --help tells is in the man page.
# shellcheck source-path=SCRIPTDIR source=common.sh
manual=$(cd "$(dirname "$0")/../../docs/man" && pwd)/tzm.1
. "$(dirname "$0")/common.sh"

commands=$("$tzm" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p')
[ -n "$commands" ] || wrong 'no command in the help'
for command in $commands; do
  section=$(sed 's/\\-/-/g' "$manual" | awk -v start=".SS \"tzm $command" \
    '/^\.S[HS]/ { inside = index($0, start) == 1 || $0 == ".SH OPTIONS" } inside')
  grep -qF "tzm $command" <<<"$section" || wrong "the man page has no section for $command"
  for option in $("$tzm" "$command" --help | grep -o '^ .\{6\}--[a-z-]*' | grep -o -- '--[a-z-]*'); do
    grep -qF -- "$option" <<<"$section" || wrong "the man page lacks $option of $command"
  done
done

[ "$failures" = 0 ]
