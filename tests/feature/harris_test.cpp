// The Harris response against the reference, which takes the whole ROI at once, bit for bit; and what is special about
// it.
#include <cmath>
#include <vector>

#include "feature/corner_fixture.hpp"
#include "support/max_cache_size.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::corners {
namespace {

TYPE_SUITE(Harris, SourceTypes, SourceName);

TYPE_SUITE(HarrisQuick, SourceTypes, SourceName);

FilterSetting ordinary(LumiSize size, int seed)
{
    FilterSetting setting = placed(size, seed);
    setting.values = Values::Ordinary;
    return setting;
}

TYPE_TEST(HarrisQuick, SomeSizes)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{1, 1}, LumiSize{6, 2}, LumiSize{17, 8}, LumiSize{34, 12}, LumiSize{105, 9}}) {
        for (int window = 1; window <= 6; ++window) {
            expectHarris<TypeParam>(ordinary(size, number), withWindow(kHarrisFilters[window % 4], window));
            number += 3;
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

TYPE_TEST(Harris, EveryBorder)
{
    int number = 0;
    for (LumiBorderType border = 0; border < 256; ++border) {
        if (!isFilterBorder(border)) {
            continue;
        }
        for (const LumiSize size :
             {LumiSize{1, 1}, LumiSize{1, 4}, LumiSize{3, 1}, LumiSize{2, 9}, LumiSize{9, 3}, LumiSize{21, 12}}) {
            for (const HarrisParameters filter : kHarrisFilters) {
                FilterSetting setting = ordinary(size, number++);
                setting.border = border;
                expectHarris<TypeParam>(setting, withWindow(filter, 1 + number % 7));
                ASSERT_FALSE(testing::Test::HasFailure());
            }
        }
    }
}

TYPE_TEST(Harris, EveryWidthAndHeight)
{
    int number = 0;
    for (int width = 1; width <= 70; ++width) {
        for (const int height : {1, 2, 3, 5, 8, 13}) {
            Random random(static_cast<std::uint64_t>(number));
            const HarrisParameters filter = kHarrisFilters[random.between(0, 3)];
            expectHarris<TypeParam>(ordinary({width, height}, number++),
                                    withWindow(filter, static_cast<int>(random.between(1, 6))));
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

TYPE_TEST(Harris, EveryWindow)
{
    int number = 0;
    for (const int window : {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,
                             16, 17, 18, 19, 20, 23, 24, 31, 32, 33, 40, 63, 64, 65, 100}) {
        for (const LumiSize size : {LumiSize{40, 9}, LumiSize{5, 30}, LumiSize{90, 70}}) {
            if (window > 33 && size.width == 90) {
                continue;
            }
            expectHarris<TypeParam>(ordinary(size, number), withWindow(kHarrisFilters[number % 4], window));
            ++number;
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

// Wherever an image is cut for the sake of the caches, the result is that of the whole.
TYPE_TEST(Harris, SizesAroundTheTiles)
{
    int number = 0;
    for (const int window : {1, 2, 3, 5, 14}) {
        for (const HarrisParameters filter : {kHarrisFilters[number % 4], kHarrisFilters[1]}) {
            const HarrisParameters p = withWindow(filter, window);
            for (const LumiSize size : tileSizes(p, Exports<TypeParam>::type)) {
                expectHarris<TypeParam>(ordinary(size, number++), p);
                ASSERT_FALSE(testing::Test::HasFailure());
            }
        }
    }
}

TYPE_TEST(Harris, TilesWithEachKindOfBorder)
{
    int number = 3;
    for (const LumiBorderType border : kBorders) {
        for (const HarrisParameters p : {withWindow(kHarrisFilters[2], 4), withWindow(kHarrisFilters[1], 3)}) {
            FilterSetting setting = ordinary({113, 103}, number++);
            setting.border = border;
            expectHarris<TypeParam>(setting, p);
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

TYPE_TEST(Harris, WideAndTall)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{255, 9}, LumiSize{256, 12}, LumiSize{257, 4}, LumiSize{1100, 11},
                                LumiSize{3, 300}, LumiSize{20, 260}}) {
        for (const int window : {1, 2, 3, 5}) {
            expectHarris<TypeParam>(ordinary(size, number), withWindow(kHarrisFilters[number % 4], window));
            ++number;
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

// Images far larger than the caches that are reported.
TYPE_TEST(Harris, LargerThanTheCaches)
{
    const ReportedCacheSize reported(lumOk, 1);
    for (int i = 0; i < 10; ++i) {
        FilterSetting setting = placed({150 + i, 60}, i);
        setting.values = Values::Ordinary;
        expectHarris<TypeParam>(setting, withWindow(kHarrisFilters[i % 4], 3));
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

// Of floats: up to the largest, denormals, infinities and values that are not numbers.
TYPE_TEST(Harris, ExtremeValues)
{
    for (int number = 0; number < 30; ++number) {
        FilterSetting setting = placed({3 + 2 * number, 9}, 4 * number);
        setting.values = number % 2 == 0 ? Values::Extreme : Values::NonFinite;
        expectHarris<TypeParam>(setting, withWindow(kHarrisFilters[number % 4], 1 + number % 4));
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

TYPE_TEST(Harris, WeightsAndScales)
{
    int number = 0;
    for (const Lum32f k : {0.0f, 0.06f, -0.5f, 1e30f}) {
        for (const Lum32f scale : {1.0f / 3, 0.0f, -7.1e-10f, 3e38f, 1e-42f}) {
            expectHarris<TypeParam>(ordinary({21, 9}, number), withWindow(kHarrisFilters[number % 4], 1 + number % 5),
                                    k, scale);
            ++number;
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

TEST(HarrisOfFloats, TinyAndHugeMagnitudes)
{
    int number = 0;
    for (const Lum32f magnitude : {1e-23f, 1e-22f, 1e-19f, 1e-12f, 1e-11f, 1e-10f, 1e-9f, 1e6f, 1e8f, 1e15f}) {
        for (int i = 0; i < 12; ++i) {
            expectHarris<Lum32f>(ordinary({29, 9}, number++), withWindow(kHarrisFilters[i % 4], 1 + i / 4), 0.04f, 1,
                                 magnitude);
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

// The fourth power is an integer of 32 bits that wraps; 65 to the fourth is no number of single precision.
TYPE_TEST(HarrisQuick, TheFourthPowerIsAWrappedInteger)
{
    int number = 1;
    for (const int window : {65, 77, 91, 255, 257, 300}) {
        for (const Lum32f scale : {0.7f, 1.1f, 3.3e-7f}) {
            expectHarris<TypeParam>(ordinary({9, 5}, number), withWindow(kHarrisFilters[number % 4], window), 0.04f,
                                    scale);
            ++number;
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

template <class S>
std::vector<Lum32f> responseOf(const Image<S>& image, HarrisParameters p, Lum32f scale = 1, Lum32f k = 0.04f,
                               LumiBorderType border = lumBorderReplicate, Lum32f borderValue = 0)
{
    const LumiSize size = {image.width(), image.height()};
    const PlacedBlock scratch(static_cast<std::size_t>(harrisBytes(size, p, Exports<S>::type)));
    std::vector<Lum32f> result(static_cast<std::size_t>(size.width * size.height), -77.0f);
    const MeasureCall call = {image.pixels(), image.step(), result.data(), size.width * 4, size, p.filter, p.mask,
                              p.window,       border,       borderValue,   scratch.data(), k,    scale};
    EXPECT_EQ(Exports<S>::harris(call), lumOk);
    EXPECT_TRUE(scratch.intact());
    return result;
}

TYPE_TEST(HarrisQuick, AConstantImageGivesZeros)
{
    Image<TypeParam> image({30, 12});
    image.forEach(Area::Roi, [](TypeParam& element, int, int, int) { element = 131; });
    for (int window = 1; window < 6; ++window) {
        for (const HarrisParameters filter : kHarrisFilters) {
            const HarrisParameters p = withWindow(filter, window);
            EXPECT_EQ(responseOf(image, p), std::vector<Lum32f>(360, 0.0f));
            EXPECT_EQ(responseOf(image, p, 1, 0.04f, lumBorderConstant, 131), std::vector<Lum32f>(360, 0.0f));
        }
    }
}

template <class S>
Image<S> brightPixel(LumiSize size, int x, int y)
{
    Image<S> image({size.width, size.height});
    image.forEach(Area::Roi, [&](S& element, int column, int row, int) {
        element = static_cast<S>(column == x && row == y ? 10 : 0);
    });
    return image;
}

// The pixel beside the bright one has dx = -20 and dy = 0, the diagonal one -10 and 10.
TYPE_TEST(HarrisQuick, AWindowOfOneTakesTheProductsAndTheScaleAsTheyAre)
{
    const auto image = brightPixel<TypeParam>({9, 9}, 4, 4);
    const auto response = responseOf(image, withWindow({}, 1), 0.3f);
    const Lum32f beside = 0.04f * (400.0f * 400.0f);
    const Lum32f diagonal = 0.04f * (200.0f * 200.0f) + 10000.0f;
    EXPECT_EQ(response[4 * 9 + 3], (0.0f - beside) * 0.3f);
    EXPECT_EQ(response[3 * 9 + 3], (10000.0f - diagonal) * 0.3f);
    EXPECT_EQ(response[4 * 9 + 4], 0.0f);
}

TYPE_TEST(HarrisQuick, TheScaleIsMultipliedByTheFourthPowerOfTheWindow)
{
    const auto image = brightPixel<TypeParam>({9, 9}, 4, 4);
    const Lum32f A = 1200 * (1.0f / 9);
    const Lum32f S = static_cast<Lum32f>(static_cast<Lum64f>(0.7f) * 81);
    EXPECT_EQ(responseOf(image, withWindow({}, 3), 0.7f)[40], (A * A - 0.04f * ((A + A) * (A + A))) * S);
}

TYPE_TEST(HarrisQuick, AWindowOf256GivesZeros)
{
    const auto image = brightPixel<TypeParam>({9, 7}, 4, 3);
    EXPECT_EQ(responseOf(image, withWindow({}, 256)), std::vector<Lum32f>(63, 0.0f));
    const auto other = responseOf(image, withWindow({}, 255));
    EXPECT_NE(other, std::vector<Lum32f>(63, 0.0f));
    expectHarris<TypeParam>(ordinary({9, 7}, 4), withWindow({}, 256));
}

// The products reach from 4 to 6; windows of two pixels see them from 3 on, but not at 7.
TYPE_TEST(HarrisQuick, AnEvenWindowReachesFartherToTheRightAndTheBottom)
{
    const auto response = responseOf(brightPixel<TypeParam>({11, 11}, 5, 5), withWindow({}, 2));
    for (int y = 0; y < 11; ++y) {
        for (int x = 0; x < 11; ++x) {
            const bool reached = x >= 3 && x <= 6 && y >= 3 && y <= 6;
            EXPECT_EQ(response[static_cast<std::size_t>(y * 11 + x)] != 0, reached) << "x " << x << ", y " << y;
        }
    }
}

// Two pixels between a constant border: dy is 0, and the window counts no products but those of the two pixels.
TYPE_TEST(HarrisQuick, ProductsBesideAConstantBorderAreZeroWhateverItsValue)
{
    Image<TypeParam> image({2, 1});
    image.at(0, 0) = 3;
    image.at(1, 0) = 7;
    // left minus right, the middle row counts twice, the others are constant: 2 * (20 - 7) and 2 * (3 - 20)
    const Lum32f A = (26 * 26 + 34 * 34) * (1.0f / 9);
    const Lum32f expected = (0.0f - 0.04f * (A * A)) * 81;
    EXPECT_EQ(responseOf(image, withWindow({}, 3), 1, 0.04f, lumBorderConstant, 20),
              (std::vector<Lum32f>{expected, expected}));
}

// On a side in memory the window takes the products of the pixels that are there, also where the mode is constant.
TYPE_TEST(HarrisQuick, OnSidesInMemoryTheWindowSeesRealProducts)
{
    const HarrisParameters p = withWindow({}, 3);
    Image<TypeParam> wide({12, 9});
    Random random(8);
    wide.forEach(Area::Roi,
                 [&](TypeParam& element, int, int, int) { element = static_cast<TypeParam>(random.between(0, 99)); });
    const auto whole = responseOf(wide, p);
    Image<TypeParam> part(Layout{8, 5, 1, 0, Guard::After, Margins::all(2)});
    part.forEach(Area::WithMargins, [&](TypeParam& element, int x, int y, int) { element = wide.at(x + 2, y + 2); });
    for (const LumiBorderType mode : {0, +lumBorderReplicate, +lumBorderMirror, +lumBorderConstant}) {
        const auto response = responseOf(part, p, 1, 0.04f, mode | lumBorderInMem, 50);
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < 8; ++x) {
                EXPECT_EQ(response[static_cast<std::size_t>(y * 8 + x)],
                          whole[static_cast<std::size_t>((y + 2) * 12 + x + 2)])
                    << "mode " << mode << ", x " << x << ", y " << y;
            }
        }
    }
}

// The sums run along the whole row: what the large numbers at its begin have rounded away stays away, also far behind.
TEST(HarrisOfFloatsQuick, RunningSumsKeepWhatWasRoundedAlongTheWholeRow)
{
    const int width = 400;
    Image<Lum32f> image({width, 30});
    Image<Lum32f> quiet({width, 30});
    image.forEach(Area::Roi, [&](Lum32f& element, int x, int y, int) {
        quiet.at(x, y) = static_cast<Lum32f>((x * 5 + y * y) % 11);
        element = x < 3 ? 1e5f * static_cast<Lum32f>(y % 2) : quiet.at(x, y);
    });
    const HarrisParameters p = withWindow({}, 3);
    const auto result = responseOf(image, p);
    const Planes means = harrisMeans<Lum32f>(image, {width, 30}, p, lumBorderReplicate, 0.0f);
    for (std::size_t y = 0; y < 30; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            ASSERT_EQ(result[y * width + x],
                      harrisResponse(means.xx[y][x], means.xy[y][x], means.yy[y][x], 3, 0.04f, 1))
                << "x " << x << ", y " << y;
        }
    }
    // at the end of a row the pixels around are the same in both images
    EXPECT_NE(result[15 * width + 390], responseOf(quiet, p)[15 * width + 390]);
}

TYPE_TEST(Harris, RowsBetweenUnreadablePages)
{
    int number = 0;
    for (const LumiBorderType border : kBorders) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{7, 3}, LumiSize{18, 9}, LumiSize{107, 12}}) {
            for (const Guard guard : {Guard::After, Guard::Before}) {
                FilterSetting setting;
                setting.size = size;
                setting.border = border;
                setting.seed = number;
                setting.guard = guard;
                setting.values = Values::Ordinary;
                expectHarris<TypeParam, IsolatedRows>(setting, withWindow(kHarrisFilters[number % 4], 1 + number % 5));
                ++number;
                ASSERT_FALSE(testing::Test::HasFailure());
            }
        }
    }
}

TYPE_TEST(Harris, ScratchAtEveryAddress)
{
    for (int distance = 0; distance < 64; ++distance) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            FilterSetting setting;
            setting.size = {17 + distance % 3, 5 + distance % 6};
            setting.border = kBorders[distance % 7];
            setting.seed = distance;
            setting.guard = guard;
            setting.distance = static_cast<std::size_t>(distance);
            setting.values = Values::Ordinary;
            expectHarris<TypeParam>(setting, withWindow(kHarrisFilters[distance % 4], 1 + distance % 5));
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

}  // namespace
}  // namespace lumcv::test::corners
