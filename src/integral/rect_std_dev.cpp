// The deviation under a rectangle at each pixel: four corners of a table of sums and of one of squares.
#include <algorithm>

#include "frame/checks.hpp"
#include "lumcv/integral.h"
#include "simd/simd.hpp"

namespace lumcv {
namespace {

/// Where the corners lie from a pixel's entry: rows and columns.
struct Corners
{
    int64_t y[4], x[4];
    int64_t area;
};

Corners uprightCorners(LumiRect rect)
{
    const int64_t x = rect.x, y = rect.y, w = rect.width, h = rect.height;
    return {{y, y, y + h, y + h}, {x, x + w, x, x + w}, w * h};
}

Corners tiltedCorners(LumiRect rect)
{
    const int64_t x = rect.x, y = rect.y, w = rect.width, h = rect.height;
    return {{x + y, x + y + h, x + y + w, x + y + w + h}, {x - y, x - y - h, x - y + w, x - y + w - h}, 2 * w * h};
}

/// One row of a table at the four corners.
template <class T>
struct CornerRows
{
    CornerRows(Plane<const T> table, const Corners& corners, int64_t y)
        : first(table.row(y + corners.y[0]) + corners.x[0]),
          second(table.row(y + corners.y[1]) + corners.x[1]),
          third(table.row(y + corners.y[2]) + corners.x[2]),
          fourth(table.row(y + corners.y[3]) + corners.x[3])
    {
    }

    /// combine(first, second, third, fourth) of the entries from x on.
    template <int N, class Combine>
    [[gnu::always_inline]] auto at(int64_t x, Combine combine) const
    {
        return combine(simd::load<N>(first + x), simd::load<N>(second + x), simd::load<N>(third + x),
                       simd::load<N>(fourth + x));
    }

    const T *first, *second, *third, *fourth;
};

// Orders of the additions.

constexpr auto oneByOne = [](auto first, auto second, auto third, auto fourth) {
    return first - second - third + fourth;
};
constexpr auto byPairs = [](auto first, auto second, auto third, auto fourth) {
    return (first - second) + (fourth - third);
};
constexpr auto middleFirst = [](auto first, auto second, auto third, auto fourth) {
    return first - (second + third) + fourth;
};

/// a where it is above 0, otherwise 0.
template <class T, int N>
[[gnu::always_inline]] inline simd::Vec<T, N> positive(simd::Vec<T, N> a)
{
    return simd::max(a, simd::broadcast<N>(T{0}));
}

template <int N>
[[gnu::always_inline]] inline simd::Vec<Lum32f, N> varianceOf(simd::Vec<Lum64f, N> mean, simd::Vec<Lum64f, N> meanSqr)
{
    return simd::toSingle(positive(meanSqr - mean * mean));
}

// The forms. Each is made for an area; a group and a pixel of the tail are its functions of the rows and a column.

/// Lanes of a group; in the upright float forms it decides the order of additions.
inline constexpr int groupLanes = 8;

struct UprightFloat
{
    explicit UprightFloat(int64_t area) : inverse(1.0 / static_cast<Lum64f>(static_cast<Lum32f>(area))) {}

    template <int N>
    [[gnu::always_inline]] auto operator()(simd::Lanes<N>, const CornerRows<Lum32f>& sums,
                                           const CornerRows<Lum64f>& squares, int64_t x) const
    {
        const auto scale = simd::broadcast<N>(inverse);
        const auto deviation = [&](auto order) {
            const auto mean = simd::toDouble(sums.at<N>(x, order)) * scale;
            const auto meanSqr = squares.at<N>(x, order) * scale;
            return simd::root(positive(simd::toSingle(meanSqr - mean * mean)));
        };
        if constexpr (N == 1)
            return deviation(byPairs);
        else
            return deviation(oneByOne);
    }

    Lum64f inverse;
};

struct UprightMixed
{
    explicit UprightMixed(int64_t pixels) : area(static_cast<Lum64f>(pixels)) {}

    template <int N>
    [[gnu::always_inline]] auto operator()(simd::Lanes<N>, const CornerRows<Lum32s>& sums,
                                           const CornerRows<Lum64f>& squares, int64_t x) const
    {
        const auto singleArea = simd::broadcast<N>(static_cast<Lum32f>(area));
        const auto mean = simd::toFloat(sums.at<N>(x, oneByOne)) / singleArea;
        const auto meanSqr = [&] {
            if constexpr (N == 1)
                return simd::toSingle(squares.at<N>(x, oneByOne) / simd::broadcast<N>(area));
            else
                return squares.at<N>(x, [](auto... corners) { return oneByOne(simd::toSingle(corners)...); }) /
                       singleArea;
        }();
        // a not-a-number is not below 0
        return simd::root(simd::max(simd::broadcast<N>(0.0f), meanSqr - mean * mean));
    }

