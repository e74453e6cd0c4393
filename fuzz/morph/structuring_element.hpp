// Structuring elements of all shapes.
#pragma once

#include <algorithm>
#include <vector>

#include "fuzz/support/call.hpp"

namespace lumcv::fuzz {

struct StructuringElement
{
    LumiSize size;
    std::vector<Lum8u> bytes;

    LumiSizeL sizeL() const
    {
        return {size.width, size.height};
    }

    // Empty or of 1x1, it copies and looks at nothing around the image.
    bool copies() const
    {
        return bytes.size() == 1 || std::none_of(bytes.begin(), bytes.end(), [](Lum8u byte) { return byte != 0; });
    }
};

// Rectangles, crosses, triangles, runs, and what is none of these. A large image gets a small element.
inline StructuringElement chooseElement(Choices& choices, LumiSize roi)
{
    const int longest = roi.width > 1000 ? 7 : choices.oneIn(6) ? 40 : 9;
    const int width = choices.between(1, longest);
    const int height = choices.oneIn(3) ? width : choices.between(1, longest);
    StructuringElement element{{width, height}, {}};
    const int shape = choices.between(0, 4);
    lumcv::test::Random random(choices.seed());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool isOnCross = x == width / 2 || y == height / 2;
            const bool isSet = shape == 0 || (shape == 1 && isOnCross) || (shape == 2 && x <= y) ||
                               (shape == 3 && random.oneIn(2)) || (shape == 4 && random.oneIn(20));
            element.bytes.push_back(Lum8u(isSet ? random.between(1, 255) : 0));
        }
    return element;
}

}  // namespace lumcv::fuzz
