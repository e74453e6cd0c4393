// Inpainting: fills the pixels of the list one after the other from the known pixels around them.
#include "distance/inpaint_state.hpp"
#include "frame/block.hpp"
#include "frame/checks.hpp"
#include "simd/simd.hpp"

namespace lumcv {
namespace {

constexpr Lum32f noWeight = 1e-30f;      ///< what the sum of weights starts at
constexpr Lum32f leastWeight = 0.0001f;  ///< below this the neighbours tell nothing

/// A repair in progress. Coordinates are those of the work rectangle.
template <LumiInpaintMethod method, int channels>
class Repair
{
  public:
    Repair(const LumiInpaintState& state, Plane<Lum8u> image)
        : image_{image.row(state.y0) + channels * state.x0, image.step},
          unknown_{state.pWorkImage, state.maskStride},
          distance_{state.pDistance, state.distanceStride},
          gradient_{state.pGradient, state.gradientStride},
          normal_{state.pNormal, state.normalStride},
          width_(state.subWidth),
          height_(state.subHeight),
          reach_(state.reach),
          neighbours_(state.pNeighbours),
          neighbourCount_(state.neighbourCount)
    {
    }

    /// The gradient of a known pixel next to which no pixel has been filled yet.
    void formGradient(int64_t x, int64_t y)
    {
        for (int c = 0; c < channels; ++c) {
            gradientAt(x, y)[2 * c] = horizontal(x, y, c, isKnown(x - 1, y), isKnown(x + 1, y));
            gradientAt(x, y)[2 * c + 1] = vertical(x, y, c, isKnown(x, y - 1), isKnown(x, y + 1));
        }
    }

    void formNormal(int64_t x, int64_t y)
    {
        Lum16s* const normal = normal_.row(y) + 2 * x;
        normal[0] = slope(distance_.row(y) + x, 1, x, width_);
        normal[1] = slope(distance_.row(y) + x, distance_.step / 4, y, height_);
    }

    void fill(int64_t index)
    {
        const int64_t y = index / width_, x = index % width_;
        Lum8u* const pixel = image_.row(y) + channels * x;
        const Centre centre = centreAt(x, y);
        const Lum8u* const isUnknown = unknown_.row(y) + x;
        Estimate estimate;
        if (x >= reach_ && x + reach_ < width_ && y >= reach_ && y + reach_ < height_)
            for (Lum32s i = 0; i < neighbourCount_; ++i) {
                const InpaintNeighbour& q = neighbours_[i];
                if (!isUnknown[q.maskOffset])
                    add(estimate, centre, q.a, q.b, q.weight, centre.distance[q.distanceOffset],
                        centre.gradient + q.gradientOffset);
            }
        else
            for (int64_t qy = y > reach_ ? y - reach_ : 0; qy <= y + reach_ && qy < height_; ++qy)
                for (int64_t qx = x > reach_ ? x - reach_ : 0; qx <= x + reach_ && qx < width_; ++qx) {
                    const auto a = static_cast<Lum32s>(x - qx), b = static_cast<Lum32s>(y - qy);
                    if ((a != 0 || b != 0) && a * a + b * b <= reach_ * reach_ && !unknown_.row(qy)[qx])
                        add(estimate, centre, a, b, inpaintWeight(method, a, b), distance_.row(qy)[qx],
                            gradientAt(qx, qy));
                }
        for (int c = 0; c < channels; ++c)
            pixel[c] = result(estimate, c, x, y);
        unknown_.row(y)[x] = 0;
        refreshGradient(x, y);
    }

  private:
    struct Estimate
    {
        Lum32f sum[channels] = {};
        Lum32f total[method == lumInpaintByFront ? 1 : channels];
        Lum32f slopeX[channels] = {}, slopeY[channels] = {};

        Estimate()
        {
            for (Lum32f& t : total)
                t = noWeight;
        }
    };

    /// The pixel that is being filled.
    struct Centre
    {
        const Lum8u* pixel;
        const Lum32f* distance;
        const Lum16s* gradient;
        Lum32s normalX, normalY;
    };

