#!/usr/bin/env bash
# no_rig.sh TESTS FILE...: the program of tests has what platform/portable/rig.h lets tests do to the portable layer; the shipped
# files have nothing of it. Prints what they have.
set -euo pipefail

layer() { nm -C "$1" | grep -E ' HeapAlloc\b'; }
rig() { nm -C "$1" | grep -E ' Rig_'; }

rig "$1" >/dev/null
shift
for file in "$@"; do
  layer "$file" >/dev/null  # Else its symbols were taken away, and the next look says nothing.
  if rig "$file"; then exit 1; fi
done
