#!/bin/sh
# exports.sh LIBRARY LIST: the library exports the names of the list and no others.
set -eu
exported=$(nm -D --defined-only "$1" | awk '{print $3}' | sort)
listed=$(awk '/^[0-9]/ {print $2}' "$2" | sort)
[ "$exported" = "$listed" ] && exit 0
echo "exported (left) and listed (right) names differ:" >&2
printf '%s\n' "$exported" > "${TMPDIR:-/tmp}/exported.$$"
printf '%s\n' "$listed" | diff "${TMPDIR:-/tmp}/exported.$$" - >&2 || true
rm -f "${TMPDIR:-/tmp}/exported.$$"
exit 1
