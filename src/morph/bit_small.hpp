// Dilation and erosion of 1-bit images under a 3x3 square or cross, and their copy.
#pragma once

#include "morph/bit_pass.hpp"

namespace lumcv {

/// Works through an image, unless the element is another or the rows are too short.
bool smallBitPass(BitOperation operation, const LumiMorphBitRecord& element, BitPlane<const Lum8u> src,
                  BitPlane<Lum8u> dst, LumiSizeL size, BitBorder border);

}  // namespace lumcv
