// The scratch size of speckles, the order of its checks, and what it may touch.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "segment/speckles_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::speckles {
namespace {

constexpr Lum32s kIntMax = std::numeric_limits<Lum32s>::max();
constexpr Lum32s kIntMin = std::numeric_limits<Lum32s>::min();

void expectBytes(LumiSize size, std::int64_t expected)
{
    for (const LumDataType type : {lumType8u, lumType16u, lumType16s, lumType32f}) {
        Lum32s bytes = -1;
        EXPECT_EQ(lumiMarkSpecklesGetBufferSize(size, type, 1, &bytes), lumOk);
        EXPECT_EQ(bytes, expected) << size.width << " x " << size.height << ", type " << type;
    }
}

TEST(SpecklesSizeQuick, Formula)
{
    expectBytes({1, 1}, 77);
    expectBytes({100, 30}, 39064);
    expectBytes({1920, 1080}, 26956864);
    for (const LumiSize size :
         {LumiSize{3, 5}, {640, 480}, {1920, 1080}, {8192, 8192}, {165191044, 1}, {1, 165191044}}) {
        expectBytes(size, scratchBytes(size.width, size.height));
    }
}

// Of larger sizes the low 32 bits are stored.
TEST(SpecklesSizeQuick, LowBitsOfLargeSizes)
{
    expectBytes({165191045, 1}, static_cast<Lum32s>(static_cast<Lum32u>(2147483649u)));
    expectBytes({65536, 65536}, 64);
    expectBytes({kIntMax, kIntMax}, 77);
    expectBytes({kIntMax, 1}, static_cast<Lum32s>(static_cast<Lum32u>(13LL * kIntMax + 64)));
}

struct QueryArgs
{
    LumiSize roiSize = {20, 10};
    LumDataType dataType = lumType16s;
    Lum32s channels = 1;
    Lum32s* pBufferSize;
    Lum32s* written;

    LumStatus call() const
    {
        return lumiMarkSpecklesGetBufferSize(roiSize, dataType, channels, pBufferSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(written, sizeof *written)};
    }
};

TEST(SpecklesSizeQuick, ChecksInOrder)
{
    using A = QueryArgs;
    Lum32s bytes = -1;
    std::vector<Violation<A>> table = {
        {"pBufferSize null", lumErrNullPointer, [](A& a) { a.pBufferSize = nullptr; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = kIntMin; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -4; }},
    };
    for (const LumDataType type : {0, 2, 3, 4, 6, 8, 9, 11, 12, 14, 19, -1, 257, 0x10001}) {
        table.push_back({"type " + std::to_string(type), lumErrDataType, [=](A& a) { a.dataType = type; }});
    }
    for (const Lum32s channels : {0, 2, 3, 4, -1, 257, kIntMax}) {
        table.push_back({std::to_string(channels) + " channels", lumErrChannels, [=](A& a) { a.channels = channels; }});
    }
    expectStatusOrder(A{.pBufferSize = &bytes, .written = &bytes}, table);
}

template <class T>
struct Args
{
    T* pSrcDst;
    Lum32s srcDstStep;
    LumiSize roiSize = {20, 5};
    T speckleVal = 7;
    Lum32s maxSpeckleSize = 5;
    T maxPixDiff = 2;
    LumiNorm norm = lumNormInf;
    Lum8u* pBuffer;
    const Image<T>* image;
    const PlacedBlock* scratch;

    LumStatus call() const
    {
        return Exports<T>::mark(pSrcDst, srcDstStep, roiSize, speckleVal, maxSpeckleSize, maxPixDiff, norm, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*image), Output(scratch->data(), scratch->size())};
    }
};

TYPE_SUITE(SpecklesStatusQuick, Elements, ElementName);

