#!/usr/bin/env bash
# Runs a program beside a PostgreSQL server of its own, in a folder and on a socket of its own, which ends with it.
#   with_server.sh BINARIES MODULES SHARE LIBRARIES EXTENSION SOURCE PROGRAM    77 where no server can be started
# The server gets copies of the extension and the libraries, as its user may not be allowed to read where they were
# built. The program finds it by PGHOST and PGUSER, and what it says in the file VX_PG_LOG.
set -euo pipefail
binaries=$1 modules=$2 share=$3 libraries=$4 extension=$5 source=$6
shift 6
[ -x "$binaries/initdb" ] || { echo "postgresql-15 is not installed: there is no $binaries/initdb"; exit 77; }

folder=$(mktemp -d)
server=
end() {
  if [ -n "$server" ] && kill -INT "$server"; then wait "$server" || true; fi
  rm -rf "$folder"
}
trap end EXIT
installed=$folder/installed log=$folder/log
mkdir -p "$installed$modules" "$installed$share/extension"
cp -a "$libraries" "$folder/lib"
cp "$extension" "$installed$modules"
cp "$source"/vxnlsloc.control "$source"/vxnlsloc--1.0.sql "$installed$share/extension"

# A signal ends the server when this script ends without doing so. It refuses to run as root.
as=(setpriv --pdeathsig QUIT)
if [ "$(id -u)" -eq 0 ]; then
  user=$(id -un postgres 2>/dev/null || echo nobody)
  chown -R "$user" "$folder"
  as+=(--reuid "$user" --regid "$(id -g "$user")" --clear-groups)
fi
as+=(env -i PATH=/usr/bin:/bin LC_ALL=C TZ=UTC LD_LIBRARY_PATH="$folder/lib")
failed() {
  cat "$log" >&2
  exit 1
}
cd /
"${as[@]}" "$binaries/initdb" -D "$folder/data" -U postgres -A trust -E UTF8 --locale=C --no-sync >"$log" 2>&1 || failed
# Debian's server looks for extensions in extension_destdir first.
"${as[@]}" "$binaries/postgres" -D "$folder/data" -c listen_addresses= -c unix_socket_directories="$folder" -c fsync=off \
  -c extension_destdir="$installed" -c max_parallel_workers=2 -c shared_buffers=32MB >>"$log" 2>&1 &
server=$!
until "$binaries/pg_isready" -q -h "$folder"; do
  kill -0 "$server" 2>/dev/null || failed
  sleep 0.05
done
export PGHOST=$folder PGUSER=postgres VX_PG_LOG=$log PATH=$binaries:$PATH
"$@"
