// What 1-bit morphology touches: bytes with pixels and no other, also where a byte would be written back unchanged; its
// Init; and cases worked out by hand.
#include <array>
#include <cstring>
#include <thread>

#include "morph/bits_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::morph {
namespace {

/// Bits in rows of bytes that stand alone between unreadable pages.
class IsolatedBits
{
  public:
    explicit IsolatedBits(const BitLayout& layout)
        : layout_(layout),
          firstByte_(floorDivide(layout.bitOffset - layout.margins.left, 8)),
          rows_(byteLayout(layout, firstByte_))
    {
    }
    Lum8u* begin() const
    {
        return rows_.pixels() - firstByte_;
    }
    int step() const
    {
        return rows_.step();
    }
    IsolatedRows<Lum8u>& rows()
    {
        return rows_;
    }
    bool at(int x, int y) const
    {
        const int bit = layout_.bitOffset + x;
        return (rows_.at(floorDivide(bit, 8) - firstByte_, y) >> (bit & 7) & 1) != 0;
    }

  private:
    static Layout byteLayout(const BitLayout& bits, int firstByte)
    {
        Layout layout;
        layout.width = floorDivide(bits.bitOffset + bits.width - 1 + bits.margins.right, 8) - firstByte + 1;
        layout.height = bits.height;
        layout.margins = {bits.margins.top, bits.margins.bottom, 0, 0};
        layout.guard = bits.guard;
        return layout;
    }

