#!/usr/bin/env bash
# manual.sh FOLDER VERSION TZM...: man pages of tzm and of each of its commands, made of what --help says. TZM is the
# program, after its emulator if it needs one; SOURCE_DATE_EPOCH is the date that the pages bear.
set -euo pipefail
folder=$1 version=$2
shift 2
here=$(cd "$(dirname "$0")" && pwd)
rm -rf "$folder"
mkdir -p "$folder"

# page NAME SUMMARY WORD... OPTION...: the words are what calls the program; a command's page has its name in one word.
page() {
  local name=$1 summary=$2
  shift 2
  help2man --no-info --version-string="$version" --source=signal_tzm --name="$summary" "$@" |
    sed -e "1,6{s/^\.TH TZM /.TH ${name^^} /; s/^${name/-/ } /$name /}" \
      -e '/^\.SH EXAMPLES/,/^\.SH [^E]/{s/^\.IP$/.nf/; s/^\.SH [^E]/.fi\n&/}' | gzip -9n >"$folder/$name.1.gz"
}

page tzm 'analyse, filter and make sound files' --include="$here/manual.h2m" "$*"
commands=$("$@" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\)  *\(.*\)/\1 \2/p')
while read -r command summary; do
  page "tzm-$command" "$summary" --include=<(printf '[see also]\n.BR tzm (1)\n') "$* $command"
done <<<"$commands"
