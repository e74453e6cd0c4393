// Rows of the extrema. The pixels are random, so 8u extremes stand in the first rows, and yet every row is read.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

constexpr Lum32s channel = 2;

enum class Wanted
{
    Values,
    Places
};

struct Results
{
    Lum32f* values;
    LumiPoint* places;  // null if they are not wanted

    Results(Job& job, Wanted wanted)
        : values(job.block<Lum32f>(2)), places(wanted == Wanted::Places ? job.block<LumiPoint>(2) : nullptr)
    {
    }

    LumiPoint* place(int i) const
    {
        return places ? places + i : nullptr;
    }
};

template <typename T>
auto extrema(LumStatus (*function)(const T*, Lum32s, LumiSize, Lum32f*, Lum32f*, LumiPoint*, LumiPoint*), Wanted wanted)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>();
        const Results r(job, wanted);
        return [=, size = job.size()] {
            return function(s.pixels, s.step, size, r.values, r.values + 1, r.place(0), r.place(1));
        };
    };
}

template <typename T>
auto extrema(LumStatus (*function)(const T*, Lum32s, LumiSize, Lum32s, Lum32f*, Lum32f*, LumiPoint*, LumiPoint*),
             Wanted wanted)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>(3);
        const Results r(job, wanted);
        return [=, size = job.size()] {
            return function(s.pixels, s.step, size, channel, r.values, r.values + 1, r.place(0), r.place(1));
        };
    };
}

template <typename T>
auto extrema(LumStatus (*function)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32f*, Lum32f*, LumiPoint*,
                                   LumiPoint*),
             Wanted wanted)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>();
        const auto m = job.mask();
        const Results r(job, wanted);
        return [=, size = job.size()] {
            return function(s.pixels, s.step, m.pixels, m.step, size, r.values, r.values + 1, r.place(0), r.place(1));
        };
    };
}

template <typename T>
auto extrema(LumStatus (*function)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32s, Lum32f*, Lum32f*,
                                   LumiPoint*, LumiPoint*),
             Wanted wanted)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>(3);
        const auto m = job.mask();
        const Results r(job, wanted);
        return [=, size = job.size()] {
            return function(s.pixels, s.step, m.pixels, m.step, size, channel, r.values, r.values + 1, r.place(0),
                            r.place(1));
        };
    };
}

const Rows rows{{
    {"lumiMinMaxIndx_8u_C1R", "values", {1.6, 1.6, 1.2}, extrema(lumiMinMaxIndx_8u_C1R, Wanted::Values)},
    {"lumiMinMaxIndx_16u_C1R", "values", {}, extrema(lumiMinMaxIndx_16u_C1R, Wanted::Values)},
    {"lumiMinMaxIndx_32f_C1R", "values", {}, extrema(lumiMinMaxIndx_32f_C1R, Wanted::Values)},
    {"lumiMinMaxIndx_8u_C1R", "", {8.8, 1.8}, extrema(lumiMinMaxIndx_8u_C1R, Wanted::Places)},
    {"lumiMinMaxIndx_16u_C1R", "", {}, extrema(lumiMinMaxIndx_16u_C1R, Wanted::Places)},
    {"lumiMinMaxIndx_32f_C1R", "", {3.2, 1.5}, extrema(lumiMinMaxIndx_32f_C1R, Wanted::Places)},
    {"lumiMinMaxIndx_8u_C1MR", "", {}, extrema(lumiMinMaxIndx_8u_C1MR, Wanted::Places)},
    {"lumiMinMaxIndx_16u_C1MR", "", {}, extrema(lumiMinMaxIndx_16u_C1MR, Wanted::Places)},
    {"lumiMinMaxIndx_32f_C1MR", "", {}, extrema(lumiMinMaxIndx_32f_C1MR, Wanted::Places)},
    {"lumiMinMaxIndx_8u_C3CR", "", {}, extrema(lumiMinMaxIndx_8u_C3CR, Wanted::Places)},
    {"lumiMinMaxIndx_16u_C3CR", "", {}, extrema(lumiMinMaxIndx_16u_C3CR, Wanted::Places)},
    {"lumiMinMaxIndx_32f_C3CR", "", {}, extrema(lumiMinMaxIndx_32f_C3CR, Wanted::Places)},
    {"lumiMinMaxIndx_8u_C3CMR", "", {}, extrema(lumiMinMaxIndx_8u_C3CMR, Wanted::Places)},
    {"lumiMinMaxIndx_16u_C3CMR", "", {}, extrema(lumiMinMaxIndx_16u_C3CMR, Wanted::Places)},
    {"lumiMinMaxIndx_32f_C3CMR", "", {}, extrema(lumiMinMaxIndx_32f_C3CMR, Wanted::Places)},
}};

}  // namespace
