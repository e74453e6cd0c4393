#!/bin/bash
# Installs a build below an empty folder, holds the files against the list of what must be there, and moves the folder to
# PREFIX, where the other tests use it.
#
#     install_test.sh CMAKE BUILD_FOLDER PREFIX LIBRARY_FOLDER DOCUMENTATION_FOLDER VERSION LEVEL...
#
# The folders of libraries and of documentation are told relative to the prefix.
set -eu
export LC_ALL=C
cmake=$1
build=$2
prefix=$3
lib=$4
doc=$5
version=$6
shift 6
root=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$cmake" --install "$build" --prefix "$work/first" >"$work/log" || { cat "$work/log"; exit 1; }

{
    for name in core cv; do
        printf "$lib/liblum$name.so%s\n" "" .0 ".$version"
    done
    for level in "$@"; do
        [ "$level" = base ] || printf "$lib/glibc-hwcaps/x86-64-$level/liblumcv.so%s\n" .0 ".$version"
    done
    printf "$lib/cmake/lumcv/lumcv%s.cmake\n" Config ConfigVersion Targets Targets-release
    echo "$lib/pkgconfig/lumcv.pc"
    echo include/lumcore.h
    find "$root/include/lumcv" -type f -printf 'include/lumcv/%P\n'
    printf "$doc/%s\n" README.md CHANGELOG.md LICENSE
    find "$root/examples" -path "$root/examples/tests" -prune -o -type f -printf "$doc/examples/%P\n"
    # the reference, if it was made, is what Doxygen makes of it
    [ ! -d "$build/docs/html" ] || find "$build/docs/html" -type f -printf "$doc/html/%P\n"
} | sort >"$work/expected"
(cd "$work/first" && find . ! -type d -printf '%P\n') | sort >"$work/installed"
if ! diff "$work/expected" "$work/installed"; then
    echo "other files are installed (>) than should be (<)"
    exit 1
fi
echo "$(wc -l <"$work/installed") files"

rm -rf "$prefix"
mkdir -p "$(dirname "$prefix")"
mv "$work/first" "$prefix"
