// What the fixed filters and their queries refuse, in which order, and the sizes of the scratch.
#include <limits>

#include "filter/fixed_filters_fixture.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::fixed_filters {
namespace {

constexpr int kIntMax = std::numeric_limits<int>::max();
constexpr int kIntMin = std::numeric_limits<int>::min();
constexpr int kWidth = 11;
constexpr int kHeight = 5;

TYPE_SUITE(FixedFiltersStatusQuick, AllCases, CaseName);

template <class C>
struct Operands
{
    using S = typename C::Source;
    using D = typename C::Destination;

    explicit Operands(LumiMaskSize mask) : scratch(makeScratch<C>(kWidth, mask))
    {
        source.forEach(Area::WithMargins, [](S& element, int x, int y, int) { element = static_cast<S>(x * x + y); });
    }
    static FilterSetting setting()
    {
        FilterSetting s;
        s.size = {kWidth, kHeight};
        return s;
    }

    // margins on all sides, as some of the border values ask for them
    Image<S> source{setting().layout<S>(Margins::all(2))};
    Image<D> destination{setting().layout<D>()};
    PlacedBlock scratch;
};

template <class C>
struct ApplyArgs
{
    using S = typename C::Source;
    using D = typename C::Destination;

    ApplyArgs(Operands<C>& o, LumiMaskSize itsMask)
        : operands(&o),
          pSrc(o.source.pixels()),
          srcStep(o.source.step()),
          pDst(o.destination.pixels()),
          dstStep(o.destination.step()),
          mask(itsMask),
          pBuffer(o.scratch.data())
    {
    }
    LumStatus call() const
    {
        return C::apply(pSrc, srcStep, pDst, dstStep, roiSize, mask, border, S{1}, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(operands->destination), Output(operands->scratch.data(), operands->scratch.size())};
    }

    Operands<C>* operands;
    const S* pSrc;
    Lum32s srcStep;
    D* pDst;
    Lum32s dstStep;
    LumiSize roiSize = {kWidth, kHeight};
    LumiMaskSize mask;
    LumiBorderType border = lumBorderReplicate;
    Lum8u* pBuffer;
};

template <class C>
std::vector<Violation<ApplyArgs<C>>> applyOrder()
{
    using Args = ApplyArgs<C>;
    constexpr Lum32s sourceSize = sizeof(typename C::Source);
    constexpr Lum32s destinationSize = sizeof(typename C::Destination);
    std::vector<Violation<Args>> order = {
        {"pSrc null", lumErrNullPointer, [](Args& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](Args& a) { a.pDst = nullptr; }},
        {"pBuffer null", lumErrNullPointer, [](Args& a) { a.pBuffer = nullptr; }},
        {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = kIntMin; }},
        {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](Args& a) { a.roiSize.height = -1; }},
        {"srcStep below a row", lumErrStep, [](Args& a) { a.srcStep = kWidth * sourceSize - 1; }},
        {"dstStep below a row", lumErrStep, [](Args& a) { a.dstStep = kWidth * destinationSize - 1; }},
        {"srcStep 0", lumErrStep, [](Args& a) { a.srcStep = 0; }},
        {"dstStep 0", lumErrStep, [](Args& a) { a.dstStep = 0; }},
        {"srcStep negative", lumErrStep, [](Args& a) { a.srcStep = -a.srcStep; }},
        {"dstStep negative", lumErrStep, [](Args& a) { a.dstStep = -a.dstStep; }},
    };
    if (sourceSize > 1) {
        order.push_back(
            {"srcStep misaligned", lumErrStepAlignment, [](Args& a) { a.srcStep = kWidth * sourceSize + 2; }});
        order.push_back({"srcStep odd", lumErrStepAlignment, [](Args& a) { a.srcStep = kWidth * sourceSize + 1; }});
    }
    if (destinationSize > 1) {
        order.push_back(
            {"dstStep odd", lumErrStepAlignment, [](Args& a) { a.dstStep = kWidth * destinationSize + 1; }});
    }
    if (destinationSize > 2) {
        order.push_back(
            {"dstStep misaligned", lumErrStepAlignment, [](Args& a) { a.dstStep = kWidth * destinationSize + 2; }});
    }
    const std::vector<Violation<Args>> codes = {
        {"border 256", lumErrBorder, [](Args& a) { a.border = 256 | lumBorderReplicate; }},
        {"border 256 and all sides", lumErrBorder, [](Args& a) { a.border = 256 | lumBorderInMem; }},
        {"border negative", lumErrBorder, [](Args& a) { a.border = -15; }},
        {"border 0", lumErrBorder, [](Args& a) { a.border = 0; }},
        {"border neutral", lumErrBorder, [](Args& a) { a.border = lumBorderNeutral; }},
        {"three sides and no mode", lumErrBorder, [](Args& a) { a.border = 0xE0; }},
        {"all sides and no mode of a filter", lumErrBorder, [](Args& a) { a.border = 0xF2; }},
        {"mask 13", lumErrMaskSize, [](Args& a) { a.mask = 13; }},
        {"mask 0", lumErrMaskSize, [](Args& a) { a.mask = 0; }},
        {"mask 3", lumErrMaskSize, [](Args& a) { a.mask = 3; }},
        {"mask 35", lumErrMaskSize, [](Args& a) { a.mask = 35; }},
        {"mask -33", lumErrMaskSize, [](Args& a) { a.mask = -33; }},
    };
    order.insert(order.end(), codes.begin(), codes.end());
    return order;
}

// The mask comes last, behind the border.
TYPE_TEST(FixedFiltersStatusQuick, ChecksInOrder)
{
    for (const LumiMaskSize mask : kMasks) {
        Operands<TypeParam> operands(mask);
        expectStatusOrder(ApplyArgs<TypeParam>(operands, mask), applyOrder<TypeParam>());
    }
}

