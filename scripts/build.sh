#!/bin/sh
# Configures, where that is needed, and builds one preset; everything it says goes to standard error.
#
#   scripts/build.sh PRESET [TARGET...]      PRESET: release, asan, win32, clang
#
# Quiet when there is nothing to do. QXVIEW_CONFIGURE=always configures even when the folder has been configured.
set -eu
cd "$(dirname "$0")/.."
root=$(pwd -P)
preset=$1
shift
case $preset in
  release) folder=build ;;
  *) folder=build-$preset ;;
esac

# A folder of another generator, of a copied work tree, or of a configuration that broke off is begun anew.
configured() {
  [ -f "$folder/build.ninja" ] && grep -qx "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$folder/CMakeCache.txt"
}
if ! configured; then
  echo "configuring $folder" >&2
  cmake --preset "$preset" --fresh --log-level=NOTICE >&2
  echo "building $folder, which takes a few minutes the first time" >&2
elif [ "${QXVIEW_CONFIGURE:-}" = always ]; then
  cmake --preset "$preset" --log-level=NOTICE >&2
fi
if [ -t 2 ]; then
  # Progress for a person, in one line that goes away.
  NINJA_STATUS='[%f/%t] ' ninja -C "$folder" "$@" >&2
else
  ninja -C "$folder" --quiet "$@" >&2
fi
