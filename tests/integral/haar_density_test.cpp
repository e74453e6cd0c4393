// The density paths of the float apply: which windows are in groups and which in the tail, and what differs there.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>
#include <vector>

#include "integral/haar_fixture.hpp"

namespace lumcv::test::haar {
namespace {

constexpr Lum32f kNotANumber = std::numeric_limits<Lum32f>::quiet_NaN();

/// An estimate, and the windows that are in groups then.
struct Path
{
    const char* name;
    Lum32s positive;
    int windowsInGroups;
};

// The ROI has 45 windows in a row and 180 in all, so the limits are 45, 22 and 11.
constexpr LumiSize kRoiSize = {45, 4};
constexpr Path kPaths[] = {
    {"whole rows, every window", 180, 32},
    {"whole rows, a quarter", 45, 32},
    {"groups of 4, below a quarter", 44, 44},
    {"groups of 4, an eighth", 22, 44},
    {"groups of 8, below an eighth", 21, 40},
    {"groups of 8, a sixteenth", 11, 40},
    {"groups of 16, below a sixteenth", 10, 32},
    {"groups of 16, none", 0, 32},
    {"groups of 16, a negative number", -1, 32},
    {"groups of 16, the smallest number", std::numeric_limits<Lum32s>::min(), 32},
    {"whole rows, the largest number", std::numeric_limits<Lum32s>::max(), 32},
};

// A stage of one classifier that always votes the given value.
Stage<Lum32f> constantStage(Lum32f vote)
{
    return {{{{0, 0, 2, 1}, {1, 0, 1, 2}}, {0, 0}, 0, vote, vote}};
}

// The scene of the stage, and its mask in which all windows are candidates by the bytes 1, 2, 3...
Scene<Lum32f, Lum32f> sceneOf(const Stage<Lum32f>& stage, LumiSize roiSize)
{
    const Layout layout{.width = roiSize.width, .height = roiSize.height};
    Scene<Lum32f, Lum32f> scene(kPlain32f, stage, allTurned(stage.size(), Turn::Upright), layout, layout);
    Random random(101);
    fillScene(scene, random);
    scene.mask.forEach(Area::Roi,
                       [](Lum8u& byte, int x, int y, int) { byte = static_cast<Lum8u>(1 + (x + 45 * y) % 255); });
    return scene;
}

// What becomes of the mask if windows in groups and those in the tail have the given fates.
enum class Fate
{
    Cleared,
    Kept,  ///< with its byte
    Set    ///< kept, with the byte 255
};

void expectFates(const Scene<Lum32f, Lum32f>& scene, const Record<Lum32f>& record, int windowsInGroups, Fate inGroups,
                 Fate inTail)
{
    EXPECT_TRUE(agrees(scene, record));
    Image<Lum8u> mask = scene.mask;
    Lum32s count = scene.positive, expectedCount = 0;
    ASSERT_EQ(scene.call(record.state(), mask, count), lumOk);
    for (int y = 0; y < scene.roiSize.height; ++y) {
        for (int x = 0; x < scene.roiSize.width; ++x) {
            const Lum8u before = scene.mask.at(x, y);
            const Fate fate = x < windowsInGroups ? inGroups : inTail;
            const Lum8u expected = fate == Fate::Cleared || before == 0 ? Lum8u{0}
                                   : fate == Fate::Set                  ? Lum8u{255}
                                                                        : before;
            expectedCount += expected != 0;
            ASSERT_EQ(mask.at(x, y), expected) << "x " << x << ", y " << y;
        }
    }
    EXPECT_EQ(count, expectedCount);
}

template <class F>
void forEachPath(F f)
{
    for (const Path& path : kPaths) {
        SCOPED_TRACE(path.name);
        f(path);
    }
}

// A sum of exactly the threshold is cleared in a group and kept, with its byte, in the tail.
TEST(HaarDensityQuick, SumAtTheThreshold)
{
    const Stage<Lum32f> stage = constantStage(1.5F);
    const Record<Lum32f> record(stage, kRoiSize);
    Scene<Lum32f, Lum32f> scene = sceneOf(stage, kRoiSize);
    scene.threshold = 1.5F;
    forEachPath([&](const Path& path) {
        scene.positive = path.positive;
        expectFates(scene, record, path.windowsInGroups, Fate::Cleared, Fate::Kept);
    });
}

// A window that is kept in a group gets the byte 255, also where it was 1; in the tail bytes stay.
TEST(HaarDensityQuick, SumAboveTheThreshold)
{
    const Stage<Lum32f> stage = constantStage(1.5F);
    const Record<Lum32f> record(stage, kRoiSize);
    Scene<Lum32f, Lum32f> scene = sceneOf(stage, kRoiSize);
    scene.threshold = std::nextafter(1.5F, 0.0F);
    ASSERT_EQ(scene.mask.at(0, 0), 1);
    forEachPath([&](const Path& path) {
        scene.positive = path.positive;
        expectFates(scene, record, path.windowsInGroups, Fate::Set, Fate::Kept);
    });
}

TEST(HaarDensityQuick, SumBelowTheThreshold)
{
    const Stage<Lum32f> stage = constantStage(1.5F);
    const Record<Lum32f> record(stage, kRoiSize);
    Scene<Lum32f, Lum32f> scene = sceneOf(stage, kRoiSize);
    scene.threshold = std::nextafter(1.5F, 2.0F);
    forEachPath([&](const Path& path) {
        scene.positive = path.positive;
        expectFates(scene, record, path.windowsInGroups, Fate::Cleared, Fate::Cleared);
    });
}

// A sum, or a threshold, that is not-a-number is not above: cleared in groups, kept in the tail.
TEST(HaarDensityQuick, NotANumberIsClearedInGroupsOnly)
{
    for (const bool inVote : {true, false}) {
        const Stage<Lum32f> stage = constantStage(inVote ? kNotANumber : 1.0F);
        const Record<Lum32f> record(stage, kRoiSize);
        Scene<Lum32f, Lum32f> scene = sceneOf(stage, kRoiSize);
        scene.threshold = inVote ? 1.0F : kNotANumber;
        forEachPath([&](const Path& path) {
            scene.positive = path.positive;
            expectFates(scene, record, path.windowsInGroups, Fate::Cleared, Fate::Kept);
        });
    }
}

// Zeros of both signs meet the threshold.
TEST(HaarDensityQuick, ZerosOfBothSignsMeet)
{
    for (const Lum32f vote : {0.0F, -0.0F}) {
        const Stage<Lum32f> stage = constantStage(vote);
        const Record<Lum32f> record(stage, kRoiSize);
        Scene<Lum32f, Lum32f> scene = sceneOf(stage, kRoiSize);
        for (const Lum32f threshold : {0.0F, -0.0F}) {
            scene.threshold = threshold;
            forEachPath([&](const Path& path) {
                scene.positive = path.positive;
                expectFates(scene, record, path.windowsInGroups, Fate::Cleared, Fate::Kept);
            });
        }
    }
}

// Scalar forms know no groups: whatever the estimate, a tie is kept, with its byte.
TEST(HaarDensityQuick, ScalarFormsHaveTheRuleOfTheTail)
{
    forEachForm([&]<class T, class V>(const Form<T, V>& form) {
        if (std::is_same_v<T, Lum32f> && !form.isMixed) {
            return;
        }
        const Stage<V> stage = {{{{0, 0, 1, 1}, {0, 0, 1, 1}}, {1, 1}, 0, 7, 7}};
        const Record<V> record(stage, kRoiSize);
        const Layout layout{.width = kRoiSize.width, .height = kRoiSize.height};
        Scene<T, V> scene(form, stage, allTurned(1, Turn::Upright), layout, layout);
        Random random(102);
        fillScene(scene, random, Numbers::Ordinary, 30);
        scene.threshold = 7;
        forEachPath([&](const Path& path) {
            Image<Lum8u> mask = scene.mask;
            Lum32s count = path.positive;
            ASSERT_EQ(scene.call(record.state(), mask, count), lumOk);
            EXPECT_TRUE(sameImage(scene.mask, mask));
        });
    });
}

// Candidates at every place of a row, alone: no group that has one is passed over.
TEST(HaarDensity, ASingleCandidateAtEveryPlace)
{
    const Stage<Lum32f> stage = constantStage(2);
    const LumiSize roiSize = {39, 3};  // 117 windows: limits 29, 14, 7
    const Record<Lum32f> record(stage, roiSize);
    Scene<Lum32f, Lum32f> scene = sceneOf(stage, roiSize);
    for (const Path& path : {Path{"whole rows", 29, 32}, Path{"groups of 4", 14, 36}, Path{"groups of 8", 7, 32},
                             Path{"groups of 16", 1, 32}}) {
        SCOPED_TRACE(path.name);
        scene.positive = path.positive;
        for (int place = 0; place < 39; ++place) {
            scene.mask.forEach(Area::Roi,
                               [&](Lum8u& byte, int x, int, int) { byte = x == place ? Lum8u{1} : Lum8u{0}; });
            scene.threshold = 1;
            expectFates(scene, record, path.windowsInGroups, Fate::Set, Fate::Kept);
            scene.threshold = 2;
            expectFates(scene, record, path.windowsInGroups, Fate::Cleared, Fate::Kept);
        }
    }
}

// Rows that are narrower than a group are all tail.
TEST(HaarDensity, EveryWidth)
{
    const Stage<Lum32f> stage = constantStage(3);
    for (int width = 1; width <= 70; ++width) {
        const LumiSize roiSize = {width, 16};
        const Record<Lum32f> record(stage, roiSize);
        Scene<Lum32f, Lum32f> scene = sceneOf(stage, roiSize);
        scene.threshold = 3;
        for (const Path& path :
             {Path{"whole rows", 4 * width, width / 16 * 16}, Path{"groups of 4", 4 * width - 1, width / 4 * 4},
              Path{"groups of 4", 2 * width, width / 4 * 4}, Path{"groups of 8", 2 * width - 1, width / 8 * 8},
              Path{"groups of 8", width, width / 8 * 8}, Path{"groups of 16", width - 1, width / 16 * 16}}) {
            SCOPED_TRACE(path.name);
            scene.positive = path.positive;
            expectFates(scene, record, path.windowsInGroups, Fate::Cleared, Fate::Kept);
        }
        if (HasFailure()) {
            return;
        }
    }
}

// With few windows the limits are zero: no candidates at all are enough for whole rows, and a negative estimate is what
// the sparsest path takes.
TEST(HaarDensityQuick, LimitsOfSmallRois)
{
    EXPECT_EQ(groupLength(0, {3, 1}), 16);
    EXPECT_EQ(groupLength(0, {4, 1}), 4);
    EXPECT_EQ(groupLength(0, {9, 1}), 8);
    EXPECT_EQ(groupLength(0, {16, 1}), 16);
    EXPECT_EQ(groupLength(-1, {15, 1}), 16);
    const Stage<Lum32f> stage = constantStage(1);
    for (int width = 1; width <= 20; ++width) {
        const Record<Lum32f> record(stage, {width, 1});
        Scene<Lum32f, Lum32f> scene = sceneOf(stage, {width, 1});
        scene.threshold = 1;
        // N / 4 is 0 below 4 windows, N / 8 below 8, N / 16 below 16
        const int length = width < 4 ? 16 : width < 8 ? 4 : width < 16 ? 8 : 16;
        scene.positive = 0;
        expectFates(scene, record, width / length * length, Fate::Cleared, Fate::Kept);
    }
}

// Away from the threshold all estimates keep the same windows.
TEST(HaarDensity, EstimatesGiveTheSameWindows)
{
    Random random(103);
    for (const int percentZero : {0, 60, 90, 97}) {
        const Stage<Lum32f> stage = drawStage<Lum32f>(random, 9, {9, 9});
        const LumiSize roiSize = {131, 11};
        const Record<Lum32f> record(stage, roiSize);
        const Layout layout{.width = roiSize.width, .height = roiSize.height};
        Scene<Lum32f, Lum32f> scene(kPlain32f, stage, allTurned(stage.size(), Turn::Upright), layout, layout);
        fillScene(scene, random, Numbers::Ordinary, percentZero);
        // integers in the table: no order of additions rounds, and no sum of votes is the threshold
        scene.upright.image().forEach(
            Area::Roi, [&](Lum32f& entry, int, int, int) { entry = static_cast<Lum32f>(random.between(-1000, 1000)); });
        scene.threshold = std::nextafter(scene.sumAt(3, 3), 1000.0F);
        std::optional<Image<Lum8u>> first;
        Lum32s firstCount = 0;
        for (const Lum32s positive : estimates(roiSize)) {
            scene.positive = positive;
            ASSERT_TRUE(agrees(scene, record));
            Image<Lum8u> mask = scene.mask;
            Lum32s count = positive;
            ASSERT_EQ(scene.call(record.state(), mask, count), lumOk);
            mask.forEach(Area::Roi, [](Lum8u& byte, int, int, int) { byte = byte != 0; });
            if (!first) {
                first = mask;
                firstCount = count;
            }
            EXPECT_EQ(count, firstCount);
            EXPECT_TRUE(sameImage(*first, mask)) << "estimate " << positive;
        }
    }
}

// A vote tie, threshold * norm == feature, takes val2 in groups and tail; so does a feature that is not-a-number.
TEST(HaarDensityQuick, TieOfAClassifierVotesVal2)
{
    const LumiSize roiSize = {37, 3};
    const Layout layout{.width = roiSize.width, .height = roiSize.height};
    const Stage<Lum32f> stage = {{{{0, 0, 1, 1}}, {1}, 2, 0, 1}};
    const Record<Lum32f> record(stage, roiSize);
    Random random(104);
    for (const Form<Lum32f, Lum32f>& form : {kPlain32f, kMixed32f}) {
        SCOPED_TRACE(form.name);
        Scene<Lum32f, Lum32f> scene(form, stage, allTurned(1, Turn::Upright), layout, layout);
        fillScene(scene, random, Numbers::Ordinary, 0);
        scene.mask.forEach(Area::Roi, [](Lum8u& byte, int, int, int) { byte = 1; });
        scene.upright.image().forEach(Area::Roi,
                                      [](Lum32f& entry, int x, int y, int) { entry = static_cast<Lum32f>(6 * x * y); });
        scene.threshold = 0.5F;
        for (const Lum32s positive : estimates(roiSize)) {
            scene.positive = positive;
            // features are 6; 2 * 3 is a tie
            for (const Lum32f norm : {3.0F, std::nextafter(3.0F, 4.0F), kNotANumber}) {
                scene.norms.forEach(Area::Roi, [=](Lum32f& n, int, int, int) { n = norm; });
                Image<Lum8u> mask = scene.mask;
                Lum32s count = positive;
                ASSERT_EQ(scene.call(record.state(), mask, count), lumOk);
                EXPECT_EQ(count, norm > 3.0F ? 0 : 37 * 3) << "norm " << norm;
                EXPECT_TRUE(agrees(scene, record));
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::haar
