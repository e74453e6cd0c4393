// Patterns along which a reconstruction has a long way to go, as levels from 0 (wall) to 255, and their translation to
// pixels of each type.
#pragma once

#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "lumcv/types.h"
#include "morph/reconstruct_reference.hpp"
#include "support/image.hpp"
#include "support/patterns.hpp"
#include "support/random.hpp"

namespace lumcv::test::reconstruct {

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
