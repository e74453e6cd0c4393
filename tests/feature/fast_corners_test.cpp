// FAST corners, scores and suppression against the reference: all radii, arcs, thresholds, sizes and places.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "feature/fast_fixture.hpp"

namespace lumcv::test::fast {
namespace {

constexpr Lum32f kThresholds[] = {20, 0, 5.75f, 60, 0.99f, 100};

Content contentOf(int number)
{
    return static_cast<Content>(number % static_cast<int>(Content::Count));
}

// Widths around every number of lanes, and a few wide ones, with the radius and the arc that have code of their own.
TEST(FastCorners, WidthsWithNinePoints)
{
    Random random(1);
    std::vector<int> widths = {79,  80,  95,  96,  97,  127, 128,  129,  134,  135,  255,
                               256, 257, 258, 259, 260, 262, 1031, 1045, 1100, 2060, 4110};
    for (int width = 1; width <= 72; ++width) {
        widths.push_back(width);
    }
    int number = 0;
    long corners = 0;
    for (const int width : widths) {
        for (const int mode : kModes) {
            const Setting setting = {.bins = 1 + number % 64, .mode = mode, .threshold = kThresholds[number % 6]};
            Call call = Call::whole({width, 7 + number % 4}, setting, contentOf(number / 3), number);
            call.place = drawPlacement(random);
            corners += expectCorners(call);
            ASSERT_FALSE(HasFailure());
            ++number;
        }
    }
    EXPECT_GT(corners, 5000);
}

// Every radius with short, long and full arcs.
TEST(FastCorners, RadiiAndArcs)
{
    Random random(2);
    int number = 0;
    for (const int radius : kRadii) {
        long corners[2] = {};
        const int shortest = shortestArc(radius);
        const int full = ringSize(radius);
        for (const int arc : {shortest, shortest + 1, (shortest + full) / 2, full - 1, full}) {
            for (const int width : {2 * radius + 1, 2 * radius + 2, 2 * radius + 9, 41, 66}) {
                for (int i = 0; i < 3; ++i) {
                    const Setting setting = {radius, arc, 1 + number % 64, kModes[number % 6],
                                             kThresholds[number / 5 % 6]};
                    const int height = 2 * radius + 1 + (i == 0 ? 25 : number % 7);
                    Call call =
                        Call::whole({width, height}, setting, i == 0 ? Content::Spots : contentOf(number), number);
                    call.place = drawPlacement(random);
                    corners[arc == full] += expectCorners(call);
                    ASSERT_FALSE(HasFailure());
                    ++number;
                }
            }
        }
        EXPECT_GT(corners[0], 100) << "radius " << radius;
        EXPECT_GT(corners[1], 5) << "radius " << radius;
    }
}

// Nine points in twelve, and sixteen points in sixteen: radius 3 without its own code.
TEST(FastCorners, RadiusThreeWithOtherArcs)
{
    int number = 0;
    long corners = 0;
    for (int arc = 10; arc <= 16; ++arc) {
        for (const int width : {7, 8, 16, 21, 22, 23, 38, 39, 70}) {
            const Setting setting = {3, arc, 1 + number % 64, kModes[number % 6], kThresholds[number % 6]};
            corners += expectCorners(Call::whole({width, 10}, setting, contentOf(number), number));
            ASSERT_FALSE(HasFailure());
            ++number;
        }
    }
    EXPECT_GT(corners, 100);
}

// ROIs within the image and across its edges: near an edge nothing is tested, far from it the ring reaches beyond the
// ROI, and the frame of the suppression lies around what is left of the ROI.
TEST(FastCorners, Placements)
{
    Random random(3);
    long corners = 0;
    long cut = 0;
    for (int number = 0; number < 700; ++number) {
        const int radius = number % 2 == 0 ? 3 : kRadii[number / 2 % 6];
        const int arc = radius == 3 ? 9 : shortestArc(radius);
        Call call;
        call.setting = {radius, arc, 1 + number % 64, kModes[number % 6], kThresholds[number % 6]};
        call.content = contentOf(number);
        call.seed = number;
        call.image = {static_cast<int>(random.between(1, 60)), static_cast<int>(random.between(1, 26))};
        call.offset = {static_cast<int>(random.between(-12, call.image.width - 1)),
                       static_cast<int>(random.between(-8, call.image.height - 1))};
        call.roi = {static_cast<int>(random.between(1, 60)), static_cast<int>(random.between(1, 26))};
        call.place = drawPlacement(random);
        corners += expectCorners(call);
        cut += call.offset.x < 0 || call.offset.y < 0;
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(corners, 2000);
    EXPECT_GT(cut, 100);
}

// Every offset of a small ROI over a small image, from wholly outside on one side to the other.
TEST(FastCorners, EveryOffset)
{
    Image<Lum8u> image(Placement{}.layout({15, 11}));
    Random random(4);
    draw(image, Content::Noise, 3, random);
    for (int y = -6; y <= 12; ++y) {
        for (int x = -9; x <= 17; ++x) {
            Call call;
            call.image = {15, 11};
            call.roi = {8, 5};
            call.offset = {x, y};
            call.setting = {.bins = 7, .mode = kModes[(x + y + 20) % 6], .threshold = 9};
            expectCorners(call, image);
            ASSERT_FALSE(HasFailure());
        }
    }
}

// Thresholds are cut to whole numbers, and none above 254 is ever reached, however large.
TEST(FastCornersQuick, Thresholds)
{
    constexpr Lum32f kInfinite = std::numeric_limits<Lum32f>::infinity();
    constexpr Lum32f kLargest = std::numeric_limits<Lum32f>::max();
    for (const auto& [radius, arc] : {std::pair{3, 9}, {3, 10}, {1, 5}}) {
        for (const int mode : {kCorners, kScores, kMaxima | kOrientation}) {
            for (const Lum32f threshold :
                 {-0.0f, 0.0f, 0.5f, 1.0f, 1.999f, 2.0f, 127.0f, 128.0f, 200.0f, 253.5f, 254.0f, 254.99f}) {
                const Setting setting = {radius, arc, 9, mode, threshold};
                EXPECT_GT(expectCorners(Call::whole({61, 40}, setting, Content::Spots, 5)) +
                              expectCorners(Call::whole({61, 30}, setting, Content::Binary, 6)) +
                              (threshold > 100 ? 1 : 0),
                          0)
                    << setting;
            }
            for (const Lum32f threshold :
                 {255.0f, 255.5f, 256.0f, 257.0f, 300.0f, 384.0f, 511.0f, 512.0f, 32767.0f, 32768.0f, 65536.0f,
                  65540.0f, 16777216.0f, 2147483520.0f, 2147483648.0f, 4294967296.0f, 1e20f, kLargest, kInfinite}) {
                const Setting setting = {radius, arc, 9, mode, threshold};
                EXPECT_EQ(expectCorners(Call::whole({40, 15}, setting, Content::Binary, 7)), 0) << threshold;
            }
            ASSERT_FALSE(HasFailure());
        }
    }
}

// An image of black and white only, where nothing but differences of 255 exist, at the highest threshold.
TEST(FastCornersQuick, HighestThreshold)
{
    for (const auto& [radius, arc] : {std::pair{3, 9}, {3, 12}, {1, 5}, {2, 7}}) {
        Call call = Call::whole({60, 40}, {radius, arc, 1, kMaxima, 254}, Content::Noise, 8);
        Image<Lum8u> image(call.place.layout(call.image));
        Random random(9);
        image.forEach(Area::Roi, [&](Lum8u& element, int, int, int) { element = random.oneIn(8) ? 255 : 0; });
        EXPECT_GT(expectCorners(call, image), 3) << radius;
        image.forEach(Area::Roi, [&](Lum8u& element, int, int, int) { element = static_cast<Lum8u>(255 - element); });
        EXPECT_GT(expectCorners(call, image), 3) << radius;
    }
}

// Arcs of every length at every start, bright and dark: one below the wanted length is no corner, and the score is the
// smallest difference of the best window.
TEST(FastCornersQuick, ArcsAtEveryStart)
{
    for (const int radius : kRadii) {
        const Ring& ring = ringOf(radius);
        const int size = ringSize(radius);
        const int width = 2 * radius + 1;
        for (const int arc : {shortestArc(radius), size - 1, size}) {
            const Setting setting = {radius, arc, 1, kScores, 10};
            const Spec spec({width, width}, setting);
            const PlacedBlock scratch(scratchBytes(width));
            Image<Lum8u> image(Placement{}.layout({width, width}));
            Image<Lum8u> corner(Placement{}.layout({width, width}));
            Image<Lum8u> score(Placement{}.layout({width, width}));
            for (int start = 0; start < size; ++start) {
                for (int variant = 0; variant < 8; ++variant) {
                    const bool isDark = variant % 2 == 1;
                    const int length = arc - variant / 4;       // one too short at last
                    const bool isBelow = variant / 2 % 2 == 1;  // one point differs by the threshold and no more
                    image.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 100; });
                    for (int i = 0; i < length; ++i) {
                        const RingPoint& point = ring[static_cast<std::size_t>((start + i) % size)];
                        const int difference = i == length / 2 ? (isBelow ? 10 : 11) : 12 + i % 5;
                        image.at(radius + point.dx, radius + point.dy) =
                            static_cast<Lum8u>(isDark ? 100 - difference : 100 + difference);
                    }
                    const Result expected = detect(image, {width, width}, {0, 0}, {width, width}, setting);
                    // the thirteenth point of radius 9 is the fifteenth as well, and writing one writes both
                    if (radius != 9) {
                        ASSERT_EQ(expected.count, length == arc && !isBelow ? 1 : 0);
                    }
                    Lum32s count = -1;
                    ASSERT_EQ(
                        lumiFastN_8u_C1R(image.pixels(), image.step(), corner.pixels(), corner.step(), score.pixels(),
                                         score.step(), &count, {0, 0}, {width, width}, spec.get(), scratch.data()),
                        lumOk);
                    const Found& found = expected.pixels[static_cast<std::size_t>(radius * width + radius)];
                    ASSERT_EQ(count, expected.count) << setting << ", start " << start << ", variant " << variant;
                    ASSERT_EQ(corner.at(radius, radius), found.corner) << setting << ", start " << start;
                    ASSERT_EQ(score.at(radius, radius), found.score) << setting << ", start " << start;
                }
            }
        }
    }
}

// A difference of exactly the threshold is not above it.
TEST(FastCornersQuick, ArcAtTheThresholdIsNoCorner)
{
    for (const int radius : kRadii) {
        for (const int arc : {shortestArc(radius), ringSize(radius)}) {
            for (const int sign : {-1, 1}) {
                const int width = 2 * radius + 1;
                Call call = Call::whole({width, width}, {radius, arc, 1, kScores, 30}, Content::Noise, 0);
                Image<Lum8u> image(call.place.layout(call.image));
                image.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int) {
                    element = static_cast<Lum8u>(x == radius && y == radius ? 90 : 90 + sign * 30);
                });
                EXPECT_EQ(expectCorners(call, image), 0) << radius;
                image.at(radius, radius) = static_cast<Lum8u>(90 - sign);
                EXPECT_EQ(expectCorners(call, image), 1) << radius;
            }
        }
    }
}

