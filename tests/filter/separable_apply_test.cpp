// What the separable filter computes: worked examples, and the comparison with the plain reference over kernels,
// borders, sizes and values.
#include <limits>

#include "filter/separable_fixture.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::separable {
namespace {

Kernel integerKernel(std::vector<Lum32f> x, std::vector<Lum32f> y, Lum32s divisor = 1)
{
    return {lumType16s, std::move(x), std::move(y), divisor, 0};
}

Kernel floatKernel(std::vector<Lum32f> x, std::vector<Lum32f> y)
{
    return {lumType32f, std::move(x), std::move(y), 1, 0};
}

// The filtered pixels of a one-channel ROI within rows of `step` pixels.
template <class C>
std::vector<typename C::Destination> filtered(const Kernel& kernel, const typename C::Source* pSrc, int step,
                                              LumiSize size, LumiBorderType border = lumBorderReplicate,
                                              typename C::Source borderValue = {})
{
    using D = typename C::Destination;
    const PlacedBlock record = makeRecord(Entry::Ordinary, kernel, C::dataType, 1);
    const PlacedBlock scratch = makeScratch(kernel, size.width, 1);
    std::vector<D> result(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height));
    EXPECT_EQ(
        C::c1(pSrc, step * static_cast<int>(sizeof(typename C::Source)), result.data(),
              size.width * static_cast<int>(sizeof(D)), size, border, borderValue, specOf(record), scratch.data()),
        lumOk);
    return result;
}

using Bytes = Case<Lum8u, Lum8u>;
using BytesToWords = Case<Lum8u, Lum16s>;
using Words = Case<Lum16s, Lum16s>;
using Floats = Case<Lum32f, Lum32f>;

TEST(SeparableQuick, KernelsAreNotReversed)
{
    const Lum8u impulse[] = {0, 0, 1, 0, 0};
    const std::vector<Lum8u> expected = {0, 3, 2, 1, 0};
    EXPECT_EQ(filtered<Bytes>(integerKernel({1, 2, 3}, {1}), impulse, 5, {5, 1}), expected);
    EXPECT_EQ(filtered<Bytes>(integerKernel({1}, {1, 2, 3}), impulse, 1, {1, 5}), expected);
    EXPECT_EQ(filtered<Bytes>(floatKernel({1, 2, 3}, {1}), impulse, 5, {5, 1}), expected);
    EXPECT_EQ(filtered<Bytes>(floatKernel({1}, {1, 2, 3}), impulse, 1, {1, 5}), expected);
}

TEST(SeparableQuick, CentreOfAnEvenKernelIsTheEarlierOfTheMiddle)
{
    const Lum8u impulse[] = {0, 0, 0, 1, 0, 0, 0};
    const std::vector<Lum8u> two = {0, 0, 2, 1, 0, 0, 0};
    EXPECT_EQ(filtered<Bytes>(integerKernel({1, 2}, {1}), impulse, 7, {7, 1}), two);
    EXPECT_EQ(filtered<Bytes>(integerKernel({1}, {1, 2}), impulse, 1, {1, 7}), two);
    const std::vector<Lum8u> four = {0, 4, 3, 2, 1, 0, 0};
    EXPECT_EQ(filtered<Bytes>(integerKernel({1, 2, 3, 4}, {1}), impulse, 7, {7, 1}), four);
    EXPECT_EQ(filtered<Bytes>(integerKernel({1}, {1, 2, 3, 4}), impulse, 1, {1, 7}), four);
}

