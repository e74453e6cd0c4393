// What the Laplacian, the lowpass and the Sobel cross compute: their matrices, worked examples, and the comparison with
// the plain reference over masks, borders, sizes and values.
#include <limits>

#include "filter/fixed_filters_fixture.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::fixed_filters {
namespace {

template <class O, class S>
using ResultOf = std::vector<typename Case<O, S>::Destination>;

// The filtered pixels of a ROI within rows of `step` pixels.
template <class O, class S>
ResultOf<O, S> filtered(const S* pSrc, int step, LumiSize size, LumiMaskSize mask, LumiBorderType border,
                        S borderValue = {})
{
    using C = Case<O, S>;
    const PlacedBlock scratch = makeScratch<C>(size.width, mask);
    ResultOf<O, S> result(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height));
    EXPECT_EQ(
        C::apply(pSrc, step * static_cast<int>(sizeof(S)), result.data(),
                 size.width * static_cast<int>(sizeof(result[0])), size, mask, border, borderValue, scratch.data()),
        lumOk);
    return result;
}

// The response of a filter to a single pixel of 1, turned by half a turn: its matrix.
template <class O, class S>
std::vector<int> matrixOf(LumiMaskSize mask, S unit = 1)
{
    const int side = maskSide(mask);
    std::vector<S> impulse(static_cast<std::size_t>(side * side));
    impulse[impulse.size() / 2] = unit;
    const ResultOf<O, S> response = filtered<O, S>(impulse.data(), side, {side, side}, mask, lumBorderConstant, S{0});
    std::vector<int> matrix;
    for (std::size_t i = response.size(); i-- > 0;) {
        matrix.push_back(static_cast<int>(response[i]));
    }
    return matrix;
}

TEST(FixedFiltersQuick, MatricesOfTheLaplacian)
{
    const std::vector<int> small = {2, 0, 2, 0, -8, 0, 2, 0, 2};
    EXPECT_EQ((matrixOf<Laplacian, Lum8u>(lumMask3x3)), small);
    EXPECT_EQ((matrixOf<Laplacian, Lum32f>(lumMask3x3)), small);
    // (1, 4, 6, 4, 1) along, (1, 0, -2, 0, 1) across, and the same turned
    std::vector<int> large;
    const int smooth[] = {1, 4, 6, 4, 1};
    const int second[] = {1, 0, -2, 0, 1};
    for (int j = 0; j < 5; ++j) {
        for (int i = 0; i < 5; ++i) {
            large.push_back(second[j] * smooth[i] + smooth[j] * second[i]);
        }
    }
    EXPECT_EQ((matrixOf<Laplacian, Lum8u>(lumMask5x5)), large);
    EXPECT_EQ((matrixOf<Laplacian, Lum32f>(lumMask5x5)), large);
}

// The top left is positive in both masks.
TEST(FixedFiltersQuick, MatricesOfTheSobelCross)
{
    const std::vector<int> small = {1, 0, -1, 0, 0, 0, -1, 0, 1};
    EXPECT_EQ((matrixOf<SobelCross, Lum8u>(lumMask3x3)), small);
    EXPECT_EQ((matrixOf<SobelCross, Lum32f>(lumMask3x3)), small);
    const std::vector<int> large = {1, 2, 0, -2, -1, 2, 4, 0, -4, -2, 0, 0, 0, 0, 0, -2, -4, 0, 4, 2, -1, -2, 0, 2, 1};
    EXPECT_EQ((matrixOf<SobelCross, Lum8u>(lumMask5x5)), large);
    EXPECT_EQ((matrixOf<SobelCross, Lum32f>(lumMask5x5)), large);
}

TEST(FixedFiltersQuick, MatricesOfTheLowpass)
{
    // 9 gives ((9 + 5) * 7280) >> 16 = 1, and 50 gives (50 * 2621) >> 16 = 1
    EXPECT_EQ((matrixOf<Lowpass, Lum8u>(lumMask3x3, 9)), std::vector<int>(9, 1));
    EXPECT_EQ((matrixOf<Lowpass, Lum8u>(lumMask5x5, 50)), std::vector<int>(25, 1));
    EXPECT_EQ((matrixOf<Lowpass, Lum32f>(lumMask3x3, 9.5f)), std::vector<int>(9, 1));
    EXPECT_EQ((matrixOf<Lowpass, Lum32f>(lumMask5x5, 25.5f)), std::vector<int>(25, 1));
}

