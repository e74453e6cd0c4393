// Gallery: extrema with their places.
#include <algorithm>
#include <array>
#include <cstdlib>

#include "section.hpp"

namespace gallery {
namespace {

using Colour = std::array<Lum8u, 3>;

constexpr Colour ofSmallest = {40, 150, 255};
constexpr Colour ofLargest = {255, 60, 40};

void paint(Picture& picture, int x, int y, const Colour& colour)
{
    if (x >= 0 && y >= 0 && x < picture.width() && y < picture.height()) {
        std::copy(colour.begin(), colour.end(), &picture.at(x, y));
    }
}

// A cross with a gap around the place, so that the pixel itself is seen.
void drawCross(Picture& picture, LumiPoint place, int arm, int gap, int halfWidth, const Colour& colour)
{
    for (int along = -arm; along <= arm; ++along) {
        for (int across = -halfWidth; across <= halfWidth && std::abs(along) > gap; ++across) {
            paint(picture, place.x + along, place.y + across, colour);
            paint(picture, place.x + across, place.y + along, colour);
        }
    }
}

Picture extremaOfPicture(const Source& source, Shot& shot)
{
    const Picture& gray = source.gray;
    Lum32f smallest = 0.0f;
    Lum32f largest = 0.0f;
    LumiPoint smallestAt{};
    LumiPoint largestAt{};
    shot.time(GALLERY_CALL(
        lumiMinMaxIndx_8u_C1R(gray.pixels(), gray.step(), gray.size(), &smallest, &largest, &smallestAt, &largestAt)));
    Picture result = source.colour;
    drawCross(result, smallestAt, 24, 5, 1, ofSmallest);
    drawCross(result, largestAt, 24, 5, 1, ofLargest);
    return result;
}

Picture extremaOfTiles(const Source& source, Shot& shot)
{
    constexpr int side = 48;
    const Picture& gray = source.gray;
    Picture result = source.colour;
    for (int top = 0; top < gray.height(); top += side) {
        for (int left = 0; left < gray.width(); left += side) {
            const LumiSize tile = {std::min(side, gray.width() - left), std::min(side, gray.height() - top)};
            LumiPoint smallestAt{};
            LumiPoint largestAt{};
            shot.timeOnce(GALLERY_CALL(lumiMinMaxIndx_8u_C1R(&gray.at(left, top), gray.step(), tile, nullptr, nullptr,
                                                             &smallestAt, &largestAt)));
            drawCross(result, {left + smallestAt.x, top + smallestAt.y}, 5, 1, 0, ofSmallest);
            drawCross(result, {left + largestAt.x, top + largestAt.y}, 5, 1, 0, ofLargest);
        }
    }
    return result;
}

const Section section{
    12,
    "Extrema",
    "The darkest and the brightest pixel of a region, and where they are first met, row by row from the left.",
    {{"extrema", "Extrema of the picture",
      "The blue cross is around the darkest pixel, the red one around the brightest.", extremaOfPicture},
     {"extrema-tiles", "Extrema of tiles", "The same for every tile of 48 x 48 pixels: one call each.",
      extremaOfTiles}},
};

}  // namespace
}  // namespace gallery