    Centre centreAt(int64_t x, int64_t y) const
    {
        const Lum16s* const normal = normal_.row(y) + 2 * x;
        const bool hasNormal = method == lumInpaintByFront;
        return {image_.row(y) + channels * x, distance_.row(y) + x, gradientAt(x, y), hasNormal ? normal[0] : 0,
                hasNormal ? normal[1] : 0};
    }

    /// Adds what the pixel at (-a, -b) from the centre tells.
    [[gnu::always_inline]] void add(Estimate& estimate, const Centre& centre, Lum32s a, Lum32s b, Lum32f byDistance,
                                    Lum32f distance, const Lum16s* gradient) const
    {
        const Lum8u* const pixel = rowAt(centre.pixel, image_.step, -b) - channels * a;
        if constexpr (method == lumInpaintByFront) {
            auto t = static_cast<Lum32f>(b * centre.normalY + a * centre.normalX);
            if (__builtin_fabsf(t) < 2.5e-25f)
                t = 2.5e-25f;
            const Lum32f level = __builtin_fabsf(distance - *centre.distance);
            const Lum32f weight = __builtin_fabsf((1.0f / 4096) / (level + 1) * byDistance * t);
            for (int c = 0; c < channels; ++c) {
                estimate.sum[c] += weight * pixel[c];
                estimate.slopeX[c] -= weight * static_cast<Lum32f>(gradient[2 * c] * a);
                estimate.slopeY[c] -= weight * static_cast<Lum32f>(gradient[2 * c + 1] * b);
            }
            estimate.total[0] += weight;
        } else
            for (int c = 0; c < channels; ++c) {
                const Lum32s gx = gradient[2 * c], gy = gradient[2 * c + 1];
                const Lum32s across = b * gx - a * gy;
                const Lum32f along = across == 0 ? 1e-6f
                                                 : static_cast<Lum32f>(across < 0 ? -across : across) /
                                                       __builtin_sqrtf(static_cast<Lum32f>(gx * gx + gy * gy));
                const Lum32f weight = along * byDistance;
                estimate.sum[c] += weight * pixel[c];
                estimate.total[c] += weight;
            }
    }

    Lum8u result(Estimate& estimate, int c, int64_t x, int64_t y) const
    {
        const Lum32f total = estimate.total[method == lumInpaintByFront ? 0 : c];
        if (total < leastWeight)
            return fallback(x, y, c);
        const Lum32f mean = estimate.sum[c] / total + 0.5f;
        if constexpr (method == lumInpaintByFront) {
            const Lum32f gx = estimate.slopeX[c], gy = estimate.slopeY[c];
            // of all channels the numerator is that of the first one
            const Lum64f numerator = estimate.slopeX[0] + estimate.slopeY[0];
            const Lum64f value = mean + numerator / (1e-20 + __builtin_sqrtf(gx * gx + gy * gy));
            return static_cast<Lum8u>(value > 0 ? value < 255 ? value : 255 : 0);
        } else
            return static_cast<Lum8u>(mean);
    }

    /// The mean of the known edge neighbours.
    Lum8u fallback(int64_t x, int64_t y, int c) const
    {
        Lum32s sum = 0, count = 0;
        const auto take = [&](int64_t qx, int64_t qy) {
            if (isKnown(qx, qy)) {
                sum += image_.row(qy)[channels * qx + c];
                ++count;
            }
        };
        take(x, y - 1);
        take(x - 1, y);
        take(x + 1, y);
        take(x, y + 1);
        if (count == 0)
            return 0;
        return static_cast<Lum8u>(static_cast<Lum32f>(sum) / static_cast<Lum32f>(count) + 0.5f);
    }

    /// Pixels beyond the work rectangle are unknown.
    bool isKnown(int64_t x, int64_t y) const
    {
        return x >= 0 && x < width_ && y >= 0 && y < height_ && !unknown_.row(y)[x];
    }

    Lum16s* gradientAt(int64_t x, int64_t y) const
    {
        return gradient_.row(y) + 2 * channels * x;
    }

