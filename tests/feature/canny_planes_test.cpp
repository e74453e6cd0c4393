// Edges from planes of derivatives: sweeps against the reference, and the cases where the forms differ by design.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "feature/canny_fixture.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::canny {
namespace {

enum class PlaneContent
{
    Waves,     // as a smooth image has them
    Small,     // -3 to 3: ties everywhere
    Plateaus,  // one of three gradients in blocks
    Wide,      // the whole range of 16 bits, also in floats
    Extreme,
    NonFinite,  // floats only
    Count
};

template <class T>
void fillPlanes(Planes<T>& planes, PlaneContent content, Random& random)
{
    const Waves waves(random);
    const std::uint64_t salt = random.bits();
    const auto draw = [&](T& element, int x, int y, bool isDy) {
        switch (content) {
            case PlaneContent::Waves:
                element = static_cast<T>(600 * (isDy ? waves.value(x, y + 1) - waves.value(x, y - 1)
                                                     : waves.value(x + 1, y) - waves.value(x - 1, y)));
                return;
            case PlaneContent::Small:
                element = static_cast<T>(random.between(-3, 3));
                return;
            case PlaneContent::Plateaus: {
                const auto block = static_cast<std::uint64_t>(y / 4 * 1000 + x / 5) * 2 + (isDy ? 1 : 0);
                element = static_cast<T>(Random(salt + block).between(-1, 1) * 100);
                return;
            }
            case PlaneContent::Wide:
                element = static_cast<T>(static_cast<Lum16s>(random.bits()));
                return;
            case PlaneContent::Extreme:
                element = random.value<T>(Values::Extreme);
                return;
            default:
                element = random.value<T>(Values::NonFinite);
                return;
        }
    };
    planes.dx.forEach(Area::Roi, [&](T& element, int x, int y, int) { draw(element, x, y, false); });
    planes.dy.forEach(Area::Roi, [&](T& element, int x, int y, int) { draw(element, x, y, true); });
}

struct Thresholds
{
    Lum32f low;
    Lum32f high;
};

// Low ones keep much, and whole numbers are met exactly.
Thresholds drawThresholds(PlaneContent content, Random& random)
{
    constexpr Lum32f scales[] = {600, 4, 200, 40000, 30000, 1000};
    const Lum32f scale = scales[static_cast<int>(content)];
    Thresholds result = {0.7f * scale * random.unit<Lum32f>(), 0};
    result.low = random.oneIn(3) ? 0.0f : result.low;
    result.high = result.low + scale * random.unit<Lum32f>();
    if (random.oneIn(2)) {
        result.low = std::floor(result.low);
        result.high = std::floor(result.high);
    }
    if (random.oneIn(6)) {
        result.high = result.low;
    }
    return result;
}

template <class T>
PlaneContent contentOf(int number)
{
    const int count = static_cast<int>(PlaneContent::Count) - (std::is_same_v<T, Lum16s> ? 1 : 0);
    return static_cast<PlaneContent>(number % count);
}

template <class T>
void sweepCase(LumiSize size, int number)
{
    Random random(static_cast<std::uint64_t>(number) * 3 + 1);
    Planes<T> planes(size, drawPlacement(random));
    const PlaneContent content = contentOf<T>(number);
    fillPlanes(planes, content, random);
    const Thresholds thresholds = drawThresholds(content, random);
    expectPlaneEdges(planes, thresholds.low, thresholds.high);
}

TYPE_SUITE(CannyPlanes, PlaneTypes, PlaneName);

TYPE_SUITE(CannyPlanesQuick, PlaneTypes, PlaneName);

TYPE_TEST(CannyPlanesQuick, FewSizes)
{
    int number = 0;
    for (const int width : {1, 3, 4, 8, 17, 35, 66}) {
        for (const int height : {1, 2, 3, 6}) {
            sweepCase<TypeParam>({width, height}, number++);
        }
    }
}

TYPE_TEST(CannyPlanes, EveryWidth)
{
    int number = 100;
    std::vector<int> widths;
    for (int width = 1; width <= 70; ++width) {
        widths.push_back(width);
    }
    for (const int width : {79, 80, 81, 95, 96, 97, 127, 128, 129, 130, 191, 192, 193, 255, 256, 257, 258, 259, 260}) {
        widths.push_back(width);
    }
    for (const int width : widths) {
        const int heights[] = {1, 2, 3, 4, 5 + width % 9};
        for (const int height : heights) {
            sweepCase<TypeParam>({width, height}, number++);
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

TYPE_TEST(CannyPlanes, SmallSizes)
{
    int number = 2000;
    for (int height = 1; height <= 6; ++height) {
        for (int width = 1; width <= 9; ++width) {
            for (int content = 0; content < 6; ++content) {
                sweepCase<TypeParam>({width, height}, number++);
                ASSERT_FALSE(testing::Test::HasFailure());
            }
        }
    }
}

TYPE_TEST(CannyPlanes, WideAndTall)
{
    int number = 5000;
    for (const LumiSize size : {LumiSize{1100, 7}, {1919, 5}, {4097, 3}, {3, 900}, {16, 500}, {97, 101}}) {
        for (int content = 0; content < 6; ++content) {
            sweepCase<TypeParam>(size, number++);
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

// Planes of one value each, but for the pixels named.
template <class T>
struct Drawing
{
    explicit Drawing(LumiSize size) : planes(size, Placement{})
    {
        planes.dx.forEach(Area::Roi, [](T& element, int, int, int) { element = 0; });
        planes.dy.forEach(Area::Roi, [](T& element, int, int, int) { element = 0; });
    }
    Drawing& pixel(int x, int y, T dx, T dy)
    {
        planes.dx.at(x, y) = dx;
        planes.dy.at(x, y) = dy;
        return *this;
    }
    // The edge pixels as (x, y), row by row; they must also be those of the reference.
    std::vector<std::pair<int, int>> edgesOf(PlaneForm form, Lum32f low, Lum32f high)
    {
        expectPlaneEdges(planes, form, low, high);
        Image<Lum8u> dst = runPlanes(planes, form, low, high);
        std::vector<std::pair<int, int>> result;
        dst.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int) {
            EXPECT_TRUE(element == 0 || element == 255);
            if (element != 0) {
                result.emplace_back(x, y);
            }
        });
        return result;
    }

    Planes<T> planes;
};

using Pixels = std::vector<std::pair<int, int>>;

TYPE_TEST(CannyPlanesQuick, OnePixelImage)
{
    Drawing<TypeParam> drawing({1, 1});
    drawing.pixel(0, 0, 3, 4);
    EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 6, 6.5f), (Pixels{{0, 0}}));
    EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 7, 7), Pixels{});
    EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 6, 7), Pixels{});
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, 4, 4.5f), (Pixels{{0, 0}}));
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, 5, 5), Pixels{});
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, 4, 5), Pixels{});
}

