// Hough lines in polar form against the reference: the standard form, and its rule for peaks and for the list.
#include <gtest/gtest.h>

#include <vector>

#include "feature/hough_fixture.hpp"

namespace lumcv::test::hough {
namespace {

constexpr LumiPointPolar kDeltas[] = {{1, kDegree},     {1, 0.05f},      {0.5f, 0.1f}, {2, 0.031f},
                                      {0.3f, 0.2f},     {7.5f, 0.017f},  {1.7f, 0.3f}, {3, 0.9f},
                                      {0.9f, 3.14159f}, {1, 1.5707964f}, {1.5f, 2.0f}};

Content contentOf(int number)
{
    return static_cast<Content>(number % static_cast<int>(Content::Count));
}

TEST(HoughPolar, Widths)
{
    Random random(1);
    std::vector<int> widths = {79, 80, 96, 127, 128, 129, 255, 256, 257, 260, 1100};
    for (int width = 1; width <= 70; ++width) {
        widths.push_back(width);
    }
    int number = 0;
    long lines = 0;
    for (const int width : widths) {
        for (int i = 0; i < 3; ++i) {
            const LumiSize size = {width, width > 300 ? 3 : 1 + number * 5 % 23};
            PolarCall call;
            call.delta = kDeltas[number % 11];
            if (call.delta.rho > static_cast<Lum32f>(size.width + size.height)) {
                call.delta.rho = static_cast<Lum32f>(size.width + size.height);
            }
            call.threshold = 1 + number % 7;
            call.maxLineCount = number % 4 == 0 ? 1 + number % 9 : 300;
            const Placement place = drawPlacement(random);
            lines += expectLines(drawn(size, contentOf(number), number, place), call, place);
            ASSERT_FALSE(HasFailure());
            ++number;
        }
    }
    EXPECT_GT(lines, 3000);
}

TEST(HoughPolar, Images)
{
    Random random(2);
    long lines = 0;
    for (int number = 0; number < 60; ++number) {
        const LumiSize size = {static_cast<int>(random.between(20, 120)), static_cast<int>(random.between(20, 60))};
        PolarCall call;
        call.delta = kDeltas[number % 11];
        call.threshold = static_cast<int>(random.between(1, 40));
        call.maxLineCount = static_cast<int>(random.between(1, 60));
        const Placement place = drawPlacement(random);
        lines += expectLines(drawn(size, contentOf(number), number, place), call, place);
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(lines, 500);
}

// Two points of a column at every place: votes of all places.
TEST(HoughPolar, PointsAtEveryPlace)
{
    Image<Lum8u> image(Placement{}.layout({73, 41}));
    image.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 0; });
    for (int x = 0; x < 73; ++x) {
        const int y = x * 17 % 31;
        image.at(x, y) = 255;
        image.at(x, y + 10) = 1;
        EXPECT_GT(expectLines(image, {{1, 0.1f}, 1, 100}), 0);
        image.at(x, y) = 0;
        image.at(x, y + 10) = 0;
    }
}

// Coarse steps of rho: few cells, and votes that fall beside them are dropped. The largest is width plus height.
TEST(HoughPolar, CoarseRho)
{
    Random random(3);
    for (const LumiSize size : {LumiSize{9, 7}, {40, 3}, {3, 40}, {25, 25}, {1, 1}, {2, 1}}) {
        const auto sum = static_cast<Lum32f>(size.width + size.height);
        for (const Lum32f part : {1.0f, 0.99f, 0.9f, 0.8f, 0.7f, 0.6f, 0.5f, 0.4f, 0.3f, 0.2f, 0.1f}) {
            for (const Lum32f theta : {0.05f, 0.3f, 1.5707964f, 3.0f}) {
                for (const Content content : {Content::Dense, Content::Lines}) {
                    const Placement place = drawPlacement(random);
                    expectLines(drawn(size, content, static_cast<int>(part * 100), place), {{sum * part, theta}, 1, 9},
                                place);
                }
            }
            ASSERT_FALSE(HasFailure());
        }
    }
}

// A cell may have more votes than 16 bits hold.
TEST(HoughPolar, LargeCounts)
{
    Image<Lum8u> image(Placement{}.layout({300, 260}));
    image.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 7; });
    constexpr LumiPointPolar kWholePlane[2] = {{-1000, 0}, {1000, 4}};
    for (const int threshold : {1, 32767, 65535, 65536, 77999, 78000}) {
        const int lines = expectLines(image, {{560, 3}, threshold, 10});
        EXPECT_EQ(expectLines(image, {{560, 3}, threshold, 10, kWholePlane}), lines);
        EXPECT_EQ(lines > 0, threshold < 78000) << threshold;
    }
}

