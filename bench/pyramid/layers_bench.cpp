// Rows of pyramid layers: from an image of the row's size to the next smaller one, and back to it.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

template <typename T>
using Tap = std::conditional_t<std::is_same_v<T, Lum32f>, Lum32f, Lum16s>;

constexpr int most = 9;

// 1 2 1, 1 4 6 4 1 and so on
template <typename T>
Tap<T>* binomial(Job& job, int kernelSize)
{
    auto* const taps = job.block<Tap<T>>(most);
    taps[0] = 1;
    for (int i = 1; i < kernelSize; ++i)
        taps[i] = Tap<T>(taps[i - 1] * (kernelSize - i) / i);
    return taps;
}

template <typename T>
struct DownFunctions
{
    LumStatus (*size)(LumiSize, Lum32f, Lum32s, Lum32s*, Lum32s*);
    LumStatus (*init)(LumiPyramidLayerDownRecord**, LumiSize, Lum32f, const Tap<T>*, Lum32s, Lum32s, Lum8u*, Lum8u*);
    LumStatus (*apply)(const T*, Lum32s, LumiSize, T*, Lum32s, LumiSize, LumiPyramidLayerDownRecord*);
};

template <typename T>
struct UpFunctions
{
    LumStatus (*size)(LumiSize, Lum32f, Lum32s, Lum32s*);
    LumStatus (*init)(LumiPyramidLayerUpRecord**, LumiSize, Lum32f, const Tap<T>*, Lum32s, Lum32s, Lum8u*);
    LumStatus (*apply)(const T*, Lum32s, LumiSize, T*, Lum32s, LumiSize, LumiPyramidLayerUpRecord*);
};

template <typename T>
auto down(DownFunctions<T> functions, int channels, Lum32f rate, int kernelSize)
{
    return [=](Job& job) -> Call {
        const LumiSize size = job.size();
        LumiSize smaller;
        lumiGetPyramidDownROI(size, &smaller, rate);
        const auto s = job.source<T>(channels);
        const auto d = job.destination<T>(smaller, channels);
        Lum32s recordBytes = 0, bufferBytes = 1;
        functions.size(size, rate, kernelSize, &recordBytes, &bufferBytes);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferBytes));
        LumiPyramidLayerDownRecord* record = nullptr;
        functions.init(&record, size, rate, binomial<T>(job, kernelSize), kernelSize, 2,
                       job.block<Lum8u>(std::size_t(recordBytes)), buffer);
        return [=] { return functions.apply(s.pixels, s.step, size, d.pixels, d.step, smaller, record); };
    };
}

template <typename T>
auto up(UpFunctions<T> functions, int channels, Lum32f rate, int kernelSize)
{
    return [=](Job& job) -> Call {
        const LumiSize size = job.size();
        LumiSize smaller;
        lumiGetPyramidDownROI(size, &smaller, rate);
        const auto s = job.source<T>(smaller, channels);
        const auto d = job.destination<T>(channels);
        Lum32s recordBytes = 0;
        functions.size(smaller, rate, kernelSize, &recordBytes);
        LumiPyramidLayerUpRecord* record = nullptr;
        functions.init(&record, smaller, rate, binomial<T>(job, kernelSize), kernelSize, 2,
                       job.block<Lum8u>(std::size_t(recordBytes)));
        return [=] { return functions.apply(s.pixels, s.step, smaller, d.pixels, d.step, size, record); };
    };
}

const DownFunctions<Lum8u> down8u1{lumiPyramidLayerDownGetSize_8u_C1R, lumiPyramidLayerDownInit_8u_C1R,
                                   lumiPyramidLayerDown_8u_C1R};
const DownFunctions<Lum8u> down8u3{lumiPyramidLayerDownGetSize_8u_C3R, lumiPyramidLayerDownInit_8u_C3R,
                                   lumiPyramidLayerDown_8u_C3R};
const DownFunctions<Lum16u> down16u1{lumiPyramidLayerDownGetSize_16u_C1R, lumiPyramidLayerDownInit_16u_C1R,
                                     lumiPyramidLayerDown_16u_C1R};
const DownFunctions<Lum16u> down16u3{lumiPyramidLayerDownGetSize_16u_C3R, lumiPyramidLayerDownInit_16u_C3R,
                                     lumiPyramidLayerDown_16u_C3R};
const DownFunctions<Lum32f> down32f1{lumiPyramidLayerDownGetSize_32f_C1R, lumiPyramidLayerDownInit_32f_C1R,
                                     lumiPyramidLayerDown_32f_C1R};
