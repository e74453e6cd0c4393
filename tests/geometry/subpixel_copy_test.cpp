// Copies at a fractional offset compared with their formulas: weights, values, scaling, and what is read.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <thread>
#include <vector>

#include "geometry/subpixel_forms.hpp"
#include "geometry/subpixel_reference.hpp"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"
#include "support/status_order.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::geometry {
namespace {

TYPE_SUITE(SubpixelCopyQuick, SubpixelForms, SubpixelFormName);

TYPE_SUITE(SubpixelCopy, SubpixelForms, SubpixelFormName);

/// A source with the column and the row that a copy reads beyond its ROI.
template <class F>
Image<typename F::Source> makeSource(Layout layout, Values values, std::uint64_t seed)
{
    layout.margins = {0, 1, 0, 1};
    Image<typename F::Source> source(layout);
    Random random(seed);
    fill(source, random, values, Area::WithMargins);
    return source;
}

template <class F>
void expectCopy(const Image<typename F::Source>& source, const Layout& layout, Lum32f dx, Lum32f dy, Lum32s scaleFactor)
{
    Image<typename F::Destination> expected(layout);
    copySubpixel<typename F::Source>(source, expected, dx, dy, scaleFactor);
    Image<typename F::Destination> result(layout);
    ASSERT_EQ(F::copy(source.pixels(), source.step(), result.pixels(), result.step(), {layout.width, layout.height}, dx,
                      dy, scaleFactor),
              lumOk);
    EXPECT_TRUE(sameImage(expected, result))
        << "dx " << elementText(dx) << ", dy " << elementText(dy) << ", scale factor " << scaleFactor;
    EXPECT_TRUE(result.gapsIntact());
}

template <class F>
void sweepAgainstReference(Sweep sweep)
{
    forEachGeometry(sweep, [](const Geometry& geometry) {
        Random random(static_cast<std::uint64_t>(geometry.number) + 5);
        const Values kinds[] = {Values::Ordinary, Values::Extreme, Values::NonFinite};
        const Image<typename F::Source> source =
            makeSource<F>(geometry.layout<typename F::Source>(0), kinds[geometry.number % 3], random.bits());
        const Image<typename F::Source> before = source;
        for (int i = 0; i < 4; ++i) {
            expectCopy<F>(source, geometry.layout<typename F::Destination>(1), drawOffset(random), drawOffset(random),
                          scaleFactorOf<F>(geometry.number * 4 + i));
        }
        EXPECT_TRUE(sameBytes(before, source)) << "the source was written";
    });
}

TYPE_TEST(SubpixelCopyQuick, Sizes)
{
    sweepAgainstReference<TypeParam>(Sweep::Quick);
}

TYPE_TEST(SubpixelCopy, Sizes)
{
    sweepAgainstReference<TypeParam>(Sweep::Full);
}

TYPE_TEST(SubpixelCopy, ManyFractions)
{
    Random random(23);
    const Layout layout = {.width = 37, .height = 2};
    const auto source = makeSource<TypeParam>(layout, Values::Extreme, 9);
    for (int i = 0; i < 5000; ++i) {
        expectCopy<TypeParam>(source, layout, drawOffset(random), drawOffset(random), scaleFactorOf<TypeParam>(i));
        ASSERT_FALSE(testing::Test::HasFailure()) << "number " << i;
    }
}

TYPE_TEST(SubpixelCopy, LargerImages)
{
    for (const LumiSize size : {LumiSize{1100, 70}, {20000, 3}, {5, 3000}, {333, 333}}) {
        for (const int offset : {0, 1}) {
            const ReportedCacheSize reported(0, 1024);
            Layout layout;
            layout.width = size.width;
            layout.height = size.height;
            layout.offset = offset;
            const auto source = makeSource<TypeParam>(layout, Values::Ordinary, 9);
            expectCopy<TypeParam>(source, layout, 0.3f, 0.71f, 0);
        }
    }
}

// One column and one row more than the ROI, each row alone between unreadable pages.
TYPE_TEST(SubpixelCopyQuick, RowsAlone)
{
    using S = typename TypeParam::Source;
    using D = typename TypeParam::Destination;
    for (const int width : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 47, 48, 63, 64, 65, 70}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (const int height : {1, 2, 5}) {
                Layout layout;
                layout.width = width;
                layout.height = height;
                layout.guard = guard;
                IsolatedRows<D> destination(layout);
                Image<D> expected(layout);
                layout.margins = {0, 1, 0, 1};
                IsolatedRows<S> source(layout);
                Random random(static_cast<std::uint64_t>(width));
                source.forEach([&](S& element, int, int, int) { element = random.value<S>(Values::Ordinary); });
                source.makeReadOnly();
                const Lum32f dx = random.unit<Lum32f>();
                const Lum32f dy = height == 2 ? 0.0f : random.unit<Lum32f>();
                ASSERT_EQ(TypeParam::copy(source.pixels(), source.step(), destination.pixels(), destination.step(),
                                          {width, height}, dx, dy, 0),
                          lumOk);
                copySubpixel<S>(source, expected, dx, dy, 0);
                for (int y = 0; y < height; ++y) {
                    ASSERT_TRUE(sameElements(expected.row(y), destination.row(y), static_cast<std::size_t>(width)))
                        << "width " << width << ", row " << y;
                }
                EXPECT_TRUE(destination.slackIntact());
            }
        }
    }
}

