#!/usr/bin/env bash
# Each export can be called through lumcv.hpp with the arguments that the names of its parameters speak of: views where
# it takes pointers and strides, blocks and records where it takes memory or tells sizes. It cannot be called without the
# last of them, nor with a view of other elements.
# usage: every_export_test.sh INCLUDE_FOLDER EXPORTS.txt C_COMPILER CXX_COMPILER
set -u
export LC_ALL=C
include=$1
exports=$2
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

echo '#include <lumcv/lumcv.h>' | "$3" -std=c11 -E -P -I"$include" -x c - | tr '\n' ' ' | sed 's/;/;\n/g' |
    grep -E '\b(lumi|lumcv)[A-Za-z0-9_]* *\(' |
    sed 's/__attribute__((visibility("default")))//; s/  */ /g' >"$work/declarations"
{
    echo '#include <lumcv/lumcv.hpp>'
    awk -f "$here/every_export.awk" "$work/declarations" || exit 1
} >"$work/calls.cpp"

grep -oE '^static_assert\(lumcv::Callable<[A-Za-z0-9_]+' "$work/calls.cpp" | sed 's/.*<//' | sort >"$work/called"
if ! sort "$exports" | diff - "$work/called"; then
    echo "other functions are called than are exported"
    exit 1
fi
"$4" -std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Werror -I"$include" \
    "$work/calls.cpp" || exit 1
refused=$(grep -c '^static_assert(!' "$work/calls.cpp")
echo "$(wc -l <"$work/called") exports can be called, $refused wrong calls are refused"
[ "$refused" -gt 100 ]
