// Accumulation of a stream of frames in a 32f image: sums, sums of squares, sums of products, running averages; with or
// without a mask. All of them are d + term * factor in single precision, each operation rounded by itself.
#include "frame/checks.hpp"
#include "frame/elementwise.hpp"
#include "lumcv/frame.h"

namespace lumcv {
namespace {

// The terms, of the destination and the source pixels.

struct Sample
{
    template <class V>
    V operator()(V, V s) const
    {
        return s;
    }
};

struct Square
{
    template <class V>
    V operator()(V, V s) const
    {
        return s * s;
    }
};

struct Product
{
    template <class V>
    V operator()(V, V s1, V s2) const
    {
        return s1 * s2;
    }
};

struct Deviation
{
    template <class V>
    V operator()(V d, V s) const
    {
        return s - d;
    }
};

/// One register of accumulators, or two where a register of bytes feeds them.
inline constexpr int lanesPerStep = 16;

/// The strides of the sources, the mask (if any) and the accumulator, in the documented order: 16u sources are done
/// with before the rest begins.
template <class... Sources>
Checks& strides(Checks& checks, LumiSize roiSize, const Plane<const Lum8u>* mask, Plane<Lum32f> inOut, Sources... src)
{
    (checks.step(src, roiSize.width), ...);
    if constexpr (((sizeof(*src.pixels) == sizeof(Lum16u)) && ...))
        (checks.alignment(src), ...);
    if (mask)
        checks.step(*mask, roiSize.width);
    checks.step(inOut, roiSize.width);
    (checks.alignment(src), ...);
    return checks.alignment(inOut);
}

template <class Term, class... Sources>
LumStatus accumulate(Term term, Lum32f factor, Plane<Lum32f> inOut, LumiSize roiSize, Sources... src)
{
    auto checks = Checks{}.notNull(src.pixels..., inOut.pixels).size(roiSize);
    if (strides(checks, roiSize, nullptr, inOut, src...).failed())
        return checks.status();
    const auto kernel = [=](auto lanes, Lum32f* d, auto*... s) {
        const auto before = simd::load<lanes>(d);
        simd::store(d, before + term(before, simd::loadFloat<lanes>(s)...) * simd::broadcast<lanes>(factor));
    };
    eachElement<lanesPerStep>(roiSize, kernel, inOut, src...);
    return lumOk;
}

/// A zero mask byte makes the factor 0.0 and nothing else: the destination is rewritten, and a source that is not
/// finite spoils it.
template <class Term, class... Sources>
LumStatus accumulateMasked(Term term, Lum32f factor, Plane<const Lum8u> mask, Plane<Lum32f> inOut, LumiSize roiSize,
                           Sources... src)
{
    auto checks = Checks{}.notNull(src.pixels..., mask.pixels, inOut.pixels).size(roiSize);
    if (strides(checks, roiSize, &mask, inOut, src...).failed())
        return checks.status();
    const auto kernel = [=](auto lanes, Lum32f* d, const Lum8u* m, auto*... s) {
        const auto before = simd::load<lanes>(d);
        const auto factors = simd::keepWhere(m, simd::broadcast<lanes>(factor));
        simd::store(d, before + term(before, simd::loadFloat<lanes>(s)...) * factors);
    };
    eachElement<lanesPerStep>(roiSize, kernel, inOut, mask, src...);
    return lumOk;
}

/// dst = s2 + (s1 - s2) * alpha.
LumStatus blend(Plane<const Lum32f> src1, Plane<const Lum32f> src2, Plane<Lum32f> dst, LumiSize roiSize, Lum32f alpha)
{
    auto checks = Checks{}.notNull(src1.pixels, src2.pixels, dst.pixels).size(roiSize);
    if (strides(checks, roiSize, nullptr, dst, src1, src2).failed())
        return checks.status();
    const auto kernel = [alpha](auto lanes, Lum32f* d, const Lum32f* s1, const Lum32f* s2) {
        const auto from = simd::load<lanes>(s2);
        simd::store(d, from + (simd::load<lanes>(s1) - from) * simd::broadcast<lanes>(alpha));
    };
    eachElement<lanesPerStep>(roiSize, kernel, dst, src1, src2);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiAdd_8u32f_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize)
{
    return accumulate(Sample{}, 1.0f, destination(pSrcDst, srcDstStep), roiSize, source(pSrc, srcStep));
}

LumStatus lumiAdd_16u32f_C1IR(const Lum16u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize)
{
    return accumulate(Sample{}, 1.0f, destination(pSrcDst, srcDstStep), roiSize, source(pSrc, srcStep));
}

LumStatus lumiAdd_8u32f_C1IMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, Lum32f* pSrcDst,
                              Lum32s srcDstStep, LumiSize roiSize)
{
    return accumulateMasked(Sample{}, 1.0f, source(pMask, maskStep), destination(pSrcDst, srcDstStep), roiSize,
                            source(pSrc, srcStep));
}

LumStatus lumiAdd_16u32f_C1IMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, Lum32f* pSrcDst,
                               Lum32s srcDstStep, LumiSize roiSize)
{
    return accumulateMasked(Sample{}, 1.0f, source(pMask, maskStep), destination(pSrcDst, srcDstStep), roiSize,
                            source(pSrc, srcStep));
}

LumStatus lumiAdd_32f_C1IMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, Lum32f* pSrcDst,
                            Lum32s srcDstStep, LumiSize roiSize)
{
    return accumulateMasked(Sample{}, 1.0f, source(pMask, maskStep), destination(pSrcDst, srcDstStep), roiSize,
                            source(pSrc, srcStep));
}

