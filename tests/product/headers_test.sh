#!/usr/bin/env bash
# Each public header compiles alone, as C11 and as C++17, without a warning; also when it is included twice. Those of the
# C++ layer compile as C++20, with exceptions and without.
# usage: headers_test.sh INCLUDE_FOLDER C_COMPILER CXX_COMPILER
set -u
include=$1
warnings="-Wall -Wextra -Wpedantic -Wshadow -Wundef -Werror"
failed=0
count=0

compile() {  # LANGUAGE HEADER COMMAND...
    local language=$1 header=$2
    shift 2
    if ! printf '#include <lumcv/%s>\n#include <lumcv/%s>\nint translationUnitIsNotEmpty;\n' "$header" "$header" |
            "$@" $warnings -I"$include" -fsyntax-only -x "$language" -; then
        echo "lumcv/$header does not compile alone as $language"
        failed=1
    fi
}

for path in "$include"/lumcv/*.h; do
    header=$(basename "$path")
    count=$((count + 1))
    compile c "$header" "$2" -std=c11 -Wstrict-prototypes
    compile c++ "$header" "$3" -std=c++17
done

for path in "$include"/lumcv/*.hpp; do
    header=$(basename "$path")
    compile c++ "$header" "$3" -std=c++20
    compile c++ "$header" "$3" -std=c++20 -fno-exceptions
done

# the umbrellas bring every piece
for path in "$include"/lumcv/*.h; do
    header=$(basename "$path")
    if [ "$header" != lumcv.h ] && ! grep -q "^#include \"$header\"$" "$include/lumcv/lumcv.h"; then
        echo "lumcv.h does not include $header"
        failed=1
    fi
done

for path in "$include"/lumcv/*.hpp; do
    header=$(basename "$path")
    if [ "$header" != lumcv.hpp ] && ! grep -q "^#include \"$header\"$" "$include/lumcv/lumcv.hpp"; then
        echo "lumcv.hpp does not include $header"
        failed=1
    fi
done

if [ "$count" -lt 2 ]; then
    echo "no headers in $include/lumcv"
    failed=1
fi
exit $failed
