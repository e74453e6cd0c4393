// Windows around points: which pixels their samples lie between, and which of the samples an image has.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "frame/image.hpp"
#include "frame/rounding.hpp"

namespace lumcv {

/// Patches and copies of pixels are worked on in groups of so many samples; the last group of a row is a whole one.
inline constexpr int64_t flowLanes = 8;

struct FlowPoint
{
    Lum32f x, y;
};

/// A window on one axis. Sample k lies between the pixels first + k and first + k + 1.
struct FlowAxis
{
    int64_t first = 0;
    Lum32f fraction = 0;
    int64_t begin = 0, end = 0;  ///< the samples that the image has; none if end is not above begin

    /// Whether the second of the two pixels counts.
    bool isBetween() const
    {
        return fraction > 0;
    }

    static FlowAxis around(Lum32f point, Lum32s winSize, int64_t extent)
    {
        const int64_t samples = int64_t{winSize} + 2;
        const Lum32f corner = point - static_cast<Lum32f>(samples - 1) * 0.5f;
        // not a number fails here too, and what passes fits an integer
        if (!(corner > -static_cast<Lum32f>(samples) && corner < static_cast<Lum32f>(extent)))
            return {};
        const Lum32f floor = __builtin_floorf(corner);
        FlowAxis axis{static_cast<int64_t>(floor), corner - floor, 0, samples};
        if (axis.first < 0)
            axis.begin = -axis.first;
        const int64_t end = extent - axis.isBetween() - axis.first;
        if (end < samples)
            axis.end = end;
        return axis;
    }
};

/// A rectangle of samples.
struct FlowArea
{
    int64_t left = 0, top = 0, width = 0, height = 0;

    bool isEmpty() const
    {
        return width <= 0 || height <= 0;
    }

    bool operator==(const FlowArea&) const = default;
};

struct FlowWindow
{
    FlowAxis x, y;

    static FlowWindow around(FlowPoint point, Lum32s winSize, LumiSize size)
    {
        return {FlowAxis::around(point.x, winSize, size.width), FlowAxis::around(point.y, winSize, size.height)};
    }
};

/// The samples that both windows have.
inline FlowArea commonArea(const FlowWindow& a, const FlowWindow& b)
{
    const int64_t left = std::max(a.x.begin, b.x.begin), top = std::max(a.y.begin, b.y.begin);
    return {left, top, std::min(a.x.end, b.x.end) - left, std::min(a.y.end, b.y.end) - top};
}

/// The pixels that the samples of an area lie between. Whole groups of samples can be read in each row.
template <class T>
struct FlowPixels
{
    Plane<const T> plane;  ///< begins with the upper left one of the area's first sample
    int64_t right;         ///< elements to the right neighbour: 1, or 0 where it does not count
    int64_t below;         ///< rows to the neighbour below, likewise
};

/// Elements of a row of a patch.
constexpr int64_t flowPitch(Lum32s winSize)
{
    return roundedUp(int64_t{winSize} + 2, flowLanes);
}

/// The same of a copy of pixels, which has one more in each row.
constexpr int64_t flowCopyStep(Lum32s winSize)
{
    return flowPitch(winSize) + flowLanes;
}

/// Near the end of the rows whole groups would reach beyond them; the pixels are copied then, to a block of
/// flowCopyStep() elements a row.
template <class T>
FlowPixels<T> pixelsUnder(Plane<const T> image, int64_t width, const FlowWindow& window, const FlowArea& area,
                          T* copyBlock, int64_t copyStep)
{
    const int64_t right = window.x.isBetween(), below = window.y.isBetween();
    const int64_t x = window.x.first + area.left;
    const Plane<const T> plane{image.row(window.y.first + area.top) + x, image.step};
    if (x + roundedUp(area.width, flowLanes) + right <= width)
        return {plane, right, below};
    const Plane<T> copy{copyBlock, copyStep * static_cast<int64_t>(sizeof(T))};
    const int64_t copied = area.width + right, read = roundedUp(area.width, flowLanes) + right;
    for (int64_t y = 0; y < area.height + below; ++y) {
        __builtin_memcpy(copy.row(y), plane.row(y), static_cast<std::size_t>(copied) * sizeof(T));
        // they count for nothing, but are not to be read before they are written
        __builtin_memset(copy.row(y) + copied, 0, static_cast<std::size_t>(read - copied) * sizeof(T));
    }
    return {{copy.pixels, copy.step}, right, below};
}

}  // namespace lumcv
