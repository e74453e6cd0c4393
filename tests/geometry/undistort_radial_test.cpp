// Images freed from radial distortion, compared with the formulas evaluated step by step: which places are valid, what
// is read there, what stays.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include "geometry/undistort_forms.hpp"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::geometry {
namespace {

TYPE_SUITE(UndistortRadialQuick, UndistortForms, UndistortFormName);

TYPE_SUITE(UndistortRadial, UndistortForms, UndistortFormName);

enum class Scratch
{
    None,
    Queried
};
constexpr Scratch kBothScratches[] = {Scratch::None, Scratch::Queried};

/// Gives how many pixels were valid.
template <class F>
int expectUndistorted(const Image<typename F::Element>& source, const Layout& layout, const Lens& lens,
                      std::size_t scratchDistance = 0)
{
    using T = typename F::Element;
    const LumiSize size = {layout.width, layout.height};
    Image<T> expected(layout);
    const int valid = undistort(source, expected, lens);
    for (const Scratch kind : kBothScratches) {
        Image<T> result(layout);
        const PlacedBlock scratch(undistortScratchBytes(size.width), layout.guard, scratchDistance);
        EXPECT_EQ(F::call(source.pixels(), source.step(), result.pixels(), result.step(), size, lens,
                          kind == Scratch::None ? nullptr : scratch.data()),
                  lumOk);
        EXPECT_TRUE(sameImage(expected, result))
            << lens << (kind == Scratch::None ? ", without" : ", with") << " scratch";
        EXPECT_TRUE(result.gapsIntact());
        EXPECT_TRUE(scratch.intact());
    }
    return valid;
}

template <class F>
void sweepAgainstReference(Sweep sweep)
{
    using T = typename F::Element;
    forEachGeometry(sweep, [](const Geometry& geometry) {
        Random random(static_cast<std::uint64_t>(geometry.number));
        Image<T> source(geometry.layout<T>(0, F::channels));
        fill(source, random, geometry.number % 2 == 0 ? Values::Ordinary : Values::Extreme);
        const Image<T> before = source;
        const Layout layout = geometry.layout<T>(1, F::channels);
        const LumiSize size = {geometry.width, geometry.height};
        const auto distance = static_cast<std::size_t>(geometry.number % 67);
        expectUndistorted<F>(source, layout, ordinaryLens(size, random), distance);
        expectUndistorted<F>(source, layout, extremeLens(size, random), distance);
        EXPECT_TRUE(sameBytes(before, source)) << "the source was written";
    });
}

TYPE_TEST(UndistortRadialQuick, Sizes)
{
    sweepAgainstReference<TypeParam>(Sweep::Quick);
}

TYPE_TEST(UndistortRadial, Sizes)
{
    sweepAgainstReference<TypeParam>(Sweep::Full);
}

TYPE_TEST(UndistortRadialQuick, OrdinaryLenses)
{
    using T = typename TypeParam::Element;
    int pixels = 0;
    int valid = 0;
    for (const LumiSize size : {LumiSize{40, 30}, {31, 45}, {66, 9}, {9, 66}, {53, 53}}) {
        Random random(static_cast<std::uint64_t>(size.width));
        Image<T> source({.width = size.width, .height = size.height, .channels = TypeParam::channels});
        fill(source, random);
        for (int i = 0; i < 6; ++i) {
            Layout layout;
            layout.width = size.width;
            layout.height = size.height;
            layout.channels = TypeParam::channels;
            layout.gap = i * static_cast<int>(sizeof(T));
            valid += expectUndistorted<TypeParam>(source, layout, ordinaryLens(size, random));
            pixels += size.width * size.height;
        }
    }
    EXPECT_GT(valid, pixels / 2) << "most of these places are valid";
    EXPECT_LT(valid, pixels);
}

TYPE_TEST(UndistortRadial, ExtremeLenses)
{
    using T = typename TypeParam::Element;
    constexpr LumiSize size = {21, 9};
    Random random(5);
    Image<T> source({.width = size.width, .height = size.height, .channels = TypeParam::channels});
    fill(source, random, Values::Extreme);
    Layout layout = source.layout();
    for (int i = 0; i < 600; ++i) {
        expectUndistorted<TypeParam>(source, layout, extremeLens(size, random));
        ASSERT_FALSE(testing::Test::HasFailure()) << "lens " << i;
    }
}

TYPE_TEST(UndistortRadial, LargerImages)
{
    using T = typename TypeParam::Element;
    for (const LumiSize size : {LumiSize{1100, 60}, {260, 130}, {3000, 9}, {5, 2000}}) {
        const ReportedCacheSize reported(0, 1024);
        Random random(static_cast<std::uint64_t>(size.width));
        Image<T> source({.width = size.width, .height = size.height, .channels = TypeParam::channels});
        fill(source, random);
        Layout layout = source.layout();
        layout.gap = 5 * static_cast<int>(sizeof(T));
        expectUndistorted<TypeParam>(source, layout, ordinaryLens(size, random));
    }
}

// The pixels of the source between unreadable pages, row by row; those of the destination too.
TYPE_TEST(UndistortRadialQuick, RowsAlone)
{
    using T = typename TypeParam::Element;
    for (const int width : {1, 2, 3, 4, 5, 8, 11, 16, 17, 33}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            Layout layout;
            layout.width = width;
            layout.height = 7;
            layout.channels = TypeParam::channels;
            layout.guard = guard;
            const LumiSize size = {width, 7};
            IsolatedRows<T> source(layout);
            Random random(static_cast<std::uint64_t>(width));
            source.forEach([&](T& element, int, int, int) { element = random.value<T>(Values::Ordinary); });
            source.makeReadOnly();
            for (int i = 0; i < 6; ++i) {
                const Lens lens = i % 3 == 0 ? Lens{} : ordinaryLens(size, random);
                IsolatedRows<T> destination(layout);
                Image<T> expected(layout);
                for (int y = 0; y < 7; ++y) {
                    std::copy_n(destination.row(y), width * TypeParam::channels, expected.row(y));
                }
                undistort(source, expected, lens);
                const PlacedBlock scratch(undistortScratchBytes(width), guard);
                ASSERT_EQ(TypeParam::call(source.pixels(), source.step(), destination.pixels(), destination.step(),
                                          size, lens, i % 2 == 0 ? nullptr : scratch.data()),
                          lumOk);
                for (int y = 0; y < 7; ++y) {
                    ASSERT_TRUE(sameElements(expected.row(y), destination.row(y),
                                             static_cast<std::size_t>(width * TypeParam::channels)))
                        << "row " << y << ", " << lens;
                }
                EXPECT_TRUE(destination.slackIntact());
                EXPECT_TRUE(scratch.intact());
            }
        }
    }
}