TEST(FastCornersQuick, UniformImage)
{
    for (const int value : {0, 1, 128, 255}) {
        for (const int mode : kModes) {
            for (const int arc : {9, 16}) {
                Call call = Call::whole({50, 20}, {3, arc, 5, mode, 0}, Content::Noise, 0);
                Image<Lum8u> image(call.place.layout(call.image));
                image.forEach(Area::Roi, [&](Lum8u& element, int, int, int) { element = static_cast<Lum8u>(value); });
                EXPECT_EQ(expectCorners(call, image), 0);
            }
        }
    }
}

// An image that is thinner than the ring holds no corner, and no warning either.
TEST(FastCornersQuick, ThinnerThanTheRing)
{
    for (const int radius : kRadii) {
        for (const LumiSize size :
             {LumiSize{2 * radius, 40}, {40, 2 * radius}, {1, 1}, {1, 40}, {40, 1}, {radius, 40}}) {
            for (const int mode : kModes) {
                Call call = Call::whole(size, {radius, shortestArc(radius), 5, mode, 3}, Content::Noise, radius);
                EXPECT_EQ(expectCorners(call), 0);
            }
        }
    }
}

// The ROI may be thinner than the ring where the image is not: the ring is read around it.
TEST(FastCornersQuick, ThinRoiInALargeImage)
{
    long corners = 0;
    for (const int radius : kRadii) {
        for (const int mode : kModes) {
            for (const LumiSize roi : {LumiSize{1, 30}, {30, 1}, {1, 1}, {2, 2}}) {
                Call call = Call::whole({52, 50}, {radius, shortestArc(radius), 5, mode, 3}, Content::Patches, radius);
                call.offset = {11, 10};
                call.roi = roi;
                corners += expectCorners(call);
            }
        }
    }
    EXPECT_GT(corners, 100);
}

