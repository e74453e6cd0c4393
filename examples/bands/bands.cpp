#include "bands.hpp"

#include <oneapi/tbb/enumerable_thread_specific.h>
#include <oneapi/tbb/parallel_for.h>

#include <algorithm>
#include <utility>

namespace bands {
namespace {

using lumcv::Block;
using lumcv::call;
using lumcv::View;

constexpr Lum32s taps = 7;
constexpr LumiSize square = {3, 3};

// Rows beyond those of the result. An opening is an erosion and then a dilation, and each looks one row further.
constexpr int gaussianMargin = taps / 2;
constexpr int gradientMargin = square.height / 2;
constexpr int openingMargin = 2 * (square.height / 2);

}  // namespace

std::vector<Band> cut(int height, int rows, int margin)
{
    std::vector<Band> bands;
    int top = 0;
    while (top < height) {
        int bottom = std::max(top + rows, margin);
        if (height - bottom < margin) {
            bottom = height;
        }
        const int inMemory = (top > 0 ? lumBorderInMemTop : 0) | (bottom < height ? lumBorderInMemBottom : 0);
        bands.push_back({top, bottom - top, lumBorderReplicate | inMemory});
        top = bottom;
    }
    return bands;
}

Chain::Chain(LumiSize size)
{
    Block scratch;
    call<lumiFilterGaussianGetSpecSize_L>(taps, lumType8u, 1, gaussian_, scratch).throwIfError();
    call<lumiFilterGaussianInit_L>(size, taps, 1.5f, lumBorderReplicate, lumType8u, 1, gaussian_, scratch)
        .throwIfError();
    const std::vector<Lum8u> mask(square.width * square.height, 1);
    call<lumiMorphGetSpecSize_L>(size, square, lumType8u, 1, square_).throwIfError();
    call<lumiMorphInit_L>(size, mask, square, lumType8u, 1, square_).throwIfError();
}

// The operations one after the other. Each is a function of a part of its source, the same part of its result, the
// border of that part and a scratch block; `runStage` chooses the parts.
template <class Run>
Picture Chain::run(const Picture& gray, const Run& runStage) const
{
    Picture first(gray.width(), gray.height(), 1), second = first;
    runStage(
        gray.view(), first.view(), gaussianMargin,
        [this](View<const Lum8u> source, View<Lum8u> result, LumiBorderType border, Block& scratch) {
            const LumiSize size = result.size();
            call<lumiFilterGaussianGetBufferSize_L>(size, taps, lumType8u, border, 1, scratch).throwIfError();
            call<lumiFilterGaussian_8u_C1R_L>(source, result, size, border, nullptr, gaussian_, scratch).throwIfError();
        });
    runStage(
        first.view(), second.view(), gradientMargin,
        [this](View<const Lum8u> source, View<Lum8u> result, LumiBorderType border, Block& scratch) {
            const LumiSize size = result.size();
            call<lumiMorphGetBufferSize_L>(size, square, lumType8u, 1, scratch).throwIfError();
            call<lumiMorphGradient_8u_C1R_L>(source, result, size, border, nullptr, square_, scratch).throwIfError();
        });
    runStage(second.view(), first.view(), openingMargin,
             [this](View<const Lum8u> source, View<Lum8u> result, LumiBorderType border, Block& scratch) {
                 const LumiSize size = result.size();
                 call<lumiMorphGetBufferSize_L>(size, square, lumType8u, 1, scratch).throwIfError();
                 call<lumiMorphOpen_8u_C1R_L>(source, result, size, border, nullptr, square_, scratch).throwIfError();
             });
    return first;
}

Picture Chain::whole(const Picture& gray) const
{
    Block scratch;
    return run(gray, [&](View<const Lum8u> source, View<Lum8u> result, int, const auto& stage) {
        stage(source, result, lumBorderReplicate, scratch);
    });
}

Picture Chain::inBands(const Picture& gray, int rows) const
{
    // a scratch block for each thread; the records are read only, so all threads share them
    oneapi::tbb::enumerable_thread_specific<Block> scratch;
    // a band needs rows that others make, so an operation begins when the one before it is done with the whole picture
    return run(gray, [&](View<const Lum8u> source, View<Lum8u> result, int margin, const auto& stage) {
        const std::vector<Band> bands = cut(gray.height(), rows, margin);
        oneapi::tbb::parallel_for(std::size_t{0}, bands.size(), [&](std::size_t i) {
            const auto [top, height, border] = bands[i];
            stage(source.rows(top, height), result.rows(top, height), border, scratch.local());
        });
    });
}

}  // namespace bands
