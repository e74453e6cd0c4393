// What 1-bit morphology refuses, in which order, and where that differs from the forms of whole elements.
#include "morph/bits_fixture.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::morph {
namespace {

constexpr int kWidth = 21;
constexpr int kHeight = 6;
constexpr Lum64s kTooLarge = Lum64s{1} << 31;
constexpr Lum64s kLimit = 0x7fffffff;

constexpr Operation kOperations[] = {Operation::Dilate, Operation::Erode,    Operation::Open,    Operation::Close,
                                     Operation::Tophat, Operation::Blackhat, Operation::Gradient};

/// The images and blocks of a valid call; the source has the margins that any border asks for.
struct BitOperands
{
    BitOperands(Operation operation, Generation generation) : setting(settingOf(operation, generation))
    {
        fillBits(source, 50, 3);
        fillBits(destination, 50, 4);
    }
    static BitSetting settingOf(Operation operation, Generation generation)
    {
        BitSetting s;
        s.operation = operation;
        s.generation = generation;
        s.width = kWidth;
        s.height = kHeight;
        s.srcBitOffset = 3;
        s.dstBitOffset = 13;
        return s;
    }

    BitSetting setting;
    BitImage source{{kWidth, kHeight, 3, 5, Margins::all(2), Guard::After}};
    BitImage destination{{kWidth, kHeight, 13, 7, {}, Guard::After}};
    PlacedBlock record = makeRecord<Form1u>(setting);
    PlacedBlock scratch{scratchBytes<Form1u>(setting)};
    Lum8u borderValue = 1;
};

struct BitStatusArguments : BitArguments
{
    const BitOperands* operands;

