#!/usr/bin/env bash
# The library needs libc and liblumcore and nothing else, is named by its SONAME, and takes from outside no
# function but those listed here: none that allocates, starts threads, prints or belongs to the run time of C++. It has no
# variables: what calls share is in the memory of their callers.
# usage: dependencies_test.sh LIBRARY NM READELF
set -u
export LC_ALL=C
library=$1
nm=$2
readelf=$3
failed=0

soname=$("$readelf" -dW "$library" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
if [[ ! $soname =~ ^liblumcv\.so\.[0-9]+$ ]]; then
    echo "the SONAME is '$soname'"
    failed=1
fi

needed=$("$readelf" -dW "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
while read -r name; do
    if [[ ! $name =~ ^(libc\.so\.6|liblumcore\.so\.[0-9]+)$ ]]; then
        echo "the library needs '$name'"
        failed=1
    fi
done <<<"$needed"

# moving memory, and the one question to the sibling
allowed=' memcpy memmove memset memcmp lumGetMaxCacheSizeB '
# what the compiler's start files refer to in every shared object, weakly
weak=' __cxa_finalize __gmon_start__ _ITM_deregisterTMCloneTable _ITM_registerTMCloneTable '
undefined=0
while read -r kind name; do
    name=${name%%@*}
    undefined=$((undefined + 1))
    case $kind in
        w) [[ $weak == *" $name "* ]] && continue ;;
        U) [[ $allowed == *" $name "* ]] && continue ;;
    esac
    echo "the library takes '$name' from outside"
    failed=1
done < <("$nm" -D --undefined-only "$library")
if [ $undefined -eq 0 ]; then
    echo "the symbol table could not be read"
    failed=1
fi

# a word each belongs to the compiler's start files
sections=0
while read -r name size; do
    sections=$((sections + 1))
    case $name in
        .data | .bss) ((16#$size <= 8)) && continue ;;
        .tdata | .tbss) ;;
        *) continue ;;
    esac
    echo "the library has variables: $((16#$size)) bytes in $name"
    failed=1
done < <("$readelf" -SW "$library" | sed -n 's/^ *\[ *[0-9]*\] \(\.[^ ]*\) *[A-Z_]* *[0-9a-f]* [0-9a-f]* \([0-9a-f]*\) .*/\1 \2/p')
if [ $sections -eq 0 ]; then
    echo "the sections could not be read"
    failed=1
fi
exit $failed
