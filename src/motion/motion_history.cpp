// The motion history: a float image of time stamps. What moves gets the present time, what is too old becomes 0.
#include "frame/checks.hpp"
#include "lumcv/motion.h"
#include "simd/simd.hpp"

namespace lumcv {
namespace {

/// A register of bytes of the silhouette at the base level.
constexpr int lanesPerStep = 16;

/// Whether a silhouette is set anywhere. A float of minus zero counts here, and is found not to be set afterwards.
template <int N, class T>
[[gnu::always_inline]] inline bool anyMoves(const T* moves)
{
    if constexpr (std::is_integral_v<T>)
        return simd::anyNonZero(simd::load<N>(moves));
    else
        return simd::anyBitDiffers(simd::load<N>(moves), simd::broadcast<N>(0.0f));
}

template <class T>
[[gnu::flatten]] LumStatus updateHistory(Plane<const T> silhouette, Plane<Lum32f> history, LumiSize roiSize,
                                         Lum32f timestamp, Lum32f duration)
{
    const auto checks = Checks{}
                            .notNull(silhouette.pixels, history.pixels)
                            .size(roiSize)
                            .step(silhouette, roiSize.width)
                            .step(history, roiSize.width)
                            .alignment(history)
                            .alignment(silhouette)
                            .require(!(duration < 0), lumErrOutOfRange);
    if (checks.failed())
        return checks.status();
    const Lum32f limit = timestamp - duration;
    for (int64_t y = 0; y < roiSize.height; ++y) {
        const T* const moves = silhouette.row(y);
        Lum32f* const stamps = history.row(y);
        // the processor does not see a row's next page coming
        const bool isLast = y + 1 == roiSize.height;
        const int64_t ahead = isLast ? 0 : history.step, movesAhead = isLast ? 0 : silhouette.step;
        simd::eachOnce<lanesPerStep>(0, roiSize.width, [=](int64_t x, auto lanes) {
            if constexpr (lanes > 1) {
                simd::prefetch<lanes>(static_cast<const Lum32f*>(rowAt(stamps + x, ahead, 1)));
                simd::prefetch<lanes>(rowAt(moves + x, movesAhead, 1));
            }
            const auto zero = simd::broadcast<lanes>(0.0f);
            const auto before = simd::load<lanes>(stamps + x);
            const auto kept = simd::select(simd::less(before, simd::broadcast<lanes>(limit)), zero, before);
            if (anyMoves<lanes>(moves + x)) {
                const auto still = simd::equal(simd::loadFloat<lanes>(moves + x), zero);
                simd::store(stamps + x, simd::select(still, kept, simd::broadcast<lanes>(timestamp)));
            } else if (simd::anyBitDiffers(before, kept))  // what stays need not go back to memory
                simd::store(stamps + x, kept);
        });
    }
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiUpdateMotionHistory_8u32f_C1IR(const Lum8u* pSilhouette, Lum32s silhouetteStep, Lum32f* pMHI,
                                             Lum32s mhiStep, LumiSize roiSize, Lum32f timestamp, Lum32f mhiDuration)
{
    return updateHistory(source(pSilhouette, silhouetteStep), destination(pMHI, mhiStep), roiSize, timestamp,
                         mhiDuration);
}

LumStatus lumiUpdateMotionHistory_16u32f_C1IR(const Lum16u* pSilhouette, Lum32s silhouetteStep, Lum32f* pMHI,
                                              Lum32s mhiStep, LumiSize roiSize, Lum32f timestamp, Lum32f mhiDuration)
{
    return updateHistory(source(pSilhouette, silhouetteStep), destination(pMHI, mhiStep), roiSize, timestamp,
                         mhiDuration);
}

LumStatus lumiUpdateMotionHistory_32f_C1IR(const Lum32f* pSilhouette, Lum32s silhouetteStep, Lum32f* pMHI,
                                           Lum32s mhiStep, LumiSize roiSize, Lum32f timestamp, Lum32f mhiDuration)
{
    return updateHistory(source(pSilhouette, silhouetteStep), destination(pMHI, mhiStep), roiSize, timestamp,
                         mhiDuration);
}
