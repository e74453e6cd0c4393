// Means and standard deviations: each documented rule by name.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "stats/stats_fixture.hpp"

namespace lumcv::test::stats {
namespace {

bool hasDeviation(const Export& e)
{
    return e.operation == Operation::MeanStdDev;
}

// Calls f(export) for the means, or only for those of one element type.
template <class F>
void forEachMean(F f)
{
    for (const Export& e : meanExports()) {
        SCOPED_TRACE(e.name);
        f(e);
    }
}
template <class F>
void forEachMeanOf(Element element, F f)
{
    forEachMean([&](const Export& e) {
        if (e.element == element) {
            f(e);
        }
    });
}

// A scene whose first source has the given pixels in channel 2 of 3, or in the only one, and in one row. The other
// channels hold not-a-numbers or the largest number, and the mask takes all.
Scene rowOf(const std::vector<Lum32f>& pixels, const Export& e)
{
    Scene scene(static_cast<int>(pixels.size()), 1, e.element, e.channels());
    scene.fillFirst(e.element == Element::F32 ? kNan : largestOf(e.element));
    scene.fillMaskWith(1);
    for (std::size_t x = 0; x < pixels.size(); ++x) {
        scene.setFirst(static_cast<int>(x), 0, pixels[x], e.channels() / 2);
    }
    return scene;
}
Outcome outcomeOfRow(const std::vector<Lum32f>& pixels, const Export& e)
{
    const Scene scene = rowOf(pixels, e);
    return outcomeOf(e, scene.operands(1 + e.channels() / 2));
}

TEST(MeanQuick, EmptyMaskGivesZeroAndNoWarning)
{
    forEachMean([](const Export& e) {
        for (const int width : {1, 15, 16, 64, 100}) {
            Scene scene(width, 3, e.element, e.channels());
            scene.fillFirst(e.element == Element::F32 ? kNan : largestOf(e.element));
            scene.fillMaskWith(0);
            if (!e.masked) {
                continue;
            }
            const Outcome outcome = outcomeOf(e, scene.operands());
            EXPECT_EQ(outcome.status, lumOk);
            EXPECT_EQ(bitsOf(outcome.value), 0u) << outcome.value;
            if (hasDeviation(e)) {
                EXPECT_EQ(bitsOf(outcome.stdDev), 0u) << outcome.stdDev;
            }
        }
    });
}

// 49 * (1.0 / 49) is not 1: the plain mean is a quotient, the one that comes with a deviation a product.
TEST(MeanQuick, PlainMeanDividesAndMeanWithDeviationMultiplies)
{
    const std::vector<Lum32f> ones(49, 1.0f);
    ASSERT_NE(49.0 * (1.0 / 49.0), 1.0);
    forEachMean([&](const Export& e) {
        const Outcome outcome = outcomeOfRow(ones, e);
        EXPECT_EQ(outcome.status, lumOk);
        EXPECT_TRUE(sameElement(hasDeviation(e) ? 49.0 * (1.0 / 49.0) : 1.0, outcome.value)) << outcome.value;
    });
}

TEST(MeanQuick, NullResultsAreNotWritten)
{
    Random random(11);
    forEachMean([&](const Export& e) {
        if (!hasDeviation(e)) {
            return;
        }
        Scene scene(37, 3, e.element, e.channels());
        scene.fill(random, Content::NearlyConstant, Content::Zero, 30);
        const Outcome expected = expectedOf(e, scene.sample());
        for (int wanted = 0; wanted < 4; ++wanted) {
            Operands o = scene.operands();
            Lum64f mean = -1, deviation = -2;
            o.pValue = wanted & 1 ? &mean : nullptr;
            o.pStdDev = wanted & 2 ? &deviation : nullptr;
            EXPECT_EQ(e.call(o), lumOk);
            EXPECT_TRUE(sameElement(wanted & 1 ? expected.value : -1.0, mean)) << "results wanted: " << wanted;
            EXPECT_TRUE(sameElement(wanted & 2 ? expected.stdDev : -2.0, deviation)) << "results wanted: " << wanted;
        }
        if (e.masked) {
            scene.fillMaskWith(0);
            EXPECT_EQ(e.call(scene.operands()), lumOk) << "both null under an empty mask";
        }
    });
}

// Integers: exact sums.

// The bound up to which 32 bits hold the sum, one pixel less and one more; also as a single row.
TEST(Mean, ExactlyTheBoundOfPixelsOf8u)
{
    constexpr int bound = 0x800000;
    const LumiSize sizes[] = {{4096, 2048}, {bound, 1}, {bound - 1, 1}, {178481, 47}, {bound + 1, 1}, {1, bound}};
    static_assert(178481 * 47 == bound - 1);
    const std::vector<Lum8u> mask(bound + 1, 0x80);
    std::vector<Lum8u> pixels(3 * std::size_t{bound + 1}, 255);
    forEachMeanOf(Element::U8, [&](const Export& e) {
        for (const LumiSize size : sizes) {
            if (e.ofInterest && size.width != 4096 && size.width != bound) {
                continue;
            }
            const std::uint64_t n = static_cast<std::uint64_t>(size.width) * static_cast<std::uint64_t>(size.height);
            // the last pixel tells whether it is counted
            const std::size_t last =
                (n - 1) * static_cast<std::size_t>(e.channels()) + static_cast<std::size_t>(e.channels() / 2);
            pixels[last] = 1;
            Operands o;
            o.pSrc1 = pixels.data();
            o.src1Step = size.width * e.channels();
            o.pMask = mask.data();
            o.maskStep = size.width;
            o.roiSize = size;
            o.coi = 2;
            const Outcome outcome = outcomeOf(e, o);
            pixels[last] = 255;
            const auto count = static_cast<Lum64f>(n);
            const auto sum = static_cast<Lum64f>((n - 1) * 255 + 1);
            const auto squares = static_cast<Lum64f>((n - 1) * 65025 + 1);
            const Lum64f mean = hasDeviation(e) ? sum * (1.0 / count) : sum / count;
            EXPECT_EQ(outcome.status, lumOk);
            EXPECT_TRUE(sameElement(mean, outcome.value))
                << n << " pixels: got " << elementText(outcome.value) << ", expected " << elementText(mean);
            if (hasDeviation(e)) {
                const Lum64f deviation = std::sqrt(std::fabs(squares * (1.0 / count) - mean * mean));
                EXPECT_TRUE(sameElement(deviation, outcome.stdDev))
                    << n << " pixels: got " << elementText(outcome.stdDev) << ", expected " << elementText(deviation);
            }
        }
    });
}

// The squares of the largest 16u pixels pass 2 to the 53: their sum is rounded once.
TEST(Mean, SixteenBitSquaresBeyondDoublePrecision)
{
    constexpr int width = 0x400001;
    std::vector<Lum16u> pixels(width, 65535);
    pixels[width - 1] = 65534;
    const std::vector<Lum8u> mask(width, 1);
    constexpr std::uint64_t largest = 65535, last = 65534;
    constexpr std::uint64_t squares = (width - 1) * largest * largest + last * last;
    static_assert(squares > std::uint64_t{1} << 53);
    const Lum64f scale = 1.0 / width;
    const Lum64f mean = static_cast<Lum64f>((width - 1) * largest + last) * scale;
    const Lum64f deviation = std::sqrt(std::fabs(static_cast<Lum64f>(squares) * scale - mean * mean));
    for (const char* const name : {"lumiMean_StdDev_16u_C1R", "lumiMean_StdDev_16u_C1MR"}) {
        Operands o;
        o.pSrc1 = pixels.data();
        o.src1Step = 2 * width;
        o.pMask = mask.data();
        o.maskStep = width;
        o.roiSize = {width, 1};
        const Outcome outcome = outcomeOf(exportNamed(name), o);
        EXPECT_TRUE(sameElement(mean, outcome.value)) << name << ": " << elementText(outcome.value);
        EXPECT_TRUE(sameElement(deviation, outcome.stdDev)) << name << ": " << elementText(outcome.stdDev);
    }
}

// Constant images, whose variance cancels: integers take the one-pass formula as it is, above and below zero.
TEST(MeanQuick, IntegersAreNeverRepaired)
{
    int positive = 0, negative = 0;
    for (int n = 1; n < 150; ++n) {
        const std::vector<Lum32f> pixels(static_cast<std::size_t>(n), 201.0f);
        const Lum64f scale = 1.0 / n;
        const Lum64f mean = 201.0 * n * scale;
        const Lum64f variance = 201.0 * 201.0 * n * scale - mean * mean;
        positive += variance > 0;
        negative += variance < 0;
        for (const Export& e : meanExports()) {
            if (e.element != Element::F32 && hasDeviation(e)) {
                const Outcome outcome = outcomeOfRow(pixels, e);
                ASSERT_TRUE(sameElement(std::sqrt(std::fabs(variance)), outcome.stdDev))
                    << e.name << ", " << n << " pixels: got " << elementText(outcome.stdDev);
            }
        }
    }
    EXPECT_GT(positive, 3);
    EXPECT_GT(negative, 3);
}

// Floats: the order of additions.

// Columns 16 apart meet in one partial sum, where the 1 is lost in the large number; columns next to each other do not.
TEST(MeanQuick, FloatsAreSummedInSixteenPartialSums)
{
    struct Case
    {
        std::vector<std::pair<int, Lum32f>> pixels;
        Lum64f sum;
    };
    constexpr Lum32f large = 0x1p60f;
    const Case cases[] = {
        {{{0, large}, {16, 1}, {1, -large}}, 0},    // lost in partial sum 0
        {{{0, large}, {8, 1}, {16, -large}}, 1},    // sixteen, not eight
        {{{0, large}, {1, 1}, {16, -large}}, 1},    // 0 in partial sum 0
        {{{0, large}, {32, -large}, {16, 1}}, 0},   // in the order of columns: lost before the large number leaves
        {{{15, large}, {31, -large}, {32, 1}}, 1},  // partial sum 15 is 0, partial sum 0 is 1
        {{{0, large}, {8, -large}, {4, 1}}, 1},     // 8 joins 0 before 4 does
        {{{0, large}, {4, -large}, {8, 1}}, 0},     // and 8 before 4: lost
        {{{0, large}, {4, -large}, {2, 1}}, 1},     // 4 joins before 2
        {{{0, large}, {2, -large}, {4, 1}}, 0},     // lost
        {{{0, large}, {2, -large}, {1, 1}}, 1},     // 1 joins last
        {{{0, large}, {1, -large}, {2, 1}}, 0},     // lost
        {{{1, large}, {3, -large}, {9, 1}}, 0},     // 9 joins 1 before 3 does
        {{{47, large}, {46, 1}, {39, -large}}, 1},  // 15 and 7 meet, 14 stays alone
        {{{63, large}, {47, 1}, {31, -large}}, 0},  // from left to right: lost in the first large number
    };
    for (const Case& c : cases) {
        std::vector<Lum32f> pixels(64, 0.0f);
        for (const auto& [x, value] : c.pixels) {
            pixels[static_cast<std::size_t>(x)] = value;
        }
        forEachMeanOf(Element::F32, [&](const Export& e) {
            const Outcome outcome = outcomeOfRow(pixels, e);
            EXPECT_TRUE(sameElement(c.sum / 64, outcome.value))
                << "case " << &c - cases << ": got " << elementText(outcome.value);
        });
    }
}

// The partial sums run on from row to row: the columns decide, not the place in the image.
TEST(MeanQuick, PartialSumsRunThroughAllRows)
{
    forEachMeanOf(Element::F32, [&](const Export& e) {
        Scene scene(5, 4, Element::F32, e.channels());
        scene.fillFirst(0.0f);
        scene.fillMaskWith(1);
        for (int channel = 0; channel < e.channels(); ++channel) {
            scene.setFirst(2, 0, 0x1p60f, channel);   // and column 2 of row 1 joins it
            scene.setFirst(2, 1, 1.0f, channel);      // lost
            scene.setFirst(3, 2, 2.0f, channel);      // in another partial sum
            scene.setFirst(2, 3, -0x1p60f, channel);  // gone before the fold
        }
        EXPECT_EQ(outcomeOf(e, scene.operands()).value, hasDeviation(e) ? 2.0 * (1.0 / 20) : 2.0 / 20);
    });
}

// Whatever the order, the sums are as good as double precision promises.
TEST(Mean, FloatsAreCloseToTheExactValue)
{
    Random random(12);
    forEachMeanOf(Element::F32, [&](const Export& e) {
        Scene scene(211, 13, Element::F32, e.channels());
        scene.fill(random, Content::Ordinary, Content::Zero, 30);
        const Sample sample = scene.sample(e.channels());
        long double sum = 0, magnitudes = 0, squares = 0;
        long count = 0;
        forEachChosen(sample, e.masked, [&](std::size_t i, std::size_t) {
            const long double pixel = sample.first[i];
            sum += pixel;
            magnitudes += std::fabs(pixel);
            squares += pixel * pixel;
            ++count;
        });
        const long double mean = sum / static_cast<long double>(count);
        const long double variance = squares / static_cast<long double>(count) - mean * mean;
        const Outcome outcome = outcomeOf(e, scene.operands(e.channels()));
        // count additions of relative error 2^-53 each, and a few operations more
        const long double relative = static_cast<long double>(count + 10) * 0x1p-53L;
        EXPECT_LE(std::fabs(outcome.value - mean), relative * magnitudes / static_cast<long double>(count));
        if (hasDeviation(e)) {
            ASSERT_FALSE(meanAndDeviationOf(sample, e.masked).repaired);
            const long double got = static_cast<long double>(outcome.stdDev) * static_cast<long double>(outcome.stdDev);
            EXPECT_LE(std::fabs(got - variance), 4 * relative * squares / static_cast<long double>(count));
        }
    });
}

// 2^31 pixels, which are the same 2 MiB of ones again and again: as a signed number of 32 bits their count is negative.
TEST(Mean, CountOfFloatsIsASignedThirtyTwoBitProduct)
{
    constexpr std::size_t pieceBytes = std::size_t{2} << 20;
    constexpr std::size_t pieces = 4096;
    const int file = memfd_create("ones", 0);
    ASSERT_GE(file, 0);
    ASSERT_EQ(ftruncate(file, pieceBytes), 0);
    void* const all = mmap(nullptr, pieceBytes * pieces, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (all == MAP_FAILED) {
        close(file);
        GTEST_SKIP() << "no 8 GiB of addresses";
    }
    for (std::size_t i = 0; i < pieces; ++i) {
        ASSERT_NE(mmap(static_cast<Lum8u*>(all) + i * pieceBytes, pieceBytes, PROT_READ | PROT_WRITE,
                       MAP_SHARED | MAP_FIXED, file, 0),
                  MAP_FAILED);
    }
    auto* const ones = static_cast<Lum32f*>(all);
    std::fill(ones, ones + pieceBytes / sizeof(Lum32f), 1.0f);
    Lum64f mean = 0, deviation = 0;
    EXPECT_EQ(lumiMean_StdDev_32f_C1R(ones, 65536 * 4, {65536, 32768}, &mean, &deviation), lumOk);
    EXPECT_EQ(mean, -1.0);
    EXPECT_EQ(deviation, std::sqrt(2.0)) << "the root of abs(-1 - 1)";
    munmap(all, pieceBytes * pieces);
    close(file);
}

// Not-a-numbers and infinities.

TEST(MeanQuick, WhatIsMaskedOutTakesNoPart)
{
    for (const Lum32f outside : {kNan, kInfinity, -kInfinity}) {
        forEachMeanOf(Element::F32, [&](const Export& e) {
            if (!e.masked) {
                return;
            }
            for (int width = 2; width < 70; width += 3) {
                std::vector<Lum32f> pixels(static_cast<std::size_t>(width), outside);
                pixels[pixels.size() / 2] = 4.0f;
                Scene scene = rowOf(pixels, e);
                scene.fillMaskWith(0);
                scene.setMask(width / 2, 0, 0x40);
                const Outcome outcome = outcomeOf(e, scene.operands(1 + e.channels() / 2));
                EXPECT_EQ(outcome.value, 4.0) << "width " << width << ", outside " << outside;
                if (hasDeviation(e)) {
                    EXPECT_EQ(outcome.stdDev, 0.0) << "width " << width << ", outside " << outside;
                }
            }
        });
    }
}

TEST(MeanQuick, WhatIsNotMaskedOutSpoilsTheSum)
{
    forEachMeanOf(Element::F32, [](const Export& e) {
        for (std::size_t place = 0; place < 40; ++place) {
            std::vector<Lum32f> pixels(40, 1.0f);
            pixels[place] = kNan;
            Outcome outcome = outcomeOfRow(pixels, e);
            EXPECT_TRUE(std::isnan(outcome.value));
            EXPECT_TRUE(!hasDeviation(e) || std::isnan(outcome.stdDev));
            pixels[place] = -kInfinity;
            outcome = outcomeOfRow(pixels, e);
            EXPECT_EQ(outcome.value, -std::numeric_limits<Lum64f>::infinity());
            EXPECT_TRUE(!hasDeviation(e) || std::isnan(outcome.stdDev)) << "infinity minus infinity";
        }
    });
}

TEST(MeanQuick, LargestFloatsDoNotOverflow)
{
    constexpr Lum32f largest = std::numeric_limits<Lum32f>::max();
    forEachMeanOf(Element::F32, [&](const Export& e) {
        const Outcome outcome = outcomeOfRow(std::vector<Lum32f>(64, largest), e);
        EXPECT_EQ(outcome.value, Lum64f{largest});
        EXPECT_TRUE(!hasDeviation(e) || outcome.stdDev == 0.0) << outcome.stdDev;
        const Outcome smallest = outcomeOfRow(std::vector<Lum32f>(64, 0x1p-149f), e);
        EXPECT_EQ(smallest.value, 0x1p-149);
        EXPECT_TRUE(!hasDeviation(e) || smallest.stdDev == 0.0) << smallest.stdDev;
    });
}

}  // namespace
}  // namespace lumcv::test::stats
