#!/bin/bash
# Does a clone of this repository build, run and pass its tests on a Debian system with nothing else on it?
#
#   tests/fresh_machine.sh [FOLDER]
#
# Lays a minimal Debian 12 into a temporary folder (below FOLDER where one is given) with debootstrap, clones the last commit
# of this repository into it, enters it with chroot and runs ./run.sh and ./test.sh. Takes root, debootstrap, some 2 GB of
# disk and about ten minutes, so it is started by hand and is no part of the suite. The package server is the one that this
# machine's own apt sources name. Last line: `N passed, N failed`; exit status 0 when all passed.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd -P)
if [ "$(id -u)" != 0 ] || ! command -v debootstrap >/dev/null; then
  echo "fresh_machine: needs root and debootstrap" >&2
  exit 2
fi

# The first server of this machine's apt sources that holds Debian's main archive for bookworm.
# shellcheck disable=SC2016  # apt-get expands it
find_mirror() {
  apt-get indextargets --format '$(SITE) $(CODENAME) $(COMPONENT) $(ORIGIN)' 2>/dev/null |
    awk '$2 == "bookworm" && $3 == "main" && ($4 == "Debian" || $4 == "") { print $1; exit }'
}

machine=$(mktemp -d "${1:-${TMPDIR:-/tmp}}/fresh-machine.XXXXXX")
take_down() {
  umount "$machine/proc" 2>/dev/null || true
  rm -rf --one-file-system "$machine"
}
trap take_down EXIT

mirror=$(find_mirror)
[ -n "$mirror" ] || { echo "fresh_machine: the apt sources name no server for Debian bookworm" >&2; exit 2; }
echo "laying a minimal Debian"
debootstrap --variant=minbase bookworm "$machine" "$mirror" >"$machine.log" 2>&1 ||
  { tail -n 20 "$machine.log" >&2; rm -f "$machine.log"; exit 1; }
rm -f "$machine.log"
cp -L /etc/resolv.conf /etc/hosts "$machine/etc/"
mount -t proc proc "$machine/proc"
git clone -q "$root" "$machine/qxview"

passed=0
failed=0
inside() { env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 chroot "$machine" "$@"; }
# Runs a script in the fresh machine and judges it by its exit status and a pattern in its output.
check() {
  local name=$1 pattern=$2 started=$SECONDS
  if inside "/qxview/$name" </dev/null >"$machine/out" 2>"$machine/err" && grep -qE "$pattern" "$machine/out"; then
    passed=$((passed + 1))
    echo "ok   $name, $((SECONDS - started)) s: $(tail -n 1 "$machine/out")"
  else
    failed=$((failed + 1))
    tail -n 40 "$machine/out" "$machine/err" | sed 's/^/    /'
    echo "FAIL $name, $((SECONDS - started)) s"
  fi
}

check run.sh 'Ethernet'
check test.sh '^[1-9][0-9]* passed, 0 failed$'
echo "$passed passed, $failed failed"
[ "$failed" = 0 ]
