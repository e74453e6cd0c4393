// Rows of labels and speckles: of a scene with soft shading, outlines and the noise of a camera, and of noise alone,
// which is nothing but small regions.
#include <cstring>

#include "bench/feature/scene.hpp"

namespace {

using namespace lumcv::bench;

constexpr int threshold = 128;

// Pixels of the scene that are bright enough.
template <typename T>
void drawMarkers(View<T> markers, LumiSize size, Scene scene)
{
    Job drawing(size);
    const auto image = draw(drawing, scene);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            markers.row(y)[x] = image.row(y)[x] >= threshold ? 255 : 0;
}

auto intoNumbers(LumiDistanceNorm norm, Scene scene)
{
    return [=](Job& job) -> Call {
        const auto markers = job.source<Lum8u>();
        drawMarkers(View<Lum8u>{const_cast<Lum8u*>(markers.pixels), markers.step}, job.size(), scene);
        const auto labels = job.destination<Lum32s>();
        const LumiSize size = job.size();
        Lum32s bufferSize = 0;
        lumiLabelMarkersGetBufferSize_8u32s_C1R(size, &bufferSize);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        return [=] {
            Lum32s number = 0;
            return lumiLabelMarkers_8u32s_C1R(markers.pixels, markers.step, labels.pixels, labels.step, size, 1,
                                              0x7FFFFFFE, norm, &number, buffer);
        };
    };
}

// Labels are markers as good as any: the image can be labelled again and again.
template <typename T>
auto inPlace(LumStatus (*label)(T*, Lum32s, LumiSize, Lum32s, Lum32s, LumiDistanceNorm, Lum32s*, Lum8u*),
             Lum32s maxLabel, Scene scene)
{
    return [=](Job& job) -> Call {
        const auto markers = job.accumulator<T>();
        drawMarkers(markers, job.size(), scene);
        const LumiSize size = job.size();
        Lum32s bufferSize = 0;
        lumiLabelMarkersGetBufferSize_8u32s_C1R(size, &bufferSize);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        return [=] {
            Lum32s number = 0;
            return label(markers.pixels, markers.step, size, 1, maxLabel, lumDistanceNormInf, &number, buffer);
        };
    };
}

// The image is copied for each call, since the next one would find the speckles overwritten; the copy is measured with
// it.
template <typename T>
auto speckles(LumStatus (*mark)(T*, Lum32s, LumiSize, T, Lum32s, T, LumiNorm, Lum8u*), LumDataType type, T maxPixDiff,
              Scene scene)
{
    return [=](Job& job) -> Call {
        const auto image = job.accumulator<T>();
        const LumiSize size = job.size();
        Job drawing(size);
        const auto drawn = draw(drawing, scene);
        const std::size_t bytes = std::size_t(image.step) * std::size_t(size.height);
        const View<T> original{job.block<T>(bytes / sizeof(T)), image.step};
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                original.row(y)[x] = T(drawn.row(y)[x]);
        Lum32s bufferSize = 0;
        lumiMarkSpecklesGetBufferSize(size, type, 1, &bufferSize);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        return [=] {
            std::memcpy(image.pixels, original.pixels, bytes);
            return mark(image.pixels, image.step, size, T(0), 100, maxPixDiff, lumNormInf, buffer);
        };
    };
}

const Rows rows{{
    {"lumiLabelMarkers_8u32s_C1R", "8 neighbours", {7.2, 7}, intoNumbers(lumDistanceNormInf, discs)},
    {"lumiLabelMarkers_8u32s_C1R", "4 neighbours", {}, intoNumbers(lumDistanceNormL1, discs)},
    {"lumiLabelMarkers_8u32s_C1R", "noise", {}, intoNumbers(lumDistanceNormInf, noiseAlone)},
    {"lumiLabelMarkers_8u_C1IR", "8 neighbours", {}, inPlace(lumiLabelMarkers_8u_C1IR, 254, discs)},
    {"lumiLabelMarkers_16u_C1IR", "8 neighbours", {}, inPlace(lumiLabelMarkers_16u_C1IR, 65534, discs)},
    {"lumiMarkSpeckles_8u_C1IR", "4", {157, 50}, speckles<Lum8u>(lumiMarkSpeckles_8u_C1IR, lumType8u, 4, discs)},
    {"lumiMarkSpeckles_8u_C1IR", "2", {}, speckles<Lum8u>(lumiMarkSpeckles_8u_C1IR, lumType8u, 2, discs)},
    {"lumiMarkSpeckles_8u_C1IR", "noise", {}, speckles<Lum8u>(lumiMarkSpeckles_8u_C1IR, lumType8u, 8, noiseAlone)},
    {"lumiMarkSpeckles_16u_C1IR", "4", {}, speckles<Lum16u>(lumiMarkSpeckles_16u_C1IR, lumType16u, 4, discs)},
    {"lumiMarkSpeckles_16s_C1IR", "4", {}, speckles<Lum16s>(lumiMarkSpeckles_16s_C1IR, lumType16s, 4, discs)},
    {"lumiMarkSpeckles_32f_C1IR", "4", {}, speckles<Lum32f>(lumiMarkSpeckles_32f_C1IR, lumType32f, 4, discs)},
}};

}  // namespace
