// Records of Haar stages: their size, blocks of exactly that anywhere, the size of the window, what threads share.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "integral/haar_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::haar {
namespace {

struct WeightName
{
    template <class V>
    static std::string GetName(int)
    {
        return std::is_same_v<V, Lum32f> ? "32f" : "32s";
    }
};
using Weights = testing::Types<Lum32f, Lum32s>;
TYPE_SUITE(HaarRecord, Weights, WeightName);
TYPE_SUITE(HaarRecordQuick, Weights, WeightName);

TYPE_TEST(HaarRecordQuick, SizeFormula)
{
    for (const std::vector<Lum32s>& nums :
         {std::vector<Lum32s>{1}, {2}, {3}, {2, 3, 2}, {1, 2, 3, 4, 5, 6}, std::vector<Lum32s>(200, 2), {100000}}) {
        Lum64s total = 0;
        for (const Lum32s num : nums) {
            total += num;
        }
        const auto length = static_cast<Lum32s>(nums.size());
        for (const int width : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 33, 100, 640, 1913, 1920, 65535, 1000000}) {
            for (const int height : {1, 100, std::numeric_limits<int>::max()}) {
                Lum32s bytes = -1;
                EXPECT_EQ(lumiHaarClassifierGetSize(RecordExports<TypeParam>::dataType, {width, height}, nums.data(),
                                                    length, &bytes),
                          lumOk);
                EXPECT_EQ(bytes, recordBytes<TypeParam>(length, total, width)) << "width " << width;
            }
        }
    }
}

TEST(HaarRecordSizesQuick, WrittenOut)
{
    const Lum32s nums[] = {2, 3, 2};
    Lum32s bytes = -1;
    EXPECT_EQ(lumiHaarClassifierGetSize(lumType32s, {100, 30}, nums, 3, &bytes), lumOk);
    EXPECT_EQ(bytes, 3 * 32 + 7 * 36 + 64 + 7 * 16 + 64);
    EXPECT_EQ(lumiHaarClassifierGetSize(lumType32f, {100, 30}, nums, 3, &bytes), lumOk);
    EXPECT_EQ(bytes, 3 * 32 + 7 * 36 + 64 + 7 * 16 + 800 + 16 + 64);
    EXPECT_EQ(lumiHaarClassifierGetSize(lumType32f, {1, 1}, nums, 3, &bytes), lumOk);
    EXPECT_EQ(bytes, 3 * 32 + 7 * 36 + 64 + 7 * 16 + 32 + 16 + 64);
    EXPECT_EQ(lumiHaarClassifierGetSize(lumType32f, {5, 1}, nums, 3, &bytes), lumOk);
    EXPECT_EQ(bytes, 3 * 32 + 7 * 36 + 64 + 7 * 16 + 64 + 16 + 64);
}

// Sizes at the end of 32 bits, by the number of rectangles and by the width.
TEST(HaarRecordSizesQuick, TooLarge)
{
    constexpr Lum32s kIntMax = std::numeric_limits<Lum32s>::max();
    const auto query = [](LumDataType type, int width, Lum32s num, Lum32s& bytes) {
        bytes = -1;
        const Lum32s nums[] = {num, 1};
        return lumiHaarClassifierGetSize(type, {width, 1}, nums, 2, &bytes);
    };
    Lum32s bytes = 0;
    const Lum32s mostOf32s = static_cast<Lum32s>((kIntMax - recordBytes<Lum32s>(2, 1, 1)) / 52);
    EXPECT_EQ(query(lumType32s, 1, mostOf32s, bytes), lumOk);
    EXPECT_EQ(bytes, recordBytes<Lum32s>(2, Lum64s{mostOf32s} + 1, 1));
    EXPECT_EQ(query(lumType32s, 1, mostOf32s + 1, bytes), lumErrSizeTooLarge);
    EXPECT_EQ(bytes, -1);
    EXPECT_EQ(query(lumType32s, 1, kIntMax, bytes), lumErrSizeTooLarge);
    const Lum32s mostOf32f = static_cast<Lum32s>((kIntMax - recordBytes<Lum32f>(2, 1, 1)) / 52);
    EXPECT_EQ(query(lumType32f, 1, mostOf32f, bytes), lumOk);
    EXPECT_EQ(query(lumType32f, 1, mostOf32f + 1, bytes), lumErrSizeTooLarge);
    EXPECT_EQ(bytes, -1);
    int widest = kIntMax / 8;
    while (recordBytes<Lum32f>(2, 2, widest) > kIntMax) {
        --widest;
    }
    EXPECT_EQ(query(lumType32f, widest, 1, bytes), lumOk);
    EXPECT_EQ(bytes, recordBytes<Lum32f>(2, 2, widest));
    EXPECT_EQ(query(lumType32f, widest + 1, 1, bytes), lumErrSizeTooLarge);
    EXPECT_EQ(query(lumType32f, kIntMax, 1, bytes), lumErrSizeTooLarge);
    EXPECT_EQ(bytes, -1);
    EXPECT_EQ(query(lumType32s, kIntMax, 1, bytes), lumOk) << "the width does not matter there";
}

