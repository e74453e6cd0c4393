#include "smooth.hpp"

namespace gallery {

Picture smoothed(const Picture& gray, int taps, Lum32f sigma)
{
    using lumcv::call;
    const LumiSize size = gray.size();
    lumcv::Record<LumFilterGaussianSpec> spec;
    lumcv::Block scratch;
    call<lumiFilterGaussianGetBufferSize>(size, taps, lumType8u, 1, spec, scratch).throwIfError();
    call<lumiFilterGaussianInit>(size, taps, sigma, lumBorderReplicate, lumType8u, 1, spec, scratch).throwIfError();
    Picture result(gray.width(), gray.height(), 1);
    call<lumiFilterGaussian_8u_C1R>(gray.view(), result.view(), size, lumBorderReplicate, nullptr, spec, scratch)
        .throwIfError();
    return result;
}

}  // namespace gallery
