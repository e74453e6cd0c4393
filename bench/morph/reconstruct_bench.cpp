// Rows of the reconstructions. Each call starts from the same marker, so a copy of it is a part of what is timed.
#include <cmath>
#include <cstring>

#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

template <typename T>
using Reconstruction = LumStatus (*)(const T*, Lum32s, T*, Lum32s, LumiSize, Lum8u*, LumiDistanceNorm);

// A mask and a marker below it, by pixel, of the range 0..255; the pixels are drawn in order.
using Scene = void (*)(int x, int y, int noise, int& mask, int& marker);

// Waves under noise: the marker lowers them, and the reconstruction cuts off their peaks.
void waves(int x, int y, int noise, int& mask, int& marker)
{
    mask = int(128 + 60 * std::sin(x / 40.0) * std::cos(y / 30.0)) + noise % 16;
    marker = mask - 40;
}

// Nothing to do: what it costs to find that out.
void atRest(int x, int y, int noise, int& mask, int& marker)
{
    waves(x, y, noise, mask, marker);
    marker = mask;
}

// Noise alone: each row changes nearly everywhere.
void noise(int, int, int noise, int& mask, int& marker)
{
    mask = noise;
    marker = mask < 60 ? 0 : mask - 60;
}

// Corridors side by side, eight pixels wide, joined at their ends in turn: one seed fills them all, sweep by sweep.
void serpentine(int x, int y, int, int& mask, int& marker)
{
    const bool isWall = x % 9 == 8 && (x / 9 % 2 ? y >= 8 : y < 56);
    mask = isWall ? 0 : 200;
    marker = x == 0 && y == 0 ? 255 : 0;
}

template <typename T>
auto reconstruct(Reconstruction<T> function, LumDataType type, LumiDistanceNorm norm, Scene scene)
{
    return [=](Job& job) -> Call {
        const auto mask = job.source<T>();
        const auto marker = job.accumulator<T>();
        const LumiSize size = job.size();
        T* const first = job.block<T>(std::size_t(marker.step) / sizeof(T) * size.height);
        const View<T> start{first, marker.step};
        std::mt19937 random{1};
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x) {
                int maskValue = 0, markerValue = 0;
                scene(x, y, int(random() >> 24), maskValue, markerValue);
                const_cast<T*>(mask.row(y))[x] = T(maskValue);
                start.row(y)[x] = T(markerValue);
            }
        Lum32s bufferSize = 0;
        lumiMorphReconstructGetBufferSize(size, type, 1, &bufferSize);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        return [=] {
            for (int y = 0; y < size.height; ++y)
                std::memcpy(marker.row(y), start.row(y), std::size_t(size.width) * sizeof(T));
            return function(mask.pixels, mask.step, marker.pixels, marker.step, size, buffer, norm);
        };
    };
}

constexpr LumiDistanceNorm four = lumDistanceNormL1, eight = lumDistanceNormInf;

const Rows rows{{
    {"lumiMorphReconstructDilate_8u_C1IR",
     "rest 8",
     {},
     reconstruct(lumiMorphReconstructDilate_8u_C1IR, lumType8u, eight, atRest)},
    {"lumiMorphReconstructDilate_8u_C1IR",
     "waves 4",
     {},
     reconstruct(lumiMorphReconstructDilate_8u_C1IR, lumType8u, four, waves)},
    {"lumiMorphReconstructDilate_8u_C1IR",
     "waves 8",
     {},
     reconstruct(lumiMorphReconstructDilate_8u_C1IR, lumType8u, eight, waves)},
    {"lumiMorphReconstructDilate_8u_C1IR",
     "noise 4",
     {},
     reconstruct(lumiMorphReconstructDilate_8u_C1IR, lumType8u, four, noise)},
    {"lumiMorphReconstructDilate_8u_C1IR",
     "noise 8",
     {},
     reconstruct(lumiMorphReconstructDilate_8u_C1IR, lumType8u, eight, noise)},
    {"lumiMorphReconstructDilate_8u_C1IR",
     "maze 4",
     {},
     reconstruct(lumiMorphReconstructDilate_8u_C1IR, lumType8u, four, serpentine)},
    {"lumiMorphReconstructErode_8u_C1IR",
     "waves 8",
     {},
     reconstruct(lumiMorphReconstructErode_8u_C1IR, lumType8u, eight, waves)},
    {"lumiMorphReconstructDilate_16u_C1IR",
     "waves 8",
     {},
     reconstruct(lumiMorphReconstructDilate_16u_C1IR, lumType16u, eight, waves)},
    {"lumiMorphReconstructDilate_32f_C1IR",
     "waves 8",
     {},
     reconstruct(lumiMorphReconstructDilate_32f_C1IR, lumType32f, eight, waves)},
    {"lumiMorphReconstructDilate_64f_C1IR",
     "waves 8",
     {},
     reconstruct(lumiMorphReconstructDilate_64f_C1IR, lumType64f, eight, waves)},
}};

}  // namespace
