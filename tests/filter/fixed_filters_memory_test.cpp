// What the fixed filters touch: rows between unreadable pages, scratch at every address, rows at every alignment; and
// the branch for images beyond the size of the cache.
#include <array>
#include <cstring>
#include <limits>
#include <thread>

#include "filter/fixed_filters_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::fixed_filters {
namespace {

TYPE_SUITE(FixedFiltersMemory, AllCases, CaseName);

TYPE_SUITE(FixedFiltersMemoryQuick, AllCases, CaseName);

TYPE_SUITE(FixedFiltersLarge, AllCases, CaseName);

// Every row of source and destination alone between unreadable pages, the source read-only.
template <class C>
void expectRowsRespected(const FilterSetting& setting, LumiMaskSize mask)
{
    using S = typename C::Source;
    using D = typename C::Destination;
    SCOPED_TRACE(setting);
    SCOPED_TRACE(mask);
    IsolatedRows<S> source(setting.layout<S>(promisedMargins(setting.border, maskReach(mask))));
    Random random(static_cast<std::uint64_t>(setting.seed));
    source.forEach([&](S& element, int, int, int) { element = random.value<S>(setting.values); });
    source.makeReadOnly();
    const S borderValue = drawBorderValue<C>(setting);
    const Image<D> expected = reference<C>(setting, mask, source, borderValue);

    const PlacedBlock scratch = makeScratch<C>(setting.size.width, mask);
    IsolatedRows<D> destination(setting.layout<D>());
    ASSERT_EQ(C::apply(source.pixels(), source.step(), destination.pixels(), destination.step(), setting.size, mask,
                       setting.border, borderValue, scratch.data()),
              lumOk);
    Image<D> actual(setting.layout<D>());
    actual.forEach(Area::Roi, [&](D& element, int x, int y, int) { element = destination.at(x, y); });
    EXPECT_TRUE(sameImage(expected, actual));
    EXPECT_TRUE(destination.slackIntact());
    EXPECT_TRUE(scratch.intact());
}

template <class C>
void sweepIsolatedRows(const std::vector<int>& widths)
{
    int number = 0;
    for (const LumiMaskSize mask : kMasks) {
        for (const int width : widths) {
            for (const LumiBorderType border :
                 {lumBorderReplicate + 0, lumBorderMirror + 0, lumBorderConstant + 0, lumBorderInMem + 0,
                  lumBorderReplicate | lumBorderInMemLeft, lumBorderReplicate | lumBorderInMemBottom,
                  lumBorderConstant | lumBorderInMemLeft | lumBorderInMemTop,
                  lumBorderMirror | lumBorderInMemRight | lumBorderInMemBottom}) {
                FilterSetting setting;
                setting.size = {width, 1 + number % 7};
                setting.border = border;
                setting.seed = number;
                setting.guard = number / 2 % 2 == 0 ? Guard::After : Guard::Before;
                expectRowsRespected<C>(setting, mask);
                ++number;
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
            ++number;
        }
    }
}

TYPE_TEST(FixedFiltersMemory, RowsBetweenUnreadablePages)
{
    sweepIsolatedRows<TypeParam>({1,  2,  3,  4,  5,  7,  8,  9,   15,  16,  17,  18,  19,  31,  32,
                                  33, 34, 47, 49, 63, 64, 65, 100, 127, 128, 129, 130, 200, 255, 257});
}

TYPE_TEST(FixedFiltersMemoryQuick, RowsBetweenUnreadablePages)
{
    sweepIsolatedRows<TypeParam>({1, 10, 33, 70});
}

// Scratch of exactly the queried size at every byte address.
TYPE_TEST(FixedFiltersMemory, ScratchStandsAnywhere)
{
    int number = 0;
    for (const LumiMaskSize mask : kMasks) {
        for (std::size_t distance = 0; distance < 128; ++distance) {
            for (const Guard guard : {Guard::After, Guard::Before}) {
                FilterSetting setting;
                setting.size = {1 + number % 67, 1 + number % 11};
                setting.border = number % 3 == 0 ? lumBorderMirror : lumBorderConstant;
                setting.guard = guard;
                setting.distance = distance;
                setting.seed = number++;
                expectFiltered<TypeParam>(setting, mask);
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

// The scratch of every width: the pitches of its rows step at other widths than its other parts.
TYPE_TEST(FixedFiltersMemory, ScratchOfEveryWidth)
{
    for (const LumiMaskSize mask : kMasks) {
        for (int width = 1; width <= 200; ++width) {
            FilterSetting setting;
            setting.size = {width, 6};
            setting.border = lumBorderMirror;
            setting.distance = static_cast<std::size_t>(width) % 64;
            setting.guard = width % 2 == 0 ? Guard::After : Guard::Before;
            setting.seed = width;
            expectFiltered<TypeParam>(setting, mask);
            if (testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

// Source and destination rows at every alignment: rows of odd length follow each other without a gap.
TYPE_TEST(FixedFiltersMemory, RowsStandAnywhere)
{
    int number = 0;
    for (const LumiMaskSize mask : kMasks) {
        for (int offset = 0; offset < 64; ++offset) {
            FilterSetting setting;
            setting.size = {67, 5};
            setting.guard = offset % 2 == 0 ? Guard::Before : Guard::After;
            setting.offset = offset;
            setting.seed = number++;
            expectFiltered<TypeParam>(setting, mask);
        }
    }
}

// A source and scratch made once, and calls on them.
template <class C>
struct Bench
{
    using S = typename C::Source;
    using D = typename C::Destination;

    Bench(const FilterSetting& asked, LumiMaskSize itsMask)
        : setting(asked),
          mask(itsMask),
          source(asked.layout<S>(promisedMargins(asked.border, maskReach(itsMask)))),
          scratch(makeScratch<C>(asked.size.width, itsMask))
    {
        Random random(static_cast<std::uint64_t>(asked.seed));
        fill(source, random, Values::Ordinary, Area::WithMargins);
    }
    LumStatus call(const PlacedBlock& itsScratch, Image<D>& destination, LumiSize size) const
    {
        return C::apply(source.pixels(), source.step(), destination.pixels(), destination.step(), size, mask,
                        setting.border, kBorderValue, itsScratch.data());
    }
    Image<D> expected(LumiSize size) const
    {
        FilterSetting smaller = setting;
        smaller.size = size;
        return reference<C>(smaller, mask, source, kBorderValue);
    }

    static constexpr S kBorderValue = 19;
    FilterSetting setting;
    LumiMaskSize mask;
    Image<S> source;
    PlacedBlock scratch;
};

TYPE_TEST(FixedFiltersMemoryQuick, ScratchHoldsNothingAndServesSmallerImages)
{
    using D = typename TypeParam::Destination;
    for (const LumiMaskSize mask : kMasks) {
        FilterSetting setting;
        setting.size = {41, 13};
        setting.border = lumBorderConstant;
        const Bench<TypeParam> bench(setting, mask);
        for (const int byte : {0x00, 0xff, 0x7f, 0x80, 0x01}) {
            for (const LumiSize size : {LumiSize{41, 13}, LumiSize{41, 13}, LumiSize{1, 1}, LumiSize{17, 2}}) {
                FilterSetting smaller = setting;
                smaller.size = size;
                Image<D> destination(smaller.layout<D>());
                std::memset(bench.scratch.data(), byte, bench.scratch.size());
                ASSERT_EQ(bench.call(bench.scratch, destination, size), lumOk);
                EXPECT_TRUE(sameImage(bench.expected(size), destination)) << "scratch of bytes " << byte;
                EXPECT_TRUE(bench.scratch.intact());
            }
        }
    }
}

// What the destination held before does not count, also where it is read between two passes.
TYPE_TEST(FixedFiltersMemoryQuick, DestinationIsOnlyWritten)
{
    using D = typename TypeParam::Destination;
    for (const LumiMaskSize mask : kMasks) {
        FilterSetting setting;
        setting.size = {41, 13};
        const Bench<TypeParam> bench(setting, mask);
        const Image<D> expected = bench.expected({41, 13});
        for (const int byte : {0x00, 0xff, 0x7f, 0x80}) {
            Image<D> destination(setting.layout<D>());
            destination.forEach(Area::Roi, [&](D& element, int, int, int) { std::memset(&element, byte, sizeof(D)); });
            ASSERT_EQ(bench.call(bench.scratch, destination, {41, 13}), lumOk);
            EXPECT_TRUE(sameImage(expected, destination)) << "destination of bytes " << byte;
        }
    }
}

TYPE_TEST(FixedFiltersMemoryQuick, ThreadsFilterOneSource)
{
    using D = typename TypeParam::Destination;
    for (const LumiMaskSize mask : kMasks) {
        FilterSetting setting;
        setting.size = {61, 23};
        setting.border = lumBorderMirror;
        const Bench<TypeParam> bench(setting, mask);
        std::array<LumStatus, 3> statuses{};
        std::vector<Image<D>> destinations(3, Image<D>(setting.layout<D>()));
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < 3; ++i) {
            threads.emplace_back([&, i] {
                const PlacedBlock scratch = makeScratch<TypeParam>(61, mask);
                for (int repetition = 0; repetition < 5; ++repetition) {
                    statuses[i] = bench.call(scratch, destinations[i], {61, 23});
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(statuses[i], lumOk);
            EXPECT_TRUE(sameImage(bench.expected({61, 23}), destinations[i]));
        }
    }
}

// Whatever the cache is said to hold, the pixels are the same: reports around the limits, which are half (8u) and an
// eighth (32f) as many pixels as there are bytes; nonsense; and failures with a number that must not be trusted.
struct Report
{
    int status;
    int bytes;
};

template <class C>
void expectSameAtEveryReport(const FilterSetting& setting, LumiMaskSize mask, const std::vector<Report>& reports)
{
    using D = typename C::Destination;
    SCOPED_TRACE(setting);
    SCOPED_TRACE(mask);
    const Bench<C> bench(setting, mask);
    const Image<D> expected = bench.expected(setting.size);
    for (const Report& report : reports) {
        SCOPED_TRACE("reported: status " + std::to_string(report.status) + ", " + std::to_string(report.bytes));
        const ReportedCacheSize reported(report.status, report.bytes);
        Image<D> destination(setting.layout<D>());
        ASSERT_EQ(bench.call(bench.scratch, destination, setting.size), lumOk);
        EXPECT_EQ(reported.calls(), 1);
        EXPECT_TRUE(sameImage(expected, destination));
        EXPECT_TRUE(destination.gapsIntact());
        EXPECT_TRUE(bench.scratch.intact());
    }
}

TYPE_TEST(FixedFiltersLarge, EveryReport)
{
    const int bytesPerPixel = std::is_same_v<typename TypeParam::Source, Lum32f> ? 8 : 2;
    for (const LumiMaskSize mask : kMasks) {
        FilterSetting setting;
        setting.size = {67, 13};
        setting.border = lumBorderMirror | lumBorderInMemLeft;
        const int pixels = 67 * 13;
        expectSameAtEveryReport<TypeParam>(setting, mask,
                                           {{lumOk, bytesPerPixel * pixels - 1},
                                            {lumOk, bytesPerPixel * pixels},
                                            {lumOk, bytesPerPixel * (pixels + 1)},
                                            {lumOk, 1},
                                            {lumOk, 0},
                                            {lumOk, -1},
                                            {lumOk, std::numeric_limits<int>::min()},
                                            {lumOk, std::numeric_limits<int>::max()},
                                            {lumErrGeneric, 1},
                                            {lumErrGeneric, std::numeric_limits<int>::max()},
                                            {1, 1}});
    }
}

// Destination rows of every length at every alignment, written past the cache.
TYPE_TEST(FixedFiltersLarge, RowsStandAnywhere)
{
    const ReportedCacheSize reported(lumOk, 1);
    int number = 0;
    for (const LumiMaskSize mask : kMasks) {
        for (int offset = 0; offset < 64; ++offset) {
            for (const int width : {67, 130 + offset % 7}) {
                FilterSetting setting;
                setting.size = {width, 4};
                setting.guard = number % 2 == 0 ? Guard::Before : Guard::After;
                setting.border = number % 3 == 0 ? lumBorderConstant : lumBorderReplicate;
                setting.offset = offset;
                setting.gap = number % 5;
                setting.seed = number++;
                expectFiltered<TypeParam>(setting, mask);
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
        for (int width = 1; width <= 140; ++width) {
            expectFiltered<TypeParam>(placed({width, 3}, number++), mask);
        }
    }
}

TYPE_TEST(FixedFiltersLarge, RowsBetweenUnreadablePages)
{
    const ReportedCacheSize reported(lumOk, 1);
    sweepIsolatedRows<TypeParam>({1, 2, 7, 15, 17, 33, 64, 65, 129, 257});
}

// Around 0x100000 pixels, in one row, in one column and in between.
TYPE_TEST(FixedFiltersLarge, AroundAMillionPixels)
{
    const std::vector<Report> reports = {{lumErrGeneric, 1}, {lumOk, 1}};
    for (const LumiMaskSize mask : kMasks) {
        int number = 0;
        for (const LumiSize size : {LumiSize{1021, 1027}, LumiSize{1025, 1023}, LumiSize{1024, 1024}}) {
            FilterSetting setting;
            setting.size = size;
            setting.border = number == 0 ? lumBorderConstant : lumBorderReplicate;
            setting.offset = number;
            setting.gap = number;
            ++number;
            expectSameAtEveryReport<TypeParam>(setting, mask, reports);
            if constexpr (!std::is_same_v<typename TypeParam::Operator, SobelCross> ||
                          std::is_same_v<typename TypeParam::Source, Lum32f>) {
                break;  // only the Sobel cross of 8u has a branch at this size
            }
        }
    }
}

// Rows of several bands of columns.
TYPE_TEST(FixedFiltersLarge, TwoMillionPixels)
{
    if constexpr (std::is_same_v<typename TypeParam::Source, Lum8u>) {
        FilterSetting setting;
        setting.size = {2049, 1024};
        setting.offset = 5;
        setting.gap = 3;
        expectSameAtEveryReport<TypeParam>(setting, lumMask3x3, {{lumErrGeneric, 1}, {lumOk, 1}});
    }
}

TYPE_TEST(FixedFiltersLarge, SingleRowsAndColumns)
{
    const ReportedCacheSize reported(lumOk, 1);
    int number = 0;
    for (const LumiSize size : {LumiSize{20003, 1}, LumiSize{20001, 2}, LumiSize{1, 5001}, LumiSize{2, 5003}}) {
        for (const LumiMaskSize mask : kMasks) {
            expectFiltered<TypeParam>(placed(size, number), mask);
            number += 2;
        }
    }
}

}  // namespace
}  // namespace lumcv::test::fixed_filters
