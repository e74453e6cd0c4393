// One pass of dilation or erosion over 1-bit images.
#pragma once

#include "frame/border.hpp"
#include "frame/image.hpp"
#include "morph/bit_record.hpp"

namespace lumcv {

/// An image of bits as a caller gives it.
template <class Byte>
struct BitOperand
{
    Byte* pixels;
    int64_t step;
    Lum32s bitOffset;
};

/// An image of bits: pixel x of a row is bit `offset` + x of it, with an offset of 0 to 7.
template <class Byte>
struct BitPlane
{
    Plane<Byte> bytes;
    int64_t offset;

    BitPlane(Byte* first, int64_t step, int64_t bitOffset)
        : bytes{first + (bitOffset >> 3), step}, offset(bitOffset & 7)
    {
    }

    explicit BitPlane(BitOperand<Byte> operand) : BitPlane(operand.pixels, operand.step, operand.bitOffset) {}

    /// The same image from another pixel on.
    BitPlane from(int64_t x, int64_t y) const
    {
        return BitPlane(bytes.row(y), bytes.step, offset + x);
    }

    operator BitPlane<const Byte>() const
    {
        return BitPlane<const Byte>(bytes.pixels, bytes.step, offset);
    }
};

enum class BitOperation
{
    dilation,
    erosion
};

/// What the border says, with the modes that a pass has no use for resolved.
struct BitBorder
{
    Border sides;
    bool isConstant;
    bool value;  ///< of a constant border

    BitBorder(BitOperation operation, Border border, bool borderValue)
        : sides(border),
          isConstant(border.mode == lumBorderConstant || border.mode == lumBorderNeutral),
          value(border.mode == lumBorderConstant ? borderValue : operation == BitOperation::erosion)
    {
    }
};

/// Works through an image. In the scratch there are bitScratchBytes() for this ROI or a larger one.
void bitPass(BitOperation operation, const LumiMorphBitRecord& element, BitPlane<const Lum8u> src, BitPlane<Lum8u> dst,
             LumiSizeL size, BitBorder border, Lum8u* scratch);

/// dst = minuend and not subtrahend; dst may be either of them.
void subtractBits(BitPlane<const Lum8u> minuend, BitPlane<const Lum8u> subtrahend, BitPlane<Lum8u> dst, LumiSizeL size,
                  Lum8u* scratch);

}  // namespace lumcv
