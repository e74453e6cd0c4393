// Calls through lumcv.hpp in all their forms, held against the same calls of the plain functions.
#include <gtest/gtest.h>
#include <lumcv/lumcv.hpp>

#include <array>
#include <numeric>
#include <span>
#include <string>
#include <vector>

// Functions of the library's kind that tell what they got.
namespace {
struct Got
{
    const void* pixels;
    Lum64s step;
    Lum64s offset;
    LumiSizeL roi;
    LumiPointL anchor;
    Lum8u small;
    Lum32f real;
};
}  // namespace
static LumStatus tellAll(const Lum16u* pSrc, Lum64s srcStep, const Lum8u* pBits, Lum64s bitsStep, Lum32s bitOffset,
                         LumiSizeL roiSize, LumiPointL anchor, Lum8u value, Lum32f real, Got* pGot)
{
    *pGot = {pSrc, srcStep + bitsStep * 1000, bitOffset, roiSize, anchor, value, real};
    return pBits == nullptr ? lumErrNullPointer : lumOk;
}
static LumStatus tellGetSize(Lum64s* pLarge, Lum32s* pNone)
{
    *pLarge = 70;
    *pNone = 0;
    return lumOk;
}

namespace {

using lumcv::BitView;
using lumcv::Block;
using lumcv::call;
using lumcv::Record;
using lumcv::View;

constexpr LumiSize size = {37, 23};
constexpr std::size_t pixels = 37 * 23;

// Elements that repeat after so many that neither rows nor columns do.
template <class T>
std::vector<T> patterned(std::size_t count, unsigned seed = 1)
{
    std::vector<T> elements(count);
    for (std::size_t i = 0; i < count; ++i) {
        elements[i] = static_cast<T>((i * 29 + seed * 53 + i * i % 101) % 251);
    }
    return elements;
}

TEST(Call, PassesImagesAndReturnsTheStatus)
{
    const auto a = patterned<Lum8u>(pixels, 1), b = patterned<Lum8u>(pixels, 2);
    std::vector<Lum8u> result(pixels), expected(pixels);
    const View viewOfA(a.data(), size), viewOfB(b.data(), size);
    const auto status = call<lumiAbsDiff_8u_C1R>(viewOfA, viewOfB, View(result.data(), size), size);
    EXPECT_TRUE(status.ok());
    EXPECT_EQ(status.function(), "lumiAbsDiff_8u_C1R");
    ASSERT_EQ(lumiAbsDiff_8u_C1R(a.data(), 37, b.data(), 37, expected.data(), 37, size), lumOk);
    EXPECT_EQ(result, expected);
}

TEST(Call, TakesMasks)
{
    const auto source = patterned<Lum8u>(pixels, 3);
    auto mask = patterned<Lum8u>(pixels, 4);
    for (Lum8u& m : mask) {
        m %= 2;
    }
    std::vector<Lum32f> sum(pixels, 0.5f), expected(pixels, 0.5f);
    EXPECT_TRUE(
        call<lumiAdd_8u32f_C1IMR>(View(source.data(), size), View(mask.data(), size), View(sum.data(), size), size)
            .ok());
    ASSERT_EQ(lumiAdd_8u32f_C1IMR(source.data(), 37, mask.data(), 37, expected.data(), 37 * 4, size), lumOk);
    EXPECT_EQ(sum, expected);
}

TEST(Call, WorksOnPartsOfAnImage)
{
    const auto source = patterned<Lum8u>(3 * pixels, 5);
    std::vector<Lum32f> result(3 * pixels, -1.0f), expected = result;
    constexpr LumiRect part = {5, 4, 20, 10};
    const View<const Lum8u, 3> from(source.data(), size);
    const View<Lum32f, 3> to(result.data(), size);
    // an operation of one channel, on all elements alike
    EXPECT_TRUE(
        call<lumiAddSquare_8u32f_C1IR>(from.part(part).elements(), to.part(part).elements(), LumiSize{60, 10}).ok());
    ASSERT_EQ(lumiAddSquare_8u32f_C1IR(source.data() + (4 * 37 + 5) * 3, 37 * 3, expected.data() + (4 * 37 + 5) * 3,
                                       37 * 12, {60, 10}),
              lumOk);
    EXPECT_EQ(result, expected);
}

TEST(Call, WritesSeveralResults)
{
    auto source = patterned<Lum8u>(3 * pixels, 6);
    const View<Lum8u, 3> image(source.data(), size);
    Lum64f mean = 0, deviation = 0, expectedMean = 1, expectedDeviation = 1;
    EXPECT_TRUE(call<lumiMean_StdDev_8u_C3CR>(image, size, 2, &mean, &deviation).ok());
    ASSERT_EQ(lumiMean_StdDev_8u_C3CR(source.data(), 37 * 3, size, 2, &expectedMean, &expectedDeviation), lumOk);
    EXPECT_EQ(mean, expectedMean);
    EXPECT_EQ(deviation, expectedDeviation);
}

TEST(Call, TakesImagesThatAreLargerThanTheRoi)
{
    const auto source = patterned<Lum8u>(pixels, 7);
    constexpr LumiSize larger = {38, 24};
    std::vector<Lum32f> sums(38 * 24), expectedSums(38 * 24);
    std::vector<Lum64f> squares(38 * 24), expectedSquares(38 * 24);
    EXPECT_TRUE(call<lumiSqrIntegral_8u32f64f_C1R>(View(source.data(), size), View(sums.data(), larger),
                                                   View(squares.data(), larger), size, 1.0f, 2.0)
                    .ok());
    ASSERT_EQ(lumiSqrIntegral_8u32f64f_C1R(source.data(), 37, expectedSums.data(), 38 * 4, expectedSquares.data(),
                                           38 * 8, size, 1.0f, 2.0),
              lumOk);
    EXPECT_EQ(sums, expectedSums);
    EXPECT_EQ(squares, expectedSquares);
}

// The Gaussian filter by plain calls.
std::vector<Lum8u> smoothed(const std::vector<Lum8u>& source)
{
    Lum32s specSize = 0, bufferSize = 0;
    EXPECT_EQ(lumiFilterGaussianGetBufferSize(size, 5, lumType8u, 1, &specSize, &bufferSize), lumOk);
    std::vector<Lum8u> block(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
    auto* const spec = reinterpret_cast<LumFilterGaussianSpec*>(block.data());
    EXPECT_EQ(lumiFilterGaussianInit(size, 5, 1.1f, lumBorderMirror, lumType8u, 1, spec, buffer.data()), lumOk);
    std::vector<Lum8u> result(pixels);
    EXPECT_EQ(lumiFilterGaussian_8u_C1R(source.data(), 37, result.data(), 37, size, lumBorderMirror, nullptr, spec,
                                        buffer.data()),
              lumOk);
    return result;
}

TEST(Call, SizesLaysAndAppliesARecord)
{
    const auto source = patterned<Lum8u>(pixels, 8);
    std::vector<Lum8u> result(pixels);
    Record<LumFilterGaussianSpec> spec;
    Block scratch;
    ASSERT_TRUE(call<lumiFilterGaussianGetBufferSize>(size, 5, lumType8u, 1, spec, scratch).ok());
    Lum32s specSize = 0, bufferSize = 0;
    ASSERT_EQ(lumiFilterGaussianGetBufferSize(size, 5, lumType8u, 1, &specSize, &bufferSize), lumOk);
    EXPECT_EQ(spec.size(), static_cast<std::size_t>(specSize));
    EXPECT_EQ(scratch.size(), static_cast<std::size_t>(bufferSize));
    ASSERT_TRUE(call<lumiFilterGaussianInit>(size, 5, 1.1f, lumBorderMirror, lumType8u, 1, spec, scratch).ok());
    // moved, the record stays valid, and apply only reads it
    const Record<LumFilterGaussianSpec> moved = std::move(spec);
    ASSERT_TRUE(call<lumiFilterGaussian_8u_C1R>(View(source.data(), size), View(result.data(), size), size,
                                                lumBorderMirror, nullptr, moved, scratch)
                    .ok());
    EXPECT_EQ(result, smoothed(source));
}

TEST(Call, WidensForTheEntryPointsOf64Bits)
{
    const auto source = patterned<Lum8u>(pixels, 9);
    std::vector<Lum8u> result(pixels);
    Record<LumFilterGaussianSpec> spec;
    Block scratch;
    ASSERT_TRUE(call<lumiFilterGaussianGetSpecSize_L>(5, lumType8u, 1, spec, scratch).ok());
    ASSERT_TRUE(call<lumiFilterGaussianInit_L>(size, 5, 1.1f, lumBorderMirror, lumType8u, 1, spec, scratch).ok());
    ASSERT_TRUE(call<lumiFilterGaussianGetBufferSize_L>(size, 5, lumType8u, lumBorderMirror, 1, scratch).ok());
    ASSERT_TRUE(call<lumiFilterGaussian_8u_C1R_L>(View(source.data(), size), View(result.data(), size),
                                                  LumiSizeL{37, 23}, lumBorderMirror, nullptr, spec, scratch)
                    .ok());
    EXPECT_EQ(result, smoothed(source));
}

TEST(Call, TakesImagesOfBits)
{
    // rows of 37 bits that begin in the middle of a byte
    const auto source = patterned<Lum8u>(23 * 8, 10);
    std::vector<Lum8u> result(23 * 8, 0xA5), expected = result;
    const std::vector<Lum8u> mask(9, 1);
    Record<LumiMorphBitRecord> spec;
    Block scratch;
    ASSERT_TRUE(call<lumiMorphologyBorderGetSize_1u_C1R>(size, LumiSize{3, 3}, spec, scratch).ok());
    ASSERT_TRUE(call<lumiMorphologyBorderInit_1u_C1R>(size, mask, LumiSize{3, 3}, spec, scratch).ok());
    ASSERT_TRUE(call<lumiDilateBorder_1u_C1R>(BitView(source.data(), 8, 5, size), BitView(result.data(), 8, 3, size),
                                              size, lumBorderReplicate, 0, spec, scratch)
                    .ok());
    ASSERT_EQ(lumiDilateBorder_1u_C1R(source.data(), 8, 5, expected.data(), 8, 3, size, lumBorderReplicate, 0,
                                      spec.get(), scratch.data()),
              lumOk);
    EXPECT_EQ(result, expected);
}

TEST(Call, TakesArraysOfRows)
{
    const auto source = patterned<Lum8u>(pixels, 11);
    std::vector<Lum16s> middle(pixels);
    std::vector<Lum16s*> rows;
    for (Lum32s y = 0; y < size.height; ++y) {
        rows.push_back(View(middle.data(), size).row(y));
    }
    constexpr std::array<Lum16s, 3> kernel = {1, 2, 1};
    constexpr LumiSize inner = {37, 21};
    std::vector<Lum8u> result(37 * 21), expected(37 * 21);
    Block scratch;
    ASSERT_TRUE(call<lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R>(size, 3, scratch).ok());
    ASSERT_TRUE(call<lumiFilterColumnPipelineGetBufferSize_16s8u_C1R>(inner, 3, scratch).ok());
    ASSERT_TRUE(call<lumiFilterRowBorderPipeline_8u16s_C1R>(View(source.data(), size), rows, size, kernel, 3, 1,
                                                            lumBorderMirror, 0, 1, scratch)
                    .ok());
    ASSERT_TRUE(call<lumiFilterColumnPipeline_16s8u_C1R>(std::span(rows), View(result.data(), inner), inner, kernel, 3,
                                                         16, scratch)
                    .ok());
    ASSERT_EQ(lumiFilterColumnPipeline_16s8u_C1R(rows.data(), expected.data(), 37, inner, kernel.data(), 3, 16,
                                                 scratch.data()),
              lumOk);
    EXPECT_EQ(result, expected);
    EXPECT_NE(result, std::vector<Lum8u>(37 * 21));
}

TEST(Call, LetsAnInitChooseThePlaceOfARecord)
{
    Record<LumiPyramidRecord> pyramid;
    Block scratch;
    ASSERT_TRUE(call<lumiPyramidGetSize>(pyramid, scratch, 3, LumiSize{640, 480}, 2.0f).ok());
    ASSERT_TRUE(call<lumiPyramidInit>(pyramid, 3, LumiSize{640, 480}, 2.0f, pyramid, scratch).ok());
    EXPECT_GE(reinterpret_cast<Lum8u*>(pyramid.get()), pyramid.data());
    EXPECT_LT(reinterpret_cast<Lum8u*>(pyramid.get()), pyramid.data() + pyramid.size());
    ASSERT_EQ(pyramid->level, 3);
    EXPECT_EQ(pyramid->pLayerSizes[1].width, 320);
    EXPECT_EQ(pyramid->pLayerSizes[1].height, 240);
}

TEST(Call, SharesOneScratchAmongFunctions)
{
    Block scratch;
    ASSERT_TRUE(call<lumiMinEigenValGetBufferSize_8u32f_C1R>(size, 3, 5, scratch).ok());
    const std::size_t large = scratch.size();
    Lum8u* const place = scratch.data();
    ASSERT_TRUE(call<lumiFindPeaks3x3GetBufferSize_32f_C1R>(8, scratch).ok());
    EXPECT_EQ(scratch.size(), large);
    EXPECT_EQ(scratch.data(), place);
}

TEST(Call, LeavesBlocksAloneUnlessAQuerySucceeds)
{
    Block scratch;
    const auto error = call<lumiMinEigenValGetBufferSize_8u32f_C1R>(LumiSize{0, 3}, 3, 5, scratch);
    EXPECT_TRUE(error.isError());
    EXPECT_EQ(error.code(), lumErrSize);
    EXPECT_EQ(scratch.data(), nullptr);
    // only the low bits of this size have been told
    const auto warning =
        call<lumiHoughLineGetSize_8u_C1R>(LumiSize{30000, 30000}, LumiPointPolar{0.01f, 0.001f}, 10, scratch);
    EXPECT_TRUE(warning.isWarning());
    EXPECT_EQ(warning.code(), lumWrnBufferTooLarge);
    EXPECT_EQ(scratch.data(), nullptr);
    // a block that has no size yet is a null pointer, which the library finds
    const std::vector<Lum8u> source(pixels);
    std::vector<Lum32f> result(pixels);
    const auto status = call<lumiMinEigenVal_8u32f_C1R>(View(source.data(), size), View(result.data(), size), size,
                                                        lumKernSobel, 3, 5, scratch);
    EXPECT_EQ(status.code(), lumErrNullPointer);
}

TEST(Call, ReturnsWhatHasNoStatus)
{
    EXPECT_EQ(call<lumcvGetLibVersion>(), lumcvGetLibVersion());
}

TEST(Call, PassesEveryKindOfArgumentInItsPlace)
{
    Lum16u element = 0;
    Lum8u byte = 0;
    Got got{};
    EXPECT_TRUE(call<tellAll>(View(&element, 12, LumiSize{6, 1}), BitView(&byte, 3, 7, LumiSize{6, 1}), LumiSize{6, 1},
                              LumiPoint{2, -3}, 200, 0.25f, &got)
                    .ok());
    EXPECT_EQ(got.pixels, &element);
    EXPECT_EQ(got.step, 3012);
    EXPECT_EQ(got.offset, 7);
    EXPECT_EQ(got.roi.width, 6);
    EXPECT_EQ(got.roi.height, 1);
    EXPECT_EQ(got.anchor.x, 2);
    EXPECT_EQ(got.anchor.y, -3);
    EXPECT_EQ(got.small, 200);
    EXPECT_EQ(got.real, 0.25f);
}

TEST(Call, TakesSizesOf32And64Bits)
{
    Record<LumFilterGaussianSpec> large;
    Block none;
    EXPECT_TRUE(call<tellGetSize>(large, none).ok());
    EXPECT_EQ(large.size(), 70U);
    EXPECT_EQ(reinterpret_cast<Lum8u*>(large.get()), large.data());
    // a size of 0 is a block that is there
    EXPECT_EQ(none.size(), 0U);
    EXPECT_NE(none.data(), nullptr);
}

// What must not compile.
using Bytes = View<const Lum8u>;
using Result = View<Lum8u>;
using Spec = const Record<LumFilterGaussianSpec>&;
constexpr auto& gaussian = lumiFilterGaussian_8u_C1R;
static_assert(lumcv::Callable<gaussian, Bytes, Result, LumiSize, int, std::nullptr_t, Spec, Block&>);
// elements of another type, and a destination that is const
static_assert(!lumcv::Callable<gaussian, View<Lum16u>, Result, LumiSize, int, std::nullptr_t, Spec, Block&>);
static_assert(!lumcv::Callable<gaussian, Bytes, Bytes, LumiSize, int, std::nullptr_t, Spec, Block&>);
// other channels
static_assert(!lumcv::Callable<gaussian, View<Lum8u, 3>, Result, LumiSize, int, std::nullptr_t, Spec, Block&>);
static_assert(!lumcv::Callable<lumiFilterGaussian_8u_C3R, Bytes, Result, LumiSize, int, std::nullptr_t, Spec, Block&>);
// a missing argument, one too many, and two in the wrong order
static_assert(!lumcv::Callable<gaussian, Bytes, Result, LumiSize, int, std::nullptr_t, Spec>);
static_assert(!lumcv::Callable<gaussian, Bytes, Result, LumiSize, int, std::nullptr_t, Spec, Block&, int>);
static_assert(!lumcv::Callable<gaussian, Bytes, Result, LumiSize, int, std::nullptr_t, Block&, Spec>);
// another record, a record that Init may not write, scratch that is const
static_assert(!lumcv::Callable<gaussian, Bytes, Result, LumiSize, int, std::nullptr_t,
                               const Record<LumFilterSeparableSpec>&, Block&>);
static_assert(!lumcv::Callable<lumiFilterGaussianInit, LumiSize, int, Lum32f, int, int, int, Spec, Block&>);
static_assert(!lumcv::Callable<gaussian, Bytes, Result, LumiSize, int, std::nullptr_t, Spec, const Block&>);
// sizes of 64 bits for a function of 32, numbers of another kind, and numbers that would lose bits
static_assert(!lumcv::Callable<gaussian, Bytes, Result, LumiSizeL, int, std::nullptr_t, Spec, Block&>);
static_assert(!lumcv::Callable<gaussian, Bytes, Result, LumiSize, float, std::nullptr_t, Spec, Block&>);
static_assert(!lumcv::Callable<gaussian, Bytes, Result, LumiSize, bool, std::nullptr_t, Spec, Block&>);
static_assert(!lumcv::Callable<gaussian, Bytes, Result, LumiSize, std::size_t, std::nullptr_t, Spec, Block&>);
static_assert(!lumcv::Callable<lumiCopySubpix_8u_C1R, Bytes, Result, LumiSize, double, float>);
static_assert(!lumcv::Callable<lumiCopySubpix_8u_C1R, Bytes, Result, LumiSize, int, float>);
static_assert(lumcv::Callable<lumiCopySubpix_8u_C1R, Bytes, Result, LumiSize, float, float>);
// a block takes its size from queries alone
static_assert(!lumcv::Callable<lumiHoughProbLine_8u32f_C1R, Bytes, LumiSize, int, int, int, Block&, int, Lum32s*,
                               Block&, const Record<LumHoughProbSpec>&>);
static_assert(lumcv::Callable<lumiHoughProbLine_8u32f_C1R, Bytes, LumiSize, int, int, int, std::vector<Lum32s>&, int,
                              Lum32s*, Block&, const Record<LumHoughProbSpec>&>);
// bits are no bytes
static_assert(!lumcv::Callable<lumiDilateBorder_1u_C1R, Bytes, Result, LumiSize, int, int,
                               const Record<LumiMorphBitRecord>&, Block&>);

}  // namespace
