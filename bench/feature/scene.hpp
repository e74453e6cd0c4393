// What the rows of features look at: a scene with soft shading, outlines and the noise of a camera, and noise alone.
#pragma once

#include <algorithm>
#include <cmath>

#include "bench/support/row.hpp"

namespace lumcv::bench {

// By pixel, of the range 0..255; the pixels are drawn in order.
using Scene = int (*)(int x, int y, int noise);

// Discs of many sizes, bright and dark, on waves.
inline int discs(int x, int y, int noise)
{
    const int column = x / 96, row = y / 80;
    const int number = column * 7 + row * 13;
    const double radius = 12 + number % 27;
    const double distance = std::hypot(x % 96 - 48, y % 80 - 40) - radius;
    // the outlines are as sharp as a lens draws them: they take about two pixels
    const double inside = std::clamp(0.5 - distance / 2, 0.0, 1.0);
    const double shade = 110 + 40 * std::sin(x / 40.0) * std::cos(y / 30.0);
    return int(shade + inside * (number % 2 ? 70 : -60)) + noise % 8;
}

inline int noiseAlone(int, int, int noise)
{
    return noise;
}

inline View<const Lum8u> draw(Job& job, Scene scene)
{
    const auto image = job.source<Lum8u>();
    const LumiSize size = job.size();
    std::mt19937 random{1};
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            const_cast<Lum8u*>(image.row(y))[x] = Lum8u(scene(x, y, int(random() >> 24)));
    return image;
}

}  // namespace lumcv::bench
