#!/bin/bash
# The examples that are installed build against the installed library, by their own CMakeLists.txt.
#
#     examples_test.sh CMAKE PREFIX EXAMPLES_FOLDER C_COMPILER CXX_COMPILER SCRATCH_FOLDER TARGET...
#
# Only the given targets are built, and blur is run.
set -eu
cmake=$1
prefix=$2
examples=$3
c_compiler=$4
cxx_compiler=$5
scratch=$6
shift 6
unset LD_LIBRARY_PATH

rm -rf "$scratch"
mkdir -p "$scratch"
"$cmake" -S "$prefix/$examples" -B "$scratch" -DCMAKE_C_COMPILER="$c_compiler" -DCMAKE_CXX_COMPILER="$cxx_compiler" \
    -DCMAKE_PREFIX_PATH="$prefix" >"$scratch/log"
"$cmake" --build "$scratch" --target "$@" >>"$scratch/log" || { tail -n 40 "$scratch/log"; exit 1; }
printed=$("$scratch/blur")
echo "$printed"
[ "$printed" = "status 0, centre 41, beside it 25" ]
