# Builds the consumer project in both ways, and holds what its programs print against what they must.
# consume FOLDER: FOLDER has a copy of consumer/; the environment says where the installation lies.
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

consume() {
  local by flags
  cmake -S "$1" -B "$1/cmake" -DCMAKE_BUILD_TYPE=Release >"$1/log" && cmake --build "$1/cmake" >>"$1/log" ||
    fail "find_package: $(cat "$1/log")"
  if cmake -S "$1" -B "$1/next" -DWANTED=7 >"$1/log" 2>&1; then fail "version 6 is taken for 7"; fi
  mkdir "$1/pkg-config"
  flags=$(pkg-config --cflags --libs 'vxnlshost >= 6.1') || fail "pkg-config"
  # shellcheck disable=SC2086
  gcc -std=c99 "$1/from_c.c" -o "$1/pkg-config/from_c" $flags || fail "C by pkg-config"
  # shellcheck disable=SC2086
  g++ -std=c++20 "$1/from_cpp.cc" -o "$1/pkg-config/from_cpp" $flags || fail "C++ by pkg-config"
  for by in cmake pkg-config; do
    must_print "$expected" "$1/$by/from_c"
    must_print "$expected" "$1/$by/from_cpp"
  done
}
