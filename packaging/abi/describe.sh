#!/bin/bash
# Writes down the binary interface that a header and a version script promise: symbols with their versions, signatures,
# structures, enumerations. The library is built without debugging information, so abidw reads it in a stub: an empty
# function for each one that the header declares. STUB is the name of that library, which stays there.
#
#     describe.sh HEADER INCLUDE_FOLDER VERSION_SCRIPT CXX_COMPILER STUB >DESCRIPTION
set -eu
header=$1
include=$2
script=$3
compiler=$4
stub=$5

# each declaration of an export becomes a definition
printf '#include "%s"\n' "$header" | "$compiler" -std=c++17 -ffreestanding -E -P -I"$include" -x c++ - | tr '\n' ' ' |
    awk -v RS=';' -v header="$header" '
        BEGIN { printf "#include \"%s\"\n", header }
        match($0, /__attribute__\(\(visibility\("default"\)\)\).*\)/) {
            printf "extern \"C\" %s { return 0; }\n", substr($0, RSTART, RLENGTH)
        }' >"$stub.cpp"
# types that no function refers to are of interest, too: the enumerations of constants; those of the C library are not,
# and a freestanding compiler does without them
"$compiler" -std=c++17 -ffreestanding -g -fno-eliminate-unused-debug-types -fPIC -shared -nostdlib -I"$include" "$stub.cpp" \
    -Wl,--version-script="$script",-soname="$(basename "$stub")" -o "$stub"

abidw --load-all-types --no-corpus-path --no-comp-dir-path --no-show-locs --no-parameter-names "$stub"
