#!/usr/bin/env bash
# A call through lumcv.hpp compiles to the very instructions of the plain call.
# usage: cost_test.sh INCLUDE_FOLDER CXX_COMPILER
set -u
include=$1
compiler=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cat >"$work/calls.cpp" <<'END'
#ifdef PLAIN
#include <lumcv/lumcv.h>
#else
#include <lumcv/lumcv.hpp>
using lumcv::call;
using lumcv::View;
#endif

// images, numbers and pointers
LumStatus smooth(const Lum8u* source, Lum32s sourceStep, Lum8u* result, Lum32s resultStep, LumiSize size,
                 const LumFilterGaussianSpec* spec, Lum8u* buffer)
{
#ifdef PLAIN
    return lumiFilterGaussian_8u_C1R(source, sourceStep, result, resultStep, size, lumBorderMirror, nullptr, spec,
                                     buffer);
#else
    return call<lumiFilterGaussian_8u_C1R>(View(source, sourceStep, size), View(result, resultStep, size), size,
                                           lumBorderMirror, nullptr, spec, buffer).code();
#endif
}

// a part of images of three channels, 64 bits
LumStatus smoothPart(const Lum16u* source, Lum32s sourceStep, Lum16u* result, Lum32s resultStep,
                     const LumFilterGaussianSpec* spec, Lum8u* buffer)
{
#ifdef PLAIN
    return lumiFilterGaussian_16u_C3R_L((const Lum16u*)((const Lum8u*)source + 8L * sourceStep) + 48, sourceStep,
                                        (Lum16u*)((Lum8u*)result + 8L * resultStep) + 48, resultStep, {100, 50},
                                        lumBorderInMem, nullptr, spec, buffer);
#else
    const LumiSize size = {200, 100};
    const LumiRect part = {16, 8, 100, 50};
    return call<lumiFilterGaussian_16u_C3R_L>(View<const Lum16u, 3>(source, sourceStep, size).part(part),
                                              View<Lum16u, 3>(result, resultStep, size).part(part),
                                              LumiSize{part.width, part.height}, lumBorderInMem, nullptr, spec,
                                              buffer).code();
#endif
}

// bits
LumStatus dilate(const Lum8u* source, Lum32s sourceStep, Lum8u* result, Lum32s resultStep, LumiSize size,
                 const LumiMorphBitRecord* spec, Lum8u* buffer)
{
#ifdef PLAIN
    return lumiDilateBorder_1u_C1R(source, sourceStep, 3, result, resultStep, 5, size, lumBorderReplicate, 0, spec,
                                   buffer);
#else
    return call<lumiDilateBorder_1u_C1R>(lumcv::BitView(source, sourceStep, 3, size),
                                         lumcv::BitView(result, resultStep, 5, size), size, lumBorderReplicate, 0, spec,
                                         buffer).code();
#endif
}

// several results
Lum64f contrast(const Lum32f* source, Lum32s step, LumiSize size)
{
    Lum64f mean = 0, deviation = 0;
#ifdef PLAIN
    if (lumiMean_StdDev_32f_C1R(source, step, size, &mean, &deviation) != lumOk) {
        return -1;
    }
#else
    if (!call<lumiMean_StdDev_32f_C1R>(View(source, step, size), size, &mean, &deviation).ok()) {
        return -1;
    }
#endif
    return deviation / mean;
}
END

# without what names files and numbers functions
for form in PLAIN LAYER; do
    "$compiler" -std=c++20 -O2 -DNDEBUG -D"$form" -I"$include" -S -o - "$work/calls.cpp" |
        grep -vE '^[[:space:]]*\.(file|ident|addrsig)' | sed -E 's/\.L(F[BE]|func_(begin|end))[0-9]+/.L\1/' >"$work/$form.s"
done
functions=$(grep -cE '^_Z.*:' "$work/PLAIN.s")
if [ "$functions" -ne 4 ] || ! diff "$work/PLAIN.s" "$work/LAYER.s"; then
    echo "a call through the layer is another than the plain call"
    exit 1
fi
echo "$functions functions, the same instructions"