    Lum64f area;
};

struct TiltedFloat
{
    explicit TiltedFloat(int64_t area) : inverse(1.0 / static_cast<Lum64f>(area)) {}

    template <int N>
    [[gnu::always_inline]] auto operator()(simd::Lanes<N>, const CornerRows<Lum32f>& sums,
                                           const CornerRows<Lum64f>& squares, int64_t x) const
    {
        const auto scale = simd::broadcast<N>(inverse);
        const auto sum = sums.at<N>(x, [](auto... corners) { return middleFirst(simd::toDouble(corners)...); });
        return simd::root(varianceOf(sum * scale, squares.at<N>(x, middleFirst) * scale));
    }

    Lum64f inverse;
};

/// The mean of integers under a rectangle: a sum modulo 2^32, then single precision.
struct IntegerMean
{
    explicit IntegerMean(int64_t area) : inverse(1.0f / static_cast<Lum32f>(area)) {}

    template <int N>
    [[gnu::always_inline]] simd::Vec<Lum32f, N> at(const CornerRows<Lum32s>& sums, int64_t x) const
    {
        return simd::toFloat(sums.at<N>(x, middleFirst)) * simd::broadcast<N>(inverse);
    }

    Lum32f inverse;
};

struct TiltedMixed
{
    explicit TiltedMixed(int64_t area) : mean(area), inverse(1.0 / static_cast<Lum64f>(area)) {}

    template <int N>
    [[gnu::always_inline]] auto operator()(simd::Lanes<N>, const CornerRows<Lum32s>& sums,
                                           const CornerRows<Lum64f>& squares, int64_t x) const
    {
        return simd::root(varianceOf(simd::toDouble(mean.at<N>(sums, x)),
                                     squares.at<N>(x, middleFirst) * simd::broadcast<N>(inverse)));
    }

    IntegerMean mean;
    Lum64f inverse;
};

/// The scale of an integer result and its rounding, half up.
struct Scaled
{
    explicit Scaled(Lum32s scaleFactor)
    {
        const auto magnitude = static_cast<Lum32u>(scaleFactor < 0 ? -static_cast<int64_t>(scaleFactor) : scaleFactor);
        const Lum64f power = static_cast<Lum64f>(Lum32u{1} << magnitude % 32);
        scale = scaleFactor < 0 ? power : 1.0 / power;
    }

    template <int N>
    [[gnu::always_inline]] simd::Vec<Lum32s, N> operator()(simd::Vec<Lum64f, N> deviation) const
    {
        return simd::truncated(deviation * simd::broadcast<N>(scale) + simd::broadcast<N>(0.5));
    }

    Lum64f scale;
};

struct UprightInteger
{
    UprightInteger(int64_t area, Lum32s scaleFactor) : mean(area), scaled(scaleFactor) {}

    template <int N>
    [[gnu::always_inline]] auto operator()(simd::Lanes<N>, const CornerRows<Lum32s>& sums,
                                           const CornerRows<Lum32s>& squares, int64_t x) const
    {
        const auto meanOfRect = mean.at<N>(sums, x);
        const auto variance = positive(mean.at<N>(squares, x) - meanOfRect * meanOfRect);
        return scaled(simd::root(simd::toDouble(variance)));
    }

    IntegerMean mean;
    Scaled scaled;
};

struct TiltedInteger
{
    TiltedInteger(int64_t area, Lum32s scaleFactor) : mean(area), scaled(scaleFactor) {}

    template <int N>
    [[gnu::always_inline]] auto operator()(simd::Lanes<N>, const CornerRows<Lum32s>& sums,
                                           const CornerRows<Lum32s>& squares, int64_t x) const
    {
        const auto variance = varianceOf(simd::toDouble(mean.at<N>(sums, x)), simd::toDouble(mean.at<N>(squares, x)));
        // the double root of a single-precision number, rounded to single, is its single root
        return scaled(simd::toDouble(simd::root(variance)));
    }

