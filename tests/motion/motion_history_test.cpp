// The motion history compared with its formula; its edge cases, its memory and its checks.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <thread>
#include <type_traits>
#include <vector>

#include "lumcv/lumcv.h"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"
#include "support/placed_block.hpp"
#include "support/status_order.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::motion {
namespace {

constexpr Lum32f kInfinity = std::numeric_limits<Lum32f>::infinity();
constexpr Lum32f kNotANumber = std::numeric_limits<Lum32f>::quiet_NaN();

LumStatus updateHistory(const Lum8u* silhouette, Lum32s step, Lum32f* history, Lum32s historyStep, LumiSize size,
                        Lum32f timestamp, Lum32f duration)
{
    return lumiUpdateMotionHistory_8u32f_C1IR(silhouette, step, history, historyStep, size, timestamp, duration);
}
LumStatus updateHistory(const Lum16u* silhouette, Lum32s step, Lum32f* history, Lum32s historyStep, LumiSize size,
                        Lum32f timestamp, Lum32f duration)
{
    return lumiUpdateMotionHistory_16u32f_C1IR(silhouette, step, history, historyStep, size, timestamp, duration);
}
LumStatus updateHistory(const Lum32f* silhouette, Lum32s step, Lum32f* history, Lum32s historyStep, LumiSize size,
                        Lum32f timestamp, Lum32f duration)
{
    return lumiUpdateMotionHistory_32f_C1IR(silhouette, step, history, historyStep, size, timestamp, duration);
}

struct Time
{
    Lum32f timestamp;
    Lum32f duration;
};

constexpr Time kTimes[] = {{100.25f, 7.5f},
                           {0, 0},
                           {-3.5f, 2},
                           {50, 1e30f},
                           {1e-40f, 0},
                           {3, 3},
                           {-0.0f, 0},
                           {kInfinity, 5},
                           {20, kInfinity},
                           {16777216, 0.5f},
                           {-kInfinity, 1},
                           {7, -0.0f},
                           {kInfinity, kInfinity},
                           {kNotANumber, 2},
                           {9, kNotANumber}};
constexpr int kTimeCount = 15;

template <class T>
Lum32f expectedStamp(T silhouette, Lum32f stamp, Time time)
{
    const Lum32f limit = time.timestamp - time.duration;
    return silhouette != 0 ? time.timestamp : stamp < limit ? 0.0f : stamp;
}

/// Whether two floats are the same bits, those of not-a-numbers included.
bool sameBits(Lum32f a, Lum32f b)
{
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

template <class T>
T drawSilhouette(Random& random)
{
    // any bit may be the only one that is set
    const int bits = 8 * static_cast<int>(sizeof(T));
    switch (random.between(0, 5)) {
        case 0:
            if constexpr (std::is_same_v<T, Lum32f>) {
                return random.value<Lum32f>(Values::NonFinite);
            } else {
                return static_cast<T>(1u << random.between(0, bits - 1));
            }
        case 1:
            if constexpr (std::is_same_v<T, Lum32f>) {
                return random.oneIn(2) ? -0.0f : std::numeric_limits<Lum32f>::denorm_min();
            } else {
                return static_cast<T>(random.bits());
            }
        case 2:
            return T{1};
        default:
            return T{0};
    }
}

Lum32f drawStamp(Random& random, Time time)
{
    const Lum32f limit = time.timestamp - time.duration;
    switch (random.between(0, 9)) {
        case 0:
            return limit;
        case 1:
            return std::nextafter(limit, kInfinity);
        case 2:
            return std::nextafter(limit, -kInfinity);
        case 3:
            return random.oneIn(2) ? 0.0f : -0.0f;
        case 4:
            return random.value<Lum32f>(Values::NonFinite);
        case 5:
            return std::bit_cast<Lum32f>(static_cast<std::uint32_t>(random.bits()));
        case 6:
            return -limit;
        default:
            return limit + (random.unit<Lum32f>() * 20 - 10);
    }
}

using Types = testing::Types<Lum8u, Lum16u, Lum32f>;
TYPE_SUITE(MotionHistory, Types);
TYPE_SUITE(MotionHistoryQuick, Types);

template <class T>
void expectGeometry(const Geometry& geometry, int times)
{
    Image<T> silhouette(geometry.layout<T>(0));
    Image<Lum32f> history(geometry.layout<Lum32f>(1));
    for (int i = 0; i < times; ++i) {
        const int number = geometry.number * times + i;
        const Time time = kTimes[number % kTimeCount];
        Random random(static_cast<std::uint64_t>(number));
        silhouette.forEach(Area::Roi, [&](T& element, int, int, int) { element = drawSilhouette<T>(random); });
        history.forEach(Area::Roi, [&](Lum32f& stamp, int, int, int) { stamp = drawStamp(random, time); });
        const Image<Lum32f> before = history;
        ASSERT_EQ(updateHistory(silhouette.pixels(), silhouette.step(), history.pixels(), history.step(),
                                {geometry.width, geometry.height}, time.timestamp, time.duration),
                  lumOk);
        history.forEach(Area::Roi, [&](Lum32f& stamp, int x, int y, int) {
            const Lum32f expected = expectedStamp(silhouette.at(x, y), before.at(x, y), time);
            ASSERT_TRUE(sameBits(stamp, expected))
                << "pixel x " << x << ", y " << y << ": got " << elementText(stamp) << ", expected "
                << elementText(expected) << ", silhouette " << elementText(silhouette.at(x, y)) << ", before "
                << elementText(before.at(x, y)) << ", time " << time.timestamp << ", duration " << time.duration;
        });
        EXPECT_TRUE(history.gapsIntact());
        EXPECT_TRUE(silhouette.gapsIntact());
    }
}

TYPE_TEST(MotionHistoryQuick, Sizes)
{
    forEachGeometry(Sweep::Quick, [](const Geometry& geometry) { expectGeometry<TypeParam>(geometry, 5); });
}

TYPE_TEST(MotionHistory, Sizes)
{
    forEachGeometry(Sweep::Full, [](const Geometry& geometry) { expectGeometry<TypeParam>(geometry, 3); });
}

TYPE_TEST(MotionHistory, LargerThanTheCache)
{
    for (const int cacheBytes : {0, 1024}) {
        const ReportedCacheSize reported(0, cacheBytes);
        Geometry geometry;
        geometry.height = 23;
        for (const int width : {300, 301, 512}) {
            geometry.width = width;
            geometry.placement = ++geometry.number % 3;
            expectGeometry<TypeParam>(geometry, 3);
        }
    }
}

// A history at any byte address, against a page at either end; the floats are copied in and out byte by byte.
TYPE_TEST(MotionHistory, HistoryAtAnyAddress)
{
    const Time time = {100.25f, 7.5f};
    for (const int width : {1, 2, 3, 4, 7, 8, 9, 15, 16, 17, 31, 32, 33, 40, 63, 64, 65, 130}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (std::size_t distance = 0; distance < 36; distance += distance < 8 ? 1 : 7) {
                Random random(static_cast<std::uint64_t>(width) * 100 + distance);
                constexpr int height = 3;
                Layout layout;
                layout.width = width;
                layout.height = height;
                layout.guard = guard;
                Image<TypeParam> silhouette(layout);
                silhouette.forEach(
                    Area::Roi, [&](TypeParam& element, int, int, int) { element = drawSilhouette<TypeParam>(random); });
                const auto count = static_cast<std::size_t>(width);
                const std::size_t step = 4 * count + 4 * (distance % 3);
                const PlacedBlock block(step * (height - 1) + 4 * count, guard, distance);
                std::vector<Lum8u> expected(block.data(), block.data() + block.size());
                const auto forEachStamp = [&](auto f) {
                    for (std::size_t y = 0; y < height; ++y) {
                        for (std::size_t x = 0; x < count; ++x) {
                            f(silhouette.at(static_cast<int>(x), static_cast<int>(y)), y * step + 4 * x);
                        }
                    }
                };
                forEachStamp([&](TypeParam element, std::size_t offset) {
                    const Lum32f stamp = drawStamp(random, time);
                    std::memcpy(block.data() + offset, &stamp, 4);
                    const Lum32f after = expectedStamp(element, stamp, time);
                    std::memcpy(expected.data() + offset, &after, 4);
                });
                ASSERT_EQ(updateHistory(silhouette.pixels(), silhouette.step(), reinterpret_cast<Lum32f*>(block.data()),
                                        static_cast<Lum32s>(step), {width, height}, time.timestamp, time.duration),
                          lumOk);
                ASSERT_TRUE(sameElements(expected.data(), block.data(), block.size()))
                    << "width " << width << ", distance " << distance;
                ASSERT_TRUE(block.intact());
            }
        }
    }
}

TYPE_TEST(MotionHistory, RowsAlone)
{
    const Time time = {-1.5f, 3};
    for (const int width : {1, 2, 3, 5, 7, 8, 9, 15, 16, 17, 24, 31, 32, 33, 63, 64, 65, 100, 129}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            Layout layout;
            layout.width = width;
            layout.height = 3;
            layout.guard = guard;
            Random random(static_cast<std::uint64_t>(width));
            IsolatedRows<TypeParam> silhouette(layout);
            IsolatedRows<Lum32f> history(layout);
            Image<Lum32f> expected(layout);
            silhouette.forEach([&](TypeParam& element, int, int, int) { element = drawSilhouette<TypeParam>(random); });
            silhouette.makeReadOnly();
            history.forEach([&](Lum32f& stamp, int x, int y, int) {
                stamp = drawStamp(random, time);
                expected.at(x, y) = expectedStamp(silhouette.at(x, y), stamp, time);
            });
            ASSERT_EQ(updateHistory(silhouette.pixels(), silhouette.step(), history.pixels(), history.step(),
                                    {width, 3}, time.timestamp, time.duration),
                      lumOk);
            for (int y = 0; y < 3; ++y) {
                ASSERT_TRUE(sameElements(expected.row(y), history.row(y), static_cast<std::size_t>(width))) << width;
            }
            EXPECT_TRUE(history.slackIntact());
        }
    }
}

