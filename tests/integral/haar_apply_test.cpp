// One stage of Haar classifiers: masks and counts over sizes, stages and values.
#include <gtest/gtest.h>

#include <algorithm>
#include <type_traits>
#include <vector>

#include "integral/haar_fixture.hpp"
#include "support/sweep.hpp"

namespace lumcv::test::haar {
namespace {

constexpr LumiSize kWindow = {12, 10};

void sweepAgainstReference(Sweep sweep)
{
    forEachGeometry(sweep, [](const Geometry& geometry) {
        Random random(static_cast<std::uint64_t>(geometry.number) + 700);
        const Numbers numbers = random.oneIn(5) ? Numbers::Extreme : Numbers::Ordinary;
        const int length = static_cast<int>(random.oneIn(12) ? random.between(15, 40) : random.between(1, 5));
        const bool tiltedInit = random.oneIn(3);
        const RecordPlace place = {random.oneIn(2) ? Guard::After : Guard::Before,
                                   static_cast<std::size_t>(random.between(0, 63))};
        forEachForm([&]<class T, class V>(const Form<T, V>& form) {
            const Stage<V> stage = drawStage<V>(random, length, kWindow, tiltedInit, numbers);
            const std::vector<Turn> turns = allTurned(stage.size(), tiltedInit ? Turn::Tilted : Turn::Upright);
            const Record<V> record(stage, {geometry.width, geometry.height}, tiltedInit, place);
            Scene<T, V> scene(form, stage, turns, geometry.layout<V>(0), geometry.layout<Lum8u>(1), place.guard,
                              static_cast<int>(random.between(0, 2)));
            const std::vector<Lum32s> all = estimates(scene.roiSize);
            const bool hasPaths = std::is_same_v<T, Lum32f> && !form.isMixed;
            for (int repetition = 0; repetition < (hasPaths ? 3 : 1); ++repetition) {
                scene.positive = all[static_cast<std::size_t>(random.between(0, 8))];
                scene.scaleFactor = static_cast<int>(random.between(-3, 0));
                fillScene(scene, random, numbers);
                EXPECT_TRUE(agrees(scene, record)) << "estimate " << scene.positive << ", " << length << " classifiers";
            }
        });
    });
}

TEST(HaarApply, AgreesWithTheReference)
{
    sweepAgainstReference(Sweep::Full);
}

TEST(HaarApplyQuick, AgreesWithTheReference)
{
    sweepAgainstReference(Sweep::Quick);
}

// Larger ROIs, all estimates, few and many candidates.
TEST(HaarApply, LargerRois)
{
    Random random(81);
    for (const LumiSize size : {LumiSize{260, 21}, LumiSize{1103, 3}, LumiSize{37, 90}}) {
        for (const int percentZero : {5, 80, 98}) {
            forEachForm([&]<class T, class V>(const Form<T, V>& form) {
                const Stage<V> stage = drawStage<V>(random, 7, kWindow);
                const Record<V> record(stage, size);
                Scene<T, V> scene(form, stage, allTurned(stage.size(), Turn::Upright),
                                  {.width = size.width, .height = size.height},
                                  {.width = size.width, .height = size.height});
                fillScene(scene, random, Numbers::Ordinary, percentZero);
                const bool hasPaths = std::is_same_v<T, Lum32f> && !form.isMixed;
                for (const Lum32s positive : hasPaths ? estimates(size) : std::vector<Lum32s>{0}) {
                    scene.positive = positive;
                    EXPECT_TRUE(agrees(scene, record))
                        << "estimate " << positive << " of " << size.width << " x " << size.height;
                }
            });
        }
    }
}

// A stage as users mean it: left against right of each window of an image, with tables and norms made by the library.
TEST(HaarApplyQuick, ComparesThePixelsOfRectangles)
{
    constexpr int width = 40, height = 20, windowWidth = 8, windowHeight = 6;
    constexpr LumiSize roiSize = {width - windowWidth + 1, height - windowHeight + 1};
    Random random(82);
    Image<Lum8u> source({.width = width, .height = height});
    fill(source, random);
    Image<Lum32f> sums({.width = width + 1, .height = height + 1});
    Image<Lum64f> squares({.width = width + 1, .height = height + 1});
    Image<Lum32f> norms({.width = roiSize.width, .height = roiSize.height});
    Image<Lum8u> mask({.width = roiSize.width, .height = roiSize.height});
    mask.forEach(Area::Roi, [](Lum8u& byte, int, int, int) { byte = 1; });
    ASSERT_EQ(lumiSqrIntegral_8u32f64f_C1R(source.pixels(), source.step(), sums.pixels(), sums.step(), squares.pixels(),
                                           squares.step(), {width, height}, 0, 0),
              lumOk);
    ASSERT_EQ(lumiRectStdDev_32f_C1R(sums.pixels(), sums.step(), squares.pixels(), squares.step(), norms.pixels(),
                                     norms.step(), roiSize, {0, 0, windowWidth, windowHeight}),
              lumOk);
    const Stage<Lum32f> stage = {
        {{{0, 0, windowWidth, windowHeight}, {windowWidth / 2, 0, windowWidth / 2, windowHeight}},
         {1, -2},
         -1.5F,
         1,
         0}};
    const Record<Lum32f> record(stage, roiSize);
    Lum32s positive = roiSize.width * roiSize.height;
    ASSERT_EQ(lumiApplyHaarClassifier_32f_C1R(sums.pixels(), sums.step(), norms.pixels(), norms.step(), mask.pixels(),
                                              mask.step(), roiSize, &positive, 0.5F, record.state()),
              lumOk);
    Lum32s expectedCount = 0;
    for (int j = 0; j < roiSize.height; ++j) {
        for (int i = 0; i < roiSize.width; ++i) {
            int difference = 0;
            for (int y = 0; y < windowHeight; ++y) {
                for (int x = 0; x < windowWidth; ++x) {
                    difference += (x < windowWidth / 2 ? 1 : -1) * source.at(i + x, j + y);
                }
            }
            const bool isBright = static_cast<Lum32f>(difference) < -1.5F * norms.at(i, j);
            expectedCount += isBright;
            EXPECT_EQ(mask.at(i, j) != 0, isBright) << "x " << i << ", y " << j;
        }
    }
    EXPECT_EQ(positive, expectedCount);
    EXPECT_GT(positive, 20);
    EXPECT_LT(positive, roiSize.width * roiSize.height - 20);
}

// Only candidates are counted, and a byte of 0 stays one although its window would be kept.
TEST(HaarApplyQuick, CountsTheCandidatesThatAreKept)
{
    forEachForm([&]<class T, class V>(const Form<T, V>& form) {
        const Stage<V> stage = {{{{0, 0, 1, 1}, {0, 0, 1, 1}}, {0, 0}, 0, 5, 5}};
        const Record<V> record(stage, {37, 3});
        Scene<T, V> scene(form, stage, allTurned(1, Turn::Upright), {.width = 37, .height = 3},
                          {.width = 37, .height = 3});
        Random random(83);
        fillScene(scene, random, Numbers::Ordinary, 40);
        int candidates = 0;
        scene.mask.forEach(Area::Roi, [&](Lum8u& byte, int, int, int) { candidates += byte != 0; });
        for (const Lum32s positive : estimates(scene.roiSize)) {
            for (const V threshold : {V{4}, V{6}}) {
                scene.threshold = threshold;
                scene.positive = positive;
                Image<Lum8u> mask = scene.mask;
                Lum32s count = positive;
                ASSERT_EQ(scene.call(record.state(), mask, count), lumOk);
                EXPECT_EQ(count, threshold < 5 ? candidates : 0);
                mask.forEach(Area::Roi, [&](Lum8u& byte, int x, int y, int) {
                    EXPECT_EQ(byte != 0, threshold < 5 && scene.mask.at(x, y) != 0) << "x " << x << ", y " << y;
                });
                EXPECT_TRUE(agrees(scene, record));
            }
        }
    });
}

// Stages one after the other with one mask and one count, each with another stride of the same table.
TEST(HaarApplyQuick, ChainOfStages)
{
    Random random(84);
    forEachForm([&]<class T, class V>(const Form<T, V>& form) {
        constexpr LumiSize size = {67, 9};
        std::vector<Stage<V>> stages;
        std::vector<Record<V>> records;
        for (int k = 0; k < 6; ++k) {
            stages.push_back(drawStage<V>(random, 3 + k, kWindow));
            records.emplace_back(stages.back(), size);
        }
        Image<Lum8u> mask({.width = size.width, .height = size.height});
        mask.forEach(Area::Roi, [](Lum8u& byte, int, int, int) { byte = 1; });
        Lum32s count = size.width * size.height;
        for (std::size_t k = 0; k < stages.size(); ++k) {
            Scene<T, V> scene(form, stages[k], allTurned(stages[k].size(), Turn::Upright),
                              {.width = size.width, .height = size.height},
                              {.width = size.width, .height = size.height}, Guard::After, static_cast<int>(k));
            fillScene(scene, random, Numbers::Ordinary, 0);
            // a third of the windows goes
            std::vector<V> sums;
            for (int j = 0; j < size.height; ++j) {
                for (int i = 0; i < size.width; ++i) {
                    sums.push_back(scene.sumAt(i, j));
                }
            }
            std::sort(sums.begin(), sums.end());
            scene.threshold = sums[sums.size() / 3];
            scene.positive = count;
            scene.mask = mask;
            ASSERT_TRUE(agrees(scene, records[k])) << "stage " << k;
            const Lum32s before = count;
            ASSERT_EQ(scene.call(records[k].state(), mask, count), lumOk);
            EXPECT_LE(count, before);
        }
        EXPECT_LT(count, size.width * size.height / 3);
    });
}

}  // namespace
}  // namespace lumcv::test::haar