// Blocks of exactly the queried size at every byte address, at both ends of a page.
TYPE_TEST(HaarRecord, BlockAtAnyAddress)
{
    Random random(131);
    for (std::size_t distance = 0; distance < 64; ++distance) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            const LumiSize size = {static_cast<int>(random.between(1, 50)), 3};
            const bool tiltedInit = distance % 4 == 3;
            const Stage<TypeParam> stage =
                drawStage<TypeParam>(random, static_cast<int>(random.between(1, 20)), {6, 6}, tiltedInit);
            const Record<TypeParam> record(stage, size, tiltedInit, {guard, distance});
            forEachForm([&]<class T, class V>(const Form<T, V>& form) {
                if constexpr (std::is_same_v<V, TypeParam>) {
                    const Layout layout{.width = size.width, .height = size.height};
                    Scene<T, V> scene(form, stage, allTurned(stage.size(), tiltedInit ? Turn::Tilted : Turn::Upright),
                                      layout, layout);
                    for (const Lum32s positive : {1000, size.width * 3 / 4 - 1, size.width * 3 / 8 - 1, -1}) {
                        scene.positive = positive;
                        fillScene(scene, random);
                        ASSERT_TRUE(agrees(scene, record)) << "distance to the page " << distance;
                    }
                }
            });
            LumiSize window = {};
            EXPECT_EQ(RecordExports<TypeParam>::windowSize(record.state(), &window), lumOk);
            EXPECT_TRUE(record.block().intact());
            if (testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

// Every width: the row buffers of the formula do.
TYPE_TEST(HaarRecord, BlockOfEveryWidth)
{
    Random random(132);
    const Stage<TypeParam> stage = drawStage<TypeParam>(random, 3, {4, 4});
    for (int width = 1; width <= 70; ++width) {
        for (const std::size_t distance : {std::size_t{0}, static_cast<std::size_t>(width % 32)}) {
            const Record<TypeParam> record(stage, {width, 2}, false, {Guard::After, distance});
            forEachForm([&]<class T, class V>(const Form<T, V>& form) {
                if constexpr (std::is_same_v<V, TypeParam>) {
                    const Layout layout{.width = width, .height = 2};
                    Scene<T, V> scene(form, stage, allTurned(3, Turn::Upright), layout, layout);
                    scene.positive = 1000;
                    fillScene(scene, random, Numbers::Ordinary, 0);
                    ASSERT_TRUE(agrees(scene, record)) << "width " << width;
                }
            });
        }
    }
}

// A record serves all ROIs that are not above the one queried, tables of any stride, and any number of calls.
TYPE_TEST(HaarRecord, ServesSmallerRoisAndAnyStride)
{
    Random random(133);
    const Stage<TypeParam> stage = drawStage<TypeParam>(random, 11, {8, 8});
    const Record<TypeParam> record(stage, {90, 8});
    for (const LumiSize size : {LumiSize{90, 8}, LumiSize{1, 1}, LumiSize{89, 1}, LumiSize{16, 8}, LumiSize{33, 3}}) {
        for (const int moreGap : {0, 1, 6}) {
            forEachForm([&]<class T, class V>(const Form<T, V>& form) {
                if constexpr (std::is_same_v<V, TypeParam>) {
                    const Layout layout{.width = size.width, .height = size.height};
                    Scene<T, V> scene(form, stage, allTurned(stage.size(), Turn::Upright), layout, layout, Guard::After,
                                      moreGap);
                    for (const Lum32s positive : estimates(size)) {
                        scene.positive = positive;
                        fillScene(scene, random);
                        ASSERT_TRUE(agrees(scene, record)) << size.width << " x " << size.height;
                        ASSERT_TRUE(agrees(scene, record)) << "the second time";
                    }
                }
            });
        }
    }
}

// The last byte of every row, and the first, stands at an unreadable page; tables and norms cannot be written.
TYPE_TEST(HaarRecord, RowsStandAlone)
{
    Random random(134);
    for (const bool tiltedInit : {false, true}) {
        const Stage<TypeParam> stage = drawStage<TypeParam>(random, 5, {5, 4}, tiltedInit);
        const std::vector<Turn> turns = allTurned(stage.size(), tiltedInit ? Turn::Tilted : Turn::Upright);
        for (const int width : {1, 3, 4, 7, 8, 15, 16, 17, 33, 45}) {
            for (const Guard guard : {Guard::After, Guard::Before}) {
                const LumiSize size = {width, 3};
                const Record<TypeParam> record(stage, size, tiltedInit, {guard, 0});
                forEachForm([&]<class T, class V>(const Form<T, V>& form) {
                    if constexpr (std::is_same_v<V, TypeParam>) {
                        const Layout layout{.width = width, .height = 3, .guard = guard};
                        Scene<T, V> scene(form, stage, turns, layout, layout);
                        const bool fromTilted = form.isMixed && tiltedInit;
                        const Extent extent =
                            extentOf(scene.classifiers, size, fromTilted ? 1 : 0, [](const auto&) { return true; });
                        IsolatedRows<T> table({.width = extent.width, .height = extent.height, .guard = guard});
                        IsolatedRows<V> norms(layout);
                        IsolatedRows<Lum8u> mask(layout);
                        for (const Lum32s positive : {1000, width * 3 / 4 - 1, width * 3 / 8 - 1, -1}) {
                            scene.positive = positive;
                            fillScene(scene, random);
                            const Image<T>& image = (fromTilted ? scene.tilted : scene.upright).image();
                            table.forEach([&](T& entry, int x, int y, int) { entry = image.at(x, y); });
                            norms.forEach([&](V& norm, int x, int y, int) { norm = scene.norms.at(x, y); });
                            mask.forEach([&](Lum8u& byte, int x, int y, int) { byte = scene.mask.at(x, y); });
                            const Table<T> operand = tableAt<T>(table.pixels(), table.step(), extent);
                            Lum32s count = positive;
                            ASSERT_EQ(form.call(operand.origin, operand.step, operand.origin, operand.step,
                                                norms.pixels(), norms.step(), mask.pixels(), mask.step(), size, &count,
                                                scene.threshold, record.state(), 0),
                                      lumOk);
                            const Lum32s expectedCount = apply(scene.job(), scene.norms, scene.mask);
                            EXPECT_EQ(count, expectedCount);
                            for (int y = 0; y < 3; ++y) {
                                ASSERT_TRUE(
                                    sameElements(scene.mask.row(y), mask.row(y), static_cast<std::size_t>(width)))
                                    << "row " << y << " of width " << width;
                            }
                            EXPECT_TRUE(mask.slackIntact());
                            EXPECT_TRUE(table.slackIntact());
                            EXPECT_TRUE(norms.slackIntact());
                            EXPECT_TRUE(record.block().intact());
                        }
                    }
                });
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

// The window: the largest column of a top right corner and the largest row of a bottom right corner.
TYPE_TEST(HaarRecordQuick, WindowSize)
{
    Random random(135);
    for (int repetition = 0; repetition < 40; ++repetition) {
        for (const Turn turn : {Turn::Upright, Turn::Tilted, Turn::TiltedWithZeroFlag}) {
            for (const bool byInit : {true, false}) {
                const bool tiltedInit = byInit && turn == Turn::Tilted;
                const Stage<TypeParam> stage = drawStage<TypeParam>(random, 1 + repetition % 4, {30, 20}, tiltedInit);
                const Record<TypeParam> record(stage, {5, 5}, tiltedInit);
                if (turn != Turn::Upright && !tiltedInit) {
                    const std::vector<Lum8u> all(stage.size(), 1);
                    ASSERT_EQ(RecordExports<TypeParam>::tiltFeatures(all.data(), turn == Turn::Tilted, record.state()),
                              lumOk);
                }
                int width = 0, height = 0;
                for (const Classifier<TypeParam>& c : stage) {
                    for (const LumiRect& r : c.rects) {
                        width = std::max(width, r.x + r.width);
                        height = std::max(height, r.y + r.height + (turn == Turn::Tilted ? r.width : 0));
                    }
                }
                const std::vector<unsigned char> before = record.bytes();
                LumiSize size = {-1, -1};
                EXPECT_EQ(RecordExports<TypeParam>::windowSize(record.state(), &size), lumOk);
                EXPECT_EQ(size.width, width);
                EXPECT_EQ(size.height, height);
                EXPECT_EQ(record.bytes(), before);
            }
        }
    }
}

// The largest column and the largest row may be those of different rectangles.
TYPE_TEST(HaarRecordQuick, WindowSizeOfTwoRectangles)
{
    const Stage<TypeParam> stage = {{{{0, 0, 20, 1}, {3, 7, 2, 9}}, {1, 1}, 0, 0, 0}, {{{19, 2, 4, 3}}, {1}, 0, 0, 0}};
    const Record<TypeParam> record(stage, {5, 5});
    LumiSize size = {};
    EXPECT_EQ(RecordExports<TypeParam>::windowSize(record.state(), &size), lumOk);
    EXPECT_EQ(size.width, 23);
    EXPECT_EQ(size.height, 16);
}

TYPE_TEST(HaarRecordQuick, WindowSizeOfARecordWithoutRectangles)
{
    const std::vector<unsigned char> zeros(512, 0);
    LumiSize size = {-1, -1};
    EXPECT_EQ(RecordExports<TypeParam>::windowSize(reinterpret_cast<const LumiHaarStageRecord*>(zeros.data()), &size),
              lumOk);
    EXPECT_EQ(size.width, 0);
    EXPECT_EQ(size.height, 0);
}

// Mixed forms only read the record: it may stand in memory that cannot be written, and serves threads at once, each
// with its own mask.
TYPE_TEST(HaarRecord, MixedThreadsShareARecord)
{
    Random random(136);
    const Stage<TypeParam> stage = drawStage<TypeParam>(random, 9, {7, 7});
    const Record<TypeParam> record(stage, {61, 9}, false, {Guard::After, 3});
    const std::vector<Lum8u> mask = {1, 0, 0, 1, 1, 0, 1, 0, 0};
    std::vector<Turn> turns = allTurned(9, Turn::Upright);
    for (std::size_t i = 0; i < 9; ++i) {
        turns[i] = mask[i] != 0 ? Turn::Tilted : Turn::Upright;
    }
    ASSERT_EQ(RecordExports<TypeParam>::tiltFeatures(mask.data(), 1, record.state()), lumOk);
    record.block().makeReadOnly();
    forEachForm([&]<class T, class V>(const Form<T, V>& form) {
        if constexpr (std::is_same_v<V, TypeParam>) {
            if (!form.isMixed) {
                return;
            }
            const Layout layout{.width = 61, .height = 9};
            Scene<T, V> scene(form, stage, turns, layout, layout);
            fillScene(scene, random, Numbers::Ordinary, 10);
            Image<Lum8u> expected = scene.mask;
            const Lum32s expectedCount = apply(scene.job(), scene.norms, expected);
            constexpr std::size_t threadCount = 3;
            std::vector<Image<Lum8u>> masks(threadCount, scene.mask);
            std::array<Lum32s, threadCount> counts{};
            std::array<LumStatus, threadCount> statuses{};
            std::vector<std::thread> threads;
            for (std::size_t i = 0; i < threadCount; ++i) {
                threads.emplace_back([&, i] {
                    for (int repetition = 0; repetition < 4; ++repetition) {
                        statuses[i] = scene.call(record.state(), masks[i], counts[i]);
                    }
                });
            }
            for (std::thread& thread : threads) {
                thread.join();
            }
            for (std::size_t i = 0; i < threadCount; ++i) {
                EXPECT_EQ(statuses[i], lumOk);
                EXPECT_EQ(counts[i], expectedCount);
                EXPECT_TRUE(sameImage(expected, masks[i]));
            }
        }
    });
}

// Apply leaves the header alone: the window is the same and the record can still be turned.
TYPE_TEST(HaarRecordQuick, RecordIsAsGoodAsNewAfterApply)
{
    Random random(137);
    const Stage<TypeParam> stage = drawStage<TypeParam>(random, 4, {7, 7});
    const Record<TypeParam> record(stage, {20, 4});
    LumiSize before = {}, after = {};
    EXPECT_EQ(RecordExports<TypeParam>::windowSize(record.state(), &before), lumOk);
    const Layout layout{.width = 20, .height = 4};
    const auto applyAll = [&](const std::vector<Turn>& turns) {
        forEachForm([&]<class T, class V>(const Form<T, V>& form) {
            if constexpr (std::is_same_v<V, TypeParam>) {
                Scene<T, V> scene(form, stage, turns, layout, layout);
                fillScene(scene, random);
                EXPECT_TRUE(agrees(scene, record));
            }
        });
    };
    applyAll(allTurned(4, Turn::Upright));
    EXPECT_EQ(RecordExports<TypeParam>::windowSize(record.state(), &after), lumOk);
    EXPECT_EQ(before.width, after.width);
    EXPECT_EQ(before.height, after.height);
    const Lum8u all[] = {1, 1, 1, 1};
    EXPECT_EQ(RecordExports<TypeParam>::tiltFeatures(all, 0, record.state()), lumOk);
    applyAll(allTurned(4, Turn::TiltedWithZeroFlag));
}

}  // namespace
}  // namespace lumcv::test::haar