// Of two neighbours with the same score both survive, in all four directions; a lower one does not.
TEST(FastCornersQuick, SuppressionKeepsTies)
{
    for (const auto& [dx, dy] : {std::pair{1, 0}, {0, 1}, {1, 1}, {-1, 1}}) {
        for (const int arc : {9, 10}) {
            Call call = Call::whole({21, 21}, {3, arc, 1, kMaxima, 20}, Content::Noise, 0);
            Image<Lum8u> image(call.place.layout(call.image));
            image.forEach(Area::Roi, [&](Lum8u& element, int, int, int) { element = 100; });
            image.at(10, 10) = 200;
            image.at(10 + dx, 10 + dy) = 200;
            EXPECT_EQ(expectCorners(call, image), 2) << dx << ", " << dy;
            image.at(10, 10) = 199;
            EXPECT_EQ(expectCorners(call, image), 1) << dx << ", " << dy;
            image.at(10, 10) = 201;
            EXPECT_EQ(expectCorners(call, image), 1) << dx << ", " << dy;
        }
    }
}

// What lies beyond the ROI does not compete, although the ring reads it: a weaker corner at the ROI's edge survives.
TEST(FastCornersQuick, SuppressionEndsAtTheRoi)
{
    for (const int arc : {9, 10}) {
        Image<Lum8u> image(Placement{}.layout({24, 24}));
        image.forEach(Area::Roi, [&](Lum8u& element, int, int, int) { element = 100; });
        image.at(12, 12) = 180;
        const LumiPoint neighbours[] = {{11, 11}, {12, 11}, {13, 11}, {11, 12}, {13, 12}, {11, 13}, {12, 13}, {13, 13}};
        for (const LumiPoint& stronger : neighbours) {
            image.at(stronger.x, stronger.y) = 220;
            Call call = Call::whole({24, 24}, {3, arc, 1, kMaxima, 20}, Content::Noise, 0);
            EXPECT_EQ(expectCorners(call, image), 1);
            // a ROI of one pixel, and one that ends beside the stronger one
            call.offset = {12, 12};
            call.roi = {1, 1};
            EXPECT_EQ(expectCorners(call, image), 1);
            call.offset = {stronger.x < 12 ? 12 : 2, stronger.y < 12 ? 12 : 2};
            call.roi = {stronger.x < 12   ? 10
                        : stronger.x > 12 ? 11
                                          : 20,
                        stronger.y < 12   ? 10
                        : stronger.y > 12 ? 11
                                          : 20};
            EXPECT_EQ(expectCorners(call, image), 1);
            image.at(stronger.x, stronger.y) = 100;
        }
    }
}

