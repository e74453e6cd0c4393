// Lens undistortion: the checks of the arguments, the size of the scratch, and the control words of the caller.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "geometry/undistort_forms.hpp"
#include "support/compare.hpp"
#include "support/control_words.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::geometry {
namespace {

constexpr LumiSize kSize = {9, 6};

TEST(UndistortSizeQuick, Formula)
{
    for (const int width : {1, 2, 3, 4, 5, 7, 8, 9, 640, 641, 1920, 1000001, 89478477, 89478480}) {
        for (const int height : {1, 2, 1080, std::numeric_limits<int>::max()}) {
            Lum32s bytes = -1;
            EXPECT_EQ(lumiUndistortGetSize({width, height}, &bytes), lumOk);
            EXPECT_EQ(static_cast<std::size_t>(bytes), undistortScratchBytes(width)) << width;
        }
    }
    Lum32s bytes = -1;
    EXPECT_EQ(lumiUndistortGetSize({1, 1}, &bytes), lumOk);
    EXPECT_EQ(bytes, 128);
    EXPECT_EQ(lumiUndistortGetSize({1921, 1}, &bytes), lumOk);
    EXPECT_EQ(bytes, 46208);
    for (const int width : {89478481, 89478484, 1 << 29, (1 << 30) + 1, std::numeric_limits<int>::max()}) {
        bytes = -1;
        EXPECT_EQ(lumiUndistortGetSize({width, 3}, &bytes), lumErrSizeTooLarge) << width;
        EXPECT_EQ(bytes, -1) << "written on failure";
    }
}

struct SizeArgs
{
    Lum32s* written;
    Lum32s* pBufferSize;
    LumiSize roiSize;

