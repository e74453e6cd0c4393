// The memory of the gray gradient: rows between unreadable pages, operands that overlap, a small stack, and the checks.
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <string>
#include <vector>

#include "geometry/gray_gradient_forms.hpp"
#include "geometry/gray_gradient_reference.hpp"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/random.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::geometry {
namespace {

TYPE_SUITE(GrayGradientMemoryQuick, GrayElements);

TYPE_SUITE(GrayGradientMemory, GrayElements);

TYPE_TEST(GrayGradientMemoryQuick, RowsAlone)
{
    for (const int width : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 21, 31, 32, 33, 63, 64, 65, 70}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            Layout layout;
            layout.width = width;
            layout.height = 3;
            layout.guard = guard;
            IsolatedRows<TypeParam> destination(layout);
            Image<TypeParam> expected(layout);
            layout.channels = 3;
            IsolatedRows<TypeParam> source(layout);
            Random random(static_cast<std::uint64_t>(width));
            source.forEach([&](TypeParam& e, int, int, int) { e = random.value<TypeParam>(Values::Extreme); });
            source.makeReadOnly();
            for (const LumiDistanceNorm norm : kGrayNorms) {
                const LumiSize size = {width, 3};
                ASSERT_EQ(GrayForm<TypeParam>::call(source.pixels(), source.step(), destination.pixels(),
                                                    destination.step(), size, norm),
                          lumOk);
                grayGradient(source.pixels(), source.step(), expected.pixels(), expected.step(), size, norm);
                for (int y = 0; y < 3; ++y) {
                    ASSERT_TRUE(sameElements(expected.row(y), destination.row(y), static_cast<std::size_t>(width)))
                        << "width " << width << ", row " << y << ", norm " << norm;
                }
                EXPECT_TRUE(destination.slackIntact());
            }
        }
    }
}

/// Where source and destination stand in a common block, in elements.
struct Overlap
{
    LumiSize size;
    int sourceStride;
    int destinationStride;
    int shift;  ///< of the destination's first element behind the source's
};

std::ostream& operator<<(std::ostream& stream, const Overlap& o)
{
    return stream << o.size.width << " x " << o.size.height << ", strides " << o.sourceStride << " and "
                  << o.destinationStride << ", destination " << o.shift << " elements behind the source";
}

/// Of both, each on its own copy of the same block, the bytes must be the same.
template <class T>
void expectLoopOverPixels(const Overlap& o, LumiDistanceNorm norm)
{
    const int before = std::max(0, -o.shift);
    const int sourceEnd = before + (o.size.height - 1) * o.sourceStride + 3 * o.size.width;
    const int destinationEnd = before + o.shift + (o.size.height - 1) * o.destinationStride + o.size.width;
    const auto bytes = static_cast<std::size_t>(std::max(sourceEnd, destinationEnd)) * sizeof(T);
    const GuardedBlock actual(bytes, Guard::After);
    Random random(static_cast<std::uint64_t>(o.size.width));
    for (std::size_t i = 0; i < bytes / sizeof(T); ++i) {
        actual.as<T>()[i] = random.value<T>(Values::Ordinary);
    }
    const GuardedBlock expected(actual);
    constexpr int size = sizeof(T);
    const T* const pSrc = expected.as<T>() + before;
    grayGradient(pSrc, o.sourceStride * size, expected.as<T>() + before + o.shift, o.destinationStride * size, o.size,
                 norm);
    T* const pActual = actual.as<T>() + before;
    ASSERT_EQ(
        GrayForm<T>::call(pActual, o.sourceStride * size, pActual + o.shift, o.destinationStride * size, o.size, norm),
        lumOk);
    EXPECT_TRUE(sameElements(expected.as<T>(), actual.as<T>(), bytes / sizeof(T))) << o << ", norm " << norm;
}

TYPE_TEST(GrayGradientMemoryQuick, InPlace)
{
    for (const int width : {1, 2, 3, 5, 8, 16, 17, 33, 64, 70, 300}) {
        for (const int gap : {0, 7}) {
            const int stride = 3 * width + gap;
            for (const LumiDistanceNorm norm : kGrayNorms) {
                expectLoopOverPixels<TypeParam>({{width, 4}, stride, stride, 0}, norm);
                expectLoopOverPixels<TypeParam>({{width, 4}, stride, width, 0}, norm);
            }
        }
    }
}

// What an early pixel writes, a later one reads: in the same row and in later rows.
TYPE_TEST(GrayGradientMemory, AnyOverlap)
{
    for (const int width : {1, 3, 4, 8, 17, 33, 70}) {
        for (const int height : {1, 2, 4}) {
            const int row = 3 * width;
            for (const int sourceStride : {row, row + 4, 2 * row}) {
                for (const int destinationStride : {width, row, row + 4, 2 * row}) {
                    for (const int shift : {-4 * row, -2 * row, -row - 1,    -row,      -width - 1,  -width,    -33,
                                            -16,      -9,       -8,          -4,        -3,          -2,        -1,
                                            0,        1,        2,           3,         4,           7,         8,
                                            9,        16,       33,          width - 1, width,       2 * width, row - 1,
                                            row,      row + 1,  row + width, 2 * row,   2 * row + 1, 4 * row}) {
                        const LumiDistanceNorm norm = kGrayNorms[(width + shift + 40 * row) % 3];
                        expectLoopOverPixels<TypeParam>({{width, height}, sourceStride, destinationStride, shift},
                                                        norm);
                        ASSERT_FALSE(testing::Test::HasFailure());
                    }
                }
            }
        }
    }
}

