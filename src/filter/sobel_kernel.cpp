// The coefficients of Sobel kernels of any size and order: an impulse, smoothed and then differentiated by its
// neighbours.
#include "frame/checks.hpp"
#include "lumcv/filter.h"

namespace lumcv {
namespace {

/// Words wrap around.
template <class T>
LumStatus sobelKernel(T* pDst, Lum32s kernelSize, Lum32s dx, Lum32s sign)
{
    const bool isKernelSize = kernelSize >= 1 && kernelSize % 2 == 1;
    const LumStatus status =
        Checks{}.notNull(pDst).require(isKernelSize && dx >= 0 && dx < kernelSize, lumErrSize).status();
    if (status != lumOk)
        return status;
    const int64_t last = kernelSize - 1;
    for (int64_t i = 0; i < last; ++i)
        pDst[i] = 0;
    pDst[last] = 1;
    // one place more to the left each time; the last dx times are differences
    for (int64_t start = last - 1; start >= 0; --start)
        for (int64_t i = start; i < last; ++i)
            pDst[i] = static_cast<T>(start >= dx ? pDst[i] + pDst[i + 1] : pDst[i] - pDst[i + 1]);
    if (sign < 0)
        for (int64_t i = 0; i <= last; ++i)
            pDst[i] = static_cast<T>(-pDst[i]);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiGenSobelKernel_16s(Lum16s* pDst, Lum32s kernelSize, Lum32s dx, Lum32s sign)
{
    return sobelKernel(pDst, kernelSize, dx, sign);
}

LumStatus lumiGenSobelKernel_32f(Lum32f* pDst, Lum32s kernelSize, Lum32s dx, Lum32s sign)
{
    return sobelKernel(pDst, kernelSize, dx, sign);
}
