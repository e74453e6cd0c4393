// The Harris response, and the suppression of lines by the same means: one way to the means, two last stages.
#include "feature/long_window.hpp"
#include "feature/short_window.hpp"
#include "filter/box.hpp"
#include "filter/derivative.hpp"
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "lumcv/feature.h"

namespace lumcv {
namespace {

struct Response
{
    static constexpr int lanes = 16;
    Plane<Lum32f> dst;
    Lum32f k, scale;

    auto row(int64_t y, int64_t begin) const
    {
        return [to = dst.row(y) + begin, k = k, scale = scale]<int N>(int64_t x, simd::Vec<Lum32f, N> a,
                                                                      simd::Vec<Lum32f, N> b, simd::Vec<Lum32f, N> c) {
            const auto trace = a + c;
            const auto rest = simd::broadcast<N>(k) * (trace * trace) + b * b;
            simd::store(to + x, (a * c - rest) * simd::broadcast<N>(scale));
        };
    }
};

struct Suppression
{
    static constexpr int lanes = 16;
    Plane<const Lum8u> feature;
    Plane<Lum8u> dst;
    Lum32f threshold;

    auto row(int64_t y, int64_t begin) const
    {
        return [from = feature.row(y) + begin, to = dst.row(y) + begin, threshold = threshold]<int N>(
                   int64_t x, simd::Vec<Lum32f, N> a, simd::Vec<Lum32f, N> b, simd::Vec<Lum32f, N> c) {
            const auto trace = a + c;
            const auto bound = (a * c - b * b) * simd::broadcast<N>(threshold);
            const auto kept =
                simd::select(simd::less(bound, trace * trace), simd::broadcast<N>(0.0f), simd::broadcast<N>(255.0f));
            simd::store(to + x, simd::min(simd::load<N>(from + x), simd::roundTo<Lum8u>(kept)));
        };
    }
};

/// What both operations hand on.
template <class S>
struct MeansCall
{
    Plane<const S> src;
    LumiSize roiSize;
    LumiFilterType filterType;
    LumiMaskSize filterMask;
    Lum32s avgWindow;
    LumiBorderType borderType;
    S borderValue;
    Lum8u* buffer;
};

constexpr bool isFilter(LumiFilterType type)
{
    return type == lumFilterSobel || type == lumFilterScharr || type == lumFilterCentralDiff;
}

constexpr bool isMaskOf(LumiFilterType type, LumiMaskSize mask)
{
    return mask == lumMask3x3 || (mask == lumMask5x5 && type == lumFilterSobel);
}

template <class S>
Gradient<S> gradient(const MeansCall<S>& call)
{
    using G = Gradients<S>;
    if (call.filterType == lumFilterScharr)
        return G::scharr3;
    if (call.filterType == lumFilterCentralDiff)
        return G::central;
    return call.filterMask == lumMask3x3 ? G::sobel3 : G::sobel5;
}

// Scratch. The margins are what a pixel needs of the image around it.

struct Margins
{
    int64_t near, far;  ///< left and top; right and bottom

    Margins(LumiMaskSize mask, int64_t window)
        : near((window - 1) / 2 + (mask == lumMask3x3 ? 1 : 2)), far(window / 2 + (mask == lumMask3x3 ? 1 : 2))
    {
    }
};

struct RegionSizes
{
    LumiMaskSize mask;
    int64_t window;
    LumDataType dataType;

    /// A region that goes through in one piece.
    Bytes core(int64_t width, int64_t height) const
    {
        const Region r = region(width, height);
        const Bytes row = roundedUp(4 * r.width, 32);
        return row * r.height * 3 + Bytes{roundedUp(productBytes() * r.width, 32)} * r.height * 2 + 64 +
               std::max(r.derivatives, r.means + row * r.height);
    }

    /// One of the tiles of an interior.
    Bytes tile(int64_t width, int64_t height) const
    {
        const Region r = region(width, height);
        return (Bytes{roundedUp(4 * r.width, 32)} * 3 + (2 * productBytes() * r.width + 62) / 64 * 64) * r.height +
               std::max(r.derivatives, r.means) + 64;
    }

