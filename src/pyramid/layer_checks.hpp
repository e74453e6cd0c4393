// The checks of an apply call that the ways down and up share: all but that of the destination's size.
#pragma once

#include "frame/checks.hpp"
#include "frame/image.hpp"
#include "pyramid/layer_kernel.hpp"

namespace lumcv {

template <int channels, class T>
Checks rowChecks(Plane<const T> src, LumiSize srcRoi, Plane<T> dst, LumiSize dstRoi, const void* pState)
{
    return Checks{}
        .notNull(src.pixels, dst.pixels, pState)
        .step(src, rowElements(srcRoi.width, channels))
        .step(dst, rowElements(dstRoi.width, channels));
}

template <int channels, class T>
Checks rowChecks(Plane<const T> src, LumiSizeL srcRoi, Plane<T> dst, LumiSizeL dstRoi, const void* pState)
{
    return Checks{}
        .notNull(src.pixels, dst.pixels, pState)
        .within31Bits(srcRoi.width, srcRoi.height, dstRoi.width, dstRoi.height, src.step, dst.step)
        .rowFits(src, srcRoi.width, channels)
        .rowFits(dst, dstRoi.width, channels);
}

/// The record has to be one of an Init for this kind of image, and large enough for the source.
template <int channels, class T, class Size, class Record>
Checks layerApplyChecks(Plane<const T> src, Size srcRoi, Plane<T> dst, Size dstRoi, const Record* pState)
{
    Checks checks = rowChecks<channels>(src, srcRoi, dst, dstRoi, pState);
    if (checks.alignment(src).alignment(dst).failed())
        return checks;
    const Record& record = *pState;
    const bool isOfThisKind = isRate(record.rate) && record.isReady == 1 && record.dataType == layerDataType<T> &&
                              record.channels == channels;
    return checks.require(isOfThisKind, lumErrArgument)
        .size(srcRoi)
        .require(srcRoi.width <= record.width && srcRoi.height <= record.height, lumErrSize);
}

}  // namespace lumcv
