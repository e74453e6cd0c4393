// Rows of chamfer distances. Their time does not depend on what is in the image, but for the last rows of an extended
// mask.
#include <vector>

#include "bench/distance/scenes.hpp"

namespace {

using namespace lumcv::bench;

template <typename T, typename Weight>
using Transform = LumStatus (*)(const Lum8u*, Lum32s, T*, Lum32s, LumiSize, const Weight*);

template <typename T, typename Weight>
auto distances(Transform<T, Weight> transform, std::vector<Weight> weights)
{
    return [=](Job& job) -> Call {
        const auto s = draw(job, Scene::Objects);
        const auto d = job.destination<T>();
        const LumiSize size = job.size();
        return [=] { return transform(s.pixels, s.step, d.pixels, d.step, size, weights.data()); };
    };
}

const auto of3x3 = distances<Lum8u, Lum32s>;
const auto of16u = distances<Lum16u, Lum32s>;
const auto of32f = distances<Lum32f, Lum32f>;

const Rows rows{{
    {"lumiDistanceTransform_3x3_8u_C1R", "1 2", {65, 12}, of3x3(lumiDistanceTransform_3x3_8u_C1R, {1, 2})},
    {"lumiDistanceTransform_3x3_8u_C1R", "2 3", {}, of3x3(lumiDistanceTransform_3x3_8u_C1R, {2, 3})},
    {"lumiDistanceTransform_3x3_8u_C1R", "3 2", {}, of3x3(lumiDistanceTransform_3x3_8u_C1R, {3, 2})},
    {"lumiDistanceTransform_3x3_8u16u_C1R", "1 2", {}, of16u(lumiDistanceTransform_3x3_8u16u_C1R, {1, 2})},
    {"lumiDistanceTransform_3x3_8u16u_C1R", "2 3", {}, of16u(lumiDistanceTransform_3x3_8u16u_C1R, {2, 3})},
    {"lumiDistanceTransform_3x3_8u32f_C1R",
     "L2",
     {42, 15},
     of32f(lumiDistanceTransform_3x3_8u32f_C1R, {0.955f, 1.3693f})},
    {"lumiDistanceTransform_3x3_8u32f_C1R", "Inf", {}, of32f(lumiDistanceTransform_3x3_8u32f_C1R, {1, 1})},
    {"lumiDistanceTransform_5x5_8u_C1R", "5 7 11", {}, of3x3(lumiDistanceTransform_5x5_8u_C1R, {5, 7, 11})},
    {"lumiDistanceTransform_5x5_8u_C1R", "1 1 1", {}, of3x3(lumiDistanceTransform_5x5_8u_C1R, {1, 1, 1})},
    {"lumiDistanceTransform_5x5_8u16u_C1R", "5 7 11", {}, of16u(lumiDistanceTransform_5x5_8u16u_C1R, {5, 7, 11})},
    {"lumiDistanceTransform_5x5_8u32f_C1R",
     "L2",
     {68, 25},
     of32f(lumiDistanceTransform_5x5_8u32f_C1R, {1, 1.4f, 2.1969f})},
    {"lumiDistanceTransform_5x5_8u32f_C1R", "1 1 1", {}, of32f(lumiDistanceTransform_5x5_8u32f_C1R, {1, 1, 1})},
}};

}  // namespace