    LumStatus call() const
    {
        return lumiUndistortGetSize(roiSize, pBufferSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(written, sizeof *written)};
    }
};

TEST(UndistortSizeQuick, ChecksInOrder)
{
    using A = SizeArgs;
    Lum32s bytes = -1;
    expectStatusOrder(
        A{&bytes, &bytes, {40, 30}},
        {
            {"pBufferSize null", lumErrNullPointer, [](A& a) { a.pBufferSize = nullptr; }},
            {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
            {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -40; }},
            {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
            {"height least", lumErrSize, [](A& a) { a.roiSize.height = std::numeric_limits<int>::min(); }},
            {"too wide", lumErrSizeTooLarge, [](A& a) { a.roiSize.width = 1 << 30; }},
        });
}

template <class A>
void appendLensChecks(std::vector<Violation<A>>& table)
{
    table.push_back({"fx 0", lumErrArgument, [](A& a) { a.lens.fx = 0.0f; }});
    table.push_back({"fx -0", lumErrArgument, [](A& a) { a.lens.fx = -0.0f; }});
    table.push_back({"fy 0", lumErrArgument, [](A& a) { a.lens.fy = 0.0f; }});
    table.push_back({"fy -0", lumErrArgument, [](A& a) { a.lens.fy = -0.0f; }});
}

/// Of a stride of a row of so many bytes.
template <class A>
std::vector<Violation<A>> widthChecks(const std::string& name, Lum32s A::*step, int rowBytes, int elementBytes)
{
    return {
        {name + " one byte below a row", lumErrStep, [=](A& a) { a.*step = rowBytes - 1; }},
        {name + " one element below a row", lumErrStep, [=](A& a) { a.*step = rowBytes - elementBytes; }},
        {name + " 0", lumErrStep, [=](A& a) { a.*step = 0; }},
        {name + " negative", lumErrStep, [=](A& a) { a.*step = -2 * rowBytes; }},
    };
}

template <class A>
std::vector<Violation<A>> alignmentChecks(const std::string& name, Lum32s A::*step, int rowBytes, int elementBytes)
{
    std::vector<Violation<A>> result;
    for (int off = 1; off < elementBytes; ++off) {
        result.push_back(
            {name + " off by " + std::to_string(off), lumErrStepAlignment, [=](A& a) { a.*step = rowBytes + off; }});
    }
    return result;
}

template <class A>
void append(std::vector<Violation<A>>& table, const std::vector<Violation<A>>& more)
{
    table.insert(table.end(), more.begin(), more.end());
}

template <class F>
struct RadialArgs
{
    using T = typename F::Element;

    const Image<T>* destination;
    const T* pSrc;
    Lum32s srcStep;
    T* pDst;
    Lum32s dstStep;
    LumiSize roiSize;
    Lens lens;
    Lum8u* pBuffer;

    LumStatus call() const
    {
        return F::call(pSrc, srcStep, pDst, dstStep, roiSize, lens, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination)};
    }
};

template <class F>
std::vector<Violation<RadialArgs<F>>> radialChecks()
{
    using A = RadialArgs<F>;
    constexpr int row = kSize.width * F::channels * F::elementBytes;
    std::vector<Violation<A>> table = {
        {"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -1; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -6; }},
    };
    append(table, widthChecks("srcStep", &A::srcStep, row, F::elementBytes));
    append(table, widthChecks("dstStep", &A::dstStep, row, F::elementBytes));
    append(table, alignmentChecks("srcStep", &A::srcStep, row, F::elementBytes));
    append(table, alignmentChecks("dstStep", &A::dstStep, row, F::elementBytes));
    appendLensChecks(table);
    return table;
}

template <class F>
class UndistortStatusQuick : public testing::Test
{
  public:
    UndistortStatusQuick()
    {
        Random random(4);
        fill(source_, random);
    }
    RadialArgs<F> args(bool hasScratch)
    {
        const Lens lens = {.fx = 11, .fy = 12, .cx = 4.2f, .cy = 2.6f, .k1 = -0.2f, .k2 = 0.03f};
        return {&destination_,
                source_.pixels(),
                source_.step(),
                destination_.pixels(),
                destination_.step(),
                kSize,
                lens,
                hasScratch ? scratch_.data() : nullptr};
    }

  private:
    Image<typename F::Element> source_{
        {.width = kSize.width, .height = kSize.height, .channels = F::channels, .gap = 8}};
    Image<typename F::Element> destination_{
        {.width = kSize.width, .height = kSize.height, .channels = F::channels, .gap = 4}};
    PlacedBlock scratch_{undistortScratchBytes(kSize.width), Guard::After, 5};
};
TYPED_TEST_SUITE(UndistortStatusQuick, UndistortForms, UndistortFormName);

TYPED_TEST(UndistortStatusQuick, ChecksInOrder)
{
    expectStatusOrder(this->args(true), radialChecks<TypeParam>());
    expectStatusOrder(this->args(false), radialChecks<TypeParam>());
}

struct MapArgs
{
    const Image<Lum32f>* columns;
    const Image<Lum32f>* rows;
    Lum32f* pxMap;
    Lum32s xStep;
    Lum32f* pyMap;
    Lum32s yStep;
    LumiSize roiSize;
    Lens lens;
    Lum8u* pBuffer;

    LumStatus call() const
    {
        return createMaps(pxMap, xStep, pyMap, yStep, roiSize, lens, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*columns), Output(*rows)};
    }
};

std::vector<Violation<MapArgs>> mapChecks()
{
    using A = MapArgs;
    std::vector<Violation<A>> table = {
        {"pxMap null", lumErrNullPointer, [](A& a) { a.pxMap = nullptr; }},
        {"pyMap null", lumErrNullPointer, [](A& a) { a.pyMap = nullptr; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -1; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -6; }},
    };
    append(table, widthChecks("xStep", &A::xStep, 4 * kSize.width, 4));
    append(table, widthChecks("yStep", &A::yStep, 4 * kSize.width, 4));
    append(table, alignmentChecks("xStep", &A::xStep, 4 * kSize.width, 4));
    append(table, alignmentChecks("yStep", &A::yStep, 4 * kSize.width, 4));
    appendLensChecks(table);
    return table;
}

struct MapFixture
{
    MapArgs args(const Lens& lens, bool hasScratch)
    {
        return {&columns,       &rows,         columns.pixels(),
                columns.step(), rows.pixels(), rows.step(),
                kSize,          lens,          hasScratch ? scratch.data() : nullptr};
    }

