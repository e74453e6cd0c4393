// Where the operands of a call stand in memory.
#pragma once

#include <ostream>

#include "support/image.hpp"
#include "support/random.hpp"

namespace lumcv::test {

struct Placement
{
    Guard guard = Guard::After;
    std::size_t distance = 0;  // of the blocks from the unreadable page
    int offset = 0;            // of the images from the page's edge, in elements
    int gap = 0;               // between rows, in elements

    template <class T = Lum8u>
    Layout layout(LumiSize size, Margins margins = {}) const
    {
        Layout layout;
        layout.width = size.width;
        layout.height = size.height;
        layout.gap = gap * static_cast<int>(sizeof(T));
        layout.guard = guard;
        layout.margins = margins;
        layout.offset = offset;
        return layout;
    }

    // The same for an image of another stride, if there are gaps at all.
    Placement withMoreGap(int elements) const
    {
        Placement place = *this;
        place.gap = gap == 0 ? 0 : gap + elements;
        return place;
    }
};

inline Placement drawPlacement(Random& random)
{
    Placement place;
    place.guard = random.oneIn(2) ? Guard::After : Guard::Before;
    place.distance = random.oneIn(2) ? 0 : static_cast<std::size_t>(random.between(0, 63));
    place.offset = random.oneIn(2) ? 0 : static_cast<int>(random.between(0, 63));
    place.gap = random.oneIn(2) ? 0 : static_cast<int>(random.between(0, 40));
    return place;
}

inline std::ostream& operator<<(std::ostream& stream, const Placement& place)
{
    return stream << "page " << (place.guard == Guard::After ? "after" : "before") << ", distance " << place.distance
                  << ", offset " << place.offset << ", gap " << place.gap;
}

}  // namespace lumcv::test
