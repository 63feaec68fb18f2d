#!/usr/bin/env bash
# Compiles each public header by itself with all warnings as errors: C99, C11 and C++20, with each compiler given.
#   public_headers.sh INCLUDE C_COMPILER... -- CXX_COMPILER...
set -euo pipefail
cd "$1"
shift
standards=(c99 c11) headers=(vxnls/*.h) language=c compiled=0
for compiler in "$@"; do
  if [ "$compiler" = -- ]; then
    standards=(c++20) headers+=(vxnls/*.hpp) language=c++
    continue
  fi
  for standard in "${standards[@]}"; do
    for header in "${headers[@]}"; do
      echo "#include \"$header\"" | "$compiler" -x "$language" -std="$standard" -Wall -Wextra -Wpedantic -Wconversion \
        -Wshadow -Wundef -Werror -fsyntax-only -I. -
      compiled=$((compiled + 1))
    done
  done
done
[ "$compiled" -ge 19 ] || { echo "only $compiled compilations: where are the headers?"; exit 1; }
