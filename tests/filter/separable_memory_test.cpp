// What the separable filter touches: rows between unreadable pages, records and scratch at every address, strides of
// every kind, blocks that serve several calls; and images beyond the size of the cache.
#include <array>
#include <cstring>
#include <limits>
#include <thread>

#include "filter/separable_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::separable {
namespace {

TYPE_SUITE(SeparableMemory, AllCases, CaseName);

TYPE_SUITE(SeparableMemoryQuick, AllCases, CaseName);

TYPE_SUITE(SeparableLarge, AllCases, CaseName);

template <class C>
Kernel kernelOf(LumiSize size, int number)
{
    Random random(static_cast<std::uint64_t>(number) + 99);
    const LumDataType type = C::kernelTypes[static_cast<std::size_t>(number) % std::size(C::kernelTypes)];
    Kernel kernel = drawKernels(type, size, false, random);
    if (kernel.type == lumType16s) {
        kernel.divisor = 5;
    }
    return kernel;
}

// Every row of source and destination alone between unreadable pages, the source read-only.
template <class C>
void expectRowsRespected(const Setting& setting, const Kernel& kernel)
{
    using S = typename C::Source;
    using D = typename C::Destination;
    SCOPED_TRACE(setting);
    SCOPED_TRACE(kernel);
    IsolatedRows<S> source(setting.layout<S>(promisedMargins(setting.border, kernel.reach())));
    Random random(static_cast<std::uint64_t>(setting.seed));
    source.forEach([&](S& element, int, int, int) { element = random.value<S>(setting.values); });
    source.makeReadOnly();
    const std::vector<S> values = drawBorderValue<S>(setting.seed, setting.values);
    const BorderValue<S> borderValue(values, setting.channels, setting.border);
    const Image<D> expected = reference<C>(setting, kernel, source, values.data());

    const PlacedBlock record = makeRecord(Entry::Ordinary, kernel, C::dataType, setting.channels);
    record.makeReadOnly();
    const PlacedBlock scratch = makeScratch(kernel, setting.size.width, setting.channels);
    IsolatedRows<D> destination(setting.layout<D>());
    ASSERT_EQ(C::call(Entry::Ordinary, setting.channels, source.pixels(), source.step(), destination.pixels(),
                      destination.step(), {setting.size.width, setting.size.height}, setting.border,
                      borderValue.argument(), specOf(record), scratch.data()),
              lumOk);
    Image<D> actual(setting.layout<D>());
    actual.forEach(Area::Roi, [&](D& element, int x, int y, int c) { element = destination.at(x, y, c); });
    EXPECT_TRUE(sameImage(expected, actual));
    EXPECT_TRUE(destination.slackIntact());
    EXPECT_TRUE(scratch.intact());
}

template <class C>
void sweepIsolatedRows(const std::vector<int>& widths, const std::vector<LumiSize>& kernelSizes)
{
    int number = 0;
    for (const LumiSize kernelSize : kernelSizes) {
        for (const int width : widths) {
            for (const LumiBorderType border :
                 {lumBorderReplicate + 0, lumBorderMirror + 0, lumBorderConstant + 0, lumBorderInMem + 0,
                  lumBorderConstant | lumBorderInMemLeft | lumBorderInMemTop,
                  lumBorderMirror | lumBorderInMemRight | lumBorderInMemBottom}) {
                Setting setting;
                setting.size = {width, 1 + number % 7};
                setting.channels = kChannels[number % 3];
                setting.border = border;
                setting.seed = number;
                setting.guard = number / 2 % 2 == 0 ? Guard::After : Guard::Before;
                expectRowsRespected<C>(setting, kernelOf<C>(kernelSize, number));
                number += 1;
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
            ++number;
        }
    }
}

TYPE_TEST(SeparableMemory, RowsBetweenUnreadablePages)
{
    sweepIsolatedRows<TypeParam>({1, 2, 3, 5, 8, 9, 15, 17, 21, 31, 33, 47, 64, 65, 127, 130, 257},
                                 {{1, 1}, {3, 3}, {5, 5}, {7, 2}, {4, 9}});
}

TYPE_TEST(SeparableMemoryQuick, RowsBetweenUnreadablePages)
{
    sweepIsolatedRows<TypeParam>({1, 10, 33, 70}, {{3, 3}, {5, 5}, {2, 6}});
}

// Records and scratch of exactly the queried sizes at every byte address.
TYPE_TEST(SeparableMemory, BlocksStandAnywhere)
{
    int number = 0;
    for (const LumiSize kernelSize : {LumiSize{1, 1}, LumiSize{3, 3}, LumiSize{5, 5}, LumiSize{6, 7}}) {
        for (std::size_t distance = 0; distance < 64; ++distance) {
            for (const Guard guard : {Guard::After, Guard::Before}) {
                Setting setting;
                setting.size = {1 + number % 41, 1 + number % 11};
                setting.channels = kChannels[number % 3];
                setting.border = number % 2 == 0 ? lumBorderMirror : lumBorderConstant;
                setting.guard = guard;
                setting.distance = distance;
                setting.seed = number;
                expectFiltered<TypeParam>(kBothEntries[number / 3 % 2], setting,
                                          kernelOf<TypeParam>(kernelSize, number / 3));
                ++number;
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

// Source and destination rows at every alignment: rows of odd length follow each other without a gap.
TYPE_TEST(SeparableMemory, RowsStandAnywhere)
{
    int number = 0;
    for (const LumiSize kernelSize : {LumiSize{3, 3}, LumiSize{5, 5}, LumiSize{4, 7}}) {
        for (int offset = 0; offset < 64; ++offset) {
            Setting setting;
            setting.size = {67, 5};
            setting.channels = kChannels[number % 3];
            setting.guard = offset % 2 == 0 ? Guard::Before : Guard::After;
            setting.offset = offset;
            setting.seed = number;
            expectFiltered<TypeParam>(Entry::Ordinary, setting, kernelOf<TypeParam>(kernelSize, number / 3));
            ++number;
        }
    }
}

// A record, scratch and source made once, and calls on them that need not follow the geometry they were made for.
template <class C>
struct Bench
{
    using S = typename C::Source;
    using D = typename C::Destination;

    Bench(const Setting& asked, const Kernel& itsKernel, Entry init = Entry::Ordinary)
        : setting(asked),
          kernel(itsKernel),
          source(asked.layout<S>()),
          record(makeRecord(init, itsKernel, C::dataType, asked.channels)),
          scratch(makeScratch(itsKernel, asked.size.width, asked.channels))
    {
        Random random(static_cast<std::uint64_t>(asked.seed));
        fill(source, random, Values::Ordinary);
    }
    LumStatus call(Image<D>& destination, LumiSize size, LumiBorderType border, Entry entry = Entry::Ordinary) const
    {
        return callWith(scratch, destination, size, border, entry);
    }
    LumStatus callWith(const PlacedBlock& itsScratch, Image<D>& destination, LumiSize size, LumiBorderType border,
                       Entry entry = Entry::Ordinary) const
    {
        return C::call(entry, setting.channels, source.pixels(), source.step(), destination.pixels(),
                       destination.step(), {size.width, size.height}, border, kBorderValue, specOf(record),
                       itsScratch.data());
    }
    Image<D> expected(LumiSize size, LumiBorderType border) const
    {
        Setting smaller = setting;
        smaller.size = size;
        smaller.border = border;
        return reference<C>(smaller, kernel, source, kBorderValue);
    }

    static constexpr S kBorderValue[4] = {S{7}, S{19}, S{100}, S{50}};
    Setting setting;
    Kernel kernel;
    Image<S> source;
    PlacedBlock record;
    PlacedBlock scratch;
};

// One record, laid by either Init, and one scratch block for any image that is not larger, one after the other, through
// both entries.
TYPE_TEST(SeparableMemoryQuick, OneRecordServesSmallerImages)
{
    using D = typename TypeParam::Destination;
    int number = 0;
    for (const LumiSize kernelSize : {LumiSize{3, 3}, LumiSize{5, 5}, LumiSize{7, 4}}) {
        Setting setting;
        setting.size = {70, 20};
        setting.channels = kChannels[number % 3];
        const Bench<TypeParam> bench(setting, kernelOf<TypeParam>(kernelSize, number), kBothEntries[number % 2]);
        ++number;
        for (const LumiSize size :
             {LumiSize{70, 20}, LumiSize{1, 1}, LumiSize{69, 20}, LumiSize{70, 2}, LumiSize{3, 20}, LumiSize{70, 20}}) {
            for (const LumiBorderType border : {lumBorderReplicate, lumBorderMirror, lumBorderConstant}) {
                Setting smaller = setting;
                smaller.size = size;
                for (const Entry entry : kBothEntries) {
                    Image<D> destination(smaller.template layout<D>());
                    ASSERT_EQ(bench.call(destination, size, border, entry), lumOk);
                    EXPECT_TRUE(sameImage(bench.expected(size, border), destination))
                        << size.width << " x " << size.height;
                    EXPECT_TRUE(bench.scratch.intact());
                }
            }
        }
    }
}

TYPE_TEST(SeparableMemoryQuick, ScratchHoldsNothing)
{
    using D = typename TypeParam::Destination;
    for (const LumiSize kernelSize : {LumiSize{3, 3}, LumiSize{5, 5}, LumiSize{6, 8}}) {
        Setting setting;
        setting.size = {41, 13};
        setting.channels = 3;
        const Bench<TypeParam> bench(setting, kernelOf<TypeParam>(kernelSize, 1));
        for (const int byte : {0x00, 0xff, 0x7f, 0x80, 0x01}) {
            Image<D> destination(setting.template layout<D>());
            std::memset(bench.scratch.data(), byte, bench.scratch.size());
            ASSERT_EQ(bench.call(destination, {41, 13}, lumBorderConstant), lumOk);
            EXPECT_TRUE(sameImage(bench.expected({41, 13}, lumBorderConstant), destination))
                << "scratch of bytes " << byte;
        }
    }
}

// A record is read by any number of threads, each with its own scratch.
TYPE_TEST(SeparableMemoryQuick, ThreadsShareARecord)
{
    using D = typename TypeParam::Destination;
    Setting setting;
    setting.size = {61, 23};
    setting.channels = 4;
    const Bench<TypeParam> bench(setting, kernelOf<TypeParam>({5, 7}, 0));
    bench.record.makeReadOnly();
    std::array<LumStatus, 3> statuses{};
    std::vector<Image<D>> destinations(3, Image<D>(setting.template layout<D>()));
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < 3; ++i) {
        threads.emplace_back([&, i] {
            const PlacedBlock scratch = makeScratch(bench.kernel, 61, 4);
            for (int repetition = 0; repetition < 5; ++repetition) {
                statuses[i] = bench.callWith(scratch, destinations[i], {61, 23}, lumBorderMirror);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(statuses[i], lumOk);
        EXPECT_TRUE(sameImage(bench.expected({61, 23}, lumBorderMirror), destinations[i]));
    }
}

// Odd widths and rows at odd addresses, beyond 0x80000 pixels; whatever the cache is said to hold changes no pixel.
TYPE_TEST(SeparableLarge, CacheSizeChangesNoPixel)
{
    using D = typename TypeParam::Destination;
    struct Report
    {
        int status;
        int bytes;
    };
    int number = 0;
    for (const LumiSize size : {LumiSize{1021, 517}, LumiSize{600001, 1}}) {
        Setting setting;
        setting.size = size;
        setting.offset = number + 1;
        setting.gap = number;
        setting.guard = number % 2 == 0 ? Guard::After : Guard::Before;
        const LumiBorderType border = number % 2 == 0 ? lumBorderConstant : lumBorderMirror;
        const LumiSize kernelSize = number == 0 ? LumiSize{3, 3} : LumiSize{5, 2};
        const Bench<TypeParam> bench(setting, kernelOf<TypeParam>(kernelSize, number));
        ++number;
        const Image<D> expected = bench.expected(size, border);
        for (const Report report :
             {Report{lumOk, 1}, Report{lumOk, std::numeric_limits<int>::max()}, Report{lumErrGeneric, 1}}) {
            const ReportedCacheSize reported(report.status, report.bytes);
            Image<D> destination(setting.template layout<D>());
            ASSERT_EQ(bench.call(destination, size, border), lumOk);
            EXPECT_TRUE(sameImage(expected, destination)) << "reported: " << report.status << ", " << report.bytes;
            EXPECT_TRUE(destination.gapsIntact());
            EXPECT_TRUE(bench.scratch.intact());
        }
    }
}

}  // namespace
}  // namespace lumcv::test::separable
