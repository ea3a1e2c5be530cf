#!/usr/bin/env bash
# run_all.sh FOLDER: runs the Windows programs of a build in the emulated PC: the DLL in its DirectDraw and in its GDI form, on screens of
# 32 and 16 bits, in its GDI form on one of 8 bits, where Wine has no 3D to offer, and the platform tests, where Windows' own operations are the judge. Ends with a closing line.
set -uo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$1
root=$here/../..
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cat >"$work/commands" <<'END'
VELARTO_FORM=ddraw windows_tests.exe
VELARTO_FORM=gdi WINE_D3D_CONFIG=renderer=no3d windows_tests.exe
platform_tests.exe
velarto.exe info street.vlr
depth=16 VELARTO_FORM=ddraw windows_tests.exe
depth=16 VELARTO_FORM=gdi WINE_D3D_CONFIG=renderer=no3d windows_tests.exe
depth=8 VELARTO_FORM=gdi windows_tests.exe
END

data=()
for file in "$root"/tests/data/tile-*.jpg "$root/api/exports.list" "$root/samples/street.vlr"; do data+=(--data "$file"); done
"$root/cmake/windows-vm.sh" run --timeout "${VELARTO_WINDOWS_TIMEOUT:-1500}" "${data[@]}" "$folder" "$work/commands" | grep --line-buffered -v '^speed=' | tee "$work/output"
status=${PIPESTATUS[0]}

# GoogleTest's own counts, and one for the tool's run.
passed=$(awk '/^\[  PASSED  \]/ {n += $4} END {print n + 0}' "$work/output")
failed=$(awk '/^\[  FAILED  \] [0-9]+ tests?, listed/ {n += $4} END {print n + 0}' "$work/output")
if grep -q '^120 frames' "$work/output"; then passed=$((passed + 1)); else failed=$((failed + 1)); fi
[ "$(grep -c '^== exit' "$work/output")" = "$(wc -l <"$work/commands")" ] || failed=$((failed + 1))
[ "$status" = 0 ] || [ "$failed" != 0 ] || failed=1
echo "$passed passed, $failed failed"
[ "$failed" = 0 ]
