// Dilation and erosion of 1-bit images under a 3x3 square or cross, and their copy.
#pragma once

#include <optional>

#include "morph/bit_pass.hpp"

namespace lumcv {

enum class SmallElement
{
    pixel,
    cross,
    square
};

/// Which of them an element is that has a position set.
std::optional<SmallElement> smallElement(const LumiMorphBitRecord& element);

/// Whether the rows of a destination are long enough.
bool isWideEnough(int64_t dstOffset, LumiSizeL size);

/// Works through an image with such rows.
void smallBitPass(BitOperation operation, SmallElement element, BitPlane<const Lum8u> src, BitPlane<Lum8u> dst,
                  LumiSizeL size, BitBorder border);

}  // namespace lumcv
