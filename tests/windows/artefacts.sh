#!/usr/bin/env bash
# artefacts.sh FOLDER LIST: velarto.dll exports what the list says, undecorated and under its ordinals, and needs nothing that Windows 2000 lacks
# (imports.list); tool and host need no DLL but the system's. Each file has its own name in its version block, and the MIME type is in that of
# the DLL alone.
set -euo pipefail
folder=$1 list=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
objdump=i686-w64-mingw32-objdump
system='kernel32|user32|gdi32|advapi32|comctl32|comdlg32|ws2_32|msvcrt|winmm|shell32|ole32'

for file in velarto.dll velarto.exe velarto-host.exe; do
  foreign=$($objdump -p "$folder/$file" | awk '/DLL Name:/ {print tolower($3)}' | grep -vE "^($system)\.dll$" || true)
  [ -z "$foreign" ] || { echo "$file needs $foreign" >&2; exit 1; }
  # Texts of the block are of two bytes a letter.
  texts=$(strings -e l "$folder/$file")
  named=$(grep -A 1 -x OriginalFilename <<<"$texts" | tail -n 1)
  [ "$named" = "$file" ] || { echo "$file calls itself $named" >&2; exit 1; }
  mime=$(grep -cx MIMEType <<<"$texts" || true)
  [ "$mime" = "$([ $file != velarto.dll ]; echo $?)" ] || { echo "$file has the MIME type $mime times" >&2; exit 1; }
done

imported=$($objdump -p "$folder/velarto.dll" | awk '/DLL Name:/ {dll = tolower($3)} dll && /^\t[0-9a-f]+\t/ {sub(/\.dll$/, "", dll); print dll, $NF}' | sort)
[ -n "$imported" ] || { echo "no imports found in velarto.dll" >&2; exit 1; }
allowed=$(awk '/^[^#]/ {for (i = 2; i <= NF; ++i) print $1, $i}' "$here/imports.list" | sort)
newer=$(comm -23 <(echo "$imported") <(echo "$allowed"))
[ -z "$newer" ] || { printf 'velarto.dll imports what imports.list does not allow:\n%s\n' "$newer" >&2; exit 1; }
version=$($objdump -p "$folder/velarto.dll" | awk '/^Major(OSystem|Subsystem)Version/ && $2 > 5')
[ -z "$version" ] || { echo "velarto.dll asks for a newer system: $version" >&2; exit 1; }

# The name table counts from 0, the ordinals from their base.
exported=$($objdump -p "$folder/velarto.dll" | tr -d '[]' | awk '
  /Ordinal Base/ {base = $NF}
  /Ordinal\/Name Pointer/ {names = 1; next}
  names && NF != 2 {names = 0}
  names {print base + $1, $2}' | sort -n)
listed=$(awk '/^[0-9]/ {print $1, $2}' "$list" | sort -n)
[ "$exported" = "$listed" ] || { diff <(echo "$exported") <(echo "$listed") >&2; exit 1; }
