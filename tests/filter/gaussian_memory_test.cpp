// What the Gaussian filter touches: rows between unreadable pages, records and scratch at every address, strides of
// every kind, blocks that serve several calls; and the branch for large images.
#include <array>
#include <cstring>
#include <limits>
#include <thread>

#include "filter/gaussian_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::gaussian {
namespace {

constexpr Lum32s kKernelSizes[] = {3, 5, 7, 9, 15, 31};

TYPE_SUITE(GaussianMemory, AllFormats, FormatName);

TYPE_SUITE(GaussianMemoryQuick, AllFormats, FormatName);

TYPE_SUITE(GaussianLarge, AllFormats, FormatName);

// Every row of source and destination alone between unreadable pages, the source read-only.
template <class Format>
void expectRowsRespected(const Setting& setting)
{
    using T = typename Format::Element;
    SCOPED_TRACE(setting);
    IsolatedRows<T> source(setting.template layout<Format>(promisedMargins(setting.border, setting.kernelSize)));
    Random random(static_cast<std::uint64_t>(setting.seed));
    source.forEach([&](T& element, int, int, int) { element = random.value<T>(setting.values); });
    source.makeReadOnly();
    const BorderValue<Format> borderValue(setting.seed, setting.values);
    const Image<T> expected = reference<Format>(setting, source, borderValue.values());

    const Parameters p = setting.template parameters<Format>();
    const PlacedBlock record = makeRecord(Entry::Large, p);
    record.makeReadOnly();
    const PlacedBlock scratch(scratchBytes(Entry::Large, p));
    IsolatedRows<T> destination(setting.template layout<Format>());
    ASSERT_EQ(callFilter<Format>(Apply::Large, source.pixels(), source.step(), destination.pixels(), destination.step(),
                                 {setting.width, setting.height}, setting.border, borderValue.forBorder(setting.border),
                                 record.spec(), scratch.data()),
              lumOk);
    Image<T> actual(setting.template layout<Format>());
    actual.forEach(Area::Roi, [&](T& element, int x, int y, int c) { element = destination.at(x, y, c); });
    EXPECT_TRUE(sameImage(expected, actual));
    EXPECT_TRUE(destination.slackIntact());
    EXPECT_TRUE(scratch.intact());
}

TYPE_TEST(GaussianMemory, RowsBetweenUnreadablePages)
{
    const int widths[] = {1,  2,  3,  5,  7,  8,  9,   15,  16,  17,  21,  31,
                          32, 33, 47, 63, 64, 65, 100, 127, 128, 129, 200, 257};
    int seed = 0;
    for (const Lum32s kernelSize : kKernelSizes) {
        for (const int width : widths) {
            for (const LumiBorderType border :
                 {lumBorderReplicate + 0, lumBorderMirror + 0, lumBorderConstant + 0, lumBorderInMem + 0,
                  lumBorderReplicate | lumBorderInMemLeft, lumBorderMirror | lumBorderInMemRight,
                  lumBorderConstant | lumBorderInMemTop, lumBorderReplicate | lumBorderInMemBottom,
                  lumBorderConstant | lumBorderInMemLeft | lumBorderInMemTop,
                  lumBorderMirror | lumBorderInMemRight | lumBorderInMemBottom}) {
                Setting setting;
                setting.width = width;
                setting.height = 1 + seed % 7;
                setting.kernelSize = kernelSize;
                setting.sigma = 0.3f * static_cast<Lum32f>(kernelSize);
                setting.border = border;
                setting.seed = seed;
                setting.guard = seed / 2 % 2 == 0 ? Guard::After : Guard::Before;
                ++seed;
                expectRowsRespected<TypeParam>(setting);
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
        ++seed;
    }
}

TYPE_TEST(GaussianMemoryQuick, RowsBetweenUnreadablePages)
{
    int seed = 0;
    for (const Lum32s kernelSize : {3, 5, 7, 9}) {
        for (const int width : {1, 10, 33, 70}) {
            Setting setting;
            setting.width = width;
            setting.height = 3;
            setting.kernelSize = kernelSize;
            setting.border = seed % 2 == 0 ? lumBorderInMem : lumBorderMirror;
            setting.seed = seed;
            setting.guard = seed / 2 % 2 == 0 ? Guard::After : Guard::Before;
            ++seed;
            expectRowsRespected<TypeParam>(setting);
        }
    }
}

// Records and scratch of exactly the queried sizes at every byte address.
TYPE_TEST(GaussianMemory, BlocksStandAnywhere)
{
    int seed = 0;
    for (const Lum32s kernelSize : kKernelSizes) {
        for (std::size_t distance = 0; distance < 64; ++distance) {
            for (const Guard guard : {Guard::After, Guard::Before}) {
                Setting setting;
                setting.width = 1 + seed % 40;
                setting.height = 1 + seed % 11;
                setting.kernelSize = kernelSize;
                setting.sigma = 1.3f;
                setting.border = seed % 2 == 0 ? lumBorderMirror : lumBorderConstant;
                setting.guard = guard;
                setting.distance = distance;
                setting.seed = seed++;
                expectFiltered<TypeParam>(setting, {Apply::Ordinary, Apply::Large});
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

// Destination and source rows at every alignment: rows of odd length follow each other without a gap.
TYPE_TEST(GaussianMemory, RowsStandAnywhere)
{
    int seed = 0;
    for (const Lum32s kernelSize : {3, 5, 7, 9}) {
        for (int offset = 0; offset < 64; ++offset) {
            Setting setting;
            setting.width = 67;
            setting.height = 5;
            setting.kernelSize = kernelSize;
            setting.border = lumBorderReplicate;
            setting.guard = offset % 2 == 0 ? Guard::Before : Guard::After;
            setting.offset = offset;
            setting.seed = seed++;
            expectFiltered<TypeParam>(setting, {Apply::Ordinary});
        }
    }
}

/// A record, scratch and source made once, and calls on them that need not follow the geometry they were made for.
template <class Format>
struct Bench
{
    using T = typename Format::Element;

    explicit Bench(const Setting& asked)
        : setting(asked),
          source(asked.layout<Format>()),
          record(makeRecord(Entry::Ordinary, asked.parameters<Format>())),
          scratch(scratchBytes(Entry::Ordinary, asked.parameters<Format>()))
    {
        Random random(static_cast<std::uint64_t>(asked.seed));
        fill(source, random, Values::Extreme);
    }
    LumStatus call(Image<T>& destination, LumiSize size, LumiBorderType border) const
    {
        return Format::apply(source.pixels(), source.step(), destination.pixels(), destination.step(), size, border,
                             kBorderValue, record.spec(), scratch.data());
    }
    testing::AssertionResult matches(const Image<T>& destination, LumiSize size, LumiBorderType border) const
    {
        Setting smaller = setting;
        smaller.width = size.width;
        smaller.height = size.height;
        smaller.border = border;
        return sameImage(reference<Format>(smaller, source, kBorderValue), destination);
    }

    static constexpr T kBorderValue[3] = {T{7}, T{19}, T{100}};
    Setting setting;
    Image<T> source;
    PlacedBlock record;
    PlacedBlock scratch;
};

// One record and one scratch block for any image that is not larger, one after the other.
TYPE_TEST(GaussianMemoryQuick, OneRecordServesSmallerImages)
{
    using T = typename TypeParam::Element;
    for (const Lum32s kernelSize : {3, 5, 7, 15}) {
        Setting setting;
        setting.width = 70;
        setting.height = 20;
        setting.kernelSize = kernelSize;
        const Bench<TypeParam> bench(setting);
        for (const LumiSize size : {LumiSize{70, 20}, LumiSize{1, 1}, LumiSize{69, 20}, LumiSize{70, 2},
                                    LumiSize{33, 9}, LumiSize{3, 20}, LumiSize{70, 20}}) {
            for (const LumiBorderType border : {lumBorderReplicate, lumBorderMirror, lumBorderConstant}) {
                Setting smaller = setting;
                smaller.width = size.width;
                smaller.height = size.height;
                Image<T> destination(smaller.template layout<TypeParam>());
                ASSERT_EQ(bench.call(destination, size, border), lumOk);
                EXPECT_TRUE(bench.matches(destination, size, border)) << size.width << " x " << size.height;
                EXPECT_TRUE(bench.scratch.intact());
            }
        }
    }
}

TYPE_TEST(GaussianMemoryQuick, ScratchHoldsNothing)
{
    using T = typename TypeParam::Element;
    Setting setting;
    setting.width = 41;
    setting.height = 13;
    setting.kernelSize = 7;
    const Bench<TypeParam> bench(setting);
    for (const int byte : {0x00, 0xff, 0x7f, 0x80, 0x01}) {
        Image<T> destination(setting.template layout<TypeParam>());
        std::memset(bench.scratch.data(), byte, bench.scratch.size());
        ASSERT_EQ(bench.call(destination, {41, 13}, lumBorderConstant), lumOk);
        EXPECT_TRUE(bench.matches(destination, {41, 13}, lumBorderConstant)) << "scratch of bytes " << byte;
    }
}

// The rows of the source may overlap: a stride need only reach the width in pixels.
TYPE_TEST(GaussianMemoryQuick, SourceRowsMayOverlap)
{
    using T = typename TypeParam::Element;
    constexpr int width = 32;
    constexpr int height = 6;
    struct Overlapping
    {
        const unsigned char* bytes;
        int step;
        T at(int x, int y, int c) const
        {
            T element;
            std::memcpy(&element, bytes + y * step + (x * TypeParam::channels + c) * static_cast<int>(sizeof(T)),
                        sizeof(T));
            return element;
        }
    };
    for (const Lum32s kernelSize : kKernelSizes) {
        for (const int step : {width, width + static_cast<int>(sizeof(T)), 3 * width}) {
            Setting setting;
            setting.width = width;
            setting.height = height;
            setting.kernelSize = kernelSize;
            setting.border = lumBorderMirror;
            const GuardedBlock source(static_cast<std::size_t>((height - 1) * step + width * TypeParam::channels *
                                                                                         static_cast<int>(sizeof(T))),
                                      Guard::After);
            for (std::size_t i = 0; i < source.size() / sizeof(T); ++i) {
                source.as<T>()[i] = static_cast<T>(i * 7 % 251);
            }
            const Parameters p = setting.template parameters<TypeParam>();
            const PlacedBlock record = makeRecord(Entry::Ordinary, p);
            const PlacedBlock scratch(scratchBytes(Entry::Ordinary, p));
            Image<T> destination(setting.template layout<TypeParam>());
            const Overlapping view{source.data(), step};
            ASSERT_EQ(TypeParam::apply(source.as<T>(), step, destination.pixels(), destination.step(), {width, height},
                                       lumBorderMirror, nullptr, record.spec(), scratch.data()),
                      lumOk);
            const T noBorderValue[3] = {};
            EXPECT_TRUE(sameImage(reference<TypeParam>(setting, view, noBorderValue), destination))
                << "stride " << step;
        }
    }
}

// No stride is refused for its alignment; that of a single row is never used.
TYPE_TEST(GaussianMemoryQuick, StrideOfASingleRow)
{
    using T = typename TypeParam::Element;
    Setting setting;
    setting.width = 50;
    setting.kernelSize = 5;
    const Bench<TypeParam> bench(setting);
    for (const Lum32s step : {50, 51, 53, 0x7fffffff}) {
        Image<T> destination(setting.template layout<TypeParam>());
        ASSERT_EQ(TypeParam::apply(bench.source.pixels(), step, destination.pixels(), step, {50, 1}, lumBorderReplicate,
                                   nullptr, bench.record.spec(), bench.scratch.data()),
                  lumOk);
        EXPECT_TRUE(bench.matches(destination, {50, 1}, lumBorderReplicate)) << "stride " << step;
    }
}

// A record is read by any number of threads, each with its own scratch.
TYPE_TEST(GaussianMemoryQuick, ThreadsShareARecord)
{
    using T = typename TypeParam::Element;
    Setting setting;
    setting.width = 61;
    setting.height = 23;
    setting.kernelSize = 7;
    const Bench<TypeParam> bench(setting);
    bench.record.makeReadOnly();
    std::array<LumStatus, 3> statuses{};
    std::vector<Image<T>> destinations(3, Image<T>(setting.template layout<TypeParam>()));
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < 3; ++i) {
        threads.emplace_back([&, i] {
            const PlacedBlock scratch(scratchBytes(Entry::Ordinary, setting.template parameters<TypeParam>()));
            for (int repetition = 0; repetition < 5; ++repetition) {
                statuses[i] = TypeParam::apply(bench.source.pixels(), bench.source.step(), destinations[i].pixels(),
                                               destinations[i].step(), {61, 23}, lumBorderMirror, nullptr,
                                               bench.record.spec(), scratch.data());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(statuses[i], lumOk);
        EXPECT_TRUE(bench.matches(destinations[i], {61, 23}, lumBorderMirror));
    }
}

// From 0x80000 pixels on the library asks for the size of the cache, once; what it hears changes no pixel.
struct Report
{
    int status;
    int bytes;
};

template <class Format>
void expectLarge(const Setting& setting, long expectedCalls, std::initializer_list<Report> reports)
{
    using T = typename Format::Element;
    SCOPED_TRACE(setting);
    const Bench<Format> bench(setting);
    const LumiSize size = {setting.width, setting.height};
    const Image<T> expected = reference<Format>(setting, bench.source, bench.kBorderValue);
    for (const Report& report : reports) {
        SCOPED_TRACE("reported: status " + std::to_string(report.status) + ", " + std::to_string(report.bytes));
        const ReportedCacheSize reported(report.status, report.bytes);
        Image<T> destination(setting.template layout<Format>());
        ASSERT_EQ(bench.call(destination, size, setting.border), lumOk);
        EXPECT_EQ(reported.calls(), expectedCalls);
        EXPECT_TRUE(sameImage(expected, destination));
        EXPECT_TRUE(destination.gapsIntact());
        EXPECT_TRUE(bench.scratch.intact());
    }
}

constexpr int kLargePixels = 0x80000;

Setting largeSetting(int width, int height, Lum32s kernelSize, LumiBorderType border)
{
    Setting setting;
    setting.width = width;
    setting.height = height;
    setting.kernelSize = kernelSize;
    setting.border = border;
    setting.seed = width + kernelSize;
    return setting;
}

TYPE_TEST(GaussianLarge, AskedFromTheThresholdOn)
{
    // the threshold less one is a prime, so it is one row or one column
    expectLarge<TypeParam>(largeSetting(kLargePixels - 1, 1, 3, lumBorderMirror), 0, {{0, 1}});
    expectLarge<TypeParam>(largeSetting(1, kLargePixels - 1, 3, lumBorderMirror), 0, {{0, 1}});
    expectLarge<TypeParam>(largeSetting(1023, 512, 5, lumBorderReplicate), 0, {{0, 1}});
    expectLarge<TypeParam>(largeSetting(kLargePixels, 1, 3, lumBorderMirror), 1, {{0, 1}});
    expectLarge<TypeParam>(largeSetting(1, kLargePixels, 3, lumBorderMirror), 1, {{0, 1}});
    expectLarge<TypeParam>(largeSetting(1024, 512, 5, lumBorderReplicate), 1, {{0, 1}});
}

// Below, equal, above; nonsense; and a failure with a number that must not be trusted.
TYPE_TEST(GaussianLarge, EveryReport)
{
    constexpr int pixels = 1024 * 513;
    expectLarge<TypeParam>(largeSetting(1024, 513, 5, lumBorderMirror), 1,
                           {{lumOk, pixels - 1},
                            {lumOk, pixels},
                            {lumOk, pixels + 1},
                            {lumOk, 0},
                            {lumOk, -1},
                            {lumOk, std::numeric_limits<int>::max()},
                            {lumErrGeneric, 1},
                            {lumErrGeneric, std::numeric_limits<int>::max()},
                            {1, 1}});
}

// Rows at every alignment, of odd widths, in every class of kernels.
TYPE_TEST(GaussianLarge, RowsStandAnywhere)
{
    int number = 0;
    for (const Lum32s kernelSize : {3, 5, 7, 9}) {
        Setting setting = largeSetting(1021 + 2 * number, 517, kernelSize,
                                       number % 2 == 0 ? lumBorderConstant + 0 : lumBorderReplicate + 0);
        setting.offset = number + 1;
        setting.gap = number;
        setting.guard = number % 2 == 0 ? Guard::After : Guard::Before;
        ++number;
        expectLarge<TypeParam>(setting, 1, {{lumOk, 1}, {lumErrGeneric, 1}});
    }
}

TYPE_TEST(GaussianLarge, NarrowImages)
{
    for (const int width : {2, 3, 5, 17, 33}) {
        expectLarge<TypeParam>(largeSetting(width, kLargePixels / width + 1, width == 3 ? 5 : 3, lumBorderMirror), 1,
                               {{lumOk, 1}});
    }
}

}  // namespace
}  // namespace lumcv::test::gaussian
