// 1-bit images for morphology's tests: rows that begin at any bit, in blocks that hold the bytes of the pixels and no
// other, and the comparison with the reference on bytes of 0 and 1.
#pragma once

#include <ostream>
#include <vector>

#include "morph/morph_fixture.hpp"

namespace lumcv::test::morph {

/// Where the bits of an image lie.
struct BitLayout
{
    int width = 1;
    int height = 1;
    int bitOffset = 0;
    int step = 1;  ///< from row to row, in bytes; rows may share bytes
    Margins margins = {};
    Guard guard = Guard::After;
};

inline int floorDivide(int value, int divisor)
{
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

/// Bits in a block from the first byte of the first row to the last byte of the last row, margins included.
class BitImage
{
  public:
    explicit BitImage(const BitLayout& layout)
        : layout_(layout),
          firstByte_(std::min(byteOf(-layout.margins.left, -layout.margins.top),
                              byteOf(-layout.margins.left, layout.height - 1 + layout.margins.bottom))),
          block_(static_cast<std::size_t>(
                     byteOf(layout.width - 1 + layout.margins.right, layout.height - 1 + layout.margins.bottom) -
                     firstByte_ + 1),
                 layout.guard)
    {
    }
    /// What the call gets.
    Lum8u* begin() const
    {
        return block_.data() - firstByte_;
    }
    bool at(int x, int y) const
    {
        return (byte(x, y) >> bitOf(x) & 1) != 0;
    }
    void set(int x, int y, bool value)
    {
        byte(x, y) = static_cast<Lum8u>((byte(x, y) & ~(1 << bitOf(x))) | (value ? 1 : 0) << bitOf(x));
    }
    const BitLayout& layout() const
    {
        return layout_;
    }
    const GuardedBlock& block() const
    {
        return block_;
    }
    /// The pixels with their margins as bytes of 0 and 1.
    Plane<Lum8u> unpacked() const
    {
        const Margins& m = layout_.margins;
        Plane<Lum8u> plane(-m.left, -m.top, m.left + layout_.width + m.right, m.top + layout_.height + m.bottom, 1);
        for (int y = -m.top; y < layout_.height + m.bottom; ++y) {
            for (int x = -m.left; x < layout_.width + m.right; ++x) {
                plane.row(y)[x] = at(x, y);
            }
        }
        return plane;
    }

  private:
    int byteOf(int x, int y) const
    {
        return y * layout_.step + floorDivide(layout_.bitOffset + x, 8);
    }
    int bitOf(int x) const
    {
        return (layout_.bitOffset + x) & 7;
    }
    Lum8u& byte(int x, int y) const
    {
        return block_.data()[byteOf(x, y) - firstByte_];
    }

    BitLayout layout_;
    int firstByte_;
    GuardedBlock block_;
};

/// Whether all bytes of two images are the same; a failure tells which pixel, or that a bit beside the pixels changed.
inline testing::AssertionResult sameBits(const BitImage& expected, const BitImage& actual)
{
    for (int y = 0; y < expected.layout().height; ++y) {
        for (int x = 0; x < expected.layout().width; ++x) {
            if (expected.at(x, y) != actual.at(x, y)) {
                return testing::AssertionFailure() << "pixel x " << x << ", y " << y << ": got " << actual.at(x, y)
                                                   << ", expected " << expected.at(x, y);
            }
        }
    }
    for (std::size_t i = 0; i < expected.block().size(); ++i) {
        if (expected.block().data()[i] != actual.block().data()[i]) {
            return testing::AssertionFailure()
                   << "a bit that is no pixel was changed: byte " << i << " of the image's " << expected.block().size()
                   << ", got " << int{actual.block().data()[i]} << ", expected " << int{expected.block().data()[i]};
        }
    }
    return actual.block().slackIntact();
}

/// All arguments of an apply call; the ordinary entries get them narrowed.
struct BitArguments
{
    const Lum8u* pSrc = nullptr;
    Lum64s srcStep = 0;
    int srcBitOffset = 0;
    Lum8u* pDst = nullptr;
    Lum64s dstStep = 0;
    int dstBitOffset = 0;
    LumiSizeL roiSize = {1, 1};
    LumiBorderType border = lumBorderReplicate;
    const Lum8u* pBorderValue = nullptr;
    AnyRecord pSpec;
    Lum8u* pBuffer = nullptr;

    LumStatus call(Operation operation, Generation generation) const
    {
        if (generation == Generation::Large) {
            return callEntry(Form1u::large, operation, [&](auto entry) {
                return entry(pSrc, srcStep, srcBitOffset, pDst, dstStep, dstBitOffset, roiSize, border, pBorderValue,
                             pSpec, pBuffer);
            });
        }
        return callEntry(Form1u::ordinary, operation, [&](auto entry) {
            const LumiSize size = {static_cast<Lum32s>(roiSize.width), static_cast<Lum32s>(roiSize.height)};
            return entry(pSrc, static_cast<Lum32s>(srcStep), srcBitOffset, pDst, static_cast<Lum32s>(dstStep),
                         dstBitOffset, size, border, pBorderValue == nullptr ? Lum8u{0} : *pBorderValue, pSpec,
                         pBuffer);
        });
    }
};

/// A setting and where its bits lie. Strides are given beyond the smallest one, which is (width + 7) / 8 whatever the
/// offset is.
struct BitSetting : Setting
{
    int srcBitOffset = 0;
    int dstBitOffset = 0;
    int srcGap = 0;
    int dstGap = 0;
    Lum8u borderValue = 1;
    int percentSet = 50;

    BitLayout sourceLayout() const
    {
        return {width, height, srcBitOffset, (width + 7) / 8 + srcGap, promisedMargins(recipe<Form1u>(), element),
                guard};
    }
    BitLayout destinationLayout() const
    {
        return {width, height, dstBitOffset, (width + 7) / 8 + dstGap, {}, guard};
    }
};

inline std::ostream& operator<<(std::ostream& stream, const BitSetting& s)
{
    return stream << static_cast<const Setting&>(s) << ", source at bit " << s.srcBitOffset << " gap " << s.srcGap
                  << ", destination at bit " << s.dstBitOffset << " gap " << s.dstGap << ", border value "
                  << int{s.borderValue} << ", " << s.percentSet << " percent set";
}

/// Any bytes, with the share of ones that the setting asks for.
inline void fillBits(const BitImage& image, int percentSet, int seed)
{
    Random random(static_cast<std::uint64_t>(seed) * 5 + 2);
    for (std::size_t i = 0; i < image.block().size(); ++i) {
        int byte = 0;
        for (int bit = 0; bit < 8; ++bit) {
            byte |= random.between(1, 100) <= percentSet ? 1 << bit : 0;
        }
        image.block().data()[i] = static_cast<Lum8u>(byte);
    }
}

/// What the call makes of the destination's bytes.
inline BitImage expectedBits(const BitSetting& s, const BitImage& source, const BitImage& destination)
{
    const Lum8u borderValue = s.borderValue != 0;
    const Plane<Lum8u> result = referencePlane<Form1u>(s, source.unpacked(), &borderValue);
    BitImage expected(destination);
    for (int y = 0; y < s.height; ++y) {
        for (int x = 0; x < s.width; ++x) {
            expected.set(x, y, result.row(y)[x] != 0);
        }
    }
    return expected;
}

inline BitArguments argumentsFor(const BitSetting& s, const BitImage& source, const BitImage& destination,
                                 const PlacedBlock& record, const PlacedBlock& scratch)
{
    BitArguments arguments;
    arguments.pSrc = source.begin();
    arguments.srcStep = source.layout().step;
    arguments.srcBitOffset = s.srcBitOffset;
    arguments.pDst = destination.begin();
    arguments.dstStep = destination.layout().step;
    arguments.dstBitOffset = s.dstBitOffset;
    arguments.roiSize = {s.width, s.height};
    arguments.border = s.border;
    arguments.pBorderValue = (s.border & 15) == lumBorderConstant ? &s.borderValue : nullptr;
    arguments.pSpec = {record.data()};
    arguments.pBuffer = scratch.data();
    return arguments;
}

/// Applies an operation to random bits and compares every byte of the destination.
inline void expectBits(const BitSetting& s)
{
    SCOPED_TRACE(s);
    const BitImage source(s.sourceLayout());
    fillBits(source, s.percentSet, s.seed);
    const BitImage destination(s.destinationLayout());
    fillBits(destination, 50, s.seed + 1);
    const BitImage expected = expectedBits(s, source, destination);

    const PlacedBlock record = makeRecord<Form1u>(s);
    record.makeReadOnly();
    const PlacedBlock scratch(scratchBytes<Form1u>(s), s.guard, s.distance);
    EXPECT_EQ(argumentsFor(s, source, destination, record, scratch).call(s.operation, s.generation), lumOk);
    EXPECT_TRUE(sameBits(expected, destination));
    EXPECT_TRUE(scratch.intact());
}

/// The mirror is not for bits.
inline LumiBorderType bitBorderFor(const Setting& s, int number)
{
    const LumiBorderType border = borderFor(s, number);
    return (border & 15) == lumBorderMirror ? border - lumBorderMirror + lumBorderConstant : border;
}

/// All operations, generations, borders, offsets and modes in turn.
inline BitSetting bitsInTurn(const StructuringElement& element, int width, int height, int number)
{
    constexpr Operation operations[] = {Operation::Dilate, Operation::Erode,    Operation::Open,    Operation::Dilate,
                                        Operation::Erode,  Operation::Tophat,   Operation::Close,   Operation::Dilate,
                                        Operation::Erode,  Operation::Blackhat, Operation::Gradient};
    Random random(static_cast<std::uint64_t>(number) + 99);
    BitSetting s;
    s.operation = operations[number % 11];
    s.generation = kGenerations[number / 11 % 2];
    s.setMode = isSinglePass(s.operation) || !random.oneIn(3) ? 0 : 1;
    s.element = element;
    s.width = width;
    s.height = height;
    s.border = bitBorderFor(s, number);
    s.borderValue = static_cast<Lum8u>(random.oneIn(2) ? 0 : random.between(1, 255));
    s.seed = number;
    s.srcBitOffset = random.oneIn(4) ? static_cast<int>(random.between(0, 70)) : static_cast<int>(random.between(0, 7));
    s.dstBitOffset = random.oneIn(4) ? static_cast<int>(random.between(0, 70)) : static_cast<int>(random.between(0, 7));
    s.srcGap = random.oneIn(2) ? 0 : static_cast<int>(random.between(1, 20));
    s.dstGap = random.oneIn(2) ? 0 : static_cast<int>(random.between(1, 20));
    s.guard = random.oneIn(2) ? Guard::After : Guard::Before;
    s.distance = random.oneIn(2) ? 0 : static_cast<std::size_t>(random.between(0, 63));
    // dense and thin images, so that the element meets ones and zeros
    const int shares[] = {50, 90, 10, 98, 2};
    s.percentSet = shares[random.between(0, 4)];
    return s;
}

}  // namespace lumcv::test::morph
