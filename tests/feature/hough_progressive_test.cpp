// Hough segments against the reference: the drawing of points, the votes, the walks and the list.
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <cfenv>
#include <cstring>
#include <vector>

#include "feature/hough_fixture.hpp"

namespace lumcv::test::hough {
namespace {

constexpr LumiPointPolar kDeltas[] = {{1, kDegree},       {1, 0.05f},        {0.5f, 0.1f},     {2, 0.031f},
                                      {0.3f, 0.2f},       {7.5f, 0.017f},    {1.7f, 0.3f},     {3, 0.9f},
                                      {0.9f, 3.14159f},   {1, 1.5707964f},   {1, 0.78539819f}, {1.5f, 2.0f},
                                      {1, 0.0349065850f}, {1.1f, 0.0245437f}};

Content contentOf(int number)
{
    return static_cast<Content>(number % static_cast<int>(Content::Count));
}

void clear(Image<Lum8u>& image)
{
    image.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 0; });
}

TEST(HoughProgressive, Widths)
{
    Random random(1);
    std::vector<int> widths = {79, 80, 96, 127, 128, 129, 255, 256, 257, 260, 1100};
    for (int width = 1; width <= 70; ++width) {
        widths.push_back(width);
    }
    int number = 0;
    long segments = 0;
    for (const int width : widths) {
        for (int i = 0; i < 4; ++i) {
            const LumiSize size = {width, width > 300 ? 4 : 1 + number * 5 % 31};
            Search search;
            search.threshold = static_cast<int>(random.between(1, 12));
            search.lineLength = static_cast<int>(random.between(0, 12));
            search.lineGap = static_cast<int>(random.between(0, 5));
            search.maxLineCount = number % 5 == 0 ? static_cast<int>(random.between(0, 6)) : 500;
            const Placement place = drawPlacement(random);
            segments +=
                expectSegments(drawn(size, contentOf(number), number, place), kDeltas[number % 14], search, place);
            ASSERT_FALSE(HasFailure());
            ++number;
        }
    }
    EXPECT_GT(segments, 2000);
}

TEST(HoughProgressive, Images)
{
    Random random(2);
    long segments = 0;
    for (int number = 0; number < 70; ++number) {
        const LumiSize size = {static_cast<int>(random.between(20, 140)), static_cast<int>(random.between(20, 70))};
        Search search;
        search.threshold = static_cast<int>(random.between(1, 30));
        search.lineLength = static_cast<int>(random.between(0, 30));
        search.lineGap = static_cast<int>(random.between(0, 9));
        const Placement place = drawPlacement(random);
        segments += expectSegments(drawn(size, contentOf(number), number, place), kDeltas[number % 14], search, place);
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(segments, 500);
}

// Votes beside the few cells of a coarse rho are dropped, when they come and when they are taken back.
TEST(HoughProgressive, CoarseRho)
{
    Random random(3);
    for (const LumiSize size : {LumiSize{9, 7}, {40, 3}, {3, 40}, {25, 25}, {1, 1}, {2, 1}}) {
        const auto sum = static_cast<Lum32f>(size.width + size.height);
        // with the last two there is a single cell, and none at all
        for (const Lum32f part : {0.1f, 0.3f, 0.5f, 0.6f, 0.7f, 0.8f, 0.9f, 1.0f, 1.3f, 2.01f, 2.5f}) {
            for (const Lum32f theta : {0.05f, 0.3f, 1.5707964f, 3.0f}) {
                for (const Content content : {Content::Dense, Content::Strokes}) {
                    Search search;
                    search.threshold = static_cast<int>(random.between(1, 6));
                    search.lineGap = static_cast<int>(random.between(0, 2));
                    const Placement place = drawPlacement(random);
                    expectSegments(drawn(size, content, static_cast<int>(part * 100), place), {sum * part, theta},
                                   search, place);
                }
            }
            ASSERT_FALSE(HasFailure());
        }
    }
}

TEST(HoughProgressive, FineRho)
{
    for (const Lum32f rho : {0.25f, 0.1f, 0.03f, 0.01f}) {
        EXPECT_GT(expectSegments(drawn({60, 41}, Content::Lines, 3), {rho, 0.1f}, {3, 4, 3, 100}), 0);
    }
}

// Below 32767 points cells have 16 bits, from there on 32. A row in which all points vote for one cell drives its count
// to the end of either, up and, once the points are consumed, down.
TEST(HoughProgressive, ManyPoints)
{
    constexpr LumiPointPolar kHalfTurns = {1, 1.5707964f};
    for (const int points : {32765, 32766, 32767, 32768, 40000}) {
        Image<Lum8u> image(Placement{}.layout({40000, 2}));
        clear(image);
        for (int x = 0; x < points; ++x) {
            image.at(x, 0) = 1;
        }
        for (const int threshold : {1, 2, 20000, points - 1, points, points + 1}) {
            EXPECT_EQ(expectSegments(image, kHalfTurns, {threshold, 10, 0, 10}), threshold <= points ? 1 : 0)
                << points << " points, threshold " << threshold;
        }
    }
}

// From 32767 points on cells have 16 bits all the same if none can count as many, which a rho of 40.4 just allows here.
TEST(HoughProgressive, ManyPointsInNarrowCells)
{
    constexpr LumiSize size = {200, 190};
    Image<Lum8u> image(Placement{}.layout(size));
    image.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 1; });
    for (const Lum32f rho : {1.0f, 7.0f, 40.4f, 40.5f, 100.0f}) {
        for (const int threshold : {5, 100, 7000}) {
            expectSegments(image, {rho, 0.3f}, {threshold, 150, 0, 400});
        }
        EXPECT_GT(expectSegments(image, {rho, 0.3f}, {100, 150, 0, 400}), 0) << rho;
    }
}

