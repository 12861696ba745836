#!/bin/sh
# Builds qxview where needed and runs it: without arguments on a capture of samples/, otherwise as `qxview ARGS`.
# Works from any folder; what the installation and the build say goes to standard error.
set -eu
root=$(cd "$(dirname "$(readlink -f "$0")")" && pwd -P)
"$root/scripts/setup.sh" build
"$root/scripts/build.sh" release qxview libqxview.so
if [ $# -eq 0 ]; then
  set -- decode "$root/samples/vlan.pcap"
fi
exec "$root/build/qxview" "$@"
