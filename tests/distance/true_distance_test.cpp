// The exact distance compared with its envelope written out plainly and with a search over all zeros; its checks.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include "distance/contents.hpp"
#include "distance/true_distance_reference.hpp"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"
#include "support/placed_block.hpp"
#include "support/size_query.hpp"
#include "support/status_order.hpp"
#include "support/sweep.hpp"

namespace lumcv::test::distance {
namespace {

std::size_t scratchBytes(int width, int height)
{
    return static_cast<std::size_t>((std::max(width, height) + 3) / 4 * 4) * 52 + 84;
}

/// Images to and from the library, with scratch of the queried size.
Image<Lum32f> measure(const Image<Lum8u>& source, const Layout& layout, std::size_t scratchDistance = 0,
                      Guard guard = Guard::After)
{
    const LumiSize size = {source.width(), source.height()};
    const PlacedBlock scratch(scratchBytes(size.width, size.height), guard, scratchDistance);
    Image<Lum32f> result(layout);
    EXPECT_EQ(lumiTrueDistanceTransform_8u32f_C1R(source.pixels(), source.step(), result.pixels(), result.step(), size,
                                                  scratch.data()),
              lumOk);
    EXPECT_TRUE(scratch.intact());
    EXPECT_TRUE(result.gapsIntact());
    return result;
}

void expectGeometry(const Geometry& geometry, int contents)
{
    Image<Lum8u> source(geometry.layout<Lum8u>(0));
    for (int i = 0; i < contents; ++i) {
        const int number = geometry.number * contents + i;
        draw(source, contentOf(number % 31), static_cast<std::uint64_t>(number));
        const Layout layout = geometry.layout<Lum32f>(1);
        EXPECT_TRUE(sameImage(trueDistances(source, layout),
                              measure(source, layout, static_cast<std::size_t>(number % 67), layout.guard)))
            << "content " << number % 31;
    }
    EXPECT_TRUE(source.gapsIntact());
}

TEST(TrueDistanceQuick, Sizes)
{
    forEachGeometry(Sweep::Quick, [](const Geometry& geometry) { expectGeometry(geometry, 3); });
}

TEST(TrueDistance, Sizes)
{
    forEachGeometry(Sweep::Full, [](const Geometry& geometry) { expectGeometry(geometry, 2); });
}

TEST(TrueDistance, HigherImages)
{
    Geometry geometry;
    for (const int height : {4, 6, 7, 8, 9, 15, 16, 17, 33, 40}) {
        for (const int width : {1, 2, 3, 4, 5, 8, 15, 16, 17, 31, 33, 64, 70}) {
            geometry.width = width;
            geometry.height = height;
            geometry.placement = geometry.number % 3;
            SCOPED_TRACE(geometry);
            expectGeometry(geometry, 5);
            ASSERT_FALSE(testing::Test::HasFailure());
            ++geometry.number;
        }
    }
}

// The nearest zero of all, the root correctly rounded.
TEST(TrueDistanceQuick, NearestZero)
{
    for (int number = 0; number < static_cast<int>(Content::Count); ++number) {
        Image<Lum8u> source(layoutOf(43, 31));
        draw(source, contentOf(number), 7);
        const Image<Lum32f> result = measure(source, layoutOf(43, 31));
        for (int y = 0; y < 31; ++y) {
            for (int x = 0; x < 43; ++x) {
                Lum32f nearest = std::numeric_limits<Lum32f>::max();
                for (int j = 0; j < 31; ++j) {
                    for (int i = 0; i < 43; ++i) {
                        const auto squared = static_cast<Lum32f>((x - i) * (x - i) + (y - j) * (y - j));
                        nearest = source.at(i, j) == 0 ? std::min(nearest, squared) : nearest;
                    }
                }
                ASSERT_EQ(result.at(x, y), std::sqrt(nearest)) << "x " << x << ", y " << y << ", content " << number;
            }
        }
    }
}

TEST(TrueDistanceQuick, WithoutZero)
{
    for (const LumiSize size : {LumiSize{1, 1}, {1, 9}, {9, 1}, {33, 5}, {130, 3}}) {
        Image<Lum8u> source(layoutOf(size.width, size.height));
        draw(source, Content::NoZero, 1);
        Image<Lum32f> result = measure(source, layoutOf(size.width, size.height));
        result.forEach(Area::Roi, [](Lum32f& d, int, int, int) { EXPECT_EQ(d, 18446742974197923840.0f); });
    }
}

TEST(TrueDistanceQuick, StepsAroundAZero)
{
    Image<Lum8u> source(layoutOf(9, 7));
    draw(source, Content::NoZero, 1);
    source.at(4, 3) = 0;
    const Image<Lum32f> result = measure(source, layoutOf(9, 7));
    EXPECT_TRUE(sameElement(result.at(4, 3), 0.0f));
    for (const int step : {-1, 1}) {
        EXPECT_EQ(result.at(4 + step, 3), 1.0f);
        EXPECT_EQ(result.at(4, 3 + step), 1.0f);
        EXPECT_EQ(result.at(4 + step, 3 + step), 1.41421356f);
        EXPECT_EQ(result.at(4 - step, 3 + step), 1.41421356f);
    }
}

// Columns without a zero beside a row's only zero.
TEST(TrueDistanceQuick, OneZeroInARow)
{
    for (const int zero : {0, 17, 39}) {
        Image<Lum8u> source(layoutOf(40, 1));
        draw(source, Content::NoZero, 1);
        source.at(zero, 0) = 0;
        const Image<Lum32f> result = measure(source, layoutOf(40, 1));
        for (int x = 0; x < 40; ++x) {
            EXPECT_EQ(result.at(x, 0), static_cast<Lum32f>(std::abs(x - zero)));
        }
    }
}

// Squares above 2^24 are rounded, and above 2^31 they are still no negative numbers.
TEST(TrueDistance, LongColumn)
{
    Image<Lum8u> source(layoutOf(1, 70000));
    draw(source, Content::NoZero, 1);
    source.at(0, 2000) = 0;
    const Image<Lum32f> result = measure(source, layoutOf(1, 70000));
    for (int y = 0; y < 70000; ++y) {
        ASSERT_EQ(result.at(0, y), static_cast<Lum32f>(std::abs(y - 2000))) << "y " << y;
    }
}

// Rounded sums decide which parabola wins.
TEST(TrueDistance, LongRows)
{
    for (int number = 0; number < 4; ++number) {
        Image<Lum8u> source(layoutOf(9000, 3));
        draw(source, Content::NoZero, 1);
        Random random(static_cast<std::uint64_t>(number));
        for (int i = 0; i < 3 + 40 * number; ++i) {
            source.at(static_cast<int>(random.between(0, 8999)), static_cast<int>(random.between(0, 2))) = 0;
        }
        EXPECT_TRUE(sameImage(trueDistances(source, layoutOf(9000, 3)), measure(source, layoutOf(9000, 3))));
    }
}

TEST(TrueDistance, HighImages)
{
    Image<Lum8u> source(layoutOf(5, 6001));
    draw(source, Content::NoZero, 1);
    source.at(1, 20) = 0;
    source.at(3, 6000) = 0;
    source.at(4, 5100) = 0;
    Image<Lum32f> expected(layoutOf(5, 6001));
    // what a column of the image is far from its zeros, without a search of 6001 rows for each pixel
    for (int y = 0; y < 6001; ++y) {
        constexpr Lum32f most = std::numeric_limits<Lum32f>::max();
        std::vector<Lum32f> f = {most, squareOf(y - 20), most, squareOf(6000 - y), squareOf(y - 5100)};
        replaceByEnvelope(f);
        for (int x = 0; x < 5; ++x) {
            expected.at(x, y) = std::sqrt(f[static_cast<std::size_t>(x)]);
        }
    }
    EXPECT_TRUE(sameImage(expected, measure(source, layoutOf(5, 6001))));
}

TEST(TrueDistanceMemory, RowsAlone)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{1, 1}, {2, 5}, {5, 2}, {7, 4}, {16, 3}, {17, 6}, {33, 4}, {64, 5}, {70, 9}}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (int i = 0; i < 4; ++i) {
                const Layout layout = layoutOf(size.width, size.height, 0, guard);
                IsolatedRows<Lum8u> source(layout);
                IsolatedRows<Lum32f> destination(layout);
                Image<Lum8u> copy(layout);
                draw(source, size.width, size.height, contentOf(number), 5);
                draw(copy, contentOf(number), 5);
                source.makeReadOnly();
                ++number;
                const PlacedBlock scratch(scratchBytes(size.width, size.height), guard);
                EXPECT_EQ(lumiTrueDistanceTransform_8u32f_C1R(source.pixels(), source.step(), destination.pixels(),
                                                              destination.step(), size, scratch.data()),
                          lumOk);
                const Image<Lum32f> expected = trueDistances(copy, layout);
                for (int y = 0; y < size.height; ++y) {
                    ASSERT_TRUE(
                        sameElements(expected.row(y), destination.row(y), static_cast<std::size_t>(size.width)));
                }
                EXPECT_TRUE(destination.slackIntact());
            }
        }
    }
}