    IntegerMean mean;
    Scaled scaled;
};

template <class Form, class P, class Q, class D>
[[gnu::flatten]] void deviations(Form form, Plane<const P> src, Plane<const Q> sqr, Plane<D> dst, LumiSize roiSize,
                                 const Corners& corners)
{
    for (int64_t y = 0; y < roiSize.height; ++y) {
        const CornerRows<P> sums(src, corners, y);
        const CornerRows<Q> squares(sqr, corners, y);
        D* const row = dst.row(y);
        int64_t x = 0;
        for (; x + groupLanes <= roiSize.width; x += groupLanes)
            simd::store(row + x, form(simd::Lanes<groupLanes>{}, sums, squares, x));
        for (; x < roiSize.width; ++x)
            simd::store(row + x, form(simd::Lanes<1>{}, sums, squares, x));
    }
}

/// Columns of a table that rectangles take, counted in 32 bits.
template <class... Lengths>
Lum32s columns(Lengths... lengths)
{
    return static_cast<Lum32s>((static_cast<Lum32u>(lengths) + ...));
}

template <class P, class Q, class D>
LumStatus check(Plane<const P> src, Plane<const Q> sqr, Plane<D> dst, LumiSize roiSize, LumiRect rect,
                Lum32s tableColumns)
{
    return Checks{}
        .notNull(src.pixels, sqr.pixels, dst.pixels)
        .size(roiSize)
        .step(src, tableColumns)
        .step(dst, roiSize.width)
        .step(sqr, tableColumns)
        .alignment(src)
        .alignment(dst)
        .alignment(sqr)
        .require(rect.x >= 0 && rect.y >= 0 && rect.width >= 1 && rect.height >= 1, lumErrSize)
        .status();
}

template <class Form, class P, class Q, class D, class... Parameters>
LumStatus upright(Plane<const P> src, Plane<const Q> sqr, Plane<D> dst, LumiSize roiSize, LumiRect rect,
                  Parameters... parameters)
{
    const LumStatus status = check(src, sqr, dst, roiSize, rect, columns(rect.x, rect.width, roiSize.width));
    if (status != lumOk)
        return status;
    const Corners corners = uprightCorners(rect);
    deviations(Form(corners.area, parameters...), src, sqr, dst, roiSize, corners);
    return lumOk;
}

template <class Form, class P, class Q, class D, class... Parameters>
LumStatus tilted(Plane<const P> src, Plane<const Q> sqr, Plane<D> dst, LumiSize roiSize, LumiRect rect,
                 Parameters... parameters)
{
    const LumStatus status =
        check(src, sqr, dst, roiSize, rect, columns(rect.x, rect.y, rect.width, rect.height, roiSize.width, -1));
    if (status != lumOk)
        return status;
    const Corners corners = tiltedCorners(rect);
    deviations(Form(corners.area, parameters...), src, sqr, dst, roiSize, corners);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiRectStdDev_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, const Lum64f* pSqr, Lum32s sqrStep, Lum32f* pDst,
                                 Lum32s dstStep, LumiSize roiSize, LumiRect rect)
{
    return upright<UprightFloat>(source(pSrc, srcStep), source(pSqr, sqrStep), destination(pDst, dstStep), roiSize,
                                 rect);
}

LumStatus lumiRectStdDev_32s32f_C1R(const Lum32s* pSrc, Lum32s srcStep, const Lum64f* pSqr, Lum32s sqrStep,
                                    Lum32f* pDst, Lum32s dstStep, LumiSize roiSize, LumiRect rect)
{
    return upright<UprightMixed>(source(pSrc, srcStep), source(pSqr, sqrStep), destination(pDst, dstStep), roiSize,
                                 rect);
}

LumStatus lumiRectStdDev_32s_C1RSfs(const Lum32s* pSrc, Lum32s srcStep, const Lum32s* pSqr, Lum32s sqrStep,
                                    Lum32s* pDst, Lum32s dstStep, LumiSize roiSize, LumiRect rect, Lum32s scaleFactor)
{
    return upright<UprightInteger>(source(pSrc, srcStep), source(pSqr, sqrStep), destination(pDst, dstStep), roiSize,
                                   rect, scaleFactor);
}

LumStatus lumiTiltedRectStdDev_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, const Lum64f* pSqr, Lum32s sqrStep,
                                       Lum32f* pDst, Lum32s dstStep, LumiSize roiSize, LumiRect rect)
{
    return tilted<TiltedFloat>(source(pSrc, srcStep), source(pSqr, sqrStep), destination(pDst, dstStep), roiSize, rect);
}

LumStatus lumiTiltedRectStdDev_32s32f_C1R(const Lum32s* pSrc, Lum32s srcStep, const Lum64f* pSqr, Lum32s sqrStep,
                                          Lum32f* pDst, Lum32s dstStep, LumiSize roiSize, LumiRect rect)
{
    return tilted<TiltedMixed>(source(pSrc, srcStep), source(pSqr, sqrStep), destination(pDst, dstStep), roiSize, rect);
}

LumStatus lumiTiltedRectStdDev_32s_C1RSfs(const Lum32s* pSrc, Lum32s srcStep, const Lum32s* pSqr, Lum32s sqrStep,
                                          Lum32s* pDst, Lum32s dstStep, LumiSize roiSize, LumiRect rect,
                                          Lum32s scaleFactor)
{
    return tilted<TiltedInteger>(source(pSrc, srcStep), source(pSqr, sqrStep), destination(pDst, dstStep), roiSize,
                                 rect, scaleFactor);
}
