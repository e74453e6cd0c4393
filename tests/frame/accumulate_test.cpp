// Accumulation of sums, squares, products and weighted means into float images, with and without a mask.
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "lumcv/lumcv.h"
#include "overlap.hpp"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/random.hpp"
#include "support/status_order.hpp"
#include "support/sweep.hpp"

namespace lumcv::test {
namespace {

// All operands that the exports take among them; S is the element type of the sources.
template <class S>
struct Operands
{
    const S* pSrc1 = nullptr;
    Lum32s src1Step = 0;
    const S* pSrc2 = nullptr;
    Lum32s src2Step = 0;
    const Lum8u* pMask = nullptr;
    Lum32s maskStep = 0;
    Lum32f* pDst = nullptr;
    Lum32s dstStep = 0;
    LumiSize roiSize = {0, 0};
    Lum32f alpha = 0;
};

// The new value of a pixel. The factor is 0.0 where a mask byte is zero; elsewhere it is alpha for the weighted forms
// and 1.0, which changes no product, for the others.
using Formula = Lum32f (*)(Lum32f d, Lum32f s1, Lum32f s2, Lum32f factor);

Lum32f sum(Lum32f d, Lum32f s1, Lum32f, Lum32f factor)
{
    return d + s1 * factor;
}
Lum32f square(Lum32f d, Lum32f s1, Lum32f, Lum32f factor)
{
    return d + (s1 * s1) * factor;
}
Lum32f product(Lum32f d, Lum32f s1, Lum32f s2, Lum32f factor)
{
    return d + (s1 * s2) * factor;
}
Lum32f weighted(Lum32f d, Lum32f s1, Lum32f, Lum32f factor)
{
    return d + (s1 - d) * factor;
}
Lum32f weightedOfTwo(Lum32f, Lum32f s1, Lum32f s2, Lum32f factor)
{
    return s2 + (s1 - s2) * factor;
}

template <class S>
struct Export
{
    std::string name;
    Formula formula;
    bool twoSources;
    bool masked;
    bool hasAlpha;
    std::function<LumStatus(const Operands<S>&)> call;
};

// One function for each signature pattern: how its operands stand in the argument list.

template <class S>
Export<S> plain(const char* name, Formula formula, LumStatus (*f)(const S*, Lum32s, Lum32f*, Lum32s, LumiSize))
{
    return {name,  formula, false,
            false, false,   [f](const Operands<S>& o) {
                return f(o.pSrc1, o.src1Step, o.pDst, o.dstStep, o.roiSize); }};
}

template <class S>
Export<S> masked(const char* name, Formula formula,
                 LumStatus (*f)(const S*, Lum32s, const Lum8u*, Lum32s, Lum32f*, Lum32s, LumiSize))
{
    return {name,
            formula,
            false,
            true,
            false,
            [f](const Operands<S>& o) {
                return f(o.pSrc1, o.src1Step, o.pMask, o.maskStep, o.pDst, o.dstStep, o.roiSize); }};
}

template <class S>
Export<S> ofTwo(const char* name, Formula formula,
                LumStatus (*f)(const S*, Lum32s, const S*, Lum32s, Lum32f*, Lum32s, LumiSize))
{
    return {name,
            formula,
            true,
            false,
            false,
            [f](const Operands<S>& o) {
                return f(o.pSrc1, o.src1Step, o.pSrc2, o.src2Step, o.pDst, o.dstStep, o.roiSize); }};
}

template <class S>
Export<S> maskedOfTwo(const char* name, Formula formula,
                      LumStatus (*f)(const S*, Lum32s, const S*, Lum32s, const Lum8u*, Lum32s, Lum32f*, Lum32s,
                                     LumiSize))
{
    return {name, formula, true, true, false, [f](const Operands<S>& o) {
                return f(o.pSrc1, o.src1Step, o.pSrc2, o.src2Step, o.pMask, o.maskStep, o.pDst, o.dstStep, o.roiSize);
            }};
}

template <class S>
Export<S> withAlpha(const char* name, Formula formula,
                    LumStatus (*f)(const S*, Lum32s, Lum32f*, Lum32s, LumiSize, Lum32f))
{
    return {name,  formula,
            false, false,
            true,  [f](const Operands<S>& o) {
                return f(o.pSrc1, o.src1Step, o.pDst, o.dstStep, o.roiSize, o.alpha); }};
}

template <class S>
Export<S> maskedWithAlpha(const char* name, Formula formula,
                          LumStatus (*f)(const S*, Lum32s, const Lum8u*, Lum32s, Lum32f*, Lum32s, LumiSize, Lum32f))
{
    return {name, formula, false, true, true, [f](const Operands<S>& o) {
                return f(o.pSrc1, o.src1Step, o.pMask, o.maskStep, o.pDst, o.dstStep, o.roiSize, o.alpha);
            }};
}

template <class S>
Export<S> ofTwoWithAlpha(const char* name, Formula formula,
                         LumStatus (*f)(const S*, Lum32s, const S*, Lum32s, Lum32f*, Lum32s, LumiSize, Lum32f))
{
    return {name, formula, true, false, true, [f](const Operands<S>& o) {
                return f(o.pSrc1, o.src1Step, o.pSrc2, o.src2Step, o.pDst, o.dstStep, o.roiSize, o.alpha);
            }};
}

template <class S>
std::vector<Export<S>> allExports();

template <>
std::vector<Export<Lum8u>> allExports()
{
    return {
        plain("lumiAdd_8u32f_C1IR", sum, lumiAdd_8u32f_C1IR),
        masked("lumiAdd_8u32f_C1IMR", sum, lumiAdd_8u32f_C1IMR),
        plain("lumiAddSquare_8u32f_C1IR", square, lumiAddSquare_8u32f_C1IR),
        masked("lumiAddSquare_8u32f_C1IMR", square, lumiAddSquare_8u32f_C1IMR),
        ofTwo("lumiAddProduct_8u32f_C1IR", product, lumiAddProduct_8u32f_C1IR),
        maskedOfTwo("lumiAddProduct_8u32f_C1IMR", product, lumiAddProduct_8u32f_C1IMR),
        withAlpha("lumiAddWeighted_8u32f_C1IR", weighted, lumiAddWeighted_8u32f_C1IR),
        maskedWithAlpha("lumiAddWeighted_8u32f_C1IMR", weighted, lumiAddWeighted_8u32f_C1IMR),
    };
}

template <>
std::vector<Export<Lum16u>> allExports()
{
    return {
        plain("lumiAdd_16u32f_C1IR", sum, lumiAdd_16u32f_C1IR),
        masked("lumiAdd_16u32f_C1IMR", sum, lumiAdd_16u32f_C1IMR),
        plain("lumiAddSquare_16u32f_C1IR", square, lumiAddSquare_16u32f_C1IR),
        masked("lumiAddSquare_16u32f_C1IMR", square, lumiAddSquare_16u32f_C1IMR),
        ofTwo("lumiAddProduct_16u32f_C1IR", product, lumiAddProduct_16u32f_C1IR),
        maskedOfTwo("lumiAddProduct_16u32f_C1IMR", product, lumiAddProduct_16u32f_C1IMR),
        withAlpha("lumiAddWeighted_16u32f_C1IR", weighted, lumiAddWeighted_16u32f_C1IR),
        maskedWithAlpha("lumiAddWeighted_16u32f_C1IMR", weighted, lumiAddWeighted_16u32f_C1IMR),
    };
}

template <>
std::vector<Export<Lum32f>> allExports()
{
    return {
        masked("lumiAdd_32f_C1IMR", sum, lumiAdd_32f_C1IMR),
        plain("lumiAddSquare_32f_C1IR", square, lumiAddSquare_32f_C1IR),
        masked("lumiAddSquare_32f_C1IMR", square, lumiAddSquare_32f_C1IMR),
        ofTwo("lumiAddProduct_32f_C1IR", product, lumiAddProduct_32f_C1IR),
        maskedOfTwo("lumiAddProduct_32f_C1IMR", product, lumiAddProduct_32f_C1IMR),
        withAlpha("lumiAddWeighted_32f_C1IR", weighted, lumiAddWeighted_32f_C1IR),
        maskedWithAlpha("lumiAddWeighted_32f_C1IMR", weighted, lumiAddWeighted_32f_C1IMR),
        ofTwoWithAlpha("lumiAddWeighted_32f_C1R", weightedOfTwo, lumiAddWeighted_32f_C1R),
    };
}

template <class T>
T* rowAt(T* base, Lum32s step, int y)
{
    using Byte = std::conditional_t<std::is_const_v<T>, const unsigned char, unsigned char>;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(base) + static_cast<std::ptrdiff_t>(y) * step);
}

// Pixel after pixel in row order, each written before the next is read.
template <class S>
void reference(const Export<S>& e, const Operands<S>& o)
{
    for (int y = 0; y < o.roiSize.height; ++y) {
        for (int x = 0; x < o.roiSize.width; ++x) {
            Lum32f& d = rowAt(o.pDst, o.dstStep, y)[x];
            const auto s1 = static_cast<Lum32f>(rowAt(o.pSrc1, o.src1Step, y)[x]);
            const auto s2 = e.twoSources ? static_cast<Lum32f>(rowAt(o.pSrc2, o.src2Step, y)[x]) : 0.0f;
            Lum32f factor = e.hasAlpha ? o.alpha : 1.0f;
            if (e.masked && rowAt(o.pMask, o.maskStep, y)[x] == 0) {
                factor = 0.0f;
            }
            d = e.formula(d, s1, s2, factor);
        }
    }
}

// Images for one call.
template <class S>
struct Scene
{
    Image<S> source1;
    Image<S> source2;
    Image<Lum8u> mask;
    Image<Lum32f> destination;

