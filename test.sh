#!/bin/sh
# Installs what is missing, builds, and runs the whole suite; the last line is `N passed, N failed`.
#   ./test.sh [STEP...]     only these steps (./test.sh --list names them)
set -u
root=$(cd "$(dirname "$(readlink -f "$0")")" && pwd -P)
if ! "$root/scripts/setup.sh" build test; then
  echo "0 passed, 1 failed"
  exit 1
fi
# Debian's own Python: the one that python3-jsonschema was installed for.
python=/usr/bin/python3
[ -x $python ] || python=python3
exec $python "$root/scripts/run_tests.py" "$@"
