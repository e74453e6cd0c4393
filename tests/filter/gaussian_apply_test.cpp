// What the Gaussian filter computes: worked examples, properties, and the comparison with the plain reference over
// kernels, borders, sizes and values.
#include <limits>

#include "filter/gaussian_fixture.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::gaussian {
namespace {

constexpr Lum32s kKernelSizes[] = {3, 5, 7, 9, 15, 31};

// so wide that all taps are alike
constexpr Lum32f kFlat = 1e15f;

std::vector<Lum8u> filterBytes(const Lum8u* pSrc, LumiSize size, Lum32s kernelSize, LumiBorderType border,
                               Lum8u borderValue, int step)
{
    Parameters p;
    p.width = size.width;
    p.height = size.height;
    p.kernelSize = kernelSize;
    p.sigma = kFlat;
    const PlacedBlock record = makeRecord(Entry::Ordinary, p);
    const PlacedBlock scratch(scratchBytes(Entry::Ordinary, p));
    std::vector<Lum8u> result(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height));
    EXPECT_EQ(lumiFilterGaussian_8u_C1R(pSrc, step, result.data(), size.width, size, border, &borderValue,
                                        record.spec(), scratch.data()),
              lumOk);
    return result;
}

// A row of 1, 2, 3, 4 under three equal taps, worked out by hand.
TEST(GaussianQuick, OneRowByHand)
{
    const Lum8u row[] = {91, 1, 2, 3, 4, 31};
    const auto filtered = [&](LumiBorderType border) { return filterBytes(row + 1, {4, 1}, 3, border, 100, 6); };
    // 4/3, 6/3, 9/3, 11/3; above and below stands the row itself
    EXPECT_EQ(filtered(lumBorderReplicate), (std::vector<Lum8u>{1, 2, 3, 4}));
    // 5/3, 6/3, 9/3, 10/3
    EXPECT_EQ(filtered(lumBorderMirror), (std::vector<Lum8u>{2, 2, 3, 3}));
    // 103/3, 6/3, 9/3, 107/3 in the row, and rows of 100 above and below
    EXPECT_EQ(filtered(lumBorderConstant), (std::vector<Lum8u>{78, 67, 68, 79}));
    // 94/3 at the left end
    EXPECT_EQ(filtered(lumBorderMirror | lumBorderInMemLeft), (std::vector<Lum8u>{31, 2, 3, 3}));
    // 38/3 at the right end
    EXPECT_EQ(filtered(lumBorderReplicate | lumBorderInMemRight), (std::vector<Lum8u>{1, 2, 3, 13}));
}

TEST(GaussianQuick, OneColumnByHand)
{
    const Lum8u column[] = {91, 1, 2, 3, 4, 31};
    const auto filtered = [&](LumiBorderType border) { return filterBytes(column + 1, {1, 4}, 3, border, 100, 1); };
    EXPECT_EQ(filtered(lumBorderReplicate), (std::vector<Lum8u>{1, 2, 3, 4}));
    EXPECT_EQ(filtered(lumBorderMirror), (std::vector<Lum8u>{2, 2, 3, 3}));
    EXPECT_EQ(filtered(lumBorderMirror | lumBorderInMemTop), (std::vector<Lum8u>{31, 2, 3, 3}));
    EXPECT_EQ(filtered(lumBorderReplicate | lumBorderInMemBottom), (std::vector<Lum8u>{1, 2, 3, 13}));
    // a pixel between two of 100 is 67, 67.33, 67.67, 68; then (100 + 67 + 67.33)/3 = 78.1, 67.3, 67.7, 78.6
    EXPECT_EQ(filtered(lumBorderConstant), (std::vector<Lum8u>{78, 67, 68, 79}));
}

// With seven taps over three pixels the reflection turns round at both ends: 2 1 2 3 is what goes on in both
// directions.
TEST(GaussianQuick, MirrorTurnsRoundAtBothEnds)
{
    const Lum8u row[] = {14, 70, 210};
    // what the taps see: ... 70 210 70 [14 70 210] 70 14 70 ...
    const Lum8u first = (70 + 210 + 70 + 14 + 70 + 210 + 70) / 7;   // 102
    const Lum8u second = (210 + 70 + 14 + 70 + 210 + 70 + 14) / 7;  // 94
    const Lum8u third = (70 + 14 + 70 + 210 + 70 + 14 + 70) / 7;    // 74
    EXPECT_EQ(filterBytes(row, {3, 1}, 7, lumBorderMirror, 0, 3), (std::vector<Lum8u>{first, second, third}));
    EXPECT_EQ(filterBytes(row, {1, 3}, 7, lumBorderMirror, 0, 1), (std::vector<Lum8u>{first, second, third}));
}

