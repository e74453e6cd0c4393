// What the Gaussian filter refuses, and in which order.
#include <cstring>
#include <limits>

#include "filter/gaussian_fixture.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::gaussian {
namespace {

TYPE_SUITE(GaussianStatusQuick, AllFormats, FormatName);

constexpr Lum64s kWidth = 10;
constexpr Lum64s kHeight = 8;
constexpr Lum64s kTooLarge = Lum64s{1} << 31;

/// The images and blocks of a valid call.
template <class Format>
struct Operands
{
    using T = typename Format::Element;

    explicit Operands(Apply itsWay) : way(itsWay)
    {
        source.forEach(Area::Roi, [](T& element, int x, int y, int) { element = static_cast<T>(x + 3 * y); });
    }
    static Setting setting()
    {
        Setting s;
        s.width = kWidth;
        s.height = kHeight;
        s.kernelSize = 5;
        return s;
    }

    Apply way;
    Image<T> source{setting().layout<Format>()};
    Image<T> destination{setting().layout<Format>()};
    PlacedBlock record = makeRecord(entryOf(way), setting().parameters<Format>());
    PlacedBlock scratch{scratchBytes(entryOf(way), setting().parameters<Format>())};
};

void setWord(Lum8u* record, std::size_t offset, Lum32s value)
{
    std::memcpy(record + offset, &value, sizeof value);
}

template <class Format>
struct ApplyArgs
{
    using T = typename Format::Element;

    const Operands<Format>* operands;
    const T* pSrc;
    Lum64s srcStep;
    T* pDst;
    Lum64s dstStep;
    LumiSizeL roiSize = {kWidth, kHeight};
    LumiBorderType border = lumBorderReplicate;  // as argument, or in the record
    const T* pBorderValue;
    const LumFilterGaussianSpec* pSpec;
    Lum8u* pBuffer;
    Lum32s recordKernelSize = 5;
    bool firstRecordToo = false;

    static constexpr T kBorderValue[3] = {};

    explicit ApplyArgs(Operands<Format>& o)
        : operands(&o),
          pSrc(o.source.pixels()),
          srcStep(o.source.step()),
          pDst(o.destination.pixels()),
          dstStep(o.destination.step()),
          pBorderValue(kBorderValue),
          pSpec(o.record.spec()),
          pBuffer(o.scratch.data())
    {
    }
    // The record is changed where it stands, since it holds for its own address alone, and put right again.
    LumStatus call() const
    {
        Lum8u* const first = operands->record.data();
        Lum8u* const second = first + (foldedRecord(first) - first);
        changeRecords(first, second, recordKernelSize, border);
        const LumStatus status = callFilter<Format>(operands->way, pSrc, srcStep, pDst, dstStep, roiSize, border,
                                                    pBorderValue, pSpec, pBuffer);
        changeRecords(first, second, 5, lumBorderReplicate);
        setWord(first, 0, 5);
        return status;
    }
    std::vector<Output> outputs() const
    {
        return {Output(operands->destination), Output(operands->scratch.data(), operands->scratch.size()),
                Output(operands->record.data(), operands->record.size())};
    }