    explicit Scene(const Geometry& geometry)
        : source1(geometry.layout<S>(0)),
          source2(geometry.layout<S>(1)),
          mask(geometry.layout<Lum8u>(2)),
          destination(geometry.layout<Lum32f>(3))
    {
    }

    Operands<S> operands(Lum32f alpha)
    {
        return {source1.pixels(),
                source1.step(),
                source2.pixels(),
                source2.step(),
                mask.pixels(),
                mask.step(),
                destination.pixels(),
                destination.step(),
                {destination.width(), destination.height()},
                alpha};
    }
};

template <class S>
void sweepAgainstReference(Sweep sweep)
{
    constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
    const Lum32f alphas[] = {0.25f,    0.0f,  1.0f,  -0.5f,    2.75f,
                             1.0f / 3, -0.0f, 3e38f, infinity, std::numeric_limits<Lum32f>::quiet_NaN()};
    for (const Export<S>& e : allExports<S>()) {
        SCOPED_TRACE(e.name);
        forEachGeometry(sweep, [&](const Geometry& geometry) {
            Random random(static_cast<std::uint64_t>(geometry.number));
            const Values kinds[] = {Values::Ordinary, Values::Extreme, Values::NonFinite};
            // the three kinds of values in the source against the three in the accumulator
            const Values sourceKind = kinds[geometry.number % 3];
            const Values destinationKind = kinds[geometry.number / 3 % 3];
            Scene<S> scene(geometry);
            fill(scene.source1, random, sourceKind);
            fill(scene.source2, random, sourceKind);
            fill(scene.destination, random, destinationKind);
            const int shareOfZeros[] = {50, 50, 10, 90, 0, 100};
            fillMask(scene.mask, random, shareOfZeros[geometry.number % 6]);
            const Lum32f alpha = alphas[random.between(0, 9)];

            const Scene<S> before = scene;
            Scene<S> expected = scene;
            reference(e, expected.operands(alpha));
            ASSERT_EQ(e.call(scene.operands(alpha)), lumOk);
            EXPECT_TRUE(sameImage(expected.destination, scene.destination)) << "alpha " << alpha;
            EXPECT_TRUE(scene.destination.gapsIntact());
            EXPECT_TRUE(sameBytes(before.source1, scene.source1)) << "source 1 was written";
            EXPECT_TRUE(sameBytes(before.source2, scene.source2)) << "source 2 was written";
            EXPECT_TRUE(sameBytes(before.mask, scene.mask)) << "the mask was written";
        });
        if (testing::Test::HasFailure()) {
            return;
        }
    }
}

TEST(Accumulate, AgreesWithTheReference8u)
{
    sweepAgainstReference<Lum8u>(Sweep::Full);
}

TEST(Accumulate, AgreesWithTheReference16u)
{
    sweepAgainstReference<Lum16u>(Sweep::Full);
}

TEST(Accumulate, AgreesWithTheReference32f)
{
    sweepAgainstReference<Lum32f>(Sweep::Full);
}

TEST(AccumulateQuick, AgreesWithTheReference)
{
    sweepAgainstReference<Lum8u>(Sweep::Quick);
    sweepAgainstReference<Lum16u>(Sweep::Quick);
    sweepAgainstReference<Lum32f>(Sweep::Quick);
}

// Every source value, and every pair of bytes, against accumulators large enough that the sum rounds.
template <class S>
void tryAllValues(int width, int height)
{
    for (const Export<S>& e : allExports<S>()) {
        SCOPED_TRACE(e.name);
        Geometry geometry;
        geometry.width = width;
        geometry.height = height;
        Scene<S> scene(geometry);
        scene.source1.forEach(Area::Roi, [&](S& s, int x, int y, int) { s = static_cast<S>(y * 256 + x); });
        scene.source2.forEach(Area::Roi, [&](S& s, int x, int y, int) { s = static_cast<S>(x * 256 + y); });
        if constexpr (sizeof(S) == 1) {
            scene.source2.forEach(Area::Roi, [&](S& s, int, int y, int) { s = static_cast<S>(y); });
        }
        Random random;
        fill(scene.destination, random);
        fillMask(scene.mask, random, 20);
        Scene<S> expected = scene;
        reference(e, expected.operands(0.7f));
        ASSERT_EQ(e.call(scene.operands(0.7f)), lumOk);
        EXPECT_TRUE(sameImage(expected.destination, scene.destination));
    }
}

TEST(Accumulate, AllSourceValues)
{
    tryAllValues<Lum8u>(256, 256);
    tryAllValues<Lum16u>(256, 256);
}

TEST(Accumulate, LongRowsAndManyRows)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{4099, 2}, LumiSize{1920, 3}, LumiSize{20000, 1}, LumiSize{3, 700}}) {
        for (int placement = 0; placement < 3; ++placement) {
            Geometry geometry;
            geometry.width = size.width;
            geometry.height = size.height;
            geometry.placement = placement;
            geometry.number = number++;
            SCOPED_TRACE(geometry);
            for (const Export<Lum8u>& e : allExports<Lum8u>()) {
                SCOPED_TRACE(e.name);
                Scene<Lum8u> scene(geometry);
                Random random;
                fill(scene.source1, random);
                fill(scene.source2, random);
                fill(scene.destination, random);
                fillMask(scene.mask, random);
                Scene<Lum8u> expected = scene;
                reference(e, expected.operands(0.1f));
                ASSERT_EQ(e.call(scene.operands(0.1f)), lumOk);
                ASSERT_TRUE(sameImage(expected.destination, scene.destination));
                ASSERT_TRUE(scene.destination.gapsIntact());
            }
        }
    }
}