// The stride need not have room for the column more: rows may follow one another without a gap, and the neighbour of
// the last pixel is then the first of the next row.
TYPE_TEST(SubpixelCopyQuick, StrideOfOneRow)
{
    using S = typename TypeParam::Source;
    using D = typename TypeParam::Destination;
    for (const int width : {1, 3, 8, 17, 33, 64}) {
        constexpr int height = 5;
        const GuardedBlock block(static_cast<std::size_t>((height + 1) * width + 1) * sizeof(S), Guard::After);
        Random random(static_cast<std::uint64_t>(width));
        for (int i = 0; i <= (height + 1) * width; ++i) {
            block.as<S>()[i] = random.value<S>(Values::Ordinary);
        }
        struct Rows
        {
            const S* first;
            int width;
            S at(int x, int y) const
            {
                return first[y * width + x];
            }
        };
        Image<D> expected({.width = width, .height = height});
        copySubpixel<S>(Rows{block.as<S>(), width}, expected, 0.4f, 0.6f, 0);
        Image<D> result({.width = width, .height = height});
        EXPECT_EQ(TypeParam::copy(block.as<S>(), width * static_cast<int>(sizeof(S)), result.pixels(), result.step(),
                                  {width, height}, 0.4f, 0.6f, 0),
                  lumOk);
        EXPECT_TRUE(sameImage(expected, result)) << "width " << width;
    }
}

/// The weights of a copy: with a scale factor of -14 the sum itself is stored, and a single pixel of 1 is its weight.
Weights weightsOfCopy(Lum32f dx, Lum32f dy)
{
    int weights[4];
    for (int i = 0; i < 4; ++i) {
        Lum8u source[4] = {};
        source[i] = 1;
        Lum16u weight = 0;
        EXPECT_EQ(lumiCopySubpix_8u16u_C1R_Sfs(source, 2, &weight, 2, {1, 1}, dx, dy, -14), lumOk);
        weights[i] = weight;
    }
    return {weights[0], weights[1], weights[2], weights[3]};
}

void expectWeights(const Weights& expected, const Weights& actual, const std::string& what)
{
    EXPECT_EQ(actual.w00, expected.w00) << what;
    EXPECT_EQ(actual.w10, expected.w10) << what;
    EXPECT_EQ(actual.w01, expected.w01) << what;
    EXPECT_EQ(actual.w11, expected.w11) << what;
}

TEST(SubpixelWeightsQuick, DocumentedFractions)
{
    expectWeights({16384, 0, 0, 0}, weightsOfCopy(0, 0), "no offset");
    expectWeights({4096, 4096, 4096, 4096}, weightsOfCopy(0.5f, 0.5f), "both halves");
    expectWeights({4096, 12288, 0, 0}, weightsOfCopy(0.75f, 0), "three quarters");
    expectWeights({4096, 12288, 0, 0}, weightsOfCopy(-0.25f, 0), "one quarter to the left");
    expectWeights({4096, 0, 12288, 0}, weightsOfCopy(12, -5.25f), "one quarter upwards");
    expectWeights({0, 16384, 0, 0}, weightsOfCopy(-1e-10f, 0), "a fraction that becomes 1");
    expectWeights({0, 16384, 0, 0}, weightsOfCopy(0x1.fffffep-1f, 0), "a fraction that is quantised to 1");
    expectWeights({16384, 0, 0, 0}, weightsOfCopy(std::numeric_limits<Lum32f>::quiet_NaN(), -1e30f), "no fraction");
}