    /// A component from the neighbours that are known.
    static Lum16s component(const Lum8u* pixel, int64_t step, bool isBeforeKnown, bool isBehindKnown)
    {
        const Lum32s towards = isBehindKnown ? pixel[step] - pixel[0] : 0;
        const Lum32s from = isBeforeKnown ? pixel[0] - pixel[-step] : 0;
        const bool areBoth = isBeforeKnown && isBehindKnown;
        if constexpr (method == lumInpaintByFront)
            return static_cast<Lum16s>((towards + from) * (areBoth ? 2 : 1));
        const auto magnitude = [](Lum32s v) { return v < 0 ? -v : v; };
        return static_cast<Lum16s>((magnitude(towards) + magnitude(from)) * (areBoth ? 1 : 2));
    }

    Lum16s horizontal(int64_t x, int64_t y, int c, bool isBeforeKnown, bool isBehindKnown) const
    {
        return component(image_.row(y) + channels * x + c, channels, isBeforeKnown, isBehindKnown);
    }

    Lum16s vertical(int64_t x, int64_t y, int c, bool isBeforeKnown, bool isBehindKnown) const
    {
        return component(image_.row(y) + channels * x + c, image_.step, isBeforeKnown, isBehindKnown);
    }

    /// After a pixel has been filled, what its own and its neighbours' gradients make of it.
    void refreshGradient(int64_t x, int64_t y)
    {
        refreshHorizontal(x, y, isKnown(x - 1, y), isKnown(x + 1, y));
        refreshVertical(x, y, isKnown(x, y - 1), isKnown(x, y + 1));
        // central if the pixel beyond is known, else towards this one, if known itself
        if (y > 0)
            refreshNeighbour(x, y - 1, isKnown(x, y - 2), true, false);
        if (y + 1 < height_)
            refreshNeighbour(x, y + 1, isKnown(x, y + 2), false, false);
        if (x > 0)
            refreshNeighbour(x - 1, y, isKnown(x - 2, y), true, true);
        if (x + 1 < width_)
            refreshNeighbour(x + 1, y, isKnown(x + 2, y), false, true);
    }

    void refreshNeighbour(int64_t x, int64_t y, bool isBeyondKnown, bool isFilledBehind, bool isHorizontal)
    {
        if (!isBeyondKnown && !isKnown(x, y))
            return;
        const bool isBeforeKnown = isBeyondKnown || !isFilledBehind, isBehindKnown = isBeyondKnown || isFilledBehind;
        if (isHorizontal)
            refreshHorizontal(x, y, isBeforeKnown, isBehindKnown);
        else
            refreshVertical(x, y, isBeforeKnown, isBehindKnown);
    }

    void refreshHorizontal(int64_t x, int64_t y, bool isBeforeKnown, bool isBehindKnown)
    {
        if (isBeforeKnown || isBehindKnown)
            for (int c = 0; c < channels; ++c)
                gradientAt(x, y)[2 * c] = horizontal(x, y, c, isBeforeKnown, isBehindKnown);
    }

    void refreshVertical(int64_t x, int64_t y, bool isBeforeKnown, bool isBehindKnown)
    {
        if (isBeforeKnown || isBehindKnown)
            for (int c = 0; c < channels; ++c)
                gradientAt(x, y)[2 * c + 1] = vertical(x, y, c, isBeforeKnown, isBehindKnown);
    }

    /// The slope of the distance along an axis, in units of 1/4096; of the integer the low 16 bits.
    static Lum16s slope(const Lum32f* d, int64_t step, int64_t at, int64_t length)
    {
        if (length == 1)
            return 0;
        Lum32f v;
        if (at == 0)
            v = (d[step] - d[0]) * 4096;
        else if (at == length - 1)
            v = (d[0] - d[-step]) * 4096;
        else
            v = (d[step] - d[-step]) * 4096 * 0.5f;
        return static_cast<Lum16s>(_mm_cvttss_si32(_mm_set_ss(v)));
    }

