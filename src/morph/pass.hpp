// One pass of dilation or erosion, for images of all types but 1-bit.
#pragma once

#include <limits>
#include <type_traits>

#include "frame/border.hpp"
#include "frame/image.hpp"
#include "morph/area.hpp"
#include "morph/morph_sizes.hpp"

namespace lumcv {

/// The value that never wins.
template <class Operation, class T>
inline constexpr T neutralValue = std::is_same_v<Operation, Maximum> ? std::numeric_limits<T>::lowest()
                                                                     : std::numeric_limits<T>::max();

/// Dilates (Maximum) or erodes (Minimum) an image. The border's mode is replicate, mirror, neutral or constant, unless
/// all sides lie in memory; borderValue is read in constant mode only. In the scratch there are scratchBytes() for this
/// ROI or a larger one, at any address.
template <class Operation, class T>
void pass(const Element& element, int channels, Plane<const T> src, Plane<T> dst, LumiSizeL roi, Border border,
          const T* borderValue, Lum8u* scratch);

}  // namespace lumcv