TEST(FastCornersQuick, NegativeOffsetStillFindsCorners)
{
    for (const int mode : kModes) {
        for (const LumiPoint offset : {LumiPoint{-5, 0}, {0, -6}, {-7, -3}, {4, -2}, {-1, 5}}) {
            Call call = Call::whole({40, 24}, {.mode = mode, .threshold = 15}, Content::Patches, 3);
            call.offset = offset;
            EXPECT_GT(expectCorners(call), 0);
        }
    }
}

// Nothing is written where the ROI lies beside the image, the count included; far offsets do not wrap round.
TEST(FastCornersQuick, OutsideTheImage)
{
    constexpr int kMax = std::numeric_limits<int>::max();
    constexpr int kMin = std::numeric_limits<int>::min();
    for (const LumiPoint offset : {LumiPoint{20, 0},
                                   {0, 12},
                                   {21, 13},
                                   {-9, 0},
                                   {0, -4},
                                   {-10, 5},
                                   {3, -100},
                                   {kMax, 0},
                                   {0, kMax},
                                   {kMin, 0},
                                   {0, kMin},
                                   {kMax, kMin},
                                   {kMin, kMax},
                                   {-9, -4}}) {
        for (const int arc : {9, 11}) {
            Call call = Call::whole({20, 12}, {.arc = arc, .mode = kMaxima}, Content::Noise, 3);
            call.offset = offset;
            call.roi = {9, 4};
            expectCorners(call);
        }
    }
}

