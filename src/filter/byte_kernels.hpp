// Small kernels over bytes of one channel: both passes of a separable filter at once, by the driver of masks.
#pragma once

#include "filter/mask_bands.hpp"
#include "filter/separable_bands.hpp"

namespace lumcv {

/// maskOf(value) is the mask where rows of the border consist of that value.
template <class D, class MaskOf>
void filterBytes(const SeparableImages<Lum8u, D, 1>& images, Lum8u* buffer, int64_t bufferBytes, MaskOf maskOf)
{
    const bool isConstant = images.border.mode == lumBorderConstant;
    const MaskImages<Lum8u, D> plain{images.src,
                                     images.dst,
                                     images.roiSize,
                                     images.border,
                                     isConstant ? *images.borderValue : Lum8u{0},
                                     isLargeImage(images.roiSize.width * images.roiSize.height)};
    LineSpace<Lum8u> space(buffer, bufferBytes);
    filterByMask(plain, space, maskOf(static_cast<Lum32f>(plain.borderValue)));
}

}  // namespace lumcv
