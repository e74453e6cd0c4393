// Rows of the accumulators.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

constexpr Lum32f alpha = 0.05f;

template <typename S>
auto accumulate(LumStatus (*function)(const S*, Lum32s, Lum32f*, Lum32s, LumiSize))
{
    return [=](Job& job) -> Call {
        const auto s = job.source<S>();
        const auto d = job.accumulator<Lum32f>();
        return [=, size = job.size()] { return function(s.pixels, s.step, d.pixels, d.step, size); };
    };
}

template <typename S>
auto accumulate(LumStatus (*function)(const S*, Lum32s, const Lum8u*, Lum32s, Lum32f*, Lum32s, LumiSize))
{
    return [=](Job& job) -> Call {
        const auto s = job.source<S>();
        const auto m = job.mask();
        const auto d = job.accumulator<Lum32f>();
        return [=, size = job.size()] { return function(s.pixels, s.step, m.pixels, m.step, d.pixels, d.step, size); };
    };
}

template <typename S>
auto product(LumStatus (*function)(const S*, Lum32s, const S*, Lum32s, Lum32f*, Lum32s, LumiSize))
{
    return [=](Job& job) -> Call {
        const auto s1 = job.source<S>(), s2 = job.source<S>();
        const auto d = job.accumulator<Lum32f>();
        return
            [=, size = job.size()] { return function(s1.pixels, s1.step, s2.pixels, s2.step, d.pixels, d.step, size); };
    };
}

template <typename S>
auto product(LumStatus (*function)(const S*, Lum32s, const S*, Lum32s, const Lum8u*, Lum32s, Lum32f*, Lum32s, LumiSize))
{
    return [=](Job& job) -> Call {
        const auto s1 = job.source<S>(), s2 = job.source<S>();
        const auto m = job.mask();
        const auto d = job.accumulator<Lum32f>();
        return [=, size = job.size()] {
            return function(s1.pixels, s1.step, s2.pixels, s2.step, m.pixels, m.step, d.pixels, d.step, size);
        };
    };
}

template <typename S>
auto weighted(LumStatus (*function)(const S*, Lum32s, Lum32f*, Lum32s, LumiSize, Lum32f))
{
    return [=](Job& job) -> Call {
        const auto s = job.source<S>();
        const auto d = job.accumulator<Lum32f>();
        return [=, size = job.size()] { return function(s.pixels, s.step, d.pixels, d.step, size, alpha); };
    };
}

template <typename S>
auto weighted(LumStatus (*function)(const S*, Lum32s, const Lum8u*, Lum32s, Lum32f*, Lum32s, LumiSize, Lum32f))
{
    return [=](Job& job) -> Call {
        const auto s = job.source<S>();
        const auto m = job.mask();
        const auto d = job.accumulator<Lum32f>();
        return [=, size = job.size()] {
            return function(s.pixels, s.step, m.pixels, m.step, d.pixels, d.step, size, alpha);
        };
    };
}

Call weightedThreeImages(Job& job)
{
    const auto s1 = job.source<Lum32f>(), s2 = job.source<Lum32f>();
    const auto d = job.destination<Lum32f>();
    return [=, size = job.size()] {
        return lumiAddWeighted_32f_C1R(s1.pixels, s1.step, s2.pixels, s2.step, d.pixels, d.step, size, alpha);
    };
}

const Rows rows{{
    {"lumiAdd_8u32f_C1IR", "", {0.6, 0.6}, accumulate(lumiAdd_8u32f_C1IR)},
    {"lumiAdd_16u32f_C1IR", "", {}, accumulate(lumiAdd_16u32f_C1IR)},
    {"lumiAdd_8u32f_C1IMR", "", {}, accumulate(lumiAdd_8u32f_C1IMR)},
    {"lumiAdd_16u32f_C1IMR", "", {}, accumulate(lumiAdd_16u32f_C1IMR)},
    {"lumiAdd_32f_C1IMR", "", {}, accumulate(lumiAdd_32f_C1IMR)},
    {"lumiAddSquare_8u32f_C1IR", "", {0.6, 0.6}, accumulate(lumiAddSquare_8u32f_C1IR)},
    {"lumiAddSquare_16u32f_C1IR", "", {}, accumulate(lumiAddSquare_16u32f_C1IR)},
    {"lumiAddSquare_32f_C1IR", "", {}, accumulate(lumiAddSquare_32f_C1IR)},
    {"lumiAddSquare_8u32f_C1IMR", "", {}, accumulate(lumiAddSquare_8u32f_C1IMR)},
    {"lumiAddSquare_16u32f_C1IMR", "", {}, accumulate(lumiAddSquare_16u32f_C1IMR)},
    {"lumiAddSquare_32f_C1IMR", "", {}, accumulate(lumiAddSquare_32f_C1IMR)},
    {"lumiAddProduct_8u32f_C1IR", "", {}, product(lumiAddProduct_8u32f_C1IR)},
    {"lumiAddProduct_16u32f_C1IR", "", {}, product(lumiAddProduct_16u32f_C1IR)},
    {"lumiAddProduct_32f_C1IR", "", {}, product(lumiAddProduct_32f_C1IR)},
    {"lumiAddProduct_8u32f_C1IMR", "", {}, product(lumiAddProduct_8u32f_C1IMR)},
    {"lumiAddProduct_16u32f_C1IMR", "", {}, product(lumiAddProduct_16u32f_C1IMR)},
    {"lumiAddProduct_32f_C1IMR", "", {}, product(lumiAddProduct_32f_C1IMR)},
    {"lumiAddWeighted_8u32f_C1IR", "", {0.6, 0.6}, weighted(lumiAddWeighted_8u32f_C1IR)},
    {"lumiAddWeighted_16u32f_C1IR", "", {}, weighted(lumiAddWeighted_16u32f_C1IR)},
    {"lumiAddWeighted_32f_C1IR", "", {}, weighted(lumiAddWeighted_32f_C1IR)},
    {"lumiAddWeighted_8u32f_C1IMR", "", {0.65, 0.65}, weighted(lumiAddWeighted_8u32f_C1IMR)},
    {"lumiAddWeighted_16u32f_C1IMR", "", {}, weighted(lumiAddWeighted_16u32f_C1IMR)},
    {"lumiAddWeighted_32f_C1IMR", "", {}, weighted(lumiAddWeighted_32f_C1IMR)},
    {"lumiAddWeighted_32f_C1R", "", {}, weightedThreeImages},
}};

}  // namespace
