// The order in which norms of 32f images are summed, and the one norm whose lanes are single.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "stats/stats_fixture.hpp"

namespace lumcv::test::stats {
namespace {

constexpr Lum32f kLarge = 0x1p53f;  // from here on a 1 that is added to a double is lost

struct Place
{
    int x;
    int y;
    Lum32f value;
};

// A scene of zeros under a full mask, except for the pixels given, which are in all channels of the first source.
Scene sceneWith(const Export& e, LumiSize size, const std::vector<Place>& pixels)
{
    Scene scene(size.width, size.height, Element::F32, e.channels());
    scene.fillFirst(0.0f);
    scene.fillSecond(0.0f);
    scene.fillMaskWith(1);
    for (const Place& pixel : pixels) {
        for (int channel = 0; channel < e.channels(); ++channel) {
            scene.setFirst(pixel.x, pixel.y, pixel.value, channel);
        }
    }
    return scene;
}

Lum64f normOfPixels(const Export& e, LumiSize size, const std::vector<Place>& pixels)
{
    return outcomeOf(e, sceneWith(e, size, pixels).operands(e.channels())).value;
}

// Calls f(export) for the 32f norms and norms of differences of one sense.
template <class F>
void forEachSum(Sense sense, F f)
{
    for (const Export& e : normExports()) {
        if (e.element == Element::F32 && e.sense == sense && e.operation != Operation::NormRel) {
            SCOPED_TRACE(e.name);
            f(e);
        }
    }
}

// Two ones that meet before they reach the large number survive, and are lost one by one.
TEST(NormOrderQuick, EightLanesAndTheirFold)
{
    struct Case
    {
        int large;
        int one;
        int otherOne;
        bool survive;
    };
    const Case cases[] = {
        {0, 8, 16, false},   // the same lane, after the large number
        {16, 0, 8, true},    // the same lane, before it
        {4, 0, 8, true},     // 0 and 8 share a lane, 4 has another
        {0, 1, 9, true},     // meet in lane 1
        {0, 4, 2, false},    // 4 joins 0 at once, 2 with 6 joins after that
        {0, 2, 6, true},     // meet before they join 0 and 4
        {0, 1, 5, true},     // 1 and 5 meet
        {0, 1, 3, true},     // (1 + 5) and (3 + 7) meet
        {0, 7, 5, true},     // likewise
        {0, 2, 1, false},    // 2 joins the side of 0, 1 comes last
        {0, 6, 7, false},    // 6 likewise
        {3, 7, 1, false},    // 7 joins 3 at once
        {3, 1, 5, true},     // meet before they join 3 and 7
        {3, 0, 2, true},     // the other side
        {31, 33, 37, true},  // lanes 7, 1 and 5 of the following eights
        {31, 39, 35, false}  // lanes 7, 7 and 3
    };
    forEachSum(Sense::L1, [&](const Export& e) {
        for (const Case& c : cases) {
            for (const int width : {40, 48, 64, 100}) {
                const Lum64f norm =
                    normOfPixels(e, {width, 1}, {{c.large, 0, -kLarge}, {c.one, 0, 1.0f}, {c.otherOne, 0, -1.0f}});
                EXPECT_EQ(norm, c.survive ? 0x1p53 + 2 : 0x1p53)
                    << "2^53 at " << c.large << ", 1 at " << c.one << " and " << c.otherOne << ", width " << width;
            }
        }
    });
}

// Each row is folded by itself and added to the total.
TEST(NormOrderQuick, RowsAreAddedToTheTotalOneByOne)
{
    forEachSum(Sense::L1, [](const Export& e) {
        EXPECT_EQ(normOfPixels(e, {20, 3}, {{0, 0, kLarge}, {1, 1, 1.0f}, {1, 2, 1.0f}}), 0x1p53) << "one in each row";
        EXPECT_EQ(normOfPixels(e, {20, 3}, {{0, 0, kLarge}, {0, 1, 1.0f}, {8, 1, 1.0f}}), 0x1p53 + 2) << "two in a row";
        EXPECT_EQ(normOfPixels(e, {20, 3}, {{0, 2, kLarge}, {0, 0, 1.0f}, {0, 1, 1.0f}}), 0x1p53 + 2) << "before it";
    });
}

// The tail of a row goes to the lanes of its columns, too.
TEST(NormOrderQuick, TailKeepsItsLanes)
{
    forEachSum(Sense::L1, [](const Export& e) {
        for (int width = 18; width < 75; ++width) {
            const int last = width - 1;
            EXPECT_EQ(normOfPixels(e, {width, 1}, {{last % 8, 0, kLarge}, {last - 8, 0, 1.0f}, {last, 0, 1.0f}}),
                      0x1p53)
                << "width " << width;
            EXPECT_EQ(normOfPixels(e, {width, 1}, {{(last + 1) % 8, 0, kLarge}, {last - 8, 0, 1.0f}, {last, 0, 1.0f}}),
                      0x1p53 + 2)
                << "width " << width;
        }
    });
}

// Squares are as wide as the lanes.

TEST(NormOrderQuick, SquaresAreDouble)
{
    forEachSum(Sense::L2, [](const Export& e) {
        if (e.name == "lumiNorm_L2_32f_C3CMR") {
            return;
        }
        EXPECT_EQ(normOfPixels(e, {20, 2}, {{3, 1, -1e30f}}), Lum64f{1e30f});
        EXPECT_EQ(normOfPixels(e, {20, 2}, {{19, 0, 1e-30f}}), Lum64f{1e-30f});
        EXPECT_EQ(normOfPixels(e, {20, 2}, {{0, 0, 4097.0f}}), 4097.0);
        EXPECT_EQ(normOfPixels(e, {20, 1}, {{0, 0, 4096.0f}, {8, 0, 1.0f}}), std::sqrt(16777217.0));
    });
}

// The relative norm follows the general rule in all its channels.
TEST(NormOrderQuick, RelativeNormsAreDouble)
{
    for (const char* const name : {"lumiNormRel_L2_32f_C1MR", "lumiNormRel_L2_32f_C3CMR"}) {
        const Export& e = exportNamed(name);
        Scene scene = sceneWith(e, {20, 1}, {{0, 0, 1e30f}});
        scene.fillSecond(0.0f);
        for (int channel = 0; channel < e.channels(); ++channel) {
            scene.setSecond(13, 0, 1e30f, channel);
        }
        EXPECT_EQ(outcomeOf(e, scene.operands()).value, std::sqrt(2.0)) << name;
        scene = sceneWith(e, {20, 1}, {{0, 0, 1e-30f}});
        for (int channel = 0; channel < e.channels(); ++channel) {
            scene.setSecond(13, 0, 1e-30f, channel);
        }
        EXPECT_EQ(outcomeOf(e, scene.operands()).value, std::sqrt(2.0)) << name;
    }
}

// lumiNorm_L2_32f_C3CMR alone squares and adds in single precision within a row.

TEST(NormOrderQuick, TheSingleNormOverflowsAndUnderflowsInItsSquares)
{
    const Export& e = exportNamed("lumiNorm_L2_32f_C3CMR");
    EXPECT_EQ(normOfPixels(e, {20, 2}, {{3, 1, -1e30f}}), std::numeric_limits<Lum64f>::infinity());
    EXPECT_EQ(bitsOf(normOfPixels(e, {20, 2}, {{19, 0, 1e-30f}})), 0u);
    EXPECT_EQ(normOfPixels(e, {20, 2}, {{19, 0, 0x1p-70f}}), std::sqrt(0x1p-140)) << "a subnormal square";
}

TEST(NormOrderQuick, TheSingleNormRoundsEachSquareAndSumOfItsRows)
{
    const Export& e = exportNamed("lumiNorm_L2_32f_C3CMR");
    // 4097 squared is 16785409, which is no Lum32f
    EXPECT_EQ(normOfPixels(e, {20, 2}, {{0, 0, 4097.0f}}), std::sqrt(16785408.0));
    // 2^24 + 1 is none either: in one lane, and in the fold
    EXPECT_EQ(normOfPixels(e, {20, 1}, {{0, 0, 4096.0f}, {8, 0, 1.0f}}), 4096.0);
    EXPECT_EQ(normOfPixels(e, {20, 1}, {{0, 0, 4096.0f}, {1, 0, 1.0f}}), 4096.0);
    EXPECT_EQ(normOfPixels(e, {20, 1}, {{0, 0, 4096.0f}, {1, 0, 1.0f}, {9, 0, 1.0f}}), std::sqrt(16777218.0));
    EXPECT_EQ(normOfPixels(e, {20, 1}, {{0, 0, 4096.0f}, {8, 0, 1.0f}, {16, 0, 1.0f}}), 4096.0);
    EXPECT_EQ(normOfPixels(e, {20, 1}, {{0, 0, 4096.0f}, {2, 0, 1.0f}, {6, 0, 1.0f}}), std::sqrt(16777218.0));
    EXPECT_EQ(normOfPixels(e, {20, 1}, {{0, 0, 4096.0f}, {4, 0, 1.0f}, {2, 0, 1.0f}}), 4096.0);
}

TEST(NormOrderQuick, TheSingleNormHasADoubleTotal)
{
    const Export& e = exportNamed("lumiNorm_L2_32f_C3CMR");
    EXPECT_EQ(normOfPixels(e, {20, 3}, {{0, 0, 4096.0f}, {0, 1, 1.0f}, {0, 2, 2.0f}}), std::sqrt(16777221.0));
    EXPECT_EQ(normOfPixels(e, {20, 3}, {{0, 0, 1.8e19f}, {0, 1, 1.8e19f}, {0, 2, 1.8e19f}}),
              std::sqrt(3 * static_cast<Lum64f>(1.8e19f * 1.8e19f)));
}

// Whatever the order, the sums are as good as their precision promises.
TEST(NormOrder, SumsAreCloseToTheExactValue)
{
    Random random(41);
    for (const Export& e : normExports()) {
        if (e.element != Element::F32 || e.sense == Sense::Inf) {
            continue;
        }
        Scene scene(211, 13, Element::F32, e.channels());
        scene.fill(random, Content::Ordinary, Content::Ordinary, 30);
        const Sample sample = scene.sample(e.channels());
        long double numerator = 0, denominator = 0;
        forEachChosen(sample, true, [&](std::size_t i, std::size_t) {
            const long double x = e.twoSources() ? sample.first[i] - sample.second[i] : sample.first[i];
            const long double y = sample.second[i];
            numerator += e.sense == Sense::L1 ? std::fabs(x) : x * x;
            denominator += e.sense == Sense::L1 ? std::fabs(y) : y * y;
        });
        const long double sum = e.operation == Operation::NormRel ? numerator / denominator : numerator;
        const long double norm = e.sense == Sense::L1 ? sum : std::sqrt(sum);
        // one rounding for each addition of a lane, of the fold and of the total, and a few more; the numbers of those
        // of single precision are that of a row
        const bool single = e.name == "lumiNorm_L2_32f_C3CMR";
        const long double relative = single ? (211.0L / 8 + 5) * 0x1p-24L : (211.0L / 8 + 30) * 0x1p-53L;
        const long double got = outcomeOf(e, scene.operands(e.channels())).value;
        EXPECT_LE(std::fabs(got - norm), 2 * relative * norm) << e.name;
    }
}

}  // namespace
}  // namespace lumcv::test::stats
