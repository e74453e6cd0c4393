// The scratch sizes of reconstruction and the order of its argument checks.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "morph/reconstruct_fixture.hpp"
#include "support/compare.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::reconstruct {
namespace {

constexpr Lum32s kIntMax = std::numeric_limits<Lum32s>::max();
constexpr Lum32s kIntMin = std::numeric_limits<Lum32s>::min();

TYPE_SUITE(ReconstructStatusQuick, Cases, CaseName);

struct PixelName
{
    template <class T>
    static std::string GetName(int)
    {
        return Exports<T>::name;
    }
};
using Pixels = testing::Types<Lum8u, Lum16u, Lum32f, Lum64f>;
TYPE_SUITE(ReconstructSizeQuick, Pixels, PixelName);

TYPE_TEST(ReconstructSizeQuick, Formula)
{
    const Lum32s lengths[] = {1, 2, 3, 7, 8, 15, 16, 31, 32, 33, 64, 100, 640, 1920, 65535, 65536, 10000000};
    for (const Lum32s width : lengths) {
        for (const Lum32s height : lengths) {
            Lum32s bytes = -1;
            EXPECT_EQ(lumiMorphReconstructGetBufferSize({width, height}, Exports<TypeParam>::dataType, 1, &bytes),
                      lumOk);
            EXPECT_EQ(bytes, scratchBytes<TypeParam>(width, height)) << width << " x " << height;
        }
    }
}

// The sizes at the end of 32 bits, along both sides.
TYPE_TEST(ReconstructSizeQuick, TooLarge)
{
    const auto expectLimit = [](LumiSize largest, LumiSize tooLarge) {
        ASSERT_LE(scratchBytes<TypeParam>(largest.width, largest.height), kIntMax);
        ASSERT_GT(scratchBytes<TypeParam>(tooLarge.width, tooLarge.height), kIntMax);
        Lum32s bytes = -1;
        EXPECT_EQ(lumiMorphReconstructGetBufferSize(tooLarge, Exports<TypeParam>::dataType, 1, &bytes),
                  lumErrSizeTooLarge)
            << tooLarge.width << " x " << tooLarge.height;
        EXPECT_EQ(bytes, -1);
        EXPECT_EQ(lumiMorphReconstructGetBufferSize(largest, Exports<TypeParam>::dataType, 1, &bytes), lumOk);
        EXPECT_EQ(bytes, scratchBytes<TypeParam>(largest.width, largest.height));
    };
    const auto perColumn = scratchBytes<TypeParam>(2, 1) - scratchBytes<TypeParam>(1, 1);
    const auto perRow = scratchBytes<TypeParam>(1, 2) - scratchBytes<TypeParam>(1, 1);
    const auto columns = static_cast<Lum32s>((kIntMax - scratchBytes<TypeParam>(0, 1)) / perColumn);
    const auto rows = static_cast<Lum32s>((kIntMax - scratchBytes<TypeParam>(1, 0)) / perRow);
    expectLimit({columns, 1}, {columns + 1, 1});
    expectLimit({1, rows}, {1, rows + 1});
    expectLimit({1, 1}, {kIntMax, kIntMax});
    expectLimit({1, 1}, {1 << 30, 1});
    expectLimit({1, 1}, {1, kIntMax});
}

TEST(ReconstructSizesQuick, WrittenOut)
{
    struct Size
    {
        LumDataType dataType;
        Lum32s bytes;
    };
    for (const Size& size : {Size{lumType8u, 100 * 4 + 30 + 161}, Size{lumType16u, 100 * 8 + 30 * 2 + 322},
                             Size{lumType32f, 100 * 16 + 30 + 164}, Size{lumType64f, 100 * 32 + 30 + 168}}) {
        Lum32s bytes = -1;
        EXPECT_EQ(lumiMorphReconstructGetBufferSize({100, 30}, size.dataType, 1, &bytes), lumOk);
        EXPECT_EQ(bytes, size.bytes) << "type " << size.dataType;
    }
}

struct QueryArgs
{
    LumiSize roiSize = {20, 10};
    LumDataType dataType = lumType32f;
    Lum32s numChannels = 1;
    Lum32s* pBufferSize;
    Lum32s* result;

