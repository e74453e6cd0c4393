// What dilation and erosion refuse, in which order, and where the forms and the generations differ.
#include "morph/morph_fixture.hpp"
#include "morph/morph_status.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::morph {
namespace {

TYPE_SUITE(SinglePassStatusQuick, AllForms, FormName);

template <class Form>
std::vector<Violation<StatusArguments<Form>>> singlePassOrder(Operation operation, Generation generation)
{
    using Args = StatusArguments<Form>;
    const bool large = generation == Generation::Large;
    const auto noValue = [](Args& a) {
        a.border = lumBorderConstant | lumBorderInMemLeft;
        a.pBorderValue = nullptr;
    };
    std::vector<Violation<Args>> order = nullPointers<Form>();
    if (!large && Form::channels > 1) {
        order.push_back({"constant without a value", lumErrNullPointer, noValue});
    }
    append(order, emptyRois<Form>());
    if (large) {
        order.push_back({"width too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.width = kTooLarge; }});
        order.push_back({"height too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.height = kTooLarge; }});
        order.push_back({"width far too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.width = kTooLarge << 9; }});
    }
    append(order, strides<Form>());
    order.push_back({"border 4097", lumErrBorder, [](Args& a) { a.border = 4096 | lumBorderReplicate; }});
    order.push_back({"border negative", lumErrBorder, [](Args& a) { a.border = -15; }});
    order.push_back({"border 0", lumErrBorder, [](Args& a) { a.border = 0; }});
    order.push_back({"border 7", lumErrBorder, [](Args& a) { a.border = 7; }});
    order.push_back({"three sides and no mode", lumErrBorder, [](Args& a) { a.border = 0xE0; }});
    order.push_back({"four sides and no mode", lumErrBorder, [](Args& a) { a.border = 0xF2; }});
    if (refusesInPlace<Form>(operation)) {
        order.push_back(
            {"in place", lumErrInPlace, [](Args& a) { a.pDst = const_cast<typename Form::Element*>(a.pSrc); }});
    }
    if (large) {
        const bool ordinaryErrors = limitsAreOrdinaryErrors<Form>(operation);
        const LumStatus sizeStatus = ordinaryErrors ? lumErrSize : lumErrSizeTooLarge;
        const LumStatus stepStatus = ordinaryErrors ? lumErrStep : lumErrSizeTooLarge;
        // the strides grow with the width, so that its row fits
        order.push_back({"width at the limit", sizeStatus,
                         [](Args& a) {
                             a.roiSize.width = kLimit;
                             a.srcStep = kLimit * 64;
                             a.dstStep = kLimit * 64;
                         },
                         misalignments<Form>()});
        order.push_back({"height at the limit", sizeStatus, [](Args& a) { a.roiSize.height = kLimit; }});
        order.push_back({"srcStep at the limit", stepStatus, [](Args& a) { a.srcStep = kTooLarge; }});
        order.push_back({"dstStep at the limit", stepStatus, [](Args& a) { a.dstStep = kTooLarge; }});
        order.push_back({"constant without a value", lumErrNullPointer, noValue});
    }
    return order;
}

TYPE_TEST(SinglePassStatusQuick, ChecksInOrder)
{
    for (const Operation operation : kSinglePasses) {
        for (const Generation generation : kGenerations) {
            SCOPED_TRACE(std::string(nameOf(operation)) + ", " + nameOf(generation));
            const StatusOperands<TypeParam> operands(operation, generation);
            expectStatusOrder(StatusArguments<TypeParam>(operands), singlePassOrder<TypeParam>(operation, generation));
        }
    }
}

// Beyond the four modes 240 alone is a border. The flags of the first stage make 240 where they count: in the large
// entries and in the ordinary dilation of 8u.
TYPE_TEST(SinglePassStatusQuick, EveryBorderValue)
{
    for (const Operation operation : kSinglePasses) {
        for (const Generation generation : kGenerations) {
            const bool large = generation == Generation::Large;
            const bool folds = large || (operation == Operation::Dilate && TypeParam::dataType == lumType8u &&
                                         TypeParam::channels == 1);
            const StatusOperands<TypeParam> operands(operation, generation);
            for (LumiBorderType border = -1; border <= 4200; ++border) {
                const bool inRange = border >= 0 && border <= 4095;
                const int effective = folds ? (border & 0xFF) | (border >> 4 & 0xF0) : border;
                const bool valid = inRange && (effective == lumBorderInMem || isMorphMode(border & 15));
                StatusArguments<TypeParam> args(operands);
                args.border = border;
                ASSERT_EQ(args.call(), valid ? lumOk : lumErrBorder)
                    << nameOf(operation) << ", " << nameOf(generation) << ", border " << border;

                // the ordinary entries of one channel have no pointer
                args.pBorderValue = nullptr;
                const bool constant = border >= 0 && (border & 15) == lumBorderConstant;
                LumStatus expected = valid ? lumOk : lumErrBorder;
                if (large ? constant && valid : constant && TypeParam::channels > 1) {
                    expected = lumErrNullPointer;
                }
                ASSERT_EQ(args.call(), expected)
                    << nameOf(operation) << ", " << nameOf(generation) << ", border " << border << " without a value";
            }
        }
    }
}

TYPE_TEST(SinglePassStatusQuick, InPlaceIsRefusedFor16sAndErosionOf16u)
{
    for (const Operation operation : kSinglePasses) {
        for (const Generation generation : kGenerations) {
            StatusOperands<TypeParam> operands(operation, generation);
            StatusArguments<TypeParam> args(operands);
            args.pSrc = args.pDst;
            args.srcStep = args.dstStep;
            EXPECT_EQ(args.call(), refusesInPlace<TypeParam>(operation) ? lumErrInPlace : lumOk)
                << nameOf(operation) << ", " << nameOf(generation);
            EXPECT_TRUE(operands.destination.gapsIntact());
            // only the same pixel is in place
            args.pSrc = operands.source.pixels();
            args.srcStep = operands.source.step();
            EXPECT_EQ(args.call(), lumOk);
        }
    }
}

// The status of a size or stride of 0x7fffffff differs from one large entry to the next.
TYPE_TEST(SinglePassStatusQuick, StatusOfTheLimitDiffersByEntry)
{
    struct Exception
    {
        Operation operation;
        const char* form;
    };
    const Exception exceptions[] = {{Operation::Dilate, "8u_C1R"},  {Operation::Dilate, "16u_C1R"},
                                    {Operation::Dilate, "16s_C1R"}, {Operation::Dilate, "32f_C1R"},
                                    {Operation::Erode, "8u_C1R"},   {Operation::Erode, "8u_C3R"}};
    for (const Operation operation : kSinglePasses) {
        bool isException = false;
        for (const Exception& exception : exceptions) {
            isException =
                isException || (exception.operation == operation && exception.form == std::string(TypeParam::name));
        }
        const StatusOperands<TypeParam> operands(operation, Generation::Large);
        const auto status = [&](auto change) {
            StatusArguments<TypeParam> args(operands);
            change(args);
            return args.call();
        };
        const LumStatus size = isException ? lumErrSize : lumErrSizeTooLarge;
        const LumStatus stride = isException ? lumErrStep : lumErrSizeTooLarge;
        EXPECT_EQ(status([](auto& a) { a.roiSize.height = kLimit; }), size) << nameOf(operation);
        EXPECT_EQ(status([](auto& a) { a.srcStep = kTooLarge; }), stride) << nameOf(operation);
        EXPECT_EQ(status([](auto& a) { a.dstStep = kTooLarge; }), stride) << nameOf(operation);
        EXPECT_EQ(status([](auto& a) { a.srcStep = Lum64s{1} << 40; }), stride) << nameOf(operation);
        // what exceeds 31 bits is too large in all of them
        EXPECT_EQ(status([](auto& a) { a.roiSize.height = kTooLarge; }), lumErrSizeTooLarge) << nameOf(operation);
        EXPECT_EQ(status([](auto& a) { a.roiSize.width = kTooLarge; }), lumErrSizeTooLarge) << nameOf(operation);
        // the largest strides that are allowed; they are used between rows only
        EXPECT_EQ(status([](auto& a) {
                      a.roiSize.height = 1;
                      a.srcStep = 0x7ffffffc;
                      a.dstStep = 0x7ffffffc;
                      a.border = lumBorderReplicate;
                  }),
                  lumOk)
            << nameOf(operation);
    }
}

// The products of the stride test are formed in 64 bits: a row of 2^32 + 4 bytes is not one of 4.
TYPE_TEST(SinglePassStatusQuick, RowBytesAreNotNarrowed)
{
    constexpr auto pixel = static_cast<Lum64s>(sizeof(typename TypeParam::Element)) * TypeParam::channels;
    if (pixel == 1) {
        return;  // no width of 31 bits makes such a row
    }
    for (const Operation operation : kSinglePasses) {
        const StatusOperands<TypeParam> operands(operation, Generation::Large);
        StatusArguments<TypeParam> args(operands);
        args.roiSize = {kLimit - 1, 1};
        args.srcStep = kLimit / 16 * 16;
        args.dstStep = kLimit / 16 * 16;
        EXPECT_EQ(args.call(), lumErrStep) << nameOf(operation);
    }
}

}  // namespace
}  // namespace lumcv::test::morph
