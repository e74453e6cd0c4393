// Gallery: filters of the caller's own kernels.
#include <algorithm>

#include "section.hpp"

namespace gallery {
namespace {

// A relief under light from the right: differences along the rows, smoothed across, shown around middle gray.
Picture emboss(const Source& source, Shot& shot)
{
    const Lum16s along[3] = {1, 0, -1};
    const Lum16s across[3] = {1, 2, 1};
    const LumiSize kernelSize = {3, 3};
    const Picture& gray = source.gray;
    Lum32s specSize = 0, bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiFilterSeparableGetSpecSize(kernelSize, lumType16s, 1, &specSize)));
    shot.prepare(
        GALLERY_CALL(lumiFilterSeparableGetBufferSize(gray.size(), kernelSize, lumType8u, lumType16s, 1, &bufferSize)));
    Block block(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
    auto* const spec = reinterpret_cast<LumFilterSeparableSpec*>(block.data());
    shot.prepare(GALLERY_CALL(lumiFilterSeparableInit_16s(along, across, kernelSize, 2, 0, lumType8u, 1, spec)));
    Image<Lum16s> relief(gray.width(), gray.height(), 1);
    shot.time(GALLERY_CALL(lumiFilterSeparable_8u16s_C1R(gray.pixels(), gray.step(), relief.pixels(), relief.step(),
                                                         relief.size(), lumBorderReplicate, 0, spec, buffer.data())));
    return aroundGray(relief, 1);
}

// Light that is drawn out along the rows only, in floats of three channels.
Picture streak(const Source& source, Shot& shot)
{
    constexpr int length = 41;
    Lum32f along[length];
    std::fill(along, along + length, 1.0f / length);
    const Lum32f across[1] = {1.0f};
    const LumiSize kernelSize = {length, 1};
    const Picture& colour = source.colour;
    Lum32s specSize = 0, bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiFilterSeparableGetSpecSize(kernelSize, lumType32f, 3, &specSize)));
    shot.prepare(GALLERY_CALL(
        lumiFilterSeparableGetBufferSize(colour.size(), kernelSize, lumType8u, lumType32f, 3, &bufferSize)));
    Block block(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
    auto* const spec = reinterpret_cast<LumFilterSeparableSpec*>(block.data());
    shot.prepare(GALLERY_CALL(lumiFilterSeparableInit_32f(along, across, kernelSize, lumType8u, 3, spec)));
    Picture result(colour.width(), colour.height(), 3);
    shot.time(
        GALLERY_CALL(lumiFilterSeparable_8u_C3R(colour.pixels(), colour.step(), result.pixels(), result.step(),
                                                result.size(), lumBorderReplicate, nullptr, spec, buffer.data())));
    return result;
}

const Section section{
    35,
    "Separable filter",
    "Two kernels of any size, along the rows and across them.",
    {{"separable-emboss", "Emboss", "Kernels (1, 0, -1) and (1, 2, 1), divisor 2. Middle gray is 0.", emboss},
     {"separable-streak", "Streak", "The mean of 41 pixels along the row.", streak}},
};

}  // namespace
}  // namespace gallery
