#!/usr/bin/env bash
# Makes the packages twice, a moment apart and under another umask, holds them against each other and against Debian's
# rules: no error and no warning. What is overridden is overridden in packaging/, with a reason.
#   build_packages.sh BUILD WORK      leaves them in WORK/packages
set -euo pipefail
build=$1 work=$2
rm -rf "$work"
mkdir -p "$work"
make() { cpack --config "$build/CPackConfig.cmake" -B "$work/$1" >"$work/$1.log" || { cat "$work/$1.log" >&2; exit 1; }; }
make packages
(umask 077 && make again)
rm -rf "$work"/*/_CPack_Packages
[ "$(ls "$work"/packages/*.deb | wc -l)" -eq 4 ]
diff -r "$work/packages" "$work/again"
lintian --allow-root --fail-on error,warning "$work"/packages/*.deb >&2