  private:
    struct Region
    {
        int64_t width, height;  ///< extended to where the window reaches
        Bytes derivatives, means;
    };

    int64_t productBytes() const
    {
        return dataType == lumType8u ? 2 : 4;
    }

    Region region(int64_t width, int64_t height) const
    {
        const LumiSizeL extended{width + window - 1, height + window - 1};
        return {extended.width, extended.height, derivativeScratch(extended, mask, dataType),
                boxRows * boxLinePitch(width, window) * Bytes{sizeof(Lum32f)} + 63};
    }
};

Bytes meansScratch(LumiSize roiSize, LumiMaskSize mask, int64_t window, LumDataType dataType)
{
    const int64_t width = roiSize.width;
    const int64_t height = roiSize.height;
    const RegionSizes sizes{mask, window, dataType};
    const Margins margins(mask, window);
    if (margins.near + margins.far >= width || margins.near + margins.far >= height)
        return sizes.core(width, height);
    // pixels of a tile with what its windows reach, and the root of it
    const int64_t budget = dataType == lumType8u ? 8827 : 7111;
    const int64_t side = dataType == lumType8u ? 93 : 84;
    const int64_t t = window - 1;
    const int64_t tileWidth = roundedUp(std::max(side - t, int64_t{0}), 16);
    const int64_t tileHeight = budget / (t + tileWidth) - t;
    Bytes bytes = sizes.tile(std::min(std::max(tileWidth, 8 * window), width),
                             std::min(std::max(tileHeight, 8 * window), height));
    bytes = std::max(bytes, sizes.core(width, margins.near));
    bytes = std::max(bytes, sizes.core(width, margins.far));
    bytes = std::max(bytes, sizes.core(margins.near, height));
    return std::max(bytes, sizes.core(margins.far, height));
}

LumStatus meansSize(LumiSize roiSize, LumiMaskSize mask, Lum32s avgWindow, LumDataType dataType, Lum32s numChannels,
                    Lum32s* pBufferSize)
{
    auto checks = Checks{}
                      .notNull(pBufferSize)
                      .size(roiSize)
                      .require(isMask(mask), lumErrMaskSize)
                      .require(dataType == lumType8u || dataType == lumType32f, lumErrDataType)
                      .require(numChannels == 1, lumErrChannels)
                      .require(avgWindow >= 1, lumErrSize);
    if (checks.failed())
        return checks.status();
    return storeSize(meansScratch(roiSize, mask, avgWindow, dataType), pBufferSize);
}

/// Whether running sums of the products are exact, whatever their order: so are those over the few pixels of a short
/// window.
template <class S>
bool isExact(const TensorImage<S>& image)
{
    constexpr int64_t largestExact = 1 << 24;
    const int64_t product = int64_t{image.gradient.largest} * image.gradient.largest;
    return sizeof(S) == 1 && image.window <= 3 && image.window * (image.window + 1) * product <= largestExact;
}

template <class S, class Last>
void eachMeans(const MeansCall<S>& call, const Last& last)
{
    const Border border(call.borderType);
    const TensorImage<S> image{call.src, widened(call.roiSize), gradient(call), border, call.borderValue, border,
                               0,        call.avgWindow};
    const Bytes bytes =
        meansScratch(call.roiSize, call.filterMask, call.avgWindow, sizeof(S) == 1 ? lumType8u : lumType32f);
    LineSpace<Lum8u> space(call.buffer, fits<Lum32s>(bytes) ? static_cast<int64_t>(bytes) : 0);
    const auto size = static_cast<Lum32f>(call.avgWindow);
    const Lum32f factor = 1.0f / (size * size);
    if (call.avgWindow == 1)
        shortWindowMeans<1>(image, last, factor, space);
    else if (!isExact(image))
        longWindowMeans(image, last, space);
    else if constexpr (sizeof(S) == 1) {
        if (call.avgWindow == 2)
            shortWindowMeans<2>(image, last, factor, space);
        else
            shortWindowMeans<3>(image, last, factor, space);
    }
}

template <class S>
LumStatus harris(const MeansCall<S>& call, Plane<Lum32f> dst, Lum32f k, Lum32f scale)
{
    const LumStatus status =
        Checks{}
            .notNull(call.src.pixels, dst.pixels, call.buffer)
            .size(call.roiSize)
            .alignment(call.src)
            .alignment(dst)
            .require(isFilter(call.filterType), lumErrFilterType)
            .require(isMaskOf(call.filterType, call.filterMask), lumErrMaskSize)
            .require(isFilterBorder(call.borderType), lumErrBorder)
            .require(call.avgWindow >= 1, lumErrSize)
            .step(call.src, call.roiSize.width)
            .step(dst, call.roiSize.width)
            .require(sizeof(S) == 1 || static_cast<const void*>(call.src.pixels) != dst.pixels, lumErrInPlace)
            .status();
    if (status != lumOk)
        return status;
    const auto window = static_cast<Lum32u>(call.avgWindow);
    const Lum32u fourthPower = (window * window) * (window * window);
    const auto factor = static_cast<Lum32f>(static_cast<Lum64f>(scale) * static_cast<Lum64f>(fourthPower));
    eachMeans(call, Response{dst, k, factor});
    return lumOk;
}

LumStatus suppressLines(const MeansCall<Lum8u>& call, Plane<const Lum8u> feature, Plane<Lum8u> dst, Lum32f threshold)
{
    const LumStatus status = Checks{}
                                 .notNull(call.src.pixels, feature.pixels, dst.pixels, call.buffer)
                                 .size(call.roiSize)
                                 .require(isFilter(call.filterType), lumErrFilterType)
                                 .require(isMaskOf(call.filterType, call.filterMask), lumErrMaskSize)
                                 .require(isUnmirroredBorder(call.borderType), lumErrBorder)
                                 .require(call.avgWindow >= 1, lumErrSize)
                                 .require(call.src.step >= 0 && feature.step >= 0 && dst.step >= 0, lumErrStep)
                                 .require(feature.pixels != dst.pixels, lumErrInPlace)
                                 .status();
    if (status != lumOk)
        return status;
    eachMeans(call, Suppression{feature, dst, threshold});
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiHarrisCornerGetBufferSize(LumiSize roiSize, LumiMaskSize filterMask, Lum32s avgWindow,
                                        LumDataType dataType, Lum32s numChannels, Lum32s* pBufferSize)
{
    return meansSize(roiSize, filterMask, avgWindow, dataType, numChannels, pBufferSize);
}

LumStatus lumiHarrisCorner_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                   LumiFilterType filterType, LumiMaskSize filterMask, Lum32s avgWindow, Lum32f k,
                                   Lum32f scale, LumiBorderType borderType, Lum32f borderValue, Lum8u* pBuffer)
{
    return harris(MeansCall<Lum32f>{source(pSrc, srcStep), roiSize, filterType, filterMask, avgWindow, borderType,
                                    borderValue, pBuffer},
                  destination(pDst, dstStep), k, scale);
}

LumStatus lumiHarrisCorner_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                     LumiFilterType filterType, LumiMaskSize filterMask, Lum32s avgWindow, Lum32f k,
                                     Lum32f scale, LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer)
{
    return harris(MeansCall<Lum8u>{source(pSrc, srcStep), roiSize, filterType, filterMask, avgWindow, borderType,
                                   borderValue, pBuffer},
                  destination(pDst, dstStep), k, scale);
}

LumStatus lumiLineSuppressionGetBufferSize(LumiSize roiSize, LumiMaskSize filterMask, Lum32s avgWindow,
                                           LumDataType dataType, Lum32s numChannels, Lum32s* pBufferSize)
{
    return meansSize(roiSize, filterMask, avgWindow, dataType, numChannels, pBufferSize);
}

LumStatus lumiLineSuppression_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pFeature, Lum32s featureStep,
                                     Lum8u* pDst, Lum32s dstStep, LumiSize roiSize, LumiFilterType filterType,
                                     LumiMaskSize filterMask, Lum32s avgWindow, Lum32f threshold,
                                     LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer)
{
    return suppressLines(MeansCall<Lum8u>{source(pSrc, srcStep), roiSize, filterType, filterMask, avgWindow, borderType,
                                          borderValue, pBuffer},
                         source(pFeature, featureStep), destination(pDst, dstStep), threshold);
}
