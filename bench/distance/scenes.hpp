// What distances are measured in: objects on a background of zeros, or a few zeros far from each other.
#pragma once

#include <cmath>

#include "bench/support/row.hpp"

namespace lumcv::bench {

enum class Scene
{
    Objects,  // discs of many sizes, half of the pixels
    Points    // one pixel in 400 is zero
};

inline View<const Lum8u> draw(Job& job, Scene scene)
{
    const auto image = job.source<Lum8u>();
    const LumiSize size = job.size();
    std::mt19937 random{1};
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const int number = x / 96 * 7 + y / 80 * 13;
            const bool isObject =
                scene == Scene::Objects ? std::hypot(x % 96 - 48, y % 80 - 40) < 25 + number % 27 : random() % 400 != 0;
            const_cast<Lum8u*>(image.row(y))[x] = isObject ? 255 : 0;
        }
    return image;
}

}  // namespace lumcv::bench
