// The records of the Gaussian filter: their headers, the accuracy of their taps, where they may stand, and what Init
// refuses.
#include <array>
#include <cmath>
#include <limits>

#include "filter/gaussian_fixture.hpp"
#include "support/compare.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::gaussian {
namespace {

constexpr std::array kDataTypes = {lumType8u, lumType16u, lumType16s, lumType32f};
constexpr std::array kKernelSizes = {3, 5, 7, 9, 11, 15, 17, 31, 33, 63, 65, 127, 129, 257};
constexpr std::array kSigmas = {0.3f, 0.5f, 0.8f, 1.0f, 1.5f, 2.6f, 5.0f, 17.0f, 100.0f};

// half a unit in the last place of 1.0f: what one rounding may cost
constexpr double kRounding = 0x1p-24;
constexpr double kSmallestFloat = 0x1p-149;

// The exponential for the tap at distance d: the argument in single precision, as it is documented, and everything
// behind it exact.
double unscaledTap(int d, Lum32f sigma)
{
    const Lum32f s = 1.0f / (sigma * sigma);
    const Lum32f distance = static_cast<Lum32f>(d);
    const Lum32f halfSquare = -0.5f * distance * distance;
    return std::exp(static_cast<double>(halfSquare * s));
}

// The bounds, in roundings: the exponential is right to its last bit, which is two; a sum of h + 1 numbers rounds h
// times; the reciprocal and the product round once each. Half a rounding more covers the products of the errors.
void expectAccurateTaps(const std::vector<Lum32f>& taps, Lum32f sigma)
{
    const int h = static_cast<int>(taps.size()) - 1;
    const double centre = static_cast<double>(taps.back());
    double exactSum = 1.0;
    double tapSum = centre;
    for (int d = h; d >= 1; --d) {
        exactSum += 2 * unscaledTap(d, sigma);
        tapSum += 2 * static_cast<double>(taps[static_cast<std::size_t>(h - d)]);
    }
    EXPECT_LE(std::abs(centre * exactSum - 1.0), (h + 3.5) * kRounding) << "the centre is " << centre;
    EXPECT_LE(std::abs(tapSum - 1.0), (h + 2.5) * kRounding) << "the sum of the taps is " << tapSum;

    for (int d = h; d >= 1; --d) {
        const double tap = static_cast<double>(taps[static_cast<std::size_t>(h - d)]);
        const double exact = unscaledTap(d, sigma) * centre;
        EXPECT_LE(std::abs(tap - exact), exact * 3.5 * kRounding + 1.5 * kSmallestFloat)
            << "the tap at distance " << d << " of " << h << " is " << elementText(static_cast<Lum32f>(tap))
            << ", expected " << elementText(static_cast<Lum32f>(exact));
    }
}

Parameters parameters(Lum32s kernelSize, Lum32f sigma, LumDataType dataType = lumType8u)
{
    Parameters p;
    p.width = 20;
    p.height = 10;
    p.kernelSize = kernelSize;
    p.sigma = sigma;
    p.dataType = dataType;
    return p;
}

std::vector<Lum32f> tapsOf(Entry entry, const Parameters& p)
{
    return foldedTaps(makeRecord(entry, p).data());
}

TEST(GaussianInitQuick, HeadersOfBothRecords)
{
    for (const LumDataType dataType : kDataTypes) {
        const Lum32s tapShift = dataType == lumType8u ? 12 : dataType == lumType32f ? 0 : 15;
        for (const Lum32s channels : {1, 3}) {
            for (const Lum32s kernelSize : {3, 5, 7, 9, 31}) {
                for (const LumiBorderType border : {lumBorderReplicate + 0, lumBorderMirror | lumBorderInMemLeft,
                                                    lumBorderConstant | lumBorderInMemBottom, lumBorderInMem + 0}) {
                    Parameters p = parameters(kernelSize, 1.2f, dataType);
                    p.channels = channels;
                    p.border = border;

                    const PlacedBlock block = makeRecord(Entry::Ordinary, p);
                    const RecordHeader first = readHeader(block.data());
                    EXPECT_EQ(first.kernelSize, kernelSize);
                    EXPECT_EQ(first.tableOffset, kFirstTableOffset);
                    EXPECT_EQ(first.dataType, dataType);
                    EXPECT_EQ(first.borderType, border);
                    EXPECT_EQ(first.last, tapShift);

                    const PlacedBlock largeBlock = makeRecord(Entry::Large, p);
                    for (const Lum8u* record :
                         {foldedRecord(block.data()), static_cast<const Lum8u*>(largeBlock.data())}) {
                        const RecordHeader second = readHeader(record);
                        EXPECT_EQ(second.kernelSize, kernelSize);
                        EXPECT_EQ(second.tableOffset, kSecondTableOffset);
                        EXPECT_EQ(second.dataType, dataType);
                        EXPECT_EQ(second.borderType, border);
                        EXPECT_EQ(second.last, 0);
                    }
                }
            }
        }
    }
}

TEST(GaussianInitQuick, TapsAreAccurate)
{
    for (const Lum32s kernelSize : kKernelSizes) {
        for (const Lum32f sigma : kSigmas) {
            SCOPED_TRACE("kernel " + std::to_string(kernelSize) + ", sigma " + std::to_string(sigma));
            expectAccurateTaps(tapsOf(Entry::Large, parameters(kernelSize, sigma)), sigma);
        }
    }
}

// Sigmas close together, so that the exponential meets arguments all over its range, down to where it leaves the
// normal numbers.
TEST(GaussianInit, TapsAreAccurateForManySigmas)
{
    for (Lum32f sigma = 0.02f; sigma < 200.0f && !::testing::Test::HasFailure(); sigma *= 1.0037f) {
        SCOPED_TRACE("sigma " + elementText(sigma));
        expectAccurateTaps(tapsOf(Entry::Large, parameters(63, sigma)), sigma);
    }
}

TEST(GaussianInitQuick, ExtremeSigmas)
{
    using Limits = std::numeric_limits<Lum32f>;
    for (const Lum32s kernelSize : {3, 5, 7, 9, 31}) {
        // the squares of the first four are 0, so the scale is infinite
        for (const Lum32f sigma : {Limits::denorm_min(), Limits::min(), 1e-30f, 1e-23f, 1e-20f, 1e-10f, 0.01f}) {
            SCOPED_TRACE("kernel " + std::to_string(kernelSize) + ", sigma " + elementText(sigma));
            const std::vector<Lum32f> taps = tapsOf(Entry::Large, parameters(kernelSize, sigma));
            EXPECT_EQ(taps.back(), 1.0f);
            for (std::size_t i = 0; i + 1 < taps.size(); ++i) {
                EXPECT_TRUE(sameElement(taps[i], 0.0f)) << "tap " << i << " is " << taps[i];
            }
        }
        // the square of the last three is infinite, so the scale is 0
        for (const Lum32f sigma : {1e6f, 1e15f, 1e20f, Limits::max(), Limits::infinity()}) {
            SCOPED_TRACE("kernel " + std::to_string(kernelSize) + ", sigma " + elementText(sigma));
            const std::vector<Lum32f> taps = tapsOf(Entry::Large, parameters(kernelSize, sigma));
            expectAccurateTaps(taps, sigma);
            for (const Lum32f tap : taps) {
                EXPECT_NEAR(static_cast<double>(tap), 1.0 / kernelSize, 1e-6);
            }
        }
    }
}

TEST(GaussianInitQuick, ThreeTapsSumToOne)
{
    for (const Lum32f sigma : {0.1f, 0.4f, 0.85f, 1.0f, 2.0f, 50.0f, 1e10f}) {
        const std::vector<Lum32f> taps = tapsOf(Entry::Ordinary, parameters(3, sigma));
        ASSERT_EQ(taps.size(), 2u);
        EXPECT_NEAR(2.0 * static_cast<double>(taps[0]) + static_cast<double>(taps[1]), 1.0, 4 * kRounding);
    }
}

// One kernel has one set of taps, whatever the rest of the geometry is and whichever Init lays it.
TEST(GaussianInitQuick, TapsDependOnKernelAndSigmaAlone)
{
    for (const Lum32s kernelSize : kKernelSizes) {
        const std::vector<Lum32f> expected = tapsOf(Entry::Large, parameters(kernelSize, 1.7f));
        for (const LumDataType dataType : kDataTypes) {
            for (const Lum32s channels : {1, 3}) {
                for (const Entry entry : {Entry::Ordinary, Entry::Large}) {
                    Parameters p = parameters(kernelSize, 1.7f, dataType);
                    p.channels = channels;
                    p.width = channels * 7;
                    p.height = 3;
                    p.border = lumBorderMirror;
                    EXPECT_EQ(tapsOf(entry, p), expected) << "kernel " << kernelSize << ", type " << dataType;
                }
            }
        }
    }
}

// The first record's taps: the rounding of the exact value, unless that lies so close to a half that the errors of
// single precision (in roundings: three in the argument, which counts as often as the argument is large; the sum; the
// exponential, the reciprocal and the products) may take it to the other side.
void expectFirstTaps(Lum32s kernelSize, Lum32f sigma, LumDataType dataType)
{
    const int h = kernelSize / 2;
    const auto argument = [&](int i) {
        return -0.5 * i * i / (static_cast<double>(sigma) * static_cast<double>(sigma));
    };
    double sum = 0.0;
    double meanArgument = 0.0;
    for (int i = -h; i <= h; ++i) {
        sum += std::exp(argument(i));
        meanArgument -= argument(i) * std::exp(argument(i));
    }
    meanArgument /= sum;

    const PlacedBlock block = makeRecord(Entry::Ordinary, parameters(kernelSize, sigma, dataType));
    const auto count = static_cast<std::size_t>(kernelSize);
    for (int i = -h; i <= h; ++i) {
        const std::size_t index = static_cast<std::size_t>(i + h);
        const double bound = (3 * (meanArgument - argument(i)) + kernelSize + 8) * kRounding;
        const double exact = std::exp(argument(i)) / sum;
        if (dataType == lumType32f) {
            const double tap = static_cast<double>(readTable<Lum32f>(block.data(), 16, count)[index]);
            EXPECT_LE(std::abs(tap - exact), exact * bound + 2 * kSmallestFloat) << "tap " << index;
            continue;
        }
        const double scaled = exact * (dataType == lumType8u ? 4096 : 32768);
        const double lowest = std::min(std::trunc(scaled * (1 - bound) + 0.5), 32767.0);
        const double highest = std::min(std::trunc(scaled * (1 + bound) + 0.5), 32767.0);
        const double tap = static_cast<double>(readTable<Lum16s>(block.data(), 16, count)[index]);
        EXPECT_TRUE(tap >= lowest && tap <= highest)
            << "tap " << index << " of " << kernelSize << ": got " << tap << ", expected " << scaled;
    }
}

TEST(GaussianInitQuick, TapsOfTheFirstRecord)
{
    for (const LumDataType dataType : kDataTypes) {
        for (const Lum32s kernelSize : kKernelSizes) {
            for (const Lum32f sigma : kSigmas) {
                SCOPED_TRACE("type " + std::to_string(dataType) + ", kernel " + std::to_string(kernelSize) +
                             ", sigma " + std::to_string(sigma));
                expectFirstTaps(kernelSize, sigma, dataType);
            }
            // one tap takes everything: 4096, and 32767 where 32768 does not fit
            expectFirstTaps(kernelSize, 0.01f, dataType);
        }
    }
}

// The square of such a sigma is 0: the centre takes everything all the same.
TEST(GaussianInitQuick, TapsOfTheFirstRecordWhenSigmaVanishes)
{
    using Limits = std::numeric_limits<Lum32f>;
    for (const Lum32f sigma : {Limits::denorm_min(), Limits::min(), 1e-30f}) {
        for (const LumDataType dataType : kDataTypes) {
            const PlacedBlock block = makeRecord(Entry::Ordinary, parameters(5, sigma, dataType));
            SCOPED_TRACE("type " + std::to_string(dataType) + ", sigma " + elementText(sigma));
            if (dataType == lumType32f) {
                EXPECT_EQ(readTable<Lum32f>(block.data(), 16, 5), (std::vector<Lum32f>{0, 0, 1, 0, 0}));
            } else {
                const Lum16s centre = dataType == lumType8u ? 4096 : 32767;
                EXPECT_EQ(readTable<Lum16s>(block.data(), 16, 5), (std::vector<Lum16s>{0, 0, centre, 0, 0}));
            }
        }
    }
}

// Every address, and not a byte beside the block; the tables move to their alignment inside.
TEST(GaussianInitQuick, RecordsStandAnywhere)
{
    for (const LumDataType dataType : kDataTypes) {
        for (const Lum32s kernelSize : {3, 5, 7, 9, 15, 31, 33, 65}) {
            const Parameters p = parameters(kernelSize, 2.2f, dataType);
            const std::vector<Lum32f> expected = tapsOf(Entry::Large, p);
            const PlacedBlock placed = makeRecord(Entry::Ordinary, p);
            const auto count = static_cast<std::size_t>(kernelSize);
            for (std::size_t distance = 0; distance < 64; ++distance) {
                for (const Guard guard : {Guard::After, Guard::Before}) {
                    const PlacedBlock large = makeRecord(Entry::Large, p, guard, distance);
                    EXPECT_EQ(foldedTaps(large.data()), expected) << "distance " << distance;
                    const PlacedBlock ordinary = makeRecord(Entry::Ordinary, p, guard, distance);
                    EXPECT_EQ(foldedTaps(ordinary.data()), expected) << "distance " << distance;
                    if (dataType == lumType32f) {
                        EXPECT_EQ(readTable<Lum32f>(ordinary.data(), 16, count),
                                  readTable<Lum32f>(placed.data(), 16, count));
                    } else {
                        EXPECT_EQ(readTable<Lum16s>(ordinary.data(), 16, count),
                                  readTable<Lum16s>(placed.data(), 16, count));
                    }
                }
            }
        }
    }
}

TEST(GaussianInitQuick, BordersThatAreAccepted)
{
    for (LumiBorderType border = -2; border < 1024; ++border) {
        Parameters p = parameters(5, 1.0f);
        p.border = border;
        const bool inRange = border >= 0 && border < 256;

        const PlacedBlock ordinary(recordBytes(Entry::Ordinary, p));
        const bool valid = inRange && (border == lumBorderInMem || isFilterMode(border));
        ASSERT_EQ(layRecord(Entry::Ordinary, p, ordinary), valid ? lumOk : lumErrBorder) << "border " << border;
        if (valid) {
            EXPECT_EQ(readHeader(ordinary.data()).borderType, border);
        }

        const bool allSides = allInMemory(border);
        if (allSides && !inRange) {
            continue;
        }
        const PlacedBlock large(recordBytes(Entry::Large, p));
        const bool validLarge = inRange && (allSides || isFilterMode(border));
        ASSERT_EQ(layRecord(Entry::Large, p, large), validLarge ? lumOk : lumErrBorder) << "border " << border;
        if (validLarge) {
            EXPECT_EQ(readHeader(large.data()).borderType, border);
        }
    }
}

template <typename Size>
struct InitArgs
{
    Size roiSize = {10, 10};
    Lum32s kernelSize = 5;
    Lum32f sigma = 1.0f;
    LumiBorderType borderType = lumBorderReplicate;
    LumDataType dataType = lumType16s;
    Lum32s numChannels = 3;
    LumFilterGaussianSpec* pSpec;
    Lum8u* pBuffer;
    const PlacedBlock* spec;
    const PlacedBlock* buffer;

