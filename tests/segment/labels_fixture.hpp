// The exports of labelling by output type, called with scratch of exactly its size, and the comparison with a reference
// that takes components one by one.
#pragma once

#include <gtest/gtest.h>
#include <lumcv/lumcv.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/patterns.hpp"
#include "support/placed_block.hpp"
#include "support/random.hpp"

namespace lumcv::test::labels {

template <class Label>
struct Exports;

template <>
struct Exports<Lum8u>
{
    static constexpr auto bufferSize = lumiLabelMarkersGetBufferSize_8u_C1R;
    static constexpr Lum32s largest = 254;
    static constexpr const char* name = "8u";
};

template <>
struct Exports<Lum16u>
{
    static constexpr auto bufferSize = lumiLabelMarkersGetBufferSize_16u_C1R;
    static constexpr Lum32s largest = 65534;
    static constexpr const char* name = "16u";
};

template <>
struct Exports<Lum32s>
{
    static constexpr auto bufferSize = lumiLabelMarkersGetBufferSize_8u32s_C1R;
    static constexpr Lum32s largest = 0x7FFFFFFE;
    static constexpr const char* name = "8u32s";
};

using Labels = testing::Types<Lum8u, Lum16u, Lum32s>;

struct LabelName
{
    template <class Label>
    static std::string GetName(int)
    {
        return Exports<Label>::name;
    }
};

/// What the objects are given as.
template <class Label>
using Marker = std::conditional_t<std::is_same_v<Label, Lum32s>, Lum8u, Label>;

struct Order
{
    Lum32s minLabel = 1;
    Lum32s maxLabel = 254;
    LumiDistanceNorm norm = lumDistanceNormL1;
};

inline std::ostream& operator<<(std::ostream& stream, const Order& order)
{
    return stream << "labels " << order.minLabel << " to " << order.maxLabel << ", norm " << order.norm;
}

inline std::int64_t scratchBytes(std::int64_t width, std::int64_t height)
{
    return 6 * width * height + 32;
}

/// Labels components in raster order of their first pixels; returns their number.
template <class Label>
Lum32s label(const Image<Marker<Label>>& markers, Image<Label>& labels, const Order& order)
{
    const int width = markers.width(), height = markers.height();
    labels.forEach(Area::Roi, [](Label& element, int, int, int) { element = 0; });
    Lum32s number = 0;
    Lum32s next = order.minLabel;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (markers.at(x, y) == 0 || labels.at(x, y) != 0) {
                continue;
            }
            std::vector<LumiPoint> component = {{x, y}};
            labels.at(x, y) = static_cast<Label>(next);
            for (std::size_t i = 0; i < component.size(); ++i) {
                const LumiPoint here = component[i];
                for (int j = std::max(here.y - 1, 0); j <= std::min(here.y + 1, height - 1); ++j) {
                    for (int k = std::max(here.x - 1, 0); k <= std::min(here.x + 1, width - 1); ++k) {
                        const bool isNeighbour = order.norm == lumDistanceNormInf || j == here.y || k == here.x;
                        if (isNeighbour && markers.row(j)[k] != 0 && labels.row(j)[k] == 0) {
                            labels.row(j)[k] = static_cast<Label>(next);
                            component.push_back({k, j});
                        }
                    }
                }
            }
            ++number;
            next = next >= order.maxLabel ? order.minLabel : next + 1;
        }
    }
    return number;
}

/// The call: in place for 8u and 16u, from source to destination for 32s.
template <class Label>
LumStatus call(Marker<Label>* pSrc, Lum32s srcStep, Label* pDst, Lum32s dstStep, LumiSize size, Lum32s minLabel,
               Lum32s maxLabel, LumiDistanceNorm norm, Lum32s* pNumber, Lum8u* pBuffer)
{
    if constexpr (std::is_same_v<Label, Lum8u>) {
        return lumiLabelMarkers_8u_C1IR(pSrc, srcStep, size, minLabel, maxLabel, norm, pNumber, pBuffer);
    } else if constexpr (std::is_same_v<Label, Lum16u>) {
        return lumiLabelMarkers_16u_C1IR(pSrc, srcStep, size, minLabel, maxLabel, norm, pNumber, pBuffer);
    } else {
        return lumiLabelMarkers_8u32s_C1R(pSrc, srcStep, pDst, dstStep, size, minLabel, maxLabel, norm, pNumber,
                                          pBuffer);
    }
}

/// Compares labels and number. A second image takes the labels if they do not go in place.
template <class Label>
void expectLabels(const Image<Marker<Label>>& markers, const Order& order, Guard guard = Guard::After,
                  std::size_t distance = 0, int dstGap = 0)
{
    SCOPED_TRACE(testing::Message() << markers.width() << " x " << markers.height() << ", " << order);
    Layout layout = markers.layout();
    if constexpr (!std::is_same_v<Marker<Label>, Label>) {
        layout.gap = dstGap * static_cast<int>(sizeof(Label));
    }
    Image<Label> expected(layout);
    const Lum32s number = label<Label>(markers, expected, order);

    Image<Marker<Label>> source = markers;
    Image<Label> destination(layout);
    destination.forEach(Area::Roi, [](Label& element, int x, int, int) { element = static_cast<Label>(x * 7 + 3); });
    const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes(markers.width(), markers.height())), guard,
                              distance);
    Lum32s got = -1;
    ASSERT_EQ(call<Label>(source.pixels(), source.step(), destination.pixels(), destination.step(),
                          {markers.width(), markers.height()}, order.minLabel, order.maxLabel, order.norm, &got,
                          scratch.data()),
              lumOk);
    EXPECT_EQ(got, number);
    EXPECT_TRUE(scratch.intact()) << "beside the scratch";
    EXPECT_TRUE(source.gapsIntact());
    if constexpr (std::is_same_v<Marker<Label>, Label>) {
        EXPECT_TRUE(sameImage(expected, source));
    } else {
        EXPECT_TRUE(sameImage(expected, destination));
        EXPECT_TRUE(destination.gapsIntact());
        EXPECT_TRUE(sameBytes(markers, source)) << "the source was written";
    }
}

/// Markers where a pattern has its way. Those of one component are different from each other.
template <class Label>
Image<Marker<Label>> markersOf(const Pattern& pattern, Random& random, Layout layout = {})
{
    layout.width = pattern.width;
    layout.height = pattern.height;
    Image<Marker<Label>> markers(layout);
    markers.forEach(Area::Roi, [&](Marker<Label>& element, int x, int y, int) {
        constexpr std::int64_t largest = std::numeric_limits<Marker<Label>>::max();
        const std::int64_t values[] = {1, 128, largest, largest - 1, 256, random.between(1, largest)};
        const auto value = static_cast<Marker<Label>>(values[random.between(0, 5)]);
        element = pattern.at(x, y) == 0 ? Marker<Label>{0} : value == 0 ? Marker<Label>{255} : value;
    });
    return markers;
}

}  // namespace lumcv::test::labels
