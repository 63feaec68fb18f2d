# Builds the consumer project in both ways, and holds what its programs print against what they must.
expected='21.11.2026 14:05:09 1234.5'

# Texts to standard error, so that a test's log ends with the reason.
fail() {
  echo "$*" >&2
  exit 1
}

must_print() {
  local wanted=$1 printed
  shift
  printed=$("$@") || fail "failed: $*"
  [ "$printed" = "$wanted" ] || fail "$* printed: $printed; wanted: $wanted"
}

# consumer_to FOLDER: the two programs, with the project file and the compilers' lines that docs/packages.md shows.
consumer_to() {
  local here=${BASH_SOURCE[0]%/*}
  local page=$here/../../docs/packages.md
  cp -r "$here/consumer" "$1"
  awk '/^```$/ { inside = 0 } inside; /^```cmake$/ { inside = 1 }' "$page" >"$1/CMakeLists.txt"
  grep 'pkg-config --cflags' "$page" >"$1/compile.sh"
  cp "$here/consume.sh" "$1"
}

# consume FOLDER: what consumer_to put there; the environment says where the installation lies.
consume() {
  local by project
  cmake -S "$1" -B "$1/cmake" -DCMAKE_BUILD_TYPE=Release >"$1/log" && cmake --build "$1/cmake" >>"$1/log" ||
    fail "find_package: $(<"$1/log")"
  mkdir "$1/next" "$1/pkg-config"
  project=$(<"$1/CMakeLists.txt")
  echo "${project/vxnlsloc 6.1/vxnlsloc 7}" >"$1/next/CMakeLists.txt"
  if cmake -S "$1/next" -B "$1/next" >"$1/log" 2>&1; then fail "version 6 is taken for 7"; fi
  [[ $(<"$1/log") == *"version: 6.1"* ]] || fail "version 7 is refused, but not for its version: $(<"$1/log")"
  cp "$1"/*.c "$1"/*.cc "$1/pkg-config"
  (cd "$1/pkg-config" && bash -e ../compile.sh) || fail "pkg-config"
  for by in cmake pkg-config; do
    must_print "$expected" "$1/$by/from_c"
    must_print "$expected" "$1/$by/from_cpp"
  done
}
