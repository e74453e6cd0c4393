// Dilation and erosion by the cross of 3x3: several output rows at a time, so that a row is loaded once for its
// neighbours above and below.
#include "morph/area.hpp"

namespace lumcv {
namespace {

template <int rows, class Operation, class T>
[[gnu::flatten, gnu::noinline]] void crossRows(Plane<const T> src, Plane<T> dst, int64_t n, int64_t channels,
                                               int64_t rowsAhead)
{
    const T* s[rows + 2];
    T* d[rows];
    for (int i = 0; i < rows + 2; ++i)
        s[i] = src.row(i - 1);
    for (int i = 0; i < rows; ++i)
        d[i] = dst.row(i);
    const int64_t srcAhead = src.step * rowsAhead, dstAhead = dst.step * rowsAhead;
    simd::eachAtLeastOnce<lanesIn<T, 1>>(0, n, [=](int64_t x, auto lanes) {
        using V = simd::Vec<T, lanes>;
        V above = simd::load<lanes>(s[0] + x);
        V centre = simd::load<lanes>(s[1] + x);
        for (int i = 0; i < rows; ++i) {
            if constexpr (lanes > 1) {
                simd::prefetch<lanes>(rowAt(s[i + 2] + x, srcAhead, 1));
                simd::prefetch<lanes>(rowAt(static_cast<const T*>(d[i] + x), dstAhead, 1));
            }
            const V below = simd::load<lanes>(s[i + 2] + x);
            V extreme = Operation{}(above, simd::load<lanes>(s[i + 1] + x - channels));
            extreme = Operation{}(extreme, centre);
            extreme = Operation{}(extreme, simd::load<lanes>(s[i + 1] + x + channels));
            simd::store(d[i] + x, Operation{}(extreme, below));
            above = centre;
            centre = below;
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
