// The slopes of a level of an optical flow.
#include "pyramid/flow_slopes.hpp"

#include "filter/derivative.hpp"
#include "frame/checks.hpp"
#include "simd/simd.hpp"

namespace lumcv {

namespace {

constexpr Lum32f slopeScale = 0.03125f;  // of a Scharr derivative, whose weights on one side are 16, two pixels apart

template <class T, class Body>
[[gnu::always_inline]] inline void eachPixel(Plane<T> plane, LumiSize size, Body body)
{
    for (int64_t y = 0; y < size.height; ++y)
        simd::eachOnce<simd::restLanes>(0, size.width,
                                        [=](int64_t x, auto lanes) { body(plane.row(y) + x, x, y, lanes); });
}

[[gnu::flatten]] void halve(Plane<Lum16s> plane, LumiSize size)
{
    eachPixel(plane, size, [](Lum16s* p, int64_t, int64_t, auto lanes) { simd::store(p, simd::load<lanes>(p) >> 4); });
}

[[gnu::flatten]] void scale(Plane<Lum32f> plane, LumiSize size)
{
    eachPixel(plane, size, [](Lum32f* p, int64_t, int64_t, auto lanes) {
        simd::store(p, simd::load<lanes>(p) * simd::broadcast<lanes>(slopeScale));
    });
}

[[gnu::flatten]] void scaled(Plane<const Lum16u> image, Plane<Lum32f> plane, LumiSize size)
{
    eachPixel(plane, size, [=](Lum32f* p, int64_t x, int64_t y, auto lanes) {
        simd::store(p, simd::loadFloat<lanes>(image.row(y) + x) * simd::broadcast<lanes>(slopeScale));
    });
}

}  // namespace

LumStatus takeSlopes(const Lum8u* image, Lum32s step, LumiSize size, FlowSlopes<Lum16s> slopes, Lum8u* work)
{
    const auto dstStep = static_cast<Lum32s>(slopes.x.step);
    LumStatus status =
        lumDerivScharrX_8u16s(image, step, slopes.x.pixels, dstStep, size, lumMask3x3, lumBorderReplicate, 0, work);
    if (status == lumOk)
        status =
            lumDerivScharrY_8u16s(image, step, slopes.y.pixels, dstStep, size, lumMask3x3, lumBorderReplicate, 0, work);
    if (status != lumOk)
        return status;
    halve(slopes.x, size);
    halve(slopes.y, size);
    return lumOk;
}

namespace {

LumStatus takeFloatSlopes(const Lum32f* image, Lum32s step, LumiSize size, FlowSlopes<Lum32f> slopes, Lum8u* work)
{
    const auto dstStep = static_cast<Lum32s>(slopes.x.step);
    const LumStatus status =
        lumDerivScharrY_32f(image, step, slopes.y.pixels, dstStep, size, lumMask3x3, lumBorderReplicate, 0, work);
    if (status != lumOk)
        return status;
    return lumDerivScharrX_32f(image, step, slopes.x.pixels, dstStep, size, lumMask3x3, lumBorderReplicate, 0, work);
}

}  // namespace

LumStatus takeSlopes(const Lum32f* image, Lum32s step, LumiSize size, FlowSlopes<Lum32f> slopes, Lum8u* work)
{
    const LumStatus status = takeFloatSlopes(image, step, size, slopes, work);
    if (status == lumOk) {
        scale(slopes.x, size);
        scale(slopes.y, size);
    }
    return status;
}

LumStatus takeSlopes(const Lum16u* image, Lum32s step, LumiSize size, FlowSlopes<Lum32f> slopes, Lum8u* work)
{
    const auto src = source(image, step);
    const LumStatus status = Checks{}.notNull(image).alignment(src).status();
    if (status != lumOk)
        return status;
    const auto floatStep = static_cast<int64_t>(size.width) * static_cast<int64_t>(sizeof(Lum32f));
    const auto plane = destination(reinterpret_cast<Lum32f*>(work), floatStep);
    scaled(src, plane, size);
    return takeFloatSlopes(plane.pixels, static_cast<Lum32s>(floatStep), size, slopes, work + floatStep * size.height);
}

}  // namespace lumcv
