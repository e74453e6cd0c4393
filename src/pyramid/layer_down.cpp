// The next smaller level: a smoothed image, sampled.
//
// Source rows are filtered once each into a ring of as many rows as the kernel has taps; from it come the smoothed rows
// that the destination asks for. At rate 2 only every second sample of a row is computed, and the column pass yields
// pixels; at other rates a smoothed row is interpolated along its length, and the pixels between two such rows.
#include <algorithm>

#include "frame/image.hpp"
#include "pyramid/layer_checks.hpp"
#include "pyramid/layer_down_binomial.hpp"
#include "pyramid/layer_down_record.hpp"
#include "pyramid/layer_down_rows.hpp"
#include "pyramid/layer_room.hpp"

namespace lumcv {
namespace {

template <class T, int channels>
class LayerDown
{
  public:
    LayerDown(const LumiPyramidLayerDownRecord& record, Plane<const T> src, LumiSizeL srcRoi, Plane<T> dst,
              LumiSizeL dstRoi)
        : taps_(static_cast<const LayerTap<T>*>(record.taps)),
          kernelSize_(record.kernelSize),
          reach_(record.kernelSize / 2),
          rate_(record.rate),
          isEverySecond_(isRateTwo(record.rate)),
          isDirect_(record.isBinomial && srcRoi.width > record.kernelSize && srcRoi.height > record.kernelSize),
          src_(src),
          srcRoi_(srcRoi),
          dst_(dst),
          dstRoi_(dstRoi),
          slots_(std::min<int64_t>(kernelSize_, srcRoi.height)),
          elements_((isEverySecond_ ? dstRoi.width : srcRoi.width) * channels),
          pitch_(rowPitch<Sample>(elements_)),
          room_(record.room, rowAlignment),
          rows_(room_.take<const Sample*>(kernelSize_)),
          ring_(room_.take<Sample>(slots_ * pitch_)),
          extended_(room_.take<Input>((srcRoi.width + 2 * reach_ + 2) * channels))
    {
    }

    void run()
    {
        if (isEverySecond_)
            takeEverySecond();
        else
            interpolate();
    }

  private:
    using Input = RowInput<T>;
    using Sample = Smoothed<T>;
    using Sources = TapSources<Input>;

    void takeEverySecond()
    {
        int64_t y = 0;
        if constexpr (std::is_same_v<T, Lum8u> && channels == 1)
            if (isDirect_) {
                y = std::min((srcRoi_.height + 1) / 2, dstRoi_.height);
                BinomialDown(src_, srcRoi_, dst_, {dstRoi_.width, y}, room_).run();
            }
        for (; y < dstRoi_.height; ++y) {
            gatherRows(std::min(2 * y, srcRoi_.height - 1));
            if constexpr (std::is_same_v<T, Lum8u>)
                if (isDirect_) {
                    convolveColumns<ColumnResult::Direct>(dst_.row(y));
                    continue;
                }
            convolveColumns<ColumnResult::Pixels>(dst_.row(y));
        }
    }

    void interpolate()
    {
        const int64_t dstElements = dstRoi_.width * channels;
        const int64_t dstPitch = rowPitch<Sample>(dstElements);
        Sample* const smoothed = room_.take<Sample>((srcRoi_.width + 2) * channels);
        Sample* const sampled = room_.take<Sample>(2 * dstPitch);
        Lum32s* const indices = room_.take<Lum32s>(dstRoi_.width);
        Lum32f* const weights = room_.take<Lum32f>(dstRoi_.width);
        for (int64_t x = 0; x < dstRoi_.width; ++x) {
            const Between between(x, rate_, srcRoi_.width);
            indices[x] = static_cast<Lum32s>(between.index * channels);
            weights[x] = between.weight;
        }

        int64_t done[2] = {-1, -1};  // which smoothed row has been sampled into each half
        const auto sampledRow = [&](int64_t i) {
            Sample* const row = sampled + i % 2 * dstPitch;
            if (done[i % 2] != i) {
                gatherRows(i);
                convolveColumns<ColumnResult::Smoothed>(smoothed);
                for (int c = 0; c < channels; ++c)  // so that every sample has a right neighbour
                    smoothed[elements_ + c] = smoothed[elements_ - channels + c];
                sampleRow(smoothed, indices, weights, row);
                done[i % 2] = i;
            }
            return row;
        };
        for (int64_t y = 0; y < dstRoi_.height; ++y) {
            const Between between(y, rate_, srcRoi_.height);
            const Sample* const upper = sampledRow(between.index);
            const Sample* const lower = sampledRow(std::min(between.index + 1, srcRoi_.height - 1));
            mixRows(upper, lower, between.weight, dstElements, dst_.row(y));
        }
    }

