// What morphology touches: rows between unreadable pages, records and scratch at every address, blocks that serve
// several calls and threads; and images that are larger than the cache.
#include <array>
#include <cstring>
#include <thread>

#include "morph/morph_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::morph {
namespace {

TYPE_SUITE(MorphMemory, AllForms, FormName);

TYPE_SUITE(MorphMemoryQuick, AllForms, FormName);

constexpr Operation kOperations[] = {Operation::Dilate, Operation::Erode,    Operation::Open,    Operation::Close,
                                     Operation::Tophat, Operation::Blackhat, Operation::Gradient};

const std::vector<StructuringElement>& elements()
{
    static const std::vector<StructuringElement> result = {rectangle(3, 3),
                                                           rectangle(5, 5),
                                                           rectangle(9, 3),
                                                           rectangle(2, 2),
                                                           rectangle(1, 5),
                                                           rectangle(7, 1),
                                                           disc(3),
                                                           disc(5),
                                                           disc(7),
                                                           cross(3, 3, 1, 1),
                                                           cross(5, 5, 3, 1),
                                                           ellipse(9, 7),
                                                           scattered(5, 4, 50, 3),
                                                           rectangle(17, 11),
                                                           emptyElement(5, 5),
                                                           rectangle(1, 1)};
    return result;
}

/// All operations, generations and elements in turn.
Setting inTurn(int number)
{
    Setting s;
    s.operation = kOperations[number % 7];
    s.generation = kGenerations[number / 7 % 2];
    s.element = elements()[static_cast<std::size_t>(number * 5) % elements().size()];
    s.seed = number;
    s.border = borderFor(s, number);
    return s;
}

// Every row of source and destination alone between unreadable pages, the source read-only.
template <class Form>
void expectRowsRespected(const Setting& s)
{
    using T = typename Form::Element;
    SCOPED_TRACE(s);
    IsolatedRows<T> source(s.layout<Form>(promisedMargins(s.recipe<Form>(), s.element)));
    Random random(static_cast<std::uint64_t>(s.seed));
    source.forEach(
        [&](T& element, int, int, int) { element = zeroFor(s.operation, random.value<T>(Values::Ordinary)); });
    source.makeReadOnly();
    const BorderValue<Form> borderValue(s);
    const Image<T> expected = reference<Form>(s, source, borderValue.values());

    const PlacedBlock record = makeRecord<Form>(s);
    record.makeReadOnly();
    const PlacedBlock scratch(scratchBytes<Form>(s));
    IsolatedRows<T> destination(s.layout<Form>());
    const auto arguments = argumentsFor<Form>(s, source, destination, record, scratch, borderValue.forBorder(s.border));
    ASSERT_EQ(arguments.call(s.operation, s.generation), lumOk);
    Image<T> actual(s.layout<Form>());
    actual.forEach(Area::Roi, [&](T& element, int x, int y, int c) { element = destination.at(x, y, c); });
    EXPECT_TRUE(sameImage(expected, actual));
    EXPECT_TRUE(destination.slackIntact());
    EXPECT_TRUE(scratch.intact());
}

TYPE_TEST(MorphMemory, RowsBetweenUnreadablePages)
{
    int number = firstNumber<TypeParam>();
    for (int round = 0; round < 5; ++round) {
        for (const int width : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 21, 31, 32, 33, 47, 63, 64, 65, 67, 100, 129}) {
            Setting s = inTurn(number);
            s.width = width;
            s.height = 1 + number % 9;
            s.guard = number / 2 % 2 == 0 ? Guard::After : Guard::Before;
            ++number;
            expectRowsRespected<TypeParam>(s);
            if (::testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

TYPE_TEST(MorphMemoryQuick, RowsBetweenUnreadablePages)
{
    for (int number = firstNumber<TypeParam>(); number < 14; ++number) {
        Setting s = inTurn(number);
        s.width = 1 + number * 17 % 60;
        s.height = 1 + number % 6;
        s.guard = number / 2 % 2 == 0 ? Guard::After : Guard::Before;
        expectRowsRespected<TypeParam>(s);
    }
}

// Records and scratch of exactly the queried sizes at every byte address.
TYPE_TEST(MorphMemory, BlocksStandAnywhere)
{
    int number = firstNumber<TypeParam>();
    for (std::size_t distance = 0; distance < 64; ++distance) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (int i = 0; i < 2; ++i) {
                Setting s = inTurn(number);
                s.width = 1 + number * 7 % 40;
                s.height = 1 + number % 13;
                s.guard = guard;
                s.distance = distance;
                ++number;
                expectMorphology<TypeParam>(s);
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

// Where the formula leaves least: elements that are one row or one column, in images of one row, column or pixel.
TYPE_TEST(MorphMemory, TightBlocksStandAnywhere)
{
    int number = firstNumber<TypeParam>();
    for (const StructuringElement& element : {rectangle(3, 1), rectangle(2, 1), rectangle(1, 3), rectangle(1, 2),
                                              rectangle(9, 1), rectangle(31, 1), singlePosition(3, 1, 2, 0)}) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{4, 1}, LumiSize{1, 4}, LumiSize{33, 2}, LumiSize{8, 8}}) {
            for (const std::size_t distance : {0, 1, 2, 3, 5, 16, 31, 33, 63}) {
                Setting s = inTurn(number);
                s.element = element;
                s.width = size.width;
                s.height = size.height;
                s.distance = distance;
                s.guard = number / 5 % 2 == 0 ? Guard::After : Guard::Before;
                ++number;
                expectMorphology<TypeParam>(s);
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

// Destination and source rows at every alignment.
TYPE_TEST(MorphMemory, RowsStandAnywhere)
{
    for (int offset = 0; offset < 64; ++offset) {
        for (int i = 0; i < 2; ++i) {
            Setting s = inTurn(firstNumber<TypeParam>() + offset * 2 + i);
            s.width = 67;
            s.height = 5;
            s.guard = offset % 2 == 0 ? Guard::Before : Guard::After;
            s.offset = offset;
            expectMorphology<TypeParam>(s);
        }
    }
}

/// A source and the result that a setting makes of it.
template <class Form>
struct Expectation
{
    using T = typename Form::Element;

    explicit Expectation(const Setting& s)
        : setting(s), source(s.layout<Form>(promisedMargins(s.recipe<Form>(), s.element))), borderValue(s)
    {
        fillPixels<T>(source, s, Area::WithMargins);
        expected.emplace(reference<Form>(s, source, borderValue.values()));
    }
    LumStatus call(Image<T>& destination, const PlacedBlock& record, const PlacedBlock& scratch) const
    {
        const auto arguments =
            argumentsFor<Form>(setting, source, destination, record, scratch, borderValue.forBorder(setting.border));
        return arguments.call(setting.operation, setting.generation);
    }

    Setting setting;
    Image<T> source;
    BorderValue<Form> borderValue;
    std::optional<Image<T>> expected;
};

TYPE_TEST(MorphMemoryQuick, ScratchHoldsNothing)
{
    using T = typename TypeParam::Element;
    for (int number = firstNumber<TypeParam>(); number < 28; ++number) {
        Setting s = inTurn(number);
        s.width = 21;
        s.height = 13;
        const Expectation<TypeParam> expectation(s);
        const PlacedBlock record = makeRecord<TypeParam>(s);
        const PlacedBlock scratch(scratchBytes<TypeParam>(s));
        for (const int byte : {0x00, 0xff, 0x7f, 0x80}) {
            Image<T> destination(s.layout<TypeParam>());
            std::memset(scratch.data(), byte, scratch.size());
            ASSERT_EQ(expectation.call(destination, record, scratch), lumOk);
            EXPECT_TRUE(sameImage(*expectation.expected, destination)) << s << ", scratch of bytes " << byte;
        }
    }
}

// Records and blocks serve calls of any number of smaller ROIs, one after the other, and the compound ones as well.
TYPE_TEST(MorphMemory, SmallerRoiInTheSameBlocks)
{
    int number = firstNumber<TypeParam>();
    for (const LumiSize queried : {LumiSize{40, 30}, LumiSize{19, 90}, LumiSize{90, 13}, LumiSize{9, 9}}) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{90, 1}, LumiSize{1, 90}, LumiSize{3, 2}, LumiSize{90, 7},
                                    LumiSize{7, 90}, LumiSize{18, 12}, LumiSize{2, 50}}) {
            for (int i = 0; i < 8; ++i) {
                Setting s = inTurn(number++);
                s.width = std::min(size.width, queried.width);
                s.height = std::min(size.height, queried.height);
                s.queriedBeyondRoi = {queried.width - s.width, queried.height - s.height};
                s.distance = static_cast<std::size_t>(number % 3);
                s.guard = number % 2 == 0 ? Guard::After : Guard::Before;
                expectMorphology<TypeParam>(s);
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

// The stride of a single row is never used.
TYPE_TEST(MorphMemoryQuick, StrideOfASingleRow)
{
    using T = typename TypeParam::Element;
    for (int number = firstNumber<TypeParam>(); number < 14; ++number) {
        Setting s = inTurn(number);
        s.border = lumBorderReplicate;
        s.width = 40;
        s.height = 1;
        const Expectation<TypeParam> expectation(s);
        const PlacedBlock record = makeRecord<TypeParam>(s);
        const PlacedBlock scratch(scratchBytes<TypeParam>(s));
        Image<T> destination(s.layout<TypeParam>());
        auto arguments = argumentsFor<TypeParam>(s, expectation.source, destination, record, scratch,
                                                 expectation.borderValue.forBorder(s.border));
        arguments.srcStep = 0x7ffffffc;
        arguments.dstStep = 0x7ffffff8;
        ASSERT_EQ(arguments.call(s.operation, s.generation), lumOk) << s;
        EXPECT_TRUE(sameImage(*expectation.expected, destination)) << s;
    }
}

// A record is read by any number of threads, each with its own scratch.
TYPE_TEST(MorphMemoryQuick, ThreadsShareARecord)
{
    using T = typename TypeParam::Element;
    for (int number = firstNumber<TypeParam>(); number < 14; ++number) {
        Setting s = inTurn(number);
        s.width = 31;
        s.height = 23;
        const Expectation<TypeParam> expectation(s);
        const PlacedBlock record = makeRecord<TypeParam>(s);
        record.makeReadOnly();
        std::array<LumStatus, 2> statuses{};
        std::vector<Image<T>> destinations(2, Image<T>(s.layout<TypeParam>()));
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < statuses.size(); ++i) {
            threads.emplace_back([&, i] {
                const PlacedBlock scratch(scratchBytes<TypeParam>(s));
                for (int repetition = 0; repetition < 3; ++repetition) {
                    statuses[i] = expectation.call(destinations[i], record, scratch);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (std::size_t i = 0; i < statuses.size(); ++i) {
            EXPECT_EQ(statuses[i], lumOk);
            EXPECT_TRUE(sameImage(*expectation.expected, destinations[i])) << s;
        }
    }
}

// Images beyond any cache that is reported; what is reported changes no pixel.
template <class Form>
void expectLargeImage(Operation operation, const StructuringElement& element)
{
    using T = typename Form::Element;
    Setting s;
    s.operation = operation;
    s.element = element;
    s.width = 1501;
    s.height = 350;
    const Expectation<Form> expectation(s);
    const PlacedBlock record = makeRecord<Form>(s);
    const PlacedBlock scratch(scratchBytes<Form>(s));
    for (const int bytes : {1, 0x40000000}) {
        const ReportedCacheSize reported(0, bytes);
        Image<T> destination(s.layout<Form>());
        ASSERT_EQ(expectation.call(destination, record, scratch), lumOk);
        EXPECT_TRUE(sameImage(*expectation.expected, destination)) << s << ", cache of " << bytes;
        EXPECT_TRUE(destination.gapsIntact());
        EXPECT_TRUE(scratch.intact());
    }
}

TEST(MorphLarge, Images)
{
    expectLargeImage<Form8uC1>(Operation::Erode, rectangle(3, 3));
    expectLargeImage<Form8uC1>(Operation::Tophat, rectangle(3, 1));
    expectLargeImage<Form32fC1>(Operation::Dilate, disc(3));
}

}  // namespace
}  // namespace lumcv::test::morph
