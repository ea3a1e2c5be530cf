#!/usr/bin/env bash
# artefacts.sh FOLDER LIST: velarto.dll exports what the list says, undecorated and under its ordinals, and it, the tool and the host need no DLL
# but the system's.
set -euo pipefail
folder=$1 list=$2
objdump=i686-w64-mingw32-objdump
system='kernel32|user32|gdi32|ddraw|advapi32|comctl32|comdlg32|ws2_32|msvcrt|winmm|shell32|ole32'

for file in velarto.dll velarto.exe velarto-host.exe; do
  foreign=$($objdump -p "$folder/$file" | awk '/DLL Name:/ {print tolower($3)}' | grep -vE "^($system)\.dll$" || true)
  [ -z "$foreign" ] || { echo "$file needs $foreign" >&2; exit 1; }
done
# The name table counts from 0, the ordinals from their base.
exported=$($objdump -p "$folder/velarto.dll" | tr -d '[]' | awk '
  /Ordinal Base/ {base = $NF}
  /Ordinal\/Name Pointer/ {names = 1; next}
  names && NF != 2 {names = 0}
  names {print base + $1, $2}' | sort -n)
listed=$(awk '/^[0-9]/ {print $1, $2}' "$list" | sort -n)
[ "$exported" = "$listed" ] || { diff <(echo "$exported") <(echo "$listed") >&2; exit 1; }