// The 3x3 mean rounds, the 5x5 mean truncates and a little more: neither is a true division.
TEST(FixedFiltersQuick, LowpassOfEveryConstant)
{
    const Lum8u pixels[1] = {255};
    EXPECT_EQ((filtered<Lowpass, Lum8u>(pixels, 1, {1, 1}, lumMask3x3, lumBorderReplicate)), std::vector<Lum8u>{255});
    EXPECT_EQ((filtered<Lowpass, Lum8u>(pixels, 1, {1, 1}, lumMask5x5, lumBorderReplicate)), std::vector<Lum8u>{254});
    for (int value = 0; value < 256; ++value) {
        const std::vector<Lum8u> flat(40 * 7, static_cast<Lum8u>(value));
        const auto small = static_cast<Lum8u>(((9 * value + 5) * 7280) >> 16);
        const auto large = static_cast<Lum8u>((25 * value * 2621) >> 16);
        EXPECT_EQ((filtered<Lowpass, Lum8u>(flat.data(), 40, {40, 7}, lumMask3x3, lumBorderReplicate)),
                  std::vector<Lum8u>(40 * 7, small));
        EXPECT_EQ((filtered<Lowpass, Lum8u>(flat.data(), 40, {40, 7}, lumMask5x5, lumBorderMirror)),
                  std::vector<Lum8u>(40 * 7, large));
    }
}

// Every sum that a mask can have: one pixel of the sum's rest among pixels of 255 and 0.
TEST(FixedFiltersLowpass, EverySum)
{
    for (const LumiMaskSize mask : kMasks) {
        const int pixels = maskSide(mask) * maskSide(mask);
        const int side = maskSide(mask);
        for (int sum = 0; sum <= 255 * pixels; sum += mask == lumMask3x3 ? 1 : 3) {
            std::vector<Lum8u> block;
            for (int i = 0; i < pixels; ++i) {
                block.push_back(static_cast<Lum8u>(std::clamp(sum - 255 * i, 0, 255)));
            }
            const Lum8u* const centre = block.data() + block.size() / 2;
            const Lum8u expected =
                static_cast<Lum8u>(mask == lumMask3x3 ? ((sum + 5) * 7280) >> 16 : (sum * 2621) >> 16);
            EXPECT_EQ((filtered<Lowpass, Lum8u>(centre, side, {1, 1}, mask, lumBorderInMem)),
                      std::vector<Lum8u>{expected})
                << "sum " << sum;
        }
    }
}

// Nothing wraps at the ends of the range: black and white in the patterns that give the largest results.
TEST(FixedFiltersQuick, LargestResultsOf8u)
{
    const auto extremes = [](auto operatorTag, LumiMaskSize mask) {
        using O = decltype(operatorTag);
        const std::vector<int> matrix = matrixOf<O, Lum8u>(mask);
        std::vector<Lum8u> block;
        int expected = 0;
        for (const int weight : matrix) {
            block.push_back(weight > 0 ? 255 : 0);
            expected += weight > 0 ? 255 * weight : 0;
        }
        const Lum8u* const centre = block.data() + block.size() / 2;
        EXPECT_EQ((filtered<O, Lum8u>(centre, maskSide(mask), {1, 1}, mask, lumBorderInMem)),
                  std::vector<Lum16s>{static_cast<Lum16s>(expected)});
        for (Lum8u& pixel : block) {
            pixel = static_cast<Lum8u>(255 - pixel);
        }
        EXPECT_EQ((filtered<O, Lum8u>(centre, maskSide(mask), {1, 1}, mask, lumBorderInMem)),
                  std::vector<Lum16s>{static_cast<Lum16s>(-expected)});
    };
    for (const LumiMaskSize mask : kMasks) {
        extremes(Laplacian{}, mask);
        extremes(SobelCross{}, mask);
    }
}

// Rows above and below a constant border go through the row step like any other: they are not what it leaves of them.
TEST(FixedFiltersQuick, ConstantRowsGoThroughTheRowStep)
{
    const Lum8u flat[] = {10, 10, 10};
    // A is 20 + 20 above and below, B is 8 times 10
    EXPECT_EQ((filtered<Laplacian, Lum8u>(flat, 3, {3, 1}, lumMask3x3, lumBorderConstant, 20)),
              (std::vector<Lum16s>{80, 80, 80}));
    // 60 above and below; 40, 30 and 40 in the row
    EXPECT_EQ((filtered<Lowpass, Lum8u>(flat, 3, {3, 1}, lumMask3x3, lumBorderConstant, 20)),
              (std::vector<Lum8u>{(165 * 7280) >> 16, (155 * 7280) >> 16, (165 * 7280) >> 16}));
    // in single precision three times 0.1 is not what rounding 0.3 gives
    const Lum32f pixel = 0.0f;
    const Lum32f tenth = 0.1f;
    const Lum32f row = tenth + tenth + tenth;
    const Lum32f ends = tenth + pixel + tenth;
    EXPECT_EQ((filtered<Lowpass, Lum32f>(&pixel, 1, {1, 1}, lumMask3x3, lumBorderConstant, tenth)),
              std::vector<Lum32f>{(row + ends + row) * 0.11111111f});
}

