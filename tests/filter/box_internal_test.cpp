// The box filter: means of windows of any size by running sums, against a plain reference that adds in the same order.
#include "filter/box.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "filter/filter_setting.hpp"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/placed_block.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::box {
namespace {

Margins windowReach(LumiSize window)
{
    const int left = (window.width - 1) >> 1;
    const int above = (window.height - 1) >> 1;
    return {above, window.height - 1 - above, left, window.width - 1 - left};
}

// Column sums from top to bottom; the first window's columns from left to right; then the entering column is added and
// the leaving one subtracted.
template <class Source>
Image<Lum32f> reference(const FilterSetting& setting, LumiSize window, const Source& source, Lum32f borderValue)
{
    const Margins reach = windowReach(window);
    const ExtendedImage<Lum32f> extended(source, setting.size, 1, reach, setting.border, &borderValue);
    const Lum32f area = static_cast<Lum32f>(window.height) * static_cast<Lum32f>(window.width);
    const Lum32f scale = 1.0f / area;
    Image<Lum32f> result(setting.layout<Lum32f>());
    for (int y = 0; y < setting.size.height; ++y) {
        std::vector<Lum32f> columns = extended.row(y - reach.top);
        for (int j = 1; j < window.height; ++j) {
            const std::vector<Lum32f>& row = extended.row(y - reach.top + j);
            for (std::size_t x = 0; x < columns.size(); ++x) {
                columns[x] = columns[x] + row[x];
            }
        }
        const auto width = static_cast<std::size_t>(window.width);
        Lum32f sum = columns[0];
        for (std::size_t i = 1; i < width; ++i) {
            sum = sum + columns[i];
        }
        for (int x = 0; x < setting.size.width; ++x) {
            if (x > 0) {
                const auto leaving = static_cast<std::size_t>(x - 1);
                sum = sum + columns[leaving + width];
                sum = sum - columns[leaving];
            }
            const bool copied = window.width == 1 && window.height == 1;
            result.at(x, y) = copied ? source.row(y)[x] : sum * scale;
        }
    }
    return result;
}

std::size_t scratchBytes(LumiSize size, LumiSize window)
{
    return static_cast<std::size_t>(boxFilterScratch(size, window));
}

template <template <class> class SourceImage = Image>
void expectFiltered(const FilterSetting& setting, LumiSize window)
{
    SCOPED_TRACE(setting);
    SCOPED_TRACE(testing::Message() << "window " << window.width << " x " << window.height);
    SourceImage<Lum32f> source(setting.layout<Lum32f>(promisedMargins(setting.border, windowReach(window))));
    Random random(static_cast<std::uint64_t>(setting.seed));
    const auto draw = [&](Lum32f& element, int, int, int) { element = random.value<Lum32f>(setting.values); };
    if constexpr (std::is_same_v<SourceImage<Lum32f>, IsolatedRows<Lum32f>>) {
        source.forEach(draw);
        source.makeReadOnly();
    } else {
        source.forEach(Area::WithMargins, draw);
    }
    const Lum32f borderValue = random.value<Lum32f>(setting.values);
    const Image<Lum32f> expected = reference(setting, window, source, borderValue);

    const PlacedBlock scratch(scratchBytes(setting.size, window), setting.guard, setting.distance);
    Image<Lum32f> destination(setting.layout<Lum32f>());
    const bool needed = (setting.border & 15) == lumBorderConstant;
    EXPECT_EQ(lumBoxFilter_32f(source.pixels(), source.step(), destination.pixels(), destination.step(), setting.size,
                               window, setting.border, needed ? &borderValue : nullptr, scratch.data()),
              lumOk);
    EXPECT_TRUE(sameImage(expected, destination));
    EXPECT_TRUE(destination.gapsIntact());
    EXPECT_TRUE(scratch.intact());
}

TEST(BoxFilter, OneRowByHand)
{
    const Lum32f row[] = {9, 1, 2, 3, 4, 50};
    const auto means = [&](LumiSize window, LumiBorderType border) {
        const Lum32f borderValue = 100;
        const PlacedBlock buffer(scratchBytes({4, 1}, window));
        std::vector<Lum32f> result(4);
        EXPECT_EQ(lumBoxFilter_32f(row + 1, 24, result.data(), 16, {4, 1}, window, border, &borderValue, buffer.data()),
                  lumOk);
        return result;
    };
    using V = std::vector<Lum32f>;
    // of an even window the pixel is the earlier of the middle
    EXPECT_EQ(means({2, 1}, lumBorderReplicate), (V{1.5f, 2.5f, 3.5f, 4}));
    EXPECT_EQ(means({2, 1}, lumBorderMirror), (V{1.5f, 2.5f, 3.5f, 3.5f}));
    EXPECT_EQ(means({2, 1}, lumBorderInMem), (V{1.5f, 2.5f, 3.5f, 27}));
    EXPECT_EQ(means({2, 1}, lumBorderConstant), (V{1.5f, 2.5f, 3.5f, 52}));
    // above 1, below 2: the row itself, and twice 100
    EXPECT_EQ(means({1, 4}, lumBorderConstant), (V{75.25f, 75.5f, 75.75f, 76}));
    EXPECT_EQ(means({4, 1}, lumBorderMirror), (V{2, 2.5f, 3, 3}));
    EXPECT_EQ(means({1, 1}, lumBorderReplicate), (V{1, 2, 3, 4}));
}

// The rounding of a large column stays in the running sum after the column has left.
TEST(BoxFilter, RunningSumKeepsWhatWasRounded)
{
    const Lum32f row[] = {1e9f, 1, 1, 1, 1};
    const PlacedBlock scratch(scratchBytes({5, 1}, {2, 1}));
    std::vector<Lum32f> result(5);
    ASSERT_EQ(lumBoxFilter_32f(row, 20, result.data(), 20, {5, 1}, {2, 1}, lumBorderReplicate, nullptr, scratch.data()),
              lumOk);
    // 1e9 + 1 is 1e9, and so is 1e9 + 1 with the entering column; then 1e9 leaves
    EXPECT_EQ(result, (std::vector<Lum32f>{5e8f, 0, 0, 0, 0}));
}

// Bits, also of numbers that an addition or a product would change.
TEST(BoxFilter, WindowOfOnePixelCopies)
{
    const Lum32u patterns[] = {0x80000000u, 0x7f800000u, 0x00000001u, 0x7fc12345u, 0xff7fffffu, 0x3f800001u};
    Lum32f row[6];
    std::memcpy(row, patterns, sizeof row);
    const PlacedBlock scratch(scratchBytes({6, 1}, {1, 1}));
    Lum32f result[6];
    ASSERT_EQ(lumBoxFilter_32f(row, 24, result, 24, {6, 1}, {1, 1}, lumBorderReplicate, nullptr, scratch.data()),
              lumOk);
    EXPECT_EQ(std::memcmp(result, patterns, sizeof result), 0);
}

TEST(BoxFilter, EveryBorder)
{
    int number = 0;
    for (LumiBorderType border = 0; border < 256; ++border) {
        if (!isFilterBorder(border)) {
            continue;
        }
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{1, 3}, LumiSize{3, 1}, LumiSize{9, 2}, LumiSize{21, 5}}) {
            for (const LumiSize window : {LumiSize{3, 3}, LumiSize{2, 4}, LumiSize{7, 5}, LumiSize{12, 9}}) {
                FilterSetting setting;
                setting.size = size;
                setting.border = border;
                setting.seed = number;
                setting.guard = number++ % 2 == 0 ? Guard::After : Guard::Before;
                expectFiltered(setting, window);
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

TEST(BoxFilter, EveryWindow)
{
    int number = 0;
    for (int windowWidth = 1; windowWidth <= 35; ++windowWidth) {
        for (const int windowHeight : {1, 2, 3, 4, 7, 11}) {
            for (const LumiSize size : {LumiSize{1 + number % 40, 1 + number % 13}, LumiSize{70, 9}}) {
                FilterSetting setting = placed(size, number++);
                setting.values = Values::Ordinary;
                expectFiltered(setting, {windowWidth, windowHeight});
            }
        }
        ++number;
        if (testing::Test::HasFailure()) {
            return;
        }
    }
}

TEST(BoxFilter, EveryWidthAndHeight)
{
    int number = 0;
    for (int width = 1; width <= 70; ++width) {
        for (const LumiSize window : {LumiSize{3, 3}, LumiSize{5, 5}, LumiSize{4, 2}}) {
            FilterSetting setting = placed({width, 1 + number % 19}, number);
            setting.values = static_cast<Values>(number % 3);
            ++number;
            expectFiltered(setting, window);
        }
        ++number;
    }
    for (int height = 1; height <= 40; ++height) {
        expectFiltered(placed({19, height}, number++), {3, 5});
    }
    for (const int width : {255, 256, 257, 1100}) {
        expectFiltered(placed({width, 10}, number++), {9, 9});
    }
}

// A window larger than the ROI in both directions sees the border alone.
TEST(BoxFilter, WindowsLargerThanTheImage)
{
    int number = 0;
    for (const LumiSize window : {LumiSize{40, 30}, LumiSize{101, 101}, LumiSize{2, 200}}) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{2, 3}, LumiSize{17, 11}}) {
            for (const LumiBorderType border : kBorders) {
                FilterSetting setting = placed(size, number++);
                setting.border = border;
                expectFiltered(setting, window);
            }
        }
    }
}

