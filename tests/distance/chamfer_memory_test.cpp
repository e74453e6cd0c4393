// What chamfer distances may touch: rows and weights against unreadable pages, the source as the destination, calls at
// once.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "distance/chamfer_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::distance {
namespace {

using Outputs = testing::Types<Lum8u, Lum16u, Lum32f>;
TYPE_SUITE(ChamferMemory, Outputs);

TYPE_TEST(ChamferMemory, RowsAlone)
{
    const auto& weights = weightsOf<TypeParam>();
    std::size_t number = 0;
    for (const LumiSize size : {LumiSize{1, 1},
                                {2, 5},
                                {5, 2},
                                {7, 4},
                                {15, 6},
                                {16, 3},
                                {17, 6},
                                {31, 5},
                                {33, 4},
                                {64, 5},
                                {70, 9},
                                {131, 4},
                                {20, 67},
                                {150, 40}}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (int i = 0; i < 16; ++i) {
                const Layout layout = layoutOf(size.width, size.height, 0, guard);
                IsolatedRows<Lum8u> source(layout);
                IsolatedRows<TypeParam> destination(layout);
                Image<Lum8u> copy(layout);
                draw(source, size.width, size.height, contentOf(static_cast<int>(number % 35)), number);
                draw(copy, contentOf(static_cast<int>(number % 35)), number);
                source.makeReadOnly();
                const auto& chosen = weights[number++ % weights.size()];
                EXPECT_EQ(transform<TypeParam>(source.pixels(), source.step(), destination.pixels(), destination.step(),
                                               size, chosen),
                          lumOk);
                const Image<TypeParam> expected = expectedDistances<TypeParam>(copy, chosen, layout);
                for (int y = 0; y < size.height; ++y) {
                    ASSERT_TRUE(sameElements(expected.row(y), destination.row(y), static_cast<std::size_t>(size.width)))
                        << "row " << y << ", " << chosen;
                }
                EXPECT_TRUE(destination.slackIntact()) << chosen;
            }
        }
    }
}

// The forms for one image, and the others with the source as the destination.
TEST(ChamferInPlaceQuick, SameResult)
{
    std::size_t number = 0;
    for (const Weights<Lum32s>& weights : integerWeights()) {
        for (const LumiSize size : {LumiSize{1, 1}, {3, 7}, {8, 8}, {19, 3}, {70, 6}}) {
            const Layout layout = layoutOf(size.width, size.height, static_cast<int>(number % 5),
                                           number % 2 == 0 ? Guard::After : Guard::Before);
            Image<Lum8u> image(layout);
            draw(image, contentOf(static_cast<int>(number % 35)), number);
            ++number;
            const Image<Lum8u> expected = expectedDistances<Lum8u>(image, weights, layout);
            Image<Lum8u> twice = image;
            const GuardedBlock metrics = weights.block();
            const auto inPlace =
                weights.maskSize == 3 ? lumiDistanceTransform_3x3_8u_C1IR : lumiDistanceTransform_5x5_8u_C1IR;
            EXPECT_EQ(inPlace(image.pixels(), image.step(), size, metrics.as<Lum32s>()), lumOk);
            EXPECT_TRUE(sameImage(expected, image)) << weights;
            EXPECT_TRUE(image.gapsIntact());
            EXPECT_EQ(transform<Lum8u>(twice.pixels(), twice.step(), twice.pixels(), twice.step(), size, weights),
                      lumOk);
            EXPECT_TRUE(sameImage(expected, twice)) << weights;
        }
    }
}

// Large enough for whatever is done differently with images beyond the caches.
TYPE_TEST(ChamferMemory, LargerThanTheCache)
{
    const auto& weights = weightsOf<TypeParam>();
    for (const int cacheBytes : {0, 1024}) {
        const ReportedCacheSize reported(0, cacheBytes);
        for (const std::size_t i : {std::size_t{1}, std::size_t{6}, std::size_t{22}}) {
            Image<Lum8u> source(layoutOf(301, 40));
            draw(source, Content::Sparse, i);
            expectDistances<TypeParam>(source, weights[i], layoutOf(301, 40));
        }
    }
}

TYPE_TEST(ChamferMemory, ThreadsShareASource)
{
    const auto& weights = weightsOf<TypeParam>();
    Image<Lum8u> source(layoutOf(133, 29));
    draw(source, Content::Sparse, 8);
    std::vector<Image<TypeParam>> results(weights.size(), Image<TypeParam>(layoutOf(133, 29)));
    std::vector<LumStatus> statuses(weights.size(), lumErrGeneric);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < 2; ++thread) {
        threads.emplace_back([&, thread] {
            for (std::size_t i = thread; i < results.size(); i += 2) {
                statuses[i] = transform<TypeParam>(source.pixels(), source.step(), results[i].pixels(),
                                                   results[i].step(), {133, 29}, weights[i]);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t i = 0; i < results.size(); ++i) {
        EXPECT_EQ(statuses[i], lumOk);
        EXPECT_TRUE(sameImage(expectedDistances<TypeParam>(source, weights[i], layoutOf(133, 29)), results[i]))
            << weights[i];
    }
}

}  // namespace
}  // namespace lumcv::test::distance
