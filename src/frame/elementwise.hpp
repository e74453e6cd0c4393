// The driver of operations in which a destination pixel depends on the pixels at the same place alone.
#pragma once

#include <algorithm>

#include "frame/image.hpp"
#include "simd/simd.hpp"

namespace lumcv {

/// Whether what is written to the destination can be read again as a later pixel of the source.
inline bool interferes(Plane<const Lum8u> dst, int64_t dstRowBytes, Plane<const Lum8u> src, int64_t srcRowBytes,
                       int64_t height)
{
    if (dst.pixels == src.pixels && dst.step == src.step && dstRowBytes == srcRowBytes)
        return false;  // exactly in place: each pixel reads itself only
    const auto dstBegin = reinterpret_cast<intptr_t>(dst.pixels);
    const auto srcBegin = reinterpret_cast<intptr_t>(src.pixels);
    if (dstBegin + dst.step * (height - 1) + dstRowBytes <= srcBegin ||
        srcBegin + src.step * (height - 1) + srcRowBytes <= dstBegin)
        return false;
    if (dst.step == src.step) {
        // two ROIs of one image, side by side: their rows alternate in memory and share no byte
        const int64_t offset = ((srcBegin - dstBegin) % dst.step + dst.step) % dst.step;
        return offset < dstRowBytes || offset + srcRowBytes > dst.step;
    }
    return true;
}

/// Elements of a row where an image has no gaps and may be cut anywhere: some pages of floats, a few cache lines of
/// bytes.
inline constexpr int64_t elementsOfGaplessRow = 2048;

/// Calls kernel(lanes, pDst, pSrc...) for each group of `lanes` elements of a row; it reads that many of each operand
/// and stores that many. Operands that overlap are worked through pixel after pixel, row after row, each result stored
/// before the next pixel is read.
template <int N, class Kernel, class D, class... S>
[[gnu::flatten]] inline void eachElement(LumiSize size, Kernel kernel, Plane<D> dst, Plane<const S>... src)
{
    int64_t width = size.width;
    int64_t height = size.height;
    int64_t lastWidth = width;
    const auto bytesOf = [](const auto& plane) {
        return Plane<const Lum8u>{reinterpret_cast<const Lum8u*>(plane.pixels), plane.step};
    };
    const bool oneByOne = (interferes(bytesOf(dst), width * static_cast<int64_t>(sizeof(D)), bytesOf(src),
                                      width * static_cast<int64_t>(sizeof(S)), height) ||
                           ...);

    if (dst.step == width * static_cast<int64_t>(sizeof(D)) &&
        ((src.step == width * static_cast<int64_t>(sizeof(S))) && ...)) {
        const int64_t elements = width * height;
        width = std::min(elements, elementsOfGaplessRow);
        height = (elements + width - 1) / width;
        lastWidth = elements - (height - 1) * width;
        dst.step = width * static_cast<int64_t>(sizeof(D));
        ((src.step = width * static_cast<int64_t>(sizeof(S))), ...);
    }
    for (int64_t y = 0; y < height; ++y) {
        const auto group = [&](int64_t x, auto lanes) { kernel(lanes, dst.row(y) + x, (src.row(y) + x)...); };
        const auto groupAndNextRow = [&](int64_t x, auto lanes) {
            if constexpr (lanes == N) {
                simd::prefetch<lanes>(static_cast<const D*>(dst.row(y + 1) + x));
                (simd::prefetch<lanes>(src.row(y + 1) + x), ...);
            }
            group(x, lanes);
        };
        const bool isLast = y + 1 == height;
        const int64_t end = isLast ? lastWidth : width;
        if (oneByOne)
            simd::eachOnce<1>(0, end, group);
        else if (isLast || y + 2 == height)  // the row after this one is none, or a short one
            simd::eachOnce<N>(0, end, group);
        else
            simd::eachOnce<N>(0, end, groupAndNextRow);  // the processor does not see a row's next page coming
    }
}

}  // namespace lumcv
