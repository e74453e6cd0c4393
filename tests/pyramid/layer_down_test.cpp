// Layers down against the reference, bit for bit.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "pyramid/layer_fixture.hpp"
#include "support/max_cache_size.hpp"

namespace lumcv::test::pyramid {
namespace {

class LayerDown : public testing::TestWithParam<LayerForm>
{
  public:
    void expectDown(const LayerSetting& setting)
    {
        expectLayer(GetParam(), Way::Down, setting);
    }
};
class LayerDownQuick : public LayerDown
{
};
INSTANTIATE_TEST_SUITE_P(Forms, LayerDown, testing::ValuesIn(kForms), formName);
INSTANTIATE_TEST_SUITE_P(Forms, LayerDownQuick, testing::ValuesIn(kForms), formName);

Kernel drawKernel(int size, Random& random)
{
    Kernel kernel(static_cast<std::size_t>(size));
    for (Lum32f& tap : kernel) {
        tap = static_cast<Lum32f>(random.between(1, 99));
    }
    return mirrored(kernel);
}

TEST_P(LayerDownQuick, SomeSizes)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{1, 1}, LumiSize{6, 6}, LumiSize{5, 9}, LumiSize{17, 8}, LumiSize{34, 13}}) {
        for (const Lum32f rate : {2.0f, 1.5f, 3.3333333f}) {
            for (const int kernel : {0, 1, 2, 3, 5}) {
                expectDown({.size = size, .rate = rate, .kernel = kKernels[kernel], .number = number++});
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

TEST_P(LayerDown, EveryWidth)
{
    std::vector<int> widths;
    for (int width = 1; width <= 70; ++width) {
        widths.push_back(width);
    }
    widths.insert(widths.end(), {95, 96, 97, 127, 128, 129, 130, 131, 255, 256, 257, 258, 259, 260, 1100});
    int number = 0;
    for (const int width : widths) {
        const int height = 6 + width % 5;
        for (const int kernel : {0, 1, 2, 3}) {
            expectDown({.size = {width, height}, .kernel = kKernels[kernel], .number = number++});
        }
        expectDown({.size = {width, height + width % 3},
                    .rate = kLayerRates[number % 11],
                    .kernel = kKernels[width % kKernelCount],
                    .number = number});
        ++number;
        ASSERT_FALSE(HasFailure());
    }
}

TEST_P(LayerDown, EveryHeight)
{
    int number = 1;
    for (int height = 1; height <= 40; ++height) {
        for (const int width : {7, 20}) {
            expectDown({.size = {width, height}, .kernel = kKernels[number % 3], .number = number});
            expectDown({.size = {width, height},
                        .rate = kLayerRates[number % 11],
                        .kernel = kKernels[height % kKernelCount],
                        .number = number});
            ++number;
            ASSERT_FALSE(HasFailure());
        }
    }
    expectDown({.size = {9, 300}, .number = 301});
    expectDown({.size = {9, 301}, .rate = 1.7f, .kernel = kKernels[4], .number = 302});
}

TEST_P(LayerDown, EveryRate)
{
    int number = 2;
    for (const Lum32f rate : kLayerRates) {
        for (const LumiSize size : {LumiSize{1, 9}, LumiSize{2, 4}, LumiSize{4, 2}, LumiSize{11, 10}, LumiSize{12, 11},
                                    LumiSize{33, 12}, LumiSize{64, 30}, LumiSize{101, 9}}) {
            expectDown({.size = size, .rate = rate, .kernel = kKernels[number % kKernelCount], .number = number});
            ++number;
            ASSERT_FALSE(HasFailure());
        }
    }
}

TEST_P(LayerDown, RatesThatAreNearEnoughToTwo)
{
    int number = 15;
    for (const Lum32f rate : ratesAroundNearTwo()) {
        for (const int kernel : {0, 2}) {
            expectDown({.size = {41, 14}, .rate = rate, .kernel = kKernels[kernel], .number = number++});
        }
    }
}

// Kernels that fit once, barely and not at all.
TEST_P(LayerDown, EveryKernelSize)
{
    Random random(7);
    int number = 3;
    for (int size = 3; size <= 33; size += 2) {
        const Kernel kernel = drawKernel(size, random);
        for (const LumiSize roi : {LumiSize{size + 1, size + 1}, LumiSize{size, size + 1}, LumiSize{size + 1, size},
                                   LumiSize{size - 2, 50}, LumiSize{50, 1}, LumiSize{43, 35}}) {
            for (const Lum32f rate : {2.0f, 1.6180339f}) {
                expectDown({.size = roi, .rate = rate, .kernel = kernel, .number = number++});
                ASSERT_FALSE(HasFailure());
            }
        }
    }
    expectDown({.size = {70, 9}, .kernel = drawKernel(63, random), .number = number++});
    expectDown({.size = {70, 66}, .kernel = drawKernel(63, random), .number = number++});
}

// Lobes below zero make negative values, and values above the largest.
TEST_P(LayerDown, KernelsWithNegativeTaps)
{
    const Kernel kernels[] = {{-1, 4, -1}, {-1, 2, 6, 2, -1}, {-3, -2, 20, -2, -3}, {-1, -2, -1}, {-7, 11, 3, 11, -7}};
    int number = 4;
    for (const Kernel& kernel : kernels) {
        for (const LumiSize size : {LumiSize{3, 5}, LumiSize{5, 5}, LumiSize{6, 6}, LumiSize{37, 14}}) {
            for (const Lum32f rate : {2.0f, 1.3f, 2.9f}) {
                for (const Values values : {Values::Ordinary, Values::Extreme}) {
                    expectDown({.size = size, .rate = rate, .kernel = kernel, .number = number++, .values = values});
                    ASSERT_FALSE(HasFailure());
                }
            }
        }
    }
}

// Taps whose sum is 0 stay what they are.
TEST_P(LayerDown, KernelsWithoutASum)
{
    int number = 5;
    for (const Kernel& kernel :
         {Kernel{-1, 2, -1}, Kernel{1, -2, 1}, Kernel{5, -10, 10, -10, 5}, Kernel{0, 0, 0}, Kernel{-100, 200, -100}}) {
        for (const LumiSize size : {LumiSize{3, 5}, LumiSize{6, 6}, LumiSize{37, 14}}) {
            for (const Lum32f rate : {2.0f, 1.3f}) {
                expectDown({.size = size, .rate = rate, .kernel = kernel, .number = number++});
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

// Taps keep 16 bits, sums 32, and the smoothed bytes are saturated to 16.
TEST_P(LayerDown, KernelsAtTheLimitsOfTheirType)
{
    int number = 14;
    for (const Kernel& kernel : kLargeKernels) {
        for (const LumiSize size : {LumiSize{3, 4}, LumiSize{8, 8}, LumiSize{37, 14}}) {
            for (const Lum32f rate : {2.0f, 1.3f}) {
                for (const Values values : {Values::Ordinary, Values::Extreme}) {
                    expectDown({.size = size, .rate = rate, .kernel = kernel, .number = number++, .values = values});
                    ASSERT_FALSE(HasFailure());
                }
            }
        }
    }
}

// The left half counts, mirrored; Init says so.
TEST_P(LayerDown, KernelsThatAreNotSymmetric)
{
    int number = 6;
    for (const Kernel& kernel :
         {Kernel{1, 4, 6, 4, 2}, Kernel{1, 4, 6, 5, 1}, Kernel{3, 4, 0}, Kernel{0, 0, 6, 4, 1}}) {
        for (const LumiSize size : {LumiSize{4, 5}, LumiSize{6, 6}, LumiSize{37, 14}}) {
            for (const Lum32f rate : {2.0f, 1.3f}) {
                expectDown({.size = size, .rate = rate, .kernel = kernel, .number = number++});
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

TEST_P(LayerDown, ExtremeValues)
{
    int number = 7;
    for (const Values values : {Values::Extreme, Values::NonFinite}) {
        for (const LumiSize size : {LumiSize{4, 5}, LumiSize{6, 6}, LumiSize{39, 16}, LumiSize{77, 9}}) {
            for (const Lum32f rate : {2.0f, 1.5f, 2.2f}) {
                for (const int kernel : {0, 1, 2, 5}) {
                    expectDown(
                        {.size = size, .rate = rate, .kernel = kKernels[kernel], .number = number++, .values = values});
                    ASSERT_FALSE(HasFailure());
                }
            }
        }
    }
}

// One record goes all the way down, also where the ROI is no longer larger than the kernel.
TEST_P(LayerDown, OneRecordServesAllLevels)
{
    for (const Lum32f rate : {2.0f, 1.4142135f, 5.0f}) {
        for (const int kernel : {0, 2, 5}) {
            LayerSetting setting = {.size = {61, 47}, .rate = rate, .kernel = kKernels[kernel], .recordSize = {61, 47}};
            const LayerRecord record(GetParam(), Way::Down, setting);
            for (const LumiSize size : levelSizes(setting.size, rate)) {
                setting.size = size;
                ++setting.number;
                expectLayer(GetParam(), Way::Down, setting, record);
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

// Sizes that are no level of the record's, in any order: nothing is left from call to call.
TEST_P(LayerDown, OneRecordServesEverySmallerRoi)
{
    for (const Lum32f rate : {2.0f, 1.7f}) {
        for (const int kernel : {0, 4, 6}) {
            LayerSetting setting = {.size = {50, 40}, .rate = rate, .kernel = kKernels[kernel], .recordSize = {50, 40}};
            const LayerRecord record(GetParam(), Way::Down, setting);
            for (const LumiSize size :
                 {LumiSize{50, 40}, LumiSize{3, 40}, LumiSize{49, 39}, LumiSize{50, 2}, LumiSize{10, 11},
                  LumiSize{1, 1}, LumiSize{33, 40}, LumiSize{50, 40}, LumiSize{4, 3}, LumiSize{25, 20}}) {
                setting.size = size;
                ++setting.number;
                expectLayer(GetParam(), Way::Down, setting, record);
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

// A record whose own ROI is small has no table of levels and serves smaller ROIs all the same.
TEST_P(LayerDown, ARecordOfASmallRoiServesSmallerOnes)
{
    for (const LumiSize own : {LumiSize{5, 30}, LumiSize{30, 5}, LumiSize{4, 4}}) {
        LayerSetting setting = {.size = own, .recordSize = own, .number = 8};
        const LayerRecord record(GetParam(), Way::Down, setting);
        for (const LumiSize less : {LumiSize{0, 0}, LumiSize{1, 1}, LumiSize{3, 3}, LumiSize{0, 2}, LumiSize{2, 0}}) {
            setting.size = {own.width - less.width, own.height - less.height};
            ++setting.number;
            expectLayer(GetParam(), Way::Down, setting, record);
            ASSERT_FALSE(HasFailure());
        }
    }
}

TEST_P(LayerDown, AnyRecordServesAnyRoiWithinItsOwn)
{
    Random random(9);
    for (int number = 0; number < 60; ++number) {
        LayerSetting setting = {.rate = number % 2 == 0 ? 2.0f : kLayerRates[number % 11],
                                .kernel = drawKernel(3 + 2 * static_cast<int>(random.between(0, 9)), random)};
        setting.recordSize = {static_cast<int>(random.between(1, 60)), static_cast<int>(random.between(1, 40))};
        const LayerRecord record(GetParam(), Way::Down, setting);
        for (int i = 0; i < 4; ++i) {
            setting.number = number * 4 + i;
            setting.size = {static_cast<int>(random.between(1, setting.recordSize.width)),
                            static_cast<int>(random.between(1, setting.recordSize.height))};
            expectLayer(GetParam(), Way::Down, setting, record);
            ASSERT_FALSE(HasFailure());
        }
    }
}

// At the end of the levels a pixel goes to a pixel.
TEST_P(LayerDownQuick, TheLastLevelGoesDownToItself)
{
    LayerSetting setting = {.size = {20, 20}, .recordSize = {20, 20}, .number = 9};
    const LayerRecord record(GetParam(), Way::Down, setting);
    setting.size = {1, 1};
    expectLayer(GetParam(), Way::Down, setting, record);
    expectDown({.size = {1, 1}, .number = 10});
}

// At a rate a little below 2 the last destination pixels of a wide image lie beyond its end by several pixels.
TEST_P(LayerDown, LessThanTwiceAsWide)
{
    if (GetParam().channels != 1) {
        return;  // a wide image is slow work for the reference
    }
    const Lum32f rate = 1.99999f;
    ASSERT_EQ(downSide(120'000, rate), 60'001);
    expectDown({.size = {120'000, 4}, .rate = rate, .kernel = kKernels[2], .number = 12});
    // beyond by more than one
    ASSERT_EQ(downSide(450'000, rate), 225'002);
    expectDown({.size = {450'000, 1}, .rate = rate, .kernel = kKernels[2], .number = 13});
}

TEST_P(LayerDown, LargerThanTheCaches)
{
    const ReportedCacheSize reported(lumOk, 1);
    int number = 11;
    for (const Lum32f rate : {2.0f, 1.5f}) {
        for (const int kernel : {0, 2, 5}) {
            expectDown({.size = {150, 60}, .rate = rate, .kernel = kKernels[kernel], .number = number++});
        }
    }
}

}  // namespace
}  // namespace lumcv::test::pyramid
