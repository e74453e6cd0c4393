// Dilation and erosion with a gray element, one pixel after the other as they are defined. Positions are compared in
// the order of the element and the first of equal candidates is kept, so that zeros and not-a-numbers have their place
// too.
#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>
#include <ostream>
#include <type_traits>
#include <vector>

#include "lumcv/lumcv.h"
#include "support/image.hpp"

namespace lumcv::test::gray {

/// An entry of the element of images of T.
template <class T>
using Entry = std::conditional_t<std::is_same_v<T, Lum32f>, Lum32f, Lum32s>;

enum class Form
{
    Dilate,
    Erode
};

/// A gray structuring element, row after row.
template <class T>
struct Element
{
    LumiSize size = {1, 1};
    LumiPoint anchor = {0, 0};
    std::vector<Entry<T>> entries = {0};

    Entry<T> at(int i, int j) const
    {
        return entries[static_cast<std::size_t>(j) * static_cast<std::size_t>(size.width) +
                       static_cast<std::size_t>(i)];
    }
};

template <class T>
std::ostream& operator<<(std::ostream& stream, const Element<T>& element)
{
    return stream << "element " << element.size.width << " x " << element.size.height << ", anchor " << element.anchor.x
                  << ", " << element.anchor.y;
}

/// What an element position makes of a source pixel. A byte and a 32-bit entry need 33 bits.
template <class T>
auto candidate(Form form, T source, Entry<T> entry)
{
    if constexpr (std::is_same_v<T, Lum32f>) {
        return form == Form::Dilate ? source + entry : source - entry;
    } else {
        return form == Form::Dilate ? Lum64s{source} + entry : Lum64s{source} - entry;
    }
}

/// The result at a pixel of the ROI. The source is an image, or rows that stand alone.
template <class T, class Source>
T pixelReference(Form form, const Element<T>& element, const Source& source, LumiSize roiSize, int x, int y)
{
    decltype(candidate<T>(form, T{}, {})) best{};
    for (int j = 0; j < element.size.height; ++j) {
        for (int i = 0; i < element.size.width; ++i) {
            const int sourceX = std::clamp(x + i - element.anchor.x, 0, roiSize.width - 1);
            const int sourceY = std::clamp(y + j - element.anchor.y, 0, roiSize.height - 1);
            const auto value = candidate<T>(form, source.row(sourceY)[sourceX], element.at(i, j));
            const bool first = i == 0 && j == 0;
            if (first || (form == Form::Dilate ? value > best : value < best)) {
                best = value;
            }
        }
    }
    if constexpr (std::is_same_v<T, Lum32f>) {
        return best;
    } else {
        return static_cast<T>(std::clamp<Lum64s>(best, 0, std::numeric_limits<T>::max()));
    }
}

template <class T, class Source>
Image<T> reference(Form form, const Element<T>& element, const Source& source, LumiSize roiSize)
{
    Image<T> result({.width = roiSize.width, .height = roiSize.height});
    result.forEach(Area::Roi, [&](T& pixel, int x, int y, int) {
        pixel = pixelReference<T>(form, element, source, roiSize, x, y);
    });
    return result;
}

}  // namespace lumcv::test::gray
