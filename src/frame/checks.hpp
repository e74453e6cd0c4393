// The argument checks that the families share. A chain of them is a family's documented order: the first that fails
// decides.
#pragma once

#include <climits>
#include <cstdint>

#include "frame/image.hpp"

namespace lumcv {

class Checks
{
  public:
    /// The general step of the chain: `otherwise` is the status if nothing failed before and the condition does not
    /// hold.
    constexpr Checks& require(bool condition, LumStatus otherwise)
    {
        if (status_ == lumOk && !condition)
            status_ = otherwise;
        return *this;
    }

    /// A step that has a status of its own: lumOk if it does not fail.
    constexpr Checks& then(LumStatus next)
    {
        if (status_ == lumOk)
            status_ = next;
        return *this;
    }

    template <class... Pointers>
    constexpr Checks& notNull(const Pointers*... pointers)
    {
        return require(((pointers != nullptr) && ...), lumErrNullPointer);
    }

    template <class Size>
    constexpr Checks& size(Size roiSize)
    {
        return require(roiSize.width >= 1 && roiSize.height >= 1, lumErrSize);
    }

    /// No stride, width or height of a 64-bit entry point exceeds 31 bits.
    template <class... Lengths>
    constexpr Checks& within31Bits(Lengths... lengths)
    {
        return require(((static_cast<int64_t>(lengths) <= INT_MAX) && ...), lumErrSizeTooLarge);
    }

    /// The stride of an image is not below a row of `rowElements` elements. The product wraps at 32 bits, as
    /// documented.
    template <class T>
    constexpr Checks& step(Plane<T> image, Lum32s rowElements)
    {
        const auto rowBytes = static_cast<Lum32u>(rowElements) * static_cast<Lum32u>(sizeof(T));
        return require(image.step >= static_cast<Lum32s>(rowBytes), lumErrStep);
    }

    /// The same in the 64-bit entry points that do not wrap.
    template <class T>
    constexpr Checks& rowFits(Plane<T> image, int64_t width, int channels)
    {
        return require(image.step / (channels * static_cast<int64_t>(sizeof(T))) >= width, lumErrStep);
    }

    /// The stride of an image is a whole number of elements.
    template <class T>
    constexpr Checks& alignment(Plane<T> image)
    {
        return require(image.step % static_cast<int64_t>(sizeof(T)) == 0, lumErrStepAlignment);
    }

    /// The first failing status, or lumOk.
    constexpr LumStatus status() const
    {
        return status_;
    }

    constexpr bool failed() const
    {
        return status_ != lumOk;
    }

  private:
    LumStatus status_ = lumOk;
};

/// Gray, colour, and colour with a fourth channel.
constexpr bool isChannelCount(Lum32s numChannels)
{
    return numChannels == 1 || numChannels == 3 || numChannels == 4;
}

constexpr bool isMask(LumiMaskSize mask)
{
    return mask == lumMask3x3 || mask == lumMask5x5;
}

/// The elements of a row, as the 32-bit product that the stride tests use.
constexpr Lum32s rowElements(Lum32s width, int channels)
{
    return static_cast<Lum32s>(static_cast<Lum32u>(width) * static_cast<Lum32u>(channels));
}

}  // namespace lumcv