TYPE_TEST(UndistortRadialQuick, PlacesThatAreNoNumbers)
{
    using T = typename TypeParam::Element;
    constexpr LumiSize size = {37, 5};
    Random random(5);
    Image<T> source({.width = size.width, .height = size.height, .channels = TypeParam::channels});
    fill(source, random);
    constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
    constexpr Lum32f nan = std::numeric_limits<Lum32f>::quiet_NaN();
    std::vector<Lens> lenses = {{.k1 = nan}, {.k2 = nan}, {.cx = nan}, {.cy = nan}, {.fx = nan}, {.fy = nan}};
    for (const Lum32f beyond : {infinity, -infinity}) {
        lenses.push_back({.cx = 50.5f, .cy = 50.5f, .k1 = beyond});
        lenses.push_back({.cx = 50.5f, .cy = 50.5f, .k2 = beyond});
        lenses.push_back({.cx = beyond});
        lenses.push_back({.cy = beyond});
    }
    for (const Lens& lens : lenses) {
        EXPECT_EQ(expectUndistorted<TypeParam>(source, source.layout(), lens), 0) << lens;
    }
}

// Without distortion every place is its own; the last column and row are beyond the strict bounds and stay.
TYPE_TEST(UndistortRadialQuick, WithoutDistortionTheLastColumnAndRowStay)
{
    using T = typename TypeParam::Element;
    for (const LumiSize size : {LumiSize{1, 1}, {1, 5}, {5, 1}, {2, 2}, {19, 7}, {70, 3}}) {
        Random random(6);
        Image<T> source({.width = size.width, .height = size.height, .channels = TypeParam::channels});
        fill(source, random);
        const Image<T> before({.width = size.width, .height = size.height, .channels = TypeParam::channels});
        Image<T> result = before;
        EXPECT_EQ(TypeParam::call(source.pixels(), source.step(), result.pixels(), result.step(), size,
                                  {.fx = 3, .fy = -8, .cx = 1.25f, .cy = 7.5f}, nullptr),
                  lumOk);
        result.forEach(Area::Roi, [&](T& element, int x, int y, int c) {
            const bool isKept = x == size.width - 1 || y == size.height - 1;
            EXPECT_TRUE(sameElement(element, isKept ? before.at(x, y, c) : source.at(x, y, c)))
                << "x " << x << ", y " << y << ", channel " << c;
        });
    }
}

