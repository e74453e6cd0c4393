// Line suppression against the reference, which takes the whole ROI at once, and what is special about it.
#include <cmath>
#include <limits>
#include <vector>

#include "feature/corner_fixture.hpp"

namespace lumcv::test::corners {
namespace {

// What of the filters' borders it accepts: it does not mirror.
bool isSuppressionBorder(LumiBorderType border)
{
    return isFilterBorder(border) && (border & 15) != lumBorderMirror;
}

Image<Lum8u> drawFeatures(const FilterSetting& setting)
{
    FilterSetting own = setting;
    own.gap = setting.gap / 2;
    Image<Lum8u> features(own.layout<Lum8u>());
    Random random(static_cast<std::uint64_t>(setting.seed) + 500);
    features.forEach(Area::Roi, [&](Lum8u& element, int, int, int) {
        element = static_cast<Lum8u>(random.oneIn(8) ? 0 : random.between(1, 255));
    });
    return features;
}

template <template <class> class SourceImage = Image>
void expectSuppressed(const FilterSetting& setting, HarrisParameters p, Lum32f threshold)
{
    SCOPED_TRACE(setting);
    SCOPED_TRACE(testing::Message() << "filter " << p.filter << ", mask " << p.mask << ", window " << p.window
                                    << ", threshold " << threshold);
    SourceImage<Lum8u> source(setting.layout<Lum8u>(promisedMargins(setting.border, pixelReach(p))));
    draw(source, setting);
    const Lum8u borderValue = drawBorderValue<Lum8u>(setting);
    const Image<Lum8u> features = drawFeatures(setting);
    const Planes means = harrisMeans<Lum8u>(source, setting.size, p, setting.border, borderValue);
    Image<Lum8u> expected(setting.layout<Lum8u>());
    expected.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int) {
        const auto row = static_cast<std::size_t>(y);
        const auto column = static_cast<std::size_t>(x);
        const bool cleared = liesOnLine(means.xx[row][column], means.xy[row][column], means.yy[row][column], threshold);
        element = cleared ? Lum8u{0} : features.at(x, y);
    });
    const PlacedBlock scratch = scratchOf(setting, harrisBytes(setting.size, p, lumType8u));
    Image<Lum8u> destination(setting.layout<Lum8u>());
    EXPECT_EQ(lumiLineSuppression_8u_C1R(source.pixels(), source.step(), features.pixels(), features.step(),
                                         destination.pixels(), destination.step(), setting.size, p.filter, p.mask,
                                         p.window, threshold, setting.border, borderValue, scratch.data()),
              lumOk);
    EXPECT_TRUE(sameImage(expected, destination));
    EXPECT_TRUE(destination.gapsIntact());
    EXPECT_TRUE(features.gapsIntact());
    EXPECT_TRUE(scratch.intact());
}

FilterSetting suppressionSetting(LumiSize size, int seed)
{
    FilterSetting setting = placed(size, seed);
    setting.border = isSuppressionBorder(setting.border) ? setting.border : lumBorderConstant | lumBorderInMemTop;
    return setting;
}

Lum32f thresholdOf(int number)
{
    const Lum32f thresholds[] = {8, 4.5f, 30, 5, 12.3f, 7};
    return thresholds[number % 6];
}

TEST(LineSuppressionQuick, SomeSizes)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{1, 1}, LumiSize{6, 2}, LumiSize{17, 8}, LumiSize{34, 12}, LumiSize{105, 9}}) {
        for (int window = 1; window <= 6; ++window) {
            expectSuppressed(suppressionSetting(size, number), withWindow(kHarrisFilters[window % 4], window),
                             thresholdOf(window));
            number += 3;
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

TEST(LineSuppression, EveryBorder)
{
    int number = 0;
    for (LumiBorderType border = 0; border < 256; ++border) {
        if (!isSuppressionBorder(border)) {
            continue;
        }
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{1, 4}, LumiSize{3, 1}, LumiSize{9, 3}, LumiSize{21, 12}}) {
            for (const HarrisParameters filter : kHarrisFilters) {
                FilterSetting setting = placed(size, number++);
                setting.border = border;
                expectSuppressed(setting, withWindow(filter, 1 + number % 7), thresholdOf(number));
                ASSERT_FALSE(testing::Test::HasFailure());
            }
        }
    }
}

