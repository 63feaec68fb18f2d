#!/usr/bin/env bash
# The packages by Debian's rules: no error and no warning. What is overridden is overridden in packaging/, with a reason.
#   lintian_test.sh PACKAGES
set -euo pipefail
found=$(lintian --allow-root --fail-on error,warning "$1"/*.deb) || {
  echo "$found" >&2
  exit 1
}