// Rows and columns longer than 65536 pixels: the standard form has no limit there.
TEST(HoughPolar, LongRowsAndColumns)
{
    constexpr LumiPointPolar kWholePlane[2] = {{-200000, 0}, {200000, 4}};
    for (const LumiSize size : {LumiSize{70000, 2}, {2, 70000}}) {
        Image<Lum8u> image(Placement{}.layout(size));
        Random random(5);
        image.forEach(Area::Roi,
                      [&](Lum8u& element, int x, int y, int) { element = x + y > 69900 || random.oneIn(500) ? 1 : 0; });
        for (const LumiPointPolar delta : {LumiPointPolar{1, 1.5707f}, {0.7f, 1.1f}, {40, 0.6f}}) {
            EXPECT_GT(expectLines(image, {delta, 1, 50}), 0);
            EXPECT_GT(expectLines(image, {delta, 1, 50, kWholePlane}), 0);
        }
    }
}

TEST(HoughPolar, FineRho)
{
    Random random(4);
    for (const Lum32f rho : {0.25f, 0.1f, 0.03f, 0.01f}) {
        for (const Content content : {Content::Lines, Content::Grid}) {
            const Placement place = drawPlacement(random);
            EXPECT_GT(expectLines(drawn({37, 21}, content, 3, place), {{rho, 0.02f}, 1, 400}, place), 0);
        }
    }
}

// A step of exactly 3.14159 gives two angles, and more than half of it as well.
TEST(HoughPolarQuick, TwoAngles)
{
    for (const Lum32f theta : {kAngleLimit, 3.0f, 1.6f}) {
        EXPECT_EQ(cellsOf({9, 9}, {1, theta}).lastAngle, 1);
        const Image<Lum8u> image = drawn({30, 20}, Content::Grid, 1);
        EXPECT_GT(expectLines(image, {{1, theta}, 2, 50}), 0);
    }
}

TEST(HoughPolarQuick, BlankImage)
{
    Image<Lum8u> image(Placement{}.layout({50, 30}));
    image.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 0; });
    EXPECT_EQ(expectLines(image, {{1, kDegree}, 1, 10}), 0);
}

TEST(HoughPolarQuick, FullImage)
{
    for (const LumiSize size : {LumiSize{1, 1}, {16, 16}, {33, 5}, {64, 40}}) {
        Image<Lum8u> image(Placement{}.layout(size));
        image.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 255; });
        expectLines(image, {{1, kDegree}, 1, 40});
        expectLines(image, {{0.7f, 0.1f}, 3, 1000});
    }
}

// A count has to be above the threshold.
TEST(HoughPolarQuick, ThresholdOfOne)
{
    Image<Lum8u> image(Placement{}.layout({50, 30}));
    image.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 0; });
    image.at(20, 10) = 1;
    EXPECT_EQ(expectLines(image, {{1, kDegree}, 1, 10}), 0);
    image.at(20, 20) = 128;
    EXPECT_GT(expectLines(image, {{1, kDegree}, 1, 10}), 0);
    EXPECT_EQ(expectLines(image, {{1, kDegree}, 2, 10}), 0);
}

// A column of n points: n votes for it, and n is not above n.
TEST(HoughPolarQuick, CountEqualToTheThreshold)
{
    for (const int n : {2, 5, 19, 40}) {
        Image<Lum8u> image(Placement{}.layout({20, n}));
        image.forEach(Area::Roi, [](Lum8u& element, int x, int, int) { element = x == 7 ? 9 : 0; });
        EXPECT_EQ(expectLines(image, {{1, 1.6f}, n, 10}), 0);
        EXPECT_EQ(expectLines(image, {{1, 1.6f}, n - 1, 10}), 1);
    }
}

