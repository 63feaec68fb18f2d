#!/usr/bin/env bash
# What the library exports and needs, and how all that is shipped is hardened. Prints what is wrong.
#   binary.sh KIND EXPORTS UNDEFINED OBJECTS SHIPPED_OBJECTS LIBRARY OTHER_BINARY...
# KIND: "instrumented" by sanitizers or for coverage, which add symbols and libraries of their own; "plain"; or
# "reference", the one whose compiler and options decide which functions of the C library are needed.
set -uo pipefail
export LC_ALL=C
kind=$1 exports=$2 undefined=$3 objects=$4 shipped=$5 library=$6

# The dynamic symbols of a binary without their versions; the version itself (type A) is none.
symbols() { nm -P -D "$1" "$2" | awk '$2 != "A" && !/^__odr_asan/ { sub(/@.*/, "", $1); print $1 }' | sort -u; }
complain() { sed "s|^|$1: |"; }

check() {
  symbols --defined-only "$library" | diff "$exports" - | complain 'exports'
  # The list decides what the linker lets out; this finds a function that is declared public and was not put on it.
  xargs -d '\n' readelf -sW <"$objects" |
    awk '$5 ~ /GLOBAL|WEAK/ && $6 == "DEFAULT" && $7 != "UND" && $8 !~ /^(_Z|DW\.|__odr_asan)/ { print $8 }' | sort -u |
    comm -13 "$exports" - | complain 'not on the list'

  for file in "${@:6}"; do
    { readelf -lW "$file" && readelf -dW "$file"; } | awk '
      / GNU_RELRO / { relro = 1 }
      / GNU_STACK .* RW / { stack = 1 }
      /Elf file type is DYN/ { anywhere = 1 }
      /NOW/ { now = 1 }
      / RWE |TEXTREL|RPATH/ || /RUNPATH/ && !/\[\$ORIGIN\// { print }
      END { if (!(relro && stack && anywhere && now)) print "is not hardened" }' | complain "$file"
  done

  [ "$kind" = instrumented ] && return
  readelf -dW "$library" | awk '/NEEDED/ && !/\[(libc\.so\.6|libm\.so\.6|ld-linux.*)\]/ ||
    /(INIT|FINI)_ARRAYSZ/ && !/ 8 \(bytes\)/' | complain 'needed or run'  # 8: what the start files bring along
  symbols --undefined-only "$library" | comm -23 - <(sed '/^#/d; s/^? //' "$undefined" | sort) | complain 'needed'
  if [ "$(uname -m)" = x86_64 ]; then  # the marks of the compiler: in the objects, for the start files have none
    xargs -d '\n' readelf -nW <"$shipped" | grep -c 'IBT, SHSTK' | diff - <(grep -c . "$shipped") | complain 'jumps unchecked'
    objdump -d "$library" | awk '/^[0-9a-f]+ <.*>:$/ { gsub(/[<>:]/, "", $2); name = $2; getline; print name, $NF }' |
      sort | join "$exports" - | awk '$2 != "endbr64"' | complain 'no mark'
  fi

  [ "$kind" = plain ] && return
  symbols --undefined-only "$library" | comm -13 - <(sed '/^[#?]/d' "$undefined" | sort) | complain 'not needed'
  # Which of them take what from the C library's checks is a matter of what they do. Every length that the library
  # copies is its own, which no checked function knows better.
  for file in "${@:6}"; do
    name=${file##*/}
    # shellcheck disable=SC2046  # a word each
    echo "${name%%.*}" $(symbols --undefined-only "$file" |
      sed -n 's/__stack_chk_fail/stack/p; s/.*_chk$/calls/p' | sort -u)
  done | diff - <(printf '%s\n' 'libvxnlsloc stack' 'libvxhost calls stack' 'vxnlsldb stack' vxnlsudb vxemsg \
    'vxnls calls stack') | complain 'checks'
  # A frame of more than a page is entered page by page.
  objdump -d "$library" | grep 'orq    $0x0,' >/dev/null || echo 'stack pages are skipped'
}
wrong=$(check "$@" 2>&1)
[ -z "$wrong" ] || { echo "$wrong"; exit 1; }
