// Chamfer distances written out plainly: two passes over the pixels, every neighbour of the mask in turn.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "lumcv/lumcv.h"
#include "support/image.hpp"

namespace lumcv::test::distance {

/// A step of the mask; Sum is std::int64_t for integer weights, which no sum of weights leaves, and Lum32f for floats.
template <class Sum>
struct Step
{
    int dx;
    int dy;
    Sum weight;
};

template <class Sum>
std::vector<Step<Sum>> turned(std::vector<Step<Sum>> steps)
{
    for (Step<Sum>& step : steps) {
        step = {-step.dx, -step.dy, step.weight};
    }
    return steps;
}

/// The distances of an image while they are formed.
template <class Sum>
struct Plane
{
    Plane(const Image<Lum8u>& source, Sum saturation)
        : width(source.width()), height(source.height()), sat(saturation), isFeature(size()), d(size())
    {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                isFeature[index(x, y)] = source.at(x, y) == 0 ? 1 : 0;
                at(x, y) = source.at(x, y) == 0 ? Sum{0} : sat;
            }
        }
    }

    std::size_t size() const
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    }
    Sum& at(int x, int y)
    {
        return d[index(x, y)];
    }

    /// The pixel becomes the least of itself and its neighbours plus their weights, in the rows from `top`. Whether it
    /// has changed.
    bool lower(int x, int y, const std::vector<Step<Sum>>& steps, int top = 0)
    {
        Sum best = at(x, y);
        for (const Step<Sum>& step : steps) {
            const int i = x + step.dx;
            const int j = y + step.dy;
            if (i >= 0 && i < width && j >= top && j < height) {
                const Sum candidate = at(i, j) + step.weight;
                best = candidate < best ? candidate : best;
            }
        }
        const bool changed = best != at(x, y);
        at(x, y) = best;
        return changed;
    }

    bool forwardRow(int y, const std::vector<Step<Sum>>& steps)
    {
        bool changed = false;
        for (int x = 0; x < width; ++x) {
            if (isFeature[index(x, y)] == 0) {
                changed |= lower(x, y, steps);
            }
        }
        return changed;
    }

    bool backwardRow(int y, const std::vector<Step<Sum>>& steps, Sum skip)
    {
        bool changed = false;
        for (int x = width - 1; x >= 0; --x) {
            if (at(x, y) > skip) {
                changed |= lower(x, y, steps);
            }
        }
        return changed;
    }

    int width;
    int height;
    Sum sat;
    std::vector<char> isFeature;
    std::vector<Sum> d;
};

template <class Sum>
std::vector<Sum> chamfer3x3(const Image<Lum8u>& source, Sum m0, Sum m1, Sum sat)
{
    Plane<Sum> plane(source, sat);
    const int last = plane.height - 1;
    const bool heavyEdge = m0 > m1 && std::min(plane.width, plane.height) >= 2;
    std::vector<Step<Sum>> steps = {{-1, 0, m0}, {0, -1, m0}};
    if (!(m1 >= Sum{2} * m0)) {
        steps.push_back({-1, -1, m1});
        steps.push_back({+1, -1, m1});
    }
    std::vector<Step<Sum>> lastRowSteps = steps;
    if (heavyEdge) {
        lastRowSteps.push_back({-2, 0, Sum{2} * m1});
    }
    for (int y = 0; y <= last; ++y) {
        plane.forwardRow(y, y == last ? lastRowSteps : steps);
    }
    for (int y = last; y >= 0; --y) {
        plane.backwardRow(y, turned(y == last ? lastRowSteps : steps), heavyEdge ? m1 : m0);
    }
    return plane.d;
}

/// a >= b as the 5x5 transforms judge it: integers exactly, floats with a tolerance.
inline bool reaches(std::int64_t a, std::int64_t b)
{
    return a >= b;
}
inline bool reaches(double a, double b)
{
    return a - b > -1e-7 * std::fabs(b);
}

