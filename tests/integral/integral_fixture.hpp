// The exports of integral images of bytes, all with one argument list, and the comparison with the reference.
#pragma once

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "integral/integral_reference.hpp"
#include "lumcv/lumcv.h"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/random.hpp"

namespace lumcv::test::integral {

/// One export. Those without a table of squares take that operand and drop it.
template <class Sum, class Square>
struct Form
{
    using SumElement = Sum;
    using SquareElement = Square;
    using Call = LumStatus (*)(const Lum8u* pSrc, int srcStep, Sum* pDst, int dstStep, Square* pSqr, int sqrStep,
                               LumiSize roiSize, Sum val, Square valSqr);

    const char* name;
    bool isTilted;
    bool hasSquares;
    Call call;

    /// By how many columns and rows a table is larger than the source.
    int border() const
    {
        return isTilted ? 2 : 1;
    }
};

template <class Sum, class Square, LumStatus (*f)(const Lum8u*, int, Sum*, int, LumiSize, Sum)>
LumStatus withoutSquares(const Lum8u* pSrc, int srcStep, Sum* pDst, int dstStep, Square*, int, LumiSize roiSize,
                         Sum val, Square)
{
    return f(pSrc, srcStep, pDst, dstStep, roiSize, val);
}

/// Calls f with each form in turn.
template <class F>
void forEachForm(F f)
{
    const auto visit = [&](const auto& form) {
        SCOPED_TRACE(form.name);
        f(form);
    };
    using Integers = Form<Lum32s, Lum32s>;
    using Mixed = Form<Lum32s, Lum64f>;
    using Floats = Form<Lum32f, Lum64f>;
    for (const Integers& form :
         {Integers{"Integral_8u32s", false, false, withoutSquares<Lum32s, Lum32s, lumiIntegral_8u32s_C1R>},
          Integers{"TiltedIntegral_8u32s", true, false, withoutSquares<Lum32s, Lum32s, lumiTiltedIntegral_8u32s_C1R>},
          Integers{"SqrIntegral_8u32s", false, true, lumiSqrIntegral_8u32s_C1R},
          Integers{"TiltedSqrIntegral_8u32s", true, true, lumiTiltedSqrIntegral_8u32s_C1R}}) {
        visit(form);
    }
    for (const Mixed& form : {Mixed{"SqrIntegral_8u32s64f", false, true, lumiSqrIntegral_8u32s64f_C1R},
                              Mixed{"TiltedSqrIntegral_8u32s64f", true, true, lumiTiltedSqrIntegral_8u32s64f_C1R}}) {
        visit(form);
    }
    for (const Floats& form :
         {Floats{"Integral_8u32f", false, false, withoutSquares<Lum32f, Lum64f, lumiIntegral_8u32f_C1R>},
          Floats{"TiltedIntegral_8u32f", true, false, withoutSquares<Lum32f, Lum64f, lumiTiltedIntegral_8u32f_C1R>},
          Floats{"SqrIntegral_8u32f64f", false, true, lumiSqrIntegral_8u32f64f_C1R},
          Floats{"TiltedSqrIntegral_8u32f64f", true, true, lumiTiltedSqrIntegral_8u32f64f_C1R}}) {
        visit(form);
    }
}

/// An initial value; integers near both ends among them, floats that need all their digits.
template <class T>
T drawInitial(Random& random)
{
    if constexpr (std::is_integral_v<T>) {
        const T choices[] = {0, 5, -1, std::numeric_limits<T>::max(), std::numeric_limits<T>::min(), 123456789};
        return choices[random.between(0, 5)];
    } else {
        const T choices[] = {
            0, 5, T(-0.1), T(16777215), T(1.0e9 / 3), T(-1.0e12 / 7), random.value<T>(Values::Ordinary)};
        return choices[random.between(0, 6)];
    }
}

inline void fillPixels(Image<Lum8u>& source, Random& random)
{
    const auto kind = random.between(0, 3);
    source.forEach(Area::Roi, [&](Lum8u& pixel, int, int, int) {
        pixel = kind == 0 ? Lum8u{255} : random.value<Lum8u>(kind == 1 ? Values::Extreme : Values::Ordinary);
    });
}

template <class Sum, class Square>
struct Tables
{
    Tables(const Layout& sumLayout, const Layout& squareLayout) : sums(sumLayout), squares(squareLayout) {}
    Image<Sum> sums;
    Image<Square> squares;
};

/// The tables that the form is to fill; what it does not fill keeps the pattern.
template <class Sum, class Square>
Tables<Sum, Square> expectedTables(const Form<Sum, Square>& form, const Image<Lum8u>& source, Sum val, Square valSqr)
{
    const Layout layout{.width = source.width() + form.border(), .height = source.height() + form.border()};
    Tables<Sum, Square> tables(layout, layout);
    (form.isTilted ? tilted<Sum> : upright<Sum>)(source, Summand::Value, val, tables.sums);
    if (form.hasSquares) {
        (form.isTilted ? tilted<Square> : upright<Square>)(source, Summand::Square, valSqr, tables.squares);
    }
    return tables;
}

/// Fills the tables and compares; looks at all that must not be written.
template <class Sum, class Square>
testing::AssertionResult agrees(const Form<Sum, Square>& form, const Image<Lum8u>& source, Tables<Sum, Square>& tables,
                                Sum val, Square valSqr)
{
    const Image<Lum8u> sourceBefore = source;
    const LumStatus status =
        form.call(source.pixels(), source.step(), tables.sums.pixels(), tables.sums.step(), tables.squares.pixels(),
                  tables.squares.step(), {source.width(), source.height()}, val, valSqr);
    if (status != lumOk) {
        return testing::AssertionFailure() << "status " << status;
    }
    const Tables<Sum, Square> expected = expectedTables(form, source, val, valSqr);
    if (const auto same = sameImage(expected.sums, tables.sums); !same) {
        return testing::AssertionFailure() << "sums: " << same.message();
    }
    if (const auto intact = tables.sums.gapsIntact(); !intact) {
        return testing::AssertionFailure() << "sums: " << intact.message();
    }
    if (form.hasSquares) {
        if (const auto same = sameImage(expected.squares, tables.squares); !same) {
            return testing::AssertionFailure() << "squares: " << same.message();
        }
        if (const auto intact = tables.squares.gapsIntact(); !intact) {
            return testing::AssertionFailure() << "squares: " << intact.message();
        }
    }
    if (const auto same = sameBytes(sourceBefore, source); !same) {
        return testing::AssertionFailure() << "the source was written: " << same.message();
    }
    return testing::AssertionSuccess();
}

/// The same with tables without gaps, against the page behind them.
template <class Sum, class Square>
testing::AssertionResult agrees(const Form<Sum, Square>& form, const Image<Lum8u>& source, Sum val, Square valSqr)
{
    const Layout layout{.width = source.width() + form.border(), .height = source.height() + form.border()};
    Tables<Sum, Square> tables(layout, layout);
    return agrees(form, source, tables, val, valSqr);
}

}  // namespace lumcv::test::integral
