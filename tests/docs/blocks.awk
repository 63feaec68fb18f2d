# Turns the C++ and C blocks of a document into functions, with what their comments say they print.
#
#   awk -f blocks.awk -v document=docs/cpp.md docs/cpp.md > blocks.cc
#
# A block with a main is taken whole; any other is the inside of a function. In "// prints TEXT" stands one line of
# output; the lines together are what the block prints.
function quoted(text) {
  gsub(/["\\]/, "\\\\&", text)
  return text
}
BEGIN {
  print "#include \"tests/docs/blocks.h\"\n"
}
!inside && /^```(cpp|c)$/ {
  inside = 1
  start = NR
  body = ""
  printed = ""
  next
}
inside && /^```$/ {
  inside = 0
  ++count
  whole = body ~ /(^|\n)int main\(/
  printf "namespace {\nnamespace block_%d {\n", count
  if (!whole) printf "void run() {\n"
  printf "#line %d \"%s\"\n%s", start + 1, document, body
  if (!whole) printf "}\n"
  printf "}\n}\n"
  table = table sprintf("    {\"%s:%d\", [] { block_%d::%s(); }, \"%s\"},\n", document, start, count, \
                        whole ? "main" : "run", printed)
  next
}
inside {
  body = body $0 "\n"
  if (match($0, /\/\/ prints /)) printed = printed quoted(substr($0, RSTART + RLENGTH)) "\\n"
}
END {
  printf "\nnamespace {\nconst vxtest::Blocks registered{{\n%s}};\n}\n", table
  if (inside) exit 1
}
