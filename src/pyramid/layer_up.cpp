// The next larger level: every destination pixel is a weighted mean of the source pixels under the kernel around it.
//
// A source row is stretched once, into a ring; a destination row is a weighted sum of rows of the ring. The kernel
// 1, 4, 6, 4, 1 at rate 2 has small integer weights, and goes by columns first.
#include <algorithm>

#include "frame/image.hpp"
#include "pyramid/layer_kernel.hpp"
#include "pyramid/layer_room.hpp"
#include "pyramid/layer_up_binomial.hpp"
#include "pyramid/layer_up_record.hpp"

namespace lumcv {
namespace {

inline constexpr int upLanes = 16;

template <class T, int channels>
class LayerUp
{
  public:
    LayerUp(const LumiPyramidLayerUpRecord& record, Plane<const T> src, LumiSizeL srcRoi, Plane<T> dst,
            LumiSizeL dstRoi)
        : record_(record),
          src_(src),
          srcRoi_(srcRoi),
          dst_(dst),
          dstRoi_(dstRoi),
          slots_(record.mostWeights),
          elements_(dstRoi.width * channels),
          pitch_(rowPitch<Lum32f>(elements_)),
          room_(record.room),
          ring_(room_.take<Lum32f>(slots_ * pitch_)),
          extended_(room_.take<Lum32f>((srcRoi.width + 2 * record.mostWeights) * channels))
    {
    }

    void run()
    {
        for (int64_t y = 0; y < dstRoi_.height; ++y) {
            const int64_t first = record_.firsts[y];
            const int64_t last = clampedRow(first + record_.counts[y] - 1);
            for (nextRow_ = std::max(nextRow_, clampedRow(first)); nextRow_ <= last; ++nextRow_)
                stretchRow(src_.row(nextRow_), ring_ + nextRow_ % slots_ * pitch_);
            mixRows(first, record_.counts[y], record_.weights + y * record_.mostWeights, dst_.row(y));
        }
    }

  private:
    int64_t clampedRow(int64_t j) const
    {
        return std::clamp<int64_t>(j, 0, srcRoi_.height - 1);
    }

    /// The source row with its ends repeated, in single precision, as wide as the destination.
    [[gnu::flatten]] void stretchRow(const T* row, Lum32f* to) const
    {
        const int64_t margin = record_.mostWeights;
        Lum32f* const inside = extended_ + margin * channels;
        const int64_t end = srcRoi_.width * channels;
        simd::eachAtLeastOnce<upLanes>(
            0, end, [=](int64_t x, auto lanes) { simd::store(inside + x, simd::loadFloat<lanes>(row + x)); });
        for (int64_t i = 0; i < margin * channels; ++i) {
            inside[-1 - i] = inside[channels - 1 - i % channels];
            inside[end + i] = inside[end - channels + i % channels];
        }
        for (int64_t d = 0; d < dstRoi_.width; ++d) {
            const int64_t count = record_.counts[d];
            // single precision makes the widest images reach beyond the margin, where all pixels are the same
            const int64_t first = std::min(int64_t{record_.firsts[d]}, srcRoi_.width + margin - count);
            const Lum32f* const weights = record_.weights + d * record_.mostWeights;
            for (int c = 0; c < channels; ++c) {
                const Lum32f* const pixels = inside + first * channels + c;
                Lum32f sum = weights[0] * pixels[0];
                for (int64_t i = 1; i < count; ++i)
                    sum += weights[i] * pixels[i * channels];
                to[d * channels + c] = sum;
            }
        }
    }

    [[gnu::flatten]] void mixRows(int64_t first, int64_t count, const Lum32f* weights, T* to) const
    {
        simd::eachAtLeastOnce<upLanes>(0, elements_, [=, this](int64_t x, auto lanes) {
            const auto product = [=, this](int64_t i) {
                const Lum32f* const row = ring_ + clampedRow(first + i) % slots_ * pitch_;
                return simd::load<lanes>(row + x) * simd::broadcast<lanes>(weights[i]);
            };
            auto sum = product(0);
            for (int64_t i = 1; i < count; ++i)
                sum = sum + product(i);
            simd::store(to + x, simd::saturateTo<T>(sum));
        });
    }