/// The stamp of each of 33 pixels, so in whole vectors and in the rest of a row alike, after one call.
template <class T>
Lum32f after(T silhouetteValue, Lum32f stamp, Time time)
{
    std::vector<T> silhouette(33, silhouetteValue);
    std::vector<Lum32f> history(33, stamp);
    EXPECT_EQ(updateHistory(silhouette.data(), static_cast<Lum32s>(33 * sizeof(T)), history.data(), 33 * 4, {33, 1},
                            time.timestamp, time.duration),
              lumOk);
    for (const Lum32f other : history) {
        EXPECT_TRUE(sameBits(other, history[0])) << "whole vectors and the rest differ";
    }
    Lum32f alone = stamp;
    EXPECT_EQ(updateHistory(silhouette.data(), static_cast<Lum32s>(sizeof(T)), &alone, 4, {1, 1}, time.timestamp,
                            time.duration),
              lumOk);
    EXPECT_TRUE(sameBits(alone, history[0])) << "a pixel alone differs";
    return history[0];
}

TYPE_TEST(MotionHistoryQuick, AStampAtTheLimitSurvives)
{
    const TypeParam clear = 0;
    EXPECT_EQ(after(clear, 92.5f, {100, 7.5f}), 92.5f);
    EXPECT_EQ(after(clear, std::nextafter(92.5f, 0.0f), {100, 7.5f}), 0.0f);
    EXPECT_EQ(after(clear, std::nextafter(92.5f, 100.0f), {100, 7.5f}), std::nextafter(92.5f, 100.0f));
}

