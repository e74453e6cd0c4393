// The next larger level: every destination pixel is a weighted mean of the source pixels under the kernel around it.
//
// A source row is stretched once, into a ring; a destination row is a weighted sum of rows of the ring. The kernel
// 1, 4, 6, 4, 1 at rate 2 has small integer weights, and goes by columns first.
#include <algorithm>

#include "frame/image.hpp"
#include "pyramid/layer_checks.hpp"
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
          room_(record.room, rowAlignment),
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
        int64_t d = 0;
        if constexpr (channels == 1) {
            if (record_.mostWeights == 4)
                for (; d + 4 <= dstRoi_.width; d += 4)
                    simd::store(to + d, simd::sumsOfLanes(fourProducts(inside, d), fourProducts(inside, d + 1),
                                                          fourProducts(inside, d + 2), fourProducts(inside, d + 3)));
        } else
            // four elements at a time, of which the next pixel overwrites the last one
            for (; d + 1 < dstRoi_.width; ++d)
                stretchPixel<4>(inside, d, to + d * channels);
        for (; d < dstRoi_.width; ++d)
            for (int c = 0; c < channels; ++c)
                stretchPixel<1>(inside + c, d, to + d * channels + c);
    }

    /// The products of a destination pixel that has four weights at most.
    [[gnu::always_inline]] simd::Vec<Lum32f, 4> fourProducts(const Lum32f* inside, int64_t d) const
    {
        const int64_t count = record_.counts[d];
        const auto products =
            simd::load<4>(inside + firstOf(d)) * simd::load<4>(record_.weights + d * record_.mostWeights);
        return simd::firstLanes(products, count);
    }

    /// The first source pixel. Single precision makes the widest images reach beyond the margin, where all pixels are
    /// the same.
    int64_t firstOf(int64_t d) const
    {
        return std::min(int64_t{record_.firsts[d]}, srcRoi_.width + record_.mostWeights - record_.counts[d]);
    }

    template <int lanes>
    [[gnu::always_inline]] void stretchPixel(const Lum32f* inside, int64_t d, Lum32f* to) const
    {
        const int64_t count = record_.counts[d];
        const Lum32f* const pixels = inside + firstOf(d) * channels;
        const Lum32f* const weights = record_.weights + d * record_.mostWeights;
        auto sum = simd::broadcast<lanes>(weights[0]) * simd::load<lanes>(pixels);
        for (int64_t i = 1; i < count; ++i)
            sum = sum + simd::broadcast<lanes>(weights[i]) * simd::load<lanes>(pixels + i * channels);
        simd::store(to, sum);
    }

    void mixRows(int64_t first, int64_t count, const Lum32f* weights, T* to) const
    {
        const auto row = [=, this](int64_t i) { return ring_ + clampedRow(first + i) % slots_ * pitch_; };
        if (count == 2)
            mixTwoOrThree<2>({row(0), row(1), row(1)}, weights, to);
        else if (count == 3)
            mixTwoOrThree<3>({row(0), row(1), row(2)}, weights, to);
        else
            mixAny(row, count, weights, to);
    }

    struct ThreeRows
    {
        const Lum32f *first, *second, *third;
    };

    template <int count>
    [[gnu::flatten]] void mixTwoOrThree(ThreeRows rows, const Lum32f* weights, T* to) const
    {
        simd::eachAtLeastOnce<upLanes>(0, elements_, [=](int64_t x, auto lanes) {
            auto sum = simd::load<lanes>(rows.first + x) * simd::broadcast<lanes>(weights[0]) +
                       simd::load<lanes>(rows.second + x) * simd::broadcast<lanes>(weights[1]);
            if constexpr (count == 3)
                sum = sum + simd::load<lanes>(rows.third + x) * simd::broadcast<lanes>(weights[2]);
            simd::store(to + x, simd::saturateTo<T>(sum));
        });
    }

    template <class Row>
    [[gnu::flatten]] void mixAny(Row row, int64_t count, const Lum32f* weights, T* to) const
    {
        simd::eachAtLeastOnce<upLanes>(0, elements_, [=](int64_t x, auto lanes) {
            auto sum = simd::load<lanes>(row(0) + x) * simd::broadcast<lanes>(weights[0]);
            for (int64_t i = 1; i < count; ++i)
                sum = sum + simd::load<lanes>(row(i) + x) * simd::broadcast<lanes>(weights[i]);
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

bool isWithin(int64_t side, SideRange range)
{
    return range.min <= side && side <= range.max;
}

template <int channels, class T, class Size>
LumStatus layerUp(Plane<const T> src, Size srcRoi, Plane<T> dst, Size dstRoi, const LumiPyramidLayerUpRecord* pState)
{
    const Checks checks = layerApplyChecks<channels>(src, srcRoi, dst, dstRoi, pState);
    if (checks.failed())
        return checks.status();
    const LumiSizeL from{srcRoi.width, srcRoi.height}, to{dstRoi.width, dstRoi.height};
    if (!isWithin(to.width, sidesAbove(from.width, pState->rate)) ||
        !isWithin(to.height, sidesAbove(from.height, pState->rate)))
        return lumErrSize;
    if constexpr (std::is_integral_v<T>)
        if (pState->isBinomial) {
            binomialUp<channels>(src, from, dst, to, Room(pState->room, rowAlignment));
            return lumOk;
        }
    LayerUp<T, channels>(*pState, src, from, dst, to).run();
    return lumOk;
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
