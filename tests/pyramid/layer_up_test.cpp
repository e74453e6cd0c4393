// Layers up against the reference, bit for bit.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pyramid/layer_fixture.hpp"
#include "support/max_cache_size.hpp"

namespace lumcv::test::pyramid {
namespace {

class LayerUp : public testing::TestWithParam<LayerForm>
{
  public:
    void expectUp(const LayerSetting& setting)
    {
        expectLayer(GetParam(), Way::Up, setting);
    }
};
class LayerUpQuick : public LayerUp
{
};
INSTANTIATE_TEST_SUITE_P(Forms, LayerUp, testing::ValuesIn(kForms), formName);
INSTANTIATE_TEST_SUITE_P(Forms, LayerUpQuick, testing::ValuesIn(kForms), formName);

/// One of the sizes that may stand above the source.
LumiSize drawDestination(LumiSize size, Lum32f rate, int number)
{
    Random random(static_cast<std::uint64_t>(number));
    const auto side = [&](int s) {
        const Lum64s least = upMinimum(s, rate), most = upMaximum(s, rate);
        const int choice = static_cast<int>(random.between(0, 2));
        return static_cast<Lum32s>(choice == 0 ? least : choice == 1 ? most : random.between(least, most));
    };
    const int width = side(size.width);
    return {width, side(size.height)};
}

LayerSetting drawSetting(LumiSize size, Lum32f rate, const Kernel& kernel, int number)
{
    return {.size = size,
            .rate = rate,
            .kernel = kernel,
            .destination = drawDestination(size, rate, number),
            .number = number};
}

TEST_P(LayerUpQuick, SomeSizes)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{1, 1}, LumiSize{2, 3}, LumiSize{5, 1}, LumiSize{9, 4}, LumiSize{17, 6}}) {
        for (const Lum32f rate : {2.0f, 1.5f, 3.3333333f}) {
            for (const int kernel : {0, 1, 2, 5}) {
                expectUp(drawSetting(size, rate, kKernels[kernel], number++));
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

TEST_P(LayerUp, EveryWidth)
{
    std::vector<int> widths;
    for (int width = 1; width <= 70; ++width) {
        widths.push_back(width);
    }
    widths.insert(widths.end(), {95, 96, 97, 127, 128, 129, 130, 255, 256, 257, 258, 550});
    int number = 0;
    for (const int width : widths) {
        for (const int height : {1, 2, 4}) {
            expectUp(drawSetting({width, height}, 2, kKernels[0], number++));
        }
        expectUp(drawSetting({width, 3}, kLayerRates[number % 11], kKernels[width % kKernelCount], number));
        ++number;
        ASSERT_FALSE(HasFailure());
    }
}

TEST_P(LayerUp, EveryHeight)
{
    int number = 1;
    for (int height = 1; height <= 40; ++height) {
        for (const int width : {1, 2, 11}) {
            expectUp(drawSetting({width, height}, 2, kKernels[0], number++));
            expectUp(drawSetting({width, height}, kLayerRates[number % 11], kKernels[height % kKernelCount], number));
            ++number;
            ASSERT_FALSE(HasFailure());
        }
    }
    expectUp(drawSetting({5, 150}, 2, kKernels[0], number++));
    expectUp(drawSetting({5, 150}, 1.7f, kKernels[4], number++));
}

// All pairs of smallest and largest sides.
TEST_P(LayerUp, EveryRate)
{
    int number = 2;
    for (const Lum32f rate : kLayerRates) {
        for (const LumiSize size :
             {LumiSize{1, 9}, LumiSize{2, 4}, LumiSize{4, 2}, LumiSize{11, 1}, LumiSize{12, 11}, LumiSize{33, 6}}) {
            for (int corner = 0; corner < 4; ++corner) {
                LayerSetting setting =
                    drawSetting(size, rate, kKernels[corner == 0 ? 0 : number % kKernelCount], number);
                setting.destination.width =
                    static_cast<Lum32s>(corner % 2 == 0 ? upMinimum(size.width, rate) : upMaximum(size.width, rate));
                setting.destination.height =
                    static_cast<Lum32s>(corner / 2 == 0 ? upMinimum(size.height, rate) : upMaximum(size.height, rate));
                expectUp(setting);
                ++number;
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

TEST_P(LayerUp, RatesThatAreNearEnoughToTwo)
{
    int number = 15;
    for (const Lum32f rate : ratesAroundNearTwo()) {
        for (const int kernel : {0, 1}) {
            expectUp({.size = {21, 7}, .rate = rate, .kernel = kKernels[kernel], .number = number++});
        }
    }
}

// From kernels that meet no source pixel at most places to those that reach beyond the image.
TEST_P(LayerUp, EveryKernelSize)
{
    Random random(8);
    int number = 3;
    for (int size = 3; size <= 33; size += 2) {
        Kernel kernel(static_cast<std::size_t>(size));
        for (Lum32f& tap : kernel) {
            tap = static_cast<Lum32f>(random.between(1, 99));
        }
        kernel = mirrored(kernel);
        for (const LumiSize roi : {LumiSize{size, 2}, LumiSize{1, size}, LumiSize{21, 8}}) {
            for (const Lum32f rate : {2.0f, 1.6180339f, 7.3f}) {
                expectUp(drawSetting(roi, rate, kernel, number++));
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

// Lobes below zero make negative values, and values above the largest; a sum under the kernel may be 0.
TEST_P(LayerUp, KernelsWithNegativeTaps)
{
    int number = 4;
    for (const Kernel& kernel : {Kernel{-1, 4, -1}, Kernel{-1, 2, 6, 2, -1}, Kernel{-3, -2, 20, -2, -3},
                                 Kernel{-1, -2, -1}, Kernel{-7, 11, 3, 11, -7}, Kernel{-1, 1, 3, 1, -1}}) {
        for (const LumiSize size : {LumiSize{1, 5}, LumiSize{3, 3}, LumiSize{19, 7}}) {
            for (const Lum32f rate : {2.0f, 1.3f, 2.9f}) {
                LayerSetting setting = drawSetting(size, rate, kernel, number);
                setting.values = number % 2 == 0 ? Values::Ordinary : Values::Extreme;
                expectUp(setting);
                ++number;
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

// Taps whose sum is 0 stay what they are.
TEST_P(LayerUp, KernelsWithoutASum)
{
    int number = 5;
    for (const Kernel& kernel :
         {Kernel{-1, 2, -1}, Kernel{1, -2, 1}, Kernel{5, -10, 10, -10, 5}, Kernel{0, 0, 0}, Kernel{-100, 200, -100}}) {
        for (const LumiSize size : {LumiSize{2, 5}, LumiSize{19, 7}}) {
            for (const Lum32f rate : {2.0f, 1.3f, 6.0f}) {
                expectUp(drawSetting(size, rate, kernel, number++));
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

TEST_P(LayerUp, KernelsAtTheLimitsOfTheirType)
{
    int number = 14;
    for (const Kernel& kernel : kLargeKernels) {
        for (const LumiSize size : {LumiSize{1, 4}, LumiSize{19, 7}}) {
            for (const Lum32f rate : {2.0f, 1.3f, 2.9f}) {
                LayerSetting setting = drawSetting(size, rate, kernel, number);
                setting.values = number % 2 == 0 ? Values::Ordinary : Values::Extreme;
                expectUp(setting);
                ++number;
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

// The left half counts, mirrored, also in the choice of the dedicated kernels; Init says so.
TEST_P(LayerUp, KernelsThatAreNotSymmetric)
{
    int number = 6;
    for (const Kernel& kernel :
         {Kernel{1, 4, 6, 4, 2}, Kernel{1, 4, 6, 5, 1}, Kernel{3, 4, 0}, Kernel{0, 0, 6, 4, 1}}) {
        for (const LumiSize size : {LumiSize{2, 5}, LumiSize{19, 7}}) {
            for (const Lum32f rate : {2.0f, 1.3f}) {
                expectUp(drawSetting(size, rate, kernel, number++));
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

TEST_P(LayerUp, ExtremeValues)
{
    int number = 7;
    for (const Values values : {Values::Extreme, Values::NonFinite}) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{3, 2}, LumiSize{21, 8}, LumiSize{40, 5}}) {
            for (const Lum32f rate : {2.0f, 1.5f, 4.2f}) {
                for (const int kernel : {0, 1, 2, 5, 7}) {
                    LayerSetting setting = drawSetting(size, rate, kKernels[kernel], number++);
                    setting.values = values;
                    expectUp(setting);
                    ASSERT_FALSE(HasFailure());
                }
            }
        }
    }
}

// One record goes all the way up, from a pixel to its own size and in any order.
TEST_P(LayerUp, OneRecordServesEverySmallerRoi)
{
    for (const Lum32f rate : {2.0f, 1.7f, 5.0f}) {
        for (const int kernel : {0, 4, 6}) {
            const LumiSize largest = {33, 21};
            LayerSetting setting = {.size = largest, .rate = rate, .kernel = kKernels[kernel], .recordSize = largest};
            const LayerRecord record(GetParam(), Way::Up, setting);
            for (const LumiSize size : {LumiSize{1, 1}, LumiSize{33, 21}, LumiSize{3, 21}, LumiSize{32, 20},
                                        LumiSize{33, 1}, LumiSize{10, 11}, LumiSize{1, 2}, LumiSize{33, 21}}) {
                setting.size = size;
                setting.destination = drawDestination(size, rate, ++setting.number);
                expectLayer(GetParam(), Way::Up, setting, record);
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

TEST_P(LayerUp, AnyRecordServesAnyRoiWithinItsOwn)
{
    Random random(9);
    for (int number = 0; number < 40; ++number) {
        const Kernel& kernel = kKernels[random.between(0, kKernelCount - 1)];
        const Lum32f rate = number % 2 == 0 ? 2.0f : kLayerRates[number % 11];
        LayerSetting setting = {.rate = rate, .kernel = kernel};
        setting.recordSize = {static_cast<int>(random.between(1, 30)), static_cast<int>(random.between(1, 20))};
        const LayerRecord record(GetParam(), Way::Up, setting);
        for (int i = 0; i < 3; ++i) {
            setting.number = number * 3 + i;
            setting.size = {static_cast<int>(random.between(1, setting.recordSize.width)),
                            static_cast<int>(random.between(1, setting.recordSize.height))};
            setting.destination = drawDestination(setting.size, rate, setting.number);
            expectLayer(GetParam(), Way::Up, setting, record);
            ASSERT_FALSE(HasFailure());
        }
    }
}

// The dedicated kernels serve rates a little above 2 as well, whose levels may be larger than twice the source.
TEST_P(LayerUp, MoreThanTwiceAsWide)
{
    if (GetParam().channels != 1) {
        return;  // a wide image is slow work for the reference
    }
    const Lum32f rate = 2.00001f;
    ASSERT_EQ(upMaximum(130'000, rate), 260'001);
    for (const int kernel : {0, 1}) {
        expectUp({.size = {130'000, 1}, .rate = rate, .kernel = kKernels[kernel], .number = 8});
    }
}

TEST_P(LayerUp, LargerThanTheCaches)
{
    const ReportedCacheSize reported(lumOk, 1);
    int number = 11;
    for (const Lum32f rate : {2.0f, 1.5f}) {
        for (const int kernel : {0, 2, 5}) {
            expectUp(drawSetting({90, 40}, rate, kKernels[kernel], number++));
        }
    }
}

}  // namespace
}  // namespace lumcv::test::pyramid
