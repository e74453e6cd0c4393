// Rows of the row and column pipelines: a whole image by each pass, with kernels of three, five and nine taps.
#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

// A kernel of 1, 2, 3 ... 3, 2, 1, and for integer kernels the divisor that belongs to it.
template <typename K>
struct Kernel
{
    Kernel(Job& job, int length) : size(length), taps(job.block<K>(std::size_t(length)))
    {
        for (int i = 0; i < size; ++i) {
            const int weight = 1 + std::min(i, size - 1 - i);
            taps[i] = K(weight);
            divisor += weight;
        }
        if constexpr (std::is_floating_point_v<K>)
            for (int i = 0; i < size; ++i)
                taps[i] /= K(divisor);
    }

    int size;
    K* taps;
    int divisor = 0;
};

// Pointers to the rows of an image, with `above` repetitions of the first row before them and `below` of the last
// behind.
template <typename T>
T** rowPointers(Job& job, View<T> image, int above = 0, int below = 0)
{
    const int height = job.size().height;
    T** const rows = job.block<T*>(std::size_t(above + height + below));
    for (int y = -above; y < height + below; ++y)
        rows[above + y] = image.row(std::clamp(y, 0, height - 1));
    return rows;
}

using Query = LumStatus (*)(LumiSize, Lum32s, Lum32s*);

Lum8u* scratch(Job& job, Query query, int kernelSize)
{
    Lum32s size = 0;
    query(job.size(), kernelSize, &size);
    return job.block<Lum8u>(std::size_t(size));
}

// What stands behind the other arguments: a divisor and the scratch for integer kernels, the scratch alone for others.
template <typename K, typename Apply>
LumStatus callWithScale(const Kernel<K>& kernel, Lum8u* buffer, Apply apply)
{
    if constexpr (std::is_floating_point_v<K>)
        return apply(buffer);
    else
        return apply(kernel.divisor, buffer);
}

// The border value of one channel goes by value, those of three by pointer.
template <typename S, typename D, typename K, typename Border, typename... Scale>
Call rowPass(Job& job,
             LumStatus (*function)(const S*, Lum32s, D* const*, LumiSize, const K*, Lum32s, Lum32s, LumiBorderType,
                                   Border, Scale...),
             Query query, int kernelSize, int divisor = 0)
{
    constexpr int channels = std::is_pointer_v<Border> ? 3 : 1;
    const auto source = job.source<S>(channels);
    D** const rows = rowPointers(job, job.destination<D>(channels));
    Kernel<K> kernel(job, kernelSize);
    if (divisor != 0)
        kernel.divisor = divisor;
    Lum8u* const buffer = scratch(job, query, kernelSize);
    Border border{};
    if constexpr (channels == 3)
        border = job.block<S>(3);
    return [=, size = job.size()] {
        return callWithScale(kernel, buffer, [&](auto... scale) {
            return function(source.pixels, source.step, rows, size, kernel.taps, kernel.size, kernel.size / 2,
                            lumBorderReplicate, border, scale...);
        });
    };
}

template <typename S, typename D, typename K, typename... Scale>
Call columnPass(Job& job, LumStatus (*function)(S* const*, D*, Lum32s, LumiSize, const K*, Lum32s, Scale...),
                Query query, int channels, int kernelSize)
{
    const auto image = job.source<S>(channels);
    const View<S> writable{const_cast<S*>(image.pixels), image.step};
    S** const rows = rowPointers(job, writable, kernelSize / 2, kernelSize - 1 - kernelSize / 2);
    const auto destination = job.destination<D>(channels);
    const Kernel<K> kernel(job, kernelSize);
    Lum8u* const buffer = scratch(job, query, kernelSize);
    return [=, size = job.size()] {
        return callWithScale(kernel, buffer, [&](auto... scale) {
            return function(rows, destination.pixels, destination.step, size, kernel.taps, kernel.size, scale...);
        });
    };
}

template <typename SetUp>
std::vector<Row> kernelSizes(const char* function, SetUp setUp)
{
    std::vector<Row> rows;
    for (const int kernelSize : {3, 5, 9})
        rows.push_back(
            {function, std::to_string(kernelSize) + " taps", {}, [=](Job& job) { return setUp(job, kernelSize); }});
    return rows;
}

template <typename Function>
std::vector<Row> rowPasses(const char* name, Function function, Query query)
{
    return kernelSizes(name, [=](Job& job, int kernelSize) { return rowPass(job, function, query, kernelSize); });
}

template <typename Function>
std::vector<Row> columnPasses(const char* name, Function function, Query query, int channels)
{
    return kernelSizes(
        name, [=](Job& job, int kernelSize) { return columnPass(job, function, query, channels, kernelSize); });
}

