// The exact distance written out plainly: squared distances along columns, the envelope of the parabolas along rows.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "lumcv/lumcv.h"
#include "support/image.hpp"

namespace lumcv::test::distance {

inline Lum32f squareOf(int i)
{
    return static_cast<Lum32f>(std::int64_t{i} * i);
}

/// The squared distance to the nearest zero in the column, by looking at all of it.
inline Lum32f squaredColumnDistance(const Image<Lum8u>& source, int x, int y)
{
    for (int distance = 0; distance < source.height(); ++distance) {
        const bool above = y >= distance && source.at(x, y - distance) == 0;
        const bool below = y + distance < source.height() && source.at(x, y + distance) == 0;
        if (above || below) {
            return squareOf(distance);
        }
    }
    return std::numeric_limits<Lum32f>::max();
}

inline void replaceByEnvelope(std::vector<Lum32f>& f)
{
    constexpr Lum32f most = std::numeric_limits<Lum32f>::max();
    const int width = static_cast<int>(f.size());
    const auto at = [](int i) { return static_cast<std::size_t>(i); };
    const std::vector<Lum32f> g = f;
    std::vector<Lum32f> z(f.size() + 1);
    std::vector<int> v(f.size());
    int k = 0;
    v[0] = 0;
    z[0] = -most;
    z[1] = most;
    for (int q = 1; q < width; ++q) {
        const Lum32f fq = g[at(q)] + squareOf(q);
        int j = k;
        Lum32f s = 0;
        while (true) {
            const int p = v[at(j)];
            const auto reciprocal = static_cast<Lum32f>(0.5 / (q - p));
            s = (fq - (g[at(p)] + squareOf(p))) * reciprocal;
            if (s > z[at(j)]) {
                break;
            }
            --j;
        }
        k = j + 1;
        v[at(k)] = q;
        z[at(k)] = s;
        z[at(k) + 1] = most;
    }
    int j = 0;
    for (int q = 0; q < width; ++q) {
        while (static_cast<Lum32f>(q) > z[at(j) + 1]) {
            ++j;
        }
        const int p = v[at(j)];
        f[at(q)] = g[at(p)] + squareOf(q > p ? q - p : p - q);
    }
}

inline Image<Lum32f> trueDistances(const Image<Lum8u>& source, const Layout& layout)
{
    Image<Lum32f> result(layout);
    std::vector<Lum32f> f(static_cast<std::size_t>(source.width()));
    for (int y = 0; y < source.height(); ++y) {
        for (int x = 0; x < source.width(); ++x) {
            f[static_cast<std::size_t>(x)] = squaredColumnDistance(source, x, y);
        }
        replaceByEnvelope(f);
        for (int x = 0; x < source.width(); ++x) {
            result.at(x, y) = std::sqrt(f[static_cast<std::size_t>(x)]);
        }
    }
    return result;
}

}  // namespace lumcv::test::distance
