// Rows of the corner measures and of the suppression of lines.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

using EigenQuery = LumStatus (*)(LumiSize, Lum32s, Lum32s, Lum32s*);

template <typename S>
using Eigen = LumStatus (*)(const S*, Lum32s, Lum32f*, Lum32s, LumiSize, LumiKernelType, Lum32s, Lum32s, Lum8u*);

template <typename S>
auto eigen(Eigen<S> measure, EigenQuery query, Lum32s aperture, Lum32s window, int floats)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<S>();
        const auto d = job.destination<Lum32f>(floats);
        const LumiSize size = job.size();
        Lum32s bufferSize = 0;
        query(size, aperture, window, &bufferSize);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        return
            [=] { return measure(s.pixels, s.step, d.pixels, d.step, size, lumKernSobel, aperture, window, buffer); };
    };
}

template <typename S>
using Harris = LumStatus (*)(const S*, Lum32s, Lum32f*, Lum32s, LumiSize, LumiFilterType, LumiMaskSize, Lum32s, Lum32f,
                             Lum32f, LumiBorderType, S, Lum8u*);

template <typename S>
auto harris(Harris<S> measure, LumiFilterType type, LumiMaskSize mask, Lum32s window)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<S>();
        const auto d = job.destination<Lum32f>();
        const LumiSize size = job.size();
        Lum32s bufferSize = 0;
        lumiHarrisCornerGetBufferSize(size, mask, window, sizeof(S) == 1 ? lumType8u : lumType32f, 1, &bufferSize);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        return [=] {
            return measure(s.pixels, s.step, d.pixels, d.step, size, type, mask, window, 0.04f, 1e-9f,
                           lumBorderReplicate, S(0), buffer);
        };
    };
}

auto lines(Lum32s window)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<Lum8u>();
        const auto feature = job.source<Lum8u>();
        const auto d = job.destination<Lum8u>();
        const LumiSize size = job.size();
        Lum32s bufferSize = 0;
        lumiLineSuppressionGetBufferSize(size, lumMask3x3, window, lumType8u, 1, &bufferSize);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        return [=] {
            return lumiLineSuppression_8u_C1R(s.pixels, s.step, feature.pixels, feature.step, d.pixels, d.step, size,
                                              lumFilterSobel, lumMask3x3, window, 10.0f, lumBorderReplicate, 0, buffer);
        };
    };
}

const Rows rows{{
    {"lumiMinEigenVal_8u32f_C1R",
     "3,3",
     {48, 9},
     eigen(lumiMinEigenVal_8u32f_C1R, lumiMinEigenValGetBufferSize_8u32f_C1R, 3, 3, 1)},
    {"lumiMinEigenVal_8u32f_C1R",
     "5,5",
     {},
     eigen(lumiMinEigenVal_8u32f_C1R, lumiMinEigenValGetBufferSize_8u32f_C1R, 5, 5, 1)},
    {"lumiMinEigenVal_32f_C1R",
     "3,3",
     {},
     eigen(lumiMinEigenVal_32f_C1R, lumiMinEigenValGetBufferSize_32f_C1R, 3, 3, 1)},
    {"lumiMinEigenVal_32f_C1R",
     "5,5",
     {},
     eigen(lumiMinEigenVal_32f_C1R, lumiMinEigenValGetBufferSize_32f_C1R, 5, 5, 1)},
    {"lumiEigenValsVecs_8u32f_C1R",
     "3,3",
     {15.5, 5},
     eigen(lumiEigenValsVecs_8u32f_C1R, lumiEigenValsVecsGetBufferSize_8u32f_C1R, 3, 3, 6)},
    {"lumiEigenValsVecs_32f_C1R",
     "3,3",
     {},
     eigen(lumiEigenValsVecs_32f_C1R, lumiEigenValsVecsGetBufferSize_32f_C1R, 3, 3, 6)},
    {"lumiHarrisCorner_8u32f_C1R", "3,3", {46, 9}, harris(lumiHarrisCorner_8u32f_C1R, lumFilterSobel, lumMask3x3, 3)},
    {"lumiHarrisCorner_8u32f_C1R", "3,7", {}, harris(lumiHarrisCorner_8u32f_C1R, lumFilterSobel, lumMask3x3, 7)},
    {"lumiHarrisCorner_8u32f_C1R", "5,5", {}, harris(lumiHarrisCorner_8u32f_C1R, lumFilterSobel, lumMask5x5, 5)},
    {"lumiHarrisCorner_32f_C1R", "3,3", {}, harris(lumiHarrisCorner_32f_C1R, lumFilterSobel, lumMask3x3, 3)},
    {"lumiLineSuppression_8u_C1R", "3,3", {}, lines(3)},
    {"lumiLineSuppression_8u_C1R", "3,7", {}, lines(7)},
}};

}  // namespace
