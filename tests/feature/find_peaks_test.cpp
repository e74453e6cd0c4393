// Peaks of 3x3 neighbourhoods compared with a plain search, their limits, ties and checks.
#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include "lumcv/lumcv.h"
#include "support/placed_block.hpp"
#include "support/status_order.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test {
namespace {

bool isPeakAbove(Lum32f v, Lum32f threshold)
{
    return std::fabs(v) > threshold;
}

bool isPeakAbove(Lum32s v, Lum32s threshold)
{
    return std::llabs(static_cast<long long>(v)) > threshold;
}

bool equals(Lum32f v, Lum32f extreme)
{
    return std::fabs(v - extreme) <= 1.1754944e-38f;
}

bool equals(Lum32s v, Lum32s extreme)
{
    return v == extreme;
}

/// The search as it is described: every pixel of the scanned range against the extremes of its neighbourhood.
template <class T>
std::vector<LumiPoint> peaksOf(const Image<T>& image, T threshold, int maxCount, Lum32s norm, int border)
{
    std::vector<LumiPoint> peaks;
    for (int y = border; y <= image.height() - border - 1; ++y) {
        for (int x = border; x <= image.width() - border - 1; ++x) {
            const T v = image.at(x, y);
            T largest = v;
            T smallest = v;
            for (int dy = -1; dy <= 1; ++dy) {
                for (int dx = -1; dx <= 1; ++dx) {
                    if (norm == lumPeakNormL1 && dx != 0 && dy != 0) {
                        continue;
                    }
                    const T neighbour = image.at(x + dx, y + dy);
                    largest = neighbour > largest ? neighbour : largest;
                    smallest = neighbour < smallest ? neighbour : smallest;
                }
            }
            const bool isPeak = isPeakAbove(v, threshold) && (v > 0 ? equals(v, largest) : equals(v, smallest));
            if (isPeak) {
                peaks.push_back({x, y});
                if (static_cast<int>(peaks.size()) == maxCount) {
                    return peaks;
                }
            }
        }
    }
    return peaks;
}

LumStatus findPeaks(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f threshold, LumiPoint* pPeak,
                    Lum32s maxPeakCount, Lum32s* pPeakCount, Lum32s norm, Lum32s border, Lum8u* pBuffer)
{
    return lumiFindPeaks3x3_32f_C1R(pSrc, srcStep, roiSize, threshold, pPeak, maxPeakCount, pPeakCount, norm, border,
                                    pBuffer);
}

LumStatus findPeaks(const Lum32s* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s threshold, LumiPoint* pPeak,
                    Lum32s maxPeakCount, Lum32s* pPeakCount, Lum32s norm, Lum32s border, Lum8u* pBuffer)
{
    return lumiFindPeaks3x3_32s_C1R(pSrc, srcStep, roiSize, threshold, pPeak, maxPeakCount, pPeakCount, norm, border,
                                    pBuffer);
}

template <class T>
int bufferBytes(int width)
{
    Lum32s bytes = 0;
    const auto query =
        std::is_same_v<T, Lum32f> ? lumiFindPeaks3x3GetBufferSize_32f_C1R : lumiFindPeaks3x3GetBufferSize_32s_C1R;
    EXPECT_EQ(query(width, &bytes), lumOk);
    return bytes;
}

/// Searches with a list of exactly `maxCount` points against an unreadable page and a block of exactly the queried
/// size.
template <class T>
void expectPeaks(const Image<T>& image, T threshold, int maxCount, Lum32s norm, int border, std::size_t distance = 0)
{
    const std::vector<LumiPoint> expected = peaksOf(image, threshold, maxCount, norm, border);
    const PlacedBlock buffer(static_cast<std::size_t>(bufferBytes<T>(image.width())),
                             distance % 2 == 0 ? Guard::After : Guard::Before, distance);
    const GuardedBlock list(static_cast<std::size_t>(maxCount) * sizeof(LumiPoint), Guard::After);
    const GuardedBlock count(sizeof(Lum32s), Guard::After);
    EXPECT_EQ(findPeaks(image.pixels(), image.step(), {image.width(), image.height()}, threshold, list.as<LumiPoint>(),
                        maxCount, count.as<Lum32s>(), norm, border, buffer.data()),
              lumOk);
    ASSERT_EQ(*count.as<Lum32s>(), static_cast<Lum32s>(expected.size()));
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_EQ(list.as<LumiPoint>()[i].x, expected[i].x) << "peak " << i;
        ASSERT_EQ(list.as<LumiPoint>()[i].y, expected[i].y) << "peak " << i;
    }
    for (std::size_t i = expected.size() * sizeof(LumiPoint); i < list.size(); ++i) {
        ASSERT_EQ(list.data()[i], list.original(i)) << "an entry beyond the count was written";
    }
    EXPECT_TRUE(buffer.intact());
    EXPECT_TRUE(image.gapsIntact());
}

