// The order of the argument checks of chamfer distances, and the weights that the queries write.
#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <vector>

#include "distance/chamfer_fixture.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::distance {
namespace {

template <class T>
struct Args
{
    using Metric = typename Forms<T>::Metric;
    using Function = LumStatus (*)(const Lum8u*, Lum32s, T*, Lum32s, LumiSize, const Metric*);

    Function function;
    const Lum8u* pSrc;
    Lum32s srcStep;
    T* pDst;
    Lum32s dstStep;
    LumiSize roiSize;
    std::vector<Metric> metrics;
    bool hasMetrics;
    std::vector<Output> written;

    LumStatus call() const
    {
        return function(pSrc, srcStep, pDst, dstStep, roiSize, hasMetrics ? metrics.data() : nullptr);
    }
    std::vector<Output> outputs() const
    {
        return written;
    }
};

/// The violations of one transform. Steps of 9 pixels have room for 2 more.
template <class T>
std::vector<Violation<Args<T>>> violations(std::size_t weights)
{
    using A = Args<T>;
    using Metric = typename A::Metric;
    constexpr auto size = static_cast<Lum32s>(sizeof(T));
    const std::vector<std::string> narrow = {"width of 2^30"};
    std::vector<Violation<A>> table = {
        {"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
        {"pMetrics null", lumErrNullPointer, [](A& a) { a.hasMetrics = false; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -7; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -1; }},
        {"srcStep below the width", lumErrStep, [](A& a) { a.srcStep = 8; }},
        {"srcStep 0", lumErrStep, [](A& a) { a.srcStep = 0; }},
        {"srcStep negative", lumErrStep, [](A& a) { a.srcStep = -16; }},
        {"dstStep below a row", lumErrStep, [](A& a) { a.dstStep = 9 * size - size; }},
        {"dstStep one byte below a row", lumErrStep, [](A& a) { a.dstStep = 9 * size - 1; }},
        {"dstStep negative", lumErrStep, [](A& a) { a.dstStep = -64; }},
    };
    for (Lum32s more = 1; more < size; ++more) {
        table.push_back({"dstStep misaligned by " + std::to_string(more), lumErrStepAlignment,
                         [=](A& a) { a.dstStep = 9 * size + more; }});
    }
    for (std::size_t i = 0; i < weights; ++i) {
        table.push_back({"weight 0, " + std::to_string(i), lumErrMetric, [=](A& a) { a.metrics[i] = 0; }});
        table.push_back({"weight below 0, " + std::to_string(i), lumErrMetric,
                         [=](A& a) { a.metrics[i] = std::numeric_limits<Metric>::lowest(); }});
        if constexpr (std::is_same_v<Metric, Lum32f>) {
            table.push_back({"weight -0.0, " + std::to_string(i), lumErrMetric, [=](A& a) { a.metrics[i] = -0.0f; }});
        }
    }
    return table;
}

using Outputs = testing::Types<Lum8u, Lum16u, Lum32f>;
TYPE_SUITE(ChamferStatusQuick, Outputs);

TYPE_TEST(ChamferStatusQuick, ChecksInOrder)
{
    Image<Lum8u> source(layoutOf(9, 4, 3));
    draw(source, Content::Even, 2);
    const Image<TypeParam> destination(layoutOf(9, 4, 2 * sizeof(TypeParam)));
    TypeParam* const pDst = const_cast<TypeParam*>(destination.pixels());
    Args<TypeParam> args = {
        Forms<TypeParam>::transform3x3, source.pixels(), source.step(), pDst, destination.step(), {9, 4}, {5, 7}, true,
        {Output(destination)}};
    expectStatusOrder(args, violations<TypeParam>(2));
    args.function = Forms<TypeParam>::transform5x5;
    args.metrics = {5, 7, 11};
    expectStatusOrder(args, violations<TypeParam>(3));
    args.metrics = {5, 7, 12};  // a hand-over
    expectStatusOrder(args, violations<TypeParam>(3));
}

// A width whose row of floats is 2^32 bytes long does not get past the source's stride.
TEST(ChamferStatusQuick, WidthBeyondTheStride)
{
    Image<Lum8u> source(layoutOf(4, 4));
    Image<Lum32f> destination(layoutOf(4, 4));
    const Lum32f weights[3] = {1, 1.4f, 2.2f};
    EXPECT_EQ(lumiDistanceTransform_5x5_8u32f_C1R(source.pixels(), 4, destination.pixels(), 16, {1 << 30, 4}, weights),
              lumErrStep);
}

struct InPlaceArgs
{
    LumStatus (*function)(Lum8u*, Lum32s, LumiSize, const Lum32s*);
    Image<Lum8u>* image;
    Lum8u* pSrcDst;
    Lum32s step;
    LumiSize roiSize;
    std::vector<Lum32s> metrics;
    bool hasMetrics;

    LumStatus call() const
    {
        return function(pSrcDst, step, roiSize, hasMetrics ? metrics.data() : nullptr);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*image)};
    }
};