    [[gnu::flatten]] void sampleRow(const Sample* smoothed, const Lum32s* indices, const Lum32f* weights,
                                    Sample* row) const
    {
        if constexpr (channels == 1)
            simd::eachAtLeastOnce<16>(0, dstRoi_.width, [=](int64_t x, auto lanes) {
                const auto pairs = simd::gatherNeighbours<lanes>(smoothed, indices + x);
                simd::store(row + x, between<T>(pairs.first, pairs.second, simd::load<lanes>(weights + x)));
            });
        else {
            // four elements at a time, of which the next pixel overwrites the last one
            int64_t x = 0;
            for (; x + 1 < dstRoi_.width; ++x)
                samplePixel(smoothed + indices[x], weights[x], row + x * channels);
            for (int c = 0; c < channels; ++c) {
                const Sample* const pair = smoothed + indices[x] + c;
                simd::store(row + x * channels + c,
                            between<T>(loadWide<1>(pair), loadWide<1>(pair + channels), simd::load<1>(weights + x)));
            }
        }
    }

    [[gnu::always_inline]] static void samplePixel(const Sample* pair, Lum32f weight, Sample* to)
    {
        const auto w = simd::broadcast<4>(weight);
        if constexpr (std::is_same_v<T, Lum8u>)
            simd::storeWords(to, simd::truncated(mixed(simd::toFloat(simd::loadWidened<4>(pair)),
                                                       simd::toFloat(simd::loadWidened<4>(pair + channels)), w) +
                                                 simd::broadcast<4>(0.5f)));
        else
            simd::store(to, between<T>(simd::load<4>(pair), simd::load<4>(pair + channels), w));
    }

    [[gnu::flatten]] void mixRows(const Sample* upper, const Sample* lower, Lum32f weight, int64_t n, T* to) const
    {
        simd::eachAtLeastOnce<downLanes>(0, n, [=](int64_t x, auto lanes) {
            simd::store(to + x, asPixels<T>(between<T>(loadWide<lanes>(upper + x), loadWide<lanes>(lower + x),
                                                       simd::broadcast<lanes>(weight))));
        });
    }

    /// Points to the rows of the ring that meet at row i of the smoothed image, of which none comes before the last
    /// one.
    void gatherRows(int64_t i)
    {
        const int64_t last = std::min(i + reach_, srcRoi_.height - 1);
        for (nextRow_ = std::max(nextRow_, i - reach_); nextRow_ <= last; ++nextRow_)
            filterRow(src_.row(nextRow_), ring_ + nextRow_ % slots_ * pitch_);
        for (int64_t j = 0; j < kernelSize_; ++j)
            rows_[j] = ring_ + std::clamp<int64_t>(i - reach_ + j, 0, srcRoi_.height - 1) % slots_ * pitch_;
    }

    void filterRow(const T* row, Sample* to)
    {
        const int64_t width = srcRoi_.width;
        if (!isEverySecond_) {
            const Sources sources{extended_, extended_ + channels, 2 * channels};
            convertRow(row, width * channels, extended_ + reach_ * channels);
            repeatEnds(sources);
            convolveRow(sources, elements_, to);
            return;
        }
        const Sources sources{extended_, extended_ + (width + 2 * reach_ + 1) / 2 * channels, channels};
        separatePixels(row, sources(reach_), sources(reach_ + 1));
        repeatEnds(sources);
        const int64_t within = std::min(elements_, (width + 1) / 2 * channels);
        convolveRow(sources, within, to);
        if (within < elements_) {  // at a rate just below 2 there is one more: the last pixel
            convolveRow(sources.from(width - 1), channels, to + within);
            for (int64_t x = within + channels; x < elements_; ++x)
                to[x] = to[x - channels];
        }
    }

    void convolveRow(Sources sources, int64_t n, Sample* to) const
    {
        withTapCount(kernelSize_, [=, this](auto count) { rowPass<T, count>(taps_, kernelSize_, sources, n, to); });
    }

    template <ColumnResult result, class Out>
    void convolveColumns(Out* to) const
    {
        withTapCount(kernelSize_,
                     [=, this](auto count) { columnPass<T, count, result>(taps_, kernelSize_, rows_, elements_, to); });
    }

