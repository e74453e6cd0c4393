// Fast marching compared with its sweeps written out plainly; its values by name, its memory and its checks.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include "distance/contents.hpp"
#include "distance/fast_marching_reference.hpp"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"
#include "support/placed_block.hpp"
#include "support/size_query.hpp"
#include "support/status_order.hpp"
#include "support/sweep.hpp"

namespace lumcv::test::distance {
namespace {

constexpr Lum32f kInfinity = std::numeric_limits<Lum32f>::infinity();
constexpr Lum32f kRadii[] = {0, 3, 1, 0.5f, 2, 7.25f, -0.0f, 1e-6f, 25, 1e9f, kInfinity};
constexpr int kRadiusCount = 11;

std::size_t scratchBytes(int width, int height)
{
    return static_cast<std::size_t>((width + 31) / 32 * 32 + 5) * static_cast<std::size_t>(height + 34) + 40;
}

Image<Lum32f> march(const Image<Lum8u>& source, Lum32f radius, const Layout& layout, std::size_t scratchDistance = 0,
                    Guard guard = Guard::After)
{
    const LumiSize size = {source.width(), source.height()};
    const PlacedBlock scratch(scratchBytes(size.width, size.height), guard, scratchDistance);
    Image<Lum32f> result(layout);
    EXPECT_EQ(lumiFastMarching_8u32f_C1R(source.pixels(), source.step(), result.pixels(), result.step(), size, radius,
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
        draw(source, contentOf(number % 37), static_cast<std::uint64_t>(number));
        const Layout layout = geometry.layout<Lum32f>(1);
        const Lum32f radius = kRadii[number % kRadiusCount];
        EXPECT_TRUE(sameImage(marchedDistances(source, radius, layout),
                              march(source, radius, layout, static_cast<std::size_t>(number % 67), layout.guard)))
            << "content " << number % 37 << ", radius " << radius;
    }
    EXPECT_TRUE(source.gapsIntact());
}

TEST(FastMarchingQuick, Sizes)
{
    forEachGeometry(Sweep::Quick, [](const Geometry& geometry) { expectGeometry(geometry, 4); });
}

TEST(FastMarching, Sizes)
{
    forEachGeometry(Sweep::Full, [](const Geometry& geometry) { expectGeometry(geometry, 2); });
}

TEST(FastMarching, HigherImages)
{
    Geometry geometry;
    for (const int height : {4, 7, 10, 25, 40}) {
        for (const int width : {1, 2, 3, 5, 8, 15, 16, 17, 31, 32, 33, 64, 70}) {
            geometry.width = width;
            geometry.height = height;
            geometry.placement = geometry.number % 3;
            SCOPED_TRACE(geometry);
            expectGeometry(geometry, 13);
            ASSERT_FALSE(testing::Test::HasFailure());
            ++geometry.number;
        }
    }
}

TEST(FastMarching, EveryContentWithEveryRadius)
{
    for (int content = 0; content < static_cast<int>(Content::Count); ++content) {
        for (const LumiSize size : {LumiSize{64, 21}, {45, 45}}) {
            Image<Lum8u> source(layoutOf(size.width, size.height));
            draw(source, contentOf(content), 11);
            const Layout layout = layoutOf(size.width, size.height);
            for (const Lum32f radius : kRadii) {
                EXPECT_TRUE(sameImage(marchedDistances(source, radius, layout), march(source, radius, layout)))
                    << "content " << content << ", radius " << radius;
            }
        }
    }
}

// Few zeros, or few pixels inside, far apart: fronts that meet are corrected by many later sweeps.
TEST(FastMarching, ManySweeps)
{
    int most = 0;
    for (int seed = 0; seed < 24; ++seed) {
        Random random(static_cast<std::uint64_t>(seed));
        Image<Lum8u> source(layoutOf(96, 60));
        const bool inside = seed % 2 == 0;
        source.forEach(Area::Roi, [&](Lum8u& element, int, int, int) { element = inside ? 9 : 0; });
        for (int i = 0; i < 2 + seed; ++i) {
            source.at(static_cast<int>(random.between(0, 95)), static_cast<int>(random.between(0, 59))) =
                inside ? 0 : 1;
        }
        for (const Lum32f radius : {0.0f, 12.0f, 1e6f}) {
            FastMarching reference(source, radius);
            most = std::max(most, reference.laterSweeps());
            EXPECT_TRUE(sameImage(reference.result(layoutOf(96, 60)), march(source, radius, layoutOf(96, 60))))
                << "seed " << seed << ", radius " << radius;
        }
    }
    EXPECT_GE(most, 4) << "the images give the later sweeps nothing to do";
}

TEST(FastMarchingQuick, NothingInside)
{
    for (const LumiSize size : {LumiSize{1, 1}, {1, 9}, {9, 1}, {40, 7}}) {
        Image<Lum8u> source(layoutOf(size.width, size.height));
        draw(source, Content::AllZero, 1);
        for (const Lum32f radius : kRadii) {
            Image<Lum32f> result = march(source, radius, layoutOf(size.width, size.height));
            result.forEach(Area::Roi, [&](Lum32f& d, int, int, int) { EXPECT_TRUE(sameElement(d, 0.0f)) << radius; });
        }
    }
}

// There is no outside to measure from: the first pixel keeps what it begins with.
TEST(FastMarchingQuick, NothingOutside)
{
    for (const LumiSize size : {LumiSize{1, 1}, {1, 9}, {2, 9}, {9, 1}, {40, 7}}) {
        Image<Lum8u> source(layoutOf(size.width, size.height));
        draw(source, Content::NoZero, 1);
        for (const Lum32f radius : kRadii) {
            Image<Lum32f> result = march(source, radius, layoutOf(size.width, size.height));
            result.forEach(Area::Roi, [&](Lum32f& d, int x, int y, int) {
                EXPECT_TRUE(x == 0 && y == 0 ? d == 999999.0f : d > 999999.0f) << "x " << x << ", y " << y;
            });
        }
    }
}

TEST(FastMarchingQuick, SingleRow)
{
    Image<Lum8u> source(layoutOf(12, 1));
    const Lum8u pixels[12] = {0, 0, 0, 0, 1, 9, 255, 1, 1, 0, 0, 0};
    std::copy_n(pixels, 12, source.pixels());
    const Lum32f without[12] = {0, 0, 0, 0, 1, 2, 3, 2, 1, 0, 0, 0};
    EXPECT_TRUE(sameElements(without, march(source, 0, layoutOf(12, 1)).pixels(), 12));
    const Lum32f front = -1e-10f;
    const Lum32f band[12] = {0, -2, -1, front, 1, 2, 3, 2, 1, front, -1, -2};
    EXPECT_TRUE(sameElements(band, march(source, 2, layoutOf(12, 1)).pixels(), 12));
}

// The pixels that touch the region are no unit away, those behind them are; a pixel at the distance of the radius
// itself, or farther by less than 1e-5, belongs to the band.
TEST(FastMarchingQuick, Band)
{
    Image<Lum8u> source(layoutOf(12, 9));
    source.forEach(Area::Roi, [](Lum8u& element, int x, int, int) { element = x < 6 ? 0 : 1; });
    EXPECT_EQ(std::bit_cast<std::uint32_t>(-1e-10f), 0xAEDBE6FFu);
    const Lum32f expected[12] = {0, 0, 0, -2, -1, -1e-10f, 1, 2, 3, 4, 5, 6};
    const Image<Lum32f> result = march(source, 2, layoutOf(12, 9));
    const Image<Lum32f> within = march(source, 1.999995f, layoutOf(12, 9));
    const Image<Lum32f> narrower = march(source, 1.99998f, layoutOf(12, 9));
    for (int y = 0; y < 9; ++y) {
        EXPECT_TRUE(sameElements(expected, result.row(y), 12)) << "row " << y;
        EXPECT_TRUE(sameElements(expected, within.row(y), 12)) << "row " << y;
        EXPECT_EQ(narrower.at(4, y), -1.0f);
        EXPECT_EQ(narrower.at(3, y), 0.0f);
    }
}

TEST(FastMarchingQuick, OutsideIsZeroWithoutABand)
{
    for (int content = 0; content < static_cast<int>(Content::Count); ++content) {
        Image<Lum8u> source(layoutOf(50, 20));
        draw(source, contentOf(content), 4);
        for (const Lum32f radius : {0.0f, -0.0f}) {
            Image<Lum32f> result = march(source, radius, layoutOf(50, 20));
            result.forEach(Area::Roi, [&](Lum32f& d, int x, int y, int) {
                EXPECT_TRUE(source.at(x, y) == 0 ? sameElement(d, 0.0f) : d > 0) << "x " << x << ", y " << y;
            });
        }
    }
}

TEST(FastMarchingQuick, RadiusThatIsNotANumberPasses)
{
    Image<Lum8u> source(layoutOf(20, 20));
    draw(source, Content::Even, 4);
    march(source, std::numeric_limits<Lum32f>::quiet_NaN(), layoutOf(20, 20, 8));
}

TEST(FastMarchingMemory, RowsAlone)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{1, 1}, {2, 5}, {5, 2}, {7, 4}, {16, 3}, {17, 6}, {32, 9}, {33, 4}, {64, 5}}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (int i = 0; i < 9; ++i) {
                const Layout layout = layoutOf(size.width, size.height, 0, guard);
                IsolatedRows<Lum8u> source(layout);
                IsolatedRows<Lum32f> destination(layout);
                Image<Lum8u> copy(layout);
                draw(source, size.width, size.height, contentOf(number), 5);
                draw(copy, contentOf(number), 5);
                source.makeReadOnly();
                const Lum32f radius = kRadii[number++ % kRadiusCount];
                const PlacedBlock scratch(scratchBytes(size.width, size.height), guard);
                EXPECT_EQ(lumiFastMarching_8u32f_C1R(source.pixels(), source.step(), destination.pixels(),
                                                     destination.step(), size, radius, scratch.data()),
                          lumOk);
                const Image<Lum32f> expected = marchedDistances(copy, radius, layout);
                for (int y = 0; y < size.height; ++y) {
                    ASSERT_TRUE(
                        sameElements(expected.row(y), destination.row(y), static_cast<std::size_t>(size.width)));
                }
                EXPECT_TRUE(destination.slackIntact());
            }
        }
    }
}

