// Patterns along which a reconstruction has a long way to go, as levels from 0 (wall) to 255, and their translation to
// pixels of each type.
#pragma once

#include <cmath>
#include <cstddef>
#include <limits>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "lumcv/types.h"
#include "morph/reconstruct_reference.hpp"
#include "support/image.hpp"
#include "support/random.hpp"

namespace lumcv::test::reconstruct {

/// Levels of an image; 0 at first.
struct Pattern
{
    std::string name;
    int width = 1;
    int height = 1;
    std::vector<int> levels = std::vector<int>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));

    int& at(int x, int y)
    {
        return levels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
    int at(int x, int y) const
    {
        return const_cast<Pattern*>(this)->at(x, y);
    }
    bool has(int x, int y) const
    {
        return x >= 0 && x < width && y >= 0 && y < height;
    }
};

inline std::ostream& operator<<(std::ostream& stream, const Pattern& pattern)
{
    return stream << pattern.name << ", " << pattern.width << " x " << pattern.height;
}

/// The level of a way.
inline constexpr int kWay = 200;

/// Rows joined at their right and left ends in turn.
inline Pattern serpentine(int width, int height)
{
    Pattern p{"serpentine", width, height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool join = y % 4 == 1 ? x == width - 1 : x == 0;
            p.at(x, y) = y % 2 == 0 || join ? kWay : 0;
        }
    }
    return p;
}

inline Pattern transposed(const Pattern& pattern)
{
    Pattern p{pattern.name + ", transposed", pattern.height, pattern.width};
    for (int y = 0; y < p.height; ++y) {
        for (int x = 0; x < p.width; ++x) {
            p.at(x, y) = pattern.at(y, x);
        }
    }
    return p;
}

/// Turned by 180 degrees.
inline Pattern turned(const Pattern& pattern)
{
    Pattern p = pattern;
    p.name += ", turned";
    p.levels.assign(pattern.levels.rbegin(), pattern.levels.rend());
    return p;
}

/// One way from the upper left corner inwards, with walls of one pixel.
inline Pattern spiral(int width, int height)
{
    Pattern p{"spiral", width, height};
    int x = 0, y = 0, dx = 1, dy = 0, turns = 0;
    p.at(0, 0) = kWay;
    while (turns < 2) {
        const bool wallNear =
            !p.has(x + dx, y + dy) || (p.has(x + 2 * dx, y + 2 * dy) && p.at(x + 2 * dx, y + 2 * dy) > 0);
        if (wallNear) {
            dx = std::exchange(dy, dx);
            dx = -dx;
            ++turns;
            continue;
        }
        x += dx;
        y += dy;
        p.at(x, y) = kWay;
        turns = 0;
    }
    return p;
}

/// A labyrinth in which one way leads from any place to any other.
inline Pattern maze(int width, int height, Random& random)
{
    Pattern p{"maze", width, height};
    std::vector<LumiPoint> way = {{0, 0}};
    p.at(0, 0) = kWay;
    while (!way.empty()) {
        const LumiPoint here = way.back();
        std::vector<LumiPoint> open;
        for (const LumiPoint step : {LumiPoint{1, 0}, LumiPoint{-1, 0}, LumiPoint{0, 1}, LumiPoint{0, -1}}) {
            if (p.has(here.x + 2 * step.x, here.y + 2 * step.y) &&
                p.at(here.x + 2 * step.x, here.y + 2 * step.y) == 0) {
                open.push_back(step);
            }
        }
        if (open.empty()) {
            way.pop_back();
            continue;
        }
        const LumiPoint step = open[static_cast<std::size_t>(random.between(0, std::ssize(open) - 1))];
        p.at(here.x + step.x, here.y + step.y) = kWay;
        p.at(here.x + 2 * step.x, here.y + 2 * step.y) = kWay;
        way.push_back({here.x + 2 * step.x, here.y + 2 * step.y});
    }
    return p;
}

/// A line that runs diagonally and bounces at the left and right side.
inline Pattern bouncingDiagonal(int width, int height)
{
    Pattern p{"bouncing diagonal", width, height};
    for (int y = 0; y < height; ++y) {
        const int period = width == 1 ? 1 : 2 * (width - 1);
        const int phase = y % period;
        p.at(phase < width ? phase : period - phase, y) = kWay;
    }
    return p;
}

/// Rows of teeth that hang on a beam.
inline Pattern comb(int width, int height)
{
    Pattern p{"comb", width, height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            p.at(x, y) = y == 0 || x % 2 == 0 ? kWay : 0;
        }
    }
    return p;
}

/// Pixels that touch at their corners alone.
inline Pattern checkerboard(int width, int height)
{
    Pattern p{"checkerboard", width, height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            p.at(x, y) = (x + y) % 2 == 0 ? kWay : 0;
        }
    }
    return p;
}