Operands<Lum32f> operandsIn(float* block, const Arrangement& arrangement, const std::vector<Lum8u>& mask)
{
    Operands<Lum32f> o;
    o.pSrc1 = block + arrangement.source1.begin;
    o.src1Step = arrangement.source1.stride * 4;
    o.pSrc2 = block + arrangement.source2.begin;
    o.src2Step = arrangement.source2.stride * 4;
    o.pMask = mask.data();
    o.maskStep = arrangement.roiSize.width;
    o.pDst = block + arrangement.destination.begin;
    o.dstStep = arrangement.destination.stride * 4;
    o.roiSize = arrangement.roiSize;
    o.alpha = 0.4f;
    return o;
}

TEST(Accumulate, OverlappingOperandsFollowTheOrderOfPixels)
{
    std::vector<Lum8u> mask(4096);
    Random random;
    for (Lum8u& byte : mask) {
        byte = random.oneIn(4) ? Lum8u{0} : static_cast<Lum8u>(random.between(1, 255));
    }
    for (const Export<Lum32f>& e : allExports<Lum32f>()) {
        SCOPED_TRACE(e.name);
        forEachOverlap([&](const Arrangement& arrangement) {
            expectSameBlock(
                arrangement, [&](float* block) { EXPECT_EQ(e.call(operandsIn(block, arrangement, mask)), lumOk); },
                [&](float* block) { reference(e, operandsIn(block, arrangement, mask)); });
        });
    }
}

