// The exports of speckles by element type, called with scratch of exactly its size, and the comparison with a reference
// that keeps the documented areas: a stack, a map of regions, and which of them are speckles.
#pragma once

#include <gtest/gtest.h>
#include <lumcv/lumcv.h>

#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/placed_block.hpp"
#include "support/random.hpp"

namespace lumcv::test::speckles {

template <class T>
struct Exports;

template <>
struct Exports<Lum8u>
{
    static constexpr auto mark = lumiMarkSpeckles_8u_C1IR;
    static constexpr LumDataType dataType = lumType8u;
    static constexpr const char* name = "8u";
};

template <>
struct Exports<Lum16u>
{
    static constexpr auto mark = lumiMarkSpeckles_16u_C1IR;
    static constexpr LumDataType dataType = lumType16u;
    static constexpr const char* name = "16u";
};

template <>
struct Exports<Lum16s>
{
    static constexpr auto mark = lumiMarkSpeckles_16s_C1IR;
    static constexpr LumDataType dataType = lumType16s;
    static constexpr const char* name = "16s";
};

template <>
struct Exports<Lum32f>
{
    static constexpr auto mark = lumiMarkSpeckles_32f_C1IR;
    static constexpr LumDataType dataType = lumType32f;
    static constexpr const char* name = "32f";
};

using Elements = testing::Types<Lum8u, Lum16u, Lum16s, Lum32f>;

struct ElementName
{
    template <class T>
    static std::string GetName(int)
    {
        return Exports<T>::name;
    }
};

template <class T>
struct Order
{
    T speckleVal = {};
    Lum32s maxSpeckleSize = 1;
    T maxPixDiff = {};
};

template <class T>
std::ostream& operator<<(std::ostream& stream, const Order<T>& order)
{
    return stream << "value " << elementText(order.speckleVal) << ", size up to " << order.maxSpeckleSize
                  << ", difference up to " << elementText(order.maxPixDiff);
}

inline std::int64_t scratchBytes(std::int64_t width, std::int64_t height)
{
    return 13 * width * height + 64;
}

template <class T>
bool isJoined(T a, T b, T maxPixDiff)
{
    if constexpr (std::floating_point<T>) {
        return maxPixDiff >= std::abs(a - b);
    } else if constexpr (std::is_same_v<T, Lum16s>) {
        return std::abs(int{a} - int{b}) <= int{static_cast<Lum16u>(maxPixDiff)};
    } else {
        return std::abs(int{a} - int{b}) <= int{maxPixDiff};
    }
}

/// Paints as the scan reaches a pixel, so regions are searched next to painted ones.
template <class T>
void mark(Image<T>& image, const Order<T>& order)
{
    const int width = image.width(), height = image.height();
    const auto indexOf = [&](int x, int y) {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    };
    std::vector<std::size_t> regionOf(indexOf(0, height));
    std::vector<bool> isSpeckle;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (image.at(x, y) == order.speckleVal) {
                continue;
            }
            if (regionOf[indexOf(x, y)] != 0) {
                if (isSpeckle[regionOf[indexOf(x, y)] - 1]) {
                    image.at(x, y) = order.speckleVal;
                }
                continue;
            }
            const std::size_t region = isSpeckle.size() + 1;
            regionOf[indexOf(x, y)] = region;
            std::int64_t count = 1;
            std::vector<LumiPoint> stack = {{x, y}};
            while (!stack.empty()) {
                const LumiPoint c = stack.back();
                stack.pop_back();
                for (const LumiPoint& q : {LumiPoint{c.x + 1, c.y}, {c.x - 1, c.y}, {c.x, c.y - 1}, {c.x, c.y + 1}}) {
                    if (q.x < 0 || q.x >= width || q.y < 0 || q.y >= height || regionOf[indexOf(q.x, q.y)] != 0) {
                        continue;
                    }
                    const T value = image.row(q.y)[q.x];
                    if (isJoined(value, image.row(c.y)[c.x], order.maxPixDiff) && !(value == order.speckleVal)) {
                        regionOf[indexOf(q.x, q.y)] = region;
                        ++count;
                        stack.push_back(q);
                    }
                }
            }
            isSpeckle.push_back(count <= order.maxSpeckleSize);
            if (isSpeckle.back()) {
                image.at(x, y) = order.speckleVal;
            }
        }
    }
}

template <class T>
void expectSpeckles(const Image<T>& before, const Order<T>& order, Guard guard = Guard::After, std::size_t distance = 0)
{
    SCOPED_TRACE(testing::Message() << before.width() << " x " << before.height() << ", " << order);
    Image<T> expected = before;
    mark(expected, order);
    Image<T> actual = before;
    const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes(before.width(), before.height())), guard, distance);
    ASSERT_EQ(Exports<T>::mark(actual.pixels(), actual.step(), {actual.width(), actual.height()}, order.speckleVal,
                               order.maxSpeckleSize, order.maxPixDiff, lumNormInf, scratch.data()),
              lumOk);
    EXPECT_TRUE(scratch.intact()) << "beside the scratch";
    EXPECT_TRUE(actual.gapsIntact());
    EXPECT_TRUE(sameImage(expected, actual));
}

}  // namespace lumcv::test::speckles
