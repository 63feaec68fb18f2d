# A project of the documents' own blocks, built in both ways; its programs print what stands in them.
# Texts to standard error, so that a test's log ends with the reason.
fail() {
  echo "$*" >&2
  exit 1
}
must_print() {
  local wanted=$1 printed
  shift
  printed=$("$@") && [ "$printed" = "$wanted" ] || fail "$* printed: $printed; wanted: $wanted"
}
# first_block LANGUAGE PAGE
first_block() { awk -v start="\`\`\`$1" 'inside && /^```$/ { exit } inside; $0 == start { inside = 1 }' "$2"; }

# consumer_to FOLDER: the first programs of the documents, their project file and the compilers' lines.
consumer_to() {
  local docs=${BASH_SOURCE[0]%/*}/../../docs program
  mkdir -p "$1"/{next,pkg-config}
  first_block cmake "$docs/packages.md" >"$1/CMakeLists.txt"
  sed 's/vxnlsloc 6.1/vxnlsloc 7/' "$1/CMakeLists.txt" >"$1/next/CMakeLists.txt"
  grep 'pkg-config --cflags' "$docs/packages.md" >"$1/compile.sh"
  first_block c "$docs/../README.md" >"$1/from_c.c"
  first_block cpp "$docs/cpp.md" >"$1/from_cpp.cc"
  for program in from_c.c from_cpp.cc; do sed -n 's,.*// prints ,,p' "$1/$program" >"$1/${program%.*}.printed"; done
  cp "$1"/from_*.c* "$1/pkg-config"
  cp "${BASH_SOURCE[0]}" "$1"
}

# consume FOLDER: what consumer_to put there; the environment says where the installation lies.
consume() {
  local program
  cmake -S "$1" -B "$1/cmake" -DCMAKE_BUILD_TYPE=Release >"$1/log" && cmake --build "$1/cmake" >>"$1/log" ||
    fail "find_package: $(<"$1/log")"
  cmake -S "$1/next" -B "$1/next" >"$1/log" 2>&1 && fail "version 6 is taken for 7"
  [[ $(<"$1/log") == *"version: 6.1"* ]] || fail "version 7 is refused, but not for its version: $(<"$1/log")"
  (cd "$1/pkg-config" && bash -e ../compile.sh) || fail "pkg-config"
  for program in "$1"/{cmake,pkg-config}/from_{c,cpp}; do must_print "$(<"$1/${program##*/}.printed")" "$program"; done
}
