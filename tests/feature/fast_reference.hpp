// FAST corners as they are described: every pixel against its ring, with scores, directions and suppression in planes
// of the ROI's size.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

#include "lumcv/lumcv.h"

namespace lumcv::test::fast {

struct RingPoint
{
    int dx;
    int dy;
};
using Ring = std::vector<RingPoint>;

constexpr int kRadii[] = {1, 2, 3, 5, 7, 9};

// The points of a ring, from straight below the centre towards the left; none for a radius that there is not.
inline const Ring& ringOf(int radius)
{
    static const Ring radius1 = {{0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}, {1, 0}, {1, 1}};
    static const Ring radius2 = {{0, 2},  {-1, 2}, {-2, 1}, {-2, 0}, {-2, -1}, {-1, -2},
                                 {0, -2}, {1, -2}, {2, -1}, {2, 0},  {2, 1},   {1, 2}};
    static const Ring radius3 = {{0, 3},  {-1, 3}, {-2, 2}, {-3, 1}, {-3, 0}, {-3, -1}, {-2, -2}, {-1, -3},
                                 {0, -3}, {1, -3}, {2, -2}, {3, -1}, {3, 0},  {3, 1},   {2, 2},   {1, 3}};
    static const Ring radius5 = {{0, 5},  {-1, 5},  {-2, 5},  {-3, 4},  {-4, 3},  {-5, 2},  {-5, 1},
                                 {-5, 0}, {-5, -1}, {-5, -2}, {-4, -3}, {-3, -4}, {-2, -5}, {-1, -5},
                                 {0, -5}, {1, -5},  {2, -5},  {3, -4},  {4, -3},  {5, -2},  {5, -1},
                                 {5, 0},  {5, 1},   {5, 2},   {4, 3},   {3, 4},   {2, 5},   {1, 5}};
    static const Ring radius7 = {{0, 7},   {-1, 7},  {-2, 7},  {-3, 6},  {-4, 6},  {-5, 5},  {-6, 4},  {-6, 3},
                                 {-7, 2},  {-7, 1},  {-7, 0},  {-7, -1}, {-7, -2}, {-6, -3}, {-6, -4}, {-5, -5},
                                 {-4, -6}, {-3, -6}, {-2, -7}, {-1, -7}, {0, -7},  {1, -7},  {2, -7},  {3, -6},
                                 {4, -6},  {5, -5},  {6, -4},  {6, -3},  {7, -2},  {7, -1},  {7, 0},   {7, 1},
                                 {7, 2},   {6, 3},   {6, 4},   {5, 5},   {4, 6},   {3, 6},   {2, 7},   {1, 7}};
    static const Ring radius9 = {
        {0, 9},   {-1, 9},  {-2, 9},  {-3, 9},  {-4, 8},  {-5, 8},  {-6, 7},  {-7, 6},  {-8, 5},  {-8, 4},  {-9, 3},
        {-9, 2},  {-9, -1}, {-9, 0},  {-9, -1}, {-9, -2}, {-9, -3}, {-8, -4}, {-8, -5}, {-7, -6}, {-6, -7}, {-5, -8},
        {-4, -8}, {-3, -9}, {-2, -9}, {-1, -9}, {0, -9},  {1, -9},  {2, -9},  {3, -9},  {4, -8},  {5, -8},  {6, -7},
        {7, -6},  {8, -5},  {8, -4},  {9, -3},  {9, -2},  {9, -1},  {9, 0},   {9, 1},   {9, 2},   {9, 3},   {8, 4},
        {8, 5},   {7, 6},   {6, 7},   {5, 8},   {4, 8},   {3, 9},   {2, 9},   {1, 9}};
    static const Ring none;
    switch (radius) {
        case 1:
            return radius1;
        case 2:
            return radius2;
        case 3:
            return radius3;
        case 5:
            return radius5;
        case 7:
            return radius7;
        case 9:
            return radius9;
        default:
            return none;
    }
}

inline int ringSize(int radius)
{
    return static_cast<int>(ringOf(radius).size());
}

// The shortest arc that is allowed: more than half of the ring, an odd number.
inline int shortestArc(int radius)
{
    return ringSize(radius) / 2 | 1;
}

inline std::uint64_t specBytes(int radius)
{
    return static_cast<std::uint64_t>(ringSize(radius)) * 8 + 68;
}

// Three lines of corner bytes and three of scores with a frame of one pixel, and three lists of 52 integers.
inline std::uint64_t scratchBytes(int roiWidth)
{
    return static_cast<std::uint64_t>(roiWidth) * 6 + 12 + 3 * 52 * 4;
}

struct Setting
{
    int radius = 3;
    int arc = 9;
    int bins = 1;
    int mode = lumFastNCorners;
    Lum32f threshold = 20;

