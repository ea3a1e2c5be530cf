#!/usr/bin/env bash
# demo.sh TOOL SCREENSHOT: shows the sample recording on a virtual screen and takes a picture of it.
set -euo pipefail
tool=$1 screenshot=$2
mkdir -p "$(dirname "$screenshot")"
exec 3> >(cat >"$screenshot.display")
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp >/dev/null 2>&1 &
xvfb=$!
trap 'kill $viewer $xvfb 2>/dev/null; rm -f "$screenshot.display"' EXIT
viewer=
for _ in $(seq 100); do [ -s "$screenshot.display" ] && break; sleep 0.1; done
[ -s "$screenshot.display" ] || { echo "no virtual screen came up" >&2; exit 1; }
export DISPLAY=:$(cat "$screenshot.display")
"$tool" view samples/street.vlr --loop &
viewer=$!
sleep 4
kill -0 $viewer || { echo "the viewer ended too early" >&2; exit 1; }
import -window root "$screenshot"
colours=$(identify -format %k "$screenshot")
[ "$colours" -gt 1000 ] || { echo "the screen shows no picture ($colours colours)" >&2; exit 1; }
echo "no display here: shown on a virtual screen; the screenshot is $screenshot"
