// What a background model may touch: rows against unreadable pages, blocks at any address, parts of the ROI; threads.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "motion/background_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"

namespace lumcv::test::motion {
namespace {

constexpr LumFGMMModel kLively = {12, 3, 15, 4, 75, 10, 0.8f, 6, 0.05f, 200, 1, 0.5f};

TEST(BackgroundMemory, RowsAlone)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{1, 1},
                                {2, 3},
                                {3, 2},
                                {4, 2},
                                {5, 3},
                                {7, 2},
                                {8, 2},
                                {9, 2},
                                {16, 2},
                                {17, 3},
                                {31, 2},
                                {32, 2},
                                {33, 2},
                                {65, 2}}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            Surroundings where;
            where.guard = guard;
            Watched watched(size, 3, kLively, where);
            Scene scene(static_cast<std::uint64_t>(++number));
            Image<Lum8u> source(watched.layout(3));
            for (int i = 0; i < 6; ++i) {
                scene.draw(source, 3);
                ASSERT_TRUE(watched.frame(source, nullptr, -1));
            }
            // one more frame whose rows stand alone
            IsolatedRows<Lum8u> sourceRows(watched.layout(3));
            sourceRows.forEach([&](Lum8u& element, int x, int y, int c) { element = source.at(x, y, c); });
            sourceRows.makeReadOnly();
            IsolatedRows<Lum8u> classes(watched.layout(1));
            ASSERT_EQ(lumiFGMMForeground_8u_C3R(sourceRows.pixels(), sourceRows.step(), classes.pixels(),
                                                classes.step(), size, watched.state(), nullptr, 0.0),
                      lumOk);
            Mixture mixture = watched.mixture();
            Image<Lum8u> expected(watched.layout(1));
            mixture.frame(source, expected, nullptr, 0.0);
            IsolatedRows<Lum8u> rendered(watched.layout(3));
            ASSERT_EQ(lumiFGMMBackground_8u_C3R(rendered.pixels(), rendered.step(), size, watched.state()), lumOk);
            Image<Lum8u> background(watched.layout(3));
            mixture.render(background);
            for (int y = 0; y < size.height; ++y) {
                const auto width = static_cast<std::size_t>(size.width);
                ASSERT_TRUE(sameElements(expected.row(y), classes.row(y), width)) << size.width;
                ASSERT_TRUE(sameElements(background.row(y), rendered.row(y), 3 * width)) << size.width;
            }
            EXPECT_TRUE(classes.slackIntact());
            EXPECT_TRUE(rendered.slackIntact());
            EXPECT_TRUE(watched.block().intact());
        }
    }
}

TEST(BackgroundMemory, BlockAtAnyAddress)
{
    for (const Guard guard : {Guard::After, Guard::Before}) {
        for (std::size_t distance = 0; distance <= 64; ++distance) {
            Surroundings where;
            where.guard = guard;
            where.distance = distance;
            Watched watched({11, 3}, 2 + static_cast<int>(distance % 4), kLively, where);
            Scene scene(distance);
            Image<Lum8u> source(watched.layout(3));
            for (int i = 0; i < 5; ++i) {
                scene.draw(source, 3);
                ASSERT_TRUE(watched.frame(source, nullptr, -1)) << distance;
            }
            ASSERT_TRUE(watched.background()) << distance;
        }
    }
}

TEST(BackgroundMemory, InitForgetsWhatTheBlockHeld)
{
    const LumiSize size = {19, 4};
    std::vector<Lum8u> classes[3];
    std::vector<Lum8u> block(stateBytes(19, 4, 3));
    for (int i = 0; i < 3; ++i) {
        if (i != 2) {
            std::fill(block.begin(), block.end(), i == 0 ? Lum8u{0} : Lum8u{255});
        }
        auto* const state = reinterpret_cast<LumFGMMState*>(block.data());
        EXPECT_EQ(lumiFGMMInit_8u_C3R(size, 3, &kLively, state), lumOk);
        Scene scene(5);
        Image<Lum8u> source(layoutOf(size, 3));
        for (int frame = 0; frame < 8; ++frame) {
            scene.draw(source, 4);
            Image<Lum8u> result(layoutOf(size, 1));
            EXPECT_EQ(lumiFGMMForeground_8u_C3R(source.pixels(), source.step(), result.pixels(), result.step(), size,
                                                state, nullptr, -1),
                      lumOk);
            classes[i].insert(classes[i].end(), result.bytes(), result.bytes() + result.byteCount());
        }
    }
    EXPECT_EQ(classes[0], classes[1]);
    EXPECT_EQ(classes[0], classes[2]);
}