// What the destination and the scratch held before does not matter, not even where no pixel is reached.
TEST(FastMarchingMemory, SameBytesWithAnyScratchAndDestination)
{
    for (const Content content : {Content::Sparse, Content::OneNonZero, Content::NoZero, Content::AllZero}) {
        Image<Lum8u> source(layoutOf(40, 19));
        draw(source, content, 3);
        for (const Lum32f radius : {0.0f, 4.0f}) {
            const Image<Lum32f> expected = marchedDistances(source, radius, layoutOf(40, 19));
            Image<Lum32f> result(layoutOf(40, 19));
            const PlacedBlock scratch(scratchBytes(40, 19));
            for (const Lum8u before : {Lum8u{0}, Lum8u{255}, Lum8u{191}, Lum8u{63}}) {
                std::fill_n(scratch.data(), scratch.size(), before);
                std::fill_n(result.bytes(), result.byteCount(), before);
                EXPECT_EQ(lumiFastMarching_8u32f_C1R(source.pixels(), source.step(), result.pixels(), result.step(),
                                                     {40, 19}, radius, scratch.data()),
                          lumOk);
                EXPECT_TRUE(sameImage(expected, result)) << "bytes of " << int{before};
            }
        }
    }
}

TEST(FastMarchingMemory, LargerThanTheCache)
{
    for (const int cacheBytes : {0, 1024}) {
        const ReportedCacheSize reported(0, cacheBytes);
        Image<Lum8u> source(layoutOf(301, 40));
        draw(source, Content::Sparse, 3);
        EXPECT_TRUE(sameImage(marchedDistances(source, 3, layoutOf(301, 40)), march(source, 3, layoutOf(301, 40))));
    }
}

