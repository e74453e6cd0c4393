// Rows of the flood fills. A fill works in place, so a copy of the image is a part of what is timed.
#include <cmath>
#include <cstring>

#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

constexpr LumiPoint seed{0, 0};
constexpr int background = 100, object = 200, painted = 50, delta = 8;

// What value a pixel has, of the range 0..255; random numbers are drawn in the order of the pixels.
using Scene = int (*)(int x, int y, std::mt19937& random);

// A region with round holes of many sizes.
int holes(int x, int y, std::mt19937&)
{
    const int number = x / 96 * 7 + y / 80 * 13;
    return std::hypot(x % 96 - 48, y % 80 - 40) < 8 + number % 27 ? object : background;
}

// The same, neither of it even.
int noisyHoles(int x, int y, std::mt19937& random)
{
    return holes(x, y, random) + int(random() >> 24) % (delta + 1) - delta / 2;
}

// Small holes close to each other: spans are short.
int dots(int x, int y, std::mt19937&)
{
    return x % 12 >= 9 && y % 8 >= 5 ? object : background;
}

// Three of four pixels belong to the region, in no order.
int specks(int, int, std::mt19937& random)
{
    return random() % 4 ? background : object;
}

int even(int, int, std::mt19937&)
{
    return background;
}

// Bright and dark by and by: no pixel differs much from its neighbours.
int slopes(int x, int y, std::mt19937& random)
{
    return int(128 + 100 * std::sin(x / 60.0) * std::cos(y / 50.0)) + int(random() >> 24) % 3;
}

template <typename T>
struct Image
{
    View<T> work;
    View<const T> start;
    LumiSize size;
    int channels;
    Lum8u* buffer;

    void restore() const
    {
        for (int y = 0; y < size.height; ++y)
            std::memcpy(work.row(y), start.row(y), std::size_t(size.width) * channels * sizeof(T));
    }
};

template <typename T>
Image<T> draw(Job& job, Scene scene, int channels, LumStatus (*query)(LumiSize, Lum32s*))
{
    const auto work = job.accumulator<T>(channels);
    const LumiSize size = job.size();
    const View<T> start{job.block<T>(std::size_t(work.step) / sizeof(T) * size.height), work.step};
    std::mt19937 random{1};
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const int value = scene(x, y, random);
            for (int c = 0; c < channels; ++c)
                start.row(y)[x * channels + c] = T(value);
        }
    Lum32s bytes = 0;
    query(size, &bytes);
    return {work, {start.pixels, start.step}, size, channels, job.block<Lum8u>(std::size_t(bytes))};
}

template <typename T>
auto plain(LumStatus (*fill)(T*, Lum32s, LumiSize, LumiPoint, T, LumiConnectedComp*, Lum8u*), Scene scene)
{
    return [=](Job& job) -> Call {
        const auto image = draw<T>(job, scene, 1, lumiFloodFillGetSize);
        return [=] {
            image.restore();
            LumiConnectedComp region;
            return fill(image.work.pixels, image.work.step, image.size, seed, T(painted), &region, image.buffer);
        };
    };
}

template <typename T>
auto plain(LumStatus (*fill)(T*, Lum32s, LumiSize, LumiPoint, const T*, LumiConnectedComp*, Lum8u*), Scene scene)
{
    return [=](Job& job) -> Call {
        const auto image = draw<T>(job, scene, 3, lumiFloodFillGetSize);
        return [=] {
            image.restore();
            const T value[] = {T(painted), T(painted), T(painted)};
            LumiConnectedComp region;
            return fill(image.work.pixels, image.work.step, image.size, seed, value, &region, image.buffer);
        };
    };
}

using Query = LumStatus (*)(LumiSize, Lum32s*);

template <typename T>
auto within(LumStatus (*fill)(T*, Lum32s, LumiSize, LumiPoint, T, T, T, LumiConnectedComp*, Lum8u*), Scene scene,
            Query query)
{
    return [=](Job& job) -> Call {
        const auto image = draw<T>(job, scene, 1, query);
        return [=] {
            image.restore();
            LumiConnectedComp region;
            return fill(image.work.pixels, image.work.step, image.size, seed, T(0), T(delta), T(delta), &region,
                        image.buffer);
        };
    };
}

