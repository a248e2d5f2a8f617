# Doxygen's input filter for the public headers: a header becomes a group of the manual, each of its `@name` groups a
# page below it. An operation has no comment of its own; that of its `@name` group, if it says anything, is its
# documentation. Lines keep their numbers for Doxygen's warnings.

# The comment that begins a header names its group; it comes a line later, in the place of the include guard.
FNR == 1 {
  room = FILENAME
  gsub(/.*\/|\.h$/, "", room)
  title = substr($0, 4)
  sub(/[:.].*/, "", title)
  print "/** @defgroup " room " " title
  held = "   " substr($0, 4)
  next
}
held != "" {
  if (!/^#ifndef/) { print held; held = $0; next }
  print held
  held = ""
  next
}
/^#define SIGNAL_TZM_/ { print "/** @{ */"; next }
/^#(include|define)/ { print ""; next }
/^#if/ { ++depth }
/^#endif/ && depth-- == 0 { print "/** @} */"; next }

/^\/\*\* @name / {
  group = substr($0, 11)
  slug = tolower(group)
  gsub(/[^a-z0-9]+/, "_", slug)
  print "/** @defgroup " room "_" slug " " group
  in_comment = 1
  said = 0
  next
}
in_comment && /[A-Za-z]/ { said = 1 }
in_comment && /\*\// { in_comment = 0 }
/@} \*\// { said = 0 }
# The fields of a record on one line are told with it.
/^typedef struct [^ ]* { / {
  gsub(/, /, "; " $5 " ")
  gsub($5 " ", "/** @brief Of this record. */ " $5 " ")
}
said && !in_comment && /^(TZM_API|typedef) / { print "/** @brief Of this group. */ " $0; next }

{ print }
