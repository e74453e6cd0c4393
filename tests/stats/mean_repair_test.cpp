// The second pass that repairs a cancelled variance of 32f images.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "stats/stats_fixture.hpp"

namespace lumcv::test::stats {
namespace {

// Calls f(export) for the deviations of 32f.
template <class F>
void forEachRepaired(F f)
{
    for (const Export& e : meanExports()) {
        if (e.element == Element::F32 && e.operation == Operation::MeanStdDev) {
            SCOPED_TRACE(e.name);
            f(e);
        }
    }
}

// The pixels in one row of a scene, in all its channels; all under the mask.
Scene rowOf(const std::vector<Lum32f>& pixels, const Export& e)
{
    Scene scene(static_cast<int>(pixels.size()), 1, Element::F32, e.channels());
    scene.fillMaskWith(1);
    for (std::size_t x = 0; x < pixels.size(); ++x) {
        for (int channel = 0; channel < e.channels(); ++channel) {
            scene.setFirst(static_cast<int>(x), 0, pixels[x], channel);
        }
    }
    return scene;
}

// In all three first passes that a size might choose: below 5001 pixels or narrow, below 100000, above.
TEST(MeanRepair, ConstantImageOfAMillionHasNoDeviation)
{
    const LumiSize sizes[] = {{1, 1}, {3, 7}, {3, 1667}, {61, 83}, {5001, 1}, {5000, 1}, {333, 301}, {100000, 1}};
    forEachRepaired([&](const Export& e) {
        for (const LumiSize size : sizes) {
            Scene scene(size.width, size.height, Element::F32, e.channels());
            scene.fillFirst(1000000.0f);
            scene.fillMaskWith(3);
            const Outcome outcome = outcomeOf(e, scene.operands(e.channels()));
            const Lum64f n = static_cast<Lum64f>(size.width) * size.height;
            EXPECT_TRUE(sameElement(1e6 * n * (1.0 / n), outcome.value)) << elementText(outcome.value);
            EXPECT_EQ(bitsOf(outcome.stdDev), 0u)
                << size.width << " x " << size.height << ": " << elementText(outcome.stdDev);
        }
    });
}

TEST(MeanRepairQuick, ConstantImagesOfAnyValueHaveNoDeviation)
{
    Random random(21);
    forEachRepaired([&](const Export& e) {
        for (int i = 0; i < 50; ++i) {
            const Lum32f value = std::ldexp(random.unit<Lum32f>() - 0.5f, static_cast<int>(random.between(-120, 120)));
            const std::vector<Lum32f> pixels(static_cast<std::size_t>(random.between(1, 90)), value);
            EXPECT_EQ(outcomeOf(e, rowOf(pixels, e).operands()).stdDev, 0.0) << pixels.size() << " times " << value;
        }
    });
}

// The mean of 2^24 and 2^24 + 2 is odd and no Lum32f; it becomes 2^24, and the differences 0 and 2. The mean that is
// returned stays.
TEST(MeanRepairQuick, MeanIsRoundedToSinglePrecision)
{
    forEachRepaired([&](const Export& e) {
        const Outcome outcome = outcomeOf(e, rowOf({16777216.0f, 16777218.0f}, e).operands());
        EXPECT_EQ(outcome.value, 16777217.0);
        EXPECT_TRUE(sameElement(std::sqrt(2.0), outcome.stdDev)) << elementText(outcome.stdDev);
    });
}

// 3 - 99900000 is rounded to a multiple of 8, which makes the sum of squares 9.99e15 without a remainder.
TEST(MeanRepairQuick, DifferencesAreTakenInSinglePrecision)
{
    std::vector<Lum32f> pixels(1000, 1e8f);
    pixels[517] = 3.0f;
    forEachRepaired([&](const Export& e) {
        const Outcome outcome = outcomeOf(e, rowOf(pixels, e).operands());
        EXPECT_TRUE(sameElement(std::sqrt(9.99e12), outcome.stdDev)) << elementText(outcome.stdDev);
    });
}

// Squares of differences are wide: 2^-100 squared is no Lum32f.
TEST(MeanRepairQuick, SquaresAreTakenInDoublePrecision)
{
    forEachRepaired([&](const Export& e) {
        const Outcome outcome = outcomeOf(e, rowOf({0x1p-100f, 0x1.1p-100f}, e).operands());
        EXPECT_EQ(outcome.value, 0x1.08p-100);
        EXPECT_TRUE(sameElement(0x1p-105, outcome.stdDev)) << elementText(outcome.stdDev);
    });
}

// Around the limit, where the two formulas differ in the last bits: which one ran is told by the result.
TEST(MeanRepair, RunsWhereTheSquareOfTheMeanIsTwentyTimesTheVariance)
{
    Random random(22);
    int toldRepaired = 0, toldKept = 0;
    for (int i = 0; i < 400; ++i) {
        // half of the pixels above and half below 1000 by about sqrt(0.05) of it
        const Lum64f distance =
            1000 * std::sqrt(0.05) * (1 + (random.unit<Lum64f>() - 0.5) * (i % 2 == 0 ? 1e-2 : 1e-6));
        std::vector<Lum32f> pixels;
        for (int x = 0; x < 40; ++x) {
            pixels.push_back(static_cast<Lum32f>(1000 + (x % 2 == 0 ? distance : -distance)));
        }
        forEachRepaired([&](const Export& e) {
            const Scene scene = rowOf(pixels, e);
            const Sample sample = scene.sample();
            const MeanAndDeviation expected = meanAndDeviationOf(sample, e.masked);
            ASSERT_TRUE(agrees(e, scene, sample)) << (expected.repaired ? "to be repaired" : "to be kept");
            const Moments m = momentsOf(sample, e.masked);
            const Lum64f kept = std::sqrt(std::fabs(m.sumOfSquares * (1.0 / 40) - expected.mean * expected.mean));
            const Lum64f repaired = deviationFrom(expected.mean, sample, e.masked, 40);
            if (!sameElement(kept, repaired)) {
                ++(expected.repaired ? toldRepaired : toldKept);
            }
        });
    }
    EXPECT_GT(toldRepaired, 100);
    EXPECT_GT(toldKept, 100);
}

// The second pass leaves out what the first one did, and adds in the same order.
TEST(MeanRepair, AgreesWithTheReference)
{
    Random random(23);
    forEachRepaired([&](const Export& e) {
        for (int width = 1; width < 80; width += 2) {
            Scene scene(width, 3, Element::F32, e.channels());
            for (const int shareOfZeros : {0, 40, 95}) {
                scene.fill(random, Content::NearlyConstant, Content::Zero, shareOfZeros);
                if (e.masked) {
                    for (int x = 0; x < width; ++x) {
                        const Lum32f outside[] = {kNan, kInfinity, -1e30f};
                        if (scene.mask().at(x, 1) == 0) {
                            scene.setFirst(x, 1, outside[random.between(0, 2)], e.channels() - 1);
                        }
                    }
                }
                ASSERT_TRUE(agrees(e, scene, e.channels()));
            }
        }
    });
}

// Neither a not-a-number nor an infinity makes a second pass of its own.
TEST(MeanRepairQuick, SpoiledImagesStaySpoiled)
{
    forEachRepaired([&](const Export& e) {
        for (const Lum32f spoiler : {kNan, kInfinity, -kInfinity}) {
            std::vector<Lum32f> pixels(33, 1e6f);
            pixels[20] = spoiler;
            EXPECT_TRUE(std::isnan(outcomeOf(e, rowOf(pixels, e).operands()).stdDev)) << spoiler;
        }
    });
}

}  // namespace
}  // namespace lumcv::test::stats
