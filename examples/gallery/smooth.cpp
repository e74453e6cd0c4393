#include "smooth.hpp"

#include <vector>

namespace gallery {

Picture smoothed(const Picture& gray, int taps, Lum32f sigma)
{
    const LumiSize size = gray.size();
    Lum32s specSize = 0, bufferSize = 0;
    check(lumiFilterGaussianGetBufferSize(size, taps, lumType8u, 1, &specSize, &bufferSize),
          "lumiFilterGaussianGetBufferSize");
    std::vector<Lum8u> block(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
    auto* const spec = reinterpret_cast<LumFilterGaussianSpec*>(block.data());
    check(lumiFilterGaussianInit(size, taps, sigma, lumBorderReplicate, lumType8u, 1, spec, buffer.data()),
          "lumiFilterGaussianInit");
    Picture result(gray.width(), gray.height(), 1);
    check(lumiFilterGaussian_8u_C1R(gray.pixels(), gray.step(), result.pixels(), result.step(), size,
                                    lumBorderReplicate, nullptr, spec, buffer.data()),
          "lumiFilterGaussian_8u_C1R");
    return result;
}

}  // namespace gallery
