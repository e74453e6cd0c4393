// The objects of a picture: what is brighter than a threshold, or darker, falls into components; each is measured.
#pragma once

#include <string>
#include <vector>

#include "image.hpp"

namespace count {

using gallery::Image;
using gallery::Picture;

struct Options
{
    int smoothing = 5;     ///< taps of the Gaussian filter, odd; 1 leaves the picture as it is
    int threshold = 128;   ///< an object's pixels are brighter than this
    bool dark = false;     ///< or not brighter
    int leastArea = 20;    ///< smaller components are speckles, and no objects
    bool diagonal = true;  ///< whether pixels that share a corner belong together
};

struct Object
{
    Lum32s label;  ///< 1 is the object whose first pixel comes first, row by row
    int area;      ///< in pixels
    LumiRect box;
};

struct Count
{
    Image<Lum32s> labels;  ///< 0 outside of objects
    std::vector<Object> objects;
};

/// The picture of one channel, with a Gaussian filter of so many taps gone over it.
Picture smoothed(const Picture& gray, int taps);

/// 255 where a pixel belongs to an object, 0 elsewhere; components below the least area are left out.
Picture objectMask(const Picture& smooth, const Options& options);

/// Labels the components of a mask and measures each.
Count measured(const Picture& mask, bool diagonal);

/// The picture with each object in a colour of its own and its box around it.
Picture coloured(const Picture& gray, const Count& count);

/// A line for each object, below one that names the columns.
std::string table(const Count& count);

}  // namespace count
