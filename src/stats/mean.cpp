// Means and standard deviations. What is summed stands in moments.hpp; here is what is made of it.
#include "lumcv/stats.h"
#include "stats/channel.hpp"
#include "stats/moments.hpp"

namespace lumcv {
namespace {

/// lumiMean_*, which always has a mask.
template <class T, int channels>
LumStatus writeMean(Checks checks, Channel<T, channels> source, Channel<Lum8u, 1> mask, LumiSize roiSize, Lum64f* pMean)
{
    if (checks.failed())
        return checks.status();
    const auto moments = momentsOf<channels, false>(roiSize, source.plane(), mask.plane());
    *pMean = moments.count == 0 ? 0.0 : static_cast<Lum64f>(moments.sum) / static_cast<Lum64f>(moments.count);
    return lumOk;
}

template <class T, int channels>
LumStatus mean(Channel<T, channels> source, Channel<Lum8u, 1> mask, LumiSize roiSize, Lum64f* pMean)
{
    const auto checks = Checks{}.notNull(pMean).then(channelChecks(roiSize, source, mask).status());
    return writeMean(checks, source, mask, roiSize, pMean);
}

template <class T, int channels, class... Mask>
LumStatus meanAndDeviation(Channel<T, channels> source, LumiSize roiSize, Lum64f* pMean, Lum64f* pStdDev,
                           Channel<Mask, 1>... mask)
{
    const auto checks = channelChecks(roiSize, source, mask...);
    if (checks.failed())
        return checks.status();

    const auto moments = momentsOf<channels, true>(roiSize, source.plane(), mask.plane()...);
    auto count = static_cast<Lum64f>(moments.count);
    if constexpr (std::is_same_v<T, Lum32f> && sizeof...(mask) == 0)  // a 32-bit product, as documented
        count = static_cast<Lum32s>(static_cast<Lum32u>(roiSize.width) * static_cast<Lum32u>(roiSize.height));
    Lum64f mean = 0.0;
    Lum64f deviation = 0.0;
    if (moments.count != 0) {
        const Lum64f scale = 1.0 / count;
        mean = static_cast<Lum64f>(moments.sum) * scale;
        deviation = __builtin_sqrt(__builtin_fabs(static_cast<Lum64f>(moments.squares) * scale - mean * mean));
    }
    if constexpr (std::is_same_v<T, Lum32f>) {
        // the difference has cancelled too much of an image that is nearly constant
        if (pStdDev && mean * mean * 0.05 > deviation * deviation)
            deviation = __builtin_sqrt(
                squaredDistances<channels>(roiSize, static_cast<Lum32f>(mean), source.plane(), mask.plane()...) /
                count);
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
    return mean(wholeImage(pSrc, srcStep), wholeImage(pMask, maskStep), roiSize, pMean);
}

LumStatus lumiMean_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                            Lum64f* pMean)
{
    const auto image = wholeImage(pSrc, srcStep);
    const auto mask = wholeImage(pMask, maskStep);
    // the source is done with before the mask is looked at
    auto checks = Checks{}.notNull(pSrc, pMask, pMean).size(roiSize);
    checks.step(image.image, roiSize.width).alignment(image.image).step(mask.image, roiSize.width);
    return writeMean(checks, image, mask, roiSize, pMean);
}

LumStatus lumiMean_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                            Lum64f* pMean)
{
    return mean(wholeImage(pSrc, srcStep), wholeImage(pMask, maskStep), roiSize, pMean);
}

LumStatus lumiMean_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                            Lum32s coi, Lum64f* pMean)
{
    return mean(channelOfInterest(pSrc, srcStep, coi), wholeImage(pMask, maskStep), roiSize, pMean);
}

LumStatus lumiMean_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                             Lum32s coi, Lum64f* pMean)
{
    return mean(channelOfInterest(pSrc, srcStep, coi), wholeImage(pMask, maskStep), roiSize, pMean);
}

LumStatus lumiMean_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                             Lum32s coi, Lum64f* pMean)
{
    return mean(channelOfInterest(pSrc, srcStep, coi), wholeImage(pMask, maskStep), roiSize, pMean);
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
    return meanAndDeviation(wholeImage(pSrc, srcStep), roiSize, pMean, pStdDev, wholeImage(pMask, maskStep));
}

LumStatus lumiMean_StdDev_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                   LumiSize roiSize, Lum64f* pMean, Lum64f* pStdDev)
{
    return meanAndDeviation(wholeImage(pSrc, srcStep), roiSize, pMean, pStdDev, wholeImage(pMask, maskStep));
}

LumStatus lumiMean_StdDev_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                   LumiSize roiSize, Lum64f* pMean, Lum64f* pStdDev)
{
    return meanAndDeviation(wholeImage(pSrc, srcStep), roiSize, pMean, pStdDev, wholeImage(pMask, maskStep));
}

LumStatus lumiMean_StdDev_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                   LumiSize roiSize, Lum32s coi, Lum64f* pMean, Lum64f* pStdDev)
{
    return meanAndDeviation(channelOfInterest(pSrc, srcStep, coi), roiSize, pMean, pStdDev,
                            wholeImage(pMask, maskStep));
}

LumStatus lumiMean_StdDev_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                    LumiSize roiSize, Lum32s coi, Lum64f* pMean, Lum64f* pStdDev)
{
    return meanAndDeviation(channelOfInterest(pSrc, srcStep, coi), roiSize, pMean, pStdDev,
                            wholeImage(pMask, maskStep));
}

LumStatus lumiMean_StdDev_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                    LumiSize roiSize, Lum32s coi, Lum64f* pMean, Lum64f* pStdDev)
{
    return meanAndDeviation(channelOfInterest(pSrc, srcStep, coi), roiSize, pMean, pStdDev,
                            wholeImage(pMask, maskStep));
}