// A ROI may claim to be as high as it likes: what lies beyond the image is cut off.
TEST(FastCornersQuick, FarLowerEdge)
{
    constexpr int kMax = std::numeric_limits<int>::max();
    Image<Lum8u> image(Placement{}.layout({30, 20}));
    Random random(6);
    draw(image, Content::Patches, 3, random);
    for (const int arc : {9, 12}) {
        const Setting setting = {3, arc, 8, kMaxima | kOrientation, 10};
        const Spec spec({30, 20}, setting);
        const PlacedBlock scratch(scratchBytes(22));
        for (const int top : {0, 5, 19}) {
            const LumiSize cut = {22, 20 - top};
            Image<Lum8u> corner(Placement{}.layout(cut));
            Image<Lum8u> score(Placement{}.layout(cut));
            Lum32s count = -1;
            EXPECT_EQ(lumiFastN_8u_C1R(image.pixels(), image.step(), corner.pixels(), corner.step(), score.pixels(),
                                       score.step(), &count, {4, top}, {22, kMax}, spec.get(), scratch.data()),
                      lumWrnRoiClipped);
            const Result expected = detect(image, {30, 20}, {4, top}, cut, setting);
            EXPECT_EQ(count, expected.count);
            const auto read = [&](int x, int y) { return int{corner.at(x, y)}; };
            EXPECT_TRUE(sameMap("corners", expected, cut, &Found::corner, read, read)) << "top " << top;
        }
    }
}

// One record serves images with any row stride.
TEST(FastCornersQuick, OneRecordAndManyStrides)
{
    const Setting setting = {.bins = 8, .mode = kMaxima | kOrientation};
    const Spec spec({37, 20}, setting);
    const PlacedBlock scratch(scratchBytes(37));
    for (const int gap : {0, 1, 27, 64, 1000}) {
        Layout layout = Placement{}.layout({37, 20});
        layout.gap = gap;
        Image<Lum8u> image(layout);
        Random random(static_cast<std::uint64_t>(gap));
        draw(image, Content::Patches, 3, random);
        Image<Lum8u> corner(Placement{}.layout({37, 20}));
        Image<Lum8u> score(Placement{}.layout({37, 20}));
        Lum32s count = 0;
        EXPECT_EQ(lumiFastN_8u_C1R(image.pixels(), image.step(), corner.pixels(), corner.step(), score.pixels(),
                                   score.step(), &count, {0, 0}, {37, 20}, spec.get(), scratch.data()),
                  lumOk);
        const Result expected = detect(image, {37, 20}, {0, 0}, {37, 20}, setting);
        EXPECT_EQ(count, expected.count);
        const auto read = [&](int x, int y) { return int{corner.at(x, y)}; };
        EXPECT_TRUE(sameMap("corners", expected, {37, 20}, &Found::corner, read, read));
    }
}

}  // namespace
}  // namespace lumcv::test::fast