// Counts that have become negative have to be made up for: a second line in the cells of the first.
TEST(HoughProgressive, NegativeCounts)
{
    Random random(4);
    for (int number = 0; number < 60; ++number) {
        Image<Lum8u> image(Placement{}.layout({90, 5}));
        image.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int) {
            // two lines in a row with a hole between them, and dust
            element = (y == 2 && (x < 40 || x > 46)) || random.oneIn(30) ? 1 : 0;
        });
        const int threshold = static_cast<int>(random.between(1, 20));
        EXPECT_GT(expectSegments(image, {1, number % 2 == 0 ? 1.5707964f : 0.1f}, {threshold, 5, 2, 50}), 0);
    }
}

// Images of the largest width and height, with points at their ends.
TEST(HoughProgressive, LargestCoordinates)
{
    for (const LumiSize size : {LumiSize{65536, 1}, {1, 65536}}) {
        Image<Lum8u> image(Placement{}.layout(size));
        clear(image);
        for (const int i : {0, 1, 2, 3, 32766, 32767, 32768, 32769, 65532, 65533, 65534, 65535}) {
            image.at(size.width > 1 ? i : 0, size.height > 1 ? i : 0) = 1;
        }
        for (const int threshold : {1, 2, 4, 12}) {
            for (const int gap : {0, 1, 40000}) {
                expectSegments(image, {1, 1.5707964f}, {threshold, 1, gap, 20});
                expectSegments(image, {2, 0.7f}, {threshold, 1, gap, 20});
            }
        }
        EXPECT_GT(expectSegments(image, {1, 1.5707964f}, {4, 3, 0, 20}), 0);
    }
}

TEST(HoughProgressiveQuick, BlankImage)
{
    Image<Lum8u> image(Placement{}.layout({50, 30}));
    clear(image);
    EXPECT_EQ(expectSegments(image, {1, kDegree}, {1, 0, 0, 10}), 0);
}

TEST(HoughProgressiveQuick, FullImage)
{
    for (const LumiSize size : {LumiSize{1, 1}, {7, 3}, {8, 8}, {9, 4}, {16, 16}, {33, 25}}) {
        Image<Lum8u> image(Placement{}.layout(size));
        image.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 128; });
        for (const int threshold : {1, 2, 5, 9}) {
            expectSegments(image, {1, 0.05f}, {threshold, 3, 0, 400});
            expectSegments(image, {1, 0.05f}, {threshold, 0, 3, 400});
        }
    }
}

