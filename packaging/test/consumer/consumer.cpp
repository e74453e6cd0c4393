// A program of C++20 that uses an installed lumcv: it tells which build of the library the loader has picked, and
// blurs.
#include <lumcv/lumcv.h>

#include <array>
#include <cstddef>
#include <iostream>
#include <span>
#include <vector>

constexpr int side = 32, centre = side / 2, kernelSize = 5;

static LumStatus blur(std::span<const Lum8u> image, std::span<Lum8u> soft)
{
    const LumiSize size = {.width = side, .height = side};
    Lum32s specSize = 0, bufferSize = 0;
    if (const LumStatus status =
            lumiFilterGaussianGetBufferSize(size, kernelSize, lumType8u, 1, &specSize, &bufferSize))
        return status;
    std::vector<std::byte> specBlock(specSize), bufferBlock(bufferSize);
    const auto spec = reinterpret_cast<LumFilterGaussianSpec*>(specBlock.data());
    const auto buffer = reinterpret_cast<Lum8u*>(bufferBlock.data());
    if (const LumStatus status =
            lumiFilterGaussianInit(size, kernelSize, 1.0f, lumBorderReplicate, lumType8u, 1, spec, buffer))
        return status;
    return lumiFilterGaussian_8u_C1R(image.data(), side, soft.data(), side, size, lumBorderReplicate, nullptr, spec,
                                     buffer);
}

int main()
{
    std::array<Lum8u, side*side> image = {}, soft = {};
    image[centre * side + centre] = 255;
    const LumStatus status = blur(image, soft);
    std::cout << lumcvGetLibVersion()->Name << ": status " << status << ", centre " << int{soft[centre * side + centre]}
              << ", beside it " << int{soft[centre * side + centre + 1]} << '\n';
}
