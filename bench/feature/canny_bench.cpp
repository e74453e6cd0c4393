// Rows of Canny edges: of a scene with soft shading, outlines and the noise of a camera, and of noise alone, which is
// nothing but short edges.
#include <algorithm>
#include <cstdlib>

#include "bench/feature/scene.hpp"

namespace {

using namespace lumcv::bench;

constexpr Lum32f low = 50, high = 120;

auto ofImage(LumiFilterType filter, LumiMaskSize mask, LumiNorm norm, Scene scene)
{
    return [=](Job& job) -> Call {
        const auto s = draw(job, scene);
        const auto d = job.destination<Lum8u>();
        const LumiSize size = job.size();
        Lum32s bufferSize = 0;
        lumiCannyBorderGetSize(size, filter, mask, &bufferSize);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        return [=] {
            return lumiCannyBorder_8u_C1R(s.pixels, s.step, d.pixels, d.step, size, filter, mask, lumBorderReplicate, 0,
                                          low, high, norm, buffer);
        };
    };
}

template <typename T>
using OfPlanes = LumStatus (*)(const T*, Lum64s, const T*, Lum64s, Lum8u*, Lum64s, LumiSizeL, Lum32f, Lum32f, LumiNorm,
                               Lum8u*);

// The planes are the 3x3 Sobel derivatives of the scene.
template <typename T>
auto ofPlanes(OfPlanes<T> edges, LumiNorm norm, Scene scene)
{
    return [=](Job& job) -> Call {
        const auto dx = job.source<T>();
        const auto dy = job.source<T>();
        const auto d = job.destination<Lum8u>();
        const LumiSize size = job.size();
        Job drawing(size);
        const auto image = draw(drawing, scene);
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x) {
                const auto at = [&](int u, int v) {
                    return int(image.row(std::clamp(y + v, 0, size.height - 1))[std::clamp(x + u, 0, size.width - 1)]);
                };
                const_cast<T*>(dx.row(y))[x] =
                    T(at(1, -1) - at(-1, -1) + 2 * (at(1, 0) - at(-1, 0)) + at(1, 1) - at(-1, 1));
                const_cast<T*>(dy.row(y))[x] =
                    T(at(-1, 1) - at(-1, -1) + 2 * (at(0, 1) - at(0, -1)) + at(1, 1) - at(1, -1));
            }
        const LumiSizeL longSize{size.width, size.height};
        Lum64s bufferSize = 0;
        lumiCannyGetSize_L(longSize, &bufferSize);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        return [=] {
            return edges(dx.pixels, dx.step, dy.pixels, dy.step, d.pixels, d.step, longSize, low, high, norm, buffer);
        };
    };
}

template <typename T,
          LumStatus (*edges)(const T*, Lum32s, const T*, Lum32s, Lum8u*, Lum32s, LumiSize, Lum32f, Lum32f, Lum8u*)>
LumStatus shortForm(const T* dx, Lum64s dxStep, const T* dy, Lum64s dyStep, Lum8u* dst, Lum64s dstStep, LumiSizeL size,
                    Lum32f lowThreshold, Lum32f highThreshold, LumiNorm, Lum8u* buffer)
{
    return edges(dx, Lum32s(dxStep), dy, Lum32s(dyStep), dst, Lum32s(dstStep),
                 LumiSize{Lum32s(size.width), Lum32s(size.height)}, lowThreshold, highThreshold, buffer);
}

constexpr OfPlanes<Lum16s> words = shortForm<Lum16s, lumiCanny_16s8u_C1R>;
constexpr OfPlanes<Lum32f> floats = shortForm<Lum32f, lumiCanny_32f8u_C1R>;

const Rows rows{{
    {"lumiCannyBorder_8u_C1R", "L1", {98, 25}, ofImage(lumFilterSobel, lumMask3x3, lumNormL1, discs)},
    {"lumiCannyBorder_8u_C1R", "L2", {85, 25}, ofImage(lumFilterSobel, lumMask3x3, lumNormL2, discs)},
    {"lumiCannyBorder_8u_C1R", "Scharr L1", {}, ofImage(lumFilterScharr, lumMask3x3, lumNormL1, discs)},
    {"lumiCannyBorder_8u_C1R", "5x5 L1", {}, ofImage(lumFilterSobel, lumMask5x5, lumNormL1, discs)},
    {"lumiCannyBorder_8u_C1R", "5x5 L2", {}, ofImage(lumFilterSobel, lumMask5x5, lumNormL2, discs)},
    {"lumiCannyBorder_8u_C1R", "noise L1", {}, ofImage(lumFilterSobel, lumMask3x3, lumNormL1, noiseAlone)},
    {"lumiCannyBorder_8u_C1R", "noise L2", {}, ofImage(lumFilterSobel, lumMask3x3, lumNormL2, noiseAlone)},
    {"lumiCanny_16s8u_C1R", "L1", {32, 10}, ofPlanes(words, lumNormL1, discs)},
    {"lumiCanny_16s8u_C1R", "noise L1", {}, ofPlanes(words, lumNormL1, noiseAlone)},
    {"lumiCanny_16s8u_C1R_L", "L2", {}, ofPlanes(lumiCanny_16s8u_C1R_L, lumNormL2, discs)},
    {"lumiCanny_32f8u_C1R", "L1", {}, ofPlanes(floats, lumNormL1, discs)},
    {"lumiCanny_32f8u_C1R_L", "L2", {}, ofPlanes(lumiCanny_32f8u_C1R_L, lumNormL2, discs)},
}};

}  // namespace