TEST(SeparableQuick, OuterProduct)
{
    const Lum8u impulse[25] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    // the kernel about the impulse, turned by half a turn
    const std::vector<Lum8u> expected = {0, 0, 0, 0, 0, 0, 21, 14, 7, 0, 0, 15, 10, 5, 0, 0, 9, 6, 3, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(filtered<Bytes>(integerKernel({1, 2, 3}, {3, 5, 7}), impulse, 5, {5, 5}), expected);
    EXPECT_EQ(filtered<Bytes>(floatKernel({1, 2, 3}, {3, 5, 7}), impulse, 5, {5, 5}), expected);
}

TEST(SeparableQuick, DivisorMinusTwoNegatesAndRoundsTiesToEven)
{
    const Lum8u row[] = {0, 1, 2, 3, 4, 5, 7, 255};
    EXPECT_EQ(filtered<BytesToWords>(integerKernel({1}, {1}, -2), row, 8, {8, 1}),
              (std::vector<Lum16s>{0, 0, -1, -2, -2, -2, -4, -128}));
}

TEST(SeparableQuick, ResultsSaturate)
{
    const Lum8u row[] = {0, 1, 127, 128, 255};
    EXPECT_EQ(filtered<Bytes>(integerKernel({2}, {1}), row, 5, {5, 1}), (std::vector<Lum8u>{0, 2, 254, 255, 255}));
    EXPECT_EQ(filtered<Bytes>(integerKernel({-1}, {1}), row, 5, {5, 1}), (std::vector<Lum8u>{0, 0, 0, 0, 0}));
    EXPECT_EQ(filtered<BytesToWords>(integerKernel({300}, {1}), row, 5, {5, 1}),
              (std::vector<Lum16s>{0, 300, 32767, 32767, 32767}));
    EXPECT_EQ(filtered<BytesToWords>(integerKernel({300}, {-1}), row, 5, {5, 1}),
              (std::vector<Lum16s>{0, -300, -32768, -32768, -32768}));
    EXPECT_EQ(filtered<BytesToWords>(floatKernel({1e30f}, {-1}), row, 5, {5, 1}),
              (std::vector<Lum16s>{0, -32768, -32768, -32768, -32768}));
}

// The rows between the passes keep their fractions: rounded to integers, two halves would become 0 or 2.
TEST(SeparableQuick, RowsBetweenThePassesAreNotRounded)
{
    const Lum8u ones[] = {1, 1};
    EXPECT_EQ(filtered<Bytes>(integerKernel({1}, {1, 1}, 2), ones, 1, {1, 2}), (std::vector<Lum8u>{1, 1}));
    EXPECT_EQ(filtered<Bytes>(floatKernel({0.5f}, {1, 1}), ones, 1, {1, 2}), (std::vector<Lum8u>{1, 1}));
}

// The mode is not asked where a side lies in memory.
TEST(SeparableQuick, OneRowByHand)
{
    const Lum8u row[] = {91, 1, 2, 3, 4, 31};
    const auto sums = [&](LumiBorderType border) {
        return filtered<Bytes>(integerKernel({1, 1, 1}, {1}), row + 1, 6, {4, 1}, border, 50);
    };
    EXPECT_EQ(sums(lumBorderReplicate), (std::vector<Lum8u>{4, 6, 9, 11}));
    EXPECT_EQ(sums(lumBorderMirror), (std::vector<Lum8u>{5, 6, 9, 10}));
    EXPECT_EQ(sums(lumBorderConstant), (std::vector<Lum8u>{53, 6, 9, 57}));
    EXPECT_EQ(sums(lumBorderInMem), (std::vector<Lum8u>{94, 6, 9, 38}));
    EXPECT_EQ(sums(lumBorderMirror | lumBorderInMemLeft), (std::vector<Lum8u>{94, 6, 9, 10}));
    EXPECT_EQ(sums(lumBorderConstant | lumBorderInMemRight), (std::vector<Lum8u>{53, 6, 9, 38}));
}

TEST(SeparableQuick, OneColumnByHand)
{
    const Lum8u column[] = {91, 1, 2, 3, 4, 31};
    const auto sums = [&](LumiBorderType border) {
        return filtered<Bytes>(integerKernel({1}, {1, 1, 1}), column + 1, 1, {1, 4}, border, 50);
    };
    EXPECT_EQ(sums(lumBorderReplicate), (std::vector<Lum8u>{4, 6, 9, 11}));
    EXPECT_EQ(sums(lumBorderMirror), (std::vector<Lum8u>{5, 6, 9, 10}));
    EXPECT_EQ(sums(lumBorderConstant), (std::vector<Lum8u>{53, 6, 9, 57}));
    EXPECT_EQ(sums(lumBorderInMem), (std::vector<Lum8u>{94, 6, 9, 38}));
    EXPECT_EQ(sums(lumBorderMirror | lumBorderInMemTop), (std::vector<Lum8u>{94, 6, 9, 10}));
    EXPECT_EQ(sums(lumBorderConstant | lumBorderInMemBottom), (std::vector<Lum8u>{53, 6, 9, 38}));
}

// Behind the ROI the reflection runs to its first pixel and turns round there, although the memory before it is real.
TEST(SeparableQuick, MirrorTurnsRoundInsideTheRoiBesideASideInMemory)
{
    const Lum8u pixels[] = {70, 80, 90, 1, 2, 111, 112, 113};
    const Kernel last = integerKernel({0, 0, 0, 0, 0, 0, 1}, {1});   // the pixel 3 places on
    const Kernel first = integerKernel({1, 0, 0, 0, 0, 0, 0}, {1});  // the pixel 3 places back
    const auto along = [&](const Kernel& kernel, LumiBorderType border) {
        return filtered<Bytes>(kernel, pixels + 3, 8, {2, 1}, border);
    };
    const auto down = [&](const Kernel& kernel, LumiBorderType border) {
        return filtered<Bytes>(integerKernel({1}, kernel.x), pixels + 3, 1, {1, 2}, border);
    };
    // the places on from the first pixel: 1 2 | 1 2 1
    const std::vector<Lum8u> mirrored = {2, 1};
    EXPECT_EQ(along(last, lumBorderMirror | lumBorderInMemLeft), mirrored);
    EXPECT_EQ(along(first, lumBorderMirror | lumBorderInMemRight), mirrored);
    EXPECT_EQ(down(last, lumBorderMirror | lumBorderInMemTop), mirrored);
    EXPECT_EQ(down(first, lumBorderMirror | lumBorderInMemBottom), mirrored);
    EXPECT_EQ(along(first, lumBorderMirror | lumBorderInMemLeft), (std::vector<Lum8u>{70, 80}));
    EXPECT_EQ(along(last, lumBorderMirror | lumBorderInMemRight), (std::vector<Lum8u>{112, 113}));
    EXPECT_EQ(down(first, lumBorderMirror | lumBorderInMemTop), (std::vector<Lum8u>{70, 80}));
    EXPECT_EQ(down(last, lumBorderMirror | lumBorderInMemBottom), (std::vector<Lum8u>{112, 113}));
}

// A reflection of one pixel has nowhere to go but to that pixel, also beside a side in memory.
TEST(SeparableQuick, MirrorOfOnePixel)
{
    const Lum8u pixels[] = {70, 7, 90};
    const Kernel next = integerKernel({0, 0, 1}, {1});
    const Kernel below = integerKernel({1}, {0, 0, 1});
    EXPECT_EQ(filtered<Bytes>(next, pixels + 1, 3, {1, 1}, lumBorderMirror), std::vector<Lum8u>{7});
    EXPECT_EQ(filtered<Bytes>(next, pixels + 1, 3, {1, 1}, lumBorderMirror | lumBorderInMemLeft),
              std::vector<Lum8u>{7});
    EXPECT_EQ(filtered<Bytes>(below, pixels + 1, 1, {1, 1}, lumBorderMirror), std::vector<Lum8u>{7});
    EXPECT_EQ(filtered<Bytes>(below, pixels + 1, 1, {1, 1}, lumBorderMirror | lumBorderInMemTop),
              std::vector<Lum8u>{7});
}

TEST(SeparableQuick, ConstantRowsAreConstantOverTheWholeWidth)
{
    // what lies in memory left and right of the rows is not seen above and below them
    const Lum8u pixels[] = {100, 1, 2, 3, 100,  //
                            100, 4, 5, 6, 100};
    const LumiBorderType sides = lumBorderConstant | lumBorderInMemLeft | lumBorderInMemRight;
    EXPECT_EQ(filtered<Bytes>(integerKernel({1, 1, 1}, {1, 0, 0}), pixels + 1, 5, {3, 2}, sides, 20),
              (std::vector<Lum8u>{60, 60, 60, 103, 6, 105}));
    EXPECT_EQ(filtered<Bytes>(integerKernel({1, 1, 1}, {0, 0, 1}), pixels + 1, 5, {3, 2}, sides, 20),
              (std::vector<Lum8u>{109, 15, 111, 60, 60, 60}));
}

// A constant row is the sum of the row kernel, times the border value, times the scale: one rounding after the other,
// and not those of the row pass.
TEST(SeparableQuick, ConstantRowsAreFormedFromTheSumOfTheKernel)
{
    const Lum32f x[] = {0.1f, 0.7f, 0.3f};
    const Lum32f border = 3.3f;
    const Lum32f sum = x[0] + x[1] + x[2];
    const Lum32f expected = sum * border;
    const Lum32f rowPass = x[0] * border + x[1] * border + x[2] * border;
    ASSERT_NE(expected, rowPass);
    const Lum32f pixel = border;
    EXPECT_EQ(
        filtered<Floats>(floatKernel({x[0], x[1], x[2]}, {1, 0, 0}), &pixel, 1, {1, 1}, lumBorderConstant, border),
        std::vector<Lum32f>{expected});
    EXPECT_EQ(
        filtered<Floats>(floatKernel({x[0], x[1], x[2]}, {0, 1, 0}), &pixel, 1, {1, 1}, lumBorderConstant, border),
        std::vector<Lum32f>{rowPass});
}

TEST(SeparableQuick, ScaleOfAConstantRowComesLast)
{
    // the column kernel takes the row pass over a flat row from the constant row of the same value
    const Lum16s value = 12346;
    const Lum32f pixel = value;
    const Lum32f scale = 1.0f / 7.0f;
    const Lum32f constant = 7.0f * pixel * scale;
    const Lum32f scaledFirst = 7.0f * scale * pixel;
    const Lum32f rowPass = (1.0f * scale) * pixel + (3.0f * scale) * pixel + (3.0f * scale) * pixel;
    ASSERT_NE(constant, rowPass);
    ASSERT_NE(constant, scaledFirst);
    const Lum32f expected = 32767.0f * constant + -32767.0f * rowPass;
    ASSERT_EQ(expected, 32.0f);
    EXPECT_EQ(
        filtered<Words>(integerKernel({1, 3, 3}, {32767, -32767, 0}, 7), &value, 1, {1, 1}, lumBorderConstant, value),
        std::vector<Lum16s>{32});
}

TEST(SeparableQuick, ScaleFactorIsNotRead)
{
    const Lum8u row[] = {10, 20, 30, 200};
    Kernel kernel = integerKernel({1, 2, 1}, {1, 1}, 3);
    const std::vector<Lum16s> expected = filtered<BytesToWords>(kernel, row, 4, {4, 1});
    EXPECT_EQ(expected, (std::vector<Lum16s>{33, 53, 187, 420}));
    for (const Lum32s scaleFactor : {1, -1, 7, 31, 1000, std::numeric_limits<Lum32s>::min()}) {
        kernel.scaleFactor = scaleFactor;
        EXPECT_EQ(filtered<BytesToWords>(kernel, row, 4, {4, 1}), expected) << "scaleFactor " << scaleFactor;
    }
}

TYPE_SUITE(SeparableQuick, AllCases, CaseName);

TYPE_SUITE(Separable, AllCases, CaseName);

// The settings of a sweep go through channel counts, kernel types and entries in turn.
template <class C>
struct Turn
{
    explicit Turn(int number)
        : channels(kChannels[number % 3]),
          kernelType(C::kernelTypes[static_cast<std::size_t>(number / 3) % std::size(C::kernelTypes)]),
          entry(kBothEntries[number / 5 % 2])
    {
    }
    int channels;
    LumDataType kernelType;
    Entry entry;
};

template <class C>
void expectInTurn(int number, Setting setting, LumiSize kernelSize)
{
    const Turn<C> turn(number);
    Random random(static_cast<std::uint64_t>(number) + 5000);
    setting.channels = turn.channels;
    setting.seed = number;
    const Kernel kernel = drawKernels(turn.kernelType, kernelSize, std::is_same_v<typename C::Source, Lum32f>, random);
    expectFiltered<C>(turn.entry, setting, kernel);
}

TYPE_TEST(SeparableQuick, MatchesTheReference)
{
    int number = 0;
    for (const LumiSize kernelSize : {LumiSize{1, 1}, LumiSize{3, 3}, LumiSize{5, 5}, LumiSize{4, 2}, LumiSize{7, 9}}) {
        for (int i = 0; i < 8; ++i, ++number) {
            const LumiSize size = {1 + 17 * number % 70, 1 + 5 * number % 13};
            expectInTurn<TypeParam>(number, placed(size, number), kernelSize);
        }
    }
}

TYPE_TEST(SeparableQuick, KernelOfASingleOneCopies)
{
    using S = typename TypeParam::Source;
    for (const int channels : kChannels) {
        for (const LumDataType kernelType : TypeParam::kernelTypes) {
            for (const LumiBorderType border :
                 {lumBorderReplicate, lumBorderMirror, lumBorderConstant, lumBorderInMem}) {
                Setting setting;
                setting.size = {45, 6};
                setting.channels = channels;
                const Kernel kernel{kernelType, {1}, {1}, 1, 0};
                const PlacedBlock record = makeRecord(Entry::Ordinary, kernel, TypeParam::dataType, channels);
                const PlacedBlock scratch = makeScratch(kernel, 45, channels);
                Image<S> source(setting.template layout<S>());
                Random random(5);
                fill(source, random, Values::Extreme);
                Image<typename TypeParam::Destination> destination(
                    setting.template layout<typename TypeParam::Destination>());
                Image<typename TypeParam::Destination> expected(destination.layout());
                expected.forEach(Area::Roi, [&](auto& element, int x, int y, int c) {
                    element = static_cast<std::decay_t<decltype(element)>>(source.at(x, y, c));
                });
                const S borderValue[4] = {};
                ASSERT_EQ(
                    TypeParam::call(Entry::Ordinary, channels, source.pixels(), source.step(), destination.pixels(),
                                    destination.step(), {45, 6}, border, borderValue, specOf(record), scratch.data()),
                    lumOk);
                EXPECT_TRUE(sameImage(expected, destination)) << "border " << border;
            }
        }
    }
}

constexpr LumiSize kKernelSizes[] = {{3, 3}, {5, 5}, {3, 5}, {5, 3}, {1, 4}, {7, 1}, {2, 6}, {8, 8}, {9, 7}};

// Every mode with every combination of sides in memory, on images below and above the kernel.
TYPE_TEST(Separable, EveryBorder)
{
    const LumiSize sizes[] = {{1, 1}, {5, 1}, {1, 5}, {2, 2}, {9, 4}, {40, 6}};
    int number = 0;
    for (LumiBorderType border = 0; border < 256; ++border) {
        if (!isFilterBorder(border)) {
            continue;
        }
        for (const LumiSize kernelSize : {LumiSize{3, 3}, LumiSize{5, 5}, LumiSize{4, 6}, LumiSize{11, 2}}) {
            for (const LumiSize size : sizes) {
                Setting setting;
                setting.size = size;
                setting.border = border;
                setting.guard = number % 2 == 0 ? Guard::After : Guard::Before;
                expectInTurn<TypeParam>(number++, setting, kernelSize);
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
            ++number;
        }
    }
}

TYPE_TEST(Separable, EveryWidth)
{
    int number = 0;
    for (const LumiSize kernelSize : kKernelSizes) {
        for (const int width : sweepWidths()) {
            expectInTurn<TypeParam>(number, placed({width, 1 + number % 4}, number), kernelSize);
            ++number;
            if (testing::Test::HasFailure()) {
                return;
            }
        }
    }
    for (const int width : {1023, 1100, 2049}) {
        for (int i = 0; i < 6; ++i, ++number) {
            expectInTurn<TypeParam>(number, placed({width, 3}, number), kKernelSizes[number % 9]);
        }
    }
}

TYPE_TEST(Separable, EveryWidthUpToTwoVectors)
{
    int number = 1;
    for (int width = 1; width <= 70; ++width) {
        for (int i = 0; i < 6; ++i) {
            expectInTurn<TypeParam>(number, placed({width, 2}, number), kKernelSizes[(number + width) % 9]);
            ++number;
            if (testing::Test::HasFailure()) {
                return;
            }
        }
        ++number;
    }
}

TYPE_TEST(Separable, EveryHeight)
{
    int number = 2;
    for (const LumiSize kernelSize : kKernelSizes) {
        for (int height = 1; height < 2 * kernelSize.height + 3; ++height) {
            for (const int width : {1, 13, 67}) {
                expectInTurn<TypeParam>(number, placed({width, height}, number), kernelSize);
                ++number;
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

TYPE_TEST(Separable, EveryKernelUpTo18)
{
    int number = 3;
    for (Lum32s kw = 1; kw <= 18; ++kw) {
        for (Lum32s kh = 1; kh <= 18; ++kh) {
            const LumiSize size = {1 + 7 * number % 50, 1 + 11 * number % 23};
            expectInTurn<TypeParam>(number, placed(size, number), {kw, kh});
            ++number;
            if (testing::Test::HasFailure()) {
                return;
            }
        }
        ++number;
    }
}

// The ring does in the bytes of the formula: nearly all its rows come from the border.
TYPE_TEST(Separable, KernelsTallerAndWiderThanTheImage)
{
    int number = 4;
    for (const LumiSize kernelSize : {LumiSize{3, 400}, LumiSize{400, 3}, LumiSize{5, 129}, LumiSize{66, 65}}) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{2, 3}, LumiSize{33, 7}}) {
            for (const LumiBorderType border : kBorders) {
                Setting setting = placed(size, number);
                setting.border = border;
                // few denormals, which are slow
                setting.values = Values::Ordinary;
                expectInTurn<TypeParam>(number++, setting, kernelSize);
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
        ++number;
    }
}

// More rows than the kernel has: the ring of 400 rows turns round.
TYPE_TEST(Separable, RingOf400RowsTurnsRound)
{
    int number = 5;
    for (const LumiSize kernelSize : {LumiSize{1, 400}, LumiSize{3, 399}}) {
        for (const LumiBorderType border : {lumBorderMirror, lumBorderConstant}) {
            Setting setting = placed({5, 850}, number);
            setting.border = border;
            setting.values = Values::Ordinary;
            expectInTurn<TypeParam>(number++, setting, kernelSize);
        }
    }
}

// Infinities, not-a-numbers, denormals and numbers whose sums overflow, in images of floats.
TYPE_TEST(Separable, ExtremeValues)
{
    int number = 6;
    for (const LumiSize kernelSize : kKernelSizes) {
        for (const int width : {1, 8, 31, 64, 75}) {
            for (const Values values : {Values::Ordinary, Values::Extreme, Values::NonFinite}) {
                Setting setting = placed({width, 1 + number % 20}, number);
                setting.values = values;
                expectInTurn<TypeParam>(number++, setting, kernelSize);
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
        ++number;
    }
}

}  // namespace
}  // namespace lumcv::test::separable
