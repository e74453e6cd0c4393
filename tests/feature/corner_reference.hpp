// The corner measures and line suppression written out plainly over the whole ROI at once: derivatives, products,
// means, and the formula of each measure, every operation rounded by itself.
#pragma once

#include <cmath>
#include <type_traits>
#include <vector>

#include "filter/derivative_steps.hpp"
#include "filter/fixed_filters_reference.hpp"

namespace lumcv::test::corners {

using fixed_filters::Rows;

enum class Derivative
{
    SobelX,         ///< left minus right
    SobelXNegated,  ///< right minus left
    SobelY,         ///< bottom minus top
    ScharrX,        ///< right minus left
    ScharrY,        ///< bottom minus top
    CentralX,       ///< right minus left
    CentralY        ///< top minus bottom
};

template <class Work>
Rows<Work> derivative(const Rows<Work>& rows, Derivative which, int side)
{
    namespace fixed = fixed_filters;
    namespace steps = derivatives;
    using Step = Work (*)(const Work*);
    const bool small = side == 3;
    const Step itself = [](const Work* t) { return t[0]; };
    const Step smoothing = small ? steps::sobelSmoothing3<Work> : fixed::smoothing5<Work>;
    const Step firstMinusLast = small ? fixed::firstDerivative3<Work> : fixed::firstDerivative5<Work>;
    const Step lastMinusFirst = small ? steps::negatedDerivative3<Work> : steps::negatedDerivative5<Work>;
    const Step scharr = steps::scharrSmoothing3<Work>;
    const auto both = [&](Step along, Step across) {
        return fixed::acrossRows(fixed::alongRows(rows, side, along), side, across);
    };
    switch (which) {
        case Derivative::SobelX:
            return both(firstMinusLast, smoothing);
        case Derivative::SobelXNegated:
            return both(lastMinusFirst, smoothing);
        case Derivative::SobelY:
            return both(smoothing, lastMinusFirst);
        case Derivative::ScharrX:
            return both(lastMinusFirst, scharr);
        case Derivative::ScharrY:
            return both(scharr, lastMinusFirst);
        case Derivative::CentralX:
            return both(lastMinusFirst, itself);
        default:
            return both(itself, firstMinusLast);
    }
}

/// Three planes over the ROI and some pixels around it: of the products dx * dx, dx * dy, dy * dy, or of their means
/// A, B, C.
struct Planes
{
    Margins margins;
    Rows<Lum32f> xx;
    Rows<Lum32f> xy;
    Rows<Lum32f> yy;
};

/// One plane as an image with margins.
struct PlaneRows
{
    const Rows<Lum32f>& rows;
    Margins margins;