/// A share of percent is way, the rest wall. Near 60 (four neighbours) and 41 (eight) ways are long and tangled.
inline Pattern percolation(int width, int height, int percent, Random& random)
{
    Pattern p{"percolation of " + std::to_string(percent) + " percent", width, height};
    for (int& level : p.levels) {
        level = random.between(1, 100) <= percent ? kWay : 0;
    }
    return p;
}

/// Levels at random in so many steps.
inline Pattern noise(int width, int height, int steps, Random& random)
{
    Pattern p{"noise of " + std::to_string(steps) + " levels", width, height};
    for (int& level : p.levels) {
        level = static_cast<int>(random.between(0, steps - 1)) * 255 / (steps - 1);
    }
    return p;
}

/// Round hills of any height and width with noise upon them.
inline Pattern hills(int width, int height, Random& random)
{
    Pattern p{"hills", width, height};
    for (int hill = 0; hill < 3 + width * height / 300; ++hill) {
        const int cx = static_cast<int>(random.between(0, width - 1)),
                  cy = static_cast<int>(random.between(0, height - 1));
        const int top = static_cast<int>(random.between(40, 250)), slope = static_cast<int>(random.between(3, 30));
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const int distance = static_cast<int>(std::sqrt((x - cx) * (x - cx) + (y - cy) * (y - cy)));
                p.at(x, y) = std::max(p.at(x, y), top - slope * distance);
            }
        }
    }
    for (int& level : p.levels) {
        level += static_cast<int>(random.between(0, 5));
    }
    return p;
}

/// Makes the way and the walls uneven: a value then goes as far as the lowest place on the way lets it.
inline Pattern uneven(const Pattern& pattern, Random& random)
{
    Pattern p = pattern;
    p.name = "uneven " + p.name;
    for (int& level : p.levels) {
        level = level > 0 ? 255 - static_cast<int>(random.between(0, random.oneIn(8) ? 120 : 5))
                          : static_cast<int>(random.between(0, 30));
    }
    return p;
}

/// How levels become pixels.
enum class Palette
{
    Wide,   ///< over the range of the type; floats end in infinities
    Close,  ///< the least differences that the type has, around the middle of unsigned integers; floats above 1
    Zero    ///< the least differences around zero; for integers as Wide
};

inline constexpr Palette kPalettes[] = {Palette::Wide, Palette::Close, Palette::Zero};

inline Palette drawPalette(Random& random)
{
    return kPalettes[random.between(0, 2)];
}

/// A level of the dilation as pixel; the levels of the erosion run the other way.
template <class T>
T pixelOf(Form form, Palette palette, int level)
{
    const int ascending = form == Form::Dilate ? level : 255 - level;
    if constexpr (std::is_floating_point_v<T>) {
        using Limits = std::numeric_limits<T>;
        if (palette == Palette::Close) {
            return 1 + static_cast<T>(ascending) * Limits::epsilon();
        }
        if (palette == Palette::Zero) {
            return static_cast<T>(ascending - 128) * Limits::denorm_min();
        }
        return ascending == 0     ? -Limits::infinity()
               : ascending == 255 ? Limits::infinity()
                                  : static_cast<T>(ascending - 100) * (Limits::max() / 200);
    } else if constexpr (std::is_same_v<T, Lum16u>) {
        return static_cast<T>(palette == Palette::Close ? 0x7f80 + ascending : ascending * 257);
    } else {
        return static_cast<T>(ascending);
    }
}

/// The pixels of a pattern.
template <class T>
Image<T> imageOf(Form form, Palette palette, const Pattern& pattern, Layout layout = {})
{
    layout.width = pattern.width;
    layout.height = pattern.height;
    Image<T> image(layout);
    image.forEach(Area::Roi, [&](T& pixel, int x, int y, int) { pixel = pixelOf<T>(form, palette, pattern.at(x, y)); });
    return image;
}

/// A marker of the lowest level with the highest at one place.
inline Pattern seedAt(const Pattern& mask, int x, int y)
{
    Pattern p{"seed at " + std::to_string(x) + ", " + std::to_string(y), mask.width, mask.height};
    p.at(x, y) = 255;
    return p;
}

/// A marker of each kind: seeds here and there, the mask lowered, levels at random also above the mask, lowest and
/// highest levels everywhere.
inline Pattern drawMarker(const Pattern& mask, Random& random)
{
    Pattern p{"", mask.width, mask.height};
    const auto kind = random.between(0, 9);
    const int depth = static_cast<int>(random.between(1, 60));
    p.name = "marker of kind " + std::to_string(kind);
    for (std::size_t i = 0; i < p.levels.size(); ++i) {
        const int atRandom = static_cast<int>(random.between(0, 255));
        p.levels[i] = kind == 0   ? 0
                      : kind == 1 ? 255
                      : kind <= 4 ? (random.oneIn(20) ? mask.levels[i] : 0)
                      : kind <= 6 ? std::max(0, mask.levels[i] - depth)
                      : kind == 7 ? (random.oneIn(30) ? 255 : 0)
                                  : atRandom;
    }
    return p;
}

}  // namespace lumcv::test::reconstruct
