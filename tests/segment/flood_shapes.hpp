// Patterns that ask much of a stack of spans.
#pragma once

#include <functional>
#include <vector>

#include "support/patterns.hpp"
#include "support/random.hpp"

namespace lumcv::test::flood {

/// Teeth above and below a beam.
inline Pattern doubleComb(int width, int height)
{
    Pattern p{"double comb", width, height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            p.at(x, y) = y == height / 2 || x % 2 == 0 ? kWay : 0;
        }
    }
    return p;
}

/// Beams with teeth between them that do not reach the next beam; a way on the left joins the beams.
inline Pattern combs(int width, int height)
{
    Pattern p{"combs", width, height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            p.at(x, y) = x == 0 || y % 4 == 1 || (y % 4 != 3 && x % 2 == 0) ? kWay : 0;
        }
    }
    return p;
}

/// Posts on every second column of every second row.
inline Pattern grid(int width, int height)
{
    Pattern p{"grid", width, height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            p.at(x, y) = y % 2 == 0 || x % 2 == 0 ? kWay : 0;
        }
    }
    return p;
}

/// Walls on every second column of every second row.
inline Pattern walls(int width, int height)
{
    Pattern p{"walls", width, height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            p.at(x, y) = (x + y % 4 / 2) % 2 == 0 || y % 2 == 0 ? kWay : 0;
        }
    }
    return p;
}

/// Pascal's triangle modulo 2.
inline Pattern triangle(int width, int height)
{
    Pattern p{"triangle", width, height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            p.at(x, y) = (x & y) == 0 ? kWay : 0;
        }
    }
    return p;
}

/// Squares with a hole in the middle, and so on in each of their eight parts.
inline Pattern carpet(int width, int height)
{
    Pattern p{"carpet", width, height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            bool isHole = false;
            for (int i = x, j = y; i > 0 || j > 0; i /= 3, j /= 3) {
                isHole = isHole || (i % 3 == 1 && j % 3 == 1);
            }
            p.at(x, y) = isHole ? 0 : kWay;
        }
    }
    return p;
}

/// Crosses of five parts, each of them a cross.
inline Pattern crosses(int width, int height)
{
    Pattern p{"crosses", width, height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            bool isWay = true;
            for (int i = x, j = y; i > 0 || j > 0; i /= 3, j /= 3) {
                isWay = isWay && (i % 3 == 1 || j % 3 == 1);
            }
            p.at(x, y) = isWay || (x == 0 && y == 0) ? kWay : 0;
        }
    }
    return p;
}

/// A tree of which each branch bears two, turned by a quarter.
inline Pattern tree(int width, int height)
{
    Pattern p{"tree", width, height};
    const std::function<void(int, int, int, bool)> grow = [&](int x, int y, int length, bool isFlat) {
        for (int i = -length; i <= length; ++i) {
            const int atX = isFlat ? x + i : x, atY = isFlat ? y : y + i;
            if (p.has(atX, atY)) {
                p.at(atX, atY) = kWay;
            }
        }
        if (length >= 1) {
            const int next = isFlat ? length : length / 2;
            grow(isFlat ? x - length : x, isFlat ? y : y - length, next, !isFlat);
            grow(isFlat ? x + length : x, isFlat ? y : y + length, next, !isFlat);
        }
    };
    grow(width / 2, height / 2, std::max(width, height) / 4, true);
    return p;
}

/// Squares around each other with walls between, and a way that joins them.
inline Pattern rings(int width, int height)
{
    Pattern p{"rings", width, height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int depth = std::min(std::min(x, width - 1 - x), std::min(y, height - 1 - y));
            p.at(x, y) = depth % 2 == 0 || (y == height / 2 && x < width / 2) ? kWay : 0;
        }
    }
    return p;
}

/// Each of the shapes above, and those that other tests know.
inline std::vector<Pattern> tangledShapes(int width, int height, Random& random)
{
    std::vector<Pattern> shapes = {
        serpentine(width, height), spiral(width, height),     bouncingDiagonal(width, height),
        comb(width, height),       doubleComb(width, height), combs(width, height),
        grid(width, height),       walls(width, height),      checkerboard(width, height),
        triangle(width, height),   carpet(width, height),     crosses(width, height),
        tree(width, height),       rings(width, height)};
    if (width % 2 == 1 && height % 2 == 1) {
        shapes.push_back(maze(width, height, random));
    }
    for (const int percent : {20, 35, 41, 50, 59, 65, 75, 85, 95, 99}) {
        shapes.push_back(percolation(width, height, percent, random));
    }
    return shapes;
}

/// A pattern and its three other orientations.
inline std::vector<Pattern> everyWay(const Pattern& pattern)
{
    return {pattern, turned(pattern), transposed(pattern), turned(transposed(pattern))};
}

/// Places on the way: the first, the last, the middle one and some at random.
inline std::vector<LumiPoint> seedsOn(const Pattern& pattern, int count, Random& random)
{
    std::vector<LumiPoint> way;
    for (int y = 0; y < pattern.height; ++y) {
        for (int x = 0; x < pattern.width; ++x) {
            if (pattern.at(x, y) > 0) {
                way.push_back({x, y});
            }
        }
    }
    if (way.empty()) {
        return {};
    }
    std::vector<LumiPoint> seeds = {way.front(), way.back(), way[way.size() / 2]};
    for (int i = 3; i < count; ++i) {
        seeds.push_back(way[static_cast<std::size_t>(random.between(0, std::ssize(way) - 1))]);
    }
    seeds.resize(static_cast<std::size_t>(count));
    return seeds;
}

}  // namespace lumcv::test::flood
