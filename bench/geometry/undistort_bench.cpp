// Rows of lens undistortion: a lens whose corrected image is covered almost everywhere.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

Lum8u* scratch(Job& job)
{
    Lum32s bytes = 0;
    lumiUndistortGetSize(job.size(), &bytes);
    return job.block<Lum8u>(std::size_t(bytes));
}

template <typename T>
using Undistort = LumStatus (*)(const T*, Lum32s, T*, Lum32s, LumiSize, Lum32f, Lum32f, Lum32f, Lum32f, Lum32f, Lum32f,
                                Lum8u*);

template <typename T>
auto undistort(Undistort<T> function, int channels, Lum32f k1, bool withBuffer = true)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>(channels);
        const auto d = job.destination<T>(channels);
        const LumiSize size = job.size();
        const Lum32f focal = 0.9f * Lum32f(size.width);
        const Lum32f cx = 0.5f * Lum32f(size.width), cy = 0.5f * Lum32f(size.height);
        auto* const buffer = withBuffer ? scratch(job) : nullptr;
        return
            [=] { return function(s.pixels, s.step, d.pixels, d.step, size, focal, focal, cx, cy, k1, 0.02f, buffer); };
    };
}

auto map(Lum32f p1, Lum32f p2)
{
    return [=](Job& job) -> Call {
        const auto mx = job.destination<Lum32f>();
        const auto my = job.destination<Lum32f>();
        const LumiSize size = job.size();
        const Lum32f focal = 0.9f * Lum32f(size.width);
        const Lum32f cx = 0.5f * Lum32f(size.width), cy = 0.5f * Lum32f(size.height);
        auto* const buffer = scratch(job);
        return [=] {
            return lumiCreateMapCameraUndistort_32f_C1R(mx.pixels, mx.step, my.pixels, my.step, size, focal, focal, cx,
                                                        cy, -0.1f, 0.02f, p1, p2, buffer);
        };
    };
}

const Rows rows{{
    {"lumiUndistortRadial_8u_C1R", "", {90, 30}, undistort(lumiUndistortRadial_8u_C1R, 1, -0.1f)},
    {"lumiUndistortRadial_8u_C1R", "no buffer", {}, undistort(lumiUndistortRadial_8u_C1R, 1, -0.1f, false)},
    {"lumiUndistortRadial_8u_C1R", "uncovered corners", {}, undistort(lumiUndistortRadial_8u_C1R, 1, 0.6f)},
    {"lumiUndistortRadial_8u_C3R", "", {}, undistort(lumiUndistortRadial_8u_C3R, 3, -0.1f)},
    {"lumiUndistortRadial_16u_C1R", "", {}, undistort(lumiUndistortRadial_16u_C1R, 1, -0.1f)},
    {"lumiUndistortRadial_16u_C3R", "", {}, undistort(lumiUndistortRadial_16u_C3R, 3, -0.1f)},
    {"lumiUndistortRadial_32f_C1R", "", {}, undistort(lumiUndistortRadial_32f_C1R, 1, -0.1f)},
    {"lumiUndistortRadial_32f_C3R", "", {}, undistort(lumiUndistortRadial_32f_C3R, 3, -0.1f)},
    {"lumiCreateMapCameraUndistort_32f_C1R", "radial", {9.5, 2}, map(0, 0)},
    {"lumiCreateMapCameraUndistort_32f_C1R", "tangential", {9.5, 2}, map(0.001f, -0.002f)},
}};

}  // namespace
