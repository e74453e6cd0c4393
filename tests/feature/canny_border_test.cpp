// Edges of an image: sweeps over sizes, borders, filters and norms, and the cases that are easily done otherwise.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "feature/canny_image_fixture.hpp"

namespace lumcv::test::canny {
namespace {

ImageCall drawCall(LumiSize size, LumiBorderType border, int number)
{
    Random random(static_cast<std::uint64_t>(number) * 5 + 3);
    ImageCall call;
    call.size = size;
    call.border = border;
    call.borderValue = static_cast<Lum8u>(random.bits());
    const Operator chosen = kOperators[number % 3];
    call.filter = chosen.filter;
    call.mask = chosen.mask;
    call.norm = number / 3 % 2 == 0 ? lumNormL1 : lumNormL2;
    call.content = static_cast<Content>(number / 6 % static_cast<int>(Content::Count));
    call.place = drawPlacement(random);
    call.bottomUp = random.oneIn(4);
    call.seed = number;
    const Lum32f scale = call.mask == lumMask5x5 ? 3000.0f : (call.filter == lumFilterScharr ? 1500.0f : 400.0f);
    call.low = random.oneIn(3) ? 0.0f : scale * random.unit<Lum32f>() * 0.5f;
    call.high = call.low + scale * random.unit<Lum32f>();
    if (random.oneIn(2)) {
        call.low = std::floor(call.low);
        call.high = std::floor(call.high);
    }
    if (random.oneIn(6)) {
        call.high = call.low;
    }
    return call;
}

// Replicate and constant with each set of sides in memory, and all sides alone.
std::vector<LumiBorderType> allBorders()
{
    std::vector<LumiBorderType> result = {lumBorderInMem};
    for (LumiBorderType flags = 0; flags < 256; flags += 16) {
        result.push_back(flags | lumBorderReplicate);
        result.push_back(flags | lumBorderConstant);
    }
    return result;
}

TEST(CannyBorderQuick, FewSizes)
{
    int number = 0;
    const std::vector<LumiBorderType> borders = allBorders();
    for (const int width : {1, 3, 4, 9, 18, 35, 67}) {
        for (const int height : {1, 2, 3, 4, 7}) {
            for (int turn = 0; turn < 3; ++turn) {
                const auto border = borders[static_cast<std::size_t>(number * 7) % borders.size()];
                expectImageEdges(drawCall({width, height}, border, number++));
            }
        }
    }
}

TEST(CannyBorder, EveryBorder)
{
    int number = 1000;
    for (const LumiBorderType border : allBorders()) {
        for (const LumiSize size : {LumiSize{1, 1}, {2, 4}, {4, 2}, {3, 5}, {4, 4}, {7, 3}, {21, 1}, {38, 6}}) {
            for (int turn = 0; turn < 6; ++turn) {
                expectImageEdges(drawCall(size, border, number++));
                ASSERT_FALSE(testing::Test::HasFailure());
            }
        }
    }
}

TEST(CannyBorder, EveryWidth)
{
    int number = 5000;
    std::vector<int> widths;
    for (int width = 1; width <= 70; ++width) {
        widths.push_back(width);
    }
    for (const int width : {79, 80, 81, 95, 96, 97, 127, 128, 129, 130, 191, 192, 193, 255, 256, 257, 258, 259, 260}) {
        widths.push_back(width);
    }
    const std::vector<LumiBorderType> borders = allBorders();
    for (const int width : widths) {
        for (const int height : {3, 4, 5, 6 + width % 7}) {
            for (int turn = 0; turn < 3; ++turn) {
                const auto border = borders[static_cast<std::size_t>(number * 7) % borders.size()];
                expectImageEdges(drawCall({width, height}, border, number++));
                ASSERT_FALSE(testing::Test::HasFailure());
            }
        }
    }
}

TEST(CannyBorder, WideAndTall)
{
    int number = 9000;
    const std::vector<LumiBorderType> borders = allBorders();
    for (const LumiSize size : {LumiSize{1100, 5}, {1919, 3}, {4097, 4}, {2, 700}, {5, 600}, {97, 101}}) {
        for (int turn = 0; turn < 6; ++turn) {
            const auto border = borders[static_cast<std::size_t>(number * 7) % borders.size()];
            expectImageEdges(drawCall(size, border, number++));
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

TEST(CannyBorderQuick, ConstantImageHasNoEdges)
{
    for (const Operator& chosen : kOperators) {
        for (const LumiSize size : {LumiSize{1, 1}, {40, 2}, {40, 9}}) {
            ImageCall call;
            call.size = size;
            call.filter = chosen.filter;
            call.mask = chosen.mask;
            ImageOperands operands(call);
            operands.source.forEach(Area::WithMargins, [](Lum8u& element, int, int, int) { element = 200; });
            EXPECT_TRUE(edgePixels(operands.run()).empty());
        }
    }
}

// A step's two columns have the same magnitude: the left one stays, and of a step downwards the upper row.
TEST(CannyBorderQuick, FirstPixelOfAStepStays)
{
    for (const Operator& chosen : kOperators) {
        for (const LumiNorm norm : {lumNormL1, lumNormL2}) {
            for (const LumiSize size : {LumiSize{40, 2}, {40, 3}, {40, 4}, {40, 20}, {9, 9}}) {
                ImageCall call;
                call.size = size;
                call.filter = chosen.filter;
                call.mask = chosen.mask;
                call.norm = norm;
                call.low = 10;
                call.high = 20;
                const auto drawStep = [&](bool down, int place) {
                    ImageOperands operands(call);
                    operands.source.forEach(Area::WithMargins, [&](Lum8u& element, int x, int y, int) {
                        element = (down ? y : x) < place ? Lum8u{20} : Lum8u{90};
                    });
                    return edgePixels(operands.run());
                };
                std::vector<std::pair<int, int>> expected;
                for (int y = 0; y < size.height; ++y) {
                    expected.emplace_back(4, y);
                }
                EXPECT_EQ(drawStep(false, 5), expected) << size.width << " x " << size.height;
                if (size.height > 1) {
                    const int place = size.height / 2;
                    expected.clear();
                    for (int x = 0; x < size.width; ++x) {
                        expected.emplace_back(x, place - 1);
                    }
                    EXPECT_EQ(drawStep(true, place), expected) << size.width << " x " << size.height;
                }
            }
        }
    }
}

// Thresholds are not squared here: a step of height 10 has a Sobel magnitude of 40 in both norms.
TEST(CannyBorderQuick, ExactlyTheThreshold)
{
    for (const LumiNorm norm : {lumNormL1, lumNormL2}) {
        for (const int height : {2, 3, 4, 11}) {
            ImageCall call;
            call.size = {33, height};
            call.norm = norm;
            const auto count = [&](Lum32f low, Lum32f high) {
                call.low = low;
                call.high = high;
                ImageOperands operands(call);
                operands.source.forEach(Area::WithMargins, [&](Lum8u& element, int x, int, int) {
                    element = x < 17 ? Lum8u{10} : Lum8u{20};
                });
                return static_cast<int>(edgePixels(operands.run()).size());
            };
            EXPECT_EQ(count(0, 39.999f), height);
            EXPECT_EQ(count(39.999f, 39.999f), height);
            EXPECT_EQ(count(39, 40), 0) << "weak, never strong";
            EXPECT_EQ(count(40, 40), 0);
            const Lum32f noNumber = std::numeric_limits<Lum32f>::quiet_NaN();
            const Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
            EXPECT_EQ(count(10, noNumber), 0);
            EXPECT_EQ(count(noNumber, 20), 0);
            EXPECT_EQ(count(10, infinity), 0);
        }
    }
}

// All pixels beyond the ROI count as 0 in the suppression, also where the image goes on in memory.
TEST(CannyBorderQuick, MagnitudesEndWithTheRoi)
{
    for (const int height : {1, 3, 4, 6}) {
        ImageCall call;
        call.size = {24, height};
        call.border = lumBorderInMem;
        call.low = 5;
        call.high = 10;
        ImageOperands operands(call);
        // steeper and steeper to the left: every pixel but the first has a greater neighbour
        operands.source.forEach(Area::WithMargins, [&](Lum8u& element, int x, int, int) {
            element = static_cast<Lum8u>(250 - (24 - x) * (24 - x) / 4);
        });
        const auto edges = edgePixels(operands.run());
        ASSERT_FALSE(edges.empty());
        for (int y = 0; y < height; ++y) {
            EXPECT_EQ(std::count(edges.begin(), edges.end(), std::pair<int, int>(0, y)), 1) << "row " << y;
        }
        EXPECT_TRUE(operands.matchesReference());
    }
}

// Low and ordinary images tell directions apart by different roundings; both are the documented ones. The derivatives
// of this pair of rows take many values on both sides of each limit.
TEST(CannyBorder, DirectionsOfLowImages)
{
    for (const Operator& chosen : kOperators) {
        for (const LumiNorm norm : {lumNormL1, lumNormL2}) {
            for (const int height : {1, 2, 3}) {
                ImageCall call;
                call.size = {3000, height};
                call.filter = chosen.filter;
                call.mask = chosen.mask;
                call.norm = norm;
                call.border = lumBorderInMem;
                call.content = Content::Noise;
                call.low = 0;
                call.high = 700;
                call.seed = 40 + height;
                expectImageEdges(call);
            }
        }
    }
}

// Thresholds that are the magnitude of some pixel to the last bit, or one bit beside it.
TEST(CannyBorder, ThresholdsAtMagnitudes)
{
    Random random(31);
    int number = 0;
    for (const Operator& chosen : kOperators) {
        for (const LumiNorm norm : {lumNormL1, lumNormL2}) {
            for (const LumiSize size : {LumiSize{90, 1}, {40, 2}, {61, 3}, {40, 9}, {83, 14}}) {
                for (int turn = 0; turn < 24; ++turn) {
                    ImageCall call;
                    call.size = size;
                    call.filter = chosen.filter;
                    call.mask = chosen.mask;
                    call.norm = norm;
                    call.content = turn % 3 == 0 ? Content::Smooth : Content::Noise;
                    call.seed = number++;
                    ImageOperands operands(call);
                    const auto derivatives =
                        imageDerivatives(operands.source, size, call.filter, call.mask, call.border, call.borderValue);
                    const auto drawThreshold = [&] {
                        const auto [dx, dy] = derivatives[static_cast<std::size_t>(
                            random.between(0, static_cast<std::int64_t>(derivatives.size()) - 1))];
                        const auto m = static_cast<Lum32f>(imageGradient(dx, dy, norm, size.height < 4, -1).magnitude);
                        const auto side = random.between(0, 2);
                        return side == 0 ? m : std::max(0.0f, std::nextafter(m, side == 1 ? 0.0f : 1e9f));
                    };
                    operands.call.low = drawThreshold();
                    operands.call.high = drawThreshold();
                    if (operands.call.low > operands.call.high) {
                        std::swap(operands.call.low, operands.call.high);
                    }
                    operands.run();
                    EXPECT_TRUE(operands.matchesReference()) << operands.call;
                }
            }
        }
    }
}

// Roots that are the same in single precision tie where the sums of squares differ: the right pixel of this step has a
// dy of 2 and the left one none, beside a dx of 12000 in both, and yet the left one stays.
TEST(CannyBorderQuick, RootsTieWhereSumsDiffer)
{
    constexpr int kRow = 6;
    for (const int step : {5, 8, 20, 33}) {
        for (const bool down : {false, true}) {
            for (const bool strong : {false, true}) {
                ImageCall call;
                call.size = down ? LumiSize{13, 40} : LumiSize{40, 13};
                call.mask = lumMask5x5;
                call.norm = lumNormL2;
                call.low = 100;
                call.high = strong ? 200 : 11999.999f;
                ImageOperands operands(call);
                operands.source.forEach(Area::WithMargins, [&](Lum8u& element, int x, int y, int) {
                    element = (down ? y : x) < step ? Lum8u{0} : Lum8u{250};
                });
                const auto pixel = [&](int along, int across) -> Lum8u& {
                    return down ? operands.source.at(across, along) : operands.source.at(along, across);
                };
                // without effect on the derivative along the step: weights 1 and 4 of the smoothing
                pixel(step + 2, kRow - 2) = 254;
                pixel(step + 2, kRow - 1) = 249;
                const auto derivatives =
                    imageDerivatives(operands.source, call.size, call.filter, call.mask, call.border, call.borderValue);
                const auto derivative = [&](int along, int across) {
                    const int index = down ? along * 13 + across : across * 40 + along;
                    const auto [dx, dy] = derivatives[static_cast<std::size_t>(index)];
                    return down ? std::pair<int, int>(dy, dx) : std::pair<int, int>(dx, dy);
                };
                ASSERT_EQ(derivative(step - 1, kRow), (std::pair<int, int>(12000, 0)));
                ASSERT_EQ(derivative(step, kRow).first, 12000);
                ASSERT_EQ(std::abs(derivative(step, kRow).second), 2);
                const Image<Lum8u>& edges = operands.run();
                EXPECT_EQ(int{down ? edges.at(kRow, step - 1) : edges.at(step - 1, kRow)}, 255) << call;
                EXPECT_EQ(int{down ? edges.at(kRow, step) : edges.at(step, kRow)}, 0) << call;
                EXPECT_TRUE(operands.matchesReference()) << call;
            }
        }
    }
}

// Draws the pixels under the 5x5 mask of pixel (3, 1) so that its derivatives are the given ones, by small changes that
// bring them closer. Says whether it came to an end.
bool drawDerivatives(Image<Lum8u>& source, int dx, int dy, Random& random)
{
    const DerivativeWeights weights = derivativeWeights(lumFilterSobel, lumMask5x5);
    int missingX = dx;
    int missingY = dy;
    source.forEach(Area::WithMargins,
                   [&](Lum8u& element, int, int, int) { element = static_cast<Lum8u>(random.between(100, 150)); });
    for (std::size_t i = 0; i < 25; ++i) {
        const Lum8u value = source.at(static_cast<int>(i % 5) + 1, static_cast<int>(i / 5) - 1);
        missingX -= weights.smoothing[i / 5] * weights.difference[i % 5] * value;
        missingY -= weights.difference[i / 5] * weights.smoothing[i % 5] * value;
    }
    for (int turn = 0; turn < 20000 && (missingX != 0 || missingY != 0); ++turn) {
        const auto row = static_cast<std::size_t>(random.between(0, 4));
        const auto column = static_cast<std::size_t>(random.between(0, 4));
        Lum8u& element = source.at(static_cast<int>(column) + 1, static_cast<int>(row) - 1);
        const int span = random.oneIn(2) ? 3 : 60;
        const int value = std::clamp(element + static_cast<int>(random.between(-span, span)), 0, 255);
        const int newX = missingX - weights.smoothing[row] * weights.difference[column] * (value - element);
        const int newY = missingY - weights.difference[row] * weights.smoothing[column] * (value - element);
        if (std::abs(newX) + std::abs(newY) <= std::abs(missingX) + std::abs(missingY)) {
            missingX = newX;
            missingY = newY;
            element = static_cast<Lum8u>(value);
        }
    }
    return missingX == 0 && missingY == 0;
}

// A few of the derivatives for which the rounded angle of a low image and the tangents of the others give different
// directions. The sum of dx and dy is even under this mask.
TEST(CannyBorder, AngleAndTangentsDiffer)
{
    Random random(17);
    int telling = 0;
    for (const auto& [dx, dy] :
         std::vector<std::pair<int, int>>{{-5333, 2209}, {5333, -2209}, {-6726, 2786}, {6726, -2786}}) {
        for (int turn = 0; turn < 60; ++turn) {
            for (const int height : {3, 4}) {
                ImageCall call;
                call.size = {7, height};
                call.mask = lumMask5x5;
                call.border = lumBorderInMem;
                ImageOperands operands(call);
                bool drawn = false;
                for (int attempt = 0; attempt < 20 && !drawn; ++attempt) {
                    drawn = drawDerivatives(operands.source, dx, dy, random);
                }
                ASSERT_TRUE(drawn) << dx << ", " << dy;
                const auto derivatives =
                    imageDerivatives(operands.source, call.size, call.filter, call.mask, call.border, call.borderValue);
                ASSERT_EQ(derivatives[7 + 3], (std::pair<int, int>(dx, dy)));
                const auto edgesWith = [&](bool isLow) {
                    Gradients gradients(call.size);
                    for (std::size_t i = 0; i < derivatives.size(); ++i) {
                        gradients.at(static_cast<int>(i) / 7, static_cast<int>(i) % 7) =
                            imageGradient(derivatives[i].first, derivatives[i].second, call.norm, isLow, 0);
                    }
                    return edges(gradients, 0);
                };
                telling += edgesWith(true) != edgesWith(false) ? 1 : 0;
                operands.run();
                EXPECT_TRUE(operands.matchesReference()) << dx << ", " << dy << ": " << call;
            }
        }
    }
    EXPECT_GE(telling, 5) << "hardly an image tells the two apart";
}

}  // namespace
}  // namespace lumcv::test::canny