/// Few values, so that there are plateaus; both signs and zero.
template <class T>
void drawPlateaus(Image<T>& image, Random& random)
{
    image.forEach(Area::Roi, [&](T& element, int, int, int) { element = static_cast<T>(random.between(-2, 3)); });
}

using PeakTypes = ::testing::Types<Lum32f, Lum32s>;
TYPE_SUITE(FindPeaks, PeakTypes);

TYPE_SUITE(FindPeaksQuick, PeakTypes);

template <class T>
void sweep(Sweep extent, Values values)
{
    forEachGeometry(extent, [&](const Geometry& geometry) {
        Image<T> image(geometry.layout<T>(0));
        Random random(static_cast<std::uint64_t>(geometry.number));
        if (geometry.number % 2 == 0) {
            drawPlateaus(image, random);
        } else {
            fill(image, random, values);
        }
        const int pixels = geometry.width * geometry.height;
        const int thresholds[] = {0, 1, -1, 500};
        for (const Lum32s norm : {lumPeakNormInf, lumPeakNormL1}) {
            for (int border = 1; border <= 3; ++border) {
                if (2 * border > geometry.width || 2 * border > geometry.height) {
                    continue;
                }
                expectPeaks<T>(image, static_cast<T>(thresholds[geometry.number % 4]), pixels, norm, border,
                               static_cast<std::size_t>(geometry.number % 37));
                expectPeaks<T>(image, T{0}, 1 + geometry.number % 3, norm, border);
            }
        }
    });
}

TYPE_TEST(FindPeaksQuick, MatchesTheSearch)
{
    for (const int height : {2, 3, 8}) {
        for (const int width : {2, 3, 4, 5, 9, 17, 34}) {
            Image<TypeParam> image({width, height});
            Random random(static_cast<std::uint64_t>(width * 9 + height));
            drawPlateaus(image, random);
            for (const Lum32s norm : {lumPeakNormInf, lumPeakNormL1}) {
                expectPeaks<TypeParam>(image, TypeParam{0}, width * height, norm, 1);
            }
        }
    }
}

TYPE_TEST(FindPeaks, EveryGeometryOfOrdinaryValues)
{
    sweep<TypeParam>(Sweep::Full, Values::Ordinary);
}

TYPE_TEST(FindPeaks, EveryGeometryOfExtremeValues)
{
    sweep<TypeParam>(Sweep::Full, Values::Extreme);
}

TYPE_TEST(FindPeaks, TallImagesAndWideBorders)
{
    for (const int height : {7, 16, 31}) {
        for (const int width : {6, 13, 40, 75}) {
            Image<TypeParam> image({width, height});
            Random random(static_cast<std::uint64_t>(width * height));
            drawPlateaus(image, random);
            for (int border = 1; 2 * border <= width && 2 * border <= height; ++border) {
                expectPeaks<TypeParam>(image, TypeParam{0}, width * height, border % 2 ? lumPeakNormInf : lumPeakNormL1,
                                       border);
            }
        }
    }
}

TYPE_TEST(FindPeaksQuick, ABorderOfHalfTheSizeLeavesNothing)
{
    Image<TypeParam> image({4, 6});
    image.forEach(Area::Roi, [](TypeParam& element, int, int, int) { element = 9; });
    expectPeaks<TypeParam>(image, TypeParam{0}, 24, lumPeakNormInf, 2);
    EXPECT_TRUE(peaksOf<TypeParam>(image, TypeParam{0}, 24, lumPeakNormInf, 2).empty());
}

TYPE_TEST(FindPeaksQuick, EveryPixelOfAPlateauCountsUntilTheLimit)
{
    Image<TypeParam> image({7, 5});
    image.forEach(Area::Roi, [](TypeParam& element, int, int, int) { element = 9; });
    EXPECT_EQ(peaksOf<TypeParam>(image, TypeParam{8}, 35, lumPeakNormInf, 1).size(), 15u);
    for (const int limit : {1, 2, 14, 15, 16}) {
        expectPeaks<TypeParam>(image, TypeParam{8}, limit, lumPeakNormInf, 1);
    }
    expectPeaks<TypeParam>(image, TypeParam{9}, 35, lumPeakNormInf, 1);  // 9 is not above 9
}

