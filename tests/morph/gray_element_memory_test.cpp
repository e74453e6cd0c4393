// What dilation and erosion with a gray element touch: rows that stand alone, records anywhere, used again and shared.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <thread>
#include <vector>

#include "morph/gray_element_fixture.hpp"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::gray {
namespace {

TYPE_SUITE(GrayElementMemory, Cases, CaseName);

// The last byte of every row, and the first, stands at an unreadable page; the source cannot be written.
TYPE_TEST(GrayElementMemory, RowsStandAlone)
{
    using T = typename TypeParam::T;
    Random random(21);
    for (const int width : {1, 2, 5, 8, 15, 16, 17, 31, 33, 66}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (const LumiSize size : {LumiSize{3, 3}, LumiSize{6, 1}, LumiSize{1, 4}, LumiSize{21, 9}}) {
                const LumiSize roiSize = {width, 5};
                const Element<T> element = drawElement<T>(size, Entries::Wide, random);
                const Record<T> record(element, roiSize, guard);
                IsolatedRows<T> source({.width = width, .height = 5, .guard = guard});
                IsolatedRows<T> destination({.width = width, .height = 5, .guard = guard});
                source.forEach([&](T& pixel, int, int, int) { pixel = random.value<T>(Values::Ordinary); });
                source.makeReadOnly();
                ASSERT_EQ(TypeParam::apply(source.pixels(), source.step(), destination.pixels(), destination.step(),
                                           roiSize, lumBorderReplicate, record.state()),
                          lumOk);
                const Image<T> expected = reference<T>(TypeParam::form, element, source, roiSize);
                for (int y = 0; y < 5; ++y) {
                    ASSERT_TRUE(sameElements(expected.row(y), destination.row(y), static_cast<std::size_t>(width)))
                        << element << ", row " << y;
                }
                EXPECT_TRUE(destination.slackIntact());
            }
        }
    }
}

// The pixels around the ROI would win, and are neither read for the result nor written.
TYPE_TEST(GrayElementMemory, NeighboursOfTheRoiTakeNoPart)
{
    using T = typename TypeParam::T;
    using Limits = std::numeric_limits<T>;
    Random random(22);
    const Layout layout{.width = 23, .height = 6, .margins = Margins::all(4)};
    Image<T> source(layout), destination(layout);
    source.forEach(Area::WithMargins, [](T& pixel, int, int, int) {
        pixel = TypeParam::form == Form::Dilate ? Limits::max() : Limits::lowest();
    });
    source.forEach(Area::Roi, [&](T& pixel, int, int, int) { pixel = static_cast<T>(random.between(60, 190)); });
    const Element<T> element = drawElement<T>({7, 5}, {3, 2}, Entries::Small, random);
    expectReference<TypeParam>(element, source, destination);
}

// The element's entries are read to the last and no further, and may change or go away once Init has seen them.
TYPE_TEST(GrayElementMemory, InitCopiesTheElement)
{
    using T = typename TypeParam::T;
    Random random(23);
    Image<T> source({.width = 30, .height = 4}), destination({.width = 30, .height = 4});
    fill(source, random);
    for (const LumiSize size : {LumiSize{1, 1}, LumiSize{2, 2}, LumiSize{4, 3}, LumiSize{1, 9}, LumiSize{17, 1}}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            const Element<T> element = drawElement<T>(size, Entries::Small, random);
            const GuardedBlock entries(element.entries.size() * 4, guard);
            std::memcpy(entries.data(), element.entries.data(), entries.size());
            const PlacedBlock block(recordBytes(size), guard);
            auto* const state = reinterpret_cast<LumiMorphGrayRecord*>(block.data());
            ASSERT_EQ(Exports<T>::init(state, {30, 4}, entries.as<Entry<T>>(), size, element.anchor), lumOk);
            EXPECT_EQ(std::memcmp(entries.data(), element.entries.data(), entries.size()), 0)
                << "Init wrote the element";
            EXPECT_TRUE(entries.slackIntact());
            EXPECT_TRUE(block.intact());
            std::memset(entries.data(), 0x5a, entries.size());
            ASSERT_EQ(TypeParam::apply(source.pixels(), source.step(), destination.pixels(), destination.step(),
                                       {30, 4}, lumBorderReplicate, state),
                      lumOk);
            EXPECT_TRUE(sameImage(reference<T>(TypeParam::form, element, source, {30, 4}), destination)) << element;
        }
    }
}

// A record of exactly the queried size at any byte address, at both ends of a page; apply does not write it.
TYPE_TEST(GrayElementMemory, RecordAtAnyAddress)
{
    using T = typename TypeParam::T;
    Random random(24);
    Image<T> source({.width = 35, .height = 4}), destination({.width = 35, .height = 4});
    fill(source, random, Values::Extreme);
    for (const LumiSize size : {LumiSize{1, 1}, LumiSize{5, 3}}) {
        const Element<T> element = drawElement<T>(size, Entries::Wide, random);
        const Image<T> expected = reference<T>(TypeParam::form, element, source, {35, 4});
        for (std::size_t distance = 0; distance < 64; ++distance) {
            for (const Guard guard : {Guard::After, Guard::Before}) {
                const Record<T> record(element, {35, 4}, guard, distance);
                record.block().makeReadOnly();
                ASSERT_EQ(TypeParam::apply(source.pixels(), source.step(), destination.pixels(), destination.step(),
                                           {35, 4}, lumBorderReplicate, record.state()),
                          lumOk);
                ASSERT_TRUE(sameImage(expected, destination)) << "distance to the page " << distance;
            }
        }
    }
}