// One point is a segment of no length where that is long enough.
TEST(HoughProgressiveQuick, SinglePoint)
{
    for (const LumiPoint at : {LumiPoint{0, 0}, {19, 9}, {5, 3}, {0, 9}, {19, 0}}) {
        Image<Lum8u> image(Placement{}.layout({20, 10}));
        clear(image);
        image.at(at.x, at.y) = 1;
        EXPECT_EQ(expectSegments(image, {1, 0.1f}, {1, 0, 2, 4}), 1);
        EXPECT_EQ(expectSegments(image, {1, 0.1f}, {1, 1, 2, 4}), 0);
        EXPECT_EQ(expectSegments(image, {1, 0.1f}, {2, 0, 2, 4}), 0);
    }
}

// A row with gaps of 1, 2, 3, ... clear pixels: a gap is crossed if it is not longer than `lineGap`.
TEST(HoughProgressiveQuick, Gaps)
{
    Image<Lum8u> image(Placement{}.layout({80, 3}));
    clear(image);
    int x = 0;
    for (int gap = 0; x < 80; ++gap) {
        for (int i = 0; i < 3 && x < 80; ++i) {
            image.at(x++, 1) = 1;
        }
        x += gap;
    }
    for (int lineGap = 0; lineGap < 14; ++lineGap) {
        EXPECT_GT(expectSegments(image, {1, 1.5707964f}, {1, 0, lineGap, 80}), 0) << lineGap;
        EXPECT_GT(expectSegments(image, {1, 1.5707964f}, {3, 2, lineGap, 80}), 0) << lineGap;
    }
    // with no gap at all, the first clear pixel ends the walk
    clear(image);
    for (const int at : {10, 11, 12, 14, 15, 16}) {
        image.at(at, 1) = 1;
    }
    for (const int lineGap : {0, 1, 2}) {
        const Search search = {3, 2, lineGap, 80};
        const Segments expected = progressiveLines(image, {80, 3}, {1, 1.5707964f}, search);
        ASSERT_FALSE(expected.lines.empty());
        EXPECT_EQ(std::abs(expected.lines[0].endX - expected.lines[0].startX), lineGap == 0 ? 2 : 6);
        expectSegments(image, {1, 1.5707964f}, search);
    }
}

// A segment is long enough by its width or by its height.
TEST(HoughProgressiveQuick, Lengths)
{
    for (const bool isColumn : {false, true}) {
        for (const int length : {1, 2, 9}) {
            Image<Lum8u> image(Placement{}.layout({16, 16}));
            clear(image);
            for (int i = 0; i <= length; ++i) {
                image.at(isColumn ? 4 : 3 + i, isColumn ? 3 + i : 4) = 1;
            }
            EXPECT_EQ(expectSegments(image, {1, 1.5707964f}, {length + 1, length, 0, 9}), 1);
            EXPECT_EQ(expectSegments(image, {1, 1.5707964f}, {length + 1, length + 1, 0, 9}), 0);
        }
    }
}

// Lines through the middle in all directions: both ways of stepping, both signs.
TEST(HoughProgressiveQuick, Directions)
{
    for (int direction = 0; direction < 64; ++direction) {
        const double angle = direction * 3.141592653589793 / 64;
        Image<Lum8u> image(Placement{}.layout({41, 39}));
        clear(image);
        for (int step = -60; step <= 60; ++step) {
            const int x = static_cast<int>(std::lround(20 + std::cos(angle) * step));
            const int y = static_cast<int>(std::lround(19 + std::sin(angle) * step));
            if (x >= 0 && y >= 0 && x < 41 && y < 39) {
                image.at(x, y) = 1;
            }
        }
        for (const int threshold : {2, 6, 15}) {
            const int segments = expectSegments(image, {1, kDegree}, {threshold, 10, 3, 9});
            EXPECT_TRUE(segments > 0 || threshold < 15) << direction;
        }
    }
}

// The segment that finds no room ends the search; the list and its count are complete.
TEST(HoughProgressiveQuick, FullList)
{
    const Image<Lum8u> image = drawn({60, 40}, Content::Grid, 2);
    const int all = expectSegments(image, {1, kDegree}, {6, 5, 2, 1000});
    EXPECT_GT(all, 4);
    for (const int maxLineCount : {0, 1, 2, all - 1, all, all + 1}) {
        EXPECT_EQ(expectSegments(image, {1, kDegree}, {6, 5, 2, maxLineCount}), std::min(all, maxLineCount));
        EXPECT_EQ(progressiveLines(image, {60, 40}, {1, kDegree}, {6, 5, 2, maxLineCount}).status,
                  maxLineCount < all ? lumWrnLineListFull : lumOk);
    }
    EXPECT_EQ(expectSegments(image, {1, kDegree}, {6, 5, 2, -1}), 0);
}

