#!/usr/bin/env bash
# `cmake --install` into a folder, which is then moved: the command runs from there, and another project finds all that
# it needs.
#   install_test.sh SOURCE BUILD WORK
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/consume.sh"
source=$1 build=$2 work=$3

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build" --prefix "$work/before" >"$work/log"
mv "$work/before" "$work/moved"
consumer_to "$work/consumer"

must_print 1.234,50 env -i "$work/moved/bin/vxnls" format number 1234.5 --locale de_DE --decimals 2 --group

lib=$(cd "$work/moved" && dirname "$(find . -name libvxnlsloc.so)")
export CMAKE_PREFIX_PATH=$work/moved PKG_CONFIG_PATH=$work/moved/$lib/pkgconfig
export LD_LIBRARY_PATH=$work/moved/$lib
consume "$work/consumer"

# With the source below itself it links the same targets: that they exist is known when the project is configured.
mkdir "$work/whole"
cp "$work"/consumer/from_* "$work/whole"
while IFS= read -r line; do echo "${line/find_package(*/add_subdirectory(\"$source\" vxnlsloc)}"; done \
  <"$work/consumer/CMakeLists.txt" >"$work/whole/CMakeLists.txt"
cmake -S "$work/whole" -B "$work/whole/built" >"$work/log" 2>&1 || fail "add_subdirectory: $(<"$work/log")"
rm -rf "$work"
