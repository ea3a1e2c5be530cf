#!/usr/bin/env bash
# demo.sh TOOL [SCREENSHOT]: starts a camera and views it: on the desktop until the user has enough, or, with SCREENSHOT, on a
# virtual screen of which it takes a picture.
set -euo pipefail
tool=$1 screenshot=${2:-}
work=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; wait 2>/dev/null || true; rm -rf "$work"' EXIT

# await FILE WHAT: until something was written to the file.
await() {
  for _ in $(seq 100); do
    [ -s "$1" ] && return
    sleep 0.1
  done
  echo "$2" >&2
  exit 1
}

"$tool" camera --port 0 >"$work/served" &
await "$work/served" "the camera did not start"
stream=$(grep -m1 '/stream$' "$work/served")

if [ -z "$screenshot" ]; then
  "$tool" view "$stream"
  exit
fi

Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp >/dev/null 2>&1 3>"$work/display" &
await "$work/display" "no virtual screen came up"
export DISPLAY=:$(cat "$work/display")
"$tool" view "$stream" &
viewer=$!
sleep 4
kill -0 $viewer || { echo "the viewer ended too early" >&2; exit 1; }
mkdir -p "$(dirname "$screenshot")"
import -window root "$screenshot"
colours=$(identify -format %k "$screenshot")
[ "$colours" -gt 1000 ] || { echo "the screen shows no picture ($colours colours)" >&2; exit 1; }
kill $viewer
wait $viewer 2>/dev/null || true
echo "no display here: shown on a virtual screen; the screenshot is $screenshot"
