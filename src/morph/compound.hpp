// Opening, closing, top-hat, black-hat and gradient of all types but 1-bit: the driver of two passes.
//
// The image is worked through in strips of rows, so that the intermediate rows and those of source and destination are
// still in the cache when the second pass and the subtraction come to them. A strip's neighbours count as memory next
// to it.
#pragma once

#include "morph/compound_borders.hpp"
#include "morph/pass.hpp"

namespace lumcv {

/// One pass of the two: the element, and what lies around its image.
struct Stage
{
    Element element;
    Border border;
};

/// Erosion then dilation, and for closings the other way round.
struct Opening
{
    using First = Minimum;
    using Second = Maximum;
};

struct Closing
{
    using First = Maximum;
    using Second = Minimum;
};

/// What becomes of the second pass's result.
enum class Finish
{
    none,
    fromSource,   ///< the source minus the result
    minusSource,  ///< the result minus the source
};

// The operations that the functions are named for.

struct Open
{
    using Order = Opening;
    static constexpr Finish finish = Finish::none;
};

struct Close
{
    using Order = Closing;
    static constexpr Finish finish = Finish::none;
};

struct Tophat
{
    using Order = Opening;
    static constexpr Finish finish = Finish::fromSource;
};

struct Blackhat
{
    using Order = Closing;
    static constexpr Finish finish = Finish::minusSource;
};

/// Opens or closes. In the scratch there are compoundScratchBytes() for this ROI and growth or a larger one.
template <class Operation, class T>
void compound(const Stage& first, const Stage& second, int channels, Plane<const T> src, Plane<T> dst, LumiSizeL roi,
              const Growth& growth, const T* borderValue, Finish finish, Negative negative, Lum8u* scratch);

/// Dilation minus erosion.
template <class T>
void gradient(const Stage& dilation, const Stage& erosion, int channels, Plane<const T> src, Plane<T> dst,
              LumiSizeL roi, const T* borderValue, Negative negative, Lum8u* scratch);

/// Bytes from one row of the intermediate image to the next.
template <class T>
constexpr int64_t intermediateStep(int64_t width, int channels)
{
    return roundedUp(width * channels * static_cast<int64_t>(sizeof(T)), 32);
}

}  // namespace lumcv
