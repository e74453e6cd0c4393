// The pixels around a ROI that a caller promises by the flags of a border.
#pragma once

#include "lumcv/types.h"
#include "support/image.hpp"

namespace lumcv::test {

/// Of the pixels that an operation reaches around the ROI, those on the flagged sides.
inline Margins promisedMargins(LumiBorderType border, Margins reach)
{
    const auto side = [&](LumiBorderType flag, int pixels) { return (border & flag) != 0 ? pixels : 0; };
    return {side(lumBorderInMemTop, reach.top), side(lumBorderInMemBottom, reach.bottom),
            side(lumBorderInMemLeft, reach.left), side(lumBorderInMemRight, reach.right)};
}

}  // namespace lumcv::test
