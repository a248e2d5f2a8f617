#!/usr/bin/env bash
# Man pages of section 3 out of Doxygen's: signal_tzm_ROOM for a header, signal_tzm_ROOM_FAMILY for each group of
# operations in it, and the name of each operation as a link to the page that tells of it.
#   man3.sh DOXYGEN_PAGES FOLDER VERSION DATE HEADER...
set -euo pipefail
from=$1 folder=$2 version=$3 date=$4
shift 4
rm -rf "$folder"
mkdir -p "$folder"

# page ROOM NAME: what Doxygen says of the group NAME, in the order of a man page. `families` are a room's pages.
page() {
  awk -v room="$1" -v name="signal_tzm_$2" -v version="$version" -v date="$date" -v families="${families[*]}" '
    # A table of one line: three spaces stand behind a cell, a fourth behind a row. A header may lack its first cell.
    function table(line,    rows, cells, widest, row, column, count, columns, form, made) {
      count = split(line, rows, /    /)
      sub(/ +$/, "", rows[count])
      columns = split(rows[2], cells, /   /)
      for (row = 1; row <= count; ++row) {
        if (split(rows[row], cells, /   /) < columns) rows[row] = "   " rows[row]
        split(rows[row], cells, /   /)
        for (column = 1; column <= columns; ++column) {
          if (length(cells[column]) > widest[column]) widest[column] = length(cells[column])
          made = made (column > 1 ? "|" : "") "T{\n" cells[column] "\nT}"
        }
        made = made "\n"
      }
      for (column = 1; column <= columns; ++column) form = form (widest[column] > 24 ? " lx" : " l")
      return ".TS\nallbox tab(|);\n" form ".\n" made ".TE\n"
    }
    FNR == 1 { print "\047\\\" t" }
    /^[^.].*   $/ { $0 = table($0) }
    /^\.TH / { print ".TH " name " 3 " date " \"signal_tzm " version "\" signal_tzm\n.ad l\n.nh"; next }
    /^\.SH NAME/ { print; getline; sub(/^[^ ]*/, name); print; next }
    /^\.S[HS] / {
      part = $0 ~ /"Detailed Description"/ ? "description" : $0 ~ /"Functions"/ ? "synopsis" : "rest"
      if ($0 ~ /"Modules"/ || $0 ~ /"Author"/) part = "left out"
      if (part != "rest") next
      if (/^\.SH|"[A-Z][a-z]+"/) $0 = ".SH " toupper(substr($0, 5))
    }
    !/^\.(ad|nh|PP *$)/ || text[part] != "" { text[part] = text[part] $0 "\n" }
    END {
      print ".SH SYNOPSIS\n.B #include <signal_tzm/" room ".h>\n.PP\n" text["synopsis"]
      print ".SH DESCRIPTION\n" text["description"] text["rest"] ".SH SEE ALSO"
      count = split(families, page, " ")
      for (i = 1; i <= count; ++i) print ".BR " page[i] " (3)" (i < count ? "," : "")
      if (count == 0) print ".BR signal_tzm_" room " (3)"
      print ".PP\nThe pages of the package libsignal\\-tzm\\-doc: scale, exactness, errors, rules."
    }' "$from/$2.3" | gzip -9n >"$folder/signal_tzm_$2.3.gz"
}

for header in "$@"; do
  room=$(basename "$header" .h)
  names=()
  for file in "$from/$room"_*.3; do
    if [ -e "$file" ]; then names+=("$(basename "$file" .3)"); fi
  done
  families=()
  for name in "${names[@]}"; do
    page "$room" "$name"
    [ "$room" != companion ] || continue  # others define these names too
    { grep -oE '\\fB\w+\\fP \(' "$from/$name.3" || true; } | sed 's/^...\(.*\)\\fP (/\1/' | while read -r operation; do
      ln -s "signal_tzm_$name.3.gz" "$folder/$operation.3.gz"
    done
  done
  families=("${names[@]/#/signal_tzm_}")
  page "$room" "$room"
done
