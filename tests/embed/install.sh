#!/bin/sh
# Installs a build, compiles a program against the installed files alone, and runs it and the installed tool.
# usage: install.sh BUILD PREFIX COMPILER
set -eu
build=$1 prefix=$2 compiler=$3
here=$(cd "$(dirname "$0")" && pwd)
sample=$here/../../samples/street.vlr
rm -rf "$prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null
lib=$(dirname "$(find "$prefix" -name libvelarto.so ! -path '*/velarto/*')")
"$compiler" "$here/../headers/readme_example.c" -I"$prefix/include" -L"$lib" -lvelarto -Wl,-rpath,"$lib" -o "$prefix/example"
"$prefix/example" "$sample"
"$prefix/bin/velarto" info "$sample" | grep -q '^120 frames'