TEST(TrueDistanceMemory, SameBytesWithAnyScratchAndDestination)
{
    for (const LumiSize size : {LumiSize{40, 9}, {9, 40}}) {
        Image<Lum8u> source(layoutOf(size.width, size.height));
        draw(source, Content::Sparse, 3);
        const Image<Lum32f> expected = trueDistances(source, layoutOf(size.width, size.height));
        Image<Lum32f> result(layoutOf(size.width, size.height));
        const PlacedBlock scratch(scratchBytes(size.width, size.height));
        for (const Lum8u content : {Lum8u{0}, Lum8u{255}, Lum8u{127}}) {
            std::fill_n(scratch.data(), scratch.size(), content);
            std::fill_n(result.bytes(), result.byteCount(), content);
            EXPECT_EQ(lumiTrueDistanceTransform_8u32f_C1R(source.pixels(), source.step(), result.pixels(),
                                                          result.step(), size, scratch.data()),
                      lumOk);
            EXPECT_TRUE(sameImage(expected, result));
        }
    }
}

TEST(TrueDistanceMemory, LargerThanTheCache)
{
    for (const int cacheBytes : {0, 1024}) {
        const ReportedCacheSize reported(0, cacheBytes);
        Image<Lum8u> source(layoutOf(301, 40));
        draw(source, Content::Sparse, 3);
        EXPECT_TRUE(sameImage(trueDistances(source, layoutOf(301, 40)), measure(source, layoutOf(301, 40))));
    }
}

