# The headers as doxygen wants them:
#   the comment at the head of a file becomes the description of the file;
#   in a contract, indented lines (arguments, statuses, examples) keep their columns;
#   declarations that follow each other without an empty line share the comment above the first;
#   /* what stands behind a member */ describes the member.
function end_columns() {
  if (columns) print indent "/// @endverbatim"
  columns = 0
}
function comment_line(line,   text) {
  match(line, /^ */)
  indent = substr(line, 1, RLENGTH)
  text = line
  sub(/^ *\/\/\/? ?/, "", text)
  if (text ~ /^  / && !columns) {
    print indent "/// @verbatim"
    columns = 1
  } else if (columns && text !~ /^  / && text != "") {
    end_columns()
  }
  if (!columns && text !~ /^@/) gsub(/[\\@#<>&]/, "\\\\&", text)
  print indent "/// " text
}

# In C at the margin; in the C++ face wherever the comment stands. A function of several lines ends in a brace there.
function starts_another() {
  if (FILENAME !~ /hpp$/) return $0 ~ /^(VX_API|#define|typedef) /
  match($0, /^ */)
  return RLENGTH == length(block_indent) && $0 ~ /^ *[A-Za-z\[~]/
}
function ends_one() {
  return $0 ~ (FILENAME ~ /hpp$/ ? "^" block_indent "[^ /].*[;}]$|^" block_indent "}$" : ";( *//.*| */\\*.*)?$|^#define ")
}

FNR == 1 {
  head = 1
  columns = in_block = 0
  block = ""
  print "/// @file"
}
head && /^\/\// {
  comment_line($0)
  next
}
head {
  end_columns()
  print ""
  head = 0
}
/^ *\/\/\// {
  if (!in_block) block = ""
  in_block = 1
  match($0, /^ */)
  block_indent = substr($0, 1, RLENGTH)
  block = block $0 "\n"
  comment_line($0)
  next
}
{
  end_columns()
  if ($0 ~ /^$/) block = ""
  in_block = 0
  if (shared && block != "" && starts_another()) {
    n = split(block, lines, "\n")
    for (i = 1; i < n; ++i) comment_line(lines[i])
    end_columns()
  }
  if ($0 ~ /^VX_API / && block == "") print FILENAME ":" FNR ": no comment" >"/dev/stderr"
  shared = block != "" && ends_one()
  line = $0
  if (line ~ /^[ #].*[;,A-Za-z0-9_)}] +\/\* [^*]*$/ || line ~ /^[ #].*[;,A-Za-z0-9_)}] +\/\* .*\*\/$/) sub(/\/\* /, "/**< ", line)
  print line
}
