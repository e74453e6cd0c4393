// All functions of image statistics against their reference, bit for bit.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "stats/stats_fixture.hpp"

namespace lumcv::test::stats {
namespace {

std::string contentText(Content content)
{
    const char* const texts[] = {"ordinary",      "extreme",    "non-finite",      "spoiled outside the mask",
                                 "whole numbers", "few values", "nearly constant", "zero"};
    return texts[static_cast<int>(content)];
}

// What the two sources hold, one pair after the other.
struct Contents
{
    Content first;
    Content second;
};
constexpr Contents kContents[] = {
    {Content::Ordinary, Content::Ordinary},
    {Content::SpoiledOutside, Content::Ordinary},
    {Content::Extreme, Content::Extreme},
    {Content::NearlyConstant, Content::Zero},
    {Content::WholeNumbers, Content::WholeNumbers},
    {Content::NonFinite, Content::Zero},
    {Content::FewValues, Content::FewValues},
    {Content::Ordinary, Content::SpoiledOutside},
    {Content::Zero, Content::Ordinary},
    {Content::Ordinary, Content::NearlyConstant},
    {Content::NonFinite, Content::NonFinite},
};
constexpr int kContentCount = static_cast<int>(std::size(kContents));

void sweep(Sweep sweep, int channels)
{
    int round = 0;
    for (const Element element : kElements) {
        std::vector<const Export*> exports;
        for (const Export& e : allExports()) {
            if (e.element == element && e.channels() == channels) {
                exports.push_back(&e);
            }
        }
        ASSERT_EQ(exports.size(), 14u);
        forEachGeometry(sweep, [&](const Geometry& geometry) {
            Random random(static_cast<std::uint64_t>(geometry.number));
            Scene scene(geometry, element, channels);
            const Contents contents = kContents[round % kContentCount];
            const int shareOfZeros[] = {50, 0, 90, 10, 97, 50, 100};
            scene.fill(random, contents.first, contents.second, shareOfZeros[round % 7]);
            const Lum32s coi = channels == 1 ? 1 : 1 + round % 3;
            ++round;
            const std::vector<unsigned char> before = scene.allBytes();
            const Sample sample = scene.sample(coi);
            for (const Export* const e : exports) {
                ASSERT_TRUE(agrees(*e, scene, sample, coi))
                    << "sources: " << contentText(contents.first) << " and " << contentText(contents.second);
            }
            EXPECT_EQ(scene.allBytes(), before) << "an image was written";
        });
    }
}

TEST(Stats, OneChannelAgreesWithTheReference)
{
    sweep(Sweep::Full, 1);
}

TEST(Stats, ChannelOfInterestAgreesWithTheReference)
{
    sweep(Sweep::Full, 3);
}

TEST(StatsQuick, AgreeWithTheReference)
{
    sweep(Sweep::Quick, 1);
    sweep(Sweep::Quick, 3);
}

// Every kind of content in images that are large enough for all unrolled loops, in every channel.
TEST(Stats, AllContentsInLargerImages)
{
    Random random(5);
    for (const LumiSize size : {LumiSize{67, 41}, LumiSize{1100, 3}, LumiSize{4099, 2}, LumiSize{5, 301}}) {
        for (const Contents contents : kContents) {
            for (const Element element : kElements) {
                for (const int channels : {1, 3}) {
                    Scene scene(size.width, size.height, element, channels);
                    scene.fill(random, contents.first, contents.second, 40);
                    const Lum32s coi = channels == 1 ? 1 : static_cast<Lum32s>(random.between(1, 3));
                    const Sample sample = scene.sample(coi);
                    for (const Export& e : allExports()) {
                        if (e.element == element && e.channels() == channels) {
                            ASSERT_TRUE(agrees(e, scene, sample, coi)) << "sources: " << contentText(contents.first)
                                                                       << " and " << contentText(contents.second);
                        }
                    }
                }
            }
        }
    }
}

// A single row of 300000 pixels: whatever is kept in narrow lanes has to be spilled, the largest numbers above all.
TEST(Stats, RowsOfThreeHundredThousandPixels)
{
    Random random(8);
    for (const Element element : kElements) {
        for (const int channels : {1, 3}) {
            Scene scene(300000, 1, element, channels);
            for (const bool largest : {false, true}) {
                scene.fill(random, Content::Ordinary, Content::Ordinary, 20);
                if (largest) {
                    scene.fillFirst(element == Element::F32 ? 1e6f : largestOf(element));
                    scene.fillSecond(0);
                    scene.fillMaskWith(0xFF);
                }
                const Sample sample = scene.sample(channels);
                for (const Export& e : allExports()) {
                    if (e.element == element && e.channels() == channels) {
                        EXPECT_TRUE(agrees(e, scene, sample, channels)) << (largest ? "largest" : "ordinary");
                    }
                }
            }
        }
    }
}

// The largest numbers under every mask, in widths that end within the lanes: no lane may saturate or wrap.
TEST(Stats, RowsOfTheLargestNumbers)
{
    Random random(9);
    for (const Element element : {Element::U8, Element::U16}) {
        for (const int channels : {1, 3}) {
            for (const int width : {255, 256, 257, 511, 513, 1023, 2049, 4097, 8223, 16411, 33001, 66000}) {
                Scene scene(width, 2, element, channels);
                fillMask(scene.mask(), random, width % 2 == 0 ? 0 : 3);
                scene.fillFirst(largestOf(element));
                scene.fillSecond(0);
                const Sample sample = scene.sample(1);
                for (const Export& e : allExports()) {
                    if (e.element == element && e.channels() == channels) {
                        EXPECT_TRUE(agrees(e, scene, sample));
                    }
                }
            }
        }
    }
}

// A single pixel of the mask at every place of a row: it is that pixel that takes part.
TEST(Stats, EveryPlaceOfTheMask)
{
    constexpr int width = 70;
    Random random(6);
    for (const Element element : kElements) {
        for (const int channels : {1, 3}) {
            Scene scene(width, 1, element, channels);
            scene.fill(random, Content::Ordinary, Content::Ordinary, 100);
            for (int place = 0; place < width; ++place) {
                scene.setMask(place, 0, static_cast<Lum8u>(1 << place % 8));
                const Lum32s coi = channels == 1 ? 1 : 1 + place % 3;
                const Sample sample = scene.sample(coi);
                for (const Export& e : allExports()) {
                    if (e.element == element && e.channels() == channels && e.masked) {
                        ASSERT_TRUE(agrees(e, scene, sample, coi)) << "the mask is set at x " << place;
                    }
                }
                scene.setMask(place, 0, 0);
            }
        }
    }
}

// The sweeps reach what they are meant for.
TEST(StatsQuick, ContentsReachTheRepairAndTheZeroDivisor)
{
    Random random(7);
    Scene scene(20, 3, Element::F32, 1);
    scene.fill(random, Content::NearlyConstant, Content::Zero, 50);
    EXPECT_TRUE(meanAndDeviationOf(scene.sample(), true).repaired);
    EXPECT_EQ(normOf(exportNamed("lumiNormRel_L1_32f_C1MR"), scene.sample()).status, lumWrnZeroDivisor);
    scene.fill(random, Content::Ordinary, Content::Ordinary, 50);
    EXPECT_FALSE(meanAndDeviationOf(scene.sample(), true).repaired);
    EXPECT_EQ(normOf(exportNamed("lumiNormRel_L1_32f_C1MR"), scene.sample()).status, lumOk);
}

TEST(StatsQuick, NamesTellTheSignatures)
{
    EXPECT_EQ(meanExports().size(), 18u);
    EXPECT_EQ(normExports().size(), 54u);
    EXPECT_EQ(extremaExports().size(), 12u);
    std::set<std::string_view> names;
    std::set<Export::Function> functions;
    for (const Export& e : allExports()) {
        names.insert(e.name);
        functions.insert(e.function);
        const std::string_view type = e.element == Element::U8 ? "_8u_" : e.element == Element::U16 ? "_16u_" : "_32f_";
        const std::string_view operands = e.ofInterest ? (e.masked ? "C3CMR" : "C3CR") : (e.masked ? "C1MR" : "C1R");
        EXPECT_TRUE(e.name.ends_with(std::string(type) + std::string(operands))) << e.name;
    }
    EXPECT_EQ(names.size(), 84u);
    EXPECT_EQ(functions.size(), 84u);
}

}  // namespace
}  // namespace lumcv::test::stats
