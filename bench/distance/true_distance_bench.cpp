// Rows of the exact distance and of fast marching, whose time depends on what is in the image.
#include "bench/distance/scenes.hpp"

namespace {

using namespace lumcv::bench;

auto exact(Scene scene)
{
    return [=](Job& job) -> Call {
        const auto s = draw(job, scene);
        const auto d = job.destination<Lum32f>();
        const LumiSize size = job.size();
        Lum32s bufferSize = 0;
        lumiTrueDistanceTransformGetBufferSize_8u32f_C1R(size, &bufferSize);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        return [=] { return lumiTrueDistanceTransform_8u32f_C1R(s.pixels, s.step, d.pixels, d.step, size, buffer); };
    };
}

auto marching(Scene scene, Lum32f radius)
{
    return [=](Job& job) -> Call {
        const auto s = draw(job, scene);
        const auto d = job.destination<Lum32f>();
        const LumiSize size = job.size();
        Lum32s bufferSize = 0;
        lumiFastMarchingGetBufferSize_8u32f_C1R(size, &bufferSize);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        return [=] { return lumiFastMarching_8u32f_C1R(s.pixels, s.step, d.pixels, d.step, size, radius, buffer); };
    };
}

const Rows rows{{
    {"lumiTrueDistanceTransform_8u32f_C1R", "objects", {68, 30}, exact(Scene::Objects)},
    {"lumiTrueDistanceTransform_8u32f_C1R", "points", {68, 30}, exact(Scene::Points)},
    {"lumiFastMarching_8u32f_C1R", "objects", {}, marching(Scene::Objects, 0)},
    {"lumiFastMarching_8u32f_C1R", "objects, band of 8", {}, marching(Scene::Objects, 8)},
}};

}  // namespace
