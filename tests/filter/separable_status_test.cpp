// What the separable filter refuses, and in which order: the alignment of the strides comes last, behind the border,
// and a record that was never initialised behind the strides.
#include "filter/separable_arguments.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::separable {
namespace {

TYPE_SUITE(SeparableStatusQuick, AllCases, CaseName);

TYPE_TEST(SeparableStatusQuick, ChecksInOrder)
{
    for (const int channels : kChannels) {
        for (const LumDataType kernelType : TypeParam::kernelTypes) {
            SCOPED_TRACE(channels);
            Operands<TypeParam> operands(Entry::Ordinary, channels, kernelType);
            expectStatusOrder(ApplyArgs<TypeParam>(operands), applyOrder<TypeParam>(Entry::Ordinary, channels));
        }
    }
}

TYPE_TEST(SeparableStatusQuick, LargeChecksInOrder)
{
    for (const int channels : kChannels) {
        for (const LumDataType kernelType : TypeParam::kernelTypes) {
            SCOPED_TRACE(channels);
            Operands<TypeParam> operands(Entry::Large, channels, kernelType);
            expectStatusOrder(ApplyArgs<TypeParam>(operands), applyOrder<TypeParam>(Entry::Large, channels));
        }
    }
}

TYPE_TEST(SeparableStatusQuick, EveryBorderValue)
{
    for (const Entry entry : kBothEntries) {
        for (const int channels : kChannels) {
            // margins on all sides, as some of the values ask for them
            Operands<TypeParam> operands(entry, channels, TypeParam::kernelTypes[0], Margins::all(3));
            for (LumiBorderType border = -1; border <= 520; ++border) {
                ApplyArgs<TypeParam> args(operands);
                args.border = border;
                const LumStatus expected = isFilterBorder(border) ? lumOk : lumErrBorder;
                EXPECT_EQ(args.call(), expected) << "border " << border;

                args.borderValue = nullptr;
                const bool needed = channels > 1 && isFilterBorder(border) && (border & 15) == lumBorderConstant;
                if (channels == 1 || border <= 255) {
                    EXPECT_EQ(args.call(), needed ? lumErrNullPointer : expected)
                        << "border " << border << " without a value";
                }
            }
        }
    }
}

TYPE_TEST(SeparableStatusQuick, LargeGeometryIsRefused)
{
    using Args = ApplyArgs<TypeParam>;
    for (const int channels : kChannels) {
        Operands<TypeParam> operands(Entry::Large, channels, TypeParam::kernelTypes[0]);
        const Image<typename TypeParam::Destination> untouched = operands.destination;
        const auto expectRefused = [&](const char* what, auto change) {
            Args args(operands);
            change(args);
            EXPECT_EQ(args.call(), lumErrSizeTooLarge) << what;
            args.pSrc = nullptr;
            EXPECT_EQ(args.call(), lumErrNullPointer) << what;
        };
        for (const Lum64s value : {kTooLarge, kTooLarge * 2 + kWidth, std::numeric_limits<Lum64s>::max()}) {
            expectRefused("width", [&](Args& a) {
                a.roiSize.width = value;
                a.srcStep = 0x7fffffff;
                a.dstStep = 0x7fffffff;
            });
            expectRefused("height", [&](Args& a) { a.roiSize.height = value; });
            expectRefused("srcStep", [&](Args& a) { a.srcStep = value; });
            expectRefused("dstStep", [&](Args& a) { a.dstStep = value; });
        }
        Args args(operands);
        args.roiSize.width = std::numeric_limits<Lum64s>::min();
        EXPECT_EQ(args.call(), lumErrSize);
        args = Args(operands);
        args.srcStep = std::numeric_limits<Lum64s>::min();
        EXPECT_EQ(args.call(), lumErrStep);
        EXPECT_TRUE(sameBytes(untouched, operands.destination));
    }
}

// A ROI whose rows are as long as the strides is accepted, and so is any stride of a single row.
TYPE_TEST(SeparableStatusQuick, StridesThatPass)
{
    for (const Entry entry : kBothEntries) {
        for (const int channels : kChannels) {
            Operands<TypeParam> operands(entry, channels, TypeParam::kernelTypes[0]);
            ApplyArgs<TypeParam> args(operands);
            args.srcStep = args.sourceRowBytes();
            args.dstStep = args.destinationRowBytes();
            EXPECT_EQ(args.call(), lumOk);
            args.roiSize.height = 1;
            args.srcStep = 0x7ffffffc;
            args.dstStep = 0x7ffffffc;
            EXPECT_EQ(args.call(), lumOk);
        }
    }
}

}  // namespace
}  // namespace lumcv::test::separable