    Plane<Lum8u> image_;
    Plane<Lum8u> unknown_;  ///< 255 for pixels that are not known yet, 0 for the others
    Plane<Lum32f> distance_;
    Plane<Lum16s> gradient_, normal_;
    int64_t width_, height_;
    Lum32s reach_;
    const InpaintNeighbour* neighbours_;
    Lum32s neighbourCount_;
};

template <LumiInpaintMethod method, int channels>
LumStatus repair(const LumiInpaintState& state, Plane<Lum8u> image, Lum8u* pBuffer)
{
    const LumiSize size{state.subWidth, state.subHeight};
    const int64_t maskBytes = int64_t{state.maskStride} * state.subHeight;
    const auto zero = [](Lum16s* block, int64_t bytes) {
        if (bytes > 0)
            lumBlockZero_8u(reinterpret_cast<Lum8u*>(block), static_cast<Lum32s>(bytes));
    };
    zero(state.pGradient, int64_t{state.gradientStride} * state.subHeight);
    zero(state.pNormal, int64_t{state.normalStride} * state.subHeight);

    // the ring around the mask
    const LumStatus status =
        lumiDilateBorder_8u_C1R(state.pMaskImage, state.maskStride, state.pWorkImage, state.maskStride, size,
                                lumBorderReplicate, 0, state.pSpecWide, pBuffer);
    if (status != lumOk)
        return status;
    const Plane<Lum8u> work{state.pWorkImage, state.maskStride}, mask{state.pMaskImage, state.maskStride};
    // a copy of the ring's pixels is not needed: a repair reads the mask, of which nothing has been filled yet
    LumiInpaintState masked = state;
    masked.pWorkImage = state.pMaskImage;
    Repair<method, channels> beginning(masked, image);
    for (int64_t y = 0; y < size.height; ++y)
        for (int64_t x = 0; x < size.width; ++x) {
            if (mask.row(y)[x]) {
                if (method == lumInpaintByFront)
                    beginning.formNormal(x, y);
            } else if (work.row(y)[x])
                beginning.formGradient(x, y);
        }

    lumBlockCopyRaw(state.pMaskImage, state.pWorkImage, static_cast<Lum32s>(maskBytes));
    Repair<method, channels> filling(state, image);
    for (Lum32s i = 0; i < state.entryCount; ++i)
        filling.fill(static_cast<int64_t>(state.pOrder[i] & ((InpaintEntry{1} << inpaintIndexBits) - 1)));
    return lumOk;
}

template <int channels>
LumStatus inpaint(Plane<const Lum8u> src, Plane<Lum8u> dst, LumiSize roiSize, const LumiInpaintState* pState,
                  Lum8u* pBuffer)
{
    auto checks = Checks{}.notNull(src.pixels, dst.pixels, pState).size(roiSize);
    if (checks.failed())
        return checks.status();
    const LumiInpaintState& state = *alignedIn<LumiInpaintState>(pState);
    checks.require(roiSize.width == state.width && roiSize.height == state.height, lumErrSize)
        .step(src, rowElements(roiSize.width, channels))
        .step(dst, rowElements(roiSize.width, channels))
        .require(state.count == 0 || pBuffer != nullptr, lumErrNullPointer);
    if (checks.failed())
        return checks.status();
    if (src.pixels != dst.pixels)
        for (int64_t y = 0; y < roiSize.height; ++y)
            lumBlockCopyRaw(src.row(y), dst.row(y), rowElements(roiSize.width, channels));
    if (state.count == 0)
        return lumOk;
    return state.method == lumInpaintByFront ? repair<lumInpaintByFront, channels>(state, dst, pBuffer)
                                             : repair<lumInpaintByIsophote, channels>(state, dst, pBuffer);
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiInpaint_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                             LumiInpaintState* pState, Lum8u* pBuffer)
{
    return inpaint<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, pState, pBuffer);
}

LumStatus lumiInpaint_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                             LumiInpaintState* pState, Lum8u* pBuffer)
{
    return inpaint<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, pState, pBuffer);
}