    const LumiPyramidLayerUpRecord& record_;
    Plane<const T> src_;
    LumiSizeL srcRoi_;
    Plane<T> dst_;
    LumiSizeL dstRoi_;
    int64_t slots_, elements_, pitch_;
    Room room_;
    Lum32f* ring_;
    Lum32f* extended_;
    int64_t nextRow_ = 0;
};

/// Whether the record is one of an Init for this kind of image.
template <class T, int channels>
bool isRecordOf(const LumiPyramidLayerUpRecord& record)
{
    return isRate(record.rate) && record.isReady == 1 && record.dataType == layerDataType<T> &&
           record.channels == channels;
}

bool isWithin(int64_t side, SideRange range)
{
    return range.min <= side && side <= range.max;
}

template <class T, int channels>
LumStatus layerUp(Checks& checks, Plane<const T> src, LumiSizeL srcRoi, Plane<T> dst, LumiSizeL dstRoi,
                  const LumiPyramidLayerUpRecord* pState)
{
    checks.alignment(src).alignment(dst);
    if (!checks.failed())
        checks.require(isRecordOf<T, channels>(*pState), lumErrArgument)
            .size(srcRoi)
            .require(srcRoi.width <= pState->width && srcRoi.height <= pState->height, lumErrSize);
    if (checks.failed())
        return checks.status();
    if (!isWithin(dstRoi.width, sidesAbove(srcRoi.width, pState->rate)) ||
        !isWithin(dstRoi.height, sidesAbove(srcRoi.height, pState->rate)))
        return lumErrSize;
    if constexpr (std::is_integral_v<T>)
        if (pState->isBinomial) {
            binomialUp<channels>(src, srcRoi, dst, dstRoi, Room(pState->room));
            return lumOk;
        }
    LayerUp<T, channels>(*pState, src, srcRoi, dst, dstRoi).run();
    return lumOk;
}

template <int channels, class T>
LumStatus layerUp(Plane<const T> src, LumiSize srcRoi, Plane<T> dst, LumiSize dstRoi,
                  const LumiPyramidLayerUpRecord* pState)
{
    auto checks = Checks{}
                      .notNull(src.pixels, dst.pixels, pState)
                      .step(src, rowElements(srcRoi.width, channels))
                      .step(dst, rowElements(dstRoi.width, channels));
    return layerUp<T, channels>(checks, src, widened(srcRoi), dst, widened(dstRoi), pState);
}

template <int channels, class T>
LumStatus layerUp(Plane<const T> src, LumiSizeL srcRoi, Plane<T> dst, LumiSizeL dstRoi,
                  const LumiPyramidLayerUpRecord* pState)
{
    auto checks = Checks{}
                      .notNull(src.pixels, dst.pixels, pState)
                      .within31Bits(srcRoi.width, srcRoi.height, dstRoi.width, dstRoi.height, src.step, dst.step)
                      .rowFits(src, srcRoi.width, channels)
                      .rowFits(dst, dstRoi.width, channels);
    return layerUp<T, channels>(checks, src, srcRoi, dst, dstRoi, pState);
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiPyramidLayerUp_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum8u* pDst, Lum32s dstStep,
                                    LumiSize dstRoi, LumiPyramidLayerUpRecord* pState)
{
    return layerUp<1>(source(pSrc, srcStep), srcRoi, destination(pDst, dstStep), dstRoi, pState);
}

LumStatus lumiPyramidLayerUp_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum8u* pDst, Lum32s dstStep,
                                    LumiSize dstRoi, LumiPyramidLayerUpRecord* pState)
{
    return layerUp<3>(source(pSrc, srcStep), srcRoi, destination(pDst, dstStep), dstRoi, pState);
}

LumStatus lumiPyramidLayerUp_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum16u* pDst, Lum32s dstStep,
                                     LumiSize dstRoi, LumiPyramidLayerUpRecord* pState)
{
    return layerUp<1>(source(pSrc, srcStep), srcRoi, destination(pDst, dstStep), dstRoi, pState);
}

LumStatus lumiPyramidLayerUp_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum16u* pDst, Lum32s dstStep,
                                     LumiSize dstRoi, LumiPyramidLayerUpRecord* pState)
{
    return layerUp<3>(source(pSrc, srcStep), srcRoi, destination(pDst, dstStep), dstRoi, pState);
}

LumStatus lumiPyramidLayerUp_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum32f* pDst, Lum32s dstStep,
                                     LumiSize dstRoi, LumiPyramidLayerUpRecord* pState)
{
    return layerUp<1>(source(pSrc, srcStep), srcRoi, destination(pDst, dstStep), dstRoi, pState);
}

LumStatus lumiPyramidLayerUp_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum32f* pDst, Lum32s dstStep,
                                     LumiSize dstRoi, LumiPyramidLayerUpRecord* pState)
{
    return layerUp<3>(source(pSrc, srcStep), srcRoi, destination(pDst, dstStep), dstRoi, pState);
}

LumStatus lumiPyramidLayerUp_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, LumiSizeL srcRoi, Lum32f* pDst,
                                       Lum64s dstStep, LumiSizeL dstRoi, LumiPyramidLayerUpRecord* pState)
{
    return layerUp<1>(source(pSrc, srcStep), srcRoi, destination(pDst, dstStep), dstRoi, pState);
}