// The words of the record and behind them the element as it stands, neither turned nor sorted.
TYPE_TEST(GrayElementMemory, LayoutOfTheRecord)
{
    using T = typename TypeParam::T;
    Random random(25);
    for (const std::size_t distance : {std::size_t{0}, std::size_t{1}, std::size_t{7}}) {
        const Element<T> element = drawElement<T>({5, 3}, {4, 1}, Entries::Extreme, random);
        const Record<T> record(element, {123, 45}, Guard::Before, distance);
        const unsigned char* mask = nullptr;
        std::memcpy(&mask, record.block().data(), sizeof mask);
        EXPECT_EQ(mask - record.block().data(), 32);
        std::array<Lum32s, 6> words{};
        std::memcpy(words.data(), record.block().data() + 8, sizeof words);
        EXPECT_EQ(words, (std::array<Lum32s, 6>{5, 3, 4, 1, 123, 45}));
        EXPECT_EQ(std::memcmp(record.block().data() + 32, element.entries.data(), 15 * 4), 0);
    }
}

// One record for any ROI up to the one given to Init, one after the other.
TYPE_TEST(GrayElementMemory, RecordServesSmallerRois)
{
    using T = typename TypeParam::T;
    Random random(26);
    const Element<T> element = drawElement<T>({4, 3}, Entries::Wide, random);
    const Record<T> record(element, {40, 9});
    for (const LumiSize roiSize : {LumiSize{40, 9}, LumiSize{1, 1}, LumiSize{39, 9}, LumiSize{40, 8}, LumiSize{2, 9},
                                   LumiSize{17, 3}, LumiSize{40, 9}}) {
        Image<T> source({.width = roiSize.width, .height = roiSize.height});
        Image<T> destination({.width = roiSize.width, .height = roiSize.height});
        fill(source, random);
        ASSERT_EQ(TypeParam::apply(source.pixels(), source.step(), destination.pixels(), destination.step(), roiSize,
                                   lumBorderReplicate, record.state()),
                  lumOk);
        EXPECT_TRUE(sameImage(reference<T>(TypeParam::form, element, source, roiSize), destination))
            << roiSize.width << " x " << roiSize.height;
    }
}

// The largest ROI costs nothing.
TYPE_TEST(GrayElementMemory, RecordOfTheLargestRoi)
{
    using T = typename TypeParam::T;
    Random random(27);
    const Element<T> element = drawElement<T>({3, 3}, Entries::Small, random);
    const Record<T> record(element, {std::numeric_limits<Lum32s>::max(), std::numeric_limits<Lum32s>::max()});
    Image<T> source({.width = 19, .height = 3}), destination({.width = 19, .height = 3});
    fill(source, random);
    ASSERT_EQ(TypeParam::apply(source.pixels(), source.step(), destination.pixels(), destination.step(), {19, 3},
                               lumBorderReplicate, record.state()),
              lumOk);
    EXPECT_TRUE(sameImage(reference<T>(TypeParam::form, element, source, {19, 3}), destination));
}

// The stride of a single row leads nowhere.
TYPE_TEST(GrayElementMemory, StrideOfASingleRow)
{
    using T = typename TypeParam::T;
    constexpr int size = sizeof(T);
    Random random(28);
    const Element<T> element = drawElement<T>({3, 5}, Entries::Small, random);
    const Record<T> record(element, {50, 1});
    Image<T> source({.width = 50}), destination({.width = 50});
    fill(source, random);
    const Image<T> expected = reference<T>(TypeParam::form, element, source, {50, 1});
    for (const int step : {50 * size, 51 * size, std::numeric_limits<int>::max() / size * size}) {
        destination.forEach(Area::Roi, [](T& pixel, int, int, int) { pixel = 99; });
        ASSERT_EQ(TypeParam::apply(source.pixels(), step, destination.pixels(), step, {50, 1}, lumBorderReplicate,
                                   record.state()),
                  lumOk);
        EXPECT_TRUE(sameImage(expected, destination)) << "stride " << step;
    }
}

// Threads share a record that cannot be written, and each call gives the same bytes.
TYPE_TEST(GrayElementMemory, ThreadsShareARecord)
{
    using T = typename TypeParam::T;
    Random random(29);
    const LumiSize roiSize = {61, 23};
    const Element<T> element = drawElement<T>({6, 5}, Entries::NonFinite, random);
    const Record<T> record(element, roiSize);
    record.block().makeReadOnly();
    Image<T> source({.width = 61, .height = 23});
    fill(source, random, Values::Extreme);
    constexpr std::size_t threadCount = 3;
    std::array<LumStatus, threadCount> statuses{};
    std::vector<Image<T>> destinations(threadCount, Image<T>({.width = 61, .height = 23}));
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            for (int repetition = 0; repetition < 5; ++repetition) {
                statuses[i] = TypeParam::apply(source.pixels(), source.step(), destinations[i].pixels(),
                                               destinations[i].step(), roiSize, lumBorderReplicate, record.state());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const Image<T> expected = reference<T>(TypeParam::form, element, source, roiSize);
    for (std::size_t i = 0; i < threadCount; ++i) {
        EXPECT_EQ(statuses[i], lumOk);
        EXPECT_TRUE(sameImage(expected, destinations[i]));
        EXPECT_TRUE(sameBytes(destinations[0], destinations[i]));
    }
}

}  // namespace
}  // namespace lumcv::test::gray