TEST(LineSuppression, EveryWidthAndHeight)
{
    int number = 0;
    for (int width = 1; width <= 70; ++width) {
        for (const int height : {1, 2, 3, 5, 8, 13}) {
            Random random(static_cast<std::uint64_t>(number));
            const HarrisParameters filter = kHarrisFilters[random.between(0, 3)];
            expectSuppressed(suppressionSetting({width, height}, number),
                             withWindow(filter, static_cast<int>(random.between(1, 6))), thresholdOf(number));
            ++number;
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

TEST(LineSuppression, SizesAroundTheTiles)
{
    int number = 0;
    for (const int window : {1, 2, 3, 5}) {
        for (const HarrisParameters filter : {kHarrisFilters[number % 4], kHarrisFilters[1]}) {
            const HarrisParameters p = withWindow(filter, window);
            for (const LumiSize size : tileSizes(p, lumType8u)) {
                expectSuppressed(suppressionSetting(size, number), p, thresholdOf(number));
                ++number;
                ASSERT_FALSE(testing::Test::HasFailure());
            }
        }
    }
}

TEST(LineSuppression, WideAndLargeWindows)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{255, 9}, LumiSize{256, 4}, LumiSize{257, 12}, LumiSize{1100, 11}}) {
        for (const int window : {2, 3, 7, 16, 21}) {
            expectSuppressed(suppressionSetting(size, number), withWindow(kHarrisFilters[number % 4], window),
                             thresholdOf(number));
            ++number;
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

TEST(LineSuppression, EveryKindOfThreshold)
{
    using Limits = std::numeric_limits<Lum32f>;
    const Lum32f thresholds[] = {
        0, -0.0f, -5, 4, 1e9f, Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), 1e-42f};
    int number = 0;
    for (const Lum32f threshold : thresholds) {
        for (int i = 0; i < 4; ++i) {
            expectSuppressed(suppressionSetting({37, 9}, number++), withWindow(kHarrisFilters[i], 1 + i), threshold);
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

TEST(LineSuppression, RowsBetweenUnreadablePages)
{
    int number = 0;
    for (const LumiBorderType border : kBorders) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{18, 9}, LumiSize{107, 12}}) {
            for (const Guard guard : {Guard::After, Guard::Before}) {
                FilterSetting setting;
                setting.size = size;
                setting.border = isSuppressionBorder(border) ? border : lumBorderConstant;
                setting.seed = number;
                setting.guard = guard;
                expectSuppressed<IsolatedRows>(setting, withWindow(kHarrisFilters[number % 4], 1 + number % 5), 9);
                ++number;
                ASSERT_FALSE(testing::Test::HasFailure());
            }
        }
    }
}

// One call over images that the test draws itself.
std::vector<Lum8u> suppressed(const Image<Lum8u>& image, const Image<Lum8u>& features, Lum32f threshold,
                              HarrisParameters p = {})
{
    const LumiSize size = {image.width(), image.height()};
    const PlacedBlock scratch(static_cast<std::size_t>(harrisBytes(size, p, lumType8u)));
    std::vector<Lum8u> result(static_cast<std::size_t>(size.width * size.height), Lum8u{99});
    EXPECT_EQ(lumiLineSuppression_8u_C1R(image.pixels(), image.step(), features.pixels(), features.step(),
                                         result.data(), size.width, size, p.filter, p.mask, p.window, threshold,
                                         lumBorderReplicate, 0, scratch.data()),
              lumOk);
    return result;
}

Image<Lum8u> imageOf(LumiSize size, int (*value)(int x, int y))
{
    Image<Lum8u> image({size.width, size.height});
    image.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int) { element = static_cast<Lum8u>(value(x, y)); });
    return image;
}