    InitArgs(const PlacedBlock& specBlock, const PlacedBlock& bufferBlock)
        : pSpec(specBlock.spec()), pBuffer(bufferBlock.data()), spec(&specBlock), buffer(&bufferBlock)
    {
    }
    LumStatus call() const
    {
        if constexpr (std::is_same_v<Size, LumiSizeL>) {
            return lumiFilterGaussianInit_L(roiSize, kernelSize, sigma, borderType, dataType, numChannels, pSpec,
                                            pBuffer);
        } else {
            return lumiFilterGaussianInit(roiSize, kernelSize, sigma, borderType, dataType, numChannels, pSpec,
                                          pBuffer);
        }
    }
    std::vector<Output> outputs() const
    {
        return {Output(spec->data(), spec->size()), Output(buffer->data(), buffer->size())};
    }
};

template <typename Size>
void expectInitOrder(Entry entry)
{
    using Args = InitArgs<Size>;
    using Limits = std::numeric_limits<Lum32f>;
    Parameters p = parameters(5, 1.0f, lumType16s);
    p.channels = 3;
    const PlacedBlock spec(recordBytes(entry, p));
    const PlacedBlock buffer(scratchBytes(entry, p));
    std::vector<Violation<Args>> order = {
        {"pSpec null", lumErrNullPointer, [](Args& a) { a.pSpec = nullptr; }},
        {"pBuffer null", lumErrNullPointer, [](Args& a) { a.pBuffer = nullptr; }},
        {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
        {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
        {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = -1; }},
        {"height negative", lumErrSize, [](Args& a) { a.roiSize.height = -0x7fffffff; }},
    };
    if constexpr (std::is_same_v<Size, LumiSizeL>) {
        order.push_back({"width too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.width = Lum64s{1} << 31; }});
        order.push_back({"height too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.height = Lum64s{1} << 31; }});
    }
    const std::vector<Violation<Args>> parameterOrder = {
        {"kernel 1", lumErrArgument, [](Args& a) { a.kernelSize = 1; }},
        {"kernel 2", lumErrArgument, [](Args& a) { a.kernelSize = 2; }},
        {"kernel 4", lumErrArgument, [](Args& a) { a.kernelSize = 4; }},
        {"kernel negative", lumErrArgument, [](Args& a) { a.kernelSize = -3; }},
        {"type 0", lumErrDataType, [](Args& a) { a.dataType = 0; }},
        {"type 64f", lumErrDataType, [](Args& a) { a.dataType = lumType64f; }},
        {"no channel", lumErrValue, [](Args& a) { a.numChannels = 0; }},
        {"two channels", lumErrValue, [](Args& a) { a.numChannels = 2; }},
        {"four channels", lumErrValue, [](Args& a) { a.numChannels = 4; }},
        {"sigma 0", lumErrArgument, [](Args& a) { a.sigma = 0.0f; }},
        {"sigma -0", lumErrArgument, [](Args& a) { a.sigma = -0.0f; }},
        {"sigma negative", lumErrArgument, [](Args& a) { a.sigma = -1.0f; }},
        {"sigma not-a-number", lumErrArgument, [](Args& a) { a.sigma = Limits::quiet_NaN(); }},
        {"sigma negative infinite", lumErrArgument, [](Args& a) { a.sigma = -Limits::infinity(); }},
        {"border 0", lumErrBorder, [](Args& a) { a.borderType = 0; }},
        {"border 2", lumErrBorder, [](Args& a) { a.borderType = 2; }},
        {"border neutral", lumErrBorder, [](Args& a) { a.borderType = lumBorderNeutral; }},
        {"border 256", lumErrBorder, [](Args& a) { a.borderType = 256 | lumBorderReplicate; }},
    };
    order.insert(order.end(), parameterOrder.begin(), parameterOrder.end());
    expectStatusOrder(Args(spec, buffer), order);
}

TEST(GaussianInitQuick, ChecksInOrder)
{
    expectInitOrder<LumiSize>(Entry::Ordinary);
}

TEST(GaussianInitQuick, LargeChecksInOrder)
{
    expectInitOrder<LumiSizeL>(Entry::Large);
}

TEST(GaussianInitQuick, LargeGeometryIsRefused)
{
    const Parameters p = parameters(5, 1.0f, lumType16s);
    const PlacedBlock spec(recordBytes(Entry::Large, p));
    const PlacedBlock buffer(kInitBufferSize);
    const auto init = [&](LumiSizeL size) {
        return lumiFilterGaussianInit_L(size, 5, 1.0f, lumBorderMirror, lumType16s, 3, spec.spec(), buffer.data());
    };
    const std::vector<Lum8u> before(spec.data(), spec.data() + spec.size());
    const Lum64s tooLarge[] = {Lum64s{0x7fffffff} + 1, Lum64s{1} << 32, std::numeric_limits<Lum64s>::max()};
    for (const Lum64s length : tooLarge) {
        EXPECT_EQ(init({length, 10}), lumErrSizeTooLarge);
        EXPECT_EQ(init({10, length}), lumErrSizeTooLarge);
        EXPECT_EQ(init({length, length}), lumErrSizeTooLarge);
    }
    EXPECT_EQ(std::vector<Lum8u>(spec.data(), spec.data() + spec.size()), before);
    EXPECT_EQ(
        lumiFilterGaussianInit_L({tooLarge[0], 10}, 5, 1.0f, lumBorderMirror, lumType16s, 3, nullptr, buffer.data()),
        lumErrNullPointer);
}

}  // namespace
}  // namespace lumcv::test::gaussian
