// The direction of FAST corners: bins of both formulas, what happens at the edges of bins, and where the differences
// cancel.
#include <gtest/gtest.h>

#include <vector>

#include "feature/fast_fixture.hpp"

namespace lumcv::test::fast {
namespace {

// Every number of bins, with the formula of nine points in sixteen and with the general one.
TEST(FastOrientation, EveryNumberOfBins)
{
    long corners = 0;
    for (int bins = 1; bins <= 64; ++bins) {
        for (const auto& [radius, arc] : {std::pair{3, 9}, {3, 10}, {1, 5}, {2, 7}, {5, 15}, {7, 21}, {9, 27}}) {
            const int mode = kModes[3 + bins % 3];
            const Setting setting = {radius, arc, bins, mode, 12};
            corners += expectCorners(Call::whole({64, 4 * radius + 9}, setting, Content::Patches, bins + 64 * radius));
            ASSERT_FALSE(HasFailure());
        }
    }
    EXPECT_GT(corners, 10000);
}

// Corners come in any number to a row: what is gathered at its end is not lost.
TEST(FastOrientation, FewCornersInARow)
{
    Image<Lum8u> image(Placement{}.layout({90, 7}));
    for (int corners = 0; corners <= 11; ++corners) {
        for (int shift = 0; shift < 8; ++shift) {
            for (const int mode : {kModes[3], kModes[4], kModes[5]}) {
                Random random(static_cast<std::uint64_t>(corners));
                image.forEach(Area::Roi, [&](Lum8u& element, int, int, int) {
                    element = static_cast<Lum8u>(random.between(100, 140));
                });
                for (int i = 0; i < corners; ++i) {
                    image.at(3 + shift + 7 * i, 3) = static_cast<Lum8u>(i % 2 == 0 ? 255 : 0);
                }
                const Call call = Call::whole({90, 7}, {.bins = 40, .mode = mode, .threshold = 60}, Content::Noise, 0);
                EXPECT_EQ(expectCorners(call, image), corners) << "shift " << shift;
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

struct Side
{
    int dx;
    int dy;
    int quarter;  // of a turn, from the left downwards
};

// A wedge of another brightness lies to one side: the angle runs from the left (0) downwards (a quarter turn) and on to
// the right. 36 bins put the four directions onto edges of bins, 2 and 10 and 50 into their middle.
TEST(FastOrientationQuick, FourDirections)
{
    for (const auto& shape : {std::pair{3, 9}, {3, 10}, {1, 5}, {2, 8}, {5, 16}, {7, 22}, {9, 28}}) {
        const auto radius = shape.first, arc = shape.second;  // which a lambda can capture
        for (const Side& side : {Side{-1, 0, 0}, Side{0, 1, 1}, Side{1, 0, 2}, Side{0, -1, 3}}) {
            for (const bool isDark : {false, true}) {
                const int width = 2 * radius + 1;
                Image<Lum8u> image(Placement{}.layout({width, width}));
                // the far side is a little brighter or darker than the rest of the ring, all of which is an arc
                image.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int) {
                    const int along = (x - radius) * side.dx + (y - radius) * side.dy;
                    element = static_cast<Lum8u>(isDark ? 60 + along : 190 + along);
                });
                image.at(radius, radius) = 125;
                for (const int bins : {4, 8, 16, 64, 36, 1, 2, 10, 50}) {
                    const Setting setting = {radius, arc, bins, kCorners | kOrientation, 20};
                    const Call call = Call::whole({width, width}, setting, Content::Noise, 0);
                    EXPECT_EQ(expectCorners(call, image), 1);
                    const Result expected = detect(image, call.image, {0, 0}, call.roi, setting);
                    const Direction& found =
                        expected.pixels[static_cast<std::size_t>(radius * width + radius)].direction;
                    const double quarter = side.quarter * bins / 4.0;
                    // the thirteenth point of radius 9 lies elsewhere and turns the direction a little
                    const double slack = radius == 9 ? bins * 0.01 : 1e-4 * bins;
                    EXPECT_TRUE(std::fabs(found.bins - quarter) < slack ||
                                std::fabs(found.bins - quarter - bins) < slack)
                        << setting << ": " << found.bins;
                }
            }
        }
    }
}

// Nothing but a bright or a dark centre: with nine points the sums are exactly 0, and the small addition makes that an
// angle of 0. A single point of the ring then tips the balance.
TEST(FastOrientationQuick, NinePointsWithoutADirection)
{
    for (const int centre : {0, 255}) {
        for (const int bins : {1, 8, 63, 64}) {
            for (const int mode : {kModes[3], kModes[4], kModes[5]}) {
                Image<Lum8u> image(Placement{}.layout({19, 19}));
                image.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 128; });
                image.at(9, 9) = static_cast<Lum8u>(centre);
                const Setting setting = {3, 9, bins, mode, 20};
                const Spec spec({19, 19}, setting);
                const PlacedBlock scratch(scratchBytes(19));
                Image<Lum8u> corner(Placement{}.layout({19, 19}));
                Image<Lum8u> score(Placement{}.layout({19, 19}));
                Lum32s count = 0;
                EXPECT_EQ(lumiFastN_8u_C1R(image.pixels(), image.step(), corner.pixels(), corner.step(), score.pixels(),
                                           score.step(), &count, {0, 0}, {19, 19}, spec.get(), scratch.data()),
                          lumOk);
                EXPECT_EQ(count, 1);
                EXPECT_EQ(corner.at(9, 9), centre == 0 ? 0x40 : 0x80);
                const Ring& ring = ringOf(3);
                for (const RingPoint& point : ring) {
                    for (const int difference : {-1, 1}) {
                        image.at(9 + point.dx, 9 + point.dy) = static_cast<Lum8u>(128 + difference);
                        expectCorners(Call::whole({19, 19}, setting, Content::Noise, 0), image);
                        image.at(9 + point.dx, 9 + point.dy) = 128;
                    }
                }
            }
        }
    }
}

// All differences take part in the sums, those below the threshold and of the other sign as well.
TEST(FastOrientationQuick, AllDifferencesCount)
{
    for (const auto& [radius, arc] : {std::pair{3, 10}, {3, 9}, {5, 15}, {9, 27}}) {
        const int width = 2 * radius + 1;
        const Ring& ring = ringOf(radius);
        for (int start = 0; start < ringSize(radius); ++start) {
            for (const int other : {90, 99, 110, 119, 0}) {
                Image<Lum8u> image(Placement{}.layout({width, width}));
                image.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 100; });
                for (int i = 0; i < ringSize(radius); ++i) {
                    const RingPoint& point = ring[static_cast<std::size_t>((start + i) % ringSize(radius))];
                    image.at(radius + point.dx, radius + point.dy) = static_cast<Lum8u>(i < arc ? 125 + i : other);
                }
                const Setting setting = {radius, arc, 64, kScores | kOrientation, 20};
                const int corners = expectCorners(Call::whole({width, width}, setting, Content::Noise, 0), image);
                EXPECT_TRUE(corners == 1 || radius == 9);
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

// Without the direction the low six bits are 0, and with a single bin as well.
TEST(FastOrientationQuick, LowBitsWithoutDirection)
{
    for (const int mode : kModes) {
        for (const int arc : {9, 10}) {
            const Setting setting = {3, arc, mode & kOrientation ? 1 : 64, mode, 12};
            const Spec spec({50, 30}, setting);
            const PlacedBlock scratch(scratchBytes(50));
            Image<Lum8u> image(Placement{}.layout({50, 30}));
            Random random(4);
            draw(image, Content::Patches, 3, random);
            Image<Lum8u> corner(Placement{}.layout({50, 30}));
            Image<Lum8u> score(Placement{}.layout({50, 30}));
            Lum32s count = 0;
            EXPECT_EQ(lumiFastN_8u_C1R(image.pixels(), image.step(), corner.pixels(), corner.step(), score.pixels(),
                                       score.step(), &count, {0, 0}, {50, 30}, spec.get(), scratch.data()),
                      lumOk);
            EXPECT_GT(count, 0);
            corner.forEach(Area::Roi, [](Lum8u& element, int x, int y, int) {
                EXPECT_TRUE(element == 0 || element == 0x40 || element == 0x80) << x << ", " << y << ": " << +element;
            });
        }
    }
}

}  // namespace
}  // namespace lumcv::test::fast
