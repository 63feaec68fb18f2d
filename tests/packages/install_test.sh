#!/usr/bin/env bash
# `cmake --install` into a folder, which is then moved: the command runs from there, and another project finds all that
# it needs.
#   install_test.sh SOURCE BUILD WORK
set -euo pipefail
. "${0%/*}/consume.sh"
source=$1 build=$2 work=$3

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build" --prefix "$work/before" >"$work/log"
mv "$work/before" "$work/moved"
must_print 1.234,50 env -i "$work/moved/bin/vxnls" format number 1234.5 --locale de_DE --decimals 2 --group

lib=$(dirname "$(find "$work/moved" -name libvxnlsloc.so)")
consumer_to "$work/consumer"
export CMAKE_PREFIX_PATH=$work/moved PKG_CONFIG_PATH=$lib/pkgconfig LD_LIBRARY_PATH=$lib
consume "$work/consumer"

# With the source below itself it links the same targets: that they exist is known when the project is configured.
sed -i "s|find_package.*|add_subdirectory(\"$source\" vxnlsloc)|" "$work/consumer/CMakeLists.txt"
cmake -S "$work/consumer" -B "$work/whole" >"$work/log" 2>&1 || fail "add_subdirectory: $(<"$work/log")"
rm -rf "$work"
