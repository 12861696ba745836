#!/bin/bash
# Whether two folders give the same bytes: the sources as they are committed are built twice, in folders of other names and depths,
# without a compiler's cache, and what users get is compared: the program, the library, and their 32-bit Windows counterparts where
# that compiler is installed.
#
#   scripts/long/same_bytes.sh [linux|win32]...   both without a word; a quarter of an hour each on two cores
set -u
cd "$(dirname "$0")/../.." || exit 2
root=$PWD
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export CCACHE_DISABLE=1

fault() {
  tail -20 "$work/log"
  exit 2
}

failed=0
(($#)) || set -- linux win32
for kind in "$@"; do
  if [[ $kind == win32 ]] && ! command -v i686-w64-mingw32-g++ >/dev/null; then
    echo "no compiler for $kind: nothing was compared"
    continue
  fi
  for folder in "$work/$kind/a" "$work/$kind/another folder/with more depth"; do
    mkdir -p "$folder"
    git -C "$root" archive HEAD | tar -x -C "$folder"
    toolchain=()
    [[ $kind == win32 ]] && toolchain=(-DCMAKE_TOOLCHAIN_FILE="$folder/cmake/mingw-i686.cmake")
    cmake -S "$folder" -B "$folder/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DQXVIEW_TESTS=OFF "${toolchain[@]}" >"$work/log" 2>&1 || fault
    ninja -C "$folder/build" >>"$work/log" 2>&1 || fault
  done
  compared=0
  for file in qxview qxview.exe qxview.dll libqxview.so.7.1.0 libqxview.a; do
    [[ -f $work/$kind/a/build/$file ]] || continue
    compared=$((compared + 1))
    if cmp "$work/$kind/a/build/$file" "$work/$kind/another folder/with more depth/build/$file"; then
      echo "same $kind $file $(sha256sum <"$work/$kind/a/build/$file" | cut -c1-16)"
    else
      failed=1
    fi
  done
  ((compared > 0)) || failed=1
done
exit $failed