TYPE_TEST(FindPeaksQuick, ZeroIsAPeakBelowNothingButANegativeThreshold)
{
    Image<TypeParam> image({5, 5});
    image.forEach(Area::Roi, [](TypeParam& element, int, int, int) { element = 0; });
    image.at(2, 2) = 3;
    EXPECT_EQ(peaksOf<TypeParam>(image, TypeParam{0}, 25, lumPeakNormInf, 1).size(), 1u);
    EXPECT_EQ(peaksOf<TypeParam>(image, TypeParam{-1}, 25, lumPeakNormInf, 1).size(), 9u);
    expectPeaks<TypeParam>(image, TypeParam{0}, 25, lumPeakNormInf, 1);
    expectPeaks<TypeParam>(image, TypeParam{-1}, 25, lumPeakNormInf, 1);
}

TYPE_TEST(FindPeaksQuick, ADiagonalNeighbourDoesNotCountInThePlus)
{
    Image<TypeParam> image({3, 3});
    image.forEach(Area::Roi, [](TypeParam& element, int, int, int) { element = 1; });
    image.at(1, 1) = 5;
    image.at(2, 2) = 7;
    EXPECT_EQ(peaksOf<TypeParam>(image, TypeParam{0}, 9, lumPeakNormL1, 1).size(), 1u);
    EXPECT_EQ(peaksOf<TypeParam>(image, TypeParam{0}, 9, lumPeakNormInf, 1).size(), 0u);
    expectPeaks<TypeParam>(image, TypeParam{0}, 9, lumPeakNormL1, 1);
    expectPeaks<TypeParam>(image, TypeParam{0}, 9, lumPeakNormInf, 1);
}

TEST(FindPeaksOfFloatsQuick, DenormalDifferencesCountAsEqual)
{
    Image<Lum32f> image({4, 3});
    image.forEach(Area::Roi, [](Lum32f& element, int, int, int) { element = 0; });
    const Lum32f denormal = std::numeric_limits<Lum32f>::denorm_min();
    const Lum32f normal = std::numeric_limits<Lum32f>::min();
    image.at(1, 1) = normal;
    image.at(2, 1) = normal + 4 * denormal;  // larger by less than the smallest normal number
    EXPECT_EQ(peaksOf<Lum32f>(image, 0.0f, 12, lumPeakNormInf, 1).size(), 2u);
    expectPeaks<Lum32f>(image, 0.0f, 12, lumPeakNormInf, 1);
    image.at(2, 1) = 2 * normal + 4 * denormal;  // larger by more
    EXPECT_EQ(peaksOf<Lum32f>(image, 0.0f, 12, lumPeakNormInf, 1).size(), 1u);
    expectPeaks<Lum32f>(image, 0.0f, 12, lumPeakNormInf, 1);
    image.at(1, 1) = denormal;  // keeps alive as a value, too
    image.at(2, 1) = 0;
    EXPECT_EQ(peaksOf<Lum32f>(image, 0.0f, 12, lumPeakNormInf, 1).size(), 1u);
    expectPeaks<Lum32f>(image, 0.0f, 12, lumPeakNormInf, 1);
}

TEST(FindPeaksOfIntegersQuick, TheMagnitudeOfTheSmallestIntegerIsAboveEveryThreshold)
{
    Image<Lum32s> image({5, 3});
    image.forEach(Area::Roi, [](Lum32s& element, int x, int, int) { element = x == 3 ? INT32_MAX : 0; });
    image.at(1, 1) = INT32_MIN;
    expectPeaks<Lum32s>(image, INT32_MAX, 15, lumPeakNormInf, 1);
    EXPECT_EQ(peaksOf<Lum32s>(image, INT32_MAX, 15, lumPeakNormInf, 1).size(), 1u);
}

