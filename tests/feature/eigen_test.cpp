// The smaller eigenvalue, and both eigenvalues with their vectors, against the reference, bit for bit; and what is
// special about them.
#include <cmath>
#include <vector>

#include "feature/corner_fixture.hpp"
#include "support/max_cache_size.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::corners {
namespace {

constexpr EigenParameters kEigenFilters[] = {
    {lumKernSobel, 3}, {lumKernSobel, 5}, {lumKernScharr, 3}, {lumKernSobelNeg, 3}, {lumKernSobelNeg, 5}};

EigenParameters eigenParameters(int number)
{
    EigenParameters p = kEigenFilters[number % 5];
    p.window = number / 5 % 2 == 0 ? 3 : 5;
    return p;
}

TYPE_SUITE(Eigen, SourceTypes, SourceName);

TYPE_SUITE(EigenQuick, SourceTypes, SourceName);

TYPE_TEST(EigenQuick, SomeSizes)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{1, 1}, LumiSize{5, 2}, LumiSize{17, 3}, LumiSize{34, 9}, LumiSize{70, 4}}) {
        for (int i = 0; i < 10; ++i) {
            expectEigen<TypeParam>(placed(size, number), eigenParameters(i));
            number += 3;
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

TYPE_TEST(Eigen, EveryBorder)
{
    int number = 0;
    for (LumiBorderType border = 0; border < 256; ++border) {
        if (!isEigenBorder(border)) {
            continue;
        }
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{1, 4}, LumiSize{3, 1}, LumiSize{2, 2}, LumiSize{21, 7}}) {
            for (int i = 0; i < 10; i += size.width == 21 ? 1 : 3) {
                FilterSetting setting = placed(size, number++);
                setting.border = border;
                setting.values = Values::Ordinary;
                expectEigen<TypeParam>(setting, eigenParameters(i + number % 3));
                ASSERT_FALSE(testing::Test::HasFailure());
            }
        }
    }
}