Image<Lum8u> ones(LumiSize size)
{
    return imageOf(size, [](int, int) { return 1; });
}

// In a flat image nothing is above nothing.
TEST(LineSuppressionQuick, FlatPixelsKeepTheirFeatures)
{
    const auto flat = imageOf({20, 9}, [](int, int) { return 77; });
    const auto features = imageOf({20, 9}, [](int x, int y) { return 3 * x + y; });
    for (const Lum32f threshold : {0.0f, 10.0f, -10.0f}) {
        const std::vector<Lum8u> result = suppressed(flat, features, threshold);
        for (int y = 0; y < 9; ++y) {
            EXPECT_TRUE(sameElements(features.row(y), result.data() + 20 * y, 20));
        }
    }
}

TEST(LineSuppressionQuick, PixelsOfAnEdgeAreCleared)
{
    const auto edge = imageOf({20, 9}, [](int x, int) { return x < 10 ? 20 : 90; });
    const std::vector<Lum8u> result = suppressed(edge, ones({20, 9}), 1e30f);
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 20; ++x) {
            const bool nearEdge = x >= 8 && x <= 11;
            EXPECT_EQ(result[static_cast<std::size_t>(20 * y + x)], nearEdge ? 0 : 1) << "x " << x << ", y " << y;
        }
    }
}

// Where both eigenvalues are equal the ratio is 4, and 4 is not above 4.
TEST(LineSuppressionQuick, TheThresholdIsExceededStrictly)
{
    const auto image = imageOf({9, 9}, [](int x, int y) { return x == 4 && y == 4 ? 10 : 0; });
    EXPECT_EQ(suppressed(image, ones({9, 9}), 4)[40], 1);
    EXPECT_EQ(suppressed(image, ones({9, 9}), std::nextafter(4.0f, 0.0f))[40], 0);
}

TEST(LineSuppressionQuick, TheImageMayBeItsOwnMapOfFeatures)
{
    const auto image = imageOf({31, 11}, [](int x, int y) { return (x / 4 + y / 3) % 2 * 100 + 5; });
    const Image<Lum8u> copy = image;
    EXPECT_EQ(suppressed(image, image, 9), suppressed(image, copy, 9));
}

// Only negative strides are refused: with a stride of 0 every row is the same.
TEST(LineSuppressionQuick, StridesBelowARowAreAllowed)
{
    const auto row = imageOf({24, 1}, [](int x, int) { return x / 5 % 2 * 50; });
    const auto features = imageOf({24, 1}, [](int x, int) { return x + 1; });
    const auto rows = imageOf({24, 4}, [](int x, int) { return x / 5 % 2 * 50; });
    const auto featureRows = imageOf({24, 4}, [](int x, int) { return x + 1; });
    const PlacedBlock scratch(static_cast<std::size_t>(harrisBytes({24, 4}, {}, lumType8u)));
    std::vector<Lum8u> result(24 * 4, Lum8u{99});
    EXPECT_EQ(lumiLineSuppression_8u_C1R(row.pixels(), 0, features.pixels(), 0, result.data(), 24, {24, 4},
                                         lumFilterSobel, lumMask3x3, 3, 9, lumBorderReplicate, 0, scratch.data()),
              lumOk);
    EXPECT_EQ(result, suppressed(rows, featureRows, 9));
    std::vector<Lum8u> single(24, Lum8u{99});
    EXPECT_EQ(lumiLineSuppression_8u_C1R(row.pixels(), 1, features.pixels(), 3, single.data(), 0, {24, 1},
                                         lumFilterSobel, lumMask3x3, 3, 9, lumBorderReplicate, 0, scratch.data()),
              lumOk);
    EXPECT_EQ(single, suppressed(row, features, 9));
}

}  // namespace
}  // namespace lumcv::test::corners