    bool has(int bit) const
    {
        return (mode & bit) != 0;
    }
    // Radius 3 with nine points has a formula of its own for the direction.
    bool hasOwnDirection() const
    {
        return radius == 3 && arc == 9;
    }
};

// The largest over all starts of the smallest of `arc` consecutive entries.
inline int arcScore(const std::vector<int>& entries, int arc)
{
    const int count = static_cast<int>(entries.size());
    int best = 0;
    for (int start = 0; start < count; ++start) {
        int smallest = 255;
        for (int i = 0; i < arc && smallest > best; ++i) {
            smallest = std::min(smallest, entries[static_cast<std::size_t>((start + i) % count)]);
        }
        best = std::max(best, smallest);
    }
    return best;
}

// The direction of a corner: the bin it must have, and where it lies in exact arithmetic, counted in bins.
struct Direction
{
    int bin = 0;
    double bins = 0;
    double length = 0;  // of the vector whose direction it is
};

struct Vector
{
    Lum32f s;
    Lum32f c;
};

// Nine points of the ring of radius 3: differences of opposite points.
inline Vector vectorOfNine(const std::vector<int>& ring)
{
    Lum32f e[8];
    for (std::size_t i = 0; i < 8; ++i) {
        e[i] = static_cast<Lum32f>(ring[i] - ring[i + 8]);
    }
    const Lum32f s = 0.70710677f * (e[2] + e[6]) + 0.38268343f * (e[1] + e[7]) + 0.9238795f * (e[3] + e[5]) + e[4];
    const Lum32f c = e[0] + 0.9238795f * (e[1] - e[7]) + 0.70710677f * (e[2] - e[6]) + 0.38268343f * (e[3] - e[5]);
    return {s + 0.00001f, c};
}

inline Lum32f ringAngle(std::size_t i, std::size_t size)
{
    return static_cast<Lum32f>(static_cast<double>(i) * 2 * std::numbers::pi / static_cast<double>(size));
}

inline Vector vectorOf(const std::vector<int>& ring, int centre)
{
    Vector sum = {0, 0};
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const double theta = ringAngle(i, ring.size());
        const Lum32f sine = static_cast<Lum32f>(std::sin(theta));
        const Lum32f cosine = static_cast<Lum32f>(std::cos(theta));
        sum.s += static_cast<Lum32f>(ring[i] - centre) * sine;
        sum.c += static_cast<Lum32f>(ring[i] - centre) * cosine;
    }
    return sum;
}

inline Lum32f binScale(int bins)
{
    return static_cast<Lum32f>(bins * 0.15915494309189535);
}

inline Direction directionOf(const std::vector<int>& ring, int centre, const Setting& setting)
{
    const Vector vector = setting.hasOwnDirection() ? vectorOfNine(ring) : vectorOf(ring, centre);
    Lum32f angle = static_cast<Lum32f>(std::atan2(double{vector.c}, double{vector.s}));
    if (angle < 0) {
        angle += 6.2831855f;
    }
    const int bin = static_cast<int>(angle * binScale(setting.bins));

    double s = 0;
    double c = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const double theta = static_cast<double>(i) * 2 * std::numbers::pi / static_cast<double>(ring.size());
        s += (ring[i] - centre) * std::sin(theta);
        c += (ring[i] - centre) * std::cos(theta);
    }
    const double turn = std::atan2(c, s) / (2 * std::numbers::pi);
    return {bin >= setting.bins ? 0 : bin, (turn < 0 ? turn + 1 : turn) * setting.bins, std::hypot(s, c)};
}

// Whether the bin is where exact arithmetic sees it; on the edge between two bins it may be either, and where the
// differences cancel it may be any.
inline bool isPlausible(const Direction& direction, int bins)
{
    const auto whole = [&](double value) { return (static_cast<int>(std::floor(value)) + bins) % bins; };
    return direction.length < 0.5 || direction.bin == whole(direction.bins) ||
           direction.bin == whole(direction.bins - 1e-3) || direction.bin == whole(direction.bins + 1e-3);
}