TYPE_TEST(FixedFiltersStatusQuick, EveryBorderValue)
{
    for (const LumiMaskSize mask : kMasks) {
        Operands<TypeParam> operands(mask);
        for (LumiBorderType border = -1; border <= 520; ++border) {
            ApplyArgs<TypeParam> args(operands, mask);
            args.border = border;
            EXPECT_EQ(args.call(), isFilterBorder(border) ? lumOk : lumErrBorder) << "border " << border;
        }
    }
}

TYPE_TEST(FixedFiltersStatusQuick, EveryMask)
{
    Operands<TypeParam> operands(lumMask5x5);
    for (LumiMaskSize mask = -1; mask <= 300; ++mask) {
        ApplyArgs<TypeParam> args(operands, mask);
        const bool valid = mask == lumMask3x3 || mask == lumMask5x5;
        EXPECT_EQ(args.call(), valid ? lumOk : lumErrMaskSize) << "mask " << mask;
        Lum32s bytes = -5;
        EXPECT_EQ(TypeParam::query({kWidth, kHeight}, mask, &bytes), valid ? lumOk : lumErrMaskSize) << "mask " << mask;
        EXPECT_EQ(bytes == -5, !valid);
    }
}

// Rows as long as the strides are accepted, and so is any stride of a single row.
TYPE_TEST(FixedFiltersStatusQuick, StridesThatPass)
{
    for (const LumiMaskSize mask : kMasks) {
        Operands<TypeParam> operands(mask);
        ApplyArgs<TypeParam> args(operands, mask);
        args.srcStep = kWidth * static_cast<Lum32s>(sizeof(typename TypeParam::Source));
        args.dstStep = kWidth * static_cast<Lum32s>(sizeof(typename TypeParam::Destination));
        EXPECT_EQ(args.call(), lumOk);
        args.roiSize.height = 1;
        args.srcStep = 0x7ffffffc;
        args.dstStep = 0x7ffffffc;
        EXPECT_EQ(args.call(), lumOk);
    }
}

template <class C>
Wide expectedSize(int width, LumiMaskSize mask)
{
    return bufferSize<typename C::Operator, typename C::Source>(width, mask);
}

TYPE_TEST(FixedFiltersStatusQuick, BufferSizes)
{
    for (const LumiMaskSize mask : kMasks) {
        for (int width = 1; width < 300; ++width) {
            for (const int height : {1, 480, kIntMax}) {
                Lum32s bytes = 0;
                ASSERT_EQ(TypeParam::query({width, height}, mask, &bytes), lumOk);
                EXPECT_EQ(bytes, static_cast<Lum32s>(expectedSize<TypeParam>(width, mask))) << "width " << width;
            }
        }
    }
}

// The largest size that 32 bits hold is given, the next is refused.
TYPE_TEST(FixedFiltersStatusQuick, BufferSizeTooLarge)
{
    for (const LumiMaskSize mask : kMasks) {
        int fits = 1;
        for (int step = 1 << 30; step > 0; step /= 2) {
            if (fits <= kIntMax - step && expectedSize<TypeParam>(fits + step, mask) <= kIntMax) {
                fits += step;
            }
        }
        Lum32s bytes = 0;
        ASSERT_EQ(TypeParam::query({fits, 1}, mask, &bytes), lumOk);
        EXPECT_EQ(bytes, static_cast<Lum32s>(expectedSize<TypeParam>(fits, mask)));
        for (const int width : {fits + 1, 0x10000000, 0x20000000, 0x40000000, 0x7ffffff0, kIntMax}) {
            bytes = -7;
            EXPECT_EQ(TypeParam::query({width, 1}, mask, &bytes), lumErrSizeTooLarge) << "width " << width;
            EXPECT_EQ(bytes, -7);
        }
    }
}

template <class C>
struct QueryArgs
{
    LumiSize roiSize = {20, 10};
    LumiMaskSize mask = lumMask3x3;
    bool withResult = true;
    const PlacedBlock* result = nullptr;

    LumStatus call() const
    {
        return C::query(roiSize, mask, withResult ? reinterpret_cast<Lum32s*>(result->data()) : nullptr);
    }
    std::vector<Output> outputs() const
    {
        return {Output(result->data(), result->size())};
    }
};

TYPE_TEST(FixedFiltersStatusQuick, QueryChecksInOrder)
{
    using Q = QueryArgs<TypeParam>;
    const PlacedBlock result(sizeof(Lum32s));
    for (const LumiMaskSize mask : kMasks) {
        expectStatusOrder(Q{{20, 10}, mask, true, &result},
                          {
                              {"no result", lumErrNullPointer, [](Q& q) { q.withResult = false; }},
                              {"width 0", lumErrSize, [](Q& q) { q.roiSize.width = 0; }},
                              {"width negative", lumErrSize, [](Q& q) { q.roiSize.width = kIntMin; }},
                              {"height 0", lumErrSize, [](Q& q) { q.roiSize.height = 0; }},
                              {"height negative", lumErrSize, [](Q& q) { q.roiSize.height = -1; }},
                              {"mask 13", lumErrMaskSize, [](Q& q) { q.mask = 13; }},
                              {"mask 5", lumErrMaskSize, [](Q& q) { q.mask = 5; }},
                              {"too large", lumErrSizeTooLarge,
                               [](Q& q) { q.roiSize.width = q.roiSize.width < 1 ? q.roiSize.width : kIntMax; }},
                          });
        EXPECT_TRUE(result.intact());
    }
}

}  // namespace
}  // namespace lumcv::test::fixed_filters
