// Rows of the gray gradient.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

template <typename T>
auto folded(LumStatus (*fold)(const T*, Lum32s, T*, Lum32s, LumiSize, LumiDistanceNorm), LumiDistanceNorm norm)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>(3);
        const auto d = job.destination<T>();
        const LumiSize size = job.size();
        return [=] { return fold(s.pixels, s.step, d.pixels, d.step, size, norm); };
    };
}

const auto of8u = [](LumiDistanceNorm norm) { return folded<Lum8u>(lumiGradientColorToGray_8u_C3C1R, norm); };
const auto of16u = [](LumiDistanceNorm norm) { return folded<Lum16u>(lumiGradientColorToGray_16u_C3C1R, norm); };
const auto of32f = [](LumiDistanceNorm norm) { return folded<Lum32f>(lumiGradientColorToGray_32f_C3C1R, norm); };

const Rows rows{{
    {"lumiGradientColorToGray_8u_C3C1R", "Inf", {}, of8u(lumGradNormInf)},
    {"lumiGradientColorToGray_8u_C3C1R", "L1", {}, of8u(lumGradNormL1)},
    {"lumiGradientColorToGray_8u_C3C1R", "L2", {}, of8u(lumGradNormL2)},
    {"lumiGradientColorToGray_16u_C3C1R", "Inf", {}, of16u(lumGradNormInf)},
    {"lumiGradientColorToGray_16u_C3C1R", "L1", {}, of16u(lumGradNormL1)},
    {"lumiGradientColorToGray_16u_C3C1R", "L2", {}, of16u(lumGradNormL2)},
    {"lumiGradientColorToGray_32f_C3C1R", "Inf", {}, of32f(lumGradNormInf)},
    {"lumiGradientColorToGray_32f_C3C1R", "L1", {}, of32f(lumGradNormL1)},
    {"lumiGradientColorToGray_32f_C3C1R", "L2", {}, of32f(lumGradNormL2)},
}};

}  // namespace
