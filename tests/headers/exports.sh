#!/usr/bin/env bash
# exports.sh LIBRARY LIST: checks that the library exports the names of the list and no others. Prints those that differ.
set -euo pipefail
diff <(nm -D --defined-only "$1" | awk '{print $3}' | sort) <(awk '/^[0-9]/ {print $2}' "$2" | sort)
