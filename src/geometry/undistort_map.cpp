// Maps of where the pixels of a corrected image come from.
#include "frame/checks.hpp"
#include "geometry/lens.hpp"
#include "lumcv/geometry.h"
#include "simd/control.hpp"

namespace lumcv {
namespace {

using lens::Lens;

constexpr int mapLanes = simd::registerLanes<Lum32f>;

/// Maps of so many elements go past the caches.
constexpr int64_t largeMap = 0x20000;

/// The elements before the first one at which a register can be stored past the caches.
int64_t elementsBeforeRegister(const Lum32f* row)
{
    constexpr uintptr_t registerBytes = mapLanes * sizeof(Lum32f);
    return static_cast<int64_t>((-reinterpret_cast<uintptr_t>(row) & (registerBytes - 1)) / sizeof(Lum32f));
}

template <class Form>
[[gnu::flatten]] void writeRow(const Form& form, const typename Form::Row& row, Lum32f* xRow, Lum32f* yRow,
                               int64_t width, bool isLarge)
{
    const auto cached = [=](int64_t x, auto lanes) {
        const auto places = form.places(row, lens::columnNumbers<lanes>(x));
        simd::store(xRow + x, places.x);
        simd::store(yRow + x, places.y);
    };
    const int64_t head = elementsBeforeRegister(xRow);
    const bool isAligned = reinterpret_cast<uintptr_t>(xRow + head) % (mapLanes * sizeof(Lum32f)) == 0;
    if (!isLarge || !isAligned || elementsBeforeRegister(yRow) != head || head > width)
        return simd::eachAtLeastOnce<2 * mapLanes>(0, width, cached);
    simd::eachOnce<1>(0, head, cached);
    int64_t x = head;
    for (; x + mapLanes <= width; x += mapLanes) {
        const auto places = form.places(row, lens::columnNumbers<mapLanes>(x));
        simd::stream(xRow + x, places.x);
        simd::stream(yRow + x, places.y);
    }
    simd::eachOnce<1>(x, width, cached);
}

template <class Form>
void writeMaps(const Lens& lens, Plane<Lum32f> xMap, Plane<Lum32f> yMap, LumiSize size)
{
    const Form form(lens);
    const bool isLarge = int64_t{size.width} * size.height >= largeMap;
    for (Lum32s y = 0; y < size.height; ++y)
        writeRow(form, form.row(y), xMap.row(y), yMap.row(y), size.width, isLarge);
    if (isLarge)
        simd::fence();
}

/// Not inlined, so that all of it is rounded as the caller of it has set.
[[gnu::noinline]] void writeMapsAsRounded(const Lens& lens, Plane<Lum32f> xMap, Plane<Lum32f> yMap, LumiSize size)
{
    if (lens.p1 == 0 && lens.p2 == 0)
        writeMaps<lens::RadialForm>(lens, xMap, yMap, size);
    else
        writeMaps<lens::TangentialForm>(lens, xMap, yMap, size);
}

LumStatus createMaps(Plane<Lum32f> xMap, Plane<Lum32f> yMap, LumiSize size, const Lens& lens)
{
    const LumStatus status = Checks{}
                                 .notNull(xMap.pixels, yMap.pixels)
                                 .size(size)
                                 .step(xMap, size.width)
                                 .step(yMap, size.width)
                                 .alignment(xMap)
                                 .alignment(yMap)
                                 .require(lens.fx != 0 && lens.fy != 0, lumErrArgument)
                                 .status();
    if (status != lumOk)
        return status;
    const simd::OwnFloatMode rounding(simd::Rounding::toNearest);
    writeMapsAsRounded(lens, xMap, yMap, size);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiCreateMapCameraUndistort_32f_C1R(Lum32f* pxMap, Lum32s xStep, Lum32f* pyMap, Lum32s yStep,
                                               LumiSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1,
                                               Lum32f k2, Lum32f p1, Lum32f p2, Lum8u*)
{
    return createMaps(destination(pxMap, xStep), destination(pyMap, yStep), roiSize,
                      Lens{fx, fy, cx, cy, k1, k2, p1, p2});
}
