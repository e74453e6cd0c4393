// Rows of the background model, on video in which pixels have several modes: leaves that wave before a wall, camera
// noise, and a disc that moves through the picture with its shadow.
#include <cmath>

#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

constexpr LumFGMMModel model{200, 5, 15.0f, 4.0f, 75.0f, 16.0f, 0.9f, 9.0f, 0.05f, 127, 1, 0.5f};

// The frames are few and come again and again, so that their making is no part of the time.
constexpr int frameCount = 24;
constexpr int framesBefore = 10 * frameCount;

struct Video
{
    std::vector<View<const Lum8u>> frames;
    LumFGMMState* state;
    View<Lum8u> classes;
};

void draw(View<const Lum8u> frame, LumiSize size, int number)
{
    std::mt19937 random{1000u + unsigned(number)};
    const double centre = size.width * (number + 0.5) / frameCount;
    for (int y = 0; y < size.height; ++y) {
        auto* const row = const_cast<Lum8u*>(frame.row(y));
        for (int x = 0; x < size.width; ++x) {
            // three colours for each pixel: the second one half, the third one eighth of the time that leaves take
            const unsigned place = unsigned(x) * 2654435761u ^ unsigned(y) * 40503u;
            const bool waves = (x / 32 + y / 32) % 2 == 0;
            const unsigned drawn = random();
            const int colour = !waves ? drawn % 64 == 0 : drawn % 8 < 4 ? 0 : drawn % 8 < 7 ? 1 : 2;
            double brightness = 1;
            if (std::hypot(x - centre, y - size.height / 2.0) < size.height / 6.0)
                brightness = 0;
            else if (std::hypot(x - centre - size.height / 8.0, y - size.height / 1.8) < size.height / 6.0)
                brightness = 0.7;
            unsigned noise = drawn >> 3;
            for (int c = 0; c < 3; ++c) {
                const int base = int(place >> (5 * c) & 63) + 60 + 50 * colour;
                // two dice of seven sides: a deviation of 2.8
                const int shake = int(noise % 7 + noise / 7 % 7) - 6;
                noise /= 49;
                row[3 * x + c] = Lum8u(std::lround(brightness > 0 ? base * brightness : 230.0 - 90 * c) + shake);
            }
        }
    }
}

Video learnt(Job& job)
{
    if (job.size().width > 64)
        job.workOn({512, 512});
    const LumiSize size = job.size();
    Video video;
    video.classes = job.destination<Lum8u>();
    for (int i = 0; i < frameCount; ++i) {
        const Lum32s step = 3 * size.width;
        video.frames.push_back(i == 0 ? job.source<Lum8u>(3)
                                      : View<const Lum8u>{job.block<Lum8u>(std::size_t(step) * size.height), step});
        draw(video.frames.back(), size, i);
    }
    Lum32s bytes = 0;
    lumiFGMMGetBufferSize_8u_C3R(size, Lum32s(model.maxNGauss), &bytes);
    video.state = reinterpret_cast<LumFGMMState*>(job.block<Lum8u>(std::size_t(bytes)));
    lumiFGMMInit_8u_C3R(size, Lum32s(model.maxNGauss), &model, video.state);
    for (int i = 0; i < framesBefore; ++i) {
        const auto& frame = video.frames[std::size_t(i % frameCount)];
        lumiFGMMForeground_8u_C3R(frame.pixels, frame.step, video.classes.pixels, video.classes.step, size, video.state,
                                  nullptr, -1.0);
    }
    return video;
}

Call foreground(Job& job)
{
    const Video video = learnt(job);
    const LumiSize size = job.size();
    auto* const frames = job.block<int>(1);
    *frames = 0;
    return [=] {
        const auto& frame = video.frames[std::size_t((*frames)++ % frameCount)];
        return lumiFGMMForeground_8u_C3R(frame.pixels, frame.step, video.classes.pixels, video.classes.step, size,
                                         video.state, nullptr, -1.0);
    };
}

Call background(Job& job)
{
    const Video video = learnt(job);
    const auto d = job.destination<Lum8u>(3);
    const LumiSize size = job.size();
    return [=] { return lumiFGMMBackground_8u_C3R(d.pixels, d.step, size, video.state); };
}

const Rows rows{{
    {"lumiFGMMForeground_8u_C3R", "512x512, 5 modes, shadows", {240, 120}, foreground},
    {"lumiFGMMBackground_8u_C3R", "512x512, 5 modes", {}, background},
}};

}  // namespace