    const Lum32f* row(int y) const
    {
        return rows[static_cast<std::size_t>(y + margins.top)].data() + margins.left;
    }
};

/// The products over the ROI and, on the sides in memory, over `beyond` pixels more.
template <class S, class Source>
Planes products(const Source& source, LumiSize size, Margins beyond, LumiBorderType border, S borderValue,
                Derivative dxKind, Derivative dyKind, int side)
{
    using Work = std::conditional_t<std::is_same_v<S, Lum32f>, Lum32f, int>;
    const Margins margins = promisedMargins(border, beyond);
    const int m = side / 2;
    const Margins reach = {margins.top + m, margins.bottom + m, margins.left + m, margins.right + m};
    const Rows<Work> rows = fixed_filters::extendedRows<Work>(source, size, reach, border, borderValue);
    const Rows<Work> dx = derivative(rows, dxKind, side);
    const Rows<Work> dy = derivative(rows, dyKind, side);
    Planes planes{margins, {}, {}, {}};
    for (std::size_t y = 0; y < dx.size(); ++y) {
        std::vector<Lum32f> xx;
        std::vector<Lum32f> xy;
        std::vector<Lum32f> yy;
        for (std::size_t x = 0; x < dx[y].size(); ++x) {
            const Lum32f h = static_cast<Lum32f>(dx[y][x]);
            const Lum32f v = static_cast<Lum32f>(dy[y][x]);
            xx.push_back(h * h);
            xy.push_back(h * v);
            yy.push_back(v * v);
        }
        planes.xx.push_back(xx);
        planes.xy.push_back(xy);
        planes.yy.push_back(yy);
    }
    return planes;
}

// Eigenvalues.

struct EigenParameters
{
    LumiKernelType kernType = lumKernSobel;
    Lum32s aperture = 3;
    Lum32s window = 3;
};

inline bool namesMode(LumiBorderType border)
{
    const int mode = border & 15;
    return mode == lumBorderReplicate || mode == lumBorderMirror || mode == lumBorderConstant;
}

/// What the eigenvalue measures accept: a mode with any flags; without one all four flags, but not with mode 5.
inline bool isEigenBorder(LumiBorderType border)
{
    return border >= 0 && border <= 255 &&
           (namesMode(border) || ((border & lumBorderInMem) == lumBorderInMem && (border & 15) != 5));
}

template <class S, class Source>
Planes eigenMeans(const Source& source, LumiSize size, EigenParameters p, LumiBorderType border, S borderValue)
{
    const bool scharr = p.kernType == lumKernScharr;
    const Derivative dx = scharr                          ? Derivative::ScharrX
                          : p.kernType == lumKernSobelNeg ? Derivative::SobelXNegated
                                                          : Derivative::SobelX;
    const Derivative dy = scharr ? Derivative::ScharrY : Derivative::SobelY;
    const Planes planes = products<S>(source, size, {}, border, borderValue, dx, dy, p.aperture);
    const LumiMaskSize mask = p.window == 3 ? lumMask3x3 : lumMask5x5;
    const LumiBorderType mode = namesMode(border) ? border & 15 : lumBorderMirror;
    const auto mean = [&](const Rows<Lum32f>& plane) {
        return fixed_filters::Lowpass::apply(
            fixed_filters::extendedRows<Lum32f>(PlaneRows{plane, {}}, size, fixed_filters::maskReach(mask), mode,
                                                static_cast<Lum32f>(borderValue)),
            mask);
    };
    return {{}, mean(planes.xx), mean(planes.xy), mean(planes.yy)};
}

inline Lum32f eigenScale(EigenParameters p)
{
    const Lum32f s = 1.0f / static_cast<Lum32f>(255 << (2 * p.aperture - 2));
    return p.kernType == lumKernScharr ? s * 0.6125f : s;
}

inline Lum32f minEigenValue(Lum32f A, Lum32f B, Lum32f C, EigenParameters p)
{
    const Lum32f trace = A + C;
    const Lum32f difference = A - C;
    const Lum32f squared = difference * difference;
    const Lum32f mixed = 4 * (B * B);
    const Lum32f root = std::sqrt(squared + mixed);
    const Lum32f factor = 0.5f * eigenScale(p);
    return (trace - root) * factor;
}

struct ValuesAndVectors
{
    Lum32f element[6];
};

inline ValuesAndVectors eigenValuesAndVectors(Lum32f A, Lum32f B, Lum32f C, EigenParameters p)
{
    const Lum32f s = eigenScale(p);
    const Lum32f a = s * A;
    const Lum32f b = s * B;
    const Lum32f c = s * C;
    const Lum32f t = 0.001f * (a > c ? a : c);
    const Lum32f ac = a * c;
    const Lum32f bb = b * b;
    const Lum32f determinant = ac - bb;
    const Lum32f smaller = a < c ? a : c;
    if (determinant < t || smaller < t) {
        return {};
    }
    const Lum32f difference = a - c;
    const Lum32f squared = difference * difference;
    const Lum32f r = std::sqrt(squared + 4 * bb);
    const Lum32f trace = a + c;
    const Lum32f lambda1 = 0.5f * (trace + r);
    const Lum32f lambda2 = 0.5f * (trace - r);
    if (std::fabs(b) < t) {
        return {{lambda1, lambda2, 0, 1, 1, 0}};
    }
    const Lum32f g = p.kernType == lumKernScharr ? 1.0f : -1.0f;
    const Lum32f b2 = g * b;
    const auto reciprocalLength = [&](Lum32f e) {
        const Lum32f squares = b2 * b2 + e * e;
        const Lum32f length = std::sqrt(squares);
        return 1 / (length > 1.1920929e-7f ? length : 1.1920929e-7f);
    };
    const Lum32f e1 = lambda1 - a;
    const Lum32f e2 = lambda2 - a;
    const Lum32f n1 = reciprocalLength(e1);
    const Lum32f n2 = reciprocalLength(e2);
    return {{lambda1, lambda2, b2 * n1, e1 * n1, b2 * n2, e2 * n2}};
}

// Harris.

struct HarrisParameters
{
    LumiFilterType filter = lumFilterSobel;
    LumiMaskSize mask = lumMask3x3;
    Lum32s window = 3;
};

/// What a pixel's result depends on around it, of products (mask reach 0) or of pixels.
inline Margins windowReach(int window, int maskReach)
{
    const int before = (window - 1) / 2 + maskReach;
    const int behind = window / 2 + maskReach;
    return {before, behind, before, behind};
}

inline Margins pixelReach(HarrisParameters p)
{
    return windowReach(p.window, p.mask == lumMask3x3 ? 1 : 2);
}

/// Beyond the sides that are not in memory the products are replicated, mirrored or 0.
inline Rows<Lum32f> boxMeans(const Rows<Lum32f>& plane, Margins margins, LumiSize size, int window,
                             LumiBorderType border)
{
    if (window == 1) {
        return plane;
    }
    const Margins reach = windowReach(window, 0);
    const Lum32f zero = 0;
    const ExtendedImage<Lum32f> extended(PlaneRows{plane, margins}, size, 1, reach, border, &zero);
    const Lum32f area = static_cast<Lum32f>(window) * static_cast<Lum32f>(window);
    const Lum32f factor = 1.0f / area;
    const auto n = static_cast<std::size_t>(window);
    Rows<Lum32f> means;
    for (int y = 0; y < size.height; ++y) {
        std::vector<Lum32f> columns = extended.row(y - reach.top);
        for (int j = 1; j < window; ++j) {
            const std::vector<Lum32f>& row = extended.row(y - reach.top + j);
            for (std::size_t x = 0; x < columns.size(); ++x) {
                columns[x] = columns[x] + row[x];
            }
        }
        Lum32f sum = columns[0];
        for (std::size_t i = 1; i < n; ++i) {
            sum = sum + columns[i];
        }
        std::vector<Lum32f> row = {sum * factor};
        for (std::size_t x = 1; x < static_cast<std::size_t>(size.width); ++x) {
            sum = sum + columns[x - 1 + n];
            sum = sum - columns[x - 1];
            row.push_back(sum * factor);
        }
        means.push_back(row);
    }
    return means;
}

template <class S, class Source>
Planes harrisMeans(const Source& source, LumiSize size, HarrisParameters p, LumiBorderType border, S borderValue)
{
    const Derivative dx = p.filter == lumFilterSobel    ? Derivative::SobelX
                          : p.filter == lumFilterScharr ? Derivative::ScharrX
                                                        : Derivative::CentralX;
    const Derivative dy = p.filter == lumFilterSobel    ? Derivative::SobelY
                          : p.filter == lumFilterScharr ? Derivative::ScharrY
                                                        : Derivative::CentralY;
    const int side = p.mask == lumMask3x3 ? 3 : 5;
    const Planes planes = products<S>(source, size, windowReach(p.window, 0), border, borderValue, dx, dy, side);
    const auto mean = [&](const Rows<Lum32f>& plane) {
        return boxMeans(plane, planes.margins, size, p.window, border);
    };
    return {{}, mean(planes.xx), mean(planes.xy), mean(planes.yy)};
}

inline Lum32f harrisResponse(Lum32f A, Lum32f B, Lum32f C, int window, Lum32f k, Lum32f scale)
{
    const auto n = static_cast<Lum32u>(window);
    const Lum32u n2 = n * n;
    const Lum32u n4 = n2 * n2;
    const Lum32f S = static_cast<Lum32f>(static_cast<Lum64f>(scale) * n4);
    const Lum32f trace = A + C;
    const Lum32f weighted = k * (trace * trace);
    const Lum32f subtracted = weighted + B * B;
    const Lum32f AC = A * C;
    return (AC - subtracted) * S;
}

inline bool liesOnLine(Lum32f A, Lum32f B, Lum32f C, Lum32f threshold)
{
    const Lum32f trace = A + C;
    const Lum32f squaredTrace = trace * trace;
    const Lum32f AC = A * C;
    const Lum32f determinant = AC - B * B;
    return squaredTrace > determinant * threshold;
}

// Sizes of scratch in bytes.

using fixed_filters::Wide;

inline Wide upTo32(Wide bytes)
{
    return (bytes + 31) / 32 * 32;
}

inline Wide derivativeBytes(Wide width, Wide height, int side, LumDataType type)
{
    const bool small = side == 3;
    const Wide longer = width > height ? width : height;
    const Wide t = (small ? 3 : 7) * (longer + (small ? 2 : 4));
    if (type == lumType8u) {
        return upTo32(t) + 32;
    }
    const Wide s = small ? 1 : 2;
    return upTo32(4 * t) + upTo32(4 * width) * 2 * s + upTo32((width + height) * 2 * s * 4) + 32;
}

inline Wide eigenBytes(LumiSize size, EigenParameters p, LumDataType type)
{
    using fixed_filters::Lowpass;
    const Wide padded = (Wide{size.width} + 15) / 16 * 16;
    const Wide derivatives = derivativeBytes(size.width, size.height, p.aperture, type);
    const Wide means = fixed_filters::bufferSize<Lowpass, Lum32f>(size.width, p.window == 3 ? lumMask3x3 : lumMask5x5);
    const Wide planes = (type == lumType8u ? 16 : 20) * padded * size.height;
    return (derivatives > means ? derivatives : means) + planes + 224;
}

inline Wide harrisBytes(LumiSize size, HarrisParameters p, LumDataType type)
{
    const Wide n = p.window;
    const Wide t = n - 1;
    const int side = p.mask == lumMask3x3 ? 3 : 5;
    const Wide m = side / 2;
    const Wide L = type == lumType8u ? 2 : 4;
    const Wide budget = type == lumType8u ? 8827 : 7111;
    const Wide root = type == lumType8u ? 93 : 84;
    const auto larger = [](Wide a, Wide b) { return a > b ? a : b; };
    const auto smaller = [](Wide a, Wide b) { return a < b ? a : b; };
    const auto box = [&](Wide w) { return 512 * (((w + n + 14) / 16) | 1) + 63; };
    const auto core = [&](Wide w, Wide h) {
        const Wide row = upTo32(4 * (w + t));
        const Wide rows = h + t;
        return row * rows * 3 + upTo32(L * (w + t)) * rows * 2 + 64 +
               larger(derivativeBytes(w + t, h + t, side, type), box(w) + row * rows);
    };
    const auto tile = [&](Wide w, Wide h) {
        const Wide row = upTo32(4 * (w + t)) * 3 + (2 * L * (w + t) + 62) / 64 * 64;
        return row * (h + t) + larger(derivativeBytes(w + t, h + t, side, type), box(w)) + 64;
    };
    const Wide before = (n - 1) / 2 + m;
    const Wide behind = n / 2 + m;
    const Wide width = size.width;
    const Wide height = size.height;
    if (before + behind >= width || before + behind >= height) {
        return core(width, height);
    }
    const Wide u = (larger(root - t, 0) + 15) / 16 * 16;
    const Wide tileWidth = smaller(larger(u, 8 * n), width);
    const Wide tileHeight = smaller(larger(budget / (t + u) - t, 8 * n), height);
    const Wide strips =
        larger(larger(core(width, before), core(width, behind)), larger(core(before, height), core(behind, height)));
    return larger(strips, tile(tileWidth, tileHeight));
}

}  // namespace lumcv::test::corners
