// Sizes and Init of inpainting.
#include <algorithm>

#include "distance/inpaint_state.hpp"
#include "frame/checks.hpp"
#include "frame/room.hpp"
#include "simd/simd.hpp"

namespace lumcv {

namespace {

/// Above this the table of neighbours would not fit 31 bits by far.
constexpr Lum32f greatestRadius = 1 << 20;

}  // namespace

InpaintGeometry inpaintGeometry(Plane<const Lum8u> mask, LumiSize roiSize, Lum32f radius)
{
    InpaintGeometry geometry{};
    Lum32s left = roiSize.width, right = -1, top = roiSize.height, bottom = -1;
    Lum64s count = 0;
    for (Lum32s y = 0; y < roiSize.height; ++y) {
        const Lum8u* const row = mask.row(y);
        Lum32s first = -1, last = -1;
        for (Lum32s x = 0; x < roiSize.width; ++x)
            if (row[x]) {
                if (first < 0)
                    first = x;
                last = x;
                ++count;
            }
        if (first < 0)
            continue;
        left = std::min(left, first);
        right = std::max(right, last);
        top = std::min(top, y);
        bottom = y;
    }
    if (count == 0)
        return geometry;
    const Lum64f bounded = std::min(radius, greatestRadius);
    geometry.reach = static_cast<Lum32s>(bounded);
    const auto ringSide = static_cast<Lum32s>(2 * bounded + 1);
    geometry.ring = {ringSide, ringSide};
    const Lum64s margin = Lum64s{geometry.reach} + 1;
    const auto extended = [margin](Lum64s begin, Lum64s end, Lum64s limit, Lum32s& first, Lum32s& length) {
        first = static_cast<Lum32s>(std::max<Lum64s>(begin - margin, 0));
        length = static_cast<Lum32s>(std::min(end + margin, limit) - first);
    };
    extended(left, Lum64s{right} + 1, roiSize.width, geometry.x0, geometry.width);
    extended(top, Lum64s{bottom} + 1, roiSize.height, geometry.y0, geometry.height);
    // more do not fit the size query
    geometry.count = static_cast<Lum32s>(std::min<Lum64s>(count, INT_MAX));
    return geometry;
}

namespace {

constexpr LumiSize crossSize{3, 3};
constexpr Lum8u crossElement[9] = {0, 1, 0, 1, 1, 1, 0, 1, 0};

template <class Number>
constexpr Number padded(Number bytes)
{
    return roundedUp(bytes, inpaintAlignment);
}

struct Sizes
{
    Bytes spec, buffer;
    Lum32s wideSpec, crossSpec;  ///< of the morphology records
};

LumStatus calculate(const InpaintGeometry& geometry, LumiInpaintMethod method, Lum32s channels, Sizes& sizes)
{
    Lum32s wideBuffer = 0, crossBuffer = 0;
    const LumStatus status =
        Checks{}
            .then(lumiMorphologyBorderGetSize_8u_C1R(geometry.size(), geometry.ring, &sizes.wideSpec, &wideBuffer))
            .then(lumiMorphologyBorderGetSize_8u_C1R(geometry.size(), crossSize, &sizes.crossSpec, &crossBuffer))
            .status();
    if (status != lumOk)
        return status;
    const Bytes w = geometry.width, h = geometry.height, n = geometry.side();
    const Bytes distance = padded(4 * w) * h;
    const Bytes records =
        (roundedUp(Bytes{sizes.wideSpec}, 16) + roundedUp(Bytes{sizes.crossSpec}, 16) + 207) / 64 * 64;
    sizes.buffer = Bytes{wideBuffer} + crossBuffer + n * n;
    sizes.spec = padded(8 * Bytes{geometry.count}) + padded(inpaintNeighbourBytes * n * n) + distance +
                 2 * h * padded(w) + (method == lumInpaintByFront ? distance : 0) + records +
                 padded(4 * channels * w) * h + 64;
    return fits<Lum32s>(sizes.spec) && fits<Lum32s>(sizes.buffer) ? lumOk : lumErrSizeTooLarge;
}

bool isMethod(LumiInpaintMethod method)
{
    return method <= lumInpaintByIsophote;
}

LumStatus getSize(Plane<const Lum8u> mask, LumiSize roiSize, Lum32f radius, LumiInpaintMethod method, Lum32s channels,
                  Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    const LumStatus status = Checks{}
                                 .notNull(mask.pixels)
                                 .step(mask, roiSize.width)
                                 .size(roiSize)
                                 .notNull(pSpecSize, pBufferSize)
                                 .require(radius >= 1 && isMethod(method), lumErrArgument)
                                 .require(channels == 1 || channels == 3, lumErrValue)
                                 .status();
    if (status != lumOk)
        return status;
    const InpaintGeometry geometry = inpaintGeometry(mask, roiSize, radius);
    Sizes sizes{192, 0, 0, 0};
    if (geometry.count != 0) {
        const LumStatus sizeStatus = calculate(geometry, method, channels, sizes);
        if (sizeStatus != lumOk)
            return sizeStatus;
    }
    return storeSizes(sizes.spec, pSpecSize, sizes.buffer, pBufferSize);
}

/// Lays the table of neighbours. It serves pixels around which the whole square lies in the work rectangle; where none
/// does, it stays empty, and offsets within the rectangle's images fit their words.
void layNeighbours(LumiInpaintState& state, Lum32f radius)
{
    if (2 * state.reach >= state.subWidth || 2 * state.reach >= state.subHeight)
        return;
    Lum32s count = 0;
    for (Lum32s dy = -state.reach; dy <= state.reach; ++dy)
        for (Lum32s dx = -state.reach; dx <= state.reach; ++dx) {
            if ((dx == 0 && dy == 0) || static_cast<Lum32f>(dx * dx + dy * dy) > radius * radius)
                continue;
            state.pNeighbours[count++] = {-dx,
                                          -dy,
                                          inpaintWeight(state.method, dx, dy),
                                          dy * state.maskStride + dx,
                                          dy * (state.distanceStride / 4) + dx,
                                          dy * (state.gradientStride / 2) + dx * 2 * state.channels};
        }
    state.neighbourCount = count;
}

/// Lists the pixels that have a distance, and sorts them.
void layOrder(LumiInpaintState& state)
{
    Lum32s count = 0;
    for (Lum32s y = 0; y < state.subHeight && count < state.count; ++y) {
        const Lum32f* const distances = rowAt(state.pDistance, state.distanceStride, y);
        for (Lum32s x = 0; x < state.subWidth && count < state.count; ++x)
            if (distances[x] > 0) {
                const auto key = __builtin_bit_cast(uint64_t, static_cast<Lum64f>(distances[x]));
                // the low 29 bits of a widened float are zero
                state.pOrder[count++] = key | static_cast<uint64_t>(y * state.subWidth + x);
            }
    }
    std::sort(state.pOrder, state.pOrder + count);
    state.entryCount = count;
}

LumStatus layState(LumiInpaintState& state, Lum8u* storage, const InpaintGeometry& geometry, const Sizes& sizes,
                   Plane<const Lum32f> dist, Plane<const Lum8u> mask, Lum32f radius, Lum8u* pBuffer)
{
    state.x0 = geometry.x0;
    state.y0 = geometry.y0;
    state.subWidth = geometry.width;
    state.subHeight = geometry.height;
    state.count = geometry.count;
    state.reach = geometry.reach;
    state.maskStride = padded(geometry.width);
    state.distanceStride = padded(4 * geometry.width);
    state.gradientStride = padded(4 * state.channels * geometry.width);
    state.normalStride = state.method == lumInpaintByFront ? state.distanceStride : 0;

    Room room(storage, inpaintAlignment);
    const auto n = static_cast<int64_t>(geometry.side()), h = int64_t{geometry.height};
    state.pSpecWide = reinterpret_cast<LumiMorphMaskRecord*>(room.take<Lum8u>(sizes.wideSpec, 8));
    state.pSpecCross = reinterpret_cast<LumiMorphMaskRecord*>(room.take<Lum8u>(sizes.crossSpec, 8));
    state.pNeighbours = reinterpret_cast<InpaintNeighbour*>(room.take<Lum8u>(inpaintNeighbourBytes * n * n));
    state.pOrder = room.take<InpaintEntry>(state.count);
    state.pMaskImage = room.take<Lum8u>(state.maskStride * h);
    state.pWorkImage = room.take<Lum8u>(state.maskStride * h);
    state.pDistance = reinterpret_cast<Lum32f*>(room.take<Lum8u>(state.distanceStride * h));
    state.pGradient = reinterpret_cast<Lum16s*>(room.take<Lum8u>(state.gradientStride * h));
    state.pNormal = reinterpret_cast<Lum16s*>(room.take<Lum8u>(state.normalStride * h));

    // the element is not needed once it has been analysed, and Init needs no other scratch: with a radius between two
    // whole numbers it has more than n * n positions
    const int64_t positions = int64_t{geometry.ring.width} * geometry.ring.height;
    for (int64_t i = 0; i < positions; ++i)
        pBuffer[i] = 1;
    const LumStatus status =
        Checks{}
            .then(lumiMorphologyBorderInit_8u_C1R(geometry.size(), pBuffer, geometry.ring, state.pSpecWide, pBuffer))
            .then(lumiMorphologyBorderInit_8u_C1R(geometry.size(), crossElement, crossSize, state.pSpecCross, pBuffer))
            .status();
    if (status != lumOk)
        return status;

    for (Lum32s y = 0; y < state.subHeight; ++y) {
        const Lum8u* const maskRow = mask.row(state.y0 + y) + state.x0;
        const Lum32f* const distRow = dist.row(state.y0 + y) + state.x0;
        Lum8u* const maskImage = state.pMaskImage + int64_t{y} * state.maskStride;
        Lum32f* const distances = rowAt(state.pDistance, state.distanceStride, y);
        for (Lum32s x = 0; x < state.subWidth; ++x) {
            maskImage[x] = maskRow[x] ? 255 : 0;
            distances[x] = distRow[x];
        }
    }
    layNeighbours(state, radius);
    layOrder(state);
    return lumOk;
}

LumStatus init(LumiInpaintState** ppState, Plane<const Lum32f> dist, Plane<const Lum8u> mask, LumiSize roiSize,
               Lum32f radius, LumiInpaintMethod method, Lum32s channels, Lum8u* pSpec, Lum8u* pBuffer)
{
    auto checks = Checks{}
                      .notNull(mask.pixels)
                      .size(roiSize)
                      .step(mask, roiSize.width)
                      .notNull(dist.pixels, ppState)
                      .step(dist, roiSize.width)
                      .alignment(dist);
    if (checks.failed())
        return checks.status();
    const InpaintGeometry geometry = inpaintGeometry(mask, roiSize, radius >= 1 ? radius : 1);
    checks.notNull(pSpec)
        .require(pBuffer != nullptr || geometry.count == 0, lumErrNullPointer)
        .require(radius >= 1 && isMethod(method), lumErrArgument);
    Sizes sizes{};
    if (!checks.failed() && geometry.count != 0)
        checks.then(calculate(geometry, method, channels, sizes));
    if (checks.failed())
        return checks.status();

    auto* const state = alignedIn<LumiInpaintState>(pSpec);
    *state = {};
    state->width = roiSize.width;
    state->height = roiSize.height;
    state->channels = channels;
    state->method = method;
    if (geometry.count != 0) {
        auto* const storage = reinterpret_cast<Lum8u*>(state + 1);
        checks.then(layState(*state, storage, geometry, sizes, dist, mask, radius, pBuffer));
    }
    if (!checks.failed())
        *ppState = reinterpret_cast<LumiInpaintState*>(pSpec);
    return checks.status();
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiInpaintGetSize(const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32f radius,
                             LumiInpaintMethod method, Lum32s channels, Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    return getSize(source(pMask, maskStep), roiSize, radius, method, channels, pSpecSize, pBufferSize);
}

LumStatus lumiInpaintInit_8u_C1R(LumiInpaintState** ppState, const Lum32f* pDist, Lum32s distStep, const Lum8u* pMask,
                                 Lum32s maskStep, LumiSize roiSize, Lum32f radius, LumiInpaintMethod method,
                                 Lum8u* pSpec, Lum8u* pBuffer)
{
    return init(ppState, source(pDist, distStep), source(pMask, maskStep), roiSize, radius, method, 1, pSpec, pBuffer);
}

LumStatus lumiInpaintInit_8u_C3R(LumiInpaintState** ppState, const Lum32f* pDist, Lum32s distStep, const Lum8u* pMask,
                                 Lum32s maskStep, LumiSize roiSize, Lum32f radius, LumiInpaintMethod method,
                                 Lum8u* pSpec, Lum8u* pBuffer)
{
    return init(ppState, source(pDist, distStep), source(pMask, maskStep), roiSize, radius, method, 3, pSpec, pBuffer);
}
