// Subpixel copies around a point: the rectangle may reach beyond the source, whose outermost pixels go on there.
#include <algorithm>

#include "frame/checks.hpp"
#include "geometry/subpixel_kernels.hpp"
#include "lumcv/geometry.h"

namespace lumcv {
namespace {

/// Where the destination's columns, or its rows, lie in the source.
struct Span
{
    int64_t first, last;  ///< with both their neighbours in the source
    int64_t from;         ///< the source's place of the first one
    Lum32f fraction;

    int64_t count() const
    {
        return std::max<int64_t>(last - first + 1, 0);
    }
};

/// The integer part of a number, as far as 64 bits tell it with room to spare; not a number is far below.
int64_t integerPart(Lum32f number)
{
    constexpr Lum32f far = 0x1p60f;
    if (!(number > -far))
        return -(int64_t{1} << 60);
    return static_cast<int64_t>(number < far ? number : far);
}

Span spanOf(Lum32f centre, int64_t sourceSize, int64_t size)
{
    const Lum32f begin = centre - static_cast<Lum32f>(size - 1) * 0.5f;
    const int64_t at = integerPart(begin + static_cast<Lum32f>(size)) - size;
    const Lum32f fraction = begin - static_cast<Lum32f>(at);
    const int64_t first = std::clamp<int64_t>(-at, 0, size);
    const int64_t last = std::max<int64_t>(std::min(size - 1, sourceSize - 2 - at), -1);
    return {first, last, std::clamp<int64_t>(at, 0, sourceSize - 1), fraction};
}

template <class Kernel, class D>
class Patch
{
    using S = typename Kernel::Source;

  public:
    Patch(Kernel kernel, Plane<const S> src, LumiSize srcSize, Plane<D> dst, LumiSize size, Span columns, Span rows)
        : kernel_(kernel), src_(src), srcSize_(srcSize), dst_(dst), size_(size), columns_(columns), rows_(rows)
    {
    }

    void write() const
    {
        const int64_t end = rows_.first + rows_.count();
        for (int64_t y = 0; y < rows_.first; ++y)
            writeOutside(y, 0);
        for (int64_t y = rows_.first; y < end; ++y) {
            const Plane<const S> rows{src_.row(rows_.from + y - rows_.first), src_.step};
            const auto side = [&](int64_t x) { return kernel_.alongColumn(rows.row(0)[x], rows.row(1)[x]); };
            fillSides(y, side(0), side(srcSize_.width - 1));
        }
        copy(kernel_, src_.row(rows_.from), rows_.first, rows_.count());
        for (int64_t y = end; y < size_.height; ++y)
            writeOutside(y, srcSize_.height - 1);
    }

  private:
    void writeOutside(int64_t y, int64_t srcY) const
    {
        const S* const row = src_.row(srcY);
        fillSides(y, kernel_.corner(row[0]), kernel_.corner(row[srcSize_.width - 1]));
        // the row below is the row itself and has no weight
        if (columns_.count() > 0)
            subpixel::copy(kernel_.alongRow(), Plane<const S>{row + columns_.from, 0},
                           Plane<D>{dst_.row(y) + columns_.first, dst_.step}, columns_.count(), 1);
    }

    void copy(Kernel kernel, const S* row, int64_t y, int64_t count) const
    {
        if (columns_.count() > 0 && count > 0)
            subpixel::copy(kernel, Plane<const S>{row + columns_.from, src_.step},
                           Plane<D>{dst_.row(y) + columns_.first, dst_.step}, columns_.count(), count);
    }

    void fillSides(int64_t y, D before, D behind) const
    {
        D* const row = dst_.row(y);
        const int64_t end = columns_.first + columns_.count();
        simd::fillFew<sizeof(D)>(row, &before, columns_.first);
        simd::fillFew<sizeof(D)>(row + end, &behind, size_.width - end);
    }

