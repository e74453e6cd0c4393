// Looks for the objects of a cascade in a picture, at all sizes.
#pragma once

#include <vector>

#include "cascade.hpp"
#include "image.hpp"

namespace detect {

struct ScanOptions
{
    int smallest = 0;        ///< least width of an object's window; never less than the cascade's own
    double growth = 1.1;     ///< how much wider the next window is; above 1
    double overlap = 0.5;    ///< windows that share this much of what they cover are one object
    int fewestWindows = 50;  ///< an object is found in at least so many windows
};

struct Found
{
    LumiRect place;
    int windows;  ///< how many windows passed the cascade here
};

/// All windows of a gray picture that pass the cascade.
std::vector<LumiRect> passingWindows(const gallery::Picture& gray, const Cascade& cascade, const ScanOptions& options);

/// Merges windows that overlap into objects, those of most windows first.
std::vector<Found> mergeOverlapping(const std::vector<LumiRect>& windows, const ScanOptions& options);

/// Both of the above.
std::vector<Found> findObjects(const gallery::Picture& gray, const Cascade& cascade, const ScanOptions& options);

/// Draws a frame of two pixels just within a rectangle. The colour has as many channels as the picture.
void drawFrame(gallery::Picture& picture, const LumiRect& place, const Lum8u* colour);

}  // namespace detect
