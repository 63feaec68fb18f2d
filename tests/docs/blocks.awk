# Turns the C++ and C blocks of a document into functions, with what their comments say they print.
#
#   awk -f blocks.awk -v document=docs/cpp.md -v name=docs_cpp_md docs/cpp.md > docs_cpp_md.inc
#
# A block with a main is taken whole; any other is the inside of a function. In "// prints TEXT" stands one line of
# output; the lines together are what the block prints.
function quoted(text) {
  gsub(/["\\]/, "\\\\&", text)
  return text
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
  whole = body ~ /(^|\n)int main\(/
  printf "namespace %s_%d {\n", name, start
  if (!whole) printf "void run() {\n"
  printf "#line %d \"%s\"\n%s", start + 1, document, body
  if (!whole) printf "}\n"
  printf "}\n"
  table = table sprintf("    {\"%s:%d\", [] { %s_%d::%s(); }, \"%s\"},\n", document, start, name, start, \
                        whole ? "main" : "run", printed)
  next
}
inside {
  body = body $0 "\n"
  if (match($0, /\/\/ prints /)) printed = printed quoted(substr($0, RSTART + RLENGTH)) "\\n"
}
END {
  printf "const Block %s[] = {\n%s};\n", name, table
  if (inside) exit 1
}
