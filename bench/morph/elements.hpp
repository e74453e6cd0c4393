// Structuring elements for the rows of morphology.
#pragma once

#include <lumcv/lumcv.h>

#include <cstddef>
#include <vector>

namespace lumcv::bench {

struct Element
{
    LumiSize size;
    std::vector<Lum8u> mask;
};

/// The positions for which isSet(x, y) holds, x and y counted from the centre.
template <typename IsSet>
Element element(int width, int height, IsSet isSet)
{
    Element result{{width, height}, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            result.mask.push_back(isSet(x - width / 2, y - height / 2) ? 1 : 0);
    return result;
}

inline Element rectangle(int width, int height)
{
    return element(width, height, [](int, int) { return true; });
}

inline Element cross(int size)
{
    return element(size, size, [](int x, int y) { return x == 0 || y == 0; });
}

inline Element disc(int size)
{
    return element(size, size, [=](int x, int y) { return 4 * (x * x + y * y) <= size * size; });
}

/// The edge of a disc: its rows are no single runs.
inline Element ring(int size)
{
    return element(size, size, [=](int x, int y) {
        const int distance = 4 * (x * x + y * y);
        return distance <= size * size && distance > (size - 4) * (size - 4);
    });
}

}  // namespace lumcv::bench