TYPE_TEST(CannyPlanesQuick, NoGradientNoEdge)
{
    Drawing<TypeParam> drawing({37, 9});
    for (const PlaneForm form : kPlaneForms) {
        EXPECT_EQ(drawing.edgesOf(form, 0, 0), Pixels{});
    }
}

// Of a run of equal magnitudes along the gradient, the pixel at its begin stays; of a diagonal one, none.
TYPE_TEST(CannyPlanesQuick, FirstPixelOfARunStays)
{
    constexpr int kFirst = 3;
    constexpr int kLast = 12;
    for (const PlaneForm form : kPlaneForms) {
        Drawing<TypeParam> along({20, 7});
        Drawing<TypeParam> down({7, 20});
        Drawing<TypeParam> main({20, 20});
        Drawing<TypeParam> anti({20, 20});
        for (int i = kFirst; i <= kLast; ++i) {
            along.pixel(i, 4, -50, 3);
            down.pixel(4, i, 3, 50);
            main.pixel(i, i, -50, -50);
            anti.pixel(i, 19 - i, -50, 50);
        }
        EXPECT_EQ(along.edgesOf(form, 5, 10), (Pixels{{kFirst, 4}}));
        EXPECT_EQ(down.edgesOf(form, 5, 10), (Pixels{{4, kFirst}}));
        EXPECT_EQ(main.edgesOf(form, 5, 10), Pixels{});
        EXPECT_EQ(anti.edgesOf(form, 5, 10), Pixels{});
    }
}