const Rows rows{joined({
    rowPasses("lumiFilterRowBorderPipeline_32f_C1R", lumiFilterRowBorderPipeline_32f_C1R,
              lumiFilterRowBorderPipelineGetBufferSize_32f_C1R),
    rowPasses("lumiFilterRowBorderPipeline_32f_C3R", lumiFilterRowBorderPipeline_32f_C3R,
              lumiFilterRowBorderPipelineGetBufferSize_32f_C3R),
    rowPasses("lumiFilterRowBorderPipeline_16s_C1R", lumiFilterRowBorderPipeline_16s_C1R,
              lumiFilterRowBorderPipelineGetBufferSize_16s_C1R),
    rowPasses("lumiFilterRowBorderPipeline_16s_C3R", lumiFilterRowBorderPipeline_16s_C3R,
              lumiFilterRowBorderPipelineGetBufferSize_16s_C3R),
    rowPasses("lumiFilterRowBorderPipeline_16u_C1R", lumiFilterRowBorderPipeline_16u_C1R,
              lumiFilterRowBorderPipelineGetBufferSize_16u_C1R),
    rowPasses("lumiFilterRowBorderPipeline_16u_C3R", lumiFilterRowBorderPipeline_16u_C3R,
              lumiFilterRowBorderPipelineGetBufferSize_16u_C3R),
    rowPasses("lumiFilterRowBorderPipeline_8u16s_C1R", lumiFilterRowBorderPipeline_8u16s_C1R,
              lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R),
    rowPasses("lumiFilterRowBorderPipeline_8u16s_C3R", lumiFilterRowBorderPipeline_8u16s_C3R,
              lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R),
    rowPasses("lumiFilterRowBorderPipeline_Low_16s_C1R", lumiFilterRowBorderPipeline_Low_16s_C1R,
              lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R),
    rowPasses("lumiFilterRowBorderPipeline_Low_16s_C3R", lumiFilterRowBorderPipeline_Low_16s_C3R,
              lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R),
    columnPasses("lumiFilterColumnPipeline_32f_C1R", lumiFilterColumnPipeline_32f_C1R,
                 lumiFilterColumnPipelineGetBufferSize_32f_C1R, 1),
    columnPasses("lumiFilterColumnPipeline_32f_C3R", lumiFilterColumnPipeline_32f_C3R,
                 lumiFilterColumnPipelineGetBufferSize_32f_C3R, 3),
    columnPasses("lumiFilterColumnPipeline_16s_C1R", lumiFilterColumnPipeline_16s_C1R,
                 lumiFilterColumnPipelineGetBufferSize_16s_C1R, 1),
    columnPasses("lumiFilterColumnPipeline_16s_C3R", lumiFilterColumnPipeline_16s_C3R,
                 lumiFilterColumnPipelineGetBufferSize_16s_C3R, 3),
    columnPasses("lumiFilterColumnPipeline_16s8u_C1R", lumiFilterColumnPipeline_16s8u_C1R,
                 lumiFilterColumnPipelineGetBufferSize_16s8u_C1R, 1),
    columnPasses("lumiFilterColumnPipeline_16s8u_C3R", lumiFilterColumnPipeline_16s8u_C3R,
                 lumiFilterColumnPipelineGetBufferSize_16s8u_C3R, 3),
    columnPasses("lumiFilterColumnPipeline_16s8s_C1R", lumiFilterColumnPipeline_16s8s_C1R,
                 lumiFilterColumnPipelineGetBufferSize_16s8s_C1R, 1),
    columnPasses("lumiFilterColumnPipeline_16s8s_C3R", lumiFilterColumnPipeline_16s8s_C3R,
                 lumiFilterColumnPipelineGetBufferSize_16s8s_C3R, 3),
    columnPasses("lumiFilterColumnPipeline_16u_C1R", lumiFilterColumnPipeline_16u_C1R,
                 lumiFilterColumnPipelineGetBufferSize_16u_C1R, 1),
    columnPasses("lumiFilterColumnPipeline_16u_C3R", lumiFilterColumnPipeline_16u_C3R,
                 lumiFilterColumnPipelineGetBufferSize_16u_C3R, 3),
    columnPasses("lumiFilterColumnPipeline_Low_16s_C1R", lumiFilterColumnPipeline_Low_16s_C1R,
                 lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R, 1),
    columnPasses("lumiFilterColumnPipeline_Low_16s_C3R", lumiFilterColumnPipeline_Low_16s_C3R,
                 lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R, 3),
})};

const Rows withoutScale{{{"lumiFilterRowBorderPipeline_Low_16s_C1R", "5 unscaled", {}, [](Job& job) {
                              return rowPass(job, lumiFilterRowBorderPipeline_Low_16s_C1R,
                                             lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R, 5, 1);
                          }}}};

}  // namespace
