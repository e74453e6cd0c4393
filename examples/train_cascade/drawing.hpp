// Pictures to learn from: tables with coins on them, among things that are none. All arithmetic is on integers, so that
// every compiler and every machine draws the same pixels.
#pragma once

#include <cstdint>
#include <vector>

#include "image.hpp"
#include "scene.hpp"

namespace train {

/// Positions and radii are in sixteenths of a pixel.
constexpr int unit = 16;

struct Coin
{
    int x, y, radius;
};

struct Table
{
    gallery::Picture picture;
    std::vector<Coin> coins;
};

/// The largest integer whose square is not above the value.
std::uint32_t squareRoot(std::uint64_t value);

/// A table of 192 x 192 pixels with up to seven coins and up to eleven other things.
Table drawTable(gallery::Random& random);

}  // namespace train