LumStatus lumiAddSquare_8u32f_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                   LumiSize roiSize)
{
    return accumulate(Square{}, 1.0f, destination(pSrcDst, srcDstStep), roiSize, source(pSrc, srcStep));
}

LumStatus lumiAddSquare_16u32f_C1IR(const Lum16u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                    LumiSize roiSize)
{
    return accumulate(Square{}, 1.0f, destination(pSrcDst, srcDstStep), roiSize, source(pSrc, srcStep));
}

LumStatus lumiAddSquare_32f_C1IR(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                 LumiSize roiSize)
{
    return accumulate(Square{}, 1.0f, destination(pSrcDst, srcDstStep), roiSize, source(pSrc, srcStep));
}

LumStatus lumiAddSquare_8u32f_C1IMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                    Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize)
{
    return accumulateMasked(Square{}, 1.0f, source(pMask, maskStep), destination(pSrcDst, srcDstStep), roiSize,
                            source(pSrc, srcStep));
}

LumStatus lumiAddSquare_16u32f_C1IMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                     Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize)
{
    return accumulateMasked(Square{}, 1.0f, source(pMask, maskStep), destination(pSrcDst, srcDstStep), roiSize,
                            source(pSrc, srcStep));
}

LumStatus lumiAddSquare_32f_C1IMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                  Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize)
{
    return accumulateMasked(Square{}, 1.0f, source(pMask, maskStep), destination(pSrcDst, srcDstStep), roiSize,
                            source(pSrc, srcStep));
}

LumStatus lumiAddProduct_8u32f_C1IR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                    Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize)
{
    return accumulate(Product{}, 1.0f, destination(pSrcDst, srcDstStep), roiSize, source(pSrc1, src1Step),
                      source(pSrc2, src2Step));
}

LumStatus lumiAddProduct_16u32f_C1IR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                     Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize)
{
    return accumulate(Product{}, 1.0f, destination(pSrcDst, srcDstStep), roiSize, source(pSrc1, src1Step),
                      source(pSrc2, src2Step));
}

LumStatus lumiAddProduct_32f_C1IR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                  Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize)
{
    return accumulate(Product{}, 1.0f, destination(pSrcDst, srcDstStep), roiSize, source(pSrc1, src1Step),
                      source(pSrc2, src2Step));
}

LumStatus lumiAddProduct_8u32f_C1IMR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                     const Lum8u* pMask, Lum32s maskStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                     LumiSize roiSize)
{
    return accumulateMasked(Product{}, 1.0f, source(pMask, maskStep), destination(pSrcDst, srcDstStep), roiSize,
                            source(pSrc1, src1Step), source(pSrc2, src2Step));
}

LumStatus lumiAddProduct_16u32f_C1IMR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                      const Lum8u* pMask, Lum32s maskStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                      LumiSize roiSize)
{
    return accumulateMasked(Product{}, 1.0f, source(pMask, maskStep), destination(pSrcDst, srcDstStep), roiSize,
                            source(pSrc1, src1Step), source(pSrc2, src2Step));
}

LumStatus lumiAddProduct_32f_C1IMR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                   const Lum8u* pMask, Lum32s maskStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                   LumiSize roiSize)
{
    return accumulateMasked(Product{}, 1.0f, source(pMask, maskStep), destination(pSrcDst, srcDstStep), roiSize,
                            source(pSrc1, src1Step), source(pSrc2, src2Step));
}

LumStatus lumiAddWeighted_8u32f_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                     LumiSize roiSize, Lum32f alpha)
{
    return accumulate(Deviation{}, alpha, destination(pSrcDst, srcDstStep), roiSize, source(pSrc, srcStep));
}

LumStatus lumiAddWeighted_16u32f_C1IR(const Lum16u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                      LumiSize roiSize, Lum32f alpha)
{
    return accumulate(Deviation{}, alpha, destination(pSrcDst, srcDstStep), roiSize, source(pSrc, srcStep));
}

LumStatus lumiAddWeighted_32f_C1IR(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                   LumiSize roiSize, Lum32f alpha)
{
    return accumulate(Deviation{}, alpha, destination(pSrcDst, srcDstStep), roiSize, source(pSrc, srcStep));
}

LumStatus lumiAddWeighted_8u32f_C1IMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                      Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum32f alpha)
{
    return accumulateMasked(Deviation{}, alpha, source(pMask, maskStep), destination(pSrcDst, srcDstStep), roiSize,
                            source(pSrc, srcStep));
}

LumStatus lumiAddWeighted_16u32f_C1IMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                       Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum32f alpha)
{
    return accumulateMasked(Deviation{}, alpha, source(pMask, maskStep), destination(pSrcDst, srcDstStep), roiSize,
                            source(pSrc, srcStep));
}

LumStatus lumiAddWeighted_32f_C1IMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                    Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum32f alpha)
{
    return accumulateMasked(Deviation{}, alpha, source(pMask, maskStep), destination(pSrcDst, srcDstStep), roiSize,
                            source(pSrc, srcStep));
}

LumStatus lumiAddWeighted_32f_C1R(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                  Lum32f* pDst, Lum32s dstStep, LumiSize roiSize, Lum32f alpha)
{
    return blend(source(pSrc1, src1Step), source(pSrc2, src2Step), destination(pDst, dstStep), roiSize, alpha);
}