    BitLayout layout_;
    int firstByte_;
    IsolatedRows<Lum8u> rows_;
};

void expectRowsRespected(const BitSetting& s)
{
    SCOPED_TRACE(s);
    IsolatedBits source(s.sourceLayout());
    Random random(static_cast<std::uint64_t>(s.seed));
    source.rows().forEach([&](Lum8u& byte, int, int, int) { byte = random.value<Lum8u>(Values::Extreme); });
    source.rows().makeReadOnly();
    const Margins m = s.sourceLayout().margins;
    Plane<Lum8u> pixels(-m.left, -m.top, m.left + s.width + m.right, m.top + s.height + m.bottom, 1);
    for (int y = -m.top; y < s.height + m.bottom; ++y) {
        for (int x = -m.left; x < s.width + m.right; ++x) {
            pixels.row(y)[x] = source.at(x, y);
        }
    }
    const Lum8u borderValue = s.borderValue != 0;
    const Plane<Lum8u> expected = referencePlane<Form1u>(s, pixels, &borderValue);

    const PlacedBlock record = makeRecord<Form1u>(s);
    const PlacedBlock scratch(scratchBytes<Form1u>(s), s.guard, s.distance);
    IsolatedBits destination(s.destinationLayout());
    BitArguments arguments;
    arguments.pSrc = source.begin();
    arguments.srcStep = source.step();
    arguments.srcBitOffset = s.srcBitOffset;
    arguments.pDst = destination.begin();
    arguments.dstStep = destination.step();
    arguments.dstBitOffset = s.dstBitOffset;
    arguments.roiSize = {s.width, s.height};
    arguments.border = s.border;
    arguments.pBorderValue = &s.borderValue;
    arguments.pSpec = {record.data()};
    arguments.pBuffer = scratch.data();
    ASSERT_EQ(arguments.call(s.operation, s.generation), lumOk);
    for (int y = 0; y < s.height; ++y) {
        for (int x = 0; x < s.width; ++x) {
            ASSERT_EQ(destination.at(x, y), expected.row(y)[x] != 0) << "x " << x << ", y " << y;
        }
    }
    EXPECT_TRUE(destination.rows().slackIntact());
    EXPECT_TRUE(scratch.intact());
}

TEST(MorphBitsMemory, RowsBetweenUnreadablePages)
{
    int number = 0;
    for (const StructuringElement& element : {rectangle(3, 3), rectangle(2, 2), rectangle(9, 1), rectangle(1, 5),
                                              disc(5), scattered(6, 4, 40, 3), emptyElement(4, 4), rectangle(25, 7)}) {
        for (const int width : {1, 3, 7, 8, 9, 15, 16, 17, 31, 32, 33, 57, 63, 64, 65, 100, 127, 128, 129, 257}) {
            for (int i = 0; i < 3; ++i) {
                BitSetting s = bitsInTurn(element, width, 1 + number % 6, number);
                s.guard = number % 2 == 0 ? Guard::After : Guard::Before;
                number += 3;
                expectRowsRespected(s);
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

TEST(MorphBitsMemoryQuick, RowsBetweenUnreadablePages)
{
    for (int number = 0; number < 44; ++number) {
        expectRowsRespected(bitsInTurn(rectangle(3, 3), 1 + number * 13 % 90, 1 + number % 4, number));
    }
}

TEST(MorphBitsMemoryQuick, ScratchHoldsNothing)
{
    for (int number = 0; number < 44; ++number) {
        const BitSetting s = bitsInTurn(scattered(5, 4, 40, 3), 41, 13, number);
        const BitImage source(s.sourceLayout());
        fillBits(source, s.percentSet, number);
        const PlacedBlock record = makeRecord<Form1u>(s);
        const PlacedBlock scratch(scratchBytes<Form1u>(s));
        for (const int byte : {0x00, 0xff, 0x55}) {
            const BitImage destination(s.destinationLayout());
            const BitImage expected = expectedBits(s, source, destination);
            std::memset(scratch.data(), byte, scratch.size());
            ASSERT_EQ(argumentsFor(s, source, destination, record, scratch).call(s.operation, s.generation), lumOk);
            EXPECT_TRUE(sameBits(expected, destination)) << s << ", scratch of bytes " << byte;
        }
    }
}

TEST(MorphBitsMemoryQuick, ThreadsShareARecord)
{
    for (int number = 0; number < 22; ++number) {
        const BitSetting s = bitsInTurn(disc(5), 91, 23, number);
        const BitImage source(s.sourceLayout());
        fillBits(source, s.percentSet, number);
        const std::vector<BitImage> destinations(2, BitImage(s.destinationLayout()));
        const BitImage expected = expectedBits(s, source, destinations[0]);
        const PlacedBlock record = makeRecord<Form1u>(s);
        record.makeReadOnly();
        std::array<LumStatus, 2> statuses{};
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < statuses.size(); ++i) {
            threads.emplace_back([&, i] {
                const PlacedBlock scratch(scratchBytes<Form1u>(s));
                for (int repetition = 0; repetition < 3; ++repetition) {
                    statuses[i] =
                        argumentsFor(s, source, destinations[i], record, scratch).call(s.operation, s.generation);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (std::size_t i = 0; i < statuses.size(); ++i) {
            EXPECT_EQ(statuses[i], lumOk);
            EXPECT_TRUE(sameBits(expected, destinations[i])) << s;
        }
    }
}

/// Bits as text, the first pixel first.
std::string appliedTo(Operation operation, Generation generation, const StructuringElement& element,
                      const std::string& pixels, LumiBorderType border, Lum8u borderValue = 0, int setMode = 0)
{
    BitSetting s;
    s.operation = operation;
    s.generation = generation;
    s.element = element;
    s.width = static_cast<int>(pixels.size());
    s.border = border;
    s.borderValue = borderValue;
    s.setMode = setMode;
    BitImage source(s.sourceLayout());
    for (int x = 0; x < s.width; ++x) {
        source.set(x, 0, pixels[static_cast<std::size_t>(x)] == '1');
    }
    const BitImage destination(s.destinationLayout());
    const PlacedBlock record = makeRecord<Form1u>(s);
    const PlacedBlock scratch(scratchBytes<Form1u>(s));
    EXPECT_EQ(argumentsFor(s, source, destination, record, scratch).call(operation, generation), lumOk);
    std::string result;
    for (int x = 0; x < s.width; ++x) {
        result += destination.at(x, 0) ? '1' : '0';
    }
    return result;
}

TEST(MorphBitsCasesQuick, ByHand)
{
    const StructuringElement three = rectangle(3, 1);
    const StructuringElement two = rectangle(2, 1);
    const StructuringElement right = singlePosition(3, 1, 2, 0);
    for (const Generation g : kGenerations) {
        EXPECT_EQ(appliedTo(Operation::Dilate, g, three, "0001000001", lumBorderReplicate), "0011100011");
        EXPECT_EQ(appliedTo(Operation::Erode, g, three, "1101110111", lumBorderReplicate), "1000100011");
        EXPECT_EQ(appliedTo(Operation::Erode, g, three, "1101110111", lumBorderConstant, 0), "0000100010");
        // any value but 0 is a 1
        EXPECT_EQ(appliedTo(Operation::Erode, g, three, "1101110111", lumBorderConstant, 128), "1000100011");
        EXPECT_EQ(appliedTo(Operation::Dilate, g, three, "0000", lumBorderConstant, 2), "1001");
        // neutral: 0 for dilation, 1 for erosion
        EXPECT_EQ(appliedTo(Operation::Dilate, g, right, "0000", lumBorderNeutral, 1), "0000");
        EXPECT_EQ(appliedTo(Operation::Dilate, g, right, "1111", lumBorderNeutral, 1), "1110");
        EXPECT_EQ(appliedTo(Operation::Erode, g, right, "0000", lumBorderNeutral, 0), "0001");
        // an even element reaches to the right
        EXPECT_EQ(appliedTo(Operation::Dilate, g, two, "00100", lumBorderReplicate), "01100");
        EXPECT_EQ(appliedTo(Operation::Open, g, two, "0100110", lumBorderReplicate), "0000110");
        EXPECT_EQ(appliedTo(Operation::Open, g, two, "0100110", lumBorderReplicate, 0, 1), "0001100");
        EXPECT_EQ(appliedTo(Operation::Close, g, three, "0101100", lumBorderReplicate), "1111100");
        EXPECT_EQ(appliedTo(Operation::Tophat, g, two, "0100110", lumBorderReplicate), "0100000");
        EXPECT_EQ(appliedTo(Operation::Blackhat, g, three, "0101100", lumBorderReplicate), "1010000");
    }
    // the ordinary gradient erodes with the caller's element, the large one with the rotated one
    EXPECT_EQ(appliedTo(Operation::Gradient, Generation::Ordinary, right, "0110", lumBorderReplicate), "0000");
    EXPECT_EQ(appliedTo(Operation::Gradient, Generation::Large, right, "0110", lumBorderReplicate), "1100");
}

// The one record of the large entries serves bits and bytes.
TEST(MorphBitsCasesQuick, LargeRecordOfBytesServesBits)
{
    int seed = 0;
    for (const Operation operation : {Operation::Dilate, Operation::Erode, Operation::Open, Operation::Gradient}) {
        for (const StructuringElement& element : {rectangle(3, 3), scattered(5, 4, 40, 3), emptyElement(2, 2)}) {
            BitSetting s = bitsInTurn(element, 50, 9, seed++);
            s.operation = operation;
            s.generation = Generation::Large;
            s.border = lumBorderReplicate;
            s.setMode = 0;
            const BitImage source(s.sourceLayout());
            fillBits(source, 50, seed);
            const BitImage destination(s.destinationLayout());
            const BitImage expected = expectedBits(s, source, destination);
            const PlacedBlock record = makeRecord<Form32fC3>(s);
            const PlacedBlock scratch(scratchBytes<Form1u>(s));
            EXPECT_EQ(argumentsFor(s, source, destination, record, scratch).call(operation, s.generation), lumOk);
            EXPECT_TRUE(sameBits(expected, destination)) << s;
        }
    }
}

}  // namespace
}  // namespace lumcv::test::morph
