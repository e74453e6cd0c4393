// What is special about layers, with numbers found by hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "pyramid/layer_fixture.hpp"

namespace lumcv::test::pyramid {
namespace {

const LayerForm& k8u = kForms[0];
const LayerForm& k16u = kForms[2];
const LayerForm& k32f = kForms[4];

/// The layer of a picture that is given by a function of place.
template <class T, class F>
Image<T> layerOf(const LayerForm& form, Way way, const LayerSetting& setting, F pixel)
{
    Image<T> source({.width = setting.size.width, .height = setting.size.height, .channels = form.channels});
    source.forEach(Area::Roi, [&](T& element, int x, int y, int) { element = static_cast<T>(pixel(x, y)); });
    const LumiSize to = setting.destinationSize(way);
    Image<T> destination({.width = to.width, .height = to.height, .channels = form.channels});
    const LayerRecord record(form, way, setting);
    EXPECT_EQ(applyLayer(form, way, setting, source, destination, record.state()), lumOk);
    return destination;
}

auto bright(int x, int y, int value)
{
    return [=](int column, int row) { return column == x && row == y ? value : 0; };
}

template <class T>
std::vector<T> rowOf(const Image<T>& image, int y)
{
    return {image.row(y), image.row(y) + image.width() * image.channels()};
}

// The weights of 1, 4, 6, 4, 1 at a rate of 2: 512, 2048, 3072, 2048, 512 of 8192, and the pixel of the whole picture
// is 36 of 256 at its own place, 6 two pixels beside it and 1 two pixels off in both directions.
TEST(LayerEdgesQuick, TheBinomialKernelHasItsWeights)
{
    const auto down = layerOf<Lum16u>(k16u, Way::Down, {.size = {12, 12}}, bright(4, 6, 256 * 100));
    EXPECT_EQ(rowOf(down, 2), (std::vector<Lum16u>{0, 100, 600, 100, 0, 0}));
    EXPECT_EQ(rowOf(down, 3), (std::vector<Lum16u>{0, 600, 3600, 600, 0, 0}));
    EXPECT_EQ(rowOf(down, 4), (std::vector<Lum16u>{0, 100, 600, 100, 0, 0}));
    // of odd places: 4 x 4, and 24 where only one coordinate is odd
    const auto odd = layerOf<Lum16u>(k16u, Way::Down, {.size = {12, 12}}, bright(5, 6, 256 * 100));
    EXPECT_EQ(rowOf(odd, 3), (std::vector<Lum16u>{0, 0, 2400, 2400, 0, 0}));
    const auto floats = layerOf<Lum32f>(k32f, Way::Down, {.size = {12, 12}}, bright(4, 6, 256));
    EXPECT_EQ(rowOf(floats, 3), (std::vector<Lum32f>{0, 6, 36, 6, 0, 0}));
}

// 36 x 60 of 256 is 8.44. The direct pass rounds once, to 8; where both passes and the last step round, 2160 becomes
// (2160 + 16) >> 5 = 68 eighths, and (68 + 4) >> 3 = 9.
TEST(LayerEdgesQuick, TheDirectPassOfBytesRoundsOnce)
{
    const auto pixel = bright(2, 2, 60);
    const auto middle = [&](const LayerSetting& setting) {
        return layerOf<Lum8u>(k8u, Way::Down, setting, pixel).at(1, 1);
    };
    EXPECT_EQ(middle({.size = {6, 6}}), 8);
    // not in a ROI of 5 pixels on a side, also if the record is for a larger one
    EXPECT_EQ(middle({.size = {5, 6}}), 9);
    EXPECT_EQ(middle({.size = {6, 5}}), 9);
    EXPECT_EQ(middle({.size = {5, 5}, .recordSize = {60, 60}}), 9);
    // not with other taps of the same proportions
    EXPECT_EQ(middle({.size = {6, 6}, .kernel = {2, 8, 12, 8, 2}}), 9);
    // nor with seven taps
    EXPECT_EQ(middle({.size = {8, 8}, .kernel = {0, 1, 4, 6, 4, 1, 0}}), 9);
    // the first three taps decide, and a rate near enough to 2
    EXPECT_EQ(middle({.size = {6, 6}, .kernel = {1, 4, 6, 7, 9}}), 8);
    EXPECT_EQ(middle({.size = {6, 6}, .rate = 1.99999f}), 8);
}

// Bytes keep three fractional bits between the smoothing and the resampling, 16-bit pixels keep none. The smoothed
// pixels are a quarter at x = 2 and a half at x = 3, and x = 2.5 is sampled.
TEST(LayerEdgesQuick, OnlyBytesKeepFractionsAcrossTheResampling)
{
    const LayerSetting setting = {.size = {10, 8}, .rate = 2.5f, .kernel = {1, 2, 1}};
    const auto pixel = [](int x, int) { return x == 1 ? 1 : x == 4 ? 2 : 0; };
    EXPECT_EQ(rowOf(layerOf<Lum8u>(k8u, Way::Down, setting, pixel), 1), (std::vector<Lum8u>{0, 0, 1, 0}));
    EXPECT_EQ(rowOf(layerOf<Lum16u>(k16u, Way::Down, setting, pixel), 1), (std::vector<Lum16u>{0, 1, 1, 0}));
}

// The row pass of 16-bit pixels keeps whole quarters, and what lies between is cut.
TEST(LayerEdgesQuick, RowSumsAreCutAndNotRounded)
{
    const auto of = [](Lum16u value) {
        return layerOf<Lum16u>(k16u, Way::Down, {.size = {8, 8}, .kernel = {1, 8190, 1}},
                               [=](int x, int) { return x == 3 ? value : 0; })
            .at(1, 1);
    };
    EXPECT_EQ(of(2047), 0);
    // 31 quarters and a rest
    EXPECT_EQ(of(65535), 8);
    // two quarters are rounded up by the column; one less is cut to a quarter
    EXPECT_EQ(of(4096), 1);
    EXPECT_EQ(of(4095), 0);
}

// Constant pictures stay constant: the largest 16-bit value just fits 32 bits.
TEST(LayerEdgesQuick, ConstantPicturesStay)
{
    for (const LayerForm& form : kForms) {
        SCOPED_TRACE(form.name);
        for (const Way way : {Way::Down, Way::Up}) {
            for (const LumiSize size : {LumiSize{12, 11}, LumiSize{3, 2}, LumiSize{1, 1}}) {
                for (const Lum32f rate : {2.0f, 1.7f}) {
                    const LayerSetting setting = {.size = size, .rate = rate};
                    withElement(form, [&]<class T>() {
                        for (const int value : {0, 1, 128, 255, std::is_same_v<T, Lum8u> ? 77 : 65535}) {
                            const Image<T> layer = layerOf<T>(form, way, setting, [=](int, int) { return value; });
                            for (int y = 0; y < layer.height(); ++y) {
                                for (const T element : rowOf(layer, y)) {
                                    if constexpr (kIsFloat<T>) {
                                        ASSERT_NEAR(element, static_cast<Lum32f>(value), 0.05f);
                                    } else {
                                        ASSERT_EQ(element, static_cast<T>(value));
                                    }
                                }
                            }
                        }
                    });
                    ASSERT_FALSE(HasFailure());
                }
            }
        }
    }
}

// At a rate of 1.99999 four pixels become three, and the third is taken from beyond the end.
TEST(LayerEdgesQuick, SamplesBeyondTheEndAreTheLastPixel)
{
    ASSERT_EQ(downSide(4, 1.99999f), 3);
    const auto down = layerOf<Lum8u>(k8u, Way::Down, {.size = {4, 4}, .rate = 1.99999f, .kernel = {0, 1, 0}},
                                     [](int x, int y) { return 10 * x + y; });
    EXPECT_EQ(rowOf(down, 0), (std::vector<Lum8u>{0, 20, 30}));
    EXPECT_EQ(rowOf(down, 2), (std::vector<Lum8u>{3, 23, 33}));
}

// Coordinates d * rate, and the nearest pixel to the right stays the last one.
TEST(LayerEdgesQuick, SamplesBetweenPixels)
{
    const auto down = layerOf<Lum32f>(k32f, Way::Down, {.size = {5, 5}, .rate = 1.5f, .kernel = {0, 1, 0}},
                                      [](int x, int y) { return 10 * x + 100 * y; });
    ASSERT_EQ(down.width(), 4);
    EXPECT_EQ(rowOf(down, 0), (std::vector<Lum32f>{0, 15, 30, 40}));
    EXPECT_EQ(rowOf(down, 1), (std::vector<Lum32f>{150, 165, 180, 190}));
    EXPECT_EQ(rowOf(down, 3), (std::vector<Lum32f>{400, 415, 430, 440}));
}

// Edges are replicated: the first pixel counts for those before it.
TEST(LayerEdgesQuick, EdgesAreReplicated)
{
    const auto down = layerOf<Lum32f>(k32f, Way::Down, {.size = {8, 8}}, [](int x, int) { return x == 0 ? 16 : 0; });
    EXPECT_EQ(rowOf(down, 0), (std::vector<Lum32f>{11, 1, 0, 0}));
    const auto small = layerOf<Lum32f>(k32f, Way::Down, {.size = {3, 3}}, [](int x, int) { return x == 2 ? 16 : 0; });
    EXPECT_EQ(rowOf(small, 0), (std::vector<Lum32f>{1, 11}));
}

// The first pixel is a reflection, the last a repetition: weights 6 and 2 at the one end, 1 and 7 at the other.
TEST(LayerEdgesQuick, TheEndsOfTheWayUpDiffer)
{
    for (const LayerForm* const form : {&k8u, &k16u}) {
        withElement(*form, [&]<class T>() {
            const auto up = [&](int x) {
                return rowOf(layerOf<T>(*form, Way::Up, {.size = {4, 1}}, bright(x, 0, 64)), 1);
            };
            EXPECT_EQ(up(0), (std::vector<T>{48, 32, 8, 0, 0, 0, 0, 0}));
            EXPECT_EQ(up(1), (std::vector<T>{16, 32, 48, 32, 8, 0, 0, 0}));
            EXPECT_EQ(up(2), (std::vector<T>{0, 0, 8, 32, 48, 32, 8, 0}));
            EXPECT_EQ(up(3), (std::vector<T>{0, 0, 0, 0, 8, 32, 56, 64}));
            // the same down a column
            const Image<T> column = layerOf<T>(*form, Way::Up, {.size = {1, 3}}, bright(0, 0, 64));
            EXPECT_EQ(column.width(), 2);
            for (const int x : {0, 1}) {
                for (int y = 0; y < 6; ++y) {
                    EXPECT_EQ(column.at(x, y), (std::vector<T>{48, 32, 8, 0, 0, 0})[static_cast<std::size_t>(y)]);
                }
            }
        });
    }
    // floats take the general way: both ends are repetitions
    const auto floats = layerOf<Lum32f>(k32f, Way::Up, {.size = {4, 1}}, bright(0, 0, 64));
    EXPECT_EQ(rowOf(floats, 0), (std::vector<Lum32f>{56, 32, 8, 0, 0, 0, 0, 0}));
    // and so do other taps of the same proportions
    const auto doubled = layerOf<Lum8u>(k8u, Way::Up, {.size = {4, 1}, .kernel = {2, 8, 12, 8, 2}}, bright(0, 0, 64));
    EXPECT_EQ(rowOf(doubled, 0), (std::vector<Lum8u>{56, 32, 8, 0, 0, 0, 0, 0}));
}

// The weights of both axes are multiplied before the only rounding: 4 x 4 of 64 of 2 is a half, which goes up.
TEST(LayerEdgesQuick, TheWayUpRoundsOnce)
{
    const auto odd = layerOf<Lum8u>(k8u, Way::Up, {.size = {4, 4}}, bright(1, 1, 2));
    EXPECT_EQ(odd.at(3, 3), 1);
    EXPECT_EQ(odd.at(2, 2), 1);  // 36 x 2 of 64
    EXPECT_EQ(odd.at(2, 3), 1);  // 24 x 2
    EXPECT_EQ(odd.at(4, 3), 0);  // 4 x 2
    // a half of the general way goes to the even neighbour
    const auto general = layerOf<Lum8u>(k8u, Way::Up, {.size = {4, 4}, .kernel = {2, 8, 12, 8, 2}}, bright(1, 1, 2));
    EXPECT_EQ(general.at(3, 3), 0);
    const auto three = layerOf<Lum8u>(k8u, Way::Up, {.size = {4, 4}, .kernel = {2, 8, 12, 8, 2}}, bright(1, 1, 6));
    EXPECT_EQ(three.at(3, 3), 2);  // 1.5
}

// Where the kernel is too short to reach a source pixel, the one below the position counts.
TEST(LayerEdgesQuick, PlacesWithoutATapRepeatTheirPixel)
{
    // at a rate of 6 the destinations 2, 3 and 4 between two pixels meet no tap
    const auto up = layerOf<Lum8u>(k8u, Way::Up, {.size = {3, 1}, .rate = 6, .kernel = {1, 2, 1}},
                                   [](int x, int) { return 100 * (x == 0) + 50 * (x == 1) + 10 * (x == 2); });
    EXPECT_EQ(rowOf(up, 0),
              (std::vector<Lum8u>{100, 100, 100, 100, 100, 50, 50, 50, 50, 50, 50, 10, 10, 10, 10, 10, 10, 10}));
}

// The taps of the way down are cut: a third is 2730 of 8192, and the largest pixel does not stay itself.
TEST(LayerEdgesQuick, TapsOfTheWayDownAreCut)
{
    const auto down =
        layerOf<Lum16u>(k16u, Way::Down, {.size = {8, 8}, .kernel = {1, 1, 1}}, [](int, int) { return 65535; });
    // (8190 * 65535) >> 11 is 262076, and (8190 * 262076 + 16384) >> 15 the pixel
    EXPECT_EQ(down.at(1, 1), 65503);
    // the weights of the way up are divided by their sum
    const auto up =
        layerOf<Lum16u>(k16u, Way::Up, {.size = {8, 8}, .kernel = {1, 1, 1}}, [](int, int) { return 65535; });
    EXPECT_EQ(up.at(1, 1), 65535);
}

// Taps of floats differ if they do by more than the smallest normal number, and a sum not above it divides nothing.
TEST(LayerEdgesQuick, TinyTapsOfFloats)
{
    for (const Way way : {Way::Down, Way::Up}) {
        const auto initStatus = [&](const std::vector<Lum32f>& kernel) {
            std::vector<Lum8u> block(8192), buffer(64);
            void* state = nullptr;
            return functionsOf(k32f, way).init({.ppState = &state,
                                                .srcRoi = {8, 8},
                                                .pKernel = kernel.data(),
                                                .kernelSize = 3,
                                                .pStateMem = block.data(),
                                                .pBuffer = buffer.data()});
        };
        constexpr Lum32f smallest = std::numeric_limits<Lum32f>::min();
        EXPECT_EQ(initStatus({0, 1, smallest}), lumOk);
        EXPECT_EQ(initStatus({0, 1, -smallest}), lumOk);
        EXPECT_EQ(initStatus({0, 1, 2 * smallest}), lumWrnKernelNotSymmetric);
        EXPECT_EQ(initStatus({0, 1, -2 * smallest}), lumWrnKernelNotSymmetric);
        EXPECT_EQ(initStatus({2 * smallest, 1, 0}), lumWrnKernelNotSymmetric);
    }
    const auto middle = [](Lum32f tap) {
        return layerOf<Lum32f>(k32f, Way::Down, {.size = {8, 8}, .kernel = {0, tap, 0}}, [](int, int) { return 1e38f; })
            .at(1, 1);
    };
    constexpr Lum32f smallest = std::numeric_limits<Lum32f>::min();
    EXPECT_EQ(middle(smallest), smallest * (smallest * 1e38f));
    EXPECT_EQ(middle(-smallest), smallest * (smallest * 1e38f));
    EXPECT_EQ(middle(2 * smallest), 1e38f);
    EXPECT_EQ(middle(-2 * smallest), 1e38f);
}

}  // namespace
}  // namespace lumcv::test::pyramid