TEST(TrueDistanceMemory, ThreadsShareASource)
{
    Image<Lum8u> source(layoutOf(133, 29));
    draw(source, Content::Sparse, 8);
    const Image<Lum32f> expected = trueDistances(source, layoutOf(133, 29));
    Image<Lum32f> results[2] = {Image<Lum32f>(layoutOf(133, 29)), Image<Lum32f>(layoutOf(133, 29))};
    std::vector<std::thread> threads;
    for (Image<Lum32f>& result : results) {
        threads.emplace_back([&] { result = measure(source, layoutOf(133, 29)); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(sameImage(expected, results[0]));
    EXPECT_TRUE(sameImage(expected, results[1]));
}

TEST(TrueDistanceSizeQuick, Formula)
{
    for (const Lum32s width : {1, 2, 3, 4, 5, 8, 9, 63, 64, 65, 640, 1920, 1000001, 41297760}) {
        for (const Lum32s height : {1, 2, 3, 4, 5, 8, 9, 63, 64, 65, 480, 1080, 1000003, 41297760}) {
            Lum32s bytes = -1;
            EXPECT_EQ(lumiTrueDistanceTransformGetBufferSize_8u32f_C1R({width, height}, &bytes), lumOk);
            EXPECT_EQ(static_cast<std::size_t>(bytes), scratchBytes(width, height)) << width << " x " << height;
        }
    }
    Lum32s bytes = -1;
    EXPECT_EQ(lumiTrueDistanceTransformGetBufferSize_8u32f_C1R({640, 481}, &bytes), lumOk);
    EXPECT_EQ(bytes, 33364);
    EXPECT_EQ(lumiTrueDistanceTransformGetBufferSize_8u32f_C1R({1, 5}, &bytes), lumOk);
    EXPECT_EQ(bytes, 500);
    for (const LumiSize size : {LumiSize{41297761, 1}, {1, 41297761}, {1 << 30, 5}, {3, 0x7fffffff}}) {
        bytes = -1;
        EXPECT_EQ(lumiTrueDistanceTransformGetBufferSize_8u32f_C1R(size, &bytes), lumErrSizeTooLarge) << size.width;
        EXPECT_EQ(bytes, -1);
    }
}

TEST(TrueDistanceSizeQuick, ChecksInOrder)
{
    expectSizeQueryChecksInOrder<lumiTrueDistanceTransformGetBufferSize_8u32f_C1R>();
}

struct Args
{
    const Image<Lum32f>* destination;
    const Lum8u* pSrc;
    Lum32s srcStep;
    Lum32f* pDst;
    Lum32s dstStep;
    LumiSize roiSize;
    Lum8u* pBuffer;

    LumStatus call() const
    {
        return lumiTrueDistanceTransform_8u32f_C1R(pSrc, srcStep, pDst, dstStep, roiSize, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination)};
    }
};

TEST(TrueDistanceStatusQuick, ChecksInOrder)
{
    using A = Args;
    Image<Lum8u> source(layoutOf(9, 4, 3));
    draw(source, Content::Even, 2);
    Image<Lum32f> destination(layoutOf(9, 4, 8));
    const PlacedBlock scratch(scratchBytes(9, 4));
    expectStatusOrder(A{&destination,
                        source.pixels(),
                        source.step(),
                        destination.pixels(),
                        destination.step(),
                        {9, 4},
                        scratch.data()},
                      {
                          {"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
                          {"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
                          {"pBuffer null", lumErrNullPointer, [](A& a) { a.pBuffer = nullptr; }},
                          {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
                          {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
                          {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -4; }},
                          {"srcStep below the width", lumErrStep, [](A& a) { a.srcStep = 8; }},
                          {"srcStep negative", lumErrStep, [](A& a) { a.srcStep = -12; }},
                          {"dstStep below a row", lumErrStep, [](A& a) { a.dstStep = 32; }},
                          {"dstStep below a row and odd", lumErrStep, [](A& a) { a.dstStep = 35; }},
                          {"dstStep negative", lumErrStep, [](A& a) { a.dstStep = -44; }},
                          {"dstStep misaligned by 1", lumErrStepAlignment, [](A& a) { a.dstStep = 37; }},
                          {"dstStep misaligned by 2", lumErrStepAlignment, [](A& a) { a.dstStep = 38; }},
                          {"dstStep misaligned by 3", lumErrStepAlignment, [](A& a) { a.dstStep = 39; }},
                      });
    EXPECT_TRUE(scratch.intact());
}

}  // namespace
}  // namespace lumcv::test::distance