// Rows of the destination in the gaps of the source, without a byte in common.
TYPE_TEST(GrayGradientMemoryQuick, InterleavedRows)
{
    for (const int width : {1, 5, 16, 33, 100}) {
        for (const LumiDistanceNorm norm : kGrayNorms) {
            expectLoopOverPixels<TypeParam>({{width, 5}, 4 * width, 4 * width, 3 * width}, norm);
            expectLoopOverPixels<TypeParam>({{width, 5}, 4 * width, 4 * width, -width}, norm);
        }
    }
}

// A row of 300000 pixels on a stack of 64 KiB.
template <class T>
void callOnASmallStack(bool overlapping)
{
    constexpr LumiSize size = {300000, 2};
    Image<T> source({.width = size.width, .height = size.height, .channels = 3});
    Random random(9);
    fill(source, random);
    Image<T> destination({.width = size.width, .height = size.height});
    struct Call
    {
        Image<T>* source;
        T* pDst;
        Lum32s dstStep;
        LumiDistanceNorm norm;
        LumStatus status;
    };
    for (const LumiDistanceNorm norm : kGrayNorms) {
        Image<T> expected({.width = size.width, .height = size.height});
        grayGradient(source.pixels(), source.step(), expected.pixels(), expected.step(), size, norm);
        Image<T> folded = source;
        Call call = {&folded, overlapping ? folded.pixels() : destination.pixels(),
                     overlapping ? folded.step() : destination.step(), norm, -1};
        pthread_attr_t attributes;
        ASSERT_EQ(pthread_attr_init(&attributes), 0);
        ASSERT_EQ(pthread_attr_setstacksize(&attributes, 65536), 0);
        pthread_t thread;
        ASSERT_EQ(pthread_create(
                      &thread, &attributes,
                      [](void* argument) -> void* {
                          Call& c = *static_cast<Call*>(argument);
                          c.status =
                              GrayForm<T>::call(c.source->pixels(), c.source->step(), c.pDst, c.dstStep, size, c.norm);
                          return nullptr;
                      },
                      &call),
                  0);
        ASSERT_EQ(pthread_join(thread, nullptr), 0);
        pthread_attr_destroy(&attributes);
        EXPECT_EQ(call.status, lumOk);
        for (int y = 0; y < size.height; ++y) {
            const T* const row = overlapping ? folded.row(y) : destination.row(y);
            EXPECT_TRUE(sameElements(expected.row(y), row, static_cast<std::size_t>(size.width)))
                << "norm " << norm << ", row " << y;
        }
    }
}

TYPE_TEST(GrayGradientMemory, WideRowsOnASmallStack)
{
    callOnASmallStack<TypeParam>(false);
    callOnASmallStack<TypeParam>(true);
}

template <class T>
struct GrayArgs
{
    const Image<T>* destination;
    const T* pSrc;
    Lum32s srcStep;
    T* pDst;
    Lum32s dstStep;
    LumiSize roiSize;
    LumiDistanceNorm norm;

    LumStatus call() const
    {
        return GrayForm<T>::call(pSrc, srcStep, pDst, dstStep, roiSize, norm);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination)};
    }
};

TYPE_TEST(GrayGradientMemoryQuick, ChecksInOrder)
{
    using A = GrayArgs<TypeParam>;
    constexpr int element = sizeof(TypeParam);
    constexpr int width = 9;
    Image<TypeParam> source({.width = width, .height = 4, .channels = 3, .gap = 8});
    Random random(2);
    fill(source, random);
    Image<TypeParam> destination({.width = width, .height = 4, .gap = 8});
    std::vector<Violation<A>> table = {
        {"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -9; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -1; }},
        {"srcStep one byte below a row", lumErrStep, [](A& a) { a.srcStep = 3 * width * element - 1; }},
        {"srcStep of one channel", lumErrStep, [](A& a) { a.srcStep = width * element; }},
        {"srcStep negative", lumErrStep, [](A& a) { a.srcStep = -3 * width * element; }},
        {"dstStep one byte below a row", lumErrStep, [](A& a) { a.dstStep = width * element - 1; }},
        {"dstStep 0", lumErrStep, [](A& a) { a.dstStep = 0; }},
        {"dstStep negative", lumErrStep, [](A& a) { a.dstStep = -width * element; }},
    };
    for (int off = 1; off < element; ++off) {
        table.push_back({"srcStep off by " + std::to_string(off), lumErrStepAlignment,
                         [=](A& a) { a.srcStep = 3 * width * element + off; }});
        table.push_back({"dstStep off by " + std::to_string(off), lumErrStepAlignment,
                         [=](A& a) { a.dstStep = width * element + off; }});
    }
    table.push_back({"norm 3", lumErrArgument, [](A& a) { a.norm = static_cast<LumiDistanceNorm>(3); }});
    table.push_back({"norm 4", lumErrArgument, [](A& a) { a.norm = static_cast<LumiDistanceNorm>(4); }});
    table.push_back({"norm -1", lumErrArgument, [](A& a) { a.norm = static_cast<LumiDistanceNorm>(-1); }});
    for (const LumiDistanceNorm norm : kGrayNorms) {
        expectStatusOrder(
            A{&destination, source.pixels(), source.step(), destination.pixels(), destination.step(), {width, 4}, norm},
            table);
    }
}

// Bytes have no alignment to test: any stride that is long enough will do.
TEST(GrayGradientStatusQuick, BytesTakeOddStrides)
{
    const Lum8u source[2 * 31] = {};
    Lum8u destination[2 * 11] = {};
    EXPECT_EQ(lumiGradientColorToGray_8u_C3C1R(source, 31, destination, 11, {10, 2}, lumGradNormL2), lumOk);
}

}  // namespace
}  // namespace lumcv::test::geometry