// For a lens with the centre (0, 0) and the focal lengths 1 the pixel (1, 0) comes from (1 + k1 + k2, 0).
Lum8u valueAtOneZero(Lum32f k1, Lum32f k2)
{
    const Lum8u source[2][3] = {{10, 110, 210}, {10, 110, 210}};
    Lum8u destination[2][3] = {};
    EXPECT_EQ(lumiUndistortRadial_8u_C1R(source[0], 3, destination[0], 3, {3, 2}, 1, 1, 0, 0, k1, k2, nullptr), lumOk);
    return destination[0][1];
}

// The sum of 1 and the largest float below 1 lies halfway between 2 and the float below it: rounded towards zero it is
// below W - 1, rounded to nearest it would be refused.
TEST(UndistortBoundsQuick, JustBelowTheLastColumn)
{
    EXPECT_EQ(valueAtOneZero(0x1.fffffep-1f, 0), 210);
    EXPECT_EQ(valueAtOneZero(1.0f, 0), 0) << "2 is not below 2";
    EXPECT_EQ(valueAtOneZero(0.5f, 0.5f), 0);
    EXPECT_EQ(valueAtOneZero(0.25f, 0.25f), 160);
    EXPECT_EQ(valueAtOneZero(-1.0f, 0), 10) << "0 is not below 0";
    EXPECT_EQ(valueAtOneZero(-0x1.000002p0f, 0), 0) << "the place is below 0";
}

/// Where pixel (0, 1) of an image of 2 x 3 goes by a lens whose place for it is (-cx * k1, 1 + k1).
Lum32f valueAtZeroOne(Lum32f cx, Lum32f k1)
{
    const Lum32f source[3][2] = {{5, 6}, {7, 8}, {9, 10}};
    Lum32f destination[3][2] = {};
    EXPECT_EQ(lumiUndistortRadial_32f_C1R(source[0], 8, destination[0], 8, {2, 3}, 1, 1, cx, 0, k1, 0, nullptr), lumOk);
    return destination[1][0];
}

// A place may be as little below 0 as a denormal number, and is not valid. What is less than the least of them is 0,
// because it is rounded towards it.
TEST(UndistortBoundsQuick, BarelyBelowTheFirstColumn)
{
    EXPECT_EQ(valueAtZeroOne(-1e-20f, 1e-10f), std::nextafter(7.0f, 0.0f)) << "1 - 1e-30 is rounded towards 0";
    EXPECT_EQ(valueAtZeroOne(1e-20f, 1e-10f), 0.0f);
    EXPECT_EQ(valueAtZeroOne(1e-32f, 1e-10f), 0.0f);
    EXPECT_EQ(valueAtZeroOne(1e-35f, 1e-10f), 7.0f);
    EXPECT_EQ(valueAtZeroOne(1e-35f, 0.0f), 7.0f) << "-0 is not below 0";
}

TYPE_TEST(UndistortRadialQuick, SameBytesWithAnyScratch)
{
    using T = typename TypeParam::Element;
    constexpr LumiSize size = {47, 20};
    Random random(3);
    Image<T> source({.width = size.width, .height = size.height, .channels = TypeParam::channels});
    fill(source, random);
    const Lens lens = ordinaryLens(size, random);
    Image<T> expected(source.layout());
    undistort(source, expected, lens);
    for (const Lum8u content : {Lum8u{0}, Lum8u{255}, Lum8u{127}}) {
        for (std::size_t distance = 0; distance < 66; distance += 5) {
            const PlacedBlock scratch(undistortScratchBytes(size.width), Guard::After, distance);
            std::fill_n(scratch.data(), scratch.size(), content);
            Image<T> result(source.layout());
            EXPECT_EQ(TypeParam::call(source.pixels(), source.step(), result.pixels(), result.step(), size, lens,
                                      scratch.data()),
                      lumOk);
            EXPECT_TRUE(sameImage(expected, result)) << "distance " << distance;
            EXPECT_TRUE(scratch.intact());
        }
    }
}

TYPE_TEST(UndistortRadialQuick, ThreadsShareASource)
{
    using T = typename TypeParam::Element;
    constexpr LumiSize size = {90, 40};
    Random random(3);
    Image<T> source({.width = size.width, .height = size.height, .channels = TypeParam::channels});
    fill(source, random);
    const Lens lens = ordinaryLens(size, random);
    std::thread other([&] { expectUndistorted<TypeParam>(source, source.layout(), lens); });
    expectUndistorted<TypeParam>(source, source.layout(), lens);
    other.join();
}

}  // namespace
}  // namespace lumcv::test::geometry