// The record: both steps, the hint, and for each angle cosine and sine over the step of rho.
TEST(HoughProgressiveQuick, Record)
{
    for (const LumiPointPolar delta : kDeltas) {
        for (const std::size_t distance : {0, 1, 2, 3, 5}) {
            const int hint = distance == 0 ? 0x12345678 : -1;
            const Placement place = {distance % 2 == 0 ? Guard::After : Guard::Before, distance, 0, 0};
            const ProgressiveSpec spec({30, 20}, delta, place, hint);
            const auto* const bytes = reinterpret_cast<const unsigned char*>(spec.get());
            const auto number = [&](std::size_t index) {
                Lum32f value = 0;
                std::memcpy(&value, bytes + index * 4, 4);
                return value;
            };
            EXPECT_EQ(number(0), delta.rho);
            EXPECT_EQ(number(1), delta.theta);
            EXPECT_EQ(std::memcmp(bytes + 8, &hint, 4), 0);
            const std::vector<FloatAngle> angles = floatAngles(delta);
            EXPECT_EQ(progressiveSpecBytes(delta), 12 + 8 * angles.size());
            for (std::size_t i = 0; i < angles.size(); ++i) {
                EXPECT_TRUE(sameElement(number(3 + 2 * i), angles[i].cosine)) << delta.rho << ", angle " << i;
                EXPECT_TRUE(sameElement(number(4 + 2 * i), angles[i].sine)) << delta.rho << ", angle " << i;
            }
        }
    }
}

// Calls `f` with each rounding mode set, and expects it to be left set.
template <class F>
void inEachRoundingMode(F f)
{
    const unsigned before = _mm_getcsr();
    for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        ASSERT_EQ(std::fesetround(mode), 0);
        const unsigned control = _mm_getcsr();
        f();
        const unsigned left = _mm_getcsr();
        const int x87 = std::fegetround();
        _mm_setcsr(before);
        ASSERT_EQ(std::fesetround(FE_TONEAREST), 0);
        // the six lowest bits are flags that any operation may set
        EXPECT_EQ(left >> 6, control >> 6) << "mode " << mode;
        EXPECT_EQ(x87, mode);
    }
}

// The caller's rounding mode neither changes the result nor is changed by the call, however that ends.
TEST(HoughProgressiveQuick, RoundingModes)
{
    const Image<Lum8u> image = drawn({50, 40}, Content::Lines, 5);
    Image<Lum8u> blank(Placement{}.layout({50, 40}));
    clear(blank);
    const LumiPointPolar delta = {1, kDegree};
    const ProgressiveSpec spec({50, 40}, delta);
    const PlacedBlock scratch(progressiveBytes({50, 40}, delta));
    const Segments expected = progressiveLines(image, {50, 40}, delta, {5, 4, 2, 100});
    ASSERT_GT(expected.lines.size(), 5u);
    Segment list[100] = {};
    Lum32s count = 0;
    const auto call = [&](const Image<Lum8u>& source, int threshold, int maxLineCount) {
        count = -1;
        std::memset(list, 0, sizeof list);
        return lumiHoughProbLine_8u32f_C1R(source.pixels(), source.step(), {50, 40}, threshold, 4, 2, &list[0].startX,
                                           maxLineCount, &count, scratch.data(), spec.get());
    };
    LumStatus status = lumErrGeneric;
    bool isSame = false;
    inEachRoundingMode([&] {
        status = call(image, 5, 100);
        isSame = count == static_cast<Lum32s>(expected.lines.size()) &&
                 std::memcmp(list, expected.lines.data(), expected.lines.size() * sizeof(Segment)) == 0;
    });
    EXPECT_EQ(status, lumOk);
    EXPECT_TRUE(isSame);
    inEachRoundingMode([&] { status = call(image, 5, 1); });
    EXPECT_EQ(status, lumWrnLineListFull);
    inEachRoundingMode([&] { status = call(blank, 5, 1); });
    EXPECT_EQ(status, lumOk);
    inEachRoundingMode([&] { status = call(image, 0, 1); });
    EXPECT_EQ(status, lumErrArgument);
    // other bits of the control word stay as well: here flushing to zero
    const unsigned before = _mm_getcsr();
    _mm_setcsr(before | 0x8040u);
    const unsigned control = _mm_getcsr();
    status = call(image, 5, 100);
    const unsigned left = _mm_getcsr();
    _mm_setcsr(before);
    EXPECT_EQ(left >> 6, control >> 6);
    EXPECT_EQ(status, lumOk);
}