/// Where an excess is taken from.
enum class Correction
{
    None,
    W00,
    W01,
    W11,
    W10,
    Count
};

Correction correctionOf(int a, int b)
{
    const int qa = 16384 - a, qb = 16384 - b;
    const auto rounded = [](int product) { return (product + 8192) >> 14; };
    const Weights w = weightsOf(a, b);
    return w.w00 != rounded(qa * qb)  ? Correction::W00
           : w.w01 != rounded(qa * b) ? Correction::W01
           : w.w11 != rounded(a * b)  ? Correction::W11
           : w.w10 != rounded(a * qb) ? Correction::W10
                                      : Correction::None;
}

void expectWeightsOf(int a, int b)
{
    // 1 as a fraction comes of the remainder that is just below 0
    const auto offset = [](int n) { return n == 16384 ? -1e-10f : static_cast<Lum32f>(n) / 16384.0f; };
    const Weights weights = weightsOfCopy(offset(a), offset(b));
    expectWeights(weightsOf(a, b), weights, "a " + std::to_string(a) + ", b " + std::to_string(b));
    EXPECT_EQ(weights.w00 + weights.w10 + weights.w01 + weights.w11, 16384) << "a " << a << ", b " << b;
}

TEST(SubpixelWeights, AnyFractions)
{
    Random random(3);
    for (int i = 0; i < 3000; ++i) {
        expectWeightsOf(static_cast<int>(random.between(0, 16384)), static_cast<int>(random.between(0, 16384)));
    }
}

// All four weights are rounded up where a * b ends in half a unit, and only there. Two of them may be the largest.
TEST(SubpixelWeights, ExcessIsTakenFromOneOfThem)
{
    int found[static_cast<int>(Correction::Count)] = {};
    for (const FractionsWithExcess f : fractionsWithExcess()) {
        expectWeightsOf(f.a, f.b);
        ++found[static_cast<int>(correctionOf(f.a, f.b))];
    }
    EXPECT_EQ(found[static_cast<int>(Correction::None)], 0);
    for (const Correction kind : {Correction::W00, Correction::W01, Correction::W11, Correction::W10}) {
        EXPECT_GT(found[static_cast<int>(kind)], 100) << "correction " << static_cast<int>(kind);
    }
}

TYPE_TEST(SubpixelCopyQuick, WithoutOffsetACopy)
{
    using D = typename TypeParam::Destination;
    const Layout layout = {.width = 70, .height = 3};
    const auto source = makeSource<TypeParam>(layout, Values::Ordinary, 1);
    Image<D> result(layout);
    ASSERT_EQ(TypeParam::copy(source.pixels(), source.step(), result.pixels(), result.step(), {70, 3}, 0, 0, 0), lumOk);
    result.forEach(Area::Roi, [&](D& element, int x, int y, int) {
        const auto value = static_cast<double>(source.at(x, y));
        // of floats a millionth of the differences to the neighbours, besides a few roundings
        const bool isFloat = std::is_same_v<D, Lum32f>;
        const double tolerance = isFloat ? 1e-6 * std::abs(value) + 4e-6 * 65535 : 0.0;
        EXPECT_NEAR(static_cast<double>(element), value, tolerance) << "x " << x << ", y " << y;
    });
}