TEST(ChamferInPlaceStatusQuick, ChecksInOrder)
{
    using A = InPlaceArgs;
    Image<Lum8u> image(layoutOf(9, 4, 3));
    draw(image, Content::Even, 2);
    for (const std::size_t weights : {std::size_t{2}, std::size_t{3}}) {
        std::vector<Violation<A>> table = {
            {"pSrcDst null", lumErrNullPointer, [](A& a) { a.pSrcDst = nullptr; }},
            {"pMetrics null", lumErrNullPointer, [](A& a) { a.hasMetrics = false; }},
            {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
            {"height -2", lumErrSize, [](A& a) { a.roiSize.height = -2; }},
            {"step below the width", lumErrStep, [](A& a) { a.step = 8; }},
            {"step negative", lumErrStep, [](A& a) { a.step = -12; }},
        };
        for (std::size_t i = 0; i < weights; ++i) {
            table.push_back({"weight 0, " + std::to_string(i), lumErrMetric, [=](A& a) { a.metrics[i] = 0; }});
            table.push_back({"weight -1, " + std::to_string(i), lumErrMetric, [=](A& a) { a.metrics[i] = -1; }});
        }
        const auto function = weights == 2 ? lumiDistanceTransform_3x3_8u_C1IR : lumiDistanceTransform_5x5_8u_C1IR;
        expectStatusOrder(A{function, &image, image.pixels(), image.step(), {9, 4}, {5, 7, 11}, true}, table);
    }
}

/// The weights of a size and a norm as bits; the same for integers where they are whole.
struct KnownWeights
{
    Lum32s kernelSize;
    LumiDistanceNorm norm;
    Lum32s integers[3];
    std::uint32_t floats[3];
};

constexpr std::uint32_t kOne = 0x3F800000;
constexpr std::uint32_t kTwo = 0x40000000;
constexpr std::uint32_t kThree = 0x40400000;
constexpr KnownWeights kKnownWeights[] = {
    {3, lumDistanceNormInf, {1, 1, 0}, {kOne, kOne, 0}},
    {3, lumDistanceNormL1, {1, 2, 0}, {kOne, kTwo, 0}},
    {3, lumDistanceNormL2, {2, 3, 0}, {0x3F747AE1, 0x3FAF4539, 0}},
    {5, lumDistanceNormInf, {1, 1, 2}, {kOne, kOne, kTwo}},
    {5, lumDistanceNormL1, {1, 2, 3}, {kOne, kTwo, kThree}},
    {5, lumDistanceNormL2, {5, 7, 11}, {kOne, 0x3FB33333, 0x400C9A02}},
};

template <class Metric>
void expectWeights(const GuardedBlock& block, Metric m0, Metric m1, Metric m2, Lum32s kernelSize)
{
    EXPECT_EQ(block.as<Metric>()[0], m0);
    EXPECT_EQ(block.as<Metric>()[1], m1);
    if (kernelSize == 5) {
        EXPECT_EQ(block.as<Metric>()[2], m2);
    }
}

// The block ends where memory ends: nothing is written behind the last weight.
TEST(ChamferMaskQuick, Weights)
{
    for (const KnownWeights& known : kKnownWeights) {
        const std::size_t bytes = known.kernelSize == 3 ? 8 : 12;
        const auto asFloat = [&](int i) { return std::bit_cast<Lum32f>(known.floats[i]); };
        const GuardedBlock integers(bytes, Guard::After);
        EXPECT_EQ(lumiGetDistanceTransformMask_32s(known.kernelSize, known.norm, integers.as<Lum32s>()), lumOk);
        expectWeights(integers, known.integers[0], known.integers[1], known.integers[2], known.kernelSize);
        const GuardedBlock floats(bytes, Guard::After);
        EXPECT_EQ(lumiGetDistanceTransformMask_32f(known.kernelSize, known.norm, floats.as<Lum32f>()), lumOk);
        expectWeights(floats, asFloat(0), asFloat(1), asFloat(2), known.kernelSize);
        const GuardedBlock combined(bytes, Guard::After);
        EXPECT_EQ(
            lumiGetDistanceTransformMask(static_cast<Lum32s>(10 * known.kernelSize + static_cast<Lum32s>(known.norm)),
                                         combined.as<Lum32f>()),
            lumOk);
        expectWeights(combined, asFloat(0), asFloat(1), asFloat(2), known.kernelSize);
        EXPECT_TRUE(integers.slackIntact() && floats.slackIntact() && combined.slackIntact());
    }
}

template <class Metric>
struct MaskArgs
{
    LumStatus (*query)(const MaskArgs&);
    Metric* pMetrics;
    Metric* written;
    Lum32s kernelSize = 5;
    LumiDistanceNorm norm = 2;
    Lum32s maskType = 52;

    LumStatus call() const
    {
        return query(*this);
    }
    std::vector<Output> outputs() const
    {
        return {Output(written, 3 * sizeof *written)};
    }
};

template <class Metric>
void expectMaskOrder(LumStatus (*query)(const MaskArgs<Metric>&))
{
    using A = MaskArgs<Metric>;
    Metric metrics[3] = {};
    expectStatusOrder(A{query, metrics, metrics},
                      {
                          {"pMetrics null", lumErrNullPointer, [](A& a) { a.pMetrics = nullptr; }},
                          {"size 4", lumErrSize, [](A& a) { a.kernelSize = 4; }},
                          {"size 0", lumErrSize, [](A& a) { a.kernelSize = 0; }},
                          {"size -3", lumErrSize, [](A& a) { a.kernelSize = -3; }},
                          {"size 7", lumErrSize, [](A& a) { a.kernelSize = 7; }},
                          {"norm 3", lumErrArgument, [](A& a) { a.norm = 3; }},
                          {"norm -1", lumErrArgument, [](A& a) { a.norm = static_cast<LumiDistanceNorm>(-1); }},
                      });
}

TEST(ChamferMaskQuick, ChecksInOrder)
{
    expectMaskOrder<Lum32s>(
        [](const MaskArgs<Lum32s>& a) { return lumiGetDistanceTransformMask_32s(a.kernelSize, a.norm, a.pMetrics); });
    expectMaskOrder<Lum32f>(
        [](const MaskArgs<Lum32f>& a) { return lumiGetDistanceTransformMask_32f(a.kernelSize, a.norm, a.pMetrics); });
}

// Here the norm comes first, then the pointer, then the size.
TEST(ChamferMaskQuick, ChecksOfTheCombinedTypeInOrder)
{
    using A = MaskArgs<Lum32f>;
    Lum32f metrics[3] = {};
    const auto query = [](const A& a) { return lumiGetDistanceTransformMask(a.maskType, a.pMetrics); };
    expectStatusOrder(A{query, metrics, metrics},
                      {
                          {"norm 3 of size 5", lumErrArgument, [](A& a) { a.maskType = 53; }},
                          {"norm 9 of size 4", lumErrArgument, [](A& a) { a.maskType = 49; }},
                          {"norm -1", lumErrArgument, [](A& a) { a.maskType = -1; }},
                          {"norm -2 of size -3", lumErrArgument, [](A& a) { a.maskType = -32; }},
                          {"least type", lumErrArgument, [](A& a) { a.maskType = std::numeric_limits<Lum32s>::min(); }},
                          {"pMetrics null", lumErrNullPointer, [](A& a) { a.pMetrics = nullptr; }},
                          {"size 4", lumErrSize, [](A& a) { a.maskType = 42; }},
                          {"size 0", lumErrSize, [](A& a) { a.maskType = 0; }},
                          {"size -3", lumErrSize, [](A& a) { a.maskType = -30; }},
                          {"size 500", lumErrSize, [](A& a) { a.maskType = 5001; }},
                      });
}

}  // namespace
}  // namespace lumcv::test::distance
