// What the images of these tests show: zero pixels among others, as sparse as dense.
#pragma once

#include <cstdint>

#include "support/image.hpp"
#include "support/random.hpp"

namespace lumcv::test::distance {

enum class Content
{
    NoZero,
    AllZero,
    OneZero,
    OneNonZero,
    Corner,     ///< the zero stands in one of the corners
    Sparse,     ///< one pixel in forty is zero
    Even,       ///< every second one at random
    Dense,      ///< one pixel in ten is not zero
    Stripe,     ///< columns of zeros, far apart
    Row,        ///< a row of zeros
    Blobs,      ///< squares of non-zero pixels that overlap
    Labyrinth,  ///< non-zero corridors between rows of zeros that leave a gap at alternate ends
    Count
};

inline Content contentOf(int number)
{
    return static_cast<Content>(number % static_cast<int>(Content::Count));
}

inline bool isZero(Content content, int x, int y, int width, int height, Random& random, int place)
{
    const bool isPlace = x == place % width && y == place / width % height;
    switch (content) {
        case Content::NoZero:
            return false;
        case Content::AllZero:
            return true;
        case Content::OneZero:
            return isPlace;
        case Content::OneNonZero:
            return !isPlace;
        case Content::Corner:
            return x == (place % 2 == 0 ? 0 : width - 1) && y == (place % 4 < 2 ? 0 : height - 1);
        case Content::Sparse:
            return random.oneIn(40);
        case Content::Even:
            return random.oneIn(2);
        case Content::Dense:
            return !random.oneIn(10);
        case Content::Stripe:
            return x % 23 == place % 23;
        case Content::Row:
            return y == place % height;
        case Content::Blobs:
            return (x + place) * 5 % 16 > 9 && (y + place / 3) * 3 % 10 > 4;
        case Content::Labyrinth:
            return y % 3 == 1 && x != (y % 2 == 0 ? width - 1 : 0);
        case Content::Count:
            break;
    }
    return false;
}

/// Non-zero pixels hold any value from 1 to 255.
template <class Pixels>
void draw(Pixels& image, int width, int height, Content content, std::uint64_t seed)
{
    Random random(seed);
    const int place = static_cast<int>(random.between(0, 1 << 20));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto value = static_cast<std::uint8_t>(random.between(1, 255));
            image.at(x, y) = isZero(content, x, y, width, height, random, place) ? std::uint8_t{0} : value;
        }
    }
}

inline void draw(Image<std::uint8_t>& image, Content content, std::uint64_t seed)
{
    draw(image, image.width(), image.height(), content, seed);
}

inline Layout layoutOf(int width, int height, int gap = 0, Guard guard = Guard::After, int offset = 0)
{
    Layout layout;
    layout.width = width;
    layout.height = height;
    layout.gap = gap;
    layout.guard = guard;
    layout.offset = offset;
    return layout;
}

}  // namespace lumcv::test::distance