TEST(GaussianQuick, OneRowUnderMirrorIsItsOwnNeighbour)
{
    const Lum8u row[] = {10, 10, 10, 200, 200, 200};
    const std::vector<Lum8u> mirrored = filterBytes(row, {6, 1}, 5, lumBorderMirror, 0, 6);
    // 10, 10 + 190/5, 10 + 380/5, ...
    EXPECT_EQ(mirrored, (std::vector<Lum8u>{10, 48, 86, 124, 162, 200}));
}

TYPE_SUITE(GaussianQuick, AllFormats, FormatName);

TYPE_SUITE(Gaussian, AllFormats, FormatName);

TYPE_TEST(GaussianQuick, MatchesTheReference)
{
    int seed = 0;
    for (const Lum32s kernelSize : kKernelSizes) {
        for (const LumiBorderType border : {lumBorderReplicate + 0, lumBorderMirror + 0, lumBorderConstant + 0,
                                            lumBorderInMem + 0, lumBorderMirror | lumBorderInMemTop}) {
            Setting setting;
            setting.kernelSize = kernelSize;
            setting.border = border;
            setting.sigma = 0.3f * static_cast<Lum32f>(kernelSize);
            setting.width = 1 + 17 * seed % 70;
            setting.height = 1 + 5 * seed % 13;
            setting.seed = seed;
            setting.guard = seed % 2 == 0 ? Guard::After : Guard::Before;
            setting.gap = seed % 3;
            expectFiltered<TypeParam>(setting, {kAllWays[seed % 3]});
            ++seed;
        }
    }
}

// An impulse of 1 shows the products of the taps, each rounded once.
TYPE_TEST(GaussianQuick, ImpulseShowsTheTaps)
{
    if constexpr (TypeParam::dataType == lumType32f) {
        for (const Lum32s kernelSize : kKernelSizes) {
            const int h = kernelSize / 2;
            Setting setting;
            setting.kernelSize = kernelSize;
            setting.sigma = 0.2f * static_cast<Lum32f>(kernelSize);
            setting.width = kernelSize + 2;
            setting.height = kernelSize + 2;
            const Parameters p = setting.template parameters<TypeParam>();
            const PlacedBlock record = makeRecord(Entry::Large, p);
            const PlacedBlock scratch(scratchBytes(Entry::Large, p));
            const std::vector<Lum32f> taps = foldedTaps(record.data());
            const auto tap = [&](int distance) {
                const int d = distance < 0 ? -distance : distance;
                return d > h ? 0.0f : taps[static_cast<std::size_t>(h - d)];
            };
            Image<Lum32f> source(setting.template layout<TypeParam>());
            Image<Lum32f> expected(setting.template layout<TypeParam>());
            Image<Lum32f> destination(setting.template layout<TypeParam>());
            source.forEach(Area::Roi, [](Lum32f& element, int, int, int) { element = 0.0f; });
            const int last = TypeParam::channels - 1;
            source.at(h + 1, h + 1, last) = 1.0f;
            expected.forEach(Area::Roi, [&](Lum32f& element, int x, int y, int c) {
                element = c == last ? tap(y - h - 1) * tap(x - h - 1) : 0.0f;
            });
            ASSERT_EQ(callFilter<TypeParam>(Apply::Large, source.pixels(), source.step(), destination.pixels(),
                                            destination.step(), {setting.width, setting.height}, lumBorderReplicate,
                                            nullptr, record.spec(), scratch.data()),
                      lumOk);
            EXPECT_TRUE(sameImage(expected, destination)) << "kernel " << kernelSize;
        }
    }
}