// Votes that are equal side by side, along rho or along theta, are one line: the first.
TEST(HoughPolarQuick, PlateausGiveTheirFirstCell)
{
    Image<Lum8u> image(Placement{}.layout({20, 12}));
    // columns side by side: cells of equal counts in a row
    image.forEach(Area::Roi, [](Lum8u& element, int x, int, int) { element = x >= 7 && x <= 10 ? 9 : 0; });
    EXPECT_EQ(standardLines(image, {20, 12}, {1, 1.6f}, 11, 10).size(), 1u);
    EXPECT_EQ(standardLines(image, {20, 12}, {1, 1.6f}, 11, 10)[0].rho, 7);
    expectLines(image, {{1, 1.6f}, 11, 10});
    // a column at the left edge has the same cell at all angles up to a slant
    image.forEach(Area::Roi, [](Lum8u& element, int x, int y, int) { element = x == 0 && y < 4 ? 9 : 0; });
    EXPECT_EQ(standardLines(image, {20, 12}, {1, 0.01f}, 3, 10)[0].theta, 0);
    expectLines(image, {{1, 0.01f}, 3, 10});
}

// Lines of equal counts stay in the order in which they are found, and a full list takes no equal newcomer, though a
// better one.
TEST(HoughPolarQuick, ListOfEqualLines)
{
    Image<Lum8u> image(Placement{}.layout({40, 10}));
    image.forEach(Area::Roi, [](Lum8u& element, int x, int, int) { element = x % 5 == 2 ? 9 : 0; });
    for (int maxLineCount = 1; maxLineCount <= 10; ++maxLineCount) {
        EXPECT_EQ(expectLines(image, {{1, 1.6f}, 9, maxLineCount}), std::min(maxLineCount, 8));
        // without the lower ends of some
        Image<Lum8u> uneven = image;
        for (const int x : {2, 7, 17, 37}) {
            uneven.at(x, 9) = 0;
        }
        uneven.at(27, 0) = 0;
        uneven.at(27, 1) = 0;
        // and the rows, which are a plateau
        EXPECT_EQ(expectLines(uneven, {{1, 1.6f}, 7, maxLineCount}), std::min(maxLineCount, 9));
    }
}

// There is room for one line less than there are, and that is no warning.
TEST(HoughPolarQuick, FullListIsNoWarning)
{
    const Image<Lum8u> image = drawn({60, 40}, Content::Lines, 2);
    const int all = expectLines(image, {{1, kDegree}, 5, 5000});
    EXPECT_GT(all, 10);
    for (const int maxLineCount : {1, 2, 3, all - 1, all, all + 1}) {
        EXPECT_EQ(expectLines(image, {{1, kDegree}, 5, maxLineCount}), std::min(all, maxLineCount));
    }
}

// Peaks in the first and the last cell and at the first and the last angle have no neighbours beyond.
TEST(HoughPolarQuick, PeaksAtTheEnds)
{
    for (const LumiSize size : {LumiSize{8, 8}, {12, 4}}) {
        for (int x = 0; x < size.width; ++x) {
            Image<Lum8u> image(Placement{}.layout(size));
            image.forEach(Area::Roi, [&](Lum8u& element, int at, int, int) { element = at == x ? 9 : 0; });
            for (const Lum32f theta : {3.14159f, 1.5707f, 0.7853f, 0.1f}) {
                for (const Lum32f rho : {1.0f, 2.0f, 3.0f, 5.0f, 8.0f, 12.0f}) {
                    expectLines(image, {{rho, theta}, 1, 10});
                }
            }
        }
    }
}

// The image's bytes count by being nonzero only, and rows may overlap.
TEST(HoughPolarQuick, RowsMayOverlap)
{
    const Image<Lum8u> row = drawn({200, 1}, Content::Dense, 3);
    for (const int step : {1, 3, 17}) {
        const LumiSize size = {50, 8};
        Image<Lum8u> copy(Placement{}.layout(size));
        copy.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int) { element = row.at(x + y * step, 0); });
        const std::vector<LumiPointPolar> expected = standardLines(copy, size, {1, 0.1f}, 2, 30);
        EXPECT_EQ(expected.size(), 30u);
        const PlacedBlock scratch(standardBytes(size, {1, 0.1f}, 30));
        LumiPointPolar lines[30] = {};
        Lum32s count = 0;
        EXPECT_EQ(lumiHoughLine_8u32f_C1R(row.pixels(), step, size, {1, 0.1f}, 2, lines, 30, &count, scratch.data()),
                  lumOk);
        ASSERT_EQ(count, 30);
        for (std::size_t i = 0; i < 30; ++i) {
            EXPECT_EQ(lines[i].rho, expected[i].rho) << i;
            EXPECT_EQ(lines[i].theta, expected[i].theta) << i;
        }
    }
}

}  // namespace
}  // namespace lumcv::test::hough
