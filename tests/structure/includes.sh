#!/usr/bin/env bash
# The #include lines against the floors: inside the library they point downwards, and the rings around it (host, command
# and extras) see nothing of it but its public headers. Prints those that do not.
#   includes.sh SOURCE
set -euo pipefail
cd "$1"
grep -rE '^\s*#\s*include\s*"' include unicode module utf8 kernel_strings calendar number_parse number_format \
  datetime_format datetime_parse collation host cli extras | awk -F '[:"]' '
  BEGIN {
    ring = 10
    split("include/vxnls/ 0 vxnls/ 0 unicode/ 1 module/host_services 1 module/eye_catcher 1 module/build_texts 1 " \
          "utf8/ 2 kernel_strings/ 2 calendar/ 3 number_parse/ 3 module/zones 3 module/journal 3 " \
          "datetime_format/ 4 datetime_parse/ 4 number_format/ 4 collation/ 4 module/ 5 host/ 10 cli/ 10 extras/ 10",
          words, " ")
    for (i = 1; i in words; i += 2) floor[words[i]] = words[i + 1]
  }
  # The longest prefix that fits; a room that is no folder of its own has the name of its files.
  function room(path,  prefix, best) {
    best = ""
    for (prefix in floor) if (index(path, prefix) == 1 && length(prefix) > length(best)) best = prefix
    return best
  }
  function allowed(from, to) {
    if (from == "" || to == "") return 0
    if (from == to || floor[to] == 0) return 1
    if (from == "extras/" && to == "cli/") return 1  # the wording of refusals
    return floor[from] != ring && floor[to] < floor[from]
  }
  !allowed(room($1), room($3)) { print; wrong = 1 }
  END {
    if (NR <= 500) print "only " NR " lines: where are the sources?"
    exit wrong || NR <= 500
  }'