TEST(SubpixelScaleQuick, AllFactors)
{
    const Lum8u source[2][2] = {{200, 200}, {200, 200}};
    const auto scaledBy = [&](Lum32s scaleFactor) {
        Lum16u result = 7;
        EXPECT_EQ(lumiCopySubpix_8u16u_C1R_Sfs(source[0], 2, &result, 2, {1, 1}, 0.5f, 0.25f, scaleFactor), lumOk);
        return result;
    };
    EXPECT_EQ(scaledBy(0), 200);
    EXPECT_EQ(scaledBy(3), 25);
    EXPECT_EQ(scaledBy(4), 13) << "12.5 is rounded up";
    EXPECT_EQ(scaledBy(8), 1);
    EXPECT_EQ(scaledBy(9), 0);
    EXPECT_EQ(scaledBy(16), 0);
    EXPECT_EQ(scaledBy(17), 0);
    EXPECT_EQ(scaledBy(2147483647), 0);
    EXPECT_EQ(scaledBy(-1), 400);
    EXPECT_EQ(scaledBy(-8), 51200);
    EXPECT_EQ(scaledBy(-9), 65535);
    EXPECT_EQ(scaledBy(-13), 65535);
    EXPECT_EQ(scaledBy(-14), 65535);
    EXPECT_EQ(scaledBy(-40), 65535);
    EXPECT_EQ(scaledBy(-2147483647 - 1), 65535);
}

TEST(SubpixelScaleQuick, ZeroStaysZero)
{
    const Lum8u source[2][2] = {};
    for (const Lum32s scaleFactor : kScaleFactors) {
        Lum16u result = 7;
        EXPECT_EQ(lumiCopySubpix_8u16u_C1R_Sfs(source[0], 2, &result, 2, {1, 1}, 0.5f, 0.25f, scaleFactor), lumOk);
        EXPECT_EQ(result, 0) << "scale factor " << scaleFactor;
    }
}

TYPE_TEST(SubpixelCopyQuick, ThreadsShareASource)
{
    const Layout layout = {.width = 200, .height = 30};
    const auto source = makeSource<TypeParam>(layout, Values::Ordinary, 1);
    std::thread other([&] { expectCopy<TypeParam>(source, layout, 0.3f, 0.4f, 0); });
    expectCopy<TypeParam>(source, layout, 0.3f, 0.4f, 0);
    other.join();
}

template <class F>
struct CopyArgs
{
    const Image<typename F::Destination>* destination;
    const typename F::Source* pSrc;
    Lum32s srcStep;
    typename F::Destination* pDst;
    Lum32s dstStep;
    LumiSize roiSize;

    LumStatus call() const
    {
        return F::copy(pSrc, srcStep, pDst, dstStep, roiSize, 0.5f, 0.5f, 0);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination)};
    }
};

TYPE_TEST(SubpixelCopyQuick, ChecksInOrder)
{
    using A = CopyArgs<TypeParam>;
    using S = typename TypeParam::Source;
    using D = typename TypeParam::Destination;
    constexpr int sourceRow = 9 * static_cast<int>(sizeof(S));
    constexpr int destinationRow = 9 * static_cast<int>(sizeof(D));
    const auto source = makeSource<TypeParam>({.width = 9, .height = 4, .gap = 8}, Values::Ordinary, 3);
    Image<D> destination({.width = 9, .height = 4, .gap = 4});
    std::vector<Violation<A>> table = {
        {"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -9; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -4; }},
        {"srcStep one byte below a row", lumErrStep, [](A& a) { a.srcStep = sourceRow - 1; }},
        {"srcStep 0", lumErrStep, [](A& a) { a.srcStep = 0; }},
        {"srcStep negative", lumErrStep, [](A& a) { a.srcStep = -sourceRow; }},
        {"dstStep one byte below a row", lumErrStep, [](A& a) { a.dstStep = destinationRow - 1; }},
        {"dstStep negative", lumErrStep, [](A& a) { a.dstStep = -destinationRow; }},
    };
    for (int off = 1; off < static_cast<int>(sizeof(S)); ++off) {
        table.push_back(
            {"srcStep off by " + std::to_string(off), lumErrStepAlignment, [=](A& a) { a.srcStep = sourceRow + off; }});
    }
    for (int off = 1; off < static_cast<int>(sizeof(D)); ++off) {
        table.push_back({"dstStep off by " + std::to_string(off), lumErrStepAlignment,
                         [=](A& a) { a.dstStep = destinationRow + off; }});
    }
    expectStatusOrder(A{&destination, source.pixels(), source.step(), destination.pixels(), destination.step(), {9, 4}},
                      table);
}

}  // namespace
}  // namespace lumcv::test::geometry