    Image<Lum32f> columns{{.width = kSize.width, .height = kSize.height, .gap = 4}};
    Image<Lum32f> rows{{.width = kSize.width, .height = kSize.height, .gap = 8}};
    PlacedBlock scratch{undistortScratchBytes(kSize.width)};
};

TEST(UndistortMapStatusQuick, ChecksInOrder)
{
    MapFixture maps;
    for (const Lens& lens : {Lens{.k1 = 0.1f}, Lens{.k1 = 0.1f, .p1 = 0.2f}}) {
        expectStatusOrder(maps.args(lens, true), mapChecks());
        expectStatusOrder(maps.args(lens, false), mapChecks());
    }
}

// All roundings, denormals flushed and taken for zero, each with traps at denormals or without; the x87 unit with other
// roundings and other precisions.
std::vector<ControlWords> wordsOfCallers()
{
    std::vector<ControlWords> result;
    const Lum16u x87[] = {0x037f, 0x077f, 0x0b7f, 0x0f7f, 0x007f, 0x027d};
    for (const unsigned rounding : {0u, kRoundDown, kRoundUp, kRoundToZero}) {
        for (const unsigned denormals : {0u, 0x8000u, 0x0040u, 0x8040u}) {
            for (const unsigned masks : {kAllMasked, kAllMasked & ~kDenormalMask}) {
                result.push_back({masks | rounding | denormals, x87[result.size() % std::size(x87)]});
            }
        }
    }
    result.push_back({kAllMasked | 0x003f, 0x037f});  // with the flags of earlier operations
    return result;
}

/// Lenses whose sums take denormal numbers, and ordinary ones.
std::vector<Lens> lensesForControlWords()
{
    Random random(17);
    std::vector<Lens> result;
    for (int i = 0; i < 12; ++i) {
        result.push_back(ordinaryLens(kSize, random));
    }
    for (const Lum32f tiny : {1e-39f, -1e-39f, 3e-42f, -3e-45f}) {
        result.push_back({.fx = 9, .fy = 9, .cx = tiny, .cy = tiny, .k1 = 0.01f});
        result.push_back({.fx = 9, .fy = 9, .cx = 4, .cy = 3, .k1 = tiny, .k2 = tiny});
        result.push_back({.fx = 9, .fy = 9, .cx = tiny, .cy = 2, .k1 = 0.01f, .p1 = tiny, .p2 = tiny});
        result.push_back({.fx = 1 / tiny, .fy = 1e20f, .cx = 4, .cy = 3, .k1 = 0.01f, .k2 = 1e30f, .p1 = 0.1f});
    }
    return result;
}

TYPED_TEST(UndistortStatusQuick, CallersControlWordsDoNotMatterAndAreKept)
{
    using T = typename TypeParam::Element;
    Random random(8);
    Image<T> source({.width = kSize.width, .height = kSize.height, .channels = TypeParam::channels});
    source.forEach(Area::Roi, [&](T& element, int, int, int) {
        element = random.value<T>(Values::Ordinary);
        if constexpr (std::is_same_v<T, Lum32f>) {
            element = random.oneIn(3) ? element * 1e-42f : element;
        }
    });
    const PlacedBlock scratch(undistortScratchBytes(kSize.width));
    for (const Lens& lens : lensesForControlWords()) {
        Image<T> expected(source.layout());
        undistort(source, expected, lens);
        for (const ControlWords& words : wordsOfCallers()) {
            for (Lum8u* const pBuffer : {static_cast<Lum8u*>(nullptr), static_cast<Lum8u*>(scratch.data())}) {
                Image<T> result(source.layout());
                const Outcome outcome = callUnder(words, [&] {
                    return TypeParam::call(source.pixels(), source.step(), result.pixels(), result.step(), kSize, lens,
                                           pBuffer);
                });
                EXPECT_EQ(outcome.status, lumOk);
                expectWordsKept(outcome, words);
                ASSERT_TRUE(sameImage(expected, result)) << lens << ", word " << std::hex << words.vector;
            }
        }
    }
}

TEST(UndistortMapStatusQuick, CallersControlWordsDoNotMatterAndAreKept)
{
    const PlacedBlock scratch(undistortScratchBytes(kSize.width));
    for (const Lens& lens : lensesForControlWords()) {
        for (const Lum32f tangential : {0.0f, 1.0f}) {
            Lens used = lens;
            used.p1 *= tangential;
            used.p2 *= tangential;
            MapFixture expected;
            createMaps(expected.columns, expected.rows, used);
            for (const ControlWords& words : wordsOfCallers()) {
                for (const bool hasScratch : {false, true}) {
                    MapFixture maps;
                    const MapArgs args = maps.args(used, hasScratch);
                    const Outcome outcome = callUnder(words, [&] { return args.call(); });
                    EXPECT_EQ(outcome.status, lumOk);
                    expectWordsKept(outcome, words);
                    ASSERT_TRUE(sameImage(expected.columns, maps.columns))
                        << used << ", word " << std::hex << words.vector;
                    ASSERT_TRUE(sameImage(expected.rows, maps.rows)) << used << ", word " << std::hex << words.vector;
                }
            }
        }
    }
}

TYPED_TEST(UndistortStatusQuick, ControlWordsAreKeptAfterEveryError)
{
    for (const auto& violation : radialChecks<TypeParam>()) {
        SCOPED_TRACE(violation.name);
        RadialArgs<TypeParam> args = this->args(true);
        violation.apply(args);
        for (const ControlWords& words : wordsOfCallers()) {
            const Outcome outcome = callUnder(words, [&] { return args.call(); });
            EXPECT_EQ(outcome.status, violation.status);
            expectWordsKept(outcome, words);
        }
    }
}

TEST(UndistortMapStatusQuick, ControlWordsAreKeptAfterEveryError)
{
    MapFixture maps;
    for (const auto& violation : mapChecks()) {
        SCOPED_TRACE(violation.name);
        MapArgs args = maps.args({.k1 = 0.1f}, false);
        violation.apply(args);
        for (const ControlWords& words : wordsOfCallers()) {
            const Outcome outcome = callUnder(words, [&] { return args.call(); });
            EXPECT_EQ(outcome.status, violation.status);
            expectWordsKept(outcome, words);
        }
    }
}

}  // namespace
}  // namespace lumcv::test::geometry