// The generator begins anew with each call, whatever the scratch holds.
TEST(HoughProgressiveQuick, SameSegmentsEachTime)
{
    const Image<Lum8u> image = drawn({70, 50}, Content::Strokes, 8);
    const LumiPointPolar delta = {1, kDegree};
    const ProgressiveSpec spec({70, 50}, delta);
    const PlacedBlock scratch(progressiveBytes({70, 50}, delta));
    const Segments expected = progressiveLines(image, {70, 50}, delta, {4, 3, 2, 200});
    ASSERT_GT(expected.lines.size(), 5u);
    for (const int content : {-1, 0, 255, 127, -1}) {
        if (content >= 0) {
            std::memset(scratch.data(), content, scratch.size());
        }
        std::vector<Segment> list(200);
        Lum32s count = -1;
        EXPECT_EQ(lumiHoughProbLine_8u32f_C1R(image.pixels(), image.step(), {70, 50}, 4, 3, 2, &list[0].startX, 200,
                                              &count, scratch.data(), spec.get()),
                  lumOk);
        ASSERT_EQ(count, static_cast<Lum32s>(expected.lines.size()));
        EXPECT_EQ(std::memcmp(list.data(), expected.lines.data(), expected.lines.size() * sizeof(Segment)), 0);
    }
}

// One record serves ROIs of any size; rows may go upwards, or all be the same.
TEST(HoughProgressiveQuick, OneRecordAndManyImages)
{
    const LumiPointPolar delta = {1, 0.05f};
    const ProgressiveSpec spec({5, 5}, delta);
    for (const LumiSize size : {LumiSize{5, 5}, {60, 33}, {3, 70}, {129, 2}}) {
        for (const bool bottomUp : {false, true}) {
            Layout layout = Placement{}.layout(size);
            layout.gap = 9;
            layout.bottomUp = bottomUp;
            Image<Lum8u> image(layout);
            Random random(static_cast<std::uint64_t>(size.width));
            draw(image, Content::Lines, random);
            const Segments expected = progressiveLines(image, size, delta, {3, 2, 1, 300});
            const PlacedBlock scratch(progressiveBytes(size, delta));
            std::vector<Segment> list(300);
            Lum32s count = -1;
            EXPECT_EQ(lumiHoughProbLine_8u32f_C1R(image.pixels(), image.step(), size, 3, 2, 1, &list[0].startX, 300,
                                                  &count, scratch.data(), spec.get()),
                      expected.status);
            ASSERT_EQ(count, static_cast<Lum32s>(expected.lines.size()));
            EXPECT_EQ(std::memcmp(list.data(), expected.lines.data(), expected.lines.size() * sizeof(Segment)), 0);
        }
    }
    const Image<Lum8u> row = drawn({60, 1}, Content::Dense, 4);
    Image<Lum8u> repeated(Placement{}.layout({60, 9}));
    repeated.forEach(Area::Roi, [&](Lum8u& element, int x, int, int) { element = row.at(x, 0); });
    const Segments expected = progressiveLines(repeated, {60, 9}, delta, {3, 2, 1, 300});
    const PlacedBlock scratch(progressiveBytes({60, 9}, delta));
    std::vector<Segment> list(300);
    Lum32s count = -1;
    EXPECT_EQ(lumiHoughProbLine_8u32f_C1R(row.pixels(), 0, {60, 9}, 3, 2, 1, &list[0].startX, 300, &count,
                                          scratch.data(), spec.get()),
              lumOk);
    ASSERT_EQ(count, static_cast<Lum32s>(expected.lines.size()));
    EXPECT_EQ(std::memcmp(list.data(), expected.lines.data(), expected.lines.size() * sizeof(Segment)), 0);
}

}  // namespace
}  // namespace lumcv::test::hough
