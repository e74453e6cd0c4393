// Rows of the optical flow: 500 points on the levels of a picture that has moved by a few pixels, and a single one,
// which costs little more than the slopes of its level.
#include <algorithm>
#include <array>
#include <cmath>

#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

constexpr Lum32s winSize = 21;
constexpr int levels = 4;

// Waves of many lengths; what lies between two levels is as smooth as a filter would have left it.
double scene(double x, double y)
{
    return 128 + 30 * std::sin(0.13 * x + 0.05 * y) + 30 * std::cos(0.11 * y - 0.04 * x) +
           20 * std::sin(0.31 * x) * std::cos(0.27 * y) + 25 * std::sin(0.02 * x - 0.03 * y);
}

template <typename T>
struct Pyramid
{
    std::array<void*, levels> images;
    std::array<LumiSize, levels> sizes;
    std::array<Lum64f, levels> scales;
    std::array<Lum32s, levels> steps;
    LumiPyramidRecord record;

    Pyramid(Job& job, double moved)
    {
        for (int l = 0; l < levels; ++l) {
            const double rate = 1 << l;
            const LumiSize size{std::max(job.size().width >> l, 1), std::max(job.size().height >> l, 1)};
            T* const pixels = job.block<T>(std::size_t(size.width) * size.height);
            for (int y = 0; y < size.height; ++y)
                for (int x = 0; x < size.width; ++x)
                    pixels[std::size_t(y) * size.width + x] = T(scene(rate * x - moved, rate * y + moved));
            images[l] = pixels;
            sizes[l] = size;
            scales[l] = 1 / rate;
            steps[l] = Lum32s(size.width * sizeof(T));
        }
        record = {images.data(), sizes.data(), scales.data(), steps.data(), nullptr, levels - 1};
    }
    Pyramid(const Pyramid&) = delete;
    Pyramid& operator=(const Pyramid&) = delete;
};

using Init = LumStatus (*)(LumOptFlowPyrLKState**, LumiSize, Lum32s, Lum32s, Lum8u*);
using Apply = LumStatus (*)(const LumiPyramidRecord*, const LumiPyramidRecord*, const Lum32f*, Lum32f*, Lum8s*, Lum32f*,
                            Lum32s, Lum32s, Lum32s, Lum32s, Lum32f, LumOptFlowPyrLKState*);

// The copy beside a row moves as much as the slopes of level 0 do: an image and two planes, of 16 bits for 8u and of
// floats else.
template <typename T>
auto flow(LumDataType type, Init init, Apply apply, Lum32s count, Lum32s maxLev, Lum32s maxIter)
{
    return [=](Job& job) -> Call {
        using Slope = std::conditional_t<sizeof(T) == 1, Lum16s, Lum32f>;
        job.source<T>();
        job.destination<Slope>();
        job.destination<Slope>();
        const LumiSize size = job.size();
        const auto first = std::make_shared<Pyramid<T>>(job, 0.0), second = std::make_shared<Pyramid<T>>(job, 2.7);
        Lum32s bytes = 0;
        lumiOpticalFlowPyrLKGetSize(winSize, size, type, 0, &bytes);
        LumOptFlowPyrLKState* state = nullptr;
        init(&state, size, winSize, 0, job.block<Lum8u>(std::size_t(bytes)));
        auto* const prev = job.block<Lum32f>(2 * std::size_t(count));
        auto* const next = job.block<Lum32f>(2 * std::size_t(count));
        auto* const status = job.block<Lum8s>(std::size_t(count));
        auto* const error = job.block<Lum32f>(std::size_t(count));
        std::mt19937 random{1};
        for (Lum32s i = 0; i < count; ++i) {
            prev[2 * i] = Lum32f(random() % unsigned(size.width));
            prev[2 * i + 1] = Lum32f(random() % unsigned(size.height));
        }
        return [=] {
            return apply(&first->record, &second->record, prev, next, status, error, count, winSize, maxLev, maxIter,
                         0.01f, state);
        };
    };
}

// A goal of ours alone: the slopes take at most four copies.
const Rows rows{{
    {"lumiOpticalFlowPyrLK_8u_C1R",
     "1,0,1",
     {0, 4},
     flow<Lum8u>(lumType8u, lumiOpticalFlowPyrLKInit_8u_C1R, lumiOpticalFlowPyrLK_8u_C1R, 1, 0, 1)},
    {"lumiOpticalFlowPyrLK_8u_C1R",
     "500,3,1",
     {},
     flow<Lum8u>(lumType8u, lumiOpticalFlowPyrLKInit_8u_C1R, lumiOpticalFlowPyrLK_8u_C1R, 500, 3, 1)},
    {"lumiOpticalFlowPyrLK_8u_C1R",
     "500,3,10",
     {},
     flow<Lum8u>(lumType8u, lumiOpticalFlowPyrLKInit_8u_C1R, lumiOpticalFlowPyrLK_8u_C1R, 500, 3, 10)},
    {"lumiOpticalFlowPyrLK_16u_C1R",
     "1,0,1",
     {0, 4},
     flow<Lum16u>(lumType16u, lumiOpticalFlowPyrLKInit_16u_C1R, lumiOpticalFlowPyrLK_16u_C1R, 1, 0, 1)},
    {"lumiOpticalFlowPyrLK_16u_C1R",
     "500,3,10",
     {},
     flow<Lum16u>(lumType16u, lumiOpticalFlowPyrLKInit_16u_C1R, lumiOpticalFlowPyrLK_16u_C1R, 500, 3, 10)},
    {"lumiOpticalFlowPyrLK_32f_C1R",
     "1,0,1",
     {0, 4},
     flow<Lum32f>(lumType32f, lumiOpticalFlowPyrLKInit_32f_C1R, lumiOpticalFlowPyrLK_32f_C1R, 1, 0, 1)},
    {"lumiOpticalFlowPyrLK_32f_C1R",
     "500,3,10",
     {},
     flow<Lum32f>(lumType32f, lumiOpticalFlowPyrLKInit_32f_C1R, lumiOpticalFlowPyrLK_32f_C1R, 500, 3, 10)},
}};

}  // namespace