// The limit is rounded to single precision: 16777216 - 0.5 is 16777216 there.
TYPE_TEST(MotionHistoryQuick, TheLimitIsSinglePrecision)
{
    EXPECT_EQ(after(TypeParam{0}, 16777215, {16777216, 0.25f}), 0.0f);
    EXPECT_EQ(after(TypeParam{0}, 16777216, {16777216, 0.25f}), 16777216.0f);
}

TYPE_TEST(MotionHistoryQuick, DurationOfZeroErasesAllThatStands)
{
    EXPECT_EQ(after(TypeParam{0}, 99.75f, {100, 0}), 0.0f);
    EXPECT_EQ(after(TypeParam{0}, 100, {100, 0}), 100.0f);
    EXPECT_EQ(after(TypeParam{3}, 99.75f, {100, 0}), 100.0f);
}

TYPE_TEST(MotionHistoryQuick, TimeMayRunBackwards)
{
    EXPECT_EQ(after(TypeParam{1}, 100, {50, 10}), 50.0f);
    EXPECT_EQ(after(TypeParam{0}, 100, {50, 10}), 100.0f);
}

TYPE_TEST(MotionHistoryQuick, NegativeStamps)
{
    EXPECT_EQ(after(TypeParam{0}, -5, {-4, 2}), -5.0f);
    EXPECT_EQ(after(TypeParam{0}, -6, {-4, 2}), -6.0f);
    EXPECT_EQ(after(TypeParam{0}, -6.5f, {-4, 2}), 0.0f);
    EXPECT_EQ(after(TypeParam{0}, -1e-40f, {0, 0}), 0.0f);
    EXPECT_TRUE(sameBits(after(TypeParam{0}, 0, {-4, 2}), 0.0f));
    EXPECT_TRUE(sameBits(after(TypeParam{0}, -0.0f, {0, 0}), -0.0f));
    EXPECT_TRUE(sameBits(after(TypeParam{0}, -0.0f, {1, 0}), 0.0f));
}

TYPE_TEST(MotionHistoryQuick, StampsThatAreNotNumbersStay)
{
    for (const std::uint32_t bits : {0x7fc00000u, 0xffc00000u, 0x7f800001u, 0xff800001u, 0x7fffffffu, 0xffffffffu}) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(after(TypeParam{0}, std::bit_cast<Lum32f>(bits), {100, 7})), bits);
        EXPECT_EQ(after(TypeParam{1}, std::bit_cast<Lum32f>(bits), {100, 7}), 100.0f);
    }
    EXPECT_EQ(after(TypeParam{0}, kInfinity, {100, 7}), kInfinity);
    EXPECT_EQ(after(TypeParam{0}, -kInfinity, {100, 7}), 0.0f);
}

