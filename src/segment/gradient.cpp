// Gradient segmentation: labels flood the image in the order of the differences between adjacent pixels.
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "frame/room.hpp"
#include "lumcv/segment.h"
#include "segment/level_queues.hpp"

namespace lumcv {
namespace {

constexpr Lum8u barrier = 255;  ///< a pixel that does not take part, or that waits in a queue
constexpr Lum8u boundary = 254;

template <int channels>
class GradientFlood
{
  public:
    GradientFlood(Plane<const Lum8u> src, Plane<Lum8u> marker, LumiSize size, Lum32u norm, LumiSegmentFlag flag,
                  Lum8u* pBuffer)
        : src_(src),
          marker_(marker),
          width_(size.width),
          height_(size.height),
          norm_(norm),
          flag_(flag),
          room_(pBuffer),
          work_(room_.take<Lum8u>(width_ * height_)),
          queues_(room_.take<Lum32u>(width_ * height_))
    {
    }

    void run()
    {
        const int64_t w = width_, h = height_;
        for (int64_t y = 0; y < h; ++y)
            for (int64_t x = 0; x < w; ++x)
                work_[y * w + x] = x == 0 || y == 0 || x == w - 1 || y == h - 1 ? barrier : marker_.row(y)[x];
        const int64_t deltas[8] = {-1, 1, -w, w, -w - 1, -w + 1, w - 1, w + 1};
        const int n = norm_ == 0 ? 8 : 4;
        for (int64_t y = 1; y < h - 1; ++y)
            for (int64_t x = 1; x < w - 1; ++x) {
                const int64_t p = y * w + x;
                if (work_[p] != 0)
                    continue;
                int best = 256;
                for (int i = 0; i < n; ++i) {
                    const int64_t q = p + deltas[i];
                    if (work_[q] != 0 && work_[q] != barrier && cost(p, q) < best)
                        best = cost(p, q);
                }
                if (best < 256) {
                    queues_.push(best, static_cast<Lum32u>(p));
                    work_[p] = barrier;
                }
            }
        int level = queues_.nextLevel(0);
        if (level == LevelQueues::levels)
            return;
        while ((level = queues_.nextLevel(level)) < LevelQueues::levels) {
            const int64_t p = queues_.pop(level);
            int best = 256;
            Lum8u label = 0;
            for (int i = 0; i < n; ++i) {
                const int64_t q = p + deltas[i];
                if (work_[q] == 0 || work_[q] == barrier)
                    continue;
                const int c = cost(p, q);
                if (c < best || (c == best && work_[q] != boundary)) {
                    best = c;
                    label = work_[q];
                }
            }
            const int looks = flag_ & lumSegmentBound8 ? 8 : flag_ & lumSegmentBound4 ? 4 : 0;
            Lum8u value = label;
            for (int i = 0; i < looks; ++i) {
                const Lum8u other = work_[p + deltas[i]];
                if (other >= 1 && other <= 253 && other != label)
                    value = boundary;
            }
            work_[p] = value;
            for (int i = 0; i < n; ++i) {
                const int64_t q = p + deltas[i];
                if (work_[q] != 0)
                    continue;
                const int c = cost(p, q);
                queues_.push(c, static_cast<Lum32u>(q));
                work_[q] = barrier;
                level = std::min(level, c);
            }
        }
        for (int64_t y = 0; y < h; ++y)
            std::copy_n(work_ + y * w, w, marker_.row(y));
    }

  private:
    int cost(int64_t p, int64_t q) const
    {
        int result = 0;
        for (int c = 0; c < channels; ++c) {
            const int a = src_.row(p / width_)[p % width_ * channels + c];
            const int b = src_.row(q / width_)[q % width_ * channels + c];
            result = std::max(result, a < b ? b - a : a - b);
        }
        return result;
    }

    Plane<const Lum8u> src_;
    Plane<Lum8u> marker_;
    int64_t width_, height_;
    Lum32u norm_;
    LumiSegmentFlag flag_;
    Room room_;
    Lum8u* work_;
    LevelQueues queues_;
};

template <int channels>
LumStatus gradient(Plane<const Lum8u> src, Plane<Lum8u> marker, LumiSize size, Lum32u norm, LumiSegmentFlag flag,
                   Lum8u* pBuffer)
{
    const auto checks = Checks{}
                            .notNull(src.pixels, marker.pixels, pBuffer)
                            .size(size)
                            .step(src, rowElements(size.width, channels))
                            .step(marker, size.width)
                            .require(norm <= 1, lumErrArgument);
    if (checks.failed())
        return checks.status();
    if (size.width >= 3 && size.height >= 3)
        GradientFlood<channels>(src, marker, size, norm, flag, pBuffer).run();
    return lumOk;
}

LumStatus bufferSize(LumiSize size, Lum32s* pBufferSize)
{
    const auto checks = Checks{}.notNull(pBufferSize).size(size);
    if (checks.failed())
        return checks.status();
    return storeSize(17 * (Bytes{size.width} * size.height) + 115, pBufferSize);
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiSegmentGradientGetBufferSize_8u_C1R(LumiSize roiSize, Lum32s* pBufferSize)
{
    return bufferSize(roiSize, pBufferSize);
}

LumStatus lumiSegmentGradientGetBufferSize_8u_C3R(LumiSize roiSize, Lum32s* pBufferSize)
{
    return bufferSize(roiSize, pBufferSize);
}

LumStatus lumiSegmentGradient_8u_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pMarker, Lum32s markerStep,
                                      LumiSize roiSize, Lum32u norm, LumiSegmentFlag flag, Lum8u* pBuffer)
{
    return gradient<1>(source(pSrc, srcStep), destination(pMarker, markerStep), roiSize, norm, flag, pBuffer);
}

LumStatus lumiSegmentGradient_8u_C3IR(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pMarker, Lum32s markerStep,
                                      LumiSize roiSize, Lum32u norm, LumiSegmentFlag flag, Lum8u* pBuffer)
{
    return gradient<3>(source(pSrc, srcStep), destination(pMarker, markerStep), roiSize, norm, flag, pBuffer);
}
