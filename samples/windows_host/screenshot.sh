#!/bin/bash
# Takes the picture docs/windows-host.png: the program of this folder under Wine, on a display of its own.
#
#   samples/windows_host/screenshot.sh [FOLDER [PICTURE [DOTS]]]     FOLDER: where qxview.dll and windows_host.exe were
#                                                                    built; DOTS: per inch of the display, 96
#
# Debian packages: wine, wine32:i386, xvfb, imagemagick.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd -P)
built=$(readlink -f "${1:-$root/build-win32}")
picture=$(readlink -f "${2:-$root/docs/windows-host.png}")
for program in wine wineboot wineserver xvfb-run import convert identify; do
  command -v $program >/dev/null || { echo "$program is not installed" >&2; exit 2; }
done
dots=${3:-96}
size=$((900 * dots / 96))x$((760 * dots / 96))
if [ -z "${INSIDE_XVFB:-}" ]; then
  INSIDE_XVFB=1 exec timeout 120 xvfb-run -a -s "-screen 0 ${size}x24" "$0" "$built" "$picture" "$dots"
fi

export WINEARCH=win32 WINEDEBUG=-all WINEPREFIX=${WINEPREFIX:-$built/wine} WINEDLLOVERRIDES=mscoree,mshtml=
wineboot -i >/dev/null 2>&1   # sets Wine up, which shows a window of its own
wine reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d "$dots" /f >/dev/null
wineserver -w
folder=$(mktemp -d)
trap 'wineserver -k || true; rm -rf "$folder"' EXIT
cd "$built"
# Wine's own desktop, so that the window has a title bar without a window manager.
wine explorer /desktop=qxview,$size windows_host.exe "Z:${root//\//\\}\\samples\\dns.pcap" 6 "Domain Name:www" &
last=
for ((i = 0; i < 60; ++i)); do
  sleep 0.5
  import -window root "$folder/shot.png"
  read -r colours now < <(identify -format '%k %#\n' "$folder/shot.png")
  # The window is there once there is more than a desktop, and painted once nothing changes any more.
  if ((colours > 12)) && [ "$now" = "$last" ]; then
    convert "$folder/shot.png" -strip +dither -colors 64 -define png:compression-level=9 "$picture"
    exit 0
  fi
  last=$now
done
echo "the window did not come up" >&2
exit 1
