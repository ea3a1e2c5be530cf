#!/usr/bin/env bash
# The rules of the house that a search can check. Prints what breaks them and fails.
set -uo pipefail
cd "$(dirname "$0")/.."
failed=0

# forbid MESSAGE, then git grep's arguments: no line may match.
forbid() {
  local message=$1 found
  shift
  found=$(git grep -nI "$@") || return 0
  printf '%s\n%s\n' "style: $message" "$found" >&2
  failed=1
}

forbid "a tab" -P '\t' -- '*.h' '*.cpp' '*.c' '*.sh' '*.cmake' '*.md' run
forbid "blanks at a line's end" -E ' +$' -- ':!*.list'
forbid "the system's name above the platform layer" -E '_WIN32|WIN64' -- decode pixel kernels display overlay plugin api apps '*/CMakeLists.txt'
forbid "a system header above the platform layer" -E '#include <(windows|ddraw|unistd|sys/)' -- decode pixel kernels display overlay plugin api
extra=$(git grep -nE '^#include "' -- 'kernels/*_*.cpp' | grep -vE '"kernels/(kernels|[a-z0-9_]+_body)\.h"')
[ -z "$extra" ] || { printf 'style: kernels include kernels.h and bodies alone\n%s\n' "$extra" >&2; failed=1; }
forbid "a path of one machine" -E '/(work|home|root)/[a-z]' -- ':!tests/style.sh'

for file in $(git ls-files '*.h' '*.cpp' '*.c' '*.md' '*.sh' '*.cmake' '*.txt' run); do
  [ -z "$(tail -c 1 "$file")" ] || { echo "style: $file has no newline at its end" >&2; failed=1; }
done

# Two types of one name in one program share their implicit functions, and the linker keeps those of either. Tests and benchmarks
# link the product, so that a name stands once in all of the tree.
types=$(git grep -hoE '^(struct|class|union|enum|enum class) [A-Za-z_0-9]+.*\{' -- '*.h' '*.cpp' '*.c' |
  sed -E 's/^(enum class|[a-z]+) ([A-Za-z_0-9]+).*/\2/' | sort | uniq -d)
[ -z "$types" ] || { echo "style: types whose name stands twice: $types" >&2; failed=1; }

# The table of doc/architecture.md says which folder may include which.
python3 -B tests/include_map.py || failed=1

twice=$(git ls-files '*.cpp' ':!tests' | xargs -n 1 basename | sort | uniq -d)
[ -z "$twice" ] || { echo "style: base names that stand twice: $twice" >&2; failed=1; }
exit $failed
