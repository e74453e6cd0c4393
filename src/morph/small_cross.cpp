// Dilation and erosion by the cross of 3x3: several output rows at a time, so that a row is loaded once for its
// neighbours above and below.
#include "morph/area.hpp"

namespace lumcv {
namespace {

template <int rows, class Operation, class T>
[[gnu::flatten, gnu::noinline]] void crossRows(Plane<const T> src, Plane<T> dst, int64_t n, int64_t channels,
                                               int64_t rowsAhead)
{
    const int64_t srcStep = src.step, dstStep = dst.step;
    const int64_t srcAhead = srcStep * rowsAhead, dstAhead = dstStep * rowsAhead;
    const T* const srcFirst = src.pixels;
    T* const dstFirst = dst.pixels;
    simd::eachAtLeastOnce<lanesIn<T, 2>>(0, n, [=](int64_t x, auto lanes) {
        using V = simd::Vec<T, lanes>;
        const T* row = srcFirst + x;
        V above = simd::load<lanes>(rowAt(row, srcStep, -1));
        V centre = simd::load<lanes>(row);
        for (int i = 0; i < rows; ++i) {
            T* const to = rowAt(dstFirst + x, dstStep, i);
            const T* const next = rowAt(row, srcStep, 1);
            if constexpr (lanes > 1) {
                simd::prefetch<lanes>(rowAt(next, srcAhead, 1));
                simd::prefetch<lanes>(static_cast<const T*>(rowAt(to, dstAhead, 1)));
            }
            const V below = simd::load<lanes>(next);
            V extreme = Operation{}(above, simd::load<lanes>(row - channels));
            extreme = Operation{}(extreme, centre);
            extreme = Operation{}(extreme, simd::load<lanes>(row + channels));
            simd::store(to, Operation{}(extreme, below));
            above = centre;
            centre = below;
            row = next;
        }
    });
}

}  // namespace

template <class Operation, class T>
void smallCross(Area<T> area)
{
    constexpr int step = 4;
    int64_t y = 0;
    const auto cross = [&]<int rows>(simd::Lanes<rows>, int64_t ahead) {
        crossRows<rows, Operation>(Plane<const T>{area.src.row(y), area.src.step},
                                   Plane<T>{area.dst.row(y), area.dst.step}, area.elements, area.channels, ahead);
    };
    for (; y + step <= area.height; y += step)
        cross(simd::Lanes<step>{}, y + 2 * step <= area.height ? step : 0);
    for (; y < area.height; ++y)
        cross(simd::Lanes<1>{}, 0);
}

template void smallCross<Maximum>(Area<Lum8u>);
template void smallCross<Maximum>(Area<Lum16u>);
template void smallCross<Maximum>(Area<Lum16s>);
template void smallCross<Maximum>(Area<Lum32f>);
template void smallCross<Minimum>(Area<Lum8u>);
template void smallCross<Minimum>(Area<Lum16u>);
template void smallCross<Minimum>(Area<Lum16s>);
template void smallCross<Minimum>(Area<Lum32f>);

}  // namespace lumcv
