#!/bin/bash
# The binary interface is the one of the snapshots beside this script: whatever changes it, for better or worse, has to be
# meant. The check is checked first: it must accept the interface as it is described now and see one mistake of every
# kind.
#
#     abi_test.sh INCLUDE_FOLDER LUMCV_MAP LIBLUMCV LUMCORE_INCLUDE_FOLDER LUMCORE_MAP LIBLUMCORE NM CXX_COMPILER
#
# `cmake --build --preset base --target abi_snapshot` renews the snapshots.
set -u
export LC_ALL=C
here=$(cd "$(dirname "$0")" && pwd)
include=$1
map=$2
library=$3
core_include=$4
core_map=$5
core_library=$6
nm=$7
compiler=$8
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

complain()
{
    echo "$*"
    failed=1
}

# differences FIRST SECOND: between two descriptions; also those that a program would survive, and those of types that
# no function refers to
differences()
{
    abidiff --harmless --non-reachable-types "$1" "$2"
}

# symbols LIBRARY: with their versions
symbols()
{
    "$nm" -D --defined-only "$1" | cut -d ' ' -f 2- | sort
}

# the interfaces
for name in lumcv lumcore; do
    case $name in
        lumcv) described=(lumcv/lumcv.h "$include" "$map") built=$library ;;
        lumcore) described=(lumcore.h "$core_include" "$core_map") built=$core_library ;;
    esac
    "$here/describe.sh" "${described[@]}" "$compiler" "$work/lib$name.so.0" >"$work/$name.abi" || exit 1
    if ! differences "$here/lib$name.abi" "$work/$name.abi" >"$work/report"; then
        complain "the binary interface of $name differs from its snapshot:"
        cat "$work/report"
    fi
    # what is described is what is built
    symbols "$work/lib$name.so.0" >"$work/described"
    symbols "$built" >"$work/built"
    diff "$work/described" "$work/built" || complain "lib$name exports other symbols (>) than described (<)"
    [ -s "$work/built" ] || complain "lib$name exports nothing"
done

# mistake WHAT FILE PERL_EXPRESSION: the expression, applied to a copy of the file, changes the interface
mistake()
{
    local what=$1 file=$2
    rm -rf "$work/include"
    cp -r "$include" "$work/include"
    cp "$map" "$work/include/lumcv.map"
    cp "$work/include/$file" "$work/before"
    perl -0pi -e "$3" "$work/include/$file"
    if cmp -s "$work/before" "$work/include/$file"; then
        complain "the mistake '$what' cannot be made"
        return
    fi
    mkdir -p "$work/mistake"
    if ! "$here/describe.sh" lumcv/lumcv.h "$work/include" "$work/include/lumcv.map" "$compiler" \
        "$work/mistake/liblumcv.so.0" >"$work/mistake.abi"; then
        complain "the mistake '$what' cannot be described"
    elif differences "$work/lumcv.abi" "$work/mistake.abi" >/dev/null; then
        complain "the check overlooks a mistake: $what"
    fi
}

# shellcheck disable=SC2016  # what looks like variables of the shell is perl's
{
    mistake "a parameter of another type" lumcv/frame.h 's/Lum32f alpha/Lum64f alpha/'
    mistake "a parameter that may be written through" lumcv/frame.h 's/\(const Lum8u\* pSrc/(Lum8u* pSrc/'
    mistake "a parameter less" lumcv/frame.h 's/, Lum32f alpha//'
    mistake "another record" lumcv/morph.h \
        's/(lumiDilateBorder_8u_C1R\([^)]*)const LumiMorphMaskRecord/$1const LumiMorphBitRecord/'
    mistake "another result" lumcv/frame.h 's/const LumLibraryVersion\* lumcv/const void* lumcv/'
    mistake "a function less" lumcv/geometry.h 's/LUMCV_API LumStatus lumiSampleLine_8u_C1R\(.*?\);//s'
    mistake "a function more" lumcv/frame.h 's/LUMCV_API/LUMCV_API LumStatus lumcvMore(void); LUMCV_API/'
    mistake "a member of another type" lumcv/types.h 's/Lum64f area/Lum32f area/'
    mistake "a member more" lumcv/types.h 's/Lum32f theta;/Lum32f theta; Lum32f length;/'
    mistake "members in another order" lumcv/types.h 's/(Lum32s x;)(.*?)(Lum32s y;)/$3$2$1/s'
    mistake "a number of another type" lumcv/types.h 's/typedef Lum32s LumiNorm/typedef Lum32u LumiNorm/'
    mistake "a constant of another value" lumcv/types.h 's/lumErrStep = -16/lumErrStep = -17/'
    mistake "a constant less" lumcv/types.h 's/lumErrMode = -14,//'
    mistake "a constant more" lumcv/types.h 's/lumType64f = 19/lumType64f = 19, lumType64s = 21/'
    mistake "another version of the symbols" lumcv.map 's/LUMCV_0/LUMCV_1/'
}
exit $failed
