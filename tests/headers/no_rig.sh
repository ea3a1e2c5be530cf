#!/usr/bin/env bash
# no_rig.sh TESTS FILE...: checks that the functions of platform/portable/rig.h, by which tests control the portable layer, are in
# the program TESTS and not in the shipped files. Prints those that are.
set -euo pipefail

layer() { nm -C "$1" | grep -E ' HeapAlloc\b'; }
rig() { nm -C "$1" | grep -E ' Rig_'; }

rig "$1" >/dev/null
shift
for file in "$@"; do
  layer "$file" >/dev/null  # Fails for a file without symbols, of which the next check would tell nothing.
  if rig "$file"; then exit 1; fi
done
