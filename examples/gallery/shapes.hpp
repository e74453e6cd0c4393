// Shapes drawn into a picture, gray or RGB. What lies outside the picture is left out.
#pragma once

#include <array>

#include "image.hpp"

namespace gallery {

/// Red, green and blue; a gray picture takes the first.
using Colour = std::array<int, 3>;

/// Brings a pixel closer to the colour: from 0, which leaves it, to 1, which replaces it.
void blend(Picture& picture, int x, int y, const Colour& colour, float cover);

void drawRectangle(Picture& picture, int left, int top, int width, int height, const Colour& colour);

/// A ring's edge is smoothed over one pixel; an inner radius of 0 makes it a disc.
void drawRing(Picture& picture, float centreX, float centreY, float inner, float outer, const Colour& colour);

/// A stroke with round ends: what lies within half its thickness of the segment.
void drawStroke(Picture& picture, float x0, float y0, float x1, float y1, float thickness, const Colour& colour);

/// The line of all points with `x * cosine + y * sine == distance`, from one edge of the picture to the other.
void drawLine(Picture& picture, float cosine, float sine, float distance, float thickness, const Colour& colour);

/// A triangle that stands on a level side, its tip above the middle.
void drawTriangle(Picture& picture, int left, int right, int bottom, int height, const Colour& colour);

}  // namespace gallery