// A run that fills the row begins at the edge of the ROI, beyond which there is nothing.
TYPE_TEST(CannyPlanesQuick, RunOfAWholeRow)
{
    for (const int width : {2, 3, 4, 5, 8, 9, 16, 17, 33, 40}) {
        Drawing<TypeParam> drawing({width, 5});
        for (int x = 0; x < width; ++x) {
            drawing.pixel(x, 2, 9, 0);
        }
        EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 1, 2), (Pixels{{0, 2}}));
        for (int x = 0; x < width; ++x) {
            drawing.pixel(x, 2, 0, 9);
        }
        EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 1, 2).size(), static_cast<std::size_t>(width));
    }
}

// The neighbours that each direction compares: a greater one on either side removes the pixel, one elsewhere does not.
TYPE_TEST(CannyPlanesQuick, NeighboursOfEachDirection)
{
    struct Case
    {
        int dx;
        int dy;
        int x;  // of the first neighbour, from the pixel; the second lies opposite
        int y;
    };
    for (const Case c : {Case{40, 10, -1, 0},
                         {-40, -10, -1, 0},
                         {10, 40, 0, -1},
                         {10, -40, 0, -1},
                         {30, 30, -1, -1},
                         {-30, -30, -1, -1},
                         {30, -30, 1, -1},
                         {-30, 30, 1, -1}}) {
        for (int y = -1; y <= 1; ++y) {
            for (int x = -1; x <= 1; ++x) {
                if (x == 0 && y == 0) {
                    continue;
                }
                // far to the right, so that the pixel stands in the middle of the lanes
                Drawing<TypeParam> drawing({40, 5});
                drawing.pixel(20, 2, static_cast<TypeParam>(c.dx), static_cast<TypeParam>(c.dy));
                drawing.pixel(20 + x, 2 + y, 500, 0);
                const bool compared = (x == c.x && y == c.y) || (x == -c.x && y == -c.y);
                const Pixels edges = drawing.edgesOf(PlaneForm::WideL2, 1, 2);
                EXPECT_EQ(edges.size(), compared ? 1u : 2u) << c.dx << ", " << c.dy << " with " << x << ", " << y;
            }
        }
    }
}

TYPE_TEST(CannyPlanesQuick, ExactlyTheThreshold)
{
    Drawing<TypeParam> drawing({30, 3});
    drawing.pixel(10, 1, 60, 40);
    EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 99, 99), (Pixels{{10, 1}}));
    EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 100, 100), Pixels{});
    EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 99, 100), Pixels{}) << "weak, never strong";
    drawing.pixel(9, 2, 0, 120);  // a strong pixel beside it, and no neighbour in the gradient's direction
    EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 99, 100), (Pixels{{10, 1}, {9, 2}}));
    EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 100, 100), (Pixels{{9, 2}}));
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL1, 100, 100), (Pixels{{9, 2}}));
}

// Thresholds of words are cut to whole numbers, after the squares where there are any; those of floats are not.
TEST(CannyPlaneWordsQuick, ThresholdsAreTruncated)
{
    Drawing<Lum16s> words({9, 4});
    Drawing<Lum32f> floats({9, 4});
    words.pixel(4, 2, 3, 4);
    floats.pixel(4, 2, 3, 4);
    EXPECT_EQ(words.edgesOf(PlaneForm::Narrow, 6.9f, 6.9f), (Pixels{{4, 2}}));
    EXPECT_EQ(words.edgesOf(PlaneForm::Narrow, 6.9f, 7.0f), Pixels{});
    EXPECT_EQ(words.edgesOf(PlaneForm::WideL1, 7.9f, 7.9f), Pixels{});
    EXPECT_EQ(words.edgesOf(PlaneForm::WideL2, 4.99f, 4.99f), (Pixels{{4, 2}}));  // 24.9, cut to 24
    EXPECT_EQ(words.edgesOf(PlaneForm::WideL2, 5.0f, 5.01f), Pixels{});
    EXPECT_EQ(words.edgesOf(PlaneForm::WideL2, 4.9f, 5.05f), Pixels{});  // 25.5, cut to 25: weak
    EXPECT_EQ(floats.edgesOf(PlaneForm::Narrow, 6.9f, 6.9f), (Pixels{{4, 2}}));
    EXPECT_EQ(floats.edgesOf(PlaneForm::WideL2, 4.999f, 4.999f), (Pixels{{4, 2}}));
    floats.pixel(4, 2, 3.25f, 4);
    EXPECT_EQ(floats.edgesOf(PlaneForm::Narrow, 7.125f, 7.25f), Pixels{});
    EXPECT_EQ(floats.edgesOf(PlaneForm::Narrow, 7.125f, 7.2f), (Pixels{{4, 2}}));
}

