#!/usr/bin/env bash
# Builds the library from another folder, without ccache, and holds it against the one of this build, byte for byte; in
# a long run all that is installed.
#   equal_builds.sh SOURCE BUILD WORK COMPILER...
set -euo pipefail
source=$1 build=$2 work=$3
c=$4 cxx=$5
targets=(vxnlsloc)
files=(lib/libvxnlsloc.so)
if [ -n "${VXNLS_LONG_TESTS:-}" ]; then
  targets+=(vxhost vxhost_extensions vxnls)
  files+=(lib/libvxhost.so lib/vxemsg.so lib/vxnlsldb.so lib/vxnlsudb.so bin/vxnls)
fi

rm -rf "$work"
mkdir -p "$work/quite/another/place"
tar -C "$source" --exclude=./build --exclude='./build-*' --exclude=./.git --exclude=node_modules -c . |
  tar -C "$work/quite/another/place" -x
newer=$(find "$work" -path '*/tests/*' -prune -o -newer "$build/lib/libvxnlsloc.so" \( -name '*.cc' -o -name '*.h' \) -print)
cmake -S "$work/quite/another/place" -B "$work/built" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_C_COMPILER="$c" \
  -DCMAKE_CXX_COMPILER="$cxx" -DVXNLS_TESTS=OFF -DVXNLS_CCACHE= >"$work/log"
cmake --build "$work/built" --target "${targets[@]}" >"$work/log" || {
  cat "$work/log" >&2
  exit 1
}
for file in "${files[@]}"; do
  cmp "$build/$file" "$work/built/$file" || {
    [ -z "$newer" ] || echo "changed since the build: $newer" >&2
    exit 1
  }
done
rm -rf "$work"
