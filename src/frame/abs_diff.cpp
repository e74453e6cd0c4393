// Absolute differences of two images, and of an image and a constant.
#include "frame/checks.hpp"
#include "frame/elementwise.hpp"
#include "lumcv/frame.h"

namespace lumcv {
namespace {

/// A cache line at a time.
template <class T>
inline constexpr int lanesPerStep = 64 / static_cast<int>(sizeof(T));

template <class T>
LumStatus absDiff(Plane<const T> src1, Plane<const T> src2, Plane<T> dst, LumiSize roiSize, int channels)
{
    const Lum32s elements = rowElements(roiSize.width, channels);
    const auto checks = Checks{}
                            .notNull(src1.pixels, src2.pixels, dst.pixels)
                            .size(roiSize)
                            .step(src1, elements)
                            .step(src2, elements)
                            .step(dst, elements)
                            .alignment(src1)
                            .alignment(src2)
                            .alignment(dst);
    if (checks.failed())
        return checks.status();
    const auto kernel = [](auto lanes, T* d, const T* a, const T* b) {
        simd::store(d, simd::absoluteDifference(simd::load<lanes>(a), simd::load<lanes>(b)));
    };
    eachElement<lanesPerStep<T>>({elements, roiSize.height}, kernel, dst, src1, src2);
    return lumOk;
}

template <class T>
LumStatus absDiffConstant(Plane<const T> src, Plane<T> dst, LumiSize roiSize, T value)
{
    const auto checks = Checks{}
                            .notNull(src.pixels, dst.pixels)
                            .size(roiSize)
                            .step(src, roiSize.width)
                            .step(dst, roiSize.width)
                            .alignment(src)
                            .alignment(dst);
    if (checks.failed())
        return checks.status();
    const auto kernel = [value](auto lanes, T* d, const T* s) {
        simd::store(d, simd::absoluteDifference(simd::load<lanes>(s), simd::broadcast<lanes>(value)));
    };
    eachElement<lanesPerStep<T>>(roiSize, kernel, dst, src);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiAbsDiff_8u_C1R(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step, Lum8u* pDst,
                             Lum32s dstStep, LumiSize roiSize)
{
    return absDiff(source(pSrc1, src1Step), source(pSrc2, src2Step), destination(pDst, dstStep), roiSize, 1);
}

LumStatus lumiAbsDiff_8u_C3R(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step, Lum8u* pDst,
                             Lum32s dstStep, LumiSize roiSize)
{
    return absDiff(source(pSrc1, src1Step), source(pSrc2, src2Step), destination(pDst, dstStep), roiSize, 3);
}

LumStatus lumiAbsDiff_16u_C1R(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step, Lum16u* pDst,
                              Lum32s dstStep, LumiSize roiSize)
{
    return absDiff(source(pSrc1, src1Step), source(pSrc2, src2Step), destination(pDst, dstStep), roiSize, 1);
}

LumStatus lumiAbsDiff_32f_C1R(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step, Lum32f* pDst,
                              Lum32s dstStep, LumiSize roiSize)
{
    return absDiff(source(pSrc1, src1Step), source(pSrc2, src2Step), destination(pDst, dstStep), roiSize, 1);
}

LumStatus lumiAbsDiffC_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                              Lum32s value)
{
    return absDiffConstant(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, simd::clampTo<Lum8u>(value));
}

LumStatus lumiAbsDiffC_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep, LumiSize roiSize,
                               Lum32s value)
{
    return absDiffConstant(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, simd::clampTo<Lum16u>(value));
}

LumStatus lumiAbsDiffC_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                               Lum32f value)
{
    return absDiffConstant(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, value);
}