    LumStatus call() const
    {
        return lumiMorphReconstructGetBufferSize(roiSize, dataType, numChannels, pBufferSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(result, sizeof *result)};
    }
};

TEST(ReconstructSizesQuick, QueryChecksInDocumentedOrder)
{
    using A = QueryArgs;
    Lum32s bytes = -1;
    std::vector<Violation<A>> order = {
        {"pBufferSize null", lumErrNullPointer, [](A& a) { a.pBufferSize = nullptr; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -1; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = kIntMin; }},
    };
    for (const LumDataType type : {0, 2, 3, 4, 6, lumType16s + 0, 8, 9, 11, 12, 14, 18, 20, -1, 257, 0x10001}) {
        order.push_back({"type " + std::to_string(type), lumErrDataType, [=](A& a) { a.dataType = type; }});
    }
    for (const Lum32s channels : {0, 2, 3, 4, -1, 257, kIntMax}) {
        order.push_back(
            {std::to_string(channels) + " channels", lumErrChannels, [=](A& a) { a.numChannels = channels; }});
    }
    expectStatusOrder(A{.pBufferSize = &bytes, .result = &bytes}, order);

    // the size of the result comes last
    expectStatusOrder(A{.pBufferSize = &bytes, .result = &bytes},
                      {{"pBufferSize null", lumErrNullPointer, [](A& a) { a.pBufferSize = nullptr; }},
                       {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
                       {"type 7", lumErrDataType, [](A& a) { a.dataType = lumType16s; }},
                       {"3 channels", lumErrChannels, [](A& a) { a.numChannels = 3; }},
                       {"too large", lumErrSizeTooLarge, [](A& a) { a.roiSize.width = kIntMax; }}});
}

template <class C>
struct ApplyArgs
{
    using T = typename C::T;

    const T* pSrc;
    int srcStep;
    T* pSrcDst;
    int srcDstStep;
    LumiSize roiSize = {20, 5};
    Lum8u* pBuffer;
    LumiDistanceNorm norm = lumDistanceNormL1;
    const Image<T>* marker;
    const PlacedBlock* scratch;

    LumStatus call() const
    {
        return C::apply(pSrc, srcStep, pSrcDst, srcDstStep, roiSize, pBuffer, norm);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*marker), Output(scratch->data(), scratch->size())};
    }
};

template <class C>
std::vector<Violation<ApplyArgs<C>>> applyOrder()
{
    using A = ApplyArgs<C>;
    using Order = std::vector<Violation<A>>;
    constexpr int size = sizeof(typename C::T);
    constexpr int row = 20 * size;
    Order order = {
        {"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
        {"pSrcDst null", lumErrNullPointer, [](A& a) { a.pSrcDst = nullptr; }},
        {"pBuffer null", lumErrNullPointer, [](A& a) { a.pBuffer = nullptr; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -3; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = kIntMin; }},
        {"srcStep one element short", lumErrStep, [=](A& a) { a.srcStep = row - size; }},
        {"srcStep one byte short", lumErrStep, [=](A& a) { a.srcStep = row - 1; }},
        {"srcStep 0", lumErrStep, [](A& a) { a.srcStep = 0; }},
        {"srcStep negative", lumErrStep, [=](A& a) { a.srcStep = -row; }},
        {"srcDstStep one element short", lumErrStep, [=](A& a) { a.srcDstStep = row - size; }},
        {"srcDstStep one byte short", lumErrStep, [=](A& a) { a.srcDstStep = row - 1; }},
        {"srcDstStep negative", lumErrStep, [=](A& a) { a.srcDstStep = -row; }},
        {"width above the strides", lumErrStep, [=](A& a) { a.roiSize.width = 24; }, {"width 0", "width negative"}},
    };
    for (int off = 1; off < size; ++off) {
        const std::string by = std::to_string(off);
        order.push_back({"srcStep off by " + by, lumErrStepAlignment, [=](A& a) { a.srcStep = row + off; }});
        order.push_back({"srcDstStep off by " + by, lumErrStepAlignment, [=](A& a) { a.srcDstStep = row + off; }});
    }
    for (const LumiDistanceNorm norm : {lumDistanceNormL2 + 0, 3, 4, 256, 0x10000, kIntMax, -1, kIntMin}) {
        order.push_back({"norm " + std::to_string(norm), lumErrArgument, [=](A& a) { a.norm = norm; }});
    }
    return order;
}

TYPE_TEST(ReconstructStatusQuick, ApplyChecksInDocumentedOrder)
{
    using T = typename TypeParam::T;
    Random random(81);
    constexpr int size = sizeof(T);
    const Pattern levels = noise(20, 5, 30, random);
    Image<T> mask = imageOf<T>(TypeParam::form, Palette::Wide, levels, {.gap = size});
    Image<T> marker = imageOf<T>(TypeParam::form, Palette::Wide, noise(20, 5, 30, random), {.gap = 2 * size});
    const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes<T>(20, 5)));
    const ApplyArgs<TypeParam> valid{.pSrc = mask.pixels(),
                                     .srcStep = mask.step(),
                                     .pSrcDst = marker.pixels(),
                                     .srcDstStep = marker.step(),
                                     .pBuffer = scratch.data(),
                                     .marker = &marker,
                                     .scratch = &scratch};
    expectStatusOrder(valid, applyOrder<TypeParam>());
}

// A byte row has any stride that is not below it.
TEST(ReconstructStatusQuickBytes, StridesNeedNoAlignment)
{
    Random random(82);
    const Pattern levels = noise(13, 5, 30, random);
    const Image<Lum8u> mask = imageOf<Lum8u>(Form::Dilate, Palette::Wide, levels, {.gap = 3});
    const Image<Lum8u> marker = imageOf<Lum8u>(Form::Dilate, Palette::Wide, seedAt(levels, 5, 2), {.gap = 6});
    expectReference<Case<Lum8u, Form::Dilate>>(mask, marker, lumDistanceNormInf);
    expectReference<Case<Lum8u, Form::Erode>>(mask, marker, lumDistanceNormInf);
}

}  // namespace
}  // namespace lumcv::test::reconstruct