struct Found
{
    bool isInside = false;  // within the cut ROI, which is all that is written
    Lum8u corner = 0;
    Lum8u score = 0;
    Direction direction;
};

// What a call finds, for each pixel of the ROI as it was asked for.
struct Result
{
    LumStatus status = lumOk;
    bool isEmpty = false;  // nothing of the ROI lies in the image
    int count = 0;
    std::vector<Found> pixels;
};

// `image` has row(y) or at(x, y) for the whole image.
template <class ImageOfBytes>
Result detect(const ImageOfBytes& image, LumiSize imageSize, LumiPoint offset, LumiSize roi, const Setting& setting)
{
    Result result;
    const auto roiWidth = static_cast<std::size_t>(roi.width);
    result.pixels.resize(roiWidth * static_cast<std::size_t>(roi.height));
    // The ROI cut at the image, in coordinates of the image.
    const int left = std::max(offset.x, 0);
    const int top = std::max(offset.y, 0);
    const int right = static_cast<int>(std::min<std::int64_t>(imageSize.width, std::int64_t{offset.x} + roi.width));
    const int bottom = static_cast<int>(std::min<std::int64_t>(imageSize.height, std::int64_t{offset.y} + roi.height));
    result.isEmpty = left >= right || top >= bottom;
    const bool isCut = result.isEmpty || right - left != roi.width || bottom - top != roi.height;
    result.status = isCut ? lumWrnRoiClipped : lumOk;
    if (result.isEmpty) {
        return result;
    }
    const auto pixel = [&](int x, int y) -> Found& {
        return result
            .pixels[static_cast<std::size_t>(y - offset.y) * roiWidth + static_cast<std::size_t>(x - offset.x)];
    };
    const Ring& ring = ringOf(setting.radius);
    const int r = setting.radius;
    const double limit = std::trunc(setting.threshold);
    std::vector<int> values(ring.size());
    std::vector<int> bright(ring.size());
    std::vector<int> dark(ring.size());
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            pixel(x, y).isInside = true;
            if (x < r || y < r || x >= imageSize.width - r || y >= imageSize.height - r) {
                continue;
            }
            const int centre = image.at(x, y);
            for (std::size_t i = 0; i < ring.size(); ++i) {
                values[i] = image.at(x + ring[i].dx, y + ring[i].dy);
                const int d = values[i] - centre;
                bright[i] = d > limit ? d : 0;
                dark[i] = -d > limit ? -d : 0;
            }
            const int brightScore = arcScore(bright, setting.arc);
            const int darkScore = arcScore(dark, setting.arc);
            if (brightScore > 0 || darkScore > 0) {
                pixel(x, y).corner = brightScore > 0 ? 0x40 : 0x80;
                pixel(x, y).score = static_cast<Lum8u>(std::max(brightScore, darkScore));
                if (setting.has(lumFastNOrientation)) {
                    pixel(x, y).direction = directionOf(values, centre, setting);
                    pixel(x, y).corner |= static_cast<Lum8u>(pixel(x, y).direction.bin);
                }
            }
        }
    }
    if (setting.has(lumFastNNonMaxSuppression)) {
        const std::vector<Found> all = result.pixels;
        const auto scoreAt = [&](int x, int y) {
            const bool isOutside = x < left || y < top || x >= right || y >= bottom;
            return isOutside ? 0
                             : int{all[static_cast<std::size_t>(y - offset.y) * roiWidth +
                                       static_cast<std::size_t>(x - offset.x)]
                                       .score};
        };
        for (int y = top; y < bottom; ++y) {
            for (int x = left; x < right; ++x) {
                for (int i = 0; i < 9; ++i) {
                    if (scoreAt(x + i % 3 - 1, y + i / 3 - 1) > scoreAt(x, y)) {
                        pixel(x, y).corner = 0;
                        pixel(x, y).score = 0;
                    }
                }
            }
        }
    }
    result.count = static_cast<int>(std::count_if(result.pixels.begin(), result.pixels.end(),
                                                  [](const Found& found) { return found.corner != 0; }));
    return result;
}

}  // namespace lumcv::test::fast