// A flat image stays what it is: the taps sum to one, and what they miss of it is far from half an integer.
TYPE_TEST(GaussianQuick, FlatIntegersStay)
{
    using T = typename TypeParam::Element;
    if constexpr (TypeParam::dataType != lumType32f) {
        constexpr T smallest = std::numeric_limits<T>::min();
        constexpr T largest = std::numeric_limits<T>::max();
        for (const T value :
             {smallest, static_cast<T>(smallest + 1), T{0}, T{1}, T{100}, static_cast<T>(largest - 1), largest}) {
            for (const Lum32s kernelSize : kKernelSizes) {
                for (const LumiBorderType border : {lumBorderReplicate, lumBorderMirror, lumBorderConstant}) {
                    Setting setting;
                    setting.width = 37;
                    setting.height = 9;
                    setting.kernelSize = kernelSize;
                    setting.sigma = 2.0f;
                    const Parameters p = setting.template parameters<TypeParam>();
                    const PlacedBlock record = makeRecord(Entry::Large, p);
                    const PlacedBlock scratch(scratchBytes(Entry::Large, p));
                    Image<T> source(setting.template layout<TypeParam>());
                    Image<T> destination(setting.template layout<TypeParam>());
                    source.forEach(Area::Roi, [&](T& element, int, int, int) { element = value; });
                    const T borderValue[3] = {value, value, value};
                    ASSERT_EQ(callFilter<TypeParam>(Apply::Large, source.pixels(), source.step(), destination.pixels(),
                                                    destination.step(), {setting.width, setting.height}, border,
                                                    borderValue, record.spec(), scratch.data()),
                              lumOk);
                    EXPECT_TRUE(sameImage(source, destination)) << "value " << +value << ", kernel " << kernelSize;
                }
            }
        }
    }
}

// With a tiny sigma the outer taps are zero and the centre is one.
TYPE_TEST(GaussianQuick, TinySigmaCopies)
{
    using T = typename TypeParam::Element;
    for (const Lum32s kernelSize : kKernelSizes) {
        for (const Lum32f sigma : {0.01f, 1e-20f, 1e-30f, std::numeric_limits<Lum32f>::denorm_min()}) {
            Setting setting;
            setting.width = 45;
            setting.height = 6;
            setting.kernelSize = kernelSize;
            setting.sigma = sigma;
            const Parameters p = setting.template parameters<TypeParam>();
            const PlacedBlock record = makeRecord(Entry::Large, p);
            const PlacedBlock scratch(scratchBytes(Entry::Large, p));
            Image<T> source(setting.template layout<TypeParam>());
            Image<T> destination(setting.template layout<TypeParam>());
            Random random(5);
            fill(source, random, Values::Ordinary);
            ASSERT_EQ(callFilter<TypeParam>(Apply::Large, source.pixels(), source.step(), destination.pixels(),
                                            destination.step(), {setting.width, setting.height}, lumBorderMirror,
                                            nullptr, record.spec(), scratch.data()),
                      lumOk);
            EXPECT_TRUE(sameImage(source, destination)) << "kernel " << kernelSize << ", sigma " << sigma;
        }
    }
}

