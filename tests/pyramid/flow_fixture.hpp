// Pyramids of pictures given as functions, states in blocks of exactly their size, and the apply exports on points in
// memory of exactly their number.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <concepts>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "lumcv/lumcv.h"
#include "pyramid/flow_reference.hpp"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/placed_block.hpp"
#include "support/random.hpp"

namespace lumcv::test::flow {

template <class T>
struct Exports;

template <>
struct Exports<Lum8u>
{
    static constexpr LumDataType dataType = lumType8u;
    static constexpr auto init = lumiOpticalFlowPyrLKInit_8u_C1R;
    static constexpr auto apply = lumiOpticalFlowPyrLK_8u_C1R;
};
template <>
struct Exports<Lum16u>
{
    static constexpr LumDataType dataType = lumType16u;
    static constexpr auto init = lumiOpticalFlowPyrLKInit_16u_C1R;
    static constexpr auto apply = lumiOpticalFlowPyrLK_16u_C1R;
};
template <>
struct Exports<Lum32f>
{
    static constexpr LumDataType dataType = lumType32f;
    static constexpr auto init = lumiOpticalFlowPyrLKInit_32f_C1R;
    static constexpr auto apply = lumiOpticalFlowPyrLK_32f_C1R;
};

/// Calls f.template operator()<T>() for each element type.
template <class F>
void forEachType(F f)
{
    {
        SCOPED_TRACE("8u");
        f.template operator()<Lum8u>();
    }
    {
        SCOPED_TRACE("16u");
        f.template operator()<Lum16u>();
    }
    {
        SCOPED_TRACE("32f");
        f.template operator()<Lum32f>();
    }
}

/// The size of a state by its formula.
inline Lum64s stateBytes(Lum64s winSize, LumiSize size, LumDataType dataType)
{
    const auto up = [](Lum64s bytes) { return (bytes + 31) / 32 * 32; };
    const Lum64s width = size.width, height = size.height, larger = std::max(width, height);
    const Lum64s area = (width + 5) * (height + 5), window = (winSize + 3) * (winSize + 3);
    const Lum64s bytesFilter = up(3 * (larger + 2)) + 32;
    const Lum64s floatsFilter = up(up(3 * (larger + 2) * 4) + up(4 * width) * 2 + up((width + height) * 8)) + 32;
    switch (dataType) {
        case lumType8u:
            return 4 * area + 40 * window + 2 * bytesFilter + 130;
        case lumType16u:
            return 48 * window + 4 * (3 * area + floatsFilter) + 124;
        default:
            return 48 * window + 8 * area + 4 * floatsFilter + 124;
    }
}

/// A level's image: rows that may stand apart, against an unreadable page.
template <class T>
Layout levelLayout(LumiSize size, int number)
{
    constexpr int element = static_cast<int>(sizeof(T));
    Layout layout;
    layout.width = size.width;
    layout.height = size.height;
    layout.gap = number % 3 * 3 * element;
    layout.guard = number % 2 == 0 ? Guard::After : Guard::Before;
    return layout;
}

/// A pyramid in memory of its own, with the record that a caller would fill.
template <class T>
class Pyramid
{
  public:
    /// `last` is the index of the last level, `rate` what each level is smaller by.
    Pyramid(LumiSize size, int last = 0, double rate = 2.0, int layouts = 0)
    {
        double scale = 1.0;
        for (int l = 0; l <= last; ++l) {
            const auto side = [&](int pixels) { return std::max(1, static_cast<int>(std::lround(pixels * scale))); };
            sizes_.push_back({side(size.width), side(size.height)});
            scales_.push_back(scale);
            images_.emplace_back(levelLayout<T>(sizes_.back(), layouts + l));
            scale *= 1.0 / rate;
        }
        for (Image<T>& image : images_) {
            layers_.push_back(image.pixels());
            steps_.push_back(image.step());
        }
    }
    Pyramid(const Pyramid&) = delete;
    Pyramid& operator=(const Pyramid&) = delete;

    /// Every pixel becomes what the picture is at its place: f(x, y, pixels of level 0 to a pixel of the level).
    template <class F>
    Pyramid& draw(F f)
    {
        for (std::size_t l = 0; l < images_.size(); ++l) {
            const double pixel = 1.0 / scales_[l];
            images_[l].forEach(
                Area::Roi, [&](T& element, int x, int y, int) { element = toElement(f(x * pixel, y * pixel, pixel)); });
        }
        return *this;
    }
    Pyramid& noise(Random& random, Values values)
    {
        for (Image<T>& image : images_) {
            fill(image, random, values);
        }
        return *this;
    }

    LumiPyramidRecord record()
    {
        return {layers_.data(), sizes_.data(), scales_.data(), steps_.data(), nullptr, last()};
    }
    int last() const
    {
        return static_cast<int>(images_.size()) - 1;
    }
    Image<T>& level(int l)
    {
        return images_[static_cast<std::size_t>(l)];
    }
    LumiSize size() const
    {
        return sizes_[0];
    }
    std::vector<void*>& layers()
    {
        return layers_;
    }
    std::vector<Lum32s>& steps()
    {
        return steps_;
    }
    testing::AssertionResult gapsIntact() const
    {
        for (const Image<T>& image : images_) {
            if (const testing::AssertionResult intact = image.gapsIntact(); !intact) {
                return intact;
            }
        }
        return testing::AssertionSuccess();
    }

  private:
    /// Pictures have the values of bytes; those of 16u are 200 times as large.
    static T toElement(double value)
    {
        if constexpr (std::floating_point<T>) {
            return static_cast<T>(value);
        } else {
            constexpr double gain = sizeof(T) == 1 ? 1.0 : 200.0;
            return static_cast<T>(
                std::clamp(std::round(value * gain), 0.0, static_cast<double>(std::numeric_limits<T>::max())));
        }
    }