template <typename T>
auto within(LumStatus (*fill)(T*, Lum32s, LumiSize, LumiPoint, const T*, const T*, const T*, LumiConnectedComp*,
                              Lum8u*),
            Scene scene, Query query)
{
    return [=](Job& job) -> Call {
        const auto image = draw<T>(job, scene, 3, query);
        return [=] {
            image.restore();
            const T zeros[] = {T(0), T(0), T(0)}, deltas[] = {T(delta), T(delta), T(delta)};
            LumiConnectedComp region;
            return fill(image.work.pixels, image.work.step, image.size, seed, zeros, deltas, deltas, &region,
                        image.buffer);
        };
    };
}

constexpr Query toRange = lumiFloodFillGetSize, toGrad = lumiFloodFillGetSize_Grad;

const Rows rows{{
    {"lumiFloodFill_4Con_8u_C1IR", "holes", {14.6, 6}, plain(lumiFloodFill_4Con_8u_C1IR, holes)},
    {"lumiFloodFill_8Con_8u_C1IR", "holes", {14.6, 6}, plain(lumiFloodFill_8Con_8u_C1IR, holes)},
    {"lumiFloodFill_4Con_8u_C1IR", "even", {}, plain(lumiFloodFill_4Con_8u_C1IR, even)},
    {"lumiFloodFill_4Con_8u_C1IR", "dots", {}, plain(lumiFloodFill_4Con_8u_C1IR, dots)},
    {"lumiFloodFill_4Con_8u_C1IR", "specks", {}, plain(lumiFloodFill_4Con_8u_C1IR, specks)},
    {"lumiFloodFill_8Con_8u_C1IR", "specks", {}, plain(lumiFloodFill_8Con_8u_C1IR, specks)},
    {"lumiFloodFill_4Con_16u_C1IR", "holes", {}, plain(lumiFloodFill_4Con_16u_C1IR, holes)},
    {"lumiFloodFill_4Con_32s_C1IR", "holes", {}, plain(lumiFloodFill_4Con_32s_C1IR, holes)},
    {"lumiFloodFill_4Con_32f_C1IR", "holes", {}, plain(lumiFloodFill_4Con_32f_C1IR, holes)},
    {"lumiFloodFill_4Con_8u_C3IR", "holes", {}, plain(lumiFloodFill_4Con_8u_C3IR, holes)},
    {"lumiFloodFill_4Con_16u_C3IR", "holes", {}, plain(lumiFloodFill_4Con_16u_C3IR, holes)},
    {"lumiFloodFill_4Con_32f_C3IR", "holes", {}, plain(lumiFloodFill_4Con_32f_C3IR, holes)},
    {"lumiFloodFill_Range4Con_8u_C1IR", "", {}, within(lumiFloodFill_Range4Con_8u_C1IR, noisyHoles, toRange)},
    {"lumiFloodFill_Range8Con_8u_C1IR", "", {}, within(lumiFloodFill_Range8Con_8u_C1IR, noisyHoles, toRange)},
    {"lumiFloodFill_Range4Con_16u_C1IR", "", {}, within(lumiFloodFill_Range4Con_16u_C1IR, noisyHoles, toRange)},
    {"lumiFloodFill_Range4Con_32f_C1IR", "", {}, within(lumiFloodFill_Range4Con_32f_C1IR, noisyHoles, toRange)},
    {"lumiFloodFill_Range4Con_8u_C3IR", "", {}, within(lumiFloodFill_Range4Con_8u_C3IR, noisyHoles, toRange)},
    {"lumiFloodFill_Grad4Con_8u_C1IR", "holes", {}, within(lumiFloodFill_Grad4Con_8u_C1IR, holes, toGrad)},
    {"lumiFloodFill_Grad4Con_8u_C1IR", "slopes", {}, within(lumiFloodFill_Grad4Con_8u_C1IR, slopes, toGrad)},
    {"lumiFloodFill_Grad8Con_8u_C1IR", "slopes", {}, within(lumiFloodFill_Grad8Con_8u_C1IR, slopes, toGrad)},
    {"lumiFloodFill_Grad4Con_16u_C1IR", "slopes", {}, within(lumiFloodFill_Grad4Con_16u_C1IR, slopes, toGrad)},
    {"lumiFloodFill_Grad4Con_32f_C1IR", "slopes", {}, within(lumiFloodFill_Grad4Con_32f_C1IR, slopes, toGrad)},
    {"lumiFloodFill_Grad4Con_8u_C3IR", "slopes", {}, within(lumiFloodFill_Grad4Con_8u_C3IR, slopes, toGrad)},
}};

}  // namespace
