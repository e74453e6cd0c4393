// Rows of the motion history. A silhouette of discs leaves most pixels as they are; in one of noise, half of all pixels
// move at each frame.
#include <cmath>

#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

enum class Scene
{
    Discs,
    Noise
};

constexpr Lum32f duration = 20;

template <typename T>
View<const T> draw(Job& job, Scene scene)
{
    const auto silhouette = job.source<T>();
    const LumiSize size = job.size();
    std::mt19937 random{1};
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const bool isDisc = std::hypot(x % 160 - 80, y % 160 - 80) < 28;
            const bool moves = scene == Scene::Discs ? isDisc : random() % 2 == 0;
            const_cast<T*>(silhouette.row(y))[x] = moves ? T(255) : T(0);
        }
    return silhouette;
}

template <typename T>
auto history(LumStatus (*update)(const T*, Lum32s, Lum32f*, Lum32s, LumiSize, Lum32f, Lum32f), Scene scene)
{
    return [=](Job& job) -> Call {
        const LumiSize size = job.size();
        const auto s = draw<T>(job, scene);
        const auto h = job.accumulator<Lum32f>();
        for (int y = 0; y < size.height; ++y)
            std::fill_n(h.row(y), size.width, 0.0f);
        auto* const now = job.block<int>(1);
        *now = 0;
        return [=] { return update(s.pixels, s.step, h.pixels, h.step, size, Lum32f(++*now), duration); };
    };
}

const Rows rows{{
    {"lumiUpdateMotionHistory_8u32f_C1IR",
     "noise",
     {0.85, 0.7},
     history(lumiUpdateMotionHistory_8u32f_C1IR, Scene::Noise)},
    {"lumiUpdateMotionHistory_8u32f_C1IR",
     "discs",
     {0.85, 0.7},
     history(lumiUpdateMotionHistory_8u32f_C1IR, Scene::Discs)},
    {"lumiUpdateMotionHistory_16u32f_C1IR", "discs", {}, history(lumiUpdateMotionHistory_16u32f_C1IR, Scene::Discs)},
    {"lumiUpdateMotionHistory_32f_C1IR", "discs", {}, history(lumiUpdateMotionHistory_32f_C1IR, Scene::Discs)},
}};

}  // namespace
