#!/usr/bin/env bash
# `cmake --install` into a folder, which is then moved: the command runs from there, and another project finds all that
# it needs.
#   install_test.sh BUILD WORK
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/consume.sh"
build=$1 work=$2

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
rm -rf "$work"
