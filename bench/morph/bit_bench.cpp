// Rows of 1-bit morphology. The memory copy beside them is that of an 8u image of the same size, so that their
// multiples compare with those of the 8u functions.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

struct BitImages
{
    const Lum8u* src;
    Lum8u* dst;
    Lum32s step;
};

BitImages bitImages(Job& job)
{
    const auto bytes = job.source<Lum8u>();
    job.destination<Lum8u>();
    const LumiSize size = job.size();
    const Lum32s step = (size.width + 511) / 512 * 64;
    const std::size_t total = std::size_t(step) * size.height;
    Lum8u* const src = job.block<Lum8u>(total);
    Lum8u* const dst = job.block<Lum8u>(total);
    for (int y = 0; y < size.height; ++y)
        for (int i = 0; i < (size.width + 7) / 8; ++i)
            src[std::size_t(y) * step + i] = bytes.row(y)[i];
    return {src, dst, step};
}

using Apply = LumStatus (*)(const Lum8u*, Lum32s, Lum32s, Lum8u*, Lum32s, Lum32s, LumiSize, LumiBorderType, Lum8u,
                            const LumiMorphBitRecord*, Lum8u*);

auto pass(Apply function, std::vector<Lum8u> mask, LumiSize maskSize, int dstBitOffset = 0)
{
    return [=](Job& job) -> Call {
        const BitImages images = bitImages(job);
        const LumiSize size = dstBitOffset ? LumiSize{job.size().width - 8, job.size().height} : job.size();
        Lum32s specSize = 0, bufferSize = 0;
        lumiMorphologyBorderGetSize_1u_C1R(size, maskSize, &specSize, &bufferSize);
        auto* const spec = reinterpret_cast<LumiMorphBitRecord*>(job.block<Lum8u>(std::size_t(specSize)));
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        lumiMorphologyBorderInit_1u_C1R(size, mask.data(), maskSize, spec, buffer);
        return [=] {
            return function(images.src, images.step, 0, images.dst, images.step, dstBitOffset, size, lumBorderReplicate,
                            0, spec, buffer);
        };
    };
}

auto rectangle(Apply function, int side, int dstBitOffset = 0)
{
    return pass(function, std::vector<Lum8u>(std::size_t(side) * side, 1), {side, side}, dstBitOffset);
}

auto cross(Apply function)
{
    return pass(function, {0, 1, 0, 1, 1, 1, 0, 1, 0}, {3, 3});
}

auto disc(Apply function)
{
    std::vector<Lum8u> mask;
    for (int y = -4; y <= 4; ++y)
        for (int x = -4; x <= 4; ++x)
            mask.push_back(x * x + y * y <= 18);
    return pass(function, mask, {9, 9});
}

auto opening(int side)
{
    return [=](Job& job) -> Call {
        const BitImages images = bitImages(job);
        const LumiSize size = job.size();
        const std::vector<Lum8u> mask(std::size_t(side) * side, 1);
        Lum32s specSize = 0, bufferSize = 0;
        lumiMorphAdvGetSize_1u_C1R(size, {side, side}, &specSize, &bufferSize);
        auto* const spec = reinterpret_cast<LumiMorphCompoundSpec*>(job.block<Lum8u>(std::size_t(specSize)));
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        lumiMorphAdvInit_1u_C1R(size, mask.data(), {side, side}, spec, buffer);
        return [=] {
            return lumiMorphOpenBorder_1u_C1R(images.src, images.step, 0, images.dst, images.step, 0, size,
                                              lumBorderReplicate, 0, spec, buffer);
        };
    };
}

const Rows rows{{
    {"lumiDilateBorder_1u_C1R", "3x3", {}, rectangle(lumiDilateBorder_1u_C1R, 3)},
    {"lumiDilateBorder_1u_C1R", "3x3 +3", {}, rectangle(lumiDilateBorder_1u_C1R, 3, 3)},
    {"lumiDilateBorder_1u_C1R", "5x5", {}, rectangle(lumiDilateBorder_1u_C1R, 5)},
    {"lumiDilateBorder_1u_C1R", "15x15", {}, rectangle(lumiDilateBorder_1u_C1R, 15)},
    {"lumiDilateBorder_1u_C1R", "cross", {}, cross(lumiDilateBorder_1u_C1R)},
    {"lumiDilateBorder_1u_C1R", "disc 9", {}, disc(lumiDilateBorder_1u_C1R)},
    {"lumiErodeBorder_1u_C1R", "3x3", {}, rectangle(lumiErodeBorder_1u_C1R, 3)},
    {"lumiMorphOpenBorder_1u_C1R", "5x5", {}, opening(5)},
}};

}  // namespace
