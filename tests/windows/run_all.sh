#!/usr/bin/env bash
# run_all.sh FOLDER: runs the Windows programs of a build under Wine (cmake/windows-run.sh): the DLL in its DirectDraw and in its GDI form, on
# screens of 32 and 16 bits, in its GDI form on those of 15 and 8 bits, without ddraw.dll, and with the kernels of lower levels; the plug-in in a
# page and in the host; a client in C; the kernels in 32 bits; and the platform tests on Windows' own operations, those of palettes on 8 bits.
# Ends with a closing line. What Wine can't run: the DirectDraw form on 15 and 8 bits, where it has no 3D, so that its primary surface lies in
# system memory; a lost primary surface that refuses to be drawn on; and more than one monitor.
set -uo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$1
root=$here/../..
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Two run at a time: those that take longest come first.
cat >"$work/commands" <<'END'
VELARTO_FORM=ddraw windows_tests.exe
depth=16 VELARTO_FORM=ddraw windows_tests.exe
depth=16 VELARTO_FORM=gdi WINE_D3D_CONFIG=renderer=no3d windows_tests.exe
depth=15 VELARTO_FORM=gdi windows_tests.exe
depth=8 VELARTO_FORM=gdi windows_tests.exe
depth=8 platform_tests.exe --gtest_filter=GdiPaletteTest.*
WINEDLLOVERRIDES=ddraw= VELARTO_FORM=gdi windows_tests.exe --gtest_filter=DllTest.*
WINE_D3D_CONFIG=renderer=no3d shell_tests.exe
platform_tests.exe --gtest_filter=-GdiPaletteTest.*
VELARTO_FORM=gdi WINE_D3D_CONFIG=renderer=no3d windows_tests.exe
VELARTO_DLL=velarto-sse2.dll VELARTO_FORM=gdi WINE_D3D_CONFIG=renderer=no3d windows_tests.exe
VELARTO_DLL=velarto-plain.dll VELARTO_FORM=gdi WINE_D3D_CONFIG=renderer=no3d windows_tests.exe
kernels_tests.exe
WINE_D3D_CONFIG=renderer=no3d velarto-host.exe --quit --size 320x240 long.vlr
velarto.exe info street.vlr
velarto.exe info --cpu plain street.vlr
client.exe
END
[ -z "${VELARTO_EXPECT_LEVELS:-}" ] || sed -i "s/^kernels_tests/VELARTO_EXPECT_LEVELS=$VELARTO_EXPECT_LEVELS &/" "$work/commands"

# More than the 20 MB that a browser delivers in a while.
for _ in $(seq 16); do cat "$root/samples/street.vlr"; done >"$work/long.vlr"
data=(--data "$work/long.vlr")
for level in plain sse2; do
  cp "$folder/levels/$level/velarto.dll" "$work/velarto-$level.dll"
  data+=(--data "$work/velarto-$level.dll")
done
mkdir -p "$work/tests"
cp -r "$root/tests/data" "$work/tests/data"
data+=(--data "$work/tests")
for file in "$root"/tests/data/tile-*.jpg "$root/samples/street.vlr"; do data+=(--data "$file"); done
"$root/cmake/windows-run.sh" run --timeout "${VELARTO_WINDOWS_TIMEOUT:-2400}" "${data[@]}" "$folder" "$work/commands" | grep --line-buffered -v '^speed=' | tee "$work/output"
status=${PIPESTATUS[0]}

# GoogleTest's own counts. Any other program counts as one test by its exit status, as does a GoogleTest program that crashes.
read -r passed failed < <(awk '
  /^== command / {counted = bad = 0}
  /^\[  PASSED  \]/ {passed += $4; counted = 1}
  /^\[  FAILED  \] [0-9]+ tests?, listed/ {failed += $4; counted = bad = 1}
  /^== exit / {if ($3 != 0) failed += !bad; else passed += !counted}
  END {print passed + 0, failed + 0}' "$work/output")
[ "$(grep -c '^== exit' "$work/output")" = "$(wc -l <"$work/commands")" ] || failed=$((failed + 1))
[ "$(grep -c '^120 frames' "$work/output")" = 2 ] || failed=$((failed + 1))
grep -q "^$(stat -c %s "$work/long.vlr") bytes delivered" "$work/output" || failed=$((failed + 1))
[ "$status" = 0 ] || [ "$failed" != 0 ] || failed=1
echo "$passed passed, $failed failed"
[ "$failed" = 0 ]
