#!/usr/bin/env bash
# The packages in an empty root: nothing is there but what they depend on, from Debian's own archive. The command runs;
# with the compilers unpacked beside it, another project is built and runs; removing the packages leaves nothing.
#   root_test.sh PACKAGES WORK        ends with 77 where that cannot be tried
set -euo pipefail
. "${0%/*}/consume.sh"
packages=$1 work=$2
skip() {
  echo "skipped: $*" >&2
  exit 77
}

if [ "$(id -u)" -ne 0 ]; then
  unshare --map-root-user true 2>/dev/null || skip "this user may not change the root folder"
  exec unshare --map-root-user "$0" "$@"
fi
rm -rf "$work"
root=$work/root
database=$root/var/lib/dpkg
mkdir -p "$work/cache/archives/partial" "$database"/{info,updates} "$root"/{tmp,dev} "$root"/usr/{bin,sbin,lib,lib64}
for folder in bin sbin lib lib64; do ln -s "usr/$folder" "$root/$folder"; done
mknod -m 666 "$root/dev/null" c 1 3 2>/dev/null || touch "$root/dev/null"
touch "$database"/{status,available}

# By this machine's lists of what Debian has; when there are none, or what they name has gone, by new ones.
lists=/var/lib/apt/lists
apt() {
  apt-get -y -qq -o Dir::Cache="$work/cache" -o Dir::State::status="$database/status" -o Dir::State::lists="$lists" \
    -o Debug::NoLocking=1 -o APT::Sandbox::User=root -o APT::Update::Error-Mode=any "$@" >"$work/log" 2>&1
}
# What apt adds for these packages to those in the root, downloaded and unpacked. Their scripts are not run: to dpkg
# they are installed.
add_for() {
  rm -f "$work"/cache/archives/*.deb
  local download=(--no-install-recommends --download-only install "$@")
  apt "${download[@]}" || { lists=$work/lists && mkdir -p "$lists/partial" && apt update && apt "${download[@]}"; } || {
    grep -q "Failed to fetch" "$work/log" && skip "Debian's archive cannot be reached: $(tail -n 3 "$work/log")"
    fail "$(<"$work/log")"
  }
  local package name
  for package in "$work"/cache/archives/*.deb; do
    # Not dpkg-deb --extract: in a user's own namespace there is no other owner than root.
    dpkg-deb --fsys-tarfile "$package" | tar -C "$root" -x --no-same-owner --keep-directory-symlink
    { dpkg-deb -f "$package" && printf 'Status: install ok installed\n\n'; } >>"$database/status"
    name=$(dpkg-deb -W --showformat='${Package}' "$package")
    [ "$(dpkg-deb -f "$package" Multi-Arch)" = same ] && name=$name:$(dpkg-deb -f "$package" Architecture)
    : >"$database/info/$name.list"
  done
}
files() { find "$root" -path "$database" -prune -o -printf '%P %y %m %l\n' | grep -v '^tmp' | sort; }
chroot=$(command -v chroot)
inside() { env -i PATH=/usr/bin:/bin LC_ALL=C "$chroot" "$root" "$@"; }
chroot "$root" /nothing 2>&1 | grep -q "Operation not permitted" && skip "the root folder cannot be changed here"

install_and_remove() {
  local with=$1
  shift
  files >"$work/before"
  dpkg --root="$root" --install "$@" >"$work/log" 2>&1 || fail "$(cat "$work/log")"
  "$with"
  # shellcheck disable=SC2046
  dpkg --root="$root" --purge $(for package; do dpkg-deb -f "$package" Package; done) >"$work/log" 2>&1 ||
    fail "$(cat "$work/log")"
  files | diff "$work/before" - || fail "removing the packages leaves something"
}

run_command() {
  must_print "2026-11-21 19:35:09" \
    inside vxnls format datetime 2026-11-21T14:05:09Z --zone Asia/Kolkata --pattern '%Y-%m-%d %H:%M:%S'
  ls "$root"/usr/share/{man/man1/vxnls.1.gz,bash-completion/completions/vxnls,zsh/vendor-completions/_vxnls} \
    "$root"/usr/share/fish/vendor_completions.d/vxnls.fish >/dev/null || fail "a page is missing"
}
build_and_run() {
  consumer_to "$root/tmp/consumer"
  inside bash -c '. /tmp/consumer/consume.sh && consume /tmp/consumer' || fail "the consumer project"
}

command=("$packages"/libvxnlsloc6_*.deb "$packages"/libvxhost6_*.deb "$packages"/vxnls_*.deb)
development=("${command[@]}" "$packages"/libvxnlsloc-dev_*.deb)
add_for "${command[@]}"
install_and_remove run_command "${command[@]}"
add_for "${development[@]}" bash coreutils cmake g++ make pkgconf
ln -sf bash "$root/bin/sh"
install_and_remove build_and_run "${development[@]}"
rm -rf "$work"
