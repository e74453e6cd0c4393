// The record of FAST corners: where it lies in the caller's block and what it may hold.
#pragma once

#include "frame/checks.hpp"
#include "lumcv/feature.h"

namespace lumcv::fast {

inline constexpr int mostPoints = 52;

/// The points of a radius' ring; 0 if the radius has none.
constexpr int pointsOfRing(Lum32s radius)
{
    switch (radius) {
        case 1:
            return 8;
        case 2:
            return 12;
        case 3:
            return 16;
        case 5:
            return 28;
        case 7:
            return 40;
        case 9:
            return mostPoints;
        default:
            return 0;
    }
}

/// From the middle.
struct RingPoint
{
    Lum8s dx, dy;
};

struct Record
{
    static constexpr uint64_t validIdentity = 0x14B617390;

    uint64_t identity;
    Lum32s dataType;
    Lum32s numChannels;
    LumiSize imageSize;
    Lum32s radius;
    Lum32s arc;
    Lum32s bins;
    Lum32s mode;
    Lum32f threshold;
    Lum32s integerThreshold;
    const RingPoint* ring;

    // Behind it: the sines, the cosines, one of each for every point, and the bins per radian.

    int points() const
    {
        return pointsOfRing(radius);
    }

    const Lum32f* sines() const
    {
        return reinterpret_cast<const Lum32f*>(this + 1);
    }

    const Lum32f* cosines() const
    {
        return sines() + points();
    }

    Lum32f binsPerRadian() const
    {
        return cosines()[points()];
    }
};
static_assert(sizeof(Record) == 56);

/// What a block is longer than its tables: the distance, the record and the bins per radian.
inline constexpr int fixedBytes = 68;
static_assert(fixedBytes == 8 + sizeof(Record) + sizeof(Lum32f));

constexpr bool isMode(Lum32s mode)
{
    constexpr Lum32s all = lumFastNOrientation | lumFastNNonMaxSuppression | lumFastNCorners | lumFastNScore;
    return (mode & ~all) == 0 && (mode & lumFastNCorners) != 0 &&
           ((mode & lumFastNNonMaxSuppression) == 0 || (mode & lumFastNScore) != 0);
}

constexpr bool areBins(Lum32s bins, Lum32s mode)
{
    return (mode & lumFastNOrientation) == 0 || (bins >= 1 && bins <= 64);
}

constexpr bool isArc(Lum32s arc, Lum32s radius)
{
    const int points = pointsOfRing(radius);
    return arc >= (points / 2 | 1) && arc <= points;
}

/// The multiple of 8 behind the first byte of a block.
inline Lum8u distanceToRecord(const LumFastNSpec* block)
{
    return static_cast<Lum8u>(8 - reinterpret_cast<uintptr_t>(block) % 8);
}

inline const Record& recordIn(const LumFastNSpec* block)
{
    const auto* const bytes = reinterpret_cast<const Lum8u*>(block);
    return *reinterpret_cast<const Record*>(bytes + distanceToRecord(block));
}

inline bool holdsRecord(const LumFastNSpec* block)
{
    return *reinterpret_cast<const Lum8u*>(block) == distanceToRecord(block) &&
           static_cast<Lum32u>(recordIn(block).identity) == static_cast<Lum32u>(Record::validIdentity);
}

}  // namespace lumcv::fast
