// FAST corners: the size queries, and the Init that lays the record.
#include "feature/fast_record.hpp"

#include <array>
#include <climits>
#include <cstddef>

#include "feature/sine.hpp"
#include "frame/byte_counts.hpp"

namespace lumcv::fast {
namespace {

/// A ring of its first quarter, which runs from below the middle to the left.
template <size_t n>
constexpr std::array<RingPoint, 4 * n> turned(const RingPoint (&quarter)[n])
{
    std::array<RingPoint, 4 * n> ring{};
    for (size_t i = 0; i < n; ++i)
        ring[i] = quarter[i];
    for (size_t i = n; i < 4 * n; ++i)
        ring[i] = {static_cast<Lum8s>(-ring[i - n].dy), ring[i - n].dx};
    return ring;
}

constexpr auto ring1 = turned({{0, 1}, {-1, 1}});
constexpr auto ring2 = turned({{0, 2}, {-1, 2}, {-2, 1}});
constexpr auto ring3 = turned({{0, 3}, {-1, 3}, {-2, 2}, {-3, 1}});
constexpr auto ring5 = turned({{0, 5}, {-1, 5}, {-2, 5}, {-3, 4}, {-4, 3}, {-5, 2}, {-5, 1}});
constexpr auto ring7 =
    turned({{0, 7}, {-1, 7}, {-2, 7}, {-3, 6}, {-4, 6}, {-5, 5}, {-6, 4}, {-6, 3}, {-7, 2}, {-7, 1}});
constexpr auto ring9 = [] {
    auto ring = turned({{0, 9},
                        {-1, 9},
                        {-2, 9},
                        {-3, 9},
                        {-4, 8},
                        {-5, 8},
                        {-6, 7},
                        {-7, 6},
                        {-8, 5},
                        {-8, 4},
                        {-9, 3},
                        {-9, 2},
                        {-9, 1}});
    ring[12].dy = -1;  // as documented: a point that comes twice
    return ring;
}();
static_assert(ring9.size() == mostPoints);

const RingPoint* ringOf(Lum32s radius)
{
    switch (radius) {
        case 1:
            return ring1.data();
        case 2:
            return ring2.data();
        case 3:
            return ring3.data();
        case 5:
            return ring5.data();
        case 7:
            return ring7.data();
        default:
            return ring9.data();
    }
}

/// What both the query and Init are told.
struct Geometry
{
    LumiSize imageSize;
    Lum32s radius, arc, bins, mode;
    LumDataType dataType;
    Lum32s numChannels;
};

Checks& checkParameters(Checks& checks, const Geometry& geometry)
{
    return checks.require(geometry.dataType == lumType8u, lumErrDataType)
        .require(geometry.numChannels == 1, lumErrChannels)
        .require(isMode(geometry.mode), lumErrArgument)
        .require(areBins(geometry.bins, geometry.mode), lumErrOutOfRange)
        .require(pointsOfRing(geometry.radius) != 0, lumErrArgument)
        .require(isArc(geometry.arc, geometry.radius), lumErrOutOfRange);
}

LumStatus querySize(const Geometry& geometry, Lum32s* pSpecSize)
{
    Checks checks;
    checks.notNull(pSpecSize).size(geometry.imageSize);
    checkParameters(checks, geometry);
    if (!checks.failed())
        *pSpecSize = pointsOfRing(geometry.radius) * 2 * static_cast<Lum32s>(sizeof(Lum32f)) + fixedBytes;
    return checks.status();
}

LumStatus init(const Geometry& geometry, Lum32f threshold, LumFastNSpec* block)
{
    Checks checks;
    checks.notNull(block).size(geometry.imageSize).require(threshold >= 0, lumErrThreshold);
    checkParameters(checks, geometry);
    if (checks.failed())
        return checks.status();

    auto* const bytes = reinterpret_cast<Lum8u*>(block);
    *bytes = distanceToRecord(block);
    auto* const record = reinterpret_cast<Record*>(bytes + *bytes);
    constexpr auto aboveIntegers = static_cast<Lum32f>(INT_MAX);
    *record = {Record::validIdentity,
               geometry.dataType,
               geometry.numChannels,
               geometry.imageSize,
               geometry.radius,
               geometry.arc,
               geometry.bins,
               geometry.mode,
               threshold,
               threshold < aboveIntegers ? static_cast<Lum32s>(threshold) : INT_MAX,
               ringOf(geometry.radius)};

    const int points = record->points();
    auto* const sines = reinterpret_cast<Lum32f*>(record + 1);
    auto* const cosines = sines + points;
    if (geometry.mode & lumFastNOrientation)
        for (int i = 0; i < points; ++i) {
            const auto angle = static_cast<Lum32f>(i * 2 * 3.14159265358979323846 / points);
            const SineCosine of = sineCosine(static_cast<Lum64f>(angle));
            sines[i] = static_cast<Lum32f>(of.sine);
            cosines[i] = static_cast<Lum32f>(of.cosine);
        }
    cosines[points] = static_cast<Lum32f>(geometry.bins * 0.15915494309189535);
    return lumOk;
}

LumStatus queryScratch(const LumFastNSpec* block, LumiSize roiSize, Lum32s* pBufferSize)
{
    Checks checks;
    checks.notNull(block, pBufferSize);
    if (!checks.failed())
        checks.require(holdsRecord(block), lumErrContext).size(roiSize);
    if (checks.failed())
        return checks.status();
    constexpr int pointLists = 3 * mostPoints * static_cast<int>(sizeof(Lum32s));
    return storeSize(Bytes{6} * (roiSize.width + Bytes{2}) + pointLists, pBufferSize);
}

}  // namespace
}  // namespace lumcv::fast

using namespace lumcv;

LumStatus lumiFastNGetSize(LumiSize srcSize, Lum32s circleRadius, Lum32s N, Lum32s orientationBins, Lum32s mode,
                           LumDataType dataType, Lum32s numChannels, Lum32s* pSpecSize)
{
    return fast::querySize({srcSize, circleRadius, N, orientationBins, mode, dataType, numChannels}, pSpecSize);
}

LumStatus lumiFastNInit(LumiSize srcSize, Lum32s circleRadius, Lum32s N, Lum32s orientationBins, Lum32s mode,
                        Lum32f threshold, LumDataType dataType, Lum32s numChannels, LumFastNSpec* pSpec)
{
    return fast::init({srcSize, circleRadius, N, orientationBins, mode, dataType, numChannels}, threshold, pSpec);
}

LumStatus lumiFastNGetBufferSize(const LumFastNSpec* pSpec, LumiSize dstRoiSize, Lum32s* pBufferSize)
{
    return fast::queryScratch(pSpec, dstRoiSize, pBufferSize);
}
