// What reconstruction stores, over sizes, markers and values, and its documented edge cases.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "morph/reconstruct_fixture.hpp"
#include "support/compare.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::reconstruct {
namespace {

TYPE_SUITE(Reconstruct, Cases, CaseName);

TYPE_SUITE(ReconstructQuick, Cases, CaseName);

Pattern drawMask(int width, int height, Random& random)
{
    switch (random.between(0, 5)) {
        case 0:
            return noise(width, height, 256, random);
        case 1:
            return noise(width, height, 4, random);
        case 2:
            return hills(width, height, random);
        case 3:
            return percolation(width, height, 85, random);
        case 4:
            return uneven(percolation(width, height, 60, random), random);
        default:
            return uneven(percolation(width, height, 95, random), random);
    }
}

template <class C>
void sweepAgainstReference(Sweep sweep)
{
    using T = typename C::T;
    forEachGeometry(sweep, [&](const Geometry& geometry) {
        Random random(static_cast<std::uint64_t>(geometry.number));
        const Pattern maskPattern = drawMask(geometry.width, geometry.height, random);
        const Pattern markerPattern = drawMarker(maskPattern, random);
        const Palette palette = drawPalette(random);
        SCOPED_TRACE(testing::Message() << maskPattern << "; " << markerPattern);
        const Image<T> mask = imageOf<T>(C::form, palette, maskPattern, geometry.layout<T>(0));
        const Image<T> marker = imageOf<T>(C::form, palette, markerPattern, geometry.layout<T>(1));
        expectReference<C>(mask, marker, kNorms[geometry.number / 3 % 2]);
    });
}

TYPE_TEST(Reconstruct, AgreesWithTheReference)
{
    sweepAgainstReference<TypeParam>(Sweep::Full);
}

TYPE_TEST(ReconstructQuick, AgreesWithTheReference)
{
    sweepAgainstReference<TypeParam>(Sweep::Quick);
}

TYPE_TEST(Reconstruct, RandomFields)
{
    Random random(51);
    for (int i = 0; i < 40; ++i) {
        const Pattern mask =
            drawMask(static_cast<int>(random.between(1, 60)), static_cast<int>(random.between(1, 40)), random);
        expectReference<TypeParam>(drawPalette(random), mask, drawMarker(mask, random));
        if (testing::Test::HasFailure()) {
            return;
        }
    }
}

TYPE_TEST(Reconstruct, WideAndHighImages)
{
    Random random(52);
    for (const LumiSize size : {LumiSize{1100, 9}, LumiSize{9, 1100}, LumiSize{4099, 2}, LumiSize{2, 2053}}) {
        const Pattern mask = uneven(percolation(size.width, size.height, 80, random), random);
        expectReference<TypeParam>(drawPalette(random), mask, drawMarker(mask, random));
    }
}

// One value runs the whole row, in both directions, and passes no lower place.
TYPE_TEST(Reconstruct, RunsAlongARow)
{
    Random random(62);
    for (const int width : {1, 2, 7, 8, 10, 11, 12, 16, 17, 31, 32, 33, 64, 65, 127, 128, 129, 259, 1025}) {
        Pattern mask{"row", width, 1};
        std::fill(mask.levels.begin(), mask.levels.end(), 180);
        for (const int seed : {0, width / 2, width - 1}) {
            expectReference<TypeParam>(drawPalette(random), mask, seedAt(mask, seed, 0));
            Pattern gated = mask;
            gated.at(width / 3, 0) = 90;
            gated.at(2 * width / 3, 0) = 70;
            expectReference<TypeParam>(drawPalette(random), gated, seedAt(mask, seed, 0));
        }
    }
}

TYPE_TEST(ReconstructQuick, OneRowOneColumnOnePixel)
{
    Random random(53);
    for (const LumiSize size : {LumiSize{1, 1}, LumiSize{40, 1}, LumiSize{1, 40}, LumiSize{2, 2}, LumiSize{2, 1}}) {
        for (int i = 0; i < 12; ++i) {
            const Pattern mask = noise(size.width, size.height, 6, random);
            expectReference<TypeParam>(drawPalette(random), mask, drawMarker(mask, random));
        }
    }
}

TYPE_TEST(ReconstructQuick, MarkerEqualToTheMaskStays)
{
    using T = typename TypeParam::T;
    Random random(54);
    for (const Palette palette : kPalettes) {
        for (const LumiDistanceNorm norm : kNorms) {
            const Image<T> mask = imageOf<T>(TypeParam::form, palette, noise(37, 19, 256, random));
            Image<T> marker = mask;
            ASSERT_TRUE(reconstructed<TypeParam>(mask, marker, norm));
            EXPECT_TRUE(sameImage(mask, marker)) << normText(norm);
        }
    }
}

TYPE_TEST(ReconstructQuick, LowestMarkerStays)
{
    using T = typename TypeParam::T;
    using Limits = std::numeric_limits<T>;
    Random random(55);
    const T lowest = TypeParam::form == Form::Erode ? Limits::max() : Limits::lowest();
    for (const LumiDistanceNorm norm : kNorms) {
        Image<T> mask({.width = 35, .height = 9}), marker({.width = 35, .height = 9});
        fill(mask, random);
        marker.forEach(Area::Roi, [=](T& pixel, int, int, int) { pixel = lowest; });
        const Image<T> before = marker;
        ASSERT_TRUE(reconstructed<TypeParam>(mask, marker, norm));
        EXPECT_TRUE(sameImage(before, marker)) << normText(norm);
    }
}

// A marker beyond the mask everywhere becomes the mask, and one beyond it at a pixel acts as if cut there first.
TYPE_TEST(ReconstructQuick, MarkerBeyondTheMaskIsCut)
{
    using T = typename TypeParam::T;
    Random random(56);
    for (const LumiDistanceNorm norm : kNorms) {
        const Pattern levels = noise(35, 9, 100, random);
        const Image<T> mask = imageOf<T>(TypeParam::form, Palette::Wide, levels);
        Pattern highest = levels;
        std::fill(highest.levels.begin(), highest.levels.end(), 255);
        Image<T> marker = imageOf<T>(TypeParam::form, Palette::Wide, highest);
        ASSERT_TRUE(reconstructed<TypeParam>(mask, marker, norm));
        EXPECT_TRUE(sameImage(mask, marker)) << normText(norm);

        Pattern beyond = seedAt(levels, 20, 5);
        Pattern cut = beyond;
        cut.at(20, 5) = levels.at(20, 5);
        Image<T> ofBeyond = imageOf<T>(TypeParam::form, Palette::Wide, beyond);
        Image<T> ofCut = imageOf<T>(TypeParam::form, Palette::Wide, cut);
        ASSERT_TRUE(reconstructed<TypeParam>(mask, ofBeyond, norm));
        ASSERT_TRUE(reconstructed<TypeParam>(mask, ofCut, norm));
        EXPECT_TRUE(sameImage(ofCut, ofBeyond)) << normText(norm);
    }
}

TYPE_TEST(ReconstructQuick, DiagonalLineFillsWithEightNeighboursOnly)
{
    using T = typename TypeParam::T;
    for (const bool rising : {false, true}) {
        Pattern line{"diagonal", 20, 20};
        for (int i = 0; i < 20; ++i) {
            line.at(rising ? 19 - i : i, i) = kWay;
        }
        for (const int seed : {0, 7, 19}) {
            const Pattern marker = seedAt(line, rising ? 19 - seed : seed, seed);
            const Image<T> mask = imageOf<T>(TypeParam::form, Palette::Wide, line);
            Image<T> eight = imageOf<T>(TypeParam::form, Palette::Wide, marker);
            Image<T> four = eight;
            ASSERT_TRUE(reconstructed<TypeParam>(mask, eight, lumDistanceNormInf));
            EXPECT_TRUE(sameImage(mask, eight)) << "eight neighbours";
            ASSERT_TRUE(reconstructed<TypeParam>(mask, four, lumDistanceNormL1));
            Pattern point = seedAt(line, 0, 0);
            point.at(0, 0) = 0;
            point.at(rising ? 19 - seed : seed, seed) = kWay;
            EXPECT_TRUE(sameImage(imageOf<T>(TypeParam::form, Palette::Wide, point), four)) << "four neighbours";
        }
    }
}

// The last pixel of a row and the first of the next are neighbours in memory and nowhere else.
TYPE_TEST(ReconstructQuick, RowEndsAreNoNeighbours)
{
    using T = typename TypeParam::T;
    for (const int width : {3, 8, 13, 16, 32, 33}) {
        for (const int seedX : {0, width - 1}) {
            Pattern sides{"sides", width, 9};
            Pattern filled{"one side", width, 9};
            for (int y = 0; y < 9; ++y) {
                sides.at(0, y) = sides.at(width - 1, y) = kWay;
                filled.at(seedX, y) = kWay;
            }
            for (const LumiDistanceNorm norm : kNorms) {
                Image<T> marker = imageOf<T>(TypeParam::form, Palette::Wide, seedAt(sides, seedX, 4));
                ASSERT_TRUE(reconstructed<TypeParam>(imageOf<T>(TypeParam::form, Palette::Wide, sides), marker, norm));
                EXPECT_TRUE(sameImage(imageOf<T>(TypeParam::form, Palette::Wide, filled), marker)) << normText(norm);
            }
        }
    }
}

// What stands around the ROI would spread into it.
TYPE_TEST(ReconstructQuick, NeighboursOfTheRoiTakeNoPart)
{
    using T = typename TypeParam::T;
    Random random(57);
    for (const LumiDistanceNorm norm : kNorms) {
        const T highest = pixelOf<T>(TypeParam::form, Palette::Wide, 255);
        Image<T> mask({.width = 21, .height = 8, .margins = Margins::all(3)});
        Image<T> marker({.width = 21, .height = 8, .margins = Margins::all(2)});
        for (Image<T>* image : {&mask, &marker}) {
            image->forEach(Area::WithMargins, [&](T& pixel, int x, int y, int) {
                const bool inRoi = x >= 0 && x < 21 && y >= 0 && y < 8;
                const int level = static_cast<int>(random.between(0, image == &mask ? 250 : 30));
                pixel = inRoi ? pixelOf<T>(TypeParam::form, Palette::Wide, level) : highest;
            });
        }
        const Image<T> before = marker;
        expectReference<TypeParam>(mask, marker, norm);
        ASSERT_TRUE(reconstructed<TypeParam>(mask, marker, norm));
        for (int y = -2; y < 10; ++y) {
            for (int x = -2; x < 23; ++x) {
                if (x < 0 || x >= 21 || y < 0 || y >= 8) {
                    ASSERT_TRUE(sameElement(marker.at(x, y), before.at(x, y))) << "x " << x << ", y " << y;
                }
            }
        }
    }
}

// The result is a fixed point: again from there nothing changes.
TYPE_TEST(ReconstructQuick, AgainFromTheResult)
{
    using T = typename TypeParam::T;
    Random random(58);
    for (const LumiDistanceNorm norm : kNorms) {
        const Pattern levels = hills(45, 30, random);
        const Image<T> mask = imageOf<T>(TypeParam::form, Palette::Close, levels);
        Image<T> once = imageOf<T>(TypeParam::form, Palette::Close, drawMarker(levels, random));
        ASSERT_TRUE(reconstructed<TypeParam>(mask, once, norm));
        Image<T> twice = once;
        ASSERT_TRUE(reconstructed<TypeParam>(mask, twice, norm));
        EXPECT_TRUE(sameImage(once, twice)) << normText(norm);
    }
}

using FloatCases = testing::Types<Case<Lum32f, Form::Dilate>, Case<Lum32f, Form::Erode>, Case<Lum64f, Form::Dilate>,
                                  Case<Lum64f, Form::Erode>>;
TYPE_SUITE(ReconstructFloatsQuick, FloatCases, CaseName);

// Any finite numbers and infinities of both signs, in the mask and in the marker.
TYPE_TEST(ReconstructFloatsQuick, FloatsOfAllMagnitudes)
{
    using T = typename TypeParam::T;
    constexpr T infinity = std::numeric_limits<T>::infinity();
    Random random(59);
    for (int i = 0; i < 30; ++i) {
        const Layout layout{.width = static_cast<int>(random.between(1, 50)),
                            .height = static_cast<int>(random.between(1, 12))};
        Image<T> mask(layout), marker(layout);
        for (Image<T>* image : {&mask, &marker}) {
            image->forEach(Area::Roi, [&](T& pixel, int, int, int) {
                pixel = random.oneIn(10) ? infinity : random.value<T>(Values::Extreme);
                pixel = random.oneIn(20) ? -pixel : pixel;
            });
        }
        expectReference<TypeParam>(mask, marker, kNorms[i % 2]);
    }
}

// Zeros are equal whatever their sign; where all are negative they stay so.
TYPE_TEST(ReconstructFloatsQuick, NegativeZeros)
{
    using T = typename TypeParam::T;
    constexpr T least = std::numeric_limits<T>::denorm_min();
    Random random(60);
    for (const LumiDistanceNorm norm : kNorms) {
        for (const int width : {3, 11, 16, 37}) {
            Image<T> mask({.width = width, .height = 6}), marker({.width = width, .height = 6});
            for (const bool bothSigns : {false, true}) {
                for (Image<T>* image : {&mask, &marker}) {
                    image->forEach(Area::Roi, [&](T& pixel, int, int, int) {
                        const auto kind = random.between(0, 4);
                        pixel = kind == 0 ? least : kind == 1 ? -least : bothSigns && random.oneIn(2) ? T{0} : -T{0};
                    });
                }
                Image<T> expected = marker, actual = marker;
                byQueue(TypeParam::form, norm, mask, expected);
                ASSERT_TRUE(reconstructed<TypeParam>(mask, actual, norm));
                EXPECT_TRUE(bothSigns ? sameUpToZeroSign(expected, actual) : sameImage(expected, actual));
            }
        }
    }
}

// Nothing is promised of the values at and behind not-a-numbers, but the call ends and keeps to its rows.
TYPE_TEST(ReconstructFloatsQuick, EndsWithNotANumbers)
{
    using T = typename TypeParam::T;
    Random random(61);
    for (int i = 0; i < 60; ++i) {
        const Layout layout{.width = static_cast<int>(random.between(1, 40)),
                            .height = static_cast<int>(random.between(1, 10))};
        Image<T> mask(layout), marker(layout);
        fill(mask, random, i % 3 == 1 ? Values::Ordinary : Values::NonFinite);
        fill(marker, random, i % 3 == 2 ? Values::Ordinary : Values::NonFinite);
        EXPECT_TRUE(reconstructed<TypeParam>(mask, marker, kNorms[i % 2]));
    }
}

}  // namespace
}  // namespace lumcv::test::reconstruct
