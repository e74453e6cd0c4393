#!/usr/bin/env bash
# The list exports.txt, the functions that the headers declare and the symbols that the library exports are the same
# set.
# usage: exports_test.sh INCLUDE_FOLDER LIBRARY NM C_COMPILER
set -u
export LC_ALL=C
include=$1
library=$2
nm=$3
compiler=$4
list=$(dirname "$0")/exports.txt
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sort "$list" >"$work/listed"

# what a compiler sees, comments gone; only text that stems from the project's own headers is kept, as the line markers
# tell
echo '#include <lumcv/lumcv.h>' | "$compiler" -std=c11 -E -I"$include" -x c - |
    awk '/^# [0-9]+ "/ { ours = index($3, "/lumcv/") > 0; next } ours' |
    tr '\n' ' ' | grep -oE '[A-Za-z_][A-Za-z0-9_]* *\(' | tr -d ' (' |
    grep -vE '^(__attribute__|visibility)$' | sort >"$work/declared"

# every defined symbol but the version node itself
"$nm" -D --defined-only "$library" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' | sort >"$work/exported"

failed=0
complain() {  # TEXT FIRST SECOND: names in FIRST that are missing in SECOND
    local names
    names=$(comm -23 "$2" "$3")
    if [ -n "$names" ]; then
        echo "$1:"
        echo "$names" | sed 's/^/    /'
        failed=1
    fi
}

for set in listed declared exported; do
    if [ ! -s "$work/$set" ]; then
        echo "nothing is $set"
        failed=1
    fi
    if [ -n "$(uniq -d "$work/$set")" ]; then
        echo "$set twice: $(uniq -d "$work/$set" | tr '\n' ' ')"
        failed=1
    fi
done
complain "listed but not declared in a header" "$work/listed" "$work/declared"
complain "declared in a header but not listed" "$work/declared" "$work/listed"
complain "listed but not exported by the library" "$work/listed" "$work/exported"
complain "exported by the library but not listed" "$work/exported" "$work/listed"
[ $failed -eq 0 ] && echo "$(wc -l <"$work/listed") exports"
exit $failed
