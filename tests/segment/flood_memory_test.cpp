// What a flood fill may touch: rows against unreadable pages, scratch of any content, and calls at once.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "segment/flood_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::flood {
namespace {

template <class T, int channels>
Image<T> drawImage(Layout layout, int percent, Random& random)
{
    layout.channels = channels;
    Image<T> image(layout);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const bool isWay = random.between(1, 100) <= percent;
            for (int c = 0; c < channels; ++c) {
                image.at(x, y, c) = static_cast<T>(isWay ? 40 + c : 47);
            }
        }
    }
    return image;
}

template <class T, int channels>
Order<T, channels> orderOf(Rule rule, bool eight, LumiPoint seed)
{
    Order<T, channels> order;
    order.rule = rule;
    order.eight = eight;
    order.seed = seed;
    order.newVal = same<T, channels>(99);
    order.minDelta = same<T, channels>(1);
    order.maxDelta = same<T, channels>(1);
    return order;
}

template <class T, int channels>
LumStatus call(const Order<T, channels>& order, T* pImage, int step, LumiSize size, LumiConnectedComp& region,
               Lum8u* scratch)
{
    return flood::call<T, channels>(order.rule, order.eight, pImage, step, size, order.seed,
                                    argumentOf<T, channels>(order.newVal), argumentOf<T, channels>(order.minDelta),
                                    argumentOf<T, channels>(order.maxDelta), &region, scratch);
}

TYPE_SUITE(FloodMemory, AllKinds, KindName);

// Each row stands alone before or behind an unreadable page.
TYPE_TEST(FloodMemory, RowsAlone)
{
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    Random random(21);
    for (const int width : {1, 2, 15, 16, 17, 31, 33, 64, 65, 100, 130}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (const Rule rule : {Rule::Plain, Rule::Range, Rule::Grad}) {
                for (const bool eight : {false, true}) {
                    if (!hasRule<T, channels>(rule)) {
                        continue;
                    }
                    const LumiSize size = {width, 5};
                    const Layout layout = {.width = width, .height = 5, .channels = channels, .guard = guard};
                    const Image<T> before = drawImage<T, channels>(layout, random.oneIn(2) ? 100 : 90, random);
                    const auto order = orderOf<T, channels>(rule, eight, {width / 2, 3});
                    IsolatedRows<T> rows(layout);
                    for (int y = 0; y < size.height; ++y) {
                        std::copy_n(before.row(y), width * channels, rows.row(y));
                    }
                    const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes(rule, width, 5)), guard);
                    LumiConnectedComp region;
                    ASSERT_EQ((call<T, channels>(order, rows.pixels(), rows.step(), size, region, scratch.data())),
                              lumOk);
                    Image<T> expected = before;
                    ASSERT_TRUE((fill<T, channels>(expected, order).has_value()));
                    for (int y = 0; y < size.height; ++y) {
                        ASSERT_TRUE(
                            sameElements(expected.row(y), rows.row(y), static_cast<std::size_t>(width * channels)))
                            << "row " << y << ", width " << width << ", " << order;
                    }
                    EXPECT_TRUE(rows.slackIntact());
                }
            }
        }
    }
}

TYPE_TEST(FloodMemory, ScratchAtAnyAddressAndOfAnyContent)
{
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    Random random(22);
    const LumiSize size = {37, 9};
    for (const Rule rule : {Rule::Plain, Rule::Range, Rule::Grad}) {
        for (std::size_t distance = 0; distance < 72 && hasRule<T, channels>(rule); ++distance) {
            const Image<T> before = drawImage<T, channels>({.width = size.width, .height = size.height}, 70, random);
            const auto order = orderOf<T, channels>(rule, distance % 2 == 0, {static_cast<int>(distance) % 37, 4});
            const auto bytes = static_cast<std::size_t>(scratchBytes(rule, size.width, size.height));
            const PlacedBlock scratch(bytes, distance % 3 == 0 ? Guard::After : Guard::Before, distance);
            Image<T> expected = before;
            (void)fill<T, channels>(expected, order);
            LumiConnectedComp regions[2] = {};
            for (int i = 0; i < 2; ++i) {
                std::fill_n(scratch.data(), scratch.size(), static_cast<Lum8u>(i == 0 ? 255 : 1));
                Image<T> actual = before;
                ASSERT_EQ((call<T, channels>(order, actual.pixels(), actual.step(), size, regions[i], scratch.data())),
                          lumOk);
                ASSERT_TRUE(sameImage(expected, actual)) << "distance " << distance << ", " << order;
            }
            EXPECT_TRUE(scratch.intact());
            EXPECT_EQ(regions[0].area, regions[1].area);
        }
    }
}

