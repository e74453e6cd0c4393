// Rows of the Gaussian filter: all types, kernel sizes of each class.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

template <typename T>
using Gaussian = LumStatus (*)(const T*, Lum32s, T*, Lum32s, LumiSize, LumiBorderType, const T*,
                               const LumFilterGaussianSpec*, Lum8u*);

template <typename T>
auto gaussian(Gaussian<T> function, LumDataType type, int channels, int kernelSize)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>(channels);
        const auto d = job.destination<T>(channels);
        const LumiSize size = job.size();
        Lum32s specSize = 0, bufferSize = 0;
        lumiFilterGaussianGetBufferSize(size, kernelSize, type, channels, &specSize, &bufferSize);
        auto* const spec = reinterpret_cast<LumFilterGaussianSpec*>(job.block<Lum8u>(std::size_t(specSize)));
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        const Lum32f sigma = Lum32f(kernelSize) / 5;
        lumiFilterGaussianInit(size, kernelSize, sigma, lumBorderReplicate, type, channels, spec, buffer);
        return [=] {
            return function(s.pixels, s.step, d.pixels, d.step, size, lumBorderReplicate, nullptr, spec, buffer);
        };
    };
}

const Rows rows{{
    {"lumiFilterGaussian_8u_C1R", "3x3", {4.1, 3.3, 2.2}, gaussian(lumiFilterGaussian_8u_C1R, lumType8u, 1, 3)},
    {"lumiFilterGaussian_8u_C1R", "5x5", {5.8, 4.8, 3}, gaussian(lumiFilterGaussian_8u_C1R, lumType8u, 1, 5)},
    {"lumiFilterGaussian_8u_C1R", "7x7", {10.2, 6.5, 4.2}, gaussian(lumiFilterGaussian_8u_C1R, lumType8u, 1, 7)},
    {"lumiFilterGaussian_8u_C1R", "15x15", {20, 13, 8}, gaussian(lumiFilterGaussian_8u_C1R, lumType8u, 1, 15)},
    {"lumiFilterGaussian_8u_C3R", "3x3", {}, gaussian(lumiFilterGaussian_8u_C3R, lumType8u, 3, 3)},
    {"lumiFilterGaussian_8u_C3R", "5x5", {5.8, 4.8, 3}, gaussian(lumiFilterGaussian_8u_C3R, lumType8u, 3, 5)},
    {"lumiFilterGaussian_8u_C3R", "7x7", {}, gaussian(lumiFilterGaussian_8u_C3R, lumType8u, 3, 7)},
    {"lumiFilterGaussian_8u_C3R", "15x15", {}, gaussian(lumiFilterGaussian_8u_C3R, lumType8u, 3, 15)},
    {"lumiFilterGaussian_16u_C1R", "3x3", {}, gaussian(lumiFilterGaussian_16u_C1R, lumType16u, 1, 3)},
    {"lumiFilterGaussian_16u_C1R", "5x5", {38, 3}, gaussian(lumiFilterGaussian_16u_C1R, lumType16u, 1, 5)},
    {"lumiFilterGaussian_16u_C1R", "7x7", {}, gaussian(lumiFilterGaussian_16u_C1R, lumType16u, 1, 7)},
    {"lumiFilterGaussian_16u_C1R", "15x15", {}, gaussian(lumiFilterGaussian_16u_C1R, lumType16u, 1, 15)},
    {"lumiFilterGaussian_16u_C3R", "5x5", {}, gaussian(lumiFilterGaussian_16u_C3R, lumType16u, 3, 5)},
    {"lumiFilterGaussian_16u_C3R", "15x15", {}, gaussian(lumiFilterGaussian_16u_C3R, lumType16u, 3, 15)},
    {"lumiFilterGaussian_16s_C1R", "5x5", {}, gaussian(lumiFilterGaussian_16s_C1R, lumType16s, 1, 5)},
    {"lumiFilterGaussian_16s_C1R", "15x15", {}, gaussian(lumiFilterGaussian_16s_C1R, lumType16s, 1, 15)},
    {"lumiFilterGaussian_16s_C3R", "5x5", {}, gaussian(lumiFilterGaussian_16s_C3R, lumType16s, 3, 5)},
    {"lumiFilterGaussian_16s_C3R", "15x15", {}, gaussian(lumiFilterGaussian_16s_C3R, lumType16s, 3, 15)},
    {"lumiFilterGaussian_32f_C1R", "3x3", {}, gaussian(lumiFilterGaussian_32f_C1R, lumType32f, 1, 3)},
    {"lumiFilterGaussian_32f_C1R", "5x5", {2.6, 1.6}, gaussian(lumiFilterGaussian_32f_C1R, lumType32f, 1, 5)},
    {"lumiFilterGaussian_32f_C1R", "7x7", {}, gaussian(lumiFilterGaussian_32f_C1R, lumType32f, 1, 7)},
    {"lumiFilterGaussian_32f_C1R", "15x15", {7.0, 4.5}, gaussian(lumiFilterGaussian_32f_C1R, lumType32f, 1, 15)},
    {"lumiFilterGaussian_32f_C3R", "5x5", {}, gaussian(lumiFilterGaussian_32f_C3R, lumType32f, 3, 5)},
    {"lumiFilterGaussian_32f_C3R", "15x15", {}, gaussian(lumiFilterGaussian_32f_C3R, lumType32f, 3, 15)},
}};

}  // namespace
