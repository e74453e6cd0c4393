#!/bin/bash
# The Debian packages hold what they should, depend on what they should and name the symbols that the libraries export,
# and lintian finds no error. Unpacked, they serve programs like any installation: the last folder becomes their root.
#
#     debian_test.sh CPACK BUILD_FOLDER LIBRARY_FOLDER NM READELF SCRATCH_FOLDER LEVEL...
set -eu
export LC_ALL=C
cpack=$1
build=$2
lib=usr/$3
nm=$4
readelf=$5
scratch=$6
shift 6
failed=0

complain()
{
    echo "$*"
    failed=1
}

rm -rf "$scratch"
mkdir -p "$scratch"
cd "$scratch"
"$cpack" --config "$build/CPackConfig.cmake" -B "$scratch" >cpack.log 2>&1 || { cat cpack.log; exit 1; }
runtime=$(echo liblumcv0_*_amd64.deb)
development=$(echo liblumcv-dev_*_amd64.deb)
documentation=$(echo liblumcv-doc_*_all.deb)
version=$(dpkg-deb -f "$runtime" Version)

# field PACKAGE FIELD PATTERN
field()
{
    local value
    value=$(dpkg-deb -f "$1" "$2")
    [[ $value =~ ^$3$ ]] || complain "$1: the field $2 is '$value'"
}
for package in "$runtime" "$development" "$documentation"; do
    field "$package" Source lumcv
    field "$package" Version '[0-9.]+-1'
    field "$package" Maintainer '.+ <.+@.+>'
    field "$package" Description 'image processing .*'
done
field "$runtime" Section libs
field "$runtime" Depends 'libc6 \(>= [0-9.]+\)'
field "$development" Section libdevel
field "$development" Depends "liblumcv0 \(= ${version//./\\.}\)"
field "$documentation" Section doc
field "$documentation" Depends ''

# what is where; of the reference and the headers the first page is enough here, installations are looked through
# elsewhere
for package in "$runtime" "$development" "$documentation"; do
    dpkg-deb -x "$package" "${package%%_*}"
    dpkg-deb -x "$package" root
done
{
    printf "$lib/%s\n" liblumcore.so.0 "liblumcore.so.${version%-*}" liblumcv.so.0 "liblumcv.so.${version%-*}"
    for level in "$@"; do
        [ "$level" = base ] || printf "$lib/glibc-hwcaps/x86-64-$level/liblumcv.so.%s\n" 0 "${version%-*}"
    done
    printf 'usr/share/doc/liblumcv0/%s\n' changelog.Debian.gz changelog.gz copyright
} | sort >expected
(cd liblumcv0 && find . ! -type d -printf '%P\n') | sort >packed
diff expected packed || complain "other files are in $runtime (>) than should be (<)"
for file in usr/include/lumcv/lumcv.h usr/include/lumcore.h "$lib/liblumcv.so" "$lib/liblumcore.so" \
    "$lib/pkgconfig/lumcv.pc" "$lib/cmake/lumcv/lumcvConfig.cmake" usr/share/doc/liblumcv-dev/copyright; do
    # of a link, both that it is in this package and that what it points to is in one of the others
    [[ (-L liblumcv-dev/$file || -e liblumcv-dev/$file) && -e root/$file ]] || complain "$development lacks $file"
done
for file in html/index.html examples/CMakeLists.txt examples/blur.c copyright; do
    [ -e "liblumcv-doc/usr/share/doc/liblumcv-doc/$file" ] || complain "$documentation lacks $file"
done
grep -q '^License: Apache-2.0$' root/usr/share/doc/liblumcv0/copyright || complain "copyright tells no licence"

# control files of the libraries
dpkg-deb -e "$runtime" control
grep -qx 'activate-noawait ldconfig' control/triggers || complain "the loader's cache is not renewed"
for name in core cv; do
    library=root/$lib/liblum$name.so.0
    soname=$("$readelf" -dW "$library" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
    [ "$soname" = "liblum$name.so.0" ] || complain "the SONAME is '$soname'"
    grep -q "^liblum$name 0 liblumcv0 (>= " control/shlibs || complain "shlibs lacks liblum$name"
    {
        echo "$soname liblumcv0 #MINVER#"
        "$nm" -D --defined-only "$library" | awk '{
            if ($2 == "A") $3 = $3 "@" $3
            sub(/@@/, "@", $3)
            print " " $3 " 0.1.0"
        }' | sort
    } >"symbols.$name"
done
{
    awk '/^lib/ { core = /^liblumcore/ } core' control/symbols | sort
    echo
    awk '/^lib/ { core = /^liblumcore/ } !core' control/symbols | sort
} >symbols.packed
{
    sort symbols.core
    echo
    sort symbols.cv
} >symbols.exported
diff symbols.exported symbols.packed || complain "the symbols of the package (>) are not those of the libraries (<)"

# Debian's loader needs no hint
while read -r library; do
    ! "$readelf" -dW "$library" | grep -E 'RPATH|RUNPATH' || complain "$library tells where to look for libraries"
done < <(find root -name 'lib*.so.*' -type f)

# as root or not, the packages are the same
lintian --allow-root --fail-on error "$runtime" "$development" "$documentation" || failed=1
exit $failed
