// The exports of rectangle deviation with one argument list, tables that hold exactly what a rectangle reads, and the
// comparison with the reference.
#pragma once

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "integral/deviation_reference.hpp"
#include "integral/table.hpp"
#include "lumcv/lumcv.h"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/random.hpp"

namespace lumcv::test::deviation {

/// One export and its formula. Forms without a scale factor take it and drop it.
template <class Sum, class Square, class Result>
struct Form
{
    using Call = LumStatus (*)(const Sum* pSrc, int srcStep, const Square* pSqr, int sqrStep, Result* pDst, int dstStep,
                               LumiSize roiSize, LumiRect rect, int scaleFactor);
    using Formula = Result (*)(const Corners<Sum>&, const Corners<Square>&, LumiRect, Place, int scaleFactor);

    const char* name;
    bool isTilted;
    Call call;
    Formula formula;
};

template <class Sum, LumStatus (*f)(const Sum*, int, const Lum64f*, int, Lum32f*, int, LumiSize, LumiRect)>
LumStatus withoutScale(const Sum* pSrc, int srcStep, const Lum64f* pSqr, int sqrStep, Lum32f* pDst, int dstStep,
                       LumiSize roiSize, LumiRect rect, int)
{
    return f(pSrc, srcStep, pSqr, sqrStep, pDst, dstStep, roiSize, rect);
}

using Floats = Form<Lum32f, Lum64f, Lum32f>;
using Mixed = Form<Lum32s, Lum64f, Lum32f>;
using Scaled = Form<Lum32s, Lum32s, Lum32s>;

constexpr Floats kUpright32f = {"RectStdDev_32f", false, withoutScale<Lum32f, lumiRectStdDev_32f_C1R>,
                                [](const Corners<Lum32f>& sums, const Corners<Lum64f>& squares, LumiRect rect,
                                   Place place, int) { return upright32f(sums, squares, rect, place); }};
constexpr Floats kTilted32f = {"TiltedRectStdDev_32f", true, withoutScale<Lum32f, lumiTiltedRectStdDev_32f_C1R>,
                               [](const Corners<Lum32f>& sums, const Corners<Lum64f>& squares, LumiRect rect, Place,
                                  int) { return tilted32f(sums, squares, rect); }};
constexpr Mixed kUpright32s32f = {"RectStdDev_32s32f", false, withoutScale<Lum32s, lumiRectStdDev_32s32f_C1R>,
                                  [](const Corners<Lum32s>& sums, const Corners<Lum64f>& squares, LumiRect rect,
                                     Place place, int) { return upright32s32f(sums, squares, rect, place); }};
constexpr Mixed kTilted32s32f = {"TiltedRectStdDev_32s32f", true, withoutScale<Lum32s, lumiTiltedRectStdDev_32s32f_C1R>,
                                 [](const Corners<Lum32s>& sums, const Corners<Lum64f>& squares, LumiRect rect, Place,
                                    int) { return tilted32s32f(sums, squares, rect); }};
constexpr Scaled kUpright32s = {"RectStdDev_32s", false, lumiRectStdDev_32s_C1RSfs,
                                [](const Corners<Lum32s>& sums, const Corners<Lum32s>& squares, LumiRect rect, Place,
                                   int scaleFactor) { return upright32sSfs(sums, squares, rect, scaleFactor); }};
constexpr Scaled kTilted32s = {"TiltedRectStdDev_32s", true, lumiTiltedRectStdDev_32s_C1RSfs,
                               [](const Corners<Lum32s>& sums, const Corners<Lum32s>& squares, LumiRect rect, Place,
                                  int scaleFactor) { return tilted32sSfs(sums, squares, rect, scaleFactor); }};

/// Calls f with each form in turn.
template <class F>
void forEachForm(F f)
{
    const auto visit = [&](const auto& form) {
        SCOPED_TRACE(form.name);
        f(form);
    };
    for (const Floats& form : {kUpright32f, kTilted32f}) {
        visit(form);
    }
    for (const Mixed& form : {kUpright32s32f, kTilted32s32f}) {
        visit(form);
    }
    for (const Scaled& form : {kUpright32s, kTilted32s}) {
        visit(form);
    }
}

/// What is read of a table under a rectangle.
inline Extent extentOf(bool isTilted, LumiSize roiSize, LumiRect r)
{
    return isTilted
               ? Extent{r.x + r.y, r.x - r.y - r.height, r.width + r.height + roiSize.width,
                        r.width + r.height + roiSize.height, r.x + r.y + r.width + r.height + roiSize.width - 1}
               : Extent{r.y, r.x, r.width + roiSize.width, r.height + roiSize.height, r.x + r.width + roiSize.width};
}

/// What the tables hold.
enum class Content
{
    Image,   ///< sums over a random image, so that deviations are real ones
    Random,  ///< entries without any order between them, squares large enough that half of the variances are positive
    Extreme  ///< whatever the types can hold
};

/// Fills both tables alike, as if they were windows into larger ones.
template <class Sum, class Square>
void fillTables(Content content, Random& random, Image<Sum>& sums, Image<Square>& squares)
{
    if (content == Content::Extreme) {
        fill(sums, random, Values::NonFinite);
        fill(squares, random, Values::NonFinite);
        return;
    }
    if (content == Content::Random) {
        sums.forEach(Area::Roi, [&](Sum& entry, int, int, int) {
            entry = std::is_integral_v<Sum> ? static_cast<Sum>(random.between(-30000, 30000))
                                            : static_cast<Sum>(random.value<Lum64f>(Values::Ordinary) * 30);
        });
        squares.forEach(Area::Roi, [&](Square& entry, int, int, int) {
            entry = std::is_integral_v<Square> ? static_cast<Square>(random.between(-500000000, 500000000))
                                               : static_cast<Square>(random.value<Lum64f>(Values::Ordinary) * 500000);
        });
        return;
    }
    const auto pixelBits = random.between(1, 8);
    std::vector<Lum64s> above(static_cast<std::size_t>(sums.width()), 0), aboveSquared = above;
    const Lum64s offset = random.between(-1000, 1000);
    for (int y = 0; y < sums.height(); ++y) {
        Lum64s total = 0, squareTotal = 0;
        for (int x = 0; x < sums.width(); ++x) {
            const auto pixel = static_cast<Lum64s>(random.bits() >> (64 - pixelBits));
            const auto i = static_cast<std::size_t>(x);
            above[i] += total += pixel;
            aboveSquared[i] += squareTotal += pixel * pixel;
            sums.at(x, y) = static_cast<Sum>(above[i] + offset);
            squares.at(x, y) = static_cast<Square>(aboveSquared[i] - offset);
        }
    }
}

/// The result as the reference has it, with the row in groups of eight and a tail or as if it were all of one kind.
template <class Sum, class Square, class Result, class PlaceOf>
Image<Result> expectedResult(const Form<Sum, Square, Result>& form, Table<Sum> sums, Table<Square> squares,
                             LumiSize roiSize, LumiRect rect, int scaleFactor, PlaceOf place)
{
    Image<Result> result({.width = roiSize.width, .height = roiSize.height});
    result.forEach(Area::Roi, [&](Result& deviation, int i, int j, int) {
        deviation = form.isTilted ? form.formula(tiltedCorners(sums, rect, i, j), tiltedCorners(squares, rect, i, j),
                                                 rect, place(i), scaleFactor)
                                  : form.formula(uprightCorners(sums, rect, i, j), uprightCorners(squares, rect, i, j),
                                                 rect, place(i), scaleFactor);
    });
    return result;
}

template <class Sum, class Square, class Result>
Image<Result> expectedResult(const Form<Sum, Square, Result>& form, Table<Sum> sums, Table<Square> squares,
                             LumiSize roiSize, LumiRect rect, int scaleFactor = 0)
{
    return expectedResult(form, sums, squares, roiSize, rect, scaleFactor,
                          [&](int i) { return placeOf(i, roiSize.width); });
}

/// Calls the form and compares with the reference.
template <class Sum, class Square, class Result>
testing::AssertionResult agrees(const Form<Sum, Square, Result>& form, const TableImage<Sum>& sums,
                                const TableImage<Square>& squares, Image<Result>& result, LumiRect rect,
                                int scaleFactor = 0)
{
    const LumiSize roiSize = {result.width(), result.height()};
    const LumStatus status = form.call(sums.pointer(), sums.step(), squares.pointer(), squares.step(), result.pixels(),
                                       result.step(), roiSize, rect, scaleFactor);
    if (status != lumOk) {
        return testing::AssertionFailure() << "status " << status;
    }
    const auto same =
        sameImage(expectedResult(form, sums.table(), squares.table(), roiSize, rect, scaleFactor), result);
    if (!same) {
        return testing::AssertionFailure() << same.message() << "; rectangle " << rect.x << ", " << rect.y << ", "
                                           << rect.width << " x " << rect.height << ", scale factor " << scaleFactor;
    }
    return result.gapsIntact();
}

}  // namespace lumcv::test::deviation