// 16777217 and 16777216 are the same number in single precision.
TEST(FindPeaksOfIntegersQuick, NeighboursThatAreEqualAsFloatsAreNot)
{
    Image<Lum32s> image({4, 3});
    image.forEach(Area::Roi, [](Lum32s& element, int, int, int) { element = 0; });
    image.at(1, 1) = 16777216;
    image.at(2, 1) = 16777217;
    EXPECT_EQ(peaksOf<Lum32s>(image, 0, 12, lumPeakNormInf, 1).size(), 1u);
    expectPeaks<Lum32s>(image, 0, 12, lumPeakNormInf, 1);
    expectPeaks<Lum32s>(image, 16777216, 12, lumPeakNormInf, 1);
}

template <class T>
struct PeakArguments
{
    const T* pSrc;
    Lum32s srcStep;
    LumiSize roiSize;
    LumiPoint* pPeak;
    Lum32s* pPeakCount;
    Lum8u* pBuffer;
    std::vector<Output> written;
    Lum32s maxPeakCount = 4;
    Lum32s norm = lumPeakNormInf;
    Lum32s border = 1;

    LumStatus call() const
    {
        return findPeaks(pSrc, srcStep, roiSize, T{0}, pPeak, maxPeakCount, pPeakCount, norm, border, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return written;
    }
};

TYPE_TEST(FindPeaksQuick, ChecksInOrder)
{
    using T = TypeParam;
    using Args = PeakArguments<T>;
    Image<T> image({9, 7});
    image.forEach(Area::Roi, [](T& element, int, int, int) { element = 5; });
    LumiPoint points[4] = {};
    Lum32s count = 77;
    std::vector<Lum8u> buffer(static_cast<std::size_t>(bufferBytes<T>(9)));
    const Args valid{image.pixels(),
                     image.step(),
                     {9, 7},
                     points,
                     &count,
                     buffer.data(),
                     {Output(points, sizeof points), Output(&count, sizeof count)}};
    expectStatusOrder(
        valid, {
                   {"pSrc null", lumErrNullPointer, [](Args& a) { a.pSrc = nullptr; }},
                   {"pPeak null", lumErrNullPointer, [](Args& a) { a.pPeak = nullptr; }},
                   {"pPeakCount null", lumErrNullPointer, [](Args& a) { a.pPeakCount = nullptr; }},
                   {"pBuffer null", lumErrNullPointer, [](Args& a) { a.pBuffer = nullptr; }},
                   {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
                   {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
                   {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = -9; }},
                   {"no room", lumErrSize, [](Args& a) { a.maxPeakCount = 0; }},
                   {"border 0", lumErrSize, [](Args& a) { a.border = 0; }},
                   {"border above half of the height", lumErrSize, [](Args& a) { a.border = 4; }},
                   {"border above half of the width", lumErrSize, [](Args& a) { a.border = 5; }},
                   {"stride", lumErrStep, [](Args& a) { a.srcStep = 35; }},
                   {"stride negative", lumErrStep, [](Args& a) { a.srcStep = -40; }},
                   {"alignment", lumErrStepAlignment, [](Args& a) { a.srcStep = 38; }, {"stride", "stride negative"}},
                   {"norm", lumErrArgument, [](Args& a) { a.norm = 2; }},
                   {"norm negative", lumErrArgument, [](Args& a) { a.norm = -1; }},
               });
}

TYPE_TEST(FindPeaksQuick, Queries)
{
    const auto query = std::is_same_v<TypeParam, Lum32f> ? lumiFindPeaks3x3GetBufferSize_32f_C1R
                                                         : lumiFindPeaks3x3GetBufferSize_32s_C1R;
    for (const long width : {1L, 3L, 4L, 5L, 31L, 32L, 33L, 1920L, 67108858L}) {
        Lum32s bytes = 0;
        EXPECT_EQ(query(static_cast<Lum32s>(width), &bytes), lumOk);
        EXPECT_EQ(bytes, (width * 32 + 160) / 128 * 128 + 32) << width;
    }
    Lum32s bytes = 77;
    EXPECT_EQ(query(0, &bytes), lumErrSize);
    EXPECT_EQ(query(-5, &bytes), lumErrSize);
    EXPECT_EQ(query(INT32_MAX, &bytes), lumErrSizeTooLarge);
    EXPECT_EQ(query(0, nullptr), lumErrNullPointer);
    EXPECT_EQ(bytes, 77);
}

TEST(FindPeaksQuickThreads, CallsAtOnce)
{
    Image<Lum32f> image({40, 30});
    Random random(3);
    drawPlateaus(image, random);
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&] { expectPeaks<Lum32f>(image, 0.0f, 1200, lumPeakNormInf, 1); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
}  // namespace lumcv::test
