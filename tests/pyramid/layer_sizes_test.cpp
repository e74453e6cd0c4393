// The sizes of layer records and of their scratch, written out again, and their limits.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>

#include "pyramid/layer_forms.hpp"
#include "pyramid/layer_geometry.hpp"

namespace lumcv::test::pyramid {
namespace {

constexpr Lum64s kIntMax = std::numeric_limits<Lum32s>::max();
constexpr Lum64s kTooLarge = kIntMax + 1;

class LayerSizesQuick : public testing::TestWithParam<LayerForm>
{
  public:
    struct Answer
    {
        LumStatus status;
        Lum64s state = -3;
        Lum64s buffer = -4;
    };
    static Answer ask(const LayerFunctions& functions, LumiSizeL size, int k, Lum32f rate)
    {
        Answer answer = {};
        answer.status = functions.query(
            {.srcRoi = size, .rate = rate, .kernelSize = k, .pStateSize = &answer.state, .pBufSize = &answer.buffer});
        return answer;
    }
};
INSTANTIATE_TEST_SUITE_P(Forms, LayerSizesQuick, testing::ValuesIn(kForms), formName);

/// Of 8-bit pixels in one channel.
Lum64s downBytesOfBytes(Lum64s W, Lum64s H, Lum64s k, int levels)
{
    if (W <= k || H <= k) {
        const Lum64s A = (W + 7) & ~Lum64s{7};
        return ((k * 3 & ~Lum64s{1}) + A * 4 + 72) * k + k * 2 + (std::max(A, H) + (A + k) * (H + k)) * 4 + 272;
    }
    const Lum64s w2 = std::max(2 * k, W), h2 = std::max(2 * k, H);
    return (k >> 1) * 96 + ((k + (k >> 1)) * 2 + ((w2 + 3) >> 2 << 4) + 176) * k + ((w2 + 7) >> 3) * h2 * 16 +
           std::max((w2 + 3) & ~Lum64s{3}, h2) * 4 + 408 + 8 * levels;
}

/// Of all forms: t bytes of a tap, e of a smoothed sample, C channels.
Lum64s downBytes(const LayerForm& form, Lum64s W, Lum64s H, Lum64s k, int levels)
{
    const Lum64s t = form.type == lumType32f ? 4 : 2;
    const Lum64s e = form.type == lumType8u ? 2 : 4;
    const Lum64s C = form.channels;
    if (W <= k || H <= k) {
        const Lum64s A = (W * C + 7) / 8 * 8;
        return (3 * k / 2 * 2 * (t / 2) + 4 * A + 72) * k + k * t + (std::max(A, H) + (A + k * C) * (H + k)) * 4 + 272;
    }
    const Lum64s w = std::max(2 * k, W) * C, h = std::max(2 * k, H);
    return k / 2 * 96 + ((k + k / 2) * t + (w + 3) / 4 * 16 + 176) * k + (w + 7) / 8 * h * 8 * e +
           std::max((w + 3) / 4 * 4, h) * 4 + 408 + 8 * levels;
}

Lum64s upBytes(const LayerForm& form, Lum64s W, Lum64s H, Lum64s k, Lum32f rate)
{
    const auto reach = static_cast<Lum64s>(static_cast<Lum64f>(k / 2) / static_cast<Lum64f>(rate) + 0.5);
    const Lum64s n = 2 * reach + 2;
    const Lum64s C = form.channels;
    const Lum64s Wu = upMaximum(W, rate), Hu = upMaximum(H, rate);
    return 512 + 4 * k + std::max(Wu, Hu) * (4 * n + 8) + (n + 1) * (4 * C * Wu + 32) + 4 * C * (W + 2 * n);
}

TEST_P(LayerSizesQuick, SizesAsDocumented)
{
    const LayerForm& form = GetParam();
    for (const int k : {3, 5, 7, 9, 31, 101}) {
        for (const Lum32f rate : {2.0f, 1.4f, 10.0f}) {
            for (const LumiSize size :
                 {LumiSize{1, 1}, LumiSize{k, 77}, LumiSize{77, k}, LumiSize{k + 1, k + 1}, LumiSize{k, k},
                  LumiSize{2 * k - 1, 3 * k}, LumiSize{2 * k, 2 * k}, LumiSize{2 * k + 1, k + 2}, LumiSize{641, 479},
                  LumiSize{5, 600}, LumiSize{600, 5}, LumiSize{1920, 1080}}) {
                SCOPED_TRACE(testing::Message()
                             << size.width << " x " << size.height << ", kernel size " << k << ", rate " << rate);
                const bool isSmall = size.width <= k || size.height <= k;
                const Answer down = ask(form.down, {size.width, size.height}, k, rate);
                EXPECT_EQ(down.status, lumOk);
                EXPECT_EQ(down.state, downBytes(form, size.width, size.height, k, levelCount(size, rate)));
                // the count of the scratch is left alone where none is needed
                EXPECT_EQ(down.buffer, isSmall ? -4 : std::max(size.width, size.height) * 8);
                if (form.pixelBytes() == 1) {
                    EXPECT_EQ(down.state, downBytesOfBytes(size.width, size.height, k, levelCount(size, rate)));
                }
                const Answer up = ask(form.up, {size.width, size.height}, k, rate);
                EXPECT_EQ(up.status, lumOk);
                EXPECT_EQ(up.state, upBytes(form, size.width, size.height, k, rate));
            }
        }
    }
}

/// The largest height whose record has at most 2147483647 bytes.
template <class Bytes>
Lum64s largestHeight(Bytes bytes)
{
    Lum64s fits = 8, exceeds = kIntMax / 16;
    while (exceeds - fits > 1) {
        const Lum64s middle = (fits + exceeds) / 2;
        (bytes(middle) <= kIntMax ? fits : exceeds) = middle;
    }
    return fits;
}

// One row more, and the size has no place in 32 bits; the 64-bit entry points go on.
TEST_P(LayerSizesQuick, LargestRecords)
{
    const LayerForm& form = GetParam();
    for (const int width : {4, 20000}) {
        const auto downBytesOf = [&](Lum64s height) {
            return downBytes(form, width, height, 5, levelCount({width, static_cast<Lum32s>(height)}, 2));
        };
        const auto upBytesOf = [&](Lum64s height) { return upBytes(form, width, height, 5, 2); };
        const auto expectLimit = [&](const LayerFunctions& functions, Lum64s height, auto bytesOf) {
            const Answer fits = ask(functions, {width, height}, 5, 2);
            EXPECT_EQ(fits.status, lumOk) << "height " << height;
            EXPECT_EQ(fits.state, bytesOf(height));
            const Answer exceeds = ask(functions, {width, height + 1}, 5, 2);
            EXPECT_EQ(exceeds.status, form.isWide ? lumOk : lumErrSizeTooLarge) << "height " << height + 1;
            EXPECT_EQ(exceeds.state, form.isWide ? bytesOf(height + 1) : -3);
            if (!form.isWide) {
                EXPECT_EQ(exceeds.buffer, -4);
            }
        };
        expectLimit(form.down, largestHeight(downBytesOf), downBytesOf);
        expectLimit(form.up, largestHeight(upBytesOf), upBytesOf);
    }
}

// A kernel may be as large as its type allows; its record may not.
TEST_P(LayerSizesQuick, LargestKernels)
{
    const LayerForm& form = GetParam();
    const Answer down = ask(form.down, {1, 1}, static_cast<int>(kIntMax), 2);
    EXPECT_EQ(down.status, lumErrSizeTooLarge);
    EXPECT_EQ(down.state, -3);
    const Answer up = ask(form.up, {1, 1}, static_cast<int>(kIntMax), 2);
    EXPECT_EQ(up.status, form.isWide ? lumOk : lumErrSizeTooLarge);
    EXPECT_EQ(up.state, form.isWide ? upBytes(form, 1, 1, kIntMax, 2) : -3);
    const Answer both = ask(form.down, {kIntMax, kIntMax}, static_cast<int>(kIntMax), 2);
    EXPECT_EQ(both.status, lumErrSizeTooLarge);
    EXPECT_EQ(both.buffer, -4);
}

// Sides beyond 31 bits are judged after those below 1 and before the rate; sizes beyond 63 bits last.
TEST(LayerSizesOfWideForms, SidesAndSizesTooLarge)
{
    const LayerForm& form = kForms[6];
    ASSERT_TRUE(form.isWide);
    for (const LayerFunctions& functions : {form.down, form.up}) {
        const auto statusOf = [&](LumiSizeL size, Lum32f rate) {
            return LayerSizesQuick::ask(functions, size, 5, rate).status;
        };
        EXPECT_EQ(statusOf({kTooLarge, 10}, 2), lumErrSizeTooLarge);
        EXPECT_EQ(statusOf({10, kTooLarge}, 2), lumErrSizeTooLarge);
        EXPECT_EQ(statusOf({std::numeric_limits<Lum64s>::max(), 10}, 2), lumErrSizeTooLarge);
        EXPECT_EQ(statusOf({kTooLarge, 10}, 1), lumErrSizeTooLarge);
        EXPECT_EQ(statusOf({kTooLarge, 0}, 2), lumErrSize);
        EXPECT_EQ(functions.query({.srcRoi = {kTooLarge, 10}}), lumErrSizeTooLarge);
    }
    const LayerSizesQuick::Answer fits = LayerSizesQuick::ask(form.down, {1 << 29, kIntMax}, 5, 2);
    EXPECT_EQ(fits.status, lumOk);
    EXPECT_EQ(fits.state, downBytes(form, 1 << 29, kIntMax, 5, levelCount({1 << 29, static_cast<int>(kIntMax)}, 2)));
    EXPECT_EQ(fits.buffer, kIntMax * 8);
    EXPECT_EQ(LayerSizesQuick::ask(form.down, {kIntMax, kIntMax}, 5, 2).status, lumErrSizeTooLarge);
    const LayerSizesQuick::Answer up = LayerSizesQuick::ask(form.up, {kIntMax, kIntMax}, 5, 10);
    EXPECT_EQ(up.status, lumOk);
    EXPECT_EQ(up.state, upBytes(form, kIntMax, kIntMax, 5, 10));
}

}  // namespace
}  // namespace lumcv::test::pyramid
