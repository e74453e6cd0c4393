// Straight lines of a picture: what is smoothed, what its edges are, and the lines among them.
#pragma once

#include <vector>

#include "image.hpp"

namespace lines {

struct EdgeOptions
{
    int low = 40;    ///< an edge is followed as long as its gradient is above this
    int high = 100;  ///< and begins above this
};

struct SegmentOptions
{
    int votes = 25;   ///< points that vote for a line before it is followed
    int length = 30;  ///< width or height of a segment at least, in pixels
    int gap = 5;      ///< pixels that may be missing between two of a segment
};

struct Segment
{
    LumiPoint from;
    LumiPoint to;
};

/// Edges of one pixel's width, 255 on 0.
gallery::Picture findEdges(const gallery::Picture& gray, const EdgeOptions& options);

/// The segments that the progressive Hough transform follows among the edges, in the order in which it does.
std::vector<Segment> findSegments(const gallery::Picture& edges, const SegmentOptions& options);

/// The lines of most edge pixels, the strongest first: at most `count`, each of more than `votes` pixels.
/// Of lines side by side the strongest stands for all.
std::vector<LumiPointPolar> findStrongest(const gallery::Picture& edges, int count, int votes);

}  // namespace lines
