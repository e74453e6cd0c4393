// The boundary between labels written out plainly.
#pragma once

#include "lumcv/lumcv.h"
#include "support/image.hpp"

namespace lumcv::test::watershed {

/// Of two neighbours with different labels the later one in raster order takes `val`; changes are seen at once.
template <class Label>
void boundSegments(Image<Label>& marker, Label val, bool eightNeighbours)
{
    for (int y = 0; y < marker.height(); ++y) {
        for (int x = 0; x < marker.width(); ++x) {
            Label& label = marker.at(x, y);
            const auto look = [&](int neighbourX, int neighbourY) {
                if (neighbourX < 0 || neighbourX >= marker.width() || neighbourY < 0) {
                    return;
                }
                const Label neighbour = marker.at(neighbourX, neighbourY);
                if (neighbour != val && neighbour != label) {
                    label = val;
                }
            };
            look(x - 1, y);
            look(x, y - 1);
            if (eightNeighbours) {
                look(x - 1, y - 1);
                look(x + 1, y - 1);
            }
        }
    }
}

}  // namespace lumcv::test::watershed
