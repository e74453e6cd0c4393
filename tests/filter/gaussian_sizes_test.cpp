// The sizes of the Gaussian filter's blocks: the formulas of the four queries, where they become too large, and what
// the queries refuse.
#include <array>
#include <limits>

#include "filter/gaussian_reference.hpp"
#include "support/random.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::gaussian {
namespace {

constexpr std::array kDataTypes = {lumType8u, lumType16u, lumType16s, lumType32f};
constexpr std::array kChannelCounts = {1, 3};
constexpr Lum32s kUnwritten32 = -77;
constexpr Lum64s kUnwritten64 = -77;

std::string describe(Lum64s width, Lum64s height, Lum32s kernelSize, LumDataType dataType, int channels)
{
    return std::to_string(width) + " x " + std::to_string(height) + ", kernel " + std::to_string(kernelSize) +
           ", type " + std::to_string(dataType) + ", channels " + std::to_string(channels);
}

void expectSpecSizes(Lum32s kernelSize, LumDataType dataType, int channels)
{
    SCOPED_TRACE(describe(0, 0, kernelSize, dataType, channels));
    const bool fits = specSize(kernelSize) <= kLargestSize;
    const LumStatus status = fits ? lumOk : lumErrSizeTooLarge;

    Lum32s spec = kUnwritten32;
    Lum32s init = kUnwritten32;
    EXPECT_EQ(lumiFilterGaussianGetSpecSize(kernelSize, dataType, channels, &spec, &init), status);
    EXPECT_EQ(spec, fits ? static_cast<Lum32s>(specSize(kernelSize)) : kUnwritten32);
    EXPECT_EQ(init, fits ? kInitBufferSize : kUnwritten32);

    Lum64s specL = kUnwritten64;
    Lum64s initL = kUnwritten64;
    EXPECT_EQ(lumiFilterGaussianGetSpecSize_L(kernelSize, dataType, channels, &specL, &initL), status);
    EXPECT_EQ(specL, fits ? static_cast<Lum64s>(specSize(kernelSize)) : kUnwritten64);
    EXPECT_EQ(initL, fits ? kInitBufferSize : kUnwritten64);
}

void expectRingSize(Lum64s width, Lum64s height, Lum32s kernelSize, LumDataType dataType, int channels)
{
    SCOPED_TRACE(describe(width, height, kernelSize, dataType, channels));
    const Wide expected = ringSize(width, kernelSize, channels);
    const bool fits = expected <= kLargestSize && width <= kLargestSize && height <= kLargestSize;
    Lum64s size = kUnwritten64;
    EXPECT_EQ(
        lumiFilterGaussianGetBufferSize_L({width, height}, kernelSize, dataType, lumBorderMirror, channels, &size),
        fits ? lumOk : lumErrSizeTooLarge);
    EXPECT_EQ(size, fits ? static_cast<Lum64s>(expected) : kUnwritten64);
}

void expectBothSizes(Lum32s width, Lum32s height, Lum32s kernelSize, LumDataType dataType, int channels)
{
    SCOPED_TRACE(describe(width, height, kernelSize, dataType, channels));
    const Wide expectedBuffer = bufferSize(width, height, kernelSize, dataType, channels);
    const Wide expectedSpec = bothSpecSizes(kernelSize, dataType);
    const bool fits = expectedBuffer <= kLargestSize && expectedSpec <= kLargestSize;
    Lum32s spec = kUnwritten32;
    Lum32s buffer = kUnwritten32;
    EXPECT_EQ(lumiFilterGaussianGetBufferSize({width, height}, kernelSize, dataType, channels, &spec, &buffer),
              fits ? lumOk : lumErrSizeTooLarge);
    EXPECT_EQ(spec, fits ? static_cast<Lum32s>(expectedSpec) : kUnwritten32);
    EXPECT_EQ(buffer, fits ? static_cast<Lum32s>(expectedBuffer) : kUnwritten32);
}

// The largest argument up to which the size fits; the sizes grow with it.
template <typename Size>
Lum64s lastFitting(Lum64s largest, Size size)
{
    Lum64s fits = 1;
    Lum64s tooLarge = largest + 1;
    while (tooLarge - fits > 1) {
        const Lum64s middle = fits + (tooLarge - fits) / 2;
        (size(middle) <= kLargestSize ? fits : tooLarge) = middle;
    }
    return fits;
}

template <typename F>
void forEachFormat(F f)
{
    for (const LumDataType dataType : kDataTypes) {
        for (const int channels : kChannelCounts) {
            f(dataType, channels);
            if (::testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

// Worked out by hand, so that a slip in the formulas above shows.
TEST(GaussianSizesQuick, KnownValues)
{
    Lum32s spec = 0;
    Lum32s buffer = 0;
    ASSERT_EQ(lumiFilterGaussianGetSpecSize(5, lumType8u, 1, &spec, &buffer), lumOk);
    EXPECT_EQ(spec, 140);
    EXPECT_EQ(buffer, 64);

    Lum64s ring = 0;
    ASSERT_EQ(lumiFilterGaussianGetBufferSize_L({10, 10}, 3, lumType8u, lumBorderReplicate, 1, &ring), lumOk);
    EXPECT_EQ(ring, 4 * 64 + 36 + 64);
    ASSERT_EQ(lumiFilterGaussianGetBufferSize_L({16, 1}, 3, lumType8u, lumBorderReplicate, 1, &ring), lumOk);
    EXPECT_EQ(ring, 4 * 64 + 36 + 64);
    ASSERT_EQ(lumiFilterGaussianGetBufferSize_L({17, 1}, 3, lumType8u, lumBorderReplicate, 1, &ring), lumOk);
    EXPECT_EQ(ring, 4 * 128 + 36 + 64);
    ASSERT_EQ(lumiFilterGaussianGetBufferSize_L({1920, 1080}, 15, lumType32f, lumBorderInMem, 3, &ring), lumOk);
    EXPECT_EQ(ring, 16 * 23040 + 180 + 64);

    // 10x10, kernel 5: m = 5, P = 16
    ASSERT_EQ(lumiFilterGaussianGetBufferSize({10, 10}, 5, lumType32f, 1, &spec, &buffer), lumOk);
    EXPECT_EQ(spec, 192 + 140);
    EXPECT_EQ(buffer, 15 * 16 * 4 + 96 + 10 * 64 + (576 + 32) + (192 + 32) + 10 * 8 + 32);
    ASSERT_EQ(lumiFilterGaussianGetBufferSize({10, 10}, 5, lumType8u, 1, &spec, &buffer), lumOk);
    EXPECT_EQ(spec, 116 + 140);
    EXPECT_EQ(buffer, 16 * 14 * 2 + 96 + 10 * 32 + (324 + 32) + (208 + 32) + 15 * 8 + 32);
    // 10x2, kernel 5, three channels: m = 2, P = 45 rounded to 48
    ASSERT_EQ(lumiFilterGaussianGetBufferSize({10, 2}, 5, lumType16u, 3, &spec, &buffer), lumOk);
    EXPECT_EQ(buffer, 48 * 11 * 2 + 96 + 7 * 96 + (736 + 32) + (160 + 64 + 256 + 32) + 7 * 8 + 32);
    ASSERT_EQ(lumiFilterGaussianGetBufferSize({10, 2}, 5, lumType16s, 3, &spec, &buffer), lumOk);
    EXPECT_EQ(buffer, 48 * 11 * 2 + 96 + 7 * 96 + (296 + 32) + (496 + 32) + 7 * 8 + 32);
    // one wide row: m = 1, P = 100031 rounded to 100032
    ASSERT_EQ(lumiFilterGaussianGetBufferSize({100000, 1}, 31, lumType8u, 1, &spec, &buffer), lumOk);
    EXPECT_EQ(buffer, 100032 * 62 * 2 + 96 + 32 * 200064 + (1260 + 32) + (1200064 + 32) + 32 * 8 + 32);
}

TEST(GaussianSizesQuick, RecordFollowsItsFormula)
{
    forEachFormat([](LumDataType dataType, int channels) {
        for (Lum32s kernelSize = 3; kernelSize < 200; kernelSize += 2) {
            expectSpecSizes(kernelSize, dataType, channels);
        }
        for (const Lum32s kernelSize : {1001, 65537, 1073741755, 1073741757}) {
            expectSpecSizes(kernelSize, dataType, channels);
        }
    });
}

TEST(GaussianSizesQuick, RecordTooLarge)
{
    static_assert(specSize(1073741757) <= kLargestSize && specSize(1073741759) > kLargestSize);
    forEachFormat([](LumDataType dataType, int channels) {
        for (const Lum32s kernelSize : {1073741759, 1073741761, 0x7ffffffd, 0x7fffffff}) {
            expectSpecSizes(kernelSize, dataType, channels);
        }
    });
}

TEST(GaussianSizesQuick, BlocksFollowTheirFormulas)
{
    forEachFormat([](LumDataType dataType, int channels) {
        for (const Lum32s kernelSize : {3, 5, 7, 9, 15, 31, 63, 65, 1001}) {
            for (const Lum32s width : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 640, 1921, 100003}) {
                for (const Lum32s height : {1, 2, 3, 4, 5, 8, 15, 31, 32, 1080, 100003}) {
                    expectRingSize(width, height, kernelSize, dataType, channels);
                    expectBothSizes(width, height, kernelSize, dataType, channels);
                    if (::testing::Test::HasFailure()) {
                        return;
                    }
                }
            }
        }
    });
}

TEST(GaussianSizes, BlocksOfRandomGeometry)
{
    Random random(20);
    const auto upTo = [&](int bits) {
        return static_cast<Lum32s>(random.between(1, (std::int64_t{1} << random.between(1, bits)) - 1));
    };
    forEachFormat([&](LumDataType dataType, int channels) {
        for (int i = 0; i < 20000 && !::testing::Test::HasFailure(); ++i) {
            const Lum32s width = upTo(31);
            const Lum32s height = upTo(31);
            const Lum32s kernelSize = std::max(upTo(i % 2 == 0 ? 8 : 31) | 1, 3);
            expectRingSize(width, height, kernelSize, dataType, channels);
            expectBothSizes(width, height, kernelSize, dataType, channels);
            expectSpecSizes(kernelSize, dataType, channels);
        }
    });
}

// Each query on both sides of the largest width, height and kernel that it can serve.
TEST(GaussianSizesQuick, LargestGeometry)
{
    forEachFormat([](LumDataType dataType, int channels) {
        for (const Lum32s kernelSize : {3, 5, 31, 1001}) {
            const Lum64s ringWidth =
                lastFitting(0x7fffffff, [&](Lum64s width) { return ringSize(width, kernelSize, channels); });
            ASSERT_LT(ringWidth, 0x7fffffff);
            expectRingSize(ringWidth, 1, kernelSize, dataType, channels);
            expectRingSize(ringWidth + 1, 1, kernelSize, dataType, channels);

            for (const Lum32s height : {1, 1000}) {
                const Lum64s width = lastFitting(
                    0x7fffffff, [&](Lum64s w) { return bufferSize(w, height, kernelSize, dataType, channels); });
                ASSERT_LT(width, 0x7fffffff);
                expectBothSizes(static_cast<Lum32s>(width), height, kernelSize, dataType, channels);
                expectBothSizes(static_cast<Lum32s>(width + 1), height, kernelSize, dataType, channels);
            }
        }
        // heights count in the integer blocks alone: a pointer for each row
        const Lum64s height =
            lastFitting(0x7fffffff, [&](Lum64s h) { return bufferSize(1, h, 3, dataType, channels); });
        EXPECT_EQ(height == 0x7fffffff, dataType == lumType32f);
        expectBothSizes(1, static_cast<Lum32s>(height), 3, dataType, channels);
        if (height < 0x7fffffff) {
            expectBothSizes(1, static_cast<Lum32s>(height + 1), 3, dataType, channels);
        }
        expectRingSize(1, 0x7fffffff, 3, dataType, channels);

        const Lum64s halfKernel = lastFitting(0x3fffffff, [&](Lum64s half) {
            return std::max(bothSpecSizes(2 * half + 1, dataType), bufferSize(1, 1, 2 * half + 1, dataType, channels));
        });
        expectBothSizes(1, 1, static_cast<Lum32s>(2 * halfKernel + 1), dataType, channels);
        expectBothSizes(1, 1, static_cast<Lum32s>(2 * halfKernel + 3), dataType, channels);
    });
}

TEST(GaussianSizesQuick, NothingOverflowsOnTheWay)
{
    constexpr Lum32s large32 = std::numeric_limits<Lum32s>::max();
    constexpr Lum64s large64 = std::numeric_limits<Lum64s>::max();
    forEachFormat([&](LumDataType dataType, int channels) {
        for (const Lum32s kernelSize : {3, 4097, large32}) {
            for (const Lum64s width : {Lum64s{1}, Lum64s{large32}, Lum64s{large32} + 1, large64}) {
                for (const Lum64s height : {Lum64s{1}, Lum64s{large32}, Lum64s{large32} + 1, large64}) {
                    expectRingSize(width, height, kernelSize, dataType, channels);
                }
            }
            expectBothSizes(large32, large32, kernelSize, dataType, channels);
            expectBothSizes(large32, 1, kernelSize, dataType, channels);
            expectBothSizes(1, large32, kernelSize, dataType, channels);
        }
    });
}

TEST(GaussianSizesQuick, TheBorderChangesNoSize)
{
    for (const LumiBorderType mode : {lumBorderReplicate, lumBorderMirror, lumBorderConstant}) {
        for (int flags = 0; flags < 256; flags += 16) {
            Lum64s size = 0;
            EXPECT_EQ(lumiFilterGaussianGetBufferSize_L({100, 50}, 7, lumType16s, mode | flags, 3, &size), lumOk)
                << "border " << (mode | flags);
            EXPECT_EQ(size, static_cast<Lum64s>(ringSize(100, 7, 3)));
        }
    }
    Lum64s size = 0;
    EXPECT_EQ(lumiFilterGaussianGetBufferSize_L({100, 50}, 7, lumType16s, lumBorderInMem, 3, &size), lumOk);
    EXPECT_EQ(size, static_cast<Lum64s>(ringSize(100, 7, 3)));
}

TEST(GaussianSizesQuick, BordersThatAreRefused)
{
    for (int border = 0; border < 512; ++border) {
        const int mode = border & 15;
        const bool valid =
            border == lumBorderInMem ||
            (border < 256 && (mode == lumBorderReplicate || mode == lumBorderMirror || mode == lumBorderConstant));
        Lum64s size = kUnwritten64;
        EXPECT_EQ(lumiFilterGaussianGetBufferSize_L({10, 10}, 3, lumType8u, border, 1, &size),
                  valid ? lumOk : lumErrBorder)
            << "border " << border;
        EXPECT_EQ(size != kUnwritten64, valid) << "border " << border;
    }
    Lum64s size = kUnwritten64;
    EXPECT_EQ(lumiFilterGaussianGetBufferSize_L({10, 10}, 3, lumType8u, -15, 1, &size), lumErrBorder);
    EXPECT_EQ(size, kUnwritten64);
}

template <typename Size>
struct SpecSizeArgs
{
    Lum32s kernelSize = 5;
    LumDataType dataType = lumType8u;
    Lum32s numChannels = 1;
    Size* pSpecSize;
    Size* pInitBufferSize;
    Size* results;

    explicit SpecSizeArgs(Size* twoResults)
        : pSpecSize(twoResults), pInitBufferSize(twoResults + 1), results(twoResults)
    {
    }
    LumStatus call() const
    {
        if constexpr (sizeof(Size) == 8) {
            return lumiFilterGaussianGetSpecSize_L(kernelSize, dataType, numChannels, pSpecSize, pInitBufferSize);
        } else {
            return lumiFilterGaussianGetSpecSize(kernelSize, dataType, numChannels, pSpecSize, pInitBufferSize);
        }
    }
    std::vector<Output> outputs() const
    {
        return {Output(results, 2 * sizeof(Size))};
    }
};

template <typename Size>
void expectSpecSizeOrder()
{
    using Args = SpecSizeArgs<Size>;
    Size results[2] = {kUnwritten32, kUnwritten32};
    expectStatusOrder(Args(results),
                      {
                          {"pSpecSize null", lumErrNullPointer, [](Args& a) { a.pSpecSize = nullptr; }},
                          {"pInitBufferSize null", lumErrNullPointer, [](Args& a) { a.pInitBufferSize = nullptr; }},
                          {"kernel 1", lumErrArgument, [](Args& a) { a.kernelSize = 1; }},
                          {"kernel 2", lumErrArgument, [](Args& a) { a.kernelSize = 2; }},
                          {"kernel 4", lumErrArgument, [](Args& a) { a.kernelSize = 4; }},
                          {"kernel 0", lumErrArgument, [](Args& a) { a.kernelSize = 0; }},
                          {"kernel negative", lumErrArgument, [](Args& a) { a.kernelSize = -3; }},
                          {"kernel even and large", lumErrArgument, [](Args& a) { a.kernelSize = 0x7ffffffe; }},
                          {"type 0", lumErrDataType, [](Args& a) { a.dataType = 0; }},
                          {"type 64f", lumErrDataType, [](Args& a) { a.dataType = lumType64f; }},
                          {"type negative", lumErrDataType, [](Args& a) { a.dataType = -1; }},
                          {"no channel", lumErrValue, [](Args& a) { a.numChannels = 0; }},
                          {"two channels", lumErrValue, [](Args& a) { a.numChannels = 2; }},
                          {"four channels", lumErrValue, [](Args& a) { a.numChannels = 4; }},
                          {"channels negative", lumErrValue, [](Args& a) { a.numChannels = -1; }},
                      });
}

TEST(GaussianSizesQuick, SpecSizeChecksInOrder)
{
    expectSpecSizeOrder<Lum32s>();
}

TEST(GaussianSizesQuick, SpecSizeLChecksInOrder)
{
    expectSpecSizeOrder<Lum64s>();
}

struct BufferSizeArgs
{
    LumiSize roiSize = {10, 10};
    Lum32s kernelSize = 5;
    LumDataType dataType = lumType8u;
    Lum32s numChannels = 1;
    Lum32s* pSpecSize;
    Lum32s* pBufferSize;
    Lum32s* results;

    explicit BufferSizeArgs(Lum32s* twoResults)
        : pSpecSize(twoResults), pBufferSize(twoResults + 1), results(twoResults)
    {
    }
    LumStatus call() const
    {
        return lumiFilterGaussianGetBufferSize(roiSize, kernelSize, dataType, numChannels, pSpecSize, pBufferSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(results, 2 * sizeof(Lum32s))};
    }
};

TEST(GaussianSizesQuick, BufferSizeChecksInOrder)
{
    using Args = BufferSizeArgs;
    Lum32s results[2] = {kUnwritten32, kUnwritten32};
    expectStatusOrder(
        Args(results),
        {
            {"pSpecSize null", lumErrNullPointer, [](Args& a) { a.pSpecSize = nullptr; }},
            {"pBufferSize null", lumErrNullPointer, [](Args& a) { a.pBufferSize = nullptr; }},
            {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
            {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
            {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = -1; }},
            {"height negative", lumErrSize, [](Args& a) { a.roiSize.height = std::numeric_limits<Lum32s>::min(); }},
            {"kernel 1", lumErrArgument, [](Args& a) { a.kernelSize = 1; }},
            {"kernel 2", lumErrArgument, [](Args& a) { a.kernelSize = 2; }},
            {"kernel 4", lumErrArgument, [](Args& a) { a.kernelSize = 4; }},
            {"kernel negative", lumErrArgument, [](Args& a) { a.kernelSize = -3; }},
            {"type 0", lumErrDataType, [](Args& a) { a.dataType = 0; }},
            {"type 64f", lumErrDataType, [](Args& a) { a.dataType = lumType64f; }},
            {"no channel", lumErrValue, [](Args& a) { a.numChannels = 0; }},
            {"two channels", lumErrValue, [](Args& a) { a.numChannels = 2; }},
            {"four channels", lumErrValue, [](Args& a) { a.numChannels = 4; }},
            {"too large",
             lumErrSizeTooLarge,
             [](Args& a) { a.roiSize.width = 0x7fffffff; },
             {"width 0", "width negative"}},
        });
}

struct BufferSizeLArgs
{
    LumiSizeL roiSize = {10, 10};
    Lum32s kernelSize = 5;
    LumDataType dataType = lumType8u;
    LumiBorderType borderType = lumBorderReplicate;
    Lum32s numChannels = 1;
    Lum64s* pBufferSize;
    Lum64s* result;

    explicit BufferSizeLArgs(Lum64s* oneResult) : pBufferSize(oneResult), result(oneResult) {}
    LumStatus call() const
    {
        return lumiFilterGaussianGetBufferSize_L(roiSize, kernelSize, dataType, borderType, numChannels, pBufferSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(result, sizeof(Lum64s))};
    }
};

TEST(GaussianSizesQuick, BufferSizeLChecksInOrder)
{
    using Args = BufferSizeLArgs;
    Lum64s result = kUnwritten64;
    expectStatusOrder(
        Args(&result),
        {
            {"pBufferSize null", lumErrNullPointer, [](Args& a) { a.pBufferSize = nullptr; }},
            {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
            {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
            {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = std::numeric_limits<Lum64s>::min(); }},
            {"height negative", lumErrSize, [](Args& a) { a.roiSize.height = -1; }},
            {"width too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.width = Lum64s{1} << 31; }},
            {"height too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.height = Lum64s{1} << 31; }},
            {"kernel 1", lumErrArgument, [](Args& a) { a.kernelSize = 1; }},
            {"kernel 2", lumErrArgument, [](Args& a) { a.kernelSize = 2; }},
            {"kernel 4", lumErrArgument, [](Args& a) { a.kernelSize = 4; }},
            {"kernel negative", lumErrArgument, [](Args& a) { a.kernelSize = -3; }},
            {"type 0", lumErrDataType, [](Args& a) { a.dataType = 0; }},
            {"type 64f", lumErrDataType, [](Args& a) { a.dataType = lumType64f; }},
            {"no channel", lumErrValue, [](Args& a) { a.numChannels = 0; }},
            {"two channels", lumErrValue, [](Args& a) { a.numChannels = 2; }},
            {"four channels", lumErrValue, [](Args& a) { a.numChannels = 4; }},
            {"border 0", lumErrBorder, [](Args& a) { a.borderType = 0; }},
            {"border neutral", lumErrBorder, [](Args& a) { a.borderType = lumBorderNeutral; }},
            {"border 256", lumErrBorder, [](Args& a) { a.borderType = 256 | lumBorderReplicate; }},
            {"sum too large",
             lumErrSizeTooLarge,
             [](Args& a) { a.roiSize.width = 0x7fffffff; },
             {"width 0", "width negative"}},
        });
}

}  // namespace
}  // namespace lumcv::test::gaussian
