// Rows of FAST corners: of a scene with soft shading, outlines and the noise of a camera, and of noise alone, where
// every other pixel is a candidate.
#include "bench/feature/scene.hpp"

namespace {

using namespace lumcv::bench;

constexpr Lum32s corners = lumFastNCorners;
constexpr Lum32s scores = corners | lumFastNScore;
constexpr Lum32s maxima = scores | lumFastNNonMaxSuppression;
constexpr Lum32s bins = 32;

struct Detector
{
    LumFastNSpec* spec;
    Lum8u* buffer;
};

Detector prepare(Job& job, Lum32s radius, Lum32s arc, Lum32s mode)
{
    const LumiSize size = job.size();
    Lum32s specSize = 0, bufferSize = 0;
    lumiFastNGetSize(size, radius, arc, bins, mode, lumType8u, 1, &specSize);
    auto* const spec = reinterpret_cast<LumFastNSpec*>(job.block<Lum8u>(std::size_t(specSize)));
    lumiFastNInit(size, radius, arc, bins, mode, 20, lumType8u, 1, spec);
    lumiFastNGetBufferSize(spec, size, &bufferSize);
    return {spec, job.block<Lum8u>(std::size_t(bufferSize))};
}

auto mark(Lum32s radius, Lum32s arc, Lum32s mode, Scene scene)
{
    return [=](Job& job) -> Call {
        const LumiSize size = job.size();
        const auto s = draw(job, scene);
        const auto d = job.destination<Lum8u>();
        const auto score = mode & lumFastNScore ? job.destination<Lum8u>() : View<Lum8u>{nullptr, 0};
        const Detector detector = prepare(job, radius, arc, mode);
        auto* const count = job.block<Lum32s>(1);
        return [=] {
            return lumiFastN_8u_C1R(s.pixels, s.step, d.pixels, d.step, score.pixels, score.step, count, {0, 0}, size,
                                    detector.spec, detector.buffer);
        };
    };
}

auto list(Scene scene)
{
    return [=](Job& job) -> Call {
        const LumiSize size = job.size();
        Job drawing(size);
        const auto s = draw(drawing, scene);
        const auto map = job.source<Lum8u>();
        const auto score = job.source<Lum8u>();
        const Detector detector = prepare(job, 3, 9, maxima | lumFastNOrientation);
        auto* const count = job.block<Lum32s>(1);
        lumiFastN_8u_C1R(s.pixels, s.step, const_cast<Lum8u*>(map.pixels), map.step, const_cast<Lum8u*>(score.pixels),
                         score.step, count, {0, 0}, size, detector.spec, detector.buffer);
        const Lum32s room = size.width * size.height;
        auto* const found = job.block<LumCornerFastN>(std::size_t(room));
        return [=] {
            return lumiFastN2DToVec_8u(map.pixels, map.step, score.pixels, score.step, found, size, room, count,
                                       detector.spec);
        };
    };
}

const Rows rows{{
    {"lumiFastN_8u_C1R", "9 of 16", {16, 6}, mark(3, 9, corners, discs)},
    {"lumiFastN_8u_C1R", "9 of 16, scores", {}, mark(3, 9, scores, discs)},
    {"lumiFastN_8u_C1R", "9 of 16, maxima", {25, 10}, mark(3, 9, maxima, discs)},
    {"lumiFastN_8u_C1R", "9 of 16, oriented maxima", {}, mark(3, 9, maxima | lumFastNOrientation, discs)},
    {"lumiFastN_8u_C1R", "9 of 16, noise", {}, mark(3, 9, maxima, noiseAlone)},
    {"lumiFastN_8u_C1R", "12 of 16, maxima", {}, mark(3, 12, maxima, discs)},
    {"lumiFastN_8u_C1R", "5 of 8, maxima", {}, mark(1, 5, maxima, discs)},
    {"lumiFastN_8u_C1R", "27 of 52, maxima", {}, mark(9, 27, maxima, discs)},
    {"lumiFastN2DToVec_8u", "", {}, list(discs)},
}};

}  // namespace