TEST(MotionHistoryFloatQuick, SilhouettesThatAreSet)
{
    EXPECT_EQ(after(-0.0f, 3, {100, 99}), 3.0f);
    EXPECT_EQ(after(std::numeric_limits<Lum32f>::denorm_min(), 3, {100, 99}), 100.0f);
    EXPECT_EQ(after(-std::numeric_limits<Lum32f>::denorm_min(), 3, {100, 99}), 100.0f);
    EXPECT_EQ(after(kNotANumber, 3, {100, 99}), 100.0f);
    EXPECT_EQ(after(-kInfinity, 3, {100, 99}), 100.0f);
}

TYPE_TEST(MotionHistory, ThreadsShareASilhouette)
{
    std::vector<TypeParam> silhouette(500);
    for (std::size_t i = 0; i < 500; ++i) {
        silhouette[i] = static_cast<TypeParam>(i % 3);
    }
    std::vector<Lum32f> histories[2] = {std::vector<Lum32f>(500, 5), std::vector<Lum32f>(500, 5)};
    std::vector<std::thread> threads;
    for (std::vector<Lum32f>& history : histories) {
        threads.emplace_back([&] {
            updateHistory(silhouette.data(), static_cast<Lum32s>(100 * sizeof(TypeParam)), history.data(), 400,
                          {100, 5}, 10, 5.5f);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(histories[0], histories[1]);
    EXPECT_EQ(histories[0][0], 5.0f);
    EXPECT_EQ(histories[0][1], 10.0f);
}

template <class T>
struct Args
{
    const Image<Lum32f>* history;
    const T* pSilhouette;
    Lum32s silhouetteStep;
    Lum32f* pMHI;
    Lum32s mhiStep;
    LumiSize roiSize;
    Lum32f duration;

    LumStatus call() const
    {
        return updateHistory(pSilhouette, silhouetteStep, pMHI, mhiStep, roiSize, 9, duration);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*history)};
    }
};

TYPE_TEST(MotionHistoryQuick, ChecksInOrder)
{
    using A = Args<TypeParam>;
    constexpr int size = static_cast<int>(sizeof(TypeParam));
    Layout layout;
    layout.width = 10;
    layout.height = 4;
    layout.gap = 8;
    Image<TypeParam> silhouette(layout);
    silhouette.forEach(Area::Roi, [](TypeParam& element, int x, int, int) { element = static_cast<TypeParam>(x); });
    Image<Lum32f> history(layout);
    history.forEach(Area::Roi, [](Lum32f& stamp, int x, int, int) { stamp = static_cast<Lum32f>(x); });
    std::vector<Violation<A>> table = {
        {"pSilhouette null", lumErrNullPointer, [](A& a) { a.pSilhouette = nullptr; }},
        {"pMHI null", lumErrNullPointer, [](A& a) { a.pMHI = nullptr; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -10; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -1; }},
        {"silhouetteStep below a row", lumErrStep, [](A& a) { a.silhouetteStep = 10 * size - 1; }},
        {"silhouetteStep 0", lumErrStep, [](A& a) { a.silhouetteStep = 0; }},
        {"silhouetteStep negative", lumErrStep, [](A& a) { a.silhouetteStep = -10 * size - 8; }},
        {"mhiStep below a row", lumErrStep, [](A& a) { a.mhiStep = 36; }},
        {"mhiStep below a row and odd", lumErrStep, [](A& a) { a.mhiStep = 39; }},
        {"mhiStep negative", lumErrStep, [](A& a) { a.mhiStep = -48; }},
        {"mhiStep misaligned by 1", lumErrStepAlignment, [](A& a) { a.mhiStep = 41; }},
        {"mhiStep misaligned by 2", lumErrStepAlignment, [](A& a) { a.mhiStep = 42; }},
        {"mhiStep misaligned by 3", lumErrStepAlignment, [](A& a) { a.mhiStep = 43; }},
    };
    if (size > 1) {
        table.emplace_back("silhouetteStep odd", lumErrStepAlignment, [](A& a) { a.silhouetteStep = 10 * size + 1; });
    }
    if (size == 4) {
        table.emplace_back("silhouetteStep even", lumErrStepAlignment, [](A& a) { a.silhouetteStep = 42; });
    }
    table.emplace_back("duration negative", lumErrOutOfRange, [](A& a) { a.duration = -1; });
    table.emplace_back("duration just negative", lumErrOutOfRange, [](A& a) { a.duration = -1e-45f; });
    table.emplace_back("duration of minus infinity", lumErrOutOfRange, [](A& a) { a.duration = -kInfinity; });
    expectStatusOrder(A{&history, silhouette.pixels(), silhouette.step(), history.pixels(), history.step(), {10, 4}, 2},
                      table);
}

}  // namespace
}  // namespace lumcv::test::motion