TYPE_TEST(SpecklesStatusQuick, ChecksInOrder)
{
    using A = Args<TypeParam>;
    Random random(61);
    Image<TypeParam> image({.width = 20, .height = 5, .gap = 2 * sizeof(TypeParam)});
    image.forEach(Area::Roi,
                  [&](TypeParam& element, int, int, int) { element = static_cast<TypeParam>(random.between(0, 100)); });
    const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes(20, 5)));
    std::vector<Violation<A>> table = {
        {"pSrcDst null", lumErrNullPointer, [](A& a) { a.pSrcDst = nullptr; }},
        {"pBuffer null", lumErrNullPointer, [](A& a) { a.pBuffer = nullptr; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -1; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = kIntMin; }},
    };
    for (const LumiNorm norm : {0, lumNormL1 + 0, 3, lumNormL2 + 0, 257, -1, kIntMin, kIntMax}) {
        table.push_back({"norm " + std::to_string(norm), lumErrNorm, [=](A& a) { a.norm = norm; }});
    }
    expectStatusOrder(A{.pSrcDst = image.pixels(),
                        .srcDstStep = image.step(),
                        .pBuffer = scratch.data(),
                        .image = &image,
                        .scratch = &scratch},
                      table);
}

TYPE_SUITE(SpecklesMemory, Elements, ElementName);

template <class T>
void drawSpecks(Image<T>& image, Random& random)
{
    image.forEach(Area::Roi, [&](T& element, int, int, int) {
        element = static_cast<T>(random.oneIn(5) ? random.between(0, 100) : 40);
    });
}

TYPE_TEST(SpecklesMemory, RowsAlone)
{
    Random random(62);
    for (const int width : {1, 3, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 129}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            const Layout layout = {.width = width, .height = 6, .guard = guard};
            Image<TypeParam> image(layout);
            drawSpecks(image, random);
            IsolatedRows<TypeParam> rows(layout);
            for (int y = 0; y < 6; ++y) {
                std::copy_n(image.row(y), width, rows.row(y));
            }
            mark<TypeParam>(image, {40, 3, 1});
            const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes(width, 6)), guard);
            ASSERT_EQ(
                Exports<TypeParam>::mark(rows.pixels(), rows.step(), {width, 6}, 40, 3, 1, lumNormInf, scratch.data()),
                lumOk);
            for (int y = 0; y < 6; ++y) {
                ASSERT_TRUE(sameElements(image.row(y), rows.row(y), static_cast<std::size_t>(width)))
                    << "row " << y << ", width " << width;
            }
            EXPECT_TRUE(rows.slackIntact());
        }
    }
}

TYPE_TEST(SpecklesMemory, ScratchAtAnyAddressAndOfAnyContent)
{
    Random random(63);
    for (std::size_t distance = 0; distance < 70; ++distance) {
        Image<TypeParam> image({.width = 25, .height = 9});
        drawSpecks(image, random);
        Image<TypeParam> expected = image;
        mark<TypeParam>(expected, {3, 4, 5});
        const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes(25, 9)),
                                  distance % 2 == 0 ? Guard::After : Guard::Before, distance);
        for (const int content : {0, 255, 1}) {
            std::fill_n(scratch.data(), scratch.size(), static_cast<Lum8u>(content));
            Image<TypeParam> actual = image;
            ASSERT_EQ(
                Exports<TypeParam>::mark(actual.pixels(), actual.step(), {25, 9}, 3, 4, 5, lumNormInf, scratch.data()),
                lumOk);
            ASSERT_TRUE(sameImage(expected, actual)) << "scratch of " << content;
        }
        EXPECT_TRUE(scratch.intact());
    }
}

TEST(SpecklesMemoryQuick, ThreadsWithAnImageEach)
{
    Random random(64);
    Image<Lum16s> image({.width = 90, .height = 70});
    drawSpecks(image, random);
    Image<Lum16s> expected = image;
    mark<Lum16s>(expected, {-1, 6, 4});
    Image<Lum16s> images[2] = {image, image};
    std::vector<std::thread> threads;
    for (Image<Lum16s>& own : images) {
        threads.emplace_back([&own] {
            const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes(90, 70)));
            lumiMarkSpeckles_16s_C1IR(own.pixels(), own.step(), {90, 70}, -1, 6, 4, lumNormInf, scratch.data());
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(sameImage(expected, images[0]));
    EXPECT_TRUE(sameImage(expected, images[1]));
}

}  // namespace
}  // namespace lumcv::test::speckles