  private:
    void changeRecords(Lum8u* first, Lum8u* second, Lum32s kernelSize, LumiBorderType borderInRecord) const
    {
        setWord(second, 0, kernelSize);
        if (firstRecordToo) {
            setWord(first, 0, kernelSize);
        }
        if (operands->way == Apply::BorderFromRecord) {
            setWord(first, 12, borderInRecord);
            setWord(second, 12, borderInRecord);
        }
    }
};

template <class Format>
std::vector<Violation<ApplyArgs<Format>>> applyOrder(Apply way)
{
    using Args = ApplyArgs<Format>;
    const std::vector<std::string> narrow = {"srcStep below the width", "dstStep below the width"};
    // a stride of 0 is not below a width of 0
    const std::vector<std::string> narrowOrZero = {"srcStep below the width", "dstStep below the width", "srcStep 0",
                                                   "dstStep 0"};
    const std::vector<std::string>& noWidth = way == Apply::Large ? narrowOrZero : narrow;
    std::vector<Violation<Args>> order = {
        {"pSrc null", lumErrNullPointer, [](Args& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](Args& a) { a.pDst = nullptr; }},
        {"pSpec null", lumErrNullPointer, [](Args& a) { a.pSpec = nullptr; }},
        {"pBuffer null", lumErrNullPointer, [](Args& a) { a.pBuffer = nullptr; }},
    };
    if (way == Apply::Large) {
        order.push_back({"width too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.width = kTooLarge; }});
        order.push_back({"height too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.height = kTooLarge; }});
        order.push_back({"srcStep too large", lumErrSizeTooLarge, [](Args& a) { a.srcStep = kTooLarge; }});
        order.push_back({"dstStep too large", lumErrSizeTooLarge, [](Args& a) { a.dstStep = kTooLarge; }});
    }
    const std::vector<Violation<Args>> geometryOrder = {
        {"srcStep 0", lumErrStep, [](Args& a) { a.srcStep = 0; }},
        {"dstStep 0", lumErrStep, [](Args& a) { a.dstStep = 0; }},
        {"srcStep negative", lumErrStep, [](Args& a) { a.srcStep = -a.srcStep; }},
        {"dstStep negative", lumErrStep, [](Args& a) { a.dstStep = -a.dstStep; }},
        {"srcStep below the width", lumErrStep, [](Args& a) { a.srcStep = kWidth - 1; }},
        {"dstStep below the width", lumErrStep, [](Args& a) { a.dstStep = kWidth - 1; }},
        {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }, noWidth},
        {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = -1; }, noWidth},
        {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](Args& a) { a.roiSize.height = -1; }},
        {"border 256", lumErrBorder, [](Args& a) { a.border = 256 | lumBorderReplicate; }},
        {"border 256 and all sides", lumErrBorder, [](Args& a) { a.border = 256 | lumBorderInMem; }},
        {"border negative", lumErrBorder, [](Args& a) { a.border = -15; }},
    };
    order.insert(order.end(), geometryOrder.begin(), geometryOrder.end());
    if (way != Apply::BorderFromRecord || Format::channels == 3) {
        order.push_back({"constant without a value", lumErrNullPointer, [](Args& a) {
                             a.border = lumBorderConstant | lumBorderInMemLeft;
                             a.pBorderValue = nullptr;
                         }});
    }
    order.push_back({"border 0", lumErrBorder, [](Args& a) { a.border = 0; }});
    order.push_back({"border 2", lumErrBorder, [](Args& a) { a.border = 2; }});
    order.push_back({"border neutral", lumErrBorder, [](Args& a) { a.border = lumBorderNeutral; }});
    order.push_back({"three sides and no mode", lumErrBorder, [](Args& a) { a.border = 0x70; }});
    order.push_back({"kernel 4 in the record", lumErrArgument, [](Args& a) { a.recordKernelSize = 4; }});
    order.push_back({"kernel 1 in the record", lumErrArgument, [](Args& a) { a.recordKernelSize = 1; }});
    order.push_back({"kernel -3 in the record", lumErrArgument, [](Args& a) { a.recordKernelSize = -3; }});
    return order;
}

template <class Format>
void expectApplyOrder(Apply way)
{
    Operands<Format> operands(way);
    expectStatusOrder(ApplyArgs<Format>(operands), applyOrder<Format>(way));
}

TYPE_TEST(GaussianStatusQuick, ChecksInOrder)
{
    expectApplyOrder<TypeParam>(Apply::Ordinary);
}

TYPE_TEST(GaussianStatusQuick, LargeChecksInOrder)
{
    expectApplyOrder<TypeParam>(Apply::Large);
}

TYPE_TEST(GaussianStatusQuick, BorderFromRecordChecksInOrder)
{
    expectApplyOrder<TypeParam>(Apply::BorderFromRecord);
}

// The ordinary entries ask for a positive stride before they look at the width, the large ones only compare the two.
TYPE_TEST(GaussianStatusQuick, StrideZeroAndWidthZero)
{
    for (const Apply way : kAllWays) {
        Operands<TypeParam> operands(way);
        ApplyArgs<TypeParam> args(operands);
        args.srcStep = 0;
        args.dstStep = 0;
        args.roiSize.width = 0;
        EXPECT_EQ(args.call(), way == Apply::Large ? lumErrSize : lumErrStep);
        args.srcStep = -3;
        args.dstStep = -3;
        args.roiSize.width = -3;
        EXPECT_EQ(args.call(), way == Apply::Large ? lumErrSize : lumErrStep);
    }
}

// The kernel size that counts is refused wherever it stands, before it is used for anything.
TYPE_TEST(GaussianStatusQuick, RecordWithoutAKernel)
{
    for (const Apply way : kAllWays) {
        Operands<TypeParam> operands(way);
        for (const bool firstToo : {false, true}) {
            for (const Lum32s kernelSize : {0, 1, 2, 4, 6, 0x7ffffffe, -1, -3, std::numeric_limits<Lum32s>::min()}) {
                ApplyArgs<TypeParam> args(operands);
                args.recordKernelSize = kernelSize;
                args.firstRecordToo = firstToo;
                EXPECT_EQ(args.call(), lumErrArgument) << "kernel " << kernelSize;
            }
        }
        EXPECT_TRUE(operands.destination.gapsIntact());
    }
}

TYPE_TEST(GaussianStatusQuick, EveryBorderValue)
{
    // margins on all sides, as some of the values ask for them
    using T = typename TypeParam::Element;
    const Image<T> source(Operands<TypeParam>::setting().template layout<TypeParam>(Margins::all(2)));
    for (const Apply way : kAllWays) {
        Operands<TypeParam> operands(way);
        for (LumiBorderType border = -1; border <= 512; ++border) {
            const bool inRange = border >= 0 && border <= 255;
            const bool all = inRange && allInMemory(border);
            const bool valid = all || (inRange && isFilterMode(border));
            ApplyArgs<TypeParam> args(operands);
            args.pSrc = source.pixels();
            args.srcStep = source.step();
            args.border = border;
            EXPECT_EQ(args.call(), valid ? lumOk : lumErrBorder) << "border " << border;

            if (way == Apply::BorderFromRecord && TypeParam::channels == 1) {
                continue;
            }
            args.pBorderValue = nullptr;
            const bool needsValue = inRange && !all && (border & 15) == lumBorderConstant;
            EXPECT_EQ(args.call(), needsValue ? lumErrNullPointer
                                   : valid    ? lumOk
                                              : lumErrBorder)
                << "border " << border << " without a value";
        }
    }
}

TYPE_TEST(GaussianStatusQuick, LargeGeometryIsRefused)
{
    using Args = ApplyArgs<TypeParam>;
    Operands<TypeParam> operands(Apply::Large);
    const auto expectRefused = [&](const char* what, auto change) {
        Args args(operands);
        change(args);
        EXPECT_EQ(args.call(), lumErrSizeTooLarge) << what;
        args.pSrc = nullptr;
        EXPECT_EQ(args.call(), lumErrNullPointer) << what;
    };
    Operands<TypeParam> untouched(Apply::Large);
    for (const Lum64s value : {kTooLarge, Lum64s{1} << 40, std::numeric_limits<Lum64s>::max()}) {
        expectRefused("width", [&](Args& a) {
            a.roiSize.width = value;
            a.srcStep = value;
            a.dstStep = value;
        });
        expectRefused("height", [&](Args& a) { a.roiSize.height = value; });
        expectRefused("srcStep", [&](Args& a) { a.srcStep = value; });
        expectRefused("dstStep", [&](Args& a) { a.dstStep = value; });
    }
    EXPECT_TRUE(sameBytes(untouched.destination, operands.destination));
}

}  // namespace
}  // namespace lumcv::test::gaussian
