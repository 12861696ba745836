#!/bin/sh
# Installs the Debian packages that are missing, and says nothing when none is.
#
#   scripts/setup.sh [GROUP...]      GROUP: build (the default), test, wine
#
# Optional packages come along when something needed has to be installed anyway; on their own they are never asked for.
# Needs root or sudo only when something is missing. Exit status 1, with the names, when a package could not be had.
set -eu

needed_by() {
  case $1 in
    build) echo "g++ cmake ninja-build pkg-config python3 zlib1g-dev libzstd-dev liblz4-dev libpcap-dev libsmi2-dev
                libncurses-dev" ;;
    test) echo "parallel openssh-client openssh-server chromium chromium-driver libgtest-dev googletest iproute2 poppler-utils libpangocairo-1.0-0 fonts-dejavu-core python3-jsonschema tmux g++-mingw-w64-i686 libz-mingw-w64-dev" ;;
    wine) echo "wine wine32:i386 xvfb" ;;
    *) echo "setup: no group is called '$1' (build, test, wine)" >&2; exit 2 ;;
  esac
}

optional_for() {
  case $1 in
    build) echo "ccache libpangocairo-1.0-0 fonts-dejavu-core" ;;
    test) echo "tshark tcpdump shellcheck g++-mingw-w64-x86-64 python3-pil" ;;
    *) ;;
  esac
}

# Those of the packages "$@" that are not installed. A package may name its architecture.
missing_of() {
  dpkg-query -W -f='${db:Status-Status} ${Package} ${Package}:${Architecture}\n' "$@" 2>/dev/null |
    awk -v wanted="$*" '
      $1 == "installed" { have[$2] = have[$3] = 1 }
      END { n = split(wanted, name, " "); for (i = 1; i <= n; i++) if (!(name[i] in have)) print name[i] }'
}

as_root() {
  if [ "$(id -u)" = 0 ]; then
    env DEBIAN_FRONTEND=noninteractive "$@"
  else
    sudo env DEBIAN_FRONTEND=noninteractive "$@"
  fi
}

# Runs apt-get quietly; what it said is shown only when it failed and the failure counts.
apt_quiet() {
  as_root apt-get -q -y -o Dpkg::Use-Pty=0 -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3 "$@" </dev/null >"$log" 2>&1
}

fail() {
  echo "setup: $1" >&2
  [ -s "$log" ] && tail -n 15 "$log" | sed 's/^/  /' >&2
  exit 1
}

[ $# -gt 0 ] || set -- build
needed=""
optional=""
for group; do
  packages=$(needed_by "$group") || exit 2
  needed="$needed $packages"
  optional="$optional $(optional_for "$group")"
done

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
  echo "setup: this is no Debian system; what these packages hold has to be there already:$needed" >&2
  exit 0
fi

# shellcheck disable=SC2086  # lists of package names
missing=$(missing_of $needed | tr '\n' ' ')
[ -n "$missing" ] || exit 0

if [ "$(id -u)" != 0 ] && ! command -v sudo >/dev/null; then
  echo "setup: these packages are missing, and installing them takes root or sudo: $missing" >&2
  exit 1
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
echo "setup: installing $missing" >&2
case " $missing" in *:i386*) as_root dpkg --add-architecture i386 ;; esac
# A list that could not be fetched afresh may still do; whether it does, the installation tells.
apt_quiet update || echo "setup: apt-get update failed, going on with the package lists that are there" >&2
# shellcheck disable=SC2086
apt_quiet install --no-install-recommends $missing ||
  # Where another suite's packages of one architecture are newer than the other's, one release alone has them all.
  apt_quiet install --no-install-recommends -t "$(. /etc/os-release && echo "${VERSION_CODENAME:-stable}")" $missing || true
# shellcheck disable=SC2086
left=$(missing_of $needed | tr '\n' ' ')
[ -z "$left" ] || fail "could not install: $left"

# shellcheck disable=SC2086
for package in $([ -z "${optional# }" ] || missing_of $optional); do
  apt_quiet install --no-install-recommends "$package" || echo "setup: going on without $package" >&2
done