// -32768 counts as 32768; the square sum of two of them is beyond 31 bits and drops the pixel.
TEST(CannyPlaneWordsQuick, SmallestValues)
{
    constexpr Lum16s kMin = std::numeric_limits<Lum16s>::min();
    constexpr Lum16s kMax = std::numeric_limits<Lum16s>::max();
    for (const int x : {0, 1, 11, 20, 39}) {
        Drawing<Lum16s> drawing({40, 5});
        drawing.pixel(x, 2, kMin, kMin);
        EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 0, 65535), (Pixels{{x, 2}}));
        EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 0, 65536), Pixels{});
        EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL1, 65535, 65535), (Pixels{{x, 2}}));
        EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, 0, 0), Pixels{});
        drawing.pixel(x, 2, kMin, kMax);
        EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, 46339, 46339), (Pixels{{x, 2}}));
        drawing.pixel(x, 2, kMin, 0);
        EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, 32767, 32767), (Pixels{{x, 2}}));
        EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, 32767, 32768), Pixels{});
    }
    // of two neighbours, the one that overflows does not suppress the other
    Drawing<Lum16s> pair({40, 5});
    pair.pixel(20, 2, kMin, kMin);
    pair.pixel(21, 2, 100, 0);
    EXPECT_EQ(pair.edgesOf(PlaneForm::WideL2, 10, 20), (Pixels{{21, 2}}));
    EXPECT_EQ(pair.edgesOf(PlaneForm::WideL1, 10, 20), (Pixels{{20, 2}}));
}

TEST(CannyPlaneWordsQuick, ThresholdsBeyond31Bits)
{
    constexpr Lum32f kInfinity = std::numeric_limits<Lum32f>::infinity();
    constexpr Lum32f kNoNumber = std::numeric_limits<Lum32f>::quiet_NaN();
    constexpr Lum16s kMin = std::numeric_limits<Lum16s>::min();
    Drawing<Lum16s> drawing({40, 5});
    drawing.pixel(20, 2, kMin, 32767);
    for (const Lum32f high : {2147483648.0f, 4294967296.0f, 4294967808.0f, 1e20f, 3e38f, kInfinity, kNoNumber}) {
        for (const PlaneForm form : kPlaneForms) {
            EXPECT_EQ(drawing.edgesOf(form, 5, high), Pixels{}) << high;
            EXPECT_EQ(drawing.edgesOf(form, high, high), Pixels{}) << high;
        }
    }
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, 5, 46341), Pixels{}) << "its square is 2147488281";
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, 5, 65536), Pixels{}) << "its square is 2 to the 32nd";
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, kNoNumber, 5), Pixels{});
}

// The squares decide, so that the sign of a threshold is lost in this one form.
TEST(CannyPlaneWordsQuick, NegativeThresholdsOfSquares)
{
    Drawing<Lum16s> drawing({12, 4});
    drawing.pixel(6, 2, 3, 4);
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, -4, 4.5f), (Pixels{{6, 2}}));
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, -5, 6), Pixels{});
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, -3, -4), (Pixels{{6, 2}}));
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, 3, -5), Pixels{});
}

