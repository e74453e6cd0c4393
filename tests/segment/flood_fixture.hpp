// The exports of flood fill by element type and channels, called with scratch of exactly its size, and the comparison
// with the reference.
#pragma once

#include <gtest/gtest.h>
#include <lumcv/lumcv.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <type_traits>

#include "segment/flood_reference.hpp"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/patterns.hpp"
#include "support/placed_block.hpp"
#include "support/random.hpp"

namespace lumcv::test::flood {

template <class T, int channels>
struct Exports;

template <>
struct Exports<Lum8u, 1>
{
    static constexpr auto plain4 = lumiFloodFill_4Con_8u_C1IR;
    static constexpr auto plain8 = lumiFloodFill_8Con_8u_C1IR;
    static constexpr auto range4 = lumiFloodFill_Range4Con_8u_C1IR;
    static constexpr auto range8 = lumiFloodFill_Range8Con_8u_C1IR;
    static constexpr auto grad4 = lumiFloodFill_Grad4Con_8u_C1IR;
    static constexpr auto grad8 = lumiFloodFill_Grad8Con_8u_C1IR;
    static constexpr const char* name = "8uC1";
};

template <>
struct Exports<Lum8u, 3>
{
    static constexpr auto plain4 = lumiFloodFill_4Con_8u_C3IR;
    static constexpr auto plain8 = lumiFloodFill_8Con_8u_C3IR;
    static constexpr auto range4 = lumiFloodFill_Range4Con_8u_C3IR;
    static constexpr auto range8 = lumiFloodFill_Range8Con_8u_C3IR;
    static constexpr auto grad4 = lumiFloodFill_Grad4Con_8u_C3IR;
    static constexpr auto grad8 = lumiFloodFill_Grad8Con_8u_C3IR;
    static constexpr const char* name = "8uC3";
};

template <>
struct Exports<Lum16u, 1>
{
    static constexpr auto plain4 = lumiFloodFill_4Con_16u_C1IR;
    static constexpr auto plain8 = lumiFloodFill_8Con_16u_C1IR;
    static constexpr auto range4 = lumiFloodFill_Range4Con_16u_C1IR;
    static constexpr auto range8 = lumiFloodFill_Range8Con_16u_C1IR;
    static constexpr auto grad4 = lumiFloodFill_Grad4Con_16u_C1IR;
    static constexpr auto grad8 = lumiFloodFill_Grad8Con_16u_C1IR;
    static constexpr const char* name = "16uC1";
};

template <>
struct Exports<Lum16u, 3>
{
    static constexpr auto plain4 = lumiFloodFill_4Con_16u_C3IR;
    static constexpr auto plain8 = lumiFloodFill_8Con_16u_C3IR;
    static constexpr auto range4 = lumiFloodFill_Range4Con_16u_C3IR;
    static constexpr auto range8 = lumiFloodFill_Range8Con_16u_C3IR;
    static constexpr auto grad4 = lumiFloodFill_Grad4Con_16u_C3IR;
    static constexpr auto grad8 = lumiFloodFill_Grad8Con_16u_C3IR;
    static constexpr const char* name = "16uC3";
};

template <>
struct Exports<Lum32f, 1>
{
    static constexpr auto plain4 = lumiFloodFill_4Con_32f_C1IR;
    static constexpr auto plain8 = lumiFloodFill_8Con_32f_C1IR;
    static constexpr auto range4 = lumiFloodFill_Range4Con_32f_C1IR;
    static constexpr auto range8 = lumiFloodFill_Range8Con_32f_C1IR;
    static constexpr auto grad4 = lumiFloodFill_Grad4Con_32f_C1IR;
    static constexpr auto grad8 = lumiFloodFill_Grad8Con_32f_C1IR;
    static constexpr const char* name = "32fC1";
};

template <>
struct Exports<Lum32f, 3>
{
    static constexpr auto plain4 = lumiFloodFill_4Con_32f_C3IR;
    static constexpr auto plain8 = lumiFloodFill_8Con_32f_C3IR;
    static constexpr auto range4 = lumiFloodFill_Range4Con_32f_C3IR;
    static constexpr auto range8 = lumiFloodFill_Range8Con_32f_C3IR;
    static constexpr auto grad4 = lumiFloodFill_Grad4Con_32f_C3IR;
    static constexpr auto grad8 = lumiFloodFill_Grad8Con_32f_C3IR;
    static constexpr const char* name = "32fC3";
};

template <>
struct Exports<Lum32s, 1>
{
    static constexpr auto plain4 = lumiFloodFill_4Con_32s_C1IR;
    static constexpr auto plain8 = lumiFloodFill_8Con_32s_C1IR;
    static constexpr const char* name = "32sC1";
};

/// An element type and a number of channels, for typed tests.
template <class Element, int count>
struct Kind
{
    using T = Element;
    static constexpr int channels = count;
};

using AllKinds = testing::Types<Kind<Lum8u, 1>, Kind<Lum16u, 1>, Kind<Lum32s, 1>, Kind<Lum32f, 1>, Kind<Lum8u, 3>,
                                Kind<Lum16u, 3>, Kind<Lum32f, 3>>;
/// The plain rule alone knows 32s.
using RangeKinds =
    testing::Types<Kind<Lum8u, 1>, Kind<Lum16u, 1>, Kind<Lum32f, 1>, Kind<Lum8u, 3>, Kind<Lum16u, 3>, Kind<Lum32f, 3>>;

struct KindName
{
    template <class K>
    static std::string GetName(int)
    {
        return Exports<typename K::T, K::channels>::name;
    }
};

template <class T, int channels>
constexpr bool hasRule(Rule rule)
{
    return rule == Rule::Plain || !std::is_same_v<T, Lum32s>;
}

/// Values as the exports take them: one by value, three by pointer.
template <class T, int channels>
using Argument = std::conditional_t<channels == 1, T, const T*>;

template <class T, int channels>
Argument<T, channels> argumentOf(const Channels<T, channels>& values)
{
    if constexpr (channels == 1) {
        return values[0];
    } else {
        return values.data();
    }
}

template <class T, int channels>
LumStatus call(Rule rule, bool eight, T* pImage, int imageStep, LumiSize roiSize, LumiPoint seed,
               Argument<T, channels> newVal, Argument<T, channels> minDelta, Argument<T, channels> maxDelta,
               LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    using E = Exports<T, channels>;
    if constexpr (!std::is_same_v<T, Lum32s>) {
        if (rule == Rule::Range) {
            return (eight ? E::range8 : E::range4)(pImage, imageStep, roiSize, seed, newVal, minDelta, maxDelta,
                                                   pRegion, pBuffer);
        }
        if (rule == Rule::Grad) {
            return (eight ? E::grad8 : E::grad4)(pImage, imageStep, roiSize, seed, newVal, minDelta, maxDelta, pRegion,
                                                 pBuffer);
        }
    }
    return (eight ? E::plain8 : E::plain4)(pImage, imageStep, roiSize, seed, newVal, pRegion, pBuffer);
}

/// The bytes of the scratch.
inline std::int64_t scratchBytes(Rule rule, std::int64_t width, std::int64_t height)
{
    return rule == Rule::Grad ? (height + 2) * (width + 2) + 16 * width * height + 64 : 6 * width * height + 32;
}

inline const char* nameOf(Rule rule)
{
    const char* const names[] = {"plain", "range", "grad"};
    return names[static_cast<int>(rule)];
}

template <class T, int channels>
std::ostream& operator<<(std::ostream& stream, const Order<T, channels>& order)
{
    stream << nameOf(order.rule) << " of " << (order.eight ? 8 : 4) << " neighbours, seed (" << order.seed.x << ", "
           << order.seed.y << "), new value";
    for (const T value : order.newVal) {
        stream << " " << elementText(value);
    }
    if (order.rule != Rule::Plain) {
        stream << ", deltas";
        for (std::size_t c = 0; c < order.minDelta.size(); ++c) {
            stream << " -" << elementText(order.minDelta[c]) << " +" << elementText(order.maxDelta[c]);
        }
    }
    return stream;
}

/// Where a call's scratch stands.
struct Scratch
{
    Guard guard = Guard::After;
    std::size_t distance = 0;
};

/// What a call must not touch holds its bytes; what it must report is what the reference found.
template <class T, int channels>
void expectFill(const Image<T>& before, const Order<T, channels>& order, Scratch place = {})
{
    SCOPED_TRACE(testing::Message() << before.width() << " x " << before.height() << ", " << order);
    Image<T> expected = before;
    const std::optional<Outcome> outcome = fill<T, channels>(expected, order);

    Image<T> actual = before;
    const auto bytes = static_cast<std::size_t>(scratchBytes(order.rule, before.width(), before.height()));
    const PlacedBlock scratch(bytes, place.guard, place.distance);
    GuardedBlock region(sizeof(LumiConnectedComp), Guard::After);
    const GuardedBlock untouched = region;
    const LumStatus status =
        call<T, channels>(order.rule, order.eight, actual.pixels(), actual.step(), {actual.width(), actual.height()},
                          order.seed, argumentOf<T, channels>(order.newVal), argumentOf<T, channels>(order.minDelta),
                          argumentOf<T, channels>(order.maxDelta), region.as<LumiConnectedComp>(), scratch.data());
    ASSERT_EQ(status, lumOk);
    EXPECT_TRUE(scratch.intact()) << "beside the scratch";
    EXPECT_TRUE(region.slackIntact()) << "beside the region";
    EXPECT_TRUE(actual.gapsIntact());
    EXPECT_TRUE(sameImage(expected, actual));
    if (!outcome) {
        EXPECT_TRUE(sameElements(untouched.data(), region.data(), region.size())) << "the region was written";
        return;
    }
    const LumiConnectedComp& got = *region.as<LumiConnectedComp>();
    EXPECT_EQ(got.area, outcome->area);
    for (std::size_t c = 0; c < 3; ++c) {
        const Lum64f value = c < order.newVal.size() ? static_cast<Lum64f>(order.newVal[c % order.newVal.size()]) : 0.0;
        EXPECT_TRUE(sameElement(got.value[c], value))
            << "value " << c << ": got " << elementText(got.value[c]) << ", expected " << elementText(value);
    }
    const LumiRect& rect = outcome->rect;
    EXPECT_TRUE(got.rect.x == rect.x && got.rect.y == rect.y && got.rect.width == rect.width &&
                got.rect.height == rect.height)
        << "box: got " << got.rect.x << ", " << got.rect.y << ", " << got.rect.width << " x " << got.rect.height
        << ", expected " << rect.x << ", " << rect.y << ", " << rect.width << " x " << rect.height;
}

/// How levels from 0 to 255 become elements.
enum class Palette
{
    Low,   ///< from 0 on, so that ranges end at the least element
    High,  ///< up to the largest element
    Fine   ///< floats: fractions whose differences are rounded; integers as Low
};

template <class T>
T elementOf(Palette palette, int level)
{
    if constexpr (std::floating_point<T>) {
        return palette == Palette::Low    ? static_cast<T>(level)
               : palette == Palette::High ? static_cast<T>(level) * T{65536} - T{3}
                                          : T{100} + static_cast<T>(level) * T{0.1f};
    } else {
        return palette == Palette::High ? static_cast<T>(std::numeric_limits<T>::max() - 255 + level)
                                        : static_cast<T>(level);
    }
}

/// The steps between levels.
template <class T>
T deltaOf(Palette palette, int levels)
{
    if constexpr (std::floating_point<T>) {
        return palette == Palette::Low    ? static_cast<T>(levels)
               : palette == Palette::High ? static_cast<T>(levels) * T{65536}
                                          : static_cast<T>(levels) * T{0.1f};
    } else {
        return static_cast<T>(levels);
    }
}

/// The image of a pattern; each channel shows the same.
template <class T, int channels>
Image<T> imageOf(Palette palette, const Pattern& pattern, Layout layout = {})
{
    layout.width = pattern.width;
    layout.height = pattern.height;
    layout.channels = channels;
    Image<T> image(layout);
    image.forEach(Area::Roi, [&](T& element, int x, int y, int) { element = elementOf<T>(palette, pattern.at(x, y)); });
    return image;
}

template <class T, int channels>
Channels<T, channels> same(T value)
{
    Channels<T, channels> values;
    values.fill(value);
    return values;
}

}  // namespace lumcv::test::flood
