#!/bin/bash
# Runs every example under Valgrind's memory checker: no byte is read before it is written, none outside what was
# allocated is touched, and nothing is lost. The programs take the library of the base level: Valgrind knows AVX and
# AVX2, and not AVX-512.
#
#     valgrind_test.sh FOLDER_OF_PROGRAMS
#
# The last line is "N passed, N failed".
set -u
sources=$(cd "$(dirname "$0")/../../examples" && pwd) || exit 1
programs=$(cd "${1:?"the folder of the examples' programs is missing"}" && pwd) || exit 1
scratch=$(mktemp -d) || exit 1
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
passed=0
failed=0

# watched PROGRAM ARGUMENTS...: the program ends well, and with nothing to be said about its memory
watched()
{
    local start=$SECONDS
    if valgrind --quiet --error-exitcode=99 --leak-check=full --errors-for-leak-kinds=definite,indirect \
        "$programs/$1" "${@:2}" >output.txt 2>&1 </dev/null; then
        passed=$((passed + 1))
        echo "$1: $((SECONDS - start)) s"
    else
        failed=$((failed + 1))
        echo "FAILED: $*"
        tail -n 40 output.txt | sed 's/^/    /'
    fi
}

picture=$sources/tests/sides.png
watched blur
# two frames of the film that is drawn, and the same ones as files
watched track --frames 2 --corners 40 --plain film ways
watched track --from film ways-from-files
watched watch --frames 2 moved
watched watch --from film moved-from-files
watched lines "$picture" lines.png
watched detect "$sources/detect/coins.cascade" "$sources/detect/coins.png" found.png
watched count --threshold 130 "$picture" objects
watched repair "$picture" repaired
watched repair --mask repaired/mask.png repaired/before.png repaired-by-mask
watched gallery "$picture" --out pages

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
