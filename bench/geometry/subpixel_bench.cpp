// Rows of the subpixel copies.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

template <typename S, typename D, typename... Parameters>
auto copied(LumStatus (*function)(const S*, Lum32s, D*, Lum32s, LumiSize, Lum32f, Lum32f, Parameters...),
            Parameters... parameters)
{
    return [=](Job& job) -> Call {
        const LumiSize size = job.size();
        const auto s = job.source<S>(LumiSize{size.width + 1, size.height + 1}, 1);
        const auto d = job.destination<D>();
        return [=] { return function(s.pixels, s.step, d.pixels, d.step, size, 0.3f, 0.6f, parameters...); };
    };
}

template <typename S, typename D, typename... Parameters>
auto around(LumStatus (*function)(const S*, Lum32s, LumiSize, D*, Lum32s, LumiSize, LumiPoint32f, LumiPoint*,
                                  LumiPoint*, Parameters...),
            Parameters... parameters)
{
    return [=](Job& job) -> Call {
        const LumiSize size = job.size();
        const auto s = job.source<S>();
        const auto d = job.destination<D>();
        const LumiPoint32f centre{0.5f * Lum32f(size.width) + 0.3f, 0.5f * Lum32f(size.height) + 0.6f};
        auto* const covered = job.block<LumiPoint>(2);
        return [=] {
            return function(s.pixels, s.step, size, d.pixels, d.step, size, centre, covered, covered + 1,
                            parameters...);
        };
    };
}

const Rows rows{{
    {"lumiCopySubpix_8u_C1R", "", {18, 2.5}, copied(lumiCopySubpix_8u_C1R)},
    {"lumiCopySubpix_16u_C1R", "", {}, copied(lumiCopySubpix_16u_C1R)},
    {"lumiCopySubpix_32f_C1R", "", {}, copied(lumiCopySubpix_32f_C1R)},
    {"lumiCopySubpix_8u16u_C1R_Sfs", "scale factor -8", {}, copied(lumiCopySubpix_8u16u_C1R_Sfs, Lum32s{-8})},
    {"lumiCopySubpix_8u32f_C1R", "", {}, copied(lumiCopySubpix_8u32f_C1R)},
    {"lumiCopySubpix_16u32f_C1R", "", {}, copied(lumiCopySubpix_16u32f_C1R)},
    {"lumiCopySubpixIntersect_8u_C1R", "", {}, around(lumiCopySubpixIntersect_8u_C1R)},
    {"lumiCopySubpixIntersect_16u_C1R", "", {}, around(lumiCopySubpixIntersect_16u_C1R)},
    {"lumiCopySubpixIntersect_32f_C1R", "", {}, around(lumiCopySubpixIntersect_32f_C1R)},
    {"lumiCopySubpixIntersect_8u16u_C1R_Sfs",
     "scale factor -8",
     {},
     around(lumiCopySubpixIntersect_8u16u_C1R_Sfs, Lum32s{-8})},
    {"lumiCopySubpixIntersect_8u32f_C1R", "", {}, around(lumiCopySubpixIntersect_8u32f_C1R)},
    {"lumiCopySubpixIntersect_16u32f_C1R", "", {}, around(lumiCopySubpixIntersect_16u32f_C1R)},
}};

}  // namespace
