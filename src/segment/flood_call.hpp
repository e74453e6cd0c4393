// What all flood fills have in common around the fill itself: operands, checks, the record.
#pragma once

#include "frame/checks.hpp"
#include "lumcv/types.h"
#include "segment/flood_rows.hpp"
#include "segment/flood_spans.hpp"

namespace lumcv::flood {

/// What the exports hand on. Values are those of all channels.
template <class T>
struct Call
{
    Plane<T> image;
    LumiSize roiSize;
    LumiPoint seed;
    const T* newValue;
    LumiConnectedComp* region;
    Lum8u* buffer;
};

/// `deltas` are the pointers to those of the family.
template <int channels, class T, class... Deltas>
Checks floodChecks(const Call<T>& call, const Deltas*... deltas)
{
    Checks checks;
    checks.notNull(call.image.pixels, call.region, call.buffer, call.newValue, deltas...)
        .size(call.roiSize)
        .step(call.image, rowElements(call.roiSize.width, channels))
        .alignment(call.image)
        .require(call.seed.x >= 0 && call.seed.x < call.roiSize.width, lumErrOutOfRange)
        .require(call.seed.y >= 0 && call.seed.y < call.roiSize.height, lumErrOutOfRange);
    return checks;
}

template <int channels, class T>
Values<T, channels> pixelAt(Plane<T> image, LumiPoint place)
{
    Values<T, channels> values;
    for (int c = 0; c < channels; ++c)
        values.of[c] = image.row(place.y)[int64_t{place.x} * channels + c];
    return values;
}

template <int channels, class T>
LumStatus report(const Region& region, const T* newValue, LumiConnectedComp* pRegion)
{
    LumiConnectedComp record{};
    record.area = static_cast<Lum64f>(region.area);
    for (int c = 0; c < channels; ++c)
        record.value[c] = newValue[c];
    record.rect = {static_cast<Lum32s>(region.left), static_cast<Lum32s>(region.top),
                   static_cast<Lum32s>(region.right - region.left + 1),
                   static_cast<Lum32s>(region.bottom - region.top + 1)};
    *pRegion = record;
    return lumOk;
}

}  // namespace lumcv::flood
