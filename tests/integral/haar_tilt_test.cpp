// Tilted classifiers: the tilted Init, the turning of classifiers of an upright stage, and stages of both kinds.
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "integral/haar_fixture.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::haar {
namespace {

constexpr LumiSize kRoiSize = {37, 5};

// All forms over a stage whose classifiers are turned as told; the record is made by the caller.
template <class V>
void expectAgreement(const Stage<V>& stage, const std::vector<Turn>& turns, const Record<V>& record, Random& random)
{
    forEachForm([&]<class T, class W>(const Form<T, W>& form) {
        if constexpr (std::is_same_v<V, W>) {
            const Layout layout{.width = kRoiSize.width, .height = kRoiSize.height};
            for (const Guard guard : {Guard::After, Guard::Before}) {
                Scene<T, V> scene(form, stage, turns, layout, layout, guard, static_cast<int>(random.between(0, 1)));
                for (const Lum32s positive : {100, 40, 20, 5}) {
                    scene.positive = positive;
                    fillScene(scene, random);
                    EXPECT_TRUE(agrees(scene, record)) << "estimate " << positive;
                }
            }
        }
    });
}

struct WeightName
{
    template <class V>
    static std::string GetName(int)
    {
        return std::is_same_v<V, Lum32f> ? "32f" : "32s";
    }
};
using Weights = testing::Types<Lum32f, Lum32s>;
TYPE_SUITE(HaarTilt, Weights, WeightName);
TYPE_SUITE(HaarTiltQuick, Weights, WeightName);

// Plain forms read the one table they are given, mixed ones the tilted table, by all classifiers of a tilted Init.
TYPE_TEST(HaarTilt, TiltedInit)
{
    Random random(121);
    for (const int length : {1, 2, 5, 18}) {
        for (int repetition = 0; repetition < 4; ++repetition) {
            const Stage<TypeParam> stage = drawStage<TypeParam>(random, length, {9, 9}, true);
            const Record<TypeParam> record(stage, kRoiSize, true);
            expectAgreement(stage, allTurned(stage.size(), Turn::Tilted), record, random);
        }
    }
}

// Every choice of classifiers, by both flags.
TYPE_TEST(HaarTilt, TurnedClassifiers)
{
    Random random(122);
    for (const int flag : {0, 1, -1, 256}) {
        const Turn turn = flag == 0 ? Turn::TiltedWithZeroFlag : Turn::Tilted;
        for (const int length : {1, 2, 3, 7, 20}) {
            for (const int percentTurned : {0, 20, 60, 100}) {
                const Stage<TypeParam> stage = drawStage<TypeParam>(random, length, {8, 7});
                const Record<TypeParam> record(stage, kRoiSize);
                std::vector<Turn> turns = allTurned(stage.size(), Turn::Upright);
                GuardedBlock mask(stage.size(), Guard::After);
                for (std::size_t i = 0; i < stage.size(); ++i) {
                    const bool turned = random.between(1, 100) <= percentTurned;
                    mask.data()[i] = turned ? static_cast<Lum8u>(random.between(1, 255)) : Lum8u{0};
                    turns[i] = turned ? turn : Turn::Upright;
                }
                ASSERT_EQ(RecordExports<TypeParam>::tiltFeatures(mask.data(), flag, record.state()), lumOk);
                SCOPED_TRACE(testing::Message() << "flag " << flag << ", " << length << " classifiers, "
                                                << percentTurned << " percent turned");
                expectAgreement(stage, turns, record, random);
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

// The mask counts in the caller's order, not in that of the record.
TYPE_TEST(HaarTiltQuick, MaskIsInTheOrderOfTheCaller)
{
    Random random(123);
    for (int chosen = 0; chosen < 5; ++chosen) {
        Stage<TypeParam> stage;
        for (const int rects : {4, 3, 2, 1, 2}) {
            Classifier<TypeParam> c{{}, {}, 3, 1, 2};
            for (int k = 0; k < rects; ++k) {
                c.rects.push_back(drawRect(random, {6, 6}, false));
                c.weights.push_back(static_cast<TypeParam>(k + 1));
            }
            stage.push_back(c);
        }
        const Record<TypeParam> record(stage, kRoiSize);
        Lum8u mask[5] = {};
        mask[chosen] = 255;
        std::vector<Turn> turns = allTurned(5, Turn::Upright);
        turns[static_cast<std::size_t>(chosen)] = Turn::Tilted;
        ASSERT_EQ(RecordExports<TypeParam>::tiltFeatures(mask, 1, record.state()), lumOk);
        expectAgreement(stage, turns, record, random);
    }
}

// A turned record is closed: a second call is refused, whatever its mask, and leaves it as it is.
TYPE_TEST(HaarTiltQuick, SecondCallIsRefused)
{
    Random random(124);
    const Stage<TypeParam> stage = drawStage<TypeParam>(random, 4, {6, 6});
    const Record<TypeParam> record(stage, kRoiSize);
    const auto tilt = RecordExports<TypeParam>::tiltFeatures;
    const Lum8u first[4] = {0, 1, 0, 0}, second[4] = {1, 0, 0, 0}, none[4] = {};
    ASSERT_EQ(tilt(first, 1, record.state()), lumOk);
    const std::vector<unsigned char> before = record.bytes();
    EXPECT_EQ(tilt(second, 1, record.state()), lumErrArgument);
    EXPECT_EQ(tilt(second, 0, record.state()), lumErrArgument);
    EXPECT_EQ(tilt(first, 1, record.state()), lumErrArgument);
    EXPECT_EQ(tilt(none, 1, record.state()), lumErrArgument);
    EXPECT_EQ(record.bytes(), before);
    std::vector<Turn> turns = allTurned(4, Turn::Upright);
    turns[1] = Turn::Tilted;
    expectAgreement(stage, turns, record, random);
}

// A mask of zeros leaves the record as it is, and open.
TYPE_TEST(HaarTiltQuick, NoByteSetLeavesTheRecordOpen)
{
    Random random(125);
    const Stage<TypeParam> stage = drawStage<TypeParam>(random, 4, {6, 6});
    const Record<TypeParam> record(stage, kRoiSize);
    const auto tilt = RecordExports<TypeParam>::tiltFeatures;
    const Lum8u none[4] = {}, all[4] = {1, 2, 128, 255};
    const std::vector<unsigned char> before = record.bytes();
    EXPECT_EQ(tilt(none, 0, record.state()), lumOk);
    EXPECT_EQ(tilt(none, 1, record.state()), lumOk);
    EXPECT_EQ(record.bytes(), before);
    expectAgreement(stage, allTurned(4, Turn::Upright), record, random);
    EXPECT_EQ(tilt(all, 1, record.state()), lumOk);
    expectAgreement(stage, allTurned(4, Turn::Tilted), record, random);
    EXPECT_EQ(tilt(all, 1, record.state()), lumErrArgument);
}

TYPE_TEST(HaarTiltQuick, TiltedRecordIsRefused)
{
    Random random(126);
    const Stage<TypeParam> stage = drawStage<TypeParam>(random, 3, {6, 6}, true);
    const Record<TypeParam> record(stage, kRoiSize, true);
    const std::vector<unsigned char> before = record.bytes();
    for (const Lum8u byte : {Lum8u{0}, Lum8u{1}}) {
        const Lum8u mask[3] = {byte, byte, byte};
        EXPECT_EQ(RecordExports<TypeParam>::tiltFeatures(mask, 1, record.state()), lumErrArgument);
    }
    EXPECT_EQ(record.bytes(), before);
}

TYPE_TEST(HaarTiltQuick, NullPointers)
{
    Random random(127);
    const Stage<TypeParam> stage = drawStage<TypeParam>(random, 3, {6, 6}, true);
    const Record<TypeParam> upright(stage, kRoiSize), tilted(stage, kRoiSize, true);
    const auto tilt = RecordExports<TypeParam>::tiltFeatures;
    const Lum8u mask[3] = {1, 1, 1};
    for (const Record<TypeParam>* const record : {&upright, &tilted}) {
        const std::vector<unsigned char> before = record->bytes();
        EXPECT_EQ(tilt(nullptr, 1, record->state()), lumErrNullPointer);
        EXPECT_EQ(tilt(mask, 1, nullptr), lumErrNullPointer);
        EXPECT_EQ(tilt(nullptr, 0, nullptr), lumErrNullPointer);
        EXPECT_EQ(record->bytes(), before);
    }
}

// A tilted Init refuses a rectangle that is higher than x + 1. Turning has no such test; columns become negative.
TYPE_TEST(HaarTilt, TurnedRectanglesMayReachNegativeColumnsAndRows)
{
    Random random(128);
    for (const LumiRect rect : {LumiRect{0, 0, 1, 9}, LumiRect{2, 1, 8, 4}, LumiRect{1, 3, 5, 3}}) {
        for (const int flag : {0, 1}) {
            const Stage<TypeParam> stage = {{{rect, {0, 0, 3, 3}}, {2, -1}, 5, 1, 2}};
            const Record<TypeParam> record(stage, kRoiSize);
            const Lum8u mask = 1;
            ASSERT_EQ(RecordExports<TypeParam>::tiltFeatures(&mask, flag, record.state()), lumOk);
            expectAgreement(stage, allTurned(1, flag == 0 ? Turn::TiltedWithZeroFlag : Turn::Tilted), record, random);
        }
    }
}

// The highest rectangle of a tilted Init reaches column -1 of a plain form's table, which is column 0 of a mixed one's.
TYPE_TEST(HaarTiltQuick, HighestRectangleOfATiltedInit)
{
    Random random(129);
    const Stage<TypeParam> stage = {{{{3, 1, 2, 4}, {0, 0, 1, 1}}, {1, 2}, 5, 1, 2}};
    const Record<TypeParam> record(stage, kRoiSize, true);
    const std::vector<StoredClassifier<TypeParam>> classifiers = stored(stage, {Turn::Tilted});
    const auto all = [](const auto&) { return true; };
    EXPECT_EQ(extentOf(classifiers, kRoiSize, 0, all).column, -1);
    EXPECT_EQ(extentOf(classifiers, kRoiSize, 1, all).column, 0);
    EXPECT_EQ(extentOf(classifiers, kRoiSize, 1, all).row, 1);
    expectAgreement(stage, {Turn::Tilted}, record, random);
}

// A tilted rectangle over images of one bright pixel, with tables made by the library and both pointers at their first
// entries: the window is kept where the pixel's cone says that the rectangle, a row and a column further, has it.
TEST(HaarMixedQuick, TiltedTableIsReadARowAndAColumnFurther)
{
    constexpr int width = 32, height = 14;
    constexpr LumiSize roiSize = {9, 5};
    constexpr LumiRect rect = {6, 1, 4, 3};
    Image<Lum8u> source({.width = width, .height = height});
    Image<Lum32s> sums({.width = width + 1, .height = height + 1}), tilts({.width = width + 2, .height = height + 2});
    Image<Lum32s> norms({.width = roiSize.width, .height = roiSize.height});
    norms.forEach(Area::Roi, [](Lum32s& norm, int, int, int) { norm = 1; });
    const Stage<Lum32s> stage = {{{rect}, {1}, 10, 0, 1}};
    const Record<Lum32s> record(stage, roiSize, true);
    int kept = 0;
    // pixels of the first column have no cone
    for (int y = 0; y < height; ++y) {
        for (int x = 1; x < width; ++x) {
            source.forEach(Area::Roi,
                           [&](Lum8u& pixel, int i, int j, int) { pixel = i == x && j == y ? Lum8u{10} : Lum8u{0}; });
            ASSERT_EQ(
                lumiIntegral_8u32s_C1R(source.pixels(), source.step(), sums.pixels(), sums.step(), {width, height}, 0),
                lumOk);
            ASSERT_EQ(lumiTiltedIntegral_8u32s_C1R(source.pixels(), source.step(), tilts.pixels(), tilts.step(),
                                                   {width, height}, 0),
                      lumOk);
            Image<Lum8u> mask({.width = roiSize.width, .height = roiSize.height});
            mask.forEach(Area::Roi, [](Lum8u& byte, int, int, int) { byte = 1; });
            Lum32s count = 0;
            ASSERT_EQ(lumiApplyMixedHaarClassifier_32s_C1RSfs(sums.pixels(), sums.step(), tilts.pixels(), tilts.step(),
                                                              norms.pixels(), norms.step(), mask.pixels(), mask.step(),
                                                              roiSize, &count, 1, record.state(), 0),
                      lumOk);
            const auto inCone = [=](int row, int column) {
                const int opening = row - y - 2;
                return opening >= 0 && column >= x - opening && column <= x + 1 + opening ? 1 : 0;
            };
            for (int j = 0; j < roiSize.height; ++j) {
                for (int i = 0; i < roiSize.width; ++i) {
                    const int row = j + 1 + rect.y, column = i + 1 + rect.x;
                    const int covered = inCone(row, column) - inCone(row + rect.width, column + rect.width) -
                                        inCone(row + rect.height, column - rect.height) +
                                        inCone(row + rect.width + rect.height, column + rect.width - rect.height);
                    kept += covered;
                    ASSERT_EQ(mask.at(i, j), covered) << "pixel " << x << ", " << y << ", window " << i << ", " << j;
                }
            }
        }
    }
    EXPECT_EQ(kept, roiSize.width * roiSize.height * 2 * rect.width * rect.height);
}

// The table of a kind that no classifier is of need not be readable.
TEST(HaarMixedQuick, TableOfNoClassifierIsNotRead)
{
    Random random(130);
    const Layout layout{.width = kRoiSize.width, .height = kRoiSize.height};
    for (const bool tiltedInit : {false, true}) {
        const Stage<Lum32f> stage = drawStage<Lum32f>(random, 6, {6, 6}, tiltedInit);
        const Record<Lum32f> record(stage, kRoiSize, tiltedInit);
        Scene<Lum32f, Lum32f> scene(kMixed32f, stage,
                                    allTurned(stage.size(), tiltedInit ? Turn::Tilted : Turn::Upright), layout, layout);
        fillScene(scene, random);
        Image<Lum8u> expected = scene.mask;
        const Lum32s expectedCount = apply(scene.job(), scene.norms, expected);
        const GuardedBlock block(64, Guard::After);
        const Lum32f* const unreadable = block.as<Lum32f>() + 16;
        Lum32s count = 0;
        ASSERT_EQ(lumiApplyMixedHaarClassifier_32f_C1R(
                      tiltedInit ? unreadable : scene.upright.pointer(), tiltedInit ? 148 : scene.upright.step(),
                      tiltedInit ? scene.tilted.pointer() : unreadable, tiltedInit ? scene.tilted.step() : 148,
                      scene.norms.pixels(), scene.norms.step(), scene.mask.pixels(), scene.mask.step(), kRoiSize,
                      &count, scene.threshold, record.state()),
                  lumOk);
        EXPECT_EQ(count, expectedCount);
        EXPECT_TRUE(sameImage(expected, scene.mask));
    }
}

}  // namespace
}  // namespace lumcv::test::haar