// Long spans: no odd number of pixels, no store beyond the span.
TYPE_TEST(FloodMemory, LongRows)
{
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    Random random(23);
    for (const int width : {255, 256, 257, 1100}) {
        for (int i = 0; i < 12; ++i) {
            const Layout layout = {.width = width,
                                   .height = 4,
                                   .channels = channels,
                                   .gap = i % 3 * static_cast<int>(sizeof(T)),
                                   .guard = i % 2 == 0 ? Guard::After : Guard::Before,
                                   .offset = i % 5};
            Image<T> image = drawImage<T, channels>(layout, 100, random);
            for (int wall = 0; wall < i; ++wall) {
                image.at(static_cast<int>(random.between(0, width - 1)), static_cast<int>(random.between(0, 3)),
                         wall % channels) = static_cast<T>(90);
            }
            for (const Rule rule : {Rule::Plain, Rule::Range, Rule::Grad}) {
                if (hasRule<T, channels>(rule)) {
                    const LumiPoint seed = {static_cast<int>(random.between(0, width - 1)), i % 4};
                    expectFill<T, channels>(image, orderOf<T, channels>(rule, i % 2 == 0, seed));
                }
            }
        }
    }
}

// Whether the image is larger than the cache or not: non-temporal stores give the same bytes.
TEST(FloodMemoryQuick, AnyCacheSize)
{
    Random random(24);
    const Image<Lum8u> image = drawImage<Lum8u, 1>({.width = 301, .height = 60}, 97, random);
    const Image<Lum32f> colours = drawImage<Lum32f, 3>({.width = 301, .height = 60}, 97, random);
    for (const int cacheBytes : {-1, 0, 1024, 1 << 30}) {
        const ReportedCacheSize reported(cacheBytes < 0 ? -1 : 0, cacheBytes);
        for (const Rule rule : {Rule::Plain, Rule::Range, Rule::Grad}) {
            expectFill<Lum8u, 1>(image, orderOf<Lum8u, 1>(rule, true, {150, 30}));
            expectFill<Lum32f, 3>(colours, orderOf<Lum32f, 3>(rule, true, {150, 30}));
        }
    }
}

TEST(FloodMemoryQuick, ThreadsWithAnImageEach)
{
    Random random(25);
    const Image<Lum8u> before = drawImage<Lum8u, 1>({.width = 100, .height = 80}, 70, random);
    const LumiSize size = {100, 80};
    for (const Rule rule : {Rule::Plain, Rule::Range, Rule::Grad}) {
        const auto order = orderOf<Lum8u, 1>(rule, true, {50, 40});
        Image<Lum8u> expected = before;
        (void)fill<Lum8u, 1>(expected, order);
        Image<Lum8u> images[2] = {before, before};
        LumStatus statuses[2] = {lumErrGeneric, lumErrGeneric};
        std::vector<std::thread> threads;
        for (int i = 0; i < 2; ++i) {
            threads.emplace_back([&, i] {
                const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes(rule, 100, 80)));
                LumiConnectedComp region;
                statuses[i] = call<Lum8u, 1>(order, images[i].pixels(), images[i].step(), size, region, scratch.data());
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(statuses[i], lumOk);
            EXPECT_TRUE(sameImage(expected, images[i]));
        }
    }
}

}  // namespace
}  // namespace lumcv::test::flood