// The background reads the state and writes nothing to it.
TEST(BackgroundMemory, RenderingLeavesTheStateAlone)
{
    Watched watched({21, 5}, 3, kLively);
    Scene scene(2);
    Image<Lum8u> source(watched.layout(3));
    for (int i = 0; i < 5; ++i) {
        scene.draw(source, 3);
        ASSERT_TRUE(watched.frame(source, nullptr, -1));
    }
    watched.block().makeReadOnly();
    EXPECT_TRUE(watched.background());
}

// A smaller ROI is the upper left part of the model's: what lies beside and below is as before.
TEST(BackgroundMemory, PartOfTheRoi)
{
    const LumiSize whole = {30, 9};
    const LumiSize part = {13, 4};
    Watched watched(whole, 3, kLively);
    Scene scene(8);
    Image<Lum8u> source(watched.layout(3));
    for (int i = 0; i < 6; ++i) {
        scene.draw(source, 3);
        ASSERT_TRUE(watched.frame(source, nullptr, -1));
    }
    scene.draw(source, 3);
    Image<Lum8u> classes(watched.layout(1));
    classes.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 77; });
    EXPECT_EQ(lumiFGMMForeground_8u_C3R(source.pixels(), source.step(), classes.pixels(), classes.step(), part,
                                        watched.state(), nullptr, 0.2),
              lumOk);
    Mixture mixture = watched.mixture();
    Image<Lum8u> expected(watched.layout(1));
    mixture.frame(source, expected, nullptr, 0.2);
    Image<Lum8u> rendered(watched.layout(3));
    EXPECT_EQ(lumiFGMMBackground_8u_C3R(rendered.pixels(), rendered.step(), whole, watched.state()), lumOk);
    Image<Lum8u> inPart(watched.layout(3));
    mixture.render(inPart);
    Image<Lum8u> beside(watched.layout(3));
    watched.mixture().render(beside);
    for (int y = 0; y < whole.height; ++y) {
        for (int x = 0; x < whole.width; ++x) {
            const bool isPart = x < part.width && y < part.height;
            EXPECT_EQ(classes.at(x, y), isPart ? expected.at(x, y) : 77) << x << ", " << y;
            for (int c = 0; c < 3; ++c) {
                EXPECT_EQ(rendered.at(x, y, c), (isPart ? inPart : beside).at(x, y, c)) << x << ", " << y;
            }
        }
    }
    rendered.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 77; });
    EXPECT_EQ(lumiFGMMBackground_8u_C3R(rendered.pixels(), rendered.step(), part, watched.state()), lumOk);
    rendered.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int c) {
        EXPECT_EQ(element, x < part.width && y < part.height ? inPart.at(x, y, c) : Lum8u{77});
    });
}

TEST(BackgroundMemory, LargerThanTheCache)
{
    for (const int cacheBytes : {0, 256}) {
        const ReportedCacheSize reported(0, cacheBytes);
        Watched watched({133, 20}, 3, kLively);
        Scene scene(8);
        Image<Lum8u> source(watched.layout(3));
        for (int i = 0; i < 5; ++i) {
            scene.draw(source, 3);
            EXPECT_TRUE(watched.frame(source, nullptr, -1));
            EXPECT_TRUE(watched.background());
        }
    }
}

TEST(BackgroundMemory, ThreadsWithAStateEach)
{
    Image<Lum8u> source(layoutOf({40, 11}, 3));
    Scene(8).draw(source, 3);
    Watched watched[2] = {Watched({40, 11}, 3, kLively), Watched({40, 11}, 3, kLively)};
    testing::AssertionResult results[2] = {testing::AssertionSuccess(), testing::AssertionSuccess()};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&, i] {
            for (int frame = 0; frame < 5 && results[i]; ++frame) {
                results[i] = watched[i].frame(source, nullptr, i == 0 ? -1 : 0.3);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(results[0]);
    EXPECT_TRUE(results[1]);
    // the rendering of one state by two threads only reads it
    std::vector<std::thread> renderers;
    for (int i = 0; i < 2; ++i) {
        renderers.emplace_back([&, i] { results[i] = watched[0].background(); });
    }
    for (std::thread& thread : renderers) {
        thread.join();
    }
    EXPECT_TRUE(results[0]);
    EXPECT_TRUE(results[1]);
}

}  // namespace
}  // namespace lumcv::test::motion