    /// Repeats the end pixels of the extended row, whose pixel i is at sources(i).
    void repeatEnds(Sources sources) const
    {
        const auto copy = [=](int64_t from, int64_t to) { std::copy_n(sources(from), channels, sources(to)); };
        for (int64_t i = 0; i < reach_; ++i) {
            copy(reach_, i);
            copy(reach_ + srcRoi_.width - 1, reach_ + srcRoi_.width + i);
        }
    }

    [[gnu::flatten]] void separatePixels(const T* row, Input* even, Input* odd) const
    {
        const int64_t pairs = srcRoi_.width / 2;
        if constexpr (channels == 1)
            convertPairs(row, pairs, even, odd);
        else {
            int64_t i = 0;
            if constexpr (std::is_same_v<T, Lum8u>)
                for (; i + 3 <= pairs; i += 2)
                    simd::separateTriples(row + 6 * i, even + 3 * i, odd + 3 * i);
            else {
                constexpr int lanes = 16 / static_cast<int>(sizeof(T));
                for (; i + 3 <= pairs; ++i) {  // what is too much of a pixel is overwritten by the next one
                    convertLanes<lanes>(row + 6 * i, even + 3 * i);
                    convertLanes<lanes>(row + 6 * i + 3, odd + 3 * i);
                }
            }
            for (; i < pairs; ++i) {
                convertRow(row + 6 * i, channels, even + 3 * i);
                convertRow(row + 6 * i + 3, channels, odd + 3 * i);
            }
        }
        if (srcRoi_.width % 2)
            convertRow(row + 2 * pairs * channels, channels, even + pairs * channels);
    }

    const LayerTap<T>* taps_;
    Lum32s kernelSize_;
    int64_t reach_;
    Lum32f rate_;
    bool isEverySecond_, isDirect_;
    Plane<const T> src_;
    LumiSizeL srcRoi_;
    Plane<T> dst_;
    LumiSizeL dstRoi_;
    int64_t slots_, elements_, pitch_;
    Room room_;
    const Sample** rows_;
    Sample* ring_;
    Input* extended_;
    int64_t nextRow_ = 0;
};

template <int channels, class T, class Size>
LumStatus layerDown(Plane<const T> src, Size srcRoi, Plane<T> dst, Size dstRoi,
                    const LumiPyramidLayerDownRecord* pState)
{
    const Checks checks = layerApplyChecks<channels>(src, srcRoi, dst, dstRoi, pState);
    if (checks.failed())
        return checks.status();
    const LumiSizeL from{srcRoi.width, srcRoi.height}, to = sizeBelow(from, pState->rate);
    if (dstRoi.width != to.width || dstRoi.height != to.height)
        return lumErrSize;
    LayerDown<T, channels>(*pState, src, from, dst, to).run();
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiPyramidLayerDown_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum8u* pDst, Lum32s dstStep,
                                      LumiSize dstRoi, LumiPyramidLayerDownRecord* pState)
{
    return layerDown<1>(source(pSrc, srcStep), srcRoi, destination(pDst, dstStep), dstRoi, pState);
}

LumStatus lumiPyramidLayerDown_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum8u* pDst, Lum32s dstStep,
                                      LumiSize dstRoi, LumiPyramidLayerDownRecord* pState)
{
    return layerDown<3>(source(pSrc, srcStep), srcRoi, destination(pDst, dstStep), dstRoi, pState);
}

LumStatus lumiPyramidLayerDown_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum16u* pDst,
                                       Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerDownRecord* pState)
{
    return layerDown<1>(source(pSrc, srcStep), srcRoi, destination(pDst, dstStep), dstRoi, pState);
}

LumStatus lumiPyramidLayerDown_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum16u* pDst,
                                       Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerDownRecord* pState)
{
    return layerDown<3>(source(pSrc, srcStep), srcRoi, destination(pDst, dstStep), dstRoi, pState);
}

LumStatus lumiPyramidLayerDown_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum32f* pDst,
                                       Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerDownRecord* pState)
{
    return layerDown<1>(source(pSrc, srcStep), srcRoi, destination(pDst, dstStep), dstRoi, pState);
}

LumStatus lumiPyramidLayerDown_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum32f* pDst,
                                       Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerDownRecord* pState)
{
    return layerDown<3>(source(pSrc, srcStep), srcRoi, destination(pDst, dstStep), dstRoi, pState);
}

LumStatus lumiPyramidLayerDown_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, LumiSizeL srcRoi, Lum32f* pDst,
                                         Lum64s dstStep, LumiSizeL dstRoi, LumiPyramidLayerDownRecord* pState)
{
    return layerDown<1>(source(pSrc, srcStep), srcRoi, destination(pDst, dstStep), dstRoi, pState);
}