TEST(CannyPlaneFloatsQuick, ThresholdsAndValuesThatAreNoNumbers)
{
    constexpr Lum32f kInfinity = std::numeric_limits<Lum32f>::infinity();
    constexpr Lum32f kNoNumber = std::numeric_limits<Lum32f>::quiet_NaN();
    Drawing<Lum32f> drawing({40, 5});
    drawing.pixel(20, 2, kInfinity, 4);
    EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 5, 1e30f), (Pixels{{20, 2}}));
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, 5, 1e15f), (Pixels{{20, 2}}));
    EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 5, kInfinity), Pixels{});
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL1, 5, kNoNumber), Pixels{});
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL1, kNoNumber, 5), Pixels{});
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, kNoNumber, kNoNumber), Pixels{});
    drawing.pixel(20, 2, kInfinity, kNoNumber);
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, 0, 0), Pixels{});
    drawing.pixel(20, 2, 0, kNoNumber).pixel(21, 2, 5, 0);  // it does not suppress its neighbour either
    EXPECT_EQ(drawing.edgesOf(PlaneForm::WideL2, 0, 0), (Pixels{{21, 2}}));
    drawing.pixel(20, 2, 3e38f, 3e38f);  // the sum is infinite
    EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 3e38f, 3.4e38f), (Pixels{{20, 2}}));
}

// Small enough that the products with the direction's factors vanish: the sign bits decide, that of zero among them.
TEST(CannyPlaneFloatsQuick, SmallestDenormal)
{
    constexpr Lum32f kSmallest = std::numeric_limits<Lum32f>::denorm_min();
    for (const Lum32f dx : {kSmallest, -kSmallest}) {
        for (const Lum32f dy : {0.0f, -0.0f}) {
            Drawing<Lum32f> drawing({40, 5});
            drawing.pixel(20, 2, dx, dy);
            drawing.pixel(21, 1, 1, 0);  // the first neighbour of direction 2
            const Pixels both = {{21, 1}, {20, 2}};
            const bool suppressed = std::signbit(dx) != std::signbit(dy);
            EXPECT_EQ(drawing.edgesOf(PlaneForm::Narrow, 0, 0), suppressed ? Pixels({{21, 1}}) : both)
                << "dx " << dx << ", dy " << dy;
        }
    }
}

// Directions on both sides of the two tangents, where the last bit of the factor decides.
TEST(CannyPlaneWordsQuick, Tangents)
{
    // for each ax the ay around the two limits; the sweep's reference knows the rest
    Planes<Lum16s> planes({97, 37}, Placement{});
    Random random(5);
    for (int turn = 0; turn < 4; ++turn) {
        planes.dx.forEach(Area::Roi, [&](Lum16s& element, int x, int y, int) {
            const auto ax = random.between(1, 13572);
            const double factor = random.oneIn(2) ? 2.414213562373095 : 0.41421356237309503;
            const auto ay = static_cast<std::int64_t>(static_cast<double>(ax) * factor) + random.between(0, 1);
            element = static_cast<Lum16s>(random.oneIn(2) ? ax : -ax);
            planes.dy.at(x, y) = static_cast<Lum16s>(random.oneIn(2) ? ay : -ay);
        });
        expectPlaneEdges(planes, 100, 9000);
    }
}

TEST(CannyPlaneFloatsQuick, Tangents)
{
    Planes<Lum32f> planes({97, 37}, Placement{});
    Random random(6);
    for (int turn = 0; turn < 4; ++turn) {
        planes.dx.forEach(Area::Roi, [&](Lum32f& element, int x, int y, int) {
            const Lum32f ax = 1 + 1000 * random.unit<Lum32f>();
            Lum32f ay = ax * (random.oneIn(2) ? 2.41421366f : 0.414213568f);
            const auto step = random.between(-1, 1);
            ay = step == 0 ? ay : std::nextafter(ay, step < 0 ? 0.0f : 1e9f);
            element = random.oneIn(2) ? ax : -ax;
            planes.dy.at(x, y) = random.oneIn(2) ? ay : -ay;
        });
        expectPlaneEdges(planes, 10, 900);
    }
}

}  // namespace
}  // namespace lumcv::test::canny
