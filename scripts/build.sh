#!/bin/bash
# Configures, where that is needed, and builds one preset; everything it says goes to standard error.
#
#   scripts/build.sh PRESET [TARGET...]      PRESET: release, asan, linux32, win32, win64, clang
#
# Quiet when there is nothing to do. QXVIEW_CONFIGURE=always configures even when the folder has been configured.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift
case $preset in
  release) folder=build ;;
  *) folder=build-$preset ;;
esac

# A folder of another generator, of a copied work tree, or of a configuration that broke off is begun anew.
configured() {
  [ -f "$folder/build.ninja" ] && grep -qx "CMAKE_HOME_DIRECTORY:INTERNAL=$(pwd -P)" "$folder/CMakeCache.txt"
}

# For a terminal: the progress in one line that goes away, what the compiler says below it.
show_progress() {
  awk '/^\[[0-9]+\/[0-9]+\] / { printf "\r\033[K%s", substr($0, 1, 76); next }
       /^ninja: (no work to do|Entering directory)/ { next }
       { printf "\r\033[K%s\n", $0 }
       END { printf "\r\033[K" }'
}

if ! configured; then
  echo "building $folder, which takes a few minutes the first time" >&2
  cmake --preset "$preset" --fresh >/dev/null
elif [ "${QXVIEW_CONFIGURE:-}" = always ]; then
  cmake --preset "$preset" >/dev/null
fi
if [ -t 2 ]; then
  ninja -C "$folder" "$@" 2>&1 | show_progress >&2
else
  ninja -C "$folder" --quiet "$@" 2>&1 | awk '!/^ninja: no work to do/' >&2
fi
