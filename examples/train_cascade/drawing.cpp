#include "drawing.hpp"

#include <algorithm>
#include <cmath>

namespace train {
namespace {

using gallery::Picture;
using gallery::Random;

constexpr int side = 192;

int between(Random& random, int least, int most)
{
    return least + random.below(most - least + 1);
}

// Brings a pixel nearer to a level: `cover` sixteenths of the way.
void blend(Picture& picture, int x, int y, int level, int cover)
{
    if (x < 0 || y < 0 || x >= side || y >= side || cover <= 0) {
        return;
    }
    const int old = picture.at(x, y);
    picture.at(x, y) = static_cast<Lum8u>(std::clamp(old + (level - old) * std::min(cover, unit) / unit, 0, 255));
}

int distance(int dx, int dy)
{
    return static_cast<int>(squareRoot(static_cast<std::uint64_t>(dx * dx + dy * dy)));
}

// Calls draw(x, y, dx, dy) for the pixels around a place; dx and dy are in sixteenths.
template <typename Draw>
void around(int centreX, int centreY, int radius, Draw draw)
{
    const int reach = radius / unit + 2;
    for (int y = centreY / unit - reach; y <= centreY / unit + reach; ++y) {
        for (int x = centreX / unit - reach; x <= centreX / unit + reach; ++x) {
            draw(x, y, x * unit - centreX, y * unit - centreY);
        }
    }
}

// What is struck into a coin: a spot that is brighter or darker than the metal.
struct Relief
{
    int x, y, radius, height;
};

// A disc, not quite round, lit from one side, with a rim and a relief.
void drawCoin(Picture& picture, const Coin& coin, int level, Random& random)
{
    const int lightX = between(random, -40, 40);
    const int lightY = between(random, -40, 40);
    const int rim = between(random, -45, 30);
    const int rimWidth = coin.radius * between(random, 6, 16) / 100;
    const int wobble = between(random, -6, 6);      // hundredths of the radius, at every quarter turn
    const int skewWobble = between(random, -6, 6);  // the same an eighth of a turn further
    std::vector<Relief> reliefs;
    for (int i = between(random, 2, 9); i > 0; --i) {
        const int reach = coin.radius * 65 / 100;
        reliefs.push_back({between(random, -reach, reach), between(random, -reach, reach),
                           coin.radius * between(random, 8, 38) / 100, between(random, -60, 50)});
    }
    around(coin.x, coin.y, coin.radius * 115 / 100, [&](int x, int y, int dx, int dy) {
        const int square = std::max(dx * dx + dy * dy, 1);
        const int out = coin.radius * (wobble * (dx * dx - dy * dy) / 100 + skewWobble * (dx * dy / 50)) / square;
        const int inside = coin.radius + out - distance(dx, dy);
        int brightness = level + (lightX * dx + lightY * dy) / coin.radius;
        if (inside < rimWidth) {
            brightness += rim;
        }
        for (const Relief& relief : reliefs) {
            const int into = relief.radius - distance(dx - relief.x, dy - relief.y);
            if (into > 0) {
                brightness += relief.height * std::min(2 * into, relief.radius) / relief.radius;
            }
        }
        blend(picture, x, y, std::clamp(brightness, 0, 255), inside + unit / 2);
    });
}

// The things that are drawn are told in braces, within which random numbers are taken from left to right. As arguments
// of a call, each compiler would take them in an order of its own.

// An even disc or, with an inner radius, a ring.
struct Ring
{
    int x, y, inner, outer, level;
};

void draw(Picture& picture, const Ring& ring)
{
    around(ring.x, ring.y, ring.outer, [&](int x, int y, int dx, int dy) {
        const int from = distance(dx, dy);
        const int inside = ring.inner == 0 ? unit : std::clamp(from - ring.inner + unit / 2, 0, unit);
        blend(picture, x, y, ring.level, std::min(inside, ring.outer - from + unit / 2));
    });
}

// What lies within `halfLength` along a direction and `halfWidth` across it.
struct Bar
{
    int x, y, towardsX, towardsY, halfLength, halfWidth, level;
};

void draw(Picture& picture, const Bar& bar)
{
    const int length = std::max(distance(bar.towardsX, bar.towardsY), 1);
    around(bar.x, bar.y, bar.halfLength + bar.halfWidth, [&](int x, int y, int dx, int dy) {
        const int along = std::abs(dx * bar.towardsX + dy * bar.towardsY) / length;
        const int across = std::abs(dx * bar.towardsY - dy * bar.towardsX) / length;
        const int insideLength = std::clamp(bar.halfLength - along + unit / 2, 0, unit);
        const int insideWidth = std::clamp(bar.halfWidth - across + unit / 2, 0, unit);
        blend(picture, x, y, bar.level, insideLength * insideWidth / unit);
    });
}

// Squares of two levels; in whole pixels.
struct Board
{
    int left, top, width, height, cell, even, odd;
};

void draw(Picture& picture, const Board& board)
{
    for (int y = 0; y < board.height; ++y) {
        for (int x = 0; x < board.width; ++x) {
            const bool isEven = (x / board.cell + y / board.cell) % 2 == 0;
            blend(picture, board.left + x, board.top + y, isEven ? board.even : board.odd, unit);
        }
    }
}

// Cloth, grass, stone: levels at the corners of a lattice, and in between what lies between them.
struct Cloth
{
    int left, top, width, height, cell, level, strength;
};

void draw(Picture& picture, const Cloth& cloth, Random& random)
{
    const int columns = cloth.width / cloth.cell + 2;
    const int rows = cloth.height / cloth.cell + 2;
    std::vector<int> lattice(static_cast<std::size_t>(columns * rows));
    for (int& corner : lattice) {
        corner = cloth.level + between(random, -cloth.strength, cloth.strength);
    }
    const auto at = [&](int column, int row) { return lattice[static_cast<std::size_t>(row * columns + column)]; };
    for (int y = 0; y < cloth.height; ++y) {
        for (int x = 0; x < cloth.width; ++x) {
            const int column = x / cloth.cell, across = x % cloth.cell;
            const int row = y / cloth.cell, down = y % cloth.cell;
            const int above = at(column, row) * (cloth.cell - across) + at(column + 1, row) * across;
            const int below = at(column, row + 1) * (cloth.cell - across) + at(column + 1, row + 1) * across;
            const int level = (above * (cloth.cell - down) + below * down) / (cloth.cell * cloth.cell);
            blend(picture, cloth.left + x, cloth.top + y, std::clamp(level, 0, 255), unit);
        }
    }
}

// Stones that lie over each other: bars not much longer than wide.
struct Stones
{
    int left, top, width, height, size, level, strength;
};

void draw(Picture& picture, const Stones& stones, Random& random)
{
    for (int i = 2 * stones.width * stones.height / (stones.size * stones.size); i > 0; --i) {
        draw(picture,
             Bar{(stones.left + random.below(stones.width)) * unit, (stones.top + random.below(stones.height)) * unit,
                 between(random, -99, 99), between(random, -99, 99), stones.size * between(random, 8, 20),
                 stones.size * between(random, 8, 16),
                 stones.level + between(random, -stones.strength, stones.strength)});
    }
}

// Something that is no coin.
void drawThing(Picture& picture, Random& random)
{
    const int x = random.below(side * unit);
    const int y = random.below(side * unit);
    const int level = random.below(256);
    switch (random.below(9)) {
        case 0:  // a hole
            draw(picture, Ring{x, y, 0, between(random, 6, 30) * unit, random.below(30)});
            break;
        case 1:  // a disc that is too large for a coin
            draw(picture, Ring{x, y, 0, between(random, 50, 120) * unit, level});
            break;
        case 2: {
            const int outer = between(random, 6, 40) * unit;
            draw(picture, Ring{x, y, outer * between(random, 60, 90) / 100, outer, level});
            break;
        }
        case 3:
        case 4:  // a stick, or a plank
            draw(picture, Bar{x, y, between(random, -99, 99), between(random, -99, 99), between(random, 10, 140) * unit,
                              between(random, 1, 16) * unit, level});
            break;
        case 5:  // a crowd of short strokes, as in writing
            for (int i = between(random, 5, 40); i > 0; --i) {
                draw(picture, Bar{x + between(random, -30, 30) * unit, y + between(random, -30, 30) * unit,
                                  between(random, -99, 99), between(random, -99, 99), between(random, 2, 8) * unit,
                                  unit, level});
            }
            break;
        case 6:
            draw(picture,
                 Cloth{x / unit - 60, y / unit - 60, between(random, 30, 130), between(random, 30, 130),
                       between(random, 2, 24), level, between(random, 10, 120)},
                 random);
            break;
        case 7:
            draw(picture,
                 Stones{x / unit - 40, y / unit - 40, between(random, 20, 100), between(random, 20, 100),
                        between(random, 4, 14), between(random, 60, 180), between(random, 20, 70)},
                 random);
            break;
        default:
            draw(picture, Board{x / unit, y / unit, between(random, 8, 90), between(random, 8, 90),
                                between(random, 2, 24), level, random.below(256)});
    }
}

bool isClear(const std::vector<Coin>& coins, const Coin& coin)
{
    return std::all_of(coins.begin(), coins.end(), [&](const Coin& other) {
        return distance(other.x - coin.x, other.y - coin.y) > (other.radius + coin.radius) * 11 / 10;
    });
}

}  // namespace

std::uint32_t squareRoot(std::uint64_t value)
{
    // the processor's root is rounded, so it may be one too large
    auto root = static_cast<std::uint64_t>(std::sqrt(static_cast<double>(value)));
    while (root * root > value) {
        --root;
    }
    while ((root + 1) * (root + 1) <= value) {
        ++root;
    }
    return static_cast<std::uint32_t>(root);
}

Table drawTable(Random& random)
{
    Table table{Picture(side, side, 1), {}};

    // a plain table with some light across it
    const int level = between(random, 12, 110);
    const int lightX = between(random, -40, 40);
    const int lightY = between(random, -40, 40);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            blend(table.picture, x, y, level + (lightX * (x - side / 2) + lightY * (y - side / 2)) / side, unit);
        }
    }
    switch (random.below(6)) {
        case 0:
            draw(table.picture,
                 Cloth{0, 0, side, side, between(random, 2, 30), between(random, 30, 200), between(random, 20, 150)},
                 random);
            break;
        case 1:
            draw(table.picture,
                 Stones{0, 0, side, side, between(random, 4, 14), between(random, 60, 180), between(random, 20, 70)},
                 random);
            break;
        default:
            break;
    }
    for (int i = random.below(12); i > 0; --i) {
        drawThing(table.picture, random);
    }
    const int tries = random.below(12);
    for (int i = 0; i < tries; ++i) {
        const int radius = between(random, 9 * unit, 26 * unit);
        const int room = radius * 13 / 10 + unit;
        const Coin coin{between(random, room, side * unit - room), between(random, room, side * unit - room), radius};
        if (table.coins.size() < 7 && isClear(table.coins, coin)) {
            // coins lie on the table, and other things beside them
            const int ground =
                level + (lightX * (coin.x / unit - side / 2) + lightY * (coin.y / unit - side / 2)) / side;
            draw(table.picture, Ring{coin.x, coin.y, 0, radius * between(random, 115, 140) / 100, ground});
            drawCoin(table.picture, coin, ground + between(random, 35, 120), random);
            table.coins.push_back(coin);
        }
    }
    const int noise = between(random, 1, 14);
    for (Lum8u& pixel : table.picture.elements()) {
        pixel =
            static_cast<Lum8u>(std::clamp(pixel + random.below(noise + 1) + random.below(noise + 1) - noise, 0, 255));
    }
    return table;
}

}  // namespace train
