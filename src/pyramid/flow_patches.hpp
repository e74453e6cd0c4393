// What the patches of all element types share.
#pragma once

#include "pyramid/flow_window.hpp"
#include "simd/simd.hpp"

namespace lumcv {

/// The sums of the products of both slopes.
struct FlowMatrix
{
    Lum64f xx, xy, yy;
};

/// The sums of the difference of both images, times each of the slopes.
struct FlowVector
{
    Lum64f x, y;
};

/// The four weights of an interpolation, of the pixel itself, its right neighbour, the one below, and that one's right
/// neighbour.
struct FlowWeights
{
    Lum32f nearest, right, below, both;

    static FlowWeights of(const FlowWindow& window)
    {
        const Lum32f x = window.x.fraction, y = window.y.fraction;
        return {(1 - x) * (1 - y), x * (1 - y), (1 - x) * y, x * y};
    }
};

/// The planes of a point's patches: the first image, its slopes, and its difference from the second image.
template <class T>
class FlowPatchPlanes
{
  public:
    static constexpr int64_t bytes(Lum32s winSize)
    {
        return 4 * elements(winSize) * static_cast<int64_t>(sizeof(T));
    }

    FlowPatchPlanes(Lum8u* block, Lum32s winSize)
        : pitch_(flowPitch(winSize)),
          first_(reinterpret_cast<T*>(block)),
          slopeX_(first_ + elements(winSize)),
          slopeY_(slopeX_ + elements(winSize)),
          difference_(slopeY_ + elements(winSize))
    {
    }

  protected:
    int64_t pitch_;
    T* first_;
    T* slopeX_;
    T* slopeY_;
    T* difference_;

  private:
    static constexpr int64_t elements(Lum32s winSize)
    {
        return (int64_t{winSize} + 2) * flowPitch(winSize);
    }
};

/// Mask bytes for a group of which the first `count` samples belong to the area.
inline const Lum8u* firstSamples(int64_t count)
{
    static constexpr Lum8u bytes[2 * flowLanes] = {1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0};
    return bytes + flowLanes - count;
}

}  // namespace lumcv
