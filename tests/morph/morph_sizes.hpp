// The closed forms of the sizes of morphology's blocks: w and h are the element's sides, W and H the ROI's, e the bytes
// of an element of a pixel and ch its channels.
#pragma once

#include <lumcv/lumcv.h>

#include <algorithm>

namespace lumcv::test::morph {

// products of sizes and sides reach 2^100
__extension__ typedef __int128 Wide;

constexpr Wide align(Wide value, Wide multiple)
{
    return (value + multiple - 1) / multiple * multiple;
}

constexpr Wide odd(Wide side)
{
    return side | 1;
}

constexpr Wide even(Wide side)
{
    return side / 2 * 2;
}

struct Geometry2
{
    Wide W;
    Wide H;
    Wide w;
    Wide h;
};

/// Rows of an image whose maxima along the row are kept.
constexpr Wide ringSize(const Geometry2& g, Wide ch, Wide e)
{
    return 16 * e + align(odd(g.w) * ch * e, 32) + odd(g.h) * align(g.W * ch * e, 32);
}

/// The largest band of the image with its border.
constexpr Wide stripSize(const Geometry2& g, Wide e)
{
    Wide pixels = (even(g.h) + g.H) * (even(g.w) + g.W);
    if (odd(g.w) < g.W && odd(g.h) < g.H) {
        const Wide bottom = odd(g.h) - 1 - g.h / 2;
        const Wide right = odd(g.w) - 1 - g.w / 2;
        const Wide rows = bottom < 1 ? 0 : (even(g.h) + bottom) * (even(g.w) + g.W);
        const Wide columns = right < 1 ? 0 : (even(g.w) + right) * (even(g.h) + g.H);
        pixels = std::max(rows, columns);
    }
    return pixels * e;
}

constexpr Wide byteBufferSize(const Geometry2& g, Wide ch, Wide e)
{
    return ringSize(g, ch, e) + align(stripSize(g, e) * ch, 32) + 64;
}

constexpr Wide bitBufferSize(const Geometry2& g)
{
    const auto [W, H, w, h] = g;
    const Wide rows = align((W + w) * 4, 16) * h * 2 + 16;
    const Wide unpacked = std::max(align(h * (w - 1 + W), 32) + align(W, 32) * h + align(w, 32) + 32,
                                   8 + 40 * h + (h * h + 1) * (W + 32) + 32);
    const Wide lists = align(h * 16 + 64, 16) + align(h * 24, 16) + align(w * h, 16) + unpacked;
    return std::max(rows, lists);
}

constexpr Wide byteRecordSize(const Geometry2& g)
{
    return (odd(g.w) * 5 + 4) * odd(g.h) + 136;
}

constexpr Wide bitRecordSize(const Geometry2& g)
{
    return align(g.w * g.h, 16) * 3 + 144;
}

/// lumiErodeGetSpecSize_L
constexpr Wide largeRecordSize(const Geometry2& g)
{
    return (odd(g.w) * 5 + 4) * odd(g.h) + 160 + bitBufferSize(g) + 16;
}

/// lumiErodeGetBufferSize_L
constexpr Wide largeBufferSize(const Geometry2& g, Wide ch, Wide e)
{
    return std::max(byteBufferSize(g, ch, e), bitBufferSize(g));
}

/// lumiMorphAdvGetSize of bytes: from the sizes of a single pass
constexpr Wide compoundRecordSize(const Geometry2& g, Wide singleRecordSize)
{
    return odd(g.w) * odd(g.h) + 2 * singleRecordSize + 64;
}

constexpr Wide compoundBufferSize(const Geometry2& g, Wide ch, Wide e, Wide singleBufferSize)
{
    return (g.H + even(g.h)) * align((g.W + even(g.w)) * ch * e, 32) + 2 * singleBufferSize;
}

/// lumiMorphGetSpecSize_L
constexpr Wide largeCompoundRecordSize(const Geometry2& g)
{
    const Wide W2 = g.W + g.w / 2 * 4;
    const Wide H2 = g.H + g.h / 2 * 4;
    return odd(g.h) * odd(g.w) + 2 * largeRecordSize({W2, H2, odd(g.w), odd(g.h)}) + 64;
}

/// lumiMorphGetBufferSize_L
constexpr Wide largeCompoundBufferSize(const Geometry2& g, Wide ch, Wide e)
{
    const Wide W2 = g.W + g.w / 2 * 4;
    const Wide H2 = g.H + g.h / 2 * 4;
    const Wide single =
        std::max({largeBufferSize(g, ch, e), largeBufferSize({g.W + even(g.w), g.H + even(g.h), g.w, g.h}, ch, e),
                  largeBufferSize({W2, H2, g.w, g.h}, ch, e)});
    return 2 * single + align(e * ch * W2, 32) * H2;
}

/// Bytes that the size queries count for an element of this type; code 0 stands for bits.
constexpr Wide elementBytes(LumDataType dataType)
{
    switch (dataType) {
        case lumType16u:
        case lumType16s:
            return 2;
        case lumType32f:
            return 4;
        default:
            return 1;
    }
}

}  // namespace lumcv::test::morph