TEST(FastMarchingMemory, ThreadsShareASource)
{
    Image<Lum8u> source(layoutOf(133, 29));
    draw(source, Content::Sparse, 8);
    const Image<Lum32f> expected = marchedDistances(source, 3, layoutOf(133, 29));
    Image<Lum32f> results[2] = {Image<Lum32f>(layoutOf(133, 29)), Image<Lum32f>(layoutOf(133, 29))};
    std::vector<std::thread> threads;
    for (Image<Lum32f>& result : results) {
        threads.emplace_back([&] { result = march(source, 3, layoutOf(133, 29)); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(sameImage(expected, results[0]));
    EXPECT_TRUE(sameImage(expected, results[1]));
}

TEST(FastMarchingSizeQuick, Formula)
{
    for (const Lum32s width : {1, 31, 32, 33, 64, 65, 640, 1920, 20001, 30000}) {
        for (const Lum32s height : {1, 2, 31, 32, 33, 480, 1080, 20001, 60000}) {
            Lum32s bytes = -1;
            EXPECT_EQ(lumiFastMarchingGetBufferSize_8u32f_C1R({width, height}, &bytes), lumOk);
            EXPECT_EQ(static_cast<std::size_t>(bytes), scratchBytes(width, height)) << width << " x " << height;
        }
    }
    Lum32s bytes = -1;
    EXPECT_EQ(lumiFastMarchingGetBufferSize_8u32f_C1R({1, 1}, &bytes), lumOk);
    EXPECT_EQ(bytes, 37 * 35 + 40);
    EXPECT_EQ(lumiFastMarchingGetBufferSize_8u32f_C1R({640, 480}, &bytes), lumOk);
    EXPECT_EQ(bytes, 645 * 514 + 40);
    // 46341 * 46341 exceeds 2^31; and numbers whose product has the low 32 bits of a small one
    for (const LumiSize size : {LumiSize{46336, 46341 - 34}, {65504, 65536}, {0x7fffffff, 1}, {1, 0x7fffffff}}) {
        bytes = -1;
        EXPECT_EQ(lumiFastMarchingGetBufferSize_8u32f_C1R(size, &bytes), lumErrSizeTooLarge) << size.width;
        EXPECT_EQ(bytes, -1);
    }
}

TEST(FastMarchingSizeQuick, ChecksInOrder)
{
    expectSizeQueryChecksInOrder<lumiFastMarchingGetBufferSize_8u32f_C1R>();
}

struct Args
{
    const Image<Lum32f>* destination;
    const Lum8u* pSrc;
    Lum32s srcStep;
    Lum32f* pDst;
    Lum32s dstStep;
    LumiSize roiSize;
    Lum32f radius;
    Lum8u* pBuffer;

    LumStatus call() const
    {
        return lumiFastMarching_8u32f_C1R(pSrc, srcStep, pDst, dstStep, roiSize, radius, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination)};
    }
};

TEST(FastMarchingStatusQuick, ChecksInOrder)
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
                        2,
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
                          {"radius negative", lumErrArgument, [](A& a) { a.radius = -1; }},
                          {"radius just negative", lumErrArgument, [](A& a) { a.radius = -1e-45f; }},
                          {"radius of minus infinity", lumErrArgument, [](A& a) { a.radius = -kInfinity; }},
                      });
    EXPECT_TRUE(scratch.intact());
}

}  // namespace
}  // namespace lumcv::test::distance