inline bool knightNeverWins(std::int64_t m0, std::int64_t n1, std::int64_t m2)
{
    return reaches(m2, n1 + m0);
}
inline bool knightNeverWins(Lum32f m0, Lum32f n1, Lum32f m2)
{
    return reaches(double{m2}, double{n1} + double{m0});
}
inline bool isExtended(std::int64_t m0, std::int64_t n1, std::int64_t m2)
{
    return reaches(m0, n1) || reaches(2 * m0, m2) || reaches(3 * n1, 2 * m2);
}
inline bool isExtended(Lum32f m0, Lum32f n1, Lum32f m2)
{
    return reaches(double{m0}, double{n1}) || reaches(2.0 * double{m0}, double{m2}) ||
           reaches(1.5 * double{n1}, double{m2});
}

template <class Sum>
std::vector<Sum> chamfer5x5(const Image<Lum8u>& source, Sum m0, Sum m1, Sum m2, Sum sat)
{
    const Sum n1 = std::min(m1, Sum{2} * m0);
    if (knightNeverWins(m0, n1, m2)) {
        return chamfer3x3(source, m0, m1, sat);
    }
    Plane<Sum> plane(source, sat);
    const int width = plane.width;
    const int height = plane.height;
    const bool isSmall = width < 4 || height < 4;
    if (!isExtended(m0, n1, m2)) {
        const std::vector<Step<Sum>> steps = {{-1, 0, m0},  {-2, -1, m2}, {-1, -1, n1}, {0, -1, m0},
                                              {+1, -1, n1}, {+2, -1, m2}, {-1, -2, m2}, {+1, -2, m2}};
        for (int y = 0; y < height; ++y) {
            plane.forwardRow(y, steps);
        }
        for (int y = height - 1; y >= 0; --y) {
            plane.backwardRow(y, turned(steps), m0);
        }
        return plane.d;
    }
    const Sum edge = std::min(m0, Sum{3} * m2);
    const Sum diagonal = std::min(n1, Sum{2} * m2);
    const Sum straight = std::min({Sum{2} * edge, Sum{2} * diagonal, Sum{2} * m2});
    const Sum slanted = std::min(Sum{2} * diagonal, edge + m2);
    const Sum skip = std::min({m0, diagonal, m2});
    const std::vector<Step<Sum>> steps = {{-1, 0, edge}, {-2, 0, straight},  {-2, -1, m2}, {-1, -1, diagonal},
                                          {0, -1, edge}, {+1, -1, diagonal}, {+2, -1, m2}, {-2, -2, slanted},
                                          {-1, -2, m2},  {0, -2, straight},  {+1, -2, m2}, {+2, -2, slanted}};
    const std::vector<Step<Sum>> opposite = turned(steps);
    bool changed = true;
    if (isSmall) {
        while (changed) {
            changed = false;
            for (int y = 0; y < height; ++y) {
                changed |= plane.forwardRow(y, steps);
            }
            for (int y = height - 1; y >= 0; --y) {
                changed |= plane.backwardRow(y, opposite, skip);
            }
        }
        return plane.d;
    }
    for (int y = 0; y < height; ++y) {
        plane.forwardRow(y, steps);
    }
    std::vector<Step<Sum>> all = steps;
    all.insert(all.end(), opposite.begin(), opposite.end());
    const int top = height - 4;
    const auto column = [&](int x) {
        bool lowered = false;
        for (int y = top; y < height; ++y) {
            lowered |= plane.lower(x, y, all, top);
        }
        return lowered;
    };
    while (changed) {
        changed = false;
        for (int x = 0; x < width; ++x) {
            changed |= column(x);
        }
        for (int x = width - 1; x >= 0; --x) {
            changed |= column(x);
        }
    }
    for (int y = top - 1; y >= 0; --y) {
        plane.backwardRow(y, opposite, skip);
    }
    return plane.d;
}

}  // namespace lumcv::test::distance
