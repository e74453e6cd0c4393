// Reconstruction along ways that need many sweeps: serpentines, spirals, mazes, diagonals, tangled fields.
#include <gtest/gtest.h>

#include <vector>

#include "morph/reconstruct_fixture.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::reconstruct {
namespace {

TYPE_SUITE(ReconstructShapes, Cases, CaseName);

TYPE_SUITE(ReconstructShapesQuick, Cases, CaseName);

// Every orientation of a pattern, from a seed at each end of the image; and uneven, from its middle.
template <class C>
void expectEveryWay(const Pattern& pattern, Random& random)
{
    for (const Pattern& mask : {pattern, turned(pattern), transposed(pattern), turned(transposed(pattern))}) {
        const Pattern rough = uneven(mask, random);
        expectReference<C>(drawPalette(random), mask, seedAt(mask, 0, 0));
        expectReference<C>(drawPalette(random), mask, seedAt(mask, mask.width - 1, mask.height - 1));
        expectReference<C>(drawPalette(random), rough, seedAt(rough, rough.width / 2, rough.height / 2));
        if (testing::Test::HasFailure()) {
            return;
        }
    }
}

template <class C>
void expectWaysThrough(int width, int height)
{
    Random random(static_cast<std::uint64_t>(width * 1000 + height));
    expectEveryWay<C>(serpentine(width, height), random);
    expectEveryWay<C>(spiral(width, height), random);
    expectEveryWay<C>(maze(width, height, random), random);
    expectEveryWay<C>(bouncingDiagonal(width, height), random);
    expectEveryWay<C>(comb(width, height), random);
    expectEveryWay<C>(checkerboard(width, height), random);
    expectEveryWay<C>(percolation(width, height, 41, random), random);
    expectEveryWay<C>(percolation(width, height, 60, random), random);
}

TYPE_TEST(ReconstructShapesQuick, SmallestOnes)
{
    expectWaysThrough<TypeParam>(5, 7);
}

TYPE_TEST(ReconstructShapes, SmallOnes)
{
    expectWaysThrough<TypeParam>(21, 13);
}

TYPE_TEST(ReconstructShapes, LargerOnes)
{
    expectWaysThrough<TypeParam>(33, 29);
}

// Each turn of the way takes a sweep of its own.
TYPE_TEST(ReconstructShapes, LongWays)
{
    Random random(41);
    const Pattern crossing = transposed(serpentine(61, 201));
    const Pattern labyrinth = maze(121, 81, random);
    for (const Pattern& mask : {crossing, spiral(99, 87), labyrinth, uneven(crossing, random),
                                uneven(labyrinth, random), percolation(120, 90, 60, random)}) {
        expectReference<TypeParam>(drawPalette(random), mask, seedAt(mask, 0, 0));
    }
}

// The shapes hold what their names say, so that the tests above do not walk through nothing.
TEST(ReconstructPatternsQuick, ShapesAreWays)
{
    Random random(42);
    struct Shape
    {
        Pattern pattern;
        LumiDistanceNorm norm;
    };
    for (const Shape& shape :
         {Shape{serpentine(21, 15), lumDistanceNormL1}, Shape{spiral(21, 15), lumDistanceNormL1},
          Shape{maze(21, 15, random), lumDistanceNormL1}, Shape{comb(21, 15), lumDistanceNormL1},
          Shape{bouncingDiagonal(21, 15), lumDistanceNormInf}, Shape{checkerboard(21, 15), lumDistanceNormInf}}) {
        SCOPED_TRACE(shape.pattern);
        const Image<Lum8u> mask = imageOf<Lum8u>(Form::Dilate, Palette::Wide, shape.pattern);
        Image<Lum8u> filled = imageOf<Lum8u>(Form::Dilate, Palette::Wide, seedAt(shape.pattern, 0, 0));
        byQueue(Form::Dilate, shape.norm, mask, filled);
        EXPECT_TRUE(sameImage(mask, filled)) << "the whole way is joined";
        EXPECT_EQ(filled.at(0, 0), kWay);
        int walls = 0;
        for (const int level : shape.pattern.levels) {
            walls += level == 0;
        }
        EXPECT_GE(walls, 21 * 15 / 4);
    }
    // a spiral of one way: every place but its two ends has exactly two neighbours on the way
    const Pattern p = spiral(21, 15);
    int ends = 0;
    for (int y = 0; y < p.height; ++y) {
        for (int x = 0; x < p.width; ++x) {
            int neighbours = 0;
            for (const LumiPoint step : {LumiPoint{1, 0}, LumiPoint{-1, 0}, LumiPoint{0, 1}, LumiPoint{0, -1}}) {
                neighbours += p.has(x + step.x, y + step.y) && p.at(x + step.x, y + step.y) > 0;
            }
            ends += p.at(x, y) > 0 && neighbours == 1;
            EXPECT_TRUE(p.at(x, y) == 0 || neighbours <= 2) << "x " << x << ", y " << y;
        }
    }
    EXPECT_EQ(ends, 2);
}

TYPE_TEST(ReconstructShapes, ReferencesAgree)
{
    using T = typename TypeParam::T;
    Random random(43);
    for (const Pattern& mask :
         {serpentine(9, 7), spiral(9, 9), maze(11, 7, random), noise(8, 8, 5, random), hills(12, 9, random),
          percolation(10, 10, 60, random), checkerboard(6, 5), uneven(spiral(9, 9), random)}) {
        for (int i = 0; i < 3; ++i) {
            const Pattern marker = i == 0 ? seedAt(mask, 0, 0) : drawMarker(mask, random);
            SCOPED_TRACE(testing::Message() << mask << "; " << marker);
            for (const LumiDistanceNorm norm : kNorms) {
                const auto maskImage = imageOf<T>(TypeParam::form, Palette::Wide, mask);
                auto steps = imageOf<T>(TypeParam::form, Palette::Wide, marker);
                auto queue = steps;
                auto library = steps;
                byUnitSteps(TypeParam::form, norm, maskImage, steps);
                byQueue(TypeParam::form, norm, maskImage, queue);
                EXPECT_TRUE(sameUpToZeroSign(steps, queue)) << "the two references, " << normText(norm);
                ASSERT_TRUE(reconstructed<TypeParam>(maskImage, library, norm));
                EXPECT_TRUE(sameUpToZeroSign(steps, library)) << normText(norm);
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::reconstruct