// Every mode with every combination of sides in memory, and 240 with any low bits, on images below and above the
// kernel.
TYPE_TEST(Gaussian, EveryBorder)
{
    const LumiSize sizes[] = {{1, 1}, {5, 1}, {1, 5}, {2, 2}, {9, 4}, {40, 6}, {66, 35}};
    int seed = 0;
    for (const Lum32s kernelSize : kKernelSizes) {
        for (LumiBorderType border = 0; border < 256; ++border) {
            if (!allInMemory(border) && !isFilterMode(border)) {
                continue;
            }
            for (const LumiSize size : sizes) {
                Setting setting;
                setting.width = size.width;
                setting.height = size.height;
                setting.kernelSize = kernelSize;
                setting.sigma = 0.25f * static_cast<Lum32f>(kernelSize);
                setting.border = border;
                setting.seed = seed;
                setting.guard = seed % 2 == 0 ? Guard::After : Guard::Before;
                ++seed;
                if (border == lumBorderInMem || isFilterMode(border)) {
                    expectFiltered<TypeParam>(setting, {Apply::Ordinary, Apply::Large, Apply::BorderFromRecord});
                } else {
                    // the ordinary Init lays no record with such a border
                    expectFiltered<TypeParam>(setting, {Apply::Ordinary, Apply::Large});
                }
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

constexpr LumiBorderType kBorders[] = {
    lumBorderReplicate,
    lumBorderMirror,
    lumBorderConstant,
    lumBorderInMem,
    lumBorderConstant | lumBorderInMemLeft,
    lumBorderMirror | lumBorderInMemRight | lumBorderInMemTop,
    lumBorderReplicate | lumBorderInMemLeft | lumBorderInMemRight | lumBorderInMemBottom,
};

Setting placed(int width, int height, Lum32s kernelSize, int seed)
{
    Random random(static_cast<std::uint64_t>(seed) + 77);
    Setting setting;
    setting.width = width;
    setting.height = height;
    setting.kernelSize = kernelSize;
    setting.sigma = 0.15f * static_cast<Lum32f>(kernelSize) + random.unit<Lum32f>();
    setting.border = kBorders[seed % 7];
    setting.seed = seed;
    setting.guard = random.oneIn(2) ? Guard::After : Guard::Before;
    setting.distance = random.oneIn(2) ? 0 : static_cast<std::size_t>(random.between(0, 63));
    setting.offset = random.oneIn(2) ? 0 : static_cast<int>(random.between(0, 63));
    setting.gap = random.oneIn(2) ? 0 : static_cast<int>(random.between(0, 40));
    return setting;
}

TYPE_TEST(Gaussian, EveryWidth)
{
    int seed = 0;
    for (const Lum32s kernelSize : kKernelSizes) {
        for (const int width : sweepWidths()) {
            for (const int height : {1, 2, 3, kernelSize / 2, kernelSize, kernelSize + 2}) {
                expectFiltered<TypeParam>(placed(width, height, kernelSize, seed), {kAllWays[seed / 7 % 3]});
                ++seed;
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
        // the list of borders has a length that divides no other list
        ++seed;
    }
}

TYPE_TEST(Gaussian, EveryWidthUpToTwoVectors)
{
    int seed = 3;
    for (int width = 1; width <= 140; ++width) {
        for (const Lum32s kernelSize : kKernelSizes) {
            expectFiltered<TypeParam>(placed(width, 2, kernelSize, seed), {kAllWays[seed / 7 % 3]});
            ++seed;
            if (::testing::Test::HasFailure()) {
                return;
            }
        }
        ++seed;
    }
}

TYPE_TEST(Gaussian, EveryHeight)
{
    int seed = 1;
    for (const Lum32s kernelSize : kKernelSizes) {
        for (int height = 1; height < 2 * kernelSize + 3; ++height) {
            for (const int width : {1, 13, 67}) {
                expectFiltered<TypeParam>(placed(width, height, kernelSize, seed), {kAllWays[seed / 7 % 3]});
                ++seed;
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
        ++seed;
    }
}

TYPE_TEST(Gaussian, EveryKernelUpTo41)
{
    int seed = 2;
    for (Lum32s kernelSize = 3; kernelSize <= 41; kernelSize += 2) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{19, 1}, LumiSize{1, 19}, LumiSize{24, 17},
                                    LumiSize{kernelSize - 1, kernelSize - 1}, LumiSize{kernelSize, kernelSize},
                                    LumiSize{kernelSize + 1, kernelSize + 1}, LumiSize{100, 50}}) {
            expectFiltered<TypeParam>(placed(size.width, size.height, kernelSize, seed),
                                      {Apply::Ordinary, Apply::Large});
            ++seed;
        }
        if (::testing::Test::HasFailure()) {
            return;
        }
        ++seed;
    }
}

TYPE_TEST(Gaussian, KernelsLargerThanTheImage)
{
    int seed = 0;
    for (const Lum32s kernelSize : {63, 65, 101, 257}) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{2, 3}, LumiSize{33, 7}, LumiSize{70, 40}}) {
            for (const LumiBorderType border : kBorders) {
                Setting setting = placed(size.width, size.height, kernelSize, seed++);
                setting.border = border;
                setting.sigma = 20.0f;
                expectFiltered<TypeParam>(setting, {Apply::Ordinary, Apply::Large});
            }
        }
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
}

TYPE_TEST(Gaussian, EverySigma)
{
    using Limits = std::numeric_limits<Lum32f>;
    int seed = 0;
    for (const Lum32s kernelSize : kKernelSizes) {
        for (const Lum32f sigma : {Limits::denorm_min(), 1e-23f, 0.01f, 0.07f, 0.2f, 0.5f, 1.0f, 4.0f, 100.0f, kFlat,
                                   Limits::max(), Limits::infinity()}) {
            for (const Values values : {Values::Ordinary, Values::Extreme, Values::NonFinite}) {
                Setting setting = placed(50, 12, kernelSize, seed++);
                setting.sigma = sigma;
                setting.values = values;
                expectFiltered<TypeParam>(setting, {Apply::Ordinary});
            }
        }
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
}

// Infinities, not-a-numbers, denormals and numbers whose sums overflow.
TYPE_TEST(Gaussian, ExtremeValues)
{
    int seed = 0;
    for (const Lum32s kernelSize : kKernelSizes) {
        for (const int width : {1, 8, 31, 64, 75, 130}) {
            for (const LumiBorderType border : kBorders) {
                Setting setting = placed(width, 1 + seed % 20, kernelSize, seed);
                setting.border = border;
                setting.values = seed % 2 == 0 ? Values::Extreme : Values::NonFinite;
                ++seed;
                expectFiltered<TypeParam>(setting, {Apply::Large});
            }
        }
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
}

}  // namespace
}  // namespace lumcv::test::gaussian