    Kernel kernel_;
    Plane<const S> src_;
    LumiSize srcSize_;
    Plane<D> dst_;
    LumiSize size_;
    Span columns_, rows_;
};

template <class S, class D, class... Parameters>
LumStatus copyAround(Plane<const S> src, LumiSize srcSize, Plane<D> dst, LumiSize size, LumiPoint32f point,
                     LumiPoint* pMin, LumiPoint* pMax, Parameters... parameters)
{
    const LumStatus status = Checks{}
                                 .notNull(src.pixels, dst.pixels, pMin, pMax)
                                 .size(srcSize)
                                 .size(size)
                                 .step(src, srcSize.width)
                                 .step(dst, size.width)
                                 .alignment(src)
                                 .alignment(dst)
                                 .status();
    if (status != lumOk)
        return status;
    const Span columns = spanOf(point.x, srcSize.width, size.width);
    const Span rows = spanOf(point.y, srcSize.height, size.height);
    const auto kernel = subpixel::kernelOf<S, D>(columns.fraction, rows.fraction, parameters...);
    Patch(kernel, src, srcSize, dst, size, columns, rows).write();
    *pMin = {static_cast<Lum32s>(columns.first), static_cast<Lum32s>(rows.first)};
    *pMax = {static_cast<Lum32s>(columns.last), static_cast<Lum32s>(rows.last)};
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiCopySubpixIntersect_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcRoiSize, Lum8u* pDst,
                                         Lum32s dstStep, LumiSize dstRoiSize, LumiPoint32f point, LumiPoint* pMin,
                                         LumiPoint* pMax)
{
    return copyAround(source(pSrc, srcStep), srcRoiSize, destination(pDst, dstStep), dstRoiSize, point, pMin, pMax);
}

LumStatus lumiCopySubpixIntersect_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize srcRoiSize, Lum16u* pDst,
                                          Lum32s dstStep, LumiSize dstRoiSize, LumiPoint32f point, LumiPoint* pMin,
                                          LumiPoint* pMax)
{
    return copyAround(source(pSrc, srcStep), srcRoiSize, destination(pDst, dstStep), dstRoiSize, point, pMin, pMax);
}

LumStatus lumiCopySubpixIntersect_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize srcRoiSize, Lum32f* pDst,
                                          Lum32s dstStep, LumiSize dstRoiSize, LumiPoint32f point, LumiPoint* pMin,
                                          LumiPoint* pMax)
{
    return copyAround(source(pSrc, srcStep), srcRoiSize, destination(pDst, dstStep), dstRoiSize, point, pMin, pMax);
}

LumStatus lumiCopySubpixIntersect_8u16u_C1R_Sfs(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcRoiSize, Lum16u* pDst,
                                                Lum32s dstStep, LumiSize dstRoiSize, LumiPoint32f point,
                                                LumiPoint* pMin, LumiPoint* pMax, Lum32s scaleFactor)
{
    return copyAround(source(pSrc, srcStep), srcRoiSize, destination(pDst, dstStep), dstRoiSize, point, pMin, pMax,
                      scaleFactor);
}

LumStatus lumiCopySubpixIntersect_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcRoiSize, Lum32f* pDst,
                                            Lum32s dstStep, LumiSize dstRoiSize, LumiPoint32f point, LumiPoint* pMin,
                                            LumiPoint* pMax)
{
    return copyAround(source(pSrc, srcStep), srcRoiSize, destination(pDst, dstStep), dstRoiSize, point, pMin, pMax);
}

LumStatus lumiCopySubpixIntersect_16u32f_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize srcRoiSize, Lum32f* pDst,
                                             Lum32s dstStep, LumiSize dstRoiSize, LumiPoint32f point, LumiPoint* pMin,
                                             LumiPoint* pMax)
{
    return copyAround(source(pSrc, srcStep), srcRoiSize, destination(pDst, dstStep), dstRoiSize, point, pMin, pMax);
}