TEST(BoxFilter, RowsBetweenUnreadablePages)
{
    int number = 0;
    for (const int width : {1, 2, 8, 9, 15, 16, 17, 33, 65}) {
        for (const LumiSize window : {LumiSize{1, 1}, LumiSize{3, 3}, LumiSize{2, 5}, LumiSize{17, 4}}) {
            for (const LumiBorderType border :
                 {lumBorderInMem + 0, lumBorderMirror + 0, lumBorderConstant | lumBorderInMemTop | lumBorderInMemLeft,
                  lumBorderReplicate | lumBorderInMemRight | lumBorderInMemBottom}) {
                FilterSetting setting = placed({width, 1 + number % 11}, number);
                setting.border = border;
                setting.distance = static_cast<std::size_t>(number % 64);
                ++number;
                expectFiltered<IsolatedRows>(setting, window);
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

struct BoxArgs
{
    const Image<Lum32f>* destination;
    const Lum32f* pSrc;
    Lum32s srcStep;
    Lum32f* pDst;
    Lum32s dstStep;
    LumiSize roiSize = {7, 6};
    LumiSize window = {3, 2};
    LumiBorderType border = lumBorderReplicate;
    const Lum32f* pBorderValue;
    Lum8u* pBuffer;

    LumStatus call() const
    {
        return lumBoxFilter_32f(pSrc, srcStep, pDst, dstStep, roiSize, window, border, pBorderValue, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination)};
    }
};

// A stride comes before the size, and must only be positive; a missing border value comes last.
TEST(BoxFilter, ChecksInOrder)
{
    using Args = BoxArgs;
    constexpr int intMin = std::numeric_limits<int>::min();
    FilterSetting setting;
    setting.size = {7, 6};
    Image<Lum32f> source(setting.layout<Lum32f>());
    source.forEach(Area::Roi, [](Lum32f& element, int x, int y, int) { element = static_cast<Lum32f>(x * y); });
    Image<Lum32f> destination(setting.layout<Lum32f>());
    const PlacedBlock scratch(scratchBytes({7, 6}, {3, 2}));
    const Lum32f borderValue = 5;
    std::vector<Violation<Args>> order = {
        {"pSrc null", lumErrNullPointer, [](Args& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](Args& a) { a.pDst = nullptr; }},
        {"pBuffer null", lumErrNullPointer, [](Args& a) { a.pBuffer = nullptr; }},
        {"srcStep 0", lumErrStep, [](Args& a) { a.srcStep = 0; }},
        {"dstStep 0", lumErrStep, [](Args& a) { a.dstStep = 0; }},
        {"srcStep negative", lumErrStep, [](Args& a) { a.srcStep = intMin; }},
        {"dstStep negative", lumErrStep, [](Args& a) { a.dstStep = -a.dstStep; }},
        {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = intMin; }},
        {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
        {"window width 0", lumErrMaskSize, [](Args& a) { a.window.width = 0; }},
        {"window width negative", lumErrMaskSize, [](Args& a) { a.window.width = -3; }},
        {"window height 0", lumErrMaskSize, [](Args& a) { a.window.height = 0; }},
        {"window height negative", lumErrMaskSize, [](Args& a) { a.window.height = intMin; }},
    };
    for (const LumiBorderType border : {0, 2, 4, 5, 7, 0x70, 0xF2, 0xF5, 0x101, 0x106, 0x1F0, -15}) {
        order.push_back({"border " + std::to_string(border), lumErrBorder, [=](Args& a) { a.border = border; }});
    }
    order.push_back({"constant without a value", lumErrNullPointer, [](Args& a) {
                         a.border = lumBorderConstant;
                         a.pBorderValue = nullptr;
                     }});
    expectStatusOrder(Args{&destination,
                           source.pixels(),
                           source.step(),
                           destination.pixels(),
                           destination.step(),
                           {7, 6},
                           {3, 2},
                           lumBorderReplicate,
                           &borderValue,
                           scratch.data()},
                      order);
}

}  // namespace
}  // namespace lumcv::test::box
