// What the compound operations refuse, in which order, and where the operations and the generations differ.
#include <limits>

#include "morph/morph_fixture.hpp"
#include "morph/morph_status.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::morph {
namespace {

TYPE_SUITE(CompoundStatusQuick, AllForms, FormName);

/// The passes in their order; the gradient writes the destination in its first pass, the others in their second.
struct Passes
{
    explicit Passes(Operation operation)
        : first(operation == Operation::Open || operation == Operation::Tophat ? Operation::Erode : Operation::Dilate),
          second(first == Operation::Erode ? Operation::Dilate : Operation::Erode),
          writing(operation == Operation::Gradient ? first : second)
    {
    }
    Operation first;
    Operation second;
    Operation writing;
};

template <class Form>
LumStatus sizeLimitStatus(Operation pass)
{
    return limitsAreOrdinaryErrors<Form>(pass) ? lumErrSize : lumErrSizeTooLarge;
}

template <class Form>
LumStatus stepLimitStatus(Operation pass)
{
    return limitsAreOrdinaryErrors<Form>(pass) ? lumErrStep : lumErrSizeTooLarge;
}

/// Opening and closing read the source and write the destination in different passes; the gradient does both in one.
template <class Form>
bool gradientRefusesInPlace(Operation operation)
{
    return operation == Operation::Gradient && Form::dataType == lumType16s;
}

template <class Form>
StatusTable<Form> compoundOrder(Operation operation, Generation generation)
{
    using Args = StatusArguments<Form>;
    const bool large = generation == Generation::Large;
    const bool gradient = operation == Operation::Gradient;
    StatusTable<Form> order = nullPointers<Form>();
    if (large || Form::channels > 1) {
        order.push_back({"constant without a value", lumErrNullPointer, [](Args& a) {
                             a.border = lumBorderConstant | lumBorderInMemLeft;
                             a.pBorderValue = nullptr;
                         }});
    }
    append(order, emptyRois<Form>());
    if (large) {
        order.push_back({"width too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.width = kTooLarge; }});
        order.push_back({"height too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.height = kTooLarge << 3; }});
    }
    append(order, strides<Form>());
    order.push_back({"border 4097", lumErrBorder, [](Args& a) { a.border = 4096 | lumBorderReplicate; }});
    order.push_back({"border negative", lumErrBorder, [](Args& a) { a.border = -15; }});
    order.push_back({"border 0", lumErrBorder, [](Args& a) { a.border = 0; }});
    order.push_back({"three sides and no mode", lumErrBorder, [](Args& a) { a.border = 0xE2; }});
    order.push_back({"four first-stage flags and no mode", lumErrBorder, [](Args& a) { a.border = 0xF00; }});
    if (gradient && !large) {
        order.push_back({"neutral", lumErrBorder, [](Args& a) { a.border = lumBorderNeutral; }});
        order.push_back({"border 257", lumErrBorder, [](Args& a) { a.border = 256 | lumBorderReplicate; }});
    }
    if (gradientRefusesInPlace<Form>(operation)) {
        order.push_back(
            {"in place", lumErrInPlace, [](Args& a) { a.pDst = const_cast<typename Form::Element*>(a.pSrc); }});
    }
    if (large) {
        const Passes passes(operation);
        order.push_back({"width at the limit", sizeLimitStatus<Form>(passes.first),
                         [](Args& a) {
                             a.roiSize.width = kLimit;
                             a.srcStep = kLimit * 64;
                             a.dstStep = kLimit * 64;
                         },
                         misalignments<Form>()});
        order.push_back(
            {"height at the limit", sizeLimitStatus<Form>(passes.first), [](Args& a) { a.roiSize.height = kLimit; }});
        order.push_back(
            {"srcStep at the limit", stepLimitStatus<Form>(passes.first), [](Args& a) { a.srcStep = kTooLarge; }});
        order.push_back(
            {"dstStep at the limit", stepLimitStatus<Form>(passes.writing), [](Args& a) { a.dstStep = kTooLarge; }});
    }
    return order;
}

TYPE_TEST(CompoundStatusQuick, ChecksInOrder)
{
    for (const Operation operation : kCompounds) {
        for (const Generation generation : kGenerations) {
            SCOPED_TRACE(std::string(nameOf(operation)) + ", " + nameOf(generation));
            const StatusOperands<TypeParam> operands(operation, generation);
            expectStatusOrder(StatusArguments<TypeParam>(operands), compoundOrder<TypeParam>(operation, generation));
        }
    }
}

/// Which border values an entry takes.
bool takesBorder(Operation operation, Generation generation, LumiBorderType border)
{
    const int mode = border & 15;
    const bool allInMemory = (border & lumBorderInMem) == lumBorderInMem;
    if (border < 0 || border > 4095) {
        return false;
    }
    if (operation == Operation::Gradient && generation == Generation::Ordinary) {
        return border <= 255 && (border == lumBorderInMem || mode == lumBorderReplicate || mode == lumBorderMirror ||
                                 mode == lumBorderConstant);
    }
    // with all sides in memory no flag of the first stage stands alone
    return isMorphMode(mode) || allInMemory;
}

TYPE_TEST(CompoundStatusQuick, EveryBorderValue)
{
    for (const Operation operation : kCompounds) {
        for (const Generation generation : kGenerations) {
            const bool large = generation == Generation::Large;
            const StatusOperands<TypeParam> operands(operation, generation);
            for (LumiBorderType border = -1; border <= 4200; ++border) {
                const int sides = border >> 4 & 15;
                if (border > 600 && sides != 0 && sides != 6 && sides != 14 && sides != 15) {
                    continue;
                }
                const bool valid = takesBorder(operation, generation, border);
                StatusArguments<TypeParam> args(operands);
                args.border = border;
                ASSERT_EQ(args.call(), valid ? lumOk : lumErrBorder)
                    << nameOf(operation) << ", " << nameOf(generation) << ", border " << border;
                if (border >= 0 && (border & 15) == lumBorderConstant) {
                    // asked for early, whether the border is valid or not
                    args.pBorderValue = nullptr;
                    const bool early = large || TypeParam::channels > 1;
                    const LumStatus expected = early ? lumErrNullPointer : valid ? lumOk : lumErrBorder;
                    ASSERT_EQ(args.call(), expected)
                        << nameOf(operation) << ", " << nameOf(generation) << ", border " << border << ", no value";
                }
            }
        }
    }
}

// The ordinary gradient knows no neutral border and no flags of a first stage, the large one and the other operations
// do.
TYPE_TEST(CompoundStatusQuick, OrdinaryGradientAloneRefusesNeutralAndStageFlags)
{
    for (const Operation operation : kCompounds) {
        for (const Generation generation : kGenerations) {
            const bool refuses = operation == Operation::Gradient && generation == Generation::Ordinary;
            const StatusOperands<TypeParam> operands(operation, generation);
            for (const LumiBorderType border :
                 {lumBorderNeutral + 0, lumBorderNeutral | lumBorderInMemTop, lumBorderNeutral | lumBorderInMem,
                  lumBorderReplicate | lumBorderStageInMemLeft, lumBorderInMem | lumBorderStageInMemTop,
                  lumBorderConstant | 0xF00}) {
                StatusArguments<TypeParam> args(operands);
                args.border = border;
                EXPECT_EQ(args.call(), refuses ? lumErrBorder : lumOk)
                    << nameOf(operation) << ", " << nameOf(generation) << ", border " << border;
            }
        }
    }
}

// Of the compound operations the gradient of 16s images alone tests for it: its first pass goes from source to
// destination, and the dilation of 16u images has no such test.
TYPE_TEST(CompoundStatusQuick, InPlaceIsRefusedByTheGradientOf16sAlone)
{
    for (const Operation operation : kCompounds) {
        for (const Generation generation : kGenerations) {
            const StatusOperands<TypeParam> operands(operation, generation);
            StatusArguments<TypeParam> args(operands);
            args.pSrc = args.pDst;
            args.srcStep = args.dstStep;
            EXPECT_EQ(args.call(), gradientRefusesInPlace<TypeParam>(operation) ? lumErrInPlace : lumOk)
                << nameOf(operation) << ", " << nameOf(generation);
            EXPECT_TRUE(operands.destination.gapsIntact());
        }
    }
}

// The status of a size or stride of 0x7fffffff is that of the pass that meets it.
TYPE_TEST(CompoundStatusQuick, StatusOfTheLimitIsThatOfThePass)
{
    for (const Operation operation : kCompounds) {
        const Passes passes(operation);
        const StatusOperands<TypeParam> operands(operation, Generation::Large);
        const auto status = [&](auto change) {
            StatusArguments<TypeParam> args(operands);
            change(args);
            return args.call();
        };
        EXPECT_EQ(status([](auto& a) { a.roiSize.height = kLimit; }), sizeLimitStatus<TypeParam>(passes.first))
            << nameOf(operation);
        EXPECT_EQ(status([](auto& a) { a.srcStep = Lum64s{1} << 40; }), stepLimitStatus<TypeParam>(passes.first))
            << nameOf(operation);
        EXPECT_EQ(status([](auto& a) { a.dstStep = Lum64s{1} << 40; }), stepLimitStatus<TypeParam>(passes.writing))
            << nameOf(operation);
        EXPECT_EQ(status([](auto& a) { a.roiSize.height = kTooLarge; }), lumErrSizeTooLarge) << nameOf(operation);
    }
}

// Nothing is computed from a size before it is known to fit: the bytes of such a row do not fit 64 bits.
TYPE_TEST(CompoundStatusQuick, LargestGeometryIsTooLarge)
{
    constexpr Lum64s largest = std::numeric_limits<Lum64s>::max();
    for (const Operation operation : kCompounds) {
        const StatusOperands<TypeParam> operands(operation, Generation::Large);
        StatusArguments<TypeParam> args(operands);
        args.roiSize = {largest, largest};
        EXPECT_EQ(args.call(), lumErrSizeTooLarge) << nameOf(operation);
        args.roiSize = {largest, 5};
        EXPECT_EQ(args.call(), lumErrSizeTooLarge) << nameOf(operation);
    }
}

TEST(CompoundStatusQuick, LimitsByHand)
{
    const auto status = [](auto form, Operation operation, Lum64s height, Lum64s dstStep) {
        using Form = decltype(form);
        const StatusOperands<Form> operands(operation, Generation::Large);
        StatusArguments<Form> args(operands);
        args.roiSize.height = height;
        args.dstStep = dstStep;
        return args.call();
    };
    EXPECT_EQ(status(Form8uC1{}, Operation::Open, kLimit, 64), lumErrSize);
    EXPECT_EQ(status(Form8uC3{}, Operation::Open, kLimit, 64), lumErrSize);
    EXPECT_EQ(status(Form8uC3{}, Operation::Close, kLimit, 64), lumErrSizeTooLarge);
    EXPECT_EQ(status(Form16uC1{}, Operation::Open, kLimit, 64), lumErrSizeTooLarge);
    EXPECT_EQ(status(Form16uC1{}, Operation::Close, kLimit, 64), lumErrSize);
    EXPECT_EQ(status(Form16uC1{}, Operation::Open, 5, kTooLarge), lumErrStep);
    EXPECT_EQ(status(Form16uC1{}, Operation::Close, 5, kTooLarge), lumErrSizeTooLarge);
    EXPECT_EQ(status(Form8uC3{}, Operation::Open, 5, kTooLarge), lumErrSizeTooLarge);
    EXPECT_EQ(status(Form8uC3{}, Operation::Close, 5, kTooLarge), lumErrStep);
    EXPECT_EQ(status(Form32fC4{}, Operation::Gradient, kLimit, 256), lumErrSizeTooLarge);
}

}  // namespace
}  // namespace lumcv::test::morph
