// Means and standard deviations. What is summed stands in moments.hpp; here is what is made of it.
#include "frame/checks.hpp"
#include "lumcv/stats.h"
#include "stats/channel_checks.hpp"
#include "stats/moments.hpp"

namespace lumcv {
namespace {

/// lumiMean_*, which always has a mask.
template <class T, int channels>
LumStatus writeMean(Checks checks, Channel<T, channels> source, Plane<const Lum8u> mask, LumiSize roiSize,
                    Lum64f* pMean)
{
    if (checks.failed())
        return checks.status();
    const auto moments = momentsOf<channels, false>(roiSize, source.plane(), mask);
    *pMean = moments.count == 0 ? 0.0 : static_cast<Lum64f>(moments.sum) / static_cast<Lum64f>(moments.count);
    return lumOk;
}

template <class T, int channels>
LumStatus mean(Channel<T, channels> source, Plane<const Lum8u> mask, LumiSize roiSize, Lum64f* pMean)
{
    return writeMean(Checks{}.notNull(pMean).then(channelChecks(source, roiSize, mask).status()), source, mask, roiSize,
                     pMean);
}

/// The number of pixels without a mask. That of floats is a 32-bit product, as documented.
template <class T>
Lum64f pixelCount(LumiSize size)
{
    if constexpr (std::is_same_v<T, Lum32f>)
        return static_cast<Lum32s>(static_cast<Lum32u>(size.width) * static_cast<Lum32u>(size.height));
    else
        return static_cast<Lum64f>(static_cast<int64_t>(size.width) * size.height);
}

template <class T, int channels, class... Mask>
LumStatus meanAndDeviation(Channel<T, channels> source, LumiSize roiSize, Lum64f* pMean, Lum64f* pStdDev,
                           Plane<const Mask>... mask)
{
    const auto checks = channelChecks(source, roiSize, mask...);
    if (checks.failed())
        return checks.status();

    const auto moments = momentsOf<channels, true>(roiSize, source.plane(), mask...);
    const Lum64f count = sizeof...(mask) == 0 ? pixelCount<T>(roiSize) : static_cast<Lum64f>(moments.count);
    Lum64f mean = 0.0;
    Lum64f deviation = 0.0;
    if (sizeof...(mask) == 0 || moments.count != 0) {
        const Lum64f scale = 1.0 / count;
        mean = static_cast<Lum64f>(moments.sum) * scale;
        deviation = __builtin_sqrt(__builtin_fabs(static_cast<Lum64f>(moments.squares) * scale - mean * mean));
    }
    if constexpr (std::is_same_v<T, Lum32f>) {
        // the difference has cancelled too much of an image that is nearly constant
        if (pStdDev && mean * mean * 0.05 > deviation * deviation)
            deviation = __builtin_sqrt(
                squaredDistances<channels>(roiSize, static_cast<Lum32f>(mean), source.plane(), mask...) / count);
    }
    if (pMean)
        *pMean = mean;
    if (pStdDev)
        *pStdDev = deviation;
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiMean_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                           Lum64f* pMean)
{
    return mean(wholeImage(pSrc, srcStep), source(pMask, maskStep), roiSize, pMean);
}

LumStatus lumiMean_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                            Lum64f* pMean)
{
    const auto image = source(pSrc, srcStep);
    const auto mask = source(pMask, maskStep);
    // the source is done with before the mask is looked at
    auto checks = Checks{}.notNull(pSrc, pMask, pMean).size(roiSize);
    checks.step(image, roiSize.width).alignment(image).step(mask, roiSize.width);
    return writeMean(checks, wholeImage(pSrc, srcStep), mask, roiSize, pMean);
}

LumStatus lumiMean_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                            Lum64f* pMean)
{
    return mean(wholeImage(pSrc, srcStep), source(pMask, maskStep), roiSize, pMean);
}

LumStatus lumiMean_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                            Lum32s coi, Lum64f* pMean)
{
    return mean(channelOfInterest(pSrc, srcStep, coi), source(pMask, maskStep), roiSize, pMean);
}

LumStatus lumiMean_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                             Lum32s coi, Lum64f* pMean)
{
    return mean(channelOfInterest(pSrc, srcStep, coi), source(pMask, maskStep), roiSize, pMean);
}

LumStatus lumiMean_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                             Lum32s coi, Lum64f* pMean)
{
    return mean(channelOfInterest(pSrc, srcStep, coi), source(pMask, maskStep), roiSize, pMean);
}

LumStatus lumiMean_StdDev_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum64f* pMean, Lum64f* pStdDev)
{
    return meanAndDeviation(wholeImage(pSrc, srcStep), roiSize, pMean, pStdDev);
}

LumStatus lumiMean_StdDev_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum64f* pMean, Lum64f* pStdDev)
{
    return meanAndDeviation(wholeImage(pSrc, srcStep), roiSize, pMean, pStdDev);
}

LumStatus lumiMean_StdDev_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum64f* pMean, Lum64f* pStdDev)
{
    return meanAndDeviation(wholeImage(pSrc, srcStep), roiSize, pMean, pStdDev);
}

LumStatus lumiMean_StdDev_8u_C3CR(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s coi, Lum64f* pMean,
                                  Lum64f* pStdDev)
{
    return meanAndDeviation(channelOfInterest(pSrc, srcStep, coi), roiSize, pMean, pStdDev);
}

LumStatus lumiMean_StdDev_16u_C3CR(const Lum16u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s coi, Lum64f* pMean,
                                   Lum64f* pStdDev)
{
    return meanAndDeviation(channelOfInterest(pSrc, srcStep, coi), roiSize, pMean, pStdDev);
}

LumStatus lumiMean_StdDev_32f_C3CR(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s coi, Lum64f* pMean,
                                   Lum64f* pStdDev)
{
    return meanAndDeviation(channelOfInterest(pSrc, srcStep, coi), roiSize, pMean, pStdDev);
}

LumStatus lumiMean_StdDev_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                  LumiSize roiSize, Lum64f* pMean, Lum64f* pStdDev)
{
    return meanAndDeviation(wholeImage(pSrc, srcStep), roiSize, pMean, pStdDev, source(pMask, maskStep));
}

LumStatus lumiMean_StdDev_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                   LumiSize roiSize, Lum64f* pMean, Lum64f* pStdDev)
{
    return meanAndDeviation(wholeImage(pSrc, srcStep), roiSize, pMean, pStdDev, source(pMask, maskStep));
}

LumStatus lumiMean_StdDev_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                   LumiSize roiSize, Lum64f* pMean, Lum64f* pStdDev)
{
    return meanAndDeviation(wholeImage(pSrc, srcStep), roiSize, pMean, pStdDev, source(pMask, maskStep));
}

LumStatus lumiMean_StdDev_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                   LumiSize roiSize, Lum32s coi, Lum64f* pMean, Lum64f* pStdDev)
{
    return meanAndDeviation(channelOfInterest(pSrc, srcStep, coi), roiSize, pMean, pStdDev, source(pMask, maskStep));
}

LumStatus lumiMean_StdDev_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                    LumiSize roiSize, Lum32s coi, Lum64f* pMean, Lum64f* pStdDev)
{
    return meanAndDeviation(channelOfInterest(pSrc, srcStep, coi), roiSize, pMean, pStdDev, source(pMask, maskStep));
}

LumStatus lumiMean_StdDev_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                    LumiSize roiSize, Lum32s coi, Lum64f* pMean, Lum64f* pStdDev)
{
    return meanAndDeviation(channelOfInterest(pSrc, srcStep, coi), roiSize, pMean, pStdDev, source(pMask, maskStep));
}