    explicit BitStatusArguments(const BitOperands& o)
        : BitArguments(argumentsFor(o.setting, o.source, o.destination, o.record, o.scratch)), operands(&o)
    {
        pBorderValue = &o.borderValue;
    }
    LumStatus call() const
    {
        return BitArguments::call(operands->setting.operation, operands->setting.generation);
    }
    std::vector<Output> outputs() const
    {
        return {Output(operands->destination.block()), Output(operands->source.block()),
                Output(operands->scratch.data(), operands->scratch.size()),
                Output(operands->record.data(), operands->record.size())};
    }
};

bool refusesInPlace(Operation operation)
{
    return isSinglePass(operation) || operation == Operation::Gradient;
}

std::vector<Violation<BitStatusArguments>> order(Operation operation, Generation generation)
{
    using Args = BitStatusArguments;
    const bool large = generation == Generation::Large;
    const auto noValue = [](Args& a) {
        a.border = lumBorderConstant | lumBorderInMemLeft;
        a.pBorderValue = nullptr;
    };
    std::vector<Violation<Args>> table = {
        {"pSrc null", lumErrNullPointer, [](Args& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](Args& a) { a.pDst = nullptr; }},
        {"pSpec null", lumErrNullPointer, [](Args& a) { a.pSpec = {}; }},
        {"pBuffer null", lumErrNullPointer, [](Args& a) { a.pBuffer = nullptr; }},
    };
    if (large && !isSinglePass(operation)) {
        table.push_back({"constant without a value", lumErrNullPointer, noValue});
    }
    table.push_back({"srcBitOffset negative", lumErrSize, [](Args& a) { a.srcBitOffset = -1; }});
    table.push_back({"dstBitOffset negative", lumErrSize, [](Args& a) { a.dstBitOffset = -8; }});
    table.push_back({"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }});
    table.push_back({"width negative", lumErrSize, [](Args& a) { a.roiSize.width = -9; }});
    table.push_back({"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }});
    if (large) {
        table.push_back({"width too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.width = kTooLarge; }});
        table.push_back({"height too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.height = kTooLarge << 7; }});
    }
    table.push_back({"srcStep below the row", lumErrStep, [](Args& a) { a.srcStep = 2; }});
    table.push_back({"dstStep below the row", lumErrStep, [](Args& a) { a.dstStep = 2; }});
    table.push_back({"srcStep 0", lumErrStep, [](Args& a) { a.srcStep = 0; }});
    table.push_back({"dstStep negative", lumErrStep, [](Args& a) { a.dstStep = -7; }});
    table.push_back({"border 4097", lumErrBorder, [](Args& a) { a.border = 4096 | lumBorderReplicate; }});
    table.push_back({"border negative", lumErrBorder, [](Args& a) { a.border = -15; }});
    table.push_back({"border 0", lumErrBorder, [](Args& a) { a.border = 0; }});
    table.push_back({"mirror", lumErrBorder, [](Args& a) { a.border = lumBorderMirror; }});
    table.push_back({"mirror and a side", lumErrBorder, [](Args& a) { a.border = lumBorderMirror | 0x70; }});
    table.push_back({"three sides and no mode", lumErrBorder, [](Args& a) { a.border = 0xE2; }});
    if (operation == Operation::Gradient && !large) {
        table.push_back({"neutral", lumErrBorder, [](Args& a) { a.border = lumBorderNeutral; }});
        table.push_back({"border 257", lumErrBorder, [](Args& a) { a.border = 256 | lumBorderReplicate; }});
    }
    if (refusesInPlace(operation)) {
        table.push_back({"in place", lumErrInPlace, [](Args& a) { a.pDst = const_cast<Lum8u*>(a.pSrc); }});
    }
    if (large) {
        table.push_back({"width at the limit", lumErrSizeTooLarge, [](Args& a) {
                             a.roiSize.width = kLimit;
                             a.srcStep = kTooLarge;
                             a.dstStep = kTooLarge;
                         }});
        table.push_back({"height at the limit", lumErrSizeTooLarge, [](Args& a) { a.roiSize.height = kLimit; }});
        table.push_back({"srcStep at the limit", lumErrSizeTooLarge, [](Args& a) { a.srcStep = kTooLarge; }});
        table.push_back({"dstStep at the limit", lumErrSizeTooLarge, [](Args& a) { a.dstStep = kTooLarge; }});
        if (isSinglePass(operation)) {
            table.push_back({"constant without a value", lumErrNullPointer, noValue});
        }
    }
    return table;
}

TEST(MorphBitsStatusQuick, ChecksInOrder)
{
    for (const Operation operation : kOperations) {
        for (const Generation generation : kGenerations) {
            SCOPED_TRACE(std::string(nameOf(operation)) + ", " + nameOf(generation));
            const BitOperands operands(operation, generation);
            expectStatusOrder(BitStatusArguments(operands), order(operation, generation));
        }
    }
}

// As for whole elements, but for the mirror. With all sides in memory the mirror's low bits are left out of this test.
TEST(MorphBitsStatusQuick, EveryBorderValue)
{
    for (const Operation operation : kOperations) {
        for (const Generation generation : kGenerations) {
            const bool large = generation == Generation::Large;
            const BitOperands operands(operation, generation);
            for (LumiBorderType border = -1; border <= 4200; ++border) {
                const int mode = border & 15;
                const bool allInMemory = (border & lumBorderInMem) == lumBorderInMem;
                bool valid = isMorphMode(mode, true);
                if (isSinglePass(operation)) {
                    const int effective = large ? (border & 0xFF) | (border >> 4 & 0xF0) : border;
                    valid = valid || effective == lumBorderInMem;
                } else if (operation == Operation::Gradient && !large) {
                    valid = border <= 255 && ((valid && mode != lumBorderNeutral) || border == lumBorderInMem);
                } else if (allInMemory && mode == lumBorderMirror) {
                    continue;
                } else {
                    valid = valid || allInMemory;
                }
                valid = valid && border >= 0 && border <= 4095;
                BitStatusArguments args(operands);
                args.border = border;
                ASSERT_EQ(args.call(), valid ? lumOk : lumErrBorder)
                    << nameOf(operation) << ", " << nameOf(generation) << ", border " << border;
            }
        }
    }
}

// Bits refuse the mirror in both generations, the forms of whole elements take it.
TEST(MorphBitsStatusQuick, MirrorIsRefusedInBothGenerations)
{
    for (const Operation operation : kOperations) {
        for (const Generation generation : kGenerations) {
            const BitOperands operands(operation, generation);
            for (int sides = 0; sides < 15; ++sides) {
                BitStatusArguments args(operands);
                args.border = lumBorderMirror | sides << 4;
                EXPECT_EQ(args.call(), lumErrBorder) << nameOf(operation) << ", " << nameOf(generation);
            }
            BitStatusArguments args(operands);
            args.border = lumBorderReplicate;
            EXPECT_EQ(args.call(), lumOk) << nameOf(operation) << ", " << nameOf(generation);
        }
    }
}

// Both single passes and the gradient refuse it, whatever the offsets are; opening and closing work in place.
TEST(MorphBitsStatusQuick, InPlaceIsRefusedBySinglePassesAndGradient)
{
    for (const Operation operation : kOperations) {
        for (const Generation generation : kGenerations) {
            const BitOperands operands(operation, generation);
            BitStatusArguments args(operands);
            args.pSrc = args.pDst;
            args.srcStep = args.dstStep;
            EXPECT_EQ(args.call(), refusesInPlace(operation) ? lumErrInPlace : lumOk)
                << nameOf(operation) << ", " << nameOf(generation);
            args.srcBitOffset = args.dstBitOffset;
            EXPECT_EQ(args.call(), refusesInPlace(operation) ? lumErrInPlace : lumOk)
                << nameOf(operation) << ", " << nameOf(generation);
        }
    }
}

TEST(MorphBitsStatusQuick, OpeningAndClosingWorkInPlace)
{
    int seed = 0;
    for (const Generation generation : kGenerations) {
        for (const StructuringElement& element : {rectangle(3, 3), scattered(5, 4, 40, 3), rectangle(40, 2)}) {
            for (const Operation operation : {Operation::Open, Operation::Close}) {
                for (const int offset : {0, 3, 12}) {
                    BitSetting s;
                    s.operation = operation;
                    s.generation = generation;
                    s.element = element;
                    s.width = 93;
                    s.height = 11;
                    s.srcBitOffset = offset;
                    s.dstBitOffset = offset;
                    s.border = lumBorderNeutral;
                    const BitImage image(s.sourceLayout());
                    fillBits(image, 40 + seed % 3 * 20, seed);
                    ++seed;
                    const BitImage expected = expectedBits(s, image, image);
                    const PlacedBlock record = makeRecord<Form1u>(s);
                    const PlacedBlock scratch(scratchBytes<Form1u>(s));
                    EXPECT_EQ(argumentsFor(s, image, image, record, scratch).call(operation, generation), lumOk);
                    EXPECT_TRUE(sameBits(expected, image)) << s;
                }
            }
        }
    }
}

// The stride is compared with the bytes of the pixels, the offset left out.
TEST(MorphBitsStatusQuick, SmallestStrideLeavesTheOffsetOut)
{
    for (const Operation operation : kOperations) {
        for (const Generation generation : kGenerations) {
            for (const int width : {1, 7, 8, 9, 16, 17, 64, 65}) {
                BitSetting s = BitOperands::settingOf(operation, generation);
                s.width = width;
                s.srcBitOffset = 7;
                s.dstBitOffset = 70;
                expectBits(s);  // with the smallest strides
                const BitImage source(s.sourceLayout());
                const BitImage destination(s.destinationLayout());
                const PlacedBlock record = makeRecord<Form1u>(s);
                const PlacedBlock scratch(scratchBytes<Form1u>(s));
                BitArguments args = argumentsFor(s, source, destination, record, scratch);
                --args.srcStep;
                EXPECT_EQ(args.call(operation, generation), lumErrStep) << "width " << width;
                ++args.srcStep;
                --args.dstStep;
                EXPECT_EQ(args.call(operation, generation), lumErrStep) << "width " << width;
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::morph
