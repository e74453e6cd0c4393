// Boundaries between labels. A pixel sees its neighbours as they have become, so that a mark to the left of it keeps it
// from being marked for the same reason.
#include "segment/boundaries.hpp"

#include "frame/checks.hpp"
#include "lumcv/segment.h"
#include "simd/simd.hpp"

namespace lumcv {
namespace {

/// Pixel x of a row, for the neighbours in the row above.
template <class Label>
bool meetsAbove(const Label* row, const Label* above, int64_t x, int64_t width, Label val, bool eightNeighbours)
{
    const auto meets = [=](int64_t i) { return above[i] != val && above[i] != row[x]; };
    return meets(x) || (eightNeighbours && ((x > 0 && meets(x - 1)) || (x + 1 < width && meets(x + 1))));
}

template <class Label>
bool meetsLeft(const Label* row, int64_t x, Label val)
{
    return x > 0 && row[x - 1] != val && row[x - 1] != row[x];
}

}  // namespace

template <class Label>
void markBoundaries(Plane<Label> marker, LumiSize size, Label val, bool eightNeighbours)
{
    for (int64_t y = 0; y < size.height; ++y) {
        Label* const row = marker.row(y);
        for (int64_t x = 0; x < size.width; ++x)
            if (meetsLeft(row, x, val) ||
                (y > 0 && meetsAbove(row, marker.row(y - 1), x, size.width, val, eightNeighbours)))
                row[x] = val;
    }
}

template void markBoundaries(Plane<Lum8u>, LumiSize, Lum8u, bool);
template void markBoundaries(Plane<Lum16u>, LumiSize, Lum16u, bool);

namespace {

template <class Label>
LumStatus bound(Plane<Label> marker, LumiSize size, Label val, Lum32u norm)
{
    const auto checks = Checks{}
                            .notNull(marker.pixels)
                            .size(size)
                            .step(marker, size.width)
                            .alignment(marker)
                            .require(norm <= 1, lumErrArgument);
    if (checks.failed())
        return checks.status();
    markBoundaries(marker, size, val, norm == 0);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiBoundSegments_8u_C1IR(Lum8u* pMarker, Lum32s markerStep, LumiSize roiSize, Lum8u val, Lum32u norm)
{
    return bound(destination(pMarker, markerStep), roiSize, val, norm);
}

LumStatus lumiBoundSegments_16u_C1IR(Lum16u* pMarker, Lum32s markerStep, LumiSize roiSize, Lum16u val, Lum32u norm)
{
    return bound(destination(pMarker, markerStep), roiSize, val, norm);
}