    std::vector<LumiSize> sizes_;
    std::vector<Lum64f> scales_;
    std::vector<Image<T>> images_;
    std::vector<void*> layers_;
    std::vector<Lum32s> steps_;
};

/// A state in a block of exactly its size.
template <class T>
class State
{
  public:
    State(LumiSize size, int winSize, Guard guard = Guard::After, std::size_t distance = 0)
        : block_(static_cast<std::size_t>(stateBytes(winSize, size, Exports<T>::dataType)), guard, distance)
    {
        Lum32s bytes = -1;
        EXPECT_EQ(lumiOpticalFlowPyrLKGetSize(winSize, size, Exports<T>::dataType, 0, &bytes), lumOk);
        EXPECT_EQ(bytes, static_cast<Lum64s>(block_.size()));
        EXPECT_EQ(Exports<T>::init(&state_, size, winSize, 0, block_.data()), lumOk);
        EXPECT_EQ(static_cast<void*>(state_), static_cast<void*>(block_.data()));
    }
    LumOptFlowPyrLKState* get() const
    {
        return state_;
    }
    testing::AssertionResult intact() const
    {
        return block_.intact();
    }

  private:
    PlacedBlock block_;
    LumOptFlowPyrLKState* state_ = nullptr;
};

struct Point
{
    Lum32f x;
    Lum32f y;
};

/// What a call reads and writes beside the pyramids; the results hold a pattern before it.
struct Operands
{
    explicit Operands(const std::vector<Point>& points)
        : prev({2 * static_cast<int>(points.size()), 1}),
          next({2 * static_cast<int>(points.size()), 1}),
          status({static_cast<int>(points.size()), 1}),
          error({static_cast<int>(points.size()), 1})
    {
        for (int i = 0; i < count(); ++i) {
            prev.at(2 * i, 0) = points[static_cast<std::size_t>(i)].x;
            prev.at(2 * i + 1, 0) = points[static_cast<std::size_t>(i)].y;
        }
    }
    int count() const
    {
        return status.width();
    }
    Followed operator[](int i) const
    {
        return {next.at(2 * i, 0), next.at(2 * i + 1, 0), status.at(i, 0), error.at(i, 0)};
    }
    testing::AssertionResult gapsIntact() const
    {
        for (const Image<Lum32f>* image : {&prev, &next, &error}) {
            if (const testing::AssertionResult intact = image->gapsIntact(); !intact) {
                return intact;
            }
        }
        return status.gapsIntact();
    }

    Image<Lum32f> prev, next;
    Image<Lum8s> status;
    Image<Lum32f> error;
};

template <class T>
LumStatus applyFlow(const LumiPyramidRecord& first, const LumiPyramidRecord& second, Operands& operands,
                    const Settings& settings, LumOptFlowPyrLKState* state)
{
    return Exports<T>::apply(&first, &second, operands.prev.pixels(), operands.next.pixels(), operands.status.pixels(),
                             operands.error.pixels(), operands.count(), settings.winSize, settings.maxLev,
                             settings.maxIter, settings.threshold, state);
}

/// Follows the points with a state of their own.
template <class T>
Operands follow(Pyramid<T>& first, Pyramid<T>& second, const std::vector<Point>& points, const Settings& settings)
{
    Operands operands(points);
    const State<T> state(first.size(), settings.winSize);
    EXPECT_EQ(applyFlow<T>(first.record(), second.record(), operands, settings, state.get()), lumOk);
    EXPECT_TRUE(state.intact());
    EXPECT_TRUE(operands.gapsIntact());
    return operands;
}

inline std::ostream& operator<<(std::ostream& stream, const Followed& point)
{
    return stream << "x " << elementText(point.x) << ", y " << elementText(point.y) << ", status " << point.status
                  << ", error " << elementText(point.error);
}

inline bool sameFollowed(const Followed& a, const Followed& b)
{
    return sameElement(a.x, b.x) && sameElement(a.y, b.y) && a.status == b.status && sameElement(a.error, b.error);
}

/// Compares what a call found with the reference, point by point and bit for bit.
template <class T>
void expectReference(const LumiPyramidRecord& first, const LumiPyramidRecord& second, const Operands& operands,
                     const Settings& settings, Ways& ways)
{
    const Reference<T> reference(first, second, settings.maxLev);
    for (int i = 0; i < operands.count(); ++i) {
        const Lum32f x = operands.prev.at(2 * i, 0), y = operands.prev.at(2 * i + 1, 0);
        const Followed expected = reference.follow(x, y, settings, ways);
        if (!sameFollowed(operands[i], expected)) {
            ADD_FAILURE() << "point " << i << " of " << operands.count() << ", x " << elementText(x) << ", y "
                          << elementText(y) << ": got " << operands[i] << ", expected " << expected;
            return;
        }
    }
}

/// A smooth picture without straight edges: waves in several directions, which die out on the levels that are too
/// coarse for them. Seen from a place that has moved by (shiftX, shiftY).
inline auto waves(double shiftX = 0, double shiftY = 0)
{
    return [=](double x, double y, double pixel) {
        constexpr double directions[5][3] = {
            {0.31, 0.12, 26}, {-0.17, 0.29, 24}, {0.05, -0.11, 30}, {0.09, 0.04, 25}, {0.21, -0.23, 18}};
        double sum = 128;
        for (const double* wave : directions) {
            const double square = (wave[0] * wave[0] + wave[1] * wave[1]) * pixel * pixel;
            sum +=
                wave[2] / (1 + square * square) * std::sin(wave[0] * (x - shiftX) + wave[1] * (y - shiftY) + wave[2]);
        }
        return sum;
    };
}

}  // namespace lumcv::test::flow