const DownFunctions<Lum32f> down32f3{lumiPyramidLayerDownGetSize_32f_C3R, lumiPyramidLayerDownInit_32f_C3R,
                                     lumiPyramidLayerDown_32f_C3R};
const UpFunctions<Lum8u> up8u1{lumiPyramidLayerUpGetSize_8u_C1R, lumiPyramidLayerUpInit_8u_C1R,
                               lumiPyramidLayerUp_8u_C1R};
const UpFunctions<Lum8u> up8u3{lumiPyramidLayerUpGetSize_8u_C3R, lumiPyramidLayerUpInit_8u_C3R,
                               lumiPyramidLayerUp_8u_C3R};
const UpFunctions<Lum16u> up16u1{lumiPyramidLayerUpGetSize_16u_C1R, lumiPyramidLayerUpInit_16u_C1R,
                                 lumiPyramidLayerUp_16u_C1R};
const UpFunctions<Lum16u> up16u3{lumiPyramidLayerUpGetSize_16u_C3R, lumiPyramidLayerUpInit_16u_C3R,
                                 lumiPyramidLayerUp_16u_C3R};
const UpFunctions<Lum32f> up32f1{lumiPyramidLayerUpGetSize_32f_C1R, lumiPyramidLayerUpInit_32f_C1R,
                                 lumiPyramidLayerUp_32f_C1R};
const UpFunctions<Lum32f> up32f3{lumiPyramidLayerUpGetSize_32f_C3R, lumiPyramidLayerUpInit_32f_C3R,
                                 lumiPyramidLayerUp_32f_C3R};

const Rows rows{{
    {"lumiPyramidLayerDown_8u_C1R", "rate 2, 5 taps", {5.7, 2}, down(down8u1, 1, 2, 5)},
    {"lumiPyramidLayerDown_8u_C1R", "rate 2, 3 taps", {}, down(down8u1, 1, 2, 3)},
    {"lumiPyramidLayerDown_8u_C1R", "rate 2, 9 taps", {}, down(down8u1, 1, 2, 9)},
    {"lumiPyramidLayerDown_8u_C1R", "rate 1.5, 5 taps", {}, down(down8u1, 1, 1.5f, 5)},
    {"lumiPyramidLayerDown_8u_C1R", "rate 3, 5 taps", {}, down(down8u1, 1, 3, 5)},
    {"lumiPyramidLayerDown_8u_C3R", "rate 2, 5 taps", {}, down(down8u3, 3, 2, 5)},
    {"lumiPyramidLayerDown_8u_C3R", "rate 1.5, 5 taps", {}, down(down8u3, 3, 1.5f, 5)},
    {"lumiPyramidLayerDown_16u_C1R", "rate 2, 5 taps", {}, down(down16u1, 1, 2, 5)},
    {"lumiPyramidLayerDown_16u_C1R", "rate 1.5, 5 taps", {}, down(down16u1, 1, 1.5f, 5)},
    {"lumiPyramidLayerDown_16u_C3R", "rate 2, 5 taps", {}, down(down16u3, 3, 2, 5)},
    {"lumiPyramidLayerDown_32f_C1R", "rate 2, 5 taps", {}, down(down32f1, 1, 2, 5)},
    {"lumiPyramidLayerDown_32f_C1R", "rate 1.5, 5 taps", {}, down(down32f1, 1, 1.5f, 5)},
    {"lumiPyramidLayerDown_32f_C3R", "rate 2, 5 taps", {}, down(down32f3, 3, 2, 5)},
    {"lumiPyramidLayerUp_8u_C1R", "rate 2, 5 taps", {}, up(up8u1, 1, 2, 5)},
    {"lumiPyramidLayerUp_8u_C1R", "rate 1.5, 5 taps", {}, up(up8u1, 1, 1.5f, 5)},
    {"lumiPyramidLayerUp_8u_C3R", "rate 2, 5 taps", {}, up(up8u3, 3, 2, 5)},
    {"lumiPyramidLayerUp_16u_C1R", "rate 2, 5 taps", {}, up(up16u1, 1, 2, 5)},
    {"lumiPyramidLayerUp_16u_C3R", "rate 2, 5 taps", {}, up(up16u3, 3, 2, 5)},
    {"lumiPyramidLayerUp_32f_C1R", "rate 2, 5 taps", {}, up(up32f1, 1, 2, 5)},
    {"lumiPyramidLayerUp_32f_C3R", "rate 2, 5 taps", {}, up(up32f3, 3, 2, 5)},
}};

}  // namespace
