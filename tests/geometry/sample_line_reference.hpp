// The pixels of a line, one after the other, written out plainly.
#pragma once

#include <cstdlib>
#include <vector>

#include "lumcv/lumcv.h"

namespace lumcv::test::geometry {

/// The places that a line visits, from its first point to its second. On a tie y is the major axis.
inline std::vector<LumiPoint> lineOf(LumiPoint from, LumiPoint to)
{
    const long ax = std::labs(static_cast<long>(to.x) - from.x);
    const long ay = std::labs(static_cast<long>(to.y) - from.y);
    const int stepX = to.x < from.x ? -1 : 1;
    const int stepY = to.y < from.y ? -1 : 1;
    const bool xIsMajor = ax > ay;
    const long major = xIsMajor ? ax : ay;
    const long minor = xIsMajor ? ay : ax;
    std::vector<LumiPoint> line;
    LumiPoint place = from;
    long e = major;
    for (long i = 0; i <= major; ++i) {
        line.push_back(place);
        e -= 2 * minor;
        const bool minorStep = e < 0;
        if (minorStep) {
            e += 2 * major;
        }
        place.x += xIsMajor || minorStep ? stepX : 0;
        place.y += !xIsMajor || minorStep ? stepY : 0;
    }
    return line;
}

}  // namespace lumcv::test::geometry
