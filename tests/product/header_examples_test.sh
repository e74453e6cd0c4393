#!/usr/bin/env bash
# The C examples in the public headers and on the pages compile as they stand, without a warning, and do what is claimed:
# each example defines a function, and header_examples/FUNCTION.c is the program that calls it.
# usage: header_examples_test.sh INCLUDE_FOLDER PAGES_FOLDER LIBRARY LUMCORE_LIBRARY SANITIZER C_COMPILER
set -u
include=$1
pages=$2
library=$3
lumcore=$4
sanitizer=$5
compiler=$6
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# between @code and @endcode in headers, between ```c and ``` on pages
cat "$include"/lumcv/*.h "$pages"/*.md | awk -v work="$work" '
    /^ \* @code\{\.c\}/ || /^```c$/ { inside = 1; text = ""; name = ""; next }
    (/^ \* @endcode/ || /^```$/) && inside { inside = 0; printf "%s", text > (work "/" name ".c"); next }
    inside {
        sub(/^ \* ?/, "")
        text = text $0 "\n"
        if (name == "" && match($0, /^LumStatus [A-Za-z]+\(/)) name = substr($0, 11, RLENGTH - 11)
    }'

flags="-std=c11 -O1 -g -Wall -Wextra -Wpedantic -Werror"
[ -n "$sanitizer" ] && flags="$flags -fsanitize=$sanitizer -fno-sanitize-recover=all"
failed=0
count=0
for example in "$work"/*.c; do
    name=$(basename "$example" .c)
    count=$((count + 1))
    # shellcheck disable=SC2086  # the flags are several words
    if ! "$compiler" $flags -I"$include" "$example" "$here/header_examples/$name.c" -o "$work/$name" "$library" \
            -Wl,-rpath-link,"$(dirname "$lumcore")" -lm; then
        echo "the example $name does not compile"
        failed=1
    elif ! LD_LIBRARY_PATH=$(dirname "$library"):$(dirname "$lumcore") "$work/$name"; then
        echo "the example $name does not do what it should"
        failed=1
    fi
done

programs=$(find "$here/header_examples" -name '*.c' | wc -l)
if [ "$count" -ne "$programs" ]; then
    echo "$count examples in headers and pages, $programs programs that call them"
    failed=1
fi
exit $failed
