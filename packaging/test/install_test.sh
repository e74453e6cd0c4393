#!/bin/bash
# Installs a build below a scratch folder, moves it, and builds and runs the README's example against it, once found by
# CMake and once by pkg-config.
#
#     install_test.sh CMAKE BUILD_FOLDER C_COMPILER SCRATCH_FOLDER
set -eu
cmake=$1
build=$2
compiler=$3
scratch=$4
here=$(cd "$(dirname "$0")" && pwd)
example=$here/../../examples/blur.c
expected="status 0, centre 41, beside it 25"

rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch"
"$cmake" --install "$build" --prefix "$scratch/first" >install.log
mv first prefix

found()
{
    [ "$1" = "$expected" ] || { echo "$2: the example printed '$1'"; exit 1; }
    echo "$2: $1"
}

"$cmake" -S "$here/consumer" -B consumer -DCMAKE_C_COMPILER="$compiler" -DCMAKE_PREFIX_PATH="$scratch/prefix" \
    -DEXAMPLE="$example" >consumer.log
"$cmake" --build consumer >>consumer.log
found "$(consumer/consumer)" "CMake"

if ! command -v pkg-config >/dev/null; then
    echo "pkg-config is not there; that half was left out"
    exit 0
fi
file=$(find prefix -name lumcv.pc)
PKG_CONFIG_PATH=$scratch/$(dirname "$file")
export PKG_CONFIG_PATH
libraries=$(pkg-config --variable=libdir lumcv)
# shellcheck disable=SC2046  # the flags are words
"$compiler" -std=c11 "$example" -o with_pkg_config $(pkg-config --cflags --libs lumcv) -Wl,-rpath-link,"$libraries"
found "$(LD_LIBRARY_PATH=$libraries ./with_pkg_config)" "pkg-config"
