// The Laplacian, the lowpass and the Sobel cross written out plainly: a step along the row, then a step across the
// rows, exact in integers, and in single precision with every operation rounded by itself. And the sizes of their
// scratch.
#pragma once

#include <algorithm>
#include <type_traits>
#include <vector>

#include "filter/extended_image.hpp"
#include "lumcv/types.h"

namespace lumcv::test::fixed_filters {

inline int maskSide(LumiMaskSize mask)
{
    return mask == lumMask3x3 ? 3 : 5;
}

inline Margins maskReach(LumiMaskSize mask)
{
    return Margins::all(maskSide(mask) / 2);
}

// The rows of an image, extended, as numbers of one type.
template <class Work>
using Rows = std::vector<std::vector<Work>>;

template <class Work, class Element, class Source>
Rows<Work> extendedRows(const Source& source, LumiSize size, Margins reach, LumiBorderType border, Element borderValue)
{
    const ExtendedImage<Element> extended(source, size, 1, reach, border, &borderValue);
    Rows<Work> rows;
    for (int y = -reach.top; y < size.height + reach.bottom; ++y) {
        rows.emplace_back(extended.row(y).begin(), extended.row(y).end());
    }
    return rows;
}

// Steps take a pointer to the middle one of the 3 or 5 numbers that they combine.

template <class Work, class Step>
Rows<Work> alongRows(const Rows<Work>& rows, int side, Step step)
{
    const auto h = static_cast<std::size_t>(side / 2);
    Rows<Work> result;
    for (const std::vector<Work>& row : rows) {
        std::vector<Work> stepped(row.size() - 2 * h);
        for (std::size_t x = 0; x < stepped.size(); ++x) {
            stepped[x] = step(&row[x + h]);
        }
        result.push_back(stepped);
    }
    return result;
}

template <class Work, class Step>
Rows<Work> acrossRows(const Rows<Work>& rows, int side, Step step)
{
    const auto h = static_cast<std::size_t>(side / 2);
    Rows<Work> result;
    for (std::size_t y = h; y + h < rows.size(); ++y) {
        std::vector<Work> stepped(rows[y].size());
        for (std::size_t x = 0; x < stepped.size(); ++x) {
            Work column[5];
            for (std::size_t j = 0; j < 2 * h + 1; ++j) {
                column[j] = rows[y + j - h][x];
            }
            stepped[x] = step(column + h);
        }
        result.push_back(stepped);
    }
    return result;
}

// The steps, as they are written, from left to right.

template <class Work>
Work firstDerivative3(const Work* t)
{
    return t[-1] - t[1];
}

template <class Work>
Work firstDerivative5(const Work* t)
{
    const Work a = t[-2];
    const Work b = a + 2 * t[-1];
    const Work c = b - 2 * t[1];
    return c - t[2];
}

template <class Work>
Work secondDerivative5(const Work* t)
{
    const Work ends = t[-2] + t[2];
    return ends - 2 * t[0];
}

template <class Work>
Work smoothing5(const Work* t)
{
    const Work ends = t[-2] + t[2];
    const Work withMiddle = ends + 6 * t[0];
    const Work pair = t[-1] + t[1];
    return withMiddle + 4 * pair;
}

template <class Work>
Work sum3(const Work* t)
{
    const Work two = t[-1] + t[0];
    return two + t[1];
}

template <class Work>
Work sum5(const Work* t)
{
    const Work two = t[-2] + t[-1];
    const Work three = two + t[0];
    const Work four = three + t[1];
    return four + t[2];
}

// The operators on extended rows.

struct Laplacian
{
    static constexpr const char* name = "Laplacian";

    template <class Work>
    static Rows<Work> apply(const Rows<Work>& rows, LumiMaskSize mask)
    {
        if (mask == lumMask3x3) {
            const Rows<Work> pairs = alongRows(rows, 3, [](const Work* s) { return s[-1] + s[1]; });
            const Rows<Work> middles = alongRows(rows, 3, [](const Work* s) { return 8 * s[0]; });
            Rows<Work> result = acrossRows(pairs, 3, [](const Work* a) { return 2 * (a[-1] + a[1]); });
            for (std::size_t y = 0; y < result.size(); ++y) {
                for (std::size_t x = 0; x < result[y].size(); ++x) {
                    result[y][x] = result[y][x] - middles[y + 1][x];
                }
            }
            return result;
        }
        Rows<Work> result = acrossRows(alongRows(rows, 5, smoothing5<Work>), 5, secondDerivative5<Work>);
        const Rows<Work> second = acrossRows(alongRows(rows, 5, secondDerivative5<Work>), 5, smoothing5<Work>);
        for (std::size_t y = 0; y < result.size(); ++y) {
            for (std::size_t x = 0; x < result[y].size(); ++x) {
                result[y][x] = result[y][x] + second[y][x];
            }
        }
        return result;
    }
};

struct SobelCross
{
    static constexpr const char* name = "SobelCross";

    template <class Work>
    static Rows<Work> apply(const Rows<Work>& rows, LumiMaskSize mask)
    {
        if (mask == lumMask3x3) {
            return acrossRows(alongRows(rows, 3, firstDerivative3<Work>), 3, firstDerivative3<Work>);
        }
        return acrossRows(alongRows(rows, 5, firstDerivative5<Work>), 5, firstDerivative5<Work>);
    }
};

struct Lowpass
{
    static constexpr const char* name = "Lowpass";

    template <class Work>
    static Rows<Work> apply(const Rows<Work>& rows, LumiMaskSize mask)
    {
        const bool small = mask == lumMask3x3;
        Rows<Work> sums = small ? acrossRows(alongRows(rows, 3, sum3<Work>), 3, sum3<Work>)
                                : acrossRows(alongRows(rows, 5, sum5<Work>), 5, sum5<Work>);
        for (std::vector<Work>& row : sums) {
            for (Work& t : row) {
                if constexpr (std::is_same_v<Work, Lum32f>) {
                    t = t * (small ? 0.11111111f : 0.04f);
                } else {
                    t = std::clamp(small ? ((t + 5) * 7280) >> 16 : (t * 2621) >> 16, 0, 255);
                }
            }
        }
        return sums;
    }
};

// Scratch in bytes.

__extension__ typedef __int128 Wide;

inline Wide roundedDown(Wide value, Wide multiple)
{
    return value / multiple * multiple;
}

// The queries of the row and column pipelines for the same mask are part of every size.
inline Wide pipelinesOf8u(Wide width, Wide k)
{
    return 36 * k + 144 + 12 * roundedDown(width + 3, 4) + 64;
}

inline Wide pipelinesOf32f(Wide k)
{
    return 96 * k + 96 + 32 * k + 32;
}

template <class Operator, class Source>
Wide bufferSize(Wide width, LumiMaskSize mask)
{
    const Wide k = maskSide(mask);
    const Wide rows = 2 * k + 15;
    constexpr bool floats = std::is_same_v<Source, Lum32f>;
    const Wide pipelines = floats ? pipelinesOf32f(k) : pipelinesOf8u(width, k);
    if constexpr (std::is_same_v<Operator, Laplacian>) {
        const Wide pitch = floats ? roundedDown(8 * width + 120, 128) : roundedDown(4 * width + 60, 64);
        return pitch * rows + 48 * k + 576 + pipelines;
    } else {
        const Wide pitch = floats ? roundedDown(4 * width + 60, 64) : roundedDown(2 * width + 30, 32);
        const Wide extra = floats && std::is_same_v<Operator, Lowpass> ? 304 : 368;
        return pitch * rows + 24 * k + extra + pipelines;
    }
}

}  // namespace lumcv::test::fixed_filters