// What lies in memory left and right of the ROI is not seen above and below it.
TEST(FixedFiltersQuick, ConstantRowsAreConstantOverTheWholeWidth)
{
    const Lum8u row[] = {100, 7, 7, 200};
    const LumiBorderType sides = lumBorderConstant | lumBorderInMemLeft | lumBorderInMemRight;
    // A is 20 above and below, B is 56
    EXPECT_EQ((filtered<Laplacian, Lum8u>(row + 1, 4, {2, 1}, lumMask3x3, sides, 10)), (std::vector<Lum16s>{24, 24}));
    // 60 above and below, and 114 or 214 in the row
    EXPECT_EQ((filtered<Lowpass, Lum8u>(row + 1, 4, {2, 1}, lumMask3x3, sides, 10)),
              (std::vector<Lum8u>{((60 + 114 + 5) * 7280) >> 16, ((60 + 214 + 5) * 7280) >> 16}));
}

// Behind the ROI the reflection runs to its first pixel and turns round there, although the memory before it is real.
TEST(FixedFiltersQuick, MirrorStaysInsideTheRoiBesideASideInMemory)
{
    // a single row of one pixel: whatever is reflected is that pixel
    const Lum8u pixels[] = {100, 110, 1, 120, 130};
    // along: 100 110 [1] 1 1, and the same above and below
    EXPECT_EQ((filtered<Lowpass, Lum8u>(pixels + 2, 5, {1, 1}, lumMask5x5, lumBorderMirror | lumBorderInMemLeft)),
              std::vector<Lum8u>{(5 * 213 * 2621) >> 16});
    EXPECT_EQ((filtered<Lowpass, Lum8u>(pixels + 2, 5, {1, 1}, lumMask5x5, lumBorderMirror | lumBorderInMemRight)),
              std::vector<Lum8u>{(5 * 253 * 2621) >> 16});
    EXPECT_EQ((filtered<Lowpass, Lum8u>(pixels + 2, 1, {1, 1}, lumMask5x5, lumBorderMirror | lumBorderInMemTop)),
              std::vector<Lum8u>{(5 * 213 * 2621) >> 16});
    EXPECT_EQ((filtered<Lowpass, Lum8u>(pixels + 2, 1, {1, 1}, lumMask5x5, lumBorderMirror | lumBorderInMemBottom)),
              std::vector<Lum8u>{(5 * 253 * 2621) >> 16});
    // two pixels, 1 and 120, between memory and the mirror: behind 120 comes 1, and then 120 again, not 110
    EXPECT_EQ((filtered<Lowpass, Lum8u>(pixels + 2, 5, {2, 1}, lumMask5x5, lumBorderMirror | lumBorderInMemLeft)),
              (std::vector<Lum8u>{(5 * (100 + 110 + 1 + 120 + 1) * 2621) >> 16,
                                  (5 * (110 + 1 + 120 + 1 + 120) * 2621) >> 16}));
}

TEST(FixedFiltersQuick, OneRowByHand)
{
    const Lum8u row[] = {91, 1, 2, 3, 4, 31};
    const auto laplacian = [&](LumiBorderType border) {
        return filtered<Laplacian, Lum8u>(row + 1, 6, {4, 1}, lumMask3x3, border, 50);
    };
    // the row stands above and below itself: 4 (left + right) - 8 of the pixel
    EXPECT_EQ(laplacian(lumBorderReplicate), (std::vector<Lum16s>{4, 0, 0, -4}));
    EXPECT_EQ(laplacian(lumBorderMirror), (std::vector<Lum16s>{8, 0, 0, -8}));
    EXPECT_EQ(laplacian(lumBorderReplicate | lumBorderInMemLeft), (std::vector<Lum16s>{364, 0, 0, -4}));
    EXPECT_EQ(laplacian(lumBorderMirror | lumBorderInMemRight), (std::vector<Lum16s>{8, 0, 0, 104}));
    EXPECT_EQ(laplacian(lumBorderConstant), (std::vector<Lum16s>{392, 384, 376, 368}));
}

