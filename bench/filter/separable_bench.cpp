// Rows of the separable filter: all pairs of types, both types of kernel, sizes of each class.
#include <vector>

#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

/// The border value is a number or a pointer, by the number of channels.
template <typename S, typename D, typename BorderValue>
using Separable = LumStatus (*)(const S*, Lum32s, D*, Lum32s, LumiSize, LumiBorderType, BorderValue,
                                const LumFilterSeparableSpec*, Lum8u*);

/// A kernel without symmetry whose sum is one, or the divisor.
template <typename K>
std::vector<K> coefficients(int count, Lum32f sum)
{
    std::vector<K> kernel(std::size_t(count), K(sum / Lum32f(count)));
    kernel.front() = K(sum / 2);
    return kernel;
}

template <typename S, typename D, typename BorderValue>
auto separable(Separable<S, D, BorderValue> function, LumDataType type, LumDataType kernelType, int channels,
               LumiSize kernelSize)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<S>(channels);
        const auto d = job.destination<D>(channels);
        const LumiSize size = job.size();
        Lum32s specSize = 0, bufferSize = 0;
        lumiFilterSeparableGetSpecSize(kernelSize, kernelType, channels, &specSize);
        lumiFilterSeparableGetBufferSize(size, kernelSize, type, kernelType, channels, &bufferSize);
        auto* const spec = reinterpret_cast<LumFilterSeparableSpec*>(job.block<Lum8u>(std::size_t(specSize)));
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        if (kernelType == lumType32f)
            lumiFilterSeparableInit_32f(coefficients<Lum32f>(kernelSize.width, 1).data(),
                                        coefficients<Lum32f>(kernelSize.height, 1).data(), kernelSize, type, channels,
                                        spec);
        else
            lumiFilterSeparableInit_16s(coefficients<Lum16s>(kernelSize.width, 64).data(),
                                        coefficients<Lum16s>(kernelSize.height, 64).data(), kernelSize, 4096, 0, type,
                                        channels, spec);
        return [=] {
            return function(s.pixels, s.step, d.pixels, d.step, size, lumBorderReplicate, BorderValue{}, spec, buffer);
        };
    };
}

const Rows rows{{
    {"lumiFilterSeparable_8u_C1R",
     "3x3 32f",
     {},
     separable(lumiFilterSeparable_8u_C1R, lumType8u, lumType32f, 1, {3, 3})},
    {"lumiFilterSeparable_8u_C1R",
     "5x5 32f",
     {7.5, 6, 4},
     separable(lumiFilterSeparable_8u_C1R, lumType8u, lumType32f, 1, {5, 5})},
    {"lumiFilterSeparable_8u_C1R",
     "7x7 32f",
     {},
     separable(lumiFilterSeparable_8u_C1R, lumType8u, lumType32f, 1, {7, 7})},
    {"lumiFilterSeparable_8u_C1R",
     "15x15 32f",
     {},
     separable(lumiFilterSeparable_8u_C1R, lumType8u, lumType32f, 1, {15, 15})},
    {"lumiFilterSeparable_8u_C1R",
     "5x5 16s",
     {},
     separable(lumiFilterSeparable_8u_C1R, lumType8u, lumType16s, 1, {5, 5})},
    {"lumiFilterSeparable_8u_C1R",
     "3x5 32f",
     {},
     separable(lumiFilterSeparable_8u_C1R, lumType8u, lumType32f, 1, {3, 5})},
    {"lumiFilterSeparable_8u_C1R",
     "5x1 32f",
     {},
     separable(lumiFilterSeparable_8u_C1R, lumType8u, lumType32f, 1, {5, 1})},
    {"lumiFilterSeparable_8u_C3R",
     "5x5 32f",
     {},
     separable(lumiFilterSeparable_8u_C3R, lumType8u, lumType32f, 3, {5, 5})},
    {"lumiFilterSeparable_8u_C4R",
     "5x5 32f",
     {},
     separable(lumiFilterSeparable_8u_C4R, lumType8u, lumType32f, 4, {5, 5})},
    {"lumiFilterSeparable_8u16s_C1R",
     "5x5 16s",
     {},
     separable(lumiFilterSeparable_8u16s_C1R, lumType8u, lumType16s, 1, {5, 5})},
    {"lumiFilterSeparable_16s_C1R",
     "5x5 16s",
     {},
     separable(lumiFilterSeparable_16s_C1R, lumType16s, lumType16s, 1, {5, 5})},
    {"lumiFilterSeparable_16u_C1R",
     "5x5 32f",
     {},
     separable(lumiFilterSeparable_16u_C1R, lumType16u, lumType32f, 1, {5, 5})},
    {"lumiFilterSeparable_32f_C1R",
     "5x5 32f",
     {},
     separable(lumiFilterSeparable_32f_C1R, lumType32f, lumType32f, 1, {5, 5})},
    {"lumiFilterSeparable_32f_C1R",
     "7x7 32f",
     {3.8, 2.5},
     separable(lumiFilterSeparable_32f_C1R, lumType32f, lumType32f, 1, {7, 7})},
    {"lumiFilterSeparable_32f_C1R",
     "15x15 32f",
     {},
     separable(lumiFilterSeparable_32f_C1R, lumType32f, lumType32f, 1, {15, 15})},
    {"lumiFilterSeparable_32f_C3R",
     "7x7 32f",
     {},
     separable(lumiFilterSeparable_32f_C3R, lumType32f, lumType32f, 3, {7, 7})},
}};

}  // namespace
