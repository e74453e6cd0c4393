// What the segmentations may touch: rows against unreadable pages, blocks of any content at any address; threads.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "segment/watershed_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"

namespace lumcv::test::watershed {
namespace {

template <class Form>
struct SegmentationMemory : testing::Test
{
    /// The calls of a form: flags with the norms that go with them.
    static std::vector<Call> calls()
    {
        std::vector<Call> calls;
        const bool isGradient = std::is_base_of_v<Gradient8uC1, Form>;
        const bool isFloat = std::is_same_v<typename Form::Height, Lum32f>;
        if (!isFloat) {
            for (const unsigned norm : {0u, 1u}) {
                calls.push_back({norm, kByLevel | (norm == 0 ? 64 : 128)});
            }
        }
        if (!isGradient) {
            for (const unsigned norm : {0u, 1u, 2u, 3u}) {
                calls.push_back({norm, kByCost | (norm == 2 ? 64 : 0)});
            }
        }
        return calls;
    }
};
using Forms = testing::Types<Gradient8uC1, Gradient8uC3, Watershed8u, Watershed8u16u, Watershed32f16u>;
TYPED_TEST_SUITE(SegmentationMemory, Forms);

TYPED_TEST(SegmentationMemory, RowsAlone)
{
    using Height = typename TypeParam::Height;
    using Label = typename TypeParam::Label;
    int number = 0;
    for (const LumiSize size :
         {LumiSize{1, 1}, {1, 4}, {2, 5}, {5, 1}, {5, 2}, {7, 4}, {16, 3}, {17, 6}, {32, 9}, {33, 4}}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (const Call& call : TestFixture::calls()) {
                Layout layout = layoutOf(size.width, size.height, TypeParam::channels);
                layout.guard = guard;
                Image<Height> source(layout);
                draw(source, static_cast<Terrain>(number % kTerrains), 3);
                layout.channels = 1;
                Image<Label> marker(layout);
                draw(marker, static_cast<Seeding>(number++ % kSeedings), 3);
                layout.channels = TypeParam::channels;
                IsolatedRows<Height> sourceRows(layout);
                sourceRows.forEach([&](Height& height, int x, int y, int c) { height = source.at(x, y, c); });
                sourceRows.makeReadOnly();
                layout.channels = 1;
                IsolatedRows<Label> markerRows(layout);
                markerRows.forEach([&](Label& label, int x, int y, int) { label = marker.at(x, y); });
                const PlacedBlock block(static_cast<std::size_t>(TypeParam::bytes(size.width, size.height)), guard);
                ASSERT_EQ(TypeParam::segment(sourceRows.pixels(), sourceRows.step(), markerRows.pixels(),
                                             markerRows.step(), size, call.norm, call.flag, block.data()),
                          lumOk);
                TypeParam::simulate(source, marker, call.norm, call.flag);
                for (int y = 0; y < size.height; ++y) {
                    ASSERT_TRUE(sameElements(marker.row(y), markerRows.row(y), static_cast<std::size_t>(size.width)))
                        << "row " << y << ", " << call << ", " << size.width << " x " << size.height;
                }
                EXPECT_TRUE(markerRows.slackIntact());
                EXPECT_TRUE(block.intact());
            }
        }
    }
}

// The block holds anything before, and stands at any address, with either end against an unreadable page.
TYPED_TEST(SegmentationMemory, AnyBlock)
{
    using Height = typename TypeParam::Height;
    using Label = typename TypeParam::Label;
    Image<Height> source(layoutOf(35, 13, TypeParam::channels));
    draw(source, Terrain::Coarse, 5);
    Image<Label> marker(layoutOf(35, 13));
    draw(marker, Seeding::SparseBarriers, 6);
    for (Call call : TestFixture::calls()) {
        Image<Label> expected = marker;
        TypeParam::simulate(source, expected, call.norm, call.flag);
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (std::size_t distance = 0; distance <= 64; ++distance) {
                const PlacedBlock block(static_cast<std::size_t>(TypeParam::bytes(35, 13)), guard, distance);
                const unsigned char contents[] = {0, 255, 127, 1};
                std::fill_n(block.data(), block.size(), contents[distance % 4]);
                Image<Label> result = marker;
                EXPECT_EQ(TypeParam::segment(source.pixels(), source.step(), result.pixels(), result.step(), {35, 13},
                                             call.norm, call.flag, block.data()),
                          lumOk);
                ASSERT_TRUE(sameImage(expected, result)) << call << ", distance " << distance;
                ASSERT_TRUE(block.intact());
            }
        }
    }
}

TYPED_TEST(SegmentationMemory, LargerThanTheCache)
{
    for (const int cacheBytes : {0, 256}) {
        const ReportedCacheSize reported(0, cacheBytes);
        Image<typename TypeParam::Height> source(layoutOf(131, 40, TypeParam::channels));
        draw(source, Terrain::Waves, 5);
        Image<typename TypeParam::Label> marker(layoutOf(131, 40));
        draw(marker, Seeding::Sparse, 6);
        for (const Call& call : TestFixture::calls()) {
            expectSegments<TypeParam>(source, marker, call);
        }
    }
}

TYPED_TEST(SegmentationMemory, ThreadsShareASource)
{
    using Label = typename TypeParam::Label;
    Image<typename TypeParam::Height> source(layoutOf(65, 29, TypeParam::channels));
    draw(source, Terrain::Noise, 8);
    Image<Label> marker(layoutOf(65, 29));
    draw(marker, Seeding::Sparse, 8);
    for (const Call& call : TestFixture::calls()) {
        Image<Label> expected = marker;
        TypeParam::simulate(source, expected, call.norm, call.flag);
        Image<Label> results[2] = {marker, marker};
        std::vector<std::thread> threads;
        for (Image<Label>& result : results) {
            threads.emplace_back([&] { segment<TypeParam>(source, result, call); });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_TRUE(sameImage(expected, results[0]));
        EXPECT_TRUE(sameImage(expected, results[1]));
    }
}

}  // namespace
}  // namespace lumcv::test::watershed
