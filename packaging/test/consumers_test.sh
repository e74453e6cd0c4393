#!/bin/bash
# A program of C11 and one of C++20 find an installed lumcv, are built with it and print what they should.
#
#     consumers_test.sh cmake|pkg-config PREFIX LIBRARY_FOLDER CMAKE C_COMPILER CXX_COMPILER SCRATCH_FOLDER
#
# CMake leaves c_consumer and cxx_consumer in the scratch folder, pkg-config likewise.
set -eu
way=$1
prefix=$2
libraries=$2/$3
cmake=$4
c_compiler=$5
cxx_compiler=$6
scratch=$7
here=$(cd "$(dirname "$0")" && pwd)
example=$here/../../examples/blur.c
blurred="status 0, centre 41, beside it 25"

rm -rf "$scratch"
mkdir -p "$scratch"
case $way in
    cmake)
        # nothing but what CMake found tells the programs where the library is
        unset LD_LIBRARY_PATH
        "$cmake" -S "$here/consumer" -B "$scratch" -DCMAKE_C_COMPILER="$c_compiler" \
            -DCMAKE_CXX_COMPILER="$cxx_compiler" -DCMAKE_PREFIX_PATH="$prefix" -DEXAMPLE="$example" >"$scratch/log"
        "$cmake" --build "$scratch" >>"$scratch/log" || { cat "$scratch/log"; exit 1; }
        ;;
    pkg-config)
        export PKG_CONFIG_PATH=$libraries/pkgconfig LD_LIBRARY_PATH=$libraries
        [ "$(realpath "$(pkg-config --variable=libdir lumcv)")" = "$(realpath "$libraries")" ]
        read -ra flags < <(pkg-config --cflags --libs lumcv)
        flags+=("-Wl,-rpath-link,$libraries")
        "$c_compiler" -std=c11 "$example" -o "$scratch/c_consumer" "${flags[@]}"
        "$cxx_compiler" -std=c++20 "$here/consumer/consumer.cpp" -o "$scratch/cxx_consumer" "${flags[@]}"
        ;;
    *) exit 2 ;;
esac

loaded=$(ldd "$scratch/cxx_consumer" | sed -n 's/^\tliblumc[^ ]* => \([^ ]*\) .*/\1/p')
[ "$(wc -l <<<"$loaded")" -eq 2 ] || { echo "the libraries are not found: $loaded"; exit 1; }
while read -r path; do
    [[ $(realpath "$path") == "$(realpath "$libraries")"/* ]] || { echo "'$path' is loaded"; exit 1; }
done <<<"$loaded"

printed=$("$scratch/c_consumer")
[ "$printed" = "$blurred" ] || { echo "C11: the program printed '$printed'"; exit 1; }
printed=$("$scratch/cxx_consumer")
[[ $printed == "lumCV "*": $blurred" ]] || { echo "C++20: the program printed '$printed'"; exit 1; }
echo "$printed"
