// Patterns with long and tangled ways, as levels from 0 (wall) to 255.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "lumcv/types.h"
#include "support/random.hpp"

namespace lumcv::test {

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

}  // namespace lumcv::test
