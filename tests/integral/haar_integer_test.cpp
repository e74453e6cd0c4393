// The integer forms of a Haar stage: 64-bit features, the shift, what wraps.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "integral/haar_fixture.hpp"

namespace lumcv::test::haar {
namespace {

constexpr Lum32s kLargest = std::numeric_limits<Lum32s>::max();
constexpr Lum32s kSmallest = std::numeric_limits<Lum32s>::min();

// A window of one pixel: the table is its four corners.
struct Window
{
    Entries<Lum32s> entries;
    Lum32s norm;
};

// The byte that a mask byte of 9 becomes. All classifiers have rectangles over the whole window.
Lum8u applied(const Form<Lum32s, Lum32s>& form, const Stage<Lum32s>& stage, const Window& window, Lum32s threshold,
              int scaleFactor)
{
    const Record<Lum32s> record(stage, {1, 1});
    Scene<Lum32s, Lum32s> scene(form, stage, allTurned(stage.size(), Turn::Upright), {}, {});
    Image<Lum32s>& table = scene.upright.image();
    table.at(0, 0) = window.entries.tl;
    table.at(1, 0) = window.entries.tr;
    table.at(0, 1) = window.entries.bl;
    table.at(1, 1) = window.entries.br;
    scene.norms.at(0, 0) = window.norm;
    scene.mask.at(0, 0) = 9;
    scene.threshold = threshold;
    scene.scaleFactor = scaleFactor;
    EXPECT_TRUE(agrees(scene, record));
    Lum32s count = 0;
    EXPECT_EQ(scene.call(record.state(), scene.mask, count), lumOk);
    EXPECT_EQ(count, scene.mask.at(0, 0) != 0);
    return scene.mask.at(0, 0);
}

Classifier<Lum32s> classifier(std::vector<Lum32s> weights, Lum32s threshold, Lum32s val1 = 0, Lum32s val2 = 1)
{
    return {std::vector<LumiRect>(weights.size(), LumiRect{0, 0, 1, 1}), weights, threshold, val1, val2};
}

// Whether the feature is below threshold * norm: the window is then cleared, as val1 is below the stage's threshold.
void expectBelow(bool expected, const Window& window, const std::vector<Lum32s>& weights, Lum32s threshold,
                 int scaleFactor)
{
    for (const Integers& form : {kPlain32s, kMixed32s}) {
        SCOPED_TRACE(form.name);
        EXPECT_EQ(applied(form, {classifier(weights, threshold)}, window, 1, scaleFactor), expected ? 0 : 9);
    }
}

TEST(HaarIntegersQuick, FeatureAtTheThresholdVotesVal2)
{
    const Window window = {{10, 0, 0, 0}, 6};
    expectBelow(false, window, {3}, 5, 0);  // 30 < 30
    expectBelow(true, window, {3}, 6, 0);
    expectBelow(false, window, {3, 3}, 10, 0);
    expectBelow(true, window, {3, 3}, 11, 0);
    expectBelow(false, window, {3}, 20, -2);  // 30 * 4 < 120
    expectBelow(true, window, {3}, 21, -2);
}

// br - (bl + tr) wraps at 32 bits; tl is added in 64 bits and does not.
TEST(HaarIntegersQuick, SumOfARectangleWrapsBeforeTheTopLeftCorner)
{
    // -2^31 - 1 wraps to 2^31 - 1; with tl it is 2^31, which is positive
    expectBelow(false, {{kSmallest, 1, 0, 1}, 0}, {1}, 0, 0);
    expectBelow(false, {{kSmallest, 1, 0, 1}, 1 << 16}, {1}, 1 << 15, 0);
    expectBelow(true, {{kSmallest, 1, 0, 0}, 1 << 16}, {1}, 1 << 15, 0);
    // 2^31 - 1 + 2^31 - 1 is not wrapped
    expectBelow(false, {{kLargest, 0, 0, kLargest}, 2}, {1}, kLargest, 0);
    expectBelow(true, {{kLargest, 0, 0, kLargest - 1}, 2}, {1}, kLargest, 0);
    // and neither is -2^32
    expectBelow(false, {{kSmallest, 0, 0, kSmallest}, 2}, {1}, kSmallest, 0);
    expectBelow(true, {{kSmallest, 0, 0, kSmallest}, 2}, {1}, kSmallest + 1, 0);
    // bl + tr wraps as well
    expectBelow(false, {{0, kLargest, kLargest, 0}, 1}, {1}, 2, 0);
    expectBelow(true, {{0, kLargest, kLargest, 0}, 1}, {1}, 3, 0);
}

// Products are 64-bit ones, of features and of thresholds.
TEST(HaarIntegersQuick, ProductsHave64Bits)
{
    expectBelow(false, {{kLargest, 0, 0, 0}, kLargest}, {kLargest}, kLargest, 0);
    expectBelow(true, {{kLargest - 1, 0, 0, 0}, kLargest}, {kLargest}, kLargest, 0);
    expectBelow(false, {{kSmallest, 0, 0, 0}, kSmallest}, {kSmallest}, kSmallest, 0);
    expectBelow(true, {{kSmallest + 1, 0, 0, 0}, kSmallest}, {kSmallest}, kSmallest, 0);
    expectBelow(true, {{kSmallest, 0, 0, 0}, 1}, {kLargest}, kSmallest, 0);
}

// 2^62 twice is -2^63 in 64 bits, and so is a sum of products that goes beyond.
TEST(HaarIntegersQuick, FeaturesWrapAt64Bits)
{
    const Window window = {{kSmallest, 0, 0, 0}, 0};
    expectBelow(false, window, {kSmallest}, 0, 0);            // 2^62
    expectBelow(true, window, {kSmallest, kSmallest}, 0, 0);  // 2^63
    expectBelow(false, window, {kSmallest, kSmallest, kSmallest, kSmallest}, 0, 0);
    expectBelow(true, {{kSmallest, 0, 0, kSmallest}, 0}, {kSmallest}, 0, 0);
}

// The feature is shifted to the left by minus the scale factor, modulo 64; bits that leave at the top are lost.
TEST(HaarIntegersQuick, FeaturesAreShiftedToTheLeft)
{
    const Window window = {{1, 0, 0, 0}, 1};
    expectBelow(false, window, {1}, 1, 0);
    expectBelow(true, window, {1}, 2, 0);
    for (int shift = 1; shift <= 30; ++shift) {
        SCOPED_TRACE(shift);
        expectBelow(false, window, {1}, 1 << shift, -shift);
        if (shift < 30) {
            expectBelow(true, window, {1}, (1 << shift) + 1, -shift);
        }
        expectBelow(false, window, {-1}, -(1 << shift), -shift);
        expectBelow(true, window, {-1}, -(1 << shift) + 1, -shift);
    }
    expectBelow(false, {{1, 0, 0, 0}, 1 << 20}, {1}, 1 << 20, -40);
    expectBelow(true, {{1, 0, 0, 0}, (1 << 20) + 1}, {1}, 1 << 20, -40);
    expectBelow(false, {{1, 0, 0, 0}, kLargest}, {1}, kLargest, -62);
    expectBelow(true, {{1, 0, 0, 0}, kSmallest}, {1}, kLargest, -63);  // the shift gives -2^63
    expectBelow(false, {{2, 0, 0, 0}, 0}, {1}, 0, -63);                // and here nothing
    expectBelow(false, {{3, 0, 0, 0}, 1}, {1}, 3, -64);                // no places at all
    expectBelow(true, {{3, 0, 0, 0}, 1}, {1}, 4, -64);
    expectBelow(true, {{3, 0, 0, 0}, 1}, {1}, 7, -65);
    expectBelow(false, {{3, 0, 0, 0}, 1}, {1}, 6, -65);
    expectBelow(false, {{3, 0, 0, 0}, 1}, {1}, 3, kSmallest);
    expectBelow(true, {{3, 0, 0, 0}, 1}, {1}, 4, kSmallest);
}

// Votes are added in 32 bits and wrap; a sum at the threshold is kept.
TEST(HaarIntegersQuick, VotesWrapAt32Bits)
{
    const Window window = {{0, 0, 0, 0}, 0};
    for (const Integers& form : {kPlain32s, kMixed32s}) {
        SCOPED_TRACE(form.name);
        const auto result = [&](const std::vector<Lum32s>& votes, Lum32s threshold) {
            Stage<Lum32s> stage;
            for (const Lum32s vote : votes) {
                stage.push_back(classifier({1, 1}, 0, vote, vote));
            }
            return applied(form, stage, window, threshold, 0);
        };
        EXPECT_EQ(result({kLargest}, kLargest), 9);
        EXPECT_EQ(result({kLargest - 1}, kLargest), 0);
        EXPECT_EQ(result({kLargest, 1}, kSmallest), 9);
        EXPECT_EQ(result({kLargest, 1}, kSmallest + 1), 0) << "the sum is not the smallest number";
        EXPECT_EQ(result({kSmallest, -1}, kLargest), 9) << "the sum is not the largest number";
        EXPECT_EQ(result({kLargest, kLargest, kLargest, kLargest, 5}, 1), 9);
        EXPECT_EQ(result({kLargest, kLargest, kLargest, kLargest, 5}, 2), 0);
    }
}

// Numbers of all 32 bits, over any number of classifiers of each kind: whatever is done together gives the same.
TEST(HaarIntegers, NumbersOfAllBits)
{
    Random random(111);
    for (int two = 0; two <= 6; ++two) {
        for (int three = 0; three <= 6; ++three) {
            const int rest = static_cast<int>(random.between(0, 3));
            if (two + three + rest == 0) {
                continue;
            }
            Stage<Lum32s> stage;
            for (int k = 0; k < two + three + rest; ++k) {
                const auto rects = static_cast<std::size_t>(k < two ? 2 : k < two + three ? 3 : random.between(4, 6));
                Classifier<Lum32s> c;
                for (std::size_t r = 0; r < rects; ++r) {
                    c.rects.push_back(drawRect(random, {7, 7}, false));
                    c.weights.push_back(random.value<Lum32s>(Values::Extreme));
                }
                c.threshold = random.value<Lum32s>(Values::Extreme);
                c.val1 = random.value<Lum32s>(Values::Extreme);
                c.val2 = random.value<Lum32s>(Values::Extreme);
                stage.insert(stage.begin() + random.between(0, static_cast<std::int64_t>(stage.size())), c);
            }
            const Record<Lum32s> record(stage, {43, 3});
            for (const Integers& form : {kPlain32s, kMixed32s}) {
                SCOPED_TRACE(form.name);
                Scene<Lum32s, Lum32s> scene(form, stage, allTurned(stage.size(), Turn::Upright),
                                            {.width = 43, .height = 3}, {.width = 43, .height = 3});
                scene.scaleFactor = static_cast<int>(random.between(-70, 0));
                fillScene(scene, random, Numbers::Extreme, 0);
                for (int repetition = 0; repetition < 4; ++repetition) {
                    scene.threshold = scene.sumAt(static_cast<int>(random.between(0, 42)), repetition % 3);
                    EXPECT_TRUE(agrees(scene, record))
                        << two << " of two rectangles, " << three << " of three, " << rest << " others";
                }
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::haar