// Argument checks.

template <class S>
struct Args : Operands<S>
{
    const Export<S>* tested = nullptr;
    const Image<Lum32f>* destination = nullptr;

    LumStatus call() const
    {
        return tested->call(*this);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination)};
    }
};

template <class S>
using Checks = std::vector<Violation<Args<S>>>;

template <class S>
Checks<S> operator+(Checks<S> first, const Checks<S>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

template <class S>
void expectDocumentedOrder(const Export<S>& e)
{
    SCOPED_TRACE(e.name);
    constexpr int size = sizeof(S);
    using A = Args<S>;

    const Checks<S> none;
    const Checks<S> nulls = {
        {"pSrc1 null", lumErrNullPointer, [](A& a) { a.pSrc1 = nullptr; }},
        {"pSrcDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
    };
    const Checks<S> secondNull = {{"pSrc2 null", lumErrNullPointer, [](A& a) { a.pSrc2 = nullptr; }}};
    const Checks<S> maskNull = {{"pMask null", lumErrNullPointer, [](A& a) { a.pMask = nullptr; }}};
    const Checks<S> sizes = {
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"width -1", lumErrSize, [](A& a) { a.roiSize.width = -1; }},
        {"height -2147483648", lumErrSize, [](A& a) { a.roiSize.height = std::numeric_limits<int>::min(); }},
    };
    const Checks<S> firstWidth = {
        {"src1Step one element short", lumErrStep, [](A& a) { a.src1Step = 4 * size; }},
        {"src1Step one byte short", lumErrStep, [](A& a) { a.src1Step = 5 * size - 1; }},
        {"src1Step 0", lumErrStep, [](A& a) { a.src1Step = 0; }},
        {"src1Step negative", lumErrStep, [](A& a) { a.src1Step = -64; }},
    };
    const Checks<S> secondWidth = {
        {"src2Step one element short", lumErrStep, [](A& a) { a.src2Step = 4 * size; }},
        {"src2Step one byte short", lumErrStep, [](A& a) { a.src2Step = 5 * size - 1; }},
        {"src2Step negative", lumErrStep, [](A& a) { a.src2Step = -64; }},
    };
    const Checks<S> maskWidth = {
        {"maskStep one short", lumErrStep, [](A& a) { a.maskStep = 4; }},
        {"maskStep 0", lumErrStep, [](A& a) { a.maskStep = 0; }},
        {"maskStep negative", lumErrStep, [](A& a) { a.maskStep = -5; }},
    };
    const Checks<S> destinationWidth = {
        {"srcDstStep one element short", lumErrStep, [](A& a) { a.dstStep = 16; }},
        {"srcDstStep one byte short", lumErrStep, [](A& a) { a.dstStep = 19; }},
        {"srcDstStep 0", lumErrStep, [](A& a) { a.dstStep = 0; }},
        {"srcDstStep negative", lumErrStep, [](A& a) { a.dstStep = -20; }},
    };
    const Checks<S> firstAlignment = {
        {"src1Step odd", lumErrStepAlignment, [](A& a) { a.src1Step = 5 * size + 1; }},
    };
    const Checks<S> secondAlignment = {
        {"src2Step odd", lumErrStepAlignment, [](A& a) { a.src2Step = 5 * size + 1; }},
    };
    const Checks<S> destinationAlignment = {
        {"srcDstStep off by one", lumErrStepAlignment, [](A& a) { a.dstStep = 21; }},
        {"srcDstStep off by two", lumErrStepAlignment, [](A& a) { a.dstStep = 22; }},
        {"srcDstStep off by three", lumErrStepAlignment, [](A& a) { a.dstStep = 23; }},
    };

    const Checks<S> sourceWidths = firstWidth + (e.twoSources ? secondWidth : none);
    const Checks<S> sourceAlignments = firstAlignment + (e.twoSources ? secondAlignment : none);
    const Checks<S> allNulls = nulls + (e.twoSources ? secondNull : none) + (e.masked ? maskNull : none);
    const Checks<S> maskWidths = e.masked ? maskWidth : none;
    Checks<S> table;
    if constexpr (std::is_same_v<S, Lum8u>) {
        table = allNulls + sizes + sourceWidths + maskWidths + destinationWidth + destinationAlignment;
    } else if constexpr (std::is_same_v<S, Lum16u>) {
        // the 16-bit strides are judged completely before the strides of the mask and of the accumulator
        table =
            allNulls + sizes + sourceWidths + sourceAlignments + maskWidths + destinationWidth + destinationAlignment;
    } else {
        table =
            allNulls + sizes + sourceWidths + maskWidths + destinationWidth + sourceAlignments + destinationAlignment;
    }

    Geometry geometry;
    geometry.width = 5;
    geometry.height = 3;
    Scene<S> scene(geometry);
    Random random;
    fill(scene.source1, random);
    fill(scene.source2, random);
    fill(scene.destination, random);
    fillMask(scene.mask, random, 0);
    Args<S> valid;
    static_cast<Operands<S>&>(valid) = scene.operands(0.5f);
    valid.tested = &e;
    valid.destination = &scene.destination;
    expectStatusOrder(valid, table);
}

TEST(Accumulate, ChecksInDocumentedOrder)
{
    for (const auto& e : allExports<Lum8u>()) {
        expectDocumentedOrder(e);
    }
    for (const auto& e : allExports<Lum16u>()) {
        expectDocumentedOrder(e);
    }
    for (const auto& e : allExports<Lum32f>()) {
        expectDocumentedOrder(e);
    }
}

TEST(AccumulateQuick, ChecksInDocumentedOrder)
{
    expectDocumentedOrder(allExports<Lum16u>()[5]);
    expectDocumentedOrder(allExports<Lum32f>()[6]);
}

TEST(Accumulate, StrideEdges)
{
    const float source[8] = {1, 2};
    float accumulator[8] = {0.5f};
    EXPECT_EQ(lumiAddSquare_32f_C1IR(source, 2, accumulator, 4, {1, 1}), lumErrStep);
    EXPECT_EQ(lumiAddSquare_32f_C1IR(source, 6, accumulator, 8, {2, 1}), lumErrStep);
    EXPECT_EQ(lumiAddSquare_32f_C1IR(source, 10, accumulator, 8, {2, 1}), lumErrStepAlignment);
    EXPECT_EQ(lumiAddSquare_32f_C1IR(nullptr, 10, accumulator, 8, {0, 1}), lumErrNullPointer);
    EXPECT_EQ(accumulator[0], 0.5f);
    EXPECT_EQ(accumulator[1], 0.0f);
    EXPECT_EQ(lumiAddSquare_32f_C1IR(source, 8, accumulator, 8, {2, 1}), lumOk);
    EXPECT_EQ(accumulator[0], 1.5f);
    EXPECT_EQ(accumulator[1], 4.0f);
}

TEST(Accumulate, RowSizesAreThirtyTwoBitProductsThatWrap)
{
    // a row of 0x20000000 floats is -2147483648 bytes in 32 bits: no stride is below it, and the alignment decides
    const float source[1] = {1};
    float accumulator[1] = {0.5f};
    EXPECT_EQ(lumiAddSquare_32f_C1IR(source, 6, accumulator, 4, {0x20000000, 1}), lumErrStepAlignment);
    EXPECT_EQ(lumiAddSquare_32f_C1IR(source, 4, accumulator, 7, {0x20000000, 1}), lumErrStepAlignment);
    // 0x1fffffff floats are 2147483644 bytes, which still fits
    EXPECT_EQ(lumiAddSquare_32f_C1IR(source, 6, accumulator, 4, {0x1fffffff, 1}), lumErrStep);
    EXPECT_EQ(accumulator[0], 0.5f);
}

// Edge cases.

TEST(AccumulateQuick, MaskedOutInfinityMakesNotANumber)
{
    constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
    constexpr Lum32f nan = std::numeric_limits<Lum32f>::quiet_NaN();
    for (int width : {1, 4, 16, 37}) {
        for (const Lum32f special : {infinity, -infinity, nan}) {
            for (const Export<Lum32f>& e : allExports<Lum32f>()) {
                if (!e.masked) {
                    continue;
                }
                SCOPED_TRACE(e.name);
                Geometry geometry;
                geometry.width = width;
                Scene<Lum32f> scene(geometry);
                scene.source1.forEach(Area::Roi, [&](Lum32f& s, int, int, int) { s = special; });
                scene.source2.forEach(Area::Roi, [&](Lum32f& s, int, int, int) { s = 2; });
                scene.destination.forEach(Area::Roi, [&](Lum32f& d, int, int, int) { d = 5; });
                scene.mask.forEach(Area::Roi, [&](Lum8u& m, int, int, int) { m = 0; });
                ASSERT_EQ(e.call(scene.operands(0.5f)), lumOk);
                for (int x = 0; x < width; ++x) {
                    EXPECT_TRUE(std::isnan(scene.destination.at(x, 0))) << "x " << x;
                }
            }
        }
    }
}

TEST(AccumulateQuick, EmptyMaskLeavesFiniteAccumulators)
{
    for (const Export<Lum32f>& e : allExports<Lum32f>()) {
        if (!e.masked) {
            continue;
        }
        SCOPED_TRACE(e.name);
        Geometry geometry;
        geometry.width = 77;
        geometry.height = 3;
        Scene<Lum32f> scene(geometry);
        Random random;
        fill(scene.source1, random);
        fill(scene.source2, random);
        // a positive zero stays positive whatever zero is added to it; a negative one is left out here
        scene.destination.forEach(
            Area::Roi, [&](Lum32f& d, int x, int, int) { d = x == 0 ? 0.0f : random.value<Lum32f>(Values::Ordinary); });
        fillMask(scene.mask, random, 100);
        const Scene<Lum32f> before = scene;
        ASSERT_EQ(e.call(scene.operands(0.5f)), lumOk);
        EXPECT_TRUE(sameImage(before.destination, scene.destination));
    }
}

TEST(AccumulateQuick, NegativeZeroFollowsTheFormula)
{
    // -0.0 + 3 * 0.0 is +0.0, -0.0 + -3 * 0.0 stays -0.0
    const Lum32f source[] = {3, -3, 3, -3, 3, -3, 3, -3, 3, -3, 3, -3, 3, -3, 3, -3, 3};
    const Lum8u mask[17] = {};
    Lum32f accumulator[17];
    std::fill(accumulator, accumulator + 17, -0.0f);
    ASSERT_EQ(lumiAdd_32f_C1IMR(source, 68, mask, 17, accumulator, 68, {17, 1}), lumOk);
    for (int i = 0; i < 17; ++i) {
        EXPECT_TRUE(sameElement(accumulator[i], i % 2 == 0 ? 0.0f : -0.0f)) << "element " << i;
    }
}

TEST(AccumulateQuick, AlphaZeroKeepsAndAlphaOneReplaces)
{
    const Lum8u source[] = {0, 255, 7, 100, 3};
    Lum32f accumulator[] = {1.5f, -2.25f, 0, 1e10f, 3};
    ASSERT_EQ(lumiAddWeighted_8u32f_C1IR(source, 5, accumulator, 20, {5, 1}, 0.0f), lumOk);
    const Lum32f kept[] = {1.5f, -2.25f, 0, 1e10f, 3};
    EXPECT_TRUE(sameElements(kept, accumulator, 5));
    ASSERT_EQ(lumiAddWeighted_8u32f_C1IR(source, 5, accumulator, 20, {5, 1}, 1.0f), lumOk);
    // 1e10 + (100 - 1e10): the difference rounds to a multiple of 1024 and takes the 100 along
    const Lum32f replaced[] = {0, 255, 7, 0, 3};
    EXPECT_TRUE(sameElements(replaced, accumulator, 5));
}

TEST(AccumulateQuick, WeightedUsesOneMultiplication)
{
    // d * (1 - alpha) + s * alpha is another number in the last bit for many triples; the count shows that the triples
    // tried here tell the two forms apart
    Random random;
    int apart = 0;
    for (int i = 0; i < 1000; ++i) {
        const auto d = random.value<Lum32f>(Values::Ordinary);
        const auto s = random.value<Lum32f>(Values::Ordinary);
        const Lum32f alpha = random.unit<Lum32f>();
        Lum32f accumulator = d;
        ASSERT_EQ(lumiAddWeighted_32f_C1IR(&s, 4, &accumulator, 4, {1, 1}, alpha), lumOk);
        EXPECT_TRUE(sameElement(accumulator, d + (s - d) * alpha));
        const Lum32f otherForm = d * (1 - alpha) + s * alpha;
        apart += !sameElement(accumulator, otherForm);
    }
    EXPECT_GT(apart, 100);
}

TEST(AccumulateQuick, SquaresOfSixteenBitsRoundBeforeTheyAreAdded)
{
    // 65535 squared is 4294836225 and 4294836224 as a float; the lost 1 must not come back when the sum cancels
    for (const Lum32f start : {-4294836224.0f, 0.0f}) {
        std::vector<Lum16u> source(19, 65535);
        std::vector<Lum32f> accumulator(19, start);
        ASSERT_EQ(lumiAddSquare_16u32f_C1IR(source.data(), 38, accumulator.data(), 76, {19, 1}), lumOk);
        for (const Lum32f d : accumulator) {
            EXPECT_EQ(d, start + 4294836224.0f);
        }
    }
}

TEST(AccumulateQuick, OnePixelGivesWhatARowGives)
{
    for (const Export<Lum32f>& e : allExports<Lum32f>()) {
        SCOPED_TRACE(e.name);
        Geometry geometry;
        geometry.width = 100;
        Scene<Lum32f> row(geometry);
        Random random;
        fill(row.source1, random, Values::Extreme);
        fill(row.source2, random, Values::Extreme);
        fill(row.destination, random, Values::Extreme);
        fillMask(row.mask, random);
        Scene<Lum32f> pixels = row;
        ASSERT_EQ(e.call(row.operands(0.3f)), lumOk);
        for (int x = 0; x < 100; ++x) {
            Operands<Lum32f> o = pixels.operands(0.3f);
            o.pSrc1 += x;
            o.pSrc2 += x;
            o.pMask += x;
            o.pDst += x;
            o.roiSize = {1, 1};
            ASSERT_EQ(e.call(o), lumOk);
        }
        EXPECT_TRUE(sameImage(row.destination, pixels.destination));
    }
}

}  // namespace
}  // namespace lumcv::test