TYPE_TEST(Eigen, EveryWidthAndHeight)
{
    int number = 0;
    for (int width = 1; width <= 70; ++width) {
        for (const int height : {1, 2, 3, 4, 6, 11}) {
            FilterSetting setting = placed({width, height}, number++);
            setting.values = Values::Ordinary;
            expectEigen<TypeParam>(setting, eigenParameters(static_cast<int>(Random(number).between(0, 9))));
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

TYPE_TEST(Eigen, WideAndTall)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{255, 5}, LumiSize{256, 4}, LumiSize{257, 3}, LumiSize{1100, 6},
                                LumiSize{2, 300}, LumiSize{33, 130}}) {
        for (int i = 0; i < 5; ++i) {
            FilterSetting setting = placed(size, number++);
            setting.values = Values::Ordinary;
            expectEigen<TypeParam>(setting, eigenParameters(2 * i + number % 2));
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

// Images far larger than the caches that are reported.
TYPE_TEST(Eigen, LargerThanTheCaches)
{
    const ReportedCacheSize reported(lumOk, 1);
    for (int i = 0; i < 10; ++i) {
        FilterSetting setting = placed({150 + i, 60}, i);
        setting.values = Values::Ordinary;
        expectEigen<TypeParam>(setting, eigenParameters(i));
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

// Of floats: up to the largest, denormals, infinities and values that are not numbers.
TYPE_TEST(Eigen, ExtremeValues)
{
    for (int number = 0; number < 40; ++number) {
        FilterSetting setting = placed({3 + number, 5}, 4 * number);
        setting.values = number % 2 == 0 ? Values::Extreme : Values::NonFinite;
        expectEigen<TypeParam>(setting, eigenParameters(number));
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

// Squares of products that become denormal or infinite.
TEST(EigenOfFloats, TinyAndHugeMagnitudes)
{
    int number = 0;
    for (const Lum32f magnitude : {1e-23f, 1e-22f, 1e-19f, 1e-12f, 1e-11f, 1e-10f, 1e-9f, 1e6f, 1e8f, 1e15f}) {
        for (int i = 0; i < 12; ++i) {
            FilterSetting setting = placed({29, 7}, number++);
            setting.values = Values::Ordinary;
            expectEigen<Lum32f>(setting, eigenParameters(i), magnitude);
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

// Results of a call on an image without margins, at the default place.
template <class S>
std::vector<Lum32f> resultOf(Measure measure, const Image<S>& image, int floats, EigenParameters p,
                             LumiBorderType border = lumBorderReplicate, Lum32f borderValue = 0)
{
    const LumiSize size = {image.width(), image.height()};
    const PlacedBlock scratch(static_cast<std::size_t>(eigenBytes(size, p, Exports<S>::type)));
    std::vector<Lum32f> result(static_cast<std::size_t>(size.width * size.height * floats), -77.0f);
    const MeasureCall call = {image.pixels(), image.step(), result.data(), size.width * floats * 4,
                              size,           p.kernType,   p.aperture,    p.window,
                              border,         borderValue,  scratch.data()};
    EXPECT_EQ(measure(call), lumOk);
    return result;
}

std::vector<Lum32f> sixAt(const std::vector<Lum32f>& result, int pixel)
{
    return {result.begin() + 6 * pixel, result.begin() + 6 * pixel + 6};
}

template <class S>
Image<S> imageOf(LumiSize size, int (*value)(int x, int y))
{
    Image<S> image({size.width, size.height});
    image.forEach(Area::Roi, [&](S& element, int x, int y, int) { element = static_cast<S>(value(x, y)); });
    return image;
}

TYPE_TEST(EigenQuick, AConstantImageGivesZeros)
{
    using E = Exports<TypeParam>;
    const auto image = imageOf<TypeParam>({19, 6}, [](int, int) { return 200; });
    for (int i = 0; i < 10; ++i) {
        const EigenParameters p = eigenParameters(i);
        EXPECT_EQ(resultOf(E::minEigenVal, image, 1, p), std::vector<Lum32f>(19 * 6, 0.0f));
        EXPECT_EQ(resultOf(E::eigenValsVecs, image, 6, p), std::vector<Lum32f>(19 * 6 * 6, 0.0f));
        EXPECT_EQ(resultOf(E::minEigenValBorder, image, 1, p, lumBorderMirror), std::vector<Lum32f>(19 * 6, 0.0f));
        EXPECT_EQ(resultOf(E::eigenValsVecsBorder, image, 6, p, lumBorderConstant, 200)[6 * 40], 0.0f);
    }
}

// One bright pixel: around it the squares of dx and of dy have the same sum, their product has none.
TYPE_TEST(EigenQuick, ARoundCornerHasFixedVectors)
{
    using E = Exports<TypeParam>;
    const auto image = imageOf<TypeParam>({9, 9}, [](int x, int y) { return x == 4 && y == 4 ? 100 : 0; });
    const Lum32f s = 1.0f / 4080;
    const Lum32f mean = (12 * 100 * 100) * 0.11111111f;
    for (const LumiKernelType kernType : {lumKernSobel, lumKernSobelNeg}) {
        const EigenParameters p = {kernType, 3, 3};
        const Lum32f lambda = s * mean;
        EXPECT_EQ(sixAt(resultOf(E::eigenValsVecs, image, 6, p), 40),
                  (std::vector<Lum32f>{lambda, lambda, 0, 1, 1, 0}));
        EXPECT_EQ(resultOf(E::minEigenVal, image, 1, p)[40], (mean + mean) * (0.5f * s));
    }
}

// In the middle of a straight edge the determinant is 0.
TYPE_TEST(EigenQuick, AnEdgeHasNoVectors)
{
    using E = Exports<TypeParam>;
    const auto image = imageOf<TypeParam>({12, 9}, [](int x, int) { return x < 6 ? 0 : 255; });
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(resultOf(E::eigenValsVecs, image, 6, eigenParameters(i)), std::vector<Lum32f>(12 * 9 * 6, 0.0f));
        EXPECT_EQ(resultOf(E::minEigenVal, image, 1, eigenParameters(i)), std::vector<Lum32f>(12 * 9, 0.0f));
    }
}

// A quadrant of ones: across its corner the image falls along both axes, so dx and dy have the same sign as the images
// of right minus left and bottom minus top; Scharr's vectors keep the sign of b, both Sobel types turn it.
TYPE_TEST(EigenQuick, SobelTurnsTheVectorsScharrDoesNot)
{
    using E = Exports<TypeParam>;
    const auto image = imageOf<TypeParam>({10, 10}, [](int x, int y) { return x < 5 && y < 5 ? 250 : 0; });
    const auto at = [&](LumiKernelType kernType) {
        return sixAt(resultOf(E::eigenValsVecs, image, 6, {kernType, 3, 3}), 4 * 10 + 4);
    };
    const std::vector<Lum32f> sobel = at(lumKernSobel);
    const std::vector<Lum32f> negated = at(lumKernSobelNeg);
    const std::vector<Lum32f> scharr = at(lumKernScharr);
    // right minus left and bottom minus top are both negative there, so b is positive
    EXPECT_GT(scharr[2], 0.0f);
    EXPECT_LT(negated[2], 0.0f);
    // left minus right has the other sign, and so has b
    EXPECT_GT(sobel[2], 0.0f);
    EXPECT_GT(sobel[3], 0.0f);
    EXPECT_EQ(sobel, (std::vector<Lum32f>{negated[0], negated[1], -negated[2], negated[3], -negated[4], negated[5]}));
    EXPECT_GT(sobel[0], sobel[1]);
}

TYPE_TEST(EigenQuick, NegatedSobelHasTheSameSmallerEigenvalue)
{
    using E = Exports<TypeParam>;
    const auto image = imageOf<TypeParam>({23, 11}, [](int x, int y) { return (x * x * 7 + y * y * x * 3) % 251; });
    for (const int aperture : {3, 5}) {
        EXPECT_EQ(resultOf(E::minEigenVal, image, 1, {lumKernSobel, aperture, 3}),
                  resultOf(E::minEigenVal, image, 1, {lumKernSobelNeg, aperture, 3}));
    }
}

// The products beyond the ROI are borderValue itself, not its square and not 0: on a slope along the rows, all of whose
// sides lie in memory, they alone make dy.
TYPE_TEST(EigenQuick, TheBorderValueStandsForProducts)
{
    using E = Exports<TypeParam>;
    Image<TypeParam> image(Layout{6, 6, 1, 0, Guard::After, Margins::all(1)});
    image.forEach(Area::WithMargins,
                  [](TypeParam& element, int x, int, int) { element = static_cast<TypeParam>(10 + 2 * x); });
    const EigenParameters p = {lumKernSobel, 3, 3};
    const auto result = resultOf(E::minEigenValBorder, image, 1, p, lumBorderConstant | lumBorderInMem, 9);
    const Lum32f inside = 16 * 16;
    EXPECT_EQ(result[0], minEigenValue((4 * inside + 5 * 9) * 0.11111111f, 45 * 0.11111111f, 45 * 0.11111111f, p));
    EXPECT_EQ(result[1], minEigenValue((6 * inside + 3 * 9) * 0.11111111f, 27 * 0.11111111f, 27 * 0.11111111f, p));
    EXPECT_EQ(result[7], 0.0f);
    EXPECT_GT(result[0], 0.0f);
}

// With all four sides in memory and no valid mode the products are mirrored.
TYPE_TEST(EigenQuick, AllSidesInMemoryWithoutAModeMirrorTheProducts)
{
    using E = Exports<TypeParam>;
    Image<TypeParam> image(Layout{13, 7, 1, 0, Guard::After, Margins::all(2)});
    Random random(5);
    image.forEach(Area::WithMargins,
                  [&](TypeParam& element, int, int, int) { element = static_cast<TypeParam>(random.between(0, 255)); });
    for (const Measure measure : {E::minEigenValBorder, E::eigenValsVecsBorder}) {
        const int floats = measure == E::minEigenValBorder ? 1 : 6;
        const EigenParameters p = {lumKernSobel, 5, 5};
        const auto mirrored = resultOf(measure, image, floats, p, lumBorderMirror | lumBorderInMem);
        EXPECT_NE(mirrored, resultOf(measure, image, floats, p, lumBorderReplicate | lumBorderInMem));
        for (const int nibble : {0, 2, 4, 7, 8, 15}) {
            EXPECT_EQ(resultOf(measure, image, floats, p, lumBorderInMem | nibble, 99), mirrored) << nibble;
        }
    }
}

// The stride of the six floats is only held against four bytes for each pixel.
TYPE_TEST(EigenQuick, OneRowOfVectorsMayHaveAStrideOfFourBytesForEachPixel)
{
    using E = Exports<TypeParam>;
    const auto image = imageOf<TypeParam>({8, 1}, [](int x, int) { return x * x; });
    const EigenParameters p = {lumKernScharr, 3, 5};
    const PlacedBlock scratch(static_cast<std::size_t>(eigenBytes({8, 1}, p, E::type)));
    Image<Lum32f> destination({8, 1, 6});
    const MeasureCall call = {
        image.pixels(), image.step(), destination.pixels(), 32, {8, 1}, p.kernType, p.aperture, p.window, 0, 0,
        scratch.data()};
    EXPECT_EQ(E::eigenValsVecs(call), lumOk);
    const auto expected = resultOf(E::eigenValsVecs, image, 6, p);
    EXPECT_TRUE(sameElements(expected.data(), destination.pixels(), expected.size()));
    EXPECT_TRUE(destination.gapsIntact());
}

TYPE_TEST(Eigen, RowsBetweenUnreadablePages)
{
    int number = 0;
    for (const LumiBorderType border : kBorders) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{7, 3}, LumiSize{18, 6}, LumiSize{67, 4}}) {
            for (const Guard guard : {Guard::After, Guard::Before}) {
                FilterSetting setting;
                setting.size = size;
                setting.border = border;
                setting.seed = number;
                setting.guard = guard;
                setting.values = Values::Ordinary;
                expectEigen<TypeParam, IsolatedRows>(setting, eigenParameters(number++));
                ASSERT_FALSE(testing::Test::HasFailure());
            }
        }
    }
}

// Scratch of the told size does at any address, and what it held does not matter.
TYPE_TEST(Eigen, ScratchAtEveryAddress)
{
    for (int distance = 0; distance < 64; ++distance) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            FilterSetting setting;
            setting.size = {17 + distance % 3, 5};
            setting.border = kBorders[distance % 7];
            setting.seed = 2 + distance;
            setting.guard = guard;
            setting.distance = static_cast<std::size_t>(distance);
            setting.values = Values::Ordinary;
            expectEigen<TypeParam>(setting, eigenParameters(distance));
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

}  // namespace
}  // namespace lumcv::test::corners