TYPE_SUITE(FixedFiltersQuick, AllCases, CaseName);

TYPE_SUITE(FixedFilters, AllCases, CaseName);

// The derivatives of a flat image vanish, and the lowpass gives the image back up to its rounding.
TYPE_TEST(FixedFiltersQuick, FlatImages)
{
    using S = typename TypeParam::Source;
    using D = typename TypeParam::Destination;
    for (const LumiMaskSize mask : kMasks) {
        for (const LumiBorderType border : {lumBorderReplicate, lumBorderMirror, lumBorderConstant}) {
            const S value = 77;
            const std::vector<S> flat(37 * 9, value);
            const std::vector<D> result =
                filtered<typename TypeParam::Operator, S>(flat.data(), 37, {37, 9}, mask, border, value);
            for (const D element : result) {
                if constexpr (std::is_same_v<typename TypeParam::Operator, Lowpass>) {
                    const double truncated = mask == lumMask5x5 ? 1 : 0;
                    const double tolerance = std::is_same_v<S, Lum32f> ? 1e-4 : truncated;
                    EXPECT_NEAR(element, 77, tolerance);
                } else {
                    EXPECT_EQ(element, D{0});
                }
            }
        }
    }
}

TYPE_TEST(FixedFiltersQuick, MatchesTheReference)
{
    int number = 0;
    for (const LumiMaskSize mask : kMasks) {
        for (int i = 0; i < 30; ++i, ++number) {
            expectFiltered<TypeParam>(placed({1 + 17 * number % 70, 1 + 5 * number % 13}, number), mask);
        }
    }
}

// Every mode with every combination of sides in memory, on images below and above the mask.
TYPE_TEST(FixedFilters, EveryBorder)
{
    int number = 0;
    for (LumiBorderType border = 0; border < 256; ++border) {
        if (!isFilterBorder(border)) {
            continue;
        }
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{2, 1}, LumiSize{1, 2}, LumiSize{2, 2}, LumiSize{3, 3},
                                    LumiSize{9, 4}, LumiSize{4, 9}, LumiSize{70, 6}}) {
            for (const LumiMaskSize mask : kMasks) {
                FilterSetting setting;
                setting.size = size;
                setting.border = border;
                setting.seed = number;
                setting.guard = number / 2 % 2 == 0 ? Guard::After : Guard::Before;
                ++number;
                expectFiltered<TypeParam>(setting, mask);
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

TYPE_TEST(FixedFilters, EveryWidth)
{
    int number = 0;
    for (const LumiMaskSize mask : kMasks) {
        for (const int width : sweepWidths()) {
            for (const int height : {1, 2, 3, 4, 7}) {
                expectFiltered<TypeParam>(placed({width, height}, number), mask);
                ++number;
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
        for (const int width : {1023, 1100, 2049}) {
            for (int i = 0; i < 7; ++i) {
                expectFiltered<TypeParam>(placed({width, 3}, number++), mask);
            }
        }
    }
}

TYPE_TEST(FixedFilters, EveryWidthUpToTwoVectors)
{
    int number = 1;
    for (const LumiMaskSize mask : kMasks) {
        for (int width = 1; width <= 140; ++width) {
            for (int i = 0; i < 4; ++i) {
                expectFiltered<TypeParam>(placed({width, 2 + i}, number), mask);
                ++number;
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
            ++number;
        }
    }
}

TYPE_TEST(FixedFilters, EveryHeight)
{
    int number = 2;
    for (const LumiMaskSize mask : kMasks) {
        for (int height = 1; height <= 40; ++height) {
            for (const int width : {1, 13, 67}) {
                expectFiltered<TypeParam>(placed({width, height}, number), mask);
                ++number;
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

// Infinities, not-a-numbers, denormals and numbers whose sums overflow, in images of floats.
TYPE_TEST(FixedFilters, ExtremeValues)
{
    int number = 3;
    for (const LumiMaskSize mask : kMasks) {
        for (const int width : {1, 8, 31, 64, 75, 130}) {
            for (const Values values : {Values::Ordinary, Values::Extreme, Values::NonFinite}) {
                for (int i = 0; i < 7; ++i) {
                    FilterSetting setting = placed({width, 1 + number % 20}, number);
                    setting.values = values;
                    expectFiltered<TypeParam>(setting, mask);
                    ++number;
                    if (testing::Test::HasFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::fixed_filters
