// Rows of watershed and gradient segmentation and of boundaries: 200 seeds in a scene of discs on waves, with the noise
// of a camera.
#include <cmath>
#include <cstring>

#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

template <typename T, typename Value>
void draw(View<const T> image, LumiSize size, int channels, Value value)
{
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width * channels; ++x)
            const_cast<T*>(image.row(y))[x] = T(value(x / channels, y, x % channels));
}

template <typename T>
View<const T> scene(Job& job, int channels)
{
    const auto image = job.source<T>(channels);
    std::mt19937 random{1};
    draw(image, job.size(), channels, [&](int x, int y, int channel) {
        const int number = x / 96 * 7 + y / 80 * 13;
        const double inside = std::hypot(x % 96 - 48, y % 80 - 40) < 12 + number % 27 ? 1 : 0;
        const double shade = 110 + 40 * std::sin(x / 40.0 + channel) * std::cos(y / 30.0);
        return shade + inside * ((number + channel) % 2 ? 60 : -60) + int(random() >> 24) % 8;
    });
    return image;
}

/// Labels 1 to 200, each in a square of three by three pixels; in small images fewer.
template <typename T>
View<const T> seeds(Job& job)
{
    const LumiSize size = job.size();
    const View<const T> image{job.block<T>(std::size_t(size.width) * size.height), Lum32s(size.width * sizeof(T))};
    draw(image, size, 1, [&](int x, int y, int) {
        const int column = x * 20 / size.width, row = y * 10 / size.height;
        const int left = (2 * column + 1) * size.width / 40, top = (2 * row + 1) * size.height / 20;
        return std::abs(x - left) <= 1 && std::abs(y - top) <= 1 ? row * 20 + column + 1 : 0;
    });
    return image;
}

template <typename T>
void restore(View<T> marker, View<const T> from, LumiSize size)
{
    for (int y = 0; y < size.height; ++y)
        std::memcpy(marker.row(y), from.row(y), size.width * sizeof(T));
}

// The markers are set anew for each call, which is part of what is measured.
template <int channels, typename Height, typename Label>
auto segmentation(LumStatus (*query)(LumiSize, Lum32s*),
                  LumStatus (*f)(const Height*, Lum32s, Label*, Lum32s, LumiSize, Lum32u, Lum32s, Lum8u*), Lum32u norm,
                  Lum32s flag)
{
    return [=](Job& job) -> Call {
        const auto s = scene<Height>(job, channels);
        const auto m = job.accumulator<Label>();
        const auto from = seeds<Label>(job);
        const LumiSize size = job.size();
        Lum32s bufferSize = 0;
        query(size, &bufferSize);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        return [=] {
            restore(m, from, size);
            return f(s.pixels, s.step, m.pixels, m.step, size, norm, flag, buffer);
        };
    };
}

auto gradient(Lum32u norm, Lum32s flag)
{
    return segmentation<1>(lumiSegmentGradientGetBufferSize_8u_C1R, lumiSegmentGradient_8u_C1IR, norm, flag);
}

auto colorGradient(Lum32u norm, Lum32s flag)
{
    return segmentation<3>(lumiSegmentGradientGetBufferSize_8u_C3R, lumiSegmentGradient_8u_C3IR, norm, flag);
}

auto bytes(Lum32u norm, Lum32s flag)
{
    return segmentation<1>(lumiSegmentWatershedGetBufferSize_8u_C1R, lumiSegmentWatershed_8u_C1IR, norm, flag);
}

auto words(Lum32u norm, Lum32s flag)
{
    return segmentation<1>(lumiSegmentWatershedGetBufferSize_8u16u_C1R, lumiSegmentWatershed_8u16u_C1IR, norm, flag);
}

auto floats(Lum32u norm, Lum32s flag)
{
    return segmentation<1>(lumiSegmentWatershedGetBufferSize_32f16u_C1R, lumiSegmentWatershed_32f16u_C1IR, norm, flag);
}

// Labels in patches with ragged edges.
template <typename T>
auto boundaries(LumStatus (*f)(T*, Lum32s, LumiSize, T, Lum32u), Lum32u norm)
{
    return [=](Job& job) -> Call {
        const auto m = job.accumulator<T>();
        const LumiSize size = job.size();
        const View<const T> from{job.block<T>(std::size_t(size.width) * size.height), Lum32s(size.width * sizeof(T))};
        std::mt19937 random{1};
        draw(from, size, 1, [&](int x, int y, int) {
            return 1 + (x + int(random() >> 30)) / 37 % 15 + (y + int(6 * std::sin(x / 9.0)) + 6) / 29 % 15 * 16;
        });
        return [=] {
            restore(m, from, size);
            return f(m.pixels, m.step, size, T(~T{0}), norm);
        };
    };
}

const Rows rows{{
    {"lumiSegmentGradient_8u_C1IR", "200 seeds", {}, gradient(0, 0)},
    {"lumiSegmentGradient_8u_C3IR", "200 seeds", {453, 150}, colorGradient(0, 0)},
    {"lumiSegmentGradient_8u_C3IR", "4 neighbours", {}, colorGradient(1, 0)},
    {"lumiSegmentGradient_8u_C3IR", "boundaries", {}, colorGradient(0, lumSegmentBound8)},
    {"lumiSegmentWatershed_8u_C1IR", "by level", {}, bytes(0, lumSegmentByLevel)},
    {"lumiSegmentWatershed_8u_C1IR", "by level, 4 neighbours", {}, bytes(1, lumSegmentByLevel)},
    {"lumiSegmentWatershed_8u_C1IR", "by level, boundaries", {}, bytes(0, lumSegmentByLevel | lumSegmentBound8)},
    {"lumiSegmentWatershed_8u_C1IR", "by cost, norm 0", {}, bytes(0, lumSegmentByCost)},
    {"lumiSegmentWatershed_8u_C1IR", "by cost, norm 1", {}, bytes(1, lumSegmentByCost)},
    {"lumiSegmentWatershed_8u_C1IR", "by cost, norm 2", {}, bytes(2, lumSegmentByCost)},
    {"lumiSegmentWatershed_8u_C1IR", "by cost, norm 3", {}, bytes(3, lumSegmentByCost)},
    {"lumiSegmentWatershed_8u16u_C1IR", "by level", {}, words(0, lumSegmentByLevel)},
    {"lumiSegmentWatershed_8u16u_C1IR", "by cost, norm 2", {}, words(2, lumSegmentByCost)},
    {"lumiSegmentWatershed_32f16u_C1IR", "by cost, norm 2", {}, floats(2, lumSegmentByCost)},
    {"lumiSegmentWatershed_32f16u_C1IR", "by cost, norm 3", {}, floats(3, lumSegmentByCost)},
    {"lumiBoundSegments_8u_C1IR", "4 neighbours", {}, boundaries(lumiBoundSegments_8u_C1IR, 1)},
    {"lumiBoundSegments_8u_C1IR", "8 neighbours", {}, boundaries(lumiBoundSegments_8u_C1IR, 0)},
    {"lumiBoundSegments_16u_C1IR", "8 neighbours", {}, boundaries(lumiBoundSegments_16u_C1IR, 0)},
}};

}  // namespace
